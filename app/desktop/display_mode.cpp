#include "app/desktop/display_mode.h"

#include "app/desktop/display_guard.h"

#include <X11/Xlib.h>
#include <X11/extensions/Xrandr.h>

namespace {

struct SavedMode {
    bool switched = false;
    ScreenMode original;
};
SavedMode g_savedMode;

// The current size and rotation of the default screen; false without RandR.
bool currentMode(Display* display, ScreenMode* mode) {
    XRRScreenConfiguration* config = XRRGetScreenInfo(display, DefaultRootWindow(display));
    if (config == nullptr) {
        return false;
    }
    Rotation rotation = 0;
    mode->size = XRRConfigCurrentConfiguration(config, &rotation);
    mode->rotation = rotation;
    XRRFreeScreenConfigInfo(config);
    return true;
}

// Sets screen size `mode.size` of the default screen; true on success.
bool applySize(Display* display, ScreenMode mode) {
    XRRScreenConfiguration* config = XRRGetScreenInfo(display, DefaultRootWindow(display));
    if (config == nullptr) {
        return false;
    }
    const Status status = XRRSetScreenConfig(display, config, DefaultRootWindow(display), static_cast<SizeID>(mode.size),
                                             static_cast<Rotation>(mode.rotation), CurrentTime);
    XRRFreeScreenConfigInfo(config);
    XSync(display, False);
    return status == RRSetConfigSuccess;
}

// The index of the width x height size among the screen's sizes, or -1.
int findSize(Display* display, int width, int height) {
    XRRScreenConfiguration* config = XRRGetScreenInfo(display, DefaultRootWindow(display));
    if (config == nullptr) {
        return -1;
    }
    int sizeCount = 0;
    const XRRScreenSize* sizes = XRRConfigSizes(config, &sizeCount);
    int found = -1;
    for (int i = 0; i < sizeCount && found < 0; ++i) {
        if (sizes[i].width == width && sizes[i].height == height) {
            found = i;
        }
    }
    XRRFreeScreenConfigInfo(config);
    return found;
}

}  // namespace

int setDisplayMode(int width, int height, int) {
    Display* display = XOpenDisplay(nullptr);
    if (display == nullptr) {
        return -1;
    }
    int eventBase = 0;
    int errorBase = 0;
    int result = -1;
    ScreenMode current;
    if (XRRQueryExtension(display, &eventBase, &errorBase) && currentMode(display, &current)) {
        const int wanted = findSize(display, width, height);
        // Already in that mode: nothing to switch, nothing to restore. The
        // guard holds the original mode before the screen changes.
        if (wanted >= 0 && wanted != current.size && startDisplayGuard(current) &&
            applySize(display, ScreenMode{wanted, current.rotation})) {
            g_savedMode = {true, current};
            result = 0;
        } else {
            displayGuardRelease();
        }
    }
    XCloseDisplay(display);
    return result;
}

void restoreDisplayMode() {
    if (!g_savedMode.switched) {
        return;
    }
    g_savedMode.switched = false;
    if (applyScreenMode(g_savedMode.original)) {
        displayGuardRelease();
    }
}

bool applyScreenMode(ScreenMode mode) {
    Display* display = XOpenDisplay(nullptr);
    if (display == nullptr) {
        return false;
    }
    ScreenMode current;
    bool done = currentMode(display, &current);
    if (done && (current.size != mode.size || current.rotation != mode.rotation)) {
        done = applySize(display, mode);
    }
    XCloseDisplay(display);
    return done;
}
