// The show on a Wayland desktop through Xwayland (weston, headless, 1280 x
// 1024): Xwayland only emulates a mode change for the windows of the client
// that asks, so the show asks from its window's own connection; weston does
// not scale such windows, and the show fills the output at its real size, 4:3.
// The screen is as it was after the show, however it ends.
#include "tests/desktops/crtc_table.h"
#include "tests/desktops/desktop_test.h"
#include "tests/support/show_process.h"

#include <signal.h>

namespace {

class Xwayland : public DesktopTest {
protected:
    DesktopRig::Kind kind() const override { return DesktopRig::Kind::Xwayland; }

    std::string xrandr() { return runCommand(onDisplay(rig_->display()) + "xrandr 2>&1"); }
};

TEST_F(Xwayland, FullscreenWindowedAndDesktopShowsDrawTheirPictureAndLeaveTheScreenAsItWas) {
    const struct {
        std::vector<std::string> arguments;
        int width;
        int height;
        int pictureTop;  // the 4:3 picture's first row
        int pictureHeight;
    } runs[] = {{{}, 1280, 1024, 32, 960}, {{"--window"}, 640, 480, 0, 480}, {{"--desktop"}, 1280, 1024, 32, 960}};
    const CrtcTable before = readCrtcTable(rig_->display());
    const std::string xrandrBefore = xrandr();
    ASSERT_FALSE(before.crtcs.empty());
    for (const auto& run : runs) {
        const std::string name = run.arguments.empty() ? "no arguments" : run.arguments[0];
        start(run.arguments, rig_->display());
        const std::string id = window(rig_->display());
        ASSERT_FALSE(id.empty()) << name;
        int width = 0;
        int height = 0;
        std::vector<uint8_t> rgb;
        // Until the window has its size and its picture is drawn between black bars.
        within(10000, [&] {
            rgb = windowPixels(rig_->display(), id, &width, &height, true);
            const LitPixels lit =
                litPixels(rgb, width, height, 0, run.pictureTop, width, run.pictureTop + run.pictureHeight);
            return width == run.width && height == run.height && !rgb.empty() && lit.outside == 0 &&
                   lit.inside > static_cast<long>(width) * run.pictureHeight * 9 / 10;
        });
        if (run.arguments.empty()) {
            // The mode was asked for from the window's own connection: Xwayland
            // marks the show's window for a compositor that would scale it.
            EXPECT_NE(runCommand(onDisplay(rig_->display()) + "xprop -id " + id + " _XWAYLAND_RANDR_EMU_MONITOR_RECTS")
                          .find("= 0, 0, 640, 480"),
                      std::string::npos);
        }
        key(id, "Escape", rig_->display());
        const ShowResult result = finish();
        EXPECT_EQ(result.status, 0) << name;
        ASSERT_EQ(width, run.width) << name;
        ASSERT_EQ(height, run.height) << name;
        ASSERT_FALSE(rgb.empty()) << name << ": the window's pixels cannot be read";
        const LitPixels lit =
            litPixels(rgb, width, height, 0, run.pictureTop, width, run.pictureTop + run.pictureHeight);
        EXPECT_EQ(lit.outside, 0) << name;
        EXPECT_GT(lit.inside, static_cast<long>(width) * run.pictureHeight * 9 / 10) << name;
        EXPECT_EQ(readCrtcTable(rig_->display()), before) << name;
        EXPECT_EQ(xrandr(), xrandrBefore) << name;
    }
}

TEST_F(Xwayland, AKilledShowLeavesTheScreenAsItWas) {
    const CrtcTable before = readCrtcTable(rig_->display());
    const std::string xrandrBefore = xrandr();
    start({}, rig_->display());
    const std::string id = window(rig_->display());
    // Once the show has asked for its mode.
    ASSERT_TRUE(within(10000, [&] {
        return runCommand(onDisplay(rig_->display()) + "xprop -id " + id + " _XWAYLAND_RANDR_EMU_MONITOR_RECTS")
                   .find("= 0, 0, 640, 480") != std::string::npos;
    }));
    kill(pid_, SIGKILL);
    EXPECT_EQ(finish().signal, SIGKILL);
    EXPECT_TRUE(within(2000, [&] { return readCrtcTable(rig_->display()) == before && xrandr() == xrandrBefore; }))
        << xrandr();
}

}  // namespace
