// Captures of stretches of the show, seen from outside the process: a video
// of its size and rate with the sound of its stretch, the rate factor, large
// frames that are the small ones drawn finer, and every way out of a capture
// leaving a file that plays up to the last frame drawn, with the exit status
// of that way out.
#include "tests/support/fatal_catcher.h"
#include "tests/support/frame_compare.h"
#include "tests/support/show_process.h"

#include <gtest/gtest.h>

#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace {

using Capture = ShowProcess;

// Bytes of the file at `path`, 0 when there is none.
long fileSize(const std::string& path) {
    struct stat info {};
    return stat(path.c_str(), &info) == 0 ? static_cast<long>(info.st_size) : 0;
}

TEST_F(Capture, AVideoHasItsSizeAndRateAndTheSoundOfItsStretchOfTheShow) {
    // Part 13 at 1920 x 1080 and 3 frames/s: ticks 579 (193.0 s) to 681, the first past 226.9 s.
    useShowSoundtrack();
    const ShowResult result = run({"--part", "13", "--size", "1920x1080", "--fps", "3", "--capture", "wide.mp4"});
    ASSERT_EQ(result.status, 0) << result.err;
    std::map<std::string, double> probe = probeVideo(dir_ + "/wide.mp4");
    EXPECT_EQ(probe["video width"], 1920);
    EXPECT_EQ(probe["video height"], 1080);
    EXPECT_EQ(probe["video fps"], 3);
    EXPECT_NEAR(probe["video frames"], 103, 1);
    EXPECT_NEAR(probe["video duration"], 103 / 3.0, 0.4);
    EXPECT_NEAR(probe["audio duration"], probe["video duration"], 1.0 / 3.0);
}

// How many of a PNG frame's pixels differ from those of `rgb` by more than a
// conversion to a video's colours and back moves them.
size_t differingPixels(const std::string& png, const std::vector<uint8_t>& rgb) {
    const PngImage image = loadPng(png);
    size_t differing = 0;
    for (size_t pixel = 0; pixel * 3 < rgb.size() && pixel * image.channels < image.pixels.size(); ++pixel) {
        int most = 0;
        for (size_t c = 0; c < 3; ++c) {
            most = std::max(most, std::abs(image.pixels[pixel * image.channels + c] - rgb[pixel * 3 + c]));
        }
        differing += most > 32 ? 1 : 0;
    }
    return differing;
}

// The sound ffmpeg decodes from `path`, mono, from `from` s for `seconds`.
std::vector<int16_t> monoSound(const std::string& path, double from, double seconds) {
    const std::string pcm = runCommand("ffmpeg -v error -ss " + std::to_string(from) + " -t " +
                                       std::to_string(seconds) + " -i '" + path + "' -vn -f s16le -ac 1 -ar 44100 -");
    std::vector<int16_t> sound(pcm.size() / 2);
    std::memcpy(sound.data(), pcm.data(), sound.size() * 2);
    return sound;
}

TEST_F(Capture, AStretchFromAnyMomentIsAVideoAsLongAsAskedThatStartsWithTheShowsFrameThere) {
    useShowSoundtrack();
    ASSERT_EQ(run({"--fps", "4", "--duration", "23", "--capture", "frames"}).status, 0);
    EXPECT_EQ(access((dir_ + "/frames" + frameName(92)).c_str(), F_OK), -1) << "23 s at 4 frames/s are frames 0 to 91";
    // 22 s into the show, one into part 2; losslessly encoded, so that only
    // the conversion to the video's colours changes its pixels.
    const ShowResult result =
        run({"--fps", "4", "--part", "2", "--start", "1", "--duration", "2", "--crf", "0", "--capture", "stretch.mp4"});
    ASSERT_EQ(result.status, 0) << result.err;
    const std::string video = dir_ + "/stretch.mp4";
    const std::map<std::string, double> probe = probeVideo(video);
    ASSERT_EQ(probe.count("audio duration"), 1u) << "no audio stream";
    EXPECT_EQ(probe.at("video frames"), 8);
    EXPECT_NEAR(probe.at("video duration"), 2.0, 0.01);
    EXPECT_NEAR(probe.at("audio duration"), 2.0, 0.05);
    // Its sound is the song's from 22 s on: at 0.1 s it is the song's at 22.1 s, within 10 ms, as far
    // as AAC keeps it (a twentieth of its size apart there, nine tenths elsewhere).
    const std::vector<int16_t> heard = monoSound(video, 0.1, 0.1);
    const std::vector<int16_t> song = monoSound(dir_ + "/harbour.mp3", 22.09, 0.12);
    double size = 0, least = 1e300;
    for (const int16_t sample : heard) size += std::abs(sample);
    for (size_t shift = 0; shift + heard.size() <= song.size(); ++shift) {
        double apart = 0;
        for (size_t i = 0; i < heard.size(); ++i) apart += std::abs(heard[i] - song[shift + i]);
        least = std::min(least, apart);
    }
    EXPECT_LT(least / size, 0.3) << "the stretch's sound is not the song's at its moment";

    std::vector<uint8_t> first(640 * 480 * 3);
    const std::string decoded = runCommand("ffmpeg -v error -i '" + video + "' -frames:v 1 -f rawvideo -pix_fmt rgb24 -");
    ASSERT_EQ(decoded.size(), first.size());
    first.assign(decoded.begin(), decoded.end());
    const size_t there = differingPixels(dir_ + "/frames" + frameName(88), first);
    for (const int neighbour : {87, 89}) {
        EXPECT_LT(there * 4, differingPixels(dir_ + "/frames" + frameName(neighbour), first))
            << "the whole show's frame 88 (22 s) against its neighbour " << neighbour;
    }
}

TEST_F(Capture, TheRateFactorTradesTheVideosBytesForSharpnessAndAVideoNeedsFfmpeg) {
    std::map<int, long> bytes;
    for (const int crf : {12, 34}) {
        const std::string video = "crf" + std::to_string(crf) + ".mp4";
        const ShowResult result =
            run({"--part", "13", "--fps", "4", "--nosound", "--crf", std::to_string(crf), "--capture", video});
        ASSERT_EQ(result.status, 0) << result.err;
        EXPECT_NEAR(probeVideo(dir_ + "/" + video)["video frames"], (2269 - 1925) * 0.4, 1.0) << crf;
        bytes[crf] = fileSize(dir_ + "/" + video);
    }
    EXPECT_LT(bytes[34] * 3, bytes[12]) << "crf 34: " << bytes[34] << " bytes, crf 12: " << bytes[12];

    environment_ = {"PATH=/nonexistent"};
    const ShowResult refused = run({"--capture", "show.mkv"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_NE(refused.err.find("needs ffmpeg"), std::string::npos) << refused.err;
    EXPECT_EQ(access((dir_ + "/show.mkv").c_str(), F_OK), -1);
}

// True when every pixel of `image` left of column `from` and from column `to` on is black.
bool barsAreBlack(const PngImage& image, int from, int to) {
    for (int y = 0; y < image.height; ++y) {
        for (int x = 0; x < image.width; ++x) {
            const uint8_t* p = &image.pixels[(static_cast<size_t>(y) * image.width + x) * image.channels];
            if ((x < from || x >= to) && p[0] + p[1] + p[2] != 0) {
                return false;
            }
        }
    }
    return true;
}

TEST_F(Capture, TheFirstFramesOfALargeCaptureAreTheSmallCapturesDrawnFiner) {
    // The first frame of a capture is drawn before the preview window has
    // reported its size: it must be fitted like every later one, bars resolved too.
    const std::vector<std::string> part13 = {"--part", "13", "--fps", "4", "--nosound"};
    ASSERT_EQ(captureUntil(part13, "small", 1), 130);
    const struct {
        const char* size;
        const char* samples;
        int pictureX;  // the 1440 x 1080 picture's left edge
    } captures[] = {{"1440x1080", "1", 0}, {"1920x1080", "4", 240}};
    for (const auto& capture : captures) {
        const std::string directory = std::string(capture.size) + "aa" + capture.samples;
        std::vector<std::string> arguments = part13;
        arguments.insert(arguments.end(), {"--size", capture.size, "--aa", capture.samples});
        ASSERT_EQ(captureUntil(arguments, directory, 1), 130);
        for (int frame : {0, 1}) {
            const PngImage large = loadPng(dir_ + "/" + directory + frameName(frame));
            const PngImage small = loadPng(dir_ + "/small" + frameName(frame));
            const std::vector<double> scaled = scaledDown(large, 640, 480, capture.pictureX, 0, 1440, 1080);
            // Edges and lines differ by up to 1.2 outside the parts of lines; a
            // picture shrunk into a corner is 30 and more away.
            EXPECT_LE(meanAbsoluteError(scaled, small), 5.0) << capture.size << ", frame " << frame;
            EXPECT_TRUE(barsAreBlack(large, capture.pictureX, capture.pictureX + 1440))
                << capture.size << ", frame " << frame;
        }
    }
}

TEST_F(Capture, AFatalReportHalfWayFinishesTheVideoAndEndsWithTheReportsStatus) {
    // The show's archive without the last part's scene, and the show's soundtrack.
    useShowSoundtrack();
    std::remove((dir_ + "/3d").c_str());
    const std::string tool = "'" KASKADE_SHOW_DIR "/kaskade-archive'";
    ASSERT_EQ(std::system(("cd '" + dir_ + "' && mkdir entries && cd entries && for name in $(" + tool +
                           " list '" KASKADE_SHOW_DIR "/3d' | awk '$2 != \"9d.3ds\" {print $2}'); do " + tool +
                           " extract '" KASKADE_SHOW_DIR "/3d' $name $name || exit 1; names=\"$names $name\"; done && " +
                           tool + " create ../3d $names")
                              .c_str()),
              0);
    const ShowResult result = run({"--part", "12", "--fps", "10", "--capture", "cut.mp4"});
    EXPECT_EQ(result.status, 255) << result.err;
    EXPECT_NE(result.err.find("KOBALT LIBRARY ERROR: File not found : 9d.3ds"), std::string::npos) << result.err;
    EXPECT_EQ(result.err.find("terminate"), std::string::npos) << result.err;
    // Part 12 from 175.8 s to the first frame past 192.5 s, at 10 frames/s.
    const std::map<std::string, double> probe = probeVideo(dir_ + "/cut.mp4");
    ASSERT_EQ(probe.count("audio duration"), 1u) << "no playable video with sound";
    EXPECT_NEAR(probe.at("video frames"), 167, 1);
    EXPECT_NEAR(probe.at("audio duration"), probe.at("video duration"), 0.1);
}

TEST_F(Capture, CtrlCOrALostXConnectionFinishesTheVideoWithItsSound) {
    const struct {
        const char* how;
        int status;
    } ways[] = {{"ctrl-c", 130}, {"lost connection", 1}};
    for (const auto& way : ways) {
        const std::string video = dir_ + "/" + way.how + ".mp4";
        start({"--capture", video});
        const std::string id = window();
        ASSERT_FALSE(id.empty());
        // Until a second or so is encoded, however slowly the machine draws.
        ASSERT_TRUE(within(60000, [&] { return fileSize(video) > 400000; })) << way.how;
        if (way.status == 130) {
            kill(pid_, SIGINT);
        } else {
            // What xkill does: the server closes the show's connection; Xlib ends the process.
            runCommand("xdotool windowkill " + id);
        }
        const ShowResult result = finish(60);
        EXPECT_EQ(result.status, way.status) << way.how << ": " << result.err;
        EXPECT_EQ(result.err.find("terminate"), std::string::npos) << result.err;
        const std::map<std::string, double> probe = probeVideo(video);
        ASSERT_EQ(probe.count("audio duration"), 1u) << way.how << ": no playable video with sound";
        EXPECT_GT(probe.at("video frames"), 10) << way.how;
        EXPECT_NEAR(probe.at("video duration"), probe.at("video frames") / 30.0, 1.0 / 30.0) << way.how;
        EXPECT_NEAR(probe.at("audio duration"), probe.at("video duration"), 0.05) << way.how;
    }
}

TEST_F(Capture, AnEncoderThatDiesEndsTheShowAtOnceSayingSo) {
    // Matroska: a file whose encoder stops half-way plays up to where it stopped.
    start({"--capture", "dies.mkv", "--nosound"});
    pid_t encoder = 0;
    ASSERT_TRUE(within(20000, [&] {
        const std::string found = runCommand("pgrep -P " + std::to_string(pid_) + " -x ffmpeg");
        encoder = found.empty() ? 0 : static_cast<pid_t>(std::stol(found));
        return encoder != 0 && fileSize(dir_ + "/dies.mkv") > 300000;
    })) << "the encoder wrote nothing";
    kill(encoder, SIGKILL);
    const ShowResult result = finish(30);
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.err.find("kaskade: dies.mkv: the video encoder (ffmpeg) was killed by signal 9"),
              std::string::npos)
        << result.err;
    EXPECT_TRUE(endsWithFrameRateLine(result.out)) << result.out;
    EXPECT_GT(probeVideo(dir_ + "/dies.mkv")["video frames"], 0) << "nothing of the video plays";
}

TEST_F(Capture, OneCtrlCWhileTheEndPathFinishesTheFileLetsItFinishASecondEndsAtOnce) {
    // An encoder that, once its input ends, says so and finishes its file
    // only when the test lets it.
    ASSERT_EQ(mkdir((dir_ + "/bin").c_str(), 0755), 0);
    std::ofstream(dir_ + "/bin/ffmpeg") << "#!/bin/sh\ncat > /dev/null\n: > input-ended\n"
                                           "while [ ! -e finish ]; do sleep 0.02; done\n"
                                           ": > \"$(eval echo \\${$#})\"\n";
    ASSERT_EQ(chmod((dir_ + "/bin/ffmpeg").c_str(), 0755), 0);
    environment_ = {"PATH=" + dir_ + "/bin:" + std::getenv("PATH")};
    for (const bool again : {false, true}) {
        std::remove((dir_ + "/input-ended").c_str());
        std::remove((dir_ + "/finish").c_str());
        start({"--capture", "slow.mp4", "--nosound"});
        const std::string id = window();
        ASSERT_FALSE(id.empty());
        key(id, "Escape");
        ASSERT_TRUE(within(20000, [&] { return access((dir_ + "/input-ended").c_str(), F_OK) == 0; }));
        // The show now waits for its encoder in the end path.
        ASSERT_EQ(kill(pid_, SIGINT), 0) << "the show ended before its encoder did";
        if (again) {
            // Ctrl-C again and again: the next one taken ends the show at once.
            siginfo_t ended{};
            EXPECT_TRUE(within(10000, [&] {
                kill(pid_, SIGINT);
                return waitid(P_PID, static_cast<id_t>(pid_), &ended, WEXITED | WNOHANG | WNOWAIT) == 0 &&
                       ended.si_pid != 0;
            })) << "a second Ctrl-C during the end path did not end the show";
        }
        std::ofstream(dir_ + "/finish");
        const ShowResult result = finish();
        EXPECT_EQ(result.status, again ? 130 : 0) << "Escape's way out finished, or a second Ctrl-C's at once";
        if (!again) {
            EXPECT_TRUE(endsWithFrameRateLine(result.out)) << result.out;
            EXPECT_EQ(access((dir_ + "/slow.mp4").c_str(), F_OK), 0) << "the encoder was stopped before its end";
        }
    }
}

TEST_F(Capture, TwoCtrlCsDuringAPngCaptureLeaveOnlyWholeFrames) {
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
            PngImage frame;
            std::string error;
            if (entry.path().filename().string().rfind("frame_", 0) == 0) {
                EXPECT_TRUE(readPng(entry.path(), &frame, &error)) << "run " << run << ": " << error;
            }
        }
    }
}

}  // namespace
