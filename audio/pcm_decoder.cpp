#include "audio/pcm_decoder.h"

#include "audio/sound_source.h"

namespace {
// A module that never reports its end is cut here: 20 minutes of audio.
constexpr size_t MAX_FRAMES = 44100u * 60u * 20u;
constexpr size_t CHUNK_FRAMES = 4096;
}  // namespace

bool decodeSoundtrack(const std::string& path, DecodedAudio* audio, std::string* error) {
    SoundSource* source = openStreamSource(path.c_str());
    if (source == nullptr) {
        source = openModuleSource(path.c_str());
    }
    if (source == nullptr) {
        *error = path + ": opens neither as an MP3 stream nor as a module";
        return false;
    }
    audio->samples.clear();
    while (audio->frames() < MAX_FRAMES) {
        const size_t before = audio->samples.size();
        audio->samples.resize(before + CHUNK_FRAMES * 2);
        const size_t got = readSource(*source, audio->samples.data() + before, CHUNK_FRAMES);
        audio->samples.resize(before + got * 2);
        if (got == 0) {
            break;
        }
    }
    closeSource(source);
    return true;
}
