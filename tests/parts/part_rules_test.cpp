// The parts' rules without a context: part 1's beat reveal, part 7's loudness
// bands, part 6's sprite depths and the wave heights, call by call from
// tests/data/parts/rules.txt; the wave map filled (only the height byte of each
// cell, row after row, at the part time) and a mesh displaced by it.
#include "parts/beat_reveal.h"
#include "parts/loudness_bands.h"
#include "parts/sprite_stream.h"
#include "parts/wave_map.h"

#include "app/sequencer.h"
#include "engine/world.h"
#include "tests/engine/text_cases.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <tuple>
#include <vector>

namespace {

// Part 1's reveal over a World of `meshes` empty meshes, hidden from index 3 on
// as its set-up leaves them.
struct Reveal {
    World world;
    int32_t index = 3;
    int32_t armed = 1;
    explicit Reveal(int meshes) {
        for (int i = 0; i < meshes; ++i) {
            world.addMesh(new MeshObject);
            world.meshes[i]->flags = i < 3 ? MESH_VISIBLE : 0;
        }
    }
    void frames(const std::vector<double>& levelSums) {
        for (double sum : levelSums) revealOnBeat(world, static_cast<uint32_t>(sum), &index, &armed);
    }
};

TEST(PartRules, CallsGiveTheirResults) {
    const std::vector<TextCase> calls = readTextCases("parts/rules.txt");
    for (const TextCase& call : calls) {
        SCOPED_TRACE(::testing::PrintToString(call));
        const std::vector<std::string> w = words(call.input);
        std::vector<double> args, want;
        for (size_t i = 1; i < w.size(); ++i) args.push_back(std::stod(w[i]));
        for (const std::string& word : words(call.expected)) want.push_back(std::stod(word));
        if (w[0] == "reveal") {
            Reveal reveal(static_cast<int>(args[0]));
            reveal.frames({args.begin() + 1, args.end()});
            EXPECT_EQ(std::vector<double>({static_cast<double>(reveal.index), static_cast<double>(reveal.armed)}), want);
            for (int i = 0; i < reveal.world.meshCount; ++i) {  // mesh 3 is never shown
                EXPECT_EQ((reveal.world.meshes[i]->flags & MESH_VISIBLE) != 0, i < 3 || (i > 3 && i <= reveal.index)) << i;
            }
        } else if (w[0] == "loudness") {
            EXPECT_EQ(loudnessSelection(static_cast<uint32_t>(args[0]), static_cast<int32_t>(args[1])), want[0]);
        } else if (w[0] == "depth") {
            EXPECT_EQ(spriteDepth(static_cast<int>(args[0]), static_cast<float>(args[1])), want[0]);
        } else if (w[0] == "height") {
            EXPECT_EQ(waveHeight(static_cast<int>(args[0]), static_cast<int>(args[1]), args[2], args[3]), want[0]);
        } else {
            ADD_FAILURE() << "no such call";
        }
    }
    EXPECT_GT(calls.size(), 40u);
}

TEST(PartRules, ARevealedMeshHiddenBySomeoneElseComesBackOnTheNextBeatWithItsOtherFlags) {
    Reveal reveal(6);
    reveal.frames({60, 0, 60});
    ASSERT_EQ(reveal.index, 5);
    reveal.world.meshes[5]->flags = 0x80;
    reveal.frames({0, 60});
    EXPECT_EQ(reveal.index, 5);
    EXPECT_EQ(reveal.world.meshes[5]->flags, 0x80 | MESH_VISIBLE);
}

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
    std::tie(cell(0, 0), cell(0, 63), cell(63, 0), cell(63, 63)) = std::tuple(1, 2, 3, 255);
    std::tie(cell(16, 32), cell(32, 16)) = std::tuple(200, 10);  // row from v, column from u
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

}  // namespace
