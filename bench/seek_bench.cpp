// How long a seek takes on the desktop: from the request to the frame at the
// new time drawn and finished, on the live clock with the soundtrack playing,
// in the show's own 640 x 480 window, after every part was loaded once. Run
// from a folder holding "3d" and "harbour.mp3", on a display (bench/seek-time
// does both).
//   seek_bench seek RUNS  first the seek to the end of part 1, which decodes
//                         the soundtrack's first 21 s for the levels its
//                         frames passed react to: "first SECONDS MS PART CPU_MS";
//                         then RUNS times a seek to every whole second of the
//                         show, each from a place half the show away (so that
//                         every one rebuilds): "seek SECONDS MS PART CPU_MS"
//   seek_bench back RUNS  RUNS times, paused at every whole second, one frame
//                         back: "back SECONDS MS PART CPU_MS"
// MS is the wall time, CPU_MS what every thread of the process spent: on a
// machine shared with other work, the wall time waits for them too.
#include "app/player.h"
#include "app/sequencer.h"
#include "app/shell.h"
#include "app/show_start.h"
#include "audio/music.h"
#include "bench/show_window.h"
#include "parts/part_schedule.h"

#include <GL/freeglut.h>
#include <time.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>

namespace {

constexpr int FRAMES_BEFORE = 3;  // frames played at the place sought from
const int SHOW_SECONDS = static_cast<int>(SHOW_END_TIME / 10.0f);

struct Spent {
    double wall = 0.0;  // ms
    double cpu = 0.0;   // ms of every thread of the process (llvmpipe's too)
};

double cpuMillis() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1000.0 + static_cast<double>(now.tv_nsec) / 1e6;
}

// From `ask` to the next frame drawn and finished.
Spent timeFrame(const std::function<void()>& ask) {
    const auto asked = std::chrono::steady_clock::now();
    const double cpu = cpuMillis();
    ask();
    onFrame();
    glFinish();
    return {std::chrono::duration<double>(std::chrono::steady_clock::now() - asked).count() * 1000.0,
            cpuMillis() - cpu};
}

}  // namespace

int main(int argc, char** argv) {
    const bool seek = argc >= 2 && std::strcmp(argv[1], "seek") == 0;
    const bool back = argc >= 2 && std::strcmp(argv[1], "back") == 0;
    const int runs = argc == 3 ? std::atoi(argv[2]) : 0;
    if ((!seek && !back) || runs < 1) {
        std::fputs("usage: seek_bench seek|back RUNS\n", stderr);
        return 2;
    }
    openShowWindow(&argc, argv, FRAMES_BEFORE);
    // Every part loaded once, so that only the seeks are timed.
    timeFrame([] { playerJumpTo(PART_COUNT); });
    playFrames(FRAMES_BEFORE);
    if (seek) {
        const double first = partEndTime(1) / 10.0 - 0.1;
        const Spent spent = timeFrame([first] { playerSeekTo(first); });
        std::printf("first %.1f %.1f %d %.1f\n", first, spent.wall, playerPart(), spent.cpu);
        playFrames(FRAMES_BEFORE);
    } else {
        timeFrame([] { playerTogglePause(); });
    }
    for (int run = 0; run < runs; ++run) {
        for (int second = 0; second <= SHOW_SECONDS; ++second) {
            Spent spent;
            if (seek) {
                timeFrame([second] { playerSeekTo((second + SHOW_SECONDS / 2) % SHOW_SECONDS); });
                playFrames(FRAMES_BEFORE);
                spent = timeFrame([second] { playerSeekTo(second); });
                playFrames(FRAMES_BEFORE);
            } else {
                timeFrame([second] { playerSeekTo(second); });
                spent = timeFrame([] { playerStepFrame(-1); });
            }
            std::printf("%s %d %.1f %d %.1f\n", seek ? "seek" : "back", second, spent.wall, playerPart(), spent.cpu);
            std::fflush(stdout);
        }
    }
    return 0;
}
