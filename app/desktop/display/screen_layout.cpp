#include "app/desktop/display/screen_layout.h"

#include <algorithm>

namespace {

// Errors seen while a trap is set; a trap compares the count before and after.
int g_trappedErrors = 0;

int countError(Display*, XErrorEvent*) {
    ++g_trappedErrors;
    return 0;
}

bool readCrtc(Display* display, XRRScreenResources* resources, RRCrtc crtc, CrtcState* state) {
    XRRCrtcInfo* info = XRRGetCrtcInfo(display, resources, crtc);
    if (info == nullptr) {
        return false;
    }
    state->crtc = crtc;
    state->mode = info->mode;
    state->x = info->x;
    state->y = info->y;
    state->width = info->width;
    state->height = info->height;
    state->rotation = info->rotation;
    state->outputs.assign(info->outputs, info->outputs + info->noutput);
    XRRFreeCrtcInfo(info);
    return true;
}

long overlap(const Monitor& monitor, int x, int y, int width, int height) {
    const long across = std::min(monitor.x + monitor.width, x + width) - std::max(monitor.x, x);
    const long down = std::min(monitor.y + monitor.height, y + height) - std::max(monitor.y, y);
    return across > 0 && down > 0 ? across * down : 0;
}

}  // namespace

bool sameOutputs(std::vector<RROutput> a, std::vector<RROutput> b) {
    std::sort(a.begin(), a.end());
    std::sort(b.begin(), b.end());
    return a == b;
}

bool CrtcState::operator==(const CrtcState& other) const {
    if (crtc != other.crtc || mode != other.mode) {
        return false;
    }
    // An unlit CRTC's place and rotation mean nothing.
    return mode == None || (x == other.x && y == other.y && rotation == other.rotation &&
                            sameOutputs(outputs, other.outputs));
}

const CrtcState* ScreenLayout::find(RRCrtc crtc) const {
    for (const CrtcState& state : crtcs) {
        if (state.crtc == crtc) {
            return &state;
        }
    }
    return nullptr;
}

bool setCrtc(Display* display, XRRScreenResources* resources, const CrtcState& state) {
    XErrorTrap trap(display);
    std::vector<RROutput> outputs = state.outputs;
    const Status status = XRRSetCrtcConfig(display, resources, state.crtc, CurrentTime, state.x, state.y, state.mode,
                                           state.rotation, outputs.empty() ? nullptr : outputs.data(),
                                           static_cast<int>(outputs.size()));
    return status == RRSetConfigSuccess && !trap.failed();
}

XErrorTrap::XErrorTrap(Display* display) : display_(display) {
    XSync(display_, False);
    previous_ = XSetErrorHandler(countError);
    errorsBefore_ = g_trappedErrors;
}

XErrorTrap::~XErrorTrap() {
    XSync(display_, False);
    XSetErrorHandler(previous_);
}

bool XErrorTrap::failed() {
    XSync(display_, False);
    return g_trappedErrors != errorsBefore_;
}

bool hasRandr12(Display* display) {
    int eventBase = 0;
    int errorBase = 0;
    int major = 0;
    int minor = 0;
    return XRRQueryExtension(display, &eventBase, &errorBase) && XRRQueryVersion(display, &major, &minor) &&
           (major > 1 || (major == 1 && minor >= 2));
}

bool readScreenLayout(Display* display, ScreenLayout* layout) {
    if (!hasRandr12(display)) {
        return false;
    }
    XErrorTrap trap(display);
    const Window root = DefaultRootWindow(display);
    XRRScreenResources* resources = XRRGetScreenResourcesCurrent(display, root);
    if (resources == nullptr) {
        return false;
    }
    ScreenLayout read;
    const int screen = DefaultScreen(display);
    read.width = DisplayWidth(display, screen);
    read.height = DisplayHeight(display, screen);
    read.widthMm = DisplayWidthMM(display, screen);
    read.heightMm = DisplayHeightMM(display, screen);
    read.primary = XRRGetOutputPrimary(display, root);
    bool complete = true;
    for (int i = 0; i < resources->ncrtc && complete; ++i) {
        CrtcState state;
        complete = readCrtc(display, resources, resources->crtcs[i], &state);
        read.crtcs.push_back(state);
    }
    XRRFreeScreenResources(resources);
    if (!complete || trap.failed()) {
        return false;
    }
    *layout = read;
    return true;
}

std::vector<Monitor> monitorsOf(Display* display, const ScreenLayout& layout) {
    std::vector<Monitor> monitors;
    XErrorTrap trap(display);
    XRRScreenResources* resources = XRRGetScreenResourcesCurrent(display, DefaultRootWindow(display));
    for (const CrtcState& crtc : layout.crtcs) {
        if (crtc.mode == None || crtc.outputs.empty() || resources == nullptr) {
            continue;
        }
        Monitor monitor;
        monitor.crtc = crtc.crtc;
        monitor.x = crtc.x;
        monitor.y = crtc.y;
        monitor.width = static_cast<int>(crtc.width);
        monitor.height = static_cast<int>(crtc.height);
        for (RROutput output : crtc.outputs) {
            monitor.primary = monitor.primary || output == layout.primary;
        }
        monitor.output = crtc.outputs.front();
        if (XRROutputInfo* info = XRRGetOutputInfo(display, resources, monitor.output)) {
            monitor.name.assign(info->name, static_cast<size_t>(info->nameLen));
            XRRFreeOutputInfo(info);
        }
        monitors.push_back(monitor);
    }
    if (resources != nullptr) {
        XRRFreeScreenResources(resources);
    }
    return monitors;
}

std::vector<Monitor> displayMonitors(Display* display) {
    ScreenLayout layout;
    std::vector<Monitor> monitors;
    if (readScreenLayout(display, &layout)) {
        monitors = monitorsOf(display, layout);
    }
    if (monitors.empty()) {
        const int screen = DefaultScreen(display);
        Monitor whole;
        whole.name = "screen";
        whole.width = DisplayWidth(display, screen);
        whole.height = DisplayHeight(display, screen);
        whole.primary = true;
        monitors.push_back(whole);
    }
    return monitors;
}

const Monitor& primaryMonitor(const std::vector<Monitor>& monitors) {
    for (const Monitor& monitor : monitors) {
        if (monitor.primary) {
            return monitor;
        }
    }
    for (const Monitor& monitor : monitors) {
        if (monitor.x == 0 && monitor.y == 0) {
            return monitor;
        }
    }
    return monitors.front();
}

const Monitor& monitorUnder(const std::vector<Monitor>& monitors, int x, int y, int width, int height) {
    const Monitor* best = &primaryMonitor(monitors);
    long most = 0;
    for (const Monitor& monitor : monitors) {
        const long area = overlap(monitor, x, y, std::max(width, 1), std::max(height, 1));
        if (area > most) {
            most = area;
            best = &monitor;
        }
    }
    return *best;
}
