// An X server of a test's own (Xvfb, started with -noreset so that what a
// test sets up stays after its helper connection closes), for the tests that
// need a screen unlike the suite's: a larger one, with an extra RandR mode.
#pragma once

#include <sys/types.h>

#include <string>

class TestXServer {
public:
    // Starts Xvfb with one screen of `width` x `height` at 24 bits.
    TestXServer(int width, int height);
    ~TestXServer();
    TestXServer(const TestXServer&) = delete;
    TestXServer& operator=(const TestXServer&) = delete;

    bool running() const { return pid_ > 0 && !display_.empty(); }
    // The DISPLAY value, e.g. ":3".
    const std::string& display() const { return display_; }

    // Adds a width x height mode to the screen's first output, so that RandR
    // offers that size beside the screen's own. False when it cannot.
    bool addMode(int width, int height) const;

    // The screen's current size as RandR 1.1 reports it (as the show's switch
    // sees it), "WIDTHxHEIGHT", or "" when it cannot be read.
    std::string currentSize() const;

private:
    pid_t pid_ = -1;
    int numberPipe_ = -1;
    std::string display_;
};
