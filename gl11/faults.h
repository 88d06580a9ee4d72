// Deliberate mistakes of the layer, for measuring what a comparison with
// OpenGL makes of a wrong drawing (tests/gl11's fault test against Mesa,
// bench/web/faults.js against the desktop's frames). They exist only in the
// builds for those tests (KASKADE_GL11_FAULTS: the native fault test's layer,
// `scripts/web --faults`): in the layer the show ships, gl11Faulty is a
// constant false and neither the switch nor the mistakes are compiled.
#pragma once

enum class Gl11Fault {
    None,
    WiderView,          // "fov": every gluPerspective one degree wider: a wrong camera
    NoModelAmbient,     // "ambient": OpenGL's global ambient light (0.2) left out
    NoColourMaterial,   // "colour-material": lit surfaces ignore their colour
    LastVertexFlat,     // "flat-vertex": flat polygons coloured by their last vertex, WebGL's own rule
    FirstVertexQuads,   // "flat-quad": flat quads coloured by their first vertex instead of the fourth
    FirstVertexLines,   // "flat-line": flat lines coloured by their first vertex instead of the second
    QuadDiagonal,       // "quad-diagonal": smooth quads cut along v1-v3, not along v0-v2 as Mesa cuts them
    NoAttenuation,      // "attenuation": positional lights as bright at any distance
    NoSpotExponent,     // "spot-exponent": spot lights without their fall-off inside the cone
    LocalViewer,        // "local-viewer": highlights from the direction to the eye, not (0, 0, 1)
    RadialFog,          // "radial-fog": fog by the distance to the eye instead of by depth
    DecalIgnoresAlpha,  // "decal-alpha": GL_DECAL replaces the colour even where the texture is clear
    FlippedTexture,     // "texture-flip": texture coordinates t taken as 1 - t, images upside down
    SphereMapNormal,    // "sphere-map": sphere-map coordinates from the normal instead of the reflection
    NormalsByModelView, // "normal-matrix": normals turned by the model-view instead of its inverse transpose
    ZeroNormalMatrix,   // "singular-normals": a singular model-view lights with zero normals
    OverBlend,          // "alpha-blend": (GL_SRC_ALPHA, GL_SRC_COLOR) drawn as (GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA)
    FrontFaceIgnored,   // "front-face": glFrontFace has no effect, culling takes counter-clockwise as front
    UnbatchedDepth,     // "unbatched-depth": glDepthFunc, glDepthMask, glColorMask and glScissor reach
                        //   WebGL before the primitives batched ahead of them are drawn
    RefusedShader,      // "refused-shader": every shader has a syntax error
    Count
};

#ifdef KASKADE_GL11_FAULTS
// Every draw from now on makes `fault` (Gl11Fault::None: none).
void gl11SetFault(Gl11Fault fault);
// True while `fault` is the one set.
bool gl11Faulty(Gl11Fault fault);
// The fault's short name (as above, "" for None), and the fault of a name
// (Gl11Fault::Count for a name no fault has).
const char* gl11FaultName(Gl11Fault fault);
Gl11Fault gl11FaultNamed(const char* name);
#else
constexpr bool gl11Faulty(Gl11Fault) { return false; }
#endif
