// Building blocks of the soundtrack's synthesizer: a stereo float buffer,
// deterministic noise, band-limited oscillators, a state-variable filter and
// a soft clipper. Everything runs at SYNTH_RATE; times are in seconds,
// pitches in MIDI note numbers (69 = A4 = 440 Hz), levels in full scale 1.0.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

constexpr int SYNTH_RATE = 44100;
constexpr double SYNTH_PI = 3.14159265358979323846;

struct StereoBuffer {
    std::vector<float> left;
    std::vector<float> right;

    explicit StereoBuffer(size_t frames) : left(frames, 0.0f), right(frames, 0.0f) {}
    size_t frames() const { return left.size(); }
    // Adds one frame; frames past the end are dropped.
    void add(size_t frame, float l, float r) {
        if (frame < left.size()) {
            left[frame] += l;
            right[frame] += r;
        }
    }
};

// First frame at or after `seconds` (0 for negative times).
size_t frameAt(double seconds);
double midiToHz(double note);
// Left and right gains of an equal-power pan, -1 (left) .. 1 (right).
void panGains(float pan, float* left, float* right);

// White noise in -1..1 from a 32-bit xorshift generator: the same seed gives
// the same sequence on every run.
struct NoiseSource {
    uint32_t state;
    explicit NoiseSource(uint32_t seed) : state(seed != 0 ? seed : 0x9E3779B9u) {}
    float next() {
        state ^= state << 13;
        state ^= state >> 17;
        state ^= state << 5;
        return static_cast<float>(state) * (2.0f / 4294967296.0f) - 1.0f;
    }
};

// Sawtooth in -1..1 with polyBLEP corrections at the wrap. `phase` is 0..1.
struct SawOscillator {
    double phase = 0.0;
    float next(double increment);
};

// Pulse with polyBLEP corrections, shifted to have no DC: `width` 0..1 is the high
// part, which sits at 2 - 2 x width, the low part at -2 x width.
struct PulseOscillator {
    double phase = 0.0;
    float next(double increment, double width);
};

// Topology-preserving state-variable filter (trapezoidal integration): stable
// under fast cutoff changes. Cutoff in Hz, q > 0 (0.707 is flat).
struct StateVariableFilter {
    float a1 = 0.0f;
    float a2 = 0.0f;
    float a3 = 0.0f;
    float k = 1.0f;
    float ic1 = 0.0f;
    float ic2 = 0.0f;

    void setup(float cutoffHz, float q);
    // Runs one sample; returns the low-pass output and leaves band and high in the arguments.
    float process(float x, float* band, float* high);
    float lowpass(float x) {
        float band;
        float high;
        return process(x, &band, &high);
    }
    float highpass(float x) {
        float band;
        float high;
        process(x, &band, &high);
        return high;
    }
    float bandpass(float x) {
        float band;
        float high;
        process(x, &band, &high);
        return band;
    }
};

// Smooth saturation: close to x for small x, approaching +-1.
float softClip(float x);
