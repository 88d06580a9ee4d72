// "5d.3ds" (part 8) and "8d.3ds" (part 11): scenes whose camera flies the
// path keyed in the file. The parts run the frame from their local time
// (4 and 5 frames per tenth of a second, starting near 1500 and 3800) and
// wrap it at the segment's end, so each path is a closed loop keyed over
// the whole segment: wherever the part starts in it, the flight runs on.
#include <cmath>
#include <numbers>
#include <string>

#include "content/geometry/geometry_compound.h"
#include "content/scenes/scene_builder.h"
#include "content/scenes/scenes.h"

namespace {

constexpr float TWO_PI = static_cast<float>(2.0 * std::numbers::pi);

// Part 8's loop: 720 frames (18 s at four frames per tenth of a second), a
// wide oval swinging in and out between the towers, rising and dipping.
constexpr int32_t CANYON_PERIOD = 720;

Vec3 canyonPath(float a) {
    const float w = TWO_PI * a;
    return {720.0f * std::cos(w) + 160.0f * std::cos(3.0f * w), 110.0f + 50.0f * std::sin(2.0f * w),
            -560.0f * std::sin(w) + 120.0f * std::sin(3.0f * w)};
}

float canyonGround(float x, float z) {
    return -130.0f + 80.0f * std::sin(0.004f * x) * std::cos(0.005f * z) + 30.0f * std::sin(0.011f * x + 0.007f * z);
}

// Distance from (x, z) to the nearest sampled point of the path, in plan.
float distanceToPath(const std::function<Vec3(float)>& path, float x, float z) {
    float best = 1e9f;
    for (int i = 0; i < 240; ++i) {
        const Vec3 p = path(static_cast<float>(i) / 240.0f);
        best = std::min(best, std::hypot(p.x - x, p.z - z));
    }
    return best;
}

// A small deterministic sequence for placing things (no library random
// numbers: the bytes must not change between runs or machines).
struct Scatter {
    uint32_t state;
    float next() {
        state = state * 1664525u + 1013904223u;
        return static_cast<float>(state >> 8) / static_cast<float>(1u << 24);
    }
};

// An arch across the path at parameter a, standing on the ground, its
// opening facing along the flight.
GeoMesh gateAt(const std::function<Vec3(float)>& path, float a, float width, float height) {
    const Vec3 p = path(a);
    const Vec3 ahead = path(a + 0.002f) - path(a - 0.002f);
    GeoMesh gate = arch(width, height, 26.0f);
    rotateY(gate, std::atan2(ahead.x, ahead.z) * 57.29578f);
    translate(gate, {p.x, canyonGround(p.x, p.z) - 10.0f, p.z});
    return gate;
}

}  // namespace

std::vector<uint8_t> make5dScene() {
    SceneBuilder b;
    b.material("BLUE FLAT", rgb(115, 125, 135), TDS_SHADING_FLAT, true);
    b.material("GREEN FLAT", rgb(215, 125, 35), TDS_SHADING_FLAT, true);
    b.material("ORANGE FLAT", rgb(205, 125, 5));

    // Towers on both sides of the flight, kept clear of the path.
    GeoMesh towers;
    Scatter scatter{12345u};
    int placed = 0;
    while (placed < 64) {
        const float x = -1300.0f + 2600.0f * scatter.next();
        const float z = -1100.0f + 2200.0f * scatter.next();
        const float height = 140.0f + 380.0f * scatter.next() * scatter.next() + 120.0f * scatter.next();
        const float width = 45.0f + 55.0f * scatter.next();
        if (distanceToPath(canyonPath, x, z) < 110.0f + width) continue;
        GeoMesh tower = box({width, height, width});
        rotateY(tower, 90.0f * scatter.next());
        translate(tower, {x, canyonGround(x, z) + 0.5f * height, z});
        append(towers, tower);
        ++placed;
    }
    b.mesh("Towers", towers, "ORANGE FLAT");

    GeoMesh gates;
    for (int i = 0; i < 6; ++i) append(gates, gateAt(canyonPath, (static_cast<float>(i) + 0.3f) / 6.0f, 260.0f, 330.0f));
    b.mesh("Gates", gates, "GREEN FLAT");

    GeoMesh obelisk = extrude(starOutline(4, 40.0f, 90.0f), 520.0f);
    translate(obelisk, {0.0f, canyonGround(0.0f, 0.0f), 0.0f});
    b.mesh("Needle", obelisk, "ORANGE FLAT");

    // The ground last: its centre is near the origin, and the part's lights
    // are placed under the matrix of the mesh drawn last in the frame before.
    GeoMesh ground = terrain(3200.0f, 2800.0f, 32, 28, canyonGround);
    b.mesh("Ground", ground, "BLUE FLAT");

    // The part never resets the matrices, so its lights are placed under the
    // last matrix of the frame before: in the scene, offset by the ground's
    // centre. A face the camera sees is lit from behind it (its stored normal
    // points into the solid), so two far lights on opposite sides, one low
    // and one high, light the tower walls on every side and the roofs.
    b.omni("Sun", {2400.0f, -1400.0f, -2400.0f}, rgb(255, 235, 200));
    b.omni("Sky", {-2400.0f, 1800.0f, 2400.0f}, rgb(200, 190, 255));
    b.camera("Flyer", canyonPath(0.0f), canyonPath(0.08f));
    b.cameraPath("Flyer", loopFlight(CANYON_PERIOD, 30, canyonPath, 0.08f, 60.0f));
    b.segment(0, CANYON_PERIOD);
    return b.write();
}

namespace {

// Part 11's loop: 1300 frames (26 s at five frames per tenth of a second),
// a trefoil around the central spire, threading the hoops set along it.
constexpr int32_t TREFOIL_PERIOD = 1300;

Vec3 trefoilPath(float a) {
    const float w = TWO_PI * a;
    const float r = 420.0f + 170.0f * std::cos(3.0f * w);
    return {r * std::cos(2.0f * w), 40.0f + 120.0f * std::sin(3.0f * w), -r * std::sin(2.0f * w)};
}

}  // namespace

std::vector<uint8_t> make8dScene() {
    SceneBuilder b;
    b.material("BLUE FLAT", rgb(115, 125, 135));
    // Drawn as the file defines them: the part sets only "BLUE FLAT".
    b.material("PALE SMOOTH", rgb(230, 200, 150), TDS_SHADING_GOURAUD, false, TdsColourForm::Floats);
    b.material("DUSK WIRE", rgb(255, 190, 140), TDS_SHADING_FLAT, true);

    GeoMesh hoops;
    for (int i = 0; i < 18; ++i) {
        const float a = (static_cast<float>(i) + 0.5f) / 18.0f;
        const Vec3 p = trefoilPath(a);
        const Vec3 ahead = trefoilPath(a + 0.002f) - trefoilPath(a - 0.002f);
        GeoMesh hoop = torus(95.0f, 9.0f, 18, 4);
        rotateX(hoop, 90.0f);  // facing z
        rotateX(hoop, -std::atan2(ahead.y, std::hypot(ahead.x, ahead.z)) * 57.29578f);
        rotateY(hoop, std::atan2(ahead.x, ahead.z) * 57.29578f);
        translate(hoop, p);
        append(hoops, hoop);
    }
    b.mesh("Hoops", hoops, "BLUE FLAT");

    GeoMesh spire = cone(90.0f, 700.0f, 12);
    translate(spire, {0.0f, -250.0f, 0.0f});
    append(spire, torusKnot(2, 3, 120.0f, 45.0f, 14.0f, 72, 5));
    b.mesh("Spire", spire, "BLUE FLAT");

    // Pylons and stones about the loop, kept off the path, for the eye to
    // measure the speed by.
    GeoMesh pylons;
    GeoMesh stones;
    Scatter scatter{777u};
    int pylonCount = 0;
    int stoneCount = 0;
    while (pylonCount < 18 || stoneCount < 22) {
        const float x = -1000.0f + 2000.0f * scatter.next();
        const float z = -1000.0f + 2000.0f * scatter.next();
        const float clearance = distanceToPath(trefoilPath, x, z);
        const bool pylon = pylonCount < 18 && (stoneCount >= 22 || scatter.next() < 0.45f);
        if (clearance < (pylon ? 140.0f : 120.0f) || std::hypot(x, z) < 160.0f) continue;
        if (pylon) {
            const float height = 300.0f + 400.0f * scatter.next();
            GeoMesh p = box({50.0f, height, 50.0f});
            rotateY(p, 90.0f * scatter.next());
            translate(p, {x, -260.0f + 0.5f * height, z});
            append(pylons, p);
            ++pylonCount;
        } else {
            GeoMesh stone = geodesicSphere(35.0f + 35.0f * scatter.next(), 0);
            scale(stone, {1.0f, 1.5f, 1.0f});
            rotateZ(stone, 40.0f * scatter.next() - 20.0f);
            translate(stone, {x, -120.0f + 300.0f * scatter.next(), z});
            append(stones, stone);
            ++stoneCount;
        }
    }
    b.mesh("Pylons", pylons, "BLUE FLAT");
    b.mesh("Stones", stones, "PALE SMOOTH");

    GeoMesh floor = terrain(2600.0f, 2600.0f, 20, 20,
                            [](float x, float z) { return -260.0f + 30.0f * std::sin(0.006f * x) * std::sin(0.006f * z); });
    b.mesh("Floor", floor, "DUSK WIRE");

    // Drawn first in the frame, the solid pass sees the lights from the eye.
    b.omni("Lamp", {0.0f, 0.0f, -320.0f}, rgb(255, 255, 255));
    b.omni("Lamp2", {-220.0f, 160.0f, -420.0f}, rgb(255, 200, 160));
    b.camera("Pilot", trefoilPath(0.0f), trefoilPath(0.05f));
    b.cameraPath("Pilot", loopFlight(TREFOIL_PERIOD, 25, trefoilPath, 0.05f, 30.0f));
    b.segment(0, TREFOIL_PERIOD);
    return b.write();
}
