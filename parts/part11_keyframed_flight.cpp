// Demo part 11, the keyframed flight: "8d.3ds" seen through the camera path of
// its scene file, five animation frames per tenth of a second, drawn solid and
// then as a wire cage of the same size, under "invert.pcx". Ends after demo
// time 1758.
#include "app/sequencer.h"
#include "app/shell.h"
#include "engine/world.h"
#include "overlay/overlay.h"
#include "parts/part_assets.h"
#include "parts/part_frame.h"
#include "parts/part_materials.h"
#include "parts/part_schedule.h"
#include "parts/part_state.h"
#include "parts/parts.h"
#include "parts/scene_needs.h"
#include "parts/two_pass.h"
#include "resources/library.h"
#include "resources/texture.h"

#include "base/gl.h"

World* g_world8d = nullptr;
Texture* g_invertTexture = nullptr;

namespace {

constexpr float END_TIME = partEndTime(11);
constexpr float FRAMES_PER_TIME_UNIT = 5.0f;
constexpr Colour BLUE = 0x64737D87;

}  // namespace

void setupPart11() {
    g_library->open("3d");
    partTexture(g_invertTexture, "invert.pcx", 512, 256);
    partWorld(g_world8d, "8d.3ds");
    requireScene(*g_world8d, "8d.3ds", 0, 0);
    g_world8d->camera->fov = PART_FOV;
    finishPartSetup();
}

void drawPart11() {
    clearPartFrame();
    updatePartTime();
    glDisable(GL_FOG);
    g_world8d->setFrame(FRAMES_PER_TIME_UNIT * g_partTime);
    g_world8d->camera->update(static_cast<int>(g_world8d->currentFrame));
    setEveryMeshScale(*g_world8d, SOLID_PASS_SCALE);
    setPartMaterial(*g_world8d, "BLUE FLAT", MODE_FLAT, g_objectsTexture, BLUE, MAT_OPAQUE);
    g_world8d->render();
    // The cage keeps the solid's size.
    setPartMaterial(*g_world8d, "BLUE FLAT", MODE_WIRE, g_objectsTexture, BLUE, MAT_OPAQUE);
    g_world8d->render();
    endPartAfter(END_TIME);
    resetModelView();
    drawOverlayAdd(g_invertTexture, 160, 140, 480, 340, -110);
    finishPartFrame();
}
