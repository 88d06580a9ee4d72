#include "app/desktop/player/desktop_player.h"

#include "app/desktop/player/gl_start_again.h"
#include "app/desktop/player/held_picture.h"
#include "app/desktop/options.h"
#include "app/desktop/display/window_placement.h"
#include "app/player.h"
#include "app/sequencer.h"
#include "app/shell.h"
#include "app/show_start.h"

#include <GL/freeglut.h>
#include <GL/glext.h>

#include <chrono>
#include <thread>

namespace {

bool g_windowFullscreen = false;  // fullscreen without a display-mode switch (--desktop, f)
bool g_exposed = false;           // the window asked to be drawn again (uncovered, mapped)

// GLUT's display callback: the sequencer as ever, and a note that the window
// needs its picture again, which a paused show gives it.
void onDisplay() {
    g_exposed = true;
    onFrame();
}

// Paused, the main loop only keeps the picture on view; it need not spin.
void whilePaused() {
    if (g_exposed || heldPictureRefitted()) {
        showHeldPicture();
    }
    g_exposed = false;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
}

// The frames a rebuild draws unseen need no pixels: the GL goes through them
// without rasterizing (clears included); every later frame clears what it shows.
void rasterizeUnseenFrames(bool begin) {
    if (begin) {
        glEnable(GL_RASTERIZER_DISCARD);
    } else {
        glDisable(GL_RASTERIZER_DISCARD);
    }
}

// Shift with Left or Right seeks instead of going to another part.
void onDesktopSpecialKey(int key, int x, int y) {
    const bool arrow = key == SPECIAL_KEY_LEFT || key == SPECIAL_KEY_RIGHT;
    onSpecialKey(arrow && (glutGetModifiers() & GLUT_ACTIVE_SHIFT) != 0 ? key + SPECIAL_KEY_SHIFT : key, x, y);
}

// A display switched to 640 x 480 for the show stays so: f is for a window.
void toggleFullscreen() {
    if (g_fullscreen) {
        return;
    }
    g_windowFullscreen = !g_windowFullscreen;
    setWindowFullscreen(g_windowFullscreen);
    glutSetCursor(g_windowFullscreen ? GLUT_CURSOR_NONE : GLUT_CURSOR_INHERIT);
}

}  // namespace

void installDesktopPlayer(const ShowOptions& options) {
    g_unseenFrames = rasterizeUnseenFrames;
    g_playerEnabled = options.capturePath.empty();
    if (!g_playerEnabled) {
        return;
    }
    g_windowFullscreen = options.desktop;
    g_playerFixedStepFps = options.fps;
    keepGlStartState();
    g_playerPlatform.returnToStartState = returnToGlStartState;
    g_playerPlatform.whilePaused = whilePaused;
    g_playerPlatform.toggleFullscreen = toggleFullscreen;
    glutSpecialFunc(onDesktopSpecialKey);
    glutDisplayFunc(onDisplay);
}
