// "rum.3ds" (part 3) and "rum2.3ds" (parts 4 and 12): rooms drawn as lines,
// light lines added to the frame ("GREEN FLAT") and dark ones cut into it
// ("WHITE WIRE"), seen from a camera that sways about the room's middle.
#include <string>

#include "content/geometry/geometry_compound.h"
#include "content/scenes/scene_builder.h"
#include "content/scenes/scenes.h"

namespace {

// A row of round pillars from floor to ceiling along z at x = `x`.
GeoMesh pillarRow(float x, float floorY, float height, float firstZ, float step, int count) {
    GeoMesh row;
    for (int i = 0; i < count; ++i) {
        GeoMesh pillar = cylinder(22.0f, height, 8);
        translate(pillar, {x, floorY, firstZ + step * static_cast<float>(i)});
        append(row, pillar);
    }
    return row;
}

void addRoomMaterials(SceneBuilder& b) {
    b.material("GREEN FLAT", rgb(90, 200, 120), TDS_SHADING_FLAT, true);
    b.material("WHITE WIRE", rgb(235, 235, 235), TDS_SHADING_FLAT, true);
}

}  // namespace

std::vector<uint8_t> makeRumScene() {
    SceneBuilder b;
    addRoomMaterials(b);
    const float floorY = -200.0f;
    const float height = 520.0f;

    GeoMesh floor = gridPanel(1400.0f, 1400.0f, 14, 14);
    rotateX(floor, -90.0f);
    translate(floor, {0.0f, floorY, 0.0f});
    b.mesh("Floor", floor, "GREEN FLAT");

    GeoMesh ceiling = gridPanel(1400.0f, 1400.0f, 7, 7);
    rotateX(ceiling, 90.0f);
    translate(ceiling, {0.0f, floorY + height, 0.0f});
    b.mesh("Ceiling", ceiling, "WHITE WIRE");

    GeoMesh walls = roomWalls({1400.0f, height, 1400.0f}, 100.0f);
    translate(walls, {0.0f, floorY + 0.5f * height, 0.0f});
    b.mesh("Walls", walls, "GREEN FLAT");

    GeoMesh pillars = pillarRow(-320.0f, floorY, height, -560.0f, 280.0f, 5);
    append(pillars, pillarRow(320.0f, floorY, height, -560.0f, 280.0f, 5));
    b.mesh("Pillars", pillars, "WHITE WIRE");

    GeoMesh knot = torusKnot(2, 5, 120.0f, 45.0f, 16.0f, 160, 5);
    rotateX(knot, 75.0f);  // facing down the room, towards the camera
    translate(knot, {0.0f, 30.0f, -420.0f});
    b.mesh("Knot", knot, "GREEN FLAT");

    GeoMesh globe = geodesicSphere(240.0f, 1);
    translate(globe, {0.0f, 30.0f, -420.0f});
    b.mesh("Globe", globe, "WHITE WIRE");

    b.omni("Lamp", {0.0f, 100.0f, 0.0f}, rgb(255, 255, 255));
    b.omni("Lamp2", {0.0f, 0.0f, -400.0f}, rgb(255, 220, 180));
    b.camera("Eye", {0.0f, 10.0f, 0.0f}, {0.0f, -20.0f, -600.0f});
    b.segment(0, 100);
    return b.write();
}

namespace {

// The flying pieces: small solids about the origin, placed by the part.
GeoMesh flyer(int i) {
    switch (i % 4) {
        case 0: return torusKnot(2, 3, 38.0f, 16.0f, 9.0f, 64, 5);
        case 1: return geodesicSphere(48.0f, 1);
        case 2: {
            GeoMesh star = extrude(starOutline(6, 24.0f, 60.0f), 24.0f);
            translate(star, {0.0f, -12.0f, 0.0f});
            rotateX(star, 60.0f);
            return star;
        }
        default: return torus(42.0f, 14.0f, 16, 6);
    }
}

}  // namespace

std::vector<uint8_t> makeRum2Scene() {
    SceneBuilder b;
    addRoomMaterials(b);
    b.material("BLUE FLAT", rgb(100, 140, 200));
    const float floorY = -450.0f;

    // Meshes 0 to 5 stay where they are: the hall.
    GeoMesh floor = gridPanel(1800.0f, 2200.0f, 18, 22);
    rotateX(floor, -90.0f);
    translate(floor, {0.0f, floorY, 0.0f});
    b.mesh("Floor", floor, "GREEN FLAT");

    GeoMesh ceiling = gridPanel(1800.0f, 2200.0f, 6, 8);
    rotateX(ceiling, 90.0f);
    translate(ceiling, {0.0f, 450.0f, 0.0f});
    b.mesh("Ceiling", ceiling, "WHITE WIRE");

    GeoMesh arches;
    for (int i = 0; i < 5; ++i) {
        GeoMesh a = arch(900.0f, 800.0f, 40.0f);
        translate(a, {0.0f, floorY, -880.0f + 440.0f * static_cast<float>(i)});
        append(arches, a);
    }
    b.mesh("Arches", arches, "WHITE WIRE");

    GeoMesh pillars = pillarRow(-700.0f, floorY, 900.0f, -1000.0f, 400.0f, 6);
    append(pillars, pillarRow(700.0f, floorY, 900.0f, -1000.0f, 400.0f, 6));
    b.mesh("Pillars", pillars, "WHITE WIRE");

    GeoMesh dais = extrudeRing(gearOutline(12, 230.0f, 270.0f), circleOutline(48, 150.0f), 40.0f);
    translate(dais, {40.0f, floorY, -10.0f});
    b.mesh("Dais", dais, "GREEN FLAT");

    GeoMesh beacon = torus(180.0f, 10.0f, 32, 4);
    translate(beacon, {40.0f, floorY + 260.0f, -10.0f});
    b.mesh("Beacon", beacon, "GREEN FLAT");

    // From mesh 6 on: the flyers, each about the origin.
    for (int i = 0; i < 8; ++i) {
        GeoMesh piece = flyer(i);
        scale(piece, {1.7f, 1.7f, 1.7f});
        b.mesh("Flyer" + std::to_string(i), piece, "BLUE FLAT");
    }

    b.omni("Lamp", {0.0f, 60.0f, 0.0f}, rgb(255, 255, 255));
    // Seen from the eye (the part draws once, after the matrices were reset),
    // the second light stands far ahead: every flyer in view is lit from
    // behind, the side its visible faces turn their normals to.
    b.omni("Lamp2", {0.0f, 150.0f, -2500.0f}, rgb(200, 220, 255));
    // The part sways the camera about the middle of the hall from its second
    // frame on; its first frame, drawn before any flyer has left the origin,
    // looks from the entrance, not from inside them.
    b.camera("Eye", {0.0f, 60.0f, 320.0f}, {0.0f, -40.0f, -600.0f});
    b.segment(0, 100);
    return b.write();
}
