#include "app/web/page_bridge.h"

#include "app/player.h"
#include "app/sequencer.h"
#include "audio/fixed_step_clock.h"
#include "base/gl.h"
#include "gl11/gl11_platform.h"

#include <emscripten/emscripten.h>
#include <emscripten/html5.h>

#include <set>
#include <vector>

namespace {

struct PartCounts {
    uint32_t frames = 0;
    uint32_t primitives = 0;
    uint32_t drawCalls = 0;
    uint32_t vertices = 0;
    double streamedBytes = 0.0;
    double firstFrameMillis = 0.0;  // emscripten_get_now() at its first frame
    double lastFrameMillis = 0.0;
};

long g_framesShown = 0;
std::set<long> g_grabFrames;
std::set<long> g_pauseFrames;
bool g_pauseRequested = false;
PartCounts g_partCounts[PART_COUNT + 1];  // index 1..13
std::vector<uint8_t> g_pixels;

// clang-format off
EM_JS(void, pageFrameGrabbed, (long index, const uint8_t* pixels, int width, int height), {
    Module.kaskadePage.frameGrabbed(index, HEAPU8.slice(pixels, pixels + width * height * 4), width, height);
});
EM_JS(void, pagePaused, (long index), { Module.kaskadePage.paused(index); });
EM_JS(void, pageEnded, (const char* line), { Module.kaskadePage.ended(UTF8ToString(line)); });
EM_JS(void, pageFailed, (), { Module.kaskadePage.failed(); });
EM_JS(void, pageStatus, (const char* line), { Module.kaskadePage.say(UTF8ToString(line)); });
EM_JS(void, pageHoldPicture, (), { Module.kaskadePage.holdPicture(); });
// clang-format on

void grab(long index) {
    int width = 0;
    int height = 0;
    emscripten_get_canvas_element_size("#canvas", &width, &height);
    g_pixels.resize(static_cast<size_t>(width) * static_cast<size_t>(height) * 4);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, g_pixels.data());
    pageFrameGrabbed(index, g_pixels.data(), width, height);
}

void count(int32_t part) {
    if (part < 1 || part > PART_COUNT) {
        return;
    }
    PartCounts& counts = g_partCounts[part];
    const Gl11FrameCounts frame = gl11LastFrameCounts();
    const double now = emscripten_get_now();
    if (counts.frames == 0) {
        counts.firstFrameMillis = now;
    }
    counts.lastFrameMillis = now;
    ++counts.frames;
    counts.primitives += frame.primitives;
    counts.drawCalls += frame.drawCalls;
    counts.vertices += frame.vertices;
    counts.streamedBytes += frame.streamedBytes;
}

}  // namespace

void pageShowEnded(const char* line) { pageEnded(line); }

void pageShowFailed() { pageFailed(); }

void pageSay(const char* line) { pageStatus(line); }

void grabFrameAt(long index) { g_grabFrames.insert(index); }

void pauseAtFrame(long index) { g_pauseFrames.insert(index); }

void frameShown() {
    // The last frame before a pause stays on view, whatever happens to the canvas.
    if (playerHoldsNextPicture()) {
        pageHoldPicture();
    }
    // The part whose draw step showed it: 2k - 1 while part k plays, 2k once it ended.
    count((g_partCounter + 1) / 2);
    // On the fixed-step clock, the frame's number in the whole show (a show
    // started at a later part does not start at 0).
    const long index = fixedStepClockActive() ? fixedStepFrames() : g_framesShown;
    ++g_framesShown;
    if (g_grabFrames.count(index) != 0) {
        grab(index);
    }
    if (g_pauseFrames.count(index) != 0) {
        g_pauseRequested = true;
        pagePaused(index);
    }
}

bool takePauseRequest() {
    const bool requested = g_pauseRequested;
    g_pauseRequested = false;
    return requested;
}

// Part `part`'s counts for the page's frame-rate report: frames, glBegin calls,
// draw calls, vertices, the milliseconds from its first to its last frame, vertex bytes sent.
extern "C" EMSCRIPTEN_KEEPALIVE double kaskade_part_count(int part, int field) {
    if (part < 1 || part > PART_COUNT) {
        return 0.0;
    }
    const PartCounts& counts = g_partCounts[part];
    switch (field) {
    case 0: return counts.frames;
    case 1: return counts.primitives;
    case 2: return counts.drawCalls;
    case 3: return counts.vertices;
    case 4: return counts.lastFrameMillis - counts.firstFrameMillis;
    default: return counts.streamedBytes;
    }
}
