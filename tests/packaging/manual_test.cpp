// The manual pages and the desktop entry as installed: man renders each page
// without a warning, each page names every option or command its program's
// --help lists, and the menu entry starts the installed show by name with
// the installed icon.
#include "tests/packaging/installed_show.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <regex>
#include <set>
#include <sstream>

namespace {

class InstalledPages : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        prefix_ = new ScratchDir;
        install_ = runCommand("cmake --install " + shellQuoted(KASKADE_BUILD_DIR) + " --prefix " +
                              shellQuoted(prefix_->path()));
    }
    static void TearDownTestSuite() {
        delete prefix_;
        prefix_ = nullptr;
    }
    void SetUp() override { ASSERT_EQ(install_.status, 0) << install_.output; }

    static std::string path(const std::string& relative) { return prefix_->path() + "/" + relative; }
    // The page as man renders it for an 80-column terminal; `warnings` gets
    // what man and groff say about it with the warnings on.
    static std::string render(const std::string& page, std::string* warnings = nullptr) {
        const std::string man = "MANWIDTH=80 man -E UTF-8 ";
        const std::string file = " -l " + shellQuoted(path(page));
        if (warnings != nullptr) {
            *warnings = runCommand("(" + man + "--warnings" + file + " 2>&1 >/dev/null)").output;
        }
        return runCommand("(" + man + file + " 2>/dev/null)").output;
    }
    // The options (--name) or commands (two-space indented words) that `program --help` lists.
    static std::set<std::string> listedBy(const std::string& program, const std::regex& item) {
        const CommandResult help = runCommand(shellQuoted(path("bin/" + program)) + " --help");
        std::set<std::string> items;
        for (std::sregex_iterator it(help.output.begin(), help.output.end(), item), end; it != end; ++it) {
            items.insert((*it)[1]);
        }
        return items;
    }

    static ScratchDir* prefix_;
    static CommandResult install_;
};
ScratchDir* InstalledPages::prefix_ = nullptr;
CommandResult InstalledPages::install_;

TEST_F(InstalledPages, EveryPageRendersWithoutWarningsAndHasItsSections) {
    ASSERT_EQ(runCommand("command -v man && command -v groff").status, 0)
        << "man and groff are not installed (scripts/setup tests installs them)";
    for (const std::string page : {"share/man/man6/kaskade.6.gz", "share/man/man1/kaskade-archive.1.gz",
                                   "share/man/man1/kaskade-inspect.1.gz"}) {
        SCOPED_TRACE(page);
        const CommandResult groff =
            runCommand("zcat " + shellQuoted(path(page)) + " | groff -man -ww -z -Tutf8 2>&1");
        EXPECT_EQ(groff.output, "");
        std::string warnings;
        const std::string text = render(page, &warnings);
        EXPECT_EQ(warnings, "");
        for (const char* section : {"NAME", "SYNOPSIS", "DESCRIPTION", "EXIT STATUS", "SEE ALSO"}) {
            EXPECT_NE(text.find(std::string("\n") + section + "\n"), std::string::npos) << section;
        }
    }
}

TEST_F(InstalledPages, TheShowsPageNamesEveryOptionItsKeysItsStatusesAndWhereItsDataIs) {
    const std::string page = render("share/man/man6/kaskade.6.gz");
    const std::set<std::string> options = listedBy("kaskade", std::regex("  (--[a-z]+)"));
    EXPECT_GE(options.size(), 13u);
    for (const std::string& option : options) {
        EXPECT_NE(page.find("\n       " + option), std::string::npos) << option << " has no entry of its own";
    }
    for (const char* words : {"KEYS", "Escape", "FILES", "/share/kaskade", "the working directory", "130"}) {
        EXPECT_NE(page.find(words), std::string::npos) << words;
    }
}

TEST_F(InstalledPages, EachToolsPageNamesEveryCommandItsHelpLists) {
    const std::regex command("\\n  ([a-z]+) [A-Z]");
    for (const std::string tool : {"kaskade-archive", "kaskade-inspect"}) {
        const std::string page = render("share/man/man1/" + tool + ".1.gz");
        const std::set<std::string> commands = listedBy(tool, command);
        EXPECT_EQ(commands.size(), 3u) << tool;
        for (const std::string& name : commands) {
            EXPECT_NE(page.find("\n       " + name + " "), std::string::npos) << tool << " " << name;
        }
    }
}

TEST_F(InstalledPages, TheMenuEntryStartsTheInstalledShowByNameWithItsIcon) {
    std::ifstream file(path("share/applications/kaskade.desktop"));
    std::stringstream text;
    text << file.rdbuf();
    const std::string entry = text.str();
    EXPECT_NE(entry.find("\nExec=kaskade\n"), std::string::npos) << entry;
    EXPECT_EQ(entry.find("\nPath="), std::string::npos) << "the show finds its data from any directory";
    EXPECT_NE(entry.find("\nIcon=kaskade\n"), std::string::npos) << entry;
    EXPECT_EQ(access(path("share/icons/hicolor/48x48/apps/kaskade.png").c_str(), R_OK), 0);
    const CommandResult valid =
        runCommand("desktop-file-validate " + shellQuoted(path("share/applications/kaskade.desktop")));
    EXPECT_EQ(valid.status, 0) << valid.output << " (scripts/setup tests installs desktop-file-validate)";
    EXPECT_EQ(valid.output, "");
}

}  // namespace
