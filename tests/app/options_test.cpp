// The command line: no argument is the live fullscreen show, any argument
// gives a window, the show's own options in both spellings, and the values
// and combinations refused.
#include "app/desktop/options.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

ShowOptions parse(std::vector<const char*> arguments) {
    arguments.insert(arguments.begin(), "kaskade");
    return parseShowOptions(static_cast<int>(arguments.size()), const_cast<char**>(arguments.data()));
}

TEST(ShowOptions, WhatEachArgumentAsksFor) {
    const ShowOptions none = parse({});
    EXPECT_FALSE(none.windowed);
    EXPECT_EQ(none.fps, 0);
    EXPECT_TRUE(none.capturePath.empty() && !none.noSound && !none.verbose && none.error.empty());
    for (const char* argument : {"--window", "x", "--frobnicate", "-w"}) {
        const ShowOptions options = parse({argument});
        EXPECT_TRUE(options.windowed && options.error.empty() && options.fps == 0) << argument;
    }
    EXPECT_FALSE(parse({"--fullscreen", "--nosound"}).windowed);
    EXPECT_EQ(parse({"--fps", "60"}).fps, 60);
    EXPECT_EQ(parse({"--fps=240"}).fps, 240);
    const ShowOptions capture = parse({"--capture", "out.mp4", "--verbose", "--nosound"});
    EXPECT_EQ(capture.capturePath, "out.mp4");
    EXPECT_EQ(capture.fps, 30) << "capture implies 30 frames per second";
    EXPECT_TRUE(capture.verbose && capture.noSound);
    EXPECT_EQ(capture.crf, -1) << "the encoder's own default";
    EXPECT_EQ(parse({"--capture=frames", "--fps", "12"}).fps, 12);
    EXPECT_EQ(parse({"--crf=51", "--capture", "x.mkv"}).crf, 51);
    EXPECT_EQ(parse({"--capture", "x.webm", "--crf", "63"}).crf, 63);
    EXPECT_TRUE(parse({"--help"}).help);
    EXPECT_TRUE(parse({"--version"}).version);
    EXPECT_EQ(showStartMillis(parse({"--start", "93.5"})), 93500);
    EXPECT_EQ(showStartMillis(parse({"--part", "9", "--start=20"})), 132700) << "part 9 starts at 112.7 s";
}

TEST(ShowOptions, ValuesAndCombinationsThatCannotBeKeptAreRefused) {
    const std::vector<std::vector<const char*>> refused = {
        {"--fps", "0"}, {"--fps", "241"}, {"--fps", "-5"}, {"--fps", "30fps"}, {"--fps", ""}, {"--fps"}, {"--capture"},
        {"--capture", "x.webm", "--crf", "-1"}, {"--capture", "x.webm", "--crf", "64"},
        {"--capture", "x.webm", "--crf", "17.5"}, {"--capture", "x.mp4", "--crf", "52"},  // H.264 stops at 51
        {"--capture", "frames", "--crf", "20"},  // PNG frames have no rate factor
        {"--crf", "20"}, {"--capture", "x.mp4", "--crf"},
        {"--capture", "x.mp4", "--size", "641x480"},  // a video's sides are even
        {"--loop", "--capture", "x.mp4"}, {"--fullscreen", "--desktop"}, {"--desktop", "--size", "800x600"},
        {"--part", "0"}, {"--part", "14"}, {"--size", "63x480"},
        {"--start", "227"}, {"--start", "-1"}, {"--start", "1e3"}, {"--duration", "2"}};
    for (const auto& arguments : refused) {
        std::string line;
        for (const char* argument : arguments) {
            line += std::string(argument) + " ";
        }
        EXPECT_FALSE(parse(arguments).error.empty()) << line;
    }
}

}  // namespace
