// The platform's side of the OpenGL 1.1 subset: what the browser shell (or a
// native test, on OpenGL ES 3) calls around the show's frames. Not part of OpenGL.
#pragma once

#include <cstdint>

// Sets OpenGL 1.1's initial state and creates the layer's WebGL objects. Needs
// a current WebGL 2 context (no antialiasing, with a depth buffer); objects of
// a context before are forgotten, not deleted (textures included).
void gl11Init();

// The context was lost and the browser gave it back empty: the layer makes
// its programs and buffers again, uploads every texture again from the copy
// it keeps, and sets WebGL's state as it was. OpenGL 1.1's state (matrices,
// lights, texture names the show holds) is kept. Needs the context current.
// While the context is lost the layer goes on as if drawing; WebGL draws nothing.
void gl11ContextRestored();

// Back to OpenGL 1.1's initial state (what is batched is drawn first); the
// textures, the layer's WebGL objects, the viewport and the scissor box stay
// (the platform fits them to the page). For a show that starts again.
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
