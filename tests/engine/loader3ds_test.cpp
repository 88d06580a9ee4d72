// The .3ds reader and the World's preparation of what it read, case by case
// from tests/data/engine/scenes.txt: bytes in a chunk notation, then what the
// World holds after loading them, or the engine's report.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>

#include "engine/world.h"
#include "tests/engine/scene_text.h"
#include "tests/support/fatal_catcher.h"

namespace {

// One case of scenes.txt. Its lines: "== what it shows", then at will
// "at OFFSET..." (where the bytes start in the stream; 0 unless given),
// "each NAME VALUE | VALUE..." (the case once per value of NAME), "only WORD..."
// (compare only the lines holding one: "^WORD" at their start); the bytes, a line "then" before the
// bytes of each further load into the same World; "--"; the lines expected.
// "define NAME TOKENS" between cases names tokens for every later case.
struct SceneCase {
    int line;
    std::string what;
    std::map<std::string, std::string> macros;
    std::vector<long> offsets{0};
    std::string each, expected;
    std::vector<std::string> only;
    std::vector<std::string> values{""}, loads{""};
    int part = 0;  // reading its bytes, its lines expected, or done
};
void PrintTo(const SceneCase& c, std::ostream* out) { *out << "scenes.txt:" << c.line << ": " << c.what; }

std::vector<SceneCase> readSceneCases() {
    std::ifstream file(testDataPath("engine/scenes.txt"));
    std::vector<SceneCase> cases;
    std::map<std::string, std::string> macros;
    int number = 0;
    for (std::string line; std::getline(file, line);) {
        ++number;
        std::istringstream words(line);
        std::string word, rest;
        words >> word;
        std::getline(words >> std::ws, rest);
        if (line.empty() || line[0] == '#') {
            if (line.empty() && !cases.empty() && cases.back().part == 1) cases.back().part = 2;
        } else if (word == "define") {
            std::istringstream definition(rest);
            definition >> word;
            std::getline(definition >> std::ws, macros[word]);
        } else if (word == "==") {
            cases.emplace_back().line = number;
            cases.back().what = rest;
            cases.back().macros = macros;
        } else if (cases.empty() || cases.back().part == 2) {
            throw std::runtime_error("scenes.txt:" + std::to_string(number) + ": outside a case");
        } else if (SceneCase& c = cases.back(); c.part == 1) {
            c.expected += line + "\n";
        } else if (word == "--") {
            c.part = 1;
        } else if (word == "then") {
            c.loads.emplace_back();
        } else if (word == "at") {
            std::istringstream offsets(rest);
            c.offsets.clear();
            for (long offset; offsets >> offset;) c.offsets.push_back(offset);
        } else if (word == "only") {
            std::istringstream patterns(rest);
            c.only.assign(std::istream_iterator<std::string>(patterns), {});
        } else if (word == "each") {
            std::istringstream values(rest);
            values >> c.each;
            c.values.clear();
            for (std::string value; std::getline(values >> std::ws, value, '|');) c.values.push_back(value);
        } else {
            c.loads.back() += line + "\n";
        }
    }
    return cases;
}

class SceneCases : public ::testing::TestWithParam<SceneCase> {};

TEST_P(SceneCases, LoadIntoWhatIsWrittenDown) {
    SceneCase c = GetParam();
    for (const std::string& value : c.values) {
        c.macros[c.each] = value;
        std::vector<std::vector<uint8_t>> loads;
        for (const std::string& load : c.loads) loads.push_back(sceneBytes(load, c.macros));
        for (long offset : c.offsets) {
            SCOPED_TRACE("at " + std::to_string(offset) + (c.each.empty() ? "" : ", " + c.each + " " + value));
            std::istringstream lines(loadReport(loads, offset));
            std::string kept;
            for (std::string line; std::getline(lines, line);) {
                const auto holds = [&line](const std::string& p) {  // "^x" begins the line, any other is in it
                    return p[0] == '^' ? line.starts_with(p.substr(1)) : line.find(p) != std::string::npos;
                };
                kept += c.only.empty() || std::ranges::any_of(c.only, holds) ? line + "\n" : "";
            }
            EXPECT_EQ(kept, c.expected);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Scenes, SceneCases, ::testing::ValuesIn(readSceneCases()),
                         [](const auto& info) { return "line" + std::to_string(info.param.line); });

}  // namespace
