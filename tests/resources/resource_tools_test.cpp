// kaskade-archive and kaskade-inspect, run as their users run them: what each
// command prints, its exit status (0 done, 1 a bad file, 2 bad usage) and the
// files it writes.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <numeric>
#include <string>

#include "app/desktop/capture/png_file.h"
#include "tests/resources/resource_test_files.h"
#include "tests/support/fatal_catcher.h"

namespace {

const char* const ARCHIVE = KASKADE_ARCHIVE_TOOL;
const char* const INSPECT = KASKADE_INSPECT_TOOL;

// Runs `tool` with `arguments` (quoted as needed) in the working directory:
// it ends with `status`, prints `out` exactly (when given) and `err` within what it writes to stderr.
void expectRun(const char* tool, const std::string& arguments, int status, const char* err, const char* out = nullptr) {
    const int raw = std::system((std::string("'") + tool + "' " + arguments + " >run.out 2>run.err").c_str());
    const std::vector<uint8_t> printed = readBytes("run.out"), errors = readBytes("run.err");
    EXPECT_EQ(WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, status) << arguments;
    EXPECT_NE(std::string(errors.begin(), errors.end()).find(err), std::string::npos) << arguments << ": " << err;
    if (out != nullptr) {
        EXPECT_EQ(std::string(printed.begin(), printed.end()), out) << arguments;
    }
}

std::vector<uint8_t> pixelsOf(const std::string& path) {
    PngImage png;
    std::string error;
    EXPECT_TRUE(readPng(path, &png, &error)) << error;
    return png.pixels;
}

class ResourceTools : public ::testing::Test {
protected:
    // show.3d: a PCX image under a name of the longest length, an empty entry, 5000 bytes of scene.
    void SetUp() override {
        std::filesystem::create_directories("in/sub");
        writeBytes("in/a_nineteen_char.pcx", readBytes(testDataPath("pcx/im_rose_69x45_p8.pcx")));
        std::vector<uint8_t> scene(5000);
        std::iota(scene.begin(), scene.end(), 3);
        writeBytes("in/scene.3ds", scene);
        writeBytes("in/sub/empty", {});
        expectRun(ARCHIVE, "create show.3d in/a_nineteen_char.pcx in/sub/empty in/scene.3ds", 0, "");
    }
    WorkingTempDir directory;
};

TEST_F(ResourceTools, TheArchiveToolGivesBackTheSameBytesAndRefusesBadNamesUsageAndCutArchives) {
    const char* const listing = "      4077  a_nineteen_char.pcx\n         0  empty\n      5000  scene.3ds\n";
    expectRun(ARCHIVE, "list show.3d", 0, "", listing);
    for (const char* source : {"in/a_nineteen_char.pcx", "in/sub/empty", "in/scene.3ds"}) {
        const std::string name = std::filesystem::path(source).filename();
        expectRun(ARCHIVE, "extract show.3d " + name, 0, "");  // OUT defaults to the name
        EXPECT_EQ(readBytes(name), readBytes(source)) << name;
    }
    writeBytes("in/twenty_characters.xy", {1});
    expectRun(ARCHIVE, "create a.3d in/scene.3ds in/twenty_characters.xy", 1,
              "longer than 19 characters: twenty_characters.xy");
    expectRun(ARCHIVE, "create a.3d in/scene.3ds in/scene.3ds", 1, "an entry named 'scene.3ds' is already in the archive");
    EXPECT_FALSE(std::filesystem::exists("a.3d"));
    expectRun(ARCHIVE, "extract show.3d Scene.3ds out.bin", 1, "no entry named 'Scene.3ds'");
    expectRun(ARCHIVE, "extract show.3d ../x", 1, "is no file name here: give OUT");

    // Cut in the last entry's data, then in its length: what comes before is listed.
    const std::vector<uint8_t> whole = readBytes("show.3d");
    writeBytes("cut.3d", {whole.begin(), whole.end() - 100});
    expectRun(ARCHIVE, "list cut.3d", 1, "entry 'scene.3ds' at offset 4111 is cut short: 4900 of 5000 data bytes present",
              "      4077  a_nineteen_char.pcx\n         0  empty\n");
    expectRun(ARCHIVE, "extract cut.3d scene.3ds out.bin", 1, "cut short");
    EXPECT_FALSE(std::filesystem::exists("out.bin"));
    writeBytes("cut.3d", {whole.begin(), whole.end() - 5001});
    expectRun(ARCHIVE, "list cut.3d", 1, "archive ends inside the length of entry 'scene.3ds' at offset 4111");
}

TEST_F(ResourceTools, InspectFindsEntriesAsTheShowDoesAndTellsUsageFromBadFiles) {
    expectRun(INSPECT, "pcx show.3d:a_nineteen_char.pcx out.png", 0, "");
    EXPECT_TRUE(pixelsOf("out.png") == pixelsOf(testDataPath("pcx/im_rose_69x45_p8.png")));
    // The show's look-up stops at the name; the image's reader meets the cut
    // (a 24-bit image, whose colours do not wait for a palette at the end).
    writeBytes("in/rose.pcx", readBytes(testDataPath("pcx/im_rose_69x45_rgb24.pcx")));
    expectRun(ARCHIVE, "create last.3d in/scene.3ds in/rose.pcx", 0, "");
    const std::vector<uint8_t> whole = readBytes("last.3d");
    writeBytes("cut.3d", {whole.begin(), whole.end() - 100});
    expectRun(INSPECT, "pcx last.3d:rose.pcx whole.png", 0, "");
    expectRun(INSPECT, "pcx cut.3d:rose.pcx cut.png", 0, "");
    const std::vector<uint8_t> wholeImage = pixelsOf("whole.png"), cutImage = pixelsOf("cut.png");
    ASSERT_EQ(cutImage.size(), wholeImage.size());
    EXPECT_TRUE(std::equal(cutImage.begin(), cutImage.begin() + 10 * 69 * 3, wholeImage.begin())) << "the top rows";
    // A name the show's reader refuses stops the walk, as it stops the show.
    std::vector<uint8_t> longName(25, 0);
    std::fill_n(longName.begin(), 20, 'n');
    writeBytes("long.3d", longName);
    expectRun(INSPECT, "scene long.3d:scene.3ds", 1, "an entry name longer than 19 characters");
    // Usage errors are 2, bad files 1, whatever the command.
    const std::tuple<std::string, int, const char*> runs[] = {
        {"pcx show.3d:scene.3ds out.png", 1, "This isn't a pcx file"},
        {"pcx show.3d:absent.pcx out.png", 1, "no entry named 'absent.pcx'"},
        {"scene", 2, "usage: kaskade-inspect scene"},
        {"scene a b", 2, "usage: kaskade-inspect scene"},
        {"render show.3d:scene.3ds", 2, "usage: kaskade-inspect render"},
        {"scene show.3d:absent.3ds", 1, "no entry named 'absent.3ds'"},
        {"scene missing.3ds", 1, "missing.3ds: cannot open"},
        {"render show.3d:absent.3ds out.png", 1, "no entry named 'absent.3ds'"},
        {"no-such-command", 2, ""}};
    for (const auto& [arguments, status, err] : runs) {
        expectRun(INSPECT, arguments, status, err);
    }
}

}  // namespace
