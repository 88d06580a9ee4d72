// Demo part 13, the closing part: "9d.3ds" in dense fog with the materials of
// its scene file, the camera on three independent swings, under
// "outside.pcx". After demo time 2269 it moves the sequencer to its end.
#include "app/sequencer.h"
#include "app/shell.h"
#include "engine/world.h"
#include "overlay/overlay.h"
#include "parts/part_assets.h"
#include "parts/part_frame.h"
#include "parts/part_schedule.h"
#include "parts/part_state.h"
#include "parts/parts.h"
#include "parts/scene_needs.h"
#include "resources/library.h"
#include "resources/texture.h"

#include <cmath>

World* g_world9d = nullptr;
Texture* g_outsideTexture = nullptr;

namespace {

constexpr float END_TIME = partEndTime(13);
constexpr float FOG_DENSITY = 0.008f;

}  // namespace

void setupPart13() {
    g_library->open("3d");
    partTexture(g_outsideTexture, "outside.pcx", 512, 256);
    partWorld(g_world9d, "9d.3ds");
    requireScene(*g_world9d, "9d.3ds", 0, 0);
    g_world9d->camera->fov = PART_FOV;
    finishPartSetup();
}

void drawPart13() {
    clearPartFrame();
    updatePartTime();
    enablePartFog(PART_CLEAR_COLOUR, FOG_DENSITY);
    const double t = g_partTime;
    Camera& camera = *g_world9d->camera;
    camera.position.x = static_cast<float>(std::sin(0.02 * t) * 140.0);
    camera.position.z = static_cast<float>(std::cos(0.02 * t) * 200.0);
    camera.position.y = static_cast<float>(std::cos(0.03 * t) * 300.0);
    g_world9d->render();
    endPartAfter(END_TIME);
    resetModelView();
    drawOverlayAdd(g_outsideTexture, 160, 140, 480, 340, -110);
    finishPartFrame();
}
