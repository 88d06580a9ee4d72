// Capabilities, blending, culling, shading, clearing, read-back and queries.
#include "gl11/batch.h"
#include "gl11/faults.h"
#include "gl11/state.h"
#include "gl11/webgl_state.h"

#include <cstring>

Gl11Context g_gl11;

namespace {

// The enable bit of a capability, 0 for one the layer does not know.
uint32_t enableBit(GLenum capability) {
    if (capability >= GL_LIGHT0 && capability < GL_LIGHT0 + GL11_LIGHTS) {
        return ENABLE_LIGHT0 << (capability - GL_LIGHT0);
    }
    switch (capability) {
    case GL_LIGHTING: return ENABLE_LIGHTING;
    case GL_FOG: return ENABLE_FOG;
    case GL_TEXTURE_2D: return ENABLE_TEXTURE_2D;
    case GL_TEXTURE_GEN_S: return ENABLE_TEXTURE_GEN_S;
    case GL_TEXTURE_GEN_T: return ENABLE_TEXTURE_GEN_T;
    case GL_CULL_FACE: return ENABLE_CULL_FACE;
    case GL_DEPTH_TEST: return ENABLE_DEPTH_TEST;
    case GL_BLEND: return ENABLE_BLEND;
    case GL_ALPHA_TEST: return ENABLE_ALPHA_TEST;
    case GL_COLOR_MATERIAL: return ENABLE_COLOR_MATERIAL;
    case GL_NORMALIZE: return ENABLE_NORMALIZE;
    default: return 0;
    }
}

void setVector(float* out, float a, float b, float c, float d) {
    out[0] = a;
    out[1] = b;
    out[2] = c;
    out[3] = d;
}

void resetLight(LightState& light, bool first) {
    const float on = first ? 1.0f : 0.0f;
    setVector(light.ambient, 0.0f, 0.0f, 0.0f, 1.0f);
    setVector(light.diffuse, on, on, on, 1.0f);
    setVector(light.specular, on, on, on, 1.0f);
    setVector(light.position, 0.0f, 0.0f, 1.0f, 0.0f);
    setVector(light.spotDirection, 0.0f, 0.0f, -1.0f, 0.0f);
    light.spotExponent = 0.0f;
    light.spotCutoff = 180.0f;
    light.attenuation[0] = 1.0f;
    light.attenuation[1] = 0.0f;
    light.attenuation[2] = 0.0f;
}

}  // namespace

void resetGl11State() {
    g_gl11 = Gl11Context{};
    DrawState& s = g_gl11.state;
    std::memset(&s, 0, sizeof s);
    s.shadeModel = GL_SMOOTH;
    s.blendSource = GL_ONE;
    s.blendDestination = GL_ZERO;
    s.cullFace = GL_BACK;
    s.frontFace = GL_CCW;
    s.textureEnvMode = GL_MODULATE;
    s.texGenModeS = 0x2400;  // GL_EYE_LINEAR
    s.texGenModeT = 0x2400;
    s.colorMaterialMode = GL_AMBIENT_AND_DIFFUSE;
    s.fogMode = GL_EXP;
    s.fogDensity = 1.0f;
    s.fogEnd = 1.0f;
    setVector(s.lightModelAmbient, 0.2f, 0.2f, 0.2f, 1.0f);
    setVector(s.material.ambient, 0.2f, 0.2f, 0.2f, 1.0f);
    setVector(s.material.diffuse, 0.8f, 0.8f, 0.8f, 1.0f);
    setVector(s.material.specular, 0.0f, 0.0f, 0.0f, 1.0f);
    setVector(s.material.emission, 0.0f, 0.0f, 0.0f, 1.0f);
    for (int i = 0; i < GL11_LIGHTS; ++i) {
        resetLight(s.lights[i], i == 0);
    }
    s.projection = identityMatrix();
    s.modelview = identityMatrix();

    setVector(g_gl11.colour, 1.0f, 1.0f, 1.0f, 1.0f);
    std::memset(g_gl11.colourBytes, 255, sizeof g_gl11.colourBytes);
    g_gl11.normal[2] = 1.0f;
    g_gl11.matrixMode = GL_MODELVIEW;
    g_gl11.modelview[0] = identityMatrix();
    g_gl11.projectionStack[0] = identityMatrix();
}

void gl11Enable(GLenum capability) {
    const uint32_t bit = enableBit(capability);
    if (bit == 0) {
        passCapability(capability, true);
    } else if (!(g_gl11.state.enables & bit)) {
        g_gl11.state.enables |= bit;
        markStateChanged();
    }
}

void gl11Disable(GLenum capability) {
    const uint32_t bit = enableBit(capability);
    if (bit == 0) {
        passCapability(capability, false);
        return;
    }
    if (!(g_gl11.state.enables & bit)) {
        return;
    }
    // Colour material stops tracking: the material keeps the colour it last took.
    if (bit == ENABLE_COLOR_MATERIAL) {
        MaterialState& material = g_gl11.state.material;
        const GLenum mode = g_gl11.state.colorMaterialMode;
        if (mode == GL_AMBIENT || mode == GL_AMBIENT_AND_DIFFUSE) {
            std::memcpy(material.ambient, g_gl11.colour, sizeof material.ambient);
        }
        if (mode == GL_DIFFUSE || mode == GL_AMBIENT_AND_DIFFUSE) {
            std::memcpy(material.diffuse, g_gl11.colour, sizeof material.diffuse);
        }
    }
    g_gl11.state.enables &= ~bit;
    markStateChanged();
}

void gl11BlendFunc(GLenum source, GLenum destination) {
    setStateField(g_gl11.state.blendSource, source);
    setStateField(g_gl11.state.blendDestination, destination);
}

void gl11CullFace(GLenum face) { setStateField(g_gl11.state.cullFace, face); }

void gl11FrontFace(GLenum winding) {
    if (!gl11Faulty(Gl11Fault::FrontFaceIgnored)) {
        setStateField(g_gl11.state.frontFace, winding);
    }
}

void gl11ShadeModel(GLenum model) { setStateField(g_gl11.state.shadeModel, model); }

void gl11ClearColor(GLfloat red, GLfloat green, GLfloat blue, GLfloat alpha) {
    setVector(g_gl11.clearColour, red, green, blue, alpha);
}

void gl11Clear(GLbitfield mask) {
    flushBatch();
    const float* c = g_gl11.clearColour;
    glClearColor(c[0], c[1], c[2], c[3]);
    glClear(mask);
}

// Batches are drawn when something needs them drawn; a flush alone does not.
void gl11Flush(void) {}

void gl11ReadPixels(GLint x, GLint y, GLsizei width, GLsizei height, GLenum format, GLenum type, void* pixels) {
    flushBatch();
    glReadPixels(x, y, width, height, format, type, pixels);
}

// The matrices and colours the layer keeps are answered from its state;
// anything else is WebGL's to answer, once what was batched is drawn.
void gl11GetFloatv(GLenum name, GLfloat* values) {
    switch (name) {
    case GL_MODELVIEW_MATRIX: std::memcpy(values, currentModelview().m, sizeof(Matrix4::m)); break;
    case GL_PROJECTION_MATRIX: std::memcpy(values, g_gl11.state.projection.m, sizeof(Matrix4::m)); break;
    case GL_COLOR_CLEAR_VALUE: std::memcpy(values, g_gl11.clearColour, sizeof g_gl11.clearColour); break;
    case GL_CURRENT_COLOR: std::memcpy(values, g_gl11.colour, sizeof g_gl11.colour); break;
    default:
        flushBatch();
        glGetFloatv(name, values);
        break;
    }
}
