// The guard of a switched display mode: a small process, started before the
// show switches the mode, that holds what the show takes (the CRTC as it was)
// and gives it back by the show's own rule (taken_crtc.h) when the show cannot
// (killed with SIGKILL, crashed, or stuck on a frozen X connection and killed).
//
// How the guard knows the show is gone: it waits on a pipe whose writing end
// only the show holds. When the show's process ends by any means, the kernel
// closes that end and the guard reads end-of-file; unless the show said
// beforehand that it restored the mode itself, the guard gives the CRTC back
// through an X connection of its own, and ends. The guard
// ignores the terminal's signals and sits in a process group of its own, so
// Ctrl-C reaches only the show; it is not the show's child (init reaps it), so
// it never lingers as a zombie of the show.
#pragma once

#include "app/desktop/display/taken_crtc.h"

// Starts the guard holding `taken`. False when no process can be started
// (the caller then does not switch).
bool startDisplayGuard(const TakenCrtc& taken);

// The show restored the mode itself (or never switched it): the guard ends
// without touching the display. Nothing when no guard runs.
void displayGuardRelease();

// Async-signal-safe: asks the guard to restore the layout now and waits until
// it has (two seconds at most). For a crash handler, which cannot use X itself.
// False when no guard answered.
bool displayGuardRestoreNow();
