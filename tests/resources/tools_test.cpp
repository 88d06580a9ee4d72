// kaskade-archive and kaskade-inspect run as their users run them, case by
// case from tests/data/resources/tools.txt, each in a fresh working directory:
// what each command prints, its exit status (0 done, 1 a bad file, 2 bad
// usage) and the files it writes.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <sstream>

#include "app/desktop/capture/png_file.h"
#include "tests/support/frame_compare.h"
#include "tests/engine/text_cases.h"
#include "tests/resources/resource_test_files.h"
#include "tests/support/fatal_catcher.h"

namespace {

// A case: commands, each writing what it says (the commands: the file's first lines).
class ToolCases : public ::testing::TestWithParam<TextCase> {};

TEST_P(ToolCases, PrintExitAndWriteWhatIsWrittenDown) {
    const TextCase& c = GetParam();
    const char* display = std::getenv("DISPLAY");
    if (c.input.starts_with("display\n") && (display == nullptr || display[0] == '\0')) {
        GTEST_SKIP() << "no display: run the GL tests under xvfb-run";
    }
    WorkingTempDir directory;
    std::string output, last;
    const auto write = [](const std::string& name, const std::vector<uint8_t>& bytes) {
        std::filesystem::create_directories(std::filesystem::path(name).parent_path().string() + "/.");
        writeBytes(name, bytes);
    };
    std::string input = c.input;
    for (size_t use = input.find("use "); use != std::string::npos; use = input.find("use ")) {
        const size_t end = input.find('\n', use);
        input.replace(use, end + 1 - use, c.macros.at(input.substr(use + 4, end - use - 4)));
    }
    std::istringstream lines(input);
    for (std::string line; std::getline(lines, line);) {
        const std::vector<std::string> w = words(line);
        const auto number = [&w](size_t i) { return static_cast<size_t>(std::stoul(w.at(i), nullptr, 16)); };
        if (w[0] == "$") {
            const std::string tool = w.at(1) == "kaskade-archive" ? KASKADE_ARCHIVE_TOOL : KASKADE_INSPECT_TOOL;
            const int status = std::system(("'" + tool + "' " + line.substr(line.find(w[1]) + w[1].size()) + " >run.out 2>run.err").c_str());
            const std::vector<uint8_t> out = readBytes("run.out"), err = readBytes("run.err");
            last.assign(out.begin(), out.end());
            std::string errors;
            std::istringstream errorLines(std::string(err.begin(), err.end()));
            for (std::string error; std::getline(errorLines, error);) errors += "! " + error + "\n";
            output += line + "\n" + std::string(out.begin(), out.end()) + errors + "exit " +
                      std::to_string(WIFEXITED(status) ? WEXITSTATUS(status) : -1) + "\n";
        } else if (w[0] == "put") {
            write(w.at(1), textBytes(line.substr(line.find(w[1]) + w[1].size()), c.macros));
        } else if (w[0] == "copy") {
            write(w.at(2), readBytes(testDataPath(w[1])));
        } else if (w[0] == "cut") {
            const std::vector<uint8_t> whole = readBytes(w.at(1));
            writeBytes(w.at(3), {whole.begin(), whole.end() - static_cast<long>(std::stoul(w[2]))});
        } else if (w[0] == "exists") {
            output += w.at(1) + (std::filesystem::exists(w[1]) ? ": there\n" : ": none\n");
        } else if (w[0] == "same" && !w.at(1).ends_with(".png")) {
            output += line + (readBytes(w.at(1)) == readBytes(w.at(2)) ? ": same\n" : ": different\n");
        } else if (w[0] == "fields") {
            for (size_t k = 1; k < w.size(); ++k) {
                const std::string key = "\"" + w[k] + "\": ";
                long count = 0, sum = 0;
                for (size_t at = last.find(key); at != std::string::npos; at = last.find(key, at + 1), ++count) sum += std::atol(last.c_str() + at + key.size());
                output += w[k] + ": " + std::to_string(count) + " times, sum " + std::to_string(sum) + "\n";
            }
        } else if (w[0] == "same") {
            const PngImage a = loadPng(w.at(1)), b = loadPng(w.at(2));
            const size_t bytes = w.size() > 3 ? std::stoul(w[3]) * a.width * a.channels : a.pixels.size();
            const bool same = a.pixels.size() == b.pixels.size() && std::equal(a.pixels.begin(), a.pixels.begin() + static_cast<long>(bytes), b.pixels.begin());
            output += line + (same ? ": same\n" : ": different\n");
        } else if (w[0] == "colour") {
            const PngImage image = loadPng(w.at(1));
            size_t count = 0;
            for (size_t i = 0; i + 2 < image.pixels.size(); i += image.channels) {
                const int r = image.pixels[i], g = image.pixels[i + 1], b = image.pixels[i + 2];
                count += w.at(2) == "grey" ? r > 0 && r == g && g == b : static_cast<size_t>(r << 16 | g << 8 | b) == number(2);
            }
            output += line + (count >= std::stoul(w.at(3)) ? ": at least" : ": only " + std::to_string(count)) + " of " +
                      std::to_string(image.width) + " x " + std::to_string(image.height) + "\n";
        } else if (w[0] != "display") {
            ADD_FAILURE() << "no such command: " << line;
        }
    }
    EXPECT_EQ(comparedLines(c, output), c.expected);
}

INSTANTIATE_TEST_SUITE_P(Tools, ToolCases, ::testing::ValuesIn(readTextCases("resources/tools.txt")), caseName);

}  // namespace
