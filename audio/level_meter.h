// The channel level the demo parts react to: per channel, the peak absolute
// sample value over the most recent 20 ms of audio, on a 0..128 scale (full
// scale 32768 maps to 128), packed with the left level in the low 16 bits and
// the right level in the high 16 bits.
#pragma once

#include <cstddef>
#include <cstdint>

constexpr int LEVEL_WINDOW_MS = 20;
constexpr int OUTPUT_RATE = 44100;
constexpr size_t LEVEL_WINDOW_FRAMES = OUTPUT_RATE * LEVEL_WINDOW_MS / 1000;  // 882

// Maps one channel's peak absolute sample (0..32768) to the 0..128 scale.
uint32_t levelFromPeak(uint32_t peak);

// Packed level of `frames` interleaved stereo frames ending at `samples + 2 * frames`.
uint32_t packedPeakLevel(const int16_t* samples, size_t frames);
