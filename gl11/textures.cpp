// Texture names, images, filters, the texture environment and coordinate
// generation. Images and filters go to WebGL at once (after the batch is drawn,
// since batched primitives were sent with the old ones); the binding, the
// environment and generation are draw state.
//
// The names are the layer's own, not WebGL's: a context that is lost and
// comes back makes every WebGL texture anew, while the show keeps the names
// it was given. So the layer keeps a copy of each image it was sent (level 0,
// 8-bit channels: what the show sends), about 4 bytes a texel.
#include "gl11/batch.h"
#include "gl11/state.h"
#include "gl11/textures.h"
#include "gl11/webgl_state.h"

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace {

struct TextureRecord {
    GLuint webGl = 0;
    bool hasImage = false;
    GLint minFilter = GL_NEAREST_MIPMAP_LINEAR;  // OpenGL's initial values
    GLint magFilter = GL_LINEAR;
    GLint wrapS = GL_REPEAT;
    GLint wrapT = GL_REPEAT;
    // Level 0 as it was sent.
    bool kept = false;
    GLint internalFormat = 0;
    GLsizei width = 0;
    GLsizei height = 0;
    GLenum format = 0;
    GLenum type = 0;
    GLint alignment = 4;
    std::vector<uint8_t> pixels;  // empty when the image was sent without pixels
};

std::vector<TextureRecord> g_textures(1);  // indexed by name; name 0 is no texture
GLuint g_webGlBinding = 0;

TextureRecord* recordFor(GLuint name) { return name != 0 && name < g_textures.size() ? &g_textures[name] : nullptr; }

// Bytes of one texel of `format` and `type`; 0 for what the layer keeps no copy of.
size_t texelBytes(GLenum format, GLenum type) {
    if (type != GL_UNSIGNED_BYTE) {
        return 0;
    }
    switch (format) {
    case GL_RGBA: return 4;
    case GL_RGB: return 3;
    case GL_LUMINANCE_ALPHA: return 2;
    case GL_LUMINANCE:
    case GL_ALPHA: return 1;
    default: return 0;
    }
}

void keepImage(TextureRecord& record, GLint internalFormat, GLsizei width, GLsizei height, GLenum format,
               GLenum type, const void* pixels) {
    const size_t texel = texelBytes(format, type);
    record.kept = texel != 0 && width >= 0 && height >= 0;
    if (!record.kept) {
        record.pixels.clear();
        return;
    }
    record.internalFormat = internalFormat;
    record.width = width;
    record.height = height;
    record.format = format;
    record.type = type;
    record.alignment = unpackAlignment();
    const size_t alignment = static_cast<size_t>(record.alignment > 0 ? record.alignment : 1);
    const size_t row = (static_cast<size_t>(width) * texel + alignment - 1) / alignment * alignment;
    const size_t bytes = row * static_cast<size_t>(height);
    if (pixels == nullptr) {
        record.pixels.clear();
    } else {
        const auto* from = static_cast<const uint8_t*>(pixels);
        record.pixels.assign(from, from + bytes);
    }
}

void setParameters(const TextureRecord& record) {
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, record.minFilter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, record.magFilter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, record.wrapS);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, record.wrapT);
}

}  // namespace

bool textureComplete(GLuint name) {
    const TextureRecord* record = recordFor(name);
    return record != nullptr && record->hasImage &&
           (record->minFilter == GL_NEAREST || record->minFilter == GL_LINEAR);
}

void bindWebGlTexture(GLuint name) {
    const TextureRecord* record = recordFor(name);
    const GLuint webGl = record != nullptr ? record->webGl : 0;
    if (webGl != g_webGlBinding) {
        glBindTexture(GL_TEXTURE_2D, webGl);
        g_webGlBinding = webGl;
    }
}

void forgetTextures() {
    g_textures.assign(1, TextureRecord{});
    g_webGlBinding = 0;
}

void restoreTextures() {
    g_webGlBinding = 0;
    for (size_t name = 1; name < g_textures.size(); ++name) {
        TextureRecord& record = g_textures[name];
        glGenTextures(1, &record.webGl);
        glBindTexture(GL_TEXTURE_2D, record.webGl);
        g_webGlBinding = record.webGl;
        setParameters(record);
        if (record.kept) {
            glPixelStorei(GL_UNPACK_ALIGNMENT, record.alignment);
            glTexImage2D(GL_TEXTURE_2D, 0, record.internalFormat, record.width, record.height, 0, record.format,
                         record.type, record.pixels.empty() ? nullptr : record.pixels.data());
        } else {
            record.hasImage = false;  // nothing to upload again: drawn untextured, as OpenGL draws without an image
        }
    }
}

void gl11GenTextures(GLsizei count, GLuint* names) {
    for (GLsizei i = 0; i < count; ++i) {
        TextureRecord record;
        glGenTextures(1, &record.webGl);
        names[i] = static_cast<GLuint>(g_textures.size());
        g_textures.push_back(std::move(record));
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
    if (level == 0) {
        record->hasImage = true;
        keepImage(*record, internalFormat, width, height, format, type, pixels);
    }
}

void gl11TexParameteri(GLenum target, GLenum name, GLint value) {
    TextureRecord* record = recordFor(g_gl11.state.texture);
    if (target != GL_TEXTURE_2D || record == nullptr) {
        return;
    }
    GLint* kept = name == GL_TEXTURE_MIN_FILTER   ? &record->minFilter
                  : name == GL_TEXTURE_MAG_FILTER ? &record->magFilter
                  : name == GL_TEXTURE_WRAP_S     ? &record->wrapS
                  : name == GL_TEXTURE_WRAP_T     ? &record->wrapT
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
