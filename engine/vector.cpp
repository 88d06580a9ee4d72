#include "engine/vector.h"

#include <cmath>

void Vector::normalise() {
    const float lengthSquared = x * x + y * y + z * z;
    // A zero vector (a face of zero area, a vertex no face uses) has no
    // direction: it stays zero rather than turning into non-finite values.
    // Non-finite input (NaN or overflowing coordinates from a damaged file)
    // is treated the same way.
    if (!(lengthSquared > 0.0f) || !std::isfinite(lengthSquared)) {
        x = 0.0f;
        y = 0.0f;
        z = 0.0f;
        w = 0.0f;
        return;
    }
    const float r = 1.0f / std::sqrt(lengthSquared);
    w = r;
    x *= r;
    y *= r;
    z *= r;
}

Vector Vector::add(const Vector& other) const {
    return Vector{x + other.x, y + other.y, z + other.z, 0.0f};
}
