// MeshObject: construction, the placement setters and mesh preparation
// (face links, normals, centre).
#include "engine/world.h"

MeshObject::MeshObject()
    : positionTrack(new Track), track2(new Track), track3(new Track), track4(new Track) {}

MeshObject::~MeshObject() {
    delete[] vertices;
    delete[] faces;
    delete positionTrack;
    delete track2;
    delete track3;
    delete track4;
}

void MeshObject::setRotation(float x, float y, float z) {
    rotation.x = x;
    rotation.y = y;
    rotation.z = z;
}

void MeshObject::setScale(float x, float y, float z) {
    scale.x = x;
    scale.y = y;
    scale.z = z;
}

void MeshObject::setTranslation(float x, float y, float z) {
    translation.x = x;
    translation.y = y;
    translation.z = z;
}

static bool faceIndicesValid(const Face& face, int32_t vertexCount) {
    const uint32_t limit = static_cast<uint32_t>(vertexCount);
    return face.index[0] < limit && face.index[1] < limit && face.index[2] < limit;
}

// Removes the faces that name a vertex the mesh does not have, keeping the
// order of the others; the face array shrinks to the faces kept.
static void dropInvalidFaces(MeshObject& mesh) {
    int32_t kept = 0;
    for (int32_t i = 0; i < mesh.faceCount; ++i) {
        kept += faceIndicesValid(mesh.faces[i], mesh.vertexCount) ? 1 : 0;
    }
    if (kept == mesh.faceCount) {
        return;
    }
    Face* faces = kept > 0 ? new Face[kept] : nullptr;
    int32_t next = 0;
    for (int32_t i = 0; i < mesh.faceCount; ++i) {
        if (faceIndicesValid(mesh.faces[i], mesh.vertexCount)) {
            faces[next++] = mesh.faces[i];
        }
    }
    delete[] mesh.faces;
    mesh.faces = faces;
    mesh.faceCount = kept;
}

void MeshObject::linkFaceVertices() {
    dropInvalidFaces(*this);
    for (int32_t i = 0; i < faceCount; ++i) {
        Face& face = faces[i];
        for (int k = 0; k < 3; ++k) {
            face.vertex[k] = &vertices[face.index[k]];
        }
    }
}

void MeshObject::computeNormals() {
    for (int32_t i = 0; i < vertexCount; ++i) {
        vertices[i].normal.x = 0.0f;
        vertices[i].normal.y = 0.0f;
        vertices[i].normal.z = 0.0f;
    }
    for (int32_t i = 0; i < faceCount; ++i) {
        Face& face = faces[i];
        const Vector& p0 = face.vertex[0]->position;
        const Vector& p1 = face.vertex[1]->position;
        const Vector& p2 = face.vertex[2]->position;
        const float ax = p0.x - p1.x, ay = p0.y - p1.y, az = p0.z - p1.z;
        const float bx = p0.x - p2.x, by = p0.y - p2.y, bz = p0.z - p2.z;
        face.normal.x = ay * bz - az * by;
        face.normal.y = az * bx - ax * bz;
        face.normal.z = ax * by - ay * bx;
        face.normal.normalise();
        for (int k = 0; k < 3; ++k) {
            Vector& normal = face.vertex[k]->normal;
            normal = normal.add(face.normal);
        }
    }
    for (int32_t i = 0; i < vertexCount; ++i) {
        vertices[i].normal.normalise();
    }
}

void MeshObject::computeCentre() {
    float sumX = 0.0f;
    float sumY = 0.0f;
    float sumZ = 0.0f;
    for (int32_t i = 0; i < vertexCount; ++i) {
        sumX += vertices[i].position.x;
        sumY += vertices[i].position.y;
        sumZ += vertices[i].position.z;
    }
    centre.x = 0.0f;
    centre.y = 0.0f;
    centre.z = 0.0f;
    if (vertexCount == 0) {
        return;  // no mean to take: the centre stays at the origin
    }
    const float count = static_cast<float>(vertexCount);
    centre.x = sumX / count;
    centre.y = sumY / count;
    centre.z = sumZ / count;
}
