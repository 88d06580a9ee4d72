// The pictures that are one word each, with a flourish that acts it out:
// "part.pcx" (one of a row of thirteen), "ever.pcx" (a loop without end),
// "forget.pcx" (letters dissolving into a halftone) and "invert.pcx" (a light
// panel with the word cut out of it).
#include <algorithm>
#include <cmath>
#include <vector>

#include "content/images/image_output.h"
#include "content/images/lettering.h"
#include "content/images/pictures.h"

namespace {

constexpr float CENTRE_X = PICTURE_WIDTH * 0.5f;

// Multiplies every column x of the mask by fade(x).
template <typename Fade>
void fadeColumns(Mask& mask, Fade fade) {
    for (int x = 0; x < mask.width; ++x) {
        const float f = fade(static_cast<float>(x));
        for (int y = 0; y < mask.height; ++y) mask.at(x, y) *= f;
    }
}

}  // namespace

ContentEntry makePartPicture() {
    Mask word(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_LAYER);
    drawTextCentred(word, TextStyle{FONT_SANS_BOLD, 108.0f, 0.04f}, "part", CENTRE_X, 132.0f);
    // The show's thirteen parts as a row of squares; this is the sixth.
    Mask squares(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_LAYER);
    Mask current(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_LAYER);
    constexpr int PARTS = 13;
    constexpr int THIS_PART = 6;
    constexpr float STEP = 26.0f;
    for (int i = 1; i <= PARTS; ++i) {
        const float x = CENTRE_X + (i - (PARTS + 1) * 0.5f) * STEP;
        Mask& target = i == THIS_PART ? current : squares;
        fillRoundedRect(target, x - 8.0f, 182.0f, x + 8.0f, 198.0f, 3.0f);
        if (i != THIS_PART) {
            Mask inside(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_LAYER);
            fillRoundedRect(inside, x - 6.0f, 184.0f, x + 6.0f, 196.0f, 2.0f);
            punchOut(target, inside);
        }
    }
    Mask caption(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_LAYER);
    drawTextCentred(caption, TextStyle{FONT_SANS, 19.0f, 0.3f}, "six of thirteen", CENTRE_X, 232.0f);

    Canvas canvas(PICTURE_WIDTH, PICTURE_HEIGHT);
    paintGlow(canvas, word, Rgb{0.25f, 0.5f, 0.95f}, 14.0f, 0.6f);
    paintMaskVertical(canvas, word, Rgb{1.0f, 1.0f, 1.0f}, Rgb{0.7f, 0.85f, 1.0f}, 55.0f, 132.0f);
    paintMask(canvas, squares, Rgb{0.6f, 0.72f, 0.9f}, 0.7f);
    paintGlow(canvas, current, Rgb{1.0f, 0.55f, 0.2f}, 8.0f, 1.0f);
    paintMask(canvas, current, Rgb{1.0f, 0.85f, 0.6f}, 1.0f);
    paintMask(canvas, caption, Rgb{0.8f, 0.86f, 0.95f}, 0.75f);
    return {"part.pcx", canvasToPcx(canvas)};
}

ContentEntry makeEverPicture() {
    // A lemniscate behind the word, brightest where a comet runs along it.
    Mask loop(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_PANEL);
    Mask comet(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_PANEL);
    constexpr int STEPS = 480;
    std::vector<float> xy;
    for (int i = 0; i <= STEPS; ++i) {
        const double t = 2.0 * M_PI * i / STEPS;
        const double d = 1.0 + std::sin(t) * std::sin(t);
        xy.push_back(static_cast<float>(CENTRE_X + 205.0 * std::cos(t) / d / ASPECT_PANEL * 0.8));
        xy.push_back(static_cast<float>(128.0 + 205.0 * std::sin(t) * std::cos(t) / d));
    }
    strokePolyline(loop, xy, false, 3.0f);
    for (int i = 0; i < STEPS / 3; ++i) {
        const float trail = static_cast<float>(i) / (STEPS / 3);  // 0 at the tail, 1 at the head
        const size_t k = static_cast<size_t>(i + STEPS / 8);
        strokeLine(comet, xy[2 * k], xy[2 * k + 1], xy[2 * k + 2], xy[2 * k + 3], 2.0f + 3.0f * trail,
                   trail * trail);
    }
    Mask word(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_PANEL);
    drawTextCentred(word, TextStyle{FONT_SANS_BOLD, 96.0f, 0.05f}, "ever", CENTRE_X, 160.0f);
    // The loop passes behind the letters.
    Mask around = blurred(word, 6.0f);
    scaleMask(around, 3.0f);
    punchOut(loop, around);
    punchOut(comet, around);

    Canvas canvas(PICTURE_WIDTH, PICTURE_HEIGHT);
    paintGlow(canvas, loop, Rgb{0.2f, 0.4f, 0.9f}, 8.0f, 0.8f);
    paintMask(canvas, loop, Rgb{0.35f, 0.55f, 0.95f}, 0.6f);
    paintGlow(canvas, comet, Rgb{1.0f, 0.6f, 0.3f}, 7.0f, 1.0f);
    paintMask(canvas, comet, Rgb{1.0f, 0.9f, 0.75f}, 1.0f);
    paintGlow(canvas, word, Rgb{0.3f, 0.5f, 1.0f}, 12.0f, 0.5f);
    paintMaskVertical(canvas, word, Rgb{1.0f, 1.0f, 1.0f}, Rgb{0.78f, 0.88f, 1.0f}, 90.0f, 160.0f);
    return {"ever.pcx", canvasToPcx(canvas)};
}

ContentEntry makeForgetPicture() {
    Mask word(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_PANEL);
    const TextStyle style{FONT_SANS_BOLD, 92.0f, 0.03f};
    const float width = textWidth(style, "forget", ASPECT_PANEL);
    const float left = CENTRE_X - width * 0.5f;
    drawText(word, style, "forget", left, 158.0f);
    // Halftone dissolve: solid on the left, dots shrinking to nothing on the right.
    constexpr float CELL = 7.0f;
    Mask picture(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_PANEL);
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            const float along = std::clamp((x - (left + width * 0.2f)) / (width * 0.85f), 0.0f, 1.0f);
            const float cx = (std::floor(x / CELL) + 0.5f) * CELL;
            const float cy = (std::floor(y / CELL) + 0.5f) * CELL;
            const float dx = (x + 0.5f - cx) * ASPECT_PANEL;
            const float dy = y + 0.5f - cy;
            const float radius = CELL * 0.75f * (1.0f - along);
            const float dot = std::clamp(radius - std::sqrt(dx * dx + dy * dy) + 0.5f, 0.0f, 1.0f);
            const float keep = along <= 0.0f ? 1.0f : dot;
            picture.at(x, y) = word.at(x, y) * keep;
        }
    }
    Mask shadow = blurred(word, 10.0f);
    fadeColumns(shadow, [&](float x) { return std::clamp(1.0f - (x - left) / width, 0.0f, 1.0f); });
    unionMask(picture, shadow, 0.4f);
    Mask line(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_PANEL);
    strokeLine(line, left, 186.0f, left + width, 186.0f, 1.5f);
    fadeColumns(line, [&](float x) { return std::clamp(1.0f - (x - left) / width, 0.0f, 1.0f); });
    unionMask(picture, line, 0.7f);
    const PcxPalette palette = rampPalette({{0.0f, {0.0f, 0.0f, 0.0f}},
                                            {0.4f, {0.22f, 0.16f, 0.4f}},
                                            {0.8f, {0.75f, 0.7f, 0.95f}},
                                            {1.0f, {1.0f, 0.98f, 1.0f}}});
    return {"forget.pcx", maskToPcx(picture, palette)};
}

ContentEntry makeInvertPicture() {
    constexpr float X0 = 66.0f;
    constexpr float X1 = PICTURE_WIDTH - 66.0f;
    constexpr float Y0 = 68.0f;
    constexpr float Y1 = 188.0f;
    Mask panel(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_PANEL);
    fillRoundedRect(panel, X0, Y0, X1, Y1, 10.0f);
    // Brighter towards the top, like a lit sign.
    for (int y = 0; y < panel.height; ++y) {
        const float shade = 0.62f - 0.24f * std::clamp((y - Y0) / (Y1 - Y0), 0.0f, 1.0f);
        for (int x = 0; x < panel.width; ++x) panel.at(x, y) *= shade;
    }
    Mask word(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_PANEL);
    drawTextCentred(word, TextStyle{FONT_SANS_BOLD, 74.0f, 0.04f}, "invert", CENTRE_X, 154.0f);
    punchOut(panel, word);

    Mask frame(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_PANEL);
    fillRoundedRect(frame, X0 - 12.0f, Y0 - 12.0f, X1 + 12.0f, Y1 + 12.0f, 18.0f);
    Mask inside(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_PANEL);
    fillRoundedRect(inside, X0 - 10.0f, Y0 - 10.0f, X1 + 10.0f, Y1 + 10.0f, 16.0f);
    punchOut(frame, inside);

    Mask picture(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_PANEL);
    unionMask(picture, panel, 1.0f);
    unionMask(picture, blurred(frame, 6.0f), 0.5f);
    unionMask(picture, frame, 1.0f);
    const PcxPalette palette = rampPalette({{0.0f, {0.0f, 0.0f, 0.0f}},
                                            {0.5f, {0.4f, 0.5f, 0.62f}},
                                            {0.8f, {0.78f, 0.86f, 0.95f}},
                                            {1.0f, {1.0f, 1.0f, 1.0f}}});
    return {"invert.pcx", maskToPcx(picture, palette)};
}
