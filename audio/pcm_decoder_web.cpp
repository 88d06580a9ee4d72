// decodeSoundtrack in the browser: the page decodes the soundtrack with Web
// Audio (it cannot be done synchronously from here), all of it before the
// fixed-step clock starts; this hands out what it decoded.
#include "audio/pcm_decoder.h"

#include "audio/browser_soundtrack.h"

bool decodeSoundtrack(const std::string& path, DecodedAudio* audio, std::string* error) {
    const DecodedAudio* decoded = browserSoundtrack(path.c_str());
    if (decoded == nullptr) {
        *error = path + ": the browser could not decode it";
        return false;
    }
    *audio = *decoded;
    return true;
}
