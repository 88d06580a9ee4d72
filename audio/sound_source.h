// A decoded soundtrack: an MP3 stream (libmpg123) or a tracker module
// (libopenmpt), read as 16-bit interleaved stereo at 44,100 Hz and looping
// sample-exactly.
#pragma once

#include <cstddef>
#include <cstdint>

enum class SoundFormat {
    Unreadable,  // missing or unreadable file
    Mp3,         // starts with an ID3v2 tag or an MPEG audio frame sync, or holds a
                 // run of MPEG frames in its first 64 KiB (other bytes before them)
    Module,      // a tracker module that libopenmpt recognises
    Unknown      // anything else
};

// Looks at the start of the file only (64 KiB). A module is recognised first, so that a
// module (or a WAV) never reaches the MP3 decoder, which would take it.
SoundFormat probeSoundFile(const char* path);

struct SoundSource;

// Null unless the file is an MP3 that libmpg123 opens.
SoundSource* openStreamSource(const char* path);
// Null unless the file is a module that libopenmpt loads.
SoundSource* openModuleSource(const char* path);
void closeSource(SoundSource* source);

// The song's length in stereo frames; 0 when it cannot be told.
size_t sourceLength(SoundSource& source);

// Reading goes on from stereo frame `frame` of the song (0 is its start), or
// from as near it as the song allows: a module only starts at a row. Returns
// the frame reading goes on from.
size_t seekSource(SoundSource& source, size_t frame);

// Reads up to `frames` stereo frames into `out` (2 * frames samples) and
// returns how many were read. 0 means the song's end was reached: the next
// read starts again from the song's first sample.
size_t readSource(SoundSource& source, int16_t* out, size_t frames);
