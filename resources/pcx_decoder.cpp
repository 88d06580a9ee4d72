#include "resources/pcx_decoder.h"

#include <algorithm>

#include "resources/library.h"

namespace {

constexpr int PCX_MANUFACTURER = 10;
constexpr int PCX_MIN_VERSION = 5;
constexpr int PCX_PALETTE_BYTES = 768;
constexpr int RUN_MARK = 192;  // both top bits set: a run; its low six bits count
constexpr int RUN_COUNT_MASK = 63;

int readU16(const uint8_t* bytes) { return bytes[0] | bytes[1] << 8; }

// Reads an entry one byte per call, relying on the stream's buffering, and never
// past the entry's data or the end of the file.
struct EntryReader {
    FILE* file;
    uint32_t left;  // data bytes of the entry not read yet

    // The next byte, or -1 at the end of the entry or of the file.
    int next() {
        if (left == 0) {
            return -1;
        }
        const int byte = std::getc(file);
        if (byte == EOF) {
            left = 0;
            return -1;
        }
        --left;
        return byte;
    }
};

// Puts decoded bytes in their place: scan line after scan line, each line one
// plane after the other (red, green, blue for three planes; indices for one).
// Indexed pixels get their index in byte 2 until the palette pass.
struct PcxPlacer {
    uint8_t* pixels;
    int bufferWidth;
    int columns;  // pixels kept from each line: within the image, the line and the buffer
    int rows;     // lines kept: within the image and the buffer
    int planes;
    int bytesPerLine;
    int64_t line = 0;  // where the next decoded byte belongs
    int plane = 0;
    int x = 0;

    void put(uint8_t value) {
        if (line < rows && x < columns) {
            const size_t pixel = static_cast<size_t>(line) * bufferWidth + x;
            pixels[pixel * 4 + (planes == 1 ? 2 : 2 - plane)] = value;
        }
        if (++x == bytesPerLine) {
            x = 0;
            if (++plane == planes) {
                plane = 0;
                ++line;
            }
        }
    }
};

// Run-length decoding of height x bytes per line x planes bytes. A packet is
// always completed, even past that number (its extra bytes fall outside the
// kept lines); the data running out ends the image early.
void decodeRuns(EntryReader& reader, PcxPlacer& placer, uint64_t total) {
    uint64_t produced = 0;
    while (produced < total) {
        const int byte = reader.next();
        if (byte < 0) {
            return;
        }
        if (byte < RUN_MARK) {
            placer.put(static_cast<uint8_t>(byte));
            ++produced;
            continue;
        }
        const int value = reader.next();
        if (value < 0) {
            return;
        }
        const int count = byte & RUN_COUNT_MASK;
        for (int i = 0; i < count; ++i) {
            placer.put(static_cast<uint8_t>(value));
        }
        produced += count;
    }
}

// Reads the marker byte and the 256-entry palette that end an indexed image,
// then turns every placed index into blue, green, red.
void applyPalette(EntryReader& reader, const PcxPlacer& placer) {
    uint8_t palette[PCX_PALETTE_BYTES] = {};
    reader.next();  // the marker, 12 in a well-formed file, not checked
    for (int i = 0; i < PCX_PALETTE_BYTES; ++i) {
        const int byte = reader.next();
        if (byte < 0) {
            break;
        }
        palette[i] = static_cast<uint8_t>(byte);
    }
    for (int y = 0; y < placer.rows && y <= placer.line; ++y) {
        const int placed = y < placer.line ? placer.columns : std::min(placer.x, placer.columns);
        uint8_t* pixel = placer.pixels + static_cast<size_t>(y) * placer.bufferWidth * 4;
        for (int x = 0; x < placed; ++x, pixel += 4) {
            const uint8_t* colour = palette + pixel[2] * 3;
            pixel[0] = colour[2];
            pixel[1] = colour[1];
            pixel[2] = colour[0];
        }
    }
}

}  // namespace

const char* parsePcxHeader(const uint8_t* bytes, size_t size, PcxHeader* header) {
    static const char* const NOT_PCX = "This isn't a pcx file";
    if (size < 4) {
        return NOT_PCX;
    }
    header->manufacturer = bytes[0];
    header->version = bytes[1];
    header->bitsPerPixel = bytes[3];
    if (header->manufacturer != PCX_MANUFACTURER || header->version < PCX_MIN_VERSION || header->bitsPerPixel != 8) {
        return NOT_PCX;
    }
    if (size > 65) {
        header->planes = bytes[65];
        if (header->planes != 1 && header->planes != 3) {
            return "unknown pcx type";
        }
    }
    if (size < PCX_HEADER_SIZE) {
        return NOT_PCX;
    }
    header->width = readU16(bytes + 8) - readU16(bytes + 4) + 1;
    header->height = readU16(bytes + 10) - readU16(bytes + 6) + 1;
    header->bytesPerLine = readU16(bytes + 66);
    return nullptr;
}

void decodePcx(FILE* file, uint32_t dataSize, uint8_t* pixels, int width, int height) {
    EntryReader reader{file, dataSize};
    uint8_t bytes[PCX_HEADER_SIZE];
    size_t got = 0;
    for (int byte = 0; got < PCX_HEADER_SIZE && (byte = reader.next()) >= 0;) {
        bytes[got++] = static_cast<uint8_t>(byte);
    }
    PcxHeader header;
    if (const char* problem = parsePcxHeader(bytes, got, &header)) {
        libraryFatal(problem);
    }
    const bool haveBuffer = pixels != nullptr && width > 0 && height > 0;
    PcxPlacer placer{pixels,
                     width,
                     haveBuffer ? std::max(0, std::min({header.width, header.bytesPerLine, width})) : 0,
                     haveBuffer ? std::max(0, std::min(header.height, height)) : 0,
                     header.planes,
                     header.bytesPerLine};
    const uint64_t total = static_cast<uint64_t>(std::max(0, header.height)) * header.bytesPerLine * header.planes;
    decodeRuns(reader, placer, total);
    if (header.planes == 1) {
        applyPalette(reader, placer);
    }
}
