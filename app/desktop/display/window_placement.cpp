#include "app/desktop/display/window_placement.h"

#include <GL/freeglut.h>
#include <GL/glx.h>
#include <X11/Xatom.h>

#include <algorithm>

namespace {

// The 32-bit items of `property` on `window` when it has `type`; none else.
std::vector<unsigned long> propertyItems(Display* display, Window window, const char* property, Atom type) {
    Atom actualType = None;
    int format = 0;
    unsigned long count = 0;
    unsigned long after = 0;
    unsigned char* data = nullptr;
    std::vector<unsigned long> items;
    if (XGetWindowProperty(display, window, XInternAtom(display, property, False), 0, 4096, False, type, &actualType,
                           &format, &count, &after, &data) == Success &&
        actualType == type && format == 32) {
        const unsigned long* values = reinterpret_cast<unsigned long*>(data);
        items.assign(values, values + count);
    }
    if (data != nullptr) {
        XFree(data);
    }
    return items;
}

// The window named by `property` on `window`, or None.
Window windowProperty(Display* display, Window window, const char* property) {
    const std::vector<unsigned long> items = propertyItems(display, window, property, XA_WINDOW);
    return items.size() == 1 ? items.front() : None;
}

bool supportsFullscreen(Display* display, Window root) {
    const std::vector<unsigned long> atoms = propertyItems(display, root, "_NET_SUPPORTED", XA_ATOM);
    return std::find(atoms.begin(), atoms.end(), XInternAtom(display, "_NET_WM_STATE_FULLSCREEN", False)) !=
           atoms.end();
}

// The window's place before it went fullscreen without a window manager.
struct WindowPlace {
    bool kept = false;
    int x = 0;
    int y = 0;
    unsigned width = 640;
    unsigned height = 480;
};
WindowPlace g_windowPlace;

// The current GLUT window's X connection and window.
Display* windowDisplay() { return glXGetCurrentDisplay(); }
Window windowId() { return static_cast<Window>(glXGetCurrentDrawable()); }

}  // namespace

DesktopNow desktopNow() {
    DesktopNow now;
    if (Display* display = XOpenDisplay(nullptr)) {
        now.monitors = displayMonitors(display);
        now.windowManager = fullscreenWindowManager(display);
        XCloseDisplay(display);
    }
    return now;
}

std::string fitWindowToMonitor(const Monitor& monitor, int* width, int* height) {
    if (monitor.width <= 0 || monitor.height <= 0 || (*width <= monitor.width && *height <= monitor.height)) {
        return "";
    }
    const std::string asked = std::to_string(*width) + "x" + std::to_string(*height);
    // The narrower of the two limits decides; whole pixels, rounded down.
    if (static_cast<long>(*width) * monitor.height >= static_cast<long>(*height) * monitor.width) {
        *height = static_cast<int>(static_cast<long>(*height) * monitor.width / *width);
        *width = monitor.width;
    } else {
        *width = static_cast<int>(static_cast<long>(*width) * monitor.height / *height);
        *height = monitor.height;
    }
    return "a " + asked + " window is larger than the monitor " + monitor.name + " (" +
           std::to_string(monitor.width) + "x" + std::to_string(monitor.height) + "): the window is " +
           std::to_string(*width) + "x" + std::to_string(*height);
}

bool fullscreenWindowManager(Display* display) {
    XErrorTrap trap(display);
    const Window root = DefaultRootWindow(display);
    const char* check = "_NET_SUPPORTING_WM_CHECK";
    const Window manager = windowProperty(display, root, check);
    // The check window names itself while its window manager lives; a stale
    // root property names a window that is gone (BadWindow, trapped).
    const bool alive = manager != None && windowProperty(display, manager, check) == manager;
    return alive && !trap.failed() && supportsFullscreen(display, root);
}

Monitor windowMonitor() {
    Display* display = windowDisplay();
    const std::vector<Monitor> monitors = displayMonitors(display);
    int x = 0;
    int y = 0;
    Window child = None;
    XWindowAttributes attributes{};
    {
        XErrorTrap trap(display);
        XGetWindowAttributes(display, windowId(), &attributes);
        XTranslateCoordinates(display, windowId(), DefaultRootWindow(display), 0, 0, &x, &y, &child);
    }
    return monitorUnder(monitors, x, y, attributes.width, attributes.height);
}

Monitor showMonitorNow() { return primaryMonitor(displayMonitors(windowDisplay())); }

void coverMonitor(const Monitor& monitor) {
    Display* display = windowDisplay();
    const Window window = windowId();
    if (fullscreenWindowManager(display)) {
        // The window manager covers the monitor the window is on.
        {
            XErrorTrap trap(display);
            XMoveWindow(display, window, monitor.x, monitor.y);
        }
        glutFullScreen();
        return;
    }
    XErrorTrap trap(display);
    XMoveResizeWindow(display, window, monitor.x, monitor.y, static_cast<unsigned>(monitor.width),
                      static_cast<unsigned>(monitor.height));
}

void setWindowFullscreen(bool on) {
    Display* display = windowDisplay();
    if (fullscreenWindowManager(display)) {
        if (on != (glutGet(GLUT_FULL_SCREEN) != 0)) {
            glutFullScreenToggle();
        }
        return;
    }
    XErrorTrap trap(display);
    if (on) {
        XWindowAttributes attributes{};
        Window child = None;
        XGetWindowAttributes(display, windowId(), &attributes);
        XTranslateCoordinates(display, windowId(), DefaultRootWindow(display), 0, 0, &g_windowPlace.x,
                              &g_windowPlace.y, &child);
        g_windowPlace.width = static_cast<unsigned>(attributes.width);
        g_windowPlace.height = static_cast<unsigned>(attributes.height);
        g_windowPlace.kept = true;
        coverMonitor(windowMonitor());
        return;
    }
    if (!g_windowPlace.kept) {
        const Monitor monitor = windowMonitor();
        g_windowPlace = WindowPlace{true, monitor.x, monitor.y, 640, 480};
    }
    XMoveResizeWindow(display, windowId(), g_windowPlace.x, g_windowPlace.y, g_windowPlace.width,
                      g_windowPlace.height);
}
