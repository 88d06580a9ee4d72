// Effects of the soundtrack's mix, each working on a whole stereo buffer:
// reverb and delay (turning a send buffer into its wet return), sidechain
// ducking from the kick, and a low-pass whose cutoff follows a curve.
#pragma once

#include <vector>

#include "content/music/synth_dsp.h"

// One point of an automation curve; values are linear between points and
// hold before the first and after the last.
struct CurvePoint {
    double time;  // seconds
    float value;
};

float curveValue(const std::vector<CurvePoint>& curve, double time);

// Damped-comb reverb (eight parallel combs, four allpasses per channel).
// `room` 0..1 sets the decay, `damping` 0..1 darkens the tail. In place: the
// buffer holds the wet signal afterwards.
void applyReverb(StereoBuffer& send, float room, float damping);

// Ping-pong delay, in place, wet only. Repeats alternate sides, each `feedback`
// times the last, darkened by a low-pass at `toneHz`.
void applyPingPongDelay(StereoBuffer& send, double delaySeconds, float feedback, float toneHz);

// Gain curve 0..1 per frame that dips at every kick: 1 - exp(-(t - kick) / release),
// with a 4 ms slope into the dip so the drop itself does not click.
std::vector<float> kickDucking(size_t frames, const std::vector<double>& kickTimes, float release);
// bus *= 1 - depth x (1 - curve).
void applyDucking(StereoBuffer& bus, const std::vector<float>& curve, float depth);

// Low-pass over the whole bus with the cutoff (Hz) taken from `cutoff`.
void applyLowpassCurve(StereoBuffer& bus, const std::vector<CurvePoint>& cutoff, float q);

// dest += src x gain.
void mixInto(StereoBuffer& dest, const StereoBuffer& src, float gain);
