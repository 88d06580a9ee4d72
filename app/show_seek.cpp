#include "app/show_seek.h"

#include "app/part_log.h"
#include "app/sequencer.h"
#include "app/shell.h"
#include "app/show_start.h"
#include "audio/clock.h"
#include "audio/fixed_step_clock.h"
#include "audio/music.h"
#include "parts/part_frame.h"
#include "parts/part_schedule.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace {

uint32_t millisOf(long tick, int rate) { return fixedStepMillisOf(tick, rate); }

// The first tick of the grid whose reading is at or after `millis`.
long tickFrom(uint32_t millis, int rate) {
    long tick = static_cast<long>(static_cast<double>(millis) * rate / 1000.0);
    while (tick > 0 && millisOf(tick - 1, rate) >= millis) {
        --tick;
    }
    while (millisOf(tick, rate) < millis) {
        ++tick;
    }
    return tick;
}

// The reading of the frame on view: the demo time its draw step read.
uint32_t onViewMillis() { return static_cast<uint32_t>(std::lround(std::max(0.0, g_demoTime * 100.0))); }

// While a seek runs frames unseen: the clock reads what the seek sets, from
// the show's start, and (for part 1, whose beat reveals remember every frame)
// the level is the song's at that reading.
uint32_t g_seekClockMillis = 0;
uint32_t seekClock() { return g_seekClockMillis; }
uint32_t seekLevel(AudioHandle) { return musicLevelAt(g_seekClockMillis); }

class UnseenFrames {
public:
    explicit UnseenFrames(bool songLevels)
        : clock_(g_millisecondClock), level_(g_levelSource), startTick_(g_musicStartTick.load()) {
        g_millisecondClock = seekClock;
        if (songLevels) {
            g_levelSource = seekLevel;
        }
        g_musicStartTick = 0;
        g_framesUnseen = true;
        if (g_unseenFrames != nullptr) {
            g_unseenFrames(true);
        }
    }
    ~UnseenFrames() {
        if (g_unseenFrames != nullptr) {
            g_unseenFrames(false);
        }
        g_framesUnseen = false;
        g_musicStartTick = startTick_;
        g_levelSource = level_;
        g_millisecondClock = clock_;
    }
    UnseenFrames(const UnseenFrames&) = delete;
    UnseenFrames& operator=(const UnseenFrames&) = delete;

    void setUp(int32_t part, long tick, int rate) {
        g_seekClockMillis = millisOf(tick, rate);
        g_partSteps[part - 1].setup();
        g_partCounter = 2 * part - 1;
    }
    // `passed`: only the frame's changes to the part's state (g_framesPassed).
    void draw(int32_t part, long tick, int rate, bool passed) {
        g_seekClockMillis = millisOf(tick, rate);
        g_framesPassed = passed;
        g_partSteps[part - 1].draw();
        g_framesPassed = false;
    }

private:
    MillisecondClock clock_;
    LevelSource level_;
    uint32_t startTick_;
};

// The music and the clock at the landing; on the fixed-step clock the next
// frame swapped is tick `target`'s.
void land(uint32_t landing, long target, int fixedStepFps) {
    if (fixedStepFps != 0) {
        setFixedStepFrame(target);
        startMusicAt(g_millisecondClock());
    } else {
        startMusicAt(landing);
    }
}

// Brings the show to `landing` (already a landing): from the frame on view
// when it is the same part's and earlier, else from a rebuild. `firstStart`:
// nothing is set up yet, the rebuild is drawn in full.
void bringTo(uint32_t landing, int fixedStepFps, bool firstStart, void (*returnToStartState)()) {
    const int rate = seekRate(fixedStepFps);
    const int32_t part = partAtMillis(landing, rate);
    const long target = tickFrom(landing, rate);  // the first frame not run unseen
    const uint32_t onView = onViewMillis();
    const bool goOn = !firstStart && g_partCounter == 2 * part - 1 && onView < landing;
    long first = goOn ? tickFrom(onView + 1, rate) : firstTickOfPart(part, rate);
    if (!goOn) {
        if (returnToStartState != nullptr) {
            returnToStartState();
        }
        rebuildShowAt(part, rate, !firstStart);
    }
    const bool everyFrame = partBuildsOnEveryFrame(part);
    if (!everyFrame) {
        first = std::max(first, target - SEEK_SETTLE_FRAMES);
    }
    {
        UnseenFrames unseen(everyFrame);
        // Part 1's first draw step sets it up; a seek that lands on a part's
        // first frame leaves its set-up to the sequencer, as a jump does.
        if (!goOn && part > 1 && first < target) {
            unseen.setUp(part, firstTickOfPart(part, rate), rate);
        }
        for (long tick = first; tick < target; ++tick) {
            unseen.draw(part, tick, rate, tick < target - SEEK_SETTLE_FRAMES);
        }
    }
    land(landing, target, fixedStepFps);
}

}  // namespace

int seekRate(int fixedStepFps) { return fixedStepFps != 0 ? fixedStepFps : SEEK_LIVE_FPS; }

uint32_t lastSeekMillis(int rate) { return millisOf(lastTickOfPart(SCHEDULED_PARTS, rate) - 1, rate); }

uint32_t seekLanding(uint32_t millis, int fixedStepFps) {
    millis = std::min(millis, lastSeekMillis(seekRate(fixedStepFps)));
    return fixedStepFps != 0 ? millisOf(seekTick(millis, fixedStepFps), fixedStepFps) : millis;
}

long seekTick(uint32_t millis, int fps) {
    const long tick = tickFrom(millis, fps);
    return millisOf(tick, fps) > millis ? tick - 1 : tick;
}

uint32_t seekStepMillis(uint32_t millis, int frames, int fixedStepFps) {
    const int rate = seekRate(fixedStepFps);
    const long tick = frames > 0 ? tickFrom(millis + 1, rate) + frames - 1 : tickFrom(millis, rate) + frames;
    return millisOf(std::max(0L, tick), rate);
}

int32_t partAtMillis(uint32_t millis, int rate) {
    int32_t part = SCHEDULED_PARTS;
    while (part > 1 && millisOf(firstTickOfPart(part, rate), rate) > millis) {
        --part;
    }
    return part;
}

void seekShowTo(uint32_t millis, int fixedStepFps, void (*returnToStartState)()) {
    bringTo(seekLanding(millis, fixedStepFps), fixedStepFps, false, returnToStartState);
}

void startShowAtMillis(uint32_t millis, int fixedStepFps) {
    const auto started = std::chrono::steady_clock::now();
    const uint32_t landing = seekLanding(millis, fixedStepFps);
    bringTo(landing, fixedStepFps, true, nullptr);
    showSought(landing, std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count() * 1000.0);
    // As for a show from the start, the frame rate counts from the first frame.
    startFrameCounter();
}
