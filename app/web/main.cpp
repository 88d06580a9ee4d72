// kaskade in the browser. The page (index.html, kaskade_page.js) fetches the
// archive "3d" into the file system and decodes the soundtrack with Web Audio;
// on the start gesture it calls kaskade_start, and from then on the browser's
// animation frames run the sequencer until its end path. Keys and mouse
// presses come from the page as they come from GLUT on the desktop.
#include "app/sequencer.h"
#include "app/shell.h"
#include "app/show_start.h"
#include "app/soundtrack_check.h"
#include "app/web/context_loss.h"
#include "app/web/page_bridge.h"
#include "app/web/web_player.h"
#include "audio/fixed_step_clock.h"
#include "audio/music.h"
#include "base/fatal.h"
#include "base/gl.h"
#include "gl11/gl11_platform.h"

#include <emscripten/emscripten.h>
#include <emscripten/html5.h>

#include <cstdio>
#include <string>

int32_t g_fullscreen = 0;  // the page never switches the display; the Fullscreen API scales the canvas

namespace {

const char* const SOUNDTRACK_FILE = "harbour.mp3";
constexpr int MAX_FIXED_FPS = 240;

int g_viewportWidth = 0;
int g_viewportHeight = 0;

bool createContext() {
    EmscriptenWebGLContextAttributes attributes;
    emscripten_webgl_init_context_attributes(&attributes);
    attributes.alpha = false;  // the window has no alpha: the page must not show through
    attributes.depth = true;
    attributes.stencil = false;
    attributes.antialias = false;  // as the desktop's visual: no multisampling
    attributes.majorVersion = 2;
    attributes.minorVersion = 0;
    const EMSCRIPTEN_WEBGL_CONTEXT_HANDLE context = emscripten_webgl_create_context("#canvas", &attributes);
    if (context <= 0 || emscripten_webgl_make_context_current(context) != EMSCRIPTEN_RESULT_SUCCESS) {
        return false;
    }
    gl11Init();
    followContextLoss();
    return true;
}

// The drawing buffer follows the canvas, which the page resizes (always 4:3)
// for fullscreen. Lines are as thick, relative to the picture, as at 640 x 480
// where the browser draws wide lines at all.
void followCanvasSize() {
    int width = 0;
    int height = 0;
    emscripten_get_canvas_element_size("#canvas", &width, &height);
    if (width != g_viewportWidth || height != g_viewportHeight) {
        glViewport(0, 0, width, height);
        glLineWidth(static_cast<float>(height) / 480.0f);
        g_viewportWidth = width;
        g_viewportHeight = height;
    }
}

// After the GL state went back to its start (a jump): viewport and line width again.
void refitCanvas() {
    g_viewportWidth = 0;
    g_viewportHeight = 0;
    followCanvasSize();
}

void animationFrame() {
    followCanvasSize();
    onFrame();
    if (takePauseRequest()) {
        emscripten_pause_main_loop();
    }
}

// A fatal report ends the show: nothing more is drawn or heard.
void giveBackOnFatal() {
    emscripten_cancel_main_loop();
    closeMusic();
    pageShowFailed();
}

}  // namespace

// Starts the show at `part` (1..13). `fps` 1..240 runs the fixed-step clock
// (silent, the soundtrack decoded for its levels), 0 the live show on the
// AudioContext's clock; `soundtrackDecoded` says whether the page handed over
// the decoded soundtrack. Returns 0, or 1 when the browser gives no WebGL 2 context.
extern "C" EMSCRIPTEN_KEEPALIVE int kaskade_start(int fps, int soundtrackDecoded, int part) {
    setFatalGiveBack(giveBackOnFatal);
    if (fps < 0 || fps > MAX_FIXED_FPS) {
        fps = 0;
    }
    if (fps != 0) {
        std::string error;
        startFixedStepClock(fps, soundtrackDecoded ? SOUNDTRACK_FILE : "", &error);
    }
    g_soundEnabled = soundtrackDecoded != 0 && fps == 0;
    openMusic(SOUNDTRACK_FILE);
    const std::string warning =
        shortSoundtrackWarning(SOUNDTRACK_FILE, fps != 0 ? fixedStepSongMillis() : soundtrackMillis());
    if (!warning.empty()) {
        std::printf("%s\n", warning.c_str());
        pageSay(warning.c_str());
    }
    if (!createContext()) {
        return 1;
    }
    initGlState();
    installWebPlayer(fps, refitCanvas);
    // The live show must not stall at a part's first frame or a jump while the
    // browser compiles; the fixed-step clock draws each frame at its tick
    // whatever it costs, and meets a damaged archive where the desktop does.
    if (fps == 0) {
        rehearseBeforeTheShow();
    }
    startShowAt(part >= 1 && part <= PART_COUNT ? part : 1, fps);
    emscripten_set_main_loop(animationFrame, 0, false);
    return 0;
}

extern "C" EMSCRIPTEN_KEEPALIVE void kaskade_key(int key) { onKey(static_cast<unsigned char>(key), 0, 0); }

extern "C" EMSCRIPTEN_KEEPALIVE void kaskade_mouse_down(int button) { onMouse(button, 0, 0, 0); }

extern "C" EMSCRIPTEN_KEEPALIVE void kaskade_grab_frame(int index) { grabFrameAt(index); }

extern "C" EMSCRIPTEN_KEEPALIVE void kaskade_pause_at_frame(int index) { pauseAtFrame(index); }

extern "C" EMSCRIPTEN_KEEPALIVE void kaskade_resume() { emscripten_resume_main_loop(); }

// Nothing runs before the page calls kaskade_start; the runtime stays.
int main() { return 0; }
