// Overlays of a texture loaded from an archive, drawn over a frame in a real GL
// context and read back from the back buffer.
#include "overlay/overlay.h"

#include <gtest/gtest.h>

#include "tests/resources/gl_test_window.h"
#include "tests/resources/resource_test_files.h"

namespace {

// The projection maps the 640 x 480 layout onto the window, layout point (x, y)
// at depths -1..-6000 on window pixel (x, y) counted from the bottom.
constexpr int X0 = 270, Y0 = 190, X1 = 370, Y1 = 290, DEPTH = -100;

// Window points in the image's white top-left quadrant, its black ones and outside.
struct Point { int x, y; };
constexpr Point WHITE{295, 265}, BLACK_RIGHT{345, 265}, BLACK_BELOW{295, 215}, OUTSIDE{40, 40};

void expectGrey(std::initializer_list<Point> points, int level) {
    for (Point point : points) {
        uint8_t rgb[3];
        glReadPixels(point.x, point.y, 1, 1, GL_RGB, GL_UNSIGNED_BYTE, rgb);
        for (uint8_t channel : rgb) {
            EXPECT_NEAR(channel, level, 2) << "at " << point.x << "," << point.y;
        }
    }
}

class OverlayTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!openGlTestWindow()) {
            GTEST_SKIP() << "no display: run under xvfb-run";
        }
        setShowStartState();
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glOrtho(-320, 320, -240, 240, 1, 6000);
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        // A 32 x 32 white image loaded into 64 x 64: white in the top-left quadrant
        // only, so the tests see which way up it lands.
        const std::vector<uint8_t> pcx = pcxFile({.width = 32, .height = 32, .bytesPerLine = 32},
                                                 encodeRuns(std::vector<uint8_t>(1024, 1)), {0, 0, 0, 255, 255, 255});
        writeBytes("3d", buildArchive({{"title.pcx", pcx}}));
        Library library{};
        library.open("3d");
        title.load(library, "title.pcx", 64, 64, false);
        library.close();
        glBindTexture(GL_TEXTURE_2D, 0);
    }
    void TearDown() override { delete[] title.pixels; }

    // Clears the frame to grey `level` (0..1) and the depth buffer to the nearest depth, moves
    // the GL state away from the show's (fog on, ...), draws, and checks it left the show's state.
    void drawOver(float level, void (*draw)(Texture*, int, int, int, int, int), int x0, int x1) {
        glClearColor(level, level, level, 0);
        glClearDepth(0.0);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        glClearDepth(1.0);
        glEnable(GL_FOG);
        glEnable(GL_ALPHA_TEST);
        glDisable(GL_COLOR_MATERIAL);
        glCullFace(GL_FRONT);
        glFrontFace(GL_CCW);
        draw(&title, x0, Y0, x1, Y1, DEPTH);
        for (GLenum on : {GL_DEPTH_TEST, GL_LIGHTING, GL_CULL_FACE, GL_COLOR_MATERIAL, GL_TEXTURE_2D}) {
            EXPECT_TRUE(glIsEnabled(on)) << on;
        }
        for (GLenum off : {GL_FOG, GL_ALPHA_TEST, GL_BLEND}) {
            EXPECT_FALSE(glIsEnabled(off)) << off;
        }
        GLint cullFace = 0, frontFace = 0;
        glGetIntegerv(GL_CULL_FACE_MODE, &cullFace);
        glGetIntegerv(GL_FRONT_FACE, &frontFace);
        EXPECT_EQ(std::make_pair(cullFace, frontFace), std::make_pair(GL_BACK, GL_CW));
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    }

    WorkingTempDir directory;
    Texture title{};
};

TEST_F(OverlayTest, DarkenCutsAndAddBrightensTheTitleScaledByTheColourAndBothLeaveTheShowState) {
    glColor4f(1, 1, 1, 1);
    drawOver(0.5f, drawOverlayDarken, X0, X1);
    expectGrey({WHITE}, 0);
    expectGrey({BLACK_RIGHT, BLACK_BELOW, OUTSIDE}, 128);
    drawOver(0.25f, drawOverlayAdd, X0, X1);
    expectGrey({WHITE}, 255);
    expectGrey({BLACK_RIGHT, BLACK_BELOW, OUTSIDE}, 64);
    drawOver(0.5f, drawOverlayDarken, X1, X0);  // corners swapped: mirrored, not culled
    expectGrey({WHITE, BLACK_BELOW}, 128);
    expectGrey({BLACK_RIGHT}, 0);
    glColor4f(0.5f, 0.5f, 0.5f, 1);  // texels are modulated by the current colour
    drawOver(0.5f, drawOverlayDarken, X0, X1);
    expectGrey({WHITE}, 64);
    drawOver(0.25f, drawOverlayAdd, X0, X1);
    expectGrey({WHITE}, 192);
}

}  // namespace
