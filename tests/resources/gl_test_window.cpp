#include "tests/resources/gl_test_window.h"

#include <vector>

#include <GL/freeglut.h>

#include <cstdlib>

#include "app/gl_start_state.h"

bool openGlTestWindow() {
    static bool opened = false;
    const char* display = std::getenv("DISPLAY");
    if (!opened && display != nullptr && display[0] != '\0') {
        int argc = 1;
        char name[] = "kaskade-test";
        char* argv[] = {name, nullptr};
        glutInit(&argc, argv);
        glutInitDisplayMode(GLUT_RGB | GLUT_DOUBLE | GLUT_DEPTH);
        glutInitWindowSize(640, 480);
        glutCreateWindow("kaskade test");
        opened = true;
    }
    return opened;
}

void setShowStartState() {
    setStartGlState();
    glViewport(0, 0, 640, 480);
}

uint64_t backBufferHash() {
    std::vector<uint8_t> pixels(640 * 480 * 4);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadBuffer(GL_BACK);
    glReadPixels(0, 0, 640, 480, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    uint64_t hash = 14695981039346656037ull;
    for (uint8_t byte : pixels) hash = (hash ^ byte) * 1099511628211ull;
    return hash;
}
