// Loader3ds: the .3ds reader that World::load runs over one entry.
//
// A .3ds file is a tree of chunks: a 16-bit id and a 32-bit length (the whole
// chunk, header included), then the chunk's data, then its sub-chunks. The
// reader takes triangle meshes with texture coordinates and material groups,
// materials, omni and spot lights, cameras, the keyframe segment and the
// position track of every keyframer node; every other chunk is skipped whole.
//
// Bad data ends the process through engineFatal: ERR_NOT_3DS when the data
// does not start with a main chunk (0x4D4D); ERR_READ when the main chunk
// claims more bytes than the file holds, or when a count, name or record
// needs more bytes than its own chunk has left (checked before anything is
// allocated); ERR_SEEK when the stream cannot be positioned. A chunk shorter
// than its header or reaching past its container ends the walk of that
// container. No reader reads past the end of its own chunk.
//
// Positions are absolute positions in `file` (the .3ds data may start
// anywhere in it); every `end` is the absolute position where a chunk ends.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>

#include "engine/world.h"

// The file's point (x, y, z) in engine axes: (x, -z, y); w is 0.
Vector toEngineAxes(Vector v);

struct Loader3ds {
    FILE* file = nullptr;      // borrowed; never opened or closed here
    uint32_t meshVersion = 0;  // chunk 0x3D3E; read by nothing
    World* world = nullptr;    // the World the readers append to
    // The mesh being read. The loader owns it until its chunk has been read,
    // then appends it to `world`, so a load that ends half way leaks nothing.
    std::unique_ptr<MeshObject> mesh;

    // Reads the .3ds data that starts at the current position of `file`.
    void parse(FILE* file);

    // Stream primitives.
    uint32_t tell();                          // ERR_READ when the stream cannot tell
    void seek(uint32_t position);             // absolute; ERR_SEEK on failure
    void read(void* buffer, uint32_t size);   // exactly size bytes, else ERR_READ

    // ERR_READ unless `bytes` more bytes lie before `end`.
    void require(uint64_t bytes, uint32_t end);

    // Little-endian fields; callers have checked the room with require().
    uint8_t readU8();
    uint16_t readU16();
    uint32_t readU32();
    float readF32();
    Vector readPoint(); // three floats, file axes, as they stand

    // Reads a NUL-terminated name that must end before `end` into a 16-byte
    // buffer. A longer name keeps its first 15 characters; the reader goes on
    // to the name's NUL so that it stays in step.
    void readString(char* buffer, uint32_t end);

    // The walk of a container: reads the sub-chunks from the current position
    // up to `end`, calling handle(id, chunkEnd) for each; a handler that
    // returns false has the chunk skipped whole. A header that does not fit,
    // a length below 6 or a chunk reaching past `end` ends the walk at `end`.
    template <typename Handler>
    void walk(uint32_t end, Handler handle);

    // Main and editor levels.
    void readMain(uint32_t end);   // 0x4D4D
    void readEditor(uint32_t end); // 0x3D3D

    // Scene chunks.
    void readMaterial(uint32_t end);                  // 0xAFFF
    Colour readColour(uint32_t end);                  // 0xA010, 0xA020, 0xA030
    void readNamedObject(uint32_t end);               // 0x4000
    void readMesh(uint32_t end);                      // 0x4100, into `mesh`
    void readVertices(uint32_t end);                  // 0x4110
    void readFaces(uint32_t end);                     // 0x4120, its own data only
    void readMaterialGroup(uint32_t end);             // 0x4130
    void readTexCoords(uint32_t end);                 // 0x4140
    void readLight(const char* name, uint32_t end);   // 0x4600
    void readCamera(const char* name, uint32_t end);  // 0x4700, its own data only

    // Keyframer chunks.
    void readKeyframer(uint32_t end);        // 0xB000
    void readObjectNode(uint32_t end);       // 0xB002
    void readCameraNode(uint32_t end);       // 0xB003
    void readCameraTargetNode(uint32_t end); // 0xB004
    void readLightNode(uint32_t end);        // 0xB005
    void readSpotTargetNode(uint32_t end);   // 0xB006
    void readSpotNode(uint32_t end);         // 0xB007

    // Read a node header (0xB010) ending at `end` and return the record of
    // that name, or null when there is none: such a node is skipped.
    MeshObject* findMesh(uint32_t end);
    Camera* findCamera(uint32_t end);
    Light* findLight(uint32_t end);
    Spotlight* findSpotlight(uint32_t end);

    // Reads a position track (0xB020) ending at `end` into `track`, replacing
    // any keys it had, and prepares its tangents.
    void readTrack(Track& track, uint32_t end);

private:
    // A node's walk: 0xB010 chooses the track (through findTrack), 0xB020
    // fills it; a track before the header or of an unknown name is skipped.
    template <typename FindTrack>
    void readNode(uint32_t end, FindTrack findTrack);
};

template <typename Handler>
void Loader3ds::walk(uint32_t end, Handler handle) {
    uint32_t p = tell();
    while (p < end) {
        if (end - p < 6) {
            break;
        }
        const uint16_t id = readU16();
        const uint32_t length = readU32();
        if (length < 6 || length > end - p) {
            break;
        }
        const uint32_t chunkEnd = p + length;
        if (!handle(id, chunkEnd)) {
            seek(chunkEnd);
        }
        p = tell();
    }
    if (p < end) {
        seek(end);
    }
}
