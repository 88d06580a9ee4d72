// The pictures made of marks rather than words: "xxx.pcx" (three crosses
// between two stitched rows), "ooo.pcx" (three rings) and the sprite
// "texture2.pcx" (a framed ring). All indexed: one intensity through a ramp.
#include <cmath>

#include "content/images/image_output.h"
#include "content/images/pictures.h"

namespace {

// A neon stroke: a soft wide tube with a bright thin core.
void neonLine(Mask& tube, Mask& core, float x0, float y0, float x1, float y1, float width) {
    strokeLine(tube, x0, y0, x1, y1, width);
    strokeLine(core, x0, y0, x1, y1, width * 0.3f);
}

Mask combined(const Mask& tube, const Mask& core, float tubeLevel, float glowRadius) {
    Mask picture(tube.width, tube.height, tube.aspect);
    unionMask(picture, blurred(tube, glowRadius), tubeLevel * 0.9f);
    unionMask(picture, tube, tubeLevel);
    unionMask(picture, core, 1.0f);
    return picture;
}

}  // namespace

ContentEntry makeCrossesPicture() {
    Mask tube(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_LAYER);
    Mask core(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_LAYER);
    // The middle of the picture carries the credits later on: the crosses stay dim.
    constexpr float CENTRES[] = {112.0f, 256.0f, 400.0f};
    for (float cx : CENTRES) {
        const float half = 46.0f;
        neonLine(tube, core, cx - half, 128.0f - half, cx + half, 128.0f + half, 9.0f);
        neonLine(tube, core, cx - half, 128.0f + half, cx + half, 128.0f - half, 9.0f);
    }
    Mask crosses = combined(tube, core, 0.35f, 10.0f);
    scaleMask(crosses, 0.55f);

    Mask stitches(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_LAYER);
    for (int i = 0; i < 31; ++i) {
        const float x = 16.0f + 16.0f * i;
        const float intensity = 0.35f + 0.65f * static_cast<float>(std::pow(std::sin(M_PI * (i + 0.5) / 31.0), 2.0));
        for (float y : {18.0f, 238.0f}) {
            strokeLine(stitches, x - 4.0f, y - 4.0f, x + 4.0f, y + 4.0f, 1.8f, intensity);
            strokeLine(stitches, x - 4.0f, y + 4.0f, x + 4.0f, y - 4.0f, 1.8f, intensity);
        }
    }
    Mask picture(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_LAYER);
    unionMask(picture, crosses, 1.0f);
    unionMask(picture, blurred(stitches, 4.0f), 0.5f);
    unionMask(picture, stitches, 0.85f);
    const PcxPalette palette = rampPalette({{0.0f, {0.0f, 0.0f, 0.0f}},
                                            {0.35f, {0.42f, 0.08f, 0.12f}},
                                            {0.75f, {0.95f, 0.55f, 0.5f}},
                                            {1.0f, {1.0f, 0.95f, 0.92f}}});
    return {"xxx.pcx", maskToPcx(picture, palette)};
}

ContentEntry makeRingsPicture() {
    Mask tube(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_STRIP);
    Mask core(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_STRIP);
    Mask dots(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_STRIP);
    constexpr float CENTRES[] = {96.0f, 256.0f, 416.0f};
    for (float cx : CENTRES) {
        strokeEllipse(tube, cx, 128.0f, 84.0f, 1.0f, 22.0f);
        strokeEllipse(core, cx, 128.0f, 84.0f, 1.0f, 5.0f);
        fillEllipse(dots, cx, 128.0f, 12.0f, 1.0f);
    }
    Mask picture = combined(tube, core, 0.5f, 14.0f);
    unionMask(picture, dots, 0.8f);
    const PcxPalette palette = rampPalette({{0.0f, {0.0f, 0.0f, 0.0f}},
                                            {0.4f, {0.05f, 0.25f, 0.35f}},
                                            {0.75f, {0.45f, 0.85f, 0.95f}},
                                            {1.0f, {0.95f, 1.0f, 1.0f}}});
    return {"ooo.pcx", maskToPcx(picture, palette)};
}

ContentEntry makeSpritePicture() {
    constexpr float CENTRE = SPRITE_SIZE * 0.5f;
    Mask frame(SPRITE_SIZE, SPRITE_SIZE, ASPECT_LAYER);
    fillRoundedRect(frame, 22.0f, 22.0f, SPRITE_SIZE - 22.0f, SPRITE_SIZE - 22.0f, 30.0f);
    Mask hole(SPRITE_SIZE, SPRITE_SIZE, ASPECT_LAYER);
    fillRoundedRect(hole, 34.0f, 34.0f, SPRITE_SIZE - 34.0f, SPRITE_SIZE - 34.0f, 20.0f);
    punchOut(frame, hole);
    Mask marks(SPRITE_SIZE, SPRITE_SIZE, ASPECT_LAYER);
    strokeEllipse(marks, CENTRE, CENTRE, 62.0f, 1.0f, 7.0f);
    fillEllipse(marks, CENTRE, CENTRE, 20.0f, 1.0f);
    for (int i = 0; i < 4; ++i) {
        const float angle = static_cast<float>(M_PI * 0.5 * i + M_PI * 0.25);
        strokeLine(marks, CENTRE + 30.0f * std::cos(angle), CENTRE + 30.0f * std::sin(angle),
                   CENTRE + 48.0f * std::cos(angle), CENTRE + 48.0f * std::sin(angle), 5.0f);
    }
    Mask picture(SPRITE_SIZE, SPRITE_SIZE, ASPECT_LAYER);
    unionMask(picture, blurred(frame, 8.0f), 0.45f);
    unionMask(picture, frame, 0.85f);
    unionMask(picture, blurred(marks, 6.0f), 0.5f);
    unionMask(picture, marks, 1.0f);
    const PcxPalette palette = rampPalette({{0.0f, {0.0f, 0.0f, 0.0f}}, {1.0f, {0.92f, 0.96f, 1.0f}}});
    return {"texture2.pcx", maskToPcx(picture, palette)};
}
