// The fixed-step clock: the demo clock follows the frames swapped instead of
// the wall, so every run draws the same frames. The k-th frame swapped (k from
// 0) sees exactly round(k * 1000 / fps) ms since startMusic, and the level is
// the 20 ms peak of the decoded soundtrack at that moment. No audio device is
// opened; the soundtrack's end moves the clock's zero as the end sync does.
#pragma once

#include <string>

struct DecodedAudio;

// Installs the fixed-step clock and level source at `fps` frames per second
// (1..240). With a soundtrack path, decodes it for the levels (false and
// `error` when it opens neither as a stream nor as a module); with an empty
// path, levels report the no-channel value as a silent show does.
bool startFixedStepClock(int fps, const std::string& soundtrackPath, std::string* error);

// The clock reading (ms) of frame `frame` at `fps`: round(frame * 1000 / fps).
uint32_t fixedStepMillisOf(long frame, int fps);

// True once startFixedStepClock has succeeded.
bool fixedStepClockActive();

// One more frame has been swapped.
void advanceFixedStepClock();

// The next frame swapped is frame `frame` of the show: a show that starts at a
// later part, or starts over.
void setFixedStepFrame(long frame);

// The decoded soundtrack; null before startFixedStepClock, empty for a silent show.
const DecodedAudio* fixedStepSoundtrack();

// The decoded soundtrack's length in milliseconds; 0 for a silent show.
uint32_t fixedStepSongMillis();

// Frames swapped so far.
long fixedStepFrames();
