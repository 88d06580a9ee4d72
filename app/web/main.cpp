// kaskade in the browser. The page (index.html, kaskade_page.js) fetches the
// archive "3d" into the file system and decodes the soundtrack with Web Audio
// as it arrives; it calls kaskade_prepare once the archive is in, kaskade_start
// on the start gesture, and from then on the browser's animation frames run
// the sequencer until its end path. Keys and mouse
// presses come from the page as they come from GLUT on the desktop.
#include "app/sequencer.h"
#include "app/shell.h"
#include "app/show_seek.h"
#include "app/show_start.h"
#include "app/soundtrack_check.h"
#include "app/web/context_loss.h"
#include "app/web/page_bridge.h"
#include "app/web/web_player.h"
#include "audio/clock.h"
#include "audio/fixed_step_clock.h"
#include "audio/music.h"
#include "base/fatal.h"
#include "base/gl.h"
#include "gl11/gl11_platform.h"

#include <emscripten/emscripten.h>
#include <emscripten/html5.h>

#include <algorithm>
#include <cmath>
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

// clang-format off
// The size the page wants the next frame drawn at (kaskade_resolution.js),
// packed as width * 65536 + height.
EM_JS(int, pageDrawingSize, (), { return Module.kaskadePage.drawingSize(); });
// clang-format on

void fitViewport(int width, int height) {
    if (width != g_viewportWidth || height != g_viewportHeight) {
        glViewport(0, 0, width, height);
        glLineWidth(static_cast<float>(height) / 480.0f);
        g_viewportWidth = width;
        g_viewportHeight = height;
    }
}

// The drawing buffer takes the size the page asks for (always 4:3), set
// right before the frame is drawn so that no cleared canvas is ever shown.
// Lines are as thick, relative to the picture, as at 640 x 480 where the
// browser draws wide lines at all.
void followCanvasSize() {
    const int packed = pageDrawingSize();
    const int width = packed >> 16;
    const int height = packed & 0xFFFF;
    int shownWidth = 0;
    int shownHeight = 0;
    emscripten_get_canvas_element_size("#canvas", &shownWidth, &shownHeight);
    if (width > 0 && height > 0 && (width != shownWidth || height != shownHeight)) {
        emscripten_set_canvas_element_size("#canvas", width, height);
        shownWidth = width;
        shownHeight = height;
    }
    fitViewport(shownWidth, shownHeight);
}

// After the GL state went back to its start (a jump): viewport and line width again.
void refitCanvas() {
    int width = 0;
    int height = 0;
    emscripten_get_canvas_element_size("#canvas", &width, &height);
    g_viewportWidth = 0;
    g_viewportHeight = 0;
    fitViewport(width, height);
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

// The level the rehearsal's frames see: the soundtrack's before it plays.
uint32_t silentLevel(AudioHandle) { return 0; }

}  // namespace

// Everything the show needs before it starts that takes time and no sound:
// the WebGL context, the GL start state and, on the live clock, every part
// met once unseen, so that the start on the viewer's gesture has only the
// sound to wait for. `fps`: 1..240 for the fixed-step clock, 0 for the live
// show. Returns 0, or 1 when the browser gives no WebGL 2 context. A damaged
// archive ends the show here with its report, before anything starts.
extern "C" EMSCRIPTEN_KEEPALIVE int kaskade_prepare(int fps) {
    setFatalGiveBack(giveBackOnFatal);
    if (!createContext()) {
        return 1;
    }
    initGlState();
    installWebPlayer(fps < 0 || fps > MAX_FIXED_FPS ? 0 : fps, refitCanvas);
    // The live show must not stall at a part's first frame or a jump while the
    // browser compiles; the fixed-step clock draws each frame at its tick
    // whatever it costs, and meets a damaged archive where the desktop does.
    if (fps == 0) {
        const LevelSource levels = g_levelSource;
        g_levelSource = silentLevel;
        rehearseBeforeTheShow();
        g_levelSource = levels;
    }
    return 0;
}

// Starts the prepared show at `part` (1..13), or `seconds` into the show when
// that is 0 or more (a link to a moment). `fps` as for kaskade_prepare:
// the fixed-step clock is silent, the soundtrack decoded for its levels;
// `soundtrackDecoded` says whether the page handed over the soundtrack (live:
// and that its AudioContext runs).
extern "C" EMSCRIPTEN_KEEPALIVE void kaskade_start(int fps, int soundtrackDecoded, int part, double seconds) {
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
    if (seconds >= 0.0) {
        startShowAtMillis(static_cast<uint32_t>(std::llround(std::min(seconds, 1e6) * 1000.0)), fps);
    } else {
        startShowAt(part >= 1 && part <= PART_COUNT ? part : 1, fps);
    }
    emscripten_set_main_loop(animationFrame, 0, false);
}

extern "C" EMSCRIPTEN_KEEPALIVE void kaskade_key(int key) { onKey(static_cast<unsigned char>(key), 0, 0); }

extern "C" EMSCRIPTEN_KEEPALIVE void kaskade_mouse_down(int button) { onMouse(button, 0, 0, 0); }

extern "C" EMSCRIPTEN_KEEPALIVE void kaskade_grab_frame(int index) { grabFrameAt(index); }

extern "C" EMSCRIPTEN_KEEPALIVE void kaskade_pause_at_frame(int index) { pauseAtFrame(index); }

extern "C" EMSCRIPTEN_KEEPALIVE void kaskade_resume() { emscripten_resume_main_loop(); }

// Nothing runs before the page calls kaskade_prepare; the runtime stays.
int main() { return 0; }
