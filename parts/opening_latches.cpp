#include "parts/opening_latches.h"

#include <cmath>

namespace {

// True when demoTime is past `time`; the first such call stores demoTime in *start.
bool latchAfter(float demoTime, float time, float* start) {
    if (!(demoTime > time)) {
        return false;
    }
    if (*start == 0.0f) {
        *start = demoTime;
    }
    return true;
}

}  // namespace

float logoSlideOffset(float demoTime, float* slideStart) {
    if (!latchAfter(demoTime, LOGO_SLIDE_TIME, slideStart)) {
        return 0.0f;
    }
    return static_cast<float>((demoTime - *slideStart) * 4.0);
}

bool riseHeight(float demoTime, float* riseStart, float* height) {
    if (!latchAfter(demoTime, RISE_TIME, riseStart)) {
        return false;
    }
    *height = static_cast<float>(std::trunc((demoTime - *riseStart) * 50.0));
    return true;
}
