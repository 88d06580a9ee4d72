#include "app/desktop/display/display_mode.h"

#include "app/desktop/display/display_guard.h"
#include "app/desktop/display/taken_crtc.h"
#include "app/part_log.h"

#include <GL/glx.h>

#include <cmath>
#include <cstdio>
#include <string>

namespace {

struct Switched {
    bool asked = false;        // a mode was set: the saved layout goes back at the end
    bool connectionLost = false;
    Display* display = nullptr;
    bool ownConnection = false;  // opened here, not the window's
    TakenCrtc taken;
};
Switched g_switched;

void note(const std::string& text) {
    if (g_verbose) {
        std::fprintf(stderr, "kaskade: %s\n", text.c_str());
    }
}

double refreshOf(const XRRModeInfo& mode) {
    if (mode.hTotal == 0 || mode.vTotal == 0) {
        return 0.0;
    }
    double lines = mode.vTotal;
    if (mode.modeFlags & RR_DoubleScan) {
        lines *= 2;
    }
    if (mode.modeFlags & RR_Interlace) {
        lines /= 2;
    }
    return static_cast<double>(mode.dotClock) / (static_cast<double>(mode.hTotal) * lines);
}

const XRRModeInfo* modeInfo(const XRRScreenResources* resources, RRMode id) {
    for (int i = 0; i < resources->nmode; ++i) {
        if (resources->modes[i].id == id) {
            return &resources->modes[i];
        }
    }
    return nullptr;
}

std::string describe(const XRRModeInfo* mode) {
    if (mode == nullptr) {
        return "an unknown mode";
    }
    char text[64];
    std::snprintf(text, sizeof text, "%ux%u at %.1f Hz", mode->width, mode->height, refreshOf(*mode));
    return text;
}

// The width x height mode of `output` whose refresh rate is nearest `refresh`
// (progressive modes only); None when it offers none.
RRMode findMode(Display* display, XRRScreenResources* resources, RROutput output, int width, int height,
                double refresh) {
    XRROutputInfo* info = XRRGetOutputInfo(display, resources, output);
    if (info == nullptr) {
        return None;
    }
    RRMode best = None;
    double bestDistance = 0.0;
    for (int i = 0; i < info->nmode; ++i) {
        const XRRModeInfo* mode = modeInfo(resources, info->modes[i]);
        if (mode == nullptr || static_cast<int>(mode->width) != width || static_cast<int>(mode->height) != height ||
            (mode->modeFlags & (RR_Interlace | RR_DoubleScan)) != 0) {
            continue;
        }
        const double distance = std::fabs(refreshOf(*mode) - refresh);
        if (best == None || distance < bestDistance) {
            best = mode->id;
            bestDistance = distance;
        }
    }
    XRRFreeOutputInfo(info);
    return best;
}

// Xwayland names its outputs XWAYLAND0, XWAYLAND1, ...; newer ones also
// announce an extension of that name.
bool isXwayland(Display* display, const Monitor& monitor) {
    int opcode = 0;
    int event = 0;
    int error = 0;
    return monitor.name.rfind("XWAYLAND", 0) == 0 || XQueryExtension(display, "XWAYLAND", &opcode, &event, &error);
}

// Gives the show's CRTC back (see giveBackCrtc) and lets the guard go once it
// is; says why not with --verbose when `say`.
void giveBack(Display* display, bool say) {
    std::string why;
    if (giveBackCrtc(display, g_switched.taken, &why)) {
        displayGuardRelease();
    }
    if (say && !why.empty()) {
        note(why);
    }
}

// The switch itself, from the layout before it. 0 when the monitor reads back
// at width x height.
int switchMonitor(Display* display, const ScreenLayout& original, const Monitor& monitor, int width, int height) {
    XRRScreenResources* resources = XRRGetScreenResourcesCurrent(display, DefaultRootWindow(display));
    const CrtcState* crtc = original.find(monitor.crtc);
    if (resources == nullptr || crtc == nullptr) {
        if (resources != nullptr) {
            XRRFreeScreenResources(resources);
        }
        return -1;
    }
    const XRRModeInfo* current = modeInfo(resources, crtc->mode);
    const RRMode wanted =
        findMode(display, resources, monitor.output, width, height, current != nullptr ? refreshOf(*current) : 60.0);
    const std::string was = describe(current);
    g_switched.taken = TakenCrtc{*crtc, wanted, monitor.name};
    int result = -1;
    if (wanted == None) {
        note(monitor.name + " offers no " + std::to_string(width) + "x" + std::to_string(height) +
             " mode: the show runs at its " + was);
    } else if (current != nullptr && current->id == wanted) {
        note(monitor.name + " is already at " + was);
    } else if (!startDisplayGuard(g_switched.taken)) {
        note("no guard process could be started: " + monitor.name + " stays at " + was);
    } else {
        const std::string now = describe(modeInfo(resources, wanted));
        CrtcState switching = *crtc;
        switching.mode = wanted;
        g_switched.asked = setCrtc(display, resources, switching);
        ScreenLayout after;
        const CrtcState* switched = readScreenLayout(display, &after) ? after.find(crtc->crtc) : nullptr;
        const bool quarterTurn = (crtc->rotation & (RR_Rotate_90 | RR_Rotate_270)) != 0;
        const unsigned wide = static_cast<unsigned>(quarterTurn ? height : width);
        const unsigned high = static_cast<unsigned>(quarterTurn ? width : height);
        if (switched != nullptr && switched->mode == wanted && switched->width == wide && switched->height == high) {
            note(monitor.name + " switched from " + was + " to " + now + "; other monitors unchanged");
            result = 0;
        } else if (switched != nullptr && switched->mode == wanted && isXwayland(display, monitor)) {
            // Xwayland keeps the output as it is and tells only this client the
            // new mode; a compositor that honours it scales the show's window.
            note(monitor.name + " stays at " + std::to_string(switched->width) + "x" +
                 std::to_string(switched->height) + ": Xwayland only emulates " + now +
                 " for the show's window, for a compositor that scales it");
        } else {
            note(monitor.name + " did not switch to " + now + ": the show runs at its " + was);
            if (g_switched.asked) {
                g_switched.asked = false;
                giveBack(display, false);
            }
        }
    }
    if (!g_switched.asked) {
        displayGuardRelease();
    }
    XRRFreeScreenResources(resources);
    return result;
}

}  // namespace

int setDisplayMode(int width, int height, int) {
    Display* display = glXGetCurrentDisplay();
    const bool own = display == nullptr;
    if (own) {
        display = XOpenDisplay(nullptr);
    }
    if (display == nullptr) {
        return -1;
    }
    g_switched = Switched{};
    g_switched.display = display;
    g_switched.ownConnection = own;
    int result = -1;
    ScreenLayout original;
    if (!readScreenLayout(display, &original)) {
        note("the display has no RandR 1.2: the show runs at the screen's size");
    } else {
        const std::vector<Monitor> monitors = monitorsOf(display, original);
        if (monitors.empty()) {
            note("the display has no lit monitor: the show runs at the screen's size");
        } else {
            result = switchMonitor(display, original, primaryMonitor(monitors), width, height);
        }
    }
    // A connection of its own stays open while a switch stands: Xwayland ends
    // a client's emulated mode with the client's connection.
    if (own && !g_switched.asked) {
        XCloseDisplay(display);
        g_switched.display = nullptr;
    }
    return result;
}

void restoreDisplayMode() {
    if (!g_switched.asked) {
        return;
    }
    g_switched.asked = false;
    if (g_switched.connectionLost || g_switched.display == nullptr) {
        return;  // the guard restores through its own connection
    }
    // The window's connection is gone once freeglut has closed it (its own
    // fatal errors do before they exit): then a connection of our own.
    Display* display = g_switched.display;
    const bool borrowed = !g_switched.ownConnection && glXGetCurrentDisplay() != display;
    if (borrowed) {
        display = XOpenDisplay(nullptr);
    }
    if (display != nullptr) {
        giveBack(display, true);
    }
    if (borrowed && display != nullptr) {
        XCloseDisplay(display);
    }
    if (g_switched.ownConnection) {
        XCloseDisplay(g_switched.display);
    }
    g_switched.display = nullptr;
}

void restoreDisplayModeAfterCrash() {
    if (!g_switched.asked || g_switched.connectionLost) {
        return;
    }
    if (Display* display = XOpenDisplay(nullptr)) {
        std::string why;
        giveBackCrtc(display, g_switched.taken, &why);
        XCloseDisplay(display);
    }
}

void displayConnectionLost() { g_switched.connectionLost = true; }
