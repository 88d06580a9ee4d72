#include "app/desktop/options.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <optional>

#include "app/desktop/capture/video_encoder.h"
#include "kaskade_version.h"
#include "app/shell.h"
#include "parts/part_schedule.h"

int32_t g_fullscreen = 1;

namespace {

// The value of option `name` at argv[*i]: "--name=value" or "--name value".
// Null when argv[*i] is not that option.
const char* optionValue(int argc, char** argv, int* i, const char* name, bool* missing) {
    const size_t length = std::strlen(name);
    const char* argument = argv[*i];
    if (std::strncmp(argument, name, length) != 0) {
        return nullptr;
    }
    if (argument[length] == '=') {
        return argument + length + 1;
    }
    if (argument[length] != '\0') {
        return nullptr;
    }
    if (*i + 1 >= argc) {
        *missing = true;
        return nullptr;
    }
    *i += 1;
    return argv[*i];
}

// A whole number from `low` to `high`, or nothing.
std::optional<int> wholeNumber(const char* text, long low, long high) {
    char* end = nullptr;
    const long value = std::strtol(text, &end, 10);
    if (end == text || *end != '\0' || value < low || value > high) {
        return std::nullopt;
    }
    return static_cast<int>(value);
}

// Seconds written as digits with at most one decimal point ("93.5"), as
// whole milliseconds (rounded), up to `highMillis`; nothing otherwise.
std::optional<int64_t> secondsAsMillis(const char* text, int64_t highMillis) {
    bool point = false;
    bool digit = false;
    for (const char* c = text; *c != '\0'; ++c) {
        if (*c == '.' && !point) {
            point = true;
        } else if (*c >= '0' && *c <= '9') {
            digit = true;
        } else {
            return std::nullopt;
        }
    }
    if (!digit || std::strlen(text) > 12) {
        return std::nullopt;
    }
    const auto millis = static_cast<int64_t>(std::llround(std::strtod(text, nullptr) * 1000.0));
    return millis <= highMillis ? std::optional<int64_t>(millis) : std::nullopt;
}

// A whole number from `low` (at least 1) to `high`, or 0.
int parseWhole(const char* text, long low, long high) { return wholeNumber(text, low, high).value_or(0); }

// "WIDTHxHEIGHT", each from MIN_FRAME_SIZE to MAX_FRAME_SIZE.
bool parseSize(const char* text, int* width, int* height) {
    const char* x = std::strchr(text, 'x');
    if (x == nullptr) {
        return false;
    }
    const std::string first(text, x);
    *width = parseWhole(first.c_str(), MIN_FRAME_SIZE, MAX_FRAME_SIZE);
    *height = parseWhole(x + 1, MIN_FRAME_SIZE, MAX_FRAME_SIZE);
    return *width != 0 && *height != 0;
}

// Combinations that cannot be kept; empty when there is none.
std::string conflict(const ShowOptions& options) {
    const bool sized = options.width != 640 || options.height != 480;
    if (options.loop && !options.capturePath.empty()) {
        return "--loop and --capture do not go together: a looping show never ends, so its capture would not";
    }
    if (options.fullscreen && (options.desktop || sized || !options.capturePath.empty())) {
        return "--fullscreen switches the display to 640x480: it goes with neither --desktop, --size nor --capture";
    }
    if (options.desktop && !options.capturePath.empty()) {
        return "--desktop and --capture do not go together: a capture is as large as --size makes it";
    }
    if (options.desktop && sized) {
        return "--desktop and --size do not go together: --desktop takes the display's own size";
    }
    if (isVideoPath(options.capturePath) && (options.width % 2 != 0 || options.height % 2 != 0)) {
        return "a video needs an even width and height (--size)";
    }
    if (showStartMillis(options) > static_cast<int64_t>(SHOW_END_TIME) * 100) {
        return "--start is past the show's end (226.9 s from its start)";
    }
    if (options.durationMillis > 0 && options.capturePath.empty()) {
        return "--duration is how much a capture takes: it needs --capture";
    }
    if (options.crf >= 0 && !isVideoPath(options.capturePath)) {
        return "--crf sets a video's quality: it needs --capture with a .mp4, .mkv or .webm path";
    }
    if (options.crf > MAX_CRF_H264 && !isWebmPath(options.capturePath)) {
        return "--crf for an H.264 video (.mp4, .mkv) goes from 0 to 51";
    }
    return "";
}

}  // namespace

ShowOptions parseShowOptions(int argc, char** argv) {
    ShowOptions options;
    options.windowed = argc > 1;
    for (int i = 1; i < argc; ++i) {
        const char* argument = argv[i];
        bool missing = false;
        if (std::strcmp(argument, "--help") == 0 || std::strcmp(argument, "-h") == 0) {
            options.help = true;
        } else if (std::strcmp(argument, "--version") == 0) {
            options.version = true;
        } else if (std::strcmp(argument, "--nosound") == 0) {
            options.noSound = true;
        } else if (std::strcmp(argument, "--verbose") == 0) {
            options.verbose = true;
        } else if (const char* fps = optionValue(argc, argv, &i, "--fps", &missing)) {
            options.fps = parseWhole(fps, 1, MAX_FIXED_FPS);
            if (options.fps == 0) {
                options.error = "--fps needs a whole number of frames per second from 1 to 240";
            }
        } else if (const char* path = optionValue(argc, argv, &i, "--capture", &missing)) {
            options.capturePath = path;
        } else if (const char* part = optionValue(argc, argv, &i, "--part", &missing)) {
            options.part = parseWhole(part, 1, SCHEDULED_PARTS);
            if (options.part == 0) {
                options.error = "--part needs a part number from 1 to 13";
            }
        } else if (const char* start = optionValue(argc, argv, &i, "--start", &missing)) {
            options.startMillis = secondsAsMillis(start, static_cast<int64_t>(SHOW_END_TIME) * 100).value_or(-1);
            if (options.startMillis < 0) {
                options.error = "--start needs seconds from 0 to 226.9, e.g. 93.5";
            }
        } else if (const char* duration = optionValue(argc, argv, &i, "--duration", &missing)) {
            options.durationMillis = secondsAsMillis(duration, MAX_DURATION_MILLIS).value_or(0);
            if (options.durationMillis <= 0) {
                options.error = "--duration needs seconds above 0, e.g. 10";
            }
        } else if (std::strcmp(argument, "--loop") == 0) {
            options.loop = true;
        } else if (const char* size = optionValue(argc, argv, &i, "--size", &missing)) {
            if (!parseSize(size, &options.width, &options.height)) {
                options.error = "--size needs WIDTHxHEIGHT, each from 64 to 8192 pixels, e.g. 1920x1080";
            }
        } else if (std::strcmp(argument, "--desktop") == 0) {
            options.desktop = true;
        } else if (std::strcmp(argument, "--fullscreen") == 0) {
            options.fullscreen = true;
        } else if (const char* samples = optionValue(argc, argv, &i, "--aa", &missing)) {
            options.samples = parseWhole(samples, 1, MAX_SAMPLES);
            if (options.samples == 0) {
                options.error = "--aa needs a number of samples per pixel from 1 to 64, e.g. 4";
            }
        } else if (const char* crf = optionValue(argc, argv, &i, "--crf", &missing)) {
            options.crf = wholeNumber(crf, 0, MAX_CRF_VP9).value_or(-1);
            if (options.crf < 0) {
                options.error = "--crf needs a constant rate factor from 0 to 51 (63 for .webm), e.g. 23";
            }
        }
        if (missing) {
            options.error = std::string(argument) + " needs a value";
        }
    }
    options.windowed = options.windowed && !options.fullscreen;
    if (!options.capturePath.empty() && options.fps == 0 && options.error.empty()) {
        options.fps = CAPTURE_DEFAULT_FPS;
    }
    if (options.error.empty()) {
        options.error = conflict(options);
    }
    return options;
}

int64_t showStartMillis(const ShowOptions& options) {
    if (options.startMillis < 0) {
        return -1;
    }
    return static_cast<int64_t>(std::lround(partStartTime(options.part) * 100.0)) + options.startMillis;
}

const char* showUsage() {
    return "usage: kaskade [--window] [--fullscreen] [--desktop] [--size WxH] [--aa N]\n"
           "               [--nosound] [--fps N] [--capture PATH] [--crf N] [--part N]\n"
           "               [--start SECONDS] [--duration SECONDS] [--loop] [--verbose]\n"
           "               [--help] [--version]\n"
           "\n"
           "Plays the show from the archive \"3d\" and the soundtrack \"harbour.mp3\" in the\n"
           "working directory, else in share/kaskade beside the program's bin/, else in\n"
           "the data directory it was built for (man kaskade: FILES). Without arguments\n"
           "it runs fullscreen; any other argument than --fullscreen gives a 640 x 480\n"
           "window.\n"
           "\n"
           "  --window        run in a window (any argument does)\n"
           "  --fullscreen    fullscreen as without arguments (the monitor switched to\n"
           "                  640x480 where it offers that mode), with other options\n"
           "  --desktop       fullscreen at the monitor's own size, without switching it\n"
           "  --size WxH      a window (or a capture) of W x H pixels; the 4:3 picture\n"
           "                  is centred in it between black bars. A window larger than\n"
           "                  its monitor is shrunk to fit it, its shape kept, so that no\n"
           "                  part of the picture is off the screen (a capture is not)\n"
           "  --aa N          N samples per pixel (multisampling), e.g. 4\n"
           "  --nosound       open no audio device; the show runs silently on its clock\n"
           "  --fps N         step the clock by frames (1 to 240 per second) instead of the\n"
           "                  wall: every run draws the same frames, as fast as it can\n"
           "  --capture PATH  write every frame: PATH ending in .mp4, .mkv or .webm is a\n"
           "                  video with the soundtrack (needs ffmpeg), anything else a\n"
           "                  directory of frame_00000.png ... (implies --fps 30), at\n"
           "                  --size (640x480 unless given) and --aa\n"
           "  --crf N         a captured video's quality: lower is sharper and larger\n"
           "                  (0 to 51, or 63 for .webm; 17 unless given, 24 for .webm)\n"
           "  --part N        start at part N (1 to 13), the music and the clock at its\n"
           "                  place in the show, as if parts 1 to N-1 had played\n"
           "  --start SECONDS start that far into the show (into part N with --part),\n"
           "                  e.g. 93.5; with --fps, at the last frame at or before it\n"
           "  --duration SECONDS\n"
           "                  with --capture: capture that long a stretch of the show\n"
           "  --loop          after the last part, start over at part 1 until ended\n"
           "  --verbose       on standard error: where each data file was read from, and\n"
           "                  a line per part with its set-up time and frame rate\n"
           "  --help          print this text\n"
           "  --version       print the version\n"
           "\n"
           "Keys: Escape or any mouse button ends the show, r prints the demo time.\n"
           "  Space           pause and resume (the music and the clock stop with it)\n"
           "  Right, PageDown the start of the next part\n"
           "  Left, PageUp    the start of this part, or of the one before within its\n"
           "                  first 2 seconds\n"
           "  Home            the start of the show\n"
           "  Shift+Right, Shift+Left\n"
           "                  5 seconds forward, back\n"
           "  Up, Down        30 seconds forward, back\n"
           "  . and ,         one frame forward, back, while paused\n"
           "  m               mute and unmute\n"
           "  + and -         louder and softer\n"
           "  f               fullscreen and back, for a window (the display is never\n"
           "                  switched for it)\n"
           "None of them works while capturing; without them the show plays as ever.\n";
}

const char* showVersion() { return "kaskade " KASKADE_VERSION "\n"; }
