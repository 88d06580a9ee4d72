// The show run inside a test program: the GL test window, the show's built
// content as the working directory and the show's GL start state. For the
// tests that drive the show's own frames and read every one back.
#pragma once

#include "app/shell.h"
#include "tests/resources/gl_test_window.h"

#include <unistd.h>

#include <string>

// "" when the show is ready to draw; otherwise why the test cannot run here.
inline std::string openShowInTestWindow() {
    if (!openGlTestWindow()) {
        return "no display: run under xvfb-run";
    }
    if (chdir(KASKADE_SHOW_DIR) != 0 || access("3d", R_OK) != 0) {
        return "the show's content is not built in " KASKADE_SHOW_DIR;
    }
    initGlState();
    return "";
}
