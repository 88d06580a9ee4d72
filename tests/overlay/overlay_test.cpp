// Overlays of a texture loaded from an archive, drawn over a grey frame in a
// real GL context and read back from the back buffer.
#include "overlay/overlay.h"

#include <gtest/gtest.h>

#include "tests/engine/text_cases.h"
#include "tests/resources/gl_test_window.h"
#include "tests/resources/resource_test_files.h"

TEST(Overlay, DarkenCutsAndAddBrightensTheTitleScaledByTheColourAndBothLeaveTheShowState) {
    if (!openGlTestWindow()) GTEST_SKIP() << "no display: run under xvfb-run";
    // The layout (640 x 480, depths -1..-6000) on the window, point (x, y) on pixel (x, y) from the bottom.
    setShowStartState();
    glMatrixMode(GL_PROJECTION);
    glOrtho(-320, 320, -240, 240, 1, 6000);
    glMatrixMode(GL_MODELVIEW);
    // A 32 x 32 white image (runs of 63 and 16 of index 1) loaded into 64 x 64:
    // white in the top-left quadrant only, so that the test sees which way up it lands.
    WorkingTempDir directory;
    writeBytes("3d", textBytes("\"title.pcx\" d931 x0A x05 x01 x08 w0,0,31,31 x00*53 x01 w32 x00*60 RUNS RUNS xD0 x01 x0C x00*3 "
                               "xFF*3 x00*762", {{"RUNS", "xFF x01 xFF x01 xFF x01 xFF x01 xFF x01 xFF x01 xFF x01 xFF x01"}}));
    Library library{};
    Texture title{};
    library.open("3d");
    title.load(library, "title.pcx", 64, 64, false);
    library.close();
    // Over grey `background`, the grey the title's white quadrant (top left),
    // its black one on the right and the one below take, and the frame outside.
    const struct { void (*draw)(Texture*, int, int, int, int, int); float colour, background; bool mirrored;
                   int white, right, below; } cases[] = {
        {drawOverlayDarken, 1.0f, 0.5f, false, 0, 128, 128}, {drawOverlayAdd, 1.0f, 0.25f, false, 255, 64, 64},
        {drawOverlayDarken, 1.0f, 0.5f, true, 128, 0, 128},  // corners swapped: mirrored, not culled
        {drawOverlayDarken, 0.5f, 0.5f, false, 64, 128, 128}, {drawOverlayAdd, 0.5f, 0.25f, false, 192, 64, 64}};
    for (const auto& c : cases) {
        // The frame grey, the depth buffer at its nearest, the GL state away from the show's.
        glClearColor(c.background, c.background, c.background, 0);
        glClearDepth(0.0);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        glClearDepth(1.0);
        glEnable(GL_FOG);
        glEnable(GL_ALPHA_TEST);
        glDisable(GL_COLOR_MATERIAL);
        glCullFace(GL_FRONT);
        glFrontFace(GL_CCW);
        glColor4f(c.colour, c.colour, c.colour, 1);
        c.draw(&title, c.mirrored ? 370 : 270, 190, c.mirrored ? 270 : 370, 290, -100);
        const int levels[4][3] = {{295, 265, c.white}, {345, 265, c.right}, {295, 215, c.below},
                                  {40, 40, static_cast<int>(c.background * 255 + 0.5f)}};
        for (const auto& [x, y, level] : levels) {
            uint8_t rgb[3];
            glReadPixels(x, y, 1, 1, GL_RGB, GL_UNSIGNED_BYTE, rgb);
            EXPECT_EQ(std::vector<int>(rgb, rgb + 3), std::vector<int>(3, level)) << x << ", " << y;
        }
        // The show's state again: depth test, lighting, culling, colour material, texturing on,
        // fog, alpha test, blending off, clockwise front faces, back faces culled.
        std::vector<GLint> state;
        for (GLenum on : {GL_DEPTH_TEST, GL_LIGHTING, GL_CULL_FACE, GL_COLOR_MATERIAL, GL_TEXTURE_2D, GL_FOG, GL_ALPHA_TEST, GL_BLEND}) state.push_back(glIsEnabled(on));
        state.resize(10);
        glGetIntegerv(GL_CULL_FACE_MODE, &state[8]);
        glGetIntegerv(GL_FRONT_FACE, &state[9]);
        EXPECT_EQ(state, (std::vector<GLint>{1, 1, 1, 1, 1, 0, 0, 0, GL_BACK, GL_CW}));
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    }
    delete[] title.pixels;
}
