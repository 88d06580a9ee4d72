// The fullscreen show (no arguments) on a screen of several monitors: during
// the show only the primary monitor is at 640 x 480 (at its own refresh rate), the show's window over
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

// The ways out of a show, what each sends, and the status it ends with (or, negative, the signal).
struct WayOut {
    const char* name;
    int status;
};
const WayOut ESCAPE{"Escape", 0}, TERMINATE{"SIGTERM", 143}, FATAL_REPORT{"a fatal report", 255},
    CRASH{"SIGSEGV", -SIGSEGV}, KILL{"SIGKILL", -SIGKILL}, LOST_CONNECTION{"a lost X connection", 1};

class SeveralMonitors : public DesktopTest, public ::testing::WithParamInterface<DesktopRig::Kind> {
protected:
    DesktopRig::Kind kind() const override { return GetParam(); }

    // Runs the fullscreen show to `way` and checks the screen during and after.
    // Appends the tables to `notes`.
    void runTo(const WayOut& way, const std::string& primaryAt, std::string* notes) {
        SCOPED_TRACE(way.name);
        const std::string name = way.name;
        ASSERT_TRUE(rig_->layOut());
        const std::string display = rig_->display();
        const CrtcTable before = readCrtcTable(display);
        ASSERT_FALSE(before.crtcs.empty());
        const std::string primary = before.crtcOf("DUMMY0");
        if (name == FATAL_REPORT.name) {
            std::remove((dir_ + "/3d").c_str());
        }
        start({}, display);
        CrtcTable during;
        if (name != FATAL_REPORT.name) {
            ASSERT_TRUE(within(10000, [&] {
                return readCrtcTable(display).crtcOf("DUMMY0").find(" 640x480@75.00 ") != std::string::npos;
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
        if (name == ESCAPE.name) {
            key(window(display), "Escape", display);
        } else if (name == LOST_CONNECTION.name) {
            // What xkill does: the server closes the show's connection.
            runCommand(onDisplay(display) + "xdotool windowkill " + window(display));
        } else if (way.status != FATAL_REPORT.status) {
            kill(pid_, way.status < 0 ? -way.status : SIGTERM);
        }
        const ShowResult result = finish();
        // The show gives the screen back before it ends; after SIGKILL or
        // without its connection its guard does, a moment later.
        if (name == KILL.name || name == LOST_CONNECTION.name) {
            within(2000, [&] { return readCrtcTable(display) == before; });
        }
        const CrtcTable after = readCrtcTable(display);
        EXPECT_EQ(after, before) << "before:\n" << before.text() << "after:\n" << after.text();
        EXPECT_EQ(way.status < 0 ? -result.signal : result.status, way.status) << result.err;
        if (name == FATAL_REPORT.name) {
            EXPECT_NE(result.err.find("KOBALT LIBRARY ERROR: cannot open library"), std::string::npos) << result.err;
        }
        *notes += "== " + name + "\nbefore:\n" + before.text() + "during:\n" +
                  (during.screen.empty() ? "(the report ends the show at its start)\n" : during.text()) +
                  "after:\n" + after.text();
        if (name == FATAL_REPORT.name) {
            ASSERT_EQ(symlink((std::string(KASKADE_SHOW_DIR) + "/3d").c_str(), (dir_ + "/3d").c_str()), 0);
        }
    }
};

TEST_P(SeveralMonitors, OnlyThePrimaryMonitorSwitchesAndEveryWayOutGivesTheScreenBack) {
    const bool three = GetParam() == DesktopRig::Kind::ThreeMonitors;
    std::string notes;
    for (const WayOut& way : {ESCAPE, TERMINATE, FATAL_REPORT, CRASH, KILL, LOST_CONNECTION}) {
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

// The person changes the layout during the show: whatever they changed stays
// as they left it, and the show's monitor comes back at its mode, unless it
// was the one they changed.
class LayoutChangedDuringTheShow : public DesktopTest {
protected:
    DesktopRig::Kind kind() const override { return DesktopRig::Kind::TwoMonitors; }
};

TEST_F(LayoutChangedDuringTheShow, WhatThePersonChangedStaysAfterEscapeAndAfterSigkill) {
    const struct {
        const char* change;  // xrandr's arguments
        const char* screen;  // the screen after the show
        bool showsOwn;       // the show's monitor itself changed
    } changes[] = {
        {"--output DUMMY1 --pos 0x1080", "screen 1920x2104 primary DUMMY0", false},
        {"--output DUMMY1 --off", "screen 1920x1080 primary DUMMY0", false},
        {"--output DUMMY2 --mode 1024x768_75.00 --pos 3200x0", "screen 4224x1080 primary DUMMY0", false},
        {"--output DUMMY0 --mode 800x600_60.00", "screen 3200x1024 primary DUMMY0", true},
    };
    const std::string display = rig_->display();
    runCommand(onDisplay(display) + "xrandr --addmode DUMMY2 1024x768_75.00");
    std::string notes;
    for (const auto& change : changes) {
        for (const WayOut& way : {ESCAPE, KILL}) {
            SCOPED_TRACE(std::string(change.change) + ", then " + way.name);
            ASSERT_TRUE(rig_->layOut());
            const CrtcTable before = readCrtcTable(display);
            std::remove((dir_ + "/err.txt").c_str());
            start({"--fullscreen", "--verbose"}, display);
            // Once the show has seen its switch stand.
            ASSERT_TRUE(within(10000, [&] {
                return readTextFile(dir_ + "/err.txt").find("DUMMY0 switched from") != std::string::npos;
            })) << readCrtcTable(display).text();
            runCommand(onDisplay(display) + "xrandr " + change.change);
            CrtcTable expected = readCrtcTable(display);
            expected.screen = change.screen;
            for (std::string& line : expected.crtcs) {
                if (!change.showsOwn && line == expected.crtcOf("DUMMY0")) {
                    line = before.crtcOf("DUMMY0");
                }
            }
            if (way.status == ESCAPE.status) {
                key(window(display), "Escape", display);
            } else {
                kill(pid_, SIGKILL);
            }
            const ShowResult result = finish();
            within(2000, [&] { return readCrtcTable(display) == expected; });  // the guard, after SIGKILL
            const CrtcTable after = readCrtcTable(display);
            EXPECT_EQ(after.text(), expected.text()) << "before:\n" << before.text();
            if (change.showsOwn && way.status == ESCAPE.status) {
                EXPECT_NE(result.err.find("DUMMY0 was changed during the show"), std::string::npos) << result.err;
            }
            notes += std::string("== ") + change.change + ", then " + way.name + "\nbefore:\n" + before.text() +
                     "after:\n" + after.text();
        }
    }
    std::ofstream(artifactPath("layout-changed-during-the-show.txt")) << notes;
}

}  // namespace
