#include "tests/resources/gl_test_window.h"

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
