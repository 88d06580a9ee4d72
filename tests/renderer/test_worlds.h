// Worlds built by hand for the renderer and parts tests, records filled directly.
#pragma once

#include <cstdint>

#include "engine/world.h"

// Camera "eye" at (0, 0, 100) looking at the origin, field of view 90 degrees:
// in a square viewport the plane z = 0 shows from -100 to 100 on both axes.
inline void addTestCamera(World& world) {
    world.addCamera("eye", 0, 0, 100, 0, 0, 0, 90);
    world.camera = world.cameras[world.cameraCount - 1];
}

// Appends material `name` (specular and ambient 0) and returns it.
inline Material* addTestMaterial(World& world, const char* name, uint32_t mode, Colour diffuse,
                                 uint32_t flags = MAT_OPAQUE, Texture* texture = nullptr) {
    world.addMaterial(name);
    world.setMaterial(name, mode, texture, diffuse, 0, 0, 110.0f, 0, flags);
    return world.materials[world.materialCount - 1];
}

// Appends a square of `material` from (-half, -half) to (half, half) at z, facing
// the camera, u and v 0..1 left to right and bottom to top. Two clockwise faces:
// (-,-) (-,+) (+,+) with `firstFlags` (edges left, top, diagonal) and
// (-,-) (+,+) (+,-) with `secondFlags` (edges diagonal, right, bottom).
inline MeshObject* addTestSquare(World& world, Material* material, float half, float z = 0.0f,
                                 uint16_t firstFlags = 0x07, uint16_t secondFlags = 0x07) {
    auto* mesh = new MeshObject;
    mesh->vertexCount = 4;
    mesh->vertices = new Vertex[4];
    for (int i = 0; i < 4; ++i) {
        const bool left = i < 2, top = i == 1 || i == 2;  // (-,-) (-,+) (+,+) (+,-)
        mesh->vertices[i] = {{left ? -half : half, top ? half : -half, z, 0}, {0, 0, 1, 0}, left ? 0.0f : 1.0f,
                             top ? 1.0f : 0.0f};
    }
    mesh->faceCount = 2;
    mesh->faces = new Face[2];
    mesh->faces[0] = {.index = {0, 1, 2}, .material = material, .normal = {}, .flags = firstFlags};
    mesh->faces[1] = {.index = {0, 2, 3}, .material = material, .normal = {}, .flags = secondFlags};
    mesh->linkFaceVertices();
    world.addMesh(mesh);
    return mesh;
}
