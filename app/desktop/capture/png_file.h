// PNG files for the people who look at frames and images: 8-bit RGB or RGBA,
// rows top to bottom.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct PngImage {
    int width = 0;
    int height = 0;
    int channels = 0;              // 3 (RGB) or 4 (RGBA)
    std::vector<uint8_t> pixels;   // width * height * channels bytes, top row first
};

// Writes `pixels` (width * height * channels bytes, top row first, or bottom row
// first when `bottomUp`, as glReadPixels returns them). `level` is zlib's 0..9.
// Returns false and fills `error` when the file cannot be written.
bool writePng(const std::string& path, int width, int height, int channels, const uint8_t* pixels,
              bool bottomUp, int level, std::string* error);

// Reads any PNG and converts it to 8-bit RGB or RGBA (alpha kept when present,
// palettes and grey expanded). Returns false and fills `error` on failure.
bool readPng(const std::string& path, PngImage* image, std::string* error);
