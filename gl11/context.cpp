#include "gl11/gl11_platform.h"

#include "gl11/batch.h"
#include "gl11/state.h"

namespace {
Gl11FrameCounts g_lastFrame{};
}

void gl11Init() {
    const int fault = g_gl11.fault;
    resetGl11State();
    g_gl11.fault = fault;
    initBatch();
    // The defaults the batch assumes WebGL starts from.
    glDisable(GL_CULL_FACE);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ZERO);
    glCullFace(GL_BACK);
    glFrontFace(GL_CCW);
    glDepthFunc(GL_LESS);
}

void gl11ResetState() {
    flushBatch();
    const int fault = g_gl11.fault;
    resetGl11State();
    g_gl11.fault = fault;
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

void gl11SetFault(Gl11Fault fault) { g_gl11.fault = static_cast<int>(fault); }
