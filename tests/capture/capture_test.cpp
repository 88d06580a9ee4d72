// The show captured on the fixed-step clock, seen from outside the process:
// frame-exact repeatability, the whole show as a video with its soundtrack,
// the per-part log, and a clear refusal when ffmpeg is missing.
#include "app/desktop/capture/png_file.h"
#include "tests/audio/test_sounds.h"
#include "tests/capture/show_runs.h"
#include "tests/support/fatal_catcher.h"

#include <gtest/gtest.h>

#include <dirent.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <signal.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <map>
#include <sstream>

namespace {

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

using Capture = ShowRun;

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
    std::map<std::string, double> probe = probeVideo(video);
    EXPECT_EQ(probe.count("audio duration"), 1u) << "no audio stream";
    EXPECT_NEAR(probe["video frames"], 6808, 4);
    EXPECT_NEAR(probe["video duration"], 226.9, 0.2);
    EXPECT_NEAR(probe["audio duration"], probe["video duration"], 1.0 / 30.0);

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
        EXPECT_EQ(captureUntil({"--part", std::to_string(part), "--fps", "4"}, started, middle - first), 130);
        EXPECT_EQ(readFile(started + frameName(0)), readFile(dir_ + "/frames" + frameName(first)))
            << "first frame, frame " << first << " of the whole show";
        EXPECT_EQ(readFile(started + frameName(middle - first)), readFile(dir_ + "/frames" + frameName(middle)))
            << "middle frame";
    }
}

// How many of a PNG frame's pixels differ from those of `rgb` by more than a
// conversion to a video's colours and back moves them.
size_t differingPixels(const std::string& png, const std::vector<uint8_t>& rgb) {
    PngImage image;
    std::string error;
    EXPECT_TRUE(readPng(png, &image, &error)) << error;
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

TEST_F(Capture, AStretchFromAnyMomentIsAVideoAsLongAsAskedThatStartsWithTheShowsFrameThere) {
    ASSERT_EQ(runShow("--fps 4 --duration 23 --capture " + quoted(dir_ + "/frames"), dir_ + "/frames.log"), 0);
    const std::string video = dir_ + "/stretch.mp4";
    // 22 s into the show, one into part 2; losslessly encoded, so that only
    // the conversion to the video's colours changes its pixels.
    ASSERT_EQ(runShow("--fps 4 --part 2 --start 1 --duration 2 --crf 0 --capture " + quoted(video), video + ".log"),
              0)
        << readFile(video + ".log");
    const std::map<std::string, double> probe = probeVideo(video);
    ASSERT_EQ(probe.count("audio duration"), 1u) << "no audio stream";
    EXPECT_EQ(probe.at("video frames"), 8);
    EXPECT_NEAR(probe.at("video duration"), 2.0, 0.01);
    EXPECT_NEAR(probe.at("audio duration"), 2.0, 0.05);

    std::vector<uint8_t> first(640 * 480 * 3);
    FILE* pipe = popen(("ffmpeg -v error -i " + quoted(video) + " -frames:v 1 -f rawvideo -pix_fmt rgb24 -").c_str(), "r");
    ASSERT_NE(pipe, nullptr);
    const size_t got = std::fread(first.data(), 1, first.size(), pipe);
    pclose(pipe);
    ASSERT_EQ(got, first.size());
    const size_t there = differingPixels(dir_ + "/frames" + frameName(88), first);
    for (const int neighbour : {87, 89}) {
        EXPECT_LT(there * 4, differingPixels(dir_ + "/frames" + frameName(neighbour), first))
            << "the whole show's frame 88 (22 s) against its neighbour " << neighbour;
    }
    EXPECT_EQ(access((dir_ + "/frames" + frameName(92)).c_str(), F_OK), -1) << "23 s at 4 frames/s are frames 0 to 91";
}

TEST_F(Capture, CtrlCEndsAVideoCaptureWithAPlayableVideoOfTheFramesCaptured) {
    const std::string video = dir_ + "/cut.mp4";
    const pid_t pid = startShow({"--capture", video});
    // Until a second or so is encoded, however slowly the machine draws.
    struct stat info {};
    for (int waited = 0; waited < 60000 && (stat(video.c_str(), &info) != 0 || info.st_size < 400000); waited += 50) {
        usleep(50000);
    }
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

TEST_F(Capture, TheRateFactorTradesTheVideosBytesForSharpness) {
    std::map<int, double> bytes;
    for (const int crf : {12, 34}) {
        const std::string video = dir_ + "/crf" + std::to_string(crf) + ".mp4";
        const std::string log = video + ".log";
        ASSERT_EQ(runShow("--part 13 --fps 4 --nosound --crf " + std::to_string(crf) + " --capture " + quoted(video),
                          log),
                  0)
            << readFile(log);
        const std::map<std::string, double> probe = probeVideo(video);
        ASSERT_EQ(probe.count("video frames"), 1u) << "no video stream at crf " << crf;
        EXPECT_NEAR(probe.at("video frames"), (PART_END_TIMES[12] - PART_END_TIMES[11]) * 0.4, 1.0) << crf;
        bytes[crf] = static_cast<double>(readFile(video).size());
    }
    EXPECT_LT(bytes[34] * 3.0, bytes[12]) << "crf 34: " << bytes[34] << " bytes, crf 12: " << bytes[12];
}

TEST_F(Capture, AVideoWithoutFfmpegIsRefusedBeforeTheShowStarts) {
    const std::string log = dir_ + "/refused.log";
    EXPECT_EQ(runShow("--capture " + quoted(dir_ + "/show.mkv"), log, "PATH=/nonexistent"), 1);
    EXPECT_NE(readFile(log).find("needs ffmpeg"), std::string::npos) << readFile(log);
    EXPECT_EQ(access((dir_ + "/show.mkv").c_str(), F_OK), -1);
}

}  // namespace
