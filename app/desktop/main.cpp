// kaskade: the show's entry. Start-up runs in a fixed order; from the main loop
// on, everything happens in the GLUT callbacks until the sequencer's end path.
#include "app/desktop/capture/capture.h"
#include "app/desktop/data_directories.h"
#include "app/desktop/player/desktop_player.h"
#include "app/desktop/display/display_mode.h"
#include "app/desktop/capture/frame_target.h"
#include "app/desktop/give_back.h"
#include "app/desktop/capture/multisample.h"
#include "app/desktop/options.h"
#include "app/desktop/player/show_loop.h"
#include "app/desktop/signals.h"
#include "app/desktop/standard_descriptors.h"
#include "app/desktop/display/window_placement.h"
#include "app/desktop/x_errors.h"
#include "app/part_log.h"
#include "app/sequencer.h"
#include "app/shell.h"
#include "app/show_seek.h"
#include "app/show_start.h"
#include "app/soundtrack_check.h"
#include "audio/fixed_step_clock.h"
#include "audio/music.h"
#include "base/data_path.h"
#include "base/fatal.h"

#include <GL/freeglut.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

const char* const SOUNDTRACK_FILE = "harbour.mp3";

[[noreturn]] void refuse(const std::string& message) {
    std::fprintf(stderr, "kaskade: %s\n", message.c_str());
    std::exit(1);
}

// The fixed-step clock instead of the wall clock and the audio device: the
// soundtrack (empty with --nosound) is decoded for its levels, its length and
// a capture's sound.
void startFixedStep(const ShowOptions& options, const std::string& soundtrack) {
    std::string error;
    if (!startFixedStepClock(options.fps, soundtrack, &error)) {
        musicFatal("Can't play the file");
    }
    if (!options.capturePath.empty() && !checkCapture(options.capturePath, &error)) {
        refuse(error);
    }
}

// The window: as large as --size makes it, within the monitor it lands on (a
// capture's own frames are drawn offscreen, so its window only previews them,
// 640 pixels wide), multisampled with --aa (refused when the display offers no
// such visual). The fullscreen show opens on the primary monitor.
void openWindow(int* argc, char** argv, const ShowOptions& options) {
    glutInitOnAnyDesktop(argc, argv);
    watchDisplayConnection();
    unsigned int mode = GLUT_RGB | GLUT_DOUBLE | GLUT_DEPTH;
    const bool capturing = !options.capturePath.empty();
    if (options.samples > 1 && !capturing) {
        std::string offered;
        if (!displayOffersSamples(options.samples, &offered)) {
            refuse("the display offers no " + std::to_string(options.samples) +
                   "-sample multisampling (it offers: " + offered + ")");
        }
        mode |= GLUT_MULTISAMPLE;
        glutSetOption(GLUT_MULTISAMPLE, options.samples);
    }
    glutInitDisplayMode(mode);
    const DesktopNow desktop = desktopNow();
    int width = options.width;
    int height = options.height;
    if (capturing) {
        height = 640 * options.height / options.width;
        width = 640;
    } else if (!desktop.monitors.empty()) {
        fitWindowToMonitor(primaryMonitor(desktop.monitors), &width, &height);  // said once it has landed
    }
    // A window manager places a window itself; without one it would stand a
    // pixel off the screen's corner.
    if (!desktop.monitors.empty() && (g_fullscreen || !desktop.windowManager)) {
        const Monitor& primary = primaryMonitor(desktop.monitors);
        glutInitWindowPosition(primary.x, primary.y);
    }
    glutInitWindowSize(width, height);
    glutCreateWindow("kaskade [12]");
    if (!capturing && !g_fullscreen && !options.desktop && !desktop.monitors.empty()) {
        const std::string shrunk =
            fitWindowWhereItLands(primaryMonitor(desktop.monitors), options.width, options.height);
        if (!shrunk.empty()) {
            std::fprintf(stderr, "kaskade: %s\n", shrunk.c_str());
        }
    }
}

// Fullscreen on one monitor: the primary one, switched to 640 x 480 where it
// offers that mode, or (--desktop) the one the window is on, as it is.
void goFullscreen(const ShowOptions& options) {
    if (g_fullscreen) {
        // Before the switch: a crash the moment after it must find the handlers.
        installCrashGiveBack();
        setDisplayMode(640, 480, 32);
        coverMonitor(showMonitorNow());
    } else if (options.desktop) {
        coverMonitor(windowMonitor());
    } else {
        return;
    }
    glutSetCursor(GLUT_CURSOR_NONE);
}

// Where the frames go: the window, following its size, or a capture.
void chooseFrameTarget(const ShowOptions& options) {
    // Every configure event refits the picture; a capture's frames keep their
    // own size, but without this callback GLUT would set the viewport of
    // whatever framebuffer is bound to the preview window's size.
    glutReshapeFunc(fitToWindow);
    if (options.capturePath.empty()) {
        fitToWindow(glutGet(GLUT_WINDOW_WIDTH), glutGet(GLUT_WINDOW_HEIGHT));
    } else {
        CaptureSettings capture;
        capture.path = options.capturePath;
        capture.fps = options.fps;
        capture.width = options.width;
        capture.height = options.height;
        capture.samples = options.samples;
        capture.soundtrack = options.noSound ? nullptr : fixedStepSoundtrack();
        const int64_t start = showStartMillis(options);
        capture.firstFrame =
            start < 0 ? firstTickOfPart(options.part, options.fps)
                      : seekTick(seekLanding(static_cast<uint32_t>(start), options.fps), options.fps);
        if (options.durationMillis > 0) {
            capture.frameLimit = std::max(1L, std::lround(options.durationMillis * options.fps / 1000.0));
        }
        capture.crf = options.crf;
        std::string error;
        if (!startCapture(capture, &error)) {
            refuse(error);
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    openClosedStandardDescriptors();
    const ShowOptions options = parseShowOptions(argc, argv);
    if (options.help || options.version) {
        std::fputs(options.help ? showUsage() : showVersion(), stdout);
        return 0;
    }
    if (!options.error.empty()) {
        std::fprintf(stderr, "kaskade: %s (try --help)\n", options.error.c_str());
        return 2;
    }
    installEndSignals();
    installGiveBack();
    g_verbose = options.verbose;
    g_soundEnabled = !options.noSound && options.fps == 0;
    addShowDataDirectories(options.verbose);
    const std::string soundtrack = options.noSound ? "" : dataFilePath(SOUNDTRACK_FILE);
    if (options.fps != 0) {
        startFixedStep(options, soundtrack);
    }

    if (options.windowed) {
        g_fullscreen = 0;
    }
    openMusic(soundtrack.c_str());
    const std::string warning =
        shortSoundtrackWarning(SOUNDTRACK_FILE, options.fps != 0 ? fixedStepSongMillis() : soundtrackMillis());
    if (!warning.empty()) {
        std::fprintf(stderr, "%s\n", warning.c_str());
    }

    openWindow(&argc, argv, options);
    goFullscreen(options);
    initGlState();
    chooseFrameTarget(options);

    glutDisplayFunc(onFrame);
    glutIdleFunc(onFrame);
    glutKeyboardFunc(onKey);
    glutMouseFunc(onMouse);
    // A closed window returns from the main loop instead of exiting bare, so
    // that the end path runs as after Escape.
    glutSetOption(GLUT_ACTION_ON_WINDOW_CLOSE, GLUT_ACTION_GLUTMAINLOOP_RETURNS);
    glutCloseFunc(onWindowClose);

    if (options.loop) {
        loopTheShow();
    }
    installDesktopPlayer(options);
    if (const int64_t start = showStartMillis(options); start >= 0) {
        startShowAtMillis(static_cast<uint32_t>(start), options.fps);
    } else {
        startShowAt(options.part, options.fps);
    }
    // The rebuilt parts' unseen frames are never shown: the first frame
    // shown starts from black bars like every later one.
    prepareFrame();
    glutMainLoop();
    runEndPath();
}
