// The generated pictures and soundtrack, checked through the show's own
// readers: the PCX writer and the twelve pictures written with it, decoded by
// the show's decoder at the sizes the demo parts load them with; the MP3 the
// build wrote (the same bytes as a fresh run), decoded by the audio layer and
// measured with the level meter every 20 ms, the way the music-driven parts read it.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <stdexcept>

#include "audio/level_meter.h"
#include "audio/pcm_decoder.h"
#include "content/formats/pcx_writer.h"
#include "content/images/images.h"
#include "content/music/music_timeline.h"
#include "content/music/soundtrack.h"
#include "content/music/synth_dsp.h"
#include "content/scenes/scenes.h"
#include "engine/world.h"
#include "parts/beat_reveal.h"
#include "parts/loudness_bands.h"
#include "parts/part_schedule.h"
#include "resources/archive_format.h"
#include "resources/pcx_decoder.h"
#include "tests/engine/scene_text.h"

namespace {

// `file` decoded by decodePcx into width x height pixels of red, green, blue;
// its header. The whole file is read.
std::vector<std::array<uint8_t, 3>> decoded(const std::vector<uint8_t>& file, int width, int height, PcxHeader* header) {
    std::vector<uint8_t> pixels(static_cast<size_t>(width) * height * 4, 0);
    EXPECT_EQ(parsePcxHeader(file.data(), file.size(), header), nullptr);
    const std::unique_ptr<FILE, int (*)(FILE*)> stream(std::tmpfile(), std::fclose);
    std::fwrite(file.data(), 1, file.size(), stream.get());
    std::rewind(stream.get());
    decodePcx(stream.get(), static_cast<uint32_t>(file.size()), pixels.data(), width, height);
    EXPECT_EQ(std::ftell(stream.get()), static_cast<long>(file.size())) << "the whole file read";
    std::vector<std::array<uint8_t, 3>> rgb;
    for (size_t i = 0; i < pixels.size(); i += 4) rgb.push_back({pixels[i + 2], pixels[i + 1], pixels[i]});
    return rgb;
}

// Both kinds, an even width and one that needs a pad byte; per line, a run of
// 0xC8 longer than one packet holds, then lone values of 0xC0 and up (which
// need a count byte of their own) among noise.
TEST(PcxWriter, ImagesOfBothKindsDecodeToTheirColoursAndPixelsThatDoNotMatchTheSizeAreRefused) {
    for (int width : {130, 131}) {
        uint32_t state = 12345;
        std::vector<uint8_t> bytes(static_cast<size_t>(width) * 6 * 4);  // indices, then red, green, blue
        for (size_t i = 0; i < bytes.size(); ++i) {
            state = state * 1103515245u + 12345u;
            const size_t x = (i < bytes.size() / 4 ? i : (i - bytes.size() / 4) / 3) % width;
            bytes[i] = x < 70 ? 0xC8 : x % 5 == 0 ? static_cast<uint8_t>(0xC0 + (state >> 28)) : static_cast<uint8_t>(state >> 24);
        }
        const std::vector<uint8_t> indices(bytes.begin(), bytes.begin() + width * 6), rgb(bytes.begin() + width * 6, bytes.end());
        PcxPalette palette{};
        for (size_t i = 0; i < palette.size(); ++i) palette[i] = static_cast<uint8_t>(i * 37 + i / 3);
        for (int kind = 0; kind < 2; ++kind) {
            SCOPED_TRACE(testing::Message() << (kind == 0 ? "indexed" : "rgb") << " width " << width);
            PcxHeader header{};
            const auto image = decoded(kind == 0 ? writePcxIndexed(width, 6, indices, palette) : writePcxRgb(width, 6, rgb), width, 6, &header);
            EXPECT_EQ(std::pair(header.planes, header.bytesPerLine), std::pair(kind == 0 ? 1 : 3, width + width % 2));  // lines of an even length
            for (int i = 0; i < width * 6; ++i) {
                const uint8_t* colour = kind == 0 ? &palette[indices[i] * 3u] : &rgb[i * 3u];
                ASSERT_EQ(image[i], (std::array{colour[0], colour[1], colour[2]})) << "pixel " << i;
            }
        }
    }
    EXPECT_THROW(writePcxIndexed(4, 4, std::vector<uint8_t>(15), PcxPalette{}), std::invalid_argument);
    EXPECT_THROW(writePcxIndexed(0, 4, {}, PcxPalette{}), std::invalid_argument);
    EXPECT_THROW(writePcxRgb(70000, 1, std::vector<uint8_t>(210000)), std::invalid_argument);
    EXPECT_THROW(writePcxRgb(4, 4, std::vector<uint8_t>(16)), std::invalid_argument);
}

// Added to or subtracted from the frame, black is "no change": each picture is
// light marks on a black ground, with something bright in it; the same on
// every run; both kinds, so both of the decoder's paths run in the show.
TEST(GeneratedImages, DecodeAtTheirSizesToLightMarksOnBlackInBothPcxKindsTheSameOnEveryRun) {
    std::map<std::string, std::pair<int, int>> sizes;  // every image the parts load, at the size they pass to Texture::load
    for (std::string name : {"objects", "mark12", "cred", "xxx", "ooo", "part", "greet", "ever", "forget", "invert", "outside", "texture2"}) {
        sizes[name + ".pcx"] = {name == "texture2" ? 256 : 512, 256};
    }
    const std::vector<ContentEntry> images = makeImages(), again = makeImages();
    ASSERT_EQ(images.size(), sizes.size());
    std::set<int> planes;
    for (size_t n = 0; n < images.size(); ++n) {
        SCOPED_TRACE(images[n].name);
        EXPECT_TRUE(again[n].bytes == images[n].bytes && again[n].name == images[n].name) << "differs from a second run";
        ASSERT_EQ(sizes.count(images[n].name), 1u);
        const auto [width, height] = sizes.at(images[n].name);
        sizes.erase(images[n].name);
        PcxHeader header{};
        const auto image = decoded(images[n].bytes, width, height, &header);
        EXPECT_EQ(std::pair(header.width, header.height), std::pair(width, height));
        planes.insert(header.planes);
        int black = 0, brightest = 0;
        for (const auto& c : image) {
            black += std::ranges::max(c) < 8 ? 1 : 0;
            brightest = std::max<int>(brightest, std::ranges::max(c));
        }
        EXPECT_TRUE(black > 0.4 * width * height && black < 0.97 * width * height && brightest >= 220) << black << " " << brightest;
        for (const size_t corner : {0, width - 1, (height - 1) * width, height * width - 1}) {
            EXPECT_LT(std::ranges::max(image[corner]), 8) << "corner pixel " << corner;
        }
    }
    EXPECT_EQ(planes, (std::set<int>{1, 3}));
}

std::vector<uint8_t> g_mp3;     // the build's harbour.mp3, or a fresh one when the build makes no content
bool g_built = false;
DecodedAudio g_audio;
std::string g_error;
std::vector<uint32_t> g_levels;  // left + right level of the 20 ms ending at (k + 1) x 20 ms

double levelTime(size_t index) { return (index + 1) * static_cast<double>(LEVEL_WINDOW_MS) / 1000.0; }

// Root mean square of both channels over a section, in dB of full scale.
double rmsDb(const MusicSection& section) {
    const size_t first = static_cast<size_t>(section.start * SOUNDTRACK_RATE) * 2;
    const size_t last = std::min(g_audio.samples.size(), static_cast<size_t>(section.end * SOUNDTRACK_RATE) * 2);
    double sum = 0.0;
    for (size_t i = first; i < last; ++i) sum += static_cast<double>(g_audio.samples[i]) * g_audio.samples[i];
    return 10.0 * std::log10(sum / static_cast<double>(last - first) / (32768.0 * 32768.0));
}

class Soundtrack : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        std::string path = std::string(KASKADE_BUILD_DIR) + "/harbour.mp3";
        g_built = readWholeFile(path, &g_mp3, &g_error);
        if (!g_built) {
            g_mp3 = makeSoundtrackMp3();
            path = (std::filesystem::temp_directory_path() / ("kaskade-harbour-" + std::to_string(getpid()))).string();
            writeWholeFile(path, g_mp3, &g_error);
        }
        g_error = decodeSoundtrack(path, &g_audio, &g_error) ? "" : g_error;
        if (!g_built) std::filesystem::remove(path);
        for (size_t end = LEVEL_WINDOW_FRAMES; end <= g_audio.frames(); end += LEVEL_WINDOW_FRAMES) {
            const uint32_t packed = packedPeakLevel(&g_audio.samples[2 * (end - LEVEL_WINDOW_FRAMES)], LEVEL_WINDOW_FRAMES);
            g_levels.push_back((packed & 0xFFFF) + (packed >> 16));
        }
    }
    void SetUp() override { ASSERT_TRUE(g_error.empty()) << g_error; }
};

// A fresh stereo MP3 at 44,100 Hz of the rendered length (without the
// encoder's delay and padding taken off, the loop would stutter), below full
// scale, its last 10 ms near silence so that the jump back to the first beat
// is no click.
TEST_F(Soundtrack, IsAFreshStereoMp3At44100HzOfTheRenderedLengthFadingOutForTheLoopBelowFullScale) {
    EXPECT_TRUE(!g_built || makeSoundtrackMp3() == g_mp3) << "the build's harbour.mp3 differs from a fresh run";
    ASSERT_GT(g_mp3.size(), 4u);
    EXPECT_EQ(std::tuple(g_mp3[0], g_mp3[1] & 0xFE, (g_mp3[2] >> 2) & 3), std::tuple(0xFF, 0xFA, 0));  // MPEG-1 layer III at 44,100 Hz
    EXPECT_NE(g_mp3[3] >> 6, 3) << "mono";
    EXPECT_EQ(g_audio.frames(), frameAt(trackSeconds()));
    EXPECT_TRUE(trackSeconds() >= 228.0 && trackSeconds() <= 240.0) << trackSeconds();
    const auto peak = [](size_t from) {
        int most = 0;
        for (size_t i = from; i < g_audio.samples.size(); ++i) most = std::max(most, std::abs(int{g_audio.samples[i]}));
        return most;
    };
    EXPECT_LT(peak(0), 32767) << "clipped";
    EXPECT_LT(peak(g_audio.samples.size() - 2 * 441), 200);
}

TEST_F(Soundtrack, ItsSectionsChangeWhereThePartsChangeAndItsLevelsMoveTheMusicDrivenParts) {
    const auto& sections = musicSections();
    for (int i = 0; i < SCHEDULED_PARTS; ++i) EXPECT_NEAR(sections[i].end * 10.0, partEndTime(i + 1), 1e-4) << i;
    // The short break of part 3 and the breakdown of part 6 drop well below the
    // grooves around them; part 1 is the kick over a quiet bed.
    EXPECT_LT(rmsDb(sections[2]), std::min(rmsDb(sections[1]), rmsDb(sections[3])) - 3.0);
    EXPECT_LT(rmsDb(sections[5]), std::min(rmsDb(sections[4]), rmsDb(sections[6])) - 3.0);
    EXPECT_LT(rmsDb(sections[0]), rmsDb(sections[1]) - 2.0);
    // Part 1 reveals a piece on every beat: each rises above the beat level, and
    // the level falls below it before the next.
    for (int beat = 0; beat < sections[0].beats; ++beat) {
        uint32_t loudest = 0, quietest = UINT32_MAX;
        for (size_t i = 0; i < g_levels.size(); ++i) {
            if (levelTime(i) > beatTime(beat) && levelTime(i) <= beatTime(beat + 1)) {
                loudest = std::max(loudest, g_levels[i]);
                quietest = std::min(quietest, g_levels[i]);
            }
        }
        EXPECT_TRUE(loudest > BEAT_LEVEL && quietest < BEAT_LEVEL) << "beat " << beat << ": " << quietest << " to " << loudest;
    }
    // Part 7's loudness picks every mesh of its tumble.
    World world;
    loadScene(world, make4dScene());
    std::vector<int> picked(static_cast<size_t>(world.meshCount), 0);
    for (size_t i = 0; i < g_levels.size(); ++i) {
        const int32_t mesh = loudnessSelection(g_levels[i], world.meshCount);
        if (levelTime(i) >= 77.0 && levelTime(i) <= 96.0 && mesh >= 0) ++picked[static_cast<size_t>(mesh)];
    }
    EXPECT_TRUE(world.meshCount > 0 && std::ranges::count(picked, 0) == 0) << "meshes never picked";
}

}  // namespace
