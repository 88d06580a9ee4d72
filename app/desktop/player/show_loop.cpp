#include "app/desktop/player/show_loop.h"

#include "app/desktop/player/gl_start_again.h"
#include "app/sequencer.h"
#include "app/show_start.h"

namespace {

void startOver() {
    returnToGlStartState();
    startShowAgain();
}

}  // namespace

void loopTheShow() {
    keepGlStartState();
    g_showStartsOver = startOver;
}
