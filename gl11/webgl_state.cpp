#include "gl11/webgl_state.h"

#include "gl11/batch.h"
#include "gl11/faults.h"
#include "gl11/state.h"

#include <cstring>

namespace {

struct WebGlState {
    GLint viewport[4];
    GLfloat lineWidth;  // as asked; WebGL gets it clamped to its range
    GLenum depthFunc;
    GLboolean depthMask;
    GLboolean colourMask[4];
    GLint scissor[4];
    bool scissorTest;
    bool dither;
    bool polygonOffsetFill;
    GLint packAlignment;
    GLint unpackAlignment;
};
WebGlState g_webGl;

// What batched primitives were sent under is about to change.
void drawBatched() {
    if (!gl11Faulty(Gl11Fault::UnbatchedDepth)) {
        flushBatch();
    }
}

void setLineWidth() {
    GLfloat range[2] = {1.0f, 1.0f};
    glGetFloatv(GL_ALIASED_LINE_WIDTH_RANGE, range);
    const GLfloat width = g_webGl.lineWidth;
    glLineWidth(width < range[0] ? range[0] : width > range[1] ? range[1] : width);
}

void setCapability(GLenum capability, bool on) { on ? glEnable(capability) : glDisable(capability); }

}  // namespace

void resetWebGlState() {
    g_webGl = WebGlState{};
    glGetIntegerv(GL_VIEWPORT, g_webGl.viewport);
    glGetIntegerv(GL_SCISSOR_BOX, g_webGl.scissor);
    g_webGl.lineWidth = 1.0f;
    g_webGl.depthFunc = GL_LESS;
    g_webGl.depthMask = GL_TRUE;
    std::memset(g_webGl.colourMask, GL_TRUE, sizeof g_webGl.colourMask);
    g_webGl.dither = true;
    g_webGl.packAlignment = 4;
    g_webGl.unpackAlignment = 4;
    applyWebGlState();
}

void applyWebGlState() {
    const WebGlState& s = g_webGl;
    glViewport(s.viewport[0], s.viewport[1], s.viewport[2], s.viewport[3]);
    setLineWidth();
    glDepthFunc(s.depthFunc);
    glDepthMask(s.depthMask);
    glColorMask(s.colourMask[0], s.colourMask[1], s.colourMask[2], s.colourMask[3]);
    glScissor(s.scissor[0], s.scissor[1], s.scissor[2], s.scissor[3]);
    setCapability(GL_SCISSOR_TEST, s.scissorTest);
    setCapability(GL_DITHER, s.dither);
    setCapability(GL_POLYGON_OFFSET_FILL, s.polygonOffsetFill);
    glPixelStorei(GL_PACK_ALIGNMENT, s.packAlignment);
    glPixelStorei(GL_UNPACK_ALIGNMENT, s.unpackAlignment);
}

bool passCapability(GLenum capability, bool on) {
    bool* kept = capability == GL_SCISSOR_TEST          ? &g_webGl.scissorTest
                 : capability == GL_DITHER              ? &g_webGl.dither
                 : capability == GL_POLYGON_OFFSET_FILL ? &g_webGl.polygonOffsetFill
                                                        : nullptr;
    if (kept == nullptr) {
        return false;
    }
    if (*kept != on) {
        drawBatched();
        setCapability(capability, on);
        *kept = on;
    }
    return true;
}

// Most WebGL implementations draw only lines of width 1 (SwiftShader among
// them); wider ones are asked for and clamped to what the browser offers.
void gl11LineWidth(GLfloat width) {
    if (width != g_webGl.lineWidth) {
        flushBatch();
        g_webGl.lineWidth = width;
        setLineWidth();
    }
}

void gl11Viewport(GLint x, GLint y, GLsizei width, GLsizei height) {
    flushBatch();
    const GLint viewport[4] = {x, y, width, height};
    std::memcpy(g_webGl.viewport, viewport, sizeof viewport);
    glViewport(x, y, width, height);
}

void gl11PixelStorei(GLenum name, GLint value) {
    if (name == GL_PACK_ALIGNMENT) {
        g_webGl.packAlignment = value;
    } else if (name == GL_UNPACK_ALIGNMENT) {
        g_webGl.unpackAlignment = value;
    }
    glPixelStorei(name, value);
}

void gl11DepthFunc(GLenum function) {
    if (function != g_webGl.depthFunc) {
        drawBatched();
        g_webGl.depthFunc = function;
        glDepthFunc(function);
    }
}

void gl11DepthMask(GLboolean write) {
    if (write != g_webGl.depthMask) {
        drawBatched();
        g_webGl.depthMask = write;
        glDepthMask(write);
    }
}

void gl11ColorMask(GLboolean red, GLboolean green, GLboolean blue, GLboolean alpha) {
    const GLboolean mask[4] = {red, green, blue, alpha};
    if (std::memcmp(mask, g_webGl.colourMask, sizeof mask) != 0) {
        drawBatched();
        std::memcpy(g_webGl.colourMask, mask, sizeof mask);
        glColorMask(red, green, blue, alpha);
    }
}

void gl11Scissor(GLint x, GLint y, GLsizei width, GLsizei height) {
    const GLint box[4] = {x, y, width, height};
    if (std::memcmp(box, g_webGl.scissor, sizeof box) != 0) {
        drawBatched();
        std::memcpy(g_webGl.scissor, box, sizeof box);
        glScissor(x, y, width, height);
    }
}

GLint unpackAlignment() { return g_webGl.unpackAlignment; }
