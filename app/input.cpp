#include "app/shell.h"

#include "app/sequencer.h"
#include "audio/music.h"

#include <cstdio>

namespace {
constexpr unsigned char KEY_ESCAPE = 27;
constexpr int MOUSE_PRESSED = 0;  // GLUT_DOWN: a button went down, not up
}

void onKey(unsigned char key, int, int) {
    if (key == KEY_ESCAPE) {
        g_partCounter = PART_COUNTER_END;
    } else if (key == 'r') {
        std::printf("%f\n", static_cast<double>(g_demoTime));
        std::fflush(stdout);
    }
}

void onMouse(int, int state, int, int) {
    if (state == MOUSE_PRESSED) {
        g_partCounter = PART_COUNTER_END;
    }
}

void onWindowClose() { g_partCounter = PART_COUNTER_END; }
