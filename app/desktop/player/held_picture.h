// The picture a pause leaves on the screen. The window's back buffer holds
// nothing dependable once it is swapped, so the last frame before a pause is
// copied (on the GPU) as it is finished; while the show is paused, a window
// that changes size (f, a window manager) or is uncovered shows that copy,
// fitted to it.
#pragma once

// Copies the finished frame's picture out of the window's back buffer; call
// before it is swapped.
void holdPicture();

// True when the window has changed size since the held picture was last shown.
bool heldPictureRefitted();

// Shows the held picture, fitted to the window as it is now. Does nothing
// without a held picture.
void showHeldPicture();
