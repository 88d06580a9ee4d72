#include "app/status_line.h"

#include <unistd.h>

#include <cstdarg>
#include <cstdio>

namespace {
bool g_progressShown = false;
}

bool progressInPlace() {
    static const bool terminal = isatty(2) != 0;
    return terminal;
}

void printProgressLine(const char* text) {
    if (progressInPlace()) {
        std::fprintf(stderr, "\r\033[K%s", text);
        g_progressShown = true;
    } else {
        std::fprintf(stderr, "%s\n", text);
    }
}

void printLogLine(const char* format, ...) {
    if (g_progressShown) {
        std::fputs("\r\033[K", stderr);
        g_progressShown = false;
    }
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(stderr, format, arguments);
    va_end(arguments);
    std::fputc('\n', stderr);
}

void endProgressLine() {
    if (g_progressShown) {
        std::fputc('\n', stderr);
        g_progressShown = false;
    }
}
