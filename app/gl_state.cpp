#include "app/shell.h"

#include "app/gl_start_state.h"
#include "resources/library.h"

Library* g_library = nullptr;

void initGlState() {
    setStartGlState();
    // Left unset: every part's set-up opens it.
    g_library = new Library;
}
