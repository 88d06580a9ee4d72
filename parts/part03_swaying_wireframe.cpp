// Demo part 3, the swaying wireframe: "rum.3ds" drawn in lines, its camera
// swaying gently, under three stacked "ooo.pcx" overlays. Ends after demo
// time 395.
#include "app/sequencer.h"
#include "app/shell.h"
#include "engine/world.h"
#include "parts/part_assets.h"
#include "parts/part_frame.h"
#include "parts/part_materials.h"
#include "parts/part_schedule.h"
#include "parts/part_state.h"
#include "parts/parts.h"
#include "parts/room_view.h"
#include "parts/scene_needs.h"
#include "resources/library.h"
#include "resources/texture.h"

#include "base/gl.h"

#include <cmath>

World* g_rumWorld = nullptr;
Texture* g_oooTexture = nullptr;

namespace {

constexpr float END_TIME = partEndTime(3);

}  // namespace

void setupPart3() {
    g_library->open("3d");
    partWorld(g_rumWorld, "rum.3ds");
    requireScene(*g_rumWorld, "rum.3ds", 0, 2);
    partTexture(g_oooTexture, "ooo.pcx", 512, 256);
    g_rumWorld->camera->fov = PART_FOV;
    setPartMaterial(*g_rumWorld, "WHITE WIRE", MODE_WIRE, nullptr, 0x649B9B9B, MAT_DARKEN);
    glDisable(GL_DEPTH_TEST);
    finishPartSetup();
}

void drawPart3() {
    clearPartFrame();
    updatePartTime();
    lightsFollowCamera(*g_rumWorld);
    setPartMaterial(*g_rumWorld, "GREEN FLAT", MODE_WIRE, nullptr, 0x64646464, MAT_ADD);
    g_rumWorld->render();

    // The sway shows from the next frame on.
    Camera& camera = *g_rumWorld->camera;
    camera.position.x = static_cast<float>(std::sin(0.03 * g_partTime) * 50.0);
    camera.position.z = static_cast<float>(std::cos(0.04 * g_partTime) * 35.0);

    endPartAfter(END_TIME);
    resetModelView();
    drawStackedOverlays(g_oooTexture);
    finishPartFrame();
}
