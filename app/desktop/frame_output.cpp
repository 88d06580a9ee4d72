#include "app/frame_output.h"

#include "app/desktop/capture.h"
#include "audio/fixed_step_clock.h"
#include "audio/music.h"

#include <GL/freeglut.h>

void presentFrame() {
    // Read back before the swap: the back buffer holds exactly what was drawn.
    captureFrame(g_demoTime);
    glutSwapBuffers();
    if (fixedStepClockActive()) {
        advanceFixedStepClock();
    }
}
