#include "content/formats/pcx_writer.h"

#include <stdexcept>

namespace {

constexpr size_t HEADER_BYTES = 128;

void putU16(std::vector<uint8_t>& out, size_t offset, int value) {
    out[offset] = static_cast<uint8_t>(value & 0xFF);
    out[offset + 1] = static_cast<uint8_t>((value >> 8) & 0xFF);
}

// Plane lines are padded to an even number of bytes, as PCX readers expect.
int bytesPerLine(int width) { return width + (width & 1); }

void checkSize(int width, int height, size_t bytes, size_t bytesPerPixel) {
    if (width < 1 || width > 65535 || height < 1 || height > 65535) {
        throw std::invalid_argument("PCX size out of range");
    }
    if (bytes != static_cast<size_t>(width) * static_cast<size_t>(height) * bytesPerPixel) {
        throw std::invalid_argument("PCX pixel data does not match its size");
    }
}

std::vector<uint8_t> header(int width, int height, int planes) {
    std::vector<uint8_t> out(HEADER_BYTES, 0);
    out[0] = 10;  // manufacturer
    out[1] = 5;   // version: 256-colour palette or 24-bit
    out[2] = 1;   // run-length encoding
    out[3] = 8;   // bits per pixel of one plane
    putU16(out, 8, width - 1);  // x max (x min and y min stay 0)
    putU16(out, 10, height - 1);
    putU16(out, 12, 72);  // horizontal and vertical resolution, dots per inch
    putU16(out, 14, 72);
    out[65] = static_cast<uint8_t>(planes);
    putU16(out, 66, bytesPerLine(width));
    putU16(out, 68, 1);  // palette info: colour
    return out;
}

}  // namespace

void appendPcxRunLength(const uint8_t* line, int length, std::vector<uint8_t>& out) {
    int i = 0;
    while (i < length) {
        const uint8_t value = line[i];
        int run = 1;
        while (i + run < length && run < PCX_MAX_RUN && line[i + run] == value) {
            ++run;
        }
        if (run > 1 || value >= 0xC0) {
            out.push_back(static_cast<uint8_t>(0xC0 | run));
        }
        out.push_back(value);
        i += run;
    }
}

std::vector<uint8_t> writePcxIndexed(int width, int height, const std::vector<uint8_t>& indices,
                                     const PcxPalette& palette) {
    checkSize(width, height, indices.size(), 1);
    std::vector<uint8_t> out = header(width, height, 1);
    std::vector<uint8_t> line(static_cast<size_t>(bytesPerLine(width)), 0);
    for (int y = 0; y < height; ++y) {
        const uint8_t* row = indices.data() + static_cast<size_t>(y) * width;
        std::copy(row, row + width, line.begin());
        appendPcxRunLength(line.data(), static_cast<int>(line.size()), out);
    }
    out.push_back(0x0C);
    out.insert(out.end(), palette.begin(), palette.end());
    return out;
}

std::vector<uint8_t> writePcxRgb(int width, int height, const std::vector<uint8_t>& rgb) {
    checkSize(width, height, rgb.size(), 3);
    std::vector<uint8_t> out = header(width, height, 3);
    std::vector<uint8_t> line(static_cast<size_t>(bytesPerLine(width)), 0);
    for (int y = 0; y < height; ++y) {
        const uint8_t* row = rgb.data() + static_cast<size_t>(y) * width * 3;
        for (int channel = 0; channel < 3; ++channel) {
            for (int x = 0; x < width; ++x) {
                line[static_cast<size_t>(x)] = row[x * 3 + channel];
            }
            appendPcxRunLength(line.data(), static_cast<int>(line.size()), out);
        }
    }
    return out;
}
