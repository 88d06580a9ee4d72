// The soundtrack's pitched instruments, rendered one note at a time and added
// into a stereo buffer. A note sounds from `time` for `length` seconds, then
// releases (each voice's release adds a little after the end).
#pragma once

#include <cstdint>

#include "content/music/synth_dsp.h"

struct ToneNote {
    double time;     // seconds
    double length;   // seconds the note is held
    float pitch;     // MIDI note number
    float velocity;  // 0..1
    float pan;       // -1 (left) .. 1 (right)
};

// Saw and sine through a low-pass with a short filter envelope; centred.
// Peak about 0.45 x velocity.
void renderBassNote(StereoBuffer& out, const ToneNote& note);
// Three detuned saws spread left and right, slow attack, 0.9 s release; unfiltered
// (the pad bus is filtered as a whole). Peak about 0.2 x velocity per note.
void renderPadNote(StereoBuffer& out, const ToneNote& note, uint32_t seed);
// Short bright pluck for arpeggios: saw and pulse with a fast filter decay.
void renderPluckNote(StereoBuffer& out, const ToneNote& note);
// Singing lead: two detuned saws and a sub pulse, delayed vibrato, soft filter envelope.
void renderLeadNote(StereoBuffer& out, const ToneNote& note);
