// Decodes a whole soundtrack file to 16-bit stereo PCM at 44,100 Hz, the way
// the audio layer plays it: an MP3 stream, or a tracker module when the file is
// not an MP3. Used by the fixed-step clock and by tests of the content.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct DecodedAudio {
    std::vector<int16_t> samples;  // interleaved left, right
    size_t frames() const { return samples.size() / 2; }
};

// Returns false and fills `error` when the file opens neither as an MP3 stream
// nor as a module.
bool decodeSoundtrack(const std::string& path, DecodedAudio* audio, std::string* error);
