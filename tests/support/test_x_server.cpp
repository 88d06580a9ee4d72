#include "tests/support/test_x_server.h"

#include <X11/Xlib.h>
#include <X11/extensions/Xrandr.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>

TestXServer::TestXServer(int width, int height) {
    int ends[2];
    if (pipe(ends) != 0) {
        return;
    }
    const std::string screen = std::to_string(width) + "x" + std::to_string(height) + "x24";
    pid_ = fork();
    if (pid_ == 0) {
        close(ends[0]);
        // Its notes on display numbers already taken are no test's output.
        if (freopen("/dev/null", "w", stderr) == nullptr) {
            _exit(127);
        }
        const std::string fd = std::to_string(ends[1]);
        execlp("Xvfb", "Xvfb", "-displayfd", fd.c_str(), "-screen", "0", screen.c_str(), "-noreset", "-nolisten",
               "tcp", static_cast<char*>(nullptr));
        _exit(127);
    }
    close(ends[1]);
    // Xvfb writes its display number, then a newline, when it is ready for
    // clients; the pipe stays open while it runs, for it fails on a closed one.
    numberPipe_ = ends[0];
    std::string number;
    pollfd ready{numberPipe_, POLLIN, 0};
    char c = 0;
    while (pid_ > 0 && poll(&ready, 1, 10000) == 1 && read(numberPipe_, &c, 1) == 1 && c != '\n') {
        number += c;
    }
    if (c == '\n' && !number.empty()) {
        display_ = ":" + number;
    }
}

TestXServer::~TestXServer() {
    if (pid_ > 0) {
        kill(pid_, SIGTERM);
        waitpid(pid_, nullptr, 0);
    }
    if (numberPipe_ >= 0) {
        close(numberPipe_);
    }
}

bool TestXServer::addMode(int width, int height) const {
    Display* x = XOpenDisplay(display_.c_str());
    if (x == nullptr) {
        return false;
    }
    bool added = false;
    const Window root = DefaultRootWindow(x);
    if (XRRScreenResources* resources = XRRGetScreenResources(x, root)) {
        if (resources->noutput > 0) {
            char name[32];
            std::snprintf(name, sizeof name, "%dx%d", width, height);
            XRRModeInfo info{};
            info.width = static_cast<unsigned>(width);
            info.height = static_cast<unsigned>(height);
            info.hTotal = info.width;
            info.vTotal = info.height;
            info.dotClock = static_cast<unsigned long>(info.hTotal) * info.vTotal * 60;
            info.name = name;
            info.nameLength = static_cast<unsigned>(std::strlen(name));
            const RRMode mode = XRRCreateMode(x, root, &info);
            XRRAddOutputMode(x, resources->outputs[0], mode);
            XSync(x, False);
            added = mode != 0;
        }
        XRRFreeScreenResources(resources);
    }
    XCloseDisplay(x);
    return added;
}

std::string TestXServer::currentSize() const {
    Display* x = XOpenDisplay(display_.c_str());
    if (x == nullptr) {
        return "";
    }
    std::string size;
    if (XRRScreenConfiguration* config = XRRGetScreenInfo(x, DefaultRootWindow(x))) {
        Rotation rotation = 0;
        const SizeID current = XRRConfigCurrentConfiguration(config, &rotation);
        int count = 0;
        const XRRScreenSize* sizes = XRRConfigSizes(config, &count);
        if (current < count) {
            size = std::to_string(sizes[current].width) + "x" + std::to_string(sizes[current].height);
        }
        XRRFreeScreenConfigInfo(config);
    }
    XCloseDisplay(x);
    return size;
}
