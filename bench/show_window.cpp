#include "bench/show_window.h"

#include "app/desktop/capture/frame_target.h"
#include "app/desktop/options.h"
#include "app/desktop/player/desktop_player.h"
#include "app/sequencer.h"
#include "app/shell.h"
#include "app/show_start.h"
#include "audio/music.h"

#include <GL/freeglut.h>

void playFrames(int frames) {
    for (int i = 0; i < frames; ++i) {
        onFrame();
        glutMainLoopEvent();
    }
}

void openShowWindow(int* argc, char** argv, int frames) {
    g_soundEnabled = true;
    openMusic("harbour.mp3");
    glutInit(argc, argv);
    glutInitDisplayMode(GLUT_RGB | GLUT_DOUBLE | GLUT_DEPTH);
    glutInitWindowSize(640, 480);
    glutCreateWindow("kaskade [12]");
    initGlState();
    fitToWindow(640, 480);
    ShowOptions options;
    options.windowed = true;
    installDesktopPlayer(options);
    startShowAt(1, 0);
    playFrames(frames);
}
