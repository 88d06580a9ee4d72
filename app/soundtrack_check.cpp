#include "app/soundtrack_check.h"

#include "parts/part_schedule.h"

#include <cstdio>

int32_t partRepeatedBySong(uint32_t songMillis) {
    if (songMillis == 0) {
        return 0;
    }
    // The latest clock reading before the song starts again is songMillis - 1.
    for (int32_t part = 1; part <= SCHEDULED_PARTS; ++part) {
        if (static_cast<double>(songMillis - 1) <= static_cast<double>(partEndTime(part)) * 100.0) {
            return part;
        }
    }
    return 0;
}

std::string shortSoundtrackWarning(const char* fileName, uint32_t songMillis) {
    const int32_t part = partRepeatedBySong(songMillis);
    if (part == 0) {
        return "";
    }
    char line[256];
    std::snprintf(line, sizeof line,
                  "kaskade: %s lasts %.1f s, shorter than the show (%.1f s): the show will not get past part %d",
                  fileName, songMillis / 1000.0, SHOW_END_TIME / 10.0, part);
    return line;
}
