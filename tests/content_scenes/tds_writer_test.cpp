// The .3ds writer as the engine's reader sees it: every chunk the reader takes
// comes back as written, the chunks it skips keep the walk in step, and a
// scene the format cannot hold is refused; the scene builder's solids.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <functional>
#include <iterator>

#include "content/formats/tds_writer.h"
#include "content/geometry/geometry.h"
#include "content/scenes/scene_builder.h"
#include "engine/world.h"
#include "tests/engine/scene_text.h"
#include "tests/support/fatal_catcher.h"

namespace {

// A scene of one camera and `meshes` meshes of four vertices and three faces.
TdsScene sceneOf(std::vector<std::pair<std::string, std::string>> meshes) {
    TdsScene scene;
    scene.cameras.push_back({.name = "Eye", .position = {10.7f, 20.2f, -5.5f}, .target = {}});
    for (const auto& [name, material] : meshes) {
        scene.meshes.push_back({.name = name, .vertices = {{0, 0, 0}, {2, 0, 0}, {0, 4, 0}, {1, 2, 3}},
                                .texCoords = {{0.0f, 0.0f}, {1.0f, 0.0f}, {0.0f, 1.0f}, {0.25f, 0.75f}},
                                .faces = {{0, 1, 2, 0x07, 1}, {0, 2, 3, 0x05, 2}, {1, 2, 3, 0x18, 4}}, .groups = {{material, {0, 2}}}, .origin = {}});
    }
    return scene;
}

// A scene of every record kind the reader takes, written and read back; what
// the World holds is in tests/data/content/written_scene.txt. The 24-bit colour
// form comes back with blue as alpha (its gamma copy is skipped); points on
// lights and cameras are cut toward zero; spline values before a key's point
// are read past; smoothing groups and local axes between meshes are skipped.
TEST(TdsWriter, EveryRecordComesBackAsWritten) {
    TdsScene scene = sceneOf({{"Plate", "FLOATS"}, {"Plate2", "FLOATS"}});
    const uint16_t shadings[4] = {TDS_SHADING_FLAT, TDS_SHADING_GOURAUD, TDS_SHADING_PHONG, TDS_SHADING_METAL};
    for (int i = 0; i < 5; ++i) {
        TdsMaterial m;
        m.name = i < 4 ? "SHADE" + std::to_string(i) : "FLOATS";
        m.shading = i < 4 ? shadings[i] : TDS_SHADING_GOURAUD;  // the wire marker wins whatever the shading
        m.diffuse = i < 4 ? rgb(10, 20, 30) : TdsColour{1.0f, 0.5f, 0.0f};
        m.ambient = {0.2f, 0.2f, 0.2f};
        m.colourForm = i < 4 ? TdsColourForm::Bytes : TdsColourForm::Floats;
        m.twoSided = m.wire = i == 4;
        scene.materials.push_back(m);
    }
    scene.lights = {{.name = "Lamp", .position = {1.9f, -2.7f, 0.5f}, .colour = {1.0f, 0.0f, 0.5f}, .target = {}},
                    {.name = "Beam", .position = {0, 0, 100}, .spot = true, .target = {0, 50, 0}, .hotspot = 20, .falloff = 35}};
    scene.nodes = restingNodes(scene);
    scene.startFrame = 5;
    scene.endFrame = 300;
    const uint16_t flags[4] = {0, TDS_KEY_TENSION | TDS_KEY_BIAS, 0x1F, TDS_KEY_EASE_FROM};
    for (TdsNode& node : scene.nodes) {
        if (node.name != "Eye") continue;
        node.positionKeys.clear();
        for (int i = 0; i < 4; ++i) {
            const float f = static_cast<float>(i);
            const TdsPoint at = node.kind == TdsNodeKind::Camera ? TdsPoint{f, 2 * f, 3} : TdsPoint{0, 0, -f};
            node.positionKeys.push_back({.frame = 100 * i, .position = at, .flags = flags[i], .tension = 0.5f, .bias = -0.25f, .easeFrom = 0.75f});
        }
    }
    std::ifstream expected(testDataPath("content/written_scene.txt"));
    EXPECT_EQ(loadReport({writeTds(scene)}), std::string(std::istreambuf_iterator<char>(expected), {}));
}

TEST(TdsWriter, RefusesWhatTheFormatCannotHold) {
    const TdsScene fits = sceneOf({{"FifteenCharsOK!", "ABCDEFGHIJKLMNO"}});
    EXPECT_TRUE(loadReport({writeTds(fits)}).starts_with("mesh FifteenCharsOK! "));
    const std::pair<const char*, std::function<void(TdsScene&)>> faults[] = {
        {"SixteenCharsLong", [](TdsScene& s) { s.meshes[0].name = "SixteenCharsLong"; }},
        {"face past the vertices", [](TdsScene& s) { s.meshes[0].faces[1].c = 4; }},
        {"group past the faces", [](TdsScene& s) { s.meshes[0].groups[0].faces.push_back(3); }},
        {"a vertex without texture coordinates", [](TdsScene& s) { s.meshes[0].texCoords.pop_back(); }},
        {"keys out of order", [](TdsScene& s) { s.nodes = {{TdsNodeKind::Camera, "Eye", {{10, {}}, {10, {}}}}}; }},
    };
    for (const auto& [what, spoil] : faults) {
        TdsScene scene = fits;
        spoil(scene);
        const FatalError error = expectFatal([&] { writeTds(scene); });
        EXPECT_TRUE(std::string(what) != "SixteenCharsLong" || error.text.find(what) != std::string::npos) << what << ": " << error.text;
    }
}

TEST(SceneBuilder, StoresSolidsSoTheirOutsideIsWhatTheRendererKeeps) {
    SceneBuilder builder;
    builder.material("PAINT", rgb(200, 200, 200));
    GeoMesh ball = sphere(50.0f, 12, 8);
    translate(ball, {100.0f, 20.0f, -30.0f});
    rotateY(ball, 90.0f);  // a quarter turn about the vertical: the centre goes to (-30, 20, -100)
    builder.mesh("Ball", ball, "PAINT");
    builder.mesh("Panel", parametricSurface(3, 2, false, false, [](float s, float t) { return Vec3{s * 30.0f, t * 20.0f, 0.0f}; }),
                 "PAINT");
    builder.camera("Eye", {0.4f, 300.6f, -0.4f}, {0.0f, 0.0f, 0.0f});
    World world;
    loadScene(world, builder.write());
    // Cameras are written on whole numbers, as the reader would cut them.
    EXPECT_EQ(std::vector({world.camera->position.x, world.camera->position.y}), std::vector({0.0f, 301.0f}));
    // Front faces are clockwise on screen, so a face seen from outside must
    // be stored with its normal pointing into the solid.
    const MeshObject& mesh = *world.meshes[0];
    EXPECT_LT(std::hypot(mesh.centre.x + 30.0f, mesh.centre.y - 20.0f, mesh.centre.z + 100.0f), 0.5f);
    for (int32_t f = 0; f < mesh.faceCount; ++f) {
        const Vector& a = mesh.faces[f].vertex[0]->position;  // about the centre, as is the whole face
        EXPECT_LT(mesh.faces[f].normal.x * a.x + mesh.faces[f].normal.y * a.y + mesh.faces[f].normal.z * a.z, 0.0f) << "face " << f;
    }
    // The visible edges follow the swap: a grid shows its cells, never the
    // diagonals (each visible edge joins vertices of one row or one column).
    const MeshObject& grid = *world.meshes[1];
    int visible = 0;
    for (int32_t f = 0; f < grid.faceCount; ++f) {
        for (int k = 0; k < 3; ++k) {
            if (!(grid.faces[f].flags & (4 >> k))) continue;  // edge a-b is 4, b-c 2, c-a 1
            ++visible;
            const uint32_t from = grid.faces[f].index[k], to = grid.faces[f].index[(k + 1) % 3];
            EXPECT_TRUE(from / 4 == to / 4 || from % 4 == to % 4) << "diagonal " << from << "-" << to;
        }
    }
    EXPECT_EQ(visible, 6 * 4);
}

}  // namespace
