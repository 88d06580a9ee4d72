// The switch of the deliberate mistakes: compiled only into the test builds.
#include "gl11/faults.h"

#include <cstring>

namespace {

Gl11Fault g_fault = Gl11Fault::None;

const char* const NAMES[] = {
    "",
    "fov",
    "ambient",
    "colour-material",
    "flat-vertex",
    "flat-quad",
    "flat-line",
    "quad-diagonal",
    "attenuation",
    "spot-exponent",
    "local-viewer",
    "radial-fog",
    "decal-alpha",
    "texture-flip",
    "sphere-map",
    "normal-matrix",
    "singular-normals",
    "alpha-blend",
    "front-face",
    "unbatched-depth",
    "refused-shader",
};
static_assert(sizeof NAMES / sizeof NAMES[0] == static_cast<int>(Gl11Fault::Count));

}  // namespace

void gl11SetFault(Gl11Fault fault) { g_fault = fault; }

bool gl11Faulty(Gl11Fault fault) { return g_fault == fault; }

const char* gl11FaultName(Gl11Fault fault) {
    const int index = static_cast<int>(fault);
    return index >= 0 && index < static_cast<int>(Gl11Fault::Count) ? NAMES[index] : "";
}

Gl11Fault gl11FaultNamed(const char* name) {
    for (int i = 0; i < static_cast<int>(Gl11Fault::Count); ++i) {
        if (std::strcmp(NAMES[i], name) == 0) {
            return static_cast<Gl11Fault>(i);
        }
    }
    return Gl11Fault::Count;
}
