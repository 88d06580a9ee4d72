#include "content/music/synth_drums.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr float RATE = static_cast<float>(SYNTH_RATE);

// Six detuned square waves, the classic recipe for a metallic cymbal colour.
struct MetalSource {
    double phases[6] = {0.0, 0.13, 0.29, 0.41, 0.57, 0.73};
    float next(float scale) {
        static constexpr double HZ[6] = {205.3, 304.4, 369.6, 522.7, 540.0, 800.0};
        float sum = 0.0f;
        for (int i = 0; i < 6; ++i) {
            phases[i] += HZ[i] * scale / SYNTH_RATE;
            if (phases[i] >= 1.0) phases[i] -= 1.0;
            sum += phases[i] < 0.5 ? 1.0f : -1.0f;
        }
        return sum / 6.0f;
    }
};

}  // namespace

void renderKick(StereoBuffer& out, double time, float velocity) {
    const size_t start = frameAt(time);
    const int length = static_cast<int>(0.4f * RATE);
    NoiseSource noise(0x4B1Cu);
    StateVariableFilter clickTone;
    clickTone.setup(3500.0f, 0.8f);
    double phase = 0.0;
    for (int i = 0; i < length; ++i) {
        const float t = i / RATE;
        const float hz = 45.0f + 125.0f * std::exp(-t / 0.028f) + 60.0f * std::exp(-t / 0.004f);
        phase += hz / RATE;
        const float body = std::sin(static_cast<float>(2.0 * SYNTH_PI * phase));
        const float attack = std::min(1.0f, t / 0.0015f);
        const float envelope = attack * std::exp(-t / 0.065f);
        const float click = clickTone.bandpass(noise.next()) * std::exp(-t / 0.003f) * 0.9f;
        const float fadeOut = i > length - 2205 ? static_cast<float>(length - i) / 2205.0f : 1.0f;
        const float s = softClip(2.6f * body * envelope + click) * 0.95f * velocity * fadeOut;
        out.add(start + static_cast<size_t>(i), s, s);
    }
}

void renderClap(StereoBuffer& out, double time, float velocity, uint32_t seed) {
    const size_t start = frameAt(time);
    const int length = static_cast<int>(0.35f * RATE);
    NoiseSource noiseL(seed * 2654435761u + 1);
    NoiseSource noiseR(seed * 2246822519u + 7);
    StateVariableFilter bandL;
    StateVariableFilter bandR;
    bandL.setup(1150.0f, 1.4f);
    bandR.setup(1250.0f, 1.4f);
    for (int i = 0; i < length; ++i) {
        const float t = i / RATE;
        float envelope = 0.0f;
        for (int burst = 0; burst < 3; ++burst) {
            const float since = t - burst * 0.0105f;
            if (since >= 0.0f && since < 0.0105f) envelope = std::exp(-since / 0.0035f);
        }
        if (t >= 0.0315f) envelope = 0.85f * std::exp(-(t - 0.0315f) / 0.075f);
        const float l = bandL.bandpass(noiseL.next()) * envelope;
        const float r = bandR.bandpass(noiseR.next()) * envelope;
        out.add(start + static_cast<size_t>(i), l * 2.2f * velocity, r * 2.2f * velocity);
    }
}

void renderSnare(StereoBuffer& out, double time, float velocity, float pan, uint32_t seed) {
    const size_t start = frameAt(time);
    const int length = static_cast<int>(0.25f * RATE);
    NoiseSource noise(seed * 747796405u + 3);
    StateVariableFilter bright;
    bright.setup(2400.0f, 0.7f);
    float gl;
    float gr;
    panGains(pan, &gl, &gr);
    for (int i = 0; i < length; ++i) {
        const float t = i / RATE;
        const float body = (std::sin(2.0f * static_cast<float>(SYNTH_PI) * 185.0f * t) +
                            0.5f * std::sin(2.0f * static_cast<float>(SYNTH_PI) * 330.0f * t)) *
                           std::exp(-t / 0.045f);
        const float hiss = bright.highpass(noise.next()) * std::exp(-t / 0.09f);
        const float s = (0.55f * body + 0.8f * hiss) * velocity * std::min(1.0f, t / 0.001f);
        out.add(start + static_cast<size_t>(i), s * gl, s * gr);
    }
}

void renderHat(StereoBuffer& out, double time, float velocity, float pan, bool open, uint32_t seed) {
    const size_t start = frameAt(time);
    const float decay = open ? 0.16f : 0.028f;
    const int length = static_cast<int>((open ? 0.45f : 0.09f) * RATE);
    NoiseSource noise(seed * 1103515245u + 12345u);
    MetalSource metal;
    StateVariableFilter high;
    high.setup(7200.0f, 0.9f);
    float gl;
    float gr;
    panGains(pan, &gl, &gr);
    for (int i = 0; i < length; ++i) {
        const float t = i / RATE;
        const float source = 0.6f * noise.next() + 0.7f * metal.next(1.6f);
        const float s = high.highpass(source) * std::exp(-t / decay) * velocity * 0.5f;
        out.add(start + static_cast<size_t>(i), s * gl, s * gr);
    }
}

void renderShaker(StereoBuffer& out, double time, float velocity, float pan, uint32_t seed) {
    const size_t start = frameAt(time);
    const int length = static_cast<int>(0.07f * RATE);
    NoiseSource noise(seed * 69069u + 1u);
    StateVariableFilter band;
    band.setup(5200.0f, 1.2f);
    float gl;
    float gr;
    panGains(pan, &gl, &gr);
    for (int i = 0; i < length; ++i) {
        const float t = i / RATE;
        const float swell = std::min(1.0f, t / 0.012f);
        const float s = band.bandpass(noise.next()) * swell * std::exp(-t / 0.022f) * velocity;
        out.add(start + static_cast<size_t>(i), s * gl, s * gr);
    }
}

void renderCrash(StereoBuffer& out, double time, float velocity, uint32_t seed) {
    const size_t start = frameAt(time);
    const int length = static_cast<int>(2.6f * RATE);
    NoiseSource noiseL(seed * 2891336453u + 5u);
    NoiseSource noiseR(seed * 1664525u + 1013904223u);
    MetalSource metal;
    StateVariableFilter highL;
    StateVariableFilter highR;
    highL.setup(4800.0f, 0.7f);
    highR.setup(5200.0f, 0.7f);
    for (int i = 0; i < length; ++i) {
        const float t = i / RATE;
        const float envelope = std::min(1.0f, t / 0.002f) * (0.6f * std::exp(-t / 0.12f) + 0.4f * std::exp(-t / 0.8f));
        const float m = metal.next(2.3f) * 0.5f;
        const float fade = i > length - 4410 ? static_cast<float>(length - i) / 4410.0f : 1.0f;
        const float l = highL.highpass(noiseL.next() + m) * envelope * velocity * 0.45f * fade;
        const float r = highR.highpass(noiseR.next() + m) * envelope * velocity * 0.45f * fade;
        out.add(start + static_cast<size_t>(i), l, r);
    }
}

void renderBoom(StereoBuffer& out, double time, float velocity) {
    const size_t start = frameAt(time);
    const int length = static_cast<int>(1.5f * RATE);
    double phase = 0.0;
    for (int i = 0; i < length; ++i) {
        const float t = i / RATE;
        phase += (32.0f + 38.0f * std::exp(-t / 0.18f)) / RATE;
        const float envelope = std::min(1.0f, t / 0.004f) * std::exp(-t / 0.45f);
        const float fade = i > length - 4410 ? static_cast<float>(length - i) / 4410.0f : 1.0f;
        const float s = softClip(1.5f * std::sin(static_cast<float>(2.0 * SYNTH_PI * phase)) * envelope) * velocity * fade;
        out.add(start + static_cast<size_t>(i), s, s);
    }
}

void renderRiser(StereoBuffer& out, double time, double length, float velocity, uint32_t seed) {
    const size_t start = frameAt(time);
    const int frames = static_cast<int>(length * SYNTH_RATE);
    NoiseSource noiseL(seed * 3266489917u + 11u);
    NoiseSource noiseR(seed * 668265263u + 13u);
    StateVariableFilter bandL;
    StateVariableFilter bandR;
    for (int i = 0; i < frames; ++i) {
        const float progress = static_cast<float>(i) / static_cast<float>(frames);
        if ((i & 31) == 0) {
            const float cutoff = 300.0f * std::pow(30.0f, progress);
            bandL.setup(cutoff, 2.5f);
            bandR.setup(cutoff * 1.07f, 2.5f);
        }
        const float swell = progress * progress * velocity * 1.2f;
        out.add(start + static_cast<size_t>(i), bandL.bandpass(noiseL.next()) * swell,
                bandR.bandpass(noiseR.next()) * swell);
    }
}
