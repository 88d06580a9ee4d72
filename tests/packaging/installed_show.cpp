#include "tests/packaging/installed_show.h"

#include "app/desktop/capture/png_file.h"
#include "tests/support/fatal_catcher.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace {

// Part 13 runs from demo time 1925 to 2269; at 4 frames/s frame n of the
// whole show shows 2.5 n, and a show started at part 13 begins with the whole
// show's frame 772 (tests/capture counts them the same way).
constexpr int PART13_MIDDLE_OF_SHOW = (1925 + 2269) * 4 / 20;
constexpr int PART13_FIRST_OF_SHOW = 1925 * 4 / 10 + 2;
// A few pixels may move by a rounding step; a changed scene moves thousands.
constexpr int PIXEL_STEP = 16;

}  // namespace

CommandResult runCommand(const std::string& command) {
    CommandResult result;
    FILE* pipe = popen((command + " 2>&1").c_str(), "r");
    if (pipe == nullptr) {
        result.output = "cannot run: " + command;
        return result;
    }
    char buffer[4096];
    size_t got = 0;
    while ((got = std::fread(buffer, 1, sizeof buffer, pipe)) > 0) {
        result.output.append(buffer, got);
    }
    const int status = pclose(pipe);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return result;
}

std::string shellQuoted(const std::string& text) {
    std::string quoted = "'";
    for (const char c : text) {
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return quoted + "'";
}

ScratchDir::ScratchDir() {
    std::string pattern = ::testing::TempDir() + "kaskade-package-XXXXXX";
    if (mkdtemp(pattern.data()) != nullptr) {
        path_ = pattern;
    }
}

ScratchDir::~ScratchDir() {
    if (!path_.empty()) {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
}

CommandResult capturePart13(const std::string& prefix, const std::string& cwd) {
    return runCommand("cd " + shellQuoted(cwd) + " && " + shellQuoted(prefix + "/bin/kaskade") +
                      " --fps 4 --part 13 --nosound --verbose --capture frames");
}

std::string part13AgainstReference(const std::string& cwd) {
    char name[32];
    std::snprintf(name, sizeof name, "/frame_%05d.png", PART13_MIDDLE_OF_SHOW - PART13_FIRST_OF_SHOW);
    PngImage reference;
    PngImage captured;
    std::string error;
    if (!readPng(testDataPath("frames/part13.png"), &reference, &error) ||
        !readPng(cwd + "/frames" + name, &captured, &error)) {
        return error;
    }
    if (captured.pixels.size() != reference.pixels.size()) {
        return "the frame is " + std::to_string(captured.width) + " x " + std::to_string(captured.height);
    }
    size_t differing = 0;
    for (size_t i = 0; i < captured.pixels.size(); ++i) {
        differing += std::abs(captured.pixels[i] - reference.pixels[i]) > PIXEL_STEP ? 1 : 0;
    }
    if (differing > captured.pixels.size() / 1000) {
        return std::to_string(differing) + " of " + std::to_string(captured.pixels.size()) + " values differ";
    }
    return "";
}

std::string toolsWorkFrom(const std::string& prefix, const std::string& cwd) {
    const std::string in = "cd " + shellQuoted(cwd) + " && ";
    const std::string archive = shellQuoted(prefix + "/share/kaskade/3d");
    const CommandResult list = runCommand(in + shellQuoted(prefix + "/bin/kaskade-archive") + " list " + archive);
    if (list.status != 0 || list.output.find(" mark12.pcx\n") == std::string::npos ||
        list.output.find(" 8d.3ds\n") == std::string::npos) {
        return "kaskade-archive list: " + std::to_string(list.status) + ": " + list.output;
    }
    const CommandResult pcx = runCommand(in + shellQuoted(prefix + "/bin/kaskade-inspect") + " pcx " +
                                         shellQuoted(prefix + "/share/kaskade/3d:mark12.pcx") + " logo.png");
    PngImage logo;
    std::string error;
    if (pcx.status != 0 || !readPng(cwd + "/logo.png", &logo, &error) || logo.width != 512 || logo.height != 256) {
        return "kaskade-inspect pcx: " + std::to_string(pcx.status) + ": " + pcx.output + error;
    }
    const CommandResult scene = runCommand(in + shellQuoted(prefix + "/bin/kaskade-inspect") + " scene " +
                                           shellQuoted(prefix + "/share/kaskade/3d:8d.3ds"));
    if (scene.status != 0 || scene.output.find("\"meshes\": [") == std::string::npos ||
        scene.output.find("\"segment\": {\"startFrame\": ") == std::string::npos) {
        return "kaskade-inspect scene: " + std::to_string(scene.status) + ": " + scene.output.substr(0, 400);
    }
    return "";
}

std::vector<std::string> installedFiles() {
    std::vector<std::string> files = {
        "bin/kaskade",
        "bin/kaskade-archive",
        "bin/kaskade-inspect",
        "share/kaskade/3d",
        "share/kaskade/harbour.mp3",
        "share/man/man6/kaskade.6.gz",
        "share/man/man1/kaskade-archive.1.gz",
        "share/man/man1/kaskade-inspect.1.gz",
        "share/applications/kaskade.desktop",
        "share/doc/kaskade/README.md",
        "share/doc/kaskade/copyright",
        "share/doc/kaskade/changelog.gz",
    };
    for (const int size : {16, 22, 24, 32, 48, 64, 128, 256}) {
        const std::string side = std::to_string(size);
        files.push_back("share/icons/hicolor/" + side + "x" + side + "/apps/kaskade.png");
    }
    return files;
}
