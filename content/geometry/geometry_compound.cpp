#include "content/geometry/geometry_compound.h"

#include <cmath>
#include <numbers>

namespace {

int cellsAcross(float size, float cell) { return std::max(1, static_cast<int>(std::lround(size / cell))); }

}  // namespace

GeoMesh waveSphere(float radius, int slices, int stacks) {
    GeoMesh mesh = sphere(radius, slices, stacks);
    for (size_t i = 0; i < mesh.positions.size(); ++i) {
        const Vec3 p = mesh.positions[i];
        mesh.texCoords[i] = {0.5f + 0.49f * p.x / radius, 0.5f - 0.49f * p.y / radius};
    }
    return mesh;
}

GeoMesh gridPanel(float width, float height, int columns, int rows) {
    return parametricSurface(columns, rows, false, false, [=](float s, float t) {
        return Vec3{(s - 0.5f) * width, (t - 0.5f) * height, 0.0f};
    });
}

GeoMesh roomWalls(Vec3 size, float cell) {
    GeoMesh room;
    for (int side = 0; side < 2; ++side) {
        GeoMesh end = gridPanel(size.x, size.y, cellsAcross(size.x, cell), cellsAcross(size.y, cell));
        rotateY(end, side == 0 ? 0.0f : 180.0f);
        translate(end, {0.0f, 0.0f, side == 0 ? -0.5f * size.z : 0.5f * size.z});
        append(room, end);
        GeoMesh wall = gridPanel(size.z, size.y, cellsAcross(size.z, cell), cellsAcross(size.y, cell));
        rotateY(wall, side == 0 ? 90.0f : -90.0f);
        translate(wall, {side == 0 ? -0.5f * size.x : 0.5f * size.x, 0.0f, 0.0f});
        append(room, wall);
    }
    return room;
}

GeoMesh gearWheel(int teeth, float inner, float root, float tip, int spokes, float spokeWidth, float hub,
                  float thickness) {
    GeoMesh wheel = extrudeRing(gearOutline(teeth, root, tip), circleOutline(4 * teeth, inner), thickness);
    const float overlap = 0.05f * (inner - hub);
    for (int i = 0; i < spokes; ++i) {
        GeoMesh spoke = box({inner - hub + 2.0f * overlap, thickness * 0.8f, spokeWidth});
        translate(spoke, {0.5f * (inner + hub), 0.5f * thickness, 0.0f});
        rotateY(spoke, 360.0f * static_cast<float>(i) / static_cast<float>(spokes));
        append(wheel, spoke);
    }
    if (hub > 0.0f) append(wheel, cylinder(hub, thickness, 12));
    rotateX(wheel, 90.0f);
    translate(wheel, {0.0f, 0.0f, -0.5f * thickness});
    return wheel;
}

GeoMesh arch(float width, float height, float member) {
    const float radius = 0.5f * (width - member);
    const float legHeight = height - radius - 0.5f * member;
    GeoMesh shape;
    for (int side = -1; side <= 1; side += 2) {
        GeoMesh leg = box({member, legHeight, member});
        translate(leg, {static_cast<float>(side) * radius, 0.5f * legHeight, 0.0f});
        append(shape, leg);
    }
    const auto curve = [=](float t) {
        const float a = static_cast<float>(std::numbers::pi) * t;
        return Vec3{radius * std::cos(a), legHeight + radius * std::sin(a), 0.0f};
    };
    GeoMesh top = tube(curve, 12, 4, member * 0.7071f, false);
    append(shape, top);
    return shape;
}
