// Starting the show at a later part, and starting it over.
//
// A show that starts at part N is the full show as it would stand at part N's
// set-up: what parts 1 to N - 1 leave behind (their scenes and images, the GL
// state, part 4's room for part 12, the part-local clock) is rebuilt by running
// their set-ups and, unseen, the last draw step of each, at the demo time that
// frame has in a full show. The demo clock and the music start at part N's
// place in the show.
#pragma once

#include <cstdint>

// Called with true before the unseen frames of startShowAgainAt's rebuild (and
// of a seek, show_seek.h) and with false after them, when set: as nothing of those frames is ever shown,
// the platform may skip rasterizing them (their GL state changes still take
// effect). A show's first start draws them in full, as it always has: the GL
// meets every part's state before the first frame is shown.
extern void (*g_unseenFrames)(bool begin);

// Rebuilds parts 1..part-1 and starts the music and the clock for `part`
// (1..13). `fixedStepFps`: the fixed-step clock's rate (its frame 0 becomes
// part's first frame, at the clock reading and levels that frame has in the
// full show), or 0 for the wall clock (the clock and the music start at the
// end time of part - 1; earlier parts' last frames are taken a millisecond
// past their end times). Part 1 is the ordinary start.
void startShowAt(int32_t part, int fixedStepFps);

// The tick (counted at `rate` per second from 0) of part `part`'s first frame
// in a full show whose frames come at those ticks; 0 for part 1. The last
// frame of each earlier part is the first tick whose demo time is above its
// end time, and the next part starts one tick later.
long firstTickOfPart(int32_t part, int rate);
// The tick of part `part`'s last frame (1..13) in such a show: the first
// whose demo time is above its end time.
long lastTickOfPart(int32_t part, int rate);

// The sequencer at part's set-up (1..13), the part-local clock at 0, and
// parts 1..part-1 rebuilt as startShowAt rebuilds them, their last frames at
// the ticks of `rate` frames per second (the clock reads whole milliseconds:
// 1000 puts each a millisecond past its end time). `unseen`: the show is
// already running, its frames go through g_unseenFrames. The music and the
// clock are left as they are; the GL state is the platform's to reset first.
void rebuildShowAt(int32_t part, int rate, bool unseen);

// The show, wherever it stands, is rebuilt at `part` (1..13) as
// startShowAt(part, fixedStepFps) builds it: the sequencer at part's set-up,
// every earlier part's state rebuilt (what is loaded stays loaded, a World is
// put back as loaded), the music and the clock at the part's place (on the
// fixed-step clock, at the tick `firstTickOfPart` gives). The frame counter
// goes on; the GL state is the platform's to reset first.
void startShowAgainAt(int32_t part, int fixedStepFps);

// Every part set up and its last frame drawn, unseen, as a rebuild for a start
// after the last part would, then the sequencer back before part 1's set-up:
// for a platform whose drawing state is costly to meet the first time (the
// browser compiles a program for each), before the show starts. The GL state
// is the platform's to reset after it; the show then starts as a looping show
// starts again, what is loaded staying loaded.
void rehearseShow();

// The show begins again at part 1, as at its first start: music and demo
// clock from 0, the part-local clock at 0; the set-ups then find their scenes
// and images loaded and put them back as loaded. The GL state is the
// platform's to reset.
void startShowAgain();
