// Part 1's beat reveal: hidden meshes appear one at a time on the loud frames
// of the music, each reveal needing a quiet frame before the next.
#pragma once

#include <cstdint>

struct World;

// The level sum below which a frame is quiet (re-arms) and above which it is
// loud (reveals while armed); a sum of exactly this changes nothing.
constexpr uint32_t BEAT_LEVEL = 30;

// One frame's reveal with L = `levelSum` (left + right level, 0..128 each, or
// 65535 each when the level query failed):
// - L < 30: *armed = 1;
// - L > 30 and *armed == 1: *index += 1, held at world.meshCount - 1; that
//   mesh gets MESH_VISIBLE (its other flag bits stay); *armed = 0.
// *index starts at 3 in the show, so the first beat shows mesh 4. A World
// without meshes is left alone.
void revealOnBeat(World& world, uint32_t levelSum, int32_t* index, int32_t* armed);
