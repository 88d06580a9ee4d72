#include "content/music/synth_effects.h"

#include <algorithm>
#include <cmath>

float curveValue(const std::vector<CurvePoint>& curve, double time) {
    if (curve.empty()) return 0.0f;
    if (time <= curve.front().time) return curve.front().value;
    for (size_t i = 1; i < curve.size(); ++i) {
        if (time < curve[i].time) {
            const CurvePoint& a = curve[i - 1];
            const CurvePoint& b = curve[i];
            const double t = (time - a.time) / (b.time - a.time);
            return static_cast<float>(a.value + (b.value - a.value) * t);
        }
    }
    return curve.back().value;
}

namespace {

struct Comb {
    std::vector<float> buffer;
    size_t index = 0;
    float store = 0.0f;
    float process(float input, float feedback, float damp) {
        const float output = buffer[index];
        store = output * (1.0f - damp) + store * damp;
        buffer[index] = input + store * feedback;
        if (++index == buffer.size()) index = 0;
        return output;
    }
};

struct Allpass {
    std::vector<float> buffer;
    size_t index = 0;
    float process(float input) {
        const float delayed = buffer[index];
        buffer[index] = input + delayed * 0.5f;
        if (++index == buffer.size()) index = 0;
        return delayed - input;
    }
};

// One channel's reverb network; `spread` lengthens every line a little so
// the two channels decorrelate.
struct ReverbChannel {
    Comb combs[8];
    Allpass allpasses[4];
    explicit ReverbChannel(int spread) {
        static constexpr int COMBS[8] = {1116, 1188, 1277, 1356, 1422, 1491, 1557, 1617};
        static constexpr int ALLPASSES[4] = {556, 441, 341, 225};
        for (int i = 0; i < 8; ++i) combs[i].buffer.assign(static_cast<size_t>(COMBS[i] + spread), 0.0f);
        for (int i = 0; i < 4; ++i) allpasses[i].buffer.assign(static_cast<size_t>(ALLPASSES[i] + spread), 0.0f);
    }
    float process(float input, float feedback, float damp) {
        float sum = 0.0f;
        for (Comb& comb : combs) sum += comb.process(input, feedback, damp);
        for (Allpass& allpass : allpasses) sum = allpass.process(sum);
        return sum;
    }
};

}  // namespace

void applyReverb(StereoBuffer& send, float room, float damping) {
    ReverbChannel left(0);
    ReverbChannel right(23);
    const float feedback = 0.7f + 0.28f * room;
    const float damp = 0.4f * damping;
    for (size_t i = 0; i < send.frames(); ++i) {
        const float input = (send.left[i] + send.right[i]) * 0.015f;
        send.left[i] = left.process(input, feedback, damp);
        send.right[i] = right.process(input, feedback, damp);
    }
}

void applyPingPongDelay(StereoBuffer& send, double delaySeconds, float feedback, float toneHz) {
    const size_t length = std::max<size_t>(1, static_cast<size_t>(delaySeconds * SYNTH_RATE));
    std::vector<float> lineL(length, 0.0f);
    std::vector<float> lineR(length, 0.0f);
    const float coefficient = 1.0f - std::exp(-2.0f * static_cast<float>(SYNTH_PI) * toneHz / SYNTH_RATE);
    float toneL = 0.0f;
    float toneR = 0.0f;
    size_t index = 0;
    for (size_t i = 0; i < send.frames(); ++i) {
        const float outL = lineL[index];
        const float outR = lineR[index];
        toneL += coefficient * (outL - toneL);
        toneR += coefficient * (outR - toneR);
        // The input enters on the left; every repeat crosses to the other side.
        lineL[index] = 0.5f * (send.left[i] + send.right[i]) + toneR * feedback;
        lineR[index] = toneL * feedback;
        send.left[i] = outL;
        send.right[i] = outR;
        if (++index == length) index = 0;
    }
}

std::vector<float> kickDucking(size_t frames, const std::vector<double>& kickTimes, float release) {
    std::vector<float> curve(frames, 1.0f);
    const size_t span = static_cast<size_t>(release * 6.0f * SYNTH_RATE);
    const float slope = 0.004f * SYNTH_RATE;
    for (double kick : kickTimes) {
        const size_t start = frameAt(kick - 0.004);
        const size_t hit = frameAt(kick);
        for (size_t i = start; i < std::min(frames, hit + span); ++i) {
            float gain;
            if (i < hit) {
                gain = static_cast<float>(hit - i) / slope;  // 1 -> 0 over the slope
            } else {
                gain = 1.0f - std::exp(-static_cast<float>(i - hit) / (release * SYNTH_RATE));
            }
            curve[i] = std::min(curve[i], gain);
        }
    }
    return curve;
}

void applyDucking(StereoBuffer& bus, const std::vector<float>& curve, float depth) {
    for (size_t i = 0; i < bus.frames() && i < curve.size(); ++i) {
        const float gain = 1.0f - depth * (1.0f - curve[i]);
        bus.left[i] *= gain;
        bus.right[i] *= gain;
    }
}

void applyLowpassCurve(StereoBuffer& bus, const std::vector<CurvePoint>& cutoff, float q) {
    StateVariableFilter left;
    StateVariableFilter right;
    for (size_t i = 0; i < bus.frames(); ++i) {
        if (i % 32 == 0) {
            const float hz = curveValue(cutoff, static_cast<double>(i) / SYNTH_RATE);
            left.setup(hz, q);
            right.setup(hz, q);
        }
        bus.left[i] = left.lowpass(bus.left[i]);
        bus.right[i] = right.lowpass(bus.right[i]);
    }
}

void mixInto(StereoBuffer& dest, const StereoBuffer& src, float gain) {
    const size_t frames = std::min(dest.frames(), src.frames());
    for (size_t i = 0; i < frames; ++i) {
        dest.left[i] += src.left[i] * gain;
        dest.right[i] += src.right[i] * gain;
    }
}
