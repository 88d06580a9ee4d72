#include "content/music/music_timeline.h"

#include <cmath>

namespace {

// End times of the demo parts and the tail, and the beats each section holds.
constexpr double SECTION_ENDS[MUSIC_SECTION_COUNT] = {21.0,  33.5,  39.5,  53.4,  65.8,  77.0,  96.0,
                                                      112.7, 130.7, 149.8, 175.8, 192.5, 226.9, 0.0};
constexpr int SECTION_BEATS[MUSIC_SECTION_COUNT] = {44, 26, 12, 28, 26, 23, 40, 34, 38, 40, 54, 34, 72, 8};

std::array<MusicSection, MUSIC_SECTION_COUNT> buildSections() {
    std::array<MusicSection, MUSIC_SECTION_COUNT> sections{};
    double start = 0.0;
    int firstBeat = 0;
    for (int i = 0; i < MUSIC_SECTION_COUNT; ++i) {
        double end = SECTION_ENDS[i];
        if (i == MUSIC_SECTION_COUNT - 1) {
            // The tail keeps the last part's tempo.
            const MusicSection& last = sections[static_cast<size_t>(i - 1)];
            end = start + SECTION_BEATS[i] * (last.end - last.start) / last.beats;
        }
        sections[static_cast<size_t>(i)] = MusicSection{start, end, firstBeat, SECTION_BEATS[i]};
        start = end;
        firstBeat += SECTION_BEATS[i];
    }
    return sections;
}

}  // namespace

const std::array<MusicSection, MUSIC_SECTION_COUNT>& musicSections() {
    static const std::array<MusicSection, MUSIC_SECTION_COUNT> g_musicSections = buildSections();
    return g_musicSections;
}

double beatTime(double beat) {
    const auto& sections = musicSections();
    if (beat <= 0.0) return beat * (sections[0].end - sections[0].start) / sections[0].beats;
    for (const MusicSection& section : sections) {
        if (beat < section.firstBeat + section.beats || &section == &sections.back()) {
            const double secondsPerBeat = (section.end - section.start) / section.beats;
            return section.start + (beat - section.firstBeat) * secondsPerBeat;
        }
    }
    return 0.0;
}

double trackSeconds() { return musicSections().back().end; }

int nearestBeat(double seconds) {
    int best = 0;
    double bestDistance = 1e9;
    const MusicSection& last = musicSections().back();
    for (int beat = 0; beat <= last.firstBeat + last.beats; ++beat) {
        const double distance = std::fabs(beatTime(beat) - seconds);
        if (distance < bestDistance) {
            bestDistance = distance;
            best = beat;
        }
    }
    return best;
}
