// Loader3ds keyframer chunks: the segment and the position track of each node.
#include "engine/loader3ds.h"

#include <cstring>

namespace {
constexpr uint16_t kSegment = 0xB008;
constexpr uint16_t kObjectNode = 0xB002;
constexpr uint16_t kCameraNode = 0xB003;
constexpr uint16_t kCameraTargetNode = 0xB004;
constexpr uint16_t kLightNode = 0xB005;
constexpr uint16_t kSpotTargetNode = 0xB006;
constexpr uint16_t kSpotNode = 0xB007;
constexpr uint16_t kNodeHeader = 0xB010;
constexpr uint16_t kPositionTrack = 0xB020;

// Frame (4), key flags (2) and the position (12): a key without spline floats.
constexpr uint32_t kSmallestKey = 18;

// Number of the five spline parameters (tension, continuity, bias, ease to,
// ease from) whose bits are set in a key's flag word.
int splineFloatCount(uint16_t flags) {
    int count = 0;
    for (int bit = 0; bit < 5; ++bit) {
        count += (flags >> bit) & 1;
    }
    return count;
}

// The first record of `array` whose name equals `name`, or null.
template <typename Record>
Record* findByName(Record** array, int32_t count, const char* name) {
    for (int32_t i = 0; i < count; ++i) {
        if (std::strcmp(array[i]->name, name) == 0) {
            return array[i];
        }
    }
    return nullptr;
}
}  // namespace

void Loader3ds::readKeyframer(uint32_t end) {
    walk(end, [this](uint16_t id, uint32_t chunkEnd) {
        switch (id) {
        case kObjectNode: readObjectNode(chunkEnd); return true;
        case kCameraNode: readCameraNode(chunkEnd); return true;
        case kCameraTargetNode: readCameraTargetNode(chunkEnd); return true;
        case kLightNode: readLightNode(chunkEnd); return true;
        case kSpotTargetNode: readSpotTargetNode(chunkEnd); return true;
        case kSpotNode: readSpotNode(chunkEnd); return true;
        case kSegment:
            require(8, chunkEnd);
            world->segment->startFrame = static_cast<int32_t>(readU32());
            world->segment->endFrame = static_cast<int32_t>(readU32());
            return true;
        default:
            return false;
        }
    });
}

template <typename FindTrack>
void Loader3ds::readNode(uint32_t end, FindTrack findTrack) {
    Track* track = nullptr;
    walk(end, [&](uint16_t id, uint32_t chunkEnd) {
        if (id == kNodeHeader) {
            track = findTrack(chunkEnd);
            return true;
        }
        if (id == kPositionTrack && track != nullptr) {
            readTrack(*track, chunkEnd);
            return true;
        }
        return false;
    });
}

void Loader3ds::readObjectNode(uint32_t end) {
    readNode(end, [this](uint32_t headerEnd) {
        MeshObject* found = findMesh(headerEnd);
        return found != nullptr ? found->positionTrack : nullptr;
    });
}

void Loader3ds::readCameraNode(uint32_t end) {
    readNode(end, [this](uint32_t headerEnd) {
        Camera* found = findCamera(headerEnd);
        return found != nullptr ? found->positionTrack : nullptr;
    });
}

void Loader3ds::readCameraTargetNode(uint32_t end) {
    readNode(end, [this](uint32_t headerEnd) {
        Camera* found = findCamera(headerEnd);
        return found != nullptr ? found->targetTrack : nullptr;
    });
}

void Loader3ds::readLightNode(uint32_t end) {
    readNode(end, [this](uint32_t headerEnd) {
        Light* found = findLight(headerEnd);
        return found != nullptr ? found->positionTrack : nullptr;
    });
}

void Loader3ds::readSpotTargetNode(uint32_t end) {
    readNode(end, [this](uint32_t headerEnd) {
        Spotlight* found = findSpotlight(headerEnd);
        return found != nullptr ? found->targetTrack : nullptr;
    });
}

void Loader3ds::readSpotNode(uint32_t end) {
    readNode(end, [this](uint32_t headerEnd) {
        Spotlight* found = findSpotlight(headerEnd);
        return found != nullptr ? found->positionTrack : nullptr;
    });
}

// Reads the node header's name, then its two flag words and parent number,
// which are not used (no node hierarchy is built).
static void readNodeHeader(Loader3ds& loader, char* name, uint32_t end) {
    loader.readString(name, end);
    loader.require(6, end);
    uint8_t unused[6];
    loader.read(unused, 6);
}

MeshObject* Loader3ds::findMesh(uint32_t end) {
    char name[NAME_SIZE] = {};
    readNodeHeader(*this, name, end);
    return findByName(world->meshes, world->meshCount, name);
}

Camera* Loader3ds::findCamera(uint32_t end) {
    char name[NAME_SIZE] = {};
    readNodeHeader(*this, name, end);
    return findByName(world->cameras, world->cameraCount, name);
}

Light* Loader3ds::findLight(uint32_t end) {
    char name[NAME_SIZE] = {};
    readNodeHeader(*this, name, end);
    return findByName(world->lights, world->lightCount, name);
}

Spotlight* Loader3ds::findSpotlight(uint32_t end) {
    char name[NAME_SIZE] = {};
    readNodeHeader(*this, name, end);
    return findByName(world->spotlights, world->spotlightCount, name);
}

void Loader3ds::readTrack(Track& track, uint32_t end) {
    require(2 + 8 + 4, end);
    Track loaded;
    loaded.flags = readU16();
    uint8_t unused[8];
    read(unused, 8);
    const uint32_t count = readU32();
    require(static_cast<uint64_t>(count) * kSmallestKey, end);
    if (count > 0) {
        loaded.adoptKeys(new Key[count], count);
    }
    for (uint32_t i = 0; i < count; ++i) {
        Key& key = loaded.keys[i];
        require(6, end);
        key.frame = static_cast<int32_t>(readU32());
        key.splineFlags = readU16();
        const int floats = splineFloatCount(key.splineFlags);
        require(static_cast<uint64_t>(floats) * 4 + 12, end);
        // The spline parameters are read to stay in step with the file and
        // then dropped: every loaded key has all five at 0.
        for (int f = 0; f < floats; ++f) {
            readF32();
        }
        key.value = toEngineAxes(readPoint());
    }
    prepareTangents(loaded);
    track.flags = loaded.flags;
    track.adoptKeys(loaded.keys, loaded.keyCount);
    loaded.keys = nullptr;
    loaded.keyCount = 0;
}
