#include "gl11/vertex_store.h"

#include "gl11/programs.h"

#include <cstddef>
#include <cstring>
#include <iterator>
#include <unordered_map>

namespace {

// Smaller batches are cheaper to send than to look up and keep.
constexpr int KEEP_MIN_VERTICES = 96;
// A kept buffer not drawn from for this many frames is deleted.
constexpr uint32_t KEEP_FRAMES = 30;

struct KeptBatch {
    GLuint vertexArray = 0;
    GLuint buffer = 0;
    int count = 0;
    uint32_t lastFrame = 0;
};

std::unordered_map<uint64_t, KeptBatch> g_kept;    // by content hash
std::unordered_map<uint64_t, uint32_t> g_streamed;  // content hash -> frame it was streamed in
uint32_t g_frame = 1;
GLuint g_streamArray = 0;
GLuint g_streamBuffer = 0;

// A vertex array over `buffer` with BatchVertex's layout.
GLuint makeVertexArray(GLuint buffer) {
    GLuint vertexArray = 0;
    glGenVertexArrays(1, &vertexArray);
    glBindVertexArray(vertexArray);
    glBindBuffer(GL_ARRAY_BUFFER, buffer);
    auto attribute = [](GLuint location, GLint size, GLenum type, GLboolean normalised, size_t offset) {
        glEnableVertexAttribArray(location);
        glVertexAttribPointer(location, size, type, normalised, sizeof(BatchVertex), reinterpret_cast<const void*>(offset));
    };
    attribute(ATTRIBUTE_POSITION, 3, GL_FLOAT, GL_FALSE, offsetof(BatchVertex, position));
    attribute(ATTRIBUTE_NORMAL, 3, GL_FLOAT, GL_FALSE, offsetof(BatchVertex, normal));
    attribute(ATTRIBUTE_COLOUR, 4, GL_UNSIGNED_BYTE, GL_TRUE, offsetof(BatchVertex, colour));
    attribute(ATTRIBUTE_TEXCOORD, 2, GL_FLOAT, GL_FALSE, offsetof(BatchVertex, texCoord));
    return vertexArray;
}

// 64-bit FNV-1a over 32-bit words, with the kind and count mixed in.
uint64_t contentHash(const BatchVertex* vertices, int count, BatchKind kind) {
    constexpr uint64_t PRIME = 0x100000001B3ull;
    uint64_t hash = 0xCBF29CE484222325ull ^ (static_cast<uint64_t>(count) << 1 | static_cast<uint64_t>(kind));
    const size_t words = static_cast<size_t>(count) * sizeof(BatchVertex) / 4;
    const unsigned char* bytes = reinterpret_cast<const unsigned char*>(vertices);
    for (size_t i = 0; i < words; ++i) {
        uint32_t word;
        std::memcpy(&word, bytes + 4 * i, 4);
        hash = (hash ^ word) * PRIME;
    }
    return hash;
}

GLsizeiptr byteSize(int count) { return static_cast<GLsizeiptr>(count) * static_cast<GLsizeiptr>(sizeof(BatchVertex)); }

}  // namespace

void initVertexStore() {
    glGenBuffers(1, &g_streamBuffer);
    g_streamArray = makeVertexArray(g_streamBuffer);
}

uint32_t bindBatchVertices(const BatchVertex* vertices, int count, BatchKind kind) {
    if (count >= KEEP_MIN_VERTICES) {
        const uint64_t hash = contentHash(vertices, count, kind);
        const auto kept = g_kept.find(hash);
        if (kept != g_kept.end() && kept->second.count == count) {
            kept->second.lastFrame = g_frame;
            glBindVertexArray(kept->second.vertexArray);
            return 0;
        }
        // Sent again in the next frame: from then on it is kept.
        const auto streamed = g_streamed.find(hash);
        if (streamed != g_streamed.end() && streamed->second + 1 >= g_frame && kept == g_kept.end()) {
            KeptBatch batch;
            glGenBuffers(1, &batch.buffer);
            batch.vertexArray = makeVertexArray(batch.buffer);
            glBufferData(GL_ARRAY_BUFFER, byteSize(count), vertices, GL_STATIC_DRAW);
            batch.count = count;
            batch.lastFrame = g_frame;
            g_kept.emplace(hash, batch);
            g_streamed.erase(streamed);
            return static_cast<uint32_t>(byteSize(count));
        }
        g_streamed[hash] = g_frame;
    }
    glBindVertexArray(g_streamArray);
    glBindBuffer(GL_ARRAY_BUFFER, g_streamBuffer);
    // A fresh store each time: writing into a store that earlier draws still
    // read makes the browser copy all of it first.
    glBufferData(GL_ARRAY_BUFFER, byteSize(count), vertices, GL_STREAM_DRAW);
    return static_cast<uint32_t>(byteSize(count));
}

void endVertexStoreFrame() {
    for (auto it = g_kept.begin(); it != g_kept.end();) {
        if (it->second.lastFrame + KEEP_FRAMES < g_frame) {
            glDeleteVertexArrays(1, &it->second.vertexArray);
            glDeleteBuffers(1, &it->second.buffer);
            it = g_kept.erase(it);
        } else {
            ++it;
        }
    }
    for (auto it = g_streamed.begin(); it != g_streamed.end();) {
        it = it->second < g_frame ? g_streamed.erase(it) : std::next(it);
    }
    ++g_frame;
}
