// The page's ?fault= in the test build of the site (scripts/web --faults):
// a deliberate mistake of gl11 (gl11/faults.h) by its name. The shipped site
// has no kaskade_fault.
#include "gl11/faults.h"

#include <emscripten/emscripten.h>

// Sets the fault named `name` before kaskade_prepare; 0 for a name no fault has.
extern "C" EMSCRIPTEN_KEEPALIVE int kaskade_fault(const char* name) {
    const Gl11Fault fault = gl11FaultNamed(name);
    if (fault == Gl11Fault::Count) {
        return 0;
    }
    gl11SetFault(fault);
    return 1;
}
