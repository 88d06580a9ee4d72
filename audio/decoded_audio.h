// A whole soundtrack decoded to 16-bit stereo PCM at 44,100 Hz, and the level
// meter read over it at a position of the song: what the fixed-step clock (and
// a platform whose audio is decoded up front) reports as the channel's level.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

struct DecodedAudio {
    std::vector<int16_t> samples;  // interleaved left, right
    size_t frames() const { return samples.size() / 2; }
};

// The packed 20 ms peak level (level_meter.h) of the audio that ends
// `songMillis` milliseconds into the song, the song looping; before the song's
// start the window reaches back into silence (negative times are 0). A song
// shorter than the window reports the no-channel value 0xFFFFFFFF.
uint32_t songLevelAt(const DecodedAudio& song, int32_t songMillis);
