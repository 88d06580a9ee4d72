// The OpenGL the show draws with: OpenGL 1.1 and GLU, as the system provides
// them on the desktop. Every file that draws includes this header, never the
// system's own, so that a build for another platform can put its own OpenGL
// 1.1 subset in their place.
#pragma once

#ifdef __EMSCRIPTEN__
#include "gl11/gl11.h"
#else
#include <GL/gl.h>
#include <GL/glu.h>
#endif
