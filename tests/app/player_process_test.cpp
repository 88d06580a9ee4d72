// The viewer's keys sent to the real kaskade program's window (xdotool on
// Xvfb): a pause stops the clock and the frames, a jump lands on the frame a
// show started at that part draws and moves the music to the part's place,
// and f takes the paused picture to fullscreen and back.
#include "app/desktop/capture/png_file.h"
#include "audio/pcm_decoder.h"
#include "tests/audio/test_sounds.h"
#include "tests/support/show_process.h"
#include "tests/support/test_x_server.h"

#include <gtest/gtest.h>

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

// The demo times r printed, in order.
std::vector<double> demoTimes(const std::string& out) {
    std::vector<double> times;
    std::istringstream lines(out);
    std::string line;
    while (std::getline(lines, line)) {
        if (line.rfind("fps: ", 0) != 0) {
            times.push_back(std::stod(line));
        }
    }
    return times;
}

// "NAME at demo time T after F frames" in the verbose log (the first such
// line, or the last): T and F, or -1 and -1.
std::pair<double, long> logged(const std::string& err, const std::string& name, bool last = false) {
    const std::string line = name + " at demo time ";
    const size_t at = last ? err.rfind(line) : err.find(line);
    double time = -1.0;
    long frames = -1;
    if (at != std::string::npos) {
        std::sscanf(err.c_str() + at + line.size(), "%lf after %ld frames", &time, &frames);
    }
    return {time, frames};
}

// The show's own soundtrack, where ShowProcess gives a short tone: the jumps
// go far into the song.
class PlayerProcess : public ShowProcess {
protected:
    void SetUp() override {
        ShowProcess::SetUp();
        if (IsSkipped()) {
            return;
        }
        std::remove((dir_ + "/harbour.mp3").c_str());
        ASSERT_EQ(symlink(KASKADE_SHOW_DIR "/harbour.mp3", (dir_ + "/harbour.mp3").c_str()), 0);
    }

    // Starts kaskade in the test's folder with `environment` (NAME=VALUE) added.
    void start(const std::vector<std::string>& arguments, const std::vector<std::string>& environment = {}) {
        environment_ = environment;
        ShowProcess::start(arguments);
    }

    // Without a window manager the window may stand a pixel off the screen; it
    // is read back from the screen, whole.
    void moveToCorner(const std::string& id, const std::string& display = "") {
        runCommand(onDisplay(display) + "xdotool windowmove " + id + " 0 0 2>/dev/null");
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
    }

    // Waits (up to 10 s) until the verbose log holds `text`.
    bool logSays(const std::string& text) {
        return within(10000, [&] { return err().find(text) != std::string::npos; });
    }

    // Waits for the show to end; its exit status (-1 when a signal ended it).
    int finish(int seconds = 20) { return ShowProcess::finish(seconds).status; }

    std::string out() const { return readTextFile(dir_ + "/out.txt"); }
    std::string err() const { return readTextFile(dir_ + "/err.txt"); }
};

TEST_F(PlayerProcess, APauseStopsTheDemoClockAndTheFramesAndOnlyPlayedTimeCounts) {
    start({"--window", "--verbose"});
    const std::string id = window();
    ASSERT_FALSE(id.empty());
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    // Each key reaches the show while xdotool sends it or within a frame after:
    // the wall-clock times around each sending bound when it took effect.
    struct Sent {
        Clock::time_point before, after;
    };
    const auto send = [&](const char* name) {
        Sent sent{Clock::now(), {}};
        key(id, name);
        sent.after = Clock::now();
        return sent;
    };
    const Sent first = send("r");
    const Sent pause = send("space");
    ASSERT_TRUE(logSays("paused at"));
    std::this_thread::sleep_for(std::chrono::seconds(2));
    send("r");
    const Sent resume = send("space");
    ASSERT_TRUE(logSays("resumed at"));
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    const Sent last = send("r");
    send("Escape");
    EXPECT_EQ(finish(), 0);

    const std::vector<double> times = demoTimes(out());
    ASSERT_EQ(times.size(), 3u) << out();
    const auto paused = logged(err(), "paused");
    const auto resumed = logged(err(), "resumed");
    EXPECT_EQ(paused.second, resumed.second) << "no frame was drawn while paused:\n" << err();
    EXPECT_DOUBLE_EQ(paused.first, resumed.first) << err();
    EXPECT_NEAR(times[1], paused.first, 0.001) << "r while paused reads the clock where it stands";
    // What was played between the first and the last r, in tenths of a
    // second, the two seconds paused left out. A key is taken between two
    // frames, r prints the last frame's time and a pause begins after the
    // frame being drawn: each end of each stretch may be a frame or two off,
    // and 50 ms more for a busy machine's scheduling. The 20 tenths paused
    // stay far outside that.
    const size_t at = out().rfind("fps: ");
    ASSERT_NE(at, std::string::npos);
    const double frame = 10.0 / std::max(1.0, std::stod(out().substr(at + 5)));
    const auto tenths = [](Clock::duration d) { return std::chrono::duration<double>(d).count() * 10.0; };
    const double least = tenths(pause.before - first.after) + tenths(last.before - resume.after);
    const double most = tenths(pause.after - first.before) + tenths(last.after - resume.before);
    const double slack = 4 * frame + 0.5;
    EXPECT_GE(times[2] - times[0], least - slack) << out();
    EXPECT_LE(times[2] - times[0], most + slack) << out();
}

// The capture's frame `frame` as red, green, blue, top row first; empty when unreadable.
std::vector<uint8_t> capturedRgb(const std::string& dir, long frame) {
    char name[32];
    std::snprintf(name, sizeof name, "/frame_%05ld.png", frame);
    PngImage image;
    std::string error;
    std::vector<uint8_t> rgb;
    if (readPng(dir + name, &image, &error)) {
        for (size_t i = 0; i < image.pixels.size(); i += static_cast<size_t>(image.channels)) {
            rgb.insert(rgb.end(), image.pixels.begin() + static_cast<long>(i),
                       image.pixels.begin() + static_cast<long>(i) + 3);
        }
    }
    return rgb;
}

size_t differingBytes(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b) {
    size_t differing = a.size() > b.size() ? a.size() - b.size() : b.size() - a.size();
    for (size_t i = 0; i < std::min(a.size(), b.size()); ++i) {
        differing += a[i] != b[i] ? 1 : 0;
    }
    return differing;
}

TEST_F(PlayerProcess, AJumpFromPartThreeDrawsTheFramesOfAShowStartedAtPartFourByteForByte) {
    constexpr int FPS = 240;
    TestXServer server(1024, 768);  // the whole window on the screen, to be read back
    ASSERT_TRUE(server.running());
    // Paused in part 3, so that part 4's first frame stays on the screen after the jump.
    start({"--window", "--part", "3", "--fps", "240", "--nosound", "--verbose"}, {"DISPLAY=" + server.display()});
    const std::string id = window(server.display());
    ASSERT_FALSE(id.empty());
    moveToCorner(id, server.display());
    key(id, "space", server.display());
    ASSERT_TRUE(logSays("paused at"));
    ASSERT_EQ(err().find("part 4 set up"), std::string::npos) << "paused too late, in part 4";
    key(id, "Right", server.display());
    ASSERT_TRUE(logSays("part 4 set up"));
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    int width = 0;
    int height = 0;
    const std::vector<uint8_t> landed = windowPixels(server.display(), id, &width, &height);
    // Played on a little and paused again: the frame the pause keeps is named in the log.
    key(id, "space", server.display());
    std::this_thread::sleep_for(std::chrono::milliseconds(250));
    key(id, "space", server.display());
    for (int waited = 0; waited < 5000 && logged(err(), "paused", true).first < 395.0; waited += 20) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    const std::vector<uint8_t> later = windowPixels(server.display(), id, &width, &height);
    key(id, "Escape", server.display());
    EXPECT_EQ(finish(), 0);
    EXPECT_NE(err().find("jump to part 4"), std::string::npos) << err();
    ASSERT_EQ(width, 640);
    ASSERT_EQ(height, 480);

    // The fixed-step clock's tick of that frame: its milliseconds are round(tick * 1000 / 240).
    const long millis = std::lround(logged(err(), "paused", true).first * 100.0);
    long tick = millis * FPS / 1000 - 1;
    while (std::llround(static_cast<double>(tick) * 1000.0 / FPS) < millis) {
        ++tick;
    }
    // Part 3's last frame is the first above demo time 395 (tick 9481, 395.0417); part 4's comes next.
    const long firstTick = 9482;
    ASSERT_GT(tick, firstTick) << err();

    // What a show started at part 4 on the same clock draws.
    start({"--part", "4", "--fps", "240", "--nosound", "--capture", "first"}, {"DISPLAY=" + server.display()});
    char last[48];
    std::snprintf(last, sizeof last, "/first/frame_%05ld.png", tick - firstTick + 1);
    for (int waited = 0; waited < 30000 && access((dir_ + last).c_str(), F_OK) != 0; waited += 20) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    kill(pid_, SIGINT);
    EXPECT_EQ(finish(), 130);
    const std::vector<uint8_t> firstFrame = capturedRgb(dir_ + "/first", 0);
    const std::vector<uint8_t> laterFrame = capturedRgb(dir_ + "/first", tick - firstTick);
    ASSERT_EQ(firstFrame.size(), 640u * 480 * 3);
    ASSERT_EQ(laterFrame.size(), 640u * 480 * 3);
    EXPECT_EQ(differingBytes(landed, firstFrame), 0u) << "part 4's first frame";
    EXPECT_EQ(differingBytes(later, laterFrame), 0u) << "frame " << tick - firstTick << " of part 4";
    EXPECT_GT(differingBytes(firstFrame, laterFrame), 10000u) << "frames that tell one tick from another";
}

TEST_F(PlayerProcess, AfterAJumpTheMusicPlaysFromThePartsPlaceInTheSong) {
    start({"--window", "--part", "3"}, {"SDL_AUDIODRIVER=disk", "SDL_DISKAUDIOFILE=" + dir_ + "/heard.raw"});
    const std::string id = window();
    ASSERT_FALSE(id.empty());
    std::this_thread::sleep_for(std::chrono::milliseconds(800));
    key(id, "Right");
    std::this_thread::sleep_for(std::chrono::milliseconds(1200));
    kill(pid_, SIGINT);
    EXPECT_EQ(finish(), 130);

    const std::string bytes = readTextFile(dir_ + "/heard.raw");
    std::vector<int16_t> heard(bytes.size() / 2);
    std::memcpy(heard.data(), bytes.data(), heard.size() * 2);
    DecodedAudio song;
    std::string error;
    ASSERT_TRUE(decodeSoundtrack(dir_ + "/harbour.mp3", &song, &error)) << error;
    // Part 4's place: 39.5 s into the song. The device takes the music in
    // buffers of 1,024 frames, and the jump comes between two of them.
    const auto place = song.samples.begin() + static_cast<long>(39.5 * 44100) * 2;
    const size_t compared = 2 * 4410;  // 0.1 s
    long found = -1;
    for (size_t at = 0; at + compared <= heard.size(); at += 2048) {
        if (std::equal(heard.begin() + static_cast<long>(at), heard.begin() + static_cast<long>(at + compared), place)) {
            found = static_cast<long>(at);
            break;
        }
    }
    ASSERT_GE(found, 0) << "part 4's music was not heard after the jump";
    // Before it, part 3's from 33.5 s on.
    size_t first = 0;
    while (first < heard.size() && heard[first] == 0) {
        ++first;
    }
    first = first / 2048 * 2048;
    EXPECT_TRUE(std::equal(heard.begin() + static_cast<long>(first), heard.begin() + static_cast<long>(first + compared),
                           song.samples.begin() + static_cast<long>(33.5 * 44100) * 2));
    EXPECT_GT(found, static_cast<long>(first)) << "part 4's music comes after part 3's";
}

TEST_F(PlayerProcess, FTakesThePausedPictureToFullscreenInItsFourThreeFrameAndBack) {
    TestXServer server(1280, 720);
    ASSERT_TRUE(server.running());
    start({"--window", "--part", "7", "--nosound", "--verbose"}, {"DISPLAY=" + server.display()});
    const std::string id = window(server.display());
    ASSERT_FALSE(id.empty());
    moveToCorner(id, server.display());
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    key(id, "space", server.display());
    ASSERT_TRUE(logSays("paused at"));
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    int width = 0;
    int height = 0;
    const std::vector<uint8_t> windowed = windowPixels(server.display(), id, &width, &height);
    ASSERT_EQ(width, 640);
    ASSERT_FALSE(windowed.empty());

    key(id, "f", server.display());
    std::this_thread::sleep_for(std::chrono::milliseconds(600));
    const std::vector<uint8_t> full = windowPixels(server.display(), id, &width, &height);
    EXPECT_EQ(width, 1280);
    EXPECT_EQ(height, 720);
    key(id, "f", server.display());
    std::this_thread::sleep_for(std::chrono::milliseconds(600));
    moveToCorner(id, server.display());  // uncovered again where it was off the screen
    int backWidth = 0;
    int backHeight = 0;
    const std::vector<uint8_t> back = windowPixels(server.display(), id, &backWidth, &backHeight);
    key(id, "Escape", server.display());
    EXPECT_EQ(finish(), 0);
    EXPECT_EQ(err().find("resumed"), std::string::npos) << "f does not resume";

    // Fullscreen: the paused picture 960 x 720 from x = 160, black bars beside it.
    ASSERT_EQ(full.size(), 1280u * 720 * 3);
    long litInBars = 0;
    double difference = 0.0;
    for (int row = 0; row < 720; ++row) {
        for (int column = 0; column < 1280; ++column) {
            const uint8_t* p = &full[(static_cast<size_t>(row) * 1280 + column) * 3];
            if (column < 160 || column >= 1120) {
                litInBars += p[0] + p[1] + p[2] > 0 ? 1 : 0;
                continue;
            }
            // The windowed picture's pixel at the same place, scaled by 1.5.
            const int x = std::min(639, (column - 160) * 2 / 3);
            const int y = std::min(479, row * 2 / 3);
            const uint8_t* w = &windowed[(static_cast<size_t>(y) * 640 + x) * 3];
            difference += std::abs(p[0] - w[0]) + std::abs(p[1] - w[1]) + std::abs(p[2] - w[2]);
        }
    }
    EXPECT_EQ(litInBars, 0);
    EXPECT_LT(difference / (960.0 * 720 * 3), 12.0) << "the held picture, scaled";
    // Back in the window, the held picture as it was.
    EXPECT_EQ(backWidth, 640);
    EXPECT_TRUE(back == windowed) << "the picture after fullscreen and back is the paused one";
}

}  // namespace
