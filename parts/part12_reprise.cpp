// Demo part 12, the reprise: part 4's room ("rum2.3ds") again, from the state
// part 4 left it in, with a higher camera, a wider sway, the same flying
// meshes and the same stacked "ooo.pcx" overlays. Loads nothing. Ends after
// demo time 1925.
#include "app/sequencer.h"
#include "app/shell.h"
#include "engine/world.h"
#include "parts/part_frame.h"
#include "parts/part_schedule.h"
#include "parts/part_state.h"
#include "parts/parts.h"
#include "parts/room_view.h"
#include "resources/library.h"

#include <cmath>

namespace {

constexpr float END_TIME = partEndTime(12);
constexpr float CAMERA_HEIGHT = 150.0f;

}  // namespace

void setupPart12() {
    g_library->open("3d");
    finishPartSetup();
}

void drawPart12() {
    clearPartFrame();
    updatePartTime();
    renderFlyingRoom(*g_rum2World);

    // The new camera shows from the next frame on; the target stays part 4's.
    Camera& camera = *g_rum2World->camera;
    camera.position.x = static_cast<float>(std::sin(0.03 * g_partTime) * 70.0);
    camera.position.z = static_cast<float>(std::cos(0.04 * g_partTime) * 135.0);
    camera.position.y = CAMERA_HEIGHT;
    flyMeshes(*g_rum2World, g_partTime);
    endPartAfter(END_TIME);

    resetModelView();
    drawStackedOverlays(g_oooTexture);
    finishPartFrame();
}
