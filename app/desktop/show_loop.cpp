#include "app/desktop/show_loop.h"

#include "app/desktop/frame_target.h"

#include "app/sequencer.h"
#include "app/show_start.h"
#include "base/gl.h"

namespace {

// Back to the kept start state, keeping it again for the next pass. The
// matrices are not attribute state: both start as identity.
void startOver() {
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glPopClientAttrib();
    glPopAttrib();
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glPushClientAttrib(GL_CLIENT_ALL_ATTRIB_BITS);
    refitFrame();
    startShowAgain();
}

}  // namespace

void loopTheShow() {
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glPushClientAttrib(GL_CLIENT_ALL_ATTRIB_BITS);
    g_showStartsOver = startOver;
}
