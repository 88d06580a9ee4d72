// What the process gives back however it ends: a switched screen and a running
// capture. The end path gives them back itself; the fatal reports, freeglut's
// own fatal errors and a lost X connection (the last two call exit) go through
// these hooks, so the screen is as it was and a capture's file complete up to
// the last frame drawn, with the exit status of that way out.
#pragma once

// The fatal reports' give-back and an exit handler. Before anything is switched or captured.
void installGiveBack();

// Marks the X connection lost when Xlib finds it broken, before Xlib's own
// handler ends the process, so that nothing tries to use it on the way out
// (the guard restores the screen through a connection of its own). After glutInit.
void watchDisplayConnection();
