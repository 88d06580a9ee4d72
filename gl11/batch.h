// The batch: primitives sent in immediate mode collect here, in object
// coordinates, and go to WebGL as one draw call when a primitive comes under
// a different DrawState, when the batch is full, or before anything that
// reads or changes what was drawn (clear, read-back, texture changes, the end
// of a frame). State calls themselves draw nothing: a state that changes and
// changes back between two primitives keeps them in one draw call.
#pragma once

#include "gl11/state.h"

#include <cstdint>

// 36 bytes. Colours keep 8 bits a channel, as many as the framebuffer has:
// the show's colours are all whole multiples of 1/255.
struct BatchVertex {
    float position[3];   // object coordinates, as sent
    float normal[3];     // the current normal, object coordinates
    uint8_t colour[4];   // the current colour, 0..255
    float texCoord[2];   // the current texture coordinates
};

enum class BatchKind : uint8_t { Triangles, Lines };

// Room for `count` vertices of `kind` drawn under the current state; the
// caller fills all of them. Draws the batch first when it cannot take them.
BatchVertex* reserveBatch(BatchKind kind, int count);

// Draws what is batched (nothing when it is empty).
void flushBatch();

// Creates the WebGL objects the batch draws with (and the programs, the
// vertex store anew) and sets WebGL's state the batch assumes. Needs the
// context current. `keepBatched`: what was batched is drawn later on this
// context (one that came back), else it is dropped.
void initBatch(bool keepBatched);

// While set, what is batched is dropped instead of drawn (frames never shown);
// the programs it would be drawn with are built all the same.
void discardBatches(bool discard);

// Counted since the last takeBatchCounts.
struct BatchCounts {
    uint32_t primitives = 0;  // glBegin calls: what OpenGL 1.1 would have drawn one by one
    uint32_t drawCalls = 0;   // WebGL draw calls
    uint32_t vertices = 0;    // vertices drawn, after polygons and quads became triangles
    uint32_t streamedBytes = 0;  // vertex bytes sent to WebGL (kept batches send none)
};
BatchCounts takeBatchCounts();

// One more glBegin.
void countPrimitiveBegun();
