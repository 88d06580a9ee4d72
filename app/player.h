// The viewer's controls of a running show, the same on both platforms: pause,
// jumps between parts, mute and volume. Keys and the page's control bar ask
// for them; the sequencer carries a pause or a jump out between frames, so no
// draw step ever sees one half done. Until one is asked for, the show runs
// exactly as without them.
//
// Pause: the music and the demo clock stop after the frame being drawn (the
// picture stays as that frame left it, kept by the platform), no draw step
// runs, and the frame rate counts no time paused. On the fixed-step clock time
// moves only with frames, so nothing needs stopping there.
//
// Jump: the show is rebuilt at the target part as `--part N` starts it
// (show_start.h): every earlier part's state, the music at the part's place,
// and on the fixed-step clock the frames that a `--part N` run at the same
// rate draws. A jump while paused draws the part's first frame and stays paused.
//
// Seek: the show is brought to a moment of its demo time (show_seek.h), the
// music and the clock there; on the fixed-step clock the frame drawn is the
// frame a run from the start draws at that tick. A seek while paused draws
// that frame and stays paused; so does a step of one frame forward or back.
#pragma once

#include <cstdint>

// Demo-time units (2 s) of a part that must have played for "back" to restart
// it rather than go to the part before.
constexpr float PART_BACK_GRACE = 20.0f;
constexpr int PLAYER_VOLUME_STEP = 10;  // percent per + or -
constexpr double PLAYER_SEEK_SHORT = 5.0;  // seconds, Shift+Right and Shift+Left
constexpr double PLAYER_SEEK_LONG = 30.0;  // seconds, Up and Down

// False (a capture) makes every control below do nothing.
extern bool g_playerEnabled;

// What the platform does for the player. Any may be null.
struct PlayerPlatform {
    void (*returnToStartState)();  // the GL start state again, before the show is rebuilt at a part
    void (*whilePaused)();         // once per main-loop pass while paused (redraw a held picture, rest)
    void (*toggleFullscreen)();    // f
};
extern PlayerPlatform g_playerPlatform;
// The fixed-step clock's rate (frames/s), or 0 on the live clock: where jumps land.
extern int g_playerFixedStepFps;

// --- What the viewer asks for ---
void playerTogglePause();
void playerNextPart();   // the start of the next part; nothing on the last
void playerPartBack();   // the start of this part, or of the one before within PART_BACK_GRACE
void playerFirstPart();  // the start of the show
void playerJumpTo(int32_t part);  // 1..13; anything else is ignored
// A seek to `seconds` of demo time, or by `seconds` from the time on view
// (playerSeconds); kept within the show: 0 up to its last frame.
void playerSeekTo(double seconds);
void playerSeekBy(double seconds);
// While paused, the frame `frames` frames of the clock's grid away from the
// one on view (1 the next, -1 the one before), paused again; playing, nothing.
void playerStepFrame(int frames);
void playerToggleMute();
void playerStepVolume(int steps);  // PLAYER_VOLUME_STEP percent each, kept within 0..100
void playerSetVolume(int percent);  // clamped to 0..100
void playerToggleFullscreen();

// --- What the player shows ---
bool playerPaused();  // paused, or pausing after the frame being drawn
bool playerMuted();
int playerVolume();  // percent, 0..100 (100 at start)
// The part being played (1..13): the pending jump's or seek's target, else the sequencer's.
int32_t playerPart();
// The demo time on view, in seconds: where a pending seek or jump lands, else
// the time of the frame last drawn.
double playerSeconds();

// --- The rules, for any part and time ---
// The part that "back" goes to from `part` at demo time `demoTime`.
int32_t partBackTarget(int32_t part, float demoTime);
// The part that "next" goes to from `part`; 0 when there is none.
int32_t nextPartTarget(int32_t part);
// The gain (0..1) the music is played at: volume squared, so that the steps
// sound even; 0 when muted.
float playerGain(int volumePercent, bool muted);

// --- The sequencer's side ---
// Before a main-loop pass draws: carries out a requested jump; false when
// paused (then nothing is to be drawn in this pass).
bool playerBeforeFrames();
// True while the frame being finished is the last before a pause: the
// platform keeps it on view (holdPicture) as it shows it.
bool playerHoldsNextPicture();
// After a pass drew its frames: a requested pause begins.
void playerAfterFrames();
