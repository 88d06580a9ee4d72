// Drawing a feature scene (feature_scenes.h) through Mesa's fixed function
// and through gl11, and how far the two frames are apart.
#pragma once

#include "tests/gl11/egl_contexts.h"

#include <string>

// How far the layer's frame is from the reference's, over red, green and blue.
struct SceneDifference {
    int largest = 0;      // the largest difference of one channel at one pixel (0..255)
    double mean = 0.0;    // the mean absolute difference over every channel of every pixel
    int pixelsApart = 0;  // pixels with a channel more than PIXEL_TOLERANCE apart
};

// Differences up to this in a channel are rounding (8-bit colours, float
// lighting computed in another order); a pixel further apart counts.
constexpr int PIXEL_TOLERANCE = 2;

// The most pixels a scene drawn by gl11 may have apart from Mesa's (0.2 % of
// its 16,384). Measured (tests/gl11/fault_test prints the table): gl11 draws
// every scene with no pixel apart, no channel more than 1 from Mesa's. Each
// deliberate mistake (gl11/faults.h) puts 266 to 15,376 pixels of its
// feature's scene apart (the fewest: flat lines coloured by their first
// vertex, 266); harmless variations stay far below the bound: a line drawn
// from its other end moves up to 8 pixels.
constexpr int MAX_PIXELS_APART = 32;

SceneDifference compareScenes(const SceneImage& reference, const SceneImage& layer);

// The scene drawn on a fresh reference context.
SceneImage drawReferenceScene(int scene);
// The scene drawn through gl11 on a fresh OpenGL ES 3 context (gl11Init first).
SceneImage drawLayerScene(int scene);

// Writes the two frames and their difference side by side into
// `directory`/NAME.png (for looking at a comparison). False if it cannot.
bool writeComparison(const std::string& directory, const std::string& name, const SceneImage& reference,
                     const SceneImage& layer);
