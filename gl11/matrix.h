// 4 x 4 single-precision matrices in OpenGL's column-major order, and the
// operations OpenGL 1.1 and GLU build them with, computed as the system's
// OpenGL and GLU compute them (float products; GLU's perspective in double,
// its look-at in float). No GL calls: the matrix stacks stand on these.
#pragma once

struct Matrix4 {
    float m[16];  // column-major: element (row r, column c) is m[c * 4 + r]
};

// The upper-left 3 x 3 of a matrix's inverse, transposed: what normals are
// multiplied by. Column-major like Matrix4.
struct Matrix3 {
    float m[9];
};

Matrix4 identityMatrix();
// a * b: b is applied first.
Matrix4 multiplyMatrices(const Matrix4& a, const Matrix4& b);
// glRotatef: `degrees` about the axis (x, y, z), normalised; a zero axis gives the identity.
Matrix4 rotationMatrix(float degrees, float x, float y, float z);
Matrix4 scalingMatrix(float x, float y, float z);
Matrix4 translationMatrix(float x, float y, float z);
// gluPerspective: vertical field of view in degrees. A degenerate frustum
// (zero depth range, zero aspect, a field of view that gives sin 0) gives the identity, as GLU leaves the matrix.
Matrix4 perspectiveMatrix(double fovyDegrees, double aspect, double zNear, double zFar);
// gluLookAt, including its translation by -eye.
Matrix4 lookAtMatrix(double eyeX, double eyeY, double eyeZ, double centreX, double centreY, double centreZ,
                     double upX, double upY, double upZ);

// True when m's upper-left 3 x 3 has no inverse as Mesa judges a model-view
// that turns and scales: its determinant d has d * d < 1e-25.
bool isSingular(const Matrix4& m);

// The inverse transpose of m's upper-left 3 x 3. For a singular m, the
// identity: Mesa then takes the inverse to be the identity, so a flattened
// mesh is lit with its normals as sent.
Matrix3 normalMatrix(const Matrix4& m);

// m * (x, y, z, w).
void transformVector4(const Matrix4& m, const float in[4], float out[4]);
// The upper-left 3 x 3 of m times (x, y, z).
void transformDirection(const Matrix4& m, const float in[3], float out[3]);
