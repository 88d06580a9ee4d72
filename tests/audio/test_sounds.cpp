#include "tests/audio/test_sounds.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>

std::vector<int16_t> tone(size_t frames, size_t loudFrames, int leftAmplitude, int rightAmplitude) {
    std::vector<int16_t> samples(frames * 2, 0);
    for (size_t i = 0; i < loudFrames && i < frames; ++i) {
        const double wave = std::sin(2.0 * M_PI * 441.0 * static_cast<double>(i) / 44100.0);
        samples[2 * i] = static_cast<int16_t>(std::lround(wave * leftAmplitude));
        samples[2 * i + 1] = static_cast<int16_t>(std::lround(wave * rightAmplitude));
    }
    return samples;
}

void writeBytes(const std::string& path, const std::vector<uint8_t>& bytes) {
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    ASSERT_TRUE(file.good()) << path;
}

void writeMp3(const std::string& path, const std::vector<int16_t>& samples) {
    const std::string raw = path + ".raw";
    const auto* bytes = reinterpret_cast<const uint8_t*>(samples.data());
    writeBytes(raw, std::vector<uint8_t>(bytes, bytes + samples.size() * 2));
    const bool wav = path.ends_with(".wav");
    const std::string command = "ffmpeg -loglevel error -y -f s16le -ar 44100 -ac 2 -i '" + raw + "' -c:a " +
                                (wav ? "pcm_s16le" : "libmp3lame -b:a 192k") + " '" + path + "'";
    ASSERT_EQ(std::system(command.c_str()), 0) << command;
    std::remove(raw.c_str());
}

std::string testSound(const std::string& name) {
    static const std::string dir = [] {
        const std::string made = makeTempDir();
        writeMp3(made + "/song.mp3", tone(22050, 11025, 16000, 8000));
        writeMp3(made + "/song.wav", tone(22050, 11025, 16000, 8000));
        return made;
    }();
    return dir + "/" + name;
}

std::string makeTempDir() {
    std::string pattern = ::testing::TempDir() + "kaskade-XXXXXX";
    const char* made = mkdtemp(pattern.data());
    return made != nullptr ? std::string(made) : std::string();
}
