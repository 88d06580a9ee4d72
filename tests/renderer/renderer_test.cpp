// World::render in a real GL context: what each mode, flag and light puts
// into a 64 x 64 viewport in the test window's corner (square, as the
// renderer's aspect 1 needs), read from the back buffer (the rows of
// tests/data/renderer/squares.txt), and its glBegin calls, written down on
// their way to OpenGL by this program's own wrapper (linked with --wrap=glBegin).
#include <GL/gl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <string>
#include <tuple>
#include <vector>

#include "engine/world.h"
#include "resources/texture.h"
#include "tests/engine/text_cases.h"
#include "tests/renderer/test_worlds.h"
#include "tests/resources/gl_test_window.h"

static std::vector<GLenum> g_begun;  // the mode of every glBegin since it was last cleared

extern "C" void __real_glBegin(GLenum mode);
extern "C" void __wrap_glBegin(GLenum mode) {
    g_begun.push_back(mode);
    __real_glBegin(mode);
}

namespace {

constexpr int SIZE = 64;
constexpr int CENTRE = SIZE / 2;

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

// The pixel with the brightest channel within `radius` of (x, y) in the viewport (rows bottom up).
std::array<int, 3> brightest(int x, int y, int radius) {
    std::vector<uint8_t> rgb(SIZE * SIZE * 3);
    glReadPixels(0, 0, SIZE, SIZE, GL_RGB, GL_UNSIGNED_BYTE, rgb.data());
    std::array<int, 3> best{};
    for (int j = std::max(0, y - radius); j <= std::min(SIZE - 1, y + radius); ++j) {
        for (int i = std::max(0, x - radius); i <= std::min(SIZE - 1, x + radius); ++i) {
            const std::array<int, 3> at{rgb[(j * SIZE + i) * 3], rgb[(j * SIZE + i) * 3 + 1], rgb[(j * SIZE + i) * 3 + 2]};
            best = std::ranges::max(at) > std::ranges::max(best) ? at : best;
        }
    }
    return best;
}

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
};

void addLamp(World& world) { world.addLight("lamp", 0, 0, 0, 255, 255, 255, 1000.0f); }  // white, at the eye

class WorldRender : public ::testing::Test {
protected:
    void SetUp() override {
        if (!openGlTestWindow()) GTEST_SKIP() << "no display: run the GL tests under xvfb-run";
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

// The rows of tests/data/renderer/squares.txt: a square of one material in
// front of the test camera, drawn into the frame its words leave, looked at.
TEST_F(WorldRender, EachSquareGivesThePixelWrittenDown) {
    for (const TextCase& row : readTextCases("renderer/squares.txt")) {
        SCOPED_TRACE(::testing::PrintToString(row));
        const std::vector<std::string> w = words(row.input);
        const auto half = std::find(w.begin(), w.end(), "half");
        startFrame();
        SquareWorld scene(std::stoul(w[0], nullptr, 0), std::stoul(w[1], nullptr, 0), std::stoul(w[2], nullptr, 0),
                          half == w.end() ? 10.0f : std::stof(half[1]));
        int x = CENTRE, y = CENTRE, radius = 0;
        for (size_t i = 3; i < w.size(); ++i) {
            const auto arg = [&w, &i](int k) { return std::stoi(w.at(i + k)); };
            if (w[i] == "over") {  // over (64, 128, 192), additive blending left on
                glClearColor(64 / 255.0f, 128 / 255.0f, 192 / 255.0f, 0.0f);
                glClear(GL_COLOR_BUFFER_BIT);
                glEnable(GL_BLEND);
                glBlendFunc(GL_ONE, GL_ONE);
            } else if (w[i] == "behind") {  // turned away, behind the depth buffer
                scene.square->rotation.y = 180.0f;
                glClearDepth(0.0);
                glClear(GL_DEPTH_BUFFER_BIT);
                glClearDepth(1.0);
            } else if (w[i] == "turn") {
                scene.square->rotation.y = static_cast<float>(arg(1));
            } else if (w[i] == "texels") {
                scene.material->texture = texels();
            } else if (w[i] == "lamp") {
                addLamp(scene.world);
            } else if (w[i] == "light") {  // light X Y Z R G B SHIFT: moved by SHIFT along z by the matrix on entry
                glTranslatef(0.0f, 0.0f, static_cast<float>(arg(7)));
                scene.world.addLight("light", arg(1), arg(2), arg(3), static_cast<uint8_t>(arg(4)),
                                     static_cast<uint8_t>(arg(5)), static_cast<uint8_t>(arg(6)), 1000.0f);
            } else if (w[i] == "spot") {  // spot Y TX TZ: white, at (0, Y, 0) aimed at (TX, Y, TZ)
                scene.world.addSpotlight("spot", 0, arg(1), 0, arg(2), arg(1), arg(3), 255, 255, 255, 30.0f, 40.0f);
            } else if (w[i] == "fog") {  // linear and white from 0 to 150
                const GLfloat white[4] = {1, 1, 1, 1};
                glEnable(GL_FOG);
                glFogi(GL_FOG_MODE, GL_LINEAR);
                glFogf(GL_FOG_START, 0.0f);
                glFogf(GL_FOG_END, 150.0f);
                glFogfv(GL_FOG_COLOR, white);
            } else if (w[i] == "edges") {
                scene.square->faces[0].flags = static_cast<uint16_t>(arg(1));
                scene.square->faces[1].flags = static_cast<uint16_t>(arg(2));
            } else if (w[i] == "at") {
                std::tie(x, y) = std::pair(arg(1), arg(2));
            } else if (w[i] == "near") {
                radius = arg(1);
            } else if (w[i] != "half" && !std::isdigit(w[i].back())) {
                ADD_FAILURE() << "no such word " << w[i];
            }
        }
        scene.world.render();
        const std::array<int, 3> got = brightest(x, y, radius);
        std::vector<int> want;
        for (const std::string& word : words(row.expected)) want.push_back(std::stoi(word));
        want.resize(4);  // the tolerance, 0 unless given
        EXPECT_TRUE(std::abs(got[0] - want[0]) <= want[3] && std::abs(got[1] - want[1]) <= want[3] && std::abs(got[2] - want[2]) <= want[3])
            << got[0] << " " << got[1] << " " << got[2];
    }
    // A spot light on its own target points straight down.
    startFrame();
    SquareWorld aimless(MODE_SMOOTH, 0x00C0C0C0, MAT_OPAQUE, 10.0f);
    aimless.world.addSpotlight("spot", 0, 50, 0, 0, 50, 0, 255, 255, 255, 30.0f, 40.0f);
    aimless.world.render();
    GLfloat direction[3] = {};
    glGetLightfv(GL_LIGHT0, GL_SPOT_DIRECTION, direction);
    EXPECT_EQ(std::vector<GLfloat>(direction, direction + 3), (std::vector<GLfloat>{0.0f, -1.0f, 0.0f}));
}

}  // namespace
