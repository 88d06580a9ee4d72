#include "engine/renderer_modes.h"

#include "engine/renderer_flags.h"
#include "engine/seam_correction.h"
#include "resources/texture.h"

namespace {

constexpr DrawMode DRAW_MODES[] = {
    // mode                 shading    light  tex    sphere coords env          edges
    {MODE_FLAT,            GL_FLAT,   true,  false, false, false, GL_MODULATE, false},
    {MODE_SMOOTH,          GL_SMOOTH, true,  false, false, false, GL_MODULATE, false},
    {MODE_SPHERE_MAP,      GL_SMOOTH, false, true,  true,  false, GL_MODULATE, false},
    {MODE_WIRE,            GL_FLAT,   false, false, false, false, GL_MODULATE, true},
    {MODE_WIRE_LIT,        GL_FLAT,   true,  false, false, false, GL_MODULATE, true},
    {MODE_TEXTURE,         GL_SMOOTH, false, true,  false, true,  GL_DECAL,    false},
    {MODE_TEXTURE_FLAT,    GL_FLAT,   true,  true,  false, true,  GL_MODULATE, false},
    {MODE_TEXTURE_SMOOTH,  GL_SMOOTH, true,  true,  false, true,  GL_MODULATE, false},
};

void setEnabled(GLenum capability, bool on) {
    if (on) {
        glEnable(capability);
    } else {
        glDisable(capability);
    }
}

bool linked(const Face& face) {
    return face.vertex[0] != nullptr && face.vertex[1] != nullptr && face.vertex[2] != nullptr;
}

void sendVertex(const Vertex& vertex) {
    glNormal3d(vertex.normal.x, vertex.normal.y, vertex.normal.z);
    glVertex3f(vertex.position.x, vertex.position.y, vertex.position.z);
}

void sendFace(const Face& face, bool texCoords) {
    glBegin(GL_POLYGON);
    if (texCoords) {
        const FaceTexCoords coords = faceTexCoords(face);
        for (int i = 0; i < 3; ++i) {
            glTexCoord2f(coords.u[i], coords.v[i]);
            sendVertex(*face.vertex[i]);
        }
    } else {
        for (int i = 0; i < 3; ++i) {
            sendVertex(*face.vertex[i]);
        }
    }
    glEnd();
}

void sendLine(const Vertex& from, const Vertex& to) {
    glVertex3f(from.position.x, from.position.y, from.position.z);
    glVertex3f(to.position.x, to.position.y, to.position.z);
}

}  // namespace

const DrawMode* findDrawMode(uint32_t mode) {
    for (const DrawMode& row : DRAW_MODES) {
        if (row.mode == mode) {
            return &row;
        }
    }
    return nullptr;
}

void drawTriangles(const MeshObject& mesh, const Material& material, const DrawMode& mode) {
    const bool textured = mode.textured && material.texture != nullptr;
    glShadeModel(mode.shading);
    setEnabled(GL_LIGHTING, mode.lighting);
    setEnabled(GL_TEXTURE_2D, textured);
    if (textured && mode.sphereMap) {
        glTexGeni(GL_S, GL_TEXTURE_GEN_MODE, GL_SPHERE_MAP);
        glTexGeni(GL_T, GL_TEXTURE_GEN_MODE, GL_SPHERE_MAP);
        glEnable(GL_TEXTURE_GEN_S);
        glEnable(GL_TEXTURE_GEN_T);
    }
    if (textured) {
        glBindTexture(GL_TEXTURE_2D, material.texture->id);
        applyTextureFilters(material.flags);
        glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, mode.textureEnv);
    }
    const bool texCoords = textured && mode.texCoords;
    for (int32_t i = 0; i < mesh.faceCount; ++i) {
        if (linked(mesh.faces[i])) {
            sendFace(mesh.faces[i], texCoords);
        }
    }
}

void drawEdges(const MeshObject& mesh, const DrawMode& mode) {
    glShadeModel(mode.shading);
    setEnabled(GL_LIGHTING, mode.lighting);
    glDisable(GL_TEXTURE_2D);
    glBegin(GL_LINES);
    for (int32_t i = 0; i < mesh.faceCount; ++i) {
        const Face& face = mesh.faces[i];
        if (!linked(face)) {
            continue;
        }
        const Vertex& a = *face.vertex[0];
        const Vertex& b = *face.vertex[1];
        const Vertex& c = *face.vertex[2];
        if (face.flags & FACE_EDGE_AB) {
            sendLine(a, b);
        }
        if (face.flags & FACE_EDGE_BC) {
            sendLine(b, c);
        }
        if (face.flags & FACE_EDGE_CA) {
            sendLine(c, a);
        }
    }
    glEnd();
}
