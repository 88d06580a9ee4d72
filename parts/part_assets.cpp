#include "parts/part_assets.h"

#include "app/shell.h"
#include "engine/world.h"
#include "engine/world_state.h"
#include "resources/library.h"
#include "resources/texture.h"

#include <map>

namespace {
// Each loaded World's state right after its load.
std::map<const World*, WorldState> g_loadedStates;
}  // namespace

World& partWorld(World*& world, const char* entryName) {
    if (world == nullptr) {
        world = new World;
        world->load(entryName, *g_library);
        g_loadedStates[world] = keepWorldState(*world);
    } else if (const auto kept = g_loadedStates.find(world); kept != g_loadedStates.end()) {
        restoreWorldState(*world, kept->second);
    }
    return *world;
}

Texture& partTexture(Texture*& texture, const char* entryName, int width, int height) {
    if (texture == nullptr) {
        texture = new Texture;
        texture->load(*g_library, entryName, width, height, false);
    }
    return *texture;
}
