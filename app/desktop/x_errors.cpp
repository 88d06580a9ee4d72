#include "app/desktop/x_errors.h"

#include "app/part_log.h"

#include <GL/freeglut.h>
#include <X11/Xlib.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace {

int g_answeredErrors = 0;
int g_errorsBeforeInit = 0;
const char* g_programName = "kaskade";

int answerError(Display* display, XErrorEvent* error) {
    ++g_answeredErrors;
    if (g_verbose) {
        char text[128];
        XGetErrorText(display, error->error_code, text, sizeof text);
        std::fprintf(stderr, "kaskade: X error %s on request %d.%d: that request failed, the show goes on\n", text,
                     error->request_code, error->minor_code);
    }
    return 0;
}

// freeglut's errors while glutInit runs: one that follows an answered X error
// is about the request that failed; any other ends the process as freeglut would.
void duringGlutInit(const char* format, va_list arguments) {
    char text[256];
    std::vsnprintf(text, sizeof text, format, arguments);
    if (g_answeredErrors == g_errorsBeforeInit) {
        std::fprintf(stderr, "freeglut (%s): %s\n", g_programName, text);
        std::exit(1);
    }
    if (g_verbose) {
        std::fprintf(stderr, "kaskade: freeglut:%s: let pass, the request failed with that X error\n", text);
    }
}

}  // namespace

void glutInitOnAnyDesktop(int* argc, char** argv) {
    XSetErrorHandler(answerError);
    g_programName = argv[0];
    g_errorsBeforeInit = g_answeredErrors;
    glutInitErrorFunc(duringGlutInit);
    glutInit(argc, argv);
    glutInitErrorFunc(nullptr);
}
