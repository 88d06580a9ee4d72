// The steps every demo part shares with the sequencer: the end of a set-up,
// the start and end of a frame, the end test, and the GL settings the parts
// make in the same words. Each is one step of the part contract, so a draw
// step still reads as its numbered steps.
#pragma once

#include <cstdint>

// Field of view every part gives its scene's current camera, degrees.
constexpr float PART_FOV = 110.0f;

// The frame's background, also the fog colour of parts 6, 10 and 13.
extern const float PART_CLEAR_COLOUR[4];  // 0.6, 0.2, 0.1, 0.5
// Part 1's white fog.
extern const float WHITE_FOG_COLOUR[4];   // 1, 1, 1, 1

// The end of every set-up: g_library->close(); updateMusicClock();
// g_partStart = g_partTime. Part 1's set-up does not use it (it starts the
// frame counter in between).
void finishPartSetup();

// glClearColor(PART_CLEAR_COLOUR); glClear(colour and depth).
void clearPartFrame();

// updateMusicClock(); g_partTime = g_demoTime - g_partStart.
void updatePartTime();

// Exponential fog: glEnable(GL_FOG), GL_EXP, the colour, the density
// (per scene unit).
void enablePartFog(const float colour[4], float density);

// Advances g_partCounter by one on a frame whose g_demoTime is strictly above
// `endTime` (demo-time units).
void endPartAfter(float endTime);

// glMatrixMode(GL_MODELVIEW); glLoadIdentity(): overlays are laid in the
// 640 x 480 layout with no view transform.
void resetModelView();

// g_frameCount += 1; then the frame is shown (presentFrame). Neither while
// g_framesUnseen is set.
void finishPartFrame();

// Set while the show rebuilds what earlier parts leave behind (starting at a
// later part): their draw steps then run in full but their frames are neither
// counted nor shown.
extern bool g_framesUnseen;

// What a part's frames carry from one to the next. Every part's frame follows
// from the demo time and from the frame before it (a camera or light moved
// after the render shows in the next frame; the GL state it leaves), except
// part 1's: its beat reveals count the loud frames heard since its set-up, and
// the logo's slide and the meshes' rise start from the first frames past their
// times. True for such a part (1).
bool partBuildsOnEveryFrame(int32_t part);
// Set while a seek passes the frames of such a part on its way to a later
// one: its draw step then makes only that frame's changes to the part's state
// (the clock read, the turn, the reveal, the latches) and draws nothing.
extern bool g_framesPassed;
