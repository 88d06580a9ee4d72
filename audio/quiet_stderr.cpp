#include "audio/quiet_stderr.h"

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

QuietStderr::QuietStderr() {
    std::fflush(stderr);
    const int null = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (null < 0) {
        return;
    }
    saved_ = dup(2);
    dup2(null, 2);
    close(null);
}

QuietStderr::~QuietStderr() {
    if (saved_ < 0) {
        return;
    }
    std::fflush(stderr);
    dup2(saved_, 2);
    close(saved_);
}
