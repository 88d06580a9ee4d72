// The sequencer and the viewer's controls, driven with parts that keep to the
// schedule on a clock the test sets and write down what they do: set-ups run
// once and in order, a part change draws two frames in one call, the end state
// runs nothing but the end path; a pause stops the clock and the draw steps
// after the frame being drawn, a jump lands exactly where a show started at
// that part lands, back goes one part further within the first 2 s, a seek
// lands the clock on the moment, and a capture takes none of it. The frame
// rate counts only the time played.
#include "app/player.h"
#include "app/sequencer.h"
#include "app/shell.h"
#include "app/show_start.h"
#include "audio/clock.h"
#include "audio/music.h"
#include "parts/part_frame.h"
#include "parts/part_schedule.h"

#include <GL/freeglut.h>
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace {

using Events = std::vector<std::string>;
Events g_events;
uint32_t g_now = 0;
uint32_t testClock() { return g_now; }

template <int K>
void setup() {
    g_events.push_back("setup " + std::to_string(K));
}

// Reads the clock, says what it drew (and whether the platform is to keep
// the picture), and ends after its end time.
template <int K>
void draw() {
    if (K == 1 && g_partCounter == 0) {
        setup<1>();
        g_partCounter += 1;
    }
    updateMusicClock();
    g_events.push_back("draw " + std::to_string(K) + " at " + std::to_string(g_demoTime).substr(0, 6) +
                       (g_framesUnseen ? " unseen" : "") + (playerHoldsNextPicture() ? " held" : ""));
    if (g_demoTime > partEndTime(K)) {
        g_partCounter += 1;
    }
}

const PartSteps PARTS[PART_COUNT] = {
    {setup<1>, draw<1>},   {setup<2>, draw<2>},   {setup<3>, draw<3>},   {setup<4>, draw<4>},   {setup<5>, draw<5>},
    {setup<6>, draw<6>},   {setup<7>, draw<7>},   {setup<8>, draw<8>},   {setup<9>, draw<9>},   {setup<10>, draw<10>},
    {setup<11>, draw<11>}, {setup<12>, draw<12>}, {setup<13>, draw<13>},
};

void recordEnd() { g_events.push_back("end"); }
void recordStartState() { g_events.push_back("start state"); }
void recordStartOver() {
    g_events.push_back("start over");
    startShowAgain();
}

constexpr int SPACE = ' ';
constexpr int ESCAPE = 27;

class Show : public ::testing::Test {
protected:
    void SetUp() override {
        g_partSteps = PARTS;
        g_endPath = recordEnd;
        g_partCounter = 0;
        g_millisecondClock = testClock;
        g_now = 50000;
        g_musicStartTick = g_now;
        g_playerPlatform = PlayerPlatform{};
        g_playerPlatform.returnToStartState = recordStartState;
        g_playerFixedStepFps = 0;
        g_events.clear();
    }
    void TearDown() override {
        if (playerPaused()) {
            onKey(SPACE, 0, 0);
        }
        g_partSteps = nullptr;
        g_partCounter = 0;
        g_endPath = runEndPath;
        g_showStartsOver = nullptr;
        g_millisecondClock = monotonicMillis;
        g_playerPlatform = PlayerPlatform{};
        g_playerEnabled = true;
        g_endRequested = false;
    }

    // The show started at `part` and its first frame drawn, at the test clock's now.
    static void startAt(int32_t part) {
        g_partCounter = 0;
        startShowAt(part, g_playerFixedStepFps);
        onFrame();
    }
    // The clock at demo time `tenths` of the show started at g_musicStartTick.
    static void at(double tenths) { g_now = g_musicStartTick + static_cast<uint32_t>(std::lround(tenths * 100.0)); }

    // One pass of the main loop; returns what it ran.
    static Events frame() {
        g_events.clear();
        onFrame();
        return g_events;
    }

    static void key(int special) { onSpecialKey(special, 0, 0); }
};

TEST_F(Show, EveryPartIsSetUpOnceInOrderAndAPartChangeDrawsTwoFramesInOneCall) {
    EXPECT_EQ(frame(), (Events{"setup 1", "draw 1 at 0.0000"}));
    EXPECT_EQ(g_partCounter, 1);
    for (int k = 1; k <= PART_COUNT; ++k) {
        at(partEndTime(k));
        EXPECT_EQ(frame().size(), 1u) << "part " << k << " goes on at its end time";
        at(partEndTime(k) + 0.1);
        const std::string drawn = "draw " + std::to_string(k) + " at " + std::to_string(partEndTime(k) + 0.1f).substr(0, 6);
        if (k < PART_COUNT) {
            const std::string next = std::to_string(k + 1);
            EXPECT_EQ(frame(), (Events{drawn, "setup " + next, "draw " + next + drawn.substr(drawn.find(" at"))}));
            EXPECT_EQ(g_partCounter, 2 * (k + 1) - 1);
        } else {
            EXPECT_EQ(frame(), (Events{drawn, "end"})) << "the last part's final frame, then the end path";
        }
    }
    // A part whose time is already over still draws one frame.
    g_partCounter = 0;
    g_musicStartTick = g_now;
    frame();
    at(400.0);
    EXPECT_EQ(frame(), (Events{"draw 1 at 400.00", "setup 2", "draw 2 at 400.00", "setup 3", "draw 3 at 400.00",
                               "setup 4", "draw 4 at 400.00"}));
}

TEST_F(Show, EscapeAMousePressAClosedWindowOrASignalRunOnlyTheEndPathAtTheNextFrame) {
    onKey(ESCAPE, 0, 0);
    EXPECT_EQ(frame(), (Events{"end"})) << "before the first frame";
    startAt(4);
    onKey(ESCAPE, 0, 0);
    EXPECT_EQ(g_partCounter, PART_COUNTER_END);
    EXPECT_EQ(frame(), (Events{"end"}));
    g_partCounter = 7;
    onMouse(GLUT_RIGHT_BUTTON, GLUT_UP, 10, 10);
    EXPECT_EQ(g_partCounter, 7) << "a release does nothing";
    onMouse(GLUT_MIDDLE_BUTTON, GLUT_DOWN, 10, 10);
    EXPECT_EQ(frame(), (Events{"end"}));
    g_partCounter = 5;
    onWindowClose();
    EXPECT_EQ(frame(), (Events{"end"}));
    g_partCounter = 5;
    g_endRequested = true;
    EXPECT_EQ(frame(), (Events{"end"}));
}

TEST_F(Show, ALoopingShowStartsOverOnlyWhenItsLastPartEnds) {
    g_showStartsOver = recordStartOver;
    startAt(13);
    at(2269.1);
    EXPECT_EQ(frame(), (Events{"draw 13 at 2269.1", "start over"}));
    EXPECT_EQ(frame(), (Events{"setup 1", "draw 1 at 0.0000"}));
    onKey(ESCAPE, 0, 0);
    EXPECT_EQ(frame(), (Events{"end"})) << "Escape ends it like any show";
}

TEST_F(Show, StartingAtAPartRebuildsEveryEarlierPartFromItsLastFrameUnseen) {
    // Four frames a second: frame j shows 2.5 j. The last frame of part 1 is
    // the first above 210 (frame 85), of part 2 the first above 335 (135).
    startShowAt(3, 4);
    EXPECT_EQ(g_events, (Events{"setup 1", "draw 1 at 212.50 unseen", "setup 2", "draw 2 at 337.50 unseen"}));
    EXPECT_EQ(g_partCounter, 4) << "part 3's set-up comes next";
    EXPECT_FALSE(g_framesUnseen);
    // Part 3's first frame is the one after part 2's last: frame 136, 340.0.
    g_now = 34000;
    g_musicStartTick = 0;
    EXPECT_EQ(frame(), (Events{"setup 3", "draw 3 at 340.00"}));
    EXPECT_EQ(firstTickOfPart(3, 4), 136);
    EXPECT_EQ(firstTickOfPart(13, 30), 5777) << "1925.33 is the first frame above 1925 at 30 frames/s";

    // On the wall clock the earlier parts' last frames come a millisecond past
    // their end times, and the clock starts at the end of the part before.
    g_events.clear();
    g_partCounter = 0;
    startShowAt(2, 0);
    EXPECT_EQ(g_events, (Events{"setup 1", "draw 1 at 210.00 unseen"}));
    updateMusicClock();
    EXPECT_FLOAT_EQ(g_demoTime, 210.0f);
}

TEST_F(Show, APauseStopsTheClockAndTheDrawStepsAfterTheFrameBeingDrawn) {
    startAt(1);
    g_now += 2000;
    onKey(SPACE, 0, 0);
    onKey(SPACE, 0, 0);
    EXPECT_FALSE(playerPaused()) << "space twice before the next frame is no pause";
    onKey(SPACE, 0, 0);
    EXPECT_TRUE(playerPaused());
    EXPECT_EQ(frame(), (Events{"draw 1 at 20.000 held"})) << "the frame being drawn is kept on view";
    EXPECT_TRUE(musicPaused());
    g_now += 5000;
    EXPECT_EQ(frame(), Events{});
    updateMusicClock();
    EXPECT_FLOAT_EQ(g_demoTime, 20.0f) << "the clock stands";
    onKey(SPACE, 0, 0);
    EXPECT_FALSE(musicPaused());
    g_now += 300;
    EXPECT_EQ(frame(), (Events{"draw 1 at 23.000"})) << "only the time played counts";

    // A jump while paused draws the part's first frame and stays paused.
    onKey(SPACE, 0, 0);
    frame();
    g_now += 3000;
    key(SPECIAL_KEY_RIGHT);
    EXPECT_EQ(frame().back(), "draw 2 at 210.00 held");
    EXPECT_TRUE(playerPaused());
    EXPECT_TRUE(musicPaused());
    EXPECT_EQ(frame(), Events{});
    onKey(SPACE, 0, 0);
    g_now += 500;
    EXPECT_EQ(frame(), (Events{"draw 2 at 215.00"})) << "the clock goes on from the part's start";

    // Escape while paused ends the show; no jump is taken after it.
    onKey(SPACE, 0, 0);
    frame();
    onKey(ESCAPE, 0, 0);
    EXPECT_EQ(frame(), (Events{"end"}));
    key(SPECIAL_KEY_RIGHT);
    g_partCounter = 3;  // as if playing again: still paused, and no jump was taken
    EXPECT_EQ(frame(), Events{});
    EXPECT_EQ(playerPart(), 2);
}

TEST_F(Show, AJumpLandsWhereAShowStartedAtThatPartLands) {
    for (const int32_t target : {4, 13}) {
        g_events.clear();
        startAt(target);
        const Events started = g_events;

        startAt(3);
        g_now += 1500;
        frame();
        if (target == 4) {
            key(SPECIAL_KEY_RIGHT);
        } else {
            playerJumpTo(target);
        }
        const Events jumped = frame();
        ASSERT_FALSE(jumped.empty());
        EXPECT_EQ(jumped.front(), "start state") << "the GL state goes back to its start first";
        EXPECT_EQ(Events(jumped.begin() + 1, jumped.end()), started) << "to part " << target;
        EXPECT_EQ(playerPart(), target);
    }
    key(SPECIAL_KEY_RIGHT);
    g_now += 40;
    EXPECT_EQ(frame().size(), 1u) << "Right on the last part goes nowhere";
}

TEST_F(Show, BackRestartsThePartOrGoesToTheOneBeforeWithinTwoSeconds) {
    startAt(5);
    g_now += 1900;
    frame();
    key(SPECIAL_KEY_LEFT);
    EXPECT_EQ(playerPart(), 4) << "1.9 s into part 5";
    EXPECT_EQ(frame().back(), "draw 4 at 395.00");
    g_now += 2100;
    frame();
    key(SPECIAL_KEY_PAGE_UP);
    EXPECT_EQ(playerPart(), 4) << "2.1 s into part 4";
    EXPECT_EQ(frame().back(), "draw 4 at 395.00");

    // Presses before the next frame go on from the part already asked for.
    key(SPECIAL_KEY_PAGE_DOWN);
    key(SPECIAL_KEY_RIGHT);
    key(SPECIAL_KEY_RIGHT);
    key(SPECIAL_KEY_LEFT);
    EXPECT_EQ(playerPart(), 6);
    EXPECT_EQ(frame().back(), "draw 6 at 658.00");

    key(SPECIAL_KEY_HOME);
    EXPECT_EQ(frame(), (Events{"start state", "setup 1", "draw 1 at 0.0000"}));
    key(SPECIAL_KEY_LEFT);
    EXPECT_EQ(playerPart(), 1) << "nothing comes before part 1";
    frame();
    // A soundtrack shorter than the show started again: the part has played a while.
    EXPECT_EQ(partBackTarget(7, 12.0f), 7);
    EXPECT_EQ(partBackTarget(7, 789.9f), 6);
    EXPECT_EQ(partBackTarget(7, 790.0f), 7);
}

TEST_F(Show, ASeekLandsTheLiveClockOnTheMomentWithinTheShow) {
    startAt(3);
    g_now += 1000;
    frame();
    playerSeekTo(100.025);  // between two frames of the grid
    EXPECT_EQ(playerPart(), 8);
    const Events sought = frame();
    EXPECT_EQ(sought.front(), "start state");
    EXPECT_EQ(Events(sought.end() - 4, sought.end()),
              (Events{"setup 8", "draw 8 at 1000.0 unseen", "draw 8 at 1000.1 unseen", "draw 8 at 1000.2"}))
        << "the frames before it on the grid of 60 a second, then the moment itself";
    onKey('.', 0, 0);  // no step while playing
    g_now += 500;
    EXPECT_EQ(frame(), (Events{"draw 8 at 1005.2"})) << "the clock goes on from the moment";
    key(SPECIAL_KEY_LEFT + SPECIAL_KEY_SHIFT);
    EXPECT_EQ(frame().back(), "draw 7 at 955.25");
    key(SPECIAL_KEY_DOWN);
    key(SPECIAL_KEY_DOWN);
    key(SPECIAL_KEY_DOWN);
    EXPECT_EQ(frame().back(), "draw 1 at 55.250") << "presses before the next frame add up";
    playerSeekBy(-100.0);
    EXPECT_EQ(frame(), (Events{"start state", "setup 1", "draw 1 at 0.0000"}));
    playerSeekTo(1000.0);
    EXPECT_EQ(frame().back(), "draw 13 at 2269.0") << "the last frame before the show's end";
}

TEST_F(Show, VolumeStepsStayWithinRangeMuteKeepsTheVolumeAndACaptureTakesNoKeyButEscape) {
    startAt(1);
    onKey('+', 0, 0);
    EXPECT_EQ(playerVolume(), 100);
    for (int i = 0; i < 3; ++i) {
        onKey('-', 0, 0);
    }
    EXPECT_EQ(playerVolume(), 70);
    onKey('m', 0, 0);
    EXPECT_TRUE(playerMuted());
    EXPECT_FLOAT_EQ(playerGain(playerVolume(), playerMuted()), 0.0f);
    onKey('=', 0, 0);
    EXPECT_EQ(playerVolume(), 80);
    onKey('m', 0, 0);
    EXPECT_FLOAT_EQ(playerGain(playerVolume(), playerMuted()), 0.64f) << "the volume squared, so steps sound even";
    playerSetVolume(130);
    EXPECT_EQ(playerVolume(), 100);

    static int toggles = 0;
    g_playerEnabled = false;
    g_playerPlatform.toggleFullscreen = [] { ++toggles; };
    startAt(3);
    for (const int k : {' ', 'm', '-', 'f', '.'}) {
        onKey(static_cast<unsigned char>(k), 0, 0);
    }
    key(SPECIAL_KEY_RIGHT);
    key(SPECIAL_KEY_UP);
    g_now += 100;
    EXPECT_EQ(frame(), (Events{"draw 3 at 336.00"}));
    EXPECT_FALSE(playerPaused());
    EXPECT_FALSE(playerMuted());
    EXPECT_EQ(playerVolume(), 100);
    EXPECT_EQ(toggles, 0);
    onKey(ESCAPE, 0, 0);
    EXPECT_EQ(frame(), (Events{"end"}));
}

TEST_F(Show, RPrintsTheDemoTimeAndOtherKeysDoNothing) {
    at(123.45);
    updateMusicClock();
    g_partCounter = 3;
    ::testing::internal::CaptureStdout();
    onKey('r', 0, 0);
    onKey('R', 0, 0);
    onKey('q', 0, 0);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "123.449997\n");
    EXPECT_EQ(g_partCounter, 3);
}

int64_t g_wall = 0;

TEST(FrameRate, IsFramesTimesAThousandOverTheMillisecondsPlayedForMonths) {
    EXPECT_DOUBLE_EQ(framesPerSecondAt(600, 1000, 11000), 60.0);
    EXPECT_DOUBLE_EQ(framesPerSecondAt(1, 0, 3), 1000.0 / 3.0);
    // No frame counted, or no time passed: 0, printed as 0.00.
    EXPECT_DOUBLE_EQ(framesPerSecondAt(0, 1000, 9000), 0.0);
    EXPECT_DOUBLE_EQ(framesPerSecondAt(10, 1000, 1000), 0.0);

    const auto wallClock = g_wallMillis;
    g_wallMillis = [] { return g_wall; };
    g_wall = 123'456;
    startFrameCounter();
    g_wall += 100;
    g_frameCount = 10;
    pauseFrameCounter();
    g_wall += 400;
    EXPECT_DOUBLE_EQ(framesPerSecond(), 100.0) << "paused: the time played so far";
    resumeFrameCounter();
    g_wall += 100;
    g_frameCount = 20;
    EXPECT_DOUBLE_EQ(framesPerSecond(), 100.0) << "the 0.4 s paused left out";
    // A show looping at 60 frames/s for 579 days: 3e9 frames, far past 32-bit
    // frames times a thousand and 32-bit milliseconds.
    startFrameCounter();
    g_frameCount = 3'000'000'000;
    g_wall += g_frameCount * 1000 / 60;
    EXPECT_NEAR(framesPerSecond(), 60.0, 0.001);
    g_frameCount = 0;
    g_wallMillis = wallClock;
}

TEST(EndPath, PrintsTheFrameRateAndExitsWithZero) {
    EXPECT_EXIT(
        {
            g_fullscreen = 0;
            g_frameCount = 0;
            runEndPath();
        },
        ::testing::ExitedWithCode(0), "");
}

}  // namespace
