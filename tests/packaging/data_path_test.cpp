// Where the show's data files are found (base/data_path.h, the desktop's
// places in app/desktop/data_directories.h): the working directory first, as
// it always was, then the added directories in order, and the bare name when
// none holds the file, so that opening it fails as it always did.
#include "app/desktop/data_directories.h"
#include "base/data_path.h"
#include "tests/packaging/installed_show.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <vector>

namespace {

struct Report {
    std::string name;
    std::string path;
    std::string place;
};
std::vector<Report> g_reports;

void record(const char* name, const std::string& path, const std::string& place) {
    g_reports.push_back({name, path, place});
}

void writeFile(const std::string& path) {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream(path) << "data";
}

// Runs each case in a working directory of its own and restores the old one.
class DataPath : public ::testing::Test {
protected:
    void SetUp() override {
        previous_ = std::filesystem::current_path();
        std::filesystem::create_directories(dir_.path() + "/work");
        std::filesystem::current_path(dir_.path() + "/work");
        clearDataDirectories();
        g_reports.clear();
        setDataFileReport(record);
    }
    void TearDown() override {
        setDataFileReport(nullptr);
        clearDataDirectories();
        std::filesystem::current_path(previous_);
    }
    std::string at(const std::string& relative) const { return dir_.path() + "/" + relative; }

    ScratchDir dir_;
    std::filesystem::path previous_;
};

TEST_F(DataPath, TheWorkingDirectoryComesFirstThenTheDirectoriesInTheOrderAdded) {
    addDataDirectory(at("beside"), "beside the program");
    addDataDirectory(at("installed"), "the installed data directory");
    writeFile(at("installed/3d"));
    EXPECT_EQ(dataFilePath("3d"), at("installed/3d"));
    writeFile(at("beside/3d"));
    EXPECT_EQ(dataFilePath("3d"), at("beside/3d"));
    writeFile(at("work/3d"));
    EXPECT_EQ(dataFilePath("3d"), "3d") << "the working directory's file is opened by its bare name, as always";
}

TEST_F(DataPath, ANameNoPlaceHoldsComesBackBareAndIsNotReported) {
    addDataDirectory(at("beside"), "beside the program");
    EXPECT_EQ(dataFilePath("harbour.mp3"), "harbour.mp3");
    EXPECT_TRUE(g_reports.empty());
}

TEST_F(DataPath, ADirectoryOfThatNameIsPassedOver) {
    addDataDirectory(at("installed"), "the installed data directory");
    writeFile(at("installed/3d"));
    std::filesystem::create_directories(at("work/3d"));
    EXPECT_EQ(dataFilePath("3d"), at("installed/3d"));
}

TEST_F(DataPath, APathIsTakenAsItIs) {
    addDataDirectory(at("installed"), "the installed data directory");
    writeFile(at("installed/3d"));
    EXPECT_EQ(dataFilePath("./3d"), "./3d");
    EXPECT_EQ(dataFilePath(at("elsewhere/3d").c_str()), at("elsewhere/3d"));
}

TEST_F(DataPath, EachFileIsReportedOnceWithItsFullPathAndPlace) {
    addDataDirectory(at("installed"), "the installed data directory");
    writeFile(at("installed/harbour.mp3"));
    writeFile(at("work/3d"));
    for (int i = 0; i < 3; ++i) {
        dataFilePath("3d");
        dataFilePath("harbour.mp3");
    }
    ASSERT_EQ(g_reports.size(), 2u);
    EXPECT_EQ(g_reports[0].name, "3d");
    EXPECT_EQ(g_reports[0].path, std::filesystem::current_path().string() + "/3d");
    EXPECT_EQ(g_reports[0].place, "the working directory");
    EXPECT_EQ(g_reports[1].path, at("installed/harbour.mp3"));
    EXPECT_EQ(g_reports[1].place, "the installed data directory");
}

TEST(DataDirectoryBeside, IsShareKaskadeBesideTheProgramsBinDirectory) {
    EXPECT_EQ(dataDirectoryBeside("/opt/kaskade-1.0/bin/kaskade"), "/opt/kaskade-1.0/share/kaskade");
    EXPECT_EQ(dataDirectoryBeside("/usr/bin/kaskade"), "/usr/share/kaskade");
    EXPECT_EQ(dataDirectoryBeside("/home/someone/show/bin/../bin/kaskade"), "/home/someone/show/share/kaskade");
    EXPECT_EQ(dataDirectoryBeside("/a dir/with space/bin/kaskade"), "/a dir/with space/share/kaskade");
}

}  // namespace
