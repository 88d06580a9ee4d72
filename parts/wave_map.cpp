#include "parts/wave_map.h"

#include "app/sequencer.h"
#include "engine/world.h"

#include <cmath>

uint8_t* g_waveMap = nullptr;

namespace {

uint8_t& heightAt(int row, int column) {
    return g_waveMap[(WAVE_MAP_SIZE * row + column) * WAVE_MAP_CELL_BYTES + WAVE_MAP_HEIGHT_BYTE];
}

}  // namespace

uint8_t waveHeight(int row, int column, double cellStep, double partTime) {
    const double product = std::sin(column * cellStep + 0.1 * partTime) * std::cos(0.12 * partTime + row * cellStep);
    const auto h = static_cast<int32_t>((product + 1.0) * 128.0);
    return static_cast<uint8_t>(h & 0xFF);
}

void fillWaveMap(double cellStep) {
    for (int row = 0; row < WAVE_MAP_SIZE; ++row) {
        for (int column = 0; column < WAVE_MAP_SIZE; ++column) {
            heightAt(row, column) = waveHeight(row, column, cellStep, g_partTime);
        }
    }
}

int waveCellIndex(float coordinate) {
    const double cell = std::trunc(static_cast<double>(WAVE_MAP_SIZE) * coordinate);
    if (!(cell > 0.0)) {
        return 0;  // also NaN
    }
    if (cell > WAVE_MAP_SIZE - 1) {
        return WAVE_MAP_SIZE - 1;
    }
    return static_cast<int>(cell);
}

void displaceMesh(MeshObject& mesh, const MeshObject& rest, double factor) {
    const int32_t count = mesh.vertexCount < rest.vertexCount ? mesh.vertexCount : rest.vertexCount;
    for (int32_t k = 0; k < count; ++k) {
        Vertex& vertex = mesh.vertices[k];
        const Vector& restPosition = rest.vertices[k].position;
        const double s = heightAt(waveCellIndex(vertex.v), waveCellIndex(vertex.u)) * factor;
        vertex.position.x = static_cast<float>(s * restPosition.x);
        vertex.position.y = static_cast<float>(s * restPosition.y);
        vertex.position.z = static_cast<float>(s * restPosition.z);
    }
}
