#include "content/images/app_icon.h"

#include <algorithm>
#include <cmath>

#include "content/images/image_output.h"
#include "content/images/pictures.h"

namespace {

// The square (on screen) of the logo picture around its "k", glow included:
// picture pixels are ASPECT_STRIP times as wide on screen as they are high.
// Right of LETTER_END the "a" begins, which the icon leaves out.
constexpr float CROP_TOP = 34.0f;
constexpr float CROP_HEIGHT = 120.0f;
constexpr float CROP_LEFT = 13.0f;
constexpr float CROP_WIDTH = CROP_HEIGHT / ASPECT_STRIP;
constexpr float LETTER_END = 84.0f;

constexpr float CORNER = 0.2f;  // corner radius, of the tile's side
constexpr Rgb TILE_TOP{0.07f, 0.10f, 0.18f};
constexpr Rgb TILE_BOTTOM{0.01f, 0.02f, 0.05f};
constexpr int SAMPLES = 4;  // per side of an icon pixel

// The canvas at (x, y) in picture pixels, bilinear, black outside it and
// right of LETTER_END.
Rgb sampleCanvas(const Canvas& canvas, float x, float y) {
    if (x > LETTER_END) return Rgb{0.0f, 0.0f, 0.0f};
    const float fx = x - 0.5f;
    const float fy = y - 0.5f;
    const int x0 = static_cast<int>(std::floor(fx));
    const int y0 = static_cast<int>(std::floor(fy));
    const float tx = fx - static_cast<float>(x0);
    const float ty = fy - static_cast<float>(y0);
    Rgb sum{0.0f, 0.0f, 0.0f};
    for (int dy = 0; dy < 2; ++dy) {
        for (int dx = 0; dx < 2; ++dx) {
            const int px = x0 + dx;
            const int py = y0 + dy;
            if (px < 0 || py < 0 || px >= canvas.width || py >= canvas.height) continue;
            const float weight = (dx ? tx : 1.0f - tx) * (dy ? ty : 1.0f - ty);
            const float* rgb = canvas.at(px, py);
            sum = Rgb{sum.r + rgb[0] * weight, sum.g + rgb[1] * weight, sum.b + rgb[2] * weight};
        }
    }
    return sum;
}

// How much of the point (u, v) in 0..1 lies inside the rounded tile: 1 or 0
// (the supersampling makes the edge soft).
bool insideTile(float u, float v) {
    const float cx = std::clamp(u, CORNER, 1.0f - CORNER);
    const float cy = std::clamp(v, CORNER, 1.0f - CORNER);
    return (u - cx) * (u - cx) + (v - cy) * (v - cy) <= CORNER * CORNER;
}

}  // namespace

std::vector<uint8_t> makeAppIcon(int size) {
    static const Canvas logo = paintLogo();
    std::vector<uint8_t> rgba(static_cast<size_t>(size) * size * 4);
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            Rgb colour{0.0f, 0.0f, 0.0f};
            int covered = 0;
            for (int sy = 0; sy < SAMPLES; ++sy) {
                for (int sx = 0; sx < SAMPLES; ++sx) {
                    const float u = (static_cast<float>(x) + (sx + 0.5f) / SAMPLES) / static_cast<float>(size);
                    const float v = (static_cast<float>(y) + (sy + 0.5f) / SAMPLES) / static_cast<float>(size);
                    if (!insideTile(u, v)) continue;
                    // The logo adds its light to the tile, as the show adds it to a frame.
                    const Rgb tile = mixed(TILE_TOP, TILE_BOTTOM, v);
                    const Rgb light = sampleCanvas(logo, CROP_LEFT + u * CROP_WIDTH, CROP_TOP + v * CROP_HEIGHT);
                    colour = Rgb{colour.r + std::min(1.0f, tile.r + light.r), colour.g + std::min(1.0f, tile.g + light.g),
                                 colour.b + std::min(1.0f, tile.b + light.b)};
                    ++covered;
                }
            }
            uint8_t* pixel = &rgba[(static_cast<size_t>(y) * size + x) * 4];
            const float inv = covered > 0 ? 1.0f / static_cast<float>(covered) : 0.0f;
            pixel[0] = toByte(colour.r * inv);
            pixel[1] = toByte(colour.g * inv);
            pixel[2] = toByte(colour.b * inv);
            pixel[3] = toByte(static_cast<float>(covered) / (SAMPLES * SAMPLES));
        }
    }
    return rgba;
}
