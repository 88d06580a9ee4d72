// PCX files the way the show's decoder reads them: version 5, run-length
// encoded, 8 bits per plane, either one plane of palette indices followed by
// the 0x0C marker and a 768-byte palette, or three planes (red, green, blue)
// of a 24-bit image. Row 0 is the image's top row.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

constexpr int PCX_MAX_RUN = 63;

// 256 entries of red, green, blue, 0..255 each.
using PcxPalette = std::array<uint8_t, 768>;

// Whole file of an indexed image. `indices` holds width × height palette
// indices row after row. Width and height are 1..65535; a line of odd width
// is padded with one zero byte so every plane line has an even length.
// Throws std::invalid_argument when the sizes do not match.
std::vector<uint8_t> writePcxIndexed(int width, int height, const std::vector<uint8_t>& indices,
                                     const PcxPalette& palette);

// Whole file of a 24-bit image. `rgb` holds width × height pixels of red,
// green, blue bytes, row after row. Same size rules as writePcxIndexed.
std::vector<uint8_t> writePcxRgb(int width, int height, const std::vector<uint8_t>& rgb);

// Appends the run-length packets of one plane line to `out`: runs of up to 63
// equal bytes as (0xC0 | count, value); a single byte below 0xC0 as itself.
void appendPcxRunLength(const uint8_t* line, int length, std::vector<uint8_t>& out);
