// The real kaskade program on the test's X display (Xvfb): its window, its
// keys and mouse, a closed window, the fullscreen fallback, and the audio
// failures before any window, each seen from outside the process.
#include "audio/pcm_decoder.h"
#include "tests/support/resident_memory.h"
#include "tests/support/frame_compare.h"
#include "tests/support/show_process.h"
#include "tests/support/test_x_server.h"

#include <gtest/gtest.h>

#include <X11/Xlib.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <sstream>
#include <thread>

namespace {

TEST_F(ShowProcess, WindowedShowPrintsTheDemoTimeOnRAndEndsOnEscape) {
    start({"--window"});
    const std::string id = window();
    ASSERT_FALSE(id.empty());
    EXPECT_NE(runCommand("xdotool getwindowgeometry " + id).find("Geometry: 640x480"), std::string::npos);
    std::this_thread::sleep_for(std::chrono::milliseconds(600));
    runCommand("xdotool key --window " + id + " r");
    std::this_thread::sleep_for(std::chrono::milliseconds(700));
    runCommand("xdotool key --window " + id + " r");
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    runCommand("xdotool key --window " + id + " Escape");
    const ShowResult result = finish();

    EXPECT_EQ(result.status, 0);
    double first = -1;
    double second = -1;
    ASSERT_EQ(std::sscanf(result.out.c_str(), "%lf\n%lf\n", &first, &second), 2) << result.out;
    // Tenths of a second: 0.7 s between the presses reads as about 7.
    EXPECT_GT(second - first, 4.0) << result.out;
    EXPECT_LT(second - first, 20.0) << result.out;
    EXPECT_TRUE(endsWithFrameRateLine(result.out)) << result.out;
    EXPECT_EQ(result.err, SHORT_SONG_WARNING) << "the audio libraries' chatter stays off the terminal";
}

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
    event.xclient.data.l[1] = CurrentTime;
    XSendEvent(display, event.xclient.window, False, NoEventMask, &event);
    XCloseDisplay(display);
}

TEST_F(ShowProcess, MousePressAndClosedWindowRunTheEndPathLikeEscape) {
    for (const char* how : {"mouse", "close"}) {
        start({"--window"});
        const std::string id = window();
        ASSERT_FALSE(id.empty()) << how;
        if (std::string(how) == "mouse") {
            runCommand("xdotool mousemove --window " + id + " 100 100 click 3");
        } else {
            sendDeleteWindow(id);
        }
        const ShowResult result = finish();
        EXPECT_EQ(result.status, 0) << how;
        EXPECT_TRUE(endsWithFrameRateLine(result.out)) << how << ": " << result.out;
    }
}

TEST_F(ShowProcess, FullscreenFallsBackToTheScreenAsItIsAndLeavesItSo) {
    const std::string screenBefore = runCommand("xdotool getdisplaygeometry");
    start({});
    const std::string id = window();
    ASSERT_FALSE(id.empty());
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    const std::string size = screenBefore.substr(0, screenBefore.find('\n'));
    const std::string expected = "Geometry: " + size.substr(0, size.find(' ')) + "x" + size.substr(size.find(' ') + 1);
    EXPECT_NE(runCommand("xdotool getwindowgeometry " + id).find(expected), std::string::npos);
    runCommand("xdotool key --window " + id + " Escape");
    const ShowResult result = finish();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, SHORT_SONG_WARNING);
    EXPECT_EQ(runCommand("xdotool getdisplaygeometry"), screenBefore);
}

TEST_F(ShowProcess, EndingSignalsRunTheEndPathWithTheShellsStatus) {
    // With sound on, so the audio layer's initialisation is part of it.
    const struct {
        int signal;
        int status;
    } cases[] = {{SIGINT, 130}, {SIGTERM, 143}, {SIGHUP, 129}};
    for (const auto& c : cases) {
        start({"--window"});
        ASSERT_FALSE(window().empty());
        kill(pid_, c.signal);
        const ShowResult result = finish();
        EXPECT_EQ(result.status, c.status) << strsignal(c.signal);
        EXPECT_TRUE(endsWithFrameRateLine(result.out)) << strsignal(c.signal) << ": " << result.out;
    }
}

// A screen larger than the show's that offers 640 x 480 as a second RandR
// size: the fullscreen show switches to it, and every way out gives the
// original size back.
class ScreenGiveBack : public ShowProcess {
protected:
    void SetUp() override {
        ShowProcess::SetUp();
        if (IsSkipped()) {
            return;
        }
        server_ = std::make_unique<TestXServer>(1024, 768);
        ASSERT_TRUE(server_->running()) << "Xvfb did not start";
        ASSERT_TRUE(server_->addMode(640, 480));
        ASSERT_EQ(server_->currentSize(), ORIGINAL);
    }

    // The fullscreen show, once it has switched the screen.
    void startSwitched() {
        start({}, server_->display());
        ASSERT_TRUE(sizeBecomes("640x480")) << server_->currentSize();
    }

    bool sizeBecomes(const std::string& size, int withinMs = 10000) {
        for (int waited = 0; waited < withinMs; waited += 20) {
            if (server_->currentSize() == size) {
                return true;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        return server_->currentSize() == size;
    }

    static constexpr const char* ORIGINAL = "1024x768";
    std::unique_ptr<TestXServer> server_;
};

TEST_F(ScreenGiveBack, EscapeAndTheFatalReportsRestoreTheScreenThemselves) {
    startSwitched();
    runCommand("DISPLAY=" + server_->display() + " xdotool key --window " + window(server_->display()) + " Escape");
    ShowResult result = finish();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(server_->currentSize(), ORIGINAL);

    // Each fatal report keeps its message and status, and the screen is back
    // by the time the process has ended.
    std::remove((dir_ + "/3d").c_str());
    start({}, server_->display());
    result = finish();
    EXPECT_EQ(result.status, 255);
    EXPECT_NE(result.err.find("KOBALT LIBRARY ERROR: cannot open library\n"), std::string::npos) << result.err;
    EXPECT_EQ(server_->currentSize(), ORIGINAL);

    std::remove((dir_ + "/harbour.mp3").c_str());
    start({}, server_->display());
    result = finish();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "BASS ERROR: Can't play the file\n");
    EXPECT_EQ(server_->currentSize(), ORIGINAL);
}

TEST_F(ScreenGiveBack, ACrashOrAKillLeavesItToTheGuard) {
    // A crash: the screen is restored before the signal ends the process.
    startSwitched();
    kill(pid_, SIGSEGV);
    ShowResult result = finish();
    EXPECT_EQ(result.signal, SIGSEGV);
    EXPECT_EQ(server_->currentSize(), ORIGINAL);

    // SIGKILL cannot be caught: the guard sees the show gone and restores.
    startSwitched();
    kill(pid_, SIGKILL);
    result = finish();
    EXPECT_EQ(result.signal, SIGKILL);
    EXPECT_TRUE(sizeBecomes(ORIGINAL, 2000)) << server_->currentSize();
}

TEST_F(ScreenGiveBack, TheGuardIsNoChildOfTheShowAndACrashWithoutItStillRestores) {
    startSwitched();
    // The guard is init's child: never a zombie of the show, and out of the
    // way of `killall kaskade`.
    // The guard of this test's screen (others may run beside it).
    std::string guard;
    std::stringstream guards(runCommand("pgrep -x kaskade-guard"));
    for (std::string pid; std::getline(guards, pid);) {
        std::string environment = readTextFile("/proc/" + pid + "/environ");
        std::replace(environment.begin(), environment.end(), '\0', '\n');
        if (("\n" + environment).find("\nDISPLAY=" + server_->display() + "\n") != std::string::npos) {
            guard = pid;
        }
    }
    ASSERT_FALSE(guard.empty()) << "no guard runs";
    EXPECT_EQ(runCommand("ps -o pid= --ppid " + std::to_string(pid_)), "") << "the show has children";
    // With its guard killed, a crashing show gives the screen back itself.
    ASSERT_EQ(kill(static_cast<pid_t>(std::stol(guard)), SIGKILL), 0);
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    kill(pid_, SIGSEGV);
    const ShowResult result = finish();
    EXPECT_EQ(result.signal, SIGSEGV);
    EXPECT_EQ(server_->currentSize(), ORIGINAL);
}

TEST_F(ScreenGiveBack, WithTheStandardDescriptorsClosedRIsHarmlessAndEscapeGivesTheScreenBack) {
    // As some launchers start a program: the X connection must not become
    // standard output, where r would write into it.
    closeStandardFiles_ = true;
    startSwitched();
    const std::string id = window(server_->display());
    for (int press = 0; press < 3; ++press) {
        key(id, "r", server_->display());
    }
    key(id, "Escape", server_->display());
    EXPECT_EQ(finish().status, 0);
    EXPECT_EQ(server_->currentSize(), ORIGINAL);
}

TEST_F(ShowProcess, TwoCtrlCsDuringAPngCaptureLeaveOnlyWholeFrames) {
    for (int run = 0; run < 20; ++run) {
        const std::string directory = dir_ + "/run" + std::to_string(run);
        start({"--size", "1920x1080", "--nosound", "--capture", directory});
        // Once the first frame is there the writer is busy with the next ones.
        ASSERT_TRUE(within(60000, [&] { return access((directory + "/frame_00000.png").c_str(), F_OK) == 0; }));
        kill(pid_, SIGINT);
        // Apart, so that the first is taken before the second comes (two
        // pending ones would be one).
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
        kill(pid_, SIGINT);
        EXPECT_EQ(finish().status, 130);
        for (const auto& entry : std::filesystem::directory_iterator(directory)) {
            const std::string name = entry.path().filename();
            PngImage frame;
            std::string error;
            EXPECT_EQ(name.rfind("frame_", 0), 0u) << name;
            EXPECT_TRUE(readPng(entry.path(), &frame, &error)) << "run " << run << ": " << error;
        }
    }
}

// Frames the verbose log says part `part` drew, or -1.
long framesOfPart(const std::string& log, int part) {
    const std::string line = "part " + std::to_string(part) + " ended at demo time ";
    const size_t at = log.find(line);
    long frames = -1;
    if (at != std::string::npos) {
        std::sscanf(log.c_str() + at + line.size(), "%*f: %ld frames", &frames);
    }
    return frames;
}

TEST_F(ShowProcess, StartingAtTheLastPartPlaysItFromItsPlaceInTheShow) {
    // 192.5 s to 226.9 s at 30 frames/s; its first frame is the one after 1925.
    start({"--part", "13", "--fps", "30", "--nosound", "--verbose"});
    ShowResult result = finish(120);
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(endsWithFrameRateLine(result.out)) << result.out;
    EXPECT_NEAR(framesOfPart(result.err, 13), 1032, 1) << result.err;
    EXPECT_NE(result.err.find("part 13 set up at demo time 1925.670"), std::string::npos) << result.err;

    // Live, the music starts 192.5 s into the song: what the audio device got
    // (SDL's disk driver writes it out) is the decoded song from there on.
    std::remove((dir_ + "/harbour.mp3").c_str());
    ASSERT_EQ(symlink((std::string(KASKADE_SHOW_DIR) + "/harbour.mp3").c_str(), (dir_ + "/harbour.mp3").c_str()), 0);
    setenv("SDL_DISKAUDIOFILE", (dir_ + "/heard.raw").c_str(), 1);
    start({"--part", "13"}, "", "disk");
    unsetenv("SDL_DISKAUDIOFILE");
    ASSERT_FALSE(window().empty());
    // Until a tenth of a second of music is out (a loaded machine starts slowly).
    within(20000, [&] {
        const std::string bytes = readTextFile(dir_ + "/heard.raw");
        const size_t sound = bytes.find_first_not_of('\0');
        return sound != std::string::npos && bytes.size() - sound > 4 * 4410 + 4096 * 4;
    });
    kill(pid_, SIGINT);
    result = finish();
    EXPECT_EQ(result.status, 130);

    const std::string bytes = readTextFile(dir_ + "/heard.raw");
    std::vector<int16_t> heard(bytes.size() / 2);
    std::memcpy(heard.data(), bytes.data(), heard.size() * 2);
    DecodedAudio song;
    std::string error;
    ASSERT_TRUE(decodeSoundtrack(dir_ + "/harbour.mp3", &song, &error)) << error;
    // Until the music starts the device plays silence, in whole buffers of 1,024 frames.
    size_t first = 0;
    while (first < heard.size() && heard[first] == 0) {
        ++first;
    }
    first = first / 2048 * 2048;
    const size_t compared = 2 * 4410;  // 0.1 s
    ASSERT_GE(heard.size(), first + compared) << "no music was heard";
    const size_t at = static_cast<size_t>(192.5 * 44100) * 2;
    EXPECT_TRUE(std::equal(heard.begin() + static_cast<long>(first), heard.begin() + static_cast<long>(first + compared),
                           song.samples.begin() + static_cast<long>(at)))
        << "the music did not start 192.5 s into the song";
}

TEST_F(ShowProcess, ALoopingShowGoesFromTheLastPartBackToTheFirstUntilEnded) {
    // AddressSanitizer holds freed memory back for a while (its quarantine,
    // 256 MB) to catch late uses; under it that memory would count as growth,
    // so this show gets its freed memory reused at once.
    const char* sanitizerOptions = std::getenv("ASAN_OPTIONS");
    const std::string savedOptions = sanitizerOptions == nullptr ? "" : sanitizerOptions;
    setenv("ASAN_OPTIONS", (savedOptions + (savedOptions.empty() ? "" : ":") +
                            "quarantine_size_mb=0:thread_local_quarantine_size_kb=0").c_str(), 1);
    // A first pass of part 13 alone, then whole passes.
    start({"--loop", "--part", "13", "--fps", "10", "--nosound", "--verbose"});
    if (sanitizerOptions == nullptr) {
        unsetenv("ASAN_OPTIONS");
    } else {
        setenv("ASAN_OPTIONS", savedOptions.c_str(), 1);
    }
    long resident[2] = {};
    for (int pass = 2; pass <= 3; ++pass) {
        const std::string line = "the show starts over: pass " + std::to_string(pass);
        for (int waited = 0; waited < 120000 && readTextFile(dir_ + "/err.txt").find(line) == std::string::npos;
             waited += 50) {
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        resident[pass - 2] = residentKiB(pid_);
    }
    kill(pid_, SIGINT);
    const ShowResult result = finish();
    EXPECT_EQ(result.status, 130);
    EXPECT_TRUE(endsWithFrameRateLine(result.out)) << result.out;

    size_t at = 0;
    for (const char* line : {"part 13 ended", "the show starts over: pass 2", "part 1 set up", "part 7 set up",
                             "part 13 ended", "the show starts over: pass 3", "part 1 set up"}) {
        at = result.err.find(line, at);
        ASSERT_NE(at, std::string::npos) << "no '" << line << "' where expected in:\n" << result.err;
    }
    EXPECT_GT(resident[0], 0);
    EXPECT_LE(resident[1], resident[0] * 105 / 100) << resident[0] << " KiB after the first pass";
}

TEST_F(ShowProcess, AWideWindowHoldsTheFourThreePictureBetweenBlackBars) {
    TestXServer server(1920, 1080);
    ASSERT_TRUE(server.running());
    // Part 2 lays large images over its frame; after 27 s the credits too.
    start({"--size", "1920x1080", "--part", "2", "--nosound"}, server.display());
    const std::string id = window(server.display());
    ASSERT_FALSE(id.empty());
    std::this_thread::sleep_for(std::chrono::milliseconds(1500));
    int width = 0;
    int height = 0;
    const std::vector<uint8_t> rgb = windowPixels(server.display(), id, &width, &height);
    runCommand("DISPLAY=" + server.display() + " xdotool key --window " + id + " Escape");
    EXPECT_EQ(finish().status, 0);
    ASSERT_EQ(width, 1920);
    ASSERT_EQ(height, 1080);
    // The picture is 1440 x 1080 from x = 240: nothing but black beside it.
    long litInBars = 0;
    long litInPicture = 0;
    for (int row = 0; row < height; ++row) {
        for (int column = 0; column < width; ++column) {
            const uint8_t* p = &rgb[(static_cast<size_t>(row) * width + column) * 3];
            if (p[0] == 255 && p[1] == 0 && p[2] == 255) {
                continue;  // off the screen
            }
            const bool lit = p[0] + p[1] + p[2] > 0;
            (column < 240 || column >= 1680 ? litInBars : litInPicture) += lit ? 1 : 0;
        }
    }
    EXPECT_EQ(litInBars, 0);
    EXPECT_GT(litInPicture, 1440L * 1080 * 9 / 10);
}

// Which columns (or rows, `rows`) of a width x height RGB frame are black throughout.
std::vector<int> blackLines(const std::vector<uint8_t>& rgb, int width, int height, bool rows) {
    std::vector<int> black;
    const int lines = rows ? height : width;
    const int along = rows ? width : height;
    for (int line = 0; line < lines; ++line) {
        bool dark = true;
        for (int i = 0; i < along && dark; ++i) {
            const size_t pixel = rows ? static_cast<size_t>(line) * width + i : static_cast<size_t>(i) * width + line;
            dark = rgb[pixel * 3] + rgb[pixel * 3 + 1] + rgb[pixel * 3 + 2] == 0;
        }
        if (dark) {
            black.push_back(line);
        }
    }
    return black;
}

TEST_F(ShowProcess, AnOddMarginsSparePixelGoesToTheSameBarInAWindowAndACapture) {
    TestXServer server(1024, 768);
    ASSERT_TRUE(server.running());
    const struct {
        const char* size;
        bool rows;
        std::vector<int> bars;
    } frames[] = {{"643x480", false, {0, 641, 642}}, {"640x483", true, {0, 481, 482}}};
    for (const auto& frame : frames) {
        // Part 13's picture has no black line of its own.
        const std::string directory = dir_ + "/" + frame.size;
        start({"--part", "13", "--fps", "4", "--nosound", "--size", frame.size, "--capture", directory});
        const std::string second = directory + "/frame_00001.png";
        for (int waited = 0; waited < 60000 && access(second.c_str(), F_OK) != 0; waited += 20) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        kill(pid_, SIGINT);
        EXPECT_EQ(finish().status, 130);
        const PngImage captured = loadPng(directory + "/frame_00000.png");
        std::vector<uint8_t> capturedRgb;
        for (size_t i = 0; i < captured.pixels.size(); i += static_cast<size_t>(captured.channels)) {
            capturedRgb.insert(capturedRgb.end(), &captured.pixels[i], &captured.pixels[i] + 3);
        }
        EXPECT_EQ(blackLines(capturedRgb, captured.width, captured.height, frame.rows), frame.bars)
            << frame.size << " captured";

        start({"--part", "13", "--nosound", "--size", frame.size}, server.display());
        const std::string id = window(server.display());
        ASSERT_FALSE(id.empty());
        std::this_thread::sleep_for(std::chrono::milliseconds(1000));
        int width = 0;
        int height = 0;
        const std::vector<uint8_t> rgb = windowPixels(server.display(), id, &width, &height);
        key(id, "Escape", server.display());
        EXPECT_EQ(finish().status, 0);
        EXPECT_EQ(blackLines(rgb, width, height, frame.rows), frame.bars) << frame.size << " in a window";
    }
}

TEST_F(ShowProcess, DesktopIsFullscreenAtTheDisplaysOwnSizeWithoutASwitch) {
    TestXServer server(1024, 768);
    ASSERT_TRUE(server.running());
    ASSERT_TRUE(server.addMode(640, 480));  // a switch would be possible
    start({"--desktop", "--nosound"}, server.display());
    const std::string id = window(server.display());
    ASSERT_FALSE(id.empty());
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    EXPECT_NE(runCommand("DISPLAY=" + server.display() + " xdotool getwindowgeometry " + id).find("Geometry: 1024x768"),
              std::string::npos);
    EXPECT_EQ(server.currentSize(), "1024x768");
    runCommand("DISPLAY=" + server.display() + " xdotool key --window " + id + " Escape");
    EXPECT_EQ(finish().status, 0);
    EXPECT_EQ(server.currentSize(), "1024x768");
}

TEST_F(ShowProcess, MultisamplingTheDisplayDoesNotOfferIsRefused) {
    start({"--aa", "64", "--nosound"});
    const ShowResult result = finish();
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.err.find("the display offers no 64-sample multisampling (it offers: "), std::string::npos)
        << result.err;
}

TEST_F(ShowProcess, NoSoundRunsWithoutASoundtrack) {
    std::remove((dir_ + "/harbour.mp3").c_str());
    start({"--nosound"});
    const std::string id = window();
    ASSERT_FALSE(id.empty());
    runCommand("xdotool key --window " + id + " Escape");
    const ShowResult result = finish();
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(endsWithFrameRateLine(result.out)) << result.out;
}

TEST_F(ShowProcess, AMissingSoundtrackIsFatalBeforeAnyWindow) {
    std::remove((dir_ + "/harbour.mp3").c_str());
    start({"--window"});
    const ShowResult result = finish();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "BASS ERROR: Can't play the file\n");
    EXPECT_EQ(result.out, "");
}

TEST_F(ShowProcess, HelpAndVersionPrintAndExitZero) {
    start({"--help"});
    ShowResult result = finish();
    EXPECT_EQ(result.status, 0);
    EXPECT_NE(result.out.find("usage: kaskade"), std::string::npos);
    start({"--version"});
    result = finish();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out.rfind("kaskade ", 0), 0u);
}

}  // namespace
