#include "app/part_log.h"

#include "app/shell.h"
#include "app/status_line.h"
#include "audio/music.h"

#include <chrono>

bool g_verbose = false;

namespace {

using Clock = std::chrono::steady_clock;

struct PartTimes {
    Clock::time_point setupStarted;
    Clock::time_point drawingStarted;
    long frames = 0;
};
PartTimes g_current;
// Taken when the program starts (static initialisation, before main).
const Clock::time_point g_programStart = Clock::now();
bool g_firstFrameSeen = false;
int g_pass = 1;

double secondsSince(Clock::time_point start) { return std::chrono::duration<double>(Clock::now() - start).count(); }

}  // namespace

void partSetupBegins(int32_t) {
    if (g_verbose) {
        g_current = PartTimes{};
        g_current.setupStarted = Clock::now();
    }
}

void partSetupEnds(int32_t part) {
    if (!g_verbose) {
        return;
    }
    printLogLine("part %d set up at demo time %.3f in %.1f ms", part, static_cast<double>(g_demoTime),
                 secondsSince(g_current.setupStarted) * 1000.0);
    g_current.drawingStarted = Clock::now();
}

void partFrameDrawn(int32_t part, bool ended) {
    if (!g_verbose) {
        return;
    }
    if (!g_firstFrameSeen) {
        g_firstFrameSeen = true;
        printLogLine("first frame %.1f ms after the program started", secondsSince(g_programStart) * 1000.0);
    }
    ++g_current.frames;
    if (ended) {
        const double seconds = secondsSince(g_current.drawingStarted);
        printLogLine("part %d ended at demo time %.3f: %ld frames, %.1f frames/s", part,
                     static_cast<double>(g_demoTime), g_current.frames,
                     seconds > 0.0 ? static_cast<double>(g_current.frames) / seconds : 0.0);
    }
}

void partsRebuilt(int32_t part, double milliseconds) {
    if (g_verbose) {
        printLogLine("parts 1 to %d rebuilt in %.1f ms", part - 1, milliseconds);
    }
}

void showStartsOver() {
    ++g_pass;
    if (g_verbose) {
        printLogLine("the show starts over: pass %d", g_pass);
    }
}

void showPaused() {
    if (g_verbose) {
        printLogLine("paused at demo time %.3f after %lld frames", static_cast<double>(g_demoTime),
                     static_cast<long long>(g_frameCount));
    }
}

void showResumed() {
    if (g_verbose) {
        printLogLine("resumed at demo time %.3f after %lld frames", static_cast<double>(g_demoTime),
                     static_cast<long long>(g_frameCount));
    }
}

void showJumped(int32_t part, double milliseconds) {
    if (g_verbose) {
        printLogLine("jump to part %d: rebuilt in %.1f ms", part, milliseconds);
    }
}

void showSought(uint32_t landing, double milliseconds) {
    if (g_verbose) {
        printLogLine("seek to demo time %.2f: done in %.1f ms", landing / 100.0, milliseconds);
    }
}
