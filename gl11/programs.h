// The shaders that stand in for the fixed-function pipeline: one program per
// combination of the state that changes what is computed (lighting and which
// lights, colour material, flat or smooth shading, texturing and its
// environment, sphere mapping, fog), generated as GLSL ES 3.00 when first
// needed and kept. Values (matrices, colours, light positions) come from one
// uniform block, filled by fillFixedUniforms, and the matrices that change
// from mesh to mesh from another, filled by fillTransformUniforms.
//
// Per vertex, as OpenGL 1.1 computes it: the lit colour
//   emission + ambient_m * model_ambient
//   + sum over lights of attenuation * spot * (ambient_l * ambient_m
//     + max(n.L, 0) * diffuse_l * diffuse_m
//     + (n.L > 0 ? max(n.h, 0)^shininess : 0) * specular_l * specular_m)
// clamped to [0, 1], with n the normal in eye coordinates (the inverse
// transpose of the model-view times the normal as sent, not renormalised),
// L the unit vector to the light, h = normalise(L + (0, 0, 1)) (no local
// viewer), alpha the diffuse alpha; the fog distance |z_eye|; sphere-map
// coordinates from the reflection of the eye vector. Per fragment: the
// texture environment, then fog.
#pragma once

#include "gl11/state.h"

#include <cstdint>
#include <string>

// What a program computes, derived from a draw state.
struct ProgramKey {
    bool lighting = false;
    uint8_t lights = 0;        // bit i: GL_LIGHT0 + i is on
    uint8_t spotLights = 0;    // bit i: light i has a cone
    uint8_t localLights = 0;   // bit i: light i is positional
    GLenum colorMaterial = 0;  // the tracked property, 0 when tracking is off
    bool flat = false;
    GLenum textureEnv = 0;     // GL_MODULATE or GL_DECAL, 0 untextured
    bool sphereMap = false;
    GLenum fog = 0;            // GL_EXP, GL_EXP2, GL_LINEAR, 0 without fog

    uint64_t packed() const;
};

// `textured`: texturing is on and the bound texture is complete.
ProgramKey programKeyFor(const DrawState& state, bool textured);

std::string vertexShaderSource(const ProgramKey& key);
std::string fragmentShaderSource(const ProgramKey& key);

// The uniform block "Fixed" as floats, in its std140 layout.
constexpr int FIXED_UNIFORM_FLOATS = 44 + 6 * 4 * GL11_LIGHTS;
void fillFixedUniforms(const DrawState& state, float out[FIXED_UNIFORM_FLOATS]);

// The uniform block "Transform" (the model-view and its normal matrix) as floats.
constexpr int TRANSFORM_UNIFORM_FLOATS = 16 + 12;
void fillTransformUniforms(const DrawState& state, float out[TRANSFORM_UNIFORM_FLOATS]);

// The uniform blocks' binding points.
constexpr GLuint FIXED_UNIFORM_BINDING = 0;
constexpr GLuint TRANSFORM_UNIFORM_BINDING = 1;

// Vertex attribute locations (BatchVertex's fields).
constexpr GLuint ATTRIBUTE_POSITION = 0;
constexpr GLuint ATTRIBUTE_NORMAL = 1;
constexpr GLuint ATTRIBUTE_COLOUR = 2;
constexpr GLuint ATTRIBUTE_TEXCOORD = 3;

// The linked program for `key`, built on first use. A program the browser
// refuses is a fatal report (caption "WEBGL ERROR", the browser's log as the
// hint); 0 while the context is lost.
GLuint programFor(const ProgramKey& key);

// A new context, or one that came back: programs are built anew as needed.
void forgetPrograms();
