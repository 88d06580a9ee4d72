#include "tests/audio/test_sounds.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

void putLe16(std::vector<uint8_t>& out, uint32_t value) {
    out.push_back(static_cast<uint8_t>(value));
    out.push_back(static_cast<uint8_t>(value >> 8));
}
void putLe32(std::vector<uint8_t>& out, uint32_t value) {
    putLe16(out, value & 0xFFFF);
    putLe16(out, value >> 16);
}
void putBe16(std::vector<uint8_t>& out, uint32_t value) {
    out.push_back(static_cast<uint8_t>(value >> 8));
    out.push_back(static_cast<uint8_t>(value));
}

}  // namespace

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
    FILE* file = std::fopen(path.c_str(), "wb");
    ASSERT_NE(file, nullptr) << path;
    if (!bytes.empty()) {
        std::fwrite(bytes.data(), 1, bytes.size(), file);
    }
    std::fclose(file);
}

void writeMp3(const std::string& path, const std::vector<int16_t>& samples) {
    const std::string raw = path + ".raw";
    std::vector<uint8_t> bytes(samples.size() * 2);
    std::memcpy(bytes.data(), samples.data(), bytes.size());
    writeBytes(raw, bytes);
    const std::string command = "ffmpeg -loglevel error -y -f s16le -ar 44100 -ac 2 -i '" + raw +
                                "' -c:a libmp3lame -b:a 192k '" + path + "'";
    ASSERT_EQ(std::system(command.c_str()), 0) << command;
    std::remove(raw.c_str());
}

void writeWav(const std::string& path, const std::vector<int16_t>& samples) {
    std::vector<uint8_t> out;
    const uint32_t dataBytes = static_cast<uint32_t>(samples.size() * 2);
    out.insert(out.end(), {'R', 'I', 'F', 'F'});
    putLe32(out, 36 + dataBytes);
    out.insert(out.end(), {'W', 'A', 'V', 'E', 'f', 'm', 't', ' '});
    putLe32(out, 16);
    putLe16(out, 1);          // PCM
    putLe16(out, 2);          // stereo
    putLe32(out, 44100);
    putLe32(out, 44100 * 4);  // bytes per second
    putLe16(out, 4);          // block align
    putLe16(out, 16);         // bits per sample
    out.insert(out.end(), {'d', 'a', 't', 'a'});
    putLe32(out, dataBytes);
    for (int16_t sample : samples) {
        putLe16(out, static_cast<uint16_t>(sample));
    }
    writeBytes(path, out);
}

void writeModule(const std::string& path) {
    constexpr uint32_t SAMPLE_WORDS = 1000;
    std::vector<uint8_t> out(20, 0);  // title
    for (int sample = 0; sample < 31; ++sample) {
        out.insert(out.end(), 22, 0);  // name
        putBe16(out, sample == 0 ? SAMPLE_WORDS : 0);
        out.push_back(0);                     // finetune
        out.push_back(sample == 0 ? 64 : 0);  // volume
        putBe16(out, 0);                      // repeat start
        putBe16(out, sample == 0 ? SAMPLE_WORDS : 1);  // repeat length: the whole sample loops
    }
    out.push_back(1);    // song length: one position
    out.push_back(127);  // restart
    out.insert(out.end(), 128, 0);  // order table: pattern 0
    out.insert(out.end(), {'M', '.', 'K', '.'});
    std::vector<uint8_t> pattern(64 * 4 * 4, 0);
    const uint32_t period = 428;  // C-2
    pattern[0] = static_cast<uint8_t>((1 & 0xF0) | (period >> 8));
    pattern[1] = static_cast<uint8_t>(period & 0xFF);
    pattern[2] = static_cast<uint8_t>((1 & 0x0F) << 4);
    pattern[4 + 2] = 0x0F;  // channel 2: set speed
    pattern[4 + 3] = 0x01;  // to one tick per row
    out.insert(out.end(), pattern.begin(), pattern.end());
    for (uint32_t i = 0; i < SAMPLE_WORDS * 2; ++i) {
        out.push_back((i / 16) % 2 == 0 ? 0x60 : 0xA0);
    }
    writeBytes(path, out);
}

std::string makeTempDir() {
    std::string pattern = ::testing::TempDir() + "kaskade-XXXXXX";
    std::vector<char> buffer(pattern.begin(), pattern.end());
    buffer.push_back('\0');
    const char* made = mkdtemp(buffer.data());
    return made != nullptr ? std::string(made) : std::string();
}
