#include "content/music/music_score.h"

#include <algorithm>
#include <cmath>

#include "content/music/music_themes.h"
#include "content/music/music_timeline.h"

namespace {

enum class Beat { None, Intro, Full, HalfTime, Build };
enum class Hats { None, Shaker, Closed, ClosedAndOpen, Ride };
enum class BassLine { None, Offbeat, Rolling, Long };
enum class Arp { None, Eighths, Sixteenths };
enum class Ending { None, SnareFill, Riser, RiserAndFill };

// How a run of bars of one section is played.
struct Span {
    int section;
    int firstBar;
    int bars;  // -1: to the end of the section
    Progression progression;
    Beat beat;
    Hats hats;
    BassLine bass;
    float padVelocity;
    float cutoffStart;  // pad filter, Hz, at the span's start and end
    float cutoffEnd;
    Arp arp;
    float arpVelocity;
    Melody melody;
    int melodyBarOffset;  // which bar of the eight-bar phrase the span starts on
    int transpose;
    float melodyVelocity;
    bool crash;
    bool boom;
    Ending ending;
    bool holdChord;       // one chord for the whole span
    float level = 0.66f;  // master gain: the peaks of part 7 and part 11 stand out
};

// clang-format off
constexpr Span SPANS[] = {
    // part 1: the kick alone stands out; pads, shaker and plucks stay far below it
    {0, 0, -1, Progression::Main, Beat::Intro, Hats::Shaker, BassLine::None, 0.12f, 500, 1300, Arp::Eighths, 0.035f, Melody::None, 0, 0, 0, false, false, Ending::Riser, false},
    // part 2: the groove comes in
    {1, 0, -1, Progression::Main, Beat::Full, Hats::ClosedAndOpen, BassLine::Offbeat, 0.65f, 1800, 2600, Arp::None, 0, Melody::None, 0, 0, 0, true, true, Ending::SnareFill, false},
    // part 3: a short airy break
    {2, 0, -1, Progression::Dark, Beat::None, Hats::Closed, BassLine::Long, 0.7f, 1400, 2000, Arp::Sixteenths, 0.55f, Melody::None, 0, 0, 0, true, false, Ending::None, false},
    // part 4: groove with arpeggio; accents on the camera's two jumps are added below
    {3, 0, -1, Progression::Main, Beat::Full, Hats::ClosedAndOpen, BassLine::Rolling, 0.6f, 2000, 2400, Arp::Sixteenths, 0.55f, Melody::None, 0, 0, 0, true, false, Ending::None, false},
    // part 5: the tune
    {4, 0, -1, Progression::Main, Beat::Full, Hats::ClosedAndOpen, BassLine::Offbeat, 0.55f, 2400, 2800, Arp::None, 0, Melody::ThemeA, 0, 0, 0.8f, true, false, Ending::SnareFill, false},
    // part 6: breakdown
    {5, 0, -1, Progression::Dark, Beat::None, Hats::Shaker, BassLine::Long, 0.8f, 3000, 1400, Arp::None, 0, Melody::Counter, 0, 0, 0.6f, true, false, Ending::None, false},
    // part 7: two bars of build, then the loudest section
    {6, 0, 2, Progression::Drive, Beat::Build, Hats::None, BassLine::None, 0.7f, 450, 4500, Arp::None, 0, Melody::None, 0, 0, 0, false, false, Ending::Riser, false},
    {6, 2, -1, Progression::Drive, Beat::Full, Hats::ClosedAndOpen, BassLine::Rolling, 0.75f, 3600, 3600, Arp::Sixteenths, 0.5f, Melody::ThemeB, 0, 0, 0.85f, true, true, Ending::None, false, 0.85f},
    // part 8: after the peak
    {7, 0, -1, Progression::Main, Beat::Full, Hats::ClosedAndOpen, BassLine::Offbeat, 0.6f, 2000, 2400, Arp::Sixteenths, 0.6f, Melody::None, 0, 0, 0, true, false, Ending::SnareFill, false},
    // part 9: the tune again over the rolling bass
    {8, 0, -1, Progression::Main, Beat::Full, Hats::ClosedAndOpen, BassLine::Rolling, 0.6f, 2600, 2600, Arp::None, 0, Melody::ThemeA, 0, 0, 0.8f, true, false, Ending::SnareFill, false},
    // part 10: half time in the fog
    {9, 0, -1, Progression::Dark, Beat::HalfTime, Hats::Ride, BassLine::Long, 0.8f, 1500, 3200, Arp::Sixteenths, 0.4f, Melody::Counter, 0, 12, 0.55f, true, false, Ending::RiserAndFill, false},
    // part 11: the second peak
    {10, 0, -1, Progression::Drive, Beat::Full, Hats::ClosedAndOpen, BassLine::Rolling, 0.7f, 3200, 3400, Arp::Sixteenths, 0.5f, Melody::ThemeB, 0, 0, 0.85f, true, true, Ending::SnareFill, false, 0.72f},
    // part 12: reprise of part 4
    {11, 0, -1, Progression::Main, Beat::Full, Hats::ClosedAndOpen, BassLine::Rolling, 0.65f, 2200, 2400, Arp::Sixteenths, 0.6f, Melody::None, 0, 0, 0, true, false, Ending::SnareFill, false},
    // part 13: the tune a last time, then the instruments leave one by one
    {12, 0, 8, Progression::Main, Beat::Full, Hats::ClosedAndOpen, BassLine::Offbeat, 0.7f, 2600, 2600, Arp::Sixteenths, 0.5f, Melody::ThemeA, 0, 0, 0.85f, true, true, Ending::None, false},
    {12, 8, 4, Progression::Main, Beat::Full, Hats::Closed, BassLine::Offbeat, 0.7f, 2600, 2000, Arp::Sixteenths, 0.45f, Melody::ThemeA, 0, 0, 0.7f, false, false, Ending::None, false},
    {12, 12, 4, Progression::Main, Beat::None, Hats::Shaker, BassLine::Long, 0.75f, 2000, 1200, Arp::Sixteenths, 0.35f, Melody::ThemeA, 4, 0, 0.55f, false, false, Ending::None, false},
    {12, 16, -1, Progression::Main, Beat::None, Hats::None, BassLine::Long, 0.7f, 1200, 700, Arp::None, 0, Melody::None, 0, 0, 0, false, false, Ending::None, true},
};
// clang-format on

constexpr float SWING = 0.04f;  // beats a 16th off the eighth grid is late

// Writes the events of one span into the score.
class SpanWriter {
public:
    SpanWriter(Score& score, const Span& span, uint32_t seed)
        : score_(score), span_(span), random_(seed), seed_(seed) {
        const MusicSection& section = musicSections()[static_cast<size_t>(span.section)];
        const int sectionBars = (section.beats + BEATS_PER_BAR - 1) / BEATS_PER_BAR;
        firstBeat_ = section.firstBeat + span.firstBar * BEATS_PER_BAR;
        const int lastBar = span.bars < 0 ? sectionBars : std::min(sectionBars, span.firstBar + span.bars);
        endBeat_ = std::min(section.firstBeat + section.beats, section.firstBeat + lastBar * BEATS_PER_BAR);
    }

    void write() {
        score_.padCutoff.push_back({beatTime(firstBeat_), span_.cutoffStart});
        score_.padCutoff.push_back({beatTime(endBeat_), span_.cutoffEnd});
        score_.masterGain.push_back({beatTime(firstBeat_), span_.level});
        score_.masterGain.push_back({beatTime(endBeat_), span_.level});
        if (span_.crash) score_.crashes.push_back(hit(0.0, 0.75f, 0.0f));
        if (span_.boom) score_.booms.push_back(hit(0.0, 0.8f, 0.0f));
        for (int bar = 0; firstBeat_ + bar * BEATS_PER_BAR < endBeat_; ++bar) writeBar(bar);
        writeMelody();
        if (span_.holdChord) {
            // The last note of the show: the tune's home note over the final chord.
            score_.leads.push_back(note(0.0, endBeat_ - firstBeat_ - 1.0, 81.0f, 0.5f, 0.0f));
        }
    }

private:
    double spanBeats() const { return endBeat_ - firstBeat_; }

    // One bar; the span's last bar may be short and carries its ending.
    void writeBar(int bar) {
        const double barStart = bar * BEATS_PER_BAR;
        const double barBeats = std::min<double>(BEATS_PER_BAR, spanBeats() - barStart);
        const bool last = barStart + barBeats >= spanBeats();
        const bool fill = last && (span_.ending == Ending::SnareFill || span_.ending == Ending::RiserAndFill);
        const Chord& chord = chordAt(span_.progression, span_.holdChord ? 0 : bar);
        writeDrums(barStart, barBeats, fill);
        writeHats(barStart, barBeats);
        writeBass(chord, barStart, barBeats);
        writeArp(chord, barStart, barBeats);
        if (!span_.holdChord || bar == 0) writePads(chord, barStart, span_.holdChord ? spanBeats() : barBeats);
        if (fill) writeSnareFill(barStart + (barBeats >= BEATS_PER_BAR ? 3.0 : 0.0), barStart + barBeats);
        if (last && (span_.ending == Ending::Riser || span_.ending == Ending::RiserAndFill)) {
            writeRiser(span_.beat == Beat::Build ? 0.0 : barStart, barStart + barBeats);
        }
    }

    // A noise sweep from `from` to `to` (beats in the span); barely there in the intro.
    void writeRiser(double from, double to) {
        const double start = beatTime(firstBeat_ + from);
        const float level = span_.beat == Beat::Intro ? 0.06f : 0.3f;
        score_.risers.push_back({start, beatTime(firstBeat_ + to) - start, 0.0f, level, 0.0f});
    }

    // Beat within the span to seconds; 16ths off the eighth grid swing late.
    double timeAt(double beat) const {
        const double steps = std::floor(beat * 4.0 + 1e-9);
        const bool onSixteenth = std::fabs(beat * 4.0 - steps) < 1e-6;
        const bool offGrid = onSixteenth && std::fmod(steps, 2.0) == 1.0;
        return beatTime(firstBeat_ + beat + (offGrid ? SWING : 0.0));
    }

    float jitter(float velocity, float amount = 0.06f) {
        return std::clamp(velocity * (1.0f + amount * random_.next()), 0.0f, 1.0f);
    }

    DrumHit hit(double beat, float velocity, float pan) { return {timeAt(beat), velocity, pan, ++seed_}; }

    ToneNote note(double beat, double beats, float pitch, float velocity, float pan) {
        const double start = timeAt(beat);
        return {start, beatTime(firstBeat_ + beat + beats) - beatTime(firstBeat_ + beat), pitch, velocity, pan};
    }

    void writeDrums(double bar, double beats, bool fill) {
        const double span = spanBeats();
        for (int beat = 0; beat < beats; ++beat) {
            const double at = bar + beat;
            const bool inFill = fill && (beats < BEATS_PER_BAR || beat == 3);
            switch (span_.beat) {
                case Beat::Intro:
                    score_.kicks.push_back(hit(at, 0.62f, 0.0f));
                    break;
                case Beat::Full:
                    if (!inFill || beat == 0) score_.kicks.push_back(hit(at, jitter(0.95f, 0.02f), 0.0f));
                    if ((beat == 1 || beat == 3) && !inFill) score_.claps.push_back(hit(at, jitter(0.8f), 0.0f));
                    break;
                case Beat::HalfTime:
                    if (beat == 0) score_.kicks.push_back(hit(at, 0.9f, 0.0f));
                    if (beat == 2 && !inFill) score_.claps.push_back(hit(at, 0.85f, 0.0f));
                    if (beat == 2) score_.kicks.push_back(hit(at + 0.5, 0.6f, 0.0f));
                    break;
                case Beat::Build: {
                    const float rise = static_cast<float>(at / span);
                    score_.kicks.push_back(hit(at, 0.2f + 0.6f * rise, 0.0f));
                    const double step = at < span * 0.5 ? 0.5 : 0.25;
                    for (double sub = 0.0; sub < 1.0 - 1e-9; sub += step) {
                        const float level = 0.12f + 0.7f * static_cast<float>((at + sub) / span);
                        score_.snares.push_back(hit(at + sub, level, 0.0f));
                    }
                    break;
                }
                case Beat::None:
                    break;
            }
        }
    }

    void writeHats(double bar, double beats) {
        static constexpr float CLOSED[4] = {0.3f, 0.17f, 0.55f, 0.22f};
        static constexpr float SHAKE[4] = {0.5f, 0.22f, 0.4f, 0.25f};
        for (int step = 0; step < beats * 4; ++step) {
            const double at = bar + step * 0.25;
            const int place = step % 4;
            switch (span_.hats) {
                case Hats::Shaker: {
                    const float level = span_.beat == Beat::Intro ? 0.11f : 0.5f;
                    score_.shakers.push_back(hit(at, jitter(SHAKE[place] * level, 0.15f), -0.35f));
                    break;
                }
                case Hats::Closed:
                    score_.closedHats.push_back(hit(at, jitter(CLOSED[place], 0.12f), 0.3f));
                    break;
                case Hats::ClosedAndOpen:
                    if (place == 2) {
                        score_.openHats.push_back(hit(at, jitter(0.42f, 0.08f), -0.2f));
                    } else {
                        score_.closedHats.push_back(hit(at, jitter(CLOSED[place], 0.12f), 0.3f));
                    }
                    break;
                case Hats::Ride:
                    if (place == 0) score_.openHats.push_back(hit(at, jitter(0.3f, 0.1f), 0.25f));
                    score_.shakers.push_back(hit(at, jitter(SHAKE[place] * 0.35f, 0.15f), -0.35f));
                    break;
                case Hats::None:
                    break;
            }
        }
    }

    void writeBass(const Chord& chord, double bar, double beats) {
        const float root = static_cast<float>(chord.bass);
        switch (span_.bass) {
            case BassLine::Offbeat:
                for (int beat = 0; beat < beats; ++beat) {
                    if (beat == 3) {
                        score_.bass.push_back(note(bar + beat + 0.5, 0.22, root + 12.0f, jitter(0.8f), 0.0f));
                        score_.bass.push_back(note(bar + beat + 0.75, 0.2, root + 7.0f, jitter(0.7f), 0.0f));
                    } else {
                        score_.bass.push_back(note(bar + beat + 0.5, 0.38, root, jitter(0.85f), 0.0f));
                    }
                }
                break;
            case BassLine::Rolling:
                for (int beat = 0; beat < beats; ++beat) {
                    score_.bass.push_back(note(bar + beat + 0.25, 0.18, root, jitter(0.7f), 0.0f));
                    score_.bass.push_back(note(bar + beat + 0.5, 0.2, root + 12.0f, jitter(0.85f), 0.0f));
                    const float third = beat == 3 ? root + 7.0f : root;
                    score_.bass.push_back(note(bar + beat + 0.75, 0.18, third, jitter(0.75f), 0.0f));
                }
                break;
            case BassLine::Long:
                score_.bass.push_back(note(bar, std::min(beats, 4.0) - 0.1, root, 0.55f, 0.0f));
                break;
            case BassLine::None:
                break;
        }
    }

    void writePads(const Chord& chord, double bar, double beats) {
        for (int voice = 0; voice < 4; ++voice) {
            score_.pads.push_back(note(bar, beats, static_cast<float>(chord.voicing[voice]), span_.padVelocity, 0.0f));
        }
    }

    void writeArp(const Chord& chord, double bar, double beats) {
        if (span_.arp == Arp::None) return;
        // Up through the voicing an octave higher and back down again.
        static constexpr int ORDER[8] = {0, 1, 2, 3, 4, 3, 2, 1};
        static constexpr float ACCENT[4] = {1.0f, 0.55f, 0.8f, 0.6f};
        const double step = span_.arp == Arp::Eighths ? 0.5 : 0.25;
        const double entry = span_.beat == Beat::Intro ? 8.0 : 0.0;  // the intro's plucks wait two bars
        for (int i = 0; i < beats / step; ++i) {
            const double at = bar + i * step;
            if (at < entry) continue;
            const int index = ORDER[i % 8];
            const int pitch = index == 4 ? chord.voicing[0] + 24 : chord.voicing[index] + 12;
            const float pan = (index - 2) * 0.22f;
            const float accent = ACCENT[static_cast<int>(std::lround(std::fmod(at, 1.0) * 4.0)) % 4];
            score_.plucks.push_back(note(at, step * 0.9, static_cast<float>(pitch), jitter(span_.arpVelocity * accent), pan));
        }
    }

    void writeSnareFill(double from, double to) {
        const double length = to - from;
        for (double at = from; at < to - 1e-9; at += 0.25) {
            const float rise = static_cast<float>((at - from) / length);
            score_.snares.push_back(hit(at, 0.3f + 0.55f * rise, (rise - 0.5f) * 0.4f));
        }
    }

    void writeMelody() {
        const std::span<const MotifNote> phrase = melodyNotes(span_.melody);
        if (phrase.empty()) return;
        const double offset = span_.melodyBarOffset * BEATS_PER_BAR;
        for (double phraseStart = -offset; phraseStart < spanBeats(); phraseStart += 32.0) {
            for (const MotifNote& motif : phrase) {
                const double at = phraseStart + motif.beat;
                if (at < 0.0 || at >= spanBeats() - 0.01) continue;
                const double length = std::min<double>(motif.length, spanBeats() - at);
                score_.leads.push_back(note(at, length * 0.92, static_cast<float>(motif.pitch + span_.transpose),
                                            jitter(span_.melodyVelocity, 0.05f), 0.0f));
            }
        }
    }

    Score& score_;
    const Span& span_;
    NoiseSource random_;
    uint32_t seed_;  // next drum hit's noise seed
    int firstBeat_ = 0;
    int endBeat_ = 0;
};

// Part 4's camera jumps at 46 s and 52 s get a crash and an impact on the nearest beat.
void addCameraAccents(Score& score) {
    for (double seconds : {46.0, 52.0}) {
        const double time = beatTime(nearestBeat(seconds));
        score.crashes.push_back({time, 0.7f, 0.0f, static_cast<uint32_t>(seconds)});
        score.booms.push_back({time, 0.7f, 0.0f, 0});
    }
}

}  // namespace

Score composeScore() {
    Score score;
    uint32_t seed = 1;
    for (const Span& span : SPANS) {
        SpanWriter(score, span, seed++ * 0x9E3779B9u).write();
    }
    addCameraAccents(score);
    const auto earlier = [](const CurvePoint& a, const CurvePoint& b) { return a.time < b.time; };
    std::stable_sort(score.padCutoff.begin(), score.padCutoff.end(), earlier);
    std::stable_sort(score.masterGain.begin(), score.masterGain.end(), earlier);
    return score;
}
