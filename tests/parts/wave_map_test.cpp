// The wave map: heights, their place in the map, and the displacement of a
// mesh by the cells under its texture coordinates.
#include "parts/wave_map.h"

#include "app/sequencer.h"
#include "engine/world.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

namespace {

// A map of known bytes in place of g_waveMap while a test runs.
class WaveMap : public ::testing::Test {
protected:
    void SetUp() override {
        g_waveMap = map.data();
        g_partTime = 0.0f;
    }
    void TearDown() override { g_waveMap = nullptr; }
    uint8_t& cell(int row, int column, int byte = WAVE_MAP_HEIGHT_BYTE) { return map[(row * 64 + column) * 4 + byte]; }
    std::vector<uint8_t> map = std::vector<uint8_t>(WAVE_MAP_BYTES, 0xAB);
};

}  // namespace

TEST(WaveHeights, FollowTheInterferenceOfTwoWavesAndKeepTheirLowEightBits) {
    const double quarter = std::numbers::pi / 2.0;
    ASSERT_EQ(std::sin(quarter), 1.0);
    const struct { int row, column; double cellStep, partTime; int height; } cases[] = {
        {0, 0, 0.13, 0.0, 128},  // sin 0 * cos 0
        {5, 17, 0.0, 0.0, 128},
        {0, 3, quarter, 0.0, 0},  // -1 * 1 + 1
        {0, 5, 0.1, 0.0, 189},    // (sin 0.5 + 1) * 128 = 189.37 truncates
        // the time moves the column wave by 0.1 and the row wave by 0.12 per tenth
        {0, 0, 0.2, 5.0, static_cast<int>((std::sin(0.5) * std::cos(0.6) + 1.0) * 128.0)},
        {0, 1, quarter, 0.0, 0},  // h = 256 keeps its low 8 bits
    };
    for (const auto& c : cases) {
        EXPECT_EQ(waveHeight(c.row, c.column, c.cellStep, c.partTime), c.height) << c.row << " " << c.column;
    }
}

TEST_F(WaveMap, FillWritesOnlyTheHeightByteOfEachCellRowAfterRowAtThePartTime) {
    fillWaveMap(0.1);
    // With time 0 a cell of column 0 is flat (sin 0) and row 0 takes the column wave whole.
    EXPECT_EQ(cell(10, 0), 128);
    EXPECT_EQ(cell(0, 10), static_cast<int>((std::sin(1.0) + 1.0) * 128.0));

    g_partTime = 584.25f;
    fillWaveMap(0.2);
    for (int row = 0; row < 64; ++row) {
        for (int column = 0; column < 64; ++column) {
            ASSERT_EQ(cell(row, column), waveHeight(row, column, 0.2, 584.25));
            for (int byte : {0, 1, 3}) {
                ASSERT_EQ(cell(row, column, byte), 0xAB) << row << " " << column;
            }
        }
    }
}

TEST_F(WaveMap, DisplacementScalesTheRestPositionByTheClampedCellUnderTheVertex) {
    cell(0, 0) = 1;
    cell(0, 63) = 2;
    cell(63, 0) = 3;
    cell(63, 63) = 255;
    cell(16, 32) = 200;  // row from v, column from u
    cell(32, 16) = 10;
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float huge = std::numeric_limits<float>::infinity();
    // u = 1.0 is column 64: the last; not a number is column 0, an infinite v
    // the last row; -0.64 truncates toward zero; the last vertex is past the
    // rest shape's count and keeps its position.
    const struct { float u, v; int height; } vertices[] = {
        {0.0f, 0.0f, 1}, {0.5f, 0.25f, 200}, {0.25f, 0.5f, 10}, {0.999f, 0.999f, 255}, {1.0f, 0.0f, 2},
        {0.0f, 1.0f, 3}, {2.5f, 7.0f, 255},  {-0.5f, -3.0f, 1}, {nan, huge, 3},        {-0.01f, 0.0f, 1},
        {0.5f, 0.25f, -1}};
    const int count = static_cast<int>(std::size(vertices));
    MeshObject mesh;
    MeshObject rest;
    mesh.vertexCount = count;
    mesh.vertices = new Vertex[count];
    for (int k = 0; k < count; ++k) {
        mesh.vertices[k] = Vertex{{7.0f, 7.0f, 7.0f, 42.0f}, {}, vertices[k].u, vertices[k].v};
    }
    rest.vertexCount = count - 1;
    rest.vertices = new Vertex[count - 1];
    std::fill_n(rest.vertices, count - 1, Vertex{{1.0f, -2.0f, 10.0f, 0.0f}, {}, 0.0f, 0.0f});
    displaceMesh(mesh, rest, 0.015);

    for (int k = 0; k < count; ++k) {
        const Vector& p = mesh.vertices[k].position;
        const double s = vertices[k].height * 0.015;
        const bool displaced = k < count - 1;
        EXPECT_EQ(p.x, displaced ? static_cast<float>(s) : 7.0f) << k;
        EXPECT_EQ(p.y, displaced ? static_cast<float>(s * -2.0) : 7.0f) << k;
        EXPECT_EQ(p.z, displaced ? static_cast<float>(s * 10.0) : 7.0f) << k;
        EXPECT_EQ(p.w, 42.0f) << k;
    }
}
