// "test.3ds" (part 1: turning centrepiece in white fog, pieces revealed on the
// beats) and "stil.3ds" (part 2: the swelling wave mesh).
#include <cmath>
#include <numbers>
#include <string>

#include "content/scenes/scene_builder.h"
#include "content/geometry/geometry_compound.h"
#include "content/scenes/scenes.h"

namespace {

// Pieces revealed one per beat, from mesh 4 on.
constexpr int REVEALED_PIECES = 36;

// The i-th revealed piece: small solids and line figures alternating, so
// the spiral fills with both.
GeoMesh revealedPiece(int i) {
    switch (i % 6) {
        case 0: return geodesicSphere(26.0f, 0);
        case 1: return torus(24.0f, 8.0f, 12, 6);
        case 2: {
            GeoMesh m = box({38.0f, 38.0f, 38.0f});
            rotateX(m, 35.0f);
            rotateY(m, 45.0f);
            return m;
        }
        case 3: return extrude(starOutline(5, 14.0f, 34.0f), 12.0f);
        case 4: return cone(22.0f, 50.0f, 10);
        default: return geodesicSphere(30.0f, 1);
    }
}

// The logo is tinted by the colour of the last mesh drawn, which is the
// piece revealed last: green and white take turns, never black.
const char* revealedMaterial(int i) { return i % 3 == 1 ? "WHITE WIRE" : "GREEN FLAT"; }

}  // namespace

std::vector<uint8_t> makeTestScene() {
    SceneBuilder b;
    b.material("GREEN FLAT", rgb(160, 210, 55));
    b.material("BLACK WIRE", rgb(0, 0, 0), TDS_SHADING_FLAT, true);
    b.material("WHITE WIRE", rgb(255, 255, 255), TDS_SHADING_FLAT, true, TdsColourForm::Floats);

    // Meshes 0 to 2 turn about the vertical axis, so they stand on it.
    GeoMesh knot = torusKnot(3, 2, 95.0f, 40.0f, 20.0f, 120, 8);
    rotateX(knot, 70.0f);  // tipped towards the camera, so the turn shows all of it
    b.mesh("Knot", knot, "GREEN FLAT");
    GeoMesh cage = geodesicSphere(175.0f, 1);
    b.mesh("Cage", cage, "BLACK WIRE");
    GeoMesh hoop = torus(235.0f, 6.0f, 48, 4);
    rotateX(hoop, 90.0f);  // upright, so its turn shows
    b.mesh("Hoop", hoop, "WHITE WIRE");
    // Mesh 3 stays hidden for the whole part.
    b.mesh("Spare", box({20.0f, 20.0f, 20.0f}), "GREEN FLAT");

    // The revealed pieces lie on a spiral facing the camera, growing outward
    // from the centrepiece, so each beat adds one further out.
    for (int i = 0; i < REVEALED_PIECES; ++i) {
        const float a = 2.4f * static_cast<float>(i);  // golden-angle steps
        const float r = 200.0f + 9.0f * static_cast<float>(i);
        GeoMesh piece = revealedPiece(i);
        scale(piece, {1.35f, 1.35f, 1.35f});
        rotateY(piece, 17.0f * static_cast<float>(i));
        translate(piece, {r * std::cos(a), 0.75f * r * std::sin(a), -80.0f + 15.0f * static_cast<float>(i % 7)});
        b.mesh("Piece" + std::to_string(i), piece, revealedMaterial(i));
    }

    // Lights stand where the parts leave the eye: these two sit inside the
    // centrepiece as the camera sees it.
    b.omni("Core", {0.0f, 0.0f, -300.0f}, rgb(255, 255, 255));
    b.omni("Rim", {160.0f, 140.0f, -360.0f}, rgb(150, 170, 255));
    b.camera("Eye", {0.0f, 0.0f, 300.0f}, {0.0f, 0.0f, 0.0f});
    b.segment(0, 100);
    return b.write();
}

std::vector<uint8_t> makeStilScene() {
    SceneBuilder b;
    b.material("ORANGE FLAT", rgb(255, 125, 0));
    // The wave mesh and its rest shape: the same sphere, vertex for vertex.
    // Texture coordinates are the front view of it, so the wave map spreads
    // over the face the camera sees and mirrors onto the back without a seam.
    GeoMesh blob = waveSphere(52.0f, 40, 30);
    b.mesh("Swell", blob, "ORANGE FLAT");
    b.mesh("Rest", blob, "ORANGE FLAT");
    // The first light follows the camera. The solid is drawn second, under
    // the matrix of the enlarged shell, so the lights it sees stand in the
    // scene scaled by 1.2: the second one shines from behind the swell.
    b.omni("Glow", {0.0f, 40.0f, -300.0f}, rgb(255, 255, 255));
    b.omni("Back", {40.0f, 70.0f, 220.0f}, rgb(255, 230, 200));
    b.camera("Eye", {0.0f, 40.0f, -300.0f}, {0.0f, 0.0f, 0.0f});
    b.segment(0, 100);
    return b.write();
}
