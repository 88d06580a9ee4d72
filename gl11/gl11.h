// OpenGL 1.1 and GLU for the show's code in the browser: the GL names it calls
// mapped onto the subset over WebGL (gl11/gl11_api.h). Included through
// base/gl.h only; the layer's own files never include it.
#pragma once

#include "gl11/gl11_api.h"

#define glEnable gl11Enable
#define glDisable gl11Disable
#define glBlendFunc gl11BlendFunc
#define glCullFace gl11CullFace
#define glFrontFace gl11FrontFace
#define glShadeModel gl11ShadeModel
#define glLineWidth gl11LineWidth
#define glClearColor gl11ClearColor
#define glClear gl11Clear
#define glFlush gl11Flush
#define glViewport gl11Viewport
#define glReadPixels gl11ReadPixels
#define glPixelStorei gl11PixelStorei
#define glDepthFunc gl11DepthFunc
#define glDepthMask gl11DepthMask
#define glColorMask gl11ColorMask
#define glScissor gl11Scissor
#define glGetFloatv gl11GetFloatv

#define glMatrixMode gl11MatrixMode
#define glLoadIdentity gl11LoadIdentity
#define glPushMatrix gl11PushMatrix
#define glPopMatrix gl11PopMatrix
#define glMultMatrixf gl11MultMatrixf
#define glRotatef gl11Rotatef
#define glScalef gl11Scalef
#define glTranslatef gl11Translatef
#define gluPerspective gl11uPerspective
#define gluLookAt gl11uLookAt

#define glBegin gl11Begin
#define glEnd gl11End
#define glVertex3f gl11Vertex3f
#define glVertex3i gl11Vertex3i
#define glNormal3d gl11Normal3d
#define glNormal3f gl11Normal3f
#define glColor4f gl11Color4f
#define glTexCoord2f gl11TexCoord2f
#define glTexCoord2i gl11TexCoord2i

#define glLightfv gl11Lightfv
#define glLightf gl11Lightf
#define glMaterialfv gl11Materialfv
#define glColorMaterial gl11ColorMaterial
#define glFogi gl11Fogi
#define glFogf gl11Fogf
#define glFogfv gl11Fogfv

#define glGenTextures gl11GenTextures
#define glBindTexture gl11BindTexture
#define glTexImage2D gl11TexImage2D
#define glTexParameteri gl11TexParameteri
#define glTexEnvi gl11TexEnvi
#define glTexGeni gl11TexGeni
