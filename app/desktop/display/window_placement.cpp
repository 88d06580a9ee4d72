#include "app/desktop/display/window_placement.h"

#include "app/part_log.h"

#include <GL/freeglut.h>
#include <GL/glx.h>
#include <X11/Xatom.h>
#include <X11/Xutil.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <thread>

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

// How long the show waits for a window manager to map, unmap or redecorate
// its window before it takes what it sees as the answer.
constexpr int SETTLE_MS = 1000;

// Whether `settled` holds within SETTLE_MS, asked every 10 ms.
template <typename Settled>
bool settles(Settled settled) {
    for (int waited = 0; waited < SETTLE_MS; waited += 10) {
        if (settled()) {
            return true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return settled();
}

// A window on the screen: its own rectangle, and its frame's (the top-level
// window that holds it: the window manager's frame, or itself).
struct Placement {
    bool viewable = false;
    bool framed = false;  // reparented by a window manager
    int x = 0, y = 0, width = 0, height = 0;
    int frameX = 0, frameY = 0, frameWidth = 0, frameHeight = 0;
};

Placement placementOf(Display* display, Window window) {
    XErrorTrap trap(display);
    Placement placement;
    XWindowAttributes attributes{};
    if (!XGetWindowAttributes(display, window, &attributes)) {
        return placement;
    }
    const Window root = DefaultRootWindow(display);
    Window child = None;
    placement.viewable = attributes.map_state == IsViewable;
    placement.width = attributes.width;
    placement.height = attributes.height;
    XTranslateCoordinates(display, window, root, 0, 0, &placement.x, &placement.y, &child);
    // Up to the child of the root window that holds it.
    Window top = window;
    for (;;) {
        Window rootOut = None;
        Window parent = None;
        Window* children = nullptr;
        unsigned count = 0;
        if (!XQueryTree(display, top, &rootOut, &parent, &children, &count)) {
            break;
        }
        if (children != nullptr) {
            XFree(children);
        }
        if (parent == root || parent == None) {
            break;
        }
        top = parent;
    }
    placement.framed = top != window;
    XWindowAttributes frame = attributes;
    if (placement.framed) {
        XGetWindowAttributes(display, top, &frame);
    }
    // A child of the root window: its place is its outer corner's on the screen.
    placement.frameX = frame.x;
    placement.frameY = frame.y;
    placement.frameWidth = frame.width + 2 * frame.border_width;
    placement.frameHeight = frame.height + 2 * frame.border_width;
    return placement;
}

// The window covers the monitor, and no frame shows around it.
bool coversUndecorated(const Placement& p, const Monitor& monitor) {
    const bool bare = !p.framed || (p.frameX == p.x && p.frameY == p.y && p.frameWidth == p.width &&
                                    p.frameHeight == p.height);
    return p.viewable && bare && p.x == monitor.x && p.y == monitor.y && p.width == monitor.width &&
           p.height == monitor.height;
}

// Motif's window manager hints, which most window managers without EWMH
// fullscreen read: decorations given (flag 2), and none of them.
void askUndecorated(Display* display, Window window, bool undecorated) {
    const Atom hints = XInternAtom(display, "_MOTIF_WM_HINTS", False);
    const long none[5] = {2, 0, 0, 0, 0};
    if (undecorated) {
        XChangeProperty(display, window, hints, hints, 32, PropModeReplace, reinterpret_cast<const unsigned char*>(none),
                        5);
    } else {
        XDeleteProperty(display, window, hints);
    }
}

// Whether the window is out of the window manager's hands (override-redirect),
// and whether the window manager was seen to frame an undecorated window.
bool g_unmanaged = false;
bool g_framesUndecorated = false;

// Takes the window out of the window manager's hands, or gives it back, at
// x, y, width x height: it is withdrawn, the window manager lets go of it, it
// is placed and mapped again.
void setUnmanaged(Display* display, Window window, bool unmanaged, int x, int y, unsigned width, unsigned height) {
    XWithdrawWindow(display, window, DefaultScreen(display));
    settles([&] {
        const Placement p = placementOf(display, window);
        return !p.viewable && !p.framed;
    });
    XSetWindowAttributes attributes{};
    attributes.override_redirect = unmanaged ? True : False;
    XChangeWindowAttributes(display, window, CWOverrideRedirect, &attributes);
    XMoveResizeWindow(display, window, x, y, width, height);
    // Placed where it was, not where a window manager would have a person put it.
    XSizeHints hints{};
    long supplied = 0;
    XGetWMNormalHints(display, window, &hints, &supplied);
    hints.flags |= USPosition | USSize;
    hints.x = x;
    hints.y = y;
    hints.width = static_cast<int>(width);
    hints.height = static_cast<int>(height);
    XSetWMNormalHints(display, window, &hints);
    XMapRaised(display, window);
    g_unmanaged = unmanaged;
}

// Over the monitor without a window manager's fullscreen: undecorated where
// the window manager honours Motif's hints, else out of its hands.
void coverWithoutFullscreenHint(Display* display, Window window, const Monitor& monitor) {
    XErrorTrap trap(display);
    const unsigned width = static_cast<unsigned>(monitor.width);
    const unsigned height = static_cast<unsigned>(monitor.height);
    if (!g_framesUndecorated) {
        askUndecorated(display, window, true);
        XMoveResizeWindow(display, window, monitor.x, monitor.y, width, height);
        if (settles([&] { return coversUndecorated(placementOf(display, window), monitor); })) {
            return;
        }
        g_framesUndecorated = true;
        if (g_verbose) {
            std::fprintf(stderr, "kaskade: the window manager does not honour an undecorated window: the show covers "
                                 "%s as a window it does not manage\n", monitor.name.c_str());
        }
    }
    setUnmanaged(display, window, true, monitor.x, monitor.y, width, height);
    settles([&] { return placementOf(display, window).viewable; });
    XSetInputFocus(display, window, RevertToParent, CurrentTime);
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

std::string fitWindowWhereItLands(const Monitor& expected, int width, int height) {
    Display* display = windowDisplay();
    const Window window = windowId();
    settles([&] { return placementOf(display, window).viewable; });
    const Placement now = placementOf(display, window);
    const Monitor landed = windowMonitor();
    const std::string note = fitWindowToMonitor(landed, &width, &height);
    const bool elsewhere = landed.crtc != expected.crtc || landed.x != expected.x || landed.y != expected.y;
    if (!elsewhere) {
        width = now.width;
        height = now.height;
    }
    // Wholly on the monitor, its frame too where there is room for it.
    std::vector<unsigned long> frame = propertyItems(display, window, "_NET_FRAME_EXTENTS", XA_CARDINAL);
    frame.resize(4, 0);  // left, right, top, bottom
    const auto onMonitor = [](int at, int size, int start, int length, long before, long after) {
        return std::max(start, std::min(std::max(at, static_cast<int>(start + before)),
                                         static_cast<int>(start + length - size - after)));
    };
    const int x = onMonitor(now.x, width, landed.x, landed.width, frame[0], frame[1]);
    const int y = onMonitor(now.y, height, landed.y, landed.height, frame[2], frame[3]);
    if (width != now.width || height != now.height || x != now.x || y != now.y) {
        XErrorTrap trap(display);
        // The window manager places the frame where the window is asked to go.
        XMoveResizeWindow(display, window, x - static_cast<int>(frame[0]), y - static_cast<int>(frame[2]),
                          static_cast<unsigned>(width), static_cast<unsigned>(height));
    }
    return note;
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
    coverWithoutFullscreenHint(display, window, monitor);
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
        // Its frame's place: where a window manager puts the frame of a window asked there.
        const Placement now = placementOf(display, windowId());
        g_windowPlace = WindowPlace{true, now.frameX, now.frameY, static_cast<unsigned>(now.width),
                                    static_cast<unsigned>(now.height)};
        coverMonitor(windowMonitor());
        return;
    }
    if (!g_windowPlace.kept) {
        const Monitor monitor = windowMonitor();
        g_windowPlace = WindowPlace{true, monitor.x, monitor.y, 640, 480};
    }
    askUndecorated(display, windowId(), false);
    if (g_unmanaged) {
        setUnmanaged(display, windowId(), false, g_windowPlace.x, g_windowPlace.y, g_windowPlace.width,
                     g_windowPlace.height);
        return;
    }
    XMoveResizeWindow(display, windowId(), g_windowPlace.x, g_windowPlace.y, g_windowPlace.width,
                      g_windowPlace.height);
}
