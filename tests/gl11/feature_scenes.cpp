// The feature scenes (feature_scenes.h), compiled once over the system's
// OpenGL and GLU and once over gl11 (KASKADE_SCENES_ON_GL11), the way
// base/gl.h chooses for the show. Colours are whole multiples of 1/255, as
// the show's are; geometry is tessellated finely enough that per-vertex
// lighting shows its shape.
#ifdef KASKADE_SCENES_ON_GL11
#include "gl11/gl11.h"
#define SCENES_NAMESPACE layer_scenes
#else
#include <GL/gl.h>
#include <GL/glu.h>
#define SCENES_NAMESPACE reference_scenes
#endif

#include "tests/gl11/egl_contexts.h"
#include "tests/gl11/feature_scenes.h"

#include <cmath>
#include <cstdint>

namespace SCENES_NAMESPACE {
namespace {

constexpr float PI = 3.14159265358979323846f;

void colour(int red, int green, int blue, int alpha = 255) {
    glColor4f(static_cast<float>(red) / 255.0f, static_cast<float>(green) / 255.0f,
              static_cast<float>(blue) / 255.0f, static_cast<float>(alpha) / 255.0f);
}

// The viewport, a clear to `background`, a 50-degree perspective and the eye
// at (0, 0, 8) looking at the origin.
void begin(int red, int green, int blue) {
    glViewport(0, 0, SCENE_SIZE, SCENE_SIZE);
    glClearColor(static_cast<float>(red) / 255.0f, static_cast<float>(green) / 255.0f,
                 static_cast<float>(blue) / 255.0f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    gluPerspective(50.0, 1.0, 1.0, 200.0);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    gluLookAt(0.0, 0.0, 8.0, 0.0, 0.0, 0.0, 0.0, 1.0, 0.0);
}

// The engine's lit state: colour material on ambient and diffuse, depth
// test, back faces culled.
void litState() {
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_CULL_FACE);
    glEnable(GL_LIGHTING);
    glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE);
    glEnable(GL_COLOR_MATERIAL);
}

// A light at `position` (w = 1: positional) given in eye coordinates, as the
// engine gives its lights (under an identity model-view).
void eyeLight(GLenum light, float x, float y, float z, float w, int red, int green, int blue) {
    glPushMatrix();
    glLoadIdentity();
    const GLfloat position[4] = {x, y, z, w};
    const GLfloat diffuse[4] = {static_cast<float>(red) / 255.0f, static_cast<float>(green) / 255.0f,
                                static_cast<float>(blue) / 255.0f, 1.0f};
    glLightfv(light, GL_POSITION, position);
    glLightfv(light, GL_DIFFUSE, diffuse);
    glEnable(light);
    glPopMatrix();
}

uint8_t channel(float unit) { return static_cast<uint8_t>(std::lround(127.5f + 127.0f * unit)); }

// A point of the unit sphere at polar angle `theta` (0 at the top) and
// azimuth `phi` (0 towards +z), sent with its normal and, when `painted`, a
// colour that follows the normal.
void sphereVertex(float radius, float theta, float phi, bool painted) {
    const float x = std::sin(theta) * std::sin(phi);
    const float y = std::cos(theta);
    const float z = std::sin(theta) * std::cos(phi);
    if (painted) {
        colour(channel(x), channel(y), channel(z));
    }
    glNormal3f(x, y, z);
    glVertex3f(radius * x, radius * y, radius * z);
}

// A sphere about the current origin in `slices` x `stacks` cells, each two
// three-vertex polygons as the engine sends its faces, counter-clockwise
// seen from outside.
void sphere(float radius, int slices, int stacks, bool painted) {
    for (int i = 0; i < stacks; ++i) {
        const float t0 = PI * static_cast<float>(i) / static_cast<float>(stacks);
        const float t1 = PI * static_cast<float>(i + 1) / static_cast<float>(stacks);
        for (int j = 0; j < slices; ++j) {
            const float p0 = 2.0f * PI * static_cast<float>(j) / static_cast<float>(slices);
            const float p1 = 2.0f * PI * static_cast<float>(j + 1) / static_cast<float>(slices);
            glBegin(GL_POLYGON);
            sphereVertex(radius, t0, p0, painted);
            sphereVertex(radius, t1, p0, painted);
            sphereVertex(radius, t1, p1, painted);
            glEnd();
            glBegin(GL_POLYGON);
            sphereVertex(radius, t0, p0, painted);
            sphereVertex(radius, t1, p1, painted);
            sphereVertex(radius, t0, p1, painted);
            glEnd();
        }
    }
}

// A plane from (x0, y0) to (x1, y1) at depth z in cells x cells quads, facing +z.
void grid(float x0, float y0, float x1, float y1, float z, int cells) {
    const float dx = (x1 - x0) / static_cast<float>(cells);
    const float dy = (y1 - y0) / static_cast<float>(cells);
    glNormal3f(0.0f, 0.0f, 1.0f);
    glBegin(GL_QUADS);
    for (int i = 0; i < cells; ++i) {
        for (int j = 0; j < cells; ++j) {
            const float x = x0 + dx * static_cast<float>(j);
            const float y = y0 + dy * static_cast<float>(i);
            glVertex3f(x, y, z);
            glVertex3f(x + dx, y, z);
            glVertex3f(x + dx, y + dy, z);
            glVertex3f(x, y + dy, z);
        }
    }
    glEnd();
}

// A 16 x 16 RGBA texture: red across, green up, blue in 4 x 4 checks, alpha
// rising from clear at one corner to nearly opaque at the other. Filters as given.
GLuint makeTexture(GLint filter) {
    static uint8_t pixels[16 * 16 * 4];
    for (int y = 0; y < 16; ++y) {
        for (int x = 0; x < 16; ++x) {
            uint8_t* p = pixels + (y * 16 + x) * 4;
            p[0] = static_cast<uint8_t>(x * 16 + 8);
            p[1] = static_cast<uint8_t>(y * 16 + 8);
            p[2] = ((x / 4 + y / 4) % 2) != 0 ? 240 : 30;
            p[3] = static_cast<uint8_t>((x + y) * 8);
        }
    }
    GLuint name = 0;
    glGenTextures(1, &name);
    glBindTexture(GL_TEXTURE_2D, name);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 16, 16, 0, GL_RGBA, GL_UNSIGNED_BYTE, pixels);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
    return name;
}

// A textured quad from (x0, y0) to (x1, y1) at z with the texture's corners,
// each corner its own colour; its top edge `narrower` shorter at each end.
void texturedQuad(float x0, float y0, float x1, float y1, float z, float narrower = 0.0f) {
    glNormal3f(0.0f, 0.0f, 1.0f);
    glBegin(GL_QUADS);
    colour(255, 255, 255);
    glTexCoord2f(0.0f, 0.0f);
    glVertex3f(x0, y0, z);
    colour(255, 200, 60);
    glTexCoord2f(1.0f, 0.0f);
    glVertex3f(x1, y0, z);
    colour(60, 200, 255);
    glTexCoord2f(1.0f, 1.0f);
    glVertex3f(x1 - narrower, y1, z);
    colour(200, 60, 200);
    glTexCoord2f(0.0f, 1.0f);
    glVertex3f(x0 + narrower, y1, z);
    glEnd();
}

// Two positional lights with distance attenuation over a painted sphere and
// a plane behind it, colour material tracking ambient and diffuse.
void positionalLights() {
    begin(20, 20, 50);
    litState();
    eyeLight(GL_LIGHT0, 3.0f, 2.0f, -4.0f, 1.0f, 255, 230, 200);
    glLightf(GL_LIGHT0, GL_CONSTANT_ATTENUATION, 0.5f);
    glLightf(GL_LIGHT0, GL_LINEAR_ATTENUATION, 0.05f);
    glLightf(GL_LIGHT0, GL_QUADRATIC_ATTENUATION, 0.01f);
    eyeLight(GL_LIGHT1, -4.0f, -1.0f, -5.0f, 1.0f, 80, 130, 255);
    glLightf(GL_LIGHT1, GL_QUADRATIC_ATTENUATION, 0.02f);
    glPushMatrix();
    glTranslatef(-0.8f, 0.3f, 0.0f);
    sphere(1.8f, 24, 16, true);
    glPopMatrix();
    colour(200, 180, 120);
    grid(-5.0f, -5.0f, 5.0f, 5.0f, -3.0f, 20);
}

// Two spot lights (the engine's kind: a cone and an exponent) on a plane.
void spotLights() {
    begin(0, 0, 0);
    litState();
    eyeLight(GL_LIGHT0, -1.0f, 1.0f, -5.0f, 1.0f, 255, 255, 255);
    const GLfloat down[3] = {0.3f, -0.3f, -1.0f};
    glPushMatrix();
    glLoadIdentity();
    glLightfv(GL_LIGHT0, GL_SPOT_DIRECTION, down);
    glPopMatrix();
    glLightf(GL_LIGHT0, GL_SPOT_CUTOFF, 40.0f);
    glLightf(GL_LIGHT0, GL_SPOT_EXPONENT, 20.0f);
    eyeLight(GL_LIGHT1, 2.0f, -2.0f, -4.0f, 1.0f, 255, 120, 40);
    const GLfloat left[3] = {-0.5f, 0.4f, -1.0f};
    glPushMatrix();
    glLoadIdentity();
    glLightfv(GL_LIGHT1, GL_SPOT_DIRECTION, left);
    glPopMatrix();
    glLightf(GL_LIGHT1, GL_SPOT_CUTOFF, 25.0f);
    glLightf(GL_LIGHT1, GL_SPOT_EXPONENT, 5.0f);
    colour(230, 230, 230);
    grid(-4.0f, -4.0f, 4.0f, 4.0f, -1.5f, 48);
}

// Lighting with no light on: only OpenGL's global ambient light (0.2) on the
// material's ambient colour, tracked and not, plus its emission.
void globalAmbient() {
    begin(0, 0, 0);
    litState();
    glDisable(GL_LIGHT0);
    colour(255, 255, 255);
    grid(-3.5f, 0.2f, -0.2f, 3.5f, 0.0f, 1);
    colour(255, 128, 0);
    grid(0.2f, 0.2f, 3.5f, 3.5f, 0.0f, 1);
    glDisable(GL_COLOR_MATERIAL);
    const GLfloat ambient[4] = {1.0f, 0.5f, 1.0f, 1.0f};
    glMaterialfv(GL_FRONT_AND_BACK, GL_AMBIENT, ambient);
    grid(-3.5f, -3.5f, -0.2f, -0.2f, 0.0f, 1);
    const GLfloat emission[4] = {0.0f, 0.2f, 0.4f, 1.0f};
    glMaterialfv(GL_FRONT_AND_BACK, GL_EMISSION, emission);
    grid(0.2f, -3.5f, 3.5f, -0.2f, 0.0f, 1);
}

// Highlights of a directional and a positional light on two spheres of
// different shininess, the engine's way: glColor for ambient and diffuse,
// glMaterial for specular and shininess.
void specular() {
    begin(10, 10, 10);
    litState();
    const GLfloat white[4] = {1.0f, 1.0f, 1.0f, 1.0f};
    eyeLight(GL_LIGHT0, 0.4f, 0.6f, 1.0f, 0.0f, 180, 180, 180);
    eyeLight(GL_LIGHT1, -3.0f, 3.0f, -2.0f, 1.0f, 120, 160, 255);
    glLightfv(GL_LIGHT1, GL_SPECULAR, white);
    colour(150, 40, 40);
    const GLfloat shine[4] = {0.9f, 0.9f, 0.8f, 1.0f};
    glMaterialfv(GL_FRONT_AND_BACK, GL_SPECULAR, shine);
    GLfloat shininess = 12.0f;
    glMaterialfv(GL_FRONT_AND_BACK, GL_SHININESS, &shininess);
    glPushMatrix();
    glTranslatef(-1.7f, 0.8f, 0.0f);
    sphere(1.5f, 32, 20, false);
    glPopMatrix();
    colour(40, 90, 160);
    shininess = 60.0f;
    glMaterialfv(GL_FRONT_AND_BACK, GL_SHININESS, &shininess);
    glPushMatrix();
    glTranslatef(1.7f, -0.9f, 0.0f);
    sphere(1.5f, 32, 20, false);
    glPopMatrix();
}

// Polygons, quads, triangles and lines whose vertices all differ in colour,
// unlit at the top and lit (colour material) at the bottom, in `model`.
void shadedPrimitives(GLenum model) {
    begin(30, 30, 30);
    glShadeModel(model);
    // A pentagon.
    glBegin(GL_POLYGON);
    colour(255, 0, 0);
    glVertex3f(-3.0f, 3.4f, 0.0f);
    colour(0, 255, 0);
    glVertex3f(-3.6f, 1.6f, 0.0f);
    colour(0, 0, 255);
    glVertex3f(-2.5f, 0.3f, 0.0f);
    colour(255, 255, 0);
    glVertex3f(-1.0f, 1.2f, 0.0f);
    colour(0, 255, 255);
    glVertex3f(-1.2f, 3.0f, 0.0f);
    glEnd();
    // Two quads in one glBegin.
    glBegin(GL_QUADS);
    for (int q = 0; q < 2; ++q) {
        const float x = -0.6f + 1.9f * static_cast<float>(q);
        colour(255, 60 * q, 0);
        glVertex3f(x, 0.4f, 0.0f);
        colour(0, 255, 60 * q);
        glVertex3f(x + 1.6f, 0.4f, 0.0f);
        colour(60 * q, 0, 255);
        glVertex3f(x + 1.6f, 3.2f, 0.0f);
        colour(255, 255, 255);
        glVertex3f(x, 3.2f, 0.0f);
    }
    glEnd();
    // Lines, each from one colour to another.
    glBegin(GL_LINES);
    for (int i = 0; i < 6; ++i) {
        const float y = -0.3f - 0.45f * static_cast<float>(i);
        colour(255, 40 * i, 0);
        glVertex3f(-3.6f, y, 0.0f);
        colour(0, 40 * i, 255);
        glVertex3f(-0.2f, y - 0.3f, 0.0f);
    }
    glEnd();
    // Triangles.
    glBegin(GL_TRIANGLES);
    colour(255, 0, 255);
    glVertex3f(0.2f, -0.3f, 0.0f);
    colour(0, 128, 0);
    glVertex3f(1.6f, -2.8f, 0.0f);
    colour(255, 200, 100);
    glVertex3f(3.2f, -0.5f, 0.0f);
    glEnd();
    // Lit: flat shading lights a face with its provoking vertex's colour and normal.
    litState();
    glDisable(GL_CULL_FACE);
    eyeLight(GL_LIGHT0, 2.0f, 3.0f, 0.0f, 1.0f, 255, 255, 255);
    glBegin(GL_POLYGON);
    colour(255, 40, 40);
    glNormal3f(0.0f, 0.0f, 1.0f);
    glVertex3f(-3.5f, -3.0f, 0.0f);
    colour(40, 255, 40);
    glNormal3f(0.6f, 0.0f, 0.8f);
    glVertex3f(-1.0f, -3.4f, 0.0f);
    colour(40, 40, 255);
    glNormal3f(0.0f, 0.6f, 0.8f);
    glVertex3f(-0.5f, -2.3f, 0.0f);
    colour(255, 255, 40);
    glNormal3f(-0.6f, 0.0f, 0.8f);
    glVertex3f(-3.0f, -2.0f, 0.0f);
    glEnd();
    glBegin(GL_QUADS);
    colour(255, 40, 40);
    glNormal3f(0.0f, 0.0f, 1.0f);
    glVertex3f(0.5f, -3.5f, 0.0f);
    colour(40, 255, 40);
    glNormal3f(0.6f, 0.0f, 0.8f);
    glVertex3f(3.4f, -3.5f, 0.0f);
    colour(40, 40, 255);
    glNormal3f(0.0f, 0.6f, 0.8f);
    glVertex3f(3.4f, -3.0f, 0.0f);
    colour(255, 255, 40);
    glNormal3f(-0.6f, 0.0f, 0.8f);
    glVertex3f(0.5f, -3.0f, 0.0f);
    glEnd();
}

void flatShading() { shadedPrimitives(GL_FLAT); }

void smoothShading() { shadedPrimitives(GL_SMOOTH); }

// GL_EXP fog as the parts set it, over a lit floor going into the distance,
// lit spheres at both sides and unlit lines.
void fog() {
    begin(180, 180, 200);
    litState();
    glEnable(GL_FOG);
    glFogi(GL_FOG_MODE, GL_EXP);
    const GLfloat fogColour[4] = {0.7f, 0.7f, 0.8f, 1.0f};
    glFogfv(GL_FOG_COLOR, fogColour);
    glFogf(GL_FOG_DENSITY, 0.06f);
    eyeLight(GL_LIGHT0, 0.0f, 5.0f, 0.0f, 1.0f, 255, 255, 255);
    glPushMatrix();
    glRotatef(-80.0f, 1.0f, 0.0f, 0.0f);
    colour(60, 140, 60);
    grid(-6.0f, -40.0f, 6.0f, 6.0f, -2.0f, 24);
    glPopMatrix();
    for (int i = 0; i < 4; ++i) {
        glPushMatrix();
        glTranslatef(i % 2 == 0 ? -3.5f : 3.5f, 0.0f, -4.0f - 8.0f * static_cast<float>(i));
        colour(220, 60, 40);
        sphere(1.2f, 16, 10, false);
        glPopMatrix();
    }
    glDisable(GL_LIGHTING);
    glBegin(GL_LINES);
    for (int i = 0; i < 8; ++i) {
        colour(20, 20, 120);
        glVertex3f(-4.0f, 3.0f, -3.0f * static_cast<float>(i));
        glVertex3f(4.0f, 3.0f, -3.0f * static_cast<float>(i));
    }
    glEnd();
}

// GL_MODULATE: the texture times the vertex colours, unlit and lit, with
// nearest and linear filters set on one texture between its quads.
void textureModulate() {
    begin(40, 40, 40);
    glEnable(GL_TEXTURE_2D);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    makeTexture(GL_NEAREST);
    texturedQuad(-3.6f, 0.2f, -0.2f, 3.6f, 0.0f);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    texturedQuad(0.2f, 0.2f, 3.6f, 3.6f, 0.0f);
    litState();
    eyeLight(GL_LIGHT0, -2.0f, 2.0f, 1.0f, 1.0f, 255, 255, 255);
    texturedQuad(-3.6f, -3.6f, -0.2f, -0.2f, 0.0f);
    glBlendFunc(GL_ONE, GL_ONE);
    glEnable(GL_BLEND);
    texturedQuad(0.2f, -3.6f, 3.6f, -0.2f, 0.0f, 1.0f);
}

// GL_DECAL: the texture over the vertex colours as far as its alpha reaches.
void textureDecal() {
    begin(40, 40, 40);
    glEnable(GL_TEXTURE_2D);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_DECAL);
    makeTexture(GL_NEAREST);
    texturedQuad(-3.6f, -1.6f, -0.2f, 3.6f, 0.0f);
    makeTexture(GL_LINEAR);
    texturedQuad(0.2f, -1.6f, 3.6f, 3.6f, 0.0f);
    glShadeModel(GL_FLAT);
    texturedQuad(-3.6f, -3.6f, 3.6f, -2.0f, 0.0f, 2.0f);
}

// Sphere-mapped texture coordinates on a turned sphere and a bent strip.
void sphereMap() {
    begin(0, 0, 40);
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_CULL_FACE);
    glEnable(GL_TEXTURE_2D);
    makeTexture(GL_LINEAR);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    glTexGeni(GL_S, GL_TEXTURE_GEN_MODE, GL_SPHERE_MAP);
    glTexGeni(GL_T, GL_TEXTURE_GEN_MODE, GL_SPHERE_MAP);
    glEnable(GL_TEXTURE_GEN_S);
    glEnable(GL_TEXTURE_GEN_T);
    colour(255, 255, 255);
    glPushMatrix();
    glTranslatef(-1.0f, 0.5f, 0.0f);
    glRotatef(35.0f, 1.0f, 1.0f, 0.0f);
    sphere(2.2f, 32, 20, false);
    glPopMatrix();
    glPushMatrix();
    glTranslatef(2.2f, -2.0f, 0.0f);
    glRotatef(-50.0f, 0.0f, 1.0f, 0.0f);
    colour(255, 220, 160);
    grid(-1.5f, -1.5f, 1.5f, 1.5f, 0.0f, 8);
    glPopMatrix();
}

// The show's three blend functions over striped quads: adding, its own
// alpha (source alpha, source colour), darkening.
void blendFunctions() {
    begin(0, 0, 0);
    for (int i = 0; i < 4; ++i) {
        colour(60 * i + 40, 200 - 50 * i, 90 + 40 * i);
        grid(-3.8f + 1.9f * static_cast<float>(i), -3.8f, -2.0f + 1.9f * static_cast<float>(i), 3.8f, -0.5f, 1);
    }
    glEnable(GL_BLEND);
    const GLenum functions[3][2] = {{GL_ONE, GL_ONE}, {GL_SRC_ALPHA, GL_SRC_COLOR}, {GL_ZERO, GL_ONE_MINUS_SRC_COLOR}};
    for (int f = 0; f < 3; ++f) {
        glBlendFunc(functions[f][0], functions[f][1]);
        const float y = 1.4f - 2.4f * static_cast<float>(f);
        colour(100, 60, 200, 100);
        grid(-3.4f, y, -0.1f, y + 2.0f, 0.0f, 1);
        colour(200, 140, 30, 200);
        grid(0.1f, y, 3.4f, y + 2.0f, 0.0f, 1);
    }
}

// A square from (x, y) to (x + size, y + size) at z, counter-clockwise when `ccw`.
void square(float x, float y, float size, float z, bool ccw) {
    glBegin(GL_QUADS);
    glVertex3f(x, y, z);
    glVertex3f(ccw ? x + size : x, ccw ? y : y + size, z);
    glVertex3f(x + size, y + size, z);
    glVertex3f(ccw ? x : x + size, ccw ? y + size : y, z);
    glEnd();
}

// Depth test and culling as the materials switch them, and the state WebGL
// keeps itself (depth function and mask, colour mask, scissor) changed
// between primitives that are still batched.
void depthAndCull() {
    begin(20, 20, 20);
    glEnable(GL_DEPTH_TEST);
    colour(220, 40, 40);
    square(-3.6f, 1.0f, 2.4f, 0.0f, true);
    colour(40, 220, 40);
    square(-2.6f, 0.0f, 2.4f, -1.0f, true);  // partly behind the red one
    glDepthMask(GL_FALSE);
    colour(40, 40, 220);
    square(-3.0f, 2.0f, 1.2f, 0.5f, true);  // in front, but leaves the depth alone
    glDepthMask(GL_TRUE);
    colour(220, 220, 40);
    square(-3.2f, 2.4f, 1.6f, 0.2f, true);  // behind the blue, in front of the red
    glDepthFunc(GL_ALWAYS);
    colour(220, 40, 220);
    square(-1.2f, 0.6f, 1.0f, -2.0f, true);  // far back, drawn over everything
    glDepthFunc(GL_LESS);
    glColorMask(GL_TRUE, GL_FALSE, GL_TRUE, GL_TRUE);
    colour(200, 200, 200);
    square(0.4f, 1.2f, 1.4f, 0.0f, true);  // no green
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    glEnable(GL_SCISSOR_TEST);
    glScissor(100, 80, 20, 40);
    colour(40, 220, 220);
    square(1.0f, 0.4f, 3.0f, 0.0f, true);  // only inside the scissor box
    glDisable(GL_SCISSOR_TEST);
    // Culling: the show's winding is clockwise.
    glEnable(GL_CULL_FACE);
    glFrontFace(GL_CW);
    glCullFace(GL_BACK);
    colour(255, 128, 0);
    square(-3.6f, -1.8f, 1.5f, 0.0f, false);  // front: drawn
    square(-1.8f, -1.8f, 1.5f, 0.0f, true);   // back: culled
    glCullFace(GL_FRONT);
    colour(0, 128, 255);
    square(0.2f, -1.8f, 1.5f, 0.0f, false);  // front: culled
    square(2.0f, -1.8f, 1.5f, 0.0f, true);   // back: drawn
    glDisable(GL_DEPTH_TEST);
    glFrontFace(GL_CCW);
    glCullFace(GL_BACK);
    colour(128, 255, 128);
    square(-3.6f, -3.7f, 1.5f, -5.0f, true);  // no depth test: over everything
    glDisable(GL_CULL_FACE);
    square(-1.8f, -3.7f, 1.5f, 0.0f, false);
}

// The model-view and projection stacks: nested pushes and pops with turns,
// scales (one lit mesh scaled unevenly), moves, a multiplied matrix, a
// matrix read back and multiplied in again, a second projection pushed for
// one mesh.
void matrixStacks() {
    begin(10, 30, 10);
    litState();
    eyeLight(GL_LIGHT0, 2.0f, 3.0f, 2.0f, 1.0f, 255, 255, 255);
    glPushMatrix();
    glRotatef(30.0f, 0.0f, 0.0f, 1.0f);
    glTranslatef(-1.8f, 1.0f, 0.0f);
    glPushMatrix();
    glScalef(1.6f, 0.6f, 1.0f);
    glRotatef(40.0f, 1.0f, 0.0f, 0.0f);
    colour(230, 200, 90);
    sphere(1.2f, 24, 14, false);
    glPopMatrix();
    const GLfloat shear[16] = {1.0f, 0.0f, 0.0f, 0.0f, 0.4f, 1.0f, 0.0f, 0.0f,
                               0.0f, 0.0f, 1.0f, 0.0f, 2.6f, -0.5f, 0.0f, 1.0f};
    glMultMatrixf(shear);
    colour(90, 200, 230);
    sphere(0.8f, 16, 10, false);
    glPopMatrix();

    GLfloat kept[16];
    glPushMatrix();
    glTranslatef(1.5f, -2.0f, -1.0f);
    glRotatef(-25.0f, 0.0f, 1.0f, 0.0f);
    glGetFloatv(GL_MODELVIEW_MATRIX, kept);
    glPopMatrix();
    glPushMatrix();
    glLoadIdentity();
    glMultMatrixf(kept);
    colour(200, 90, 200);
    sphere(1.0f, 20, 12, false);
    glPopMatrix();

    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    gluPerspective(80.0, 1.0, 1.0, 50.0);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glTranslatef(-2.5f, -2.5f, 0.0f);
    colour(255, 90, 60);
    sphere(0.9f, 16, 10, false);
    glPopMatrix();
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    colour(160, 160, 160);
    grid(-0.5f, -0.5f, 0.5f, 0.5f, 0.0f, 2);
}

// A mesh flattened by a scale of 0 along z (the model-view has no inverse),
// lit as OpenGL lights it, and lit lines under the same matrix.
void singularModelView() {
    begin(30, 0, 30);
    litState();
    glDisable(GL_CULL_FACE);
    eyeLight(GL_LIGHT0, -2.0f, 2.0f, 3.0f, 1.0f, 255, 255, 255);
    glPushMatrix();
    glScalef(1.0f, 1.0f, 0.0f);
    colour(230, 180, 60);
    sphere(2.5f, 24, 14, true);
    glBegin(GL_LINES);
    for (int i = 0; i < 6; ++i) {
        const float y = -3.5f + 0.3f * static_cast<float>(i);
        glNormal3f(0.0f, 0.3f * static_cast<float>(i), 1.0f);
        glVertex3f(-3.5f, y, 1.0f);
        glVertex3f(3.5f, y + 0.5f, 1.0f);
    }
    glEnd();
    glPopMatrix();
}

}  // namespace

const FeatureScene SCENES[SCENE_COUNT] = {
    {"positional-lights", positionalLights},
    {"spot-lights", spotLights},
    {"global-ambient", globalAmbient},
    {"specular", specular},
    {"flat-shading", flatShading},
    {"smooth-shading", smoothShading},
    {"fog", fog},
    {"texture-modulate", textureModulate},
    {"texture-decal", textureDecal},
    {"sphere-map", sphereMap},
    {"blend-functions", blendFunctions},
    {"depth-and-cull", depthAndCull},
    {"matrix-stacks", matrixStacks},
    {"singular-model-view", singularModelView},
};

}  // namespace SCENES_NAMESPACE
