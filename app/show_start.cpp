#include "app/show_start.h"

#include "app/part_log.h"
#include "app/sequencer.h"
#include "app/shell.h"
#include "audio/clock.h"
#include "audio/fixed_step_clock.h"
#include "audio/music.h"
#include "parts/part_frame.h"
#include "parts/part_schedule.h"

#include <algorithm>
#include <chrono>
#include <cmath>

void (*g_unseenFrames)(bool begin) = nullptr;

namespace {

// The clock while earlier parts are rebuilt: it reads what the rebuild sets.
uint32_t g_rebuildMillis = 0;
uint32_t rebuildClock() { return g_rebuildMillis; }

// The first tick at or after `from` whose demo time is above part's end time.
long lastTickOf(int32_t part, int rate, long from) {
    const double endMillis = static_cast<double>(partEndTime(part)) * 100.0;
    long tick = std::max(from, static_cast<long>(std::floor(endMillis * rate / 1000.0)) - 1);
    while (demoTimeOf(static_cast<int32_t>(fixedStepMillisOf(tick, rate))) <= partEndTime(part)) {
        ++tick;
    }
    return tick;
}

// Parts 1..part-1 set up and drawn once, unseen, each at the tick of its last
// frame. Leaves the sequencer at part's set-up.
void rebuildPartsBefore(int32_t part, int rate) {
    const MillisecondClock clock = g_millisecondClock;
    g_millisecondClock = rebuildClock;
    g_musicStartTick = 0;
    g_framesUnseen = true;
    long tick = 0;
    for (int32_t k = 1; k < part; ++k) {
        g_partSteps[k - 1].setup();
        g_partCounter = 2 * k - 1;
        tick = lastTickOf(k, rate, tick);
        g_rebuildMillis = fixedStepMillisOf(tick, rate);
        g_partSteps[k - 1].draw();  // moves the counter on to 2k
        tick += 1;
    }
    g_framesUnseen = false;
    g_millisecondClock = clock;
    g_partCounter = 2 * part - 2;
}

}  // namespace

long firstTickOfPart(int32_t part, int rate) {
    long tick = 0;
    for (int32_t k = 1; k < part; ++k) {
        tick = lastTickOf(k, rate, tick) + 1;
    }
    return tick;
}

long lastTickOfPart(int32_t part, int rate) { return lastTickOf(part, rate, firstTickOfPart(part, rate)); }

void rebuildShowAt(int32_t part, int rate, bool unseen) {
    g_partCounter = 0;
    g_partStart = 0.0f;
    g_partTime = 0.0f;
    if (part <= 1) {
        return;
    }
    if (unseen && g_unseenFrames != nullptr) {
        g_unseenFrames(true);
    }
    rebuildPartsBefore(part, rate);
    if (unseen && g_unseenFrames != nullptr) {
        g_unseenFrames(false);
    }
}

namespace {

// The music and the clock at part's place, once parts 1..part-1 are rebuilt.
void startMusicForPart(int32_t part, int fixedStepFps) {
    if (fixedStepFps != 0) {
        setFixedStepFrame(firstTickOfPart(part, fixedStepFps));
        startMusicAt(g_millisecondClock());
    } else {
        startMusicAt(static_cast<uint32_t>(std::lround(partStartTime(part) * 100.0)));
    }
}

}  // namespace

void startShowAt(int32_t part, int fixedStepFps) {
    if (part <= 1) {
        startMusic();
        return;
    }
    const auto started = std::chrono::steady_clock::now();
    rebuildPartsBefore(part, fixedStepFps != 0 ? fixedStepFps : 1000);
    partsRebuilt(part, std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count() * 1000.0);
    startMusicForPart(part, fixedStepFps);
    // As for a show from the start, the frame rate counts from the first frame.
    startFrameCounter();
}

void startShowAgainAt(int32_t part, int fixedStepFps) {
    rebuildShowAt(part, fixedStepFps != 0 ? fixedStepFps : 1000, true);
    startMusicForPart(part, fixedStepFps);
}

void rehearseShow() {
    if (g_unseenFrames != nullptr) {
        g_unseenFrames(true);
    }
    rebuildPartsBefore(PART_COUNT + 1, 1000);
    if (g_unseenFrames != nullptr) {
        g_unseenFrames(false);
    }
    g_partCounter = 0;
    g_partStart = 0.0f;
    g_partTime = 0.0f;
}

void startShowAgain() {
    g_partCounter = 0;
    g_partStart = 0.0f;
    g_partTime = 0.0f;
    if (fixedStepClockActive()) {
        setFixedStepFrame(0);
    }
    startMusicAt(0);
    showStartsOver();
}
