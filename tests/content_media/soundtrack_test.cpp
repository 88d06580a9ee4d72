// The soundtrack as the show hears it: the MP3 the build wrote, decoded by the
// audio layer and measured with the level meter every 20 ms, the way the
// music-driven parts read it.
#include "content/music/soundtrack.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

#include "audio/level_meter.h"
#include "audio/pcm_decoder.h"
#include "content/music/music_timeline.h"
#include "content/scenes/scenes.h"
#include "content/music/synth_dsp.h"
#include "engine/world.h"
#include "parts/beat_reveal.h"
#include "parts/loudness_bands.h"
#include "resources/archive_format.h"

namespace {

struct Track {
    std::vector<uint8_t> mp3;
    DecodedAudio audio;
    std::string error;
    bool decoded = false;
    std::vector<uint32_t> levels;  // left + right level of the 20 ms ending at (k + 1) x 20 ms
};

Track* g_track = nullptr;

double levelTime(size_t index) { return (index + 1) * static_cast<double>(LEVEL_WINDOW_MS) / 1000.0; }

// Root mean square of both channels between two times, in dB of full scale.
double rmsDb(const DecodedAudio& audio, double from, double to) {
    const size_t first = static_cast<size_t>(from * SOUNDTRACK_RATE);
    const size_t last = std::min(audio.frames(), static_cast<size_t>(to * SOUNDTRACK_RATE));
    double sum = 0.0;
    for (size_t i = first * 2; i < last * 2; ++i) sum += static_cast<double>(audio.samples[i]) * audio.samples[i];
    return 10.0 * std::log10(sum / (2.0 * static_cast<double>(last - first)) / (32768.0 * 32768.0));
}

// The generated scene, read by the engine.
std::unique_ptr<World> loadScene(std::vector<uint8_t> bytes) {
    FILE* file = fmemopen(bytes.data(), bytes.size(), "rb");
    auto world = std::make_unique<World>();
    world->loadFromFile(file);
    std::fclose(file);
    return world;
}

const std::string BUILT_SOUNDTRACK = std::string(KASKADE_BUILD_DIR) + "/harbour.mp3";

// The soundtrack the build wrote; generated here when the build makes no content.
class Soundtrack : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        g_track = new Track;
        std::string path = BUILT_SOUNDTRACK;
        if (!readWholeFile(path, &g_track->mp3, &g_track->error)) {
            g_track->mp3 = makeSoundtrackMp3();
            path = (std::filesystem::temp_directory_path() / ("kaskade-harbour-" + std::to_string(getpid()) + ".mp3")).string();
            writeWholeFile(path, g_track->mp3, &g_track->error);
        }
        g_track->decoded = decodeSoundtrack(path, &g_track->audio, &g_track->error);
        if (path != BUILT_SOUNDTRACK) std::filesystem::remove(path);
        for (size_t end = LEVEL_WINDOW_FRAMES; end <= g_track->audio.frames(); end += LEVEL_WINDOW_FRAMES) {
            const uint32_t packed = packedPeakLevel(&g_track->audio.samples[2 * (end - LEVEL_WINDOW_FRAMES)], LEVEL_WINDOW_FRAMES);
            g_track->levels.push_back((packed & 0xFFFF) + (packed >> 16));
        }
    }
    static void TearDownTestSuite() { delete g_track; }
    void SetUp() override { ASSERT_TRUE(g_track->decoded) << g_track->error; }
};

}  // namespace

TEST_F(Soundtrack, IsStereoMp3At44100HzDecodingToExactlyTheRenderedLength) {
    const std::vector<uint8_t>& mp3 = g_track->mp3;
    ASSERT_GT(mp3.size(), 4u);
    EXPECT_EQ(mp3[0], 0xFF);
    EXPECT_EQ(mp3[1] & 0xFE, 0xFA);   // frame sync, MPEG-1, layer III
    EXPECT_EQ(mp3[2] >> 4, 11);       // bitrate index 11: 192 kbps
    EXPECT_EQ((mp3[2] >> 2) & 3, 0);  // 44,100 Hz
    EXPECT_NE(mp3[3] >> 6, 3);        // not mono
    // Without the encoder's delay and padding taken off, the loop would stutter.
    EXPECT_EQ(g_track->audio.frames(), frameAt(trackSeconds()));
    const double seconds = static_cast<double>(g_track->audio.frames()) / SOUNDTRACK_RATE;
    EXPECT_GE(seconds, 228.0);
    EXPECT_LE(seconds, 240.0);
}

TEST_F(Soundtrack, PartOneRevealsAPieceOnEveryBeat) {
    const std::vector<uint32_t>& levels = g_track->levels;
    const auto opening = loadScene(makeTestScene());
    int32_t index = 3, armed = 1;
    int reveals = 0;
    for (size_t i = 0; i < levels.size() && levelTime(i) <= 21.0; ++i) {
        const int32_t wasArmed = armed;
        revealOnBeat(*opening, levels[i], &index, &armed);
        reveals += wasArmed == 1 && armed == 0 ? 1 : 0;
    }
    EXPECT_GE(reveals, 20);
    // Every beat rises above the threshold, and the level falls below it before the next.
    for (int beat = 0; beat < musicSections()[0].beats; ++beat) {
        uint32_t loudest = 0, quietest = UINT32_MAX;
        for (size_t i = 0; i < levels.size(); ++i) {
            if (levelTime(i) > beatTime(beat) && levelTime(i) <= beatTime(beat + 1)) {
                loudest = std::max(loudest, levels[i]);
                quietest = std::min(quietest, levels[i]);
            }
        }
        EXPECT_GT(loudest, BEAT_LEVEL) << "beat " << beat;
        EXPECT_LT(quietest, BEAT_LEVEL) << "beat " << beat;
    }
}

TEST_F(Soundtrack, PartSevenLoudnessPicksEveryMeshOfTheTumble) {
    const int32_t meshes = loadScene(make4dScene())->meshCount;
    ASSERT_GT(meshes, 0);
    std::vector<int> picked(static_cast<size_t>(meshes), 0);
    for (size_t i = 0; i < g_track->levels.size(); ++i) {
        if (levelTime(i) < 77.0 || levelTime(i) > 96.0) continue;
        const int32_t mesh = loudnessSelection(g_track->levels[i], meshes);
        if (mesh >= 0) ++picked[static_cast<size_t>(mesh)];
    }
    for (int32_t mesh = 0; mesh < meshes; ++mesh) EXPECT_GT(picked[static_cast<size_t>(mesh)], 0) << "mesh " << mesh;
}

TEST_F(Soundtrack, SectionsChangeWhereThePartsChange) {
    constexpr double PART_ENDS[13] = {21.0, 33.5, 39.5, 53.4, 65.8, 77.0, 96.0, 112.7, 130.7, 149.8, 175.8, 192.5, 226.9};
    const auto& sections = musicSections();
    for (int i = 0; i < 13; ++i) EXPECT_DOUBLE_EQ(sections[i].end, PART_ENDS[i]) << "section " << i;
    const auto rms = [&](int section) { return rmsDb(g_track->audio, sections[section].start, sections[section].end); };
    // The short break of part 3 and the breakdown of part 6 drop well below the grooves around them.
    EXPECT_LT(rms(2), rms(1) - 3.0);
    EXPECT_LT(rms(2), rms(3) - 3.0);
    EXPECT_LT(rms(5), rms(4) - 3.0);
    EXPECT_LT(rms(5), rms(6) - 3.0);
    // Part 1 is the kick over a quiet bed: quieter than the groove that follows it.
    EXPECT_LT(rms(0), rms(1) - 2.0);
}

TEST_F(Soundtrack, StaysBelowFullScaleAndFadesOutForTheLoop) {
    const std::vector<int16_t>& samples = g_track->audio.samples;
    int peak = 0;
    for (int16_t s : samples) peak = std::max(peak, std::abs(static_cast<int>(s)));
    EXPECT_LT(peak, 32767) << "clipped";
    // The last 10 ms are near silence, so the jump back to the first beat is no click.
    for (size_t i = samples.size() - 2 * 441; i < samples.size(); ++i) {
        ASSERT_LT(std::abs(static_cast<int>(samples[i])), 200) << "sample " << i;
    }
}

TEST(SoundtrackGeneration, GivesTheBytesTheBuildWrote) {
    std::vector<uint8_t> built;
    std::string error;
    if (!readWholeFile(BUILT_SOUNDTRACK, &built, &error)) GTEST_SKIP() << "content generation is off in this build";
    EXPECT_TRUE(makeSoundtrackMp3() == built) << BUILT_SOUNDTRACK << " differs from a fresh run";
}
