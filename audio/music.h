// Music and the demo clock: the soundtrack is opened before the window exists,
// started right before the main loop, and from then on every frame turns the
// milliseconds since it started into the demo time and samples its level.
#pragma once

#include <atomic>
#include <cstdint>

#include "audio/audio_output.h"

// Demo-time units per millisecond: one unit is a tenth of a second.
constexpr double DEMO_TIME_SCALE = 0.01;

extern float g_demoTime;      // tenths of a second since g_musicStartTick; written only by updateMusicClock
extern uint32_t g_levelLeft;  // low 16 bits of the last level (0..128, or 65535 when the query failed)
extern uint32_t g_levelRight; // high 16 bits of the last level
// Clock reading (milliseconds) at which the demo time is 0. Set by startMusic,
// and by onMusicEnd on the audio thread each time the soundtrack loops.
extern std::atomic<uint32_t> g_musicStartTick;
extern AudioHandle g_stream;  // the soundtrack as a stream, 0 when it did not open as one
extern AudioHandle g_music;   // the soundtrack as a module, 0 unless it opened as one

// False (from --nosound) skips the audio layer altogether: no device is opened,
// nothing is loaded, and the show runs silently on its clock.
extern bool g_soundEnabled;

// Opens the output device and the soundtrack, as a stream or else as a module,
// and sets the end sync. Fatal when no device opens or the file opens neither way.
void openMusic(const char* fileName);
// Starts playback (looping) and sets the clock's zero after it.
void startMusic();
// Starts (or restarts) playback `positionMillis` into the song and sets the
// clock's zero that far back, so the demo time starts at that position.
void startMusicAt(uint32_t positionMillis);
// Pause: the soundtrack stops where it is, and the demo clock stands from
// now until resumeMusic, which goes on from there (the clock's zero moves on
// by the time paused). On the fixed-step clock, which moves only with the
// frames swapped, the clock is left as it is. startMusicAt while paused puts
// the song and the clock at the position, still paused.
void pauseMusic();
void resumeMusic();
bool musicPaused();
// The opened soundtrack's length in milliseconds; 0 without one.
uint32_t soundtrackMillis();
// The demo time `elapsedMillis` after the clock's zero: computed in double,
// stored as float, as every frame's demo time is.
float demoTimeOf(int32_t elapsedMillis);
// The level the soundtrack has `songMillis` into the song, as the level source
// reports it once the music has played there: from the fixed-step clock's
// decoded soundtrack, else audioChannelLevelAt.
uint32_t musicLevelAt(uint32_t songMillis);
// Refreshes g_demoTime, g_levelLeft and g_levelRight.
void updateMusicClock();
// Frees the audio layer and stops the sound.
void closeMusic();
// "BASS ERROR: text" (and `hint` on its own line), the audio layer freed, then
// an immediate exit with status 0.
[[noreturn]] void musicFatal(const char* text, const char* hint = nullptr);
// The end sync: the soundtrack reached its end and starts again.
void onMusicEnd(uint32_t sync, uint32_t channel, uint32_t data);
