#include "content/scenes/scenes.h"

std::vector<ContentEntry> makeScenes() {
    return {
        {"test.3ds", makeTestScene()}, {"stil.3ds", makeStilScene()}, {"rum.3ds", makeRumScene()},
        {"rum2.3ds", makeRum2Scene()}, {"2d.3ds", make2dScene()},     {"3d.3ds", make3dScene()},
        {"4d.3ds", make4dScene()},     {"5d.3ds", make5dScene()},     {"6d.3ds", make6dScene()},
        {"7d.3ds", make7dScene()},     {"8d.3ds", make8dScene()},     {"9d.3ds", make9dScene()},
    };
}
