// The music and the demo clock over replaceable inputs: the millisecond clock
// and the level source, the end sync, and the audio failures.
#include "audio/clock.h"
#include "audio/fixed_step_clock.h"
#include "audio/music.h"
#include "tests/audio/test_sounds.h"
#include "tests/support/fatal_catcher.h"

#include <gtest/gtest.h>
#include <libopenmpt/libopenmpt.h>
#include <libopenmpt/libopenmpt_stream_callbacks_file.h>

#include <sys/stat.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace {

uint32_t g_fakeNow = 0;
uint32_t g_fakeLevel = 0;
uint32_t fakeClock() { return g_fakeNow; }
uint32_t fakeLevel(AudioHandle) { return g_fakeLevel; }

class DemoClock : public ::testing::Test {
protected:
    void SetUp() override {
        g_millisecondClock = fakeClock;
        g_levelSource = fakeLevel;
        g_stream = 0;
        g_music = 0;
    }
    void TearDown() override {
        g_millisecondClock = monotonicMillis;
        g_levelSource = audioChannelGetLevel;
    }
};

TEST_F(DemoClock, CountsTenthsOfASecondAcrossTheTimersWrap) {
    g_fakeNow = 0xFFFFFF00u;
    startMusic();
    g_fakeNow += 12345;  // wraps past 2^32
    updateMusicClock();
    EXPECT_EQ(g_demoTime, static_cast<float>(12345 * DEMO_TIME_SCALE));
    EXPECT_FLOAT_EQ(g_demoTime, 123.45f);
}

TEST_F(DemoClock, EndSyncRestartsTheDemoTimeFromZero) {
    g_fakeNow = 1000;
    startMusic();
    g_fakeNow = 1000 + 228000;
    updateMusicClock();
    EXPECT_FLOAT_EQ(g_demoTime, 2280.0f);
    onMusicEnd(0, 1, 0);
    g_fakeNow += 100;
    updateMusicClock();
    EXPECT_FLOAT_EQ(g_demoTime, 1.0f);
}

TEST_F(DemoClock, LevelWordsSplitLeftLowRightHigh) {
    g_fakeLevel = 0x00400021u;
    updateMusicClock();
    EXPECT_EQ(g_levelLeft, 0x21u);
    EXPECT_EQ(g_levelRight, 0x40u);
    // A failed query (all bits set) splits like any other value.
    g_fakeLevel = 0xFFFFFFFFu;
    updateMusicClock();
    EXPECT_EQ(g_levelLeft, 65535u);
    EXPECT_EQ(g_levelRight, 65535u);
}

class OpeningMusic : public ::testing::Test {
protected:
    void SetUp() override {
        dir_ = makeTempDir();
        setenv("SDL_AUDIODRIVER", "dummy", 1);
        g_soundEnabled = true;
        g_stream = 0;
        g_music = 0;
    }
    void TearDown() override {
        closeMusic();
        g_stream = 0;
        g_music = 0;
        setenv("SDL_AUDIODRIVER", "dummy", 1);
    }
    std::string path(const char* name) const { return dir_ + "/" + name; }
    std::string dir_;
};

TEST_F(OpeningMusic, AnMp3OpensAsAStream) {
    writeMp3(path("harbour.mp3"), tone(11025, 11025, 9000, 9000));
    openMusic(path("harbour.mp3").c_str());
    EXPECT_NE(g_stream, 0u);
    EXPECT_EQ(g_music, 0u);
}

TEST_F(OpeningMusic, AModuleThatIsNoStreamOpensAsAModule) {
    writeModule(path("harbour.mp3"));
    openMusic(path("harbour.mp3").c_str());
    EXPECT_EQ(g_stream, 0u);
    EXPECT_NE(g_music, 0u);
}

TEST_F(OpeningMusic, AModuleStartedLaterStartsAtARowAndTheClockWithIt) {
    // Rows of 20 ms: 250 ms lies between two of them.
    writeModule(path("harbour.mp3"));
    openMusic(path("harbour.mp3").c_str());
    ASSERT_NE(g_music, 0u);
    g_millisecondClock = fakeClock;
    g_fakeNow = 70000;
    startMusicAt(250);
    updateMusicClock();
    g_millisecondClock = monotonicMillis;

    // Where libopenmpt itself goes for 0.25 s of the same song.
    std::FILE* file = std::fopen(path("harbour.mp3").c_str(), "rb");
    ASSERT_NE(file, nullptr);
    openmpt_module* module = openmpt_module_create2(openmpt_stream_get_file_callbacks(), file, nullptr, nullptr,
                                                    nullptr, nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(module, nullptr);
    const double reached = openmpt_module_set_position_seconds(module, 0.25);
    openmpt_module_destroy(module);
    std::fclose(file);
    EXPECT_NE(std::lround(reached * 1000), 250) << "the test's song has no row at 250 ms";
    EXPECT_NEAR(g_demoTime, reached * 10.0, 0.01) << "the clock starts where the music does";
}

TEST_F(OpeningMusic, AFileThatHoldsNoAudioIsFatalWithStatusZero) {
    writeBytes(path("garbage.mp3"), std::vector<uint8_t>(5000, 0x33));
    std::vector<uint8_t> noise(200000);
    uint32_t state = 12345;
    for (uint8_t& byte : noise) {
        state = state * 1664525u + 1013904223u;
        byte = static_cast<uint8_t>(state >> 24);
    }
    writeBytes(path("noise.mp3"), noise);
    writeBytes(path("empty.mp3"), {});
    ASSERT_EQ(mkdir(path("folder.mp3").c_str(), 0755), 0);
    writeWav(path("sound.wav"), tone(11025, 11025, 9000, 9000));
    const std::string image = testDataPath("pcx/allegro_mysha.pcx");
    const std::string scene = testDataPath("3ds/test1.3ds");
    for (const std::string& file : {path("missing.mp3"), path("garbage.mp3"), path("noise.mp3"), path("empty.mp3"),
                                    path("folder.mp3"), path("sound.wav"), image, scene}) {
        const char* name = file.c_str();
        const FatalError error = expectFatal([&] { openMusic(name); });
        EXPECT_EQ(error.caption, "BASS ERROR") << name;
        EXPECT_EQ(error.text, "Can't play the file") << name;
        EXPECT_EQ(error.status, 0) << name;
    }
}

TEST_F(OpeningMusic, ADeviceThatCannotOpenIsFatalWithAHint) {
    writeMp3(path("harbour.mp3"), tone(11025, 11025, 9000, 9000));
    setenv("SDL_AUDIODRIVER", "no-such-driver", 1);
    const FatalError error = expectFatal([&] { openMusic(path("harbour.mp3").c_str()); });
    EXPECT_EQ(error.caption, "BASS ERROR");
    EXPECT_EQ(error.text, "Can't initialize device");
    EXPECT_EQ(error.status, 0);
}

TEST_F(OpeningMusic, NoSoundOpensNothingAndStillStartsTheClock) {
    g_soundEnabled = false;
    openMusic(path("missing.mp3").c_str());
    EXPECT_EQ(g_stream, 0u);
    EXPECT_EQ(g_music, 0u);
    const uint32_t before = monotonicMillis();
    startMusic();
    EXPECT_GE(g_musicStartTick.load() - before, 0u);
    updateMusicClock();
    EXPECT_GE(g_demoTime, 0.0f);
    EXPECT_LT(g_demoTime, 10.0f);
}

}  // namespace

namespace {

// The fixed-step clock: frame k sees round(k * 1000 / fps) ms, the level comes
// from the decoded soundtrack at that moment, and the song's end moves the zero.
class FixedStep : public ::testing::Test {
protected:
    void SetUp() override {
        dir_ = makeTempDir();
        g_stream = 0;
        g_music = 0;
    }
    void TearDown() override {
        g_millisecondClock = monotonicMillis;
        g_levelSource = audioChannelGetLevel;
    }
    // Swaps `count` frames and refreshes the clock as the next frame would.
    static void swapFrames(int count) {
        for (int i = 0; i < count; ++i) {
            advanceFixedStepClock();
        }
        updateMusicClock();
    }
    std::string dir_;
};

TEST_F(FixedStep, FrameKSeesRoundedKThousandthsOverFps) {
    std::string error;
    ASSERT_TRUE(startFixedStepClock(30, "", &error));
    startMusic();
    updateMusicClock();
    EXPECT_EQ(g_demoTime, 0.0f);
    swapFrames(1);
    EXPECT_EQ(g_demoTime, static_cast<float>(33 * DEMO_TIME_SCALE));
    swapFrames(1);
    EXPECT_EQ(g_demoTime, static_cast<float>(67 * DEMO_TIME_SCALE));
    swapFrames(28);
    EXPECT_EQ(g_demoTime, 10.0f);
    // A silent show (no soundtrack) reports the no-channel level.
    EXPECT_EQ(g_levelLeft, 65535u);
}

TEST_F(FixedStep, LevelsComeFromTheSoundtrackAndItsEndMovesTheZero) {
    // One second: 0.5 s loud, 0.5 s silent.
    writeMp3(dir_ + "/song.mp3", tone(44100, 22050, 20000, 10000));
    std::string error;
    ASSERT_TRUE(startFixedStepClock(10, dir_ + "/song.mp3", &error)) << error;
    startMusic();
    swapFrames(3);  // 300 ms: loud
    EXPECT_NEAR(static_cast<int>(g_levelLeft), 20000 / 256, 4);
    EXPECT_NEAR(static_cast<int>(g_levelRight), 10000 / 256, 4);
    swapFrames(5);  // 800 ms: silent
    EXPECT_LE(g_levelLeft, 1u);
    swapFrames(4);  // 1200 ms: the song started again 200 ms ago
    EXPECT_FLOAT_EQ(g_demoTime, 2.0f);
    EXPECT_NEAR(static_cast<int>(g_levelLeft), 20000 / 256, 4);
}

TEST_F(FixedStep, ASoundtrackThatOpensNeitherWayIsRefused) {
    writeBytes(dir_ + "/junk.mp3", std::vector<uint8_t>(4000, 0x11));
    std::string error;
    EXPECT_FALSE(startFixedStepClock(30, dir_ + "/junk.mp3", &error));
    EXPECT_NE(error.find("junk.mp3"), std::string::npos);
}

}  // namespace
