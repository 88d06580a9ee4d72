#include "audio/browser_soundtrack.h"

#include <emscripten/emscripten.h>

#include <string>

namespace {
std::string g_fileName;
DecodedAudio g_soundtrack;
bool g_handedOver = false;
}  // namespace

const DecodedAudio* browserSoundtrack(const char* fileName) {
    return g_handedOver && g_fileName == fileName ? &g_soundtrack : nullptr;
}

extern "C" EMSCRIPTEN_KEEPALIVE int16_t* kaskade_soundtrack_buffer(const char* fileName, uint32_t frames, int keep) {
    g_handedOver = false;
    if (keep == 0 || frames > BROWSER_SOUNDTRACK_MAX_FRAMES) {
        g_soundtrack.samples.clear();
        g_soundtrack.samples.shrink_to_fit();
    }
    if (frames > BROWSER_SOUNDTRACK_MAX_FRAMES) {
        return nullptr;
    }
    g_soundtrack.samples.resize(static_cast<size_t>(frames) * 2);
    g_fileName = fileName;
    g_handedOver = true;
    return g_soundtrack.samples.data();
}
