// The material flag bits (MAT_* in engine/world.h) as OpenGL state changes.
//
// The bits are applied one after the other in MATERIAL_FLAG_ORDER, so when
// several are set the later ones win: 0x03 ends with blending off, 0x41 with
// culling and depth testing on, 0x21 with nearest texture filters. A state no
// set bit touches keeps whatever the previous object left.
#pragma once

#include "base/gl.h"

#include <cstdint>

#include "engine/world.h"

constexpr uint32_t MATERIAL_FLAG_ORDER[6] = {MAT_LINEAR, MAT_ADD,      MAT_ALPHA,
                                             MAT_DARKEN, MAT_NO_DEPTH, MAT_OPAQUE};

// One state change made by a flag bit.
struct FlagCall {
    enum Kind : uint8_t { ENABLE, DISABLE, BLEND_FUNC };
    Kind kind;
    GLenum first;  // the capability, or the source blend factor
    GLenum second; // the destination blend factor (BLEND_FUNC only)
};

// Enough for every bit at once.
constexpr int MAX_FLAG_CALLS = 12;

struct FlagCalls {
    FlagCall calls[MAX_FLAG_CALLS] = {};
    int count = 0;
};

// The blending, alpha-test, culling and depth-test changes of `flags`, in the
// order they are made. Texture filters are not among them (materialFilters).
FlagCalls materialFlagCalls(uint32_t flags);

// The texture filters of `flags`, in the order they are set on the bound
// texture: GL_LINEAR for MAT_LINEAR, then GL_NEAREST for MAT_OPAQUE.
struct FilterCalls {
    GLint filters[2] = {0, 0};
    int count = 0;
};
FilterCalls materialFilters(uint32_t flags);

// Makes the changes of materialFlagCalls(flags).
void applyMaterialFlags(uint32_t flags);

// Sets each filter of materialFilters(flags) on the texture bound to
// GL_TEXTURE_2D, magnification then minification.
void applyTextureFilters(uint32_t flags);
