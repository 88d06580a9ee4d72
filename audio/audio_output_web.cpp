// The audio layer in the browser: one channel, the soundtrack the page decodes
// with Web Audio as it arrives (browser_soundtrack.h), played by the page's
// player (kaskade_soundtrack.js), which schedules the decoded pieces back to
// back on its AudioContext. Tracker modules are not played here: a soundtrack
// the browser cannot decode opens no channel.
//
// The demo clock follows what is heard: g_millisecondClock reads the position
// in the song that the output plays now, as the player works it out from the
// AudioContext's output timestamp and its schedule (counted on past the end
// when the song loops), on a base that keeps the clock going on where it stood
// whenever the song starts from another place. The position stands until a
// start is heard, and wherever the song has not arrived yet, so the picture
// waits for the sound. The channel's level is the 20 ms peak of the decoded
// samples at that position (songLevelAt), and its end needs no callback from
// the audio thread: the clock moves g_musicStartTick on by exactly one song
// length each time the song starts again, as the fixed-step clock does. The
// end sync is kept for the contract and never called. A pause suspends the
// AudioContext: its time, what is heard and the clock all stand.
#include "audio/audio_output.h"

#include "audio/browser_soundtrack.h"
#include "audio/clock.h"
#include "audio/level_meter.h"
#include "audio/music.h"

#include <emscripten/emscripten.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr AudioHandle SONG_CHANNEL = 1;

struct SongChannel {
    const DecodedAudio* song = nullptr;
    AudioSyncProc sync = nullptr;
    bool playing = false;
    bool loop = false;
    uint32_t startOffset = 0;  // milliseconds into the song of the next start
    double clockBase = 0.0;    // the clock is clockBase + the position heard (unwrapped)
};

bool g_initialised = false;
SongChannel g_channel;

// clang-format off
EM_JS(double, pageAudioHeardSongMillis, (), { return Module.kaskadeAudio.heardSongMillis(); });
EM_JS(void, pageAudioPlay, (int loop, double offsetSeconds), { Module.kaskadeAudio.play(loop !== 0, offsetSeconds); });
EM_JS(void, pageAudioStop, (), { Module.kaskadeAudio.stop(); });
EM_JS(void, pageAudioPause, (int paused), { Module.kaskadeAudio.pause(paused !== 0); });
EM_JS(void, pageAudioGain, (double gain), { Module.kaskadeAudio.setGain(gain); });
// clang-format on

SongChannel* channelFor(AudioHandle handle) {
    return g_initialised && handle == SONG_CHANNEL && g_channel.song != nullptr ? &g_channel : nullptr;
}

// The song's length in milliseconds (rounded); the page corrects an estimate
// once the whole song is decoded.
uint32_t lengthMillis(const DecodedAudio& song) {
    return static_cast<uint32_t>((static_cast<uint64_t>(song.frames()) * 1000 + OUTPUT_RATE / 2) / OUTPUT_RATE);
}

// Milliseconds into the song heard now, counted on past its end when it loops;
// the start position until the start is heard. 0 before the song first plays.
double heardPosition() { return g_channel.playing ? pageAudioHeardSongMillis() : 0.0; }

double clockNow() { return g_channel.clockBase + heardPosition(); }

// The song starting again moves the demo clock's zero on by its length.
uint32_t songClock() {
    const uint32_t now = static_cast<uint32_t>(static_cast<uint64_t>(std::llround(clockNow())));
    const uint32_t length = g_channel.song != nullptr ? lengthMillis(*g_channel.song) : 0;
    if (g_channel.playing && g_channel.loop && length > 0) {
        while (static_cast<int32_t>(now - g_musicStartTick.load()) >= static_cast<int32_t>(length)) {
            g_musicStartTick.store(g_musicStartTick.load() + length);
        }
    }
    return now;
}

void play(uint32_t offsetMillis) {
    const double clockBefore = clockNow();
    pageAudioPlay(g_channel.loop ? 1 : 0, offsetMillis / 1000.0);
    g_channel.startOffset = offsetMillis;
    g_channel.clockBase = clockBefore - offsetMillis;
    g_channel.playing = true;
}

}  // namespace

bool audioInit(int) {
    g_initialised = true;
    return true;
}

void audioInitWithoutDevice() { g_initialised = true; }

AudioHandle audioStreamCreateFile(const char* path) {
    const DecodedAudio* song = g_initialised ? browserSoundtrack(path) : nullptr;
    if (song == nullptr || song->frames() == 0) {
        return 0;
    }
    g_channel = SongChannel{};
    g_channel.song = song;
    // Until the song plays, the clock stands.
    g_millisecondClock = songClock;
    return SONG_CHANNEL;
}

AudioHandle audioMusicLoad(const char*) { return 0; }

void audioChannelSetSync(AudioHandle handle, AudioSyncProc proc) {
    if (SongChannel* channel = channelFor(handle)) {
        channel->sync = proc;
    }
}

void audioStart() {}

void audioChannelPlay(AudioHandle handle, bool loop) {
    SongChannel* channel = channelFor(handle);
    if (channel == nullptr) {
        return;
    }
    channel->loop = loop;
    play(channel->startOffset);
}

uint32_t audioChannelGetLength(AudioHandle handle) {
    const SongChannel* channel = channelFor(handle);
    return channel != nullptr ? lengthMillis(*channel->song) : 0;
}

uint32_t audioChannelSetPosition(AudioHandle handle, uint32_t millis) {
    SongChannel* channel = channelFor(handle);
    if (channel == nullptr) {
        return 0;
    }
    const uint32_t length = lengthMillis(*channel->song);
    const uint32_t offset = length > 0 ? millis % length : 0;
    if (channel->playing) {
        play(offset);
    } else {
        channel->startOffset = offset;
    }
    return offset;
}

uint32_t audioChannelGetLevel(AudioHandle handle) {
    const SongChannel* channel = channelFor(handle);
    if (channel == nullptr) {
        return 0xFFFFFFFFu;
    }
    if (!channel->playing) {
        return 0;
    }
    const uint32_t position = static_cast<uint32_t>(std::llround(heardPosition()));
    if (!channel->loop && position >= lengthMillis(*channel->song)) {
        return 0;
    }
    // Unwrapped: the window just after the start of a loop reaches back into the song's end.
    return songLevelAt(*channel->song, static_cast<int32_t>(position));
}

uint32_t audioChannelLevelAt(AudioHandle handle, uint32_t songMillis) {
    const SongChannel* channel = channelFor(handle);
    return channel != nullptr ? songLevelAt(*channel->song, static_cast<int32_t>(songMillis)) : 0xFFFFFFFFu;
}

void audioChannelPause(AudioHandle handle, bool paused) {
    if (channelFor(handle) != nullptr) {
        pageAudioPause(paused ? 1 : 0);
    }
}

void audioSetGain(float gain) {
    if (g_initialised) {
        pageAudioGain(static_cast<double>(std::clamp(gain, 0.0f, 1.0f)));
    }
}

void audioFree() {
    if (g_channel.playing) {
        pageAudioStop();
    }
    g_channel = SongChannel{};
    g_initialised = false;
}

// The page's AudioContext mixes; nothing here is driven by the caller.
void audioMix(int16_t* out, size_t frames) {
    for (size_t i = 0; i < frames * 2; ++i) {
        out[i] = 0;
    }
}
