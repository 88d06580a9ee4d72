// Texture names, images, filters, the texture environment and coordinate
// generation. Images and filters go to WebGL at once (after the batch is drawn,
// since batched primitives were sent with the old ones); the binding, the
// environment and generation are draw state.
#include "gl11/batch.h"
#include "gl11/state.h"
#include "gl11/textures.h"

#include <vector>

namespace {

struct TextureRecord {
    bool hasImage = false;
    GLint minFilter = GL_NEAREST_MIPMAP_LINEAR;  // OpenGL's initial value
    GLint magFilter = GL_LINEAR;
};

std::vector<TextureRecord> g_textures;  // indexed by name
GLuint g_webGlBinding = 0;

TextureRecord* recordFor(GLuint name) { return name != 0 && name < g_textures.size() ? &g_textures[name] : nullptr; }

}  // namespace

bool textureComplete(GLuint name) {
    const TextureRecord* record = recordFor(name);
    return record != nullptr && record->hasImage &&
           (record->minFilter == GL_NEAREST || record->minFilter == GL_LINEAR);
}

void bindWebGlTexture(GLuint name) {
    if (name != g_webGlBinding) {
        glBindTexture(GL_TEXTURE_2D, name);
        g_webGlBinding = name;
    }
}

void gl11GenTextures(GLsizei count, GLuint* names) {
    glGenTextures(count, names);
    for (GLsizei i = 0; i < count; ++i) {
        if (names[i] >= g_textures.size()) {
            g_textures.resize(names[i] + 1);
        }
        g_textures[names[i]] = TextureRecord{};
    }
}

void gl11BindTexture(GLenum target, GLuint name) {
    if (target == GL_TEXTURE_2D) {
        setStateField(g_gl11.state.texture, name);
    }
}

void gl11TexImage2D(GLenum target, GLint level, GLint internalFormat, GLsizei width, GLsizei height, GLint border,
                    GLenum format, GLenum type, const void* pixels) {
    TextureRecord* record = recordFor(g_gl11.state.texture);
    if (target != GL_TEXTURE_2D || record == nullptr) {
        return;
    }
    flushBatch();
    bindWebGlTexture(g_gl11.state.texture);
    glTexImage2D(target, level, internalFormat, width, height, border, format, type, pixels);
    record->hasImage = record->hasImage || level == 0;
}

void gl11TexParameteri(GLenum target, GLenum name, GLint value) {
    TextureRecord* record = recordFor(g_gl11.state.texture);
    if (target != GL_TEXTURE_2D || record == nullptr) {
        return;
    }
    GLint* kept = name == GL_TEXTURE_MIN_FILTER ? &record->minFilter
                  : name == GL_TEXTURE_MAG_FILTER ? &record->magFilter
                                                  : nullptr;
    if (kept != nullptr && *kept == value) {
        return;
    }
    flushBatch();
    bindWebGlTexture(g_gl11.state.texture);
    glTexParameteri(target, name, value);
    if (kept != nullptr) {
        *kept = value;
    }
}

void gl11TexEnvi(GLenum target, GLenum name, GLint value) {
    if (target == GL_TEXTURE_ENV && name == GL_TEXTURE_ENV_MODE) {
        setStateField(g_gl11.state.textureEnvMode, static_cast<GLenum>(value));
    }
}

void gl11TexGeni(GLenum coordinate, GLenum name, GLint value) {
    if (name != GL_TEXTURE_GEN_MODE) {
        return;
    }
    if (coordinate == GL_S) {
        setStateField(g_gl11.state.texGenModeS, static_cast<GLenum>(value));
    } else if (coordinate == GL_T) {
        setStateField(g_gl11.state.texGenModeT, static_cast<GLenum>(value));
    }
}
