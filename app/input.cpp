#include "app/shell.h"

#include "app/sequencer.h"
#include "audio/music.h"

#include <GL/freeglut.h>

#include <cstdio>

namespace {
constexpr unsigned char KEY_ESCAPE = 27;
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
    if (state == GLUT_DOWN) {
        g_partCounter = PART_COUNTER_END;
    }
}

void onWindowClose() { g_partCounter = PART_COUNTER_END; }
