// gl11 as the show ships it, built over OpenGL ES 3 and compared with Mesa's
// own fixed function: every feature scene drawn the same, the vertex each
// flat primitive takes its colour from, the uniform blocks' layout as the
// GLSL compiler lays them out, a context lost and given back, kept vertex
// buffers, and the queries the layer answers itself.
#include "gl11/gl11.h"
#include "gl11/gl11_platform.h"
#include "gl11/programs.h"
#include "gl11/state.h"
#include "tests/gl11/feature_scenes.h"
#include "tests/gl11/scene_comparison.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

namespace {

class LayerOnEs : public ::testing::Test {
protected:
    void SetUp() override {
        std::string why;
        ASSERT_TRUE(openEglContexts(&why)) << why;
        startLayerContext();
        gl11Init();
    }
};

// The pixel at (x, y) of a frame (y from the bottom) as 0xRRGGBB.
uint32_t pixelAt(const SceneImage& image, int x, int y) {
    const uint8_t* p = image.rgba.data() + (static_cast<size_t>(y) * image.width + x) * 4;
    return static_cast<uint32_t>(p[0]) << 16 | static_cast<uint32_t>(p[1]) << 8 | p[2];
}

SceneImage endFrame() {
    gl11EndFrame();
    return readScene();
}

class FeatureScene : public LayerOnEs, public ::testing::WithParamInterface<int> {};

TEST_P(FeatureScene, DrawsAsMesasFixedFunctionDoes) {
    const int scene = GetParam();
    const char* name = reference_scenes::SCENES[scene].name;
    const SceneImage reference = drawReferenceScene(scene);
    const SceneImage layer = drawLayerScene(scene);
    const SceneDifference difference = compareScenes(reference, layer);
    std::printf("%-20s pixels apart %5d, largest channel difference %3d, mean %.3f\n", name,
                difference.pixelsApart, difference.largest, difference.mean);
    if (difference.pixelsApart > MAX_PIXELS_APART) {
        writeComparison(KASKADE_SCENE_SHEETS, name, reference, layer);
    }
    EXPECT_LE(difference.pixelsApart, MAX_PIXELS_APART)
        << name << ": Mesa's frame, gl11's and their difference in " << KASKADE_SCENE_SHEETS << "/" << name << ".png";
}

INSTANTIATE_TEST_SUITE_P(Scenes, FeatureScene, ::testing::Range(0, static_cast<int>(SCENE_COUNT)),
                         [](const auto& info) {
                             std::string name = reference_scenes::SCENES[info.param].name;
                             for (char& c : name) {
                                 c = c == '-' ? '_' : c;
                             }
                             return name;
                         });

void vertex(float x, float y, uint32_t rgb) {
    glColor4f(static_cast<float>(rgb >> 16) / 255.0f, static_cast<float>(rgb >> 8 & 0xFF) / 255.0f,
              static_cast<float>(rgb & 0xFF) / 255.0f, 1.0f);
    glVertex3f(x, y, 0.0f);
}

// Pixel centre n of the 128-pixel scene in normalised device coordinates.
float at(float n) { return (n + 0.5f) / 64.0f - 1.0f; }

// OpenGL 1.1 colours a flat polygon by its first vertex, each quad by its
// fourth, each line by its second and each triangle by its third, whatever
// order the layer cuts them into for WebGL.
TEST_F(LayerOnEs, FlatPrimitivesTakeTheColourOfTheVertexOpenGLNames) {
    glViewport(0, 0, SCENE_SIZE, SCENE_SIZE);
    glShadeModel(GL_FLAT);
    glBegin(GL_POLYGON);
    vertex(at(10), at(100), 0xFF0000);
    vertex(at(40), at(90), 0x00FF00);
    vertex(at(50), at(120), 0x0000FF);
    vertex(at(20), at(125), 0xFFFF00);
    glEnd();
    glBegin(GL_QUADS);
    for (int q = 0; q < 2; ++q) {
        const float x = static_cast<float>(64 + 30 * q);
        vertex(at(x), at(80), 0x100000);
        vertex(at(x + 25), at(80), 0x200000);
        vertex(at(x + 25), at(120), 0x300000);
        vertex(at(x), at(120), q == 0 ? 0x40A040 : 0x4040A0);
    }
    glEnd();
    glBegin(GL_LINES);
    vertex(at(5), at(40), 0x111111);
    vertex(at(60), at(40), 0xA0A0F0);
    vertex(at(5), at(30), 0x222222);
    vertex(at(60), at(30), 0xF0A0A0);
    glEnd();
    glBegin(GL_TRIANGLES);
    vertex(at(70), at(10), 0x000010);
    vertex(at(120), at(10), 0x000020);
    vertex(at(95), at(50), 0x30C030);
    glEnd();
    const SceneImage frame = endFrame();
    EXPECT_EQ(pixelAt(frame, 30, 110), 0xFF0000u) << "polygon: its first vertex";
    for (int q = 0; q < 2; ++q) {
        const uint32_t fourth = q == 0 ? 0x40A040 : 0x4040A0;
        EXPECT_EQ(pixelAt(frame, 66 + 30 * q, 82), fourth) << "quad " << q << " near its first corner";
        EXPECT_EQ(pixelAt(frame, 87 + 30 * q, 118), fourth) << "quad " << q << " near its third corner";
    }
    EXPECT_EQ(pixelAt(frame, 30, 40), 0xA0A0F0u) << "first line: its second vertex";
    EXPECT_EQ(pixelAt(frame, 30, 30), 0xF0A0A0u) << "second line: its second vertex";
    EXPECT_EQ(pixelAt(frame, 95, 25), 0x30C030u) << "triangle: its third vertex";
}

// A member of a uniform block and the floats its value should be, row by row
// of the member's columns (a vec4 is one column, a mat4 four).
struct Member {
    std::string name;
    std::vector<std::vector<float>> columns;
};

std::vector<float> four(const float* values) { return {values[0], values[1], values[2], values[3]}; }

// Checks every member of block `block` of `program` against `members`, read
// from `floats` (what fill*Uniforms wrote) at the offsets the compiler gave.
void expectLayout(GLuint program, const char* block, const std::vector<Member>& members, const float* floats,
                  int floatCount) {
    const GLuint blockIndex = glGetUniformBlockIndex(program, block);
    ASSERT_NE(blockIndex, GL_INVALID_INDEX) << block;
    // An array is one active uniform.
    GLint active = 0;
    glGetActiveUniformBlockiv(program, blockIndex, GL_UNIFORM_BLOCK_ACTIVE_UNIFORMS, &active);
    GLint listed = 0;
    for (const Member& member : members) {
        const size_t bracket = member.name.find('[');
        listed += bracket == std::string::npos || member.name.compare(bracket, 3, "[0]") == 0 ? 1 : 0;
    }
    EXPECT_EQ(active, listed) << block << ": every member has its case";
    GLint size = 0;
    glGetActiveUniformBlockiv(program, blockIndex, GL_UNIFORM_BLOCK_DATA_SIZE, &size);
    EXPECT_LE(size, floatCount * 4) << block << ": the buffer the layer fills holds all of it";
    for (const Member& member : members) {
        const std::string arrayName = member.name.substr(0, member.name.find('['));
        const bool isArray = arrayName != member.name;
        const std::string queried = isArray ? arrayName + "[0]" : member.name;
        const char* name = queried.c_str();
        GLuint index = GL_INVALID_INDEX;
        glGetUniformIndices(program, 1, &name, &index);
        ASSERT_NE(index, GL_INVALID_INDEX) << member.name;
        GLint offset = 0;
        GLint arrayStride = 0;
        GLint matrixStride = 0;
        glGetActiveUniformsiv(program, 1, &index, GL_UNIFORM_OFFSET, &offset);
        glGetActiveUniformsiv(program, 1, &index, GL_UNIFORM_ARRAY_STRIDE, &arrayStride);
        glGetActiveUniformsiv(program, 1, &index, GL_UNIFORM_MATRIX_STRIDE, &matrixStride);
        const int element = isArray ? std::stoi(member.name.substr(arrayName.size() + 1)) : 0;
        for (size_t column = 0; column < member.columns.size(); ++column) {
            const int at = (offset + element * arrayStride + static_cast<int>(column) * matrixStride) / 4;
            for (size_t row = 0; row < member.columns[column].size(); ++row) {
                ASSERT_LT(at + static_cast<int>(row), floatCount) << member.name;
                EXPECT_EQ(floats[at + row], member.columns[column][row])
                    << member.name << " column " << column << " row " << row;
            }
        }
    }
}

// The std140 blocks' offsets are the compiler's (GL_UNIFORM_OFFSET and the
// strides): each member of "Fixed" and "Transform" reads, at its offset,
// the value fillFixedUniforms and fillTransformUniforms put there for it.
TEST_F(LayerOnEs, UniformBlockMembersReadWhatTheLayerWritesForThem) {
    ProgramKey key;
    key.lighting = true;
    key.lights = key.spotLights = key.localLights = 0xFF;
    key.colorMaterial = GL_AMBIENT_AND_DIFFUSE;
    key.textureEnv = GL_DECAL;
    key.sphereMap = true;
    key.fog = GL_EXP;
    const GLuint program = programFor(key);
    ASSERT_NE(program, 0u);

    // Every value its own number.
    DrawState state;
    std::memset(&state, 0, sizeof state);
    auto fill = [](float* out, int count, float first) {
        for (int i = 0; i < count; ++i) {
            out[i] = first + static_cast<float>(i);
        }
    };
    fill(state.projection.m, 16, 1000.0f);
    state.modelview = identityMatrix();
    state.modelview.m[0] = 2.0f;
    state.modelview.m[5] = 4.0f;
    state.modelview.m[10] = 8.0f;
    fill(state.modelview.m + 12, 3, 2000.0f);
    fill(state.lightModelAmbient, 4, 11.0f);
    fill(state.material.ambient, 4, 21.0f);
    fill(state.material.diffuse, 4, 31.0f);
    fill(state.material.specular, 4, 41.0f);
    fill(state.material.emission, 4, 51.0f);
    fill(state.fogColour, 4, 61.0f);
    state.fogDensity = 71.0f;
    state.fogStart = 72.0f;
    state.fogEnd = 73.0f;
    state.material.shininess = 74.0f;
    for (int i = 0; i < GL11_LIGHTS; ++i) {
        LightState& light = state.lights[i];
        const float base = 100.0f * static_cast<float>(i + 1);
        fill(light.ambient, 4, base + 1.0f);
        fill(light.diffuse, 4, base + 11.0f);
        fill(light.specular, 4, base + 21.0f);
        fill(light.position, 4, base + 31.0f);
        fill(light.spotDirection, 3, base + 41.0f);
        light.spotCutoff = 60.0f;
        light.spotExponent = base + 55.0f;
        fill(light.attenuation, 3, base + 61.0f);
    }
    float fixed[FIXED_UNIFORM_FLOATS];
    fillFixedUniforms(state, fixed);
    float transform[TRANSFORM_UNIFORM_FLOATS];
    fillTransformUniforms(state, transform);

    auto columnsOf = [](const float* matrix, int size, int stride) {
        std::vector<std::vector<float>> columns;
        for (int c = 0; c < size; ++c) {
            columns.emplace_back(matrix + c * stride, matrix + c * stride + size);
        }
        return columns;
    };
    std::vector<Member> fixedMembers = {
        {"projection", columnsOf(state.projection.m, 4, 4)},
        {"lightModelAmbient", {four(state.lightModelAmbient)}},
        {"materialAmbient", {four(state.material.ambient)}},
        {"materialDiffuse", {four(state.material.diffuse)}},
        {"materialSpecular", {four(state.material.specular)}},
        {"materialEmission", {four(state.material.emission)}},
        {"fogColour", {four(state.fogColour)}},
        {"fogParameters", {{71.0f, 72.0f, 73.0f, 74.0f}}},
    };
    const char* const arrays[] = {"lightAmbient",  "lightDiffuse", "lightSpecular",
                                  "lightPosition", "lightSpot",    "lightAttenuation"};
    for (int i = 0; i < GL11_LIGHTS; ++i) {
        const LightState& light = state.lights[i];
        const float cosine = static_cast<float>(std::cos(60.0 * 3.14159265358979323846 / 180.0));
        const std::vector<float> values[] = {
            four(light.ambient),
            four(light.diffuse),
            four(light.specular),
            four(light.position),
            {light.spotDirection[0], light.spotDirection[1], light.spotDirection[2], cosine},
            {light.attenuation[0], light.attenuation[1], light.attenuation[2], light.spotExponent},
        };
        for (int a = 0; a < 6; ++a) {
            fixedMembers.push_back({std::string(arrays[a]) + "[" + std::to_string(i) + "]", {values[a]}});
        }
    }
    expectLayout(program, "Fixed", fixedMembers, fixed, FIXED_UNIFORM_FLOATS);

    const Matrix3 normals = normalMatrix(state.modelview);
    const std::vector<Member> transformMembers = {
        {"modelview", columnsOf(state.modelview.m, 4, 4)},
        {"normalMatrix", columnsOf(normals.m, 3, 3)},
    };
    expectLayout(program, "Transform", transformMembers, transform, TRANSFORM_UNIFORM_FLOATS);
}

// A lit, fogged, textured grid of 10 x 10 quads (600 vertices: a batch the
// layer keeps) over a cleared frame.
void drawTexturedGrid(GLuint texture, uint32_t cornerColour) {
    glViewport(0, 0, SCENE_SIZE, SCENE_SIZE);
    glClearColor(0.1f, 0.2f, 0.3f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    gluPerspective(50.0, 1.0, 1.0, 100.0);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glTranslatef(0.0f, 0.0f, -6.0f);
    glEnable(GL_LIGHTING);
    glEnable(GL_LIGHT0);
    glEnable(GL_COLOR_MATERIAL);
    glEnable(GL_FOG);
    glFogf(GL_FOG_DENSITY, 0.1f);
    glEnable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, texture);
    glNormal3f(0.0f, 0.3f, 1.0f);
    auto corner = [](int i, int j, uint32_t rgb) {
        glTexCoord2f(static_cast<float>(j) / 10.0f, static_cast<float>(i) / 10.0f);
        vertex(-2.0f + 0.4f * static_cast<float>(j), -2.0f + 0.4f * static_cast<float>(i), rgb);
    };
    glBegin(GL_QUADS);
    for (int i = 0; i < 10; ++i) {
        for (int j = 0; j < 10; ++j) {
            corner(i, j, i == 0 && j == 0 ? cornerColour : 0xFFFFFF);
            corner(i, j + 1, 0xFFFFFF);
            corner(i + 1, j + 1, 0xFFFFFF);
            corner(i + 1, j, 0xFFFFFF);
        }
    }
    glEnd();
    glDisable(GL_TEXTURE_2D);
    glDisable(GL_FOG);
    glDisable(GL_LIGHTING);
}

GLuint makeStripedTexture() {
    uint8_t pixels[8 * 8 * 4];
    for (int i = 0; i < 64; ++i) {
        pixels[i * 4 + 0] = static_cast<uint8_t>(i % 2 != 0 ? 250 : 60);
        pixels[i * 4 + 1] = static_cast<uint8_t>(i * 4);
        pixels[i * 4 + 2] = static_cast<uint8_t>((i / 8) % 2 != 0 ? 200 : 20);
        pixels[i * 4 + 3] = 255;
    }
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 8, 8, 0, GL_RGBA, GL_UNSIGNED_BYTE, pixels);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    return texture;
}

// A context lost and given back empty (here: a new context in place of the
// old one): after gl11ContextRestored the show's texture name still draws
// its image, its programs and kept batches are there again, its line width
// and viewport are set again; the frame is the frame drawn before the loss.
TEST_F(LayerOnEs, AContextGivenBackDrawsTheFrameItDrewBefore) {
    const GLuint texture = makeStripedTexture();
    glLineWidth(1.0f);
    drawTexturedGrid(texture, 0xFFFFFF);
    const SceneImage before = endFrame();
    drawTexturedGrid(texture, 0xFFFFFF);  // now the grid's batch is kept
    ASSERT_EQ(compareScenes(before, endFrame()).largest, 0);

    startLayerContext();
    gl11ContextRestored();
    drawTexturedGrid(texture, 0xFFFFFF);
    const SceneDifference afterLoss = compareScenes(before, endFrame());
    EXPECT_EQ(afterLoss.largest, 0) << afterLoss.pixelsApart << " pixels apart";
    drawTexturedGrid(texture, 0xFFFFFF);
    EXPECT_EQ(compareScenes(before, endFrame()).largest, 0) << "the frame after";
}

// A batch sent again unchanged in the next frame is kept on the GPU and
// from then on costs no vertex bytes; a change of one vertex is drawn as
// changed, never from the kept buffers.
TEST_F(LayerOnEs, KeptBatchesServeOnlyTheVerticesTheyWereMadeFrom) {
    const GLuint texture = makeStripedTexture();
    drawTexturedGrid(texture, 0xFFFFFF);
    const SceneImage first = endFrame();
    EXPECT_GT(gl11LastFrameCounts().streamedBytes, 0u);
    drawTexturedGrid(texture, 0xFFFFFF);
    endFrame();
    drawTexturedGrid(texture, 0xFFFFFF);
    const SceneImage kept = endFrame();
    EXPECT_EQ(gl11LastFrameCounts().streamedBytes, 0u) << "drawn from kept buffers";
    EXPECT_EQ(compareScenes(first, kept).largest, 0);

    drawTexturedGrid(texture, 0xFF0000);
    const SceneImage changed = endFrame();
    EXPECT_GT(gl11LastFrameCounts().streamedBytes, 0u);
    const SceneDifference difference = compareScenes(kept, changed);
    EXPECT_GT(difference.pixelsApart, 0) << "the red corner is drawn";
    EXPECT_LT(difference.pixelsApart, 200) << "and nothing else changed";
}

// What glGetFloatv answers about the state the layer keeps itself (WebGL
// knows neither the matrices nor, until a clear, the clear colour).
TEST_F(LayerOnEs, QueriesAnswerTheStateAsSet) {
    glClearColor(0.25f, 0.5f, 0.75f, 1.0f);
    GLfloat values[16];
    glGetFloatv(GL_COLOR_CLEAR_VALUE, values);
    EXPECT_EQ(std::vector<float>(values, values + 4), std::vector<float>({0.25f, 0.5f, 0.75f, 1.0f}));
    glColor4f(0.1f, 0.2f, 0.3f, 0.4f);
    glGetFloatv(GL_CURRENT_COLOR, values);
    EXPECT_EQ(std::vector<float>(values, values + 4), std::vector<float>({0.1f, 0.2f, 0.3f, 0.4f}));
    glMatrixMode(GL_PROJECTION);
    gluPerspective(60.0, 1.5, 2.0, 50.0);
    glMatrixMode(GL_MODELVIEW);
    glTranslatef(1.0f, 2.0f, 3.0f);
    glPushMatrix();
    glScalef(2.0f, 2.0f, 2.0f);
    glGetFloatv(GL_MODELVIEW_MATRIX, values);
    EXPECT_EQ(values[0], 2.0f);
    EXPECT_EQ(values[12], 1.0f);
    glPopMatrix();
    glGetFloatv(GL_MODELVIEW_MATRIX, values);
    EXPECT_EQ(values[0], 1.0f) << "the top of the stack after the pop";
    glGetFloatv(GL_PROJECTION_MATRIX, values);
    EXPECT_FLOAT_EQ(values[5], static_cast<float>(1.0 / std::tan(30.0 * 3.14159265358979323846 / 180.0)));
    EXPECT_EQ(values[11], -1.0f);
}

}  // namespace
