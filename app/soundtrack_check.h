// A soundtrack shorter than the show: it plays as it is and the demo clock
// loops with it, so one part repeats for ever. The show says so once, at start.
#pragma once

#include <cstdint>
#include <string>

// The part (1..13) that is playing when a song of `songMillis` ends, and so
// repeats: the first whose end time the demo time cannot pass before the song
// starts again. 0 when the song outlasts the show or its length is unknown (0).
int32_t partRepeatedBySong(uint32_t songMillis);

// One line for standard error, e.g. "kaskade: harbour.mp3 lasts 12.3 s,
// shorter than the show (226.9 s): the show will not get past part 1"; empty
// when partRepeatedBySong is 0.
std::string shortSoundtrackWarning(const char* fileName, uint32_t songMillis);
