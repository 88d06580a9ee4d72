// The model-view and projection stacks. The matrices in force are part of the
// draw state: the shaders apply them to the batched vertices.
#include "gl11/faults.h"
#include "gl11/state.h"

#include <cstring>

namespace {

Matrix4& currentMatrix() {
    return g_gl11.matrixMode == GL_PROJECTION ? g_gl11.projectionStack[g_gl11.projectionTop]
                                              : g_gl11.modelview[g_gl11.modelviewTop];
}

// After the current matrix changed: the draw state takes the stack's top.
void currentMatrixChanged() {
    const bool projection = g_gl11.matrixMode == GL_PROJECTION;
    const Matrix4& top = currentMatrix();
    Matrix4& inForce = projection ? g_gl11.state.projection : g_gl11.state.modelview;
    if (std::memcmp(&top, &inForce, sizeof top) != 0) {
        inForce = top;
        markStateChanged();
    }
}

void multiplyCurrent(const Matrix4& by) {
    Matrix4& current = currentMatrix();
    current = multiplyMatrices(current, by);
    currentMatrixChanged();
}

}  // namespace

void gl11MatrixMode(GLenum mode) {
    if (mode == GL_MODELVIEW || mode == GL_PROJECTION) {
        g_gl11.matrixMode = mode;
    }
}

void gl11LoadIdentity(void) {
    currentMatrix() = identityMatrix();
    currentMatrixChanged();
}

// A push past the stack's depth or a pop of its last matrix is ignored, as
// OpenGL ignores it (with a stack overflow or underflow error).
void gl11PushMatrix(void) {
    if (g_gl11.matrixMode == GL_PROJECTION) {
        if (g_gl11.projectionTop + 1 < GL11_PROJECTION_DEPTH) {
            g_gl11.projectionStack[g_gl11.projectionTop + 1] = g_gl11.projectionStack[g_gl11.projectionTop];
            ++g_gl11.projectionTop;
        }
    } else if (g_gl11.modelviewTop + 1 < GL11_MODELVIEW_DEPTH) {
        g_gl11.modelview[g_gl11.modelviewTop + 1] = g_gl11.modelview[g_gl11.modelviewTop];
        ++g_gl11.modelviewTop;
    }
}

void gl11PopMatrix(void) {
    if (g_gl11.matrixMode == GL_PROJECTION) {
        if (g_gl11.projectionTop > 0) {
            --g_gl11.projectionTop;
        }
    } else if (g_gl11.modelviewTop > 0) {
        --g_gl11.modelviewTop;
    }
    currentMatrixChanged();
}

void gl11MultMatrixf(const GLfloat* matrix) {
    Matrix4 by;
    std::memcpy(by.m, matrix, sizeof by.m);
    multiplyCurrent(by);
}

void gl11Rotatef(GLfloat angle, GLfloat x, GLfloat y, GLfloat z) { multiplyCurrent(rotationMatrix(angle, x, y, z)); }

void gl11Scalef(GLfloat x, GLfloat y, GLfloat z) { multiplyCurrent(scalingMatrix(x, y, z)); }

void gl11Translatef(GLfloat x, GLfloat y, GLfloat z) { multiplyCurrent(translationMatrix(x, y, z)); }

void gl11uPerspective(GLdouble fovy, GLdouble aspect, GLdouble zNear, GLdouble zFar) {
    const bool wider = gl11Faulty(Gl11Fault::WiderView);
    multiplyCurrent(perspectiveMatrix(wider ? fovy + 1.0 : fovy, aspect, zNear, zFar));
}

void gl11uLookAt(GLdouble eyeX, GLdouble eyeY, GLdouble eyeZ, GLdouble centreX, GLdouble centreY, GLdouble centreZ,
                 GLdouble upX, GLdouble upY, GLdouble upZ) {
    multiplyCurrent(lookAtMatrix(eyeX, eyeY, eyeZ, centreX, centreY, centreZ, upX, upY, upZ));
}
