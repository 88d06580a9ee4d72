// Vector: the engine's point, direction and angle triple.
#pragma once

// Four single-precision floats; only x, y, z carry geometry. w is spare:
// normalise() leaves the inverse length there, and where no operation sets it
// its value is unspecified and nothing reads it.
struct Vector {
    float x = 0.0f;
    float y = 0.0f;
    float z = 0.0f;
    float w = 0.0f;

    // r = 1 / sqrt(x*x + y*y + z*z) in single precision; w = r, then x, y, z
    // are each multiplied by r. A zero vector stays (0, 0, 0) with w = 0
    // instead of turning into non-finite values.
    void normalise();

    // (x + other.x, y + other.y, z + other.z); w of the result is 0.
    Vector add(const Vector& other) const;
};
