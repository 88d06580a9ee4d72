#include "overlay/overlay.h"

namespace {

// Shifts layout corners so that (320, 240) lies on the view axis.
constexpr int LAYOUT_CENTRE_X = 320;
constexpr int LAYOUT_CENTRE_Y = 240;

void drawOverlay(Texture* texture, int x0, int y0, int x1, int y1, int z, GLenum sourceFactor,
                 GLenum destinationFactor) {
    glDisable(GL_FOG);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_CULL_FACE);
    glDisable(GL_LIGHTING);
    glDisable(GL_ALPHA_TEST);
    glEnable(GL_TEXTURE_2D);

    x0 -= LAYOUT_CENTRE_X;
    x1 -= LAYOUT_CENTRE_X;
    y0 -= LAYOUT_CENTRE_Y;
    y1 -= LAYOUT_CENTRE_Y;

    glBindTexture(GL_TEXTURE_2D, texture->id);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    glEnable(GL_BLEND);
    glBlendFunc(sourceFactor, destinationFactor);

    // The image's top row is texture row t = 0: it goes along the y1 edge.
    glBegin(GL_QUADS);
    glTexCoord2i(0, 1);
    glVertex3i(x0, y0, z);
    glTexCoord2i(1, 1);
    glVertex3i(x1, y0, z);
    glTexCoord2i(1, 0);
    glVertex3i(x1, y1, z);
    glTexCoord2i(0, 0);
    glVertex3i(x0, y1, z);
    glEnd();
    glFlush();

    // Back to the 3D state the show starts from.
    glEnable(GL_CULL_FACE);
    glCullFace(GL_BACK);
    glFrontFace(GL_CW);
    glDisable(GL_BLEND);
    glEnable(GL_LIGHTING);
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_COLOR_MATERIAL);
}

}  // namespace

void drawOverlayDarken(Texture* texture, int x0, int y0, int x1, int y1, int z) {
    drawOverlay(texture, x0, y0, x1, y1, z, GL_ZERO, GL_ONE_MINUS_SRC_COLOR);
}

void drawOverlayAdd(Texture* texture, int x0, int y0, int x1, int y1, int z) {
    drawOverlay(texture, x0, y0, x1, y1, z, GL_ONE, GL_ONE);
}
