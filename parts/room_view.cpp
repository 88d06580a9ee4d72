#include "parts/room_view.h"

#include "engine/world.h"
#include "overlay/overlay.h"
#include "parts/part_materials.h"

#include <cmath>

void lightsFollowCamera(World& world) {
    world.lights[0]->position = world.camera->position;
    world.lights[1]->position.x = world.camera->position.x;
}

void renderFlyingRoom(World& world) {
    lightsFollowCamera(world);
    setPartMaterial(world, "GREEN FLAT", MODE_WIRE, nullptr, 0x64646464, MAT_ADD);
    setPartMaterial(world, "BLUE FLAT", MODE_FLAT, nullptr, 0x64648CC8, MAT_ADD);
    world.render();
}

void flyMeshes(World& world, float partTime) {
    const double t = partTime;
    for (int32_t i = FIRST_FLYING_MESH; i < world.meshCount; ++i) {
        world.meshes[i]->setTranslation(static_cast<float>(std::sin(i + 0.01 * t) * 500.0),
                                        static_cast<float>(std::cos(i + 0.03 * t) * 400.0),
                                        static_cast<float>(std::sin(i + 0.02 * t) * 700.0));
    }
}

void applyRoomViewChanges(Camera& camera, float demoTime) {
    if (demoTime > FIRST_VIEW_TIME) {
        camera.target.x = 50.0f;
        camera.position.y = 20.0f;
    }
    if (demoTime > SECOND_VIEW_TIME) {
        camera.target.x = 40.0f;
        camera.target.y = 40.0f;
        camera.target.z = -10.0f;
        camera.position.y = 120.0f;
    }
}

void drawStackedOverlays(Texture* texture) {
    drawOverlayDarken(texture, 170, 190, 470, 290, -110);
    drawOverlayAdd(texture, 170, 290, 470, 390, -100);
    drawOverlayAdd(texture, 170, 90, 470, 190, -130);
}
