// Comparing frames of different sizes: a large frame averaged down to the
// show's 640 x 480 and compared with a frame drawn at that size.
#pragma once

#include "app/desktop/capture/png_file.h"

#include <string>
#include <vector>

// `image` (RGB or RGBA) averaged down to width x height: each target pixel is
// the area-weighted mean of the source pixels it covers, per channel (RGB).
// Only the `cropWidth` x `cropHeight` rectangle at (`cropX`, `cropY`) is taken
// when given (the picture between a wide frame's bars).
std::vector<double> scaledDown(const PngImage& image, int width, int height, int cropX = 0, int cropY = 0,
                               int cropWidth = 0, int cropHeight = 0);

// Mean absolute difference per channel value (0..255) between `scaled` and `reference`'s RGB.
double meanAbsoluteError(const std::vector<double>& scaled, const PngImage& reference);

// RGB values of `image` as doubles, as scaledDown gives them.
std::vector<double> asDoubles(const PngImage& image);

// Whether `frame` is `reference` as the frame regressions count a match: the
// same size, and at most one channel value in a thousand more than a rounding
// step (16) away; a changed scene moves thousands.
bool matchesReference(const PngImage& frame, const PngImage& reference);

// Reads a PNG, failing the test (not aborting it) when it cannot.
PngImage loadPng(const std::string& path);
