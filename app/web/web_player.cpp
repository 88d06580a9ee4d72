#include "app/web/web_player.h"

#include "app/gl_start_state.h"
#include "app/player.h"
#include "app/sequencer.h"
#include "app/shell.h"
#include "app/show_start.h"
#include "audio/music.h"
#include "gl11/gl11_platform.h"

#include <emscripten/emscripten.h>

namespace {

void (*g_refit)() = nullptr;

// clang-format off
EM_JS(void, pageToggleFullscreen, (), { Module.kaskadePage.toggleFullscreen(); });
// clang-format on

// The frames a rebuild draws unseen need no pixels.
void skipUnseenFrames(bool begin) { gl11SkipDrawing(begin); }

void returnToStartState() {
    gl11ResetState();
    setStartGlState();
    g_refit();
}

}  // namespace

void rehearseBeforeTheShow() {
    rehearseShow();
    returnToStartState();
}

void installWebPlayer(int fps, void (*refit)()) {
    g_refit = refit;
    g_unseenFrames = skipUnseenFrames;
    g_playerFixedStepFps = fps;
    g_playerPlatform.returnToStartState = returnToStartState;
    g_playerPlatform.toggleFullscreen = pageToggleFullscreen;
}

// Right, Left, Up, Down, Page Up, Page Down and Home by GLUT's codes, Left and
// Right with SPECIAL_KEY_SHIFT added when Shift is held (shell.h).
extern "C" EMSCRIPTEN_KEEPALIVE void kaskade_special_key(int key) { onSpecialKey(key, 0, 0); }

// Seeking (app/player.h): to `seconds` of demo time, by `seconds` from the
// time on view, or (paused) `frames` frames of the clock's grid forward or
// back. Carried out before the next frame; kept within the show.
extern "C" EMSCRIPTEN_KEEPALIVE void kaskade_seek_to(double seconds) { playerSeekTo(seconds); }
extern "C" EMSCRIPTEN_KEEPALIVE void kaskade_seek_by(double seconds) { playerSeekBy(seconds); }
extern "C" EMSCRIPTEN_KEEPALIVE void kaskade_step_frame(int frames) { playerStepFrame(frames); }

// The control bar's buttons.
extern "C" EMSCRIPTEN_KEEPALIVE void kaskade_toggle_pause() { playerTogglePause(); }
extern "C" EMSCRIPTEN_KEEPALIVE void kaskade_jump_to(int part) { playerJumpTo(part); }
extern "C" EMSCRIPTEN_KEEPALIVE void kaskade_toggle_mute() { playerToggleMute(); }
extern "C" EMSCRIPTEN_KEEPALIVE void kaskade_set_volume(int percent) { playerSetVolume(percent); }

// What the bar and the address show: 0 paused (0 or 1), 1 muted, 2 the volume
// in percent, 3 the part being played (1..13), 4 the demo time (tenths of a
// second), 5 the time on view in seconds (where a pending seek or jump lands,
// else the frame last drawn).
extern "C" EMSCRIPTEN_KEEPALIVE double kaskade_player_state(int field) {
    switch (field) {
    case 0: return playerPaused() ? 1 : 0;
    case 1: return playerMuted() ? 1 : 0;
    case 2: return playerVolume();
    case 3: return playerPart();
    case 5: return playerSeconds();
    default: return static_cast<double>(g_demoTime);
    }
}
