// "4d.3ds" (part 7): an armillary of six parts tumbling together about the
// origin; the music's loudness picks one part (mesh i for a level sum
// between 35(i + 1) and 35(i + 2), so six parts cover the loud end) and
// pushes it out of the frame of rings.
#include <cmath>

#include "content/scenes/scene_builder.h"
#include "content/scenes/scenes.h"

namespace {

// Spikes on the twelve corners of an icosahedron, pointing out.
GeoMesh urchin(float reach, float length, float base) {
    const float g = (1.0f + std::sqrt(5.0f)) * 0.5f;
    const Vec3 corners[12] = {{-1, g, 0}, {1, g, 0}, {-1, -g, 0}, {1, -g, 0}, {0, -1, g}, {0, 1, g},
                              {0, -1, -g}, {0, 1, -g}, {g, 0, -1}, {g, 0, 1}, {-g, 0, -1}, {-g, 0, 1}};
    GeoMesh spikes;
    for (const Vec3& c : corners) {
        GeoMesh spike = cone(base, length, 8);
        translate(spike, {0.0f, reach - length, 0.0f});
        // Turn +y onto the corner's direction: tip about x, then about y.
        const Vec3 d = normalised(c);
        const float tilt = std::acos(d.y) * 57.29578f;
        const float heading = std::atan2(d.x, d.z) * 57.29578f;
        rotateX(spike, tilt);
        rotateY(spike, heading);
        append(spikes, spike);
    }
    return spikes;
}

}  // namespace

std::vector<uint8_t> make4dScene() {
    SceneBuilder b;
    b.material("RED FLAT", rgb(155, 55, 15));
    b.material("BLUE FLAT", rgb(15, 55, 155));
    b.material("GREEN FLAT", rgb(55, 155, 105));
    b.material("ORANGE FLAT", rgb(205, 125, 5));

    // Every part is centred on the origin: the tumble turns them about it.
    b.mesh("Core", torusKnot(2, 3, 50.0f, 20.0f, 12.0f, 80, 6), "ORANGE FLAT");
    GeoMesh ring1 = torus(110.0f, 7.0f, 40, 4);
    rotateX(ring1, 90.0f);
    b.mesh("RingX", ring1, "RED FLAT");
    GeoMesh ring2 = torus(132.0f, 7.0f, 44, 4);
    rotateZ(ring2, 90.0f);
    b.mesh("RingY", ring2, "BLUE FLAT");
    b.mesh("RingZ", torus(154.0f, 7.0f, 48, 4), "GREEN FLAT");
    GeoMesh ring4 = torus(175.0f, 6.0f, 52, 4);
    rotateX(ring4, 45.0f);
    rotateY(ring4, 45.0f);
    b.mesh("RingTilt", ring4, "RED FLAT");
    b.mesh("Urchin", urchin(210.0f, 48.0f, 11.0f), "ORANGE FLAT");

    // Drawn first in the frame, the solid pass sees the lights from the eye:
    // both sit inside the armillary as the camera sees it.
    b.omni("Lamp", {0.0f, 0.0f, -260.0f}, rgb(255, 255, 255));
    b.omni("Lamp2", {120.0f, 140.0f, -300.0f}, rgb(255, 210, 170));
    // The part moves the eye before every render; this is one of its places.
    b.camera("Eye", {140.0f, 140.0f, 220.0f}, {0.0f, 0.0f, 0.0f});
    b.segment(0, 100);
    return b.write();
}
