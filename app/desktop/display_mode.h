// The switch of the display to the show's mode and back, through XRandR.
#pragma once

// Asks the X server for a width x height screen. The depth cannot change on X
// and is not used. Returns 0 when the mode was switched, -1 when it is not
// offered (the fullscreen window then simply takes the screen as it is).
int setDisplayMode(int width, int height, int bitsPerPixel);

// Returns the display to the mode it had before setDisplayMode; nothing when
// it was not switched.
void restoreDisplayMode();
