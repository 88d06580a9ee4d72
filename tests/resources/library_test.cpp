// Walking archives with Library: look-ups, failures and the names that do not fit.
#include "resources/library.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "tests/resources/resource_test_files.h"
#include "tests/support/fatal_catcher.h"

namespace {

std::vector<uint8_t> bytesOf(const std::string& text) { return {text.begin(), text.end()}; }

class LibraryTest : public ::testing::Test {
protected:
    void SetUp() override { openBytes(buildArchive(standard)); }
    void TearDown() override { library.close(); }
    // Writes `archive` as the file `name` and opens it, closing what was open before.
    void openBytes(const std::vector<uint8_t>& archive, const std::string& name = "lib") {
        library.close();
        writeBytes(name, archive);
        library.open(name.c_str());
    }
    // The entry's data, read from where seekEntry left the file.
    std::string readEntry(const std::string& name) {
        library.seekEntry(name.c_str());
        std::string data(static_cast<size_t>(library.entrySize), '\0');
        data.resize(std::fread(data.data(), 1, data.size(), library.file));
        return data;
    }
    std::string failureOf(std::string name) { return expectFatal([&] { library.seekEntry(name.c_str()); }).text; }

    WorkingTempDir directory;
    Library library{};
    const TestEntries standard{{"first", bytesOf("one")}, {"middle.pcx", bytesOf("the middle entry")},
                               {"", bytesOf("nameless")}, {"last.3ds", bytesOf("end")},
                               {"first", bytesOf("a later twin")}};
};

TEST_F(LibraryTest, EachLookUpWalksFromTheStartToTheFirstEntryOfExactlyThatName) {
    const std::pair<const char*, std::string> lookUps[] = {{"first", "one"}, {"middle.pcx", "the middle entry"},
                                                           {"last.3ds", "end"}, {"", "nameless"}, {"last.3ds", "end"}};
    for (const auto& [name, data] : lookUps) {
        EXPECT_EQ(readEntry(name), data) << name;  // reads entrySize bytes
    }
    library.seekEntry("middle.pcx");
    library.seekEntry("middle.pcx");  // without reading in between
    EXPECT_EQ(std::fgetc(library.file), 't');
    for (const char* name : {"absent.pcx", "First", "LAST.3DS", "last.3d"}) {
        EXPECT_EQ(failureOf(name), std::string("File not found : ") + name);
        EXPECT_EQ(readEntry("last.3ds"), "end");  // the archive is reopened by the next look-up
    }
    EXPECT_EQ(failureOf(std::string(300, 'x')), "File not found : " + std::string(162, 'x'));  // cut to the report
}

TEST_F(LibraryTest, NamesAfterACutOrAHugeLengthAreNotFound) {
    const std::vector<uint8_t> whole = buildArchive({standard.begin(), standard.begin() + 4});
    openBytes({whole.begin(), whole.end() - 2});  // the last entry loses two data bytes
    EXPECT_EQ(readEntry("middle.pcx"), "the middle entry");
    EXPECT_EQ(readEntry("last.3ds"), "e");  // found; its reader meets the end of the file
    EXPECT_EQ(failureOf("after"), "File not found : after");
    for (size_t cut : {4, 9, 11}) {  // in the last name, after it, in its length
        openBytes({whole.begin(), whole.end() - 16 + cut});
        EXPECT_EQ(failureOf("last.3ds"), "File not found : last.3ds") << cut;
    }
    for (uint32_t length : {0x7FFFFFFFu, 0x80000000u, 0xFFFFFFF0u}) {  // entry "a", then "b" with no data
        openBytes({'a', 0, uint8_t(length), uint8_t(length >> 8), uint8_t(length >> 16), uint8_t(length >> 24), 'b', 0,
                   0, 0, 0, 0});
        EXPECT_EQ(failureOf("b"), "File not found : b") << length;
    }
}

TEST_F(LibraryTest, NamesOfNineteenCharactersFitAndTwentyAreRefused) {
    const std::string fits(19, 'n');
    std::vector<uint8_t> archive = buildArchive({{"first", bytesOf("one")}, {fits, bytesOf("fits")}});
    openBytes(archive, fits);
    EXPECT_EQ(readEntry(fits), "fits");
    const std::string tooLong("abcdefghijklmnopqrst\0\1\0\0\0z", 26);  // 20 characters, a length of 1, one byte
    archive.insert(archive.end(), tooLong.begin(), tooLong.end());
    openBytes(archive);
    EXPECT_EQ(readEntry("first"), "one");  // found before the walk reaches the long name
    EXPECT_EQ(failureOf("other"), "entry name too long : abcdefghijklmnopqrst...");
    const std::string longArchive(20, 'a');
    EXPECT_EQ(expectFatal([&] { openBytes(archive, longArchive); }).text, "library name too long : " + longArchive);
    std::remove("lib");
    EXPECT_EQ(failureOf("first"), "cannot rewind library");
    EXPECT_EQ(expectFatal([&] { library.open("lib"); }).text, "cannot open library");
}

TEST_F(LibraryTest, LoadPcxDecodesTheNamedEntryWithinItsData) {
    const std::vector<uint8_t> image = pcxFile({.width = 2, .bytesPerLine = 2}, {1, 0}, {10, 20, 30, 40, 50, 60});
    const std::vector<uint8_t> cut(image.begin(), image.begin() + 128);
    openBytes(buildArchive({{"before", bytesOf("xx")}, {"image.pcx", image}, {"cut.pcx", cut}, {"after", {1, 2}}}));
    std::vector<uint8_t> pixels(2 * 4, 0x5A);
    library.loadPcx("cut.pcx", pixels.data(), 2, 1);  // stops at the entry's end, not in the next entry
    EXPECT_EQ(pixels, std::vector<uint8_t>(2 * 4, 0x5A));
    library.loadPcx("image.pcx", pixels.data(), 2, 1);
    EXPECT_EQ(pixels, std::vector<uint8_t>({60, 50, 40, 0x5A, 30, 20, 10, 0x5A}));
    EXPECT_EQ(expectFatal([&] { library.loadPcx("before", pixels.data(), 2, 1); }).text, "This isn't a pcx file");
}

}  // namespace
