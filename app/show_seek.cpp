#include "app/show_seek.h"

#include "app/sequencer.h"
#include "app/shell.h"
#include "app/show_start.h"
#include "audio/clock.h"
#include "audio/fixed_step_clock.h"
#include "audio/music.h"
#include "parts/opening_history.h"
#include "parts/part_frame.h"
#include "parts/part_schedule.h"
#include "parts/part_state.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <map>

bool g_seekSnapshots = true;

namespace {

// Part 1's state after its frame at a reading, by that reading.
std::map<uint32_t, OpeningState> g_snapshots;

uint32_t millisOf(long tick, int rate) { return fixedStepMillisOf(tick, rate); }

// The first tick of the grid whose reading is at or after `millis`.
long tickFrom(uint32_t millis, int rate) {
    long tick = static_cast<long>(static_cast<double>(millis) * rate / 1000.0);
    while (tick > 0 && millisOf(tick - 1, rate) >= millis) {
        --tick;
    }
    while (millisOf(tick, rate) < millis) {
        ++tick;
    }
    return tick;
}

// The reading of the frame on view: the demo time its draw step read.
uint32_t onViewMillis() { return static_cast<uint32_t>(std::lround(std::max(0.0, g_demoTime * 100.0))); }

void keepSnapshotAt(uint32_t millis) {
    if (!g_seekSnapshots || g_testWorld == nullptr) {
        return;
    }
    const auto after = g_snapshots.upper_bound(millis);
    if (after != g_snapshots.begin() && std::prev(after)->first + SEEK_SNAPSHOT_EVERY_MS > millis) {
        return;
    }
    g_snapshots[millis] = keepOpeningState();
}

// The snapshot nearest before tick `target` with a frame of the grid between
// the two (that frame sets the GL state again); null when there is none.
const OpeningState* snapshotBefore(long target, int rate, long* firstFrame) {
    if (!g_seekSnapshots) {
        return nullptr;
    }
    for (auto at = g_snapshots.lower_bound(millisOf(target, rate)); at != g_snapshots.begin();) {
        --at;
        *firstFrame = tickFrom(at->first + 1, rate);
        if (*firstFrame < target) {
            return &at->second;
        }
    }
    return nullptr;
}

// While a seek draws frames unseen: the clock reads what the seek sets, from
// the show's start, and (for part 1, whose beat reveals remember every frame)
// the level is the song's at that reading.
uint32_t g_seekClockMillis = 0;
uint32_t seekClock() { return g_seekClockMillis; }
uint32_t seekLevel(AudioHandle) { return musicLevelAt(g_seekClockMillis); }

class UnseenFrames {
public:
    explicit UnseenFrames(bool songLevels)
        : clock_(g_millisecondClock), level_(g_levelSource), startTick_(g_musicStartTick.load()) {
        g_millisecondClock = seekClock;
        if (songLevels) {
            g_levelSource = seekLevel;
        }
        g_musicStartTick = 0;
        g_framesUnseen = true;
        if (g_unseenFrames != nullptr) {
            g_unseenFrames(true);
        }
    }
    ~UnseenFrames() {
        if (g_unseenFrames != nullptr) {
            g_unseenFrames(false);
        }
        g_framesUnseen = false;
        g_musicStartTick = startTick_;
        g_levelSource = level_;
        g_millisecondClock = clock_;
    }
    UnseenFrames(const UnseenFrames&) = delete;
    UnseenFrames& operator=(const UnseenFrames&) = delete;

    void setUp(int32_t part, long tick, int rate) {
        g_seekClockMillis = millisOf(tick, rate);
        g_partSteps[part - 1].setup();
        g_partCounter = 2 * part - 1;
    }
    // `passed`: only the frame's changes to the part's state (g_framesPassed).
    void draw(int32_t part, long tick, int rate, bool passed) {
        g_seekClockMillis = millisOf(tick, rate);
        g_framesPassed = passed;
        g_partSteps[part - 1].draw();
        g_framesPassed = false;
        if (partBuildsOnEveryFrame(part)) {
            keepSnapshotAt(g_seekClockMillis);
        }
    }

private:
    MillisecondClock clock_;
    LevelSource level_;
    uint32_t startTick_;
};

// The music and the clock at the landing; on the fixed-step clock the next
// frame swapped is tick `target`'s.
void land(uint32_t landing, long target, int fixedStepFps) {
    if (fixedStepFps != 0) {
        setFixedStepFrame(target);
        startMusicAt(g_millisecondClock());
    } else {
        startMusicAt(landing);
    }
}

// Where part `part`'s unseen frames begin, and from what state.
enum class From { PartStart, OnView, Snapshot };

// Brings the show to `landing` (already a landing), from the frame on view, a
// snapshot or a rebuild, whichever is nearest. `firstStart`: nothing is set up
// yet, the rebuild is drawn in full.
void bringTo(uint32_t landing, int fixedStepFps, bool firstStart, void (*returnToStartState)()) {
    const int rate = seekRate(fixedStepFps);
    const int32_t part = partAtMillis(landing, rate);
    const long target = tickFrom(landing, rate);  // the first frame not drawn unseen
    const bool everyFrame = partBuildsOnEveryFrame(part);
    const uint32_t onView = onViewMillis();
    From from = From::PartStart;
    long first = firstTickOfPart(part, rate);
    if (!firstStart && g_partCounter == 2 * part - 1 && onView < landing) {
        from = From::OnView;
        first = tickFrom(onView + 1, rate);
    }
    long snapshotFirst = 0;
    const OpeningState* snapshot = everyFrame ? snapshotBefore(target, rate, &snapshotFirst) : nullptr;
    if (snapshot != nullptr && snapshotFirst > first) {
        from = From::Snapshot;
        first = snapshotFirst;
    }
    const bool rebuild = from == From::PartStart || (from == From::Snapshot && g_partCounter != 2 * part - 1);
    if (rebuild) {
        if (returnToStartState != nullptr) {
            returnToStartState();
        }
        rebuildShowAt(part, rate, !firstStart);
    }
    if (!everyFrame) {
        first = std::max(first, target - SEEK_SETTLE_FRAMES);
    }
    {
        UnseenFrames unseen(everyFrame);
        // Part 1's first draw step sets it up; a jump leaves a part's set-up
        // to the sequencer, and so does a seek that lands on its first frame.
        const bool setUpNow = rebuild && (part > 1 ? first < target : from == From::Snapshot);
        if (setUpNow) {
            unseen.setUp(part, firstTickOfPart(part, rate), rate);
        }
        if (from == From::Snapshot) {
            restoreOpeningState(*snapshot);
        }
        for (long tick = first; tick < target; ++tick) {
            unseen.draw(part, tick, rate, tick < target - SEEK_SETTLE_FRAMES);
        }
    }
    land(landing, target, fixedStepFps);
}

}  // namespace

int seekRate(int fixedStepFps) { return fixedStepFps != 0 ? fixedStepFps : SEEK_LIVE_FPS; }

uint32_t lastSeekMillis(int rate) { return millisOf(lastTickOfPart(SCHEDULED_PARTS, rate) - 1, rate); }

uint32_t seekLanding(uint32_t millis, int fixedStepFps) {
    millis = std::min(millis, lastSeekMillis(seekRate(fixedStepFps)));
    return fixedStepFps != 0 ? millisOf(seekTick(millis, fixedStepFps), fixedStepFps) : millis;
}

long seekTick(uint32_t millis, int fps) {
    const long tick = tickFrom(millis, fps);
    return millisOf(tick, fps) > millis ? tick - 1 : tick;
}

uint32_t seekStepMillis(uint32_t millis, int frames, int fixedStepFps) {
    const int rate = seekRate(fixedStepFps);
    const long tick = frames > 0 ? tickFrom(millis + 1, rate) + frames - 1 : tickFrom(millis, rate) + frames;
    return millisOf(std::max(0L, tick), rate);
}

int32_t partAtMillis(uint32_t millis, int rate) {
    int32_t part = SCHEDULED_PARTS;
    while (part > 1 && millisOf(firstTickOfPart(part, rate), rate) > millis) {
        --part;
    }
    return part;
}

void seekShowTo(uint32_t millis, int fixedStepFps, void (*returnToStartState)()) {
    bringTo(seekLanding(millis, fixedStepFps), fixedStepFps, false, returnToStartState);
}

void startShowAtMillis(uint32_t millis, int fixedStepFps) {
    bringTo(seekLanding(millis, fixedStepFps), fixedStepFps, true, nullptr);
    startFrameCounter();
}

void keepSeekSnapshot() {
    if (g_partCounter == 1) {
        keepSnapshotAt(onViewMillis());
    }
}

size_t seekSnapshotBytes() {
    size_t bytes = 0;
    for (const auto& [millis, state] : g_snapshots) {
        const WorldState& scene = state.scene;
        bytes += sizeof state + scene.cameras.size() * sizeof(WorldState::Eye) +
                 scene.lights.size() * sizeof(WorldState::Lamp) +
                 scene.meshes.size() * sizeof(WorldState::Placement) +
                 scene.vertices.size() * sizeof(WorldState::Corner) + scene.faceNormals.size() * sizeof(Vector) +
                 scene.materials.size() * sizeof(Material);
    }
    return bytes;
}
