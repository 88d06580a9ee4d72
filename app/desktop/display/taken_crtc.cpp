#include "app/desktop/display/taken_crtc.h"

#include <algorithm>

namespace {

bool allConnected(Display* display, XRRScreenResources* resources, const std::vector<RROutput>& outputs) {
    for (RROutput output : outputs) {
        XRROutputInfo* info = XRRGetOutputInfo(display, resources, output);
        const bool connected = info != nullptr && info->connection != RR_Disconnected;
        if (info != nullptr) {
            XRRFreeOutputInfo(info);
        }
        if (!connected) {
            return false;
        }
    }
    return true;
}

// What became of the show's CRTC when it no longer shows the show's mode; ""
// while it does.
std::string changeOf(Display* display, XRRScreenResources* resources, const TakenCrtc& taken,
                     const CrtcState* now) {
    if (now == nullptr || now->mode == None) {
        return "switched off";
    }
    if (now->mode != taken.showMode) {
        return "now " + std::to_string(now->width) + "x" + std::to_string(now->height);
    }
    if (!sameOutputs(now->outputs, taken.before.outputs) || !allConnected(display, resources, now->outputs)) {
        return "its output gone";
    }
    return "";
}

// Grows the screen to hold `crtc`, at the same pixels per millimetre.
bool makeRoomFor(Display* display, const ScreenLayout& now, const CrtcState& crtc) {
    const int width = std::max(now.width, crtc.x + static_cast<int>(crtc.width));
    const int height = std::max(now.height, crtc.y + static_cast<int>(crtc.height));
    if (width == now.width && height == now.height) {
        return true;
    }
    XErrorTrap trap(display);
    XRRSetScreenSize(display, DefaultRootWindow(display), width, height, now.widthMm * width / now.width,
                     now.heightMm * height / now.height);
    return !trap.failed();
}

}  // namespace

bool giveBackCrtc(Display* display, const TakenCrtc& taken, std::string* note) {
    ScreenLayout now;
    if (!readScreenLayout(display, &now)) {
        *note = "the screen's layout cannot be read: " + taken.name + " stays as it is";
        return false;
    }
    const CrtcState* crtc = now.find(taken.before.crtc);
    if (crtc != nullptr && *crtc == taken.before) {
        return true;
    }
    bool given = false;
    {
        XErrorTrap trap(display);
        XRRScreenResources* resources = XRRGetScreenResourcesCurrent(display, DefaultRootWindow(display));
        if (resources == nullptr) {
            *note = "the screen's resources cannot be read: " + taken.name + " stays as it is";
            return false;
        }
        const std::string change = changeOf(display, resources, taken, crtc);
        if (!change.empty()) {
            *note = taken.name + " was changed during the show (" + change + "): left as it is";
            XRRFreeScreenResources(resources);
            return true;
        }
        given = makeRoomFor(display, now, taken.before) && setCrtc(display, resources, taken.before);
        XRRFreeScreenResources(resources);
    }
    ScreenLayout after;
    const CrtcState* back = readScreenLayout(display, &after) ? after.find(taken.before.crtc) : nullptr;
    if (!given || back == nullptr || !(*back == taken.before)) {
        *note = taken.name + " could not be set back to its mode";
        return false;
    }
    return true;
}
