// --loop on the desktop: each time the last part ends, the show starts over at
// part 1 from the GL state it first started from (kept on OpenGL's attribute
// stacks), so every pass draws what the first one drew.
#pragma once

// Keeps the GL start state and makes the sequencer start the show over at the
// last part's end. Call once, after initGlState.
void loopTheShow();
