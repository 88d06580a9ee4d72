// The PCX decoder: 8-bit indexed images (256-colour palette at the end of the
// file) and 24-bit images stored as three 8-bit planes, run-length encoded.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>

constexpr size_t PCX_HEADER_SIZE = 128;

// The header fields the decoder uses (little-endian in the file).
struct PcxHeader {
    int manufacturer;  // must be 10
    int version;       // must be 5 or more
    int bitsPerPixel;  // bits per pixel of one plane; must be 8
    int width;         // x max - x min + 1; zero or less in a malformed file
    int height;        // y max - y min + 1; zero or less in a malformed file
    int planes;        // 1: indexed; 3: red, green and blue planes
    int bytesPerLine;  // length of one plane's scan line; at least `width` when well formed
};

// Reads the header from the first `size` bytes of a PCX file (PCX_HEADER_SIZE
// of them when the file is long enough). Returns null when the decoder takes
// the image, otherwise the failure text: "This isn't a pcx file" (wrong
// manufacturer, version below 5, not 8 bits per pixel, header cut short) or
// "unknown pcx type" (plane count other than 1 or 3).
const char* parsePcxHeader(const uint8_t* bytes, size_t size, PcxHeader* header);

// Decodes the PCX file that starts at `file`'s position and is `dataSize` bytes
// long into `pixels`, a caller's buffer of width x height pixels of 4 bytes in
// memory order blue, green, red, and a fourth byte the decoder never writes.
// Image row r goes to buffer row r (pixel r x width), its top row first; image
// pixels outside the buffer and the padding at the end of each scan line are
// dropped. Reading stops at `dataSize` bytes or the end of the file, whichever
// comes first; pixels the data does not reach keep what they held (the palette
// entries of an indexed image cut short read as black). On return the stream
// stands after the last byte read: the palette's end for an indexed image.
// A header the decoder does not take ends the process through libraryFatal
// with the text of parsePcxHeader.
void decodePcx(FILE* file, uint32_t dataSize, uint8_t* pixels, int width, int height);
