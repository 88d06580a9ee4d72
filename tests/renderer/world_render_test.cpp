// World::render in a real GL context: what each mode, flag and light puts into
// a 64 x 64 viewport in the test window's corner (square, as the renderer's
// aspect 1 needs), read from the back buffer; and its glBegin calls, written
// down on their way to OpenGL by this program's own wrapper.
#include <GL/gl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <utility>
#include <vector>

#include "engine/world.h"
#include "resources/texture.h"
#include "tests/renderer/test_worlds.h"
#include "tests/resources/gl_test_window.h"

static std::vector<GLenum> g_begun;  // the mode of every glBegin since record() began

// Linked with -Wl,--wrap=glBegin: the program's calls come here, __real_glBegin is OpenGL's.
extern "C" void __real_glBegin(GLenum mode);
extern "C" void __wrap_glBegin(GLenum mode) {
    g_begun.push_back(mode);
    __real_glBegin(mode);
}

namespace {

constexpr int SIZE = 64;
constexpr int CENTRE = SIZE / 2;

struct Rgb { int r, g, b; };

// The pixel where a scene coordinate shows: the test camera sees -100..100.
int toPixel(float sceneCoordinate) {
    return static_cast<int>(std::floor((sceneCoordinate + 100.0f) / 200.0f * SIZE));
}

// The show's start state, the viewport, an identity model-view matrix, fog,
// blending and every light off (each an omni light again), the frame cleared.
void startFrame(Rgb background = {0, 0, 0}) {
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
    glClearColor(background.r / 255.0f, background.g / 255.0f, background.b / 255.0f, 0.0f);
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
    void addLamp() { world.addLight("lamp", 0, 0, 0, 255, 255, 255, 1000.0f); }  // white, at the eye
    Frame draw() {
        world.render();
        Frame frame;
        glReadPixels(0, 0, SIZE, SIZE, GL_RGB, GL_UNSIGNED_BYTE, frame.rgb.data());
        return frame;
    }
};

class WorldRender : public ::testing::Test {
protected:
    void SetUp() override {
        if (!openGlTestWindow()) {
            GTEST_SKIP() << "no display: run the GL tests under xvfb-run";
        }
        startFrame();
    }
};

void expectNear(Rgb actual, Rgb expected, int tolerance, const char* what) {
    EXPECT_NEAR(actual.r, expected.r, tolerance) << what;
    EXPECT_NEAR(actual.g, expected.g, tolerance) << what;
    EXPECT_NEAR(actual.b, expected.b, tolerance) << what;
}

// The glBegin modes of one render; OpenGL reports a glBegin or glEnd out of its
// pair, or a light past its eighth, as an error.
std::vector<GLenum> record(World& world) {
    g_begun.clear();
    world.render();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    return g_begun;
}

TEST_F(WorldRender, OnePairPerFaceOfVisibleTriangleMeshesAndOneLineBatchPerWireframe) {
    Texture texture{};  // the default texture object
    World world;
    addTestCamera(world);
    for (int i = 0; i < 9; ++i) {
        world.addLight("lamp", 0, 0, 0, 255, 255, 255, 1000.0f);
    }
    Material* flat = addTestMaterial(world, "flat", MODE_FLAT, 0x00808080);
    Material* wire = addTestMaterial(world, "wire", MODE_WIRE, 0x00FFFFFF);
    addTestSquare(world, flat, 50.0f);
    addTestSquare(world, flat, 45.0f)->flags = 0;
    world.addMesh(new MeshObject);  // no faces
    addTestSquare(world, flat, 40.0f)->faces[0].material = nullptr;
    addTestSquare(world, addTestMaterial(world, "no mode", 0, 0x00FFFFFF), 35.0f);
    addTestSquare(world, wire, 30.0f, 0.0f, 0x07, 0x05);
    addTestSquare(world, addTestMaterial(world, "tex", MODE_TEXTURE_SMOOTH, 0, MAT_OPAQUE, &texture), 20.0f);
    addTestSquare(world, addTestMaterial(world, "wire lit", MODE_WIRE_LIT, 0x00FFFFFF), 10.0f, 0.0f, 0, 0x02);
    addTestSquare(world, wire, 5.0f, 0.0f, 0, 0);

    // The flat square's two faces, a wireframe, the textured square's faces,
    // two wireframes (one edge, none); hidden, empty, unbound, no mode: nothing.
    const std::vector<GLenum> expected = {GL_POLYGON, GL_POLYGON, GL_LINES, GL_POLYGON, GL_POLYGON, GL_LINES, GL_LINES};
    EXPECT_EQ(record(world), expected);
    world.camera = nullptr;
    EXPECT_TRUE(record(world).empty()) << "a World without a camera draws nothing";
}

TEST_F(WorldRender, FlatSquareIsFilledAndItsWireframeShowsOnlyTheFlaggedEdges) {
    SquareWorld scene(MODE_FLAT, 0x00C0C0C0);
    scene.addLamp();
    const Frame filled = scene.draw();
    const int inside = toPixel(40.0f) - toPixel(-40.0f);
    EXPECT_GE(filled.lit(), inside * inside);
    EXPECT_EQ(filled.lit(4, 4, 2), 0) << "outside the square";

    scene.world.setMaterial("square", MODE_WIRE, nullptr, 0x00FFFFFF, 0, 0, 110.0f, 0, MAT_OPAQUE);
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
        EXPECT_LT(frame.lit(), filled.lit() / 4);
        for (int x = low - 1; x <= low + 1; ++x) {  // an unlit wire in its diffuse colour, white
            const Rgb p = frame.at(x, up);
            EXPECT_TRUE(frame.lit(x, up, 0) == 0 || p.r + p.g + p.b == 3 * 255) << x;
        }
    }
}

TEST_F(WorldRender, HiddenMeshesAndModesOutsideTheTableDrawNothing) {
    SquareWorld hidden(MODE_TEXTURE, 0x00FFFFFF);  // unlit white: anything drawn would show
    hidden.square->flags = 0;
    EXPECT_EQ(hidden.draw().lit(), 0);
    for (uint32_t mode : {0u, 3u, 5u, 9u, 0x13u}) {
        startFrame();
        SquareWorld scene(mode, 0x00FFFFFF, MAT_ADD);
        EXPECT_EQ(scene.draw().lit(), 0) << "mode " << mode;
        EXPECT_TRUE(glIsEnabled(GL_BLEND)) << "its flags were still set";
    }
}

TEST_F(WorldRender, BlendFlagsMixTheSquareIntoTheFrame) {
    // Over a frame (64, 128, 192) left with additive blending on: each blend bit
    // sets its own function, MAT_OPAQUE (after them) switches blending off, and
    // flags 0 keep it. The expected channels from the colour and its alpha a.
    const double a = 0x80 / 255.0;
    const struct { Colour diffuse; uint32_t flags; double r, g, b; int tolerance; const char* what; } cases[] = {
        {0x00402010, MAT_ADD, 64 + 0x40, 128 + 0x20, 192 + 0x10, 1, "additive: frame + colour"},
        {0x00FF8000, MAT_DARKEN, 0, 128 * (1 - 0x80 / 255.0), 192, 1, "darkening: frame x (1 - colour)"},
        {0x80FF8040, MAT_ALPHA, 0xFF * a + 64, 0x80 * a + 128 * 0x80 / 255.0, 0x40 * a + 192 * 0x40 / 255.0, 2,
         "alpha: colour x alpha + frame x colour"},
        {0x00402010, MAT_ADD | MAT_OPAQUE, 0x40, 0x20, 0x10, 0, "0x03 is opaque"},
        {0x00402010, 0, 64 + 0x40, 128 + 0x20, 192 + 0x10, 1, "flags 0 keep the frame's blend"},
    };
    auto rounded = [](double value) { return static_cast<int>(std::min(255.0, value + 0.5)); };
    for (const auto& c : cases) {
        startFrame({64, 128, 192});
        glEnable(GL_BLEND);
        glBlendFunc(GL_ONE, GL_ONE);
        SquareWorld scene(MODE_TEXTURE, c.diffuse, c.flags);  // no texture: unlit, in the diffuse colour
        expectNear(scene.draw().at(CENTRE, CENTRE), {rounded(c.r), rounded(c.g), rounded(c.b)}, c.tolerance, c.what);
    }
}

TEST_F(WorldRender, TextureDecalShowsTheTexelsAndTextureFlatModulatesThemByTheLitColour) {
    // 2 x 2 texels, row 0 at v = 0 (the square's bottom): red, green; blue, white.
    Texture image{};
    image.allocate(2, 2);
    const uint8_t texels[16] = {255, 0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255, 255, 255, 255, 255};
    std::copy(texels, texels + 16, image.pixels);
    glGenTextures(1, &image.id);
    image.upload();
    // The filters land on the material's own texture, bound only by the draw.
    auto filtersOfImage = [&image] {
        GLint magnification = 0, minification = 0;
        glBindTexture(GL_TEXTURE_2D, image.id);
        glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, &magnification);
        glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, &minification);
        glBindTexture(GL_TEXTURE_2D, 0);
        return std::pair(magnification, minification);
    };
    glBindTexture(GL_TEXTURE_2D, 0);
    SquareWorld smooth(MODE_TEXTURE, 0x00404040, MAT_LINEAR);
    smooth.material->texture = &image;
    smooth.draw();
    EXPECT_EQ(filtersOfImage(), std::pair(GLint{GL_LINEAR}, GLint{GL_LINEAR}));

    startFrame();
    SquareWorld decal(MODE_TEXTURE, 0x00404040);
    decal.material->texture = &image;
    const Frame decalFrame = decal.draw();
    EXPECT_EQ(filtersOfImage(), std::pair(GLint{GL_NEAREST}, GLint{GL_NEAREST}));

    // Lit and flat: its colour without a texture (drawn untextured), times each texel.
    startFrame();
    const int low = toPixel(-25.0f), high = toPixel(25.0f);
    SquareWorld modulated(MODE_TEXTURE_FLAT, 0x00C08040);
    modulated.addLamp();
    const Rgb lit = modulated.draw().at(low, low);
    ASSERT_GT(lit.r, lit.g);
    ASSERT_GT(lit.g, lit.b);
    startFrame();
    modulated.material->texture = &image;
    const Frame modulatedFrame = modulated.draw();
    const int where[4][2] = {{low, low}, {high, low}, {low, high}, {high, high}};
    for (int i = 0; i < 4; ++i) {
        const Rgb texel{texels[i * 4], texels[i * 4 + 1], texels[i * 4 + 2]};
        expectNear(decalFrame.at(where[i][0], where[i][1]), texel, 0, "decal texel");
        expectNear(modulatedFrame.at(where[i][0], where[i][1]),
                   {lit.r * texel.r / 255, lit.g * texel.g / 255, lit.b * texel.b / 255}, 2, "modulated texel");
    }
    glDeleteTextures(1, &image.id);
    delete[] image.pixels;
}

// The centre of a small grey square (lit per vertex, much as its centre) with
// `addLights`, drawn with the entry model-view matrix moved `entryShift` along z.
Rgb litCentre(const std::function<void(World&)>& addLights, float entryShift = 0.0f) {
    startFrame();
    glTranslatef(0.0f, 0.0f, entryShift);
    SquareWorld scene(MODE_SMOOTH, 0x00C0C0C0, MAT_OPAQUE, 10.0f);
    addLights(scene.world);
    return scene.draw().at(CENTRE, CENTRE);
}

TEST_F(WorldRender, OmniAndSpotLightsLightTheSurfaceFromWhereTheEntryMatrixPutsThem) {
    const Rgb ambient = litCentre([](World&) {});
    const Rgb red = litCentre([](World& world) { world.addLight("red", 0, 0, 0, 255, 0, 0, 1000.0f); });
    EXPECT_GT(red.r, ambient.r + 100);
    EXPECT_NEAR(red.g, ambient.g, 1);
    EXPECT_NEAR(red.b, ambient.b, 1);

    // Behind the square in eye coordinates it leaves the front dark; moved in
    // front of it by the matrix in force on entry, it lights it.
    auto behind = [](World& world) { world.addLight("behind", 0, 0, -300, 255, 255, 255, 1000.0f); };
    EXPECT_NEAR(litCentre(behind).g, ambient.g, 1);
    EXPECT_GT(litCentre(behind, 400.0f).g, ambient.g + 100);

    // A spot light shines from its target towards itself and beyond: at the eye
    // with its target behind the eye it lights the square, aimed at it not; on
    // its own target it points straight down.
    auto spot = [](float y, float targetZ) {
        return [=](World& world) { world.addSpotlight("spot", 0, y, 0, 0, y, targetZ, 255, 255, 255, 30.0f, 40.0f); };
    };
    EXPECT_GT(litCentre(spot(0.0f, 100.0f)).g, ambient.g + 100);
    EXPECT_NEAR(litCentre(spot(0.0f, -100.0f)).g, ambient.g, 1);
    litCentre(spot(50.0f, 0.0f));
    GLfloat direction[3] = {};
    glGetLightfv(GL_LIGHT0, GL_SPOT_DIRECTION, direction);
    EXPECT_EQ(std::vector<GLfloat>(direction, direction + 3), (std::vector<GLfloat>{0.0f, -1.0f, 0.0f}));
}

TEST_F(WorldRender, FogIsTheCallersSwitchAndMixesTheFogColourByDistance) {
    SquareWorld clear(MODE_TEXTURE, 0x00204080);
    expectNear(clear.draw().at(CENTRE, CENTRE), {0x20, 0x40, 0x80}, 0, "fog off");

    // Linear white fog from 0 to 150 at eye distance 100 keeps a third of the colour.
    startFrame();
    glEnable(GL_FOG);
    glFogi(GL_FOG_MODE, GL_LINEAR);
    glFogf(GL_FOG_START, 0.0f);
    glFogf(GL_FOG_END, 150.0f);
    const GLfloat white[4] = {1, 1, 1, 1};
    glFogfv(GL_FOG_COLOR, white);
    auto keep = [](int channel) { return static_cast<int>(channel / 3.0 + 255 * 2 / 3.0 + 0.5); };
    expectNear(clear.draw().at(CENTRE, CENTRE), {keep(0x20), keep(0x40), keep(0x80)}, 3, "fogged");
}

}  // namespace
