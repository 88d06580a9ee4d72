// Decodes a whole soundtrack file to 16-bit stereo PCM at 44,100 Hz, the way
// the audio layer plays it: an MP3 stream, or a tracker module when the file is
// not an MP3. Used by the fixed-step clock and by tests of the content.
#pragma once

#include <string>

#include "audio/decoded_audio.h"

// Returns false and fills `error` when the file opens neither as an MP3 stream
// nor as a module.
bool decodeSoundtrack(const std::string& path, DecodedAudio* audio, std::string* error);
