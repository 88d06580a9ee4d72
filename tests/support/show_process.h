// The real kaskade program (KASKADE_PROGRAM) run by a test on an X display of
// its choice and seen from outside the process: its window, keys sent to it,
// its exit, what it printed, the files it captured, and the pixels the screen
// shows of its window.
#pragma once

#include <gtest/gtest.h>
#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <string>
#include <thread>
#include <vector>

struct ShowResult {
    int status = -1;  // the exit status, or -1 when a signal ended the process
    int signal = 0;   // that signal
    std::string out;
    std::string err;
};

// A whole file, bytes as they are.
std::string readTextFile(const std::string& path);
// Runs a shell command and returns what it printed.
std::string runCommand(const std::string& command);
// "DISPLAY=:N " for a display, "" for the test's own.
std::string onDisplay(const std::string& display);

// Whether `condition` holds within `milliseconds`, asked every 10 ms.
template <typename Condition>
bool within(int milliseconds, Condition condition) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    while (std::chrono::steady_clock::now() < deadline) {
        if (condition()) {
            return true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return condition();
}

// True when `out` ends with the end path's "fps: N.NN" line.
bool endsWithFrameRateLine(const std::string& out);

// What the screen shows of a window: red, green, blue per pixel of the window
// (width x height of them); pixels off the screen stay at 255, 0, 255. `own`:
// the window's own pixels as its X server holds them (for a server whose root
// window cannot be read, as Xwayland's); empty when they cannot be read.
std::vector<uint8_t> windowPixels(const std::string& display, const std::string& id, int* width, int* height,
                                  bool own = false);

// The window's rectangle on the screen, "WxH+X+Y"; "" when it cannot be read.
std::string windowRectangle(const std::string& display, const std::string& id);

// How many pixels of a width x height RGB frame are not black inside the
// rectangle x0..x1, y0..y1 (exclusive ends) and outside it.
struct LitPixels {
    long inside = 0;
    long outside = 0;
};
LitPixels litPixels(const std::vector<uint8_t>& rgb, int width, int height, int x0, int y0, int x1, int y1);

// "/frame_00042.png" for frame 42.
std::string frameName(long frame);

// What ffprobe tells of a video: "video width", "video height", "video fps",
// "video frames", "video duration", "audio duration" (seconds); a key is
// missing when its stream is.
std::map<std::string, double> probeVideo(const std::string& path);

// A fresh folder holding the show's archive (a link to KASKADE_SHOW_DIR's) and
// a 20-second soundtrack, so that the demo clock does not restart during a
// test (useShowSoundtrack: the show's own); skipped without a display or
// without the show's content. A show still running at the end is killed.
class ShowProcess : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // The show's own soundtrack in place of the 20-second tone.
    void useShowSoundtrack();
    // Starts kaskade in the test's folder, on `display` when one is given,
    // with environment_ (NAME=value) added.
    void start(const std::vector<std::string>& arguments, const std::string& display = "",
               const char* audioDriver = "dummy");
    // The show's window id, waiting for it to be mapped; "" when none came.
    std::string window(const std::string& display = "");
    // Sends key `key` (xdotool's name) to the window.
    void key(const std::string& id, const std::string& key, const std::string& display = "");
    // Waits for the show to end (killing it after `seconds`, a failure).
    ShowResult finish(int seconds = 20);
    // start and finish: the show run to its end.
    ShowResult run(const std::vector<std::string>& arguments, int seconds = 120);
    // Runs kaskade with `arguments` and "--capture DIRECTORY" until PNG frame
    // `frame` is whole, then ends it with Ctrl-C; its exit status (130).
    int captureUntil(std::vector<std::string> arguments, const std::string& directory, long frame);
    // What the show has written so far to its standard output and error.
    std::string out() const;
    std::string err() const;
    // Waits (up to `seconds`) until the show's standard error holds `text`.
    bool errSays(const std::string& text, int seconds = 20) const;

    std::string dir_;
    pid_t pid_ = -1;
    std::vector<std::string> environment_;  // NAME=value, added to the show's environment
    bool closeStandardFiles_ = false;        // start the show with descriptors 0, 1 and 2 closed
};

// What the show says at start about the tests' 20-second soundtrack.
extern const char* const SHORT_SONG_WARNING;
