#include "content/music/synth_voices.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float RATE = static_cast<float>(SYNTH_RATE);
constexpr int CONTROL_STEP = 16;  // filter and pitch changes are applied every 16 samples

// 0 before the release, falling linearly to 0 over `release` seconds after `held`.
float releaseGain(float t, float held, float release) {
    if (t < held) return 1.0f;
    return std::max(0.0f, 1.0f - (t - held) / release);
}

}  // namespace

void renderBassNote(StereoBuffer& out, const ToneNote& note) {
    const size_t start = frameAt(note.time);
    const float held = static_cast<float>(note.length);
    const float release = 0.03f;
    const int frames = static_cast<int>((held + release) * RATE);
    const double hz = midiToHz(note.pitch);
    SawOscillator saw;
    double sinePhase = 0.0;
    StateVariableFilter filter;
    for (int i = 0; i < frames; ++i) {
        const float t = i / RATE;
        if (i % CONTROL_STEP == 0) {
            const float cutoff = 90.0f + 1.5f * static_cast<float>(hz) +
                                 (350.0f + 1900.0f * note.velocity) * std::exp(-t / 0.08f);
            filter.setup(cutoff, 1.15f);
        }
        sinePhase += hz / SYNTH_RATE;
        if (sinePhase >= 1.0) sinePhase -= 1.0;
        const float sine = std::sin(static_cast<float>(2.0 * SYNTH_PI * sinePhase));
        const float tone = filter.lowpass(saw.next(hz / SYNTH_RATE)) * 0.7f + sine * 0.75f;
        const float envelope = std::min(1.0f, t / 0.003f) * (0.8f + 0.2f * std::exp(-t / 0.1f)) *
                               releaseGain(t, held, release);
        const float s = tone * envelope * note.velocity * 0.42f;
        out.add(start + static_cast<size_t>(i), s, s);
    }
}

void renderPadNote(StereoBuffer& out, const ToneNote& note, uint32_t seed) {
    const size_t start = frameAt(note.time);
    const float held = static_cast<float>(note.length);
    const float attack = 0.4f;
    const float release = 0.9f;
    const int frames = static_cast<int>((held + release) * RATE);
    NoiseSource phases(seed);
    SawOscillator saws[3];
    double increments[3];
    constexpr float DETUNE[3] = {-0.09f, 0.0f, 0.1f};
    for (int v = 0; v < 3; ++v) {
        saws[v].phase = (phases.next() + 1.0f) * 0.5f;
        increments[v] = midiToHz(note.pitch + DETUNE[v]) / SYNTH_RATE;
    }
    const float level = note.velocity * 0.085f;
    for (int i = 0; i < frames; ++i) {
        const float t = i / RATE;
        const float rise = std::min(1.0f, t / attack);
        const float envelope = rise * rise * (3.0f - 2.0f * rise) * releaseGain(t, held, release) * level;
        const float a = saws[0].next(increments[0]);
        const float b = saws[1].next(increments[1]);
        const float c = saws[2].next(increments[2]);
        out.add(start + static_cast<size_t>(i), (a + 0.6f * b) * envelope, (c + 0.6f * b) * envelope);
    }
}

void renderPluckNote(StereoBuffer& out, const ToneNote& note) {
    const size_t start = frameAt(note.time);
    const float held = std::max(0.3f, static_cast<float>(note.length));
    const int frames = static_cast<int>((held + 0.02f) * RATE);
    const double increment = midiToHz(note.pitch) / SYNTH_RATE;
    SawOscillator saw;
    PulseOscillator pulse;
    StateVariableFilter filter;
    float gl;
    float gr;
    panGains(note.pan, &gl, &gr);
    for (int i = 0; i < frames; ++i) {
        const float t = i / RATE;
        if (i % CONTROL_STEP == 0) {
            filter.setup(350.0f + (800.0f + 3800.0f * note.velocity) * std::exp(-t / 0.07f), 1.3f);
        }
        const float tone = filter.lowpass(0.6f * saw.next(increment) + 0.4f * pulse.next(increment, 0.25));
        const float envelope = std::min(1.0f, t / 0.002f) * std::exp(-t / 0.2f) * releaseGain(t, held, 0.02f);
        const float s = tone * envelope * note.velocity * 0.3f;
        out.add(start + static_cast<size_t>(i), s * gl, s * gr);
    }
}

void renderLeadNote(StereoBuffer& out, const ToneNote& note) {
    const size_t start = frameAt(note.time);
    const float held = static_cast<float>(note.length);
    const float release = 0.09f;
    const int frames = static_cast<int>((held + release) * RATE);
    SawOscillator sawA;
    SawOscillator sawB;
    sawB.phase = 0.37;
    PulseOscillator sub;
    StateVariableFilter filter;
    double increment = 0.0;
    const float baseHz = static_cast<float>(midiToHz(note.pitch));
    for (int i = 0; i < frames; ++i) {
        const float t = i / RATE;
        if (i % CONTROL_STEP == 0) {
            const float depth = 0.16f * std::clamp((t - 0.22f) / 0.3f, 0.0f, 1.0f);
            const float bend = depth * std::sin(2.0f * static_cast<float>(SYNTH_PI) * 5.3f * t);
            increment = midiToHz(note.pitch + bend) / SYNTH_RATE;
            filter.setup(700.0f + 1.6f * baseHz + 2600.0f * note.velocity * std::exp(-t / 0.25f), 1.0f);
        }
        const float a = sawA.next(increment * 0.9965);
        const float b = sawB.next(increment * 1.0035);
        const float low = sub.next(increment * 0.5, 0.5) * 0.3f;
        const float left = filter.lowpass(0.5f * (a + b) + low);
        const float envelope = std::min(1.0f, t / 0.006f) * (0.8f + 0.2f * std::exp(-t / 0.3f)) *
                               releaseGain(t, held, release) * note.velocity * 0.3f;
        // The two saws lean apart a little for width; the filtered sum sits in the middle.
        const float spread = 0.12f * (a - b);
        out.add(start + static_cast<size_t>(i), (left + spread) * envelope, (left - spread) * envelope);
    }
}
