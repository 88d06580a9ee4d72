// A looping show seen from inside the process, on the fixed-step clock with
// the show's own content: every frame of the second pass is the frame the
// first pass drew, and the second pass takes no more memory than the first.
#include "app/desktop/player/show_loop.h"
#include "app/sequencer.h"
#include "app/shell.h"
#include "app/show_start.h"
#include "audio/fixed_step_clock.h"
#include "parts/part_state.h"
#include "tests/app/show_test_window.h"
#include "tests/resources/gl_test_window.h"
#include "tests/support/heap_memory.h"

#include <GL/freeglut.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

namespace {

constexpr int PASSES = 2;
int g_pass = 0;
std::vector<uint64_t> g_frames[PASSES + 1];  // a hash of every frame, by pass
size_t g_heapBytes[PASSES + 1] = {};     // allocated and not freed, after each pass
void (*g_startOver)() = nullptr;              // the desktop's own

void passEnds() {
    g_heapBytes[g_pass] = heapInUseBytes();
    ++g_pass;
    g_startOver();
}

}  // namespace

// Linked with -Wl,--wrap=glutSwapBuffers: each frame is read back before it is shown.
extern "C" void __real_glutSwapBuffers();
extern "C" void __wrap_glutSwapBuffers() {
    g_frames[g_pass].push_back(backBufferHash());
    __real_glutSwapBuffers();
}

TEST(ShowLoop, TheSecondPassDrawsTheFirstPassesFramesWithoutGrowing) {
    if (const std::string why = openShowInTestWindow(); !why.empty()) {
        GTEST_SKIP() << why;
    }
    std::string error;
    ASSERT_TRUE(startFixedStepClock(4, "harbour.mp3", &error)) << error;
    loopTheShow();
    g_startOver = g_showStartsOver;
    g_showStartsOver = passEnds;
    startShowAt(1, 4);
    const World* firstScene = nullptr;
    while (g_pass < PASSES) {
        onFrame();
        if (firstScene == nullptr) {
            firstScene = g_testWorld;
        }
    }
    ASSERT_GT(g_frames[0].size(), 900u);
    ASSERT_EQ(g_frames[1].size(), g_frames[0].size());
    for (size_t i = 0; i < g_frames[0].size(); ++i) {
        ASSERT_EQ(g_frames[1][i], g_frames[0][i]) << "frame " << i << " of the second pass";
    }
    EXPECT_EQ(g_testWorld, firstScene) << "the scenes are not loaded again";
    // A pass that loaded its pictures again would hold 11 MB more; what the
    // GL driver holds moves by up to a megabyte from pass to pass on a busy
    // machine.
    EXPECT_LE(g_heapBytes[1], g_heapBytes[0] + (4u << 20))
        << g_heapBytes[0] << " bytes in use after the first pass, " << g_heapBytes[1] << " after the second";
}
