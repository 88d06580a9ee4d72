// Loader3ds frame: stream primitives, names, axes, the main and editor chunks.
#include "engine/loader3ds.h"

#include <cstring>

namespace {
constexpr uint16_t kMain = 0x4D4D;
constexpr uint16_t kEditor = 0x3D3D;
constexpr uint16_t kKeyframer = 0xB000;
constexpr uint16_t kMeshVersion = 0x3D3E;
constexpr uint16_t kNamedObject = 0x4000;
constexpr uint16_t kMaterial = 0xAFFF;
}  // namespace

Vector toEngineAxes(Vector v) { return Vector{v.x, -v.z, v.y, 0.0f}; }

uint32_t Loader3ds::tell() {
    const long position = std::ftell(file);
    if (position < 0 || static_cast<unsigned long>(position) > UINT32_MAX) {
        engineFatal(ERR_READ);
    }
    return static_cast<uint32_t>(position);
}

void Loader3ds::seek(uint32_t position) {
    if (std::fseek(file, static_cast<long>(position), SEEK_SET) != 0) {
        engineFatal(ERR_SEEK);
    }
}

void Loader3ds::read(void* buffer, uint32_t size) {
    if (std::fread(buffer, size, 1, file) != 1) {
        engineFatal(ERR_READ);
    }
}

void Loader3ds::require(uint64_t bytes, uint32_t end) {
    const uint32_t position = tell();
    if (position > end || bytes > static_cast<uint64_t>(end - position)) {
        engineFatal(ERR_READ);
    }
}

uint8_t Loader3ds::readU8() {
    uint8_t value;
    read(&value, 1);
    return value;
}

uint16_t Loader3ds::readU16() {
    uint8_t bytes[2];
    read(bytes, 2);
    return static_cast<uint16_t>(bytes[0] | bytes[1] << 8);
}

uint32_t Loader3ds::readU32() {
    uint8_t bytes[4];
    read(bytes, 4);
    return static_cast<uint32_t>(bytes[0]) | static_cast<uint32_t>(bytes[1]) << 8 |
           static_cast<uint32_t>(bytes[2]) << 16 | static_cast<uint32_t>(bytes[3]) << 24;
}

float Loader3ds::readF32() {
    const uint32_t bits = readU32();
    float value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

Vector Loader3ds::readPoint() {
    Vector point;
    point.x = readF32();
    point.y = readF32();
    point.z = readF32();
    return point;
}

void Loader3ds::readString(char* buffer, uint32_t end) {
    int i = 0;
    char c;
    do {
        require(1, end);
        read(&c, 1);
        if (i < NAME_SIZE - 1) {
            buffer[i++] = c;
        }
    } while (c != '\0');
    buffer[i] = '\0';
}

void Loader3ds::parse(FILE* stream) {
    file = stream;
    const uint32_t start = tell();
    const uint16_t id = readU16();
    const uint32_t length = readU32();
    if (id != kMain) {
        engineFatal(ERR_NOT_3DS);
    }
    // The main chunk bounds the whole parse; one that claims more bytes than
    // the file holds is a cut file.
    const uint32_t here = tell();
    if (std::fseek(file, 0, SEEK_END) != 0) {
        engineFatal(ERR_SEEK);
    }
    const uint64_t fileSize = tell();
    seek(here);
    if (static_cast<uint64_t>(start) + length > fileSize) {
        engineFatal(ERR_READ);
    }
    readMain(start + length);
}

void Loader3ds::readMain(uint32_t end) {
    walk(end, [this](uint16_t id, uint32_t chunkEnd) {
        switch (id) {
        case kEditor:
            readEditor(chunkEnd);
            return true;
        case kKeyframer:
            readKeyframer(chunkEnd);
            return true;
        default:
            return false;
        }
    });
}

void Loader3ds::readEditor(uint32_t end) {
    walk(end, [this](uint16_t id, uint32_t chunkEnd) {
        switch (id) {
        case kMeshVersion:
            require(4, chunkEnd);
            meshVersion = readU32();
            return true;
        case kNamedObject:
            readNamedObject(chunkEnd);
            return true;
        case kMaterial:
            readMaterial(chunkEnd);
            return true;
        default:
            return false;
        }
    });
}
