// Demo part 1, the opening: "test.3ds" turning in white fog, hidden meshes
// revealed on the beats, the logo sliding away from 14.5 s and the turning
// meshes rising from 19 s. Ends after demo time 210.
#include "app/sequencer.h"
#include "app/shell.h"
#include "audio/music.h"
#include "engine/world.h"
#include "overlay/overlay.h"
#include "parts/beat_reveal.h"
#include "parts/opening_latches.h"
#include "parts/part_assets.h"
#include "parts/part_frame.h"
#include "parts/part_materials.h"
#include "parts/part_schedule.h"
#include "parts/part_state.h"
#include "parts/parts.h"
#include "parts/scene_needs.h"
#include "resources/library.h"
#include "resources/texture.h"

#include "base/gl.h"

#include <cmath>

World* g_testWorld = nullptr;
Texture* g_objectsTexture = nullptr;
Texture* g_logoTexture = nullptr;
int32_t g_revealIndex = 3;
int32_t g_revealArmed = 1;
float g_logoSlideStart = 0.0f;
float g_riseStart = 0.0f;

namespace {

constexpr float END_TIME = partEndTime(1);
constexpr int32_t TURNING_MESHES = 3;  // meshes 0..2 turn and rise; 3 and up start hidden
constexpr float FOG_DENSITY = 0.002f;

void setTurningMeshesRotation(float yDegrees) {
    for (int32_t i = 0; i < TURNING_MESHES; ++i) {
        g_testWorld->meshes[i]->setRotation(0.0f, yDegrees, 0.0f);
    }
}

void setTurningMeshesTranslation(float y) {
    for (int32_t i = 0; i < TURNING_MESHES; ++i) {
        g_testWorld->meshes[i]->setTranslation(0.0f, y, 0.0f);
    }
}

// Before the render: the turn, the reveal and the camera's height.
void turnAndReveal() {
    setTurningMeshesRotation(g_partTime);  // one degree per tenth of a second
    revealOnBeat(*g_testWorld, g_levelLeft + g_levelRight, &g_revealIndex, &g_revealArmed);
    g_testWorld->camera->position.y = static_cast<float>(std::sin(0.1 * g_partTime) * 80.0);
}

// After it: the logo's slide (returned) and the rise, each from its latch.
float slideAndRise() {
    const float offset = logoSlideOffset(g_demoTime, &g_logoSlideStart);
    float riseY = 0.0f;
    if (riseHeight(g_demoTime, &g_riseStart, &riseY)) {
        setTurningMeshesTranslation(riseY);  // shows from the next frame's render
    }
    return offset;
}

}  // namespace

void setupPart1() {
    const bool firstStart = g_testWorld == nullptr;
    g_library->open("3d");
    partTexture(g_objectsTexture, "objects.pcx", 512, 256);
    partTexture(g_logoTexture, "mark12.pcx", 512, 256);
    partWorld(g_testWorld, "test.3ds");
    requireScene(*g_testWorld, "test.3ds", TURNING_MESHES, 0);
    g_testWorld->camera->fov = PART_FOV;
    setPartMaterial(*g_testWorld, "GREEN FLAT", MODE_FLAT, nullptr, 0x80A0D237, MAT_ALPHA);
    setPartMaterial(*g_testWorld, "BLACK WIRE", MODE_WIRE, nullptr, 0x00000000, MAT_OPAQUE);
    setPartMaterial(*g_testWorld, "WHITE WIRE", MODE_WIRE, nullptr, 0x00FFFFFF, MAT_OPAQUE);
    for (int32_t i = TURNING_MESHES; i < g_testWorld->meshCount; ++i) {
        g_testWorld->meshes[i]->flags &= static_cast<uint8_t>(~MESH_VISIBLE);
    }
    // As at the show's start, also when it starts over.
    g_revealIndex = 3;
    g_revealArmed = 1;
    g_logoSlideStart = 0.0f;
    g_riseStart = 0.0f;
    g_library->close();
    // The frame rate covers every pass of a looping show.
    if (firstStart) {
        startFrameCounter();
    }
    updateMusicClock();
    g_partStart = g_partTime;
}

void drawPart1() {
    if (g_partCounter == 0) {
        setupPart1();
        g_partCounter += 1;
    }
    if (g_framesPassed) {
        updatePartTime();
        turnAndReveal();
        slideAndRise();
        endPartAfter(END_TIME);
        return;
    }
    clearPartFrame();
    updatePartTime();
    turnAndReveal();
    enablePartFog(WHITE_FOG_COLOUR, FOG_DENSITY);
    g_testWorld->render();
    glDisable(GL_DEPTH_TEST);

    const float offset = slideAndRise();
    endPartAfter(END_TIME);
    resetModelView();
    drawOverlayAdd(g_logoTexture, static_cast<int>(170.0 + offset), 190, static_cast<int>(470.0 + offset), 290,
                   -100);
    finishPartFrame();
}
