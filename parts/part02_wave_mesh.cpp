// Demo part 2, the wave mesh: "stil.3ds", its mesh 0 swelling and sinking with
// the wave map, drawn as an enlarged additive wire shell and then solid, under
// "xxx.pcx" and, after 27 s, "cred.pcx". Ends after demo time 335.
#include "app/sequencer.h"
#include "app/shell.h"
#include "audio/music.h"
#include "engine/world.h"
#include "overlay/overlay.h"
#include "parts/part_assets.h"
#include "parts/part_frame.h"
#include "parts/part_materials.h"
#include "parts/part_schedule.h"
#include "parts/part_state.h"
#include "parts/parts.h"
#include "parts/scene_needs.h"
#include "parts/wave_map.h"
#include "resources/library.h"
#include "resources/texture.h"

#include "base/gl.h"

#include <cstdlib>

World* g_stilWorld = nullptr;
Texture* g_credTexture = nullptr;
Texture* g_xxxTexture = nullptr;

namespace {

constexpr float END_TIME = partEndTime(2);
constexpr float CREDITS_TIME = 270.0f;
constexpr int32_t WAVE_MESH = 0;
constexpr int32_t REST_MESH = 1;  // never drawn: the wave mesh's undisplaced shape
constexpr double CELL_STEP = 0.13;
constexpr double WAVE_FACTOR = 0.015;  // heights 0..255 scale a vertex by 0..3.84
constexpr float SHELL_SCALE = 1.2f;

}  // namespace

void setupPart2() {
    g_library->open("3d");
    partTexture(g_credTexture, "cred.pcx", 512, 256);
    partTexture(g_xxxTexture, "xxx.pcx", 512, 256);
    partWorld(g_stilWorld, "stil.3ds");
    requireScene(*g_stilWorld, "stil.3ds", 2, 1);
    requireRestShape(*g_stilWorld, "stil.3ds", WAVE_MESH, REST_MESH);
    g_stilWorld->camera->fov = PART_FOV;
    setPartMaterial(*g_stilWorld, "ORANGE FLAT", MODE_WIRE, nullptr, 0xC8FFFFFF, MAT_ADD);
    g_stilWorld->meshes[REST_MESH]->flags &= static_cast<uint8_t>(~MESH_VISIBLE);
    if (g_waveMap == nullptr) {
        g_waveMap = static_cast<uint8_t*>(std::malloc(WAVE_MAP_BYTES));
    }
    glEnable(GL_DEPTH_TEST);
    finishPartSetup();
}

void drawPart2() {
    clearPartFrame();
    glDisable(GL_DEPTH_TEST);
    updatePartTime();
    g_stilWorld->lights[0]->position = g_stilWorld->camera->position;

    MeshObject& wave = *g_stilWorld->meshes[WAVE_MESH];
    fillWaveMap(CELL_STEP);
    displaceMesh(wave, *g_stilWorld->meshes[REST_MESH], WAVE_FACTOR);
    wave.computeNormals();

    wave.setScale(SHELL_SCALE, SHELL_SCALE, SHELL_SCALE);
    setPartMaterial(*g_stilWorld, "ORANGE FLAT", MODE_WIRE, nullptr, 0xC89B1900, MAT_ADD);
    g_stilWorld->render();
    wave.setScale(1.0f, 1.0f, 1.0f);
    setPartMaterial(*g_stilWorld, "ORANGE FLAT", MODE_FLAT, nullptr, 0xC8FF7D00, MAT_ALPHA);
    g_stilWorld->render();

    resetModelView();
    drawOverlayAdd(g_xxxTexture, 120, 140, 520, 340, -110);
    if (g_demoTime > CREDITS_TIME) {
        drawOverlayAdd(g_credTexture, 170, 190, 470, 290, -110);
    }
    endPartAfter(END_TIME);
    finishPartFrame();
}
