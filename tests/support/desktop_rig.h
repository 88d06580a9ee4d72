// Headless copies of the desktops people have, started by a test for itself:
// a screen of several monitors (Xorg with the dummy video driver), a window
// manager (openbox on Xvfb), and Wayland with Xwayland (weston's headless back
// end); and a plain screen of any size (Xvfb), which can offer a second size.
// Each server runs as a child of the test that dies with it, and is stopped
// when the rig goes out of scope, whatever the test's outcome.
#pragma once

#include <sys/types.h>

#include <memory>
#include <string>
#include <vector>

class DesktopRig {
public:
    enum class Kind {
        TwoMonitors,    // DUMMY0 primary 1920x1080 at 75 Hz at +0+0, DUMMY1 1280x1024 at 60 Hz at +1920+0
        ThreeMonitors,  // DUMMY1 1280x1024 at +0+0, DUMMY2 1024x768 at 75 Hz at +1280+0, DUMMY0 primary
                        // 1920x1080 at 75 Hz at +2304+0
        Openbox,        // Xvfb 1280x1024 with openbox, decorations on
        Xwayland,       // weston 1280x1024, headless, with Xwayland
        TwoMonitorsOpenbox,  // TwoMonitors with openbox placing new windows on the pointer's monitor
        Twm,            // Xvfb 1280x1024 with twm: no EWMH, a title bar on every window
        Screen,         // Xvfb alone, of the size screen() asks for
    };

    // Starts a rig in `workDir`; null and `whyNot` (e.g. "needs root") when it cannot.
    static std::unique_ptr<DesktopRig> start(Kind kind, const std::string& workDir, std::string* whyNot,
                                             const std::string& size = "1280x1024");
    // A plain Xvfb screen of width x height.
    static std::unique_ptr<DesktopRig> screen(int width, int height, const std::string& workDir, std::string* whyNot);
    ~DesktopRig();
    DesktopRig(const DesktopRig&) = delete;
    DesktopRig& operator=(const DesktopRig&) = delete;

    // The X display, ":N".
    const std::string& display() const { return display_; }
    // Sets the rig's monitors as they were at its start (a test that fails
    // half-way must not leave the next one a changed screen).
    bool layOut() const;
    // Kills the window manager with SIGKILL, as a crash would: its check
    // window is gone, the root window still names it.
    void killWindowManager();
    // Offers a width x height mode on a plain screen's output, beside its own.
    bool addMode(int width, int height) const;
    // The first lit monitor's size, "WIDTHxHEIGHT" ("" when it cannot be read).
    std::string currentSize() const;

private:
    DesktopRig() = default;
    Kind kind_ = Kind::TwoMonitors;
    std::string size_ = "1280x1024";
    std::string workDir_;
    std::string display_;
    std::vector<pid_t> servers_;  // started in this order, stopped in reverse
};
