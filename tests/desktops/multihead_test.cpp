// The fullscreen show (no arguments) on a screen of several monitors: during
// the show only the primary monitor is at 640 x 480, the show's window over
// it, every other monitor as it was; after every way out (Escape, SIGTERM, a
// fatal report, a crash, SIGKILL, a lost X connection) every CRTC is as it was, modes, refresh
// rates, positions, rotations, outputs and the primary output alike.
#include "tests/desktops/crtc_table.h"
#include "tests/desktops/desktop_test.h"
#include "tests/support/fatal_catcher.h"
#include "tests/support/show_process.h"

#include <X11/Xlib.h>
#include <signal.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <thread>

namespace {

enum class WayOut { Escape, Terminate, FatalReport, Crash, Kill, LostConnection };

const char* nameOf(WayOut way) {
    switch (way) {
        case WayOut::Escape: return "Escape";
        case WayOut::Terminate: return "SIGTERM";
        case WayOut::FatalReport: return "a fatal report";
        case WayOut::Crash: return "SIGSEGV";
        case WayOut::Kill: return "SIGKILL";
        case WayOut::LostConnection: return "a lost X connection";
    }
    return "?";
}

// The window's rectangle on the screen, "WxH+X+Y".
std::string windowRectangle(const std::string& display, const std::string& id) {
    Display* x = XOpenDisplay(display.c_str());
    if (x == nullptr || id.empty()) {
        return "";
    }
    XWindowAttributes attributes{};
    int left = 0;
    int top = 0;
    Window child = 0;
    const Window window = std::stoul(id);
    XGetWindowAttributes(x, window, &attributes);
    XTranslateCoordinates(x, window, DefaultRootWindow(x), 0, 0, &left, &top, &child);
    XCloseDisplay(x);
    return std::to_string(attributes.width) + "x" + std::to_string(attributes.height) + "+" + std::to_string(left) +
           "+" + std::to_string(top);
}

class SeveralMonitors : public DesktopTest, public ::testing::WithParamInterface<DesktopRig::Kind> {
protected:
    DesktopRig::Kind kind() const override { return GetParam(); }

    // Runs the fullscreen show to `way` and checks the screen during and after.
    // Appends the tables to `notes`.
    void runTo(WayOut way, const std::string& primaryAt, std::string* notes) {
        SCOPED_TRACE(nameOf(way));
        ASSERT_TRUE(rig_->layOut());
        const std::string display = rig_->display();
        const CrtcTable before = readCrtcTable(display);
        ASSERT_FALSE(before.crtcs.empty());
        const std::string primary = before.crtcOf("DUMMY0");
        if (way == WayOut::FatalReport) {
            std::remove((dir_ + "/3d").c_str());
        }
        start({}, display);
        CrtcTable during;
        if (way != WayOut::FatalReport) {
            ASSERT_TRUE(within(10000, [&] {
                return readCrtcTable(display).crtcOf("DUMMY0").find(" 640x480@") != std::string::npos;
            })) << readCrtcTable(display).text();
            during = readCrtcTable(display);
            // Only the primary monitor's CRTC changed, in place; the screen kept its size.
            EXPECT_EQ(during.screen, before.screen);
            ASSERT_EQ(during.crtcs.size(), before.crtcs.size()) << during.text();
            for (size_t i = 0; i < before.crtcs.size(); ++i) {
                if (before.crtcs[i] != primary) {
                    EXPECT_EQ(during.crtcs[i], before.crtcs[i]);
                }
            }
            const std::string id = window(display);
            EXPECT_TRUE(within(5000, [&] { return windowRectangle(display, id) == "640x480+" + primaryAt; }))
                << windowRectangle(display, id);
        }
        switch (way) {
            case WayOut::Escape: key(window(display), "Escape", display); break;
            case WayOut::Terminate: kill(pid_, SIGTERM); break;
            case WayOut::Crash: kill(pid_, SIGSEGV); break;
            case WayOut::Kill: kill(pid_, SIGKILL); break;
            case WayOut::LostConnection:
                // What xkill does: the server closes the show's connection.
                runCommand(onDisplay(display) + "xdotool windowkill " + window(display));
                break;
            case WayOut::FatalReport: break;
        }
        const ShowResult result = finish();
        // The show gives the screen back before it ends; after SIGKILL or
        // without its connection its guard does, a moment later.
        if (way == WayOut::Kill || way == WayOut::LostConnection) {
            within(2000, [&] { return readCrtcTable(display) == before; });
        }
        const CrtcTable after = readCrtcTable(display);
        EXPECT_EQ(after, before) << "before:\n" << before.text() << "after:\n" << after.text();
        switch (way) {
            case WayOut::Escape: EXPECT_EQ(result.status, 0); break;
            case WayOut::Terminate: EXPECT_EQ(result.status, 143); break;
            case WayOut::FatalReport:
                EXPECT_EQ(result.status, 255);
                EXPECT_NE(result.err.find("KOBALT LIBRARY ERROR: cannot open library"), std::string::npos)
                    << result.err;
                break;
            case WayOut::Crash: EXPECT_EQ(result.signal, SIGSEGV); break;
            case WayOut::Kill: EXPECT_EQ(result.signal, SIGKILL); break;
            case WayOut::LostConnection: EXPECT_EQ(result.status, 1) << result.err; break;
        }
        *notes += std::string("== ") + nameOf(way) + "\nbefore:\n" + before.text() + "during:\n" +
                  (during.screen.empty() ? "(the report ends the show at its start)\n" : during.text()) +
                  "after:\n" + after.text();
        if (way == WayOut::FatalReport) {
            ASSERT_EQ(symlink((std::string(KASKADE_SHOW_DIR) + "/3d").c_str(), (dir_ + "/3d").c_str()), 0);
        }
    }
};

TEST_P(SeveralMonitors, OnlyThePrimaryMonitorSwitchesAndEveryWayOutGivesTheScreenBack) {
    const bool three = GetParam() == DesktopRig::Kind::ThreeMonitors;
    std::string notes;
    for (WayOut way : {WayOut::Escape, WayOut::Terminate, WayOut::FatalReport, WayOut::Crash, WayOut::Kill,
                       WayOut::LostConnection}) {
        runTo(way, three ? "2304+0" : "0+0", &notes);
    }
    const std::string path = artifactPath(three ? "three-monitors.txt" : "two-monitors.txt");
    std::ofstream(path) << notes;
    std::printf("CRTC tables before, during and after each way out: %s\n", path.c_str());
}

INSTANTIATE_TEST_SUITE_P(Desktops, SeveralMonitors,
                         ::testing::Values(DesktopRig::Kind::TwoMonitors, DesktopRig::Kind::ThreeMonitors),
                         [](const ::testing::TestParamInfo<DesktopRig::Kind>& info) {
                             return info.param == DesktopRig::Kind::TwoMonitors ? "TwoMonitors" : "ThreeMonitors";
                         });

}  // namespace
