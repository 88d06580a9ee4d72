#include "app/sequencer.h"

#include "app/part_log.h"
#include "app/player.h"
#include "parts/parts.h"

int32_t g_partCounter = 0;
std::atomic<bool> g_endRequested{false};
float g_partStart = 0.0f;
float g_partTime = 0.0f;

namespace {
const PartSteps SHOW_PARTS[PART_COUNT] = {
    {setupPart1, drawPart1},   {setupPart2, drawPart2},   {setupPart3, drawPart3},   {setupPart4, drawPart4},
    {setupPart5, drawPart5},   {setupPart6, drawPart6},   {setupPart7, drawPart7},   {setupPart8, drawPart8},
    {setupPart9, drawPart9},   {setupPart10, drawPart10}, {setupPart11, drawPart11}, {setupPart12, drawPart12},
    {setupPart13, drawPart13},
};
}  // namespace

const PartSteps* g_partSteps = SHOW_PARTS;
void (*g_endPath)() = runEndPath;
void (*g_showStartsOver)() = nullptr;

namespace {

// One draw step of part k; tells the part log whether it ended the part.
void drawPart(int32_t k) {
    g_partSteps[k - 1].draw();
    partFrameDrawn(k, g_partCounter >= 2 * k);
}

}  // namespace

void onFrame() {
    if (g_endRequested) {
        g_partCounter = PART_COUNTER_END;
    }
    // A jump asked for between frames is carried out first; paused, nothing is drawn.
    if (g_partCounter != PART_COUNTER_END && !playerBeforeFrames()) {
        return;
    }
    // Only the last part's own end, in this call, is an end the show may loop from.
    const bool playing = g_partCounter != PART_COUNTER_END;
    // Part 1's draw step sets itself up on the first call.
    if (g_partCounter < 2) {
        const bool firstCall = g_partCounter == 0;
        if (firstCall) {
            partSetupBegins(1);
        }
        g_partSteps[0].draw();
        if (firstCall) {
            partSetupEnds(1);
        }
        partFrameDrawn(1, g_partCounter >= 2);
    }
    // Each test reads the counter anew, so a part that ends is followed in the
    // same call by the next part's set-up and first frame.
    for (int32_t k = 2; k <= PART_COUNT; ++k) {
        if (g_partCounter == 2 * k - 2) {
            partSetupBegins(k);
            g_partSteps[k - 1].setup();
            partSetupEnds(k);
            g_partCounter += 1;
        }
        if (g_partCounter == 2 * k - 1) {
            drawPart(k);
        }
    }
    if (g_partCounter == PART_COUNTER_END) {
        if (playing && g_showStartsOver != nullptr) {
            g_showStartsOver();
        } else {
            g_endPath();
        }
    }
    playerAfterFrames();
}
