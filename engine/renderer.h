// The renderer: World::render (declared in engine/world.h) draws a World
// through OpenGL 1.1 in immediate mode; these are the pieces it shares between
// its files. Everything here needs a current GL context and runs on the thread
// that owns it. Nothing is cached between frames.
#pragma once

#include <cstdint>

#include "engine/vector.h"
#include "engine/world.h"

// OpenGL's guaranteed number of lights: GL_LIGHT0 .. GL_LIGHT7. World::render
// gives omni lights the first indices, spot lights the next, and sets no light
// whose index would be 8 or more.
constexpr int RENDER_MAX_LIGHTS = 8;

// Each byte of `colour` (0xAARRGGBB) times 1/255, as red, green, blue, alpha.
void colourToFloats(Colour colour, float rgba[4]);

// Light GL_LIGHT0 + index (0..7) as a positional omni light with `colour` as
// its diffuse intensity. The position is transformed by the model-view matrix
// in force; the call saves, loads identity into and restores the matrix of the
// current matrix mode (World::render calls it in GL_PROJECTION mode). The
// spot cone is not reset: an index an earlier World used for a spot light
// keeps that cone.
void setOmniLight(int index, Vector position, Colour colour);

// Light GL_LIGHT0 + index (0..7) as a positional spot light with `colour` as
// its diffuse intensity and a fixed cone (cut-off 70 degrees, exponent 20).
// Its direction is position - target made unit length: the cone opens from
// the light away from the target, not towards it. A target equal to the
// position gives the direction (0, -1, 0), straight down. Position and
// direction are transformed and the matrix is handled as in setOmniLight.
void setSpotLight(int index, Vector position, Vector target, Colour colour);
