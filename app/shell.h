// The application shell: start-up, the window, the GL start state, input, and
// the frame counter whose average the end of the show prints.
#pragma once

#include <cstdint>

struct Library;

extern int32_t g_fullscreen;     // 1: fullscreen after a display-mode switch; 0 (any argument): windowed
// Frames drawn since startFrameCounter; every draw step adds 1 before its
// swap. 64 bits, so that a show looping for months counts on (2^31 frames
// are ten hours at 60 frames/s).
extern int64_t g_frameCount;
extern int64_t g_fpsStartClock;  // milliseconds, the wall clock's reading at startFrameCounter
// The wall clock the frame rate is measured against (real time, even when the
// demo clock steps frame by frame), in milliseconds, 64 bits: a looping show
// runs for weeks. The steady clock unless a test sets another.
extern int64_t (*g_wallMillis)();
extern Library* g_library;       // the one archive record, allocated by initGlState, never freed

// The start state every demo part begins from, and the archive record.
void initGlState();

// GLUT callbacks: Escape or any mouse press moves the sequencer to its end
// state; r prints the demo time ("%f\n", tenths of a second). The player's
// keys (app/player.h): Space pauses and resumes, m mutes, + (or =) and - set
// the volume, f toggles fullscreen; Right or Page Down goes to the next part,
// Left or Page Up back, Home to the start of the show; Shift+Right and
// Shift+Left seek 5 s forward and back, Up and Down 30 s; while paused, . and
// , step one frame forward and back.
void onKey(unsigned char key, int x, int y);
void onSpecialKey(int key, int x, int y);
void onMouse(int button, int state, int x, int y);

// The special keys' codes, as GLUT gives them (the page passes the same).
constexpr int SPECIAL_KEY_LEFT = 100;
constexpr int SPECIAL_KEY_UP = 101;
constexpr int SPECIAL_KEY_RIGHT = 102;
constexpr int SPECIAL_KEY_DOWN = 103;
constexpr int SPECIAL_KEY_PAGE_UP = 104;
constexpr int SPECIAL_KEY_PAGE_DOWN = 105;
constexpr int SPECIAL_KEY_HOME = 106;
// Added to Left's or Right's code when Shift is held with it.
constexpr int SPECIAL_KEY_SHIFT = 0x1000;
// The window was closed (window manager's close button, Alt-F4): end like Escape.
void onWindowClose();

// Zeroes g_frameCount and takes the wall clock. Called once, at the end of part 1's set-up.
void startFrameCounter();
// The time between these two is not counted in the frame rate (a pause).
void pauseFrameCounter();
void resumeFrameCounter();
// Average frames per second since startFrameCounter, over the time not paused.
double framesPerSecond();
// (frames * 1000) / (nowMillis - startMillis), in double, every term in 64
// bits; 0 when no frame was counted or no time has passed.
double framesPerSecondAt(int64_t frames, int64_t startMillis, int64_t nowMillis);
