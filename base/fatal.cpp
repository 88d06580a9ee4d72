#include "base/fatal.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace {
FatalHook g_fatalHook = nullptr;
FatalGiveBack g_fatalGiveBack = nullptr;
}

void setFatalGiveBack(FatalGiveBack giveBack) { g_fatalGiveBack = giveBack; }

FatalHook setFatalHook(FatalHook hook) {
    FatalHook previous = g_fatalHook;
    g_fatalHook = hook;
    return previous;
}

void fatalReport(const char* caption, const char* text, int status, FatalExit how, const char* hint) {
    if (g_fatalHook != nullptr) {
        g_fatalHook(caption, text, hint, status);
    }
    // Standard error is unbuffered, so the line is out even on the immediate path.
    // Texts that end in a newline of their own still make one line.
    int length = static_cast<int>(std::strlen(text));
    while (length > 0 && text[length - 1] == '\n') {
        --length;
    }
    std::fprintf(stderr, "%s: %.*s\n", caption, length, text);
    if (hint != nullptr) {
        std::fprintf(stderr, "%s\n", hint);
    }
    if (g_fatalGiveBack != nullptr) {
        g_fatalGiveBack();
    }
    if (how == FatalExit::Immediate) {
        _exit(status);
    }
    std::exit(status);
}
