// The packages scripts/package made in dist/ (KASKADE_DIST), as people get
// them: the Debian package, checked by dpkg-deb and lintian and unpacked with
// dpkg-deb -x (installing it would change this machine), and the .tar.gz
// unpacked and moved elsewhere. Each tree draws part 13 as the reference frame
// has it when started from a directory of its own, reads its data beside
// itself, and its tools, manual pages and menu entry work.
#include "tests/packaging/commands.h"

#include "app/desktop/capture/png_file.h"
#include "tests/support/fatal_catcher.h"
#include "tests/support/frame_compare.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <regex>
#include <set>

namespace {

bool exists(const std::string& path) { return access(path.c_str(), F_OK) == 0; }

// The files every install holds, relative to its prefix.
std::vector<std::string> installedFiles() {
    std::vector<std::string> files = {
        "bin/kaskade", "bin/kaskade-archive", "bin/kaskade-inspect", "share/kaskade/3d", "share/kaskade/harbour.mp3",
        "share/man/man6/kaskade.6.gz", "share/man/man1/kaskade-archive.1.gz", "share/man/man1/kaskade-inspect.1.gz",
        "share/applications/kaskade.desktop", "share/doc/kaskade/README.md", "share/doc/kaskade/copyright",
        "share/doc/kaskade/changelog.gz"};
    for (const int size : {16, 22, 24, 32, 48, 64, 128, 256}) {
        files.push_back("share/icons/hicolor/" + std::to_string(size) + "x" + std::to_string(size) + "/apps/kaskade.png");
    }
    return files;
}

// "" when the tree at `prefix`, started from the directory `cwd`, draws part
// 13's middle frame as the reference has it, reads its archive beside itself,
// and its tools do their jobs; else what went wrong.
std::string runsFrom(const std::string& prefix, const std::string& cwd) {
    const std::string in = "cd " + shellQuoted(cwd) + " && ";
    const CommandResult show = runCommand(in + shellQuoted(prefix + "/bin/kaskade") +
                                          " --fps 4 --part 13 --nosound --verbose --capture frames");
    if (show.status != 0 ||
        show.output.find("3d read from " + prefix + "/share/kaskade/3d (beside the program)") == std::string::npos) {
        return "kaskade: " + std::to_string(show.status) + ": " + show.output;
    }
    // Part 13's middle (demo time 2097) is frame 838 of the whole show at 4
    // frames/s, and a show started at part 13 begins with its frame 772.
    PngImage reference;
    PngImage captured;
    std::string error;
    if (!readPng(testDataPath("frames/part13.png"), &reference, &error) ||
        !readPng(cwd + "/frames/frame_00066.png", &captured, &error)) {
        return error;
    }
    if (!matchesReference(captured, reference)) {
        return "part 13's middle frame is not the reference";
    }
    const std::string archive = shellQuoted(prefix + "/share/kaskade/3d");
    const CommandResult list = runCommand(in + shellQuoted(prefix + "/bin/kaskade-archive") + " list " + archive);
    if (list.status != 0 || list.output.find(" mark12.pcx\n") == std::string::npos) {
        return "kaskade-archive list: " + list.output;
    }
    const CommandResult scene = runCommand(in + shellQuoted(prefix + "/bin/kaskade-inspect") + " scene " +
                                           shellQuoted(prefix + "/share/kaskade/3d:8d.3ds"));
    if (scene.status != 0 || scene.output.find("\"segment\": {\"startFrame\": ") == std::string::npos) {
        return "kaskade-inspect scene: " + scene.output.substr(0, 400);
    }
    return "";
}

// The newest file of `dist` whose name has `prefix` and `suffix` (the one
// scripts/package made last); "" when none has.
std::string packageIn(const std::string& dist, const std::string& prefix, const std::string& suffix) {
    std::error_code missing;
    std::filesystem::path newest;
    for (const auto& entry : std::filesystem::directory_iterator(dist, missing)) {
        const std::string name = entry.path().filename().string();
        if (name.rfind(prefix, 0) == 0 && name.size() > suffix.size() &&
            name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0 &&
            (newest.empty() || entry.last_write_time() > std::filesystem::last_write_time(newest))) {
            newest = entry.path();
        }
    }
    return newest.string();
}

// The packages scripts/package made last, each unpacked once for every case.
class Packages : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        dir_ = new ScratchDir;
        const std::string dist = std::getenv("KASKADE_DIST") ? std::getenv("KASKADE_DIST") : KASKADE_DIST;
        deb_ = packageIn(dist, "kaskade_", ".deb");
        const std::string tar = packageIn(dist, "kaskade-" KASKADE_PROJECT_VERSION, "-linux-" + std::string(KASKADE_ARCH) + ".tar.gz");
        unpacked_ = runCommand("dpkg-deb -x " + shellQuoted(deb_) + " " + shellQuoted(dir_->path() + "/deb") +
                               " && mkdir " + shellQuoted(dir_->path() + "/tar") + " && tar -xzf " + shellQuoted(tar) +
                               " -C " + shellQuoted(dir_->path() + "/tar"));
    }
    static void TearDownTestSuite() { delete dir_; }
    void SetUp() override {
        if (std::getenv("DISPLAY") == nullptr) {
            GTEST_SKIP() << "needs an X display (the suite runs under xvfb-run)";
        }
        ASSERT_EQ(unpacked_.status, 0) << unpacked_.output << "(scripts/package makes the packages first)";
    }
    // The tar.gz's one folder, moved to a path with a space in it.
    static std::string movedTree() {
        const std::string moved = dir_->path() + "/moved elsewhere";
        if (!exists(moved)) {
            std::vector<std::filesystem::path> top(std::filesystem::directory_iterator(dir_->path() + "/tar"), {});
            EXPECT_EQ(top.size(), 1u) << "one folder at the top of the archive";
            std::filesystem::rename(top.at(0), moved);
        }
        return moved;
    }
    static std::string usr() { return dir_->path() + "/deb/usr"; }

    static ScratchDir* dir_;
    static std::string deb_;
    static CommandResult unpacked_;
};
ScratchDir* Packages::dir_ = nullptr;
std::string Packages::deb_;
CommandResult Packages::unpacked_;

TEST_F(Packages, TheDebianPackagesDependenciesAreHereAndLintianFindsNoError) {
    // dpkg-shlibdeps lists the show's libraries: each group of alternatives
    // has one installed here (dpkg-checkbuilddeps' notation, read by dpkg).
    const std::string depends = runCommand("dpkg-deb -f " + shellQuoted(deb_) + " Depends").output;
    EXPECT_GE(std::count(depends.begin(), depends.end(), ','), 4) << depends;
    const CommandResult satisfied = runCommand("dpkg-checkbuilddeps -d " + shellQuoted(depends) + " /dev/null");
    EXPECT_EQ(satisfied.status, 0) << satisfied.output;
    EXPECT_EQ(runCommand("dpkg-deb -f " + shellQuoted(deb_) + " Recommends").output, "ffmpeg\n");
    const CommandResult lintian = runCommand("lintian --no-tag-display-limit " + shellQuoted(deb_));
    EXPECT_EQ(lintian.status, 0) << lintian.output << " (scripts/setup tests installs lintian)";
    EXPECT_EQ(lintian.output.find("E: "), std::string::npos) << lintian.output;
}

TEST_F(Packages, EachTreeHoldsEveryFileAndDrawsPart13FromADirectoryOfItsOwn) {
    for (const std::string& prefix : {usr(), movedTree()}) {
        for (const std::string& file : installedFiles()) {
            EXPECT_TRUE(exists(prefix + "/" + file)) << prefix << ": " << file;
        }
        ScratchDir cwd;
        EXPECT_EQ(runsFrom(prefix, cwd.path()), "") << prefix;
    }
    const CommandResult version = runCommand(shellQuoted(usr() + "/bin/kaskade") + " --version");
    EXPECT_EQ(version.output.rfind("kaskade " KASKADE_PROJECT_VERSION, 0), 0u) << version.output;
}

TEST_F(Packages, AnArchiveInTheWorkingDirectoryComesFirstAndWithoutDataTheReportsAreAsEver) {
    const std::string tree = movedTree();
    ScratchDir cwd;
    const std::string show = "cd " + shellQuoted(cwd.path()) + " && " + shellQuoted(tree + "/bin/kaskade") +
                             " --fps 4 --part 13 --verbose --capture frames";
    // Cut short, so that the show stops on it instead of going on with the tree's own.
    std::filesystem::copy_file(tree + "/share/kaskade/3d", cwd.path() + "/3d");
    std::filesystem::resize_file(cwd.path() + "/3d", 300000);
    CommandResult run = runCommand(show + " --nosound");
    EXPECT_EQ(run.status, 255) << run.output;
    EXPECT_NE(run.output.find("3d read from " + cwd.path() + "/3d (the working directory)"), std::string::npos)
        << run.output;
    EXPECT_NE(run.output.find("KOBALT LIBRARY ERROR: File not found : "), std::string::npos) << run.output;
    if (exists(KASKADE_INSTALLED_DATA_DIR)) {
        return;  // the show is installed on this machine: its data would be found there
    }
    std::filesystem::remove(cwd.path() + "/3d");
    std::filesystem::rename(tree + "/share/kaskade", dir_->path() + "/data");
    run = runCommand(show + " --nosound");
    EXPECT_EQ(run.status, 255) << run.output;
    EXPECT_NE(run.output.find("KOBALT LIBRARY ERROR: cannot open library"), std::string::npos) << run.output;
    run = runCommand(show);
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_NE(run.output.find("BASS ERROR: Can't play the file"), std::string::npos) << run.output;
    std::filesystem::rename(dir_->path() + "/data", tree + "/share/kaskade");
}

// A manual page as man renders it for an 80-column terminal, with what man
// and groff say about it with their warnings on.
std::string render(const std::string& page, std::string* warnings) {
    const std::string man = "MANWIDTH=80 man -E UTF-8 ", file = " -l " + shellQuoted(page);
    *warnings = runCommand("(" + man + "--warnings" + file + " 2>&1 >/dev/null); zcat " + shellQuoted(page) +
                           " | groff -man -ww -z -Tutf8 2>&1").output;
    return runCommand("(" + man + file + " 2>/dev/null)").output;
}

TEST_F(Packages, EachManualPageNamesWhatItsProgramsHelpListsAndTheMenuEntryStartsTheShow) {
    const struct {
        std::string program, page, item;  // item: a regex of what --help lists, then what the page shows
        size_t count;
    } pages[] = {{"kaskade", "man6/kaskade.6.gz", "  (--[a-z]+)", 13},
                 {"kaskade-archive", "man1/kaskade-archive.1.gz", "\\n  ([a-z]+) [A-Z]", 3},
                 {"kaskade-inspect", "man1/kaskade-inspect.1.gz", "\\n  ([a-z]+) [A-Z]", 3}};
    for (const auto& p : pages) {
        std::string warnings;
        const std::string text = render(usr() + "/share/man/" + p.page, &warnings);
        EXPECT_EQ(warnings, "") << p.page;
        for (const char* section : {"\nNAME\n", "\nSYNOPSIS\n", "\nDESCRIPTION\n", "\nEXIT STATUS\n", "\nSEE ALSO\n"}) {
            EXPECT_NE(text.find(section), std::string::npos) << p.page << ": " << section;
        }
        const std::string help = runCommand(shellQuoted(usr() + "/bin/" + p.program) + " --help").output;
        std::set<std::string> items;
        const std::regex item(p.item);
        for (std::sregex_iterator it(help.begin(), help.end(), item), end; it != end; ++it) {
            items.insert((*it)[1]);
        }
        EXPECT_GE(items.size(), p.count) << p.program;
        for (const std::string& name : items) {
            EXPECT_NE(text.find("\n       " + name), std::string::npos) << p.page << ": " << name << " has no entry";
        }
    }
    std::string warnings;
    const std::string show = render(usr() + "/share/man/man6/kaskade.6.gz", &warnings);
    for (const char* words : {"KEYS", "Escape", "FILES", "/share/kaskade", "the working directory", "130"}) {
        EXPECT_NE(show.find(words), std::string::npos) << words;
    }
    const std::string entry = usr() + "/share/applications/kaskade.desktop";
    const CommandResult valid = runCommand("desktop-file-validate " + shellQuoted(entry) + " && cat " + shellQuoted(entry));
    EXPECT_EQ(valid.status, 0) << valid.output;
    EXPECT_NE(valid.output.find("\nExec=kaskade\n"), std::string::npos) << valid.output;
    EXPECT_NE(valid.output.find("\nIcon=kaskade\n"), std::string::npos) << valid.output;
    EXPECT_EQ(valid.output.find("\nPath="), std::string::npos) << "the show finds its data from any directory";
}

}  // namespace
