// Where a batch's vertices are on the GPU when it is drawn. The show sends
// most of its geometry unchanged every frame (only the matrices move it), and
// sending it again each frame is what costs the browser most: a batch whose
// vertices equal, byte for byte, a batch drawn in the frame before is drawn
// from a buffer kept since then. Others (deforming meshes, small batches)
// are streamed into a fresh store each time.
#pragma once

#include "gl11/batch.h"

#include <cstdint>

// Needs the context current.
void initVertexStore();

// Binds a vertex array whose vertices 0 .. count - 1 are `vertices`.
// Returns the bytes sent to WebGL for it (0 when a kept buffer served).
uint32_t bindBatchVertices(const BatchVertex* vertices, int count, BatchKind kind);

// A frame ended: buffers not drawn from for a while are given back.
void endVertexStoreFrame();
