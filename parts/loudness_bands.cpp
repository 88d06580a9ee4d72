#include "parts/loudness_bands.h"

int32_t loudnessSelection(uint32_t levelSum, int32_t meshCount) {
    if (levelSum <= LOUDNESS_BAND || levelSum % LOUDNESS_BAND == 0) {
        return -1;
    }
    const uint32_t mesh = levelSum / LOUDNESS_BAND - 1;
    if (meshCount <= 0 || mesh >= static_cast<uint32_t>(meshCount)) {
        return -1;
    }
    return static_cast<int32_t>(mesh);
}
