// Demo part 4, the flying meshes: "rum2.3ds" drawn like part 3's room, its
// meshes from index 6 on flying through it on looping paths, the camera's
// height and aim jumping to new fixed views at 46 s and 52 s. Ends after demo
// time 534; part 12 draws this World again from the state it is left in.
#include "app/sequencer.h"
#include "app/shell.h"
#include "audio/music.h"
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

#include "base/gl.h"

#include <cmath>

World* g_rum2World = nullptr;

namespace {

constexpr float END_TIME = partEndTime(4);

}  // namespace

void setupPart4() {
    g_library->open("3d");
    partWorld(g_rum2World, "rum2.3ds");
    requireScene(*g_rum2World, "rum2.3ds", 0, 2);
    g_rum2World->camera->fov = PART_FOV;
    setPartMaterial(*g_rum2World, "WHITE WIRE", MODE_WIRE, nullptr, 0x649B9B9B, MAT_DARKEN);
    glDisable(GL_DEPTH_TEST);
    finishPartSetup();
}

void drawPart4() {
    clearPartFrame();
    updatePartTime();
    renderFlyingRoom(*g_rum2World);

    // Sway, flight and view changes all show from the next frame on.
    Camera& camera = *g_rum2World->camera;
    camera.position.x = static_cast<float>(std::sin(0.03 * g_partTime) * 50.0);
    camera.position.z = static_cast<float>(std::cos(0.04 * g_partTime) * 35.0);
    flyMeshes(*g_rum2World, g_partTime);
    endPartAfter(END_TIME);
    applyRoomViewChanges(camera, g_demoTime);

    resetModelView();
    drawStackedOverlays(g_oooTexture);
    finishPartFrame();
}
