// The show away from its source and build trees, as people get it: this
// build installed with cmake --install into a fresh prefix, the .tar.gz that
// CPack makes of it unpacked and moved elsewhere, and the Debian package
// (checked, then unpacked with dpkg-deb -x: installing it would change this
// machine). Each one draws part 13 as the reference frame has it when started
// from a directory of its own, and its tools work from there.
#include "tests/packaging/installed_show.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <sstream>

namespace {

bool exists(const std::string& path) { return access(path.c_str(), F_OK) == 0; }

// Skips a test without a display or without this build's content.
void needShowAndDisplay() {
    if (std::getenv("DISPLAY") == nullptr) {
        GTEST_SKIP() << "needs an X display (the suite runs under xvfb-run)";
    }
}

// What a relocated tree must do: draw part 13 from an unrelated directory,
// reading its data beside the program, and run its tools from there.
void expectTheShowRunsFrom(const std::string& prefix, const std::string& cwd) {
    const CommandResult show = capturePart13(prefix, cwd);
    ASSERT_EQ(show.status, 0) << show.output;
    EXPECT_NE(show.output.find("3d read from " + prefix + "/share/kaskade/3d (beside the program)"), std::string::npos)
        << show.output;
    EXPECT_EQ(part13AgainstReference(cwd), "");
    EXPECT_EQ(toolsWorkFrom(prefix, cwd), "");
}

// Packs this build with CPack's `generator` into `dir`; the package's path.
std::string makePackage(const std::string& generator, const std::string& dir, const std::string& suffix) {
    const CommandResult made = runCommand("cpack -G " + generator + " --config " +
                                          shellQuoted(std::string(KASKADE_BUILD_DIR) + "/CPackConfig.cmake") +
                                          " -B " + shellQuoted(dir));
    EXPECT_EQ(made.status, 0) << made.output;
    for (const auto& entry : std::filesystem::directory_iterator(dir)) {
        const std::string name = entry.path().filename().string();
        if (name.size() > suffix.size() && name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0) {
            return entry.path().string();
        }
    }
    ADD_FAILURE() << "no " << suffix << " in " << dir << ": " << made.output;
    return "";
}

class InstalledTree : public ::testing::Test {
protected:
    void SetUp() override {
        needShowAndDisplay();
        const CommandResult install = runCommand("cmake --install " + shellQuoted(KASKADE_BUILD_DIR) + " --prefix " +
                                                 shellQuoted(prefix_.path()));
        ASSERT_EQ(install.status, 0) << install.output;
    }
    ScratchDir prefix_;
    ScratchDir cwd_;
};

TEST_F(InstalledTree, HoldsEveryFileAndDrawsPart13FromAnUnrelatedDirectory) {
    for (const std::string& file : installedFiles()) {
        EXPECT_TRUE(exists(prefix_.path() + "/" + file)) << file;
    }
    expectTheShowRunsFrom(prefix_.path(), cwd_.path());
    const CommandResult version = runCommand(shellQuoted(prefix_.path() + "/bin/kaskade") + " --version");
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.output.rfind("kaskade " KASKADE_PROJECT_VERSION, 0), 0u) << version.output;
}

TEST_F(InstalledTree, AnArchiveInTheWorkingDirectoryComesFirst) {
    // Cut short, so that the show stops on it instead of going on with the installed one.
    std::filesystem::copy_file(prefix_.path() + "/share/kaskade/3d", cwd_.path() + "/3d");
    std::filesystem::resize_file(cwd_.path() + "/3d", 300000);
    const CommandResult show = capturePart13(prefix_.path(), cwd_.path());
    EXPECT_EQ(show.status, 255) << show.output;
    EXPECT_NE(show.output.find("3d read from " + cwd_.path() + "/3d (the working directory)"), std::string::npos)
        << show.output;
    EXPECT_NE(show.output.find("KOBALT LIBRARY ERROR: File not found : "), std::string::npos) << show.output;
}

TEST_F(InstalledTree, WithoutItsDataTheProgramReportsAsItAlwaysHas) {
    if (exists(KASKADE_INSTALLED_DATA_DIR)) {
        GTEST_SKIP() << "the show is installed in " << KASKADE_INSTALLED_DATA_DIR << " on this machine";
    }
    std::filesystem::remove_all(prefix_.path() + "/share/kaskade");
    const std::string show = "cd " + shellQuoted(cwd_.path()) + " && " + shellQuoted(prefix_.path() + "/bin/kaskade");
    const CommandResult noArchive = runCommand(show + " --fps 4 --nosound --capture frames");
    EXPECT_EQ(noArchive.status, 255) << noArchive.output;
    EXPECT_NE(noArchive.output.find("KOBALT LIBRARY ERROR: cannot open library"), std::string::npos)
        << noArchive.output;
    const CommandResult noSoundtrack = runCommand(show + " --fps 4 --capture frames");
    EXPECT_EQ(noSoundtrack.status, 0) << noSoundtrack.output;
    EXPECT_NE(noSoundtrack.output.find("BASS ERROR: Can't play the file"), std::string::npos) << noSoundtrack.output;
}

TEST(RelocatableArchive, TheUnpackedTreeMovedElsewhereRunsFromThere) {
    needShowAndDisplay();
    ScratchDir packages;
    ScratchDir unpacked;
    ScratchDir cwd;
    const std::string archive = makePackage("TGZ", packages.path(), ".tar.gz");
    ASSERT_FALSE(archive.empty());
    const CommandResult untar = runCommand("tar -xzf " + shellQuoted(archive) + " -C " + shellQuoted(unpacked.path()));
    ASSERT_EQ(untar.status, 0) << untar.output;
    std::vector<std::filesystem::path> top(std::filesystem::directory_iterator(unpacked.path()), {});
    ASSERT_EQ(top.size(), 1u) << "one folder at the top of the archive";
    for (const std::string& file : installedFiles()) {
        EXPECT_TRUE(exists(top[0].string() + "/" + file)) << file;
    }
    const std::string moved = unpacked.path() + "/moved/somewhere else";
    std::filesystem::create_directories(unpacked.path() + "/moved");
    std::filesystem::rename(top[0], moved);
    expectTheShowRunsFrom(moved, cwd.path());
}

// The packages Debian's dpkg-deb says `field` (Depends, Recommends) holds:
// groups of alternatives.
std::vector<std::vector<std::string>> relations(const std::string& deb, const std::string& field) {
    const CommandResult read = runCommand("dpkg-deb -f " + shellQuoted(deb) + " " + field);
    std::vector<std::vector<std::string>> groups;
    std::stringstream all(read.output);
    std::string group;
    while (std::getline(all, group, ',')) {
        groups.emplace_back();
        std::stringstream alternatives(group);
        std::string alternative;
        while (std::getline(alternatives, alternative, '|')) {
            std::stringstream words(alternative);
            std::string name;
            words >> name;
            if (!name.empty()) {
                groups.back().push_back(name);
            }
        }
    }
    return groups;
}

bool installedHere(const std::string& package) {
    return runCommand("dpkg-query -W -f='${Status}' " + shellQuoted(package)).output == "install ok installed";
}

TEST(DebianPackage, ItsDependenciesAreHereItHoldsEveryFileLintianFindsNoErrorAndItRuns) {
    needShowAndDisplay();
    ScratchDir packages;
    ScratchDir root;
    ScratchDir cwd;
    const std::string deb = makePackage("DEB", packages.path(), ".deb");
    ASSERT_FALSE(deb.empty());

    const std::vector<std::vector<std::string>> depends = relations(deb, "Depends");
    EXPECT_GE(depends.size(), 5u) << "dpkg-shlibdeps lists the show's libraries";
    for (const std::vector<std::string>& alternatives : depends) {
        bool any = false;
        for (const std::string& package : alternatives) {
            any = any || installedHere(package);
        }
        EXPECT_TRUE(any) << "no package of '" << alternatives.front() << "...' is installed here";
    }
    EXPECT_EQ(relations(deb, "Recommends"), (std::vector<std::vector<std::string>>{{"ffmpeg"}}));

    const CommandResult contents = runCommand("dpkg-deb --contents " + shellQuoted(deb));
    for (const std::string& file : installedFiles()) {
        EXPECT_NE(contents.output.find(" ./usr/" + file + "\n"), std::string::npos) << file;
    }

    if (runCommand("command -v lintian").status == 0) {
        const CommandResult lintian = runCommand("lintian --no-tag-display-limit " + shellQuoted(deb));
        EXPECT_EQ(lintian.output.find("E: "), std::string::npos) << lintian.output;
    } else {
        ADD_FAILURE() << "lintian is not installed (scripts/setup tests installs it)";
    }

    const CommandResult unpack = runCommand("dpkg-deb -x " + shellQuoted(deb) + " " + shellQuoted(root.path()));
    ASSERT_EQ(unpack.status, 0) << unpack.output;
    expectTheShowRunsFrom(root.path() + "/usr", cwd.path());
}

}  // namespace
