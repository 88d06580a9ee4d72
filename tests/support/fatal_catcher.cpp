#include "tests/support/fatal_catcher.h"

#include <filesystem>

namespace {
void throwFatal(const char* caption, const char* text, const char*, int status) {
    throw FatalError(caption, text, status);
}
}  // namespace

FatalCatcher::FatalCatcher() : previous_(setFatalHook(throwFatal)) {}
FatalCatcher::~FatalCatcher() { setFatalHook(previous_); }

std::string testDataPath(const std::string& relative) { return std::string(KASKADE_TEST_DATA) + "/" + relative; }

std::string artifactPath(const std::string& relative) {
    const std::string path = std::string(KASKADE_TEST_ARTIFACTS) + "/" + relative;
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    return path;
}
