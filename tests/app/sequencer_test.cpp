// The part sequencer driven with recording parts: set-ups run once and in
// order, a part change draws two frames in one call, and the end state runs
// nothing but the end path.
#include "app/sequencer.h"
#include "app/shell.h"
#include "app/show_start.h"
#include "audio/clock.h"
#include "audio/music.h"
#include "parts/part_frame.h"
#include "parts/part_schedule.h"

#include <GL/freeglut.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

std::vector<std::string> g_events;
bool g_partEnds[PART_COUNT + 1] = {};  // draw step k advances the counter when set

template <int K>
void recordSetup() {
    g_events.push_back("setup " + std::to_string(K));
}

template <int K>
void recordDraw() {
    if (K == 1 && g_partCounter == 0) {
        recordSetup<1>();
        g_partCounter += 1;
    }
    g_events.push_back("draw " + std::to_string(K));
    if (g_partEnds[K]) {
        g_partCounter += 1;
    }
}

const PartSteps RECORDING_PARTS[PART_COUNT] = {
    {recordSetup<1>, recordDraw<1>},   {recordSetup<2>, recordDraw<2>},   {recordSetup<3>, recordDraw<3>},
    {recordSetup<4>, recordDraw<4>},   {recordSetup<5>, recordDraw<5>},   {recordSetup<6>, recordDraw<6>},
    {recordSetup<7>, recordDraw<7>},   {recordSetup<8>, recordDraw<8>},   {recordSetup<9>, recordDraw<9>},
    {recordSetup<10>, recordDraw<10>}, {recordSetup<11>, recordDraw<11>}, {recordSetup<12>, recordDraw<12>},
    {recordSetup<13>, recordDraw<13>},
};

void recordEnd() { g_events.push_back("end"); }
void recordStartOver() {
    g_events.push_back("start over");
    g_partCounter = 0;
}

class Sequencer : public ::testing::Test {
protected:
    void SetUp() override {
        g_partSteps = RECORDING_PARTS;
        g_endPath = recordEnd;
        g_partCounter = 0;
        g_events.clear();
        std::fill(std::begin(g_partEnds), std::end(g_partEnds), false);
    }
    void TearDown() override {
        g_partCounter = 0;
        g_endPath = runEndPath;
        g_showStartsOver = nullptr;
        g_endRequested = false;
    }

    // One call of onFrame; returns what it ran.
    static std::vector<std::string> frame() {
        g_events.clear();
        onFrame();
        return g_events;
    }
    using Events = std::vector<std::string>;
};

TEST_F(Sequencer, FirstCallSetsUpPartOneAndDrawsItsFirstFrame) {
    EXPECT_EQ(frame(), (Events{"setup 1", "draw 1"}));
    EXPECT_EQ(g_partCounter, 1);
    EXPECT_EQ(frame(), (Events{"draw 1"}));
}

TEST_F(Sequencer, EveryPartIsSetUpOnceInOrderAndAPartChangeDrawsTwoFrames) {
    frame();
    std::vector<std::string> setups;
    for (int k = 1; k <= PART_COUNT; ++k) {
        EXPECT_EQ(frame(), (Events{"draw " + std::to_string(k)}));
        g_partEnds[k] = true;
        const Events change = frame();
        g_partEnds[k] = false;
        if (k < PART_COUNT) {
            EXPECT_EQ(change, (Events{"draw " + std::to_string(k), "setup " + std::to_string(k + 1),
                                      "draw " + std::to_string(k + 1)}));
            EXPECT_EQ(g_partCounter, 2 * (k + 1) - 1);
        } else {
            // The last part's final frame is followed by the end path in the same call.
            EXPECT_EQ(change, (Events{"draw 13", "end"}));
        }
    }
}

TEST_F(Sequencer, APartWhoseTimeIsAlreadyOverStillDrawsOneFrame) {
    frame();
    g_partEnds[1] = true;
    g_partEnds[2] = true;
    EXPECT_EQ(frame(), (Events{"draw 1", "setup 2", "draw 2", "setup 3", "draw 3"}));
}

TEST_F(Sequencer, EscapeAndMousePressRunOnlyTheEndPathAtTheNextFrame) {
    frame();
    frame();
    onKey(27, 0, 0);
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
}

TEST_F(Sequencer, EscapeBeforeTheFirstFrameEndsWithoutAnyPart) {
    onKey(27, 0, 0);
    EXPECT_EQ(frame(), (Events{"end"}));
}

TEST_F(Sequencer, ALoopingShowStartsOverOnlyWhenItsLastPartEnds) {
    g_showStartsOver = recordStartOver;
    g_partCounter = 2 * PART_COUNT - 1;
    g_partEnds[PART_COUNT] = true;
    EXPECT_EQ(frame(), (Events{"draw 13", "start over"}));
    EXPECT_EQ(frame(), (Events{"setup 1", "draw 1"}));
    // Escape, and an ending signal, end it like any show.
    onKey(27, 0, 0);
    EXPECT_EQ(frame(), (Events{"end"}));
    g_partCounter = 5;
    g_endRequested = true;
    EXPECT_EQ(frame(), (Events{"end"}));
}

uint32_t g_fakeNow = 0;
uint32_t fakeClock() { return g_fakeNow; }

// A part that keeps to the schedule: it reads the clock and ends after its end time.
template <int K>
void scheduledDraw() {
    updateMusicClock();
    g_events.push_back("draw " + std::to_string(K) + " at " + std::to_string(g_demoTime).substr(0, 6) +
                       (g_framesUnseen ? " unseen" : ""));
    if (g_demoTime > partEndTime(K)) {
        g_partCounter += 1;
    }
}

const PartSteps SCHEDULED_PARTS_STEPS[PART_COUNT] = {
    {recordSetup<1>, scheduledDraw<1>},   {recordSetup<2>, scheduledDraw<2>},   {recordSetup<3>, scheduledDraw<3>},
    {recordSetup<4>, scheduledDraw<4>},   {recordSetup<5>, scheduledDraw<5>},   {recordSetup<6>, scheduledDraw<6>},
    {recordSetup<7>, scheduledDraw<7>},   {recordSetup<8>, scheduledDraw<8>},   {recordSetup<9>, scheduledDraw<9>},
    {recordSetup<10>, scheduledDraw<10>}, {recordSetup<11>, scheduledDraw<11>}, {recordSetup<12>, scheduledDraw<12>},
    {recordSetup<13>, scheduledDraw<13>},
};

TEST_F(Sequencer, StartingAtAPartRebuildsEveryEarlierPartFromItsLastFrameUnseen) {
    g_partSteps = SCHEDULED_PARTS_STEPS;
    g_millisecondClock = fakeClock;
    g_fakeNow = 100000;
    // Four frames a second: frame j shows 2.5 j. The last frame of part 1 is
    // the first above 210 (frame 85), of part 2 the first above 335 (135).
    startShowAt(3, 4);
    EXPECT_EQ(g_events, (Events{"setup 1", "draw 1 at 212.50 unseen", "setup 2", "draw 2 at 337.50 unseen"}));
    EXPECT_EQ(g_partCounter, 4) << "part 3's set-up comes next";
    EXPECT_FALSE(g_framesUnseen);
    // Part 3's first frame is the one after part 2's last: frame 136, 340.0.
    g_fakeNow = 34000;
    g_events.clear();
    EXPECT_EQ(frame(), (Events{"setup 3", "draw 3 at 340.00"}));
    EXPECT_EQ(firstTickOfPart(3, 4), 136);
    EXPECT_EQ(firstTickOfPart(13, 30), 5777) << "1925.33 is the first frame above 1925 at 30 frames/s";
    EXPECT_EQ(firstTickOfPart(1, 30), 0);

    // On the wall clock the earlier parts' last frames come a millisecond past
    // their end times, and the clock starts at the end of the part before.
    g_events.clear();
    g_partCounter = 0;
    startShowAt(2, 0);
    EXPECT_EQ(g_events, (Events{"setup 1", "draw 1 at 210.00 unseen"}));
    updateMusicClock();
    EXPECT_FLOAT_EQ(g_demoTime, 210.0f);
    g_millisecondClock = monotonicMillis;
}

TEST(Keys, RPrintsTheDemoTimeAndOtherKeysDoNothing) {
    g_millisecondClock = fakeClock;
    g_fakeNow = 5000;
    startMusic();
    g_fakeNow = 5000 + 12345;
    updateMusicClock();
    g_millisecondClock = monotonicMillis;
    g_partCounter = 3;

    ::testing::internal::CaptureStdout();
    onKey('r', 0, 0);
    onKey('R', 0, 0);
    onKey('q', 0, 0);
    EXPECT_EQ(::testing::internal::GetCapturedStdout(), "123.449997\n");
    EXPECT_EQ(g_partCounter, 3);
    g_partCounter = 0;
}

TEST(FrameRate, IsFramesTimesAThousandOverElapsedMilliseconds) {
    EXPECT_DOUBLE_EQ(framesPerSecondAt(600, 1000, 11000), 60.0);
    EXPECT_DOUBLE_EQ(framesPerSecondAt(1, 0, 3), 1000.0 / 3.0);
    // A show looping for weeks: 3e9 frames at 60 frames/s are 579 days, far
    // past 32-bit frames times a thousand and 32-bit milliseconds.
    const int64_t frames = 3'000'000'000;
    const int64_t start = 123'456;
    EXPECT_DOUBLE_EQ(framesPerSecondAt(frames, start, start + frames * 1000 / 60), 60.0);
    // No frame counted, or no time passed: 0, printed as 0.00.
    EXPECT_DOUBLE_EQ(framesPerSecondAt(0, 1000, 1000), 0.0);
    EXPECT_DOUBLE_EQ(framesPerSecondAt(0, 1000, 9000), 0.0);
    EXPECT_DOUBLE_EQ(framesPerSecondAt(10, 1000, 1000), 0.0);
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

TEST(FrameRate, HoldsForAShowThatRanForMonths) {
    // The counter as a show looping at 60 frames/s leaves it after 579 days.
    const int64_t frames = 3'000'000'000;
    startFrameCounter();
    g_frameCount = frames - 1;
    g_fpsStartClock -= frames * 1000 / 60;
    g_frameCount += 1;  // as a draw step counts, past 2^31
    EXPECT_NEAR(framesPerSecond(), 60.0, 0.001);
    g_frameCount = 0;
}

}  // namespace
