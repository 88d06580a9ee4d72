// OpenGL 1.1 state that WebGL keeps itself (the viewport, line width, depth
// function and mask, colour mask, scissor box and test, pixel alignment):
// the layer draws what it batched before passing a change on, since batched
// primitives were sent under the old state, and keeps what it passed on, to
// set it again on a context that comes back.
#pragma once

#include "gl11/gl11_api.h"

// The values a new context starts with, the viewport and scissor box read
// from it. Needs the context current.
void resetWebGlState();

// Sets everything kept on the current context (one that came back empty).
void applyWebGlState();

// For glEnable/glDisable of a capability WebGL keeps (GL_SCISSOR_TEST,
// GL_DITHER, GL_POLYGON_OFFSET_FILL...): passes it on and returns true;
// false for one it does not know.
bool passCapability(GLenum capability, bool on);

// GL_UNPACK_ALIGNMENT as last set: the row alignment of texture images sent.
GLint unpackAlignment();
