#include "parts/scene_needs.h"

#include "base/fatal.h"
#include "engine/world.h"

#include <cstdio>

namespace {

constexpr const char* CAPTION = "tessel openGL engine";
constexpr int STATUS = 1;

}  // namespace

void requireScene(const World& world, const char* entryName, int32_t meshes, int32_t lights) {
    if (world.camera != nullptr && world.meshCount >= meshes && world.lightCount >= lights) {
        return;
    }
    char hint[256];
    std::snprintf(hint, sizeof hint,
                  "%s needs a camera, %d meshes and %d omni lights; it has %s, %d meshes and %d omni lights",
                  entryName, meshes, lights, world.camera != nullptr ? "a camera" : "no camera", world.meshCount,
                  world.lightCount);
    fatalReport(CAPTION, "Scene does not fit its demo part.", STATUS, FatalExit::Normal, hint);
}

void requireRestShape(const World& world, const char* entryName, int32_t waveMesh, int32_t restMesh) {
    const int32_t waveVertices = world.meshes[waveMesh]->vertexCount;
    const int32_t restVertices = world.meshes[restMesh]->vertexCount;
    if (waveVertices == restVertices) {
        return;
    }
    char hint[256];
    std::snprintf(hint, sizeof hint, "%s: wave mesh %d has %d vertices, its rest shape (mesh %d) %d", entryName,
                  waveMesh, waveVertices, restMesh, restVertices);
    fatalReport(CAPTION, "Scene does not fit its demo part.", STATUS, FatalExit::Normal, hint);
}
