#include "parts/sprite_stream.h"

#include "overlay/overlay.h"

#include <cmath>

int spriteDepth(int k, float partTime) {
    // fmod keeps the dividend's sign, like the integer remainder, and is exact
    // for every whole n a float time can give.
    const double n = std::trunc(50.0 * partTime + k);
    return static_cast<int>(std::fmod(n, SPRITE_LOOP)) - SPRITE_LOOP / 2;
}

void drawSpriteStream(Texture* texture, float partTime) {
    for (int k = 0; k < SPRITE_COUNT * SPRITE_SPACING; k += SPRITE_SPACING) {
        drawOverlayDarken(texture, 240, 240, 360, 360, spriteDepth(k, partTime));
    }
}
