// Renders the composed score into the finished stereo track: instruments
// into buses, the buses through their filters, sidechain ducking and the
// reverb and delay sends, then a soft limiter on the sum.
#include <algorithm>
#include <cmath>

#include "content/music/music_score.h"
#include "content/music/music_timeline.h"
#include "content/music/soundtrack.h"
#include "content/music/synth_drums.h"
#include "content/music/synth_effects.h"
#include "content/music/synth_voices.h"

namespace {

// Levels of the instruments relative to their voices' own peaks.
constexpr float KICK_GAIN = 1.0f;
constexpr float CLAP_GAIN = 0.7f;
constexpr float SNARE_GAIN = 0.5f;
constexpr float HAT_GAIN = 1.1f;
constexpr float SHAKER_GAIN = 0.5f;
constexpr float CRASH_GAIN = 0.45f;
constexpr float BOOM_GAIN = 0.55f;
constexpr float RISER_GAIN = 0.6f;
constexpr float BASS_GAIN = 2.0f;
constexpr float PAD_GAIN = 1.8f;
constexpr float PLUCK_GAIN = 3.2f;
constexpr float LEAD_GAIN = 1.5f;

constexpr double DELAY_SECONDS = 0.3629;  // a dotted eighth at 124 beats per minute
constexpr float LIMIT_KNEE = 0.75f;       // the limiter leaves samples below this untouched
constexpr float LIMIT_CEILING = 0.9f;  // MP3 decoding overshoots by up to about 5 %

struct Sends {
    StereoBuffer reverb;
    StereoBuffer delay;
    explicit Sends(size_t frames) : reverb(frames), delay(frames) {}
};

void renderDryDrums(const Score& score, StereoBuffer& master) {
    for (const DrumHit& h : score.kicks) renderKick(master, h.time, h.velocity * KICK_GAIN);
    for (const DrumHit& h : score.closedHats) renderHat(master, h.time, h.velocity * HAT_GAIN, h.pan, false, h.seed);
    for (const DrumHit& h : score.openHats) renderHat(master, h.time, h.velocity * HAT_GAIN, h.pan, true, h.seed);
    for (const DrumHit& h : score.shakers) renderShaker(master, h.time, h.velocity * SHAKER_GAIN, h.pan, h.seed);
    for (const DrumHit& h : score.booms) renderBoom(master, h.time, h.velocity * BOOM_GAIN);
}

void renderRoomDrums(const Score& score, StereoBuffer& master, Sends& sends) {
    StereoBuffer bus(master.frames());
    for (const DrumHit& h : score.claps) renderClap(bus, h.time, h.velocity * CLAP_GAIN, h.seed);
    for (const DrumHit& h : score.snares) renderSnare(bus, h.time, h.velocity * SNARE_GAIN, h.pan, h.seed);
    for (const DrumHit& h : score.crashes) renderCrash(bus, h.time, h.velocity * CRASH_GAIN, h.seed);
    uint32_t seed = 77;
    for (const ToneNote& r : score.risers) renderRiser(bus, r.time, r.length, r.velocity * RISER_GAIN, seed++);
    mixInto(master, bus, 1.0f);
    mixInto(sends.reverb, bus, 0.22f);
}

void renderBass(const Score& score, StereoBuffer& master, const std::vector<float>& duck) {
    StereoBuffer bus(master.frames());
    for (ToneNote n : score.bass) {
        n.velocity *= BASS_GAIN;
        renderBassNote(bus, n);
    }
    applyDucking(bus, duck, 0.45f);
    mixInto(master, bus, 1.0f);
}

void renderPads(const Score& score, StereoBuffer& master, Sends& sends, const std::vector<float>& duck) {
    StereoBuffer bus(master.frames());
    uint32_t seed = 1;
    for (ToneNote n : score.pads) {
        n.velocity *= PAD_GAIN;
        renderPadNote(bus, n, seed++ * 2654435761u);
    }
    applyLowpassCurve(bus, score.padCutoff, 0.9f);
    applyDucking(bus, duck, 0.55f);
    mixInto(master, bus, 1.0f);
    mixInto(sends.reverb, bus, 0.3f);
}

void renderPlucks(const Score& score, StereoBuffer& master, Sends& sends, const std::vector<float>& duck) {
    StereoBuffer bus(master.frames());
    for (ToneNote n : score.plucks) {
        n.velocity *= PLUCK_GAIN;
        renderPluckNote(bus, n);
    }
    applyDucking(bus, duck, 0.3f);
    mixInto(master, bus, 1.0f);
    mixInto(sends.delay, bus, 0.22f);
    mixInto(sends.reverb, bus, 0.2f);
}

void renderLead(const Score& score, StereoBuffer& master, Sends& sends, const std::vector<float>& duck) {
    StereoBuffer bus(master.frames());
    for (ToneNote n : score.leads) {
        n.velocity *= LEAD_GAIN;
        renderLeadNote(bus, n);
    }
    applyDucking(bus, duck, 0.15f);
    mixInto(master, bus, 1.0f);
    mixInto(sends.delay, bus, 0.3f);
    mixInto(sends.reverb, bus, 0.25f);
}

void returnSends(Sends& sends, StereoBuffer& master, const std::vector<float>& duck) {
    applyPingPongDelay(sends.delay, DELAY_SECONDS, 0.38f, 3200.0f);
    mixInto(master, sends.delay, 0.55f);
    mixInto(sends.reverb, sends.delay, 0.3f);
    applyReverb(sends.reverb, 0.82f, 0.5f);
    applyDucking(sends.reverb, duck, 0.3f);
    mixInto(master, sends.reverb, 1.0f);
}

// Leaves |x| up to the knee alone and bends the rest smoothly under the ceiling.
float limit(float x) {
    const float magnitude = std::fabs(x);
    if (magnitude <= LIMIT_KNEE) return x;
    const float room = LIMIT_CEILING - LIMIT_KNEE;
    const float bent = LIMIT_KNEE + room * softClip((magnitude - LIMIT_KNEE) / room);
    return x < 0.0f ? -bent : bent;
}

// Removes what lies below about 15 Hz (the DC of asymmetric drum hits), in place.
void blockDc(std::vector<float>& channel) {
    const float pole = 1.0f - 2.0f * static_cast<float>(SYNTH_PI) * 15.0f / SYNTH_RATE;
    float previousIn = 0.0f;
    float previousOut = 0.0f;
    for (float& x : channel) {
        const float out = x - previousIn + pole * previousOut;
        previousIn = x;
        previousOut = out;
        x = out;
    }
}

int16_t toSample(float x) { return static_cast<int16_t>(std::lround(std::clamp(limit(x), -1.0f, 1.0f) * 32767.0f)); }

}  // namespace

std::vector<int16_t> renderSoundtrackPcm() {
    const Score score = composeScore();
    const size_t frames = frameAt(trackSeconds());
    StereoBuffer master(frames);
    Sends sends(frames);
    std::vector<double> kickTimes;
    for (const DrumHit& h : score.kicks) kickTimes.push_back(h.time);
    const std::vector<float> duck = kickDucking(frames, kickTimes, 0.11f);

    renderDryDrums(score, master);
    renderRoomDrums(score, master, sends);
    renderBass(score, master, duck);
    renderPads(score, master, sends, duck);
    renderPlucks(score, master, sends, duck);
    renderLead(score, master, sends, duck);
    returnSends(sends, master, duck);

    blockDc(master.left);
    blockDc(master.right);
    // The last second fades to silence so the loop back to the start is clean.
    const size_t fade = static_cast<size_t>(SYNTH_RATE);
    std::vector<int16_t> pcm(frames * 2);
    float level = 1.0f;
    for (size_t i = 0; i < frames; ++i) {
        float gain = i + fade > frames ? static_cast<float>(frames - i) / static_cast<float>(fade) : 1.0f;
        if (i % 64 == 0) level = curveValue(score.masterGain, static_cast<double>(i) / SYNTH_RATE);
        gain *= level;
        pcm[2 * i] = toSample(master.left[i] * gain);
        pcm[2 * i + 1] = toSample(master.right[i] * gain);
    }
    return pcm;
}
