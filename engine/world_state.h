// What drawing frames changes in a loaded World, kept and put back: the
// cameras' and lights' placement, the meshes' placement, visibility, vertex
// positions and normals, the materials, and the keyframe clock. A show that
// starts over (looping) puts each World back as it was loaded instead of
// reading its scene from the archive again.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/world.h"

struct WorldState {
    struct Eye {
        Vector position, target;
        float fov, upZ;
    };
    struct Lamp {
        Vector position, target;
        Colour colour;
    };
    struct Placement {
        uint8_t flags;
        Vector rotation, scale, translation;
        size_t firstVertex, firstFace;  // into `vertices` and `faceNormals`
    };
    struct Corner {
        Vector position, normal;
    };
    std::vector<Eye> cameras;
    std::vector<Lamp> lights;       // omni lights, then spot lights
    std::vector<Placement> meshes;
    std::vector<Corner> vertices;   // every mesh's, in mesh order
    std::vector<Vector> faceNormals;
    std::vector<Material> materials;
    int32_t currentCamera = -1;     // index into the cameras, -1 for none
    float currentFrame = 0.0f;
};

// Takes what `world` holds now. Records it does not own (textures, the
// cameras' tracks) are not copied.
WorldState keepWorldState(const World& world);

// Puts `state` back into the World it was taken from. A World whose records
// were added or removed since is left alone (false).
bool restoreWorldState(World& world, const WorldState& state);
