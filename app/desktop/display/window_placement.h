// Where the show's window goes on a screen of one or more monitors, with or
// without a window manager: fullscreen covers one monitor, never the whole
// screen across monitors, and a window is never larger than its monitor.
#pragma once

#include "app/desktop/display/screen_layout.h"

#include <string>
#include <vector>

// The display before the show's window exists, read through a short
// connection of its own: its monitors (the whole screen as one when RandR
// cannot tell; none without a display) and whether a window manager runs.
struct DesktopNow {
    std::vector<Monitor> monitors;
    bool windowManager = false;
};
DesktopNow desktopNow();

// A window of width x height on `monitor`: as asked when it fits, else the
// largest size of the same shape that fits (the 4:3 picture then refits
// inside it). Returns the note the show prints when it shrank the window,
// else "".
std::string fitWindowToMonitor(const Monitor& monitor, int* width, int* height);

// Once the window is mapped: the monitor it landed on (the window manager's
// choice; without one, the monitor of its position). Where that is not
// `expected`, the one its size was fitted to before, the window is fitted
// again from the asked `width` x `height`, once. Either way a window that
// stands past its monitor's edge is moved onto it. Returns the note the show
// prints when the window is smaller than asked, else "".
std::string fitWindowWhereItLands(const Monitor& expected, int width, int height);

// True when a window manager that takes _NET_WM_STATE_FULLSCREEN runs: one
// whose _NET_SUPPORTING_WM_CHECK window exists and names itself, so that a
// window manager that has gone away and left its properties does not count.
bool fullscreenWindowManager(Display* display);

// The monitor that holds most of the current GLUT window.
Monitor windowMonitor();

// The monitor of the show after a mode switch: the primary one, read again
// through the window's connection.
Monitor showMonitorNow();

// Makes the current GLUT window cover `monitor`: it is moved there and then
// made fullscreen by the window manager where one offers that (which covers
// the monitor the window is on); else it is placed over the monitor's
// rectangle, undecorated through Motif's hints, and where the window manager
// still frames it, out of the window manager's hands (said with --verbose).
void coverMonitor(const Monitor& monitor);

// The f key: fullscreen on the monitor the window is on, or (`on` false) back
// to the window it was (640 x 480 at the monitor's corner when it never was
// one). Through the window manager where one runs.
void setWindowFullscreen(bool on);
