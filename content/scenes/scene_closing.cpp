// "9d.3ds" (part 13): floating stones, crystals and a gilded knot about a
// spire, drawn with the materials exactly as this file defines them (flat,
// smooth, sphere-mapped and wire), seen in dense fog from a camera swinging
// round and up and down through the scene.
#include <cmath>
#include <numbers>
#include <string>

#include "content/geometry/geometry_compound.h"
#include "content/scenes/scene_builder.h"
#include "content/scenes/scenes.h"

namespace {

constexpr float TWO_PI = static_cast<float>(2.0 * std::numbers::pi);

// An octahedral crystal, taller than wide.
GeoMesh crystal(float width, float height) {
    GeoMesh c = geodesicSphere(1.0f, 0);
    scale(c, {width, height, width});
    return c;
}

}  // namespace

std::vector<uint8_t> make9dScene() {
    SceneBuilder b;
    b.material("STONE FLAT", rgb(150, 140, 170));
    b.material("GOLD SMOOTH", rgb(240, 190, 80), TDS_SHADING_GOURAUD);
    b.material("EMBER GLOW", rgb(255, 120, 40), TDS_SHADING_PHONG, false, TdsColourForm::Floats);
    b.material("PALE WIRE", rgb(255, 235, 200), TDS_SHADING_FLAT, true);

    GeoMesh spire = extrude(starOutline(5, 18.0f, 40.0f), 300.0f);
    translate(spire, {0.0f, -170.0f, 0.0f});
    b.mesh("Spire", spire, "STONE FLAT");

    GeoMesh knot = torusKnot(2, 5, 80.0f, 32.0f, 12.0f, 140, 7);
    b.mesh("GoldKnot", knot, "GOLD SMOOTH");

    GeoMesh crystals;
    for (int i = 0; i < 12; ++i) {
        const float a = TWO_PI * static_cast<float>(i) / 12.0f;
        GeoMesh c = crystal(16.0f, 46.0f);
        rotateZ(c, 25.0f * static_cast<float>(i % 3) - 25.0f);
        const float r = 150.0f + 40.0f * static_cast<float>(i % 2);
        translate(c, {r * std::cos(a), -150.0f + 27.0f * static_cast<float>(i), -r * std::sin(a)});
        append(crystals, c);
    }
    b.mesh("Crystals", crystals, "EMBER GLOW");

    GeoMesh stones;
    for (int i = 0; i < 7; ++i) {
        const float a = TWO_PI * (static_cast<float>(i) + 0.5f) / 7.0f;
        GeoMesh stone = geodesicSphere(26.0f + 6.0f * static_cast<float>(i % 3), 1);
        displace(stone, [i](Vec3 p) {
            const float bump = 0.18f * std::sin(0.21f * p.x + static_cast<float>(i)) * std::cos(0.17f * p.z);
            return Vec3{p.x * bump, p.y * (bump - 0.35f), p.z * bump};
        });
        translate(stone, {230.0f * std::cos(a), -60.0f + 50.0f * std::sin(2.0f * a), -230.0f * std::sin(a)});
        append(stones, stone);
    }
    b.mesh("Stones", stones, "STONE FLAT");

    GeoMesh rings;
    for (int i = 0; i < 3; ++i) {
        GeoMesh ring = torus(120.0f + 40.0f * static_cast<float>(i), 3.0f, 48, 3);
        rotateX(ring, 20.0f + 25.0f * static_cast<float>(i));
        rotateY(ring, 60.0f * static_cast<float>(i));
        append(rings, ring);
    }
    // Last: the overlay takes the colour of the last material drawn.
    b.mesh("Orbits", rings, "PALE WIRE");

    // Drawn once per frame, after the matrices were reset: the lights stand
    // as the eye sees them, in the heart of the scene and above it.
    b.omni("Lamp", {0.0f, 0.0f, -240.0f}, rgb(255, 250, 240));
    b.omni("Lamp2", {150.0f, 200.0f, -300.0f}, rgb(255, 180, 120));
    b.camera("Eye", {0.0f, 300.0f, 200.0f}, {0.0f, 0.0f, 0.0f});
    b.segment(0, 100);
    return b.write();
}
