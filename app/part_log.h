// --verbose: one line on standard error when a part's set-up ends (part, demo
// time, how long the set-up took) and one when the part ends (frames drawn
// and frames per second over the part), so that a slow part shows at a glance;
// and one for each pause, resumption and jump the viewer asks for.
#pragma once

#include <cstdint>

extern bool g_verbose;

// Around a part's set-up (part 1's runs inside its first draw step).
void partSetupBegins(int32_t part);
void partSetupEnds(int32_t part);
// After each draw step of `part`; `ended` when the step moved the counter on.
void partFrameDrawn(int32_t part, bool ended);

// After the show rebuilt parts 1..part-1 to start at `part`.
void partsRebuilt(int32_t part, double milliseconds);
// The looping show starts over at part 1.
void showStartsOver();

// The viewer's controls (app/player.h): a pause begins or ends (demo time and
// frames counted so far), a jump to `part` was carried out in `milliseconds`.
void showPaused();
void showResumed();
void showJumped(int32_t part, double milliseconds);
// A seek to the clock reading `landing` (ms) was carried out in `milliseconds`.
void showSought(uint32_t landing, double milliseconds);
