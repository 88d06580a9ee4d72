// The renderer's pure rules: seam correction of texture coordinates and the
// order in which material flag bits take effect.
#include <GL/gl.h>
#include <gtest/gtest.h>

#include <map>
#include <tuple>
#include <vector>

#include "engine/renderer_flags.h"
#include "engine/seam_correction.h"

namespace {

TEST(SeamCorrection, MovesSmallValuesUpByWholeTurnsOnlyAcrossAWideRangeAndOnlyOnWrappingAxes) {
    const float cases[][2][3] = {
        {{0.9f, 0.95f, 0.05f}, {0.9f, 0.95f, 1.05f}},
        {{0.1f, 0.6f, 0.85f}, {0.1f, 0.6f, 0.85f}},  // range 0.75
        {{0.0f, 1.5f, 0.2f}, {2.0f, 1.5f, 2.2f}},    // range 1.5: two turns
        {{0.5f, 0.9f, 0.05f}, {0.5f, 0.9f, 1.05f}},  // 0.5 itself stays
        {{0.0f, 0.8f, 0.3f}, {0.0f, 0.8f, 0.3f}},    // exactly 0.8 is not wider
    };
    for (const auto& [in, out] : cases) {
        float values[3] = {in[0], in[1], in[2]};
        correctSeam(values);
        for (int i = 0; i < 3; ++i) {
            EXPECT_FLOAT_EQ(values[i], out[i]) << in[0] << ", " << in[1] << ", " << in[2] << " at " << i;
        }
    }

    // A face's copies: u by its 0x08 bit, v by its 0x10 bit; the vertices stay.
    Vertex vertices[3];
    Face face;
    for (int i = 0; i < 3; ++i) {
        vertices[i].u = vertices[(i + 2) % 3].v = cases[0][0][i];  // v: 0.95, 0.05, 0.9
        face.vertex[i] = &vertices[i];
    }
    face.flags = FACE_V_WRAP;
    const FaceTexCoords coords = faceTexCoords(face);
    EXPECT_FLOAT_EQ(coords.u[2], 0.05f);
    EXPECT_FLOAT_EQ(coords.v[1], 1.05f);
    EXPECT_FLOAT_EQ(vertices[1].v, 0.05f);
}

TEST(MaterialFlags, LaterBitsWinInTheFixedOrder) {
    const struct {
        uint32_t flags;
        int blend;                   // GL_BLEND left 1 on, 0 off, -1 untouched
        int cullAndDepth;            // GL_CULL_FACE and GL_DEPTH_TEST likewise
        GLenum source, destination;  // the last blend function, 0 for none
        std::vector<GLint> filters;  // in the order they are set
    } cases[] = {
        {0, -1, -1, 0, 0, {}},
        {MAT_ADD | MAT_OPAQUE, 0, 1, GL_ONE, GL_ONE, {GL_NEAREST}},
        {MAT_NO_DEPTH, -1, 0, 0, 0, {}},
        {MAT_NO_DEPTH | MAT_OPAQUE, 0, 1, 0, 0, {GL_NEAREST}},
        {MAT_LINEAR | MAT_OPAQUE, 0, 1, 0, 0, {GL_LINEAR, GL_NEAREST}},
        {MAT_ADD | MAT_ALPHA, 1, -1, GL_SRC_ALPHA, GL_SRC_COLOR, {}},
        {MAT_ADD | MAT_ALPHA | MAT_DARKEN, 1, -1, GL_ZERO, GL_ONE_MINUS_SRC_COLOR, {}},
    };
    for (const auto& expected : cases) {
        std::map<GLenum, int> enabled;
        GLenum source = 0, destination = 0;
        const FlagCalls calls = materialFlagCalls(expected.flags);
        for (const FlagCall& call : std::vector<FlagCall>(calls.calls, calls.calls + calls.count)) {
            if (call.kind == FlagCall::BLEND_FUNC) {
                source = call.first;
                destination = call.second;
            } else {
                enabled[call.first] = call.kind == FlagCall::ENABLE ? 1 : 0;
            }
        }
        auto state = [&](GLenum cap) { return enabled.contains(cap) ? enabled[cap] : -1; };
        const FilterCalls filters = materialFilters(expected.flags);
        EXPECT_EQ(std::tuple(state(GL_BLEND), state(GL_CULL_FACE), state(GL_DEPTH_TEST), source, destination,
                             std::vector<GLint>(filters.filters, filters.filters + filters.count)),
                  std::tuple(expected.blend, expected.cullAndDepth, expected.cullAndDepth, expected.source,
                             expected.destination, expected.filters))
            << "flags " << expected.flags;
    }
}

}  // namespace
