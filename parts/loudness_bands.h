// Part 7's loudness selection: the music's level picks one mesh, the louder
// the higher its index.
#pragma once

#include <cstdint>

// Width of one mesh's band of level sums.
constexpr uint32_t LOUDNESS_BAND = 35;

// The mesh i whose band holds L = `levelSum` (left + right level):
// 35 * (i + 1) < L < 35 * (i + 2), both bounds excluded, so mesh 0 for 36..69,
// mesh 1 for 71..104. -1 when L is at most 35, a multiple of 35, or beyond
// the band of mesh meshCount - 1.
int32_t loudnessSelection(uint32_t levelSum, int32_t meshCount);
