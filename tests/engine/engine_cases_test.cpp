// The engine's cases from tests/data/engine: the .3ds reader and the World's
// preparation of what it read (scenes.txt: bytes in a chunk notation, then
// what the World holds after loading them and the World's operations the case
// names, or the engine's report); keyframe tracks, ease, the World's frame
// clock, the camera's update and the texture seam's correction, call by call
// (calls.txt).
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <sstream>
#include <tuple>
#include <vector>

#include "engine/seam_correction.h"
#include "engine/world.h"
#include "tests/engine/scene_text.h"
#include "tests/engine/text_cases.h"

namespace {

// A case's input lines: "at OFFSET..." (where the bytes start in the stream,
// 0 unless given), "each NAME VALUE | VALUE..." (the case once per value of
// NAME), the bytes, "then" before the bytes of each further load into the
// same World, and after them the World's operations: "normals" (every mesh's
// computed again), "set MODE DIFFUSE SPECULAR AMBIENT TWOSIDED FLAGS NAME"
// (World::setMaterial).
class SceneCases : public ::testing::TestWithParam<TextCase> {};

TEST_P(SceneCases, LoadIntoWhatIsWrittenDown) {
    const TextCase& c = GetParam();
    std::vector<long> offsets{0};
    std::string each;
    std::vector<std::string> values{""}, loads{""};
    std::vector<std::vector<std::string>> operations;
    std::istringstream lines(c.input);
    for (std::string line; std::getline(lines, line);) {
        const std::vector<std::string> w = words(line);
        if (w[0] == "at") {
            offsets.clear();
            for (size_t i = 1; i < w.size(); ++i) offsets.push_back(std::stol(w[i]));
        } else if (w[0] == "each") {
            std::istringstream in(line.substr(5));
            in >> each;
            values.clear();
            for (std::string value; std::getline(in >> std::ws, value, '|');) values.push_back(value);
        } else if (w[0] == "then") {
            loads.emplace_back();
        } else if (w[0] == "normals" || w[0] == "set") {
            operations.push_back(w);
        } else {
            loads.back() += line + "\n";
        }
    }
    const auto operate = [&operations](World& world) {
        for (const std::vector<std::string>& w : operations) {
            for (int32_t m = 0; w[0] == "normals" && m < world.meshCount; ++m) world.meshes[m]->computeNormals();
            if (w[0] == "set") {
                const auto number = [&w](size_t i) { return static_cast<uint32_t>(std::stoul(w.at(i), nullptr, 0)); };
                std::string name = w.at(7);
                for (size_t i = 8; i < w.size(); ++i) name += " " + w[i];
                world.setMaterial(name.c_str(), number(1), nullptr, number(2), number(3), number(4), 110.0f,
                                  static_cast<uint8_t>(number(5)), number(6));
            }
        }
    };
    std::map<std::string, std::string> macros = c.macros;
    for (const std::string& value : values) {
        macros[each] = value;
        std::vector<std::vector<uint8_t>> bytes;
        for (const std::string& load : loads) bytes.push_back(textBytes(load, macros));
        for (long offset : offsets) {
            SCOPED_TRACE("at " + std::to_string(offset) + (each.empty() ? "" : ", " + each + " " + value));
            EXPECT_EQ(comparedLines(c, loadReport(bytes, offset, operate)), c.expected);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Scenes, SceneCases, ::testing::ValuesIn(readTextCases("engine/scenes.txt")), caseName);


// The numbers of `words` ("-" reads as NaN: not checked).
std::vector<float> numbers(const std::vector<std::string>& words) {
    std::vector<float> out;
    for (const std::string& word : words) out.push_back(word == "-" ? NAN : std::strtof(word.c_str(), nullptr));
    return out;
}

// A track of `keys` (FRAME,X[,TENSION,CONTINUITY,BIAS,EASE_TO,EASE_FROM]), prepared as the reader prepares it.
void fill(Track& track, const std::vector<std::string>& keys) {
    if (keys.empty()) return;
    track.adoptKeys(new Key[keys.size()], static_cast<uint32_t>(keys.size()));
    for (size_t i = 0; i < keys.size(); ++i) {
        std::string text = keys[i];
        std::replace(text.begin(), text.end(), ',', ' ');
        std::vector<float> v = numbers(words(text));
        v.resize(7, 0.0f);
        Key& k = track.keys[i];
        k.frame = static_cast<int32_t>(v[0]);
        k.value = Vector{v[1], -v[1], 2.0f * v[1], 0.0f};
        std::tie(k.tension, k.continuity, k.bias, k.easeTo, k.easeFrom) = std::tie(v[2], v[3], v[4], v[5], v[6]);
    }
    prepareTangents(track);
}

// The words of `all` between `from` and the next of `ends` (or the end).
std::vector<std::string> between(const std::vector<std::string>& all, const std::string& from, std::vector<std::string> ends) {
    auto first = from.empty() ? all.begin() : std::find(all.begin(), all.end(), from);
    first += first != all.end() && !from.empty();
    return {first, std::find_first_of(first, all.end(), ends.begin(), ends.end())};
}

TEST(EngineCalls, GiveTheirResults) {
    const std::vector<TextCase> calls = readTextCases("engine/calls.txt");
    for (const TextCase& call : calls) {
        SCOPED_TRACE(::testing::PrintToString(call));
        const std::vector<std::string> w = words(call.input), results = words(call.expected);
        const std::string name = w[0];
        const std::vector<float> args = numbers({w.begin() + 1, w.end()}), want = numbers(results);
        if (name == "ease") {
            EXPECT_NEAR(ease(args[0], args[1], args[2]), want[0], 1e-6f);
        } else if (name == "frame") {
            World world;
            *world.segment = {static_cast<int32_t>(args[0]), static_cast<int32_t>(args[1]), static_cast<uint8_t>(args[2])};
            world.setFrame(args[3]);
            EXPECT_EQ(world.currentFrame, want[0]);
        } else if (name == "seam") {
            float values[3] = {args[0], args[1], args[2]};
            correctSeam(values);
            EXPECT_EQ(std::vector<float>(values, values + 3), want);
        } else if (name == "coords") {  // coords FLAGS U0 U1 U2 V0 V1 V2 -> U0 U1 U2 V0 V1 V2: a face's copies
            Vertex vertices[3];
            Face face;
            face.flags = static_cast<uint16_t>(args[0]);
            for (int i = 0; i < 3; ++i) std::tie(vertices[i].u, vertices[i].v, face.vertex[i]) = std::tuple(args[1 + i], args[4 + i], &vertices[i]);
            const FaceTexCoords coords = faceTexCoords(face);
            EXPECT_EQ(std::vector<float>({coords.u[0], coords.u[1], coords.u[2], coords.v[0], coords.v[1], coords.v[2]}), want);
            for (int i = 0; i < 3; ++i) EXPECT_EQ(std::pair(vertices[i].u, vertices[i].v), std::pair(args[1 + i], args[4 + i]));
        } else if (name == "camera") {  // camera KEY... / KEY... at FRAME -> POSITION TARGET, from (1,2,3) aimed at (4,5,6)
            Camera camera;
            std::tie(camera.position, camera.target) = std::pair(Vector{1, 2, 3, 0}, Vector{4, 5, 6, 0});
            fill(*camera.positionTrack, between(w, "camera", {"/"}));
            fill(*camera.targetTrack, between(w, "/", {"at"}));
            camera.update(static_cast<int>(numbers(between(w, "at", {}))[0]));
            const Vector& p = camera.position, & t = camera.target;
            EXPECT_EQ(std::vector<float>({p.x, p.y, p.z, t.x, t.y, t.z}), want);
        } else if (name == "track") {
            Track track;
            fill(track, between(w, "track", {"at"}));
            const std::vector<std::string> at = between(w, "at", {});
            const bool finite = results == std::vector<std::string>{"finite"};
            for (size_t i = 0; i < track.keyCount && finite; ++i) {
                EXPECT_TRUE(std::isfinite(track.keys[i].tangentIn.x + track.keys[i].tangentOut.x)) << "key " << i;
            }
            const size_t bar = std::find(results.begin(), results.end(), "|") - results.begin();
            for (size_t i = 0; i < bar && !finite; ++i) {
                const Vector& tangent = i % 2 == 0 ? track.keys[(i + 1) / 2].tangentOut : track.keys[(i + 1) / 2].tangentIn;
                EXPECT_TRUE(std::isnan(want[i]) || (std::fabs(tangent.x - want[i]) < 1e-4f && std::fabs(tangent.z - 2 * want[i]) < 2e-4f))
                    << "tangent " << i << ": " << tangent.x << ", z " << tangent.z;
            }
            for (size_t i = 0; i < at.size(); ++i) {
                const Vector v = evaluateTrack(track, std::strtof(at[i].c_str(), nullptr));
                const float x = finite ? v.x : want[bar + 1 + i];
                EXPECT_TRUE(std::isfinite(v.x) && std::fabs(v.x - x) < 2e-5f && std::fabs(v.y + x) < 2e-5f && std::fabs(v.z - 2 * x) < 4e-5f)
                    << "at " << at[i] << ": (" << v.x << "," << v.y << "," << v.z << ")";
            }
        } else {
            ADD_FAILURE() << "no such call";
        }
    }
    EXPECT_GT(calls.size(), 40u);
}

}  // namespace
