// Scene files written by real exporters (tests/data/3ds) damaged in every
// way the reader must survive: cut anywhere, bad lengths, lost NULs, huge
// counts and face numbers (what they hold: tests/data/resources/tools.txt).
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <set>

#include "tests/engine/scene_text.h"
#include "tests/resources/resource_test_files.h"
#include "tests/support/fatal_catcher.h"

namespace {

using Bytes = std::vector<uint8_t>;
const std::string kRead = "fatal tessel openGL engine 1: Could not read from file.\n", kLoaded = "loaded", kAnyEnd = "";

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
