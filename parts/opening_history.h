// What the demo parts' frames carry from one to the next. Every part's frame
// follows from the demo time and from the frame before it (a camera or light
// moved after the render shows in the next frame, the GL state it leaves),
// except part 1's: its beat reveals count the loud frames heard since its
// set-up, and the logo's slide and the meshes' rise start from the first
// frames past their times. That state can be kept and put back.
#pragma once

#include "engine/world_state.h"

#include <cstdint>

// True for a part whose frames build on every frame since its set-up (part 1).
bool partBuildsOnEveryFrame(int32_t part);

// Part 1's state between two frames: its scene (the meshes revealed, risen
// and turned, the camera) and the reveal and latch globals of part_state.h.
struct OpeningState {
    WorldState scene;
    int32_t revealIndex = 0;
    int32_t revealArmed = 0;
    float logoSlideStart = 0.0f;
    float riseStart = 0.0f;
};

// Part 1's state as it stands (its set-up has run).
OpeningState keepOpeningState();
// Puts it back into part 1's scene and globals.
void restoreOpeningState(const OpeningState& state);
