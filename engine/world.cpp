// World: construction, release, the grow-by-one appends, material overrides
// and binding, and the keyframe clock.
#include "engine/world.h"

#include <cmath>
#include <cstring>
#include <memory>

// Copies `name` into a fixed-width field, cut to size - 1 characters.
static void copyName(char* field, size_t size, const char* name) {
    std::strncpy(field, name, size - 1);
    field[size - 1] = '\0';
}

// Appends `record` to a pointer array that grows by exactly one element.
template <typename Record>
static void appendRecord(Record**& array, int32_t& count, std::unique_ptr<Record> record) {
    Record** grown = new Record*[count + 1];
    for (int32_t i = 0; i < count; ++i) {
        grown[i] = array[i];
    }
    if (count > 0) {
        delete[] array;
    }
    array = grown;
    array[count] = record.release();
    count = count + 1;
}

template <typename Record>
static void releaseRecords(Record** array, int32_t count) {
    for (int32_t i = 0; i < count; ++i) {
        delete array[i];
    }
    delete[] array;
}

World::World() : segment(new KeyframeSegment) {}

World::~World() {
    releaseRecords(meshes, meshCount);
    releaseRecords(cameras, cameraCount);
    releaseRecords(lights, lightCount);
    releaseRecords(spotlights, spotlightCount);
    releaseRecords(materials, materialCount);
    delete segment;
}

void World::addMaterial(const char* name) {
    auto material = std::make_unique<Material>();
    copyName(material->name, sizeof material->name, name);
    appendRecord(materials, materialCount, std::move(material));
}

void World::setMaterial(const char* name, uint32_t mode, Texture* texture, Colour diffuse,
                        Colour specular, Colour ambient, float shininess, uint8_t twoSided,
                        uint32_t flags) {
    for (int32_t i = 0; i < materialCount; ++i) {
        Material& material = *materials[i];
        if (std::strcmp(material.name, name) != 0) {
            continue;
        }
        material.mode = mode;
        material.texture = texture;
        material.diffuse = diffuse;
        material.specular = specular;
        material.ambient = ambient;
        material.shininess = shininess;
        material.twoSided = twoSided;
        material.flags = flags;
    }
}

void World::addCamera(const char* name, int x, int y, int z, int targetX, int targetY,
                      int targetZ, int fov) {
    auto camera = std::make_unique<Camera>();
    camera->position = Vector{static_cast<float>(x), static_cast<float>(y), static_cast<float>(z), 0.0f};
    camera->target = Vector{static_cast<float>(targetX), static_cast<float>(targetY),
                            static_cast<float>(targetZ), 0.0f};
    camera->fov = static_cast<float>(fov);
    copyName(camera->name, sizeof camera->name, name);
    appendRecord(cameras, cameraCount, std::move(camera));
}

// 0xAARRGGBB with the alpha byte 0.
static Colour rgb(uint8_t red, uint8_t green, uint8_t blue) {
    return static_cast<Colour>(red) << 16 | static_cast<Colour>(green) << 8 | blue;
}

void World::addLight(const char* name, int x, int y, int z, uint8_t red, uint8_t green,
                     uint8_t blue, float range) {
    auto light = std::make_unique<Light>();
    light->position = Vector{static_cast<float>(x), static_cast<float>(y), static_cast<float>(z), 0.0f};
    light->colour = rgb(red, green, blue);
    light->range = range;
    copyName(light->name, sizeof light->name, name);
    appendRecord(lights, lightCount, std::move(light));
}

void World::addSpotlight(const char* name, int x, int y, int z, int targetX, int targetY,
                         int targetZ, uint8_t red, uint8_t green, uint8_t blue, float hotspot,
                         float falloff) {
    auto spotlight = std::make_unique<Spotlight>();
    spotlight->position = Vector{static_cast<float>(x), static_cast<float>(y), static_cast<float>(z), 0.0f};
    spotlight->target = Vector{static_cast<float>(targetX), static_cast<float>(targetY),
                               static_cast<float>(targetZ), 0.0f};
    spotlight->colour = rgb(red, green, blue);
    spotlight->hotspot = hotspot;
    spotlight->falloff = falloff;
    copyName(spotlight->name, sizeof spotlight->name, name);
    appendRecord(spotlights, spotlightCount, std::move(spotlight));
}

void World::addMesh(MeshObject* mesh) { appendRecord(meshes, meshCount, std::unique_ptr<MeshObject>(mesh)); }

void World::bindMaterials(MeshObject& mesh) {
    for (int32_t i = 0; i < mesh.faceCount; ++i) {
        Face& face = mesh.faces[i];
        for (int32_t m = 0; m < materialCount; ++m) {
            if (std::strcmp(face.materialName, materials[m]->name) == 0) {
                face.material = materials[m];
            }
        }
    }
}

// A time past `end` (> 0) as subtracting `end` while it is greater leaves it:
// the remainder of time / end, except that a whole multiple of end stays at
// end itself (200 with end 100 gives 100, not 0). fmod is exact for every
// float, so no time loops or loses the remainder, however far past the end.
static float wrapFrame(float time, float end) {
    const float rest = std::fmod(time, end);
    return rest == 0.0f ? end : rest;
}

void World::setFrame(float time) {
    const float start = static_cast<float>(segment->startFrame);
    const float end = static_cast<float>(segment->endFrame);
    // No number, or infinitely far along a loop, has no place in the segment:
    // its start, so that callers may turn the frame into an integer.
    if (std::isnan(time) || (segment->loop == 1 && std::isinf(time))) {
        currentFrame = start;
        return;
    }
    if (segment->loop == 0 && time >= end) {
        time = end;
    }
    // Without a positive end frame there is nothing to wrap by.
    if (segment->loop == 1 && end > 0.0f && time > end) {
        time = wrapFrame(time, end);
    }
    currentFrame = time < start ? start : time;
}
