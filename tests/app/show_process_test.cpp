// The real kaskade program on an X display (Xvfb), seen from outside the
// process, where only a whole process shows it: every way out with its exit
// status, the screen given back, the window's picture at any size, the
// refusals before any window, the music heard where a start or a jump puts it,
// a pause, f, and a looping show.
#include "audio/pcm_decoder.h"
#include "tests/support/frame_compare.h"
#include "tests/support/show_process.h"
#include "tests/support/desktop_rig.h"

#include <gtest/gtest.h>

#include <X11/Xlib.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <memory>
#include <sstream>

namespace {

// What a window manager's close button sends.
void sendDeleteWindow(const std::string& id) {
    Display* display = XOpenDisplay(nullptr);
    ASSERT_NE(display, nullptr);
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = std::stoul(id);
    event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(XInternAtom(display, "WM_DELETE_WINDOW", False));
    XSendEvent(display, event.xclient.window, False, NoEventMask, &event);
    XCloseDisplay(display);
}

// The demo times r printed, in order.
std::vector<double> demoTimes(const std::string& out) {
    std::vector<double> times;
    std::istringstream lines(out);
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("fps: ", 0) != 0) {
            times.push_back(std::stod(line));
        }
    }
    return times;
}

TEST_F(ShowProcess, EveryWayOutOfAWindowedShowRunsTheEndPathWithItsStatus) {
    const struct {
        const char* way;
        int status;
    } ways[] = {{"Escape", 0}, {"mouse", 0}, {"close", 0}, {"SIGINT", 130}, {"SIGTERM", 143}, {"SIGHUP", 129}};
    for (const auto& w : ways) {
        start({"--window"});
        const std::string id = window();
        ASSERT_FALSE(id.empty()) << w.way;
        const std::string way = w.way;
        if (way == "Escape") {
            EXPECT_NE(runCommand("xdotool getwindowgeometry " + id).find("Geometry: 640x480"), std::string::npos);
            key(id, "r");
            ASSERT_TRUE(within(5000, [&] { return !out().empty(); }));
            key(id, "r");
            key(id, "Escape");
        } else if (way == "mouse") {
            runCommand("xdotool mousemove --window " + id + " 100 100 click 3");
        } else if (way == "close") {
            sendDeleteWindow(id);
        } else {
            kill(pid_, way == "SIGINT" ? SIGINT : way == "SIGTERM" ? SIGTERM : SIGHUP);
        }
        const ShowResult result = finish();
        EXPECT_EQ(result.status, w.status) << w.way;
        EXPECT_TRUE(endsWithFrameRateLine(result.out)) << w.way << ": " << result.out;
        if (way == "Escape") {
            // r prints the demo time in tenths of a second, as "%f".
            const std::vector<double> times = demoTimes(result.out);
            ASSERT_EQ(times.size(), 2u) << result.out;
            EXPECT_LE(times[0], times[1]);
            EXPECT_NE(result.out.find(".", result.out.find('\n') - 7), std::string::npos) << result.out;
            EXPECT_EQ(result.err, SHORT_SONG_WARNING) << "the audio libraries' chatter stays off the terminal";
        }
    }
}

TEST_F(ShowProcess, RefusalsComeBeforeAnyWindowAndNoSoundNeedsNoSoundtrack) {
    ShowResult result = run({"--aa", "64", "--nosound"});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.err.find("the display offers no 64-sample multisampling (it offers: "), std::string::npos)
        << result.err;
    result = run({"--help"});
    EXPECT_EQ(result.status, 0);
    EXPECT_NE(result.out.find("usage: kaskade"), std::string::npos);
    result = run({"--version"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out.rfind("kaskade ", 0), 0u);

    std::remove((dir_ + "/harbour.mp3").c_str());
    result = run({"--window"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "BASS ERROR: Can't play the file\n");
    EXPECT_EQ(result.out, "");
    start({"--nosound"});
    const std::string id = window();
    ASSERT_FALSE(id.empty());
    key(id, "Escape");
    result = finish();
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(endsWithFrameRateLine(result.out)) << result.out;
}

TEST_F(ShowProcess, FullscreenFallsBackToTheScreenAsItIsAndLeavesItSo) {
    const std::string screen = runCommand("xdotool getdisplaygeometry");
    start({});
    const std::string id = window();
    ASSERT_FALSE(id.empty());
    const std::string size = screen.substr(0, screen.find('\n'));
    const std::string expected = "Geometry: " + size.substr(0, size.find(' ')) + "x" + size.substr(size.find(' ') + 1);
    EXPECT_TRUE(within(5000, [&] {
        return runCommand("xdotool getwindowgeometry " + id).find(expected) != std::string::npos;
    }));
    key(id, "Escape");
    const ShowResult result = finish();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, SHORT_SONG_WARNING);
    EXPECT_EQ(runCommand("xdotool getdisplaygeometry"), screen);
}

// A screen larger than the show's that offers 640 x 480 as a second RandR
// size: the fullscreen show switches to it, every way out gives the original
// size back, and --desktop takes the screen as it is.
TEST_F(ShowProcess, TheSwitchedScreenComesBackOnEveryWayOut) {
    std::string why;
    const auto rig = DesktopRig::screen(1024, 768, dir_, &why);
    ASSERT_NE(rig, nullptr) << why;
    DesktopRig& server = *rig;
    ASSERT_TRUE(server.addMode(640, 480));
    const std::string original = "1024x768";
    ASSERT_EQ(server.currentSize(), original);
    const auto sizeBecomes = [&](const std::string& size) {
        return within(10000, [&] { return server.currentSize() == size; });
    };
    const auto startSwitched = [&] {
        start({}, server.display());
        return sizeBecomes("640x480");
    };

    ASSERT_TRUE(startSwitched()) << server.currentSize() << readTextFile(dir_ + "/err.txt");
    key(window(server.display()), "Escape", server.display());
    EXPECT_EQ(finish().status, 0);
    EXPECT_EQ(server.currentSize(), original) << "after Escape";

    // A crash: the screen is restored before the signal ends the process. The
    // guard is init's child: never a zombie of the show, out of the way of
    // `killall kaskade`; with it killed, the crashing show restores itself.
    ASSERT_TRUE(startSwitched());
    EXPECT_EQ(runCommand("ps -o pid= --ppid " + std::to_string(pid_)), "") << "the show has children";
    std::string guard;
    std::stringstream guards(runCommand("pgrep -x kaskade-guard"));
    for (std::string pid; std::getline(guards, pid);) {
        std::string environment = readTextFile("/proc/" + pid + "/environ");
        std::replace(environment.begin(), environment.end(), '\0', '\n');
        if (("\n" + environment).find("\nDISPLAY=" + server.display() + "\n") != std::string::npos) {
            guard = pid;
        }
    }
    ASSERT_FALSE(guard.empty()) << "no guard runs";
    ASSERT_EQ(kill(static_cast<pid_t>(std::stol(guard)), SIGKILL), 0);
    ASSERT_TRUE(within(5000, [&] { return kill(static_cast<pid_t>(std::stol(guard)), 0) != 0; }));
    kill(pid_, SIGSEGV);
    EXPECT_EQ(finish().signal, SIGSEGV);
    EXPECT_EQ(server.currentSize(), original) << "after a crash without its guard";

    // SIGKILL cannot be caught: the guard sees the show gone and restores.
    ASSERT_TRUE(startSwitched());
    kill(pid_, SIGKILL);
    EXPECT_EQ(finish().signal, SIGKILL);
    EXPECT_TRUE(sizeBecomes(original)) << "after SIGKILL: " << server.currentSize();

    // As some launchers start a program, with descriptors 0 to 2 closed: the
    // X connection must not become standard output, where r would write into it.
    closeStandardFiles_ = true;
    ASSERT_TRUE(startSwitched());
    for (int press = 0; press < 3; ++press) {
        key(window(server.display()), "r", server.display());
    }
    key(window(server.display()), "Escape", server.display());
    EXPECT_EQ(finish().status, 0);
    EXPECT_EQ(server.currentSize(), original) << "after Escape with the standard descriptors closed";
    closeStandardFiles_ = false;

    // Each fatal report keeps its message and status, the screen back by the time the process has ended.
    std::remove((dir_ + "/3d").c_str());
    start({}, server.display());
    ShowResult result = finish();
    EXPECT_EQ(result.status, 255);
    EXPECT_NE(result.err.find("KOBALT LIBRARY ERROR: cannot open library\n"), std::string::npos) << result.err;
    EXPECT_EQ(server.currentSize(), original);
    std::remove((dir_ + "/harbour.mp3").c_str());
    start({}, server.display());
    result = finish();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "BASS ERROR: Can't play the file\n");
    EXPECT_EQ(server.currentSize(), original);
    ASSERT_EQ(symlink(KASKADE_SHOW_DIR "/3d", (dir_ + "/3d").c_str()), 0);

    start({"--desktop", "--nosound"}, server.display());
    const std::string id = window(server.display());
    ASSERT_FALSE(id.empty());
    EXPECT_TRUE(within(5000, [&] {
        return runCommand(onDisplay(server.display()) + "xdotool getwindowgeometry " + id).find("1024x768") !=
               std::string::npos;
    }));
    EXPECT_EQ(server.currentSize(), original) << "--desktop switches nothing";
    key(id, "Escape", server.display());
    EXPECT_EQ(finish().status, 0);
}

// Which columns (or rows, `rows`) of a width x height RGB frame are black throughout.
std::vector<int> blackLines(const std::vector<uint8_t>& rgb, int width, int height, bool rows) {
    std::vector<int> black;
    for (int line = 0; line < (rows ? height : width); ++line) {
        bool dark = true;
        for (int i = 0; i < (rows ? width : height) && dark; ++i) {
            const size_t pixel = rows ? static_cast<size_t>(line) * width + i : static_cast<size_t>(i) * width + line;
            dark = rgb[pixel * 3] + rgb[pixel * 3 + 1] + rgb[pixel * 3 + 2] == 0;
        }
        if (dark) {
            black.push_back(line);
        }
    }
    return black;
}

TEST_F(ShowProcess, AWindowOrCaptureOfAnySizeHoldsTheFourThreePictureBetweenBlackBars) {
    std::string why;
    const auto rig = DesktopRig::screen(1920, 1080, dir_, &why);
    ASSERT_NE(rig, nullptr) << why;
    DesktopRig& server = *rig;
    // Part 13's picture has no black line of its own. The 1920 x 1080
    // picture is 1440 x 1080 from x = 240; an odd margin's spare pixel goes to
    // the right or bottom bar, in a window as in a capture.
    std::vector<int> wideBars;
    for (int x = 0; x < 1920; ++x) {
        if (x < 240 || x >= 1680) {
            wideBars.push_back(x);
        }
    }
    const struct {
        const char* size;
        bool rows;
        std::vector<int> bars;
    } frames[] = {{"1920x1080", false, wideBars}, {"643x480", false, {0, 641, 642}}, {"640x483", true, {0, 481, 482}}};
    for (const auto& frame : frames) {
        const std::string size = frame.size;
        const std::vector<int>& bars = frame.bars;
        start({"--part", "13", "--nosound", "--size", size}, server.display());
        const std::string id = window(server.display());
        ASSERT_FALSE(id.empty());
        int width = 0;
        int height = 0;
        std::vector<uint8_t> rgb;
        // Until the picture is drawn.
        EXPECT_TRUE(within(10000, [&] {
            rgb = windowPixels(server.display(), id, &width, &height);
            return !rgb.empty() && litPixels(rgb, width, height, 0, 0, width, height).inside > width * height / 2;
        })) << size;
        key(id, "Escape", server.display());
        EXPECT_EQ(finish().status, 0);
        EXPECT_EQ(blackLines(rgb, width, height, frame.rows), bars) << size << " in a window";

        const std::string directory = "capture" + size;
        ASSERT_EQ(captureUntil({"--part", "13", "--fps", "4", "--nosound", "--size", size}, directory, 0), 130);
        const PngImage captured = loadPng(dir_ + "/" + directory + frameName(0));
        std::vector<uint8_t> capturedRgb;
        for (size_t i = 0; i < captured.pixels.size(); i += static_cast<size_t>(captured.channels)) {
            capturedRgb.insert(capturedRgb.end(), &captured.pixels[i], &captured.pixels[i] + 3);
        }
        EXPECT_EQ(blackLines(capturedRgb, captured.width, captured.height, frame.rows), bars) << size << " captured";
    }
}

// The song as the audio device got it (SDL's disk driver writes it out), from
// the first non-silent buffer of 1,024 frames on.
std::vector<int16_t> heardMusic(const std::string& path) {
    const std::string bytes = readTextFile(path);
    std::vector<int16_t> heard(bytes.size() / 2);
    std::memcpy(heard.data(), bytes.data(), heard.size() * 2);
    size_t first = 0;
    while (first < heard.size() && heard[first] == 0) {
        ++first;
    }
    return std::vector<int16_t>(heard.begin() + static_cast<long>(first / 2048 * 2048), heard.end());
}

// Where in `heard`, at a device buffer's start, 0.1 s of the song from `seconds` begins; -1 when nowhere.
long whereHeard(const std::vector<int16_t>& heard, const DecodedAudio& song, double seconds) {
    const auto place = song.samples.begin() + static_cast<long>(seconds * 44100) * 2;
    const size_t compared = 2 * 4410;
    for (size_t at = 0; at + compared <= heard.size(); at += 2048) {
        if (std::equal(heard.begin() + static_cast<long>(at), heard.begin() + static_cast<long>(at + compared),
                       place)) {
            return static_cast<long>(at);
        }
    }
    return -1;
}

TEST_F(ShowProcess, TheMusicPlaysFromThePartsPlaceAtAStartAndAfterAJump) {
    useShowSoundtrack();
    const std::string heardPath = dir_ + "/heard.raw";
    environment_ = {"SDL_DISKAUDIOFILE=" + heardPath};
    DecodedAudio song;
    std::string error;
    ASSERT_TRUE(decodeSoundtrack(dir_ + "/harbour.mp3", &song, &error)) << error;
    start({"--window", "--part", "3"}, "", "disk");
    const std::string id = window();
    ASSERT_FALSE(id.empty());
    // Part 3 starts 33.5 s into the song.
    ASSERT_TRUE(within(20000, [&] { return heardMusic(heardPath).size() > 2 * 4410; })) << "no music was heard";
    EXPECT_EQ(whereHeard(heardMusic(heardPath), song, 33.5), 0) << "the music did not start at part 3's place";
    // Right: part 4's, 39.5 s in, after it.
    key(id, "Right");
    EXPECT_TRUE(within(20000, [&] { return whereHeard(heardMusic(heardPath), song, 39.5) > 0; }))
        << "part 4's music was not heard after the jump";
    kill(pid_, SIGINT);
    EXPECT_EQ(finish().status, 130);
}

TEST_F(ShowProcess, APauseHoldsTheClockAndThePictureWhichFTakesToFullscreenAndBack) {
    std::string why;
    const auto rig = DesktopRig::screen(1280, 720, dir_, &why);
    ASSERT_NE(rig, nullptr) << why;
    DesktopRig& server = *rig;
    start({"--window", "--part", "7", "--nosound", "--verbose"}, server.display());
    const std::string id = window(server.display());
    ASSERT_FALSE(id.empty());
    // Without a window manager the window may stand a pixel off the screen: it is read back whole.
    runCommand(onDisplay(server.display()) + "xdotool windowmove --sync " + id + " 0 0");
    key(id, "space", server.display());
    ASSERT_TRUE(errSays("paused at"));
    key(id, "r", server.display());
    ASSERT_TRUE(within(5000, [&] { return !out().empty(); }));
    int width = 0;
    int height = 0;
    const std::vector<uint8_t> windowed = windowPixels(server.display(), id, &width, &height);
    ASSERT_EQ(width, 640);

    key(id, "f", server.display());
    std::vector<uint8_t> full;
    EXPECT_TRUE(within(10000, [&] {
        full = windowPixels(server.display(), id, &width, &height);
        const LitPixels lit = litPixels(full, width, height, 160, 0, 1120, 720);
        return width == 1280 && height == 720 && lit.outside == 0 && lit.inside > 960 * 720 / 2;
    })) << "the held picture in its 960 x 720 frame between black bars";
    key(id, "f", server.display());
    std::vector<uint8_t> back;
    EXPECT_TRUE(within(10000, [&] {
        runCommand(onDisplay(server.display()) + "xdotool windowmove --sync " + id + " 0 0");
        back = windowPixels(server.display(), id, &width, &height);
        return width == 640 && back == windowed;
    })) << "the picture after fullscreen and back is the paused one";
    key(id, "r", server.display());
    key(id, "space", server.display());
    ASSERT_TRUE(errSays("resumed at"));
    key(id, "Escape", server.display());
    EXPECT_EQ(finish().status, 0);

    // The clock stood: r read the same time twice, pause and resume name the same time and frame.
    const std::vector<double> times = demoTimes(out());
    ASSERT_EQ(times.size(), 2u) << out();
    EXPECT_DOUBLE_EQ(times[0], times[1]);
    const std::string log = err();
    const size_t paused = log.find("paused at demo time ");
    const size_t resumed = log.find("resumed at demo time ");
    ASSERT_NE(resumed, std::string::npos);
    EXPECT_EQ(log.substr(paused + 7, log.find('\n', paused) - paused - 7),
              log.substr(resumed + 8, log.find('\n', resumed) - resumed - 8));
    EXPECT_NEAR(std::stod(log.substr(paused + 20)), times[0], 0.001);

    // Fullscreen: the held picture 960 x 720 from x = 160, scaled by 1.5.
    ASSERT_EQ(full.size(), 1280u * 720 * 3);
    double difference = 0.0;
    for (int row = 0; row < 720; ++row) {
        for (int column = 160; column < 1120; ++column) {
            const uint8_t* p = &full[(static_cast<size_t>(row) * 1280 + column) * 3];
            const uint8_t* w = &windowed[(static_cast<size_t>(std::min(479, row * 2 / 3)) * 640 +
                                          std::min(639, (column - 160) * 2 / 3)) * 3];
            difference += std::abs(p[0] - w[0]) + std::abs(p[1] - w[1]) + std::abs(p[2] - w[2]);
        }
    }
    EXPECT_LT(difference / (960.0 * 720 * 3), 12.0) << "the held picture, scaled";
}

TEST_F(ShowProcess, ALoopingShowGoesFromTheLastPartBackToTheFirstUntilEnded) {
    // A first pass of part 13 alone, then whole passes.
    start({"--loop", "--part", "13", "--fps", "10", "--nosound", "--verbose"});
    ASSERT_TRUE(errSays("the show starts over: pass 2", 120));
    ASSERT_TRUE(errSays("part 2 set up", 60));
    kill(pid_, SIGINT);
    const ShowResult result = finish();
    EXPECT_EQ(result.status, 130);
    EXPECT_TRUE(endsWithFrameRateLine(result.out)) << result.out;
    size_t at = 0;
    for (const char* line : {"part 13 ended", "the show starts over: pass 2", "part 1 set up", "part 2 set up"}) {
        at = result.err.find(line, at);
        ASSERT_NE(at, std::string::npos) << "no '" << line << "' where expected in:\n" << result.err;
    }
}

}  // namespace
