// The soundtrack as the show hears it: the MP3 the build wrote (the same bytes
// as a fresh run), decoded by the audio layer and measured with the level
// meter every 20 ms, the way the music-driven parts read it.
#include "content/music/soundtrack.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>

#include "audio/level_meter.h"
#include "audio/pcm_decoder.h"
#include "content/music/music_timeline.h"
#include "content/music/synth_dsp.h"
#include "content/scenes/scenes.h"
#include "engine/world.h"
#include "parts/beat_reveal.h"
#include "parts/loudness_bands.h"
#include "parts/part_schedule.h"
#include "resources/archive_format.h"

namespace {

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

}  // namespace

TEST_F(Soundtrack, IsAFreshStereoMp3At44100HzOfTheRenderedLengthFadingOutForTheLoopBelowFullScale) {
    EXPECT_TRUE(!g_built || makeSoundtrackMp3() == g_mp3) << "the build's harbour.mp3 differs from a fresh run";
    ASSERT_GT(g_mp3.size(), 4u);
    EXPECT_EQ(g_mp3[0], 0xFF);
    EXPECT_EQ(g_mp3[1] & 0xFE, 0xFA);   // frame sync, MPEG-1, layer III
    EXPECT_EQ((g_mp3[2] >> 2) & 3, 0);  // 44,100 Hz
    EXPECT_NE(g_mp3[3] >> 6, 3);        // not mono
    // Without the encoder's delay and padding taken off, the loop would stutter.
    EXPECT_EQ(g_audio.frames(), frameAt(trackSeconds()));
    EXPECT_GE(trackSeconds(), 228.0);
    EXPECT_LE(trackSeconds(), 240.0);
    const auto peak = [](size_t from) {
        int most = 0;
        for (size_t i = from; i < g_audio.samples.size(); ++i) most = std::max(most, std::abs(int{g_audio.samples[i]}));
        return most;
    };
    EXPECT_LT(peak(0), 32767) << "clipped";
    // The last 10 ms are near silence, so the jump back to the first beat is no click.
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
        EXPECT_GT(loudest, BEAT_LEVEL) << "beat " << beat;
        EXPECT_LT(quietest, BEAT_LEVEL) << "beat " << beat;
    }
    // Part 7's loudness picks every mesh of its tumble.
    std::vector<uint8_t> tumble = make4dScene();
    World world;
    FILE* file = fmemopen(tumble.data(), tumble.size(), "rb");
    world.loadFromFile(file);
    std::fclose(file);
    std::vector<int> picked(static_cast<size_t>(world.meshCount), 0);
    for (size_t i = 0; i < g_levels.size(); ++i) {
        const int32_t mesh = loudnessSelection(g_levels[i], world.meshCount);
        if (levelTime(i) >= 77.0 && levelTime(i) <= 96.0 && mesh >= 0) ++picked[static_cast<size_t>(mesh)];
    }
    EXPECT_EQ(std::count(picked.begin(), picked.end(), 0), 0) << "meshes never picked";
    EXPECT_GT(world.meshCount, 0);
}
