#include "audio/audio_output.h"

#include "audio/decoded_audio.h"
#include "audio/level_meter.h"
#include "audio/quiet_stderr.h"
#include "audio/sound_source.h"

#include <SDL2/SDL.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <mutex>
#include <string>

namespace {

constexpr size_t MAX_CHANNELS = 4;
constexpr size_t MIX_CHUNK_FRAMES = 512;

struct Channel {
    SoundSource* source = nullptr;
    AudioSyncProc sync = nullptr;
    bool playing = false;
    bool paused = false;
    bool loop = false;
    // The most recent LEVEL_WINDOW_FRAMES frames this channel played, as a ring.
    int16_t history[LEVEL_WINDOW_FRAMES * 2] = {};
    size_t historyNext = 0;
};

// A channel's song decoded from its file as far as audioChannelLevelAt asked
// (the main thread's alone: the device thread never touches it).
struct SongCopy {
    std::string path;
    bool module = false;
    SoundSource* reader = nullptr;
    DecodedAudio decoded;
    bool complete = false;  // decoded to the song's end
};
SongCopy g_songCopies[MAX_CHANNELS];

std::mutex g_mixerMutex;  // guards g_channels against the device thread
Channel g_channels[MAX_CHANNELS];
bool g_initialised = false;
SDL_AudioDeviceID g_device = 0;
float g_gain = 1.0f;  // guarded by g_mixerMutex

Channel* channelFor(AudioHandle handle) {
    if (!g_initialised || handle == 0 || handle > MAX_CHANNELS || g_channels[handle - 1].source == nullptr) {
        return nullptr;
    }
    return &g_channels[handle - 1];
}

AudioHandle addChannel(SoundSource* source, const char* path, bool module) {
    if (source == nullptr) {
        return 0;
    }
    std::lock_guard<std::mutex> lock(g_mixerMutex);
    for (size_t i = 0; i < MAX_CHANNELS; ++i) {
        if (g_channels[i].source == nullptr) {
            g_channels[i] = Channel{};
            g_channels[i].source = source;
            g_songCopies[i] = SongCopy{};
            g_songCopies[i].path = path;
            g_songCopies[i].module = module;
            return static_cast<AudioHandle>(i + 1);
        }
    }
    closeSource(source);
    return 0;
}

void remember(Channel& channel, const int16_t* samples, size_t frames) {
    for (size_t i = 0; i < frames; ++i) {
        channel.history[2 * channel.historyNext] = samples[2 * i];
        channel.history[2 * channel.historyNext + 1] = samples[2 * i + 1];
        channel.historyNext = (channel.historyNext + 1) % LEVEL_WINDOW_FRAMES;
    }
}

// Reads `frames` frames of one channel into `out`, looping or stopping at the end.
void readChannel(AudioHandle handle, Channel& channel, int16_t* out, size_t frames) {
    size_t filled = 0;
    bool endWithoutData = false;
    while (filled < frames && channel.playing) {
        const size_t got = readSource(*channel.source, out + 2 * filled, frames - filled);
        if (got > 0) {
            filled += got;
            endWithoutData = false;
            continue;
        }
        if (channel.sync != nullptr) {
            channel.sync(0, handle, 0);
        }
        // Two ends in a row without a sample between: the source yields nothing; stop it.
        if (!channel.loop || endWithoutData) {
            channel.playing = false;
            break;
        }
        endWithoutData = true;
    }
    std::memset(out + 2 * filled, 0, (frames - filled) * 4);
    remember(channel, out, frames);
}

void deviceCallback(void*, Uint8* stream, int length) {
    audioMix(reinterpret_cast<int16_t*>(stream), static_cast<size_t>(length) / 4);
}

}  // namespace

bool audioInit(int frequency) {
    QuietStderr quiet;
    // SDL's own SIGINT and SIGTERM handlers would only queue a quit event that
    // nothing reads; the show's handlers end it instead.
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    if (SDL_InitSubSystem(SDL_INIT_AUDIO) != 0) {
        return false;
    }
    SDL_AudioSpec want{};
    want.freq = frequency;
    want.format = AUDIO_S16SYS;
    want.channels = 2;
    want.samples = 1024;
    want.callback = deviceCallback;
    SDL_AudioSpec have{};
    g_device = SDL_OpenAudioDevice(nullptr, 0, &want, &have, 0);
    if (g_device == 0) {
        SDL_QuitSubSystem(SDL_INIT_AUDIO);
        return false;
    }
    g_initialised = true;
    return true;
}

void audioInitWithoutDevice() { g_initialised = true; }

AudioHandle audioStreamCreateFile(const char* path) {
    return g_initialised ? addChannel(openStreamSource(path), path, false) : 0;
}

AudioHandle audioMusicLoad(const char* path) {
    return g_initialised ? addChannel(openModuleSource(path), path, true) : 0;
}

void audioChannelSetSync(AudioHandle handle, AudioSyncProc proc) {
    std::lock_guard<std::mutex> lock(g_mixerMutex);
    if (Channel* channel = channelFor(handle)) {
        channel->sync = proc;
    }
}

void audioStart() {
    if (g_device != 0) {
        SDL_PauseAudioDevice(g_device, 0);
    }
}

void audioChannelPlay(AudioHandle handle, bool loop) {
    std::lock_guard<std::mutex> lock(g_mixerMutex);
    if (Channel* channel = channelFor(handle)) {
        channel->playing = true;
        channel->loop = loop;
    }
}

uint32_t audioChannelGetLength(AudioHandle handle) {
    std::lock_guard<std::mutex> lock(g_mixerMutex);
    Channel* channel = channelFor(handle);
    if (channel == nullptr) {
        return 0;
    }
    return static_cast<uint32_t>((static_cast<uint64_t>(sourceLength(*channel->source)) * 1000 + OUTPUT_RATE / 2) /
                                 OUTPUT_RATE);
}

uint32_t audioChannelSetPosition(AudioHandle handle, uint32_t millis) {
    std::lock_guard<std::mutex> lock(g_mixerMutex);
    Channel* channel = channelFor(handle);
    if (channel == nullptr) {
        return 0;
    }
    const size_t length = sourceLength(*channel->source);
    size_t frame = static_cast<size_t>(static_cast<uint64_t>(millis) * OUTPUT_RATE / 1000);
    if (length > 0) {
        frame %= length;
    }
    const size_t reached = seekSource(*channel->source, frame);
    std::memset(channel->history, 0, sizeof channel->history);
    channel->historyNext = 0;
    return static_cast<uint32_t>((static_cast<uint64_t>(reached) * 1000 + OUTPUT_RATE / 2) / OUTPUT_RATE);
}

void audioChannelPause(AudioHandle handle, bool paused) {
    std::lock_guard<std::mutex> lock(g_mixerMutex);
    if (Channel* channel = channelFor(handle)) {
        channel->paused = paused;
    }
}

void audioSetGain(float gain) {
    std::lock_guard<std::mutex> lock(g_mixerMutex);
    g_gain = std::clamp(gain, 0.0f, 1.0f);
}

uint32_t audioChannelGetLevel(AudioHandle handle) {
    std::lock_guard<std::mutex> lock(g_mixerMutex);
    const Channel* channel = channelFor(handle);
    if (channel == nullptr) {
        return 0xFFFFFFFFu;
    }
    return packedPeakLevel(channel->history, LEVEL_WINDOW_FRAMES);
}

uint32_t audioChannelLevelAt(AudioHandle handle, uint32_t songMillis) {
    {
        std::lock_guard<std::mutex> lock(g_mixerMutex);
        if (channelFor(handle) == nullptr) {
            return 0xFFFFFFFFu;
        }
    }
    SongCopy& copy = g_songCopies[handle - 1];
    if (copy.reader == nullptr && !copy.complete) {
        copy.reader = copy.module ? openModuleSource(copy.path.c_str()) : openStreamSource(copy.path.c_str());
        copy.complete = copy.reader == nullptr;
    }
    // The level window ends at the position: the song up to there.
    const size_t needed =
        std::max(LEVEL_WINDOW_FRAMES, static_cast<size_t>(static_cast<uint64_t>(songMillis) * OUTPUT_RATE / 1000));
    constexpr size_t CHUNK_FRAMES = 4096;
    while (!copy.complete && copy.decoded.frames() < needed) {
        std::vector<int16_t>& samples = copy.decoded.samples;
        const size_t before = samples.size();
        samples.resize(before + CHUNK_FRAMES * 2);
        const size_t got = readSource(*copy.reader, samples.data() + before, CHUNK_FRAMES);
        samples.resize(before + got * 2);
        copy.complete = got == 0;
    }
    return songLevelAt(copy.decoded, static_cast<int32_t>(songMillis));
}

void audioFree() {
    if (g_device != 0) {
        QuietStderr quiet;
        SDL_CloseAudioDevice(g_device);  // waits for a running callback
        SDL_QuitSubSystem(SDL_INIT_AUDIO);
        g_device = 0;
    }
    std::lock_guard<std::mutex> lock(g_mixerMutex);
    for (Channel& channel : g_channels) {
        closeSource(channel.source);
        channel = Channel{};
    }
    for (SongCopy& copy : g_songCopies) {
        closeSource(copy.reader);
        copy = SongCopy{};
    }
    g_gain = 1.0f;
    g_initialised = false;
}

void audioMix(int16_t* out, size_t frames) {
    std::lock_guard<std::mutex> lock(g_mixerMutex);
    std::memset(out, 0, frames * 4);
    int16_t chunk[MIX_CHUNK_FRAMES * 2];
    for (size_t i = 0; i < MAX_CHANNELS; ++i) {
        Channel& channel = g_channels[i];
        if (channel.source == nullptr || !channel.playing || channel.paused) {
            continue;
        }
        for (size_t done = 0; done < frames; done += MIX_CHUNK_FRAMES) {
            const size_t count = std::min(MIX_CHUNK_FRAMES, frames - done);
            readChannel(static_cast<AudioHandle>(i + 1), channel, chunk, count);
            for (size_t s = 0; s < count * 2; ++s) {
                const int sum = out[2 * done + s] + chunk[s];
                out[2 * done + s] = static_cast<int16_t>(std::clamp(sum, -32768, 32767));
            }
        }
    }
    // The volume, after each channel's level history took its samples.
    if (g_gain < 1.0f) {
        for (size_t s = 0; s < frames * 2; ++s) {
            out[s] = static_cast<int16_t>(std::lround(out[s] * g_gain));
        }
    }
}
