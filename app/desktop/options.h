// The command line. Any argument at all gives the windowed show; a few
// options do more than that, and unknown ones are no error.
#pragma once

#include <cstdint>
#include <string>

struct ShowOptions {
    bool windowed = false;    // any argument but --fullscreen
    bool fullscreen = false;  // --fullscreen: the show without arguments' fullscreen, with other options
    bool help = false;        // --help, -h: print usage and exit 0
    bool version = false;     // --version: print the version and exit 0
    bool noSound = false;     // --nosound: no audio device, no soundtrack
    int fps = 0;              // --fps N: the fixed-step clock at N frames/s (1..240); 0: the wall clock
    std::string capturePath;  // --capture PATH: PNG frames in a directory, or a .mp4/.mkv/.webm video
    bool verbose = false;     // --verbose: a line per part on standard error
    int part = 1;             // --part N: the show starts at part N (1..13)
    int64_t startMillis = -1;  // --start SECONDS: from the show's start (or part N's), in ms; -1: none
    int64_t durationMillis = 0;  // --duration SECONDS with --capture: ms captured; 0: to the end
    int width = 640;          // --size WxH: the window's or the capture's size in pixels
    int height = 480;
    bool desktop = false;     // --desktop: fullscreen at the display's own size, no mode switch
    int samples = 0;          // --aa N: N samples per pixel (0: the window's default, none)
    bool loop = false;        // --loop: after the last part the show starts over at part 1
    int crf = -1;             // --crf N: a video capture's constant rate factor (-1: the encoder's default)
    std::string error;        // a known option with a bad value; the show does not start
};

constexpr int MAX_FIXED_FPS = 240;
constexpr int MIN_FRAME_SIZE = 64;     // pixels, each side of --size
constexpr int MAX_FRAME_SIZE = 8192;
constexpr int MAX_SAMPLES = 64;
constexpr int CAPTURE_DEFAULT_FPS = 30;
constexpr int MAX_CRF_H264 = 51;  // x264's scale; VP9's runs to 63
constexpr int MAX_CRF_VP9 = 63;
constexpr int64_t MAX_DURATION_MILLIS = 24LL * 3600 * 1000;  // --duration: a day at most

ShowOptions parseShowOptions(int argc, char** argv);

// Where the show starts, in ms since the show's start: --part N's place plus
// --start; -1 without --start.
int64_t showStartMillis(const ShowOptions& options);

// The text --help prints.
const char* showUsage();
// The text --version prints.
const char* showVersion();
