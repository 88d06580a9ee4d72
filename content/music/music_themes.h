// The harmony and melodies of the soundtrack, in A minor: three four-bar
// chord progressions (one chord per bar) and three eight-bar melodies that
// fit them. Pitches are MIDI note numbers; beats count from the phrase start.
#pragma once

#include <span>

struct Chord {
    int bass;        // root for the bass line, octave 1 to 2
    int voicing[4];  // pad voicing around middle C, voice-led from the chord before
};

enum class Progression {
    Main,   // Am9, Fmaj9, Cmaj9, G6: the groove sections
    Drive,  // Dm7, Am7, F6/9, E7: the two peaks
    Dark,   // Fmaj9, G6, Em7, Am9: the breakdowns
};

struct MotifNote {
    float beat;    // 0..32 within the eight-bar phrase
    float length;  // beats
    int pitch;
};

enum class Melody {
    None,
    ThemeA,   // over Main: the song's tune
    ThemeB,   // over Drive: busier, higher, for the peaks
    Counter,  // over Dark: long notes for the breakdowns
};

// The chord of bar `bar` (counted from the section start; the progression repeats).
const Chord& chordAt(Progression progression, int bar);
// The notes of one eight-bar phrase of `melody` (empty for None).
std::span<const MotifNote> melodyNotes(Melody melody);
