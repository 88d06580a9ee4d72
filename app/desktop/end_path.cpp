// The desktop's end of the show: the screen, the sound and a running capture
// are given back before the frame rate is printed and the process ends, with
// status 0, 128 + the signal that ended the show, or 1 when a capture could not
// be completed.
#include "app/desktop/capture/capture.h"
#include "app/desktop/display/display_mode.h"
#include "app/desktop/signals.h"
#include "app/sequencer.h"
#include "app/shell.h"
#include "audio/music.h"
#include "parts/wave_map.h"

#include <cstdio>
#include <cstdlib>

void runEndPath() {
    endPathStarted();
    if (g_fullscreen) {
        restoreDisplayMode();
    }
    closeMusic();
    const bool captured = finishCapture();
    std::printf("fps: %2.2f\n", framesPerSecond());
    std::free(g_waveMap);
    const int status = endPathExitStatus();
    std::exit(status != 0 ? status : captured ? 0 : 1);
}
