#include "app/web/context_loss.h"

#include "app/web/page_bridge.h"
#include "gl11/gl11_platform.h"

#include <emscripten/html5.h>

namespace {

const char* const CANVAS = "#canvas";

// True asks the browser to give the context back (the event's default is not to).
EM_BOOL contextLost(int, const void*, void*) {
    pageSay("The browser took the show's WebGL context away: the show goes on unseen until it gives it back.");
    return EM_TRUE;
}

EM_BOOL contextRestored(int, const void*, void*) {
    gl11ContextRestored();
    pageSay("The browser gave the WebGL context back: the show is drawn again.");
    return EM_TRUE;
}

}  // namespace

void followContextLoss() {
    emscripten_set_webglcontextlost_callback(CANVAS, nullptr, EM_FALSE, contextLost);
    emscripten_set_webglcontextrestored_callback(CANVAS, nullptr, EM_FALSE, contextRestored);
}
