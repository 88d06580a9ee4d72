// Material settings of the demo parts: every part overrides its scene's
// materials by name with the same specular, ambient, shininess and one-sided
// values, and the two-pass parts switch a table of them between a solid and a
// wire pass.
#pragma once

#include <cstdint>

#include "engine/world.h"

constexpr Colour PART_SPECULAR = 0x00646464;
constexpr Colour PART_AMBIENT = 0x00000000;
constexpr float PART_SHININESS = 110.0f;

// World::setMaterial(name, mode, texture, diffuse, PART_SPECULAR,
// PART_AMBIENT, PART_SHININESS, twoSided 0, flags). A name the scene lacks
// changes nothing.
void setPartMaterial(World& world, const char* name, uint32_t mode, Texture* texture, Colour diffuse,
                     uint32_t flags);

// One material of a two-pass part: how the solid pass and the wire pass draw it.
struct PassMaterial {
    const char* name;
    uint32_t solidMode;
    Colour solidDiffuse;
    uint32_t solidFlags;
    uint32_t wireMode;
    Colour wireDiffuse;
    uint32_t wireFlags;
};

enum class Pass { Solid, Wire };

// setPartMaterial for each of the `count` rows of `table`, in order, with the
// pass's mode, diffuse and flags and `texture`.
void setPassMaterials(World& world, const PassMaterial* table, int count, Pass pass, Texture* texture);
