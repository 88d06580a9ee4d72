// How long a jump between parts takes on the desktop: from the key (the
// player's request) to the next frame drawn and swapped, on the live clock
// with the soundtrack playing, in the show's own 640 x 480 window. Run from a
// folder holding "3d" and "harbour.mp3", on a display (bench/jump-time does both).
//   jump_bench warm RUNS   every pair of parts (from, to), after every part was
//                          loaded once; one line per pair and run: FROM TO MS
//   jump_bench cold PART   one jump from part 1 to PART in a fresh show, which
//                          reads parts 2..PART from the archive first: PART MS
#include "app/player.h"
#include "app/sequencer.h"
#include "app/shell.h"
#include "app/show_start.h"
#include "audio/music.h"
#include "bench/show_window.h"

#include <GL/freeglut.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int PARTS = 13;
constexpr int FRAMES_BEFORE = 3;  // frames played at the part jumped from

// The player asked for `part`; returns the milliseconds until the next frame is drawn and swapped.
double timeJump(int32_t part) {
    const auto asked = std::chrono::steady_clock::now();
    playerJumpTo(part);
    onFrame();
    glFinish();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - asked).count() * 1000.0;
}

}  // namespace

int main(int argc, char** argv) {
    const bool warm = argc == 3 && std::strcmp(argv[1], "warm") == 0;
    const bool cold = argc == 3 && std::strcmp(argv[1], "cold") == 0;
    const int number = argc == 3 ? std::atoi(argv[2]) : 0;
    if ((!warm && !cold) || number < 1 || (cold && (number < 2 || number > PARTS))) {
        std::fputs("usage: jump_bench warm RUNS | jump_bench cold PART (2..13)\n", stderr);
        return 2;
    }
    openShowWindow(&argc, argv, FRAMES_BEFORE);
    if (cold) {
        std::printf("%d %.1f\n", number, timeJump(number));
        return 0;
    }
    // Every part loaded once, so that only the jumps themselves are timed.
    timeJump(PARTS);
    playFrames(FRAMES_BEFORE);
    for (int run = 0; run < number; ++run) {
        for (int32_t from = 1; from <= PARTS; ++from) {
            for (int32_t to = 1; to <= PARTS; ++to) {
                timeJump(from);
                playFrames(FRAMES_BEFORE);
                std::printf("%d %d %.1f\n", from, to, timeJump(to));
                playFrames(FRAMES_BEFORE);
            }
        }
        std::fflush(stdout);
    }
    return 0;
}
