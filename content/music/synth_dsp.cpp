#include "content/music/synth_dsp.h"

#include <algorithm>
#include <cmath>

size_t frameAt(double seconds) {
    if (!(seconds > 0.0)) return 0;
    return static_cast<size_t>(std::ceil(seconds * SYNTH_RATE - 1e-9));
}

double midiToHz(double note) { return 440.0 * std::pow(2.0, (note - 69.0) / 12.0); }

void panGains(float pan, float* left, float* right) {
    const float angle = (std::clamp(pan, -1.0f, 1.0f) + 1.0f) * 0.25f * static_cast<float>(SYNTH_PI);
    *left = std::cos(angle) * 1.41421356f;
    *right = std::sin(angle) * 1.41421356f;
}

namespace {

// The polyBLEP residual around a discontinuity at phase 0 (t in 0..1, dt the increment).
double polyBlep(double t, double dt) {
    if (t < dt) {
        const double x = t / dt;
        return x + x - x * x - 1.0;
    }
    if (t > 1.0 - dt) {
        const double x = (t - 1.0) / dt;
        return x * x + x + x + 1.0;
    }
    return 0.0;
}

}  // namespace

float SawOscillator::next(double increment) {
    const double value = 2.0 * phase - 1.0 - polyBlep(phase, increment);
    phase += increment;
    if (phase >= 1.0) phase -= 1.0;
    return static_cast<float>(value);
}

float PulseOscillator::next(double increment, double width) {
    double value = phase < width ? 1.0 : -1.0;
    value += polyBlep(phase, increment);
    double falling = phase - width;
    if (falling < 0.0) falling += 1.0;
    value -= polyBlep(falling, increment);
    value -= 2.0 * width - 1.0;  // centred on zero whatever the width
    phase += increment;
    if (phase >= 1.0) phase -= 1.0;
    return static_cast<float>(value);
}

void StateVariableFilter::setup(float cutoffHz, float q) {
    const float limited = std::clamp(cutoffHz, 10.0f, SYNTH_RATE * 0.45f);
    const float g = std::tan(static_cast<float>(SYNTH_PI) * limited / SYNTH_RATE);
    k = 1.0f / q;
    a1 = 1.0f / (1.0f + g * (g + k));
    a2 = g * a1;
    a3 = g * a2;
}

float StateVariableFilter::process(float x, float* band, float* high) {
    const float v3 = x - ic2;
    const float v1 = a1 * ic1 + a2 * v3;
    const float v2 = ic2 + a2 * ic1 + a3 * v3;
    ic1 = 2.0f * v1 - ic1;
    ic2 = 2.0f * v2 - ic2;
    *band = v1;
    *high = x - k * v1 - v2;
    return v2;
}

float softClip(float x) {
    // Rational tanh approximation, exact at 0 and monotonic, limited to +-1.
    if (x > 3.0f) return 1.0f;
    if (x < -3.0f) return -1.0f;
    const float x2 = x * x;
    return x * (27.0f + x2) / (27.0f + 9.0f * x2);
}
