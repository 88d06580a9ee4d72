// The .3ds reader: its frame (chunk walk, main chunk, names, offsets), the
// scene chunks (materials, colours, meshes, lights, spot lights, cameras) and
// the keyframer chunks (node look-up, tracks).
#include <gtest/gtest.h>

#include "tests/engine/scene_bytes.h"

namespace {

TEST(ReaderFrame, UnknownChunksAnywhereAreSkipped) {
    const auto unknown = [](uint16_t id) { return chunk(id, {u32(0xDEADBEEF), u16(7)}); };
    const Bytes noisy = chunk(
        0x4D4D, {unknown(0x0002),
                 chunk(0x3D3D, {unknown(0x0100), material("RED"), unknown(0x1200), triangle("Tri"),
                                cameraObject("Cam"), unknown(0x7777)}),
                 unknown(0x1234), chunk(0xB000, {unknown(0xB00A), segment(0, 100), node(0xB003, "Cam", {{0, 1, 2, 3}}),
                                                 unknown(0xB009)}),
                 unknown(0x9999)});
    for (long offset : {0L, 37L}) {  // positions are absolute in the stream: the data may start anywhere
        SCOPED_TRACE(offset);
        World world;
        loadBytes(world, noisy, offset);
        ASSERT_EQ(world.meshCount, 1);
        EXPECT_STREQ(world.meshes[0]->name, "Tri");
        expectVector(world.meshes[0]->centre, 1.0f / 3.0f, 0, 1.0f / 3.0f);  // all three vertices read
        ASSERT_EQ(world.materialCount, 1);
        EXPECT_STREQ(world.materials[0]->name, "RED");
        ASSERT_EQ(world.cameraCount, 1);
        EXPECT_EQ(world.cameras[0]->positionTrack->keyCount, 1u);
        EXPECT_EQ(world.segment->endFrame, 100);
    }
}

TEST(ReaderFrame, MainChunkCutChunksAndUnendedNames) {
    const Bytes good = scene({triangle("Tri")});
    const std::pair<Bytes, std::string> cases[] = {
        {chunk(0x4D4D, {}), "loaded"},
        {chunk(0x3D3D, {triangle("Tri")}), "This doesn't seems to be a .3ds file.\n"},
        {Bytes(good.begin(), good.end() - 5), kRead},
        // A name that meets its chunk's end before its NUL is a short read.
        {scene({chunk(0xAFFF, {chunk(0xA000, {Bytes{'A', 'B', 'C'}})})}), kRead},
        {scene({chunk(0x4000, {Bytes(200, 'x')})}), kRead},
    };
    for (size_t i = 0; i < std::size(cases); ++i) {
        EXPECT_EQ(loadMessage(cases[i].first), cases[i].second) << "case " << i;
    }
}

TEST(ReaderFrame, BadChunkLengthEndsItsContainerOnly) {
    for (uint32_t length : {0u, 3u, 5u, 0x10000u}) {
        SCOPED_TRACE(length);
        World world;
        loadBytes(world, chunk(0x4D4D, {chunk(0x3D3D, {triangle("Kept"), join({u16(0x1234), u32(length), u32(0)}),
                                                        triangle("Lost")}),
                                        chunk(0xB000, {segment(5, 50)})}));
        ASSERT_EQ(world.meshCount, 1);
        EXPECT_STREQ(world.meshes[0]->name, "Kept");
        EXPECT_EQ(world.segment->endFrame, 50);  // the main walk went on after the editor
    }
}

TEST(ReaderFrame, NamesKeepFifteenCharactersAndStayInStep) {
    for (const std::string& objectName : {std::string("ABCDEFGHIJKLMNO"), std::string("ABCDEFGHIJKLMNOP"),
                                          std::string(40, 'x') + "ABC", std::string(200, 'n')}) {
        SCOPED_TRACE(objectName);
        World world;
        loadBytes(world, scene({material(objectName), triangle(objectName), cameraObject("Next")},
                               {node(0xB002, objectName, {{0, 1, 2, 3}})}));
        ASSERT_EQ(world.meshCount, 1);
        EXPECT_EQ(std::string(world.meshes[0]->name), objectName.substr(0, 15));
        EXPECT_EQ(std::string(world.materials[0]->name), objectName.substr(0, 15));
        EXPECT_EQ(world.meshes[0]->vertexCount, 3);
        EXPECT_EQ(world.meshes[0]->positionTrack->keyCount, 1u);  // the node found its mesh
        ASSERT_EQ(world.cameraCount, 1);
        EXPECT_STREQ(world.cameras[0]->name, "Next");
    }
}

Bytes shading(uint16_t value) { return chunk(0xA100, {u16(value)}); }
Bytes floatColour(float r, float g, float b) { return chunk(0x0010, {f32(r), f32(g), f32(b)}); }
Bytes byteColour(uint8_t r, uint8_t g, uint8_t b) { return chunk(0x0011, {Bytes{r, g, b}}); }
Bytes texCoords(const std::vector<std::pair<float, float>>& uv) {
    return chunk(0x4140, {counted(uv, [](const auto& p) { return join({f32(p.first), f32(p.second)}); })});
}

TEST(SceneChunks, MaterialModesColoursAndOrphanAttributes) {
    const Bytes wire = chunk(0xA085, {});
    World world;
    loadBytes(world, scene({chunk(0xAFFF, {chunk(0xA020, {byteColour(1, 2, 3)}), wire}),  // before any name: ignored
                            material("A", {shading(2), wire}), material("B", {wire, shading(2)}),
                            material("C", {shading(1)}), material("D", {shading(2)}), material("E", {shading(3)}),
                            material("F", {shading(4)}), material("G", {shading(0)}), material("H", {shading(5)}),
                            material("I", {chunk(0xA081, {})}),
                            material("J", {chunk(0xA020, {floatColour(1.0f, 0.5f, 0.0f)}),
                                           chunk(0xA010, {byteColour(10, 20, 30)}),
                                           chunk(0xA030, {byteColour(9, 9, 9), floatColour(0, 0, 1)})})}));
    ASSERT_EQ(world.materialCount, 10);
    const uint32_t modes[] = {MODE_WIRE, MODE_WIRE, MODE_FLAT, MODE_SMOOTH, MODE_SPHERE_MAP, MODE_TEXTURE, 0, 0, 0, 0};
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(world.materials[i]->mode, modes[i]) << world.materials[i]->name;
        EXPECT_EQ(world.materials[i]->twoSided, i == 8 ? 1 : 0) << world.materials[i]->name;
    }
    const Material& m = *world.materials[9];
    EXPECT_EQ(m.diffuse, 0x00FF7F00u);
    EXPECT_EQ(m.ambient, 0x1E0A141Eu);   // alpha is a copy of blue
    EXPECT_EQ(m.specular, 0x090000FFu);  // the later sub-chunk wins, alpha kept
}

TEST(SceneChunks, MeshesWithTexCoordsAndMaterialGroups) {
    World world;
    loadBytes(world, scene({material("RED"), material("BLUE"),
                            meshObject("Quad", {{0, 0, 0, 0}, {1, 0, 0, 0}, {1, 1, 0, 0}, {0, 1, 0, 0}},
                                       {{0, 1, 2, 7}, {0, 2, 3, 3}, {1, 2, 3, 0x18}},
                                       {group("RED", {0, 2, 400}), group("BLUE", {2})},
                                       {texCoords({{0.1f, 0.2f}, {0.3f, 0.4f}, {0.5f, 0.6f}, {0.7f, 0.8f}})}),
                            triangle("Long", {texCoords({{1, 2}, {3, 4}, {5, 6}, {7, 8}, {9, 10}}),
                                              chunk(0x4110, {u16(1), point(5, 5, 5)})})}));
    ASSERT_EQ(world.meshCount, 2);
    const MeshObject& mesh = *world.meshes[0];
    ASSERT_EQ(mesh.faceCount, 3);
    EXPECT_EQ(mesh.faces[0].material, world.materials[0]);
    EXPECT_EQ(mesh.faces[1].material, nullptr);
    EXPECT_EQ(mesh.faces[2].material, world.materials[1]);  // the last group naming it
    EXPECT_EQ(mesh.faces[2].flags, 0x18);
    EXPECT_EQ(mesh.faces[1].vertex[2], &mesh.vertices[3]);
    EXPECT_FLOAT_EQ(mesh.vertices[3].u, 0.7f);
    EXPECT_FLOAT_EQ(mesh.vertices[3].v, 0.8f);
    // A coordinate list longer than the vertex list keeps the walk in step: the vertex
    // list after it replaced the first one, so the face naming vertex 2 is dropped.
    EXPECT_EQ(world.meshes[1]->vertexCount, 1);
    EXPECT_EQ(world.meshes[1]->faceCount, 0);
    EXPECT_EQ(world.meshes[1]->centre.x, 5.0f);
}

TEST(SceneChunks, LightsSpotlightsAndCamerasStandOnWholeNumbers) {
    World world;
    loadBytes(world, scene({object("Bytes", {chunk(0x4600, {point(2.9f, -2.9f, 0.5f), byteColour(255, 0, 0),
                                                            chunk(0x4690, {u32(1)})})}),
                            object("Spot", {chunk(0x4600, {point(1, 2, 3), floatColour(0, 0.5f, 1),
                                                           chunk(0x4610, {point(-4.5f, 5.5f, 6.5f), f32(20), f32(40),
                                                                          chunk(0x4656, {f32(0)})})})}),
                            object("Cam", {chunk(0x4700, {point(10.7f, 20.2f, -5.5f), point(0, 0, 0), f32(0), f32(35)}),
                                           chunk(0x4720, {f32(1), f32(1000)})})}));
    ASSERT_EQ(world.lightCount, 1);
    const Light& bytes = *world.lights[0];
    expectVector(bytes.position, 2, 0, -2);  // (2.9, -2.9, 0.5) -> (2.9, -0.5, -2.9) -> truncated
    EXPECT_EQ(bytes.colour, 0x00FF0000u);
    EXPECT_EQ(bytes.range, 1000.0f);
    ASSERT_EQ(world.spotlightCount, 1);
    const Spotlight& spot = *world.spotlights[0];
    EXPECT_EQ(spot.colour, 0x00007FFFu);
    expectVector(spot.position, 1, -3, 2);
    expectVector(spot.target, -4, -6, 5);
    EXPECT_EQ(spot.hotspot, 20.0f);
    EXPECT_EQ(spot.falloff, 40.0f);
    ASSERT_EQ(world.cameraCount, 1);
    expectVector(world.camera->position, 10, 5, 20);
    EXPECT_EQ(world.camera->fov, 256.0f);
}

TEST(Keyframer, CameraAndTargetTracksWithSplineFloats) {
    // Key 0 carries tension and bias (flags 0x0005), key 1 all five floats;
    // they are read past and dropped, so key 1's tangent is the plain one.
    const Bytes track = join({u16(0), Bytes(8, 0), u32(3), u32(0), u16(0x0005), f32(0.5f), f32(-0.5f), point(1, 2, 3),
                              u32(10), u16(0x001F), f32(1), f32(1), f32(1), f32(1), f32(1), point(10, 0, 0), u32(20),
                              u16(0), point(40, 0, 0)});
    World world;
    loadBytes(world, scene({cameraObject("Cam")}, {chunk(0xB003, {header("Cam"), chunk(0xB020, {track})}),
                                                   node(0xB004, "Cam", {{0, 5, 6, 7}, {30, 8, 9, 10}})}));
    ASSERT_EQ(world.cameraCount, 1);
    const Camera& camera = *world.cameras[0];
    ASSERT_EQ(camera.positionTrack->keyCount, 3u);
    const Key* keys = camera.positionTrack->keys;
    expectVector(keys[0].value, 1, -3, 2);
    EXPECT_EQ(keys[0].splineFlags, 0x0005);
    EXPECT_EQ(keys[1].frame, 10);
    EXPECT_EQ(keys[2].frame, 20);
    EXPECT_EQ(keys[1].tangentIn.x, 19.5f);  // prepared on load: 0.5 * (40 - 1)
    ASSERT_EQ(camera.targetTrack->keyCount, 2u);
    EXPECT_EQ(camera.targetTrack->keys[1].value.y, -10.0f);
}

TEST(Keyframer, UnknownNodesHeaderlessAndOtherTracksAreSkipped) {
    const auto track = [](uint16_t id, const Bytes& value) {
        return chunk(id, {u16(0), Bytes(8, 0), u32(1), u32(0), u16(0), value});
    };
    World world;
    loadBytes(world, scene({triangle("A"), triangle("B")},
                           {node(0xB002, "$$$DUMMY", {{0, 1, 1, 1}}),
                            chunk(0xB002, {track(0xB020, point(1, 1, 1)), header("A"),
                                           track(0xB021, join({f32(1), point(0, 0, 1)})), track(0xB022, point(2, 2, 2))}),
                            node(0xB005, "NoLight", {{0, 1, 1, 1}}), node(0xB007, "NoSpot", {{0, 1, 1, 1}}),
                            node(0xB002, "B", {{0, 1, 2, 3}}), node(0xB002, "B", {{0, 4, 5, 6}, {9, 0, 0, 0}}),
                            segment(0, 9)}));
    ASSERT_EQ(world.meshCount, 2);
    const MeshObject& a = *world.meshes[0];
    EXPECT_EQ(a.positionTrack->keyCount, 0u);  // its only position track came before its header
    expectVector(a.rotation, 0, 0, 0);
    expectVector(a.scale, 1, 1, 1);
    ASSERT_EQ(world.meshes[1]->positionTrack->keyCount, 2u);  // the second node replaced the first
    EXPECT_EQ(world.meshes[1]->positionTrack->keys[0].value.x, 4.0f);
    EXPECT_EQ(world.segment->endFrame, 9);
}

}  // namespace
