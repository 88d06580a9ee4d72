#include "tests/packaging/commands.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

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
