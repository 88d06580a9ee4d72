// Float images the show's pictures are painted on before they are written as
// PCX: a one-channel coverage mask and an RGB canvas, with the few drawing
// operations the pictures need (anti-aliased strokes, fills, blurs for glows,
// gradients). Row 0 is the top row; values are 0..1 and may exceed 1 while
// painting (they are clamped when the picture is written).
//
// `aspect` is how wide one pixel ends up on screen relative to its height:
// an image of 512 x 256 drawn on a 300 x 100 quad has aspect 1.5. Strokes,
// circles and blurs are laid out in screen proportions so they look round
// where the show displays them.
#pragma once

#include <cstddef>
#include <vector>

struct Rgb {
    float r;
    float g;
    float b;
};

Rgb scaled(Rgb colour, float factor);
Rgb mixed(Rgb a, Rgb b, float t);  // a at t = 0, b at t = 1

struct Mask {
    int width = 0;
    int height = 0;
    float aspect = 1.0f;
    std::vector<float> values;  // width x height, row after row

    Mask(int width, int height, float aspect);
    float& at(int x, int y) { return values[static_cast<size_t>(y) * width + x]; }
    float at(int x, int y) const { return values[static_cast<size_t>(y) * width + x]; }
    // Raises the pixel to `coverage` when that is more (shapes union, never double up).
    void cover(int x, int y, float coverage);
};

struct Canvas {
    int width = 0;
    int height = 0;
    std::vector<float> rgb;  // width x height x 3

    Canvas(int width, int height);
    float* at(int x, int y) { return &rgb[(static_cast<size_t>(y) * width + x) * 3]; }
    const float* at(int x, int y) const { return &rgb[(static_cast<size_t>(y) * width + x) * 3]; }
};

// Strokes, widths in screen-proportioned pixels (vertical pixels). Ends are round.
// `intensity` scales the coverage (a dimmer stroke).
void strokeLine(Mask& mask, float x0, float y0, float x1, float y1, float width, float intensity = 1.0f);
void strokePolyline(Mask& mask, const std::vector<float>& xy, bool closed, float width);
// Ellipse outline; `radius` is vertical, the horizontal radius is radius / aspect
// times `stretch` (1 draws a circle on screen).
void strokeEllipse(Mask& mask, float cx, float cy, float radius, float stretch, float width);
void fillEllipse(Mask& mask, float cx, float cy, float radius, float stretch);
// Axis-aligned rectangle with rounded corners (corner radius in vertical pixels).
void fillRoundedRect(Mask& mask, float x0, float y0, float x1, float y1, float cornerRadius);

// Gaussian-like blur (three box passes); `radius` in vertical pixels.
Mask blurred(const Mask& mask, float radius);
// Every value times `factor`.
void scaleMask(Mask& mask, float factor);
// mask = max(mask, other * factor).
void unionMask(Mask& mask, const Mask& other, float factor);
// mask = mask * (1 - other): punches `other` out of `mask`.
void punchOut(Mask& mask, const Mask& other);

// canvas += colour x mask x strength.
void paintMask(Canvas& canvas, const Mask& mask, Rgb colour, float strength);
// canvas += mask x colour, the colour running from `top` at row y0 to `bottom` at row y1.
void paintMaskVertical(Canvas& canvas, const Mask& mask, Rgb top, Rgb bottom, float y0, float y1);
// The soft halo of `mask`: paints blurred(mask, radius) in `colour`.
void paintGlow(Canvas& canvas, const Mask& mask, Rgb colour, float radius, float strength);
