// gl11's matrices are the ones the desktop's OpenGL and GLU build from the same
// calls: the renderer's projection and model-view, and the normal matrix.
#include "gl11/matrix.h"

#include <gtest/gtest.h>

#include <cmath>

#include "base/gl.h"
#include "tests/resources/gl_test_window.h"

namespace {

// `expected` (OpenGL's) and `actual` (gl11's) agree to float rounding.
void expectSameMatrix(const float* expected, const Matrix4& actual) {
    for (int i = 0; i < 16; ++i) {
        EXPECT_NEAR(actual.m[i], expected[i], 1e-5f * (1.0f + std::abs(expected[i]))) << "element " << i;
    }
}

Matrix4 glMatrix(GLenum which) {
    Matrix4 matrix;
    glGetFloatv(which, matrix.m);
    return matrix;
}

class Gl11MatrixTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!openGlTestWindow()) {
            GTEST_SKIP() << "no display: run under xvfb-run";
        }
    }
};

TEST_F(Gl11MatrixTest, TheRenderersMatricesAreOpenGLs) {
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    gluPerspective(110.0, 1.0, 1.0, 6000.0);
    expectSameMatrix(glMatrix(GL_PROJECTION_MATRIX).m, perspectiveMatrix(110.0, 1.0, 1.0, 6000.0));

    // A camera with a tilted up vector, a scaled, rotated and moved mesh.
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    gluLookAt(40.0, 80.0, -600.0, 5.0, -10.0, 30.0, 0.0, 1.0, 0.3);
    glScalef(1.5f, 0.75f, 2.0f);
    glRotatef(30.0f, 1.0f, 0.0f, 0.0f);
    glRotatef(-45.0f, 0.0f, 1.0f, 0.0f);
    glRotatef(200.0f, 0.0f, 0.0f, 1.0f);
    glTranslatef(5.0f, -7.0f, 9.0f);
    Matrix4 modelview = lookAtMatrix(40.0, 80.0, -600.0, 5.0, -10.0, 30.0, 0.0, 1.0, 0.3);
    modelview = multiplyMatrices(modelview, scalingMatrix(1.5f, 0.75f, 2.0f));
    modelview = multiplyMatrices(modelview, rotationMatrix(30.0f, 1.0f, 0.0f, 0.0f));
    modelview = multiplyMatrices(modelview, rotationMatrix(-45.0f, 0.0f, 1.0f, 0.0f));
    modelview = multiplyMatrices(modelview, rotationMatrix(200.0f, 0.0f, 0.0f, 1.0f));
    modelview = multiplyMatrices(modelview, translationMatrix(5.0f, -7.0f, 9.0f));
    expectSameMatrix(glMatrix(GL_MODELVIEW_MATRIX).m, modelview);

    // An axis that is not a unit vector is normalised; a zero axis changes nothing.
    glLoadIdentity();
    glRotatef(75.0f, 2.0f, -1.0f, 0.5f);
    glRotatef(30.0f, 0.0f, 0.0f, 0.0f);
    expectSameMatrix(glMatrix(GL_MODELVIEW_MATRIX).m, rotationMatrix(75.0f, 2.0f, -1.0f, 0.5f));
    expectSameMatrix(identityMatrix().m, rotationMatrix(30.0f, 0.0f, 0.0f, 0.0f));
}

// Normals go through the inverse transpose of the model-view without being
// renormalised (GL_NORMALIZE is off): a scaled mesh is lit with longer or
// shorter normals, as OpenGL lights it.
TEST(Gl11NormalMatrix, InvertsTheModelViewWithoutRenormalising) {
    Matrix4 modelview = lookAtMatrix(40.0, 80.0, -600.0, 5.0, -10.0, 30.0, 0.0, 1.0, 0.3);
    modelview = multiplyMatrices(modelview, scalingMatrix(1.5f, 0.75f, 2.0f));
    modelview = multiplyMatrices(modelview, rotationMatrix(30.0f, 1.0f, 2.0f, 3.0f));
    const Matrix3 normals = normalMatrix(modelview);
    // normals^T * modelview's 3 x 3 is the identity.
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            float sum = 0.0f;
            for (int k = 0; k < 3; ++k) {
                sum += normals.m[row * 3 + k] * modelview.m[column * 4 + k];
            }
            EXPECT_NEAR(sum, row == column ? 1.0f : 0.0f, 1e-5f) << row << "," << column;
        }
    }
    EXPECT_NEAR(normalMatrix(scalingMatrix(4.0f, 4.0f, 4.0f)).m[0], 0.25f, 1e-7f);
}

// A model-view without an inverse (a mesh flattened by a zero scale) lights
// with the normals as sent, as Mesa does: it takes such a matrix's inverse
// to be the identity. (tests/gl11's scene "singular-model-view" draws it
// against Mesa's own frame.)
TEST(Gl11NormalMatrix, IsTheIdentityForAModelViewWithoutInverse) {
    const Matrix4 flattened = multiplyMatrices(rotationMatrix(30.0f, 1.0f, 2.0f, 3.0f), scalingMatrix(1.0f, 0.0f, 1.0f));
    EXPECT_TRUE(isSingular(flattened));
    const Matrix3 normals = normalMatrix(flattened);
    for (int i = 0; i < 9; ++i) {
        EXPECT_EQ(normals.m[i], i % 4 == 0 ? 1.0f : 0.0f) << "element " << i;
    }
    // A scale far from zero keeps its inverse: 1e-5 along one axis.
    const Matrix4 thin = multiplyMatrices(rotationMatrix(30.0f, 1.0f, 2.0f, 3.0f), scalingMatrix(1.0f, 1e-5f, 1.0f));
    EXPECT_FALSE(isSingular(thin));
    EXPECT_GT(std::abs(normalMatrix(thin).m[4]), 1000.0f);
}

}  // namespace
