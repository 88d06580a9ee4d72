#include "gl11/gl11_platform.h"

#include "gl11/batch.h"
#include "gl11/state.h"
#include "gl11/textures.h"
#include "gl11/webgl_state.h"

namespace {
Gl11FrameCounts g_lastFrame{};
}

void gl11Init() {
    resetGl11State();
    forgetTextures();
    initBatch(false);
    resetWebGlState();
}

void gl11ContextRestored() {
    initBatch(true);
    restoreTextures();
    applyWebGlState();
}

void gl11ResetState() {
    flushBatch();
    resetGl11State();
    resetWebGlState();
}

void gl11SkipDrawing(bool skip) {
    flushBatch();
    // Batches are not even sent; clears are discarded by WebGL.
    discardBatches(skip);
    if (skip) {
        glEnable(GL_RASTERIZER_DISCARD);
    } else {
        glDisable(GL_RASTERIZER_DISCARD);
    }
}

void gl11EndFrame() {
    flushBatch();
    const BatchCounts counts = takeBatchCounts();
    g_lastFrame = Gl11FrameCounts{counts.primitives, counts.drawCalls, counts.vertices, counts.streamedBytes};
}

Gl11FrameCounts gl11LastFrameCounts() { return g_lastFrame; }
