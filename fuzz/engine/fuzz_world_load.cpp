// Loads arbitrary bytes as a .3ds scene into a World, twice into the same
// World when the first load succeeds (the second appends), then runs what the
// demo parts run on a loaded World: the keyframe clock, the camera update
// and the normals of every mesh. Engine errors throw through the fatal hook;
// whatever the loader had built until then must be released.
#include <cstdint>
#include <cstdio>
#include <vector>

#include "engine/world.h"
#include "fuzz/fatal_thrown.h"

namespace {

// Loads `bytes` from a memory stream starting at `offset`; false on an engine error.
bool load(World& world, std::vector<uint8_t>& bytes, long offset) {
    FILE* file = fmemopen(bytes.data(), bytes.size(), "rb");
    if (file == nullptr) {
        return false;
    }
    bool loaded = true;
    try {
        if (std::fseek(file, offset, SEEK_SET) == 0) {
            world.loadFromFile(file);
        }
    } catch (const FatalThrown&) {
        loaded = false;
    }
    std::fclose(file);
    return loaded;
}

void exercise(World& world) {
    for (float time : {-3.0f, 0.0f, 17.0f, 1e9f}) {
        world.setFrame(time);
        for (int32_t i = 0; i < world.cameraCount; ++i) {
            world.cameras[i]->update(static_cast<int>(world.currentFrame));
        }
    }
    for (int32_t i = 0; i < world.meshCount; ++i) {
        world.meshes[i]->computeNormals();
    }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    setFatalHook(throwFatal);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) {
        return 0;
    }
    // One byte in front, so that the data starts inside the stream as an
    // archive entry's does.
    std::vector<uint8_t> bytes(size + 1);
    bytes[0] = 0x5A;
    std::copy(data, data + size, bytes.begin() + 1);
    World world;
    if (load(world, bytes, 1)) {
        exercise(world);
        if (load(world, bytes, 1)) {
            exercise(world);
        }
    }
    return 0;
}
