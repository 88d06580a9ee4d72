// Builds .3ds bytes for the engine tests, loads them into a World and checks
// what came out.
#pragma once

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <cstdio>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include "engine/world.h"
#include "tests/support/fatal_catcher.h"

using Bytes = std::vector<uint8_t>;

inline const std::string kRead = "Could not read from file.\n";

inline Bytes join(std::initializer_list<Bytes> parts) {
    Bytes out;
    for (const Bytes& part : parts) {
        out.insert(out.end(), part.begin(), part.end());
    }
    return out;
}
inline Bytes u16(uint16_t value) { return {static_cast<uint8_t>(value), static_cast<uint8_t>(value >> 8)}; }
inline Bytes u32(uint32_t value) {
    return join({u16(static_cast<uint16_t>(value)), u16(static_cast<uint16_t>(value >> 16))});
}
inline Bytes f32(float value) { return u32(std::bit_cast<uint32_t>(value)); }
inline Bytes point(float x, float y, float z) { return join({f32(x), f32(y), f32(z)}); }  // file axes
inline Bytes name(const std::string& text) { return join({Bytes(text.begin(), text.end()), Bytes{0}}); }

// A chunk: id, the length of the whole chunk, then the parts.
inline Bytes chunk(uint16_t id, std::initializer_list<Bytes> parts) {
    const Bytes body = join(parts);
    return join({u16(id), u32(static_cast<uint32_t>(body.size() + 6)), body});
}

// A main chunk holding an editor chunk with `editor` and, when not empty, a
// keyframer chunk with `keyframer`.
inline Bytes scene(std::initializer_list<Bytes> editor, std::initializer_list<Bytes> keyframer = {}) {
    const Bytes editorChunk = chunk(0x3D3D, editor);
    return chunk(0x4D4D, {editorChunk, keyframer.size() == 0 ? Bytes{} : chunk(0xB000, keyframer)});
}

// A named object: lights, cameras and meshes.
inline Bytes object(const std::string& objectName, std::initializer_list<Bytes> body) {
    return chunk(0x4000, {name(objectName), join(body)});
}

inline Bytes material(const std::string& materialName, std::initializer_list<Bytes> attributes = {}) {
    return chunk(0xAFFF, {chunk(0xA000, {name(materialName)}), join(attributes)});
}

// A camera object at file (1, 2, 3) looking at the origin.
inline Bytes cameraObject(const std::string& cameraName) {
    return object(cameraName, {chunk(0x4700, {point(1, 2, 3), point(0, 0, 0), f32(0), f32(50)})});
}

// A count (16 bits, or 32 when `wideCount`), then the bytes `each` gives for every item.
template <typename Item, typename Each>
Bytes counted(const std::vector<Item>& items, Each each, bool wideCount = false) {
    Bytes out = wideCount ? u32(static_cast<uint32_t>(items.size())) : u16(static_cast<uint16_t>(items.size()));
    for (const Item& item : items) {
        out = join({out, each(item)});
    }
    return out;
}

// A named object holding a triangle mesh with the given points and faces
// (a, b, c, flags). `faceChunks` follow the face records inside the face list
// (material groups); `meshChunks` follow the face list inside the mesh.
inline Bytes meshObject(const std::string& objectName, const std::vector<Vector>& points,
                        const std::vector<std::vector<uint16_t>>& faces, std::initializer_list<Bytes> faceChunks = {},
                        std::initializer_list<Bytes> meshChunks = {}) {
    const Bytes vertices = counted(points, [](const Vector& p) { return point(p.x, p.y, p.z); });
    const Bytes faceList =
        counted(faces, [](const std::vector<uint16_t>& f) { return join({u16(f[0]), u16(f[1]), u16(f[2]), u16(f[3])}); });
    return object(objectName, {chunk(0x4100, {chunk(0x4110, {vertices}), chunk(0x4120, {faceList, join(faceChunks)}),
                                              join(meshChunks)})});
}

// A mesh of one triangle: file points (0, 0, 0), (1, 0, 0), (0, 1, 0).
inline Bytes triangle(const std::string& objectName, std::initializer_list<Bytes> meshChunks = {}) {
    return meshObject(objectName, {{0, 0, 0, 0}, {1, 0, 0, 0}, {0, 1, 0, 0}}, {{0, 1, 2, 7}}, {}, meshChunks);
}

// A material group naming `faces` by their numbers in the file.
inline Bytes group(const std::string& materialName, const std::vector<uint16_t>& faces) {
    return chunk(0x4130, {name(materialName), counted(faces, u16)});
}

inline Bytes segment(int32_t start, int32_t end) { return chunk(0xB008, {u32(start), u32(end)}); }
inline Bytes header(const std::string& nodeName) { return chunk(0xB010, {name(nodeName), u16(0), u16(0), u16(0xFFFF)}); }

// A keyframer node of `id` with a header for `nodeName` and a position track
// of `keys` (frame, x, y, z in file axes; no spline floats).
inline Bytes node(uint16_t id, const std::string& nodeName, const std::vector<std::vector<float>>& keys) {
    const auto key = [](const std::vector<float>& k) {
        return join({u32(static_cast<uint32_t>(k[0])), u16(0), point(k[1], k[2], k[3])});
    };
    return chunk(id, {header(nodeName), chunk(0xB020, {u16(0), Bytes(8, 0), counted(keys, key, true)})});
}

// Loads `bytes` into `world` from a stream that holds `offset` bytes of
// padding first, as an archive entry would.
inline void loadBytes(World& world, const Bytes& bytes, long offset = 0) {
    const std::unique_ptr<FILE, int (*)(FILE*)> file(std::tmpfile(), std::fclose);
    ASSERT_TRUE(file);
    const Bytes stream = join({Bytes(static_cast<size_t>(offset), 0xEE), bytes});
    if (!stream.empty()) {  // an empty vector's data() may be null, which fwrite must not get
        std::fwrite(stream.data(), 1, stream.size(), file.get());
    }
    std::fseek(file.get(), offset, SEEK_SET);
    world.loadFromFile(file.get());
}

// Loads `bytes` into a fresh World: "loaded", or the engine's message (a
// report of any other caption or status fails the test).
inline std::string loadMessage(const Bytes& bytes) {
    FatalCatcher catcher;
    try {
        World world;
        loadBytes(world, bytes);
        return "loaded";
    } catch (const FatalError& error) {
        EXPECT_EQ(error.caption, "tessel openGL engine");
        EXPECT_EQ(error.status, 1);
        return error.text;
    }
}

inline void expectVector(const Vector& v, float x, float y, float z) {
    EXPECT_EQ(v.x, x);
    EXPECT_EQ(v.y, y);
    EXPECT_EQ(v.z, z);
}
