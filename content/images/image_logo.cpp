// "mark12.pcx": the title logo. The show's name in heavy lower case, its lower
// half breaking into horizontal slats that widen downwards (a cascade), a
// cool halo, a small "12" tag, and a striped reflection on the water line.
#include <cmath>

#include "content/images/lettering.h"
#include "content/images/image_output.h"
#include "content/images/pictures.h"

namespace {

constexpr float BASELINE = 150.0f;
constexpr float SLAT_TOP = 96.0f;     // the slats start here and widen towards the baseline
constexpr float SLAT_PERIOD = 9.0f;

// 1 where the letters stay solid, 0 inside a slat gap.
float slatOpening(float y) {
    if (y < SLAT_TOP || y > BASELINE + 2.0f) return 1.0f;
    const float depth = (y - SLAT_TOP) / (BASELINE - SLAT_TOP);  // 0..1
    const float gap = 0.6f + depth * 4.4f;                       // gap height in pixels
    const float phase = std::fmod(y - SLAT_TOP, SLAT_PERIOD);
    const float distanceIntoGap = phase - (SLAT_PERIOD - gap);
    if (distanceIntoGap <= -0.5f) return 1.0f;
    if (distanceIntoGap >= 0.5f && phase <= SLAT_PERIOD - 0.5f) return 0.0f;
    return 0.5f - distanceIntoGap;
}

Mask letters() {
    Mask mask(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_STRIP);
    drawTextCentred(mask, TextStyle{FONT_SANS_BOLD, 136.0f, 0.03f}, "kaskade", 240.0f, BASELINE);
    for (int y = 0; y < mask.height; ++y) {
        const float open = slatOpening(y + 0.5f);
        for (int x = 0; x < mask.width; ++x) mask.at(x, y) *= open < 0.0f ? 0.0f : open;
    }
    return mask;
}

// The word mirrored under the water line, fading with depth, in thin lines.
Mask reflection(const Mask& word) {
    Mask mask(word.width, word.height, word.aspect);
    const int waterLine = static_cast<int>(BASELINE) + 8;
    for (int y = waterLine; y < mask.height; ++y) {
        const int depth = y - waterLine;
        const int source = static_cast<int>(BASELINE) - depth * 5 / 4;
        if (source < 0 || (depth % 4) >= 2) continue;
        const float fade = std::pow(1.0f - static_cast<float>(depth) / (mask.height - waterLine), 2.0f);
        const int ripple = static_cast<int>(std::lround(3.0 * std::sin(depth * 0.7)));
        for (int x = 0; x < mask.width; ++x) {
            const int sx = x + ripple;
            if (sx >= 0 && sx < mask.width) mask.at(x, y) = word.at(sx, source) * fade;
        }
    }
    return mask;
}

Mask waterLine() {
    Mask mask(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_STRIP);
    strokeLine(mask, 24.0f, BASELINE + 6.0f, PICTURE_WIDTH - 24.0f, BASELINE + 6.0f, 1.6f);
    for (int y = 0; y < mask.height; ++y) {
        for (int x = 0; x < mask.width; ++x) {
            const float t = (x - PICTURE_WIDTH * 0.5f) / (PICTURE_WIDTH * 0.5f);
            mask.at(x, y) *= 1.0f - t * t;
        }
    }
    return mask;
}

Mask tag() {
    Mask mask(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_STRIP);
    const float x0 = 444.0f;
    const float y0 = 30.0f;
    Mask box(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_STRIP);
    fillRoundedRect(box, x0, y0, x0 + 36.0f, y0 + 26.0f, 5.0f);
    Mask inner(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_STRIP);
    fillRoundedRect(inner, x0 + 1.5f, y0 + 2.0f, x0 + 34.5f, y0 + 24.0f, 3.5f);
    punchOut(box, inner);
    unionMask(mask, box, 0.8f);
    drawTextCentred(mask, TextStyle{FONT_SANS_BOLD, 19.0f, 0.04f}, "12", x0 + 18.0f, y0 + 20.0f);
    return mask;
}

}  // namespace

Canvas paintLogo() {
    Canvas canvas(PICTURE_WIDTH, PICTURE_HEIGHT);
    const Mask word = letters();
    paintGlow(canvas, word, Rgb{0.20f, 0.42f, 0.75f}, 16.0f, 0.55f);
    paintMaskVertical(canvas, word, Rgb{0.78f, 0.90f, 1.0f}, Rgb{1.0f, 0.97f, 0.90f}, 40.0f, BASELINE);
    paintMaskVertical(canvas, reflection(word), Rgb{0.45f, 0.62f, 0.85f}, Rgb{0.10f, 0.20f, 0.40f},
                      BASELINE + 8.0f, PICTURE_HEIGHT);
    const Mask line = waterLine();
    paintGlow(canvas, line, Rgb{0.3f, 0.55f, 0.9f}, 6.0f, 0.8f);
    paintMask(canvas, line, Rgb{0.85f, 0.93f, 1.0f}, 1.0f);
    paintMask(canvas, tag(), Rgb{1.0f, 0.78f, 0.45f}, 0.95f);
    return canvas;
}

ContentEntry makeLogoPicture() { return {"mark12.pcx", canvasToPcx(paintLogo())}; }
