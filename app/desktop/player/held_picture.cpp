#include "app/desktop/player/held_picture.h"

#include "app/desktop/capture/frame_target.h"

#define GL_GLEXT_PROTOTYPES
#include "base/gl.h"

#include <GL/freeglut.h>
#include <GL/glext.h>

namespace {

struct Held {
    GLuint framebuffer = 0;
    GLuint colour = 0;
    int width = 0;  // the picture's size when it was held
    int height = 0;
    int shownOnWidth = 0;  // the window's size it was last shown on
    int shownOnHeight = 0;
};
Held g_held;

// Runs `copy` between the window's back buffer and the held picture with the
// scissor test off, leaving the binding, the scissor and the clear colour as they were.
template <typename Copy>
void withBlitState(Copy copy) {
    const GLboolean scissor = glIsEnabled(GL_SCISSOR_TEST);
    glDisable(GL_SCISSOR_TEST);
    copy();
    if (scissor) {
        glEnable(GL_SCISSOR_TEST);
    }
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
}

}  // namespace

void holdPicture() {
    const PictureRect picture = pictureRect(frameWidth(), frameHeight());
    if (g_held.framebuffer == 0) {
        glGenFramebuffers(1, &g_held.framebuffer);
        glGenRenderbuffers(1, &g_held.colour);
    }
    if (picture.width != g_held.width || picture.height != g_held.height) {
        glBindRenderbuffer(GL_RENDERBUFFER, g_held.colour);
        glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, picture.width, picture.height);
        glBindFramebuffer(GL_FRAMEBUFFER, g_held.framebuffer);
        glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, g_held.colour);
        g_held.width = picture.width;
        g_held.height = picture.height;
    }
    withBlitState([&] {
        glBindFramebuffer(GL_READ_FRAMEBUFFER, 0);
        glBindFramebuffer(GL_DRAW_FRAMEBUFFER, g_held.framebuffer);
        glBlitFramebuffer(picture.x, picture.y, picture.x + picture.width, picture.y + picture.height, 0, 0,
                          picture.width, picture.height, GL_COLOR_BUFFER_BIT, GL_NEAREST);
    });
    g_held.shownOnWidth = frameWidth();
    g_held.shownOnHeight = frameHeight();
}

bool heldPictureRefitted() { return frameWidth() != g_held.shownOnWidth || frameHeight() != g_held.shownOnHeight; }

void showHeldPicture() {
    if (g_held.width == 0) {
        return;
    }
    const PictureRect picture = pictureRect(frameWidth(), frameHeight());
    withBlitState([&] {
        GLfloat clear[4];
        glGetFloatv(GL_COLOR_CLEAR_VALUE, clear);
        glClearColor(0.0f, 0.0f, 0.0f, 0.0f);
        glClear(GL_COLOR_BUFFER_BIT);
        glClearColor(clear[0], clear[1], clear[2], clear[3]);
        glBindFramebuffer(GL_READ_FRAMEBUFFER, g_held.framebuffer);
        glBindFramebuffer(GL_DRAW_FRAMEBUFFER, 0);
        const bool sameSize = picture.width == g_held.width && picture.height == g_held.height;
        glBlitFramebuffer(0, 0, g_held.width, g_held.height, picture.x, picture.y, picture.x + picture.width,
                          picture.y + picture.height, GL_COLOR_BUFFER_BIT, sameSize ? GL_NEAREST : GL_LINEAR);
    });
    glutSwapBuffers();
    g_held.shownOnWidth = frameWidth();
    g_held.shownOnHeight = frameHeight();
}
