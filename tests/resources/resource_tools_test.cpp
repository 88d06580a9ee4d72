// kaskade-archive and kaskade-inspect pcx, run as their users run them.
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

struct ToolRun {
    int status;
    std::string out, err;
};

// Runs `tool` with `arguments` (already quoted as needed) in the working directory.
ToolRun run(const char* tool, const std::string& arguments) {
    const int raw = std::system((std::string("'") + tool + "' " + arguments + " >run.out 2>run.err").c_str());
    const std::vector<uint8_t> out = readBytes("run.out"), err = readBytes("run.err");
    return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, {out.begin(), out.end()}, {err.begin(), err.end()}};
}
ToolRun archiveTool(const std::string& arguments) { return run(KASKADE_ARCHIVE_TOOL, arguments); }
ToolRun inspectTool(const std::string& arguments) { return run(KASKADE_INSPECT_TOOL, arguments); }

// Fails unless `run` ended with `status` and its stderr holds `words`.
void expectFailure(const ToolRun& run, int status, const std::string& words) {
    EXPECT_EQ(run.status, status);
    EXPECT_NE(run.err.find(words), std::string::npos) << run.err;
}

PngImage loadPng(const std::string& path) {
    PngImage png;
    std::string error;
    EXPECT_TRUE(readPng(path, &png, &error)) << error;
    return png;
}

class ResourceToolTest : public ::testing::Test {
protected:
    void SetUp() override {
        std::filesystem::create_directories("in/sub");
        writeBytes("in/objects.pcx", readBytes(testDataPath("pcx/im_rose_69x45_p8.pcx")));
        std::vector<uint8_t> scene(5000);
        std::iota(scene.begin(), scene.end(), 3);
        writeBytes("in/scene.3ds", scene);
        writeBytes("in/sub/empty", {});
        ASSERT_EQ(archiveTool("create show.3d in/objects.pcx in/sub/empty in/scene.3ds").status, 0);
    }
    WorkingTempDir directory;
};

TEST_F(ResourceToolTest, ArchiveCreateListExtractGivesBackTheSameBytes) {
    const ToolRun listed = archiveTool("list show.3d");
    EXPECT_EQ(listed.status, 0) << listed.err;
    EXPECT_EQ(listed.out, "      4077  objects.pcx\n         0  empty\n      5000  scene.3ds\n");
    for (const char* source : {"in/objects.pcx", "in/sub/empty", "in/scene.3ds"}) {
        const std::string name = std::filesystem::path(source).filename();
        ASSERT_EQ(archiveTool("extract show.3d " + name).status, 0) << name;  // OUT defaults to the name
        EXPECT_EQ(readBytes(name), readBytes(source)) << name;
    }
}

TEST_F(ResourceToolTest, ArchiveRefusesBadNamesAndUsage) {
    writeBytes("in/twenty_characters.xy", {1});
    expectFailure(archiveTool("create a.3d in/scene.3ds in/twenty_characters.xy"), 1,
                  "longer than 19 characters: twenty_characters.xy");
    expectFailure(archiveTool("create a.3d in/scene.3ds in/scene.3ds"), 1,
                  "an entry named 'scene.3ds' is already in the archive");
    EXPECT_FALSE(std::filesystem::exists("a.3d"));
    expectFailure(archiveTool("extract show.3d Scene.3ds out.bin"), 1, "no entry named 'Scene.3ds'");
    expectFailure(archiveTool("extract show.3d ../x"), 1, "is no file name here: give OUT");
}

TEST_F(ResourceToolTest, ArchiveListAndExtractReportATruncatedArchive) {
    const std::vector<uint8_t> whole = readBytes("show.3d");
    writeBytes("cut.3d", {whole.begin(), whole.end() - 100});
    const ToolRun listed = archiveTool("list cut.3d");
    expectFailure(listed, 1, "entry 'scene.3ds' at offset 4103 is cut short: 4900 of 5000 data bytes present");
    EXPECT_EQ(listed.out, "      4077  objects.pcx\n         0  empty\n");
    expectFailure(archiveTool("extract cut.3d scene.3ds out.bin"), 1, "cut short");
    EXPECT_FALSE(std::filesystem::exists("out.bin"));
}

TEST_F(ResourceToolTest, InspectPcxGivesTheReferencePixelsOfEveryTestImageAndArchiveEntry) {
    size_t images = 0;
    for (const auto& item : std::filesystem::directory_iterator(testDataPath("pcx"))) {
        if (item.path().extension() == ".pcx") {
            SCOPED_TRACE(item.path().string());
            ++images;
            ASSERT_EQ(inspectTool("pcx '" + item.path().string() + "' out.png").status, 0);
            const PngImage got = loadPng("out.png");
            const PngImage want = loadPng(std::filesystem::path(item.path()).replace_extension(".png"));
            EXPECT_EQ(std::tie(got.channels, got.width, got.height), std::tie(want.channels, want.width, want.height));
            EXPECT_TRUE(got.pixels == want.pixels);
        }
    }
    EXPECT_GE(images, 7u);
    ASSERT_EQ(inspectTool("pcx show.3d:objects.pcx out.png").status, 0);
    EXPECT_TRUE(loadPng("out.png").pixels == loadPng(testDataPath("pcx/im_rose_69x45_p8.png")).pixels);
    expectFailure(inspectTool("pcx show.3d:scene.3ds out.png"), 1, "This isn't a pcx file");
    expectFailure(inspectTool("pcx show.3d:absent.pcx out.png"), 1, "no entry named 'absent.pcx'");
}

TEST_F(ResourceToolTest, InspectFindsAnEntryAsTheShowDoesAndTellsUsageFromBadFiles) {
    // The show's look-up stops at the name; the image's reader meets the cut
    // (a 24-bit image, whose colours do not wait for a palette at the end).
    writeBytes("in/rose.pcx", readBytes(testDataPath("pcx/im_rose_69x45_rgb24.pcx")));
    ASSERT_EQ(archiveTool("create last.3d in/scene.3ds in/rose.pcx").status, 0);
    const std::vector<uint8_t> whole = readBytes("last.3d");
    writeBytes("cut.3d", {whole.begin(), whole.end() - 100});
    ASSERT_EQ(inspectTool("pcx last.3d:rose.pcx whole.png").status, 0);
    const ToolRun cut = inspectTool("pcx cut.3d:rose.pcx cut.png");
    ASSERT_EQ(cut.status, 0) << cut.err;
    const PngImage wholeImage = loadPng("whole.png");
    const PngImage cutImage = loadPng("cut.png");
    ASSERT_EQ(cutImage.pixels.size(), wholeImage.pixels.size());
    const size_t topRows = 10 * 69 * 3;
    EXPECT_TRUE(std::equal(cutImage.pixels.begin(), cutImage.pixels.begin() + topRows, wholeImage.pixels.begin()));

    // A name the show's reader refuses stops the walk, as it stops the show.
    std::vector<uint8_t> longName(25, 0);
    std::fill_n(longName.begin(), 20, 'n');
    writeBytes("long.3d", longName);
    expectFailure(inspectTool("scene long.3d:scene.3ds"), 1, "an entry name longer than 19 characters");

    // Usage errors are 2, bad files 1, whatever the command.
    expectFailure(inspectTool("scene"), 2, "usage: kaskade-inspect scene");
    expectFailure(inspectTool("scene a b"), 2, "usage: kaskade-inspect scene");
    expectFailure(inspectTool("render show.3d:scene.3ds"), 2, "usage: kaskade-inspect render");
    expectFailure(inspectTool("scene show.3d:absent.3ds"), 1, "no entry named 'absent.3ds'");
    expectFailure(inspectTool("scene missing.3ds"), 1, "missing.3ds: cannot open");
    expectFailure(inspectTool("render show.3d:absent.3ds out.png"), 1, "no entry named 'absent.3ds'");
    EXPECT_EQ(inspectTool("no-such-command").status, 2);
}

}  // namespace
