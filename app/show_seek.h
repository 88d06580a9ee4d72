// Seeking: the show brought to any moment of its demo time, not only to the
// start of a part.
//
// A part's frame follows from the demo time and from what the part built up
// since its set-up (parts/opening_history.h): in part 1 every frame since
// then, in the others the frame before. A seek rebuilds the show at the part
// that holds the moment, as a jump does (show_start.h), and draws, unseen, the
// frames the part needs before it: every frame of part 1 since its set-up, the
// last SEEK_SETTLE_FRAMES of any other part. Those frames fall on a grid: the
// fixed-step clock's ticks, or SEEK_LIVE_FPS a second on the live clock. A
// seek forward within the part on view goes on from the frame on view, with no
// rebuild; part 1 also goes on from the nearest snapshot of its state, kept
// once a second as it is drawn, when that is nearer.
//
// Times are clock readings in milliseconds since the show's start (the demo
// time times 100). On the fixed-step clock a seek lands on a tick, and the
// frame drawn there is, byte for byte, the frame the whole show draws at that
// tick. On the live clock the music and the clock land at the time itself.
#pragma once

#include <cstddef>
#include <cstdint>

constexpr int SEEK_LIVE_FPS = 60;
constexpr long SEEK_SETTLE_FRAMES = 2;
constexpr uint32_t SEEK_SNAPSHOT_EVERY_MS = 1000;

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

// After a main-loop pass: while part 1 plays, keeps a snapshot of its state,
// one a second.
void keepSeekSnapshot();

// False (benchmarks) keeps no snapshots and uses none.
extern bool g_seekSnapshots;
// The bytes the kept snapshots hold.
size_t seekSnapshotBytes();
