// decodeSoundtrack in the browser: the page decodes the soundtrack with Web
// Audio before the show starts (it cannot be done synchronously from here);
// this hands out what it decoded.
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
