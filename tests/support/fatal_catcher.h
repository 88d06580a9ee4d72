// Lets a test observe a fatal report: while a FatalCatcher lives, every
// fatalReport throws FatalError instead of ending the process.
#pragma once

#include <stdexcept>
#include <string>

#include "base/fatal.h"

struct FatalError : std::runtime_error {
    FatalError(std::string caption_, std::string text_, int status_)
        : std::runtime_error(caption_ + ": " + text_), caption(std::move(caption_)), text(std::move(text_)),
          status(status_) {}
    std::string caption;
    std::string text;
    int status;
};

class FatalCatcher {
public:
    FatalCatcher();
    ~FatalCatcher();
    FatalCatcher(const FatalCatcher&) = delete;
    FatalCatcher& operator=(const FatalCatcher&) = delete;

private:
    FatalHook previous_;
};

// Runs `body` and returns the fatal report it raised; fails the test (and
// returns an empty report) when it finishes without one.
template <typename Body>
FatalError expectFatal(Body&& body) {
    FatalCatcher catcher;
    try {
        body();
    } catch (const FatalError& error) {
        return error;
    }
    throw std::logic_error("expected a fatal report, none was raised");
}

// Where the project's test data lives (tests/data).
std::string testDataPath(const std::string& relative);

// Where a test leaves a picture or table for people to look at (made if
// missing): KASKADE_TEST_ARTIFACTS/relative.
std::string artifactPath(const std::string& relative);
