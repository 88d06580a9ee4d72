// Demo part 8, the keyframed camera: "5d.3ds" seen through the camera path of
// its scene file, four animation frames per tenth of a second, one pass, no
// overlay. Ends after demo time 1127.
#include "app/sequencer.h"
#include "app/shell.h"
#include "engine/world.h"
#include "parts/part_assets.h"
#include "parts/part_frame.h"
#include "parts/part_materials.h"
#include "parts/part_schedule.h"
#include "parts/part_state.h"
#include "parts/parts.h"
#include "parts/scene_needs.h"
#include "resources/library.h"

#include "base/gl.h"

World* g_world5d = nullptr;

namespace {

constexpr float END_TIME = partEndTime(8);
constexpr float FRAMES_PER_TIME_UNIT = 4.0f;

}  // namespace

void setupPart8() {
    g_library->open("3d");
    partWorld(g_world5d, "5d.3ds");
    requireScene(*g_world5d, "5d.3ds", 0, 0);
    g_world5d->camera->fov = PART_FOV;
    finishPartSetup();
}

void drawPart8() {
    clearPartFrame();
    updatePartTime();
    glDisable(GL_FOG);
    g_world5d->setFrame(FRAMES_PER_TIME_UNIT * g_partTime);
    g_world5d->camera->update(static_cast<int>(g_world5d->currentFrame));
    setPartMaterial(*g_world5d, "BLUE FLAT", MODE_WIRE, g_objectsTexture, 0x64737D87, MAT_OPAQUE);
    setPartMaterial(*g_world5d, "GREEN FLAT", MODE_WIRE, g_objectsTexture, 0x64D77D23, MAT_OPAQUE);
    setPartMaterial(*g_world5d, "ORANGE FLAT", MODE_FLAT, g_objectsTexture, 0x64CD7D05, MAT_ALPHA);
    g_world5d->render();
    endPartAfter(END_TIME);
    finishPartFrame();
}
