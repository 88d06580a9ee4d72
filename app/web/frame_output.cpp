// presentFrame in the browser: the frame is complete once the layer has drawn
// what it batched; the browser shows the canvas when the animation frame
// returns (a second frame drawn in the same call replaces it).
#include "app/frame_output.h"

#include "app/web/page_bridge.h"
#include "audio/fixed_step_clock.h"
#include "gl11/gl11_platform.h"

void presentFrame() {
    gl11EndFrame();
    frameShown();
    if (fixedStepClockActive()) {
        advanceFixedStepClock();
    }
}
