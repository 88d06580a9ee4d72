#include "app/desktop/display_mode.h"

#include <X11/Xlib.h>
#include <X11/extensions/Xrandr.h>

namespace {

struct SavedMode {
    bool switched = false;
    SizeID size = 0;
    Rotation rotation = 0;
};
SavedMode g_savedMode;

// Sets screen size `size` of the default screen; true on success.
bool applySize(Display* display, SizeID size, Rotation rotation) {
    XRRScreenConfiguration* config = XRRGetScreenInfo(display, DefaultRootWindow(display));
    if (config == nullptr) {
        return false;
    }
    const Status status =
        XRRSetScreenConfig(display, config, DefaultRootWindow(display), size, rotation, CurrentTime);
    XRRFreeScreenConfigInfo(config);
    XSync(display, False);
    return status == RRSetConfigSuccess;
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
    XRRScreenConfiguration* config =
        XRRQueryExtension(display, &eventBase, &errorBase) ? XRRGetScreenInfo(display, DefaultRootWindow(display)) : nullptr;
    if (config != nullptr) {
        Rotation rotation = 0;
        const SizeID current = XRRConfigCurrentConfiguration(config, &rotation);
        int sizeCount = 0;
        // The sizes belong to the configuration: read them before it is freed.
        const XRRScreenSize* sizes = XRRConfigSizes(config, &sizeCount);
        int wanted = -1;
        for (int i = 0; i < sizeCount; ++i) {
            if (sizes[i].width == width && sizes[i].height == height) {
                wanted = i;
                break;
            }
        }
        XRRFreeScreenConfigInfo(config);
        // Already in that mode: nothing to switch, nothing to restore.
        if (wanted >= 0 && wanted != current && applySize(display, static_cast<SizeID>(wanted), rotation)) {
            g_savedMode = {true, current, rotation};
            result = 0;
        }
    }
    XCloseDisplay(display);
    return result;
}

void restoreDisplayMode() {
    if (!g_savedMode.switched) {
        return;
    }
    if (Display* display = XOpenDisplay(nullptr)) {
        applySize(display, g_savedMode.size, g_savedMode.rotation);
        XCloseDisplay(display);
    }
    g_savedMode.switched = false;
}
