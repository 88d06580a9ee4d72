// What the show tells the page it runs in (kaskade_page.js), and the test
// hooks of the deterministic mode: frames read back for the page, and frames
// at which the animation loop pauses until the page resumes it.
#pragma once

#include <cstdint>

// The end of the show: `line` ("fps: N.NN") goes on the page.
void pageShowEnded(const char* line);
// A fatal report ended the show; its text went to the console, the page shows it.
void pageShowFailed();
// A line for the page's status line (and only there).
void pageSay(const char* line);

// Frame `index` is to be read back and handed to the page
// (window.kaskade.frames[index], RGBA rows bottom up). Frames count from 0 as
// they are shown; on the fixed-step clock, from the whole show's first frame.
void grabFrameAt(long index);
// The loop pauses once the call that showed frame `index` returns.
void pauseAtFrame(long index);

// Called by presentFrame for every frame shown, after the frame is complete:
// counts it for its part and reads it back or asks for a pause when listed.
void frameShown();
// True (once) when a listed pause frame was shown since the last call.
bool takePauseRequest();
