#include "parts/beat_reveal.h"

#include "engine/world.h"

void revealOnBeat(World& world, uint32_t levelSum, int32_t* index, int32_t* armed) {
    if (levelSum < BEAT_LEVEL) {
        *armed = 1;
        return;
    }
    if (levelSum > BEAT_LEVEL && *armed == 1) {
        *index += 1;
        if (*index > world.meshCount - 1) {
            *index = world.meshCount - 1;
        }
        if (*index >= 0) {
            world.meshes[*index]->flags |= MESH_VISIBLE;
        }
        *armed = 0;
    }
}
