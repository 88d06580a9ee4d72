// The World's lights as OpenGL lights. Only diffuse intensities are set:
// ambient, specular and attenuation keep OpenGL's values.
#include "base/gl.h"

#include "engine/renderer.h"

namespace {

// The spot light's fixed cone; the file's hotspot and falloff are not used.
constexpr GLfloat SPOT_CUTOFF_DEGREES = 70.0f;
constexpr GLfloat SPOT_EXPONENT = 20.0f;

// position - target as a unit vector, or straight down when they coincide.
Vector spotDirection(const Vector& position, const Vector& target) {
    Vector direction{position.x - target.x, position.y - target.y, position.z - target.z, 0.0f};
    direction.normalise();
    if (direction.x == 0.0f && direction.y == 0.0f && direction.z == 0.0f) {
        return Vector{0.0f, -1.0f, 0.0f, 0.0f};
    }
    return direction;
}

}  // namespace

void setOmniLight(int index, Vector position, Colour colour) {
    const GLenum light = GL_LIGHT0 + index;
    glPushMatrix();
    glLoadIdentity();
    glEnable(light);
    const GLfloat where[4] = {position.x, position.y, position.z, 1.0f};
    glLightfv(light, GL_POSITION, where);
    GLfloat diffuse[4];
    colourToFloats(colour, diffuse);
    glLightfv(light, GL_DIFFUSE, diffuse);
    glPopMatrix();
}

void setSpotLight(int index, Vector position, Vector target, Colour colour) {
    const GLenum light = GL_LIGHT0 + index;
    glPushMatrix();
    glLoadIdentity();
    const Vector direction = spotDirection(position, target);
    glEnable(light);
    const GLfloat where[4] = {position.x, position.y, position.z, 1.0f};
    glLightfv(light, GL_POSITION, where);
    const GLfloat towards[3] = {direction.x, direction.y, direction.z};
    glLightfv(light, GL_SPOT_DIRECTION, towards);
    GLfloat diffuse[4];
    colourToFloats(colour, diffuse);
    glLightfv(light, GL_DIFFUSE, diffuse);
    glLightf(light, GL_SPOT_CUTOFF, SPOT_CUTOFF_DEGREES);
    glLightf(light, GL_SPOT_EXPONENT, SPOT_EXPONENT);
    glPopMatrix();
}
