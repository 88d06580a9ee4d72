// A screen's monitors in RandR 1.2's terms: the screen's size, and for every
// CRTC its mode (which carries the refresh rate), position, rotation and
// outputs, and the primary output.
//
// Every call traps the X errors it causes (a layout can change under the show's
// feet), so a failed request is a false result, never the X library's exit.
#pragma once

#include <X11/Xlib.h>
#include <X11/extensions/Xrandr.h>

#include <string>
#include <vector>

struct CrtcState {
    RRCrtc crtc = 0;
    RRMode mode = 0;  // None: the CRTC is off
    int x = 0;
    int y = 0;
    unsigned width = 0;  // of its mode as rotated
    unsigned height = 0;
    Rotation rotation = RR_Rotate_0;
    std::vector<RROutput> outputs;

    bool operator==(const CrtcState& other) const;
};

struct ScreenLayout {
    int width = 0;  // the screen's size, in pixels and millimetres
    int height = 0;
    int widthMm = 0;
    int heightMm = 0;
    RROutput primary = 0;  // None when no output is primary
    std::vector<CrtcState> crtcs;

    // The state of `crtc`, or null when the screen has no such CRTC.
    const CrtcState* find(RRCrtc crtc) const;
};

// A lit monitor: a CRTC's rectangle on the screen, named by its first output.
struct Monitor {
    RRCrtc crtc = 0;
    RROutput output = 0;
    std::string name;
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    bool primary = false;
};

// Whether two CRTCs drive the same outputs, in any order.
bool sameOutputs(std::vector<RROutput> a, std::vector<RROutput> b);

// True when the display speaks RandR 1.2 or later.
bool hasRandr12(Display* display);

// The layout of the default screen; false without RandR 1.2.
bool readScreenLayout(Display* display, ScreenLayout* layout);

// Sets one CRTC to `state`: its mode, place, rotation and outputs. True when
// the server took it.
bool setCrtc(Display* display, XRRScreenResources* resources, const CrtcState& state);

// The lit monitors of `layout`, in CRTC order. A display without RandR 1.2
// has one: the whole screen.
std::vector<Monitor> monitorsOf(Display* display, const ScreenLayout& layout);
std::vector<Monitor> displayMonitors(Display* display);

// The monitor of the primary output; else the one at the screen's origin;
// else the first. `monitors` must not be empty.
const Monitor& primaryMonitor(const std::vector<Monitor>& monitors);

// The monitor that holds most of the rectangle (the first of equals); the
// primary one when the rectangle lies on none. `monitors` must not be empty.
const Monitor& monitorUnder(const std::vector<Monitor>& monitors, int x, int y, int width, int height);

// Traps X errors from construction to destruction (with an XSync at the end)
// instead of the installed handler, which may end the process.
class XErrorTrap {
public:
    explicit XErrorTrap(Display* display);
    ~XErrorTrap();
    XErrorTrap(const XErrorTrap&) = delete;
    XErrorTrap& operator=(const XErrorTrap&) = delete;
    // Whether an error arrived so far (syncs first).
    bool failed();

private:
    Display* display_;
    int (*previous_)(Display*, XErrorEvent*);
    int errorsBefore_ = 0;
};
