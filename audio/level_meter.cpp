#include "audio/level_meter.h"

#include <cstdlib>

uint32_t levelFromPeak(uint32_t peak) {
    // 32768 / 256 = 128: full scale is 128, a peak of 255 and below reads 0.
    const uint32_t level = peak >> 8;
    return level > 128 ? 128 : level;
}

uint32_t packedPeakLevel(const int16_t* samples, size_t frames) {
    uint32_t left = 0;
    uint32_t right = 0;
    for (size_t i = 0; i < frames; ++i) {
        const uint32_t l = static_cast<uint32_t>(std::abs(static_cast<int32_t>(samples[2 * i])));
        const uint32_t r = static_cast<uint32_t>(std::abs(static_cast<int32_t>(samples[2 * i + 1])));
        left = l > left ? l : left;
        right = r > right ? r : right;
    }
    return levelFromPeak(left) | (levelFromPeak(right) << 16);
}
