// The show in this process on the fixed-step clock with its own content,
// looping: a first pass played through, then a second with the viewer's keys
// pressed in it (back into part 1 from part 2's first seconds, a pause, a jump
// from part 3 to part 4) and seeks into every part from everywhere, played out
// to its end, and a third played through. Every frame after the first pass
// is, byte for byte, the frame the first pass drew at the same tick: a jump lands on the frames a show started
// at that part draws, a seek on the frame the show draws at that tick, and
// every part's state (part 1's reveals, part 12's room) is rebuilt as it was;
// and no pass loads anything again.
#include "app/desktop/options.h"
#include "app/desktop/player/desktop_player.h"
#include "app/desktop/player/show_loop.h"
#include "app/player.h"
#include "app/sequencer.h"
#include "app/shell.h"
#include "app/show_seek.h"
#include "app/show_start.h"
#include "audio/fixed_step_clock.h"
#include "parts/part_schedule.h"
#include "parts/part_state.h"
#include "tests/app/show_test_window.h"
#include "tests/resources/gl_test_window.h"
#include "tests/support/heap_memory.h"

#include <GL/freeglut.h>
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <vector>

namespace {

constexpr int FPS = 4;

struct Swapped {
    long tick;     // the fixed-step clock's frame: the whole show's frame number
    int32_t part;  // whose draw step drew it
    uint64_t hash;
};
std::vector<Swapped> g_swapped;

int g_pass = 0;
size_t g_heapBytes[3] = {};  // allocated and not freed at the end of each pass
void (*g_startOver)() = nullptr;  // the desktop's own

void passEnds() {
    g_heapBytes[g_pass] = heapInUseBytes();
    ++g_pass;
    g_startOver();
}

// Frames part `part` has swapped since the last frame of another part.
int framesIntoPart(int32_t part) {
    int frames = 0;
    for (auto at = g_swapped.rbegin(); at != g_swapped.rend() && at->part == part; ++at) {
        ++frames;
    }
    return frames;
}

// Runs the main loop until `done`, calling `between` after every pass of it.
void playUntil(const std::function<bool()>& done, const std::function<void()>& between = [] {}) {
    while (!done()) {
        onFrame();
        between();
    }
}

}  // namespace

// Linked with -Wl,--wrap=glutSwapBuffers: each frame is read back before it is shown.
extern "C" void __real_glutSwapBuffers();
extern "C" void __wrap_glutSwapBuffers() {
    g_swapped.push_back({fixedStepFrames(), (g_partCounter + 1) / 2, backBufferHash()});
    __real_glutSwapBuffers();
}

TEST(ShowPasses, EveryFrameAfterAKeyOrASeekIsTheFrameTheShowDrawsAtThatTick) {
    if (const std::string why = openShowInTestWindow(); !why.empty()) {
        GTEST_SKIP() << why;
    }
    std::string error;
    ASSERT_TRUE(startFixedStepClock(FPS, "harbour.mp3", &error)) << error;
    ShowOptions options;
    options.windowed = true;
    options.fps = FPS;
    installDesktopPlayer(options);
    loopTheShow();
    g_startOver = g_showStartsOver;
    g_showStartsOver = passEnds;
    startShowAt(1, FPS);
    onFrame();
    const World* firstScene = g_testWorld;

    playUntil([] { return g_pass == 1; });
    std::map<long, uint64_t> firstPass;
    for (const Swapped& frame : g_swapped) {
        firstPass[frame.tick] = frame.hash;
    }
    ASSERT_EQ(firstPass.size(), g_swapped.size()) << "one frame per tick";
    ASSERT_GT(firstPass.size(), 900u);

    g_swapped.clear();
    bool wentBack = false;
    bool paused = false;
    bool jumped = false;
    size_t afterBack = 0;
    size_t afterJump = 0;
    playUntil([] { return framesIntoPart(13) >= 80; }, [&] {
        if (!wentBack && framesIntoPart(2) == 3) {
            onSpecialKey(SPECIAL_KEY_LEFT, 0, 0);  // 0.75 s into part 2
            wentBack = true;
            afterBack = g_swapped.size();
        } else if (!paused && framesIntoPart(3) == 2) {
            onKey(' ', 0, 0);
            onFrame();  // draws the frame the pause keeps on view
            const size_t swapped = g_swapped.size();
            const long tick = fixedStepFrames();
            for (int i = 0; i < 30; ++i) {
                onFrame();
            }
            EXPECT_EQ(g_swapped.size(), swapped) << "no frame while paused";
            EXPECT_EQ(fixedStepFrames(), tick) << "the clock stands";
            onKey(' ', 0, 0);
            paused = true;
        } else if (!jumped && framesIntoPart(3) == 5) {
            onSpecialKey(SPECIAL_KEY_RIGHT, 0, 0);
            jumped = true;
            afterJump = g_swapped.size();
        }
    });
    ASSERT_TRUE(wentBack && paused && jumped);

    // Seeks, each asked for after two frames played at the last one's landing.
    const auto to = [](double seconds) { return [seconds] { playerSeekTo(seconds); }; };
    const auto special = [](int key) { return [key] { onSpecialKey(key, 0, 0); }; };
    const auto key = [](unsigned char key) { return [key] { onKey(key, 0, 0); }; };
    std::vector<std::pair<std::function<void()>, long>> seeks = {
        {to(10.0), 40},                                         // into part 1 from part 13
        {special(SPECIAL_KEY_RIGHT + SPECIAL_KEY_SHIFT), 62},  // on from the frame on view
        {special(SPECIAL_KEY_LEFT + SPECIAL_KEY_SHIFT), 44},   // back within part 1
        {special(SPECIAL_KEY_UP), 166},                         // into part 4
        {special(SPECIAL_KEY_DOWN), 48},                        // back into part 1 from part 4
        {to(static_cast<double>(firstTickOfPart(5, FPS)) / FPS), firstTickOfPart(5, FPS)},
        {to(static_cast<double>(lastTickOfPart(6, FPS)) / FPS), lastTickOfPart(6, FPS)},
    };
    for (const int32_t part : {13, 2, 12, 3, 11, 4, 10, 5, 9, 6, 8, 7}) {
        const double middle = (partStartTime(part) + partEndTime(part)) / 20.0;  // seconds
        seeks.emplace_back(to(middle), static_cast<long>(middle * FPS));
    }
    const long pausedAt = seeks.back().second + 3;  // the frame drawn while pausing, then steps
    for (const auto& [step, tick] : std::vector<std::pair<unsigned char, long>>{
             {' ', pausedAt}, {',', pausedAt - 1}, {'.', pausedAt}, {'.', pausedAt + 1}}) {
        seeks.emplace_back(key(step), tick);
    }
    seeks.emplace_back(to(5.0), 20);
    seeks.emplace_back(key(','), 19);
    seeks.emplace_back([] { onKey(' ', 0, 0); playerSeekTo(20.0); }, 80);
    for (const auto& [ask, tick] : seeks) {
        const size_t before = g_swapped.size();
        ask();
        for (int frame = 0; frame < 3; ++frame) {
            onFrame();
        }
        ASSERT_GT(g_swapped.size(), before);
        EXPECT_EQ(g_swapped[before].tick, tick) << "the frame after a seek, part " << g_swapped[before].part;
        EXPECT_EQ(g_swapped.size() - before == 1, playerPaused()) << "tick " << tick;
    }
    EXPECT_EQ(g_swapped[afterBack].tick, 0) << "back from part 2's first seconds is the show's start";
    EXPECT_EQ(g_swapped[afterJump].tick, firstTickOfPart(4, FPS)) << "part 4's first frame";
    EXPECT_EQ(g_swapped[afterJump].part, 4);

    // Played out to the end of the second pass, then a third pass played through.
    ASSERT_FALSE(playerPaused());
    playerSeekTo(225.0);
    playUntil([] { return g_pass == 3; });
    long compared = 0;
    for (const Swapped& frame : g_swapped) {
        const auto first = firstPass.find(frame.tick);
        ASSERT_NE(first, firstPass.end()) << "tick " << frame.tick;
        ASSERT_EQ(frame.hash, first->second) << "tick " << frame.tick << " of part " << frame.part;
        ++compared;
    }
    EXPECT_GT(compared, 1600);
    EXPECT_EQ(g_testWorld, firstScene) << "the scenes are not loaded again";
    // A pass that loaded its pictures again would hold 11 MB more. Seeks and
    // jumps grow what the GL driver keeps by a few megabytes until it settles,
    // so the passes compared are the two after them.
    EXPECT_LE(g_heapBytes[2], g_heapBytes[1] + (2u << 20))
        << g_heapBytes[1] << " bytes in use after the second pass, " << g_heapBytes[2] << " after the third";
}
