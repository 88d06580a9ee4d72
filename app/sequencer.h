// The part sequencer: one GLUT callback that, by a state counter, runs each
// demo part's set-up once and its draw step every frame, then the end path.
//
// g_partCounter: 0 before the first part; 2k-2 part k (2..13) not yet set up;
// 2k-1 part k playing; PART_COUNTER_END the end.
#pragma once

#include <atomic>
#include <cstdint>

constexpr int32_t PART_COUNT = 13;
constexpr int32_t PART_COUNTER_END = 26;

extern int32_t g_partCounter;
// Set from outside the frame loop (a signal handler, on whichever thread takes
// the signal, or a capture whose encoder stopped) to end the show: the next
// onFrame moves the counter to PART_COUNTER_END and runs the end path. A part
// set up in the meantime finishes its set-up first. Lock-free, so a signal
// handler may set it.
extern std::atomic<bool> g_endRequested;
static_assert(std::atomic<bool>::is_always_lock_free);
// The part-local clock, in demo-time units: every set-up ends with
// g_partStart = g_partTime; every draw step sets g_partTime = g_demoTime - g_partStart.
extern float g_partStart;
extern float g_partTime;

struct PartSteps {
    void (*setup)();
    void (*draw)();
};

// The steps of parts 1..13 (index 0..12). The show's own unless a test replaces them.
extern const PartSteps* g_partSteps;
// What the end state runs: runEndPath unless a test replaces it.
extern void (*g_endPath)();
// What the last part's own end runs instead of the end path when the show
// loops: null (the show ends) unless the platform sets it. Escape, a mouse
// button, a closed window or a signal still end a looping show.
extern void (*g_showStartsOver)();

// The display and idle callback.
void onFrame();
// Restores the display (when switched), frees the audio, completes a capture,
// prints "fps: %2.2f\n", frees the wave map and exits with status 0.
[[noreturn]] void runEndPath();
