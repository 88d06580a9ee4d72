#include "app/desktop/capture/frame_target.h"

#define GL_GLEXT_PROTOTYPES
#include "base/gl.h"

#include <GL/freeglut.h>
#include <GL/glext.h>

#include <cstring>
#include <vector>

namespace {

// The layout the show's sizes are made for.
constexpr int LAYOUT_HEIGHT = 480;

struct Offscreen {
    GLuint frames = 0;      // what the show draws into
    GLuint colour = 0;
    GLuint depth = 0;
    GLuint resolved = 0;    // single-sampled copy of a multisampled frame
    GLuint resolvedColour = 0;
    int samples = 0;
};

struct Target {
    int width = 640;
    int height = 480;
    PictureRect picture{0, 0, 640, 480};
    bool offscreen = false;
    bool topDown = false;  // offscreen frames stored top row first
    Offscreen buffers;
    std::vector<uint8_t> flipped;  // without topDown: a frame before its rows are turned
};
Target g_target;

bool fillsFrame(const PictureRect& picture) {
    return picture.x == 0 && picture.y == 0 && picture.width == g_target.width && picture.height == g_target.height;
}

// The picture in the target's own coordinates: OpenGL counts rows from the
// bottom, except in an offscreen target stored top row first.
PictureRect targetPicture() {
    PictureRect picture = pictureRect(g_target.width, g_target.height);
    if (!(g_target.offscreen && g_target.topDown)) {
        picture.y = g_target.height - picture.y - picture.height;
    }
    return picture;
}

void applyFit() {
    g_target.picture = targetPicture();
    const PictureRect& p = g_target.picture;
    glViewport(p.x, p.y, p.width, p.height);
    glScissor(p.x, p.y, p.width, p.height);
    // Clearing is bounded by the scissor only, not by the viewport.
    if (fillsFrame(p)) {
        glDisable(GL_SCISSOR_TEST);
    } else {
        glEnable(GL_SCISSOR_TEST);
    }
    glLineWidth(static_cast<float>(p.height) / LAYOUT_HEIGHT);
}

GLuint makeRenderbuffer(GLenum format, int samples) {
    GLuint buffer = 0;
    glGenRenderbuffers(1, &buffer);
    glBindRenderbuffer(GL_RENDERBUFFER, buffer);
    if (samples > 1) {
        glRenderbufferStorageMultisample(GL_RENDERBUFFER, samples, format, g_target.width, g_target.height);
    } else {
        glRenderbufferStorage(GL_RENDERBUFFER, format, g_target.width, g_target.height);
    }
    return buffer;
}

bool hasClipControl() {
    GLint major = 0;
    GLint minor = 0;
    glGetIntegerv(GL_MAJOR_VERSION, &major);
    glGetIntegerv(GL_MINOR_VERSION, &minor);
    if (major > 4 || (major == 4 && minor >= 5)) {
        return true;
    }
    GLint count = 0;
    glGetIntegerv(GL_NUM_EXTENSIONS, &count);
    for (GLint i = 0; i < count; ++i) {
        const char* name = reinterpret_cast<const char*>(glGetStringi(GL_EXTENSIONS, static_cast<GLuint>(i)));
        if (name != nullptr && std::strcmp(name, "GL_ARB_clip_control") == 0) {
            return true;
        }
    }
    return false;
}

// The framebuffer whose pixels hold the finished frame.
GLuint finishedFrame() {
    const Offscreen& o = g_target.buffers;
    if (o.samples <= 1) {
        return o.frames;
    }
    glBindFramebuffer(GL_READ_FRAMEBUFFER, o.frames);
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, o.resolved);
    // A blit is clipped by the scissor box: the bars must be resolved too.
    const GLboolean scissored = glIsEnabled(GL_SCISSOR_TEST);
    glDisable(GL_SCISSOR_TEST);
    glBlitFramebuffer(0, 0, g_target.width, g_target.height, 0, 0, g_target.width, g_target.height,
                      GL_COLOR_BUFFER_BIT, GL_NEAREST);
    if (scissored) {
        glEnable(GL_SCISSOR_TEST);
    }
    return o.resolved;
}

}  // namespace

PictureRect pictureRect(int frameWidth, int frameHeight) {
    PictureRect rect;
    // Whole pixels: the wider of the two 4:3 fits that the frame holds.
    if (static_cast<long>(frameWidth) * 3 >= static_cast<long>(frameHeight) * 4) {
        rect.height = frameHeight;
        rect.width = static_cast<int>(static_cast<long>(frameHeight) * 4 / 3);
    } else {
        rect.width = frameWidth;
        rect.height = static_cast<int>(static_cast<long>(frameWidth) * 3 / 4);
    }
    rect.x = (frameWidth - rect.width) / 2;
    rect.y = (frameHeight - rect.height) / 2;
    return rect;
}

void fitToWindow(int width, int height) {
    if (g_target.offscreen || width <= 0 || height <= 0) {
        return;
    }
    g_target.width = width;
    g_target.height = height;
    applyFit();
}

bool drawOffscreen(int width, int height, int samples, bool opaque, std::string* error) {
    g_target.width = width;
    g_target.height = height;
    Offscreen& o = g_target.buffers;
    o.samples = samples;
    glGenFramebuffers(1, &o.frames);
    glBindFramebuffer(GL_FRAMEBUFFER, o.frames);
    // Without alpha every pixel reads back opaque, as a window's do; with it
    // the read-back is faster (the show never blends with the frame's alpha).
    const GLenum format = opaque ? GL_RGB8 : GL_RGBA8;
    o.colour = makeRenderbuffer(format, samples);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, o.colour);
    o.depth = makeRenderbuffer(GL_DEPTH_COMPONENT24, samples);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER, o.depth);
    GLint granted = 0;
    glBindRenderbuffer(GL_RENDERBUFFER, o.colour);
    glGetRenderbufferParameteriv(GL_RENDERBUFFER, GL_RENDERBUFFER_SAMPLES, &granted);
    if (samples > 1 && granted != samples) {
        GLint most = 0;
        glGetIntegerv(GL_MAX_SAMPLES, &most);
        *error = "the OpenGL driver offers no " + std::to_string(samples) + "-sample frames (it offers up to " +
                 std::to_string(most) + ")";
        return false;
    }
    bool complete = glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
    if (complete && samples > 1) {
        glGenFramebuffers(1, &o.resolved);
        glBindFramebuffer(GL_FRAMEBUFFER, o.resolved);
        o.resolvedColour = makeRenderbuffer(format, 0);
        glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, o.resolvedColour);
        complete = glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
        glBindFramebuffer(GL_FRAMEBUFFER, o.frames);
    }
    if (!complete || glGetError() != GL_NO_ERROR) {
        *error = "the OpenGL driver cannot draw " + std::to_string(width) + " x " + std::to_string(height) +
                 " frames" + (samples > 1 ? " with " + std::to_string(samples) + " samples" : std::string());
        return false;
    }
    g_target.offscreen = true;
    // Stored top row first, as a window's pixels are: the same rasterisation
    // as in a window, pixel for pixel, and rows in the order files take them.
    g_target.topDown = hasClipControl();
    if (g_target.topDown) {
        glClipControl(GL_UPPER_LEFT, GL_NEGATIVE_ONE_TO_ONE);
    }
    applyFit();
    return true;
}

void refitFrame() { applyFit(); }

void prepareFrame() {
    const PictureRect& p = g_target.picture;
    if (fillsFrame(p)) {
        return;
    }
    GLfloat clear[4];
    glGetFloatv(GL_COLOR_CLEAR_VALUE, clear);
    glClearColor(0.0f, 0.0f, 0.0f, 0.0f);
    // The two bars: left and right of a narrower picture, or below and above a lower one.
    if (p.width < g_target.width) {
        glScissor(0, 0, p.x, g_target.height);
        glClear(GL_COLOR_BUFFER_BIT);
        glScissor(p.x + p.width, 0, g_target.width - p.x - p.width, g_target.height);
        glClear(GL_COLOR_BUFFER_BIT);
    } else {
        glScissor(0, 0, g_target.width, p.y);
        glClear(GL_COLOR_BUFFER_BIT);
        glScissor(0, p.y + p.height, g_target.width, g_target.height - p.y - p.height);
        glClear(GL_COLOR_BUFFER_BIT);
    }
    glScissor(p.x, p.y, p.width, p.height);
    glClearColor(clear[0], clear[1], clear[2], clear[3]);
}

void readFrame(uint8_t* pixels, bool bgra) {
    const GLenum format = bgra ? GL_BGRA : GL_RGBA;
    const size_t rowBytes = static_cast<size_t>(g_target.width) * 4;
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    if (g_target.offscreen) {
        glBindFramebuffer(GL_READ_FRAMEBUFFER, finishedFrame());
        glReadBuffer(GL_COLOR_ATTACHMENT0);
    } else {
        glReadBuffer(GL_BACK);
    }
    if (g_target.offscreen && g_target.topDown) {
        glReadPixels(0, 0, g_target.width, g_target.height, format, GL_UNSIGNED_BYTE, pixels);
    } else {
        g_target.flipped.resize(rowBytes * static_cast<size_t>(g_target.height));
        glReadPixels(0, 0, g_target.width, g_target.height, format, GL_UNSIGNED_BYTE, g_target.flipped.data());
        for (int row = 0; row < g_target.height; ++row) {
            std::memcpy(pixels + rowBytes * static_cast<size_t>(row),
                        g_target.flipped.data() + rowBytes * static_cast<size_t>(g_target.height - 1 - row), rowBytes);
        }
    }
    if (g_target.offscreen) {
        glBindFramebuffer(GL_FRAMEBUFFER, g_target.buffers.frames);
    }
}

void previewFrame() {
    if (!g_target.offscreen) {
        return;
    }
    // The whole frame, its own shape kept, as large as the window holds it.
    const int windowWidth = glutGet(GLUT_WINDOW_WIDTH);
    const int windowHeight = glutGet(GLUT_WINDOW_HEIGHT);
    int width = windowWidth;
    int height = static_cast<int>(static_cast<long>(windowWidth) * g_target.height / g_target.width);
    if (height > windowHeight) {
        height = windowHeight;
        width = static_cast<int>(static_cast<long>(windowHeight) * g_target.width / g_target.height);
    }
    const int x = (windowWidth - width) / 2;
    const int y = (windowHeight - height) / 2;
    glBindFramebuffer(GL_READ_FRAMEBUFFER, finishedFrame());
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, 0);
    glDisable(GL_SCISSOR_TEST);
    const int top = g_target.topDown ? y : y + height;
    const int bottom = g_target.topDown ? y + height : y;
    glBlitFramebuffer(0, 0, g_target.width, g_target.height, x, bottom, x + width, top, GL_COLOR_BUFFER_BIT,
                      GL_LINEAR);
    glutSwapBuffers();
    glBindFramebuffer(GL_FRAMEBUFFER, g_target.buffers.frames);
    applyFit();
}

int frameWidth() { return g_target.width; }
int frameHeight() { return g_target.height; }
