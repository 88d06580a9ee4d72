#include "engine/seam_correction.h"

#include <cmath>

void correctSeam(float values[3]) {
    float low = values[0];
    float high = values[0];
    for (int i = 1; i < 3; ++i) {
        low = std::fmin(low, values[i]);
        high = std::fmax(high, values[i]);
    }
    const float range = high - low;
    if (!(range > 0.8f)) {
        return;
    }
    const float turns = std::ceil(range);
    for (int i = 0; i < 3; ++i) {
        if (values[i] < 0.5f) {
            values[i] += turns;
        }
    }
}

FaceTexCoords faceTexCoords(const Face& face) {
    FaceTexCoords coords;
    for (int i = 0; i < 3; ++i) {
        coords.u[i] = face.vertex[i]->u;
        coords.v[i] = face.vertex[i]->v;
    }
    if (face.flags & FACE_U_WRAP) {
        correctSeam(coords.u);
    }
    if (face.flags & FACE_V_WRAP) {
        correctSeam(coords.v);
    }
    return coords;
}
