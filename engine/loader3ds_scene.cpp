// Loader3ds scene chunks: materials, named objects, meshes, lights, cameras.
#include "engine/loader3ds.h"

#include <climits>
#include <cstring>

namespace {
constexpr uint16_t kColourFloat = 0x0010;
constexpr uint16_t kColourBytes = 0x0011;
constexpr uint16_t kMaterialName = 0xA000;
constexpr uint16_t kAmbient = 0xA010;
constexpr uint16_t kDiffuse = 0xA020;
constexpr uint16_t kSpecular = 0xA030;
constexpr uint16_t kTwoSided = 0xA081;
constexpr uint16_t kWire = 0xA085;
constexpr uint16_t kShading = 0xA100;
constexpr uint16_t kMesh = 0x4100;
constexpr uint16_t kVertices = 0x4110;
constexpr uint16_t kFaces = 0x4120;
constexpr uint16_t kMaterialGroup = 0x4130;
constexpr uint16_t kTexCoords = 0x4140;
constexpr uint16_t kLight = 0x4600;
constexpr uint16_t kSpot = 0x4610;
constexpr uint16_t kCamera = 0x4700;

constexpr uint32_t kPointSize = 12;
constexpr uint32_t kFaceSize = 8;
constexpr uint32_t kTexCoordSize = 8;
constexpr uint32_t kFaceNumberSize = 2;

// Truncation towards zero, as the processor's single conversion does it:
// values outside the 32-bit range (and NaN) give INT_MIN.
int truncateToInt(double value) {
    if (!(value > -2147483649.0 && value < 2147483648.0)) {
        return INT_MIN;
    }
    return static_cast<int>(value);
}

// A colour component 0..1 as a byte: value * 255 truncated, low 8 bits kept.
uint8_t colourByte(float value) {
    return static_cast<uint8_t>(truncateToInt(static_cast<double>(value) * 255.0) & 0xFF);
}

Colour packColour(uint8_t red, uint8_t green, uint8_t blue, uint8_t alpha) {
    return static_cast<Colour>(alpha) << 24 | static_cast<Colour>(red) << 16 |
           static_cast<Colour>(green) << 8 | blue;
}

// The shading value of chunk 0xA100 as a drawing mode; 0 for none.
uint32_t shadingMode(uint16_t shading) {
    switch (shading) {
    case 1: return MODE_FLAT;
    case 2: return MODE_SMOOTH;
    case 3: return MODE_SPHERE_MAP;
    case 4: return MODE_TEXTURE;
    default: return 0;
    }
}
}  // namespace

void Loader3ds::readMaterial(uint32_t end) {
    bool wire = false;
    walk(end, [this, &wire](uint16_t id, uint32_t chunkEnd) {
        if (id == kMaterialName) {
            char name[NAME_SIZE] = {};
            readString(name, chunkEnd);
            world->addMaterial(name);
            return true;
        }
        // Attributes belong to the material named last; before any, to none.
        Material* material = world->materialCount > 0 ? world->materials[world->materialCount - 1] : nullptr;
        if (material == nullptr) {
            return false;
        }
        switch (id) {
        case kAmbient:
            material->ambient = readColour(chunkEnd);
            return true;
        case kDiffuse:
            material->diffuse = readColour(chunkEnd);
            return true;
        case kSpecular:
            material->specular = readColour(chunkEnd);
            return true;
        case kTwoSided:
            material->twoSided = 1;
            return true;
        case kWire:
            material->mode = MODE_WIRE;
            wire = true;
            return true;
        case kShading: {
            require(2, chunkEnd);
            const uint32_t mode = shadingMode(readU16());
            if (!wire && mode != 0) {
                material->mode = mode;
            }
            return true;
        }
        default:
            return false;
        }
    });
}

Colour Loader3ds::readColour(uint32_t end) {
    Colour colour = 0;
    walk(end, [this, &colour](uint16_t id, uint32_t chunkEnd) {
        if (id == kColourFloat) {
            require(3 * 4, chunkEnd);
            const uint8_t red = colourByte(readF32());
            const uint8_t green = colourByte(readF32());
            const uint8_t blue = colourByte(readF32());
            colour = packColour(red, green, blue, static_cast<uint8_t>(colour >> 24));
            return true;
        }
        if (id == kColourBytes) {
            require(3, chunkEnd);
            const uint8_t red = readU8();
            const uint8_t green = readU8();
            const uint8_t blue = readU8();
            colour = packColour(red, green, blue, blue);
            return true;
        }
        return false;
    });
    return colour;
}

void Loader3ds::readNamedObject(uint32_t end) {
    char name[NAME_SIZE] = {};
    readString(name, end);
    walk(end, [this, &name](uint16_t id, uint32_t chunkEnd) {
        switch (id) {
        case kMesh:
            mesh = std::make_unique<MeshObject>();
            readMesh(chunkEnd);
            std::memcpy(mesh->name, name, NAME_SIZE);
            world->addMesh(mesh.release());
            return true;
        case kLight:
            readLight(name, chunkEnd);
            return true;
        case kCamera:
            readCamera(name, chunkEnd);
            return true;
        default:
            return false;
        }
    });
}

void Loader3ds::readMesh(uint32_t end) {
    walk(end, [this](uint16_t id, uint32_t chunkEnd) {
        switch (id) {
        case kVertices:
            readVertices(chunkEnd);
            return true;
        case kFaces:
            readFaces(chunkEnd);
            return true;
        case kMaterialGroup:
            readMaterialGroup(chunkEnd);
            return true;
        case kTexCoords:
            readTexCoords(chunkEnd);
            return true;
        default:
            return false;
        }
    });
}

void Loader3ds::readVertices(uint32_t end) {
    require(2, end);
    const uint16_t count = readU16();
    require(static_cast<uint64_t>(count) * kPointSize, end);
    delete[] mesh->vertices;
    mesh->vertices = nullptr;
    mesh->vertexCount = 0;
    if (count == 0) {
        return;
    }
    Vertex* vertices = new Vertex[count];
    mesh->vertices = vertices;
    mesh->vertexCount = count;
    for (uint16_t i = 0; i < count; ++i) {
        vertices[i].position = toEngineAxes(readPoint());
    }
}

void Loader3ds::readFaces(uint32_t end) {
    require(2, end);
    const uint16_t count = readU16();
    require(static_cast<uint64_t>(count) * kFaceSize, end);
    delete[] mesh->faces;
    mesh->faces = nullptr;
    mesh->faceCount = 0;
    if (count == 0) {
        return;
    }
    Face* faces = new Face[count];
    mesh->faces = faces;
    mesh->faceCount = count;
    for (uint16_t i = 0; i < count; ++i) {
        faces[i].index[0] = readU16();
        faces[i].index[1] = readU16();
        faces[i].index[2] = readU16();
        faces[i].flags = readU16();
    }
}

void Loader3ds::readMaterialGroup(uint32_t end) {
    char name[NAME_SIZE] = {};
    readString(name, end);
    require(2, end);
    const uint16_t count = readU16();
    require(static_cast<uint64_t>(count) * kFaceNumberSize, end);
    for (uint16_t i = 0; i < count; ++i) {
        const uint16_t face = readU16();
        // Numbers of faces the mesh does not have are ignored.
        if (face < mesh->faceCount) {
            std::memcpy(mesh->faces[face].materialName, name, NAME_SIZE);
        }
    }
}

void Loader3ds::readTexCoords(uint32_t end) {
    require(2, end);
    const uint16_t count = readU16();
    require(static_cast<uint64_t>(count) * kTexCoordSize, end);
    const int32_t stored = count < mesh->vertexCount ? count : mesh->vertexCount;
    for (int32_t i = 0; i < stored; ++i) {
        mesh->vertices[i].u = readF32();
        mesh->vertices[i].v = readF32();
    }
    // Pairs for vertices the mesh does not have are passed over.
    if (stored < count) {
        seek(end);
    }
}

void Loader3ds::readLight(const char* name, uint32_t end) {
    require(kPointSize, end);
    Vector position = readPoint();
    Vector target;
    bool spot = false;
    uint8_t red = 0;
    uint8_t green = 0;
    uint8_t blue = 0;
    float hotspot = 0.0f;
    float falloff = 0.0f;
    walk(end, [&](uint16_t id, uint32_t chunkEnd) {
        switch (id) {
        case kColourFloat:
            require(3 * 4, chunkEnd);
            red = colourByte(readF32());
            green = colourByte(readF32());
            blue = colourByte(readF32());
            return true;
        case kColourBytes:
            require(3, chunkEnd);
            red = readU8();
            green = readU8();
            blue = readU8();
            return true;
        case kSpot:
            require(kPointSize + 2 * 4, chunkEnd);
            spot = true;
            target = readPoint();
            hotspot = readF32();
            falloff = readF32();
            return true;
        default:
            return false;
        }
    });
    position = toEngineAxes(position);
    target = toEngineAxes(target);
    const int x = truncateToInt(position.x);
    const int y = truncateToInt(position.y);
    const int z = truncateToInt(position.z);
    if (spot) {
        world->addSpotlight(name, x, y, z, truncateToInt(target.x), truncateToInt(target.y),
                            truncateToInt(target.z), red, green, blue, hotspot, falloff);
    } else {
        world->addLight(name, x, y, z, red, green, blue, 1000.0f);
    }
}

void Loader3ds::readCamera(const char* name, uint32_t end) {
    require(2 * kPointSize + 2 * 4, end);
    const Vector position = toEngineAxes(readPoint());
    const Vector target = toEngineAxes(readPoint());
    readF32();  // bank angle: not kept
    readF32();  // lens: not kept, every loaded camera has fov 256
    world->addCamera(name, truncateToInt(position.x), truncateToInt(position.y),
                     truncateToInt(position.z), truncateToInt(target.x), truncateToInt(target.y),
                     truncateToInt(target.z), 256);
}
