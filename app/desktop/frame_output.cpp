#include "app/frame_output.h"

#include "app/desktop/capture/capture.h"
#include "app/desktop/capture/frame_target.h"
#include "app/desktop/player/held_picture.h"
#include "app/player.h"
#include "audio/fixed_step_clock.h"
#include "audio/music.h"

#include <GL/freeglut.h>

void presentFrame() {
    // Captured frames are drawn offscreen and read back before the next one;
    // the window shows them now and then.
    if (captureActive()) {
        captureFrame(g_demoTime);
    } else {
        if (playerHoldsNextPicture()) {
            holdPicture();
        }
        glutSwapBuffers();
    }
    if (fixedStepClockActive()) {
        advanceFixedStepClock();
    }
    prepareFrame();
}
