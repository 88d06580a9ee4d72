// Demo part 10, the split cage in fog: "7d.3ds" orbited in dense fog, drawn
// solid, then as an enlarged wire cage with its first two meshes pulled 20
// units apart vertically, under "forget.pcx". Ends after demo time 1498.
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
#include "parts/two_pass.h"
#include "resources/library.h"
#include "resources/texture.h"

#include <cmath>
#include <iterator>

World* g_world7d = nullptr;
Texture* g_forgetTexture = nullptr;

namespace {

constexpr float END_TIME = partEndTime(10);
constexpr float FOG_DENSITY = 0.008f;
constexpr float SPLIT = 20.0f;  // the cage's mesh 0 goes this far down, mesh 1 up

constexpr PassMaterial MATERIALS[] = {
    {"WHITE FLAT", MODE_FLAT, 0x64C8C8C8, MAT_OPAQUE, MODE_WIRE, 0x64FFFFFF, MAT_OPAQUE},
    {"ORANGE FLAT", MODE_FLAT, 0x64737D87, MAT_OPAQUE, MODE_WIRE, 0x64737D87, MAT_OPAQUE},
};
constexpr int MATERIAL_COUNT = static_cast<int>(std::size(MATERIALS));

}  // namespace

void setupPart10() {
    g_library->open("3d");
    partTexture(g_forgetTexture, "forget.pcx", 512, 256);
    partWorld(g_world7d, "7d.3ds");
    requireScene(*g_world7d, "7d.3ds", 2, 0);
    g_world7d->camera->fov = PART_FOV;
    finishPartSetup();
}

void drawPart10() {
    clearPartFrame();
    updatePartTime();
    enablePartFog(PART_CLEAR_COLOUR, FOG_DENSITY);
    Camera& camera = *g_world7d->camera;
    camera.position.x = static_cast<float>(std::sin(0.02 * g_partTime) * 140.0);
    camera.position.z = static_cast<float>(std::cos(0.02 * g_partTime) * 200.0);

    setEveryMeshScale(*g_world7d, SOLID_PASS_SCALE);
    setEveryMeshTranslation(*g_world7d, 0.0f, 0.0f, 0.0f);
    setPassMaterials(*g_world7d, MATERIALS, MATERIAL_COUNT, Pass::Solid, g_objectsTexture);
    g_world7d->render();
    g_world7d->meshes[0]->setTranslation(0.0f, -SPLIT, 0.0f);
    g_world7d->meshes[1]->setTranslation(0.0f, SPLIT, 0.0f);
    setEveryMeshScale(*g_world7d, WIRE_PASS_SCALE);
    setPassMaterials(*g_world7d, MATERIALS, MATERIAL_COUNT, Pass::Wire, g_objectsTexture);
    g_world7d->render();

    endPartAfter(END_TIME);
    resetModelView();
    drawOverlayAdd(g_forgetTexture, 160, 140, 480, 340, -110);
    finishPartFrame();
}
