#include "resources/texture.h"

#include <utility>

void Texture::load(Library& library, const char* entryName, int textureWidth, int textureHeight,
                   bool blackTransparent) {
    glGenTextures(1, &id);
    allocate(textureWidth, textureHeight);
    library.loadPcx(entryName, pixels, width, height);
    convertToRgba(blackTransparent);
    upload();
}

void Texture::allocate(int textureWidth, int textureHeight) {
    width = textureWidth;
    height = textureHeight;
    pixels = new uint8_t[static_cast<size_t>(width) * height * 4]();
}

void Texture::convertToRgba(bool blackTransparent) {
    const size_t count = static_cast<size_t>(width) * height;
    for (uint8_t* pixel = pixels; pixel != pixels + count * 4; pixel += 4) {
        std::swap(pixel[0], pixel[2]);
        const bool black = pixel[0] < 2 && pixel[1] < 2 && pixel[2] < 2;
        pixel[3] = blackTransparent && black ? 0 : 255;
    }
}

void Texture::upload() {
    glBindTexture(GL_TEXTURE_2D, id);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, pixels);
}
