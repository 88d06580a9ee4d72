// Part 6's stream of fifty squares moving through the scene in depth.
#pragma once

struct Texture;

constexpr int SPRITE_COUNT = 50;
constexpr int SPRITE_SPACING = 100;   // depth units between neighbours (k steps)
constexpr int SPRITE_LOOP = 5000;     // depth after which a square jumps back

// Depth of the square with step k (0, 100, ... 4900) at part-local time
// `partTime`: n = trunc(50 * partTime + k) toward zero; (n mod 5000) - 2500,
// the remainder taking the sign of n. So -2500 + k at time 0, moving 50 per
// tenth of a second and jumping back by 5000 past 2499; for a negative n the
// depth falls below -2500 (down to -7499).
int spriteDepth(int k, float partTime);

// drawOverlayDarken(texture, 240, 240, 360, 360, spriteDepth(k, partTime)) for
// k = 0, 100, ... 4900, in that order, through whatever matrices are in force.
void drawSpriteStream(Texture* texture, float partTime);
