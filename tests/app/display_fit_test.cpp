// Where the picture and the window go: the 4:3 picture in frames of every
// shape, a window larger than its monitor, and which monitor is the show's.
// GoogleTest first: the X headers behind window_placement.h define None and Bool.
#include <gtest/gtest.h>

#include "app/desktop/capture/frame_target.h"
#include "app/desktop/display/window_placement.h"

namespace {

TEST(PictureFit, TheLargestCentredFourThreeRectangleWithTheSparePixelRightOrBelow) {
    const struct {
        int width, height;
        PictureRect expected;
    } frames[] = {
        {640, 480, {0, 0, 640, 480}},         // 4:3 itself
        {1440, 1080, {0, 0, 1440, 1080}},
        {1920, 1080, {240, 0, 1440, 1080}},   // wider: bars left and right
        {1000, 500, {167, 0, 666, 500}},      // 666.67 wide: whole pixels, rounded down
        {643, 480, {1, 0, 640, 480}},         // an odd margin: the spare column on the right
        {642, 481, {0, 0, 641, 481}},         // 641.33 wide: the spare column on the right
        {640, 640, {0, 80, 640, 480}},        // taller: bars above and below
        {640, 483, {0, 1, 640, 480}},         // an odd margin: the spare row below
        {1280, 1024, {0, 32, 1280, 960}},
        {641, 481, {0, 0, 641, 480}},         // 480.75 high: the spare row below
        {64, 8192, {0, 4072, 64, 48}},        // the extremes --size takes
        {8192, 64, {4053, 0, 85, 64}},
    };
    for (const auto& frame : frames) {
        const PictureRect picture = pictureRect(frame.width, frame.height);
        const std::string name = std::to_string(frame.width) + "x" + std::to_string(frame.height);
        EXPECT_EQ(picture.x, frame.expected.x) << name;
        EXPECT_EQ(picture.y, frame.expected.y) << name;
        EXPECT_EQ(picture.width, frame.expected.width) << name;
        EXPECT_EQ(picture.height, frame.expected.height) << name;
        // Never more than one pixel from 4:3, never outside the frame.
        EXPECT_LE(std::abs(picture.width * 3 - picture.height * 4), 4) << name;
        EXPECT_LE(picture.x + picture.width, frame.width) << name;
        EXPECT_LE(picture.y + picture.height, frame.height) << name;
    }
}

Monitor monitor(const char* name, int x, int y, int width, int height, bool primary = false) {
    Monitor m;
    m.name = name;
    m.x = x;
    m.y = y;
    m.width = width;
    m.height = height;
    m.primary = primary;
    return m;
}

TEST(WindowFit, AWindowLargerThanItsMonitorShrinksToItKeepingItsShape) {
    const Monitor small = monitor("DUMMY1", 1920, 0, 1280, 1024);
    int width = 1920;
    int height = 1080;
    EXPECT_EQ(fitWindowToMonitor(small, &width, &height),
              "a 1920x1080 window is larger than the monitor DUMMY1 (1280x1024): the window is 1280x720");
    EXPECT_EQ(width, 1280);
    EXPECT_EQ(height, 720);

    width = 1000;  // too high only
    height = 2000;
    EXPECT_FALSE(fitWindowToMonitor(small, &width, &height).empty());
    EXPECT_EQ(width, 512);
    EXPECT_EQ(height, 1024);

    width = 1280;  // exactly the monitor: as asked, no note
    height = 1024;
    EXPECT_EQ(fitWindowToMonitor(small, &width, &height), "");
    EXPECT_EQ(width, 1280);
    EXPECT_EQ(height, 1024);
}

TEST(ShowMonitor, ThePrimaryOneElseTheOneAtTheOriginAndTheOneUnderAWindow) {
    // Three monitors, the primary on the right.
    const std::vector<Monitor> three = {monitor("DUMMY1", 0, 0, 1280, 1024), monitor("DUMMY2", 1280, 0, 1024, 768),
                                        monitor("DUMMY0", 2304, 0, 1920, 1080, true)};
    EXPECT_EQ(primaryMonitor(three).name, "DUMMY0");
    const std::vector<Monitor> none = {monitor("B", 1920, 0, 1280, 1024), monitor("A", 0, 0, 1920, 1080)};
    EXPECT_EQ(primaryMonitor(none).name, "A") << "without a primary output, the monitor at the origin";

    EXPECT_EQ(monitorUnder(three, 1300, 10, 640, 480).name, "DUMMY2");
    EXPECT_EQ(monitorUnder(three, 1000, 0, 640, 480).name, "DUMMY2") << "most of it: 360 columns against 280";
    EXPECT_EQ(monitorUnder(three, 900, 0, 640, 480).name, "DUMMY1") << "380 columns against 260";
    EXPECT_EQ(monitorUnder(three, -5000, -5000, 640, 480).name, "DUMMY0") << "on none: the primary";
}

}  // namespace
