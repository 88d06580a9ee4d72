// Scene files written by real exporters (tests/data/3ds): kaskade-inspect
// scene on each against the exporters' counts (counts.tsv), and the engine's
// reader on damaged variants of them.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <set>
#include <sstream>
#include <sys/wait.h>

#include "tests/engine/scene_text.h"
#include "tests/resources/resource_test_files.h"
#include "tests/support/fatal_catcher.h"

namespace {

using Bytes = std::vector<uint8_t>;
const std::string kRead = "fatal tessel openGL engine 1: Could not read from file.\n", kLoaded = "loaded", kAnyEnd = "";

// Runs kaskade-inspect with both output streams in *output; returns the exit status.
int inspect(const std::string& arguments, std::string* output) {
    FILE* pipe = popen((std::string(KASKADE_INSPECT) + " " + arguments + " 2>&1").c_str(), "r");
    char buffer[4096];
    for (size_t n; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) output->append(buffer, n);
    const int status = pclose(pipe);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Every file of counts.tsv through kaskade-inspect scene (RotatingCube.3DS from
// an archive, as the show reads its scenes), the JSON's records counted
// against the exporters' own counts; a bad scene is the engine's report.
TEST(RealScenes, InspectSceneFindsTheExportersCountsAndReportsBadScenes) {
    const std::string archive = testing::TempDir() + "/engine-test-archive";
    writeBytes(archive, buildArchive({{"junk.3ds", {'n', 'o', 't', ' ', '3', 'd', 's', '!'}},
                                      {"cube.3ds", readBytes(testDataPath("3ds/RotatingCube.3DS"))}}));
    std::ifstream table(testDataPath("3ds/counts.tsv"));
    std::string line, json;
    int files = 0;
    for (std::getline(table, line); std::getline(table, line); ++files, json.clear()) {  // after the column names
        std::vector<std::string> f;
        std::stringstream fields(line);
        for (std::string field; std::getline(fields, field, '\t');) f.push_back(field);
        SCOPED_TRACE(f.at(0));
        ASSERT_EQ(inspect("scene " + (f[0] == "RotatingCube.3DS" ? archive + ":cube.3ds" : testDataPath("3ds/" + f[0])), &json), 0) << json;
        // How often a JSON field occurs (summed: the sum of its numbers).
        const auto count = [&json](const std::string& key, bool summed = false) {
            int count = 0, sum = 0;
            for (size_t at = json.find("\"" + key + "\": "); at != std::string::npos; at = json.find("\"" + key + "\": ", at + 1), ++count) {
                sum += std::atoi(json.c_str() + at + key.size() + 4);
            }
            return summed ? sum : count;
        };
        // Raw chunk counts: an omni light is a 0x4600 chunk without a 0x4610 inside. Every
        // keyframer node of these files names a record, so no key is lost to a skipped node.
        const auto n = [&f](size_t column) { return std::stoi(f.at(column)); };
        EXPECT_EQ((std::vector{count("vertexCount"), count("vertexCount", true), count("faceCount", true), count("twoSided"),
                               count("fov"), count("colour") - count("hotspot"), count("hotspot"),
                               count("positionKeys", true) + count("targetKeys", true)}),
                  (std::vector{n(2), n(3), n(4), n(7), n(9), n(10) - n(11), n(11), n(15)}))
            << "meshes, vertices, faces, materials, cameras, lights, spotlights, keys";
        std::stringstream materials(f.at(8));
        for (std::string name; std::getline(materials, name, '|');) EXPECT_NE(json.find("\"name\": \"" + name + "\""), std::string::npos) << name;
        EXPECT_NE(json.find("\"endFrame\": " + f.at(17).substr(f[17].find('-') + 1) + "}"), std::string::npos);
    }
    EXPECT_EQ(files, 4);
    EXPECT_EQ(inspect("scene " + archive + ":junk.3ds", &json), 1);
    EXPECT_EQ(json, "tessel openGL engine: This doesn't seems to be a .3ds file.\n");
}

// Header offsets of every chunk `id` among the chunks the reader walks into, within [start, end).
void findChunks(const Bytes& b, size_t start, size_t end, uint16_t id, std::vector<size_t>* found) {
    const std::set<uint16_t> containers = {0x4D4D, 0x3D3D, 0xB000, 0xAFFF, 0x4100, 0xB002, 0xB003, 0xB004, 0xB005, 0xB006, 0xB007};
    for (size_t p = start; p + 6 <= end;) {
        const uint16_t chunk = static_cast<uint16_t>(b[p] | b[p + 1] << 8);
        const uint32_t length = b[p + 2] | b[p + 3] << 8 | b[p + 4] << 16 | static_cast<uint32_t>(b[p + 5]) << 24;
        if (length < 6 || p + length > end) return;
        if (chunk == id) found->push_back(p);
        size_t data = containers.contains(chunk) ? p + 6 : p + length;  // where its sub-chunks start
        if (chunk == 0x4000) data = static_cast<size_t>(std::find(b.begin() + static_cast<long>(p) + 6, b.end(), 0) - b.begin()) + 1;
        if (chunk == 0x4120) data = p + 8 + 8 * static_cast<size_t>(b[p + 6] | b[p + 7] << 8);  // after the face list
        findChunks(b, data, p + length, id, found);
        p += length;
    }
}

// Writes the little-endian `value` of `bytes` bytes at `at`.
void put(Bytes& b, size_t at, uint32_t value, int bytes = 4) {
    for (int i = 0; i < bytes; ++i) b[at + i] = static_cast<uint8_t>(value >> (8 * i));
}
// Just past the NUL of the name that opens the chunk at `at`.
size_t afterName(const Bytes& b, size_t at) {
    return static_cast<size_t>(std::find(b.begin() + static_cast<long>(at) + 6, b.end(), 0) - b.begin()) + 1;
}

class DamagedScene : public testing::TestWithParam<std::string> {
protected:
    Bytes original = readBytes(testDataPath("3ds/" + GetParam()));
    // What loading `bytes` gives: the engine's report, or kLoaded.
    static std::string load(const Bytes& bytes) {
        const std::string report = loadReport({bytes});
        return report.starts_with("fatal") ? report : kLoaded;
    }
    // Loads the file damaged at each chunk `id` in turn and expects `expected` (kAnyEnd: any
    // clean end); returns how many there were.
    size_t atEvery(uint16_t id, const std::function<void(Bytes&, size_t)>& damage, const std::string& expected) {
        std::vector<size_t> found;
        findChunks(original, 0, original.size(), id, &found);
        for (size_t at : found) {
            Bytes bytes = original;
            damage(bytes, at);
            const std::string result = load(bytes);
            EXPECT_TRUE(expected.empty() || result == expected) << "chunk at " << at << ": " << result;
        }
        return found.size();
    }
};

TEST_P(DamagedScene, CutFilesBadLengthsAndLostNulsEndCleanly) {
    for (size_t size = 0; size < original.size(); size += size < 64 ? 1 : 7) {
        EXPECT_EQ(load(Bytes(original.begin(), original.begin() + static_cast<long>(size))), kRead) << size;
    }
    for (uint32_t length : {static_cast<uint32_t>(original.size() + 1), 0xFFFFFFFFu}) {
        Bytes bytes = original;
        put(bytes, 2, length);
        EXPECT_EQ(load(bytes), kRead);
    }
    for (uint16_t id : {0x3D3D, 0x4000, 0x4100, 0x4110, 0x4120, 0x4130, 0xAFFF, 0xA000, 0xB000, 0xB002, 0xB010, 0xB020}) {
        for (uint32_t length : {0u, 1u, 5u, 6u, 7u}) {
            atEvery(id, [length](Bytes& b, size_t at) { put(b, at + 2, length); }, kAnyEnd);
        }
    }
    // A name that loses its NUL runs on into what follows it.
    atEvery(0x4000, [](Bytes& b, size_t at) { b[afterName(b, at) - 1] = 'X'; }, kAnyEnd);
}

TEST_P(DamagedScene, HugeCountsAreReadErrorsAndBadFaceNumbersLoad) {
    for (uint16_t id : {0x4110, 0x4120, 0x4140}) {
        EXPECT_GT(atEvery(id, [](Bytes& b, size_t at) { put(b, at + 6, 0xFFFF, 2); }, kRead), 0u);
    }
    atEvery(0x4130, [](Bytes& b, size_t at) { put(b, afterName(b, at), 0xFFFF, 2); }, kRead);
    for (uint32_t count : {0xFFFFu, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
        EXPECT_GT(atEvery(0xB020, [count](Bytes& b, size_t at) { put(b, at + 6 + 10, count); }, kRead), 0u);
    }
    EXPECT_EQ(load(original), kLoaded);
    atEvery(0x4120, [](Bytes& b, size_t at) { put(b, at + 8, 0xFFFF, 2); }, kLoaded);
    atEvery(0x4130, [](Bytes& b, size_t at) { put(b, afterName(b, at) + 2, 0xFFFF, 2); }, kLoaded);
}

INSTANTIATE_TEST_SUITE_P(Files, DamagedScene,
                         testing::Values("RotatingCube.3DS", "TargetCameraAnim.3ds", "cubes_with_alpha.3DS", "test1.3ds"),
                         [](const auto& info) { return info.param.substr(0, info.param.find('.')); });

}  // namespace
