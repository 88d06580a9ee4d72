// Lights, materials, colour material and fog: values kept in the draw state
// for the shaders (programs.h) to use.
#include "gl11/state.h"

#include <cmath>
#include <cstring>

namespace {

// Stores `count` floats when they differ.
void setFloats(float* field, const float* values, int count) {
    if (std::memcmp(field, values, sizeof(float) * static_cast<size_t>(count)) != 0) {
        std::memcpy(field, values, sizeof(float) * static_cast<size_t>(count));
        markStateChanged();
    }
}

LightState* lightFor(GLenum light) {
    if (light < GL_LIGHT0 || light >= GL_LIGHT0 + GL11_LIGHTS) {
        return nullptr;
    }
    return &g_gl11.state.lights[light - GL_LIGHT0];
}

// Properties that colour material tracks are not set by glMaterial while it tracks them.
bool trackedByColour(GLenum name) {
    if (!(g_gl11.state.enables & ENABLE_COLOR_MATERIAL)) {
        return false;
    }
    const GLenum mode = g_gl11.state.colorMaterialMode;
    return mode == name || (mode == GL_AMBIENT_AND_DIFFUSE && (name == GL_AMBIENT || name == GL_DIFFUSE));
}

}  // namespace

void gl11Lightfv(GLenum light, GLenum name, const GLfloat* values) {
    LightState* target = lightFor(light);
    if (target == nullptr) {
        return;
    }
    switch (name) {
    case GL_AMBIENT: setFloats(target->ambient, values, 4); break;
    case GL_DIFFUSE: setFloats(target->diffuse, values, 4); break;
    case GL_SPECULAR: setFloats(target->specular, values, 4); break;
    case GL_POSITION: {
        float eye[4];
        transformVector4(currentModelview(), values, eye);
        setFloats(target->position, eye, 4);
        break;
    }
    case GL_SPOT_DIRECTION: {
        float eye[4] = {0.0f, 0.0f, 0.0f, 0.0f};
        transformDirection(currentModelview(), values, eye);
        const float length = std::sqrt(eye[0] * eye[0] + eye[1] * eye[1] + eye[2] * eye[2]);
        if (length > 0.0f) {
            eye[0] /= length;
            eye[1] /= length;
            eye[2] /= length;
        }
        setFloats(target->spotDirection, eye, 4);
        break;
    }
    default: gl11Lightf(light, name, values[0]); break;
    }
}

void gl11Lightf(GLenum light, GLenum name, GLfloat value) {
    LightState* target = lightFor(light);
    if (target == nullptr) {
        return;
    }
    switch (name) {
    case GL_SPOT_EXPONENT: setStateField(target->spotExponent, value); break;
    case GL_SPOT_CUTOFF: setStateField(target->spotCutoff, value); break;
    case GL_CONSTANT_ATTENUATION: setStateField(target->attenuation[0], value); break;
    case GL_LINEAR_ATTENUATION: setStateField(target->attenuation[1], value); break;
    case GL_QUADRATIC_ATTENUATION: setStateField(target->attenuation[2], value); break;
    default: break;
    }
}

// Lighting is one-sided: the front material is the one used, and
// GL_FRONT_AND_BACK sets it; the back material alone is never seen.
void gl11Materialfv(GLenum face, GLenum name, const GLfloat* values) {
    if (face == GL_BACK || trackedByColour(name)) {
        return;
    }
    MaterialState& material = g_gl11.state.material;
    switch (name) {
    case GL_AMBIENT: setFloats(material.ambient, values, 4); break;
    case GL_DIFFUSE: setFloats(material.diffuse, values, 4); break;
    case GL_AMBIENT_AND_DIFFUSE:
        setFloats(material.ambient, values, 4);
        setFloats(material.diffuse, values, 4);
        break;
    case GL_SPECULAR: setFloats(material.specular, values, 4); break;
    case GL_EMISSION: setFloats(material.emission, values, 4); break;
    case GL_SHININESS: setStateField(material.shininess, values[0]); break;
    default: break;
    }
}

void gl11ColorMaterial(GLenum, GLenum mode) { setStateField(g_gl11.state.colorMaterialMode, mode); }

void gl11Fogi(GLenum name, GLint value) {
    if (name == GL_FOG_MODE) {
        setStateField(g_gl11.state.fogMode, static_cast<GLenum>(value));
    } else {
        gl11Fogf(name, static_cast<GLfloat>(value));
    }
}

void gl11Fogf(GLenum name, GLfloat value) {
    switch (name) {
    case GL_FOG_DENSITY: setStateField(g_gl11.state.fogDensity, value); break;
    case GL_FOG_START: setStateField(g_gl11.state.fogStart, value); break;
    case GL_FOG_END: setStateField(g_gl11.state.fogEnd, value); break;
    case GL_FOG_MODE: setStateField(g_gl11.state.fogMode, static_cast<GLenum>(value)); break;
    default: break;
    }
}

void gl11Fogfv(GLenum name, const GLfloat* values) {
    if (name == GL_FOG_COLOR) {
        setFloats(g_gl11.state.fogColour, values, 4);
    } else {
        gl11Fogf(name, values[0]);
    }
}
