// Where a batch's vertices are on the GPU when it is drawn. Immediate mode
// sends each triangle's corners on their own, so a mesh's shared vertices come
// many times: a batch goes to WebGL as its distinct vertices and indices into
// them, which sends less and lets the GPU shade a shared vertex once. And the
// show sends most of its geometry unchanged every frame (only the matrices
// move it), so a batch equal, byte for byte, to one drawn in the frame before
// is drawn from the buffers kept since then. Others (deforming meshes, small
// batches) are streamed into fresh stores each time.
#pragma once

#include "gl11/batch.h"

#include <cstdint>

// Makes the buffers streamed batches are drawn from; kept buffers of a
// context before are forgotten. Needs the context current.
void initVertexStore();

// Draws `count` vertices of `kind` (with the program and state in force).
// Returns the bytes sent to WebGL for them (0 when kept buffers served).
uint32_t drawBatchVertices(const BatchVertex* vertices, int count, BatchKind kind);

// A frame ended: buffers not drawn from for a while are given back.
void endVertexStoreFrame();
