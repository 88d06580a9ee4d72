#include "app/shell.h"

#include "app/player.h"
#include "app/sequencer.h"
#include "audio/music.h"

#include <cstdio>

namespace {
constexpr unsigned char KEY_ESCAPE = 27;
constexpr int MOUSE_PRESSED = 0;  // GLUT_DOWN: a button went down, not up
}

void onKey(unsigned char key, int, int) {
    switch (key) {
    case KEY_ESCAPE: g_partCounter = PART_COUNTER_END; break;
    case 'r':
        std::printf("%f\n", static_cast<double>(g_demoTime));
        std::fflush(stdout);
        break;
    case ' ': playerTogglePause(); break;
    case 'm': playerToggleMute(); break;
    case '+':
    case '=': playerStepVolume(1); break;
    case '-': playerStepVolume(-1); break;
    case 'f': playerToggleFullscreen(); break;
    case '.': playerStepFrame(1); break;
    case ',': playerStepFrame(-1); break;
    default: break;
    }
}

void onSpecialKey(int key, int, int) {
    switch (key) {
    case SPECIAL_KEY_RIGHT:
    case SPECIAL_KEY_PAGE_DOWN: playerNextPart(); break;
    case SPECIAL_KEY_LEFT:
    case SPECIAL_KEY_PAGE_UP: playerPartBack(); break;
    case SPECIAL_KEY_HOME: playerFirstPart(); break;
    case SPECIAL_KEY_RIGHT + SPECIAL_KEY_SHIFT: playerSeekBy(PLAYER_SEEK_SHORT); break;
    case SPECIAL_KEY_LEFT + SPECIAL_KEY_SHIFT: playerSeekBy(-PLAYER_SEEK_SHORT); break;
    case SPECIAL_KEY_UP: playerSeekBy(PLAYER_SEEK_LONG); break;
    case SPECIAL_KEY_DOWN: playerSeekBy(-PLAYER_SEEK_LONG); break;
    default: break;
    }
}

void onMouse(int, int state, int, int) {
    if (state == MOUSE_PRESSED) {
        g_partCounter = PART_COUNTER_END;
    }
}

void onWindowClose() { g_partCounter = PART_COUNTER_END; }
