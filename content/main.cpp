// kaskade-content: generates the show's archive "3d" (images and scenes) and
// its soundtrack "harbour.mp3" into a directory, and on request the program's
// icons. Same bytes on every run.
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "app/desktop/capture/png_file.h"
#include "content/content_entry.h"
#include "content/images/app_icon.h"
#include "content/images/images.h"
#include "content/scenes/scenes.h"
#include "content/music/soundtrack.h"
#include "resources/archive_format.h"

namespace {

const char* const USAGE =
    "usage: kaskade-content OUTDIR [--loose DIR] [--icons DIR]\n"
    "  Writes OUTDIR/3d (the archive of images and scenes) and OUTDIR/harbour.mp3.\n"
    "  --loose DIR  also writes every archive entry as a file of its own in DIR\n"
    "  --icons DIR  also writes the program's icons, DIR/NxN/apps/kaskade.png\n"
    "               for N = 16, 22, 24, 32, 48, 64, 128 and 256 (a hicolor theme)\n"
    "  --help       prints this text\n";

struct Options {
    std::string outDir;
    std::string looseDir;  // empty: no loose files
    std::string iconDir;   // empty: no icons
};

// Returns false (after printing why) when the command line is not usable.
bool parseOptions(int argc, char** argv, Options* options, bool* help) {
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--help") == 0 || std::strcmp(argv[i], "-h") == 0) {
            *help = true;
            return true;
        }
        if (std::strcmp(argv[i], "--loose") == 0 || std::strcmp(argv[i], "--icons") == 0) {
            if (i + 1 >= argc) {
                std::fprintf(stderr, "kaskade-content: %s needs a directory\n", argv[i]);
                return false;
            }
            std::string& dir = std::strcmp(argv[i], "--loose") == 0 ? options->looseDir : options->iconDir;
            dir = argv[++i];
        } else if (argv[i][0] == '-') {
            std::fprintf(stderr, "kaskade-content: unknown option %s\n", argv[i]);
            return false;
        } else if (options->outDir.empty()) {
            options->outDir = argv[i];
        } else {
            std::fprintf(stderr, "kaskade-content: more than one output directory\n");
            return false;
        }
    }
    if (options->outDir.empty()) {
        std::fprintf(stderr, "kaskade-content: no output directory given\n");
        return false;
    }
    return true;
}

// Creates `dir` and its parents when missing.
bool makeDirectory(const std::string& dir) {
    std::error_code error;
    std::filesystem::create_directories(dir, error);
    if (error) {
        std::fprintf(stderr, "kaskade-content: cannot create %s: %s\n", dir.c_str(), error.message().c_str());
        return false;
    }
    return true;
}

bool writeFile(const std::string& path, const std::vector<uint8_t>& bytes) {
    std::string error;
    if (!writeWholeFile(path, bytes, &error)) {
        std::fprintf(stderr, "kaskade-content: %s\n", error.c_str());
        return false;
    }
    return true;
}

bool writeIcons(const std::string& dir) {
    for (const int size : APP_ICON_SIZES) {
        const std::string sizeDir = dir + "/" + std::to_string(size) + "x" + std::to_string(size) + "/apps";
        if (!makeDirectory(sizeDir)) return false;
        const std::vector<uint8_t> pixels = makeAppIcon(size);
        std::string error;
        if (!writePng(sizeDir + "/kaskade.png", size, size, 4, pixels.data(), false, 9, &error)) {
            std::fprintf(stderr, "kaskade-content: %s\n", error.c_str());
            return false;
        }
    }
    return true;
}

std::vector<ContentEntry> archiveEntries() {
    std::vector<ContentEntry> entries = makeImages();
    for (ContentEntry& scene : makeScenes()) entries.push_back(std::move(scene));
    return entries;
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    bool help = false;
    if (!parseOptions(argc, argv, &options, &help)) {
        std::fputs(USAGE, stderr);
        return 2;
    }
    if (help) {
        std::fputs(USAGE, stdout);
        return 0;
    }

    if (!makeDirectory(options.outDir)) return 1;
    if (!options.looseDir.empty() && !makeDirectory(options.looseDir)) return 1;
    const std::vector<ContentEntry> entries = archiveEntries();
    std::vector<uint8_t> archive;
    for (const ContentEntry& entry : entries) {
        std::string error;
        if (!appendArchiveEntry(archive, entry.name, entry.bytes.data(), entry.bytes.size(), &error)) {
            std::fprintf(stderr, "kaskade-content: %s\n", error.c_str());
            return 1;
        }
        if (!options.looseDir.empty() && !writeFile(options.looseDir + "/" + entry.name, entry.bytes)) return 1;
    }
    if (!writeFile(options.outDir + "/3d", archive)) return 1;
    if (!writeFile(options.outDir + "/harbour.mp3", makeSoundtrackMp3())) return 1;
    if (!options.iconDir.empty() && !writeIcons(options.iconDir)) return 1;
    return 0;
}
