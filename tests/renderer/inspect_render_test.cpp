// kaskade-inspect render on scenes written by a real exporter, run as a
// content author runs it (under the test run's display).
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <string>

#include "app/desktop/capture/png_file.h"
#include "tests/resources/resource_test_files.h"
#include "tests/support/fatal_catcher.h"

namespace {

// Renders `arguments`; what the tool printed goes to `printed`.
int render(const std::string& arguments, std::string& printed) {
    const int status = std::system(("'" KASKADE_INSPECT_TOOL "' render " + arguments + " >run.out 2>&1").c_str());
    const std::vector<uint8_t> out = readBytes("run.out");
    printed.assign(out.begin(), out.end());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// The pixels of a 640 x 480 PNG whose red, green and blue are `rgb` (grey: any grey but black).
int countPixels(const std::string& path, int rgb) {
    PngImage image;
    std::string error;
    EXPECT_TRUE(readPng(path, &image, &error)) << error;
    EXPECT_EQ(std::pair(image.width, image.height), std::pair(640, 480));
    int count = 0;
    for (size_t i = 0; i + 2 < image.pixels.size(); i += image.channels) {
        const int r = image.pixels[i], g = image.pixels[i + 1], b = image.pixels[i + 2];
        count += (rgb < 0 ? r > 0 && r == g && g == b : (r << 16 | g << 8 | b) == rgb) ? 1 : 0;
    }
    return count;
}
constexpr int GREY = -1;

TEST(InspectRender, ExporterScenesShowTheirColoursOrGreyGeometryThroughTheirCameras) {
    const char* display = std::getenv("DISPLAY");
    if (display == nullptr || display[0] == '\0') {
        GTEST_SKIP() << "no display: run the GL tests under xvfb-run";
    }
    WorkingTempDir directory;
    std::string printed;
    const std::string cubes = testDataPath("3ds/cubes_with_alpha.3DS");
    ASSERT_EQ(render("'" + cubes + "' plain.png", printed), 0) << printed;
    EXPECT_NE(printed.find("5 meshes, 60 faces"), std::string::npos) << printed;
    // Sphere-mapped materials without a texture: unlit, in their diffuse colours exactly.
    for (int diffuse : {0xC97B00, 0xB20800, 0x6D0005, 0xC000DC}) {
        EXPECT_GT(countPixels("plain.png", diffuse), 200) << std::hex << diffuse;
    }
    EXPECT_GT(countPixels("plain.png", 0), 640 * 480 / 4) << "the scene is framed with room around it";
    writeBytes("3d", buildArchive({{"other.3ds", readBytes(testDataPath("3ds/RotatingCube.3DS"))},
                                   {"cubes.3ds", readBytes(cubes)}}));
    ASSERT_EQ(render("3d:cubes.3ds entry.png", printed), 0) << printed;
    EXPECT_EQ(readBytes("entry.png"), readBytes("plain.png"));

    // No materials: grey, seen through the camera's track at frame 0 and 150.
    const std::string animated = "'" + testDataPath("3ds/TargetCameraAnim.3ds") + "'";
    ASSERT_EQ(render(animated + " start.png", printed), 0) << printed;
    EXPECT_NE(printed.find("camera 'Camera01' at frame 0, fov 110"), std::string::npos) << printed;
    ASSERT_EQ(render(animated + " later.png --frame 150", printed), 0) << printed;
    EXPECT_NE(printed.find("at frame 150"), std::string::npos) << printed;
    EXPECT_GT(countPixels("start.png", GREY), 1000);
    EXPECT_GT(countPixels("later.png", GREY), 1000);
    EXPECT_NE(readBytes("start.png"), readBytes("later.png")) << "the camera moved along its track";
}

}  // namespace
