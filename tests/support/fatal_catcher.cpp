#include "tests/support/fatal_catcher.h"

namespace {
void throwFatal(const char* caption, const char* text, const char*, int status) {
    throw FatalError(caption, text, status);
}
}  // namespace

FatalCatcher::FatalCatcher() : previous_(setFatalHook(throwFatal)) {}
FatalCatcher::~FatalCatcher() { setFatalHook(previous_); }

std::string testDataPath(const std::string& relative) { return std::string(KASKADE_TEST_DATA) + "/" + relative; }
