// Where the soundtrack's beats fall. The music has one section per demo
// part, each ending exactly where its part ends (demo time 21.0 s, 33.5 s, ...
// 226.9 s), and a short tail after the last. Each section holds a whole
// number of beats at its own steady tempo (120 to 127 beats per minute), so
// its bars start on the part change; a section whose beats do not fill whole
// bars ends on a short bar, which the score uses for a fill.
#pragma once

#include <array>

struct MusicSection {
    double start;   // seconds
    double end;     // seconds
    int firstBeat;  // index of the section's first beat in the whole track
    int beats;
};

constexpr int MUSIC_SECTION_COUNT = 14;  // thirteen parts and the tail
constexpr int BEATS_PER_BAR = 4;

const std::array<MusicSection, MUSIC_SECTION_COUNT>& musicSections();

// Seconds at a (fractional) beat index of the whole track; beats beyond the
// end continue at the tail's tempo.
double beatTime(double beat);
// Length of the whole track in seconds (the end of the tail).
double trackSeconds();
// The whole-track beat nearest to `seconds`.
int nearestBeat(double seconds);
