// "cred.pcx" and "greet.pcx": the two pictures that are mostly lines of text.
// The credits name roles and what made the show, no people; the greetings
// go out to things, not to anyone by name.
#include <algorithm>
#include <string>

#include "content/images/image_output.h"
#include "content/images/lettering.h"
#include "content/images/pictures.h"

namespace {

struct CreditLine {
    const char* role;
    const char* what;
};

constexpr CreditLine CREDITS[] = {
    {"code", "the kaskade team"},
    {"music", "our own synthesizer"},
    {"graphics", "lines, light & letters"},
};

constexpr const char* GREETINGS[] = {
    "all who still write immediate mode",
    "the night shift",
    "every fixed-function pipeline",
    "the lights along the harbour",
    "whoever reads the source",
};

// Draws `text` centred, shrunk if needed so that it fits `maxWidth`.
void drawFitted(Mask& mask, TextStyle style, const std::string& text, float centreX, float baseline,
                float maxWidth) {
    const float width = textWidth(style, text, mask.aspect);
    if (width > maxWidth) style.size *= maxWidth / width;
    drawTextCentred(mask, style, text, centreX, baseline);
}

}  // namespace

ContentEntry makeCreditsPicture() {
    constexpr float COLUMN = 206.0f;  // roles end left of it, the rest starts right of it
    Mask roles(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_STRIP);
    Mask names(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_STRIP);
    Mask rules(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_STRIP);
    const TextStyle roleStyle{FONT_SANS_BOLD, 30.0f, 0.06f};
    const TextStyle nameStyle{FONT_SANS, 30.0f, 0.0f};
    float baseline = 62.0f;
    for (const CreditLine& line : CREDITS) {
        drawTextRight(roles, roleStyle, line.role, COLUMN - 14.0f, baseline);
        drawText(names, nameStyle, line.what, COLUMN + 14.0f, baseline);
        fillEllipse(rules, COLUMN, baseline - 10.0f, 3.0f, 1.0f);
        baseline += 54.0f;
    }
    strokeLine(rules, COLUMN, 20.0f, COLUMN, 42.0f, 1.5f, 0.7f);
    strokeLine(rules, COLUMN, 166.0f, COLUMN, 186.0f, 1.5f, 0.7f);
    strokeLine(rules, 40.0f, 200.0f, PICTURE_WIDTH - 40.0f, 200.0f, 1.2f, 0.45f);
    Mask footer(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_STRIP);
    drawTextCentred(footer, TextStyle{FONT_SANS, 22.0f, 0.12f}, "no samples \xC2\xB7 no photos \xC2\xB7 no models",
                    PICTURE_WIDTH * 0.5f, 236.0f);

    Mask picture(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_STRIP);
    unionMask(picture, blurred(names, 6.0f), 0.35f);
    unionMask(picture, roles, 0.62f);
    unionMask(picture, names, 1.0f);
    unionMask(picture, rules, 0.8f);
    unionMask(picture, footer, 0.5f);
    const PcxPalette palette = rampPalette({{0.0f, {0.0f, 0.0f, 0.0f}},
                                            {0.4f, {0.45f, 0.22f, 0.08f}},
                                            {0.7f, {0.95f, 0.68f, 0.38f}},
                                            {1.0f, {1.0f, 0.97f, 0.9f}}});
    return {"cred.pcx", maskToPcx(picture, palette)};
}

ContentEntry makeGreetingsPicture() {
    constexpr float CENTRE = PICTURE_WIDTH * 0.5f;
    Mask heading(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_PANEL);
    drawTextCentred(heading, TextStyle{FONT_SANS_BOLD, 38.0f, 0.14f}, "greetings", CENTRE, 50.0f);
    Mask rule(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_PANEL);
    strokeLine(rule, 120.0f, 66.0f, PICTURE_WIDTH - 120.0f, 66.0f, 1.3f);
    for (int x = 0; x < rule.width; ++x) {
        const float t = std::abs(x - CENTRE) / (CENTRE - 120.0f);
        for (int y = 60; y < 72; ++y) rule.at(x, y) *= std::max(0.0f, 1.0f - t * t);
    }
    Mask lines(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_PANEL);
    float baseline = 104.0f;
    for (const char* greeting : GREETINGS) {
        drawFitted(lines, TextStyle{FONT_SANS, 22.0f, 0.02f}, greeting, CENTRE, baseline, PICTURE_WIDTH - 24.0f);
        baseline += 34.0f;
    }

    Canvas canvas(PICTURE_WIDTH, PICTURE_HEIGHT);
    paintGlow(canvas, heading, Rgb{1.0f, 0.5f, 0.2f}, 10.0f, 0.6f);
    paintMaskVertical(canvas, heading, Rgb{1.0f, 0.92f, 0.75f}, Rgb{1.0f, 0.7f, 0.4f}, 20.0f, 52.0f);
    paintMask(canvas, rule, Rgb{1.0f, 0.75f, 0.45f}, 0.9f);
    paintGlow(canvas, lines, Rgb{0.25f, 0.45f, 0.8f}, 6.0f, 0.5f);
    paintMaskVertical(canvas, lines, Rgb{0.95f, 0.97f, 1.0f}, Rgb{0.7f, 0.82f, 1.0f}, 90.0f, 240.0f);
    return {"greet.pcx", canvasToPcx(canvas)};
}
