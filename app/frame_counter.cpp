#include "app/shell.h"

#include <chrono>

int64_t g_frameCount = 0;
int64_t g_fpsStartClock = 0;

namespace {
// Wall-clock milliseconds; the frame rate is measured against real time even
// when the demo clock steps frame by frame. 64 bits: a looping show runs for weeks.
int64_t wallMillis() {
    return std::chrono::duration_cast<std::chrono::milliseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}
}  // namespace

void startFrameCounter() {
    g_frameCount = 0;
    g_fpsStartClock = wallMillis();
}

namespace {
bool g_fpsPaused = false;
int64_t g_fpsPausedAt = 0;  // wall clock at the pause
}  // namespace

void pauseFrameCounter() {
    if (!g_fpsPaused) {
        g_fpsPaused = true;
        g_fpsPausedAt = wallMillis();
    }
}

void resumeFrameCounter() {
    if (g_fpsPaused) {
        g_fpsPaused = false;
        // The time paused is taken out by starting the count that much later.
        g_fpsStartClock += wallMillis() - g_fpsPausedAt;
    }
}

double framesPerSecondAt(int64_t frames, int64_t startMillis, int64_t nowMillis) {
    const int64_t elapsed = nowMillis - startMillis;
    if (frames <= 0 || elapsed <= 0) {
        return 0.0;
    }
    return static_cast<double>(frames * 1000) / static_cast<double>(elapsed);
}

double framesPerSecond() {
    return framesPerSecondAt(g_frameCount, g_fpsStartClock, g_fpsPaused ? g_fpsPausedAt : wallMillis());
}
