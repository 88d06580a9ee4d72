// The music and the demo clock over replaceable inputs: the millisecond clock
// and the level source, the end sync, the fixed-step clock and the audio failures.
#include "audio/clock.h"
#include "audio/fixed_step_clock.h"
#include "audio/music.h"
#include "audio/sound_source.h"
#include "tests/audio/test_sounds.h"
#include "tests/support/fatal_catcher.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <tuple>

namespace {

uint32_t g_fakeNow = 0;

class MusicClock : public ::testing::Test {
protected:
    void SetUp() override { setenv("SDL_AUDIODRIVER", "dummy", 1); }
    void TearDown() override {
        closeMusic();
        g_stream = g_music = 0;
        g_soundEnabled = true;
        g_millisecondClock = monotonicMillis;
        g_levelSource = audioChannelGetLevel;  // the fixed-step clock replaces both
    }
    std::string path(const char* name) const { return dir_ + "/" + name; }
    std::string dir_ = makeTempDir();
};

TEST_F(MusicClock, StartsAtTheMusicsPlaceCountsTenthsAcrossTheTimersWrapAgainFromTheEndSyncAndStandsWhilePaused) {
    openMusic(testSound("song.mod").c_str());
    ASSERT_NE(g_music, 0u);
    g_millisecondClock = [] { return g_fakeNow; };
    g_fakeNow = 0xFFFFFF00u;
    startMusicAt(250);
    updateMusicClock();
    // Rows of 20 ms: the music and the clock start at the row before or after 250 ms.
    const long startMillis = std::lround(g_demoTime * 100);
    EXPECT_TRUE(startMillis == 240 || startMillis == 260) << g_demoTime;
    g_fakeNow += 12345;  // wraps past 2^32
    updateMusicClock();
    EXPECT_EQ(g_demoTime, static_cast<float>((12345 + startMillis) * DEMO_TIME_SCALE));
    onMusicEnd(0, 1, 0);
    g_fakeNow += 100;
    updateMusicClock();
    EXPECT_FLOAT_EQ(g_demoTime, 1.0f);
    // A pause stands the clock; it goes on from there, the time paused left out.
    pauseMusic();
    g_fakeNow += 5000;
    updateMusicClock();
    EXPECT_FLOAT_EQ(g_demoTime, 1.0f);
    resumeMusic();
    g_fakeNow += 100;
    updateMusicClock();
    EXPECT_FLOAT_EQ(g_demoTime, 2.0f);
}

// What the probe tells a file, and what openMusic makes of it: a stream, a
// module, or the end of the show with status 0.
TEST_F(MusicClock, TheSoundtrackOpensAsAStreamOrElseAModuleAndAnythingElseIsFatal) {
    writeBytes(path("garbage.mp3"), std::vector<uint8_t>(5000, 0x33));
    std::vector<uint8_t> noise(200000);
    uint32_t state = 12345;
    std::generate(noise.begin(), noise.end(), [&] { return static_cast<uint8_t>((state = state * 1664525u + 1013904223u) >> 24); });
    writeBytes(path("noise.mp3"), noise);
    writeBytes(path("empty.mp3"), {});
    ASSERT_EQ(mkdir(path("folder.mp3").c_str(), 0755), 0);
    enum Opens { STREAM, MODULE, FATAL };
    const std::tuple<std::string, SoundFormat, Opens> files[] = {
        {testSound("song.mp3"), SoundFormat::Mp3, STREAM},    {testSound("song.mod"), SoundFormat::Module, MODULE},
        {testSound("song.wav"), SoundFormat::Unknown, FATAL}, {path("garbage.mp3"), SoundFormat::Unknown, FATAL},
        {path("noise.mp3"), SoundFormat::Unknown, FATAL},     {path("empty.mp3"), SoundFormat::Unreadable, FATAL},
        {path("folder.mp3"), SoundFormat::Unreadable, FATAL}, {path("missing.mp3"), SoundFormat::Unreadable, FATAL},
        {testDataPath("pcx/allegro_mysha.pcx"), SoundFormat::Unknown, FATAL},
        {testDataPath("3ds/test1.3ds"), SoundFormat::Unknown, FATAL}};
    for (const auto& [file, format, opens] : files) {
        SCOPED_TRACE(file);
        EXPECT_EQ(probeSoundFile(file.c_str()), format);
        if (opens == FATAL) {
            const FatalError error = expectFatal([&] { openMusic(file.c_str()); });
            EXPECT_EQ(error.caption + ": " + error.text, "BASS ERROR: Can't play the file");
            EXPECT_EQ(error.status, 0);
        } else {
            openMusic(file.c_str());
            EXPECT_EQ(g_stream != 0, opens == STREAM);
            EXPECT_EQ(g_music != 0, opens == MODULE);
            closeMusic();
            g_stream = g_music = 0;
        }
    }
    setenv("SDL_AUDIODRIVER", "no-such-driver", 1);
    const FatalError device = expectFatal([] { openMusic(testSound("song.mp3").c_str()); });
    EXPECT_EQ(device.caption + ": " + device.text, "BASS ERROR: Can't initialize device");
    EXPECT_EQ(device.status, 0);
}

// The fixed-step clock: frame k sees round(k * 1000 / fps) ms, the level comes
// from the decoded soundtrack at that moment, and the song's end moves the zero.
TEST_F(MusicClock, WithoutSoundOnTheFixedStepClockFrameKSeesRoundedMillisAndTheSoundtracksLevelThere) {
    g_soundEnabled = false;  // nothing is opened, and the clock still starts
    openMusic(path("missing.mp3").c_str());
    EXPECT_EQ(g_stream + g_music, 0u);
    std::string error;
    ASSERT_TRUE(startFixedStepClock(30, "", &error));
    startMusic();
    advanceFixedStepClock();
    updateMusicClock();
    EXPECT_EQ(g_levelLeft + g_levelRight, 2 * 65535u) << "a silent show has no level";
    EXPECT_FALSE(startFixedStepClock(30, testDataPath("3ds/test1.3ds"), &error));
    EXPECT_NE(error.find("test1.3ds"), std::string::npos);
    ASSERT_TRUE(startFixedStepClock(30, testSound("song.mp3"), &error)) << error;
    startMusic();
    // The song sounds for its first 250 ms and starts again at 500.
    const struct { int frames, millis, left, right; } steps[] = {
        {1, 33, 62, 31}, {1, 67, 62, 31}, {6, 267, 62, 31},  // the 20 ms before 267 ms hold sound
        {4, 400, 0, 0},  {3, 0, 0, 0},    {3, 100, 62, 31}};
    for (const auto& [frames, millis, left, right] : steps) {
        setFixedStepFrame(fixedStepFrames() + frames);  // the frames swapped
        updateMusicClock();
        EXPECT_EQ(g_demoTime, static_cast<float>(millis * DEMO_TIME_SCALE)) << millis;
        EXPECT_NEAR(static_cast<int>(g_levelLeft), left, 4) << millis;
        EXPECT_NEAR(static_cast<int>(g_levelRight), right, 4) << millis;
    }
}

}  // namespace
