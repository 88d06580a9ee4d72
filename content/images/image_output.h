// Turns painted pictures into PCX files: an RGB canvas into a 24-bit image, a
// one-channel mask into an indexed image whose palette is a colour ramp (mask
// value 0 is index 0, value 1 is index 255).
#pragma once

#include <cstdint>
#include <vector>

#include "content/formats/pcx_writer.h"
#include "content/images/raster.h"

struct RampStop {
    float at;  // 0..1, increasing from stop to stop
    Rgb colour;
};

// 256 colours: index i has the colour at i / 255 along the stops, linearly
// between neighbours (before the first and after the last stop: their colour).
PcxPalette rampPalette(const std::vector<RampStop>& stops);

// 0..1 (clamped) to 0..255, rounded to nearest.
uint8_t toByte(float value);

std::vector<uint8_t> canvasToPcx(const Canvas& canvas);
std::vector<uint8_t> maskToPcx(const Mask& mask, const PcxPalette& palette);
