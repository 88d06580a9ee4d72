#include "gl11/batch.h"

#include "gl11/faults.h"
#include "gl11/programs.h"
#include "gl11/textures.h"
#include "gl11/vertex_store.h"

#include <cstring>
#include <vector>

namespace {

constexpr int BATCH_VERTICES = 1 << 15;  // per draw call at most

struct Batch {
    std::vector<BatchVertex> vertices = std::vector<BatchVertex>(BATCH_VERTICES);
    int count = 0;
    BatchKind kind = BatchKind::Triangles;
    DrawState state;            // the state every batched vertex was sent under
    uint32_t stateSerial = 0;   // g_gl11.serial when `state` was last known equal to it
};
Batch g_batch;

// A uniform buffer and the values it holds, so that only changes are sent.
template <int FLOATS>
struct UniformBuffer {
    GLuint buffer = 0;
    float values[FLOATS] = {};
    bool valid = false;

    void create(GLuint binding) {
        glGenBuffers(1, &buffer);
        glBindBufferBase(GL_UNIFORM_BUFFER, binding, buffer);
        valid = false;
    }
    void update(const float (&next)[FLOATS]) {
        if (valid && std::memcmp(next, values, sizeof values) == 0) {
            return;
        }
        glBindBuffer(GL_UNIFORM_BUFFER, buffer);
        // A fresh store, as for vertices: never written while a draw may read it.
        glBufferData(GL_UNIFORM_BUFFER, sizeof values, next, GL_DYNAMIC_DRAW);
        std::memcpy(values, next, sizeof values);
        valid = true;
    }
};

// What WebGL has been told, so that only changes are sent.
struct Applied {
    GLuint program = 0;
    uint32_t capabilities = 0;  // ENABLE_CULL_FACE, ENABLE_DEPTH_TEST, ENABLE_BLEND as WebGL has them
    GLenum blendSource = GL_ONE;
    GLenum blendDestination = GL_ZERO;
    GLenum cullFace = GL_BACK;
    GLenum frontFace = GL_CCW;
    UniformBuffer<FIXED_UNIFORM_FLOATS> fixed;
    UniformBuffer<TRANSFORM_UNIFORM_FLOATS> transform;
};
Applied g_applied;
BatchCounts g_counts;
bool g_discarding = false;

void setCapability(GLenum capability, uint32_t bit, uint32_t wanted) {
    if ((g_applied.capabilities & bit) == (wanted & bit)) {
        return;
    }
    (wanted & bit) ? glEnable(capability) : glDisable(capability);
    g_applied.capabilities = (g_applied.capabilities & ~bit) | (wanted & bit);
}

void applyFixedState(const DrawState& s) {
    setCapability(GL_CULL_FACE, ENABLE_CULL_FACE, s.enables);
    setCapability(GL_DEPTH_TEST, ENABLE_DEPTH_TEST, s.enables);
    setCapability(GL_BLEND, ENABLE_BLEND, s.enables);
    if (s.blendSource != g_applied.blendSource || s.blendDestination != g_applied.blendDestination) {
        const bool over = gl11Faulty(Gl11Fault::OverBlend) && s.blendDestination == GL_SRC_COLOR;
        glBlendFunc(s.blendSource, over ? GL_ONE_MINUS_SRC_ALPHA : s.blendDestination);
        g_applied.blendSource = s.blendSource;
        g_applied.blendDestination = s.blendDestination;
    }
    if (s.cullFace != g_applied.cullFace) {
        glCullFace(s.cullFace);
        g_applied.cullFace = s.cullFace;
    }
    if (s.frontFace != g_applied.frontFace) {
        glFrontFace(s.frontFace);
        g_applied.frontFace = s.frontFace;
    }
}

void applyUniforms(const DrawState& s) {
    float fixed[FIXED_UNIFORM_FLOATS];
    fillFixedUniforms(s, fixed);
    g_applied.fixed.update(fixed);
    float transform[TRANSFORM_UNIFORM_FLOATS];
    fillTransformUniforms(s, transform);
    g_applied.transform.update(transform);
}

bool sameState(const DrawState& a, const DrawState& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

}  // namespace

void initBatch(bool keepBatched) {
    forgetPrograms();
    initVertexStore();
    // WebGL as g_applied says it is.
    g_applied = Applied{};
    glDisable(GL_CULL_FACE);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ZERO);
    glCullFace(GL_BACK);
    glFrontFace(GL_CCW);
    glUseProgram(0);
    g_applied.fixed.create(FIXED_UNIFORM_BINDING);
    g_applied.transform.create(TRANSFORM_UNIFORM_BINDING);
    if (!keepBatched) {
        g_batch.count = 0;
    }
}

BatchVertex* reserveBatch(BatchKind kind, int count) {
    Batch& batch = g_batch;
    if (batch.count > 0) {
        const bool stateMoved = batch.stateSerial != g_gl11.serial && !sameState(batch.state, g_gl11.state);
        if (kind != batch.kind || stateMoved || batch.count + count > BATCH_VERTICES) {
            flushBatch();
        }
    }
    if (batch.count == 0) {
        std::memcpy(&batch.state, &g_gl11.state, sizeof batch.state);
        batch.kind = kind;
    }
    batch.stateSerial = g_gl11.serial;
    BatchVertex* out = batch.vertices.data() + batch.count;
    batch.count += count;
    return out;
}

void flushBatch() {
    Batch& batch = g_batch;
    if (batch.count == 0) {
        return;
    }
    const DrawState& s = batch.state;
    const bool textured = (s.enables & ENABLE_TEXTURE_2D) && textureComplete(s.texture);
    // Built even for a batch that is dropped: the frames that are shown
    // later then need not wait for the shader compiler.
    const GLuint program = programFor(programKeyFor(s, textured));
    if (program != 0 && !g_discarding) {
        applyFixedState(s);
        if (textured) {
            bindWebGlTexture(s.texture);
        }
        if (program != g_applied.program) {
            glUseProgram(program);
            g_applied.program = program;
        }
        applyUniforms(s);
        g_counts.streamedBytes += drawBatchVertices(batch.vertices.data(), batch.count, batch.kind);
        ++g_counts.drawCalls;
        g_counts.vertices += static_cast<uint32_t>(batch.count);
    }
    batch.count = 0;
}

void discardBatches(bool discard) { g_discarding = discard; }

void countPrimitiveBegun() { ++g_counts.primitives; }

BatchCounts takeBatchCounts() {
    endVertexStoreFrame();
    const BatchCounts counts = g_counts;
    g_counts = BatchCounts{};
    return counts;
}
