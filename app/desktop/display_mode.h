// The switch of the display to the show's mode and back, through XRandR.
//
// A switched mode is given back on every way out of the process: the end path
// and the fatal reports restore it themselves; for a crash, a kill or a frozen
// X connection a guard process does (app/desktop/display_guard.h).
#pragma once

// A screen configuration in RandR 1.1's terms: the index into the screen's
// list of sizes and the rotation.
struct ScreenMode {
    int size = 0;
    int rotation = 0;
};

// Asks the X server for a width x height screen. The depth cannot change on X
// and is not used. Returns 0 when the mode was switched, -1 when it is not
// offered (the fullscreen window then simply takes the screen as it is).
// Starts the guard before it switches.
int setDisplayMode(int width, int height, int bitsPerPixel);

// Returns the display to the mode it had before setDisplayMode and lets the
// guard go; nothing when it was not switched.
void restoreDisplayMode();

// Sets `mode` on the default screen through a connection of its own; true
// when the screen is at `mode` afterwards (also when it already was).
bool applyScreenMode(ScreenMode mode);
