#include "parts/part_frame.h"

#include "app/frame_output.h"
#include "app/sequencer.h"
#include "app/shell.h"
#include "audio/music.h"
#include "resources/library.h"

#include "base/gl.h"

const float PART_CLEAR_COLOUR[4] = {0.6f, 0.2f, 0.1f, 0.5f};
const float WHITE_FOG_COLOUR[4] = {1.0f, 1.0f, 1.0f, 1.0f};
bool g_framesUnseen = false;
bool g_framesPassed = false;

bool partBuildsOnEveryFrame(int32_t part) { return part == 1; }

void finishPartSetup() {
    g_library->close();
    updateMusicClock();
    g_partStart = g_partTime;
}

void clearPartFrame() {
    glClearColor(PART_CLEAR_COLOUR[0], PART_CLEAR_COLOUR[1], PART_CLEAR_COLOUR[2], PART_CLEAR_COLOUR[3]);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}

void updatePartTime() {
    updateMusicClock();
    g_partTime = g_demoTime - g_partStart;
}

void enablePartFog(const float colour[4], float density) {
    glEnable(GL_FOG);
    glFogi(GL_FOG_MODE, GL_EXP);
    glFogfv(GL_FOG_COLOR, colour);
    glFogf(GL_FOG_DENSITY, density);
}

void endPartAfter(float endTime) {
    if (g_demoTime > endTime) {
        g_partCounter += 1;
    }
}

void resetModelView() {
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
}

void finishPartFrame() {
    if (g_framesUnseen) {
        return;
    }
    g_frameCount += 1;
    presentFrame();
}
