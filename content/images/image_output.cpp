#include "content/images/image_output.h"

#include <cmath>

uint8_t toByte(float value) {
    if (!(value > 0.0f)) return 0;
    if (value >= 1.0f) return 255;
    return static_cast<uint8_t>(std::lround(value * 255.0f));
}

PcxPalette rampPalette(const std::vector<RampStop>& stops) {
    PcxPalette palette{};
    for (int i = 0; i < 256; ++i) {
        const float t = static_cast<float>(i) / 255.0f;
        Rgb colour{0.0f, 0.0f, 0.0f};
        if (!stops.empty()) {
            colour = stops.front().colour;
            for (size_t k = 0; k + 1 < stops.size(); ++k) {
                const RampStop& a = stops[k];
                const RampStop& b = stops[k + 1];
                if (t >= a.at && t <= b.at) {
                    colour = mixed(a.colour, b.colour, b.at > a.at ? (t - a.at) / (b.at - a.at) : 1.0f);
                    break;
                }
                if (t > b.at) colour = b.colour;
            }
        }
        palette[static_cast<size_t>(i) * 3] = toByte(colour.r);
        palette[static_cast<size_t>(i) * 3 + 1] = toByte(colour.g);
        palette[static_cast<size_t>(i) * 3 + 2] = toByte(colour.b);
    }
    return palette;
}

std::vector<uint8_t> canvasToPcx(const Canvas& canvas) {
    std::vector<uint8_t> rgb(canvas.rgb.size());
    for (size_t i = 0; i < rgb.size(); ++i) rgb[i] = toByte(canvas.rgb[i]);
    return writePcxRgb(canvas.width, canvas.height, rgb);
}

std::vector<uint8_t> maskToPcx(const Mask& mask, const PcxPalette& palette) {
    std::vector<uint8_t> indices(mask.values.size());
    for (size_t i = 0; i < indices.size(); ++i) indices[i] = toByte(mask.values[i]);
    return writePcxIndexed(mask.width, mask.height, indices, palette);
}
