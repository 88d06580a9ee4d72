// The face flag word of a .3ds face list: the visible edges and the texture
// wrap bits. Shared by the geometry builders and the .3ds writer.
#pragma once

#include <cstdint>

constexpr uint16_t TDS_EDGE_CA = 0x01;
constexpr uint16_t TDS_EDGE_BC = 0x02;
constexpr uint16_t TDS_EDGE_AB = 0x04;
constexpr uint16_t TDS_EDGES_ALL = 0x07;
constexpr uint16_t TDS_WRAP_U = 0x08;
constexpr uint16_t TDS_WRAP_V = 0x10;
