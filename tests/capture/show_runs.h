// The real kaskade program run by a test in the show's content directory
// (KASKADE_PROGRAM, KASKADE_SHOW_DIR), and what it leaves: the helpers the
// capture tests share.
#pragma once

#include <sys/types.h>

#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

// The part end times the tests check against, written out here on purpose
// rather than taken from the show.
constexpr float PART_END_TIMES[13] = {210, 335, 395, 534, 658, 770, 960, 1127, 1307, 1498, 1758, 1925, 2269};

std::string readFile(const std::string& path);
std::string quoted(const std::string& text);

// Runs kaskade with `arguments` (shell words) to its end; its standard error
// goes to `errPath`. Returns its exit status.
int runShow(const std::string& arguments, const std::string& errPath, const std::string& environment = "");

// Starts kaskade with `arguments`, its output thrown away; returns its process id.
pid_t startShow(const std::vector<std::string>& arguments);
// Waits for it: its exit status, or -1 when a signal ended it.
int waitForShow(pid_t pid);

// "/frame_00042.png" for frame 42.
std::string frameName(int frame);

// Runs kaskade with `arguments` and "--capture directory" until PNG frame
// `frame` is complete, then ends it with SIGINT. Returns its exit status.
int captureUntil(const std::vector<std::string>& arguments, const std::string& directory, int frame);

// What ffprobe tells of a video: "video width", "video height", "video fps",
// "video frames", "video duration", "audio duration" (seconds); a key is
// missing when its stream is.
std::map<std::string, double> probeVideo(const std::string& path);

// Skips a test without a display or without the show's content.
class ShowRun : public ::testing::Test {
protected:
    void SetUp() override;
    std::string dir_;  // a fresh directory for the test's files
};
