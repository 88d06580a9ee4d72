// The OpenGL 1.1 subset over WebGL 2: its types, the fixed-function
// constants WebGL lacks, and its entry points under their own link names
// (gl11Begin for glBegin...), since the browser's WebGL library already owns
// the GL names. gl11/gl11.h maps the GL names onto these for the show's code;
// the layer's own files include only this header and call WebGL directly.
//
// What the subset does is OpenGL 1.1's fixed-function pipeline where the show
// uses it: immediate mode (GL_POLYGON, GL_QUADS, GL_LINES, GL_TRIANGLES), the
// model-view and projection stacks, per-vertex lighting with colour material,
// flat and smooth shading, GL_EXP/GL_EXP2/GL_LINEAR fog, GL_MODULATE and
// GL_DECAL texturing, sphere-map texture generation; and the state WebGL
// keeps itself (viewport, depth function and mask, colour mask, scissor),
// passed on in order with the batched primitives. One thread, one context.
#pragma once

#include <GLES3/gl3.h>

typedef double GLdouble;
typedef double GLclampd;

// Primitives WebGL does not draw itself.
#define GL_QUADS 0x0007
#define GL_POLYGON 0x0009

// Matrices.
#define GL_MODELVIEW 0x1700
#define GL_PROJECTION 0x1701
#define GL_MODELVIEW_MATRIX 0x0BA6
#define GL_PROJECTION_MATRIX 0x0BA7

// The current colour, as glGetFloatv answers it.
#define GL_CURRENT_COLOR 0x0B00

// Capabilities of the fixed-function pipeline.
#define GL_LIGHTING 0x0B50
#define GL_COLOR_MATERIAL 0x0B57
#define GL_FOG 0x0B60
#define GL_ALPHA_TEST 0x0BC0
#define GL_NORMALIZE 0x0BA1
#define GL_TEXTURE_GEN_S 0x0C60
#define GL_TEXTURE_GEN_T 0x0C61
#define GL_LIGHT0 0x4000
#define GL_LIGHT1 0x4001
#define GL_LIGHT2 0x4002
#define GL_LIGHT3 0x4003
#define GL_LIGHT4 0x4004
#define GL_LIGHT5 0x4005
#define GL_LIGHT6 0x4006
#define GL_LIGHT7 0x4007

// Shading.
#define GL_FLAT 0x1D00
#define GL_SMOOTH 0x1D01

// Lights and materials.
#define GL_AMBIENT 0x1200
#define GL_DIFFUSE 0x1201
#define GL_SPECULAR 0x1202
#define GL_POSITION 0x1203
#define GL_SPOT_DIRECTION 0x1204
#define GL_SPOT_EXPONENT 0x1205
#define GL_SPOT_CUTOFF 0x1206
#define GL_CONSTANT_ATTENUATION 0x1207
#define GL_LINEAR_ATTENUATION 0x1208
#define GL_QUADRATIC_ATTENUATION 0x1209
#define GL_EMISSION 0x1600
#define GL_SHININESS 0x1601
#define GL_AMBIENT_AND_DIFFUSE 0x1602
#define GL_LIGHT_MODEL_AMBIENT 0x0B53

// Fog.
#define GL_FOG_DENSITY 0x0B62
#define GL_FOG_START 0x0B63
#define GL_FOG_END 0x0B64
#define GL_FOG_MODE 0x0B65
#define GL_FOG_COLOR 0x0B66
#define GL_EXP 0x0800
#define GL_EXP2 0x0801

// Texture environment and coordinate generation.
#define GL_TEXTURE_ENV 0x2300
#define GL_TEXTURE_ENV_MODE 0x2200
#define GL_MODULATE 0x2100
#define GL_DECAL 0x2101
#define GL_S 0x2000
#define GL_T 0x2001
#define GL_TEXTURE_GEN_MODE 0x2500
#define GL_SPHERE_MAP 0x2402

#ifdef __cplusplus
extern "C" {
#endif

// State.
void gl11Enable(GLenum capability);
void gl11Disable(GLenum capability);
void gl11BlendFunc(GLenum source, GLenum destination);
void gl11CullFace(GLenum face);
void gl11FrontFace(GLenum winding);
void gl11ShadeModel(GLenum model);
void gl11LineWidth(GLfloat width);
void gl11ClearColor(GLfloat red, GLfloat green, GLfloat blue, GLfloat alpha);
void gl11Clear(GLbitfield mask);
void gl11Flush(void);
void gl11Viewport(GLint x, GLint y, GLsizei width, GLsizei height);
void gl11ReadPixels(GLint x, GLint y, GLsizei width, GLsizei height, GLenum format, GLenum type, void* pixels);
void gl11PixelStorei(GLenum name, GLint value);
void gl11DepthFunc(GLenum function);
void gl11DepthMask(GLboolean write);
void gl11ColorMask(GLboolean red, GLboolean green, GLboolean blue, GLboolean alpha);
void gl11Scissor(GLint x, GLint y, GLsizei width, GLsizei height);
void gl11GetFloatv(GLenum name, GLfloat* values);

// Matrices.
void gl11MatrixMode(GLenum mode);
void gl11LoadIdentity(void);
void gl11PushMatrix(void);
void gl11PopMatrix(void);
void gl11MultMatrixf(const GLfloat* matrix);
void gl11Rotatef(GLfloat angle, GLfloat x, GLfloat y, GLfloat z);
void gl11Scalef(GLfloat x, GLfloat y, GLfloat z);
void gl11Translatef(GLfloat x, GLfloat y, GLfloat z);
void gl11uPerspective(GLdouble fovy, GLdouble aspect, GLdouble zNear, GLdouble zFar);
void gl11uLookAt(GLdouble eyeX, GLdouble eyeY, GLdouble eyeZ, GLdouble centreX, GLdouble centreY,
                 GLdouble centreZ, GLdouble upX, GLdouble upY, GLdouble upZ);

// Immediate mode.
void gl11Begin(GLenum mode);
void gl11End(void);
void gl11Vertex3f(GLfloat x, GLfloat y, GLfloat z);
void gl11Vertex3i(GLint x, GLint y, GLint z);
void gl11Normal3d(GLdouble x, GLdouble y, GLdouble z);
void gl11Normal3f(GLfloat x, GLfloat y, GLfloat z);
void gl11Color4f(GLfloat red, GLfloat green, GLfloat blue, GLfloat alpha);
void gl11TexCoord2f(GLfloat s, GLfloat t);
void gl11TexCoord2i(GLint s, GLint t);

// Lighting and fog.
void gl11Lightfv(GLenum light, GLenum name, const GLfloat* values);
void gl11Lightf(GLenum light, GLenum name, GLfloat value);
void gl11Materialfv(GLenum face, GLenum name, const GLfloat* values);
void gl11ColorMaterial(GLenum face, GLenum mode);
void gl11Fogi(GLenum name, GLint value);
void gl11Fogf(GLenum name, GLfloat value);
void gl11Fogfv(GLenum name, const GLfloat* values);

// Textures.
void gl11GenTextures(GLsizei count, GLuint* names);
void gl11BindTexture(GLenum target, GLuint name);
void gl11TexImage2D(GLenum target, GLint level, GLint internalFormat, GLsizei width, GLsizei height, GLint border,
                    GLenum format, GLenum type, const void* pixels);
void gl11TexParameteri(GLenum target, GLenum name, GLint value);
void gl11TexEnvi(GLenum target, GLenum name, GLint value);
void gl11TexGeni(GLenum coordinate, GLenum name, GLint value);

#ifdef __cplusplus
}
#endif
