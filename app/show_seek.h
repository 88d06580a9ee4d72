// Seeking: the show brought to any moment of its demo time, not only to the
// start of a part.
//
// A part's frame follows from the demo time and from what the part built up
// since its set-up (parts/part_frame.h): in part 1 every frame since then, in
// the others the frame before. A seek rebuilds the show at the part that
// holds the moment, as a jump does (show_start.h), then runs the part's frames
// before the moment, on a grid (the fixed-step clock's ticks, or SEEK_LIVE_FPS
// a second on the live clock): the last SEEK_SETTLE_FRAMES drawn unseen, and
// in part 1 every one before those since its set-up passed through, only its
// state changing (a few microseconds each). A seek forward within the part on
// view goes on from the frame on view, with no rebuild.
//
// Times are clock readings in milliseconds since the show's start (the demo
// time times 100). On the fixed-step clock a seek lands on a tick, and the
// frame drawn there is, byte for byte, the frame the whole show draws at that
// tick. On the live clock the music and the clock land at the time itself.
#pragma once

#include <cstdint>

constexpr int SEEK_LIVE_FPS = 60;
constexpr long SEEK_SETTLE_FRAMES = 2;

// The grid's rate, frames per second: `fixedStepFps`, or SEEK_LIVE_FPS for 0.
int seekRate(int fixedStepFps);

// The last reading a seek lands on at `rate`: the frame before the one that
// ends the show.
uint32_t lastSeekMillis(int rate);

// Where a seek to `millis` lands: within 0..lastSeekMillis, and on the
// fixed-step clock the last tick at or before it.
uint32_t seekLanding(uint32_t millis, int fixedStepFps);

// The tick of the fixed-step clock at `fps` that a seek to `millis` lands on.
long seekTick(uint32_t millis, int fps);

// The reading `frames` frames of the grid away from `millis` (forward when
// positive): the next or the previous frame, not below 0.
uint32_t seekStepMillis(uint32_t millis, int frames, int fixedStepFps);

// The part (1..13) that draws the frame at `millis` on the grid of `rate`.
int32_t partAtMillis(uint32_t millis, int rate);

// The running show brought to seekLanding(millis): the next frame drawn is
// the show's frame there, the music and the clock at its time, paused or not
// as before. `returnToStartState` (null: none) resets the GL state before a
// rebuild. The frame counter goes on.
void seekShowTo(uint32_t millis, int fixedStepFps, void (*returnToStartState)());

// The show's first start, at seekLanding(millis) instead of a part's start:
// as startShowAt, the earlier parts drawn in full, then the part's frames
// before the moment unseen; the frame counter starts.
void startShowAtMillis(uint32_t millis, int fixedStepFps);
