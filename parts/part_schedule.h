// The show's schedule: the demo time (tenths of a second) after which each
// part hands over to the next. Part k's draw step advances the sequencer on
// its first frame with a demo time strictly above PART_END_TIMES[k - 1]; the
// show lasts until the last one, 226.9 s.
#pragma once

#include <cstdint>

constexpr int32_t SCHEDULED_PARTS = 13;
constexpr float PART_END_TIMES[SCHEDULED_PARTS] = {210.0f, 335.0f, 395.0f,  534.0f,  658.0f,  770.0f, 960.0f,
                                                   1127.0f, 1307.0f, 1498.0f, 1758.0f, 1925.0f, 2269.0f};
constexpr float SHOW_END_TIME = PART_END_TIMES[SCHEDULED_PARTS - 1];

// Where part `part` (1..13) starts in the schedule: the end time of the part
// before it, 0 for part 1.
constexpr float partStartTime(int32_t part) { return part <= 1 ? 0.0f : PART_END_TIMES[part - 2]; }

// The end time of part `part` (1..13).
constexpr float partEndTime(int32_t part) { return PART_END_TIMES[part - 1]; }
