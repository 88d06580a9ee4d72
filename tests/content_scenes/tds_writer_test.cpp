// The .3ds writer as the engine's reader sees it: every chunk the reader takes
// comes back as written, the chunks it skips keep the walk in step, and a
// scene the format cannot hold is refused.
#include <gtest/gtest.h>

#include <cstdio>
#include <functional>
#include <memory>
#include <string>

#include "content/geometry/geometry.h"
#include "content/scenes/scene_builder.h"
#include "content/formats/tds_writer.h"
#include "engine/world.h"
#include "tests/support/fatal_catcher.h"

namespace {

std::unique_ptr<World> loadTds(std::vector<uint8_t> bytes) {
    FILE* file = fmemopen(bytes.data(), bytes.size(), "rb");
    auto world = std::make_unique<World>();
    world->loadFromFile(file);
    std::fclose(file);
    return world;
}

TdsMesh triangleMesh(const std::string& name, const std::string& material) {
    TdsMesh mesh;
    mesh.name = name;
    mesh.vertices = {{0, 0, 0}, {2, 0, 0}, {0, 4, 0}, {1, 2, 3}};
    mesh.texCoords = {{0.0f, 0.0f}, {1.0f, 0.0f}, {0.0f, 1.0f}, {0.25f, 0.75f}};
    mesh.faces = {{0, 1, 2, 0x07, 1}, {0, 2, 3, 0x05, 2}, {1, 2, 3, 0x18, 4}};
    mesh.groups = {{material, {0, 2}}};
    return mesh;
}

TdsScene oneCameraScene() {
    TdsScene scene;
    TdsCamera camera;
    camera.name = "Eye";
    camera.position = {10.7f, 20.2f, -5.5f};
    scene.cameras.push_back(camera);
    return scene;
}

}  // namespace

TEST(TdsWriter, MaterialsMeshesLightsAndCamerasComeBackAsWritten) {
    TdsScene scene = oneCameraScene();
    const uint16_t shadings[4] = {TDS_SHADING_FLAT, TDS_SHADING_GOURAUD, TDS_SHADING_PHONG, TDS_SHADING_METAL};
    const uint32_t modes[4] = {MODE_FLAT, MODE_SMOOTH, MODE_SPHERE_MAP, MODE_TEXTURE};
    for (int i = 0; i < 4; ++i) {
        TdsMaterial m;
        m.name = "SHADE" + std::to_string(i);
        m.shading = shadings[i];
        m.diffuse = rgb(10, 20, 30);
        scene.materials.push_back(m);
    }
    TdsMaterial floats;
    floats.name = "FLOATS";
    floats.colourForm = TdsColourForm::Floats;
    floats.diffuse = {1.0f, 0.5f, 0.0f};
    floats.ambient = {0.2f, 0.2f, 0.2f};
    floats.twoSided = true;
    floats.wire = true;
    floats.shading = TDS_SHADING_GOURAUD;  // the wire marker wins whatever the shading
    scene.materials.push_back(floats);
    scene.meshes = {triangleMesh("Plate", "FLOATS"), triangleMesh("Plate2", "FLOATS")};
    TdsLight omni;
    omni.name = "Lamp";
    omni.position = {1.9f, -2.7f, 0.5f};
    omni.colour = {1.0f, 0.0f, 0.5f};
    TdsLight spot;
    spot.name = "Beam";
    spot.spot = true;
    spot.position = {0, 0, 100};
    spot.target = {0, 50, 0};
    spot.hotspot = 20.0f;
    spot.falloff = 35.0f;
    scene.lights = {omni, spot};
    scene.nodes = restingNodes(scene);
    const auto world = loadTds(writeTds(scene));

    ASSERT_EQ(world->materialCount, 5);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(world->materials[i]->mode, modes[i]);
        EXPECT_EQ(world->materials[i]->twoSided, 0);
        // The 24-bit form: the reader copies blue into alpha; the gamma copy
        // that follows it is skipped.
        EXPECT_EQ(world->materials[i]->diffuse, 0x1E0A141Eu);
    }
    const Material& f = *world->materials[4];
    EXPECT_STREQ(f.name, "FLOATS");
    EXPECT_EQ(f.mode, MODE_WIRE);
    EXPECT_EQ(f.twoSided, 1);
    EXPECT_EQ(f.diffuse, 0x00FF7F00u);
    EXPECT_EQ((f.ambient >> 16) & 0xFF, 51u);

    ASSERT_EQ(world->meshCount, 2);
    const MeshObject& mesh = *world->meshes[0];
    EXPECT_STREQ(mesh.name, "Plate");
    ASSERT_EQ(mesh.vertexCount, 4);
    ASSERT_EQ(mesh.faceCount, 3);
    // File (1, 2, 3) is engine (1, -3, 2); positions are kept about the centre.
    const Vector& p = mesh.vertices[3].position;
    EXPECT_FLOAT_EQ(p.x + mesh.centre.x, 1.0f);
    EXPECT_FLOAT_EQ(p.y + mesh.centre.y, -3.0f);
    EXPECT_FLOAT_EQ(p.z + mesh.centre.z, 2.0f);
    EXPECT_FLOAT_EQ(mesh.vertices[3].u, 0.25f);
    EXPECT_FLOAT_EQ(mesh.vertices[3].v, 0.75f);
    EXPECT_EQ(mesh.faces[1].index[2], 3u);
    EXPECT_EQ(mesh.faces[1].flags, 0x05);
    EXPECT_EQ(mesh.faces[2].flags, 0x18);
    // The group names faces 0 and 2 only.
    EXPECT_STREQ(mesh.faces[0].materialName, "FLOATS");
    EXPECT_STREQ(mesh.faces[1].materialName, "");
    EXPECT_EQ(mesh.faces[2].material, world->materials[4]);
    // Smoothing groups and local axes lie between the meshes and are skipped:
    // the second mesh reads whole after them.
    EXPECT_STREQ(world->meshes[1]->name, "Plate2");
    EXPECT_EQ(world->meshes[1]->faceCount, 3);

    // Lights and cameras come back on whole numbers, cut toward zero.
    ASSERT_EQ(world->lightCount, 1);
    const Light& light = *world->lights[0];
    EXPECT_FLOAT_EQ(light.position.x, 1.0f);
    EXPECT_FLOAT_EQ(light.position.y, 0.0f);   // -0.5
    EXPECT_FLOAT_EQ(light.position.z, -2.0f);  // -2.7
    EXPECT_EQ(light.colour, 0x00FF007Fu);
    ASSERT_EQ(world->spotlightCount, 1);
    const Spotlight& beam = *world->spotlights[0];
    EXPECT_FLOAT_EQ(beam.position.y, -100.0f);
    EXPECT_FLOAT_EQ(beam.target.z, 50.0f);
    EXPECT_FLOAT_EQ(beam.hotspot, 20.0f);
    EXPECT_FLOAT_EQ(beam.falloff, 35.0f);
    ASSERT_EQ(world->cameraCount, 1);
    EXPECT_FLOAT_EQ(world->camera->position.x, 10.0f);
    EXPECT_FLOAT_EQ(world->camera->position.y, 5.0f);
    EXPECT_FLOAT_EQ(world->camera->position.z, 20.0f);
}

TEST(TdsWriter, KeyframerTracksKeepTheirKeysWhateverSplineValuesPrecedeThem) {
    TdsScene scene = oneCameraScene();
    scene.startFrame = 5;
    scene.endFrame = 300;
    TdsNode eye{TdsNodeKind::Camera, "Eye", {}};
    TdsNode aim{TdsNodeKind::CameraTarget, "Eye", {}};
    const uint16_t flags[4] = {0, TDS_KEY_TENSION | TDS_KEY_BIAS, 0x1F, TDS_KEY_EASE_FROM};
    for (int i = 0; i < 4; ++i) {
        TdsKey key;
        key.frame = 100 * i;
        key.flags = flags[i];
        key.tension = 0.5f;
        key.bias = -0.25f;
        key.easeFrom = 0.75f;
        key.position = {static_cast<float>(i), 2.0f * static_cast<float>(i), 3.0f};
        eye.positionKeys.push_back(key);
        key.position = {0.0f, 0.0f, static_cast<float>(-i)};
        aim.positionKeys.push_back(key);
    }
    scene.nodes = {eye, aim};

    const auto world = loadTds(writeTds(scene));
    EXPECT_EQ(world->segment->startFrame, 5);
    EXPECT_EQ(world->segment->endFrame, 300);
    const Track& position = *world->camera->positionTrack;
    ASSERT_EQ(position.keyCount, 4u);
    for (uint32_t i = 0; i < 4; ++i) {
        EXPECT_EQ(position.keys[i].frame, static_cast<int32_t>(100 * i));
        EXPECT_EQ(position.keys[i].splineFlags, flags[i]);
        EXPECT_FLOAT_EQ(position.keys[i].value.x, static_cast<float>(i));
        EXPECT_FLOAT_EQ(position.keys[i].value.y, -3.0f);
        EXPECT_FLOAT_EQ(position.keys[i].value.z, 2.0f * static_cast<float>(i));
    }
    ASSERT_EQ(world->camera->targetTrack->keyCount, 4u);
    EXPECT_FLOAT_EQ(world->camera->targetTrack->keys[3].value.y, 3.0f);
}

TEST(TdsWriter, RefusesWhatTheFormatCannotHold) {
    TdsScene fits = oneCameraScene();
    fits.meshes.push_back(triangleMesh("FifteenCharsOK!", "ABCDEFGHIJKLMNO"));
    EXPECT_STREQ(loadTds(writeTds(fits))->meshes[0]->name, "FifteenCharsOK!");

    const std::pair<const char*, std::function<void(TdsScene&)>> faults[] = {
        {"SixteenCharsLong", [](TdsScene& s) { s.meshes[0].name = "SixteenCharsLong"; }},
        {"face past the vertices", [](TdsScene& s) { s.meshes[0].faces[1].c = 4; }},
        {"group past the faces", [](TdsScene& s) { s.meshes[0].groups[0].faces.push_back(3); }},
        {"a vertex without texture coordinates", [](TdsScene& s) { s.meshes[0].texCoords.pop_back(); }},
        {"keys out of order", [](TdsScene& s) { s.nodes = {{TdsNodeKind::Camera, "Eye", {{10, {}}, {10, {}}}}}; }},
    };
    for (const auto& [what, spoil] : faults) {
        SCOPED_TRACE(what);
        TdsScene scene = fits;
        spoil(scene);
        const FatalError error = expectFatal([&] { writeTds(scene); });
        if (std::string(what) == "SixteenCharsLong") {
            EXPECT_NE(error.text.find(what), std::string::npos);
        }
    }
}

TEST(SceneBuilder, StoresSolidsSoTheirOutsideIsWhatTheRendererKeeps) {
    SceneBuilder builder;
    builder.material("PAINT", rgb(200, 200, 200));
    GeoMesh ball = sphere(50.0f, 12, 8);
    translate(ball, {100.0f, 20.0f, -30.0f});
    builder.mesh("Ball", ball, "PAINT");
    builder.mesh("Panel", parametricSurface(3, 2, false, false, [](float s, float t) { return Vec3{s * 30.0f, t * 20.0f, 0.0f}; }),
                 "PAINT");
    builder.camera("Eye", {0.4f, 300.6f, -0.4f}, {0.0f, 0.0f, 0.0f});
    const auto world = loadTds(builder.write());

    // Front faces are clockwise on screen, so a face seen from outside must
    // be stored with its normal pointing into the solid.
    const MeshObject& mesh = *world->meshes[0];
    EXPECT_NEAR(mesh.centre.x, 100.0f, 0.5f);
    EXPECT_NEAR(mesh.centre.y, 20.0f, 0.5f);
    EXPECT_NEAR(mesh.centre.z, -30.0f, 0.5f);
    for (int32_t f = 0; f < mesh.faceCount; ++f) {
        const Face& face = mesh.faces[f];
        Vector middle{0, 0, 0};
        for (const Vertex* v : face.vertex) {
            middle = {middle.x + v->position.x, middle.y + v->position.y, middle.z + v->position.z};
        }
        EXPECT_LT(face.normal.x * middle.x + face.normal.y * middle.y + face.normal.z * middle.z, 0.0f) << "face " << f;
    }
    // The visible edges follow the swap: a grid shows its cells, never the
    // diagonals (each visible edge joins vertices of one row or one column).
    const MeshObject& grid = *world->meshes[1];
    int visible = 0;
    for (int32_t f = 0; f < grid.faceCount; ++f) {
        const Face& face = grid.faces[f];
        const uint16_t bits[3] = {0x04, 0x02, 0x01};
        for (int k = 0; k < 3; ++k) {
            if (!(face.flags & bits[k])) continue;
            ++visible;
            const uint32_t from = face.index[k], to = face.index[(k + 1) % 3];
            EXPECT_TRUE(from / 4 == to / 4 || from % 4 == to % 4) << "diagonal " << from << "-" << to;
        }
    }
    EXPECT_EQ(visible, 6 * 4);
    // Cameras are written on whole numbers, as the reader would cut them.
    EXPECT_FLOAT_EQ(world->camera->position.y, 301.0f);
    EXPECT_FLOAT_EQ(world->camera->position.x, 0.0f);
}
