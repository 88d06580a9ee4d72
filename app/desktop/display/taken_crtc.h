// What the show took from the screen, and how it gives it back: one CRTC,
// switched to the show's mode. Only that CRTC goes back, and only while the
// show's mode still stands on it: whatever the person changed during the show
// (another monitor moved, switched off or on; the show's own monitor set to
// another mode, switched off or its output gone) stays as they left it.
#pragma once

#include "app/desktop/display/screen_layout.h"

#include <string>

struct TakenCrtc {
    CrtcState before;     // the CRTC as it was before the switch
    RRMode showMode = 0;  // the mode the show set on it
    std::string name;     // its output's name, for the notes
};

// Sets the CRTC back to `taken.before` (mode, position, rotation, outputs)
// while it still shows `taken.showMode` on the same connected outputs; the
// screen grows where the CRTC needs more room than the desktop has left it
// (it never shrinks). No other CRTC and not the primary output are touched.
// Otherwise the CRTC is left as it is, and `note` says so. False only when a
// give-back was due and failed.
bool giveBackCrtc(Display* display, const TakenCrtc& taken, std::string* note);
