// The platform's side of the OpenGL 1.1 subset: what the browser shell calls
// around the show's frames. Not part of OpenGL.
#pragma once

#include <cstdint>

// Sets OpenGL 1.1's initial state and creates the layer's WebGL objects. Needs
// a current WebGL 2 context (no antialiasing, with a depth buffer).
void gl11Init();

// Back to OpenGL 1.1's initial state (what is batched is drawn first); the
// textures and the layer's WebGL objects stay. For a show that starts again.
void gl11ResetState();

// With `skip`, what is drawn from now on (clears too) reaches no pixel
// (WebGL's rasterizer discard) while every state change still counts; what is
// batched before is drawn first. For frames that are never shown.
void gl11SkipDrawing(bool skip);

// Draws what is still batched: the frame is complete once this returns.
// Closes the frame's counts (gl11LastFrameCounts).
void gl11EndFrame();

// What one frame cost.
struct Gl11FrameCounts {
    uint32_t primitives;  // glBegin/glEnd pairs the show sent
    uint32_t drawCalls;   // WebGL draw calls they became
    uint32_t vertices;
    uint32_t streamedBytes;  // vertex bytes sent to WebGL; kept batches send none
};
Gl11FrameCounts gl11LastFrameCounts();

// Deliberate mistakes, for measuring how far a frame comparison moves when
// the layer draws wrongly; never set in the show.
enum class Gl11Fault {
    None,
    WiderView,         // every gluPerspective one degree wider: a wrong camera
    NoModelAmbient,    // OpenGL's global ambient light (0.2) left out: a slightly wrong material
    NoColourMaterial,  // lit surfaces ignore their colour: a wrong material
    LastVertexFlat,    // flat polygons coloured by their last vertex, WebGL's own rule
};
void gl11SetFault(Gl11Fault fault);
