// Demo part 5, the spinning meshes: "2d.3ds" with its camera gliding along x
// and five meshes spinning about z at their own speeds, drawn solid and then
// as a wire cage, under "objects.pcx". Ends after demo time 658.
#include "app/sequencer.h"
#include "app/shell.h"
#include "engine/world.h"
#include "overlay/overlay.h"
#include "parts/part_assets.h"
#include "parts/part_frame.h"
#include "parts/part_schedule.h"
#include "parts/part_state.h"
#include "parts/parts.h"
#include "parts/room_view.h"
#include "parts/scene_needs.h"
#include "parts/two_pass.h"
#include "resources/library.h"

#include <iterator>

World* g_world2d = nullptr;

namespace {

constexpr float END_TIME = partEndTime(5);

// Mesh and degrees per tenth of a second about z, in the order they are set.
struct Spin {
    int32_t mesh;
    double rate;
};
constexpr Spin SPINS[] = {{2, 1.0}, {3, -0.7}, {4, 1.2}, {0, -1.1}, {1, 1.0}};
constexpr int32_t SPINNING_MESHES = 5;

constexpr PassMaterial MATERIALS[] = {
    {"BLUE FLAT", MODE_WIRE_LIT, 0x64737D87, MAT_OPAQUE, MODE_WIRE, 0x64737D87, MAT_OPAQUE},
    {"GREEN FLAT", MODE_FLAT, 0x64379B69, MAT_ADD, MODE_WIRE, 0x64379B69, MAT_ADD},
    {"ORANGE FLAT", MODE_FLAT, 0x64CD7D05, MAT_ADD, MODE_WIRE, 0x64CD7D05, MAT_ADD},
};

}  // namespace

void setupPart5() {
    g_library->open("3d");
    partWorld(g_world2d, "2d.3ds");
    requireScene(*g_world2d, "2d.3ds", SPINNING_MESHES, 2);
    g_world2d->camera->fov = PART_FOV;
    finishPartSetup();
}

void drawPart5() {
    clearPartFrame();
    updatePartTime();
    g_world2d->camera->position.x = static_cast<float>(2300.0 - 4.0 * g_partTime);
    lightsFollowCamera(*g_world2d);
    for (const Spin& spin : SPINS) {
        g_world2d->meshes[spin.mesh]->setRotation(0.0f, 0.0f, static_cast<float>(spin.rate * g_partTime));
    }
    drawTwoPass(*g_world2d, MATERIALS, static_cast<int>(std::size(MATERIALS)), g_objectsTexture);
    endPartAfter(END_TIME);
    resetModelView();
    drawOverlayAdd(g_objectsTexture, 120, 140, 520, 340, -110);
    finishPartFrame();
}
