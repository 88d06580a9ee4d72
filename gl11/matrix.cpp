#include "gl11/matrix.h"

#include <cmath>

namespace {

constexpr double PI = 3.14159265358979323846;

float& at(Matrix4& matrix, int row, int column) { return matrix.m[column * 4 + row]; }

}  // namespace

Matrix4 identityMatrix() {
    Matrix4 result{};
    result.m[0] = result.m[5] = result.m[10] = result.m[15] = 1.0f;
    return result;
}

Matrix4 multiplyMatrices(const Matrix4& a, const Matrix4& b) {
    Matrix4 result{};
    for (int column = 0; column < 4; ++column) {
        for (int row = 0; row < 4; ++row) {
            float sum = 0.0f;
            for (int k = 0; k < 4; ++k) {
                sum += a.m[k * 4 + row] * b.m[column * 4 + k];
            }
            result.m[column * 4 + row] = sum;
        }
    }
    return result;
}

Matrix4 rotationMatrix(float degrees, float x, float y, float z) {
    const float length = std::sqrt(x * x + y * y + z * z);
    if (length == 0.0f) {
        return identityMatrix();
    }
    x /= length;
    y /= length;
    z /= length;
    const float radians = degrees * static_cast<float>(PI / 180.0);
    const float s = std::sin(radians);
    const float c = std::cos(radians);
    const float k = 1.0f - c;
    Matrix4 result = identityMatrix();
    at(result, 0, 0) = x * x * k + c;
    at(result, 0, 1) = x * y * k - z * s;
    at(result, 0, 2) = x * z * k + y * s;
    at(result, 1, 0) = y * x * k + z * s;
    at(result, 1, 1) = y * y * k + c;
    at(result, 1, 2) = y * z * k - x * s;
    at(result, 2, 0) = z * x * k - y * s;
    at(result, 2, 1) = z * y * k + x * s;
    at(result, 2, 2) = z * z * k + c;
    return result;
}

Matrix4 scalingMatrix(float x, float y, float z) {
    Matrix4 result = identityMatrix();
    result.m[0] = x;
    result.m[5] = y;
    result.m[10] = z;
    return result;
}

Matrix4 translationMatrix(float x, float y, float z) {
    Matrix4 result = identityMatrix();
    result.m[12] = x;
    result.m[13] = y;
    result.m[14] = z;
    return result;
}

Matrix4 perspectiveMatrix(double fovyDegrees, double aspect, double zNear, double zFar) {
    const double radians = fovyDegrees / 2.0 * PI / 180.0;
    const double depth = zFar - zNear;
    const double sine = std::sin(radians);
    if (depth == 0.0 || sine == 0.0 || aspect == 0.0) {
        return identityMatrix();
    }
    const double cotangent = std::cos(radians) / sine;
    Matrix4 result = identityMatrix();
    at(result, 0, 0) = static_cast<float>(cotangent / aspect);
    at(result, 1, 1) = static_cast<float>(cotangent);
    at(result, 2, 2) = static_cast<float>(-(zFar + zNear) / depth);
    at(result, 3, 2) = -1.0f;
    at(result, 2, 3) = static_cast<float>(-2.0 * zNear * zFar / depth);
    at(result, 3, 3) = 0.0f;
    return result;
}

Matrix4 lookAtMatrix(double eyeX, double eyeY, double eyeZ, double centreX, double centreY, double centreZ,
                     double upX, double upY, double upZ) {
    // As GLU: the basis in float, normalised where it is not degenerate.
    auto normalise = [](float v[3]) {
        const float length = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
        if (length != 0.0f) {
            v[0] /= length;
            v[1] /= length;
            v[2] /= length;
        }
    };
    auto cross = [](const float a[3], const float b[3], float out[3]) {
        out[0] = a[1] * b[2] - a[2] * b[1];
        out[1] = a[2] * b[0] - a[0] * b[2];
        out[2] = a[0] * b[1] - a[1] * b[0];
    };
    float forward[3] = {static_cast<float>(centreX - eyeX), static_cast<float>(centreY - eyeY),
                        static_cast<float>(centreZ - eyeZ)};
    float up[3] = {static_cast<float>(upX), static_cast<float>(upY), static_cast<float>(upZ)};
    normalise(forward);
    float side[3];
    cross(forward, up, side);
    normalise(side);
    cross(side, forward, up);
    Matrix4 basis = identityMatrix();
    for (int i = 0; i < 3; ++i) {
        at(basis, 0, i) = side[i];
        at(basis, 1, i) = up[i];
        at(basis, 2, i) = -forward[i];
    }
    return multiplyMatrices(basis, translationMatrix(static_cast<float>(-eyeX), static_cast<float>(-eyeY),
                                                     static_cast<float>(-eyeZ)));
}

namespace {

// Element (r, c) of m's upper 3 x 3, and the cofactors of its first row.
float element(const Matrix4& m, int r, int c) { return m.m[c * 4 + r]; }

float determinant3(const Matrix4& m, float* c00, float* c01, float* c02) {
    auto a = [&m](int r, int c) { return element(m, r, c); };
    *c00 = a(1, 1) * a(2, 2) - a(1, 2) * a(2, 1);
    *c01 = a(1, 2) * a(2, 0) - a(1, 0) * a(2, 2);
    *c02 = a(1, 0) * a(2, 1) - a(1, 1) * a(2, 0);
    return a(0, 0) * *c00 + a(0, 1) * *c01 + a(0, 2) * *c02;
}

}  // namespace

bool isSingular(const Matrix4& m) {
    float c00, c01, c02;
    const float determinant = determinant3(m, &c00, &c01, &c02);
    return determinant * determinant < 1e-25f;
}

Matrix3 normalMatrix(const Matrix4& m) {
    auto a = [&m](int r, int c) { return element(m, r, c); };
    Matrix3 result{};
    if (isSingular(m)) {
        result.m[0] = result.m[4] = result.m[8] = 1.0f;
        return result;
    }
    float c00, c01, c02;
    const float inverse = 1.0f / determinant3(m, &c00, &c01, &c02);
    // The cofactor matrix over the determinant is the inverse transposed.
    const float cofactors[3][3] = {
        {c00, c01, c02},
        {a(0, 2) * a(2, 1) - a(0, 1) * a(2, 2), a(0, 0) * a(2, 2) - a(0, 2) * a(2, 0),
         a(0, 1) * a(2, 0) - a(0, 0) * a(2, 1)},
        {a(0, 1) * a(1, 2) - a(0, 2) * a(1, 1), a(0, 2) * a(1, 0) - a(0, 0) * a(1, 2),
         a(0, 0) * a(1, 1) - a(0, 1) * a(1, 0)},
    };
    for (int r = 0; r < 3; ++r) {
        for (int c = 0; c < 3; ++c) {
            result.m[c * 3 + r] = cofactors[r][c] * inverse;
        }
    }
    return result;
}

void transformVector4(const Matrix4& m, const float in[4], float out[4]) {
    for (int r = 0; r < 4; ++r) {
        out[r] = m.m[r] * in[0] + m.m[4 + r] * in[1] + m.m[8 + r] * in[2] + m.m[12 + r] * in[3];
    }
}

void transformDirection(const Matrix4& m, const float in[3], float out[3]) {
    for (int r = 0; r < 3; ++r) {
        out[r] = m.m[r] * in[0] + m.m[4 + r] * in[1] + m.m[8 + r] * in[2];
    }
}
