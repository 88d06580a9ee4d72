#include "app/desktop/options.h"

#include <cstdlib>
#include <cstring>

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

// A whole number from `low` to `high`, or 0.
int parseWhole(const char* text, long low, long high) {
    char* end = nullptr;
    const long value = std::strtol(text, &end, 10);
    return end != text && *end == '\0' && value >= low && value <= high ? static_cast<int>(value) : 0;
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
        } else if (std::strcmp(argument, "--loop") == 0) {
            options.loop = true;
        }
        if (missing) {
            options.error = std::string(argument) + " needs a value";
        }
    }
    if (!options.capturePath.empty() && options.fps == 0 && options.error.empty()) {
        options.fps = CAPTURE_DEFAULT_FPS;
    }
    if (options.loop && !options.capturePath.empty() && options.error.empty()) {
        options.error = "--loop and --capture do not go together: a looping show never ends, so its capture would not";
    }
    return options;
}

const char* showUsage() {
    return "usage: kaskade [--window] [--nosound] [--fps N] [--capture PATH] [--part N]\n"
           "               [--loop] [--verbose] [--help] [--version]\n"
           "\n"
           "Plays the show from the archive \"3d\" and the soundtrack \"harbour.mp3\" in the\n"
           "working directory. Without arguments it runs fullscreen; any argument gives a\n"
           "640 x 480 window.\n"
           "\n"
           "  --window        run in a window (any argument does)\n"
           "  --nosound       open no audio device; the show runs silently on its clock\n"
           "  --fps N         step the clock by frames (1 to 240 per second) instead of the\n"
           "                  wall: every run draws the same frames, as fast as it can\n"
           "  --capture PATH  write every frame: PATH ending in .mp4, .mkv or .webm is a\n"
           "                  video with the soundtrack (needs ffmpeg), anything else a\n"
           "                  directory of frame_00000.png ... (implies --fps 30)\n"
           "  --part N        start at part N (1 to 13), the music and the clock at its\n"
           "                  place in the show, as if parts 1 to N-1 had played\n"
           "  --loop          after the last part, start over at part 1 until ended\n"
           "  --verbose       a line per part on standard error: set-up time, frame rate\n"
           "  --help          print this text\n"
           "  --version       print the version\n"
           "\n"
           "Keys: Escape or any mouse button ends the show, r prints the demo time.\n";
}

const char* showVersion() { return "kaskade " KASKADE_VERSION "\n"; }
