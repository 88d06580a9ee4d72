// The composed soundtrack as timed events: every drum hit and every note of
// every instrument in seconds, plus the pad filter's cutoff over time. The
// arrangement follows the demo parts: a kick-only intro whose beats stand
// clear of a quiet bed (part 1 reveals a mesh per beat), grooves, breaks, a
// build into the loudest section (part 7's loudness picks meshes), and a
// closing that thins out to one held chord.
#pragma once

#include <cstdint>
#include <vector>

#include "content/music/synth_effects.h"
#include "content/music/synth_voices.h"

struct DrumHit {
    double time;     // seconds
    float velocity;  // 0..1
    float pan;       // -1..1
    uint32_t seed;   // varies the hit's noise
};

struct Score {
    std::vector<DrumHit> kicks;
    std::vector<DrumHit> claps;
    std::vector<DrumHit> snares;
    std::vector<DrumHit> closedHats;
    std::vector<DrumHit> openHats;
    std::vector<DrumHit> shakers;
    std::vector<DrumHit> crashes;
    std::vector<DrumHit> booms;
    std::vector<ToneNote> risers;  // noise sweeps: time, length and velocity are used
    std::vector<ToneNote> bass;
    std::vector<ToneNote> pads;
    std::vector<ToneNote> plucks;
    std::vector<ToneNote> leads;
    std::vector<CurvePoint> padCutoff;   // Hz
    std::vector<CurvePoint> masterGain;  // applied to the whole mix before the limiter
};

// The whole track, the same on every call.
Score composeScore();
