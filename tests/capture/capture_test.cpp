// The show captured on the fixed-step clock, seen from outside the process:
// frame-exact repeatability, the whole show as a video with its soundtrack,
// the per-part log, and a clear refusal when ffmpeg is missing.
#include "app/desktop/png_file.h"
#include "tests/audio/test_sounds.h"
#include "tests/support/fatal_catcher.h"

#include <gtest/gtest.h>

#include <dirent.h>
#include <sys/wait.h>
#include <signal.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <map>
#include <sstream>

namespace {

constexpr float PART_END_TIMES[13] = {210, 335, 395, 534, 658, 770, 960, 1127, 1307, 1498, 1758, 1925, 2269};

std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

std::string quoted(const std::string& text) { return "'" + text + "'"; }

// Runs kaskade in the show's content directory; returns its exit status.
int runShow(const std::string& arguments, const std::string& errPath, const std::string& environment = "") {
    const std::string command = "cd " + quoted(KASKADE_SHOW_DIR) + " && " + environment + " " + quoted(KASKADE_PROGRAM) +
                                " " + arguments + " > /dev/null 2> " + quoted(errPath);
    const int status = std::system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::vector<std::string> listFiles(const std::string& directory) {
    std::vector<std::string> names;
    if (DIR* dir = opendir(directory.c_str())) {
        while (dirent* entry = readdir(dir)) {
            if (entry->d_name[0] != '.') {
                names.push_back(entry->d_name);
            }
        }
        closedir(dir);
    }
    std::sort(names.begin(), names.end());
    return names;
}

class Capture : public ::testing::Test {
protected:
    void SetUp() override {
        if (std::getenv("DISPLAY") == nullptr) {
            GTEST_SKIP() << "needs an X display (the suite runs under xvfb-run)";
        }
        if (access((std::string(KASKADE_SHOW_DIR) + "/3d").c_str(), R_OK) != 0) {
            GTEST_SKIP() << "the show's content is not built in " << KASKADE_SHOW_DIR;
        }
        dir_ = makeTempDir();
    }
    std::string dir_;
};

TEST_F(Capture, TwoCapturesOfTheShowGiveByteIdenticalFrames) {
    // Four frames a second keep the whole show short; every frame is compared.
    ASSERT_EQ(runShow("--fps 4 --capture " + quoted(dir_ + "/a"), dir_ + "/a.log"), 0) << readFile(dir_ + "/a.log");
    ASSERT_EQ(runShow("--fps 4 --capture " + quoted(dir_ + "/b"), dir_ + "/b.log"), 0) << readFile(dir_ + "/b.log");
    const std::vector<std::string> first = listFiles(dir_ + "/a");
    ASSERT_EQ(first, listFiles(dir_ + "/b"));
    ASSERT_GT(first.size(), 900u);
    EXPECT_EQ(first.front(), "frame_00000.png");
    for (const std::string& name : first) {
        ASSERT_EQ(readFile(dir_ + "/a/" + name), readFile(dir_ + "/b/" + name)) << name;
    }
}

TEST_F(Capture, TheWholeShowAsAVideoWithItsSoundtrackAndOneSetUpPerPart) {
#ifdef KASKADE_SANITIZED
    GTEST_SKIP() << "the whole show at 30 frames/s is too slow under the sanitizers";
#endif
    const std::string video = dir_ + "/show.mp4";
    const std::string log = dir_ + "/show.log";
    ASSERT_EQ(runShow("--capture " + quoted(video) + " --verbose", log), 0) << readFile(log);

    // 226.9 s at 30 frames/s, with both streams cut to the show's length.
    std::map<std::string, std::string> probe;
    FILE* pipe = popen(("ffprobe -v error -count_frames -show_entries stream=codec_type,nb_read_frames "
                        "-show_entries format=duration -of default=noprint_wrappers=1 " + quoted(video)).c_str(), "r");
    ASSERT_NE(pipe, nullptr);
    char line[256];
    std::string types;
    while (std::fgets(line, sizeof line, pipe) != nullptr) {
        std::string text(line);
        const size_t equals = text.find('=');
        const std::string key = text.substr(0, equals);
        const std::string value = text.substr(equals + 1, text.find('\n') - equals - 1);
        if (key == "codec_type") {
            types += value + " ";
        } else if (key == "nb_read_frames" && value != "N/A" && probe.count("frames") == 0) {
            probe["frames"] = value;
        } else {
            probe[key] = value;
        }
    }
    pclose(pipe);
    EXPECT_EQ(types, "video audio ");
    EXPECT_NEAR(std::stod(probe["frames"]), 6808, 4);
    EXPECT_NEAR(std::stod(probe["duration"]), 226.9, 0.2);

    // Every part is set up once, in order, on the frame after the one in which
    // its predecessor's end time was first exceeded.
    std::istringstream lines(readFile(log));
    std::string text;
    int nextPart = 1;
    float previousEnd = -1;
    const float frameStep = 1000.0f / 30.0f * 0.01f;
    while (std::getline(lines, text)) {
        int part = 0;
        float time = 0;
        if (std::sscanf(text.c_str(), "part %d set up at demo time %f", &part, &time) == 2) {
            ASSERT_EQ(part, nextPart) << text;
            if (part == 1) {
                EXPECT_EQ(time, 0.0f);
            } else {
                // Frames fall on whole milliseconds: steps of 0.33 or 0.34.
                EXPECT_NEAR(time, previousEnd + frameStep, 0.01) << text;
            }
            ++nextPart;
        } else if (std::sscanf(text.c_str(), "part %d ended at demo time %f", &part, &time) == 2) {
            ASSERT_EQ(part, nextPart - 1) << text;
            EXPECT_GT(time, PART_END_TIMES[part - 1]) << text;
            EXPECT_LE(time - frameStep, PART_END_TIMES[part - 1] + 0.01) << text;
            previousEnd = time;
        }
    }
    EXPECT_EQ(nextPart, 14);
}

// Starts kaskade in the show's content directory with `arguments`, its output
// thrown away; returns its process id.
pid_t startShow(const std::vector<std::string>& arguments) {
    const pid_t pid = fork();
    if (pid == 0) {
        std::vector<char*> argv{const_cast<char*>(KASKADE_PROGRAM)};
        for (const std::string& argument : arguments) {
            argv.push_back(const_cast<char*>(argument.c_str()));
        }
        argv.push_back(nullptr);
        if (chdir(KASKADE_SHOW_DIR) == 0 && freopen("/dev/null", "w", stdout) && freopen("/dev/null", "w", stderr)) {
            execv(KASKADE_PROGRAM, argv.data());
        }
        _exit(126);
    }
    return pid;
}

// The exit status, or -1 when a signal ended the process.
int waitForShow(pid_t pid) {
    int status = 0;
    waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string frameName(int frame) {
    char name[32];
    std::snprintf(name, sizeof name, "/frame_%05d.png", frame);
    return name;
}

// What the show draws, kept: the middle frame of every part at 4 frames/s,
// against references renewed by scripts/update-reference-frames after review,
// in the whole show and in a show started at that part with --part, whose
// first frame is the whole show's first frame of the part.
TEST_F(Capture, EveryPartDrawsItsReferenceFramePlayedToOrStartedAt) {
#ifdef KASKADE_SANITIZED
    GTEST_SKIP() << "the sanitizers change no pixel; the normal build compares them";
#endif
    constexpr int FPS = 4;
    ASSERT_EQ(runShow("--fps 4 --capture " + quoted(dir_ + "/frames"), dir_ + "/frames.log"), 0);
    for (int part = 1; part <= 13; ++part) {
        SCOPED_TRACE("part " + std::to_string(part));
        const float start = part == 1 ? 0.0f : PART_END_TIMES[part - 2];
        const int middle = static_cast<int>(start + PART_END_TIMES[part - 1]) * FPS / 20;
        char name[64];
        std::snprintf(name, sizeof name, "frames/part%02d.png", part);
        PngImage reference;
        PngImage captured;
        std::string error;
        ASSERT_TRUE(readPng(testDataPath(name), &reference, &error)) << error;
        ASSERT_TRUE(readPng(dir_ + "/frames" + frameName(middle), &captured, &error)) << error;
        ASSERT_EQ(captured.pixels.size(), reference.pixels.size());
        // A few pixels may move by a rounding step; a changed scene moves thousands.
        size_t differing = 0;
        for (size_t i = 0; i < captured.pixels.size(); ++i) {
            differing += std::abs(captured.pixels[i] - reference.pixels[i]) > 16 ? 1 : 0;
        }
        EXPECT_LE(differing, captured.pixels.size() / 1000);
        if (part == 1) {
            continue;
        }

        // Frame j shows 2.5 j: part - 1's last frame is the first above its end time.
        const int first = static_cast<int>(start / 2.5f) + 2;
        const std::string started = dir_ + "/part" + std::to_string(part);
        const pid_t pid = startShow({"--part", std::to_string(part), "--fps", "4", "--capture", started});
        // Once the frame after the middle one is there, the middle one is complete.
        const std::string after = started + frameName(middle - first + 1);
        for (int waited = 0; waited < 60000 && access(after.c_str(), F_OK) != 0; waited += 20) {
            usleep(20000);
        }
        kill(pid, SIGINT);
        EXPECT_EQ(waitForShow(pid), 130);
        EXPECT_EQ(readFile(started + frameName(0)), readFile(dir_ + "/frames" + frameName(first)))
            << "first frame, frame " << first << " of the whole show";
        EXPECT_EQ(readFile(started + frameName(middle - first)), readFile(dir_ + "/frames" + frameName(middle)))
            << "middle frame";
    }
}

// Every stream's duration and the video's frame count, from ffprobe.
std::map<std::string, double> probeVideo(const std::string& video) {
    std::map<std::string, double> probe;
    FILE* pipe = popen(("ffprobe -v error -count_frames -show_entries stream=codec_type,duration,nb_read_frames "
                        "-of csv=p=0 " + quoted(video)).c_str(), "r");
    char type[16];
    double duration = 0;
    double frames = 0;
    while (pipe != nullptr && std::fscanf(pipe, " %15[a-z],%lf,%lf", type, &duration, &frames) >= 2) {
        probe[std::string(type) + " duration"] = duration;
        if (std::string(type) == "video") {
            probe["video frames"] = frames;
        }
    }
    if (pipe != nullptr) {
        pclose(pipe);
    }
    return probe;
}

TEST_F(Capture, CtrlCEndsAVideoCaptureWithAPlayableVideoOfTheFramesCaptured) {
    const std::string video = dir_ + "/cut.mp4";
    const pid_t pid = startShow({"--capture", video});
    sleep(4);
    kill(pid, SIGINT);
    EXPECT_EQ(waitForShow(pid), 130);

    const std::map<std::string, double> probe = probeVideo(video);
    ASSERT_EQ(probe.count("video frames"), 1u) << "no video stream";
    ASSERT_EQ(probe.count("audio duration"), 1u) << "no audio stream";
    const double frames = probe.at("video frames");
    EXPECT_GT(frames, 10.0);
    EXPECT_NEAR(probe.at("video duration"), frames / 30.0, 1.0 / 30.0);
    EXPECT_NEAR(probe.at("audio duration"), frames / 30.0, 1.0 / 30.0);
}

TEST_F(Capture, AVideoWithoutFfmpegIsRefusedBeforeTheShowStarts) {
    const std::string log = dir_ + "/refused.log";
    EXPECT_EQ(runShow("--capture " + quoted(dir_ + "/show.mkv"), log, "PATH=/nonexistent"), 1);
    EXPECT_NE(readFile(log).find("needs ffmpeg"), std::string::npos) << readFile(log);
    EXPECT_EQ(access((dir_ + "/show.mkv").c_str(), F_OK), -1);
}

}  // namespace
