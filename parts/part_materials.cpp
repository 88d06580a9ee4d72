#include "parts/part_materials.h"

void setPartMaterial(World& world, const char* name, uint32_t mode, Texture* texture, Colour diffuse,
                     uint32_t flags) {
    world.setMaterial(name, mode, texture, diffuse, PART_SPECULAR, PART_AMBIENT, PART_SHININESS, 0, flags);
}

void setPassMaterials(World& world, const PassMaterial* table, int count, Pass pass, Texture* texture) {
    for (int i = 0; i < count; ++i) {
        const PassMaterial& row = table[i];
        if (pass == Pass::Solid) {
            setPartMaterial(world, row.name, row.solidMode, texture, row.solidDiffuse, row.solidFlags);
        } else {
            setPartMaterial(world, row.name, row.wireMode, texture, row.wireDiffuse, row.wireFlags);
        }
    }
}
