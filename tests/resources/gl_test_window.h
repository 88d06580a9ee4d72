// A real GL context for tests: one 640 x 480 double-buffered GLUT window like the
// show's, opened once per test program; tests read back from the back buffer.
#pragma once

#include <cstdint>

// Opens the window on the first call, its context current. False when there is
// no display (run the tests under xvfb-run); callers then skip.
bool openGlTestWindow();

// Sets the state the show starts every frame from (app/gl_start_state.h) and
// the full 640 x 480 viewport.
void setShowStartState();

// The back buffer's 640 x 480 RGBA pixels, hashed (FNV-1a): two frames are
// the same picture when their hashes are equal.
uint64_t backBufferHash();
