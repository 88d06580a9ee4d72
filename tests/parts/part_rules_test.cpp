// The parts' rules without a context: part 1's beat reveal, part 7's loudness
// bands, part 6's sprite depths, the wave map's heights, its filling and a
// mesh displaced by it, call by call from tests/data/parts/rules.txt.
#include "parts/beat_reveal.h"
#include "parts/loudness_bands.h"
#include "parts/sprite_stream.h"
#include "parts/wave_map.h"

#include "app/sequencer.h"
#include "engine/world.h"
#include "tests/engine/text_cases.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>
#include <vector>

namespace {

// Part 1's reveal over a World of `meshes` empty meshes, hidden from index 3 on
// as its set-up leaves them; a sum below 0 is no frame: someone else hides the
// mesh revealed last, leaving another flag (0x80) on it.
struct Reveal {
    World world;
    int32_t index = 3;
    int32_t armed = 1;
    std::vector<int32_t> others;
    explicit Reveal(int meshes) {
        for (int i = 0; i < meshes; ++i) {
            world.addMesh(new MeshObject);
            world.meshes[i]->flags = i < 3 ? MESH_VISIBLE : 0;
        }
    }
    void frames(const std::vector<double>& levelSums) {
        for (double sum : levelSums) {
            if (sum < 0) {
                world.meshes[others.emplace_back(index)]->flags = 0x80;
            } else {
                revealOnBeat(world, static_cast<uint32_t>(sum), &index, &armed);
            }
        }
    }
};

TEST(PartRules, CallsGiveTheirResults) {
    const std::vector<TextCase> calls = readTextCases("parts/rules.txt");
    for (const TextCase& call : calls) {
        SCOPED_TRACE(::testing::PrintToString(call));
        const std::vector<std::string> w = words(call.input);
        std::vector<double> args, want;
        for (size_t i = 1; i < w.size(); ++i) args.push_back(std::stod(w[i]));
        for (const std::string& word : words(call.expected)) want.push_back(word == "ok" ? 0 : std::stod(word));
        if (w[0] == "reveal") {
            Reveal reveal(static_cast<int>(args[0]));
            reveal.frames({args.begin() + 1, args.end()});
            EXPECT_EQ(std::vector<double>({static_cast<double>(reveal.index), static_cast<double>(reveal.armed)}), want);
            for (int i = 0; i < reveal.world.meshCount; ++i) {  // mesh 3 is never shown
                const bool shown = i < 3 || (i > 3 && i <= reveal.index), other = std::ranges::count(reveal.others, i) > 0;
                EXPECT_EQ(reveal.world.meshes[i]->flags, (shown ? MESH_VISIBLE : 0) | (other ? 0x80 : 0)) << i;
            }
        } else if (w[0] == "loudness") {
            EXPECT_EQ(loudnessSelection(static_cast<uint32_t>(args[0]), static_cast<int32_t>(args[1])), want[0]);
        } else if (w[0] == "depth") {
            EXPECT_EQ(spriteDepth(static_cast<int>(args[0]), static_cast<float>(args[1])), want[0]);
        } else if (w[0] == "height") {
            EXPECT_EQ(waveHeight(static_cast<int>(args[0]), static_cast<int>(args[1]), args[2], args[3]), want[0]);
        } else if (w[0] == "fill" || w[0] == "displace") {
            std::vector<uint8_t> map(WAVE_MAP_BYTES, 0xAB);
            const auto cell = [&map](int row, int column) -> uint8_t& { return map[(row * 64 + column) * 4 + WAVE_MAP_HEIGHT_BYTE]; };
            g_waveMap = map.data();
            if (w[0] == "fill") {  // every byte as it must be: "ok", or the first that is not
                g_partTime = static_cast<float>(args[0]);
                fillWaveMap(args[1]);
                std::string result = "ok";
                for (size_t i = map.size(); i-- > 0;) {
                    const int row = static_cast<int>(i / 256), column = static_cast<int>(i / 4 % 64);
                    const int right = i % 4 == WAVE_MAP_HEIGHT_BYTE ? waveHeight(row, column, args[1], args[0]) : 0xAB;
                    result = map[i] == right ? result : "byte " + std::to_string(i) + ": " + std::to_string(map[i]);
                }
                EXPECT_EQ(result, call.expected);
            } else {  // vertex 0 at (U, V) displaced, vertex 1 past the rest shape's vertices kept
                std::tie(cell(0, 0), cell(0, 63), cell(63, 0), cell(63, 63), cell(16, 32), cell(32, 16)) = std::tuple(1, 2, 3, 255, 200, 10);
                MeshObject mesh, rest;
                const Vertex at{{7.0f, 7.0f, 7.0f, 42.0f}, {}, static_cast<float>(args[0]), static_cast<float>(args[1])};
                std::tie(mesh.vertexCount, mesh.vertices, rest.vertexCount, rest.vertices) =
                    std::tuple(2, new Vertex[2]{at, at}, 1, new Vertex[1]{{{1.0f, -2.0f, 10.0f, 0.0f}, {}, 0.0f, 0.0f}});
                displaceMesh(mesh, rest, 0.015);
                const double s = want[0] * 0.015;
                const Vector &p = mesh.vertices[0].position, &kept = mesh.vertices[1].position;
                EXPECT_EQ(std::vector<float>({p.x, p.y, p.z, p.w, kept.x, kept.y, kept.z, kept.w}),
                          std::vector<float>({static_cast<float>(s), static_cast<float>(s * -2.0), static_cast<float>(s * 10.0), 42, 7, 7, 7, 42}));
            }
            g_waveMap = nullptr;
        } else {
            ADD_FAILURE() << "no such call";
        }
    }
    EXPECT_GT(calls.size(), 40u);
}

}  // namespace
