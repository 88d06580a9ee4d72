// Immediate mode: glBegin/glEnd with the current normal, colour and texture
// coordinates, each primitive cut into the triangles or lines the batch draws.
//
// Flat shading: OpenGL 1.1 colours a flat polygon with its first vertex, a
// quad with its fourth, a line with its second; a WebGL 2 flat varying takes
// the last vertex of each triangle or line. So each triangle is sent with the
// vertex whose colour OpenGL would use last, an order that keeps its winding.
#include "gl11/batch.h"
#include "gl11/faults.h"
#include "gl11/state.h"

#include <cmath>
#include <cstring>
#include <vector>

namespace {

GLenum g_mode = 0;
std::vector<BatchVertex> g_pending;  // vertices of the primitive not yet complete

uint8_t colourByte(float value) {
    const float clamped = value < 0.0f ? 0.0f : value > 1.0f ? 1.0f : value;
    return static_cast<uint8_t>(std::lround(clamped * 255.0f));
}

BatchVertex makeVertex(float x, float y, float z) {
    BatchVertex vertex;
    vertex.position[0] = x;
    vertex.position[1] = y;
    vertex.position[2] = z;
    std::memcpy(vertex.normal, g_gl11.normal, sizeof vertex.normal);
    std::memcpy(vertex.colour, g_gl11.colourBytes, sizeof vertex.colour);
    std::memcpy(vertex.texCoord, g_gl11.texCoord, sizeof vertex.texCoord);
    return vertex;
}

void emitTriangle(const BatchVertex& a, const BatchVertex& b, const BatchVertex& provoking) {
    BatchVertex* out = reserveBatch(BatchKind::Triangles, 3);
    out[0] = a;
    out[1] = b;
    out[2] = provoking;
}

// A convex polygon as a fan around its first vertex, which each triangle sends last.
void emitPolygon(const std::vector<BatchVertex>& v) {
    const bool lastVertex = gl11Faulty(Gl11Fault::LastVertexFlat);
    for (size_t i = 1; i + 1 < v.size(); ++i) {
        if (lastVertex) {
            emitTriangle(v[0], v[i], v[i + 1]);
        } else {
            emitTriangle(v[i], v[i + 1], v[0]);
        }
    }
}

// Quad v0 v1 v2 v3 cut as Mesa cuts it: smooth, along v0-v2 into (v0, v1, v2)
// and (v0, v2, v3), which decides how four corner colours blend; flat, along
// v1-v3 into (v0, v1, v3) and (v1, v2, v3), both ending with the fourth vertex.
void emitQuad(const BatchVertex* v) {
    if (gl11Faulty(Gl11Fault::FirstVertexQuads)) {
        emitTriangle(v[1], v[2], v[0]);
        emitTriangle(v[2], v[3], v[0]);
    } else if (g_gl11.state.shadeModel != GL_FLAT && !gl11Faulty(Gl11Fault::QuadDiagonal)) {
        emitTriangle(v[0], v[1], v[2]);
        emitTriangle(v[0], v[2], v[3]);
    } else {
        emitTriangle(v[0], v[1], v[3]);
        emitTriangle(v[1], v[2], v[3]);
    }
}

void emitLine(const BatchVertex* v) {
    BatchVertex* out = reserveBatch(BatchKind::Lines, 2);
    const bool firstVertex = gl11Faulty(Gl11Fault::FirstVertexLines);
    out[0] = v[firstVertex ? 1 : 0];
    out[1] = v[firstVertex ? 0 : 1];
}

void addVertex(float x, float y, float z) {
    if (!g_gl11.insideBegin) {
        return;
    }
    g_pending.push_back(makeVertex(x, y, z));
    const size_t count = g_pending.size();
    switch (g_mode) {
    case GL_TRIANGLES:
        if (count == 3) {
            emitTriangle(g_pending[0], g_pending[1], g_pending[2]);
            g_pending.clear();
        }
        break;
    case GL_QUADS:
        if (count == 4) {
            emitQuad(g_pending.data());
            g_pending.clear();
        }
        break;
    case GL_LINES:
        if (count == 2) {
            emitLine(g_pending.data());
            g_pending.clear();
        }
        break;
    default:  // GL_POLYGON: drawn at glEnd
        break;
    }
}

}  // namespace

void gl11Begin(GLenum mode) {
    const bool known = mode == GL_POLYGON || mode == GL_QUADS || mode == GL_LINES || mode == GL_TRIANGLES;
    if (g_gl11.insideBegin || !known) {
        return;
    }
    g_gl11.insideBegin = true;
    g_mode = mode;
    g_pending.clear();
    countPrimitiveBegun();
}

void gl11End(void) {
    if (!g_gl11.insideBegin) {
        return;
    }
    if (g_mode == GL_POLYGON && g_pending.size() >= 3) {
        emitPolygon(g_pending);
    }
    g_pending.clear();
    g_gl11.insideBegin = false;
}

void gl11Vertex3f(GLfloat x, GLfloat y, GLfloat z) { addVertex(x, y, z); }

void gl11Vertex3i(GLint x, GLint y, GLint z) {
    addVertex(static_cast<float>(x), static_cast<float>(y), static_cast<float>(z));
}

void gl11Normal3f(GLfloat x, GLfloat y, GLfloat z) {
    g_gl11.normal[0] = x;
    g_gl11.normal[1] = y;
    g_gl11.normal[2] = z;
}

void gl11Normal3d(GLdouble x, GLdouble y, GLdouble z) {
    gl11Normal3f(static_cast<float>(x), static_cast<float>(y), static_cast<float>(z));
}

void gl11Color4f(GLfloat red, GLfloat green, GLfloat blue, GLfloat alpha) {
    g_gl11.colour[0] = red;
    g_gl11.colour[1] = green;
    g_gl11.colour[2] = blue;
    g_gl11.colour[3] = alpha;
    for (int i = 0; i < 4; ++i) {
        g_gl11.colourBytes[i] = colourByte(g_gl11.colour[i]);
    }
}

void gl11TexCoord2f(GLfloat s, GLfloat t) {
    g_gl11.texCoord[0] = s;
    g_gl11.texCoord[1] = t;
}

void gl11TexCoord2i(GLint s, GLint t) { gl11TexCoord2f(static_cast<float>(s), static_cast<float>(t)); }
