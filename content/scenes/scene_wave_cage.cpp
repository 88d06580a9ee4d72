// "6d.3ds" (part 9: the second wave mesh, seen from a camera wandering about
// the origin) and "7d.3ds" (part 10: a sphere whose two halves split apart
// in the wire cage, in dense fog).
#include <cmath>
#include <numbers>
#include <string>

#include "content/geometry/geometry_compound.h"
#include "content/scenes/scene_builder.h"
#include "content/scenes/scenes.h"

std::vector<uint8_t> make6dScene() {
    SceneBuilder b;
    b.material("ORANGE FLAT", rgb(205, 125, 5));
    b.material("GREEN FLAT", rgb(45, 135, 95));
    b.material("BLACK WIRE", rgb(20, 20, 20), TDS_SHADING_FLAT, true);

    const Vec3 focus{0.0f, 0.0f, -330.0f};
    // Mesh 0 shows in the solid pass only: a sunburst behind the swell.
    GeoMesh burst = extrudeRing(starOutline(12, 430.0f, 620.0f), circleOutline(24, 360.0f), 30.0f);
    rotateX(burst, 90.0f);
    translate(burst, focus + Vec3{0.0f, 0.0f, -420.0f});
    b.mesh("Sunburst", burst, "GREEN FLAT");

    GeoMesh halo = torus(300.0f, 14.0f, 40, 6);
    rotateX(halo, 90.0f);
    translate(halo, focus);
    b.mesh("Halo", halo, "GREEN FLAT");

    // Drawn solid too (the part gives "BLACK WIRE" a flat mode in its solid
    // pass), so small studs on the halo rather than a cage round the camera.
    GeoMesh studs;
    for (int i = 0; i < 8; ++i) {
        GeoMesh stud = geodesicSphere(1.0f, 0);
        scale(stud, {26.0f, 40.0f, 26.0f});
        const float a = 0.7854f * static_cast<float>(i);
        translate(stud, focus + Vec3{300.0f * std::cos(a), 300.0f * std::sin(a), 0.0f});
        append(studs, stud);
    }
    b.mesh("Studs", studs, "BLACK WIRE");

    // Meshes 3 and 4: the wave mesh and its rest shape, vertex for vertex.
    GeoMesh swell = waveSphere(200.0f, 36, 28);
    translate(swell, focus);
    b.mesh("Swell", swell, "ORANGE FLAT");
    b.mesh("Rest", swell, "ORANGE FLAT");

    // The solid pass is the frame's first, so the lights stand as the eye
    // sees them; the first follows the camera, the second is in the swell.
    b.omni("Lamp", {0.0f, 0.0f, 0.0f}, rgb(255, 255, 255));
    b.omni("Heart", {0.0f, 30.0f, -330.0f}, rgb(255, 240, 220));
    b.camera("Eye", {0.0f, 0.0f, 0.0f}, focus);
    b.segment(0, 100);
    return b.write();
}

namespace {

// One half of a faceted ball: the faces of a geodesic sphere whose middles
// lie below (or above) the equator, each face on its own vertices so flat
// shading shows every facet. The split runs in a zigzag, so the halves
// interlock when closed and part along a jagged seam.
GeoMesh facetedHalf(float radius, bool upper) {
    const GeoMesh ball = geodesicSphere(radius, 2);
    GeoMesh half;
    for (const GeoTriangle& t : ball.triangles) {
        const Vec3 a = ball.positions[t.a], b = ball.positions[t.b], c = ball.positions[t.c];
        if ((a.y + b.y + c.y > 0.0f) != upper) continue;
        half.triangle(half.vertex(a), half.vertex(b), half.vertex(c), t.edges);
    }
    return half;
}

}  // namespace

std::vector<uint8_t> make7dScene() {
    SceneBuilder b;
    b.material("WHITE FLAT", rgb(200, 200, 200));
    b.material("ORANGE FLAT", rgb(115, 125, 135));

    // Meshes 0 and 1: the lower and upper halves of one sphere. Whole in the
    // solid pass; the wire cage pulls them 20 below and above.
    b.mesh("Lower", facetedHalf(82.0f, false), "WHITE FLAT");
    b.mesh("Upper", facetedHalf(82.0f, true), "WHITE FLAT");

    GeoMesh kernel = torusKnot(3, 4, 40.0f, 16.0f, 8.0f, 96, 5);
    b.mesh("Kernel", kernel, "ORANGE FLAT");
    GeoMesh belt = torus(104.0f, 5.0f, 40, 4);
    rotateX(belt, 12.0f);
    b.mesh("Belt", belt, "ORANGE FLAT");
    // Small moons about the ball: the orbiting camera sees them pass in front
    // of it and behind, so the turn shows.
    GeoMesh moons;
    for (int i = 0; i < 7; ++i) {
        const float a = 0.8976f * static_cast<float>(i);
        GeoMesh moon = geodesicSphere(1.0f, 0);
        scale(moon, {9.0f, 14.0f, 9.0f});
        translate(moon, {118.0f * std::cos(a), 45.0f * std::sin(3.0f * a), -118.0f * std::sin(a)});
        append(moons, moon);
    }
    b.mesh("Moons", moons, "ORANGE FLAT");
    GeoMesh plinth = extrude(circleOutline(10, 90.0f), 22.0f);
    translate(plinth, {0.0f, -172.0f, 0.0f});
    GeoMesh stem = cylinder(15.0f, 72.0f, 8);
    translate(stem, {0.0f, -152.0f, 0.0f});
    append(plinth, stem);
    b.mesh("Plinth", plinth, "WHITE FLAT");

    // The solid pass comes first in the frame: lights stand as the eye sees
    // them, in the sphere and above it.
    b.omni("Lamp", {0.0f, 0.0f, -175.0f}, rgb(255, 255, 255));
    b.omni("Lamp2", {-90.0f, 120.0f, -210.0f}, rgb(255, 200, 150));
    b.camera("Eye", {0.0f, 50.0f, 200.0f}, {0.0f, -10.0f, 0.0f});
    b.segment(0, 100);
    return b.write();
}
