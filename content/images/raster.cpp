#include "content/images/raster.h"

#include <algorithm>
#include <cmath>

Rgb scaled(Rgb colour, float factor) { return {colour.r * factor, colour.g * factor, colour.b * factor}; }

Rgb mixed(Rgb a, Rgb b, float t) {
    return {a.r + (b.r - a.r) * t, a.g + (b.g - a.g) * t, a.b + (b.b - a.b) * t};
}

Mask::Mask(int width_, int height_, float aspect_)
    : width(width_), height(height_), aspect(aspect_), values(static_cast<size_t>(width_) * height_, 0.0f) {}

void Mask::cover(int x, int y, float coverage) {
    if (x < 0 || y < 0 || x >= width || y >= height) {
        return;
    }
    float& value = at(x, y);
    value = std::max(value, coverage);
}

Canvas::Canvas(int width_, int height_)
    : width(width_), height(height_), rgb(static_cast<size_t>(width_) * height_ * 3, 0.0f) {}

namespace {

float clamp01(float v) { return v < 0.0f ? 0.0f : (v > 1.0f ? 1.0f : v); }

// Distance from (px, py) to the segment (ax, ay)-(bx, by), all in screen space.
float segmentDistance(float px, float py, float ax, float ay, float bx, float by) {
    const float dx = bx - ax;
    const float dy = by - ay;
    const float lengthSquared = dx * dx + dy * dy;
    float t = 0.0f;
    if (lengthSquared > 0.0f) {
        t = clamp01(((px - ax) * dx + (py - ay) * dy) / lengthSquared);
    }
    const float ex = px - (ax + t * dx);
    const float ey = py - (ay + t * dy);
    return std::sqrt(ex * ex + ey * ey);
}

// One horizontal box-blur pass of half-width `half` (a running sum, zero outside).
void boxPassRows(std::vector<float>& values, int width, int height, int half) {
    std::vector<float> row(static_cast<size_t>(width));
    const float norm = 1.0f / static_cast<float>(2 * half + 1);
    for (int y = 0; y < height; ++y) {
        float* line = &values[static_cast<size_t>(y) * width];
        std::copy(line, line + width, row.begin());
        double sum = 0.0;
        for (int x = -half; x <= half; ++x) {
            if (x >= 0 && x < width) sum += row[static_cast<size_t>(x)];
        }
        for (int x = 0; x < width; ++x) {
            line[x] = static_cast<float>(sum) * norm;
            const int leaving = x - half;
            const int entering = x + half + 1;
            if (leaving >= 0) sum -= row[static_cast<size_t>(leaving)];
            if (entering < width) sum += row[static_cast<size_t>(entering)];
        }
    }
}

void boxPassColumns(std::vector<float>& values, int width, int height, int half) {
    std::vector<float> column(static_cast<size_t>(height));
    const float norm = 1.0f / static_cast<float>(2 * half + 1);
    for (int x = 0; x < width; ++x) {
        for (int y = 0; y < height; ++y) column[static_cast<size_t>(y)] = values[static_cast<size_t>(y) * width + x];
        double sum = 0.0;
        for (int y = -half; y <= half; ++y) {
            if (y >= 0 && y < height) sum += column[static_cast<size_t>(y)];
        }
        for (int y = 0; y < height; ++y) {
            values[static_cast<size_t>(y) * width + x] = static_cast<float>(sum) * norm;
            const int leaving = y - half;
            const int entering = y + half + 1;
            if (leaving >= 0) sum -= column[static_cast<size_t>(leaving)];
            if (entering < height) sum += column[static_cast<size_t>(entering)];
        }
    }
}

}  // namespace

void strokeLine(Mask& mask, float x0, float y0, float x1, float y1, float width, float intensity) {
    const float half = width * 0.5f;
    const float reachX = (half + 1.0f) / mask.aspect;
    const int left = static_cast<int>(std::floor(std::min(x0, x1) - reachX));
    const int right = static_cast<int>(std::ceil(std::max(x0, x1) + reachX));
    const int top = static_cast<int>(std::floor(std::min(y0, y1) - half - 1.0f));
    const int bottom = static_cast<int>(std::ceil(std::max(y0, y1) + half + 1.0f));
    for (int y = std::max(top, 0); y <= std::min(bottom, mask.height - 1); ++y) {
        for (int x = std::max(left, 0); x <= std::min(right, mask.width - 1); ++x) {
            const float d = segmentDistance((x + 0.5f) * mask.aspect, y + 0.5f, x0 * mask.aspect, y0,
                                            x1 * mask.aspect, y1);
            const float coverage = clamp01(half + 0.5f - d) * intensity;
            if (coverage > 0.0f) mask.cover(x, y, coverage);
        }
    }
}

void strokePolyline(Mask& mask, const std::vector<float>& xy, bool closed, float width) {
    const size_t points = xy.size() / 2;
    if (points < 2) return;
    for (size_t i = 0; i + 1 < points; ++i) {
        strokeLine(mask, xy[2 * i], xy[2 * i + 1], xy[2 * i + 2], xy[2 * i + 3], width);
    }
    if (closed) {
        strokeLine(mask, xy[2 * points - 2], xy[2 * points - 1], xy[0], xy[1], width);
    }
}

void strokeEllipse(Mask& mask, float cx, float cy, float radius, float stretch, float width) {
    constexpr int SEGMENTS = 160;
    std::vector<float> xy;
    xy.reserve(2 * SEGMENTS);
    const float rx = radius * stretch / mask.aspect;
    for (int i = 0; i < SEGMENTS; ++i) {
        const double angle = 2.0 * M_PI * i / SEGMENTS;
        xy.push_back(cx + rx * static_cast<float>(std::cos(angle)));
        xy.push_back(cy + radius * static_cast<float>(std::sin(angle)));
    }
    strokePolyline(mask, xy, true, width);
}

void fillEllipse(Mask& mask, float cx, float cy, float radius, float stretch) {
    const float rx = radius * stretch;  // screen space
    const float smaller = std::min(rx, radius);
    const int left = static_cast<int>(std::floor(cx - (rx + 1.0f) / mask.aspect));
    const int right = static_cast<int>(std::ceil(cx + (rx + 1.0f) / mask.aspect));
    for (int y = std::max(static_cast<int>(cy - radius - 1.0f), 0);
         y <= std::min(static_cast<int>(cy + radius + 1.0f), mask.height - 1); ++y) {
        for (int x = std::max(left, 0); x <= std::min(right, mask.width - 1); ++x) {
            const float u = ((x + 0.5f) - cx) * mask.aspect / rx;
            const float v = ((y + 0.5f) - cy) / radius;
            const float k = std::sqrt(u * u + v * v);
            mask.cover(x, y, clamp01((1.0f - k) * smaller + 0.5f));
        }
    }
}

void fillRoundedRect(Mask& mask, float x0, float y0, float x1, float y1, float cornerRadius) {
    // Signed distance of a rounded box, in screen space.
    const float cx = (x0 + x1) * 0.5f * mask.aspect;
    const float cy = (y0 + y1) * 0.5f;
    const float hx = (x1 - x0) * 0.5f * mask.aspect - cornerRadius;
    const float hy = (y1 - y0) * 0.5f - cornerRadius;
    for (int y = std::max(static_cast<int>(y0) - 1, 0); y <= std::min(static_cast<int>(y1) + 1, mask.height - 1); ++y) {
        for (int x = std::max(static_cast<int>(x0) - 1, 0); x <= std::min(static_cast<int>(x1) + 1, mask.width - 1);
             ++x) {
            const float qx = std::fabs((x + 0.5f) * mask.aspect - cx) - hx;
            const float qy = std::fabs((y + 0.5f) - cy) - hy;
            const float ox = std::max(qx, 0.0f);
            const float oy = std::max(qy, 0.0f);
            const float d = std::sqrt(ox * ox + oy * oy) + std::min(std::max(qx, qy), 0.0f) - cornerRadius;
            mask.cover(x, y, clamp01(0.5f - d));
        }
    }
}

Mask blurred(const Mask& mask, float radius) {
    Mask out = mask;
    // Three box passes approach a Gaussian of about radius / 2 standard deviation.
    const int halfY = std::max(1, static_cast<int>(std::lround(radius * 0.6f)));
    const int halfX = std::max(1, static_cast<int>(std::lround(radius * 0.6f / mask.aspect)));
    for (int pass = 0; pass < 3; ++pass) {
        boxPassRows(out.values, out.width, out.height, halfX);
        boxPassColumns(out.values, out.width, out.height, halfY);
    }
    return out;
}

void scaleMask(Mask& mask, float factor) {
    for (float& v : mask.values) v *= factor;
}

void unionMask(Mask& mask, const Mask& other, float factor) {
    for (size_t i = 0; i < mask.values.size() && i < other.values.size(); ++i) {
        mask.values[i] = std::max(mask.values[i], other.values[i] * factor);
    }
}

void punchOut(Mask& mask, const Mask& other) {
    for (size_t i = 0; i < mask.values.size() && i < other.values.size(); ++i) {
        mask.values[i] *= 1.0f - clamp01(other.values[i]);
    }
}

void paintMask(Canvas& canvas, const Mask& mask, Rgb colour, float strength) {
    paintMaskVertical(canvas, mask, scaled(colour, strength), scaled(colour, strength), 0.0f,
                      static_cast<float>(canvas.height));
}

void paintMaskVertical(Canvas& canvas, const Mask& mask, Rgb top, Rgb bottom, float y0, float y1) {
    const int height = std::min(canvas.height, mask.height);
    const int width = std::min(canvas.width, mask.width);
    for (int y = 0; y < height; ++y) {
        const float t = y1 > y0 ? clamp01((y + 0.5f - y0) / (y1 - y0)) : 0.0f;
        const Rgb colour = mixed(top, bottom, t);
        for (int x = 0; x < width; ++x) {
            const float m = mask.at(x, y);
            if (m == 0.0f) continue;
            float* pixel = canvas.at(x, y);
            pixel[0] += colour.r * m;
            pixel[1] += colour.g * m;
            pixel[2] += colour.b * m;
        }
    }
}

void paintGlow(Canvas& canvas, const Mask& mask, Rgb colour, float radius, float strength) {
    paintMask(canvas, blurred(mask, radius), colour, strength);
}
