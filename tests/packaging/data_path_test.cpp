// Where the show's data files are found (base/data_path.h, the desktop's
// places in app/desktop/data_directories.h): the working directory first, as
// it always was, then the added directories in order, and the bare name when
// none holds the file, so that opening it fails as it always did.
#include "app/desktop/data_directories.h"
#include "base/data_path.h"
#include "tests/packaging/commands.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <vector>

namespace {

std::vector<std::string> g_reports;  // "name path (place)"

void record(const char* name, const std::string& path, const std::string& place) {
    g_reports.push_back(std::string(name) + " " + path + " (" + place + ")");
}

TEST(DataPath, TheWorkingDirectoryFirstThenTheDirectoriesInOrderEachFileReportedOnce) {
    ScratchDir dir;
    const auto at = [&](const std::string& relative) { return dir.path() + "/" + relative; };
    const auto write = [&](const std::string& relative) {
        std::filesystem::create_directories(std::filesystem::path(at(relative)).parent_path());
        std::ofstream(at(relative)) << "data";
    };
    const std::filesystem::path previous = std::filesystem::current_path();
    std::filesystem::create_directories(at("work/harbour.mp3"));  // a directory of that name is passed over
    std::filesystem::current_path(at("work"));
    clearDataDirectories();
    addDataDirectory(at("beside"), "beside the program");
    addDataDirectory(at("installed"), "the installed data directory");

    EXPECT_EQ(dataFilePath("3d"), "3d") << "no place holds it: the bare name, opened as ever";
    write("installed/3d");
    EXPECT_EQ(dataFilePath("3d"), at("installed/3d"));
    write("beside/3d");
    EXPECT_EQ(dataFilePath("3d"), at("beside/3d"));
    write("installed/harbour.mp3");
    EXPECT_EQ(dataFilePath("./harbour.mp3"), "./harbour.mp3") << "a path is taken as it is";
    setDataFileReport(record);
    write("work/3d");
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(dataFilePath("3d"), "3d") << "the working directory's file, by its bare name";
        EXPECT_EQ(dataFilePath("harbour.mp3"), at("installed/harbour.mp3"));
    }
    const std::string here = std::filesystem::current_path().string();
    EXPECT_EQ(g_reports, (std::vector<std::string>{"3d " + here + "/3d (the working directory)",
                                                  "harbour.mp3 " + at("installed/harbour.mp3") +
                                                      " (the installed data directory)"}));
    setDataFileReport(nullptr);
    clearDataDirectories();
    std::filesystem::current_path(previous);
}

TEST(DataPath, TheDirectoryBesideTheProgramIsShareKaskadeBesideItsBin) {
    EXPECT_EQ(dataDirectoryBeside("/usr/bin/kaskade"), "/usr/share/kaskade");
    EXPECT_EQ(dataDirectoryBeside("/a dir/show/bin/../bin/kaskade"), "/a dir/show/share/kaskade");
}

}  // namespace
