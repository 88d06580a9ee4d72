// Texture objects as OpenGL 1.1 sees them: WebGL textures, plus what the
// layer needs to know to draw with them as OpenGL would.
#pragma once

#include "gl11/gl11_api.h"

// True when texture `name` can be sampled: it has an image and its
// minification filter needs no mipmaps (the show never makes any). OpenGL
// draws as if texturing were off with an incomplete texture, where WebGL
// would sample black.
bool textureComplete(GLuint name);

// Binds `name` to WebGL's GL_TEXTURE_2D unless it already is.
void bindWebGlTexture(GLuint name);
