// The World: mesh preparation on load (face links, normals, centre, material
// binding, faces dropped for naming vertices the mesh does not have) and two
// loads into one World.
#include <gtest/gtest.h>

#include "tests/engine/scene_bytes.h"

namespace {

MeshObject& loadOne(World& world, const std::vector<Vector>& points, const std::vector<std::vector<uint16_t>>& faces,
                    std::initializer_list<Bytes> materials = {}, std::initializer_list<Bytes> faceChunks = {}) {
    loadBytes(world, scene({join(materials), meshObject("M", points, faces, faceChunks)}));
    return *world.meshes[world.meshCount - 1];
}

TEST(MeshPreparation, SharedEdgeAveragesAndDegenerateStaysZero) {
    // Engine axes after loading: file (x, y, z) -> (x, -z, y). Face 0 lies in
    // the engine's x = 0 plane, face 1 in z = 0; they share vertices 0 and 1.
    World world;
    MeshObject& mesh = loadOne(world, {{0, 0, 0, 0}, {0, 0, 1, 0}, {0, 1, 0, 0}, {1, 0, 0, 0},  // two faces at right angles
                                       {5, 5, 5, 0}, {6, 6, 6, 0}, {7, 7, 7, 0}, {9, 9, 9, 0}},  // a line, a lone point
                               {{0, 2, 1, 0}, {0, 1, 3, 0}, {4, 5, 6, 0}});
    expectVector(mesh.faces[0].normal, 1, 0, 0);
    EXPECT_EQ(mesh.faces[0].normal.w, 1.0f);
    expectVector(mesh.faces[1].normal, 0, 0, 1);
    expectVector(mesh.vertices[0].normal, 0.70710677f, 0, 0.70710677f);  // on both faces
    expectVector(mesh.vertices[2].normal, 1, 0, 0);
    expectVector(mesh.faces[2].normal, 0, 0, 0);  // collinear corners
    expectVector(mesh.vertices[5].normal, 0, 0, 0);
    expectVector(mesh.vertices[7].normal, 0, 0, 0);  // on no face
    mesh.computeNormals();  // starts from zero again
    expectVector(mesh.vertices[0].normal, 0.70710677f, 0, 0.70710677f);
}

TEST(MeshPreparation, CentreIsTheMeanAsRead) {
    World world;
    // File points chosen to land on (0,0,0), (2,0,0), (0,4,0) in engine axes.
    const MeshObject& mesh = loadOne(world, {{0, 0, 0, 0}, {2, 0, 0, 0}, {0, 0, -4, 0}}, {{0, 1, 2, 7}});
    expectVector(mesh.centre, 2.0f / 3.0f, 4.0f / 3.0f, 0);
    const float expected[3][2] = {{-2.0f / 3, -4.0f / 3}, {4.0f / 3, -4.0f / 3}, {-2.0f / 3, 8.0f / 3}};
    for (int i = 0; i < 3; ++i) {
        EXPECT_FLOAT_EQ(mesh.vertices[i].position.x, expected[i][0]);
        EXPECT_FLOAT_EQ(mesh.vertices[i].position.y, expected[i][1]);
        EXPECT_EQ(mesh.vertices[i].position.z, 0.0f);
    }
    expectVector(loadOne(world, {}, {}).centre, 0, 0, 0);
}

TEST(MeshPreparation, FacesNamingMissingVerticesAreDroppedAfterGrouping) {
    World world;
    const MeshObject& mesh = loadOne(world, {{0, 0, 0, 0}, {1, 0, 0, 0}, {0, 1, 0, 0}},
                                     {{0, 1, 2, 1}, {0, 1, 3, 2}, {2, 1, 0, 3}, {9, 9, 9, 4}},
                                     {material("B"), material("B")}, {group("B", {1, 2})});
    ASSERT_EQ(mesh.faceCount, 2);
    EXPECT_EQ(mesh.faces[0].flags, 1);
    EXPECT_EQ(mesh.faces[0].material, nullptr);
    EXPECT_EQ(mesh.faces[1].flags, 3);  // file face 2 kept its group's material
    EXPECT_EQ(mesh.faces[1].material, world.materials[1]);  // the last material of the name
}

TEST(World, TwoLoadsAppendAndKeepTheFirstScenesMeshes) {
    World world;
    loadBytes(world, scene({material("M"), meshObject("One", {{0, 0, 0, 0}, {2, 0, 0, 0}, {0, 2, 0, 0}}, {{0, 1, 2, 7}},
                                                      {group("M", {0})})}));
    const Vector before = world.meshes[0]->vertices[1].position;
    EXPECT_EQ(world.camera, nullptr);
    loadBytes(world, scene({cameraObject("Cam"), material("M"),
                            meshObject("Two", {{5, 5, 5, 0}, {7, 5, 5, 0}, {5, 7, 5, 0}}, {{0, 1, 2, 7}},
                                       {group("M", {0})})}),
              33);
    ASSERT_EQ(world.meshCount, 2);
    ASSERT_EQ(world.materialCount, 2);
    EXPECT_EQ(world.meshes[1]->centre.x, 17.0f / 3.0f);  // mesh "Two", read at its offset
    EXPECT_EQ(world.meshes[0]->vertices[1].position.x, before.x);  // not prepared again
    EXPECT_EQ(world.meshes[0]->faces[0].material, world.materials[0]);
    EXPECT_EQ(world.meshes[1]->faces[0].material, world.materials[1]);  // the later "M"
    EXPECT_EQ(world.camera, world.cameras[0]);
}

}  // namespace

TEST(World, SetMaterialChangesEveryMaterialOfTheNameAndNoOther) {
    World world;
    loadBytes(world, scene({material("RED FLAT"), material("BLUE FLAT"), material("RED FLAT")}));
    world.setMaterial("RED FLAT", MODE_WIRE, nullptr, 0x649B370F, 0x00646464, 0, 110.0f, 0, MAT_ADD);
    world.setMaterial("NOT THERE", MODE_FLAT, nullptr, 0xFFFFFFFF, 0, 0, 1.0f, 1, MAT_ALPHA);
    for (int i : {0, 2}) {
        EXPECT_EQ(world.materials[i]->mode, static_cast<uint32_t>(MODE_WIRE));
        EXPECT_EQ(world.materials[i]->diffuse, 0x649B370Fu);
        EXPECT_EQ(world.materials[i]->flags, static_cast<uint32_t>(MAT_ADD));
    }
    EXPECT_EQ(world.materials[1]->mode, 0u);
    EXPECT_EQ(world.materials[1]->flags, static_cast<uint32_t>(MAT_OPAQUE));
}
