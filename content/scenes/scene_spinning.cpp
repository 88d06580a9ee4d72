// "2d.3ds" (part 5: a clockwork of wheels the camera pans across) and
// "3d.3ds" (part 6: a tunnel of rings circled by the camera in fog, with the
// stream of squares flying through it).
#include <cmath>
#include <string>

#include "content/geometry/geometry_compound.h"
#include "content/scenes/scene_builder.h"
#include "content/scenes/scenes.h"

std::vector<uint8_t> make2dScene() {
    SceneBuilder b;
    b.material("BLUE FLAT", rgb(115, 125, 135));
    b.material("GREEN FLAT", rgb(55, 155, 105));
    b.material("ORANGE FLAT", rgb(205, 125, 5));

    // Meshes 0 to 4 spin about the z axis through the origin, so every wheel
    // is centred on it, in planes one behind the other. The camera pans along
    // x across their right-hand side, from about x 1220 down to 724.
    GeoMesh rim = gearWheel(24, 1350.0f, 1440.0f, 1530.0f, 0, 0.0f, 0.0f, 50.0f);
    translate(rim, {0.0f, 0.0f, 150.0f});
    b.mesh("BigRim", rim, "ORANGE FLAT");

    GeoMesh wheel = gearWheel(24, 950.0f, 1020.0f, 1090.0f, 6, 50.0f, 120.0f, 40.0f);
    translate(wheel, {0.0f, 0.0f, 60.0f});
    b.mesh("SpokeWheel", wheel, "BLUE FLAT");

    GeoMesh gear = gearWheel(18, 520.0f, 600.0f, 690.0f, 5, 60.0f, 90.0f, 60.0f);
    translate(gear, {0.0f, 0.0f, -40.0f});
    b.mesh("MidGear", gear, "GREEN FLAT");

    GeoMesh cam = extrude(starOutline(9, 200.0f, 360.0f), 70.0f);
    rotateX(cam, 90.0f);
    translate(cam, {0.0f, 0.0f, -140.0f});
    b.mesh("StarCam", cam, "ORANGE FLAT");

    // The crown is drawn last: the overlay takes the colour of the last
    // material drawn, and its grey leaves the picture's own colours.
    GeoMesh crown = gearWheel(30, 1700.0f, 1760.0f, 1830.0f, 0, 0.0f, 0.0f, 30.0f);
    translate(crown, {0.0f, 0.0f, 320.0f});
    b.mesh("Crown", crown, "BLUE FLAT");

    // Lights: the part puts the first on the camera and the second's x
    // there too; drawn first in the frame, the solid pass sees them from the
    // eye, so the second stands far ahead, beyond the wheels.
    b.omni("Lamp", {1000.0f, 200.0f, -850.0f}, rgb(255, 255, 255));
    b.omni("Lamp2", {1000.0f, 100.0f, -1700.0f}, rgb(255, 230, 200));
    b.camera("Eye", {1220.0f, 200.0f, -850.0f}, {820.0f, 0.0f, 200.0f});
    b.segment(0, 100);
    return b.write();
}

std::vector<uint8_t> make3dScene() {
    SceneBuilder b;
    b.material("GREEN FLAT", rgb(55, 155, 105));
    b.material("ORANGE FLAT", rgb(205, 125, 5));

    // The tunnel runs along z through the origin; the camera circles it at
    // a distance of 600.
    for (int i = 0; i < 5; ++i) {
        const float z = -360.0f + 180.0f * static_cast<float>(i);
        if (i % 2 == 0) {
            GeoMesh ring = extrudeRing(gearOutline(14, 205.0f, 240.0f), circleOutline(56, 165.0f), 32.0f);
            rotateX(ring, 90.0f);
            translate(ring, {0.0f, 0.0f, z - 16.0f});
            b.mesh("Gate" + std::to_string(i), ring, "ORANGE FLAT");
        } else {
            GeoMesh ring = torus(190.0f, 18.0f, 28, 6);
            rotateX(ring, 90.0f);
            translate(ring, {0.0f, 0.0f, z});
            b.mesh("Hoop" + std::to_string(i), ring, "GREEN FLAT");
        }
    }
    // Rails along the tunnel, tying the rings together.
    std::vector<std::pair<Vec3, Vec3>> rails;
    for (int k = 0; k < 6; ++k) {
        const float a = 1.0472f * static_cast<float>(k) + 0.5236f;
        const Vec3 at{190.0f * std::cos(a), 190.0f * std::sin(a), 0.0f};
        rails.push_back({at + Vec3{0.0f, 0.0f, -420.0f}, at + Vec3{0.0f, 0.0f, 420.0f}});
    }
    b.mesh("Rails", struts(rails, 12.0f), "GREEN FLAT");

    // Drawn last: the stream of squares is laid out in this mesh's frame, at
    // x -80..40 and y 0..120 from its centre, so that centre is (20, -60, 0)
    // and the stream runs down the middle of the tunnel.
    GeoMesh posts;
    for (int side = 0; side < 2; ++side) {
        GeoMesh post = box({40.0f, 600.0f, 40.0f});
        translate(post, {side == 0 ? -280.0f : 320.0f, -60.0f, 0.0f});
        append(posts, post);
    }
    b.mesh("Posts", posts, "ORANGE FLAT");

    b.omni("Lamp", {0.0f, 160.0f, 600.0f}, rgb(255, 255, 255));
    b.omni("Lamp2", {0.0f, 100.0f, -600.0f}, rgb(255, 220, 180));
    b.camera("Eye", {0.0f, 160.0f, 600.0f}, {0.0f, 0.0f, 0.0f});
    b.segment(0, 100);
    return b.write();
}
