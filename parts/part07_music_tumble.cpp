// Demo part 7, the music-driven tumble: every mesh of "4d.3ds" tumbling a
// little out of phase with the one before, the music's loudness pushing one of
// them out of place, the camera swinging around, solid and then as an enlarged
// additive wire cage, under "greet.pcx". Ends after demo time 960.
#include "app/sequencer.h"
#include "app/shell.h"
#include "audio/music.h"
#include "engine/world.h"
#include "overlay/overlay.h"
#include "parts/loudness_bands.h"
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

World* g_world4d = nullptr;
Texture* g_greetTexture = nullptr;

namespace {

constexpr float END_TIME = partEndTime(7);
constexpr float PUSH = 30.0f;  // a selected mesh's offset on each axis

constexpr PassMaterial MATERIALS[] = {
    {"RED FLAT", MODE_FLAT, 0x649B370F, MAT_ADD, MODE_WIRE, 0x649B370F, MAT_ADD},
    {"BLUE FLAT", MODE_FLAT, 0x640F379B, MAT_ADD, MODE_WIRE, 0x640F379B, MAT_ADD},
    {"GREEN FLAT", MODE_FLAT, 0x64379B69, MAT_ADD, MODE_WIRE, 0x64379B69, MAT_ADD},
    {"ORANGE FLAT", MODE_FLAT, 0x64CD7D05, MAT_ADD, MODE_WIRE, 0x64CD7D05, MAT_ADD},
};

void tumble(World& world, double t) {
    for (int32_t i = 0; i < world.meshCount; ++i) {
        world.meshes[i]->setRotation(static_cast<float>((i + t) * 0.5), static_cast<float>(0.5 * i + 0.6 * t),
                                     static_cast<float>(0.3 * t + 0.5 * i));
    }
}

// The selected mesh out of place, every other one back at rest.
void pushLoudestBand(World& world, uint32_t levelSum) {
    const int32_t selected = loudnessSelection(levelSum, world.meshCount);
    for (int32_t i = 0; i < world.meshCount; ++i) {
        if (i == selected) {
            world.meshes[i]->setTranslation(PUSH, PUSH, PUSH);
        } else {
            world.meshes[i]->setTranslation(0.0f, 0.0f, 0.0f);
        }
    }
}

}  // namespace

void setupPart7() {
    g_library->open("3d");
    partTexture(g_greetTexture, "greet.pcx", 512, 256);
    partWorld(g_world4d, "4d.3ds");
    requireScene(*g_world4d, "4d.3ds", 0, 0);
    g_world4d->camera->fov = PART_FOV;
    finishPartSetup();
}

void drawPart7() {
    clearPartFrame();
    updatePartTime();
    const double t = g_partTime;
    tumble(*g_world4d, t);
    pushLoudestBand(*g_world4d, g_levelLeft + g_levelRight);
    Camera& camera = *g_world4d->camera;
    camera.position.x = static_cast<float>(std::sin(0.08 * t) * 200.0);
    camera.position.y = static_cast<float>(std::cos(0.08 * t) * 200.0);
    camera.position.z = static_cast<float>(std::sin(0.03 * t) * 300.0);
    drawTwoPass(*g_world4d, MATERIALS, static_cast<int>(std::size(MATERIALS)), g_objectsTexture);
    endPartAfter(END_TIME);
    resetModelView();
    drawOverlayAdd(g_greetTexture, 160, 140, 480, 340, -110);
    finishPartFrame();
}
