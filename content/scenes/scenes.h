// content/scenes: the builders of the twelve .3ds scenes, one file per group of parts.
//
// The show's twelve .3ds scenes, generated: each holds what its demo part
// needs (meshes in the roles the part gives them, the material names it
// sets, omni lights, a current camera, and for two parts a keyframed camera
// flight), composed for the part's own camera, fog and blends.
#pragma once

#include <cstdint>
#include <vector>

#include "content/content_entry.h"

// All twelve, named as the demo parts load them, in the order of the show.
// Same bytes on every run.
std::vector<ContentEntry> makeScenes();

// One file each.
std::vector<uint8_t> makeTestScene();   // "test.3ds": part 1
std::vector<uint8_t> makeStilScene();   // "stil.3ds": part 2
std::vector<uint8_t> makeRumScene();    // "rum.3ds": part 3
std::vector<uint8_t> makeRum2Scene();   // "rum2.3ds": parts 4 and 12
std::vector<uint8_t> make2dScene();     // "2d.3ds": part 5
std::vector<uint8_t> make3dScene();     // "3d.3ds": part 6
std::vector<uint8_t> make4dScene();     // "4d.3ds": part 7
std::vector<uint8_t> make5dScene();     // "5d.3ds": part 8
std::vector<uint8_t> make6dScene();     // "6d.3ds": part 9
std::vector<uint8_t> make7dScene();     // "7d.3ds": part 10
std::vector<uint8_t> make8dScene();     // "8d.3ds": part 11
std::vector<uint8_t> make9dScene();     // "9d.3ds": part 13
