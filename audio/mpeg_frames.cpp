#include "audio/mpeg_frames.h"

#include <cstring>

namespace {

// Kilobits per second by bitrate index 1..14.
constexpr int BITRATES_V1[3][14] = {
    {32, 64, 96, 128, 160, 192, 224, 256, 288, 320, 352, 384, 416, 448},  // layer I
    {32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384},     // layer II
    {32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320},      // layer III
};
constexpr int BITRATES_V2[2][14] = {
    {32, 48, 56, 64, 80, 96, 112, 128, 144, 160, 176, 192, 224, 256},  // layer I
    {8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160},       // layers II and III
};
constexpr int SAMPLE_RATES_V1[3] = {44100, 48000, 32000};

constexpr size_t ID3_HEADER_SIZE = 10;

// The whole size of an ID3v2 tag starting at `bytes`, or 0 when none starts there.
size_t id3TagSize(const uint8_t* bytes, size_t size) {
    if (size < ID3_HEADER_SIZE || std::memcmp(bytes, "ID3", 3) != 0) {
        return 0;
    }
    const uint8_t* sizeBytes = bytes + 6;  // four 7-bit digits
    if ((sizeBytes[0] | sizeBytes[1] | sizeBytes[2] | sizeBytes[3]) & 0x80) {
        return 0;
    }
    const size_t body = (static_cast<size_t>(sizeBytes[0]) << 21) | (static_cast<size_t>(sizeBytes[1]) << 14) |
                        (static_cast<size_t>(sizeBytes[2]) << 7) | sizeBytes[3];
    const bool footer = (bytes[5] & 0x10) != 0;
    return ID3_HEADER_SIZE + body + (footer ? ID3_HEADER_SIZE : 0);
}

bool sameStream(const MpegFrameHeader& a, const MpegFrameHeader& b) {
    return a.version == b.version && a.layer == b.layer && a.sampleRate == b.sampleRate;
}

// True when `run` frames follow each other from `offset`.
bool runStartsAt(const uint8_t* bytes, size_t size, size_t offset, int run) {
    MpegFrameHeader first;
    if (!readMpegFrameHeader(bytes + offset, size - offset, &first)) {
        return false;
    }
    size_t at = offset + static_cast<size_t>(first.length);
    for (int i = 1; i < run; ++i) {
        MpegFrameHeader next;
        if (at >= size || !readMpegFrameHeader(bytes + at, size - at, &next) || !sameStream(first, next)) {
            return false;
        }
        at += static_cast<size_t>(next.length);
    }
    return true;
}

}  // namespace

bool readMpegFrameHeader(const uint8_t* bytes, size_t size, MpegFrameHeader* header) {
    if (size < 4 || bytes[0] != 0xFF || (bytes[1] & 0xE0) != 0xE0) {
        return false;
    }
    const int versionBits = (bytes[1] >> 3) & 3;
    const int layerBits = (bytes[1] >> 1) & 3;
    const int bitrateIndex = bytes[2] >> 4;
    const int rateIndex = (bytes[2] >> 2) & 3;
    const int padding = (bytes[2] >> 1) & 1;
    const int emphasis = bytes[3] & 3;
    if (versionBits == 1 || layerBits == 0 || bitrateIndex == 0 || bitrateIndex == 15 || rateIndex == 3 ||
        emphasis == 2) {
        return false;
    }
    header->version = versionBits == 3 ? 1 : versionBits == 2 ? 2 : 25;
    header->layer = 4 - layerBits;
    const int divisor = header->version == 1 ? 1 : header->version == 2 ? 2 : 4;
    header->sampleRate = SAMPLE_RATES_V1[rateIndex] / divisor;
    const int kbps = header->version == 1 ? BITRATES_V1[header->layer - 1][bitrateIndex - 1]
                                          : BITRATES_V2[header->layer == 1 ? 0 : 1][bitrateIndex - 1];
    const long bitsPerSecond = kbps * 1000L;
    if (header->layer == 1) {
        header->length = static_cast<int>((12 * bitsPerSecond / header->sampleRate + padding) * 4);
    } else {
        // Layer III of MPEG 2 and 2.5 has half as many samples per frame.
        const long perFrame = header->layer == 3 && header->version != 1 ? 72 : 144;
        header->length = static_cast<int>(perFrame * bitsPerSecond / header->sampleRate + padding);
    }
    return header->length >= 4;
}

long findMpegFrameRun(const uint8_t* bytes, size_t size, int run) {
    size_t offset = 0;
    while (offset + 4 <= size) {
        if (const size_t tag = id3TagSize(bytes + offset, size - offset)) {
            offset += tag;
            continue;
        }
        if (runStartsAt(bytes, size, offset, run)) {
            return static_cast<long>(offset);
        }
        ++offset;
    }
    return -1;
}
