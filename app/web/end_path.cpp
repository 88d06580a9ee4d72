// The browser's end of the show: the sound stops, the frame rate goes to the
// console and onto the page, and the animation loop ends. The page stays.
#include "app/sequencer.h"
#include "app/shell.h"
#include "app/web/page_bridge.h"
#include "audio/music.h"
#include "parts/wave_map.h"

#include <emscripten/emscripten.h>

#include <cstdio>
#include <cstdlib>

void runEndPath() {
    closeMusic();
    char line[32];
    std::snprintf(line, sizeof line, "fps: %2.2f", framesPerSecond());
    std::printf("%s\n", line);
    std::fflush(stdout);
    pageShowEnded(line);
    std::free(g_waveMap);
    g_waveMap = nullptr;
    emscripten_cancel_main_loop();
    // Back to the browser's event loop without running the rest of the frame.
    emscripten_exit_with_live_runtime();
}
