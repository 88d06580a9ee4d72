// "outside.pcx", the closing picture: the word over a striped sun that sits
// on the horizon, and a floor of lines running out to it.
#include <algorithm>
#include <cmath>

#include "content/images/image_output.h"
#include "content/images/lettering.h"
#include "content/images/pictures.h"

namespace {

constexpr float CENTRE_X = PICTURE_WIDTH * 0.5f;
constexpr float HORIZON = 176.0f;
constexpr float SUN_RADIUS = 78.0f;

// The upper half of a disc on the horizon, cut by gaps that widen downwards.
Mask sun() {
    Mask disc(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_PANEL);
    fillEllipse(disc, CENTRE_X, HORIZON, SUN_RADIUS, 1.0f);
    for (int y = 0; y < disc.height; ++y) {
        const float height = HORIZON - (y + 0.5f);  // above the horizon
        float keep = height > 0.0f ? 1.0f : 0.0f;
        if (height > 0.0f && height < SUN_RADIUS * 0.55f) {
            const float depth = 1.0f - height / (SUN_RADIUS * 0.55f);
            const float phase = std::fmod(height, 9.0f);
            keep = phase < 1.0f + depth * 5.0f ? 0.0f : 1.0f;
        }
        for (int x = 0; x < disc.width; ++x) disc.at(x, y) *= keep;
    }
    return disc;
}

// Horizontal lines closing in on the horizon and rays from the vanishing point.
Mask floorGrid() {
    Mask grid(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_PANEL);
    for (int i = 0; i < 7; ++i) {
        const float y = HORIZON + 6.0f * static_cast<float>((i + 1) * (i + 2)) * 0.5f;
        if (y >= PICTURE_HEIGHT) break;
        strokeLine(grid, 0.0f, y, PICTURE_WIDTH, y, 1.3f);
    }
    for (int i = -10; i <= 10; ++i) {
        const float spread = i * 64.0f;
        strokeLine(grid, CENTRE_X + i * 6.0f, HORIZON, CENTRE_X + spread * 2.0f, PICTURE_HEIGHT + 120.0f, 1.2f);
    }
    for (int y = 0; y < grid.height; ++y) {
        const float below = std::clamp((y - HORIZON) / (PICTURE_HEIGHT - HORIZON), 0.0f, 1.0f);
        for (int x = 0; x < grid.width; ++x) {
            const float side = std::fabs(x - CENTRE_X) / CENTRE_X;
            grid.at(x, y) *= (0.25f + 0.75f * below) * (1.0f - 0.6f * side * side);
        }
    }
    return grid;
}

Mask horizonLine() {
    Mask line(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_PANEL);
    strokeLine(line, 0.0f, HORIZON, PICTURE_WIDTH, HORIZON, 1.6f);
    for (int x = 0; x < line.width; ++x) {
        const float side = std::fabs(x - CENTRE_X) / CENTRE_X;
        for (int y = 0; y < line.height; ++y) line.at(x, y) *= 1.0f - side * side;
    }
    return line;
}

}  // namespace

ContentEntry makeOutsidePicture() {
    Mask word(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_PANEL);
    drawTextCentred(word, TextStyle{FONT_SANS_BOLD, 64.0f, 0.1f}, "outside", CENTRE_X, 72.0f);
    const Mask disc = sun();
    const Mask grid = floorGrid();
    const Mask line = horizonLine();

    Canvas canvas(PICTURE_WIDTH, PICTURE_HEIGHT);
    paintGlow(canvas, disc, Rgb{0.9f, 0.35f, 0.15f}, 20.0f, 0.55f);
    paintMaskVertical(canvas, disc, Rgb{1.0f, 0.86f, 0.5f}, Rgb{0.95f, 0.38f, 0.3f}, HORIZON - SUN_RADIUS, HORIZON);
    paintGlow(canvas, grid, Rgb{0.2f, 0.3f, 0.8f}, 5.0f, 0.6f);
    paintMask(canvas, grid, Rgb{0.45f, 0.55f, 0.95f}, 0.9f);
    paintGlow(canvas, line, Rgb{1.0f, 0.5f, 0.3f}, 6.0f, 0.9f);
    paintMask(canvas, line, Rgb{1.0f, 0.85f, 0.7f}, 1.0f);
    paintGlow(canvas, word, Rgb{0.3f, 0.45f, 0.95f}, 10.0f, 0.55f);
    paintMaskVertical(canvas, word, Rgb{1.0f, 1.0f, 1.0f}, Rgb{0.85f, 0.9f, 1.0f}, 24.0f, 72.0f);
    return {"outside.pcx", canvasToPcx(canvas)};
}
