#include "audio/clock.h"

#include <time.h>

uint32_t monotonicMillis() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    const uint64_t millis = static_cast<uint64_t>(now.tv_sec) * 1000u + static_cast<uint64_t>(now.tv_nsec) / 1000000u;
    return static_cast<uint32_t>(millis);
}

MillisecondClock g_millisecondClock = monotonicMillis;
LevelSource g_levelSource = audioChannelGetLevel;
