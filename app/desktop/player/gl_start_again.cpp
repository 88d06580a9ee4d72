#include "app/desktop/player/gl_start_again.h"

#include "app/desktop/capture/frame_target.h"
#include "base/gl.h"

namespace {
bool g_kept = false;
}

void keepGlStartState() {
    if (g_kept) {
        return;
    }
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glPushClientAttrib(GL_CLIENT_ALL_ATTRIB_BITS);
    g_kept = true;
}

void returnToGlStartState() {
    // The matrices are not attribute state: both start as identity.
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glPopClientAttrib();
    glPopAttrib();
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glPushClientAttrib(GL_CLIENT_ALL_ATTRIB_BITS);
    refitFrame();
}
