#include "gl11/vertex_store.h"

#include "gl11/programs.h"

#include <cstddef>
#include <cstring>
#include <iterator>
#include <unordered_map>
#include <vector>

namespace {

// Smaller batches are cheaper to send than to look up and keep.
constexpr int KEEP_MIN_VERTICES = 96;
// A kept buffer not drawn from for this many frames is deleted.
constexpr uint32_t KEEP_FRAMES = 30;

// A batch on the GPU: its distinct vertices and the indices that draw it.
struct GpuBatch {
    GLuint vertexArray = 0;
    GLuint vertices = 0;
    GLuint indices = 0;
    int count = 0;             // indices
    GLenum indexType = GL_UNSIGNED_SHORT;
    uint32_t lastFrame = 0;
};

// A batch drawn from kept buffers, with the vertices it was made from: a
// batch is drawn from them only when it equals them, vertex for vertex
// (the hash only finds the candidates).
struct KeptBatch {
    std::vector<BatchVertex> vertices;
    BatchKind kind;
    GpuBatch gpu;
};

// A batch as distinct vertices and indices, made by indexBatch.
struct IndexedBatch {
    std::vector<BatchVertex> vertices;
    std::vector<uint32_t> indices;
    std::vector<uint16_t> shortIndices;  // the indices when every one fits 16 bits
    std::vector<int32_t> table;          // open-addressing hash table of vertex numbers
};

std::unordered_map<uint64_t, std::vector<KeptBatch>> g_kept;  // by content hash
std::unordered_map<uint64_t, uint32_t> g_streamed;  // content hash -> frame it was streamed in
uint32_t g_frame = 1;
GpuBatch g_stream;
IndexedBatch g_indexed;

constexpr uint64_t FNV_OFFSET = 0xCBF29CE484222325ull;
constexpr uint64_t FNV_PRIME = 0x100000001B3ull;

// 64-bit FNV-1a over the 32-bit words of `bytes` (a multiple of 4 long).
uint64_t hashWords(const void* bytes, size_t size, uint64_t hash = FNV_OFFSET) {
    const unsigned char* at = static_cast<const unsigned char*>(bytes);
    for (size_t i = 0; i < size; i += 4) {
        uint32_t word;
        std::memcpy(&word, at + i, 4);
        hash = (hash ^ word) * FNV_PRIME;
    }
    return hash;
}

uint64_t contentHash(const BatchVertex* vertices, int count, BatchKind kind) {
    const uint64_t seed = FNV_OFFSET ^ (static_cast<uint64_t>(count) << 1 | static_cast<uint64_t>(kind));
    return hashWords(vertices, static_cast<size_t>(count) * sizeof(BatchVertex), seed);
}

KeptBatch* findKept(uint64_t hash, const BatchVertex* vertices, int count, BatchKind kind) {
    const auto bucket = g_kept.find(hash);
    if (bucket == g_kept.end()) {
        return nullptr;
    }
    for (KeptBatch& kept : bucket->second) {
        if (kept.kind == kind && kept.vertices.size() == static_cast<size_t>(count) &&
            std::memcmp(kept.vertices.data(), vertices, static_cast<size_t>(count) * sizeof(BatchVertex)) == 0) {
            return &kept;
        }
    }
    return nullptr;
}

void deleteGpuBatch(const GpuBatch& batch) {
    glDeleteVertexArrays(1, &batch.vertexArray);
    glDeleteBuffers(1, &batch.vertices);
    glDeleteBuffers(1, &batch.indices);
}

// Fills g_indexed with the distinct vertices of the batch, in order of first use.
void indexBatch(const BatchVertex* vertices, int count) {
    IndexedBatch& out = g_indexed;
    out.vertices.clear();
    out.indices.resize(static_cast<size_t>(count));
    size_t slots = 64;
    while (slots < static_cast<size_t>(count) * 2) {
        slots *= 2;
    }
    out.table.assign(slots, -1);
    for (int i = 0; i < count; ++i) {
        const BatchVertex& vertex = vertices[i];
        size_t slot = static_cast<size_t>(hashWords(&vertex, sizeof vertex)) & (slots - 1);
        while (out.table[slot] >= 0 &&
               std::memcmp(&out.vertices[static_cast<size_t>(out.table[slot])], &vertex, sizeof vertex) != 0) {
            slot = (slot + 1) & (slots - 1);
        }
        if (out.table[slot] < 0) {
            out.table[slot] = static_cast<int32_t>(out.vertices.size());
            out.vertices.push_back(vertex);
        }
        out.indices[static_cast<size_t>(i)] = static_cast<uint32_t>(out.table[slot]);
    }
}

// A vertex array over fresh vertex and index buffers, with BatchVertex's layout.
GpuBatch makeGpuBatch() {
    GpuBatch batch;
    glGenVertexArrays(1, &batch.vertexArray);
    glGenBuffers(1, &batch.vertices);
    glGenBuffers(1, &batch.indices);
    glBindVertexArray(batch.vertexArray);
    glBindBuffer(GL_ARRAY_BUFFER, batch.vertices);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, batch.indices);
    auto attribute = [](GLuint location, GLint size, GLenum type, GLboolean normalised, size_t offset) {
        glEnableVertexAttribArray(location);
        glVertexAttribPointer(location, size, type, normalised, sizeof(BatchVertex),
                              reinterpret_cast<const void*>(offset));
    };
    attribute(ATTRIBUTE_POSITION, 3, GL_FLOAT, GL_FALSE, offsetof(BatchVertex, position));
    attribute(ATTRIBUTE_NORMAL, 3, GL_FLOAT, GL_FALSE, offsetof(BatchVertex, normal));
    attribute(ATTRIBUTE_COLOUR, 4, GL_UNSIGNED_BYTE, GL_TRUE, offsetof(BatchVertex, colour));
    attribute(ATTRIBUTE_TEXCOORD, 2, GL_FLOAT, GL_FALSE, offsetof(BatchVertex, texCoord));
    return batch;
}

// Gives `batch` the indexed form of the batch in g_indexed, in fresh stores
// (writing into a store that earlier draws still read makes the browser copy
// all of it first). Returns the bytes sent.
uint32_t upload(GpuBatch& batch, GLenum usage) {
    const IndexedBatch& indexed = g_indexed;
    glBindVertexArray(batch.vertexArray);
    glBindBuffer(GL_ARRAY_BUFFER, batch.vertices);
    const GLsizeiptr vertexBytes = static_cast<GLsizeiptr>(indexed.vertices.size() * sizeof(BatchVertex));
    glBufferData(GL_ARRAY_BUFFER, vertexBytes, indexed.vertices.data(), usage);
    batch.count = static_cast<int>(indexed.indices.size());
    GLsizeiptr indexBytes = 0;
    // WebGL 2 always restarts a primitive at the largest index of the type
    // (0xFFFF for 16 bits): 16-bit indices stop short of it.
    if (indexed.vertices.size() <= 0xFFFF) {
        g_indexed.shortIndices.assign(indexed.indices.begin(), indexed.indices.end());
        batch.indexType = GL_UNSIGNED_SHORT;
        indexBytes = static_cast<GLsizeiptr>(indexed.shortIndices.size() * sizeof(uint16_t));
        glBufferData(GL_ELEMENT_ARRAY_BUFFER, indexBytes, indexed.shortIndices.data(), usage);
    } else {
        batch.indexType = GL_UNSIGNED_INT;
        indexBytes = static_cast<GLsizeiptr>(indexed.indices.size() * sizeof(uint32_t));
        glBufferData(GL_ELEMENT_ARRAY_BUFFER, indexBytes, indexed.indices.data(), usage);
    }
    return static_cast<uint32_t>(vertexBytes + indexBytes);
}

void draw(const GpuBatch& batch, BatchKind kind) {
    glBindVertexArray(batch.vertexArray);
    glDrawElements(kind == BatchKind::Lines ? GL_LINES : GL_TRIANGLES, batch.count, batch.indexType, nullptr);
}

}  // namespace

void initVertexStore() {
    g_kept.clear();
    g_streamed.clear();
    g_stream = makeGpuBatch();
}

uint32_t drawBatchVertices(const BatchVertex* vertices, int count, BatchKind kind) {
    uint32_t sent = 0;
    if (count >= KEEP_MIN_VERTICES) {
        const uint64_t hash = contentHash(vertices, count, kind);
        if (KeptBatch* kept = findKept(hash, vertices, count, kind)) {
            kept->gpu.lastFrame = g_frame;
            draw(kept->gpu, kind);
            return 0;
        }
        // Sent again in the next frame: from then on it is kept.
        const auto streamed = g_streamed.find(hash);
        if (streamed != g_streamed.end() && streamed->second + 1 >= g_frame) {
            KeptBatch kept{std::vector<BatchVertex>(vertices, vertices + count), kind, makeGpuBatch()};
            indexBatch(vertices, count);
            sent = upload(kept.gpu, GL_STATIC_DRAW);
            kept.gpu.lastFrame = g_frame;
            draw(kept.gpu, kind);
            g_kept[hash].push_back(std::move(kept));
            g_streamed.erase(streamed);
            return sent;
        }
        g_streamed[hash] = g_frame;
    }
    indexBatch(vertices, count);
    sent = upload(g_stream, GL_STREAM_DRAW);
    draw(g_stream, kind);
    return sent;
}

void endVertexStoreFrame() {
    for (auto bucket = g_kept.begin(); bucket != g_kept.end();) {
        std::vector<KeptBatch>& batches = bucket->second;
        for (auto it = batches.begin(); it != batches.end();) {
            if (it->gpu.lastFrame + KEEP_FRAMES < g_frame) {
                deleteGpuBatch(it->gpu);
                it = batches.erase(it);
            } else {
                ++it;
            }
        }
        bucket = batches.empty() ? g_kept.erase(bucket) : std::next(bucket);
    }
    for (auto it = g_streamed.begin(); it != g_streamed.end();) {
        it = it->second < g_frame ? g_streamed.erase(it) : std::next(it);
    }
    ++g_frame;
}
