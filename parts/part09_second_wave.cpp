// Demo part 9, the second wave mesh: mesh 3 of "6d.3ds" rippling with the
// wave map while the camera wanders on three swings; solid with mesh 0 shown,
// then an enlarged wire cage without it, under "ever.pcx". Ends after demo
// time 1307.
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
#include "parts/wave_map.h"
#include "resources/library.h"
#include "resources/texture.h"

#include "base/gl.h"

#include <cmath>
#include <iterator>

World* g_world6d = nullptr;
Texture* g_everTexture = nullptr;

namespace {

constexpr float END_TIME = partEndTime(9);
constexpr int32_t SOLID_ONLY_MESH = 0;  // in the solid render, not in the cage
constexpr int32_t WAVE_MESH = 3;
constexpr int32_t REST_MESH = 4;        // never drawn: the wave mesh's undisplaced shape
constexpr double CELL_STEP = 0.2;
constexpr double WAVE_FACTOR = 0.005;   // heights 0..255 scale a vertex by 0..1.28

constexpr PassMaterial MATERIALS[] = {
    {"ORANGE FLAT", MODE_FLAT, 0x64CD7D05, MAT_ALPHA, MODE_WIRE, 0x64CD7D05, MAT_ALPHA},
    {"GREEN FLAT", MODE_FLAT, 0x642D875F, MAT_ALPHA, MODE_WIRE, 0x642D875F, MAT_ALPHA},
    {"BLACK WIRE", MODE_FLAT, 0x642D875F, MAT_ALPHA, MODE_WIRE, 0x64F58719, MAT_ALPHA},
};
constexpr int MATERIAL_COUNT = static_cast<int>(std::size(MATERIALS));

void setVisible(MeshObject& mesh, bool visible) {
    if (visible) {
        mesh.flags |= MESH_VISIBLE;
    } else {
        mesh.flags &= static_cast<uint8_t>(~MESH_VISIBLE);
    }
}

}  // namespace

void setupPart9() {
    g_library->open("3d");
    partTexture(g_everTexture, "ever.pcx", 512, 256);
    partWorld(g_world6d, "6d.3ds");
    requireScene(*g_world6d, "6d.3ds", REST_MESH + 1, 1);
    requireRestShape(*g_world6d, "6d.3ds", WAVE_MESH, REST_MESH);
    g_world6d->camera->fov = PART_FOV;
    finishPartSetup();
}

void drawPart9() {
    clearPartFrame();
    updatePartTime();
    glDisable(GL_FOG);
    const double t = g_partTime;
    Camera& camera = *g_world6d->camera;
    camera.position.x = static_cast<float>(std::sin(0.05 * t) * 120.0);
    camera.position.y = static_cast<float>(std::cos(0.08 * t) * 90.0);
    camera.position.z = static_cast<float>(std::sin(0.03 * t) * 50.0);
    g_world6d->lights[0]->position = camera.position;

    MeshObject& wave = *g_world6d->meshes[WAVE_MESH];
    fillWaveMap(CELL_STEP);
    displaceMesh(wave, *g_world6d->meshes[REST_MESH], WAVE_FACTOR);
    wave.computeNormals();

    setVisible(*g_world6d->meshes[REST_MESH], false);
    setVisible(*g_world6d->meshes[SOLID_ONLY_MESH], true);
    setEveryMeshScale(*g_world6d, SOLID_PASS_SCALE);
    setPassMaterials(*g_world6d, MATERIALS, MATERIAL_COUNT, Pass::Solid, g_objectsTexture);
    g_world6d->render();
    setVisible(*g_world6d->meshes[SOLID_ONLY_MESH], false);
    setEveryMeshScale(*g_world6d, WIRE_PASS_SCALE);
    setPassMaterials(*g_world6d, MATERIALS, MATERIAL_COUNT, Pass::Wire, g_objectsTexture);
    g_world6d->render();

    endPartAfter(END_TIME);
    resetModelView();
    drawOverlayAdd(g_everTexture, 160, 140, 480, 340, -110);
    finishPartFrame();
}
