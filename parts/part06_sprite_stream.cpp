// Demo part 6, the sprite stream: "3d.3ds" with its camera circling in fog,
// drawn solid and then as a wire cage, fifty "texture2.pcx" squares streaming
// through it in depth and "part.pcx" over the frame. Ends after demo time 770.
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
#include "parts/sprite_stream.h"
#include "parts/two_pass.h"
#include "resources/library.h"
#include "resources/texture.h"

#include <cmath>
#include <iterator>

World* g_world3d = nullptr;
Texture* g_texture2 = nullptr;
Texture* g_partTexture = nullptr;

namespace {

constexpr float END_TIME = partEndTime(6);
constexpr float FOG_DENSITY = 0.002f;
constexpr double CIRCLE_RADIUS = 600.0;

constexpr PassMaterial MATERIALS[] = {
    {"GREEN FLAT", MODE_FLAT, 0x64379B69, MAT_ADD, MODE_WIRE, 0x64379B69, MAT_ADD},
    {"ORANGE FLAT", MODE_FLAT, 0x64CD7D05, MAT_ADD, MODE_WIRE, 0x64CD7D05, MAT_ADD},
};

}  // namespace

void setupPart6() {
    g_library->open("3d");
    partTexture(g_texture2, "texture2.pcx", 256, 256);
    partTexture(g_partTexture, "part.pcx", 512, 256);
    partWorld(g_world3d, "3d.3ds");
    requireScene(*g_world3d, "3d.3ds", 0, 1);
    g_world3d->camera->fov = PART_FOV;
    finishPartSetup();
}

void drawPart6() {
    clearPartFrame();
    updatePartTime();
    Camera& camera = *g_world3d->camera;
    g_world3d->lights[0]->position = camera.position;  // where the camera was last frame
    camera.position.x = static_cast<float>(std::sin(0.02 * g_partTime) * CIRCLE_RADIUS);
    camera.position.z = static_cast<float>(std::cos(0.02 * g_partTime) * CIRCLE_RADIUS);
    enablePartFog(PART_CLEAR_COLOUR, FOG_DENSITY);
    drawTwoPass(*g_world3d, MATERIALS, static_cast<int>(std::size(MATERIALS)), g_objectsTexture);
    endPartAfter(END_TIME);
    // No matrix call: the squares lie in the model space of the last mesh drawn.
    drawSpriteStream(g_texture2, g_partTime);
    resetModelView();
    drawOverlayAdd(g_partTexture, 120, 140, 520, 340, -110);
    finishPartFrame();
}
