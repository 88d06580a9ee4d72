#include "audio/music.h"

#include "base/fatal.h"
#include "audio/clock.h"
#include "audio/decoded_audio.h"
#include "audio/fixed_step_clock.h"

float g_demoTime = 0.0f;
uint32_t g_levelLeft = 0;
uint32_t g_levelRight = 0;
std::atomic<uint32_t> g_musicStartTick{0};
AudioHandle g_stream = 0;
AudioHandle g_music = 0;
bool g_soundEnabled = true;

namespace {
constexpr int OUTPUT_FREQUENCY = 44100;

struct MusicPause {
    bool paused = false;
    MillisecondClock running = nullptr;  // the clock that stands while paused; null when none does
    uint32_t at = 0;                     // its reading when the pause began
};
MusicPause g_pause;

uint32_t standingClock() { return g_pause.at; }

AudioHandle playingChannel() { return g_stream != 0 ? g_stream : g_music; }
}  // namespace

void openMusic(const char* fileName) {
    if (!g_soundEnabled) {
        return;
    }
    if (!audioInit(OUTPUT_FREQUENCY)) {
        musicFatal("Can't initialize device", "(kaskade --nosound shows the show without sound)");
    }
    g_stream = audioStreamCreateFile(fileName);
    if (g_stream != 0) {
        audioChannelSetSync(g_stream, onMusicEnd);
        return;
    }
    g_music = audioMusicLoad(fileName);
    if (g_music == 0) {
        musicFatal("Can't play the file");
    }
    audioChannelSetSync(g_music, onMusicEnd);
}

void startMusic() {
    audioStart();
    audioChannelPlay(g_stream != 0 ? g_stream : g_music, true);
    g_musicStartTick = g_millisecondClock();
}

void startMusicAt(uint32_t positionMillis) {
    const AudioHandle channel = g_stream != 0 ? g_stream : g_music;
    audioStart();
    // The clock follows where the music really starts: a module seeks to a
    // row, up to a row's length (0.1 to 0.2 s) from the time asked for.
    uint32_t startsAt = positionMillis;
    if (channel != 0) {
        const uint32_t length = audioChannelGetLength(channel);
        const uint32_t asked = length > 0 ? positionMillis % length : positionMillis;
        startsAt = positionMillis - asked + audioChannelSetPosition(channel, positionMillis);
    }
    audioChannelPlay(channel, true);
    g_musicStartTick = g_millisecondClock() - startsAt;
}

void pauseMusic() {
    if (g_pause.paused) {
        return;
    }
    g_pause.paused = true;
    audioChannelPause(playingChannel(), true);
    if (!fixedStepClockActive()) {
        g_pause.running = g_millisecondClock;
        g_pause.at = g_millisecondClock();
        g_millisecondClock = standingClock;
    }
}

void resumeMusic() {
    if (!g_pause.paused) {
        return;
    }
    g_pause.paused = false;
    if (g_pause.running != nullptr) {
        g_millisecondClock = g_pause.running;
        g_pause.running = nullptr;
        g_musicStartTick.fetch_add(g_millisecondClock() - g_pause.at);
    }
    audioChannelPause(playingChannel(), false);
}

bool musicPaused() { return g_pause.paused; }

uint32_t soundtrackMillis() { return audioChannelGetLength(g_stream != 0 ? g_stream : g_music); }

float demoTimeOf(int32_t elapsedMillis) { return static_cast<float>(elapsedMillis * DEMO_TIME_SCALE); }

uint32_t musicLevelAt(uint32_t songMillis) {
    if (const DecodedAudio* song = fixedStepSoundtrack()) {
        return songLevelAt(*song, static_cast<int32_t>(songMillis));
    }
    return audioChannelLevelAt(playingChannel(), songMillis);
}

void updateMusicClock() {
    const int32_t elapsed = static_cast<int32_t>(g_millisecondClock() - g_musicStartTick.load(std::memory_order_relaxed));
    const uint32_t level = g_levelSource(g_stream != 0 ? g_stream : g_music);
    g_levelRight = level >> 16;
    g_levelLeft = level & 0xFFFF;
    g_demoTime = demoTimeOf(elapsed);
}

void closeMusic() { audioFree(); }

void musicFatal(const char* text, const char* hint) {
    audioFree();
    fatalReport("BASS ERROR", text, 0, FatalExit::Immediate, hint);
}

void onMusicEnd(uint32_t, uint32_t, uint32_t) {
    g_musicStartTick.store(g_millisecondClock(), std::memory_order_relaxed);
}
