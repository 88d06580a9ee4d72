// The demo clock's two inputs, replaceable: the millisecond clock that stands in
// for the platform's timer, and the source of a channel's level. The live show
// uses the wall clock and the audio layer; tests and the fixed-step mode
// install their own.
#pragma once

#include <cstdint>

#include "audio/audio_output.h"

// A millisecond wall clock: only differences of two readings mean anything,
// taken in wrapping 32-bit arithmetic.
using MillisecondClock = uint32_t (*)();
// The packed level (left low word, right high word) of a channel.
using LevelSource = uint32_t (*)(AudioHandle channel);

// Monotonic milliseconds, wrapping at 2^32.
uint32_t monotonicMillis();

extern MillisecondClock g_millisecondClock;  // monotonicMillis unless replaced
extern LevelSource g_levelSource;            // audioChannelGetLevel unless replaced
