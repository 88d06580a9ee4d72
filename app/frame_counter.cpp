#include "app/shell.h"

#include "audio/clock.h"

int32_t g_frameCount = 0;
int32_t g_fpsStartClock = 0;

namespace {
// Wall-clock milliseconds; the frame rate is measured against real time even
// when the demo clock steps frame by frame.
int32_t wallMillis() { return static_cast<int32_t>(monotonicMillis()); }
}  // namespace

void startFrameCounter() {
    g_frameCount = 0;
    g_fpsStartClock = wallMillis();
}

namespace {
bool g_fpsPaused = false;
int32_t g_fpsPausedAt = 0;  // wall clock at the pause
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
        g_fpsStartClock = static_cast<int32_t>(static_cast<uint32_t>(g_fpsStartClock) +
                                               (static_cast<uint32_t>(wallMillis()) - static_cast<uint32_t>(g_fpsPausedAt)));
    }
}

double framesPerSecondAt(int32_t frames, int32_t startMillis, int32_t nowMillis) {
    const int32_t elapsed = static_cast<int32_t>(static_cast<uint32_t>(nowMillis) - static_cast<uint32_t>(startMillis));
    if (frames == 0 || elapsed <= 0) {
        return 0.0;
    }
    const int32_t scaled = static_cast<int32_t>(static_cast<uint32_t>(frames) * 1000u);
    return static_cast<double>(scaled) / static_cast<double>(elapsed);
}

double framesPerSecond() {
    return framesPerSecondAt(g_frameCount, g_fpsStartClock, g_fpsPaused ? g_fpsPausedAt : wallMillis());
}
