#include "app/gl_start_state.h"

#include "base/gl.h"

void setStartGlState() {
    glEnable(GL_DEPTH_TEST);
    glLineWidth(1.0f);
    glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE);
    glEnable(GL_COLOR_MATERIAL);
    glEnable(GL_LIGHTING);
    glEnable(GL_CULL_FACE);
    glCullFace(GL_BACK);
    glFrontFace(GL_CW);
    glClearColor(0.0f, 0.0f, 0.0f, 0.0f);
}
