#include "engine/renderer_flags.h"

namespace {

// What each bit does, in the order the bits are applied.
struct FlagEffect {
    uint32_t bit;
    int count;
    FlagCall calls[4];
};

constexpr FlagEffect FLAG_EFFECTS[] = {
    {MAT_LINEAR, 0, {}},
    {MAT_ADD, 2, {{FlagCall::ENABLE, GL_BLEND, 0}, {FlagCall::BLEND_FUNC, GL_ONE, GL_ONE}}},
    // The destination factor is the source colour, not one minus source alpha.
    {MAT_ALPHA, 2, {{FlagCall::ENABLE, GL_BLEND, 0}, {FlagCall::BLEND_FUNC, GL_SRC_ALPHA, GL_SRC_COLOR}}},
    {MAT_DARKEN, 2,
     {{FlagCall::ENABLE, GL_BLEND, 0}, {FlagCall::BLEND_FUNC, GL_ZERO, GL_ONE_MINUS_SRC_COLOR}}},
    {MAT_NO_DEPTH, 2, {{FlagCall::DISABLE, GL_CULL_FACE, 0}, {FlagCall::DISABLE, GL_DEPTH_TEST, 0}}},
    {MAT_OPAQUE, 4,
     {{FlagCall::DISABLE, GL_BLEND, 0},
      {FlagCall::DISABLE, GL_ALPHA_TEST, 0},
      {FlagCall::ENABLE, GL_CULL_FACE, 0},
      {FlagCall::ENABLE, GL_DEPTH_TEST, 0}}},
};

static_assert(sizeof(FLAG_EFFECTS) / sizeof(FLAG_EFFECTS[0]) == sizeof(MATERIAL_FLAG_ORDER) / sizeof(uint32_t));

constexpr bool effectsFollowOrder() {
    for (int i = 0; i < 6; ++i) {
        if (FLAG_EFFECTS[i].bit != MATERIAL_FLAG_ORDER[i]) {
            return false;
        }
    }
    return true;
}
static_assert(effectsFollowOrder());

}  // namespace

FlagCalls materialFlagCalls(uint32_t flags) {
    FlagCalls result;
    for (const FlagEffect& effect : FLAG_EFFECTS) {
        if (flags & effect.bit) {
            for (int i = 0; i < effect.count; ++i) {
                result.calls[result.count++] = effect.calls[i];
            }
        }
    }
    return result;
}

FilterCalls materialFilters(uint32_t flags) {
    FilterCalls result;
    if (flags & MAT_LINEAR) {
        result.filters[result.count++] = GL_LINEAR;
    }
    if (flags & MAT_OPAQUE) {
        result.filters[result.count++] = GL_NEAREST;
    }
    return result;
}

void applyMaterialFlags(uint32_t flags) {
    const FlagCalls changes = materialFlagCalls(flags);
    for (int i = 0; i < changes.count; ++i) {
        const FlagCall& call = changes.calls[i];
        switch (call.kind) {
        case FlagCall::ENABLE:
            glEnable(call.first);
            break;
        case FlagCall::DISABLE:
            glDisable(call.first);
            break;
        case FlagCall::BLEND_FUNC:
            glBlendFunc(call.first, call.second);
            break;
        }
    }
}

void applyTextureFilters(uint32_t flags) {
    const FilterCalls filters = materialFilters(flags);
    for (int i = 0; i < filters.count; ++i) {
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filters.filters[i]);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filters.filters[i]);
    }
}
