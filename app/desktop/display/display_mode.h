// The switch of the show's monitor to the show's mode and back, through RandR
// 1.2: only that monitor's CRTC changes; every other monitor, the screen's size
// and the primary output stay as they are.
//
// The CRTC as it was is saved before the switch and given back on every way
// out of the process, by one rule (app/desktop/display/taken_crtc.h): only
// that CRTC, and only while the show's mode still stands on it. The end path
// and the fatal reports give it back themselves; for a crash, a kill or a lost
// X connection a guard process does (app/desktop/display/display_guard.h).
#pragma once

#include "app/desktop/display/screen_layout.h"

// Switches the show's monitor (the primary output's, see primaryMonitor) to a
// width x height mode of its output, the one whose refresh rate is nearest the
// monitor's own. It asks through the X connection of the show's window when a
// GL context is current, so that Xwayland, which only emulates mode changes
// for the windows of the client that asks, can have the window scaled. The
// depth cannot change on X and is not used. Starts the guard before it
// switches, then checks that the monitor reads back at the new size.
// Returns 0 when it does, -1 otherwise (no such mode, no RandR 1.2, a refused
// or emulated switch): the show then runs at the monitor's own size. Says
// which with --verbose.
int setDisplayMode(int width, int height, int bitsPerPixel);

// Gives the switched CRTC back and lets the guard go; nothing when nothing
// was switched. Says with --verbose when the person changed that monitor
// during the show and it is left as they made it.
void restoreDisplayMode();

// In a crash handler when no guard answered: the CRTC given back through a
// new connection (the show's own may be stopped in the middle of a request).
// Not async-signal-safe: the caller bounds it with an alarm.
void restoreDisplayModeAfterCrash();

// The X connection is lost: a restore is left to the guard, which has its own.
void displayConnectionLost();
