// The solids and open structures of geometry.h.
#include <array>
#include <cmath>
#include <numbers>

#include "content/geometry/geometry.h"

namespace {

constexpr float TWO_PI = static_cast<float>(2.0 * std::numbers::pi);

// Appends the planar polygon `points` (counter-clockwise seen from the side it
// faces) as a fan about its centroid, showing only the outline.
void fan(GeoMesh& mesh, const std::vector<Vec3>& points) {
    Vec3 centre;
    for (const Vec3& p : points) centre = centre + p;
    centre = centre * (1.0f / static_cast<float>(points.size()));
    const uint16_t c = mesh.vertex(centre, {0.5f, 0.5f});
    std::vector<uint16_t> ring;
    for (const Vec3& p : points) ring.push_back(mesh.vertex(p));
    for (size_t i = 0; i < ring.size(); ++i) mesh.triangle(c, ring[i], ring[(i + 1) % ring.size()], TDS_EDGE_BC);
}

// One side wall: the quad from bottom a-b up to the same points at `height`.
void wall(GeoMesh& mesh, Vec2 a, Vec2 b, float height) {
    const uint16_t i0 = mesh.vertex({a.u, 0.0f, a.v}, {0.0f, 0.0f});
    const uint16_t i1 = mesh.vertex({b.u, 0.0f, b.v}, {1.0f, 0.0f});
    const uint16_t i2 = mesh.vertex({b.u, height, b.v}, {1.0f, 1.0f});
    const uint16_t i3 = mesh.vertex({a.u, height, a.v}, {0.0f, 1.0f});
    mesh.quad(i0, i1, i2, i3);
}

}  // namespace

GeoMesh box(Vec3 size) {
    GeoMesh mesh;
    const Vec3 h = size * 0.5f;
    // Each face: its outward axis and two in-plane axes whose cross product is it.
    const Vec3 faces[6][3] = {
        {{1, 0, 0}, {0, 0, -1}, {0, 1, 0}}, {{-1, 0, 0}, {0, 0, 1}, {0, 1, 0}},
        {{0, 1, 0}, {1, 0, 0}, {0, 0, -1}}, {{0, -1, 0}, {1, 0, 0}, {0, 0, 1}},
        {{0, 0, 1}, {1, 0, 0}, {0, 1, 0}},  {{0, 0, -1}, {-1, 0, 0}, {0, 1, 0}},
    };
    for (const auto& f : faces) {
        const auto corner = [&](float s, float t) {
            const Vec3 p = f[0] + f[1] * s + f[2] * t;
            return Vec3{p.x * h.x, p.y * h.y, p.z * h.z};
        };
        const uint16_t a = mesh.vertex(corner(-1, -1), {0, 0});
        const uint16_t b = mesh.vertex(corner(1, -1), {1, 0});
        const uint16_t c = mesh.vertex(corner(1, 1), {1, 1});
        const uint16_t d = mesh.vertex(corner(-1, 1), {0, 1});
        mesh.quad(a, b, c, d);
    }
    return mesh;
}

GeoMesh sphere(float radius, int slices, int stacks) {
    std::vector<Vec2> profile;
    for (int j = 0; j <= stacks; ++j) {
        const float theta = static_cast<float>(std::numbers::pi) * static_cast<float>(j) / static_cast<float>(stacks);
        profile.push_back({radius * std::sin(theta), -radius * std::cos(theta)});
    }
    profile.front().u = 0.0f;
    profile.back().u = 0.0f;
    return lathe(profile, slices);
}

GeoMesh geodesicSphere(float radius, int levels) {
    const float g = (1.0f + std::sqrt(5.0f)) * 0.5f;
    std::vector<Vec3> points = {{-1, g, 0}, {1, g, 0}, {-1, -g, 0}, {1, -g, 0}, {0, -1, g}, {0, 1, g},
                                {0, -1, -g}, {0, 1, -g}, {g, 0, -1}, {g, 0, 1}, {-g, 0, -1}, {-g, 0, 1}};
    std::vector<std::array<int, 3>> faces = {
        {0, 11, 5}, {0, 5, 1}, {0, 1, 7}, {0, 7, 10}, {0, 10, 11}, {1, 5, 9}, {5, 11, 4}, {11, 10, 2}, {10, 7, 6}, {7, 1, 8},
        {3, 9, 4}, {3, 4, 2}, {3, 2, 6}, {3, 6, 8}, {3, 8, 9}, {4, 9, 5}, {2, 4, 11}, {6, 2, 10}, {8, 6, 7}, {9, 8, 1}};
    for (int level = 0; level < levels; ++level) {
        std::vector<std::array<int, 3>> finer;
        for (const auto& f : faces) {
            int mid[3];
            for (int k = 0; k < 3; ++k) {
                points.push_back((points[static_cast<size_t>(f[static_cast<size_t>(k)])] +
                                  points[static_cast<size_t>(f[static_cast<size_t>((k + 1) % 3)])]) * 0.5f);
                mid[k] = static_cast<int>(points.size()) - 1;
            }
            finer.push_back({f[0], mid[0], mid[2]});
            finer.push_back({f[1], mid[1], mid[0]});
            finer.push_back({f[2], mid[2], mid[1]});
            finer.push_back({mid[0], mid[1], mid[2]});
        }
        faces = std::move(finer);
    }
    GeoMesh mesh;
    for (const Vec3& p : points) mesh.vertex(normalised(p) * radius);
    for (const auto& f : faces) {
        mesh.triangle(static_cast<uint16_t>(f[0]), static_cast<uint16_t>(f[1]), static_cast<uint16_t>(f[2]));
    }
    weld(mesh, radius * 1e-4f);
    return mesh;
}

GeoMesh torus(float major, float minor, int segments, int sides) {
    return parametricSurface(segments, sides, true, true, [&](float s, float t) {
        const float phi = TWO_PI * s;
        const float psi = TWO_PI * t;
        const float ring = major + minor * std::cos(psi);
        return Vec3{ring * std::cos(phi), minor * std::sin(psi), -ring * std::sin(phi)};
    });
}

GeoMesh torusKnot(int p, int q, float major, float minor, float tubeRadius, int segments, int sides) {
    const auto curve = [=](float t) {
        const float phi = TWO_PI * t * static_cast<float>(p);
        const float psi = TWO_PI * t * static_cast<float>(q);
        const float ring = major + minor * std::cos(psi);
        return Vec3{ring * std::cos(phi), minor * std::sin(psi), -ring * std::sin(phi)};
    };
    return tube(curve, segments, sides, tubeRadius, true);
}

GeoMesh cylinder(float radius, float height, int segments) {
    const std::vector<Vec2> outline = circleOutline(segments, radius);
    return extrude(outline, height);
}

GeoMesh cone(float radius, float height, int segments) {
    GeoMesh mesh = lathe({{0.0f, 0.0f}, {radius, 0.0f}}, segments);
    append(mesh, lathe({{radius, 0.0f}, {0.0f, height}}, segments));
    return mesh;
}

GeoMesh extrude(const std::vector<Vec2>& outline, float height) {
    GeoMesh mesh;
    const size_t n = outline.size();
    for (size_t i = 0; i < n; ++i) wall(mesh, outline[i], outline[(i + 1) % n], height);
    std::vector<Vec3> top, bottom;
    for (size_t i = 0; i < n; ++i) {
        top.push_back({outline[i].u, height, outline[i].v});
        bottom.push_back({outline[n - 1 - i].u, 0.0f, outline[n - 1 - i].v});
    }
    fan(mesh, top);
    fan(mesh, bottom);
    return mesh;
}

GeoMesh extrudeRing(const std::vector<Vec2>& outer, const std::vector<Vec2>& inner, float height) {
    GeoMesh mesh;
    const size_t n = outer.size();
    for (size_t i = 0; i < n; ++i) {
        const size_t j = (i + 1) % n;
        wall(mesh, outer[i], outer[j], height);
        wall(mesh, inner[j], inner[i], height);
        const uint16_t a = mesh.vertex({outer[i].u, height, outer[i].v});
        const uint16_t b = mesh.vertex({outer[j].u, height, outer[j].v});
        const uint16_t c = mesh.vertex({inner[j].u, height, inner[j].v});
        const uint16_t d = mesh.vertex({inner[i].u, height, inner[i].v});
        mesh.quad(a, b, c, d);
        const uint16_t e = mesh.vertex({outer[j].u, 0.0f, outer[j].v});
        const uint16_t f = mesh.vertex({outer[i].u, 0.0f, outer[i].v});
        const uint16_t g = mesh.vertex({inner[i].u, 0.0f, inner[i].v});
        const uint16_t h = mesh.vertex({inner[j].u, 0.0f, inner[j].v});
        mesh.quad(e, f, g, h);
    }
    return mesh;
}

std::vector<Vec2> circleOutline(int points, float radius) {
    std::vector<Vec2> outline;
    for (int i = 0; i < points; ++i) {
        const float phi = TWO_PI * static_cast<float>(i) / static_cast<float>(points);
        outline.push_back({radius * std::cos(phi), -radius * std::sin(phi)});
    }
    return outline;
}

std::vector<Vec2> gearOutline(int teeth, float root, float tip) {
    std::vector<Vec2> outline;
    for (int i = 0; i < teeth; ++i) {
        // A tooth: rise, flat top, fall, flat root, each a quarter of the pitch.
        const float fractions[4] = {0.0f, 0.2f, 0.5f, 0.7f};
        const float radii[4] = {root, tip, tip, root};
        for (int k = 0; k < 4; ++k) {
            const float phi = TWO_PI * (static_cast<float>(i) + fractions[k]) / static_cast<float>(teeth);
            outline.push_back({radii[k] * std::cos(phi), -radii[k] * std::sin(phi)});
        }
    }
    return outline;
}

std::vector<Vec2> starOutline(int points, float inner, float outer) {
    std::vector<Vec2> outline;
    for (int i = 0; i < 2 * points; ++i) {
        const float r = (i % 2 == 0) ? outer : inner;
        const float phi = TWO_PI * static_cast<float>(i) / static_cast<float>(2 * points);
        outline.push_back({r * std::cos(phi), -r * std::sin(phi)});
    }
    return outline;
}

GeoMesh terrain(float width, float depth, int columns, int rows, const std::function<float(float x, float z)>& height) {
    GeoMesh mesh = parametricSurface(columns, rows, false, false, [&](float s, float t) {
        const float x = (s - 0.5f) * width;
        const float z = (0.5f - t) * depth;
        return Vec3{x, height(x, z), z};
    });
    return mesh;
}

GeoMesh struts(const std::vector<std::pair<Vec3, Vec3>>& segments, float thickness) {
    GeoMesh mesh;
    const float h = thickness * 0.5f;
    for (const auto& [from, to] : segments) {
        const Vec3 axis = normalised(to - from);
        const Vec3 helper = std::fabs(axis.y) < 0.9f ? Vec3{0, 1, 0} : Vec3{1, 0, 0};
        const Vec3 side = normalised(cross(axis, helper)) * h;
        const Vec3 up = normalised(cross(side, axis)) * h;
        // Corners in turn about the axis such that each side quad faces out.
        const Vec3 corners[4] = {side + up, side - up, side * -1.0f - up, up - side};
        uint16_t bottom[4], top[4];
        for (int k = 0; k < 4; ++k) {
            bottom[k] = mesh.vertex(from + corners[k]);
            top[k] = mesh.vertex(to + corners[k]);
        }
        for (int k = 0; k < 4; ++k) {
            const int n = (k + 1) % 4;
            mesh.quad(bottom[k], bottom[n], top[n], top[k]);
        }
    }
    return mesh;
}

GeoMesh lattice(int cells, float cell, float thickness) {
    std::vector<std::pair<Vec3, Vec3>> segments;
    const float half = 0.5f * cell * static_cast<float>(cells);
    const auto at = [&](int i) { return static_cast<float>(i) * cell - half; };
    for (int a = 0; a <= cells; ++a) {
        for (int b = 0; b <= cells; ++b) {
            segments.push_back({{-half, at(a), at(b)}, {half, at(a), at(b)}});
            segments.push_back({{at(a), -half, at(b)}, {at(a), half, at(b)}});
            segments.push_back({{at(a), at(b), -half}, {at(a), at(b), half}});
        }
    }
    return struts(segments, thickness);
}
