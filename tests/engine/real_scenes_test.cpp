// Scene files written by real exporters (tests/data/3ds), their counts in
// counts.tsv, kaskade-inspect scene on each, and damaged variants of them.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <map>
#include <sstream>
#include <sys/wait.h>

#include "engine/world.h"
#include "resources/archive_format.h"
#include "tests/engine/scene_text.h"
#include "tests/engine/text_cases.h"
#include "tests/support/fatal_catcher.h"

namespace {

using Bytes = std::vector<uint8_t>;
const std::string kRead = "fatal tessel openGL engine 1: Could not read from file.\n";

std::vector<std::string> split(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::stringstream stream(text);
    for (std::string part; std::getline(stream, part, separator);) parts.push_back(part);
    return parts;
}

// Runs kaskade-inspect with both output streams captured; returns the exit status.
int inspect(const std::string& arguments, std::string* output) {
    FILE* pipe = popen((std::string(KASKADE_INSPECT) + " " + arguments + " 2>&1").c_str(), "r");
    char buffer[4096];
    for (size_t n; (n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) output->append(buffer, n);
    const int status = pclose(pipe);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

Bytes readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(in), {});
}

// Every file of counts.tsv through kaskade-inspect scene (RotatingCube.3DS from
// an archive, as the show reads its scenes), the JSON's records counted
// against the exporters' own counts; a bad scene is the engine's report.
TEST(RealScenes, InspectSceneFindsTheExportersCountsAndReportsBadScenes) {
    const std::string archivePath = testing::TempDir() + "/engine-test-archive";
    const Bytes cube = readFile(testDataPath("3ds/RotatingCube.3DS")), junk = {'n', 'o', 't', ' ', '3', 'd', 's', '!'};
    std::vector<uint8_t> archive;
    ASSERT_TRUE(appendArchiveEntry(archive, "junk.3ds", junk.data(), junk.size(), nullptr));
    ASSERT_TRUE(appendArchiveEntry(archive, "cube.3ds", cube.data(), cube.size(), nullptr));
    ASSERT_TRUE(writeWholeFile(archivePath, archive, nullptr));
    std::ifstream table(testDataPath("3ds/counts.tsv"));
    std::string line, json;
    int files = 0;
    for (std::getline(table, line); std::getline(table, line); ++files, json.clear()) {  // after the column names
        const std::vector<std::string> f = split(line, '\t');
        SCOPED_TRACE(f.at(0));
        const std::string source = f.at(0) == "RotatingCube.3DS" ? archivePath + ":cube.3ds" : testDataPath("3ds/" + f.at(0));
        ASSERT_EQ(inspect("scene " + source, &json), 0) << json;
        // How often a JSON field occurs, and the sum of its numbers.
        const auto countAndSum = [&json](const std::string& key, bool summed) {
            const std::string field = "\"" + key + "\": ";
            int count = 0, sum = 0;
            for (size_t at = json.find(field); at != std::string::npos; at = json.find(field, at + 1), ++count) {
                sum += std::atoi(json.c_str() + at + field.size());
            }
            return summed ? sum : count;
        };
        // Raw chunk counts: an omni light is a 0x4600 chunk without a 0x4610 inside. Every
        // keyframer node of these files names a record, so no key is lost to a skipped node.
        const auto n = [&f](size_t column) { return std::stoi(f.at(column)); };
        EXPECT_EQ((std::vector{countAndSum("vertexCount", false), countAndSum("vertexCount", true),
                               countAndSum("faceCount", true), countAndSum("twoSided", false), countAndSum("fov", false),
                               countAndSum("colour", false) - countAndSum("hotspot", false), countAndSum("hotspot", false),
                               countAndSum("positionKeys", true) + countAndSum("targetKeys", true)}),
                  (std::vector{n(2), n(3), n(4), n(7), n(9), n(10) - n(11), n(11), n(15)}))
            << "meshes, vertices, faces, materials, cameras, lights, spotlights, keys";
        for (const std::string& materialName : split(f.at(8), '|')) {
            EXPECT_NE(json.find("\"name\": \"" + materialName + "\""), std::string::npos) << materialName;
        }
        EXPECT_NE(json.find("\"endFrame\": " + split(f.at(17), '-').at(1) + "}"), std::string::npos);
    }
    EXPECT_EQ(files, 4);
    EXPECT_EQ(inspect("scene " + archivePath + ":junk.3ds", &json), 1);
    EXPECT_EQ(json, "tessel openGL engine: This doesn't seems to be a .3ds file.\n");
}

// Header offsets of every chunk `id` inside the chunks the reader walks.
void findChunks(const Bytes& b, size_t start, size_t end, uint16_t id, std::vector<size_t>* found) {
    for (size_t p = start; p + 6 <= end;) {
        const uint16_t chunkId = static_cast<uint16_t>(b[p] | b[p + 1] << 8);
        const uint32_t length = b[p + 2] | b[p + 3] << 8 | b[p + 4] << 16 | static_cast<uint32_t>(b[p + 5]) << 24;
        if (length < 6 || p + length > end) {
            return;
        }
        if (chunkId == id) {
            found->push_back(p);
        }
        size_t data = p + 6;
        switch (chunkId) {
        case 0x4000: data = std::find(b.begin() + static_cast<long>(data), b.end(), 0) - b.begin() + 1; break;
        case 0x4120: data += 2 + 8 * static_cast<size_t>(b[data] | b[data + 1] << 8); break;
        case 0x4D4D: case 0x3D3D: case 0xB000: case 0xAFFF: case 0x4100:
        case 0xB002: case 0xB003: case 0xB004: case 0xB005: case 0xB006: case 0xB007: break;
        default: data = p + length;
        }
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

const std::string kLoaded = "loaded", kAnyEnd = "";

class DamagedScene : public testing::TestWithParam<std::string> {
protected:
    Bytes original = readFile(testDataPath("3ds/" + GetParam()));
    // What loading `bytes` gives: the engine's report, or kLoaded.
    static std::string load(const Bytes& bytes) {
        FatalCatcher catcher;
        try {
            World world;
            loadScene(world, bytes);
            return kLoaded;
        } catch (const FatalError& error) {
            return "fatal " + error.caption + " " + std::to_string(error.status) + ": " + error.text;
        }
    }
    // Loads the file damaged at each chunk `id` in turn and expects `expected` (kAnyEnd: any
    // clean end); returns how many there were.
    size_t atEvery(uint16_t id, const std::function<void(Bytes&, size_t)>& damage, const std::string& expected) {
        std::vector<size_t> found;
        findChunks(original, 0, original.size(), id, &found);
        for (size_t at : found) {
            SCOPED_TRACE(at);
            Bytes bytes = original;
            damage(bytes, at);
            const std::string result = load(bytes);
            if (!expected.empty()) {
                EXPECT_EQ(result, expected);
            }
        }
        return found.size();
    }
};

TEST_P(DamagedScene, CutFilesBadLengthsAndLostNulsEndCleanly) {
    for (size_t size = 0; size < original.size(); size += size < 64 ? 1 : 7) {
        SCOPED_TRACE(size);
        EXPECT_EQ(load(Bytes(original.begin(), original.begin() + static_cast<long>(size))), kRead);
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
