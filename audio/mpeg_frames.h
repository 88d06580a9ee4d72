// MPEG audio frame headers (MPEG 1, 2 and 2.5, layers I to III): what a header
// says and where a run of real frames starts in a file that does not begin
// with one (a stray header, a partial frame or other bytes written before it).
#pragma once

#include <cstddef>
#include <cstdint>

struct MpegFrameHeader {
    int version = 0;     // 1, 2, or 25 for MPEG 2.5
    int layer = 0;       // 1..3
    int sampleRate = 0;  // Hz
    int length = 0;      // bytes of the whole frame, header included
};

// Reads the four header bytes at `bytes`. False for anything that is not a
// frame header with a known length (no sync, a reserved field, free format).
bool readMpegFrameHeader(const uint8_t* bytes, size_t size, MpegFrameHeader* header);

// The offset of the first place in `bytes` where `run` frames follow each
// other, each starting where the one before it ends, all of the same version,
// layer and sample rate; ID3v2 tags met on the way are stepped over. -1 when
// there is none. Random bytes practically never hold four such frames in a row.
long findMpegFrameRun(const uint8_t* bytes, size_t size, int run);
