// The show under a window manager (openbox, decorations on, on a 1280 x 1024
// screen that offers no 640 x 480 mode): fullscreen is the window manager's
// (_NET_WM_STATE_FULLSCREEN) and covers the screen, a window the window
// manager resizes refits its picture, and a capture's first frame is whole
// whatever the window manager does to its preview window.
#include "tests/desktops/desktop_test.h"
#include "tests/support/fatal_catcher.h"
#include "tests/support/frame_compare.h"
#include "tests/support/show_process.h"

#include <signal.h>
#include <unistd.h>


namespace {

class WindowManager : public DesktopTest {
protected:
    DesktopRig::Kind kind() const override { return DesktopRig::Kind::Openbox; }

    // Geometry as xdotool tells it: "Geometry: WxH".
    std::string geometry(const std::string& id) {
        const std::string text = runCommand(onDisplay(rig_->display()) + "xdotool getwindowgeometry " + id);
        const size_t at = text.find("Geometry: ");
        return at == std::string::npos ? "" : text.substr(at + 10, text.find('\n', at) - at - 10);
    }

    bool geometryBecomes(const std::string& id, const std::string& wanted) {
        return within(5000, [&] { return geometry(id) == wanted; });
    }

    // What the window shows once `settled` holds for it (a loaded machine may
    // take a few frames to draw at a new size), or after ten seconds; then the
    // show is ended with Escape.
    template <typename Settled>
    std::vector<uint8_t> lastLook(const std::string& id, int* width, int* height, Settled settled) {
        std::vector<uint8_t> rgb;
        within(10000, [&] {
            rgb = windowPixels(rig_->display(), id, width, height);
            return settled(rgb, *width, *height);
        });
        key(id, "Escape", rig_->display());
        EXPECT_EQ(finish().status, 0);
        return rgb;
    }

    // The fullscreen show's window, once it covers the 1280 x 1024 screen.
    std::string startFullscreen() {
        start({}, rig_->display());
        const std::string id = window(rig_->display());
        EXPECT_TRUE(within(5000, [&] { return windowRectangle(rig_->display(), id) == "1280x1024+0+0"; }))
            << windowRectangle(rig_->display(), id);
        return id;
    }

    // Nothing on the screen but the 1280 x 960 picture between bars of 32
    // rows over the window (no title bar, no frame); then Escape.
    void pictureCoversTheScreen(const std::string& id) {
        const auto picture = [](const std::vector<uint8_t>& rgb, int width, int height) {
            return litPixels(rgb, width, height, 0, 32, 1280, 992);
        };
        int width = 0;
        int height = 0;
        const auto whole = [&](const std::vector<uint8_t>& rgb, int w, int h) {
            const LitPixels lit = picture(rgb, w, h);
            return w == 1280 && h == 1024 && lit.outside == 0 && lit.inside > 1280L * 960 * 9 / 10;
        };
        const std::vector<uint8_t> rgb = lastLook(id, &width, &height, whole);
        EXPECT_TRUE(whole(rgb, width, height)) << width << "x" << height << ", lit outside the picture "
                                               << picture(rgb, width, height).outside << ", inside "
                                               << picture(rgb, width, height).inside;
    }

    // Captures frames 0 to 2 of part 13 at `size` on the rig's display.
    void captureStart(const std::string& size, const std::string& directory) {
        start({"--part", "13", "--fps", "4", "--nosound", "--size", size, "--capture", directory}, rig_->display());
        const std::string third = directory + "/frame_00002.png";
        EXPECT_TRUE(within(60000, [&] { return access(third.c_str(), F_OK) == 0; })) << size;
        kill(pid_, SIGINT);
        EXPECT_EQ(finish().status, 130) << size;
    }

};

TEST_F(WindowManager, FullscreenIsTheWindowManagersAndCoversTheScreen) {
    const std::string id = startFullscreen();
    EXPECT_NE(runCommand(onDisplay(rig_->display()) + "xprop -id " + id + " _NET_WM_STATE")
                  .find("_NET_WM_STATE_FULLSCREEN"),
              std::string::npos);
    pictureCoversTheScreen(id);
}

TEST_F(WindowManager, AWindowTheWindowManagerResizesRefitsItsPicture) {
    start({"--window", "--nosound"}, rig_->display());
    const std::string id = window(rig_->display());
    ASSERT_FALSE(id.empty());
    runCommand(onDisplay(rig_->display()) + "xdotool windowsize " + id + " 1000 500");
    ASSERT_TRUE(geometryBecomes(id, "1000x500")) << geometry(id);
    // 666 x 500 from x = 167.
    const auto picture = [](const std::vector<uint8_t>& rgb, int width, int height) {
        return litPixels(rgb, width, height, 167, 0, 833, 500);
    };
    int width = 0;
    int height = 0;
    const std::vector<uint8_t> rgb = lastLook(id, &width, &height, [&](auto& rgb, int w, int h) {
        return w == 1000 && picture(rgb, w, h).outside == 0;
    });
    ASSERT_EQ(width, 1000);
    const LitPixels lit = picture(rgb, width, height);
    EXPECT_EQ(lit.outside, 0);
    EXPECT_GT(lit.inside, 666L * 500 * 9 / 10);
}

TEST_F(WindowManager, ACapturesFirstFrameIsWholeWhateverTheWindowManagerDoes) {
    captureStart("640x480", dir_ + "/small");
    captureStart("1440x1080", dir_ + "/large");
    for (int frame : {0, 1}) {
        const std::string name = "/frame_0000" + std::to_string(frame) + ".png";
        const PngImage large = loadPng(dir_ + "/large" + name);
        const PngImage small = loadPng(dir_ + "/small" + name);
        ASSERT_EQ(large.width, 1440);
        EXPECT_LE(meanAbsoluteError(scaledDown(large, 640, 480), small), 5.0) << "frame " << frame;
    }
}

TEST_F(WindowManager, AWindowManagerThatDiedLeavesADesktopEveryModeStartsAndDrawsOn) {
    const std::string display = rig_->display();
    rig_->killWindowManager();
    ASSERT_NE(runCommand(onDisplay(display) + "xprop -root _NET_SUPPORTING_WM_CHECK").find("window id"),
              std::string::npos)
        << "the root window names no check window that is gone";
    for (const char* mode : {"--fullscreen", "--window", "--desktop"}) {
        start({mode, "--nosound"}, display);
        const std::string id = window(display);
        int width = 0;
        int height = 0;
        const bool drew = !id.empty() && within(10000, [&] {
            const std::vector<uint8_t> rgb = windowPixels(display, id, &width, &height);
            return litPixels(rgb, width, height, 0, 0, width, height).inside > 0;
        });
        key(id, "Escape", display);
        const ShowResult result = finish();
        EXPECT_TRUE(drew) << mode << ": " << result.err;
        EXPECT_EQ(result.status, 0) << mode << ": " << result.err;
    }
}

// Without EWMH (twm): the fullscreen window covers the monitor all the same.
class WindowManagerWithoutEwmh : public WindowManager {
protected:
    DesktopRig::Kind kind() const override { return DesktopRig::Kind::Twm; }
};

TEST_F(WindowManagerWithoutEwmh, FullscreenCoversTheScreenWithoutATitleBar) {
    pictureCoversTheScreen(startFullscreen());
}

// openbox placing new windows on the pointer's monitor, DUMMY1 (1280 x 1024 at +1920+0).
class WindowManagerOnTwoMonitors : public WindowManager {
protected:
    DesktopRig::Kind kind() const override { return DesktopRig::Kind::TwoMonitorsOpenbox; }
};

TEST_F(WindowManagerOnTwoMonitors, ASizeLargerThanTheMonitorTheWindowLandsOnIsFittedToIt) {
    const std::string display = rig_->display();
    runCommand(onDisplay(display) + "xdotool mousemove 2500 500");
    start({"--size", "1920x1080", "--nosound"}, display);
    const std::string id = window(display);
    // 16:9 at the monitor's width, wholly on it.
    EXPECT_TRUE(within(5000, [&] { return windowRectangle(display, id).rfind("1280x720+1920+", 0) == 0; }))
        << windowRectangle(display, id);
    key(id, "Escape", display);
    const ShowResult result = finish();
    EXPECT_EQ(result.status, 0);
    const size_t note = result.err.find("larger than the monitor DUMMY1");
    EXPECT_NE(note, std::string::npos) << result.err;
    EXPECT_EQ(result.err.find("larger than the monitor", note + 1), std::string::npos) << result.err;
}

}  // namespace
