#include "tests/desktops/crtc_table.h"

#include <X11/Xlib.h>
#include <X11/extensions/Xrandr.h>

#include <cstdio>

namespace {

std::string outputName(Display* x, XRRScreenResources* resources, RROutput output) {
    std::string name = "?";
    if (XRROutputInfo* info = XRRGetOutputInfo(x, resources, output)) {
        name.assign(info->name, static_cast<size_t>(info->nameLen));
        XRRFreeOutputInfo(info);
    }
    return name;
}

std::string crtcLine(Display* x, XRRScreenResources* resources, RRCrtc crtc, const XRRCrtcInfo& info) {
    double hz = 0.0;
    for (int m = 0; m < resources->nmode; ++m) {
        const XRRModeInfo& mode = resources->modes[m];
        if (mode.id == info.mode && mode.hTotal != 0 && mode.vTotal != 0) {
            hz = static_cast<double>(mode.dotClock) / (static_cast<double>(mode.hTotal) * mode.vTotal);
        }
    }
    char line[160];
    std::snprintf(line, sizeof line, "crtc 0x%lx %ux%u@%.2f +%d+%d rot %d", static_cast<unsigned long>(crtc),
                  info.width, info.height, hz, info.x, info.y, static_cast<int>(info.rotation));
    std::string text = line;
    for (int o = 0; o < info.noutput; ++o) {
        text += (o == 0 ? " " : ",") + outputName(x, resources, info.outputs[o]);
    }
    return text;
}

}  // namespace

std::string CrtcTable::crtcOf(const std::string& output) const {
    for (const std::string& line : crtcs) {
        const size_t at = line.rfind(' ');
        if (at != std::string::npos && ("," + line.substr(at + 1) + ",").find("," + output + ",") != std::string::npos) {
            return line;
        }
    }
    return "";
}

std::string CrtcTable::text() const {
    std::string all = screen + "\n";
    for (const std::string& line : crtcs) {
        all += line + "\n";
    }
    return all;
}

CrtcTable readCrtcTable(const std::string& display) {
    CrtcTable table;
    Display* x = XOpenDisplay(display.c_str());
    if (x == nullptr) {
        return table;
    }
    const Window root = DefaultRootWindow(x);
    if (XRRScreenResources* resources = XRRGetScreenResourcesCurrent(x, root)) {
        const RROutput primary = XRRGetOutputPrimary(x, root);
        table.screen = "screen " + std::to_string(DisplayWidth(x, DefaultScreen(x))) + "x" +
                       std::to_string(DisplayHeight(x, DefaultScreen(x))) + " primary " +
                       (primary != None ? outputName(x, resources, primary) : "none");
        for (int i = 0; i < resources->ncrtc; ++i) {
            if (XRRCrtcInfo* info = XRRGetCrtcInfo(x, resources, resources->crtcs[i])) {
                if (info->mode != None) {
                    table.crtcs.push_back(crtcLine(x, resources, resources->crtcs[i], *info));
                }
                XRRFreeCrtcInfo(info);
            }
        }
        XRRFreeScreenResources(resources);
    }
    XCloseDisplay(x);
    return table;
}
