// The command line: any argument gives a window, the show's own options, and
// bad values for them.
#include "app/desktop/options.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

ShowOptions parse(std::vector<const char*> arguments) {
    arguments.insert(arguments.begin(), "kaskade");
    return parseShowOptions(static_cast<int>(arguments.size()), const_cast<char**>(arguments.data()));
}

TEST(ShowOptions, NoArgumentIsTheLiveFullscreenShow) {
    const ShowOptions options = parse({});
    EXPECT_FALSE(options.windowed);
    EXPECT_EQ(options.fps, 0);
    EXPECT_TRUE(options.capturePath.empty());
    EXPECT_FALSE(options.noSound);
    EXPECT_FALSE(options.verbose);
}

TEST(ShowOptions, AnyArgumentGivesAWindowAndUnknownOnesAreNoError) {
    for (const char* argument : {"--window", "x", "--frobnicate", "-w"}) {
        const ShowOptions options = parse({argument});
        EXPECT_TRUE(options.windowed) << argument;
        EXPECT_TRUE(options.error.empty()) << argument;
        EXPECT_EQ(options.fps, 0) << argument;
    }
}

TEST(ShowOptions, FpsAndCaptureInBothSpellings) {
    EXPECT_EQ(parse({"--fps", "60"}).fps, 60);
    EXPECT_EQ(parse({"--fps=240"}).fps, 240);
    const ShowOptions capture = parse({"--capture", "out.mp4", "--verbose"});
    EXPECT_EQ(capture.capturePath, "out.mp4");
    EXPECT_EQ(capture.fps, 30) << "capture implies 30 frames per second";
    EXPECT_TRUE(capture.verbose);
    EXPECT_EQ(parse({"--capture=frames", "--fps", "12"}).fps, 12);
    EXPECT_TRUE(parse({"--nosound"}).noSound);
    EXPECT_TRUE(parse({"--help"}).help);
    EXPECT_TRUE(parse({"--version"}).version);
}

TEST(ShowOptions, BadValuesAreRefused) {
    for (const char* value : {"0", "241", "-5", "30fps", ""}) {
        EXPECT_FALSE(parse({"--fps", value}).error.empty()) << value;
    }
    EXPECT_FALSE(parse({"--fps"}).error.empty());
    EXPECT_FALSE(parse({"--capture"}).error.empty());
}

TEST(ShowOptions, CrfSetsAVideoCapturesQualityAndNothingElse) {
    EXPECT_EQ(parse({"--capture", "x.mp4"}).crf, -1) << "the encoder's own default";
    EXPECT_EQ(parse({"--capture", "x.mp4", "--crf", "0"}).crf, 0);
    EXPECT_EQ(parse({"--crf=51", "--capture", "x.mkv"}).crf, 51);
    EXPECT_EQ(parse({"--capture", "x.webm", "--crf", "63"}).crf, 63);
    EXPECT_TRUE(parse({"--capture", "x.webm", "--crf", "63"}).error.empty());
    for (const char* value : {"-1", "64", "x", "17.5", ""}) {
        EXPECT_FALSE(parse({"--capture", "x.webm", "--crf", value}).error.empty()) << value;
    }
    EXPECT_FALSE(parse({"--capture", "x.mp4", "--crf", "52"}).error.empty()) << "H.264 stops at 51";
    EXPECT_FALSE(parse({"--capture", "frames", "--crf", "20"}).error.empty()) << "PNG frames have no rate factor";
    EXPECT_FALSE(parse({"--crf", "20"}).error.empty()) << "nothing is encoded without a capture";
    EXPECT_FALSE(parse({"--capture", "x.mp4", "--crf"}).error.empty());
}

TEST(ShowOptions, StartAndDurationInSecondsFromTheShowsOrThePartsStart) {
    EXPECT_EQ(showStartMillis(parse({"--start", "93.5"})), 93500);
    EXPECT_EQ(showStartMillis(parse({"--part", "9", "--start=20"})), 132700) << "part 9 starts at 112.7 s";
    EXPECT_EQ(showStartMillis(parse({"--part", "9"})), -1) << "no --start";
    EXPECT_EQ(parse({"--capture", "x.mkv", "--duration", "2.25"}).durationMillis, 2250);
    for (const char* value : {"-1", "1e2", "226.95", "1.2.3", "x", ".", ""}) {
        EXPECT_FALSE(parse({"--start", value}).error.empty()) << value;
    }
    EXPECT_FALSE(parse({"--part", "13", "--start", "40"}).error.empty()) << "past the show's end";
    EXPECT_FALSE(parse({"--capture", "x.mkv", "--duration", "0"}).error.empty());
    EXPECT_FALSE(parse({"--duration", "5"}).error.empty()) << "a duration is a capture's";
}

}  // namespace
