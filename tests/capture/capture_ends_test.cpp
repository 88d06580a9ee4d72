// Every way out of a capture leaves a file that plays up to the last frame
// drawn, with the exit status of that way out: a fatal report of the library
// half-way, an encoder that dies, and one Ctrl-C while the end path already
// finishes the file.
#include "tests/capture/show_runs.h"
#include "tests/support/show_process.h"

#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <thread>

namespace {

using CaptureEnds = ShowProcess;

// The first child of `parent` named `name`, or 0.
pid_t childNamed(pid_t parent, const std::string& name) {
    const std::string found = runCommand("pgrep -P " + std::to_string(parent) + " -x " + name);
    return found.empty() ? 0 : static_cast<pid_t>(std::stol(found));
}

TEST_F(CaptureEnds, AFatalReportHalfWayFinishesTheVideoAndEndsWithTheReportsStatus) {
    // The show's archive without the last part's scene, and the show's soundtrack.
    const std::string show = KASKADE_SHOW_DIR;
    std::remove((dir_ + "/3d").c_str());
    std::remove((dir_ + "/harbour.mp3").c_str());
    ASSERT_EQ(symlink((show + "/harbour.mp3").c_str(), (dir_ + "/harbour.mp3").c_str()), 0);
    const std::string tool = "'" + show + "/kaskade-archive'";
    ASSERT_EQ(std::system(("cd '" + dir_ + "' && mkdir entries && cd entries && for name in $(" + tool + " list '" +
                           show + "/3d' | awk '$2 != \"9d.3ds\" {print $2}'); do " + tool + " extract '" + show +
                           "/3d' $name $name || exit 1; names=\"$names $name\"; done && " + tool +
                           " create ../3d $names")
                              .c_str()),
              0);
    start({"--part", "12", "--fps", "10", "--capture", "cut.mp4"});
    const ShowResult result = finish(120);
    EXPECT_EQ(result.status, 255) << result.err;
    EXPECT_NE(result.err.find("KOBALT LIBRARY ERROR: File not found : 9d.3ds"), std::string::npos) << result.err;
    EXPECT_EQ(result.err.find("terminate"), std::string::npos) << result.err;

    // Part 12 from 175.8 s to the first frame past 192.5 s, at 10 frames/s.
    const std::map<std::string, double> probe = probeVideo(dir_ + "/cut.mp4");
    ASSERT_EQ(probe.count("video frames"), 1u) << "no playable video";
    ASSERT_EQ(probe.count("audio duration"), 1u) << "no sound";
    EXPECT_NEAR(probe.at("video frames"), 167, 1);
    EXPECT_NEAR(probe.at("audio duration"), probe.at("video duration"), 0.1);
}

TEST_F(CaptureEnds, ALostXConnectionFinishesTheVideoOnItsWayOut) {
    start({"--capture", "lost.mp4"});
    const std::string id = window();
    ASSERT_FALSE(id.empty());
    std::this_thread::sleep_for(std::chrono::milliseconds(1500));
    // What xkill does: the server closes the show's connection; Xlib ends the process.
    runCommand("xdotool windowkill " + id);
    const ShowResult result = finish(60);
    EXPECT_EQ(result.status, 1) << result.err;
    EXPECT_EQ(result.err.find("terminate"), std::string::npos) << result.err;
    const std::map<std::string, double> probe = probeVideo(dir_ + "/lost.mp4");
    ASSERT_EQ(probe.count("video frames"), 1u) << "no playable video";
    ASSERT_EQ(probe.count("audio duration"), 1u) << "no sound";
    EXPECT_GT(probe.at("video frames"), 10);
    EXPECT_NEAR(probe.at("audio duration"), probe.at("video duration"), 0.05);
}

TEST_F(CaptureEnds, AnEncoderThatDiesEndsTheShowAtOnceSayingSo) {
    // Matroska: a file whose encoder stops half-way plays up to where it stopped.
    start({"--capture", "dies.mkv", "--nosound"});
    pid_t encoder = 0;
    ASSERT_TRUE(within(20000, [&] { return (encoder = childNamed(pid_, "ffmpeg")) != 0; }));
    struct stat info {};
    ASSERT_TRUE(within(30000, [&] { return stat((dir_ + "/dies.mkv").c_str(), &info) == 0 && info.st_size > 300000; }))
        << "the encoder wrote nothing";
    kill(encoder, SIGKILL);
    const auto killed = std::chrono::steady_clock::now();
    const ShowResult result = finish(30);
    const double took = std::chrono::duration<double>(std::chrono::steady_clock::now() - killed).count();
    EXPECT_LT(took, 2.0) << "the show drew on without its encoder";
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.err.find("kaskade: dies.mkv: the video encoder (ffmpeg) was killed by signal 9"),
              std::string::npos)
        << result.err;
    EXPECT_TRUE(endsWithFrameRateLine(result.out)) << result.out;
    const std::map<std::string, double> probe = probeVideo(dir_ + "/dies.mkv");
    ASSERT_EQ(probe.count("video frames"), 1u) << "nothing of the video plays";
    EXPECT_GT(probe.at("video frames"), 0);
}

TEST_F(CaptureEnds, OneCtrlCWhileTheEndPathFinishesTheFileLetsItFinish) {
    // An encoder that takes 1.5 s to finish its file once its input ends.
    const std::string encoder = dir_ + "/bin/ffmpeg";
    ASSERT_EQ(std::system(("mkdir -p '" + dir_ + "/bin'").c_str()), 0);
    std::ofstream(encoder) << "#!/bin/sh\ncat > /dev/null\nsleep 1.5\n: > \"$(eval echo \\${$#})\"\n";
    ASSERT_EQ(chmod(encoder.c_str(), 0755), 0);
    environment_ = {"PATH=" + dir_ + "/bin:" + std::getenv("PATH")};
    start({"--capture", "slow.mp4", "--nosound"});
    const std::string id = window();
    ASSERT_FALSE(id.empty());
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    key(id, "Escape");
    // Well inside the encoder's 1.5 s: the end path waits for it.
    std::this_thread::sleep_for(std::chrono::milliseconds(700));
    ASSERT_EQ(kill(pid_, SIGINT), 0) << "the show ended before the encoder did";
    const ShowResult result = finish();
    EXPECT_EQ(result.status, 0) << "Escape's way out, finished";
    EXPECT_TRUE(endsWithFrameRateLine(result.out)) << result.out;
    EXPECT_EQ(access((dir_ + "/slow.mp4").c_str(), F_OK), 0) << "the encoder was stopped before its end";
}

}  // namespace
