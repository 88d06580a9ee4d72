#include "audio/fixed_step_clock.h"

#include "audio/clock.h"
#include "audio/level_meter.h"
#include "audio/music.h"
#include "audio/pcm_decoder.h"

#include <cmath>

namespace {

struct FixedStep {
    bool active = false;
    int fps = 30;
    long frames = 0;            // frames swapped so far
    DecodedAudio soundtrack;    // empty for a silent show
    uint32_t songMillis = 0;    // the soundtrack's length, 0 for none
};
FixedStep g_fixedStep;

uint32_t fixedStepMillis() {
    const uint32_t now = fixedStepMillisOf(g_fixedStep.frames, g_fixedStep.fps);
    // The soundtrack reached its end and starts again: the end sync's move of the zero.
    if (g_fixedStep.songMillis > 0) {
        while (static_cast<int32_t>(now - g_musicStartTick.load()) >= static_cast<int32_t>(g_fixedStep.songMillis)) {
            g_musicStartTick.store(g_musicStartTick.load() + g_fixedStep.songMillis);
        }
    }
    return now;
}

// The 20 ms of the soundtrack that ends at the current song position, read on
// whichever clock is installed (another one while the show rebuilds earlier parts).
uint32_t fixedStepLevel(AudioHandle) {
    return songLevelAt(g_fixedStep.soundtrack, static_cast<int32_t>(g_millisecondClock() - g_musicStartTick.load()));
}

}  // namespace

bool startFixedStepClock(int fps, const std::string& soundtrackPath, std::string* error) {
    g_fixedStep = FixedStep{};
    g_fixedStep.fps = fps;
    if (!soundtrackPath.empty()) {
        if (!decodeSoundtrack(soundtrackPath, &g_fixedStep.soundtrack, error)) {
            return false;
        }
        g_fixedStep.songMillis =
            static_cast<uint32_t>(std::llround(g_fixedStep.soundtrack.frames() * 1000.0 / OUTPUT_RATE));
    }
    g_fixedStep.active = true;
    g_millisecondClock = fixedStepMillis;
    g_levelSource = fixedStepLevel;
    return true;
}

uint32_t fixedStepMillisOf(long frame, int fps) {
    return static_cast<uint32_t>(std::llround(static_cast<double>(frame) * 1000.0 / fps));
}

bool fixedStepClockActive() { return g_fixedStep.active; }

void advanceFixedStepClock() { ++g_fixedStep.frames; }

void setFixedStepFrame(long frame) { g_fixedStep.frames = frame; }

const DecodedAudio* fixedStepSoundtrack() { return g_fixedStep.active ? &g_fixedStep.soundtrack : nullptr; }

uint32_t fixedStepSongMillis() { return g_fixedStep.songMillis; }

long fixedStepFrames() { return g_fixedStep.frames; }
