// The layer's state: what OpenGL 1.1 keeps between calls, as one record.
//
// DrawState is everything that decides how a batched primitive is drawn,
// besides its vertices; the batch (batch.h) keeps a copy of the DrawState its
// vertices were sent under and is drawn before a primitive with a different
// one joins it. Every field is 4 bytes wide, so records compare with memcmp.
// Light positions and spot directions are stored as OpenGL stores them: in
// eye coordinates, transformed by the model-view matrix of the glLightfv call.
#pragma once

#include "gl11/gl11_api.h"
#include "gl11/matrix.h"

#include <cstdint>

constexpr int GL11_LIGHTS = 8;

// DrawState::enables bits.
enum : uint32_t {
    ENABLE_LIGHTING = 1u << 0,
    ENABLE_LIGHT0 = 1u << 1,  // GL_LIGHT0 + i is ENABLE_LIGHT0 << i
    ENABLE_FOG = 1u << 9,
    ENABLE_TEXTURE_2D = 1u << 10,
    ENABLE_TEXTURE_GEN_S = 1u << 11,
    ENABLE_TEXTURE_GEN_T = 1u << 12,
    ENABLE_CULL_FACE = 1u << 13,
    ENABLE_DEPTH_TEST = 1u << 14,
    ENABLE_BLEND = 1u << 15,
    ENABLE_ALPHA_TEST = 1u << 16,
    ENABLE_COLOR_MATERIAL = 1u << 17,
    ENABLE_NORMALIZE = 1u << 18,
};

struct LightState {
    float ambient[4];
    float diffuse[4];
    float specular[4];
    float position[4];       // eye coordinates; w = 0 for a directional light
    float spotDirection[4];  // eye coordinates, unit length; w unused
    float spotExponent;
    float spotCutoff;        // degrees; 180 is no cone
    float attenuation[3];    // constant, linear, quadratic
};

struct MaterialState {
    float ambient[4];
    float diffuse[4];
    float specular[4];
    float emission[4];
    float shininess;
};

struct DrawState {
    uint32_t enables;
    GLenum shadeModel;
    GLenum blendSource;
    GLenum blendDestination;
    GLenum cullFace;
    GLenum frontFace;
    GLenum textureEnvMode;
    GLenum texGenModeS;
    GLenum texGenModeT;
    GLenum colorMaterialMode;
    GLuint texture;           // bound to GL_TEXTURE_2D
    GLenum fogMode;
    float fogDensity;
    float fogStart;
    float fogEnd;
    float fogColour[4];
    float lightModelAmbient[4];
    MaterialState material;
    LightState lights[GL11_LIGHTS];
    Matrix4 projection;
    Matrix4 modelview;  // vertices are batched in object coordinates
};

// Everything else the layer keeps: the current vertex attributes, the matrix
// stacks (whose tops the draw state mirrors), the clear colour.
constexpr int GL11_MODELVIEW_DEPTH = 32;   // OpenGL's minimum
constexpr int GL11_PROJECTION_DEPTH = 2;   // OpenGL's minimum

struct Gl11Context {
    DrawState state;
    uint32_t serial = 1;         // raised by every change to `state`

    float colour[4];
    uint8_t colourBytes[4];      // `colour` as the batch keeps it
    float normal[3];             // object coordinates, as sent
    float texCoord[2];

    GLenum matrixMode;
    Matrix4 modelview[GL11_MODELVIEW_DEPTH];         // [modelviewTop] mirrors state.modelview
    int modelviewTop = 0;
    Matrix4 projectionStack[GL11_PROJECTION_DEPTH];  // [projectionTop] mirrors state.projection
    int projectionTop = 0;

    float clearColour[4];
    bool insideBegin = false;
};

extern Gl11Context g_gl11;

// OpenGL 1.1's initial state.
void resetGl11State();

// Call after changing g_gl11.state.
inline void markStateChanged() { ++g_gl11.serial; }

// The model-view matrix in force.
inline const Matrix4& currentModelview() { return g_gl11.modelview[g_gl11.modelviewTop]; }

// Stores `value` in `field` and marks the state changed when it differs.
template <typename T>
void setStateField(T& field, T value) {
    if (field != value) {
        field = value;
        markStateChanged();
    }
}
