// The program's icon, for menus and window lists: the first letter of the
// show's title logo ("mark12.pcx", slats and halo) on a rounded dark tile.
#pragma once

#include <cstdint>
#include <vector>

// The sizes desktops look for in the hicolor theme (NxN/apps/kaskade.png).
constexpr int APP_ICON_SIZES[] = {16, 22, 24, 32, 48, 64, 128, 256};

// A `size` x `size` icon, 8-bit RGBA, top row first: transparent outside the
// tile's rounded corners, opaque inside. Same bytes on every run.
std::vector<uint8_t> makeAppIcon(int size);
