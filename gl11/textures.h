// Texture objects as OpenGL 1.1 sees them: names the layer hands out, each
// with a WebGL texture behind it, plus what the layer needs to know to draw
// with them as OpenGL would, and a copy of each image to upload again on a
// context that comes back.
#pragma once

#include "gl11/gl11_api.h"

// True when texture `name` can be sampled: it has an image and its
// minification filter needs no mipmaps (the show never makes any). OpenGL
// draws as if texturing were off with an incomplete texture, where WebGL
// would sample black.
bool textureComplete(GLuint name);

// Binds `name`'s WebGL texture to WebGL's GL_TEXTURE_2D unless it already is.
void bindWebGlTexture(GLuint name);

// A new context: every texture is forgotten (names start over).
void forgetTextures();

// A context that came back: every texture gets a new WebGL texture with its
// kept image (level 0) and filters. Changes GL_UNPACK_ALIGNMENT.
void restoreTextures();
