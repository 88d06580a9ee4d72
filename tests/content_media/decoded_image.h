// A PCX file from the content generator, decoded by the show's decoder.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <vector>

#include "resources/pcx_decoder.h"

struct DecodedImage {
    int width = 0;
    std::vector<uint8_t> pixels;  // blue, green, red, untouched: 4 bytes a pixel
    long endPosition = 0;         // the stream's position after decoding
    uint8_t blue(int x, int y) const { return pixels[(static_cast<size_t>(y) * width + x) * 4]; }
    uint8_t green(int x, int y) const { return pixels[(static_cast<size_t>(y) * width + x) * 4 + 1]; }
    uint8_t red(int x, int y) const { return pixels[(static_cast<size_t>(y) * width + x) * 4 + 2]; }
};

// Decodes `file` with decodePcx into a width x height buffer.
inline DecodedImage decodeImage(const std::vector<uint8_t>& file, int width, int height) {
    DecodedImage image{width, std::vector<uint8_t>(static_cast<size_t>(width) * height * 4, 0), 0};
    std::unique_ptr<FILE, int (*)(FILE*)> stream(std::tmpfile(), std::fclose);
    std::fwrite(file.data(), 1, file.size(), stream.get());
    std::rewind(stream.get());
    decodePcx(stream.get(), static_cast<uint32_t>(file.size()), image.pixels.data(), width, height);
    image.endPosition = std::ftell(stream.get());
    return image;
}
