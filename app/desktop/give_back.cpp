#include "app/desktop/give_back.h"

#include "app/desktop/capture/capture.h"
#include "app/desktop/display/display_mode.h"
#include "base/fatal.h"

#include <X11/Xlib.h>

#include <cstdlib>

namespace {

XIOErrorHandler g_previousIoHandler = nullptr;

void giveBack() {
    restoreDisplayMode();
    finishCapture();
}

int onConnectionLost(Display* display) {
    displayConnectionLost();
    if (g_previousIoHandler != nullptr) {
        return g_previousIoHandler(display);
    }
    std::exit(1);
}

}  // namespace

void installGiveBack() {
    setFatalGiveBack(giveBack);
    std::atexit(giveBack);
}

void watchDisplayConnection() { g_previousIoHandler = XSetIOErrorHandler(onConnectionLost); }
