// The soundtrack's drum sounds, synthesized per hit and added into a stereo
// buffer at `time` (seconds). `velocity` 0..1 scales the hit; `seed` varies
// its noise so repeated hits are not identical (same seed, same sound).
#pragma once

#include <cstdint>

#include "content/music/synth_dsp.h"

// Sine body falling from about 170 Hz to 45 Hz with a click, driven into a soft
// clip for punch; about 18 dB down after 0.2 s, gone after 0.4 s. Peak 0.95 x velocity.
void renderKick(StereoBuffer& out, double time, float velocity);
// Three quick noise bursts and a short tail around 1.2 kHz, slightly wide.
void renderClap(StereoBuffer& out, double time, float velocity, uint32_t seed);
// Tuned body and bright noise: used in rolls and fills.
void renderSnare(StereoBuffer& out, double time, float velocity, float pan, uint32_t seed);
// Metallic noise above 7 kHz: 45 ms (closed) or 0.3 s (open).
void renderHat(StereoBuffer& out, double time, float velocity, float pan, bool open, uint32_t seed);
// Soft band-passed noise tick around 5 kHz.
void renderShaker(StereoBuffer& out, double time, float velocity, float pan, uint32_t seed);
// Long wide cymbal wash, about 2.5 s.
void renderCrash(StereoBuffer& out, double time, float velocity, uint32_t seed);
// Deep sine impact falling from 70 to 32 Hz, about 1.5 s.
void renderBoom(StereoBuffer& out, double time, float velocity);
// Noise swept upwards from 300 Hz to 9 kHz over `length` seconds, swelling.
void renderRiser(StereoBuffer& out, double time, double length, float velocity, uint32_t seed);
