// The renderer: seam correction, and World::render in a real GL context: what
// each mode, flag and light puts into a 64 x 64 viewport in the test window's
// corner (square, as the renderer's aspect 1 needs), read from the back
// buffer, and its glBegin calls, written down on their way to OpenGL by this
// program's own wrapper (linked with --wrap=glBegin).
#include <GL/gl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <string>
#include <tuple>
#include <vector>

#include "engine/seam_correction.h"
#include "engine/world.h"
#include "resources/texture.h"
#include "tests/renderer/test_worlds.h"
#include "tests/resources/gl_test_window.h"

static std::vector<GLenum> g_begun;  // the mode of every glBegin since it was last cleared

extern "C" void __real_glBegin(GLenum mode);
extern "C" void __wrap_glBegin(GLenum mode) {
    g_begun.push_back(mode);
    __real_glBegin(mode);
}

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
        EXPECT_EQ(std::vector<float>(values, values + 3), std::vector<float>(out, out + 3)) << in[0] << ", " << in[1];
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
    EXPECT_EQ(std::vector<float>({coords.u[2], coords.v[1], vertices[1].v}), std::vector<float>({0.05f, 1.05f, 0.05f}));
}

constexpr int SIZE = 64;
constexpr int CENTRE = SIZE / 2;
constexpr int LOW = 30, HIGH = 34;  // within a 2 x 2 texture's quadrants on a square of half 10

struct Rgb {
    int r, g, b;
};

// The pixel where a scene coordinate shows: the test camera sees -100..100.
int toPixel(float sceneCoordinate) { return static_cast<int>(std::floor((sceneCoordinate + 100.0f) / 200.0f * SIZE)); }

// The show's start state, the viewport, an identity model-view matrix, fog and
// blending and every light off (each an omni light again), the frame cleared to black.
void startFrame() {
    setShowStartState();
    glViewport(0, 0, SIZE, SIZE);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    for (GLenum light = GL_LIGHT0; light < GL_LIGHT0 + 8; ++light) {
        glDisable(light);
        glLightf(light, GL_SPOT_CUTOFF, 180.0f);
    }
    glDisable(GL_FOG);
    glDisable(GL_BLEND);
    glClearColor(0.0f, 0.0f, 0.0f, 0.0f);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}

// The viewport's pixels, bottom row first.
struct Frame {
    std::vector<uint8_t> rgb = std::vector<uint8_t>(SIZE * SIZE * 3);
    Rgb at(int x, int y) const {
        const uint8_t* p = &rgb[(y * SIZE + x) * 3];
        return {p[0], p[1], p[2]};
    }
    // Pixels with a channel above 8 within `radius` of (x, y); all by default.
    int lit(int x = 0, int y = 0, int radius = SIZE) const {
        int count = 0;
        for (int j = std::max(0, y - radius); j <= std::min(SIZE - 1, y + radius); ++j) {
            for (int i = std::max(0, x - radius); i <= std::min(SIZE - 1, x + radius); ++i) {
                count += std::max({at(i, j).r, at(i, j).g, at(i, j).b}) > 8 ? 1 : 0;
            }
        }
        return count;
    }
};

// A square of `half` with one material in front of the test camera.
struct SquareWorld {
    World world;
    Material* material;
    MeshObject* square;

    SquareWorld(uint32_t mode, Colour diffuse, uint32_t flags = MAT_OPAQUE, float half = 50.0f)
        : material(addTestMaterial(world, "square", mode, diffuse, flags)),
          square(addTestSquare(world, material, half)) {
        addTestCamera(world);
    }
    Frame draw() {
        world.render();
        Frame frame;
        glReadPixels(0, 0, SIZE, SIZE, GL_RGB, GL_UNSIGNED_BYTE, frame.rgb.data());
        return frame;
    }
};

void addLamp(World& world) { world.addLight("lamp", 0, 0, 0, 255, 255, 255, 1000.0f); }  // white, at the eye

class WorldRender : public ::testing::Test {
protected:
    void SetUp() override {
        if (!openGlTestWindow()) {
            GTEST_SKIP() << "no display: run the GL tests under xvfb-run";
        }
        startFrame();
    }
};

TEST_F(WorldRender, OnePolygonPerFaceOfVisibleMeshesOneLineBatchPerWireframeAndNothingElse) {
    Texture texture{};  // the default texture object
    World world;
    addTestCamera(world);
    for (int i = 0; i < 9; ++i) {  // one more than OpenGL's eight
        addLamp(world);
    }
    Material* flat = addTestMaterial(world, "flat", MODE_FLAT, 0x00808080);
    Material* wire = addTestMaterial(world, "wire", MODE_WIRE, 0x00FFFFFF);
    addTestSquare(world, flat, 50.0f);
    addTestSquare(world, flat, 45.0f)->flags = 0;  // hidden
    world.addMesh(new MeshObject);                  // no faces
    addTestSquare(world, flat, 40.0f)->faces[0].material = nullptr;
    addTestSquare(world, wire, 30.0f, 0.0f, 0x07, 0x05);
    addTestSquare(world, addTestMaterial(world, "tex", MODE_TEXTURE_SMOOTH, 0, MAT_OPAQUE, &texture), 20.0f);
    addTestSquare(world, addTestMaterial(world, "wire lit", MODE_WIRE_LIT, 0x00FFFFFF), 10.0f, 0.0f, 0, 0x02);
    addTestSquare(world, wire, 5.0f, 0.0f, 0, 0);
    for (uint32_t mode : {0u, 3u, 5u, 9u, 0x13u}) {  // outside the mode table: only its flags are set
        addTestSquare(world, addTestMaterial(world, std::to_string(mode).c_str(), mode, 0x00FFFFFF, MAT_ADD), 35.0f);
    }
    // The flat square's faces, a wireframe, the textured square's faces, two
    // wireframes (one edge, none); hidden, empty, unbound, no mode: nothing.
    g_begun.clear();
    world.render();
    EXPECT_EQ(g_begun, std::vector<GLenum>({GL_POLYGON, GL_POLYGON, GL_LINES, GL_POLYGON, GL_POLYGON, GL_LINES,
                                            GL_LINES}));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR)) << "a glBegin out of its pair, or a ninth light";
    EXPECT_TRUE(glIsEnabled(GL_BLEND));
    g_begun.clear();
    world.camera = nullptr;
    world.render();
    EXPECT_TRUE(g_begun.empty()) << "a World without a camera draws nothing";
}

// Wire modes draw a face's edges as its flags say, unlit in the material's colour.
TEST_F(WorldRender, AWireframeShowsTheEdgesItsFacesFlag) {
    SquareWorld scene(MODE_WIRE, 0x00808080);
    addLamp(scene.world);
    const int low = toPixel(-50.0f), high = toPixel(50.0f), left = toPixel(-25.0f), up = toPixel(25.0f);
    const int sides[4][2] = {{low, up}, {left, high}, {high, up}, {up, low}};  // left, top, right, bottom
    const struct { uint16_t first, second; bool sides, diagonal; } edges[] = {
        {0x04 | 0x02, 0x02 | 0x01, true, false}, {0x07, 0x07, true, true}, {0, 0, false, false}};
    for (const auto& flags : edges) {
        SCOPED_TRACE(testing::Message() << "face flags " << flags.first << ", " << flags.second);
        scene.square->faces[0].flags = flags.first;
        scene.square->faces[1].flags = flags.second;
        startFrame();
        const Frame frame = scene.draw();
        for (const auto& [x, y] : sides) {
            EXPECT_EQ(frame.lit(x, y, 1) > 0, flags.sides) << x << ", " << y;
        }
        EXPECT_EQ(frame.lit(up, up, 1) > 0, flags.diagonal);
        EXPECT_LT(frame.lit(), SIZE * SIZE / 8) << "lines, not faces";
        for (int x = low - 1; x <= low + 1; ++x) {
            const Rgb p = frame.at(x, up);
            EXPECT_TRUE(frame.lit(x, up, 0) == 0 || p.r + p.g + p.b == 3 * 128) << x;
        }
    }
}

// Ready-made parts of the cases below.
void overFrame(World&) {  // over (64, 128, 192) left with additive blending on
    glClearColor(64 / 255.0f, 128 / 255.0f, 192 / 255.0f, 0.0f);
    glClear(GL_COLOR_BUFFER_BIT);
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ONE);
}
void backToFront(World& world) {  // turned away, behind the depth buffer
    world.meshes[0]->rotation.y = 180.0f;
    glClearDepth(0.0);
    glClear(GL_DEPTH_BUFFER_BIT);
    glClearDepth(1.0);
}
void turned(World& world) { world.meshes[0]->rotation.y = 75.0f; }
// 2 x 2 texels, row 0 at v = 0 (the square's bottom): red, green; blue, white.
Texture* texels() {
    static Texture image{};
    if (image.pixels == nullptr) {
        const uint8_t rgba[16] = {255, 0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255, 255, 255, 255, 255};
        image.allocate(2, 2);
        std::copy(rgba, rgba + 16, image.pixels);
        glGenTextures(1, &image.id);
        image.upload();
        glBindTexture(GL_TEXTURE_2D, 0);  // bound by the draw only
    }
    return &image;
}
void textured(World& world) { world.materials[0]->texture = texels(); }
void texturedAndLit(World& world) {
    textured(world);
    addLamp(world);
}
std::function<void(World&)> light(int x, int y, int z, uint8_t r, uint8_t g, uint8_t b, float entryShift = 0.0f) {
    return [=](World& world) {
        glTranslatef(0.0f, 0.0f, entryShift);
        world.addLight("light", x, y, z, r, g, b, 1000.0f);
    };
}
// A white spot light at (0, y, 0) aimed at (x, y, z), in eye coordinates.
std::function<void(World&)> spot(int y, int x, int z) {
    return [=](World& world) { world.addSpotlight("spot", 0, y, 0, x, y, z, 255, 255, 255, 30.0f, 40.0f); };
}

// A square of one material (half 10) in the frame `setUp` leaves, looked at in its centre.
TEST_F(WorldRender, EachFlagLightAndFogGivesTheSquaresCentreItsColour) {
    const struct {
        const char* what;
        uint32_t mode;
        Colour diffuse;
        uint32_t flags;
        std::function<void(World&)> setUp;
        Rgb expected;
        int tolerance;
        int x = CENTRE, y = CENTRE;  // where it is looked at
    } cases[] = {
        // Unlit (no texture), blended: each blend bit sets its own function,
        // the later ones win, MAT_OPAQUE (after them) switches blending off,
        // flags 0 keep the frame's.
        {"additive: frame + colour", MODE_TEXTURE, 0x00402010, MAT_ADD, overFrame, {128, 160, 208}, 1},
        {"darkening: frame x (1 - colour)", MODE_TEXTURE, 0x00FF8000, MAT_DARKEN, overFrame, {0, 64, 192}, 1},
        {"alpha: colour x alpha + frame x colour", MODE_TEXTURE, 0x80FF8040, MAT_ALPHA, overFrame, {192, 129, 80}, 2},
        {"darkening wins", MODE_TEXTURE, 0x00FF8000, MAT_ADD | MAT_ALPHA | MAT_DARKEN, overFrame, {0, 64, 192}, 1},
        {"0x03 is opaque", MODE_TEXTURE, 0x00402010, MAT_ADD | MAT_OPAQUE, overFrame, {64, 32, 16}, 0},
        {"flags 0 keep the frame's blend", MODE_TEXTURE, 0x00402010, 0, overFrame, {128, 160, 208}, 1},
        {"no depth test, no culling", MODE_TEXTURE, 0x00402010, MAT_NO_DEPTH, backToFront, {64, 32, 16}, 0},
        {"MAT_OPAQUE after MAT_NO_DEPTH", MODE_TEXTURE, 0x00402010, MAT_NO_DEPTH | MAT_OPAQUE, backToFront, {}, 0},
        // Lit per vertex (grey 0xC0): OpenGL's ambient alone, an omni light
        // at the eye, behind the square in eye coordinates, moved in front of
        // it by the matrix in force on entry. A spot light shines from its
        // target towards itself and beyond: at the eye aimed away from the
        // square, at it, 25 degrees off (inside its 70-degree cone).
        {"ambient", MODE_SMOOTH, 0x00C0C0C0, MAT_OPAQUE, [](World&) {}, {38, 38, 38}, 1},
        {"red light", MODE_SMOOTH, 0x00C0C0C0, MAT_OPAQUE, light(0, 0, 0, 255, 0, 0), {228, 38, 38}, 2},
        {"light behind", MODE_SMOOTH, 0x00C0C0C0, MAT_OPAQUE, light(0, 0, -300, 255, 255, 255), {38, 38, 38}, 1},
        {"moved in front", MODE_SMOOTH, 0x00C0C0C0, MAT_OPAQUE, light(0, 0, -300, 255, 255, 255, 400), {228, 228, 228}, 2},
        {"spot", MODE_SMOOTH, 0x00C0C0C0, MAT_OPAQUE, spot(0, 0, 100), {194, 194, 194}, 3},
        {"spot away", MODE_SMOOTH, 0x00C0C0C0, MAT_OPAQUE, spot(0, 0, -100), {38, 38, 38}, 1},
        {"spot 25 degrees off", MODE_SMOOTH, 0x00C0C0C0, MAT_OPAQUE, spot(0, -47, 100), {73, 73, 73}, 3},
        // Turned 75 degrees about y: narrower (half 10 shows as less than 7), as tall.
        {"turned: narrower", MODE_TEXTURE, 0x00402010, MAT_OPAQUE, turned, {0, 0, 0}, 0, toPixel(7), CENTRE},
        {"turned: as tall", MODE_TEXTURE, 0x00402010, MAT_OPAQUE, turned, {64, 32, 16}, 0, CENTRE, toPixel(8)},
        // Textured: unlit, the texels where they belong; lit and flat, the lit
        // colour times the texel; linear filtering (MAT_LINEAR) mixes them
        // between the texel centres, unless MAT_OPAQUE (after it) sets nearest.
        {"bottom left", MODE_TEXTURE, 0x00404040, MAT_OPAQUE, textured, {255, 0, 0}, 0, LOW, LOW},
        {"bottom right", MODE_TEXTURE, 0x00404040, MAT_OPAQUE, textured, {0, 255, 0}, 0, HIGH, LOW},
        {"top left", MODE_TEXTURE, 0x00404040, MAT_OPAQUE, textured, {0, 0, 255}, 0, LOW, HIGH},
        {"top right", MODE_TEXTURE, 0x00404040, MAT_OPAQUE, textured, {255, 255, 255}, 0, HIGH, HIGH},
        {"lit red", MODE_TEXTURE_FLAT, 0x00C0C0C0, MAT_OPAQUE, texturedAndLit, {228, 0, 0}, 2, LOW, LOW},
        {"lit white", MODE_TEXTURE_FLAT, 0x00C08040, MAT_OPAQUE, texturedAndLit, {228, 152, 76}, 2, HIGH, HIGH},
        {"linear", MODE_TEXTURE, 0x00404040, MAT_LINEAR, textured, {140, 167, 167}, 2},
        {"nearest", MODE_TEXTURE, 0x00404040, MAT_LINEAR | MAT_OPAQUE, textured, {255, 255, 255}, 0},
        // The caller's fog: linear and white from 0 to 150, at eye distance
        // 100, keeps a third of the colour.
        {"fog", MODE_TEXTURE, 0x00204080, MAT_OPAQUE, [](World&) {
             const GLfloat white[4] = {1, 1, 1, 1};
             glEnable(GL_FOG);
             glFogi(GL_FOG_MODE, GL_LINEAR);
             glFogf(GL_FOG_START, 0.0f);
             glFogf(GL_FOG_END, 150.0f);
             glFogfv(GL_FOG_COLOR, white);
         }, {181, 192, 213}, 3},
    };
    for (const auto& c : cases) {
        startFrame();
        SquareWorld scene(c.mode, c.diffuse, c.flags, 10.0f);
        c.setUp(scene.world);
        const Rgb centre = scene.draw().at(c.x, c.y);
        EXPECT_NEAR(centre.r, c.expected.r, c.tolerance) << c.what;
        EXPECT_NEAR(centre.g, c.expected.g, c.tolerance) << c.what;
        EXPECT_NEAR(centre.b, c.expected.b, c.tolerance) << c.what;
    }
    // A spot light on its own target points straight down.
    startFrame();
    SquareWorld aimless(MODE_SMOOTH, 0x00C0C0C0, MAT_OPAQUE, 10.0f);
    spot(50, 0, 0)(aimless.world);
    aimless.draw();
    GLfloat direction[3] = {};
    glGetLightfv(GL_LIGHT0, GL_SPOT_DIRECTION, direction);
    EXPECT_EQ(std::vector<GLfloat>(direction, direction + 3), (std::vector<GLfloat>{0.0f, -1.0f, 0.0f}));
}

}  // namespace
