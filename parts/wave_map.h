// The wave map shared by the two wave-mesh parts (2 and 9): a moving
// interference pattern of heights that lifts a mesh's vertices away from its
// centre, a rest copy of the mesh giving the undisplaced shape.
//
// Layout: 64 rows of 64 cells of 4 bytes, row after row; cell (row r,
// column c) starts at byte (64 * r + c) * 4 and only its byte 2 is used, a
// height 0..255. The other bytes are never written or read.
#pragma once

#include <cstdint>

struct MeshObject;

constexpr int WAVE_MAP_SIZE = 64;                                  // rows, and cells per row
constexpr int WAVE_MAP_CELL_BYTES = 4;
constexpr int WAVE_MAP_HEIGHT_BYTE = 2;                            // the byte of a cell that holds its height
constexpr int WAVE_MAP_BYTES = WAVE_MAP_SIZE * WAVE_MAP_SIZE * WAVE_MAP_CELL_BYTES;  // 16,384

// WAVE_MAP_BYTES bytes from malloc, allocated (not initialised) by part 2's
// set-up and freed by the sequencer's end path; null, and freeing it does
// nothing, until then.
extern uint8_t* g_waveMap;

// The height of cell (row, column) at part-local time `partTime` (demo-time
// units): h = (sin(column * cellStep + 0.1 * partTime) *
// cos(0.12 * partTime + row * cellStep) + 1.0) * 128.0 in double precision,
// truncated toward zero; the low 8 bits of h (256, from a product of exactly
// 1, keeps 0).
uint8_t waveHeight(int row, int column, double cellStep, double partTime);

// Every height of g_waveMap from g_partTime, row by row. `cellStep` is the
// phase step from one cell to the next (radians): 0.13 in part 2, 0.2 in part 9.
void fillWaveMap(double cellStep);

// The cell row or column under texture coordinate `coordinate`:
// trunc(64 * coordinate) (toward zero), clamped to 0..63; a coordinate that
// is not a number gives 0.
int waveCellIndex(float coordinate);

// For every vertex k of `mesh` that `rest` also has: s = (height of the cell
// at row waveCellIndex(v), column waveCellIndex(u) of mesh's vertex k) *
// factor; x, y and z of mesh's vertex k become s times those of rest's vertex
// k, each computed in double and rounded to float; w is left alone. Vertices
// past rest's count keep their positions. Reads g_waveMap, which must be
// allocated.
void displaceMesh(MeshObject& mesh, const MeshObject& rest, double factor);
