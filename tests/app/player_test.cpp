// The viewer's controls driven through the keys, with parts that keep to the
// schedule on a clock the test sets: a pause stops the clock and the draw
// steps after the frame being drawn, a jump lands exactly where a show started
// at that part lands, back goes one part further within the first 2 s, and a
// capture takes none of it.
#include "app/player.h"
#include "app/sequencer.h"
#include "app/shell.h"
#include "app/show_start.h"
#include "audio/clock.h"
#include "audio/music.h"
#include "parts/part_frame.h"
#include "parts/part_schedule.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>
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

constexpr int SPACE = ' ';

class Player : public ::testing::Test {
protected:
    void SetUp() override {
        g_partSteps = PARTS;
        g_endPath = recordEnd;
        g_partCounter = 0;
        g_millisecondClock = testClock;
        g_now = 50000;
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
        g_millisecondClock = monotonicMillis;
        g_playerPlatform = PlayerPlatform{};
        g_playerEnabled = true;
        g_endRequested = 0;
    }

    // The show started at `part` and its first frame drawn, at the test clock's now.
    static void startAt(int32_t part) {
        g_partCounter = 0;
        startShowAt(part, g_playerFixedStepFps);
        onFrame();
    }

    // One pass of the main loop; returns what it ran.
    static Events frame() {
        g_events.clear();
        onFrame();
        return g_events;
    }

    static void key(int special) { onSpecialKey(special, 0, 0); }
};

TEST_F(Player, APauseStopsTheClockAndTheDrawStepsAfterTheFrameBeingDrawn) {
    startAt(1);
    g_now += 2000;
    onKey(SPACE, 0, 0);
    EXPECT_TRUE(playerPaused());
    EXPECT_EQ(frame(), (Events{"draw 1 at 20.000 held"})) << "the frame being drawn is kept on view";
    EXPECT_TRUE(musicPaused());

    g_now += 5000;
    EXPECT_EQ(frame(), Events{});
    EXPECT_EQ(frame(), Events{});
    updateMusicClock();
    EXPECT_FLOAT_EQ(g_demoTime, 20.0f) << "the clock stands";

    onKey(SPACE, 0, 0);
    EXPECT_FALSE(musicPaused());
    g_now += 300;
    EXPECT_EQ(frame(), (Events{"draw 1 at 23.000"})) << "only the time played counts";
}

TEST_F(Player, SpaceTwiceBeforeTheNextFrameIsNoPause) {
    startAt(2);
    onKey(SPACE, 0, 0);
    onKey(SPACE, 0, 0);
    g_now += 100;
    EXPECT_EQ(frame(), (Events{"draw 2 at 211.00"}));
    EXPECT_FALSE(musicPaused());
}

TEST_F(Player, AJumpLandsWhereAShowStartedAtThatPartLands) {
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
}

TEST_F(Player, BackRestartsThePartOrGoesToTheOneBeforeWithinTwoSeconds) {
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
}

TEST_F(Player, ASeekLandsTheLiveClockOnTheMomentWithinTheShow) {
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

TEST_F(Player, TheRulesForAnyPartAndTime) {
    EXPECT_EQ(partBackTarget(7, 770.0f), 6);
    EXPECT_EQ(partBackTarget(7, 789.9f), 6);
    EXPECT_EQ(partBackTarget(7, 790.0f), 7);
    EXPECT_EQ(partBackTarget(1, 5.0f), 1);
    // A soundtrack shorter than the show started again: the part has played a while.
    EXPECT_EQ(partBackTarget(7, 12.0f), 7);
    EXPECT_EQ(nextPartTarget(12), 13);
    EXPECT_EQ(nextPartTarget(13), 0);
    EXPECT_FLOAT_EQ(playerGain(100, false), 1.0f);
    EXPECT_FLOAT_EQ(playerGain(50, false), 0.25f);
    EXPECT_FLOAT_EQ(playerGain(100, true), 0.0f);
    EXPECT_FLOAT_EQ(playerGain(130, false), 1.0f);
}

TEST_F(Player, RightOnTheLastPartGoesNowhere) {
    startAt(13);
    key(SPECIAL_KEY_RIGHT);
    g_now += 40;
    EXPECT_EQ(frame(), (Events{"draw 13 at 1925.4"}));
}

TEST_F(Player, AJumpWhilePausedDrawsThePartsFirstFrameAndStaysPaused) {
    startAt(8);
    onKey(SPACE, 0, 0);
    frame();
    g_now += 3000;
    key(SPECIAL_KEY_RIGHT);
    EXPECT_EQ(frame().back(), "draw 9 at 1127.0 held");
    EXPECT_TRUE(playerPaused());
    EXPECT_TRUE(musicPaused());
    g_now += 3000;
    EXPECT_EQ(frame(), Events{});

    onKey(SPACE, 0, 0);
    g_now += 500;
    EXPECT_EQ(frame(), (Events{"draw 9 at 1132.0"})) << "the clock goes on from the part's start";
}

TEST_F(Player, VolumeStepsStayWithinRangeAndMuteKeepsTheVolume) {
    startAt(1);
    onKey('+', 0, 0);
    EXPECT_EQ(playerVolume(), 100);
    onKey('-', 0, 0);
    onKey('-', 0, 0);
    onKey('-', 0, 0);
    EXPECT_EQ(playerVolume(), 70);
    onKey('m', 0, 0);
    EXPECT_TRUE(playerMuted());
    onKey('=', 0, 0);
    EXPECT_EQ(playerVolume(), 80);
    EXPECT_TRUE(playerMuted());
    onKey('m', 0, 0);
    playerSetVolume(100);
    EXPECT_FALSE(playerMuted());
    EXPECT_EQ(playerVolume(), 100);
}

int g_fullscreenToggles = 0;
void countFullscreenToggle() { ++g_fullscreenToggles; }

TEST_F(Player, ACaptureTakesNoneOfTheKeysButEscape) {
    g_playerEnabled = false;
    g_fullscreenToggles = 0;
    g_playerPlatform.toggleFullscreen = countFullscreenToggle;
    startAt(3);
    for (const int k : {' ', 'm', '-', 'f'}) {
        onKey(static_cast<unsigned char>(k), 0, 0);
    }
    key(SPECIAL_KEY_RIGHT);
    key(SPECIAL_KEY_HOME);
    g_now += 100;
    EXPECT_EQ(frame(), (Events{"draw 3 at 336.00"}));
    EXPECT_FALSE(playerPaused());
    EXPECT_FALSE(playerMuted());
    EXPECT_EQ(playerVolume(), 100);
    EXPECT_EQ(g_fullscreenToggles, 0);
    onKey(27, 0, 0);
    EXPECT_EQ(frame(), (Events{"end"}));
}

TEST_F(Player, EscapeWhilePausedEndsTheShow) {
    startAt(2);
    onKey(SPACE, 0, 0);
    frame();
    onKey(27, 0, 0);
    EXPECT_EQ(frame(), (Events{"end"}));
    key(SPECIAL_KEY_RIGHT);
    g_partCounter = 3;  // as if playing again: still paused, and no jump was taken
    EXPECT_EQ(frame(), Events{});
    EXPECT_EQ(playerPart(), 2);
}

TEST(FrameRateWhilePaused, CountsOnlyTheTimePlayed) {
    using namespace std::chrono_literals;
    startFrameCounter();
    std::this_thread::sleep_for(100ms);
    g_frameCount = 10;
    pauseFrameCounter();
    std::this_thread::sleep_for(400ms);
    const double atThePause = framesPerSecond();
    resumeFrameCounter();
    // 10 frames in 0.1 s played: about 100 frames/s; the 0.4 s paused would make it 20.
    EXPECT_GT(atThePause, 50.0);
    EXPECT_GT(framesPerSecond(), 50.0);
    g_frameCount = 0;
}

}  // namespace
