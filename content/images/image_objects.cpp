// "objects.pcx": three wireframe solids (a cube, an icosahedron, a torus) in
// perspective, the far edges dimmer than the near ones, their corners marked,
// above the word "objects" set wide between two fading rules.
#include <cmath>
#include <utility>
#include <vector>

#include "content/images/image_output.h"
#include "content/images/lettering.h"
#include "content/images/pictures.h"

namespace {

struct Point3 {
    float x;
    float y;
    float z;
};

struct Solid {
    std::vector<Point3> vertices;
    std::vector<std::pair<int, int>> edges;
};

Solid cube() {
    Solid solid;
    for (int i = 0; i < 8; ++i) {
        solid.vertices.push_back({i & 1 ? 1.0f : -1.0f, i & 2 ? 1.0f : -1.0f, i & 4 ? 1.0f : -1.0f});
    }
    for (int a = 0; a < 8; ++a) {
        for (int bit = 1; bit < 8; bit <<= 1) {
            if ((a & bit) == 0) solid.edges.push_back({a, a | bit});
        }
    }
    return solid;
}

Solid icosahedron() {
    const float phi = (1.0f + std::sqrt(5.0f)) * 0.5f;
    Solid solid;
    for (int i = 0; i < 4; ++i) {
        const float a = i & 1 ? 1.0f : -1.0f;
        const float b = i & 2 ? phi : -phi;
        solid.vertices.push_back({0.0f, a, b});
        solid.vertices.push_back({a, b, 0.0f});
        solid.vertices.push_back({b, 0.0f, a});
    }
    for (auto& v : solid.vertices) {  // unit circumradius like the other solids
        const float scale = 1.0f / std::sqrt(1.0f + phi * phi);
        v = {v.x * scale * 1.2f, v.y * scale * 1.2f, v.z * scale * 1.2f};
    }
    // Neighbours are exactly one edge length apart (2 before the scaling).
    const float edge = 2.0f * 1.2f / std::sqrt(1.0f + phi * phi);
    for (size_t a = 0; a < solid.vertices.size(); ++a) {
        for (size_t b = a + 1; b < solid.vertices.size(); ++b) {
            const float dx = solid.vertices[a].x - solid.vertices[b].x;
            const float dy = solid.vertices[a].y - solid.vertices[b].y;
            const float dz = solid.vertices[a].z - solid.vertices[b].z;
            if (std::fabs(std::sqrt(dx * dx + dy * dy + dz * dz) - edge) < 0.01f) {
                solid.edges.push_back({static_cast<int>(a), static_cast<int>(b)});
            }
        }
    }
    return solid;
}

Solid torus() {
    constexpr int MAJOR = 18;
    constexpr int MINOR = 8;
    Solid solid;
    for (int i = 0; i < MAJOR; ++i) {
        const double u = 2.0 * M_PI * i / MAJOR;
        for (int j = 0; j < MINOR; ++j) {
            const double v = 2.0 * M_PI * j / MINOR;
            const double ring = 1.0 + 0.4 * std::cos(v);
            solid.vertices.push_back({static_cast<float>(ring * std::cos(u)), static_cast<float>(0.4 * std::sin(v)),
                                      static_cast<float>(ring * std::sin(u))});
            const int here = i * MINOR + j;
            solid.edges.push_back({here, ((i + 1) % MAJOR) * MINOR + j});
            solid.edges.push_back({here, i * MINOR + (j + 1) % MINOR});
        }
    }
    return solid;
}

struct View {
    float cx;
    float cy;
    float size;   // pixels per unit at depth 0
    float yaw;    // radians about the vertical axis
    float pitch;  // radians about the horizontal axis
};

// Screen position (x, y) and a brightness from depth for one vertex.
Point3 project(const Point3& p, const View& view) {
    const float x1 = p.x * std::cos(view.yaw) + p.z * std::sin(view.yaw);
    const float z1 = -p.x * std::sin(view.yaw) + p.z * std::cos(view.yaw);
    const float y2 = p.y * std::cos(view.pitch) - z1 * std::sin(view.pitch);
    const float z2 = p.y * std::sin(view.pitch) + z1 * std::cos(view.pitch);
    constexpr float EYE = 4.5f;
    const float perspective = EYE / (EYE - z2);
    return {view.cx + x1 * view.size * perspective, view.cy - y2 * view.size * perspective,
            0.35f + 0.65f * (z2 + 1.4f) / 2.8f};
}

void drawSolid(Mask& lines, Mask& corners, const Solid& solid, const View& view) {
    std::vector<Point3> screen;
    for (const Point3& v : solid.vertices) screen.push_back(project(v, view));
    for (const auto& [a, b] : solid.edges) {
        const float shade = std::min(1.0f, 0.5f * (screen[a].z + screen[b].z));
        strokeLine(lines, screen[a].x, screen[a].y, screen[b].x, screen[b].y, 1.7f, shade);
    }
    if (solid.vertices.size() <= 12) {
        for (const Point3& p : screen) fillEllipse(corners, p.x, p.y, 1.5f + 1.6f * p.z, 1.0f);
    }
}

Mask rules(float wordLeft, float wordRight, float y) {
    Mask mask(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_LAYER);
    strokeLine(mask, 20.0f, y, wordLeft - 18.0f, y, 1.4f);
    strokeLine(mask, wordRight + 18.0f, y, PICTURE_WIDTH - 20.0f, y, 1.4f);
    for (int x = 0; x < mask.width; ++x) {
        const float t = std::fabs(x - PICTURE_WIDTH * 0.5f) / (PICTURE_WIDTH * 0.5f);
        for (int row = 0; row < mask.height; ++row) mask.at(x, row) *= 1.0f - t * t;
    }
    return mask;
}

}  // namespace

ContentEntry makeObjectsPicture() {
    Mask lines(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_LAYER);
    Mask corners(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_LAYER);
    drawSolid(lines, corners, cube(), View{96.0f, 98.0f, 42.0f, 0.62f, 0.48f});
    drawSolid(lines, corners, icosahedron(), View{256.0f, 92.0f, 60.0f, 0.30f, 0.35f});
    drawSolid(lines, corners, torus(), View{416.0f, 98.0f, 46.0f, 0.2f, 0.62f});

    const TextStyle style{FONT_SANS_BOLD, 52.0f, 0.16f};
    Mask word(PICTURE_WIDTH, PICTURE_HEIGHT, ASPECT_LAYER);
    const float width = textWidth(style, "objects", ASPECT_LAYER);
    const float left = PICTURE_WIDTH * 0.5f - width * 0.5f;
    drawText(word, style, "objects", left, 222.0f);

    Canvas canvas(PICTURE_WIDTH, PICTURE_HEIGHT);
    paintGlow(canvas, lines, Rgb{0.25f, 0.5f, 0.9f}, 7.0f, 0.9f);
    paintMask(canvas, lines, Rgb{0.72f, 0.88f, 1.0f}, 1.0f);
    paintGlow(canvas, corners, Rgb{1.0f, 0.6f, 0.25f}, 5.0f, 0.8f);
    paintMask(canvas, corners, Rgb{1.0f, 0.85f, 0.6f}, 1.0f);
    paintGlow(canvas, word, Rgb{1.0f, 0.55f, 0.25f}, 10.0f, 0.45f);
    paintMaskVertical(canvas, word, Rgb{1.0f, 1.0f, 1.0f}, Rgb{0.95f, 0.85f, 0.7f}, 182.0f, 222.0f);
    paintMask(canvas, rules(left, left + width, 204.0f), Rgb{0.7f, 0.8f, 0.95f}, 0.8f);
    return {"objects.pcx", canvasToPcx(canvas)};
}
