#include "app/shell.h"

#include <chrono>

int64_t g_frameCount = 0;
int64_t g_fpsStartClock = 0;

namespace {
int64_t steadyMillis() {
    return std::chrono::duration_cast<std::chrono::milliseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}
}  // namespace

int64_t (*g_wallMillis)() = steadyMillis;

void startFrameCounter() {
    g_frameCount = 0;
    g_fpsStartClock = g_wallMillis();
}

namespace {
bool g_fpsPaused = false;
int64_t g_fpsPausedAt = 0;  // wall clock at the pause
}  // namespace

void pauseFrameCounter() {
    if (!g_fpsPaused) {
        g_fpsPaused = true;
        g_fpsPausedAt = g_wallMillis();
    }
}

void resumeFrameCounter() {
    if (g_fpsPaused) {
        g_fpsPaused = false;
        // The time paused is taken out by starting the count that much later.
        g_fpsStartClock += g_wallMillis() - g_fpsPausedAt;
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
    return framesPerSecondAt(g_frameCount, g_fpsStartClock, g_fpsPaused ? g_fpsPausedAt : g_wallMillis());
}
