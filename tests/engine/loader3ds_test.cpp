// The .3ds reader and the World's preparation of what it read, case by case
// from tests/data/engine/scenes.txt: bytes in a chunk notation, then what the
// World holds after loading them (and after the World's operations the case
// names), or the engine's report.
#include <gtest/gtest.h>

#include <sstream>

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

}  // namespace
