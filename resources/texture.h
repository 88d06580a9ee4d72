// Textures: an OpenGL texture made from one PCX entry of the archive, together
// with the pixels it was made from. Used only on the GLUT thread with the GL
// context current; nothing here is ever released (textures live until the end).
#pragma once

#include "base/gl.h"

#include <cstdint>

#include "resources/library.h"

struct Texture {
    int32_t width;    // pixels, as given to load (not read from the image)
    int32_t height;   // pixels, as given to load
    GLuint id;        // the texture object
    uint8_t* pixels;  // width x height pixels of 4 bytes, red, green, blue, alpha after load;
                      // row 0 is the image's top row. Owned, allocated with new[].

    // Builds the texture: a new texture name, a zeroed buffer of width x height
    // pixels, the entry `entryName` of `library` decoded into it, reordered to
    // RGBA and uploaded. Leaves the texture bound to GL_TEXTURE_2D; sets no
    // filter or wrap mode. The record needs no initialisation before this.
    void load(Library& library, const char* entryName, int width, int height, bool blackTransparent);
    // Stores the size and points `pixels` at a new zeroed buffer of width x height x 4 bytes.
    void allocate(int width, int height);
    // For every pixel: exchanges bytes 0 and 2 (the decoder's blue, green, red
    // become red, green, blue) and sets alpha to 255, or to 0 when
    // `blackTransparent` and red, green and blue are all below 2.
    void convertToRgba(bool blackTransparent);
    // Uploads `pixels` as level 0 of texture `id` (GL_RGBA8); leaves it bound and
    // the unpack alignment at 1.
    void upload();
};
