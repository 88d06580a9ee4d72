#include "app/player.h"

#include "app/part_log.h"
#include "app/sequencer.h"
#include "app/shell.h"
#include "app/show_seek.h"
#include "app/show_start.h"
#include "audio/fixed_step_clock.h"
#include "audio/music.h"
#include "parts/part_schedule.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>

bool g_playerEnabled = true;
PlayerPlatform g_playerPlatform{};
int g_playerFixedStepFps = 0;

namespace {

enum class Pause {
    Playing,
    Due,      // pauses after the frames of the next main-loop pass
    Paused,
    Landing,  // paused, with a jump or seek whose frame is still to be drawn
};

struct Player {
    Pause pause = Pause::Playing;
    int32_t jumpTarget = 0;  // 0: no jump asked for
    int64_t seekMillis = -1;  // -1: no seek asked for; else where to, a seekLanding
    bool muted = false;
    int volume = 100;
};
Player g_player;

// Commands reach a show that plays, not one that is ending.
bool acceptsCommands() { return g_playerEnabled && g_partCounter != PART_COUNTER_END && !g_endRequested; }

void applyGain() { audioSetGain(playerGain(g_player.volume, g_player.muted)); }

void landPaused() {
    if (g_player.pause == Pause::Paused) {
        g_player.pause = Pause::Landing;
    }
}

void requestJump(int32_t target) {
    if (!acceptsCommands() || target < 1 || target > SCHEDULED_PARTS) {
        return;
    }
    g_player.jumpTarget = target;
    g_player.seekMillis = -1;
    landPaused();
}

void requestSeek(double millis) {
    if (!acceptsCommands() || std::isnan(millis)) {
        return;
    }
    const double inShow = std::clamp(millis, 0.0, static_cast<double>(UINT32_MAX));
    g_player.seekMillis = seekLanding(static_cast<uint32_t>(std::llround(inShow)), g_playerFixedStepFps);
    g_player.jumpTarget = 0;
    landPaused();
}

// The clock reading (ms) on view, or where a pending request lands.
uint32_t millisOnView() {
    if (g_player.seekMillis >= 0) {
        return static_cast<uint32_t>(g_player.seekMillis);
    }
    if (g_player.jumpTarget != 0) {
        const int32_t part = g_player.jumpTarget;
        return g_playerFixedStepFps != 0
                   ? fixedStepMillisOf(firstTickOfPart(part, g_playerFixedStepFps), g_playerFixedStepFps)
                   : static_cast<uint32_t>(std::lround(partStartTime(part) * 100.0));
    }
    return static_cast<uint32_t>(std::lround(std::max(0.0, g_demoTime * 100.0)));
}

void resume() {
    resumeMusic();
    resumeFrameCounter();
    showResumed();
}

void jump() {
    const int32_t target = g_player.jumpTarget;
    g_player.jumpTarget = 0;
    const auto started = std::chrono::steady_clock::now();
    if (g_playerPlatform.returnToStartState != nullptr) {
        g_playerPlatform.returnToStartState();
    }
    startShowAgainAt(target, g_playerFixedStepFps);
    showJumped(target, std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count() * 1000.0);
}

void seek() {
    const auto millis = static_cast<uint32_t>(g_player.seekMillis);
    g_player.seekMillis = -1;
    const auto started = std::chrono::steady_clock::now();
    seekShowTo(millis, g_playerFixedStepFps, g_playerPlatform.returnToStartState);
    showSought(millis, std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count() * 1000.0);
}

}  // namespace

void playerTogglePause() {
    if (!acceptsCommands()) {
        return;
    }
    switch (g_player.pause) {
    case Pause::Playing: g_player.pause = Pause::Due; break;
    case Pause::Due: g_player.pause = Pause::Playing; break;
    case Pause::Paused:
    case Pause::Landing:
        resume();
        g_player.pause = Pause::Playing;
        break;
    }
}

void playerNextPart() {
    const int32_t target = nextPartTarget(playerPart());
    if (target != 0) {
        requestJump(target);
    }
}

void playerPartBack() {
    const int32_t part = playerPart();
    // A jump not yet carried out has played nothing of its part; a seek, up to where it lands.
    float demoTime = g_player.jumpTarget != 0 ? partStartTime(part) : g_demoTime;
    if (g_player.seekMillis >= 0) {
        demoTime = static_cast<float>(g_player.seekMillis / 100.0);
    }
    requestJump(partBackTarget(part, demoTime));
}

void playerFirstPart() { requestJump(1); }

void playerJumpTo(int32_t part) { requestJump(part); }

void playerSeekTo(double seconds) { requestSeek(seconds * 1000.0); }

void playerSeekBy(double seconds) { requestSeek(millisOnView() + seconds * 1000.0); }

void playerStepFrame(int frames) {
    if (g_player.pause == Pause::Paused || g_player.pause == Pause::Landing) {
        requestSeek(seekStepMillis(millisOnView(), frames, g_playerFixedStepFps));
    }
}

void playerToggleMute() {
    if (acceptsCommands()) {
        g_player.muted = !g_player.muted;
        applyGain();
    }
}

void playerStepVolume(int steps) { playerSetVolume(g_player.volume + steps * PLAYER_VOLUME_STEP); }

void playerSetVolume(int percent) {
    if (acceptsCommands()) {
        g_player.volume = std::clamp(percent, 0, 100);
        applyGain();
    }
}

void playerToggleFullscreen() {
    if (g_playerEnabled && g_playerPlatform.toggleFullscreen != nullptr) {
        g_playerPlatform.toggleFullscreen();
    }
}

bool playerPaused() { return g_player.pause != Pause::Playing; }

bool playerMuted() { return g_player.muted; }

int playerVolume() { return g_player.volume; }

int32_t playerPart() {
    if (g_player.jumpTarget != 0) {
        return g_player.jumpTarget;
    }
    if (g_player.seekMillis >= 0) {
        return partAtMillis(static_cast<uint32_t>(g_player.seekMillis), seekRate(g_playerFixedStepFps));
    }
    return std::clamp<int32_t>((g_partCounter + 1) / 2, 1, SCHEDULED_PARTS);
}

double playerSeconds() { return millisOnView() / 1000.0; }

int32_t partBackTarget(int32_t part, float demoTime) {
    const float played = demoTime - partStartTime(part);
    return part > 1 && played >= 0.0f && played < PART_BACK_GRACE ? part - 1 : part;
}

int32_t nextPartTarget(int32_t part) { return part < SCHEDULED_PARTS ? part + 1 : 0; }

float playerGain(int volumePercent, bool muted) {
    if (muted) {
        return 0.0f;
    }
    const float volume = static_cast<float>(std::clamp(volumePercent, 0, 100)) / 100.0f;
    return volume * volume;
}

bool playerBeforeFrames() {
    if (g_player.jumpTarget != 0) {
        jump();
    }
    if (g_player.seekMillis >= 0) {
        seek();
    }
    if (g_player.pause == Pause::Paused) {
        if (g_playerPlatform.whilePaused != nullptr) {
            g_playerPlatform.whilePaused();
        }
        return false;
    }
    return true;
}

bool playerHoldsNextPicture() { return g_player.pause == Pause::Due || g_player.pause == Pause::Landing; }

void playerAfterFrames() {
    if (g_player.pause == Pause::Due) {
        pauseMusic();
        pauseFrameCounter();
        showPaused();
    }
    if (g_player.pause == Pause::Due || g_player.pause == Pause::Landing) {
        g_player.pause = Pause::Paused;
    }
}
