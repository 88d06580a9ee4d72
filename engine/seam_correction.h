// Texture coordinates across a wrapping seam. A face whose u (or v) values
// straddle the texture's edge, say 0.9 and 0.05, would otherwise be drawn
// across almost the whole texture; moving the small values up by whole turns
// keeps it on the narrow strip that was meant.
#pragma once

#include <cstdint>

#include "engine/world.h"

// Face::flags bits: the face's u, v coordinates wrap.
constexpr uint16_t FACE_U_WRAP = 0x08;
constexpr uint16_t FACE_V_WRAP = 0x10;

// When the largest minus the smallest of the three values is greater than
// 0.8, adds ceil(that range) to each value below 0.5 (0.5 itself stays).
// 0.9, 0.95, 0.05 become 0.9, 0.95, 1.05; 0.0, 1.5, 0.2 become 2.0, 1.5, 2.2.
void correctSeam(float values[3]);

// A face's texture coordinates in the order a, b, c.
struct FaceTexCoords {
    float u[3];
    float v[3];
};

// Copies of the face's vertex coordinates, u corrected when the face has
// FACE_U_WRAP, v when it has FACE_V_WRAP. The vertices are not changed.
// Needs the face's three vertex links.
FaceTexCoords faceTexCoords(const Face& face);
