#include "parts/two_pass.h"

void setEveryMeshScale(World& world, float scale) {
    for (int32_t i = 0; i < world.meshCount; ++i) {
        world.meshes[i]->setScale(scale, scale, scale);
    }
}

void setEveryMeshTranslation(World& world, float x, float y, float z) {
    for (int32_t i = 0; i < world.meshCount; ++i) {
        world.meshes[i]->setTranslation(x, y, z);
    }
}

void drawTwoPass(World& world, const PassMaterial* table, int count, Texture* texture) {
    setEveryMeshScale(world, SOLID_PASS_SCALE);
    setPassMaterials(world, table, count, Pass::Solid, texture);
    world.render();
    setEveryMeshScale(world, WIRE_PASS_SCALE);
    setPassMaterials(world, table, count, Pass::Wire, texture);
    world.render();
}
