// The World's operations after loading: normals computed again, and material
// overrides by name (loading itself: tests/data/engine/scenes.txt).
#include <gtest/gtest.h>

#include "engine/world.h"
#include "tests/engine/scene_text.h"

namespace {

TEST(World, NormalsComputedAgainStartFromZero) {
    World world;
    loadScene(world, sceneBytes("4D4D{ 3D3D{ 4000{ \"M\" 4100{ 4110{ w4 f0,0,0 f0,0,1 f0,1,0 f1,0,0 } "
                                "4120{ w2 w0,2,1,0 w0,1,3,0 } } } } }"));
    const std::string before = dumpWorld(world);
    world.meshes[0]->computeNormals();
    EXPECT_EQ(dumpWorld(world), before);
}

TEST(World, SetMaterialChangesEveryMaterialOfTheNameAndNoOther) {
    World world;
    loadScene(world, sceneBytes("4D4D{ 3D3D{ AFFF{ A000{ \"RED FLAT\" } } AFFF{ A000{ \"BLUE FLAT\" } } AFFF{ A000{ \"RED FLAT\" } } } }"));
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

}  // namespace
