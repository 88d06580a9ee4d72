#include "audio/decoded_audio.h"

#include "audio/level_meter.h"

uint32_t songLevelAt(const DecodedAudio& song, int32_t songMillis) {
    const size_t songFrames = song.frames();
    if (songFrames < LEVEL_WINDOW_FRAMES) {
        return 0xFFFFFFFFu;
    }
    const long long position = static_cast<long long>(songMillis < 0 ? 0 : songMillis) * OUTPUT_RATE / 1000;
    int16_t window[LEVEL_WINDOW_FRAMES * 2];
    for (size_t i = 0; i < LEVEL_WINDOW_FRAMES; ++i) {
        const long long frame = position - static_cast<long long>(LEVEL_WINDOW_FRAMES) + static_cast<long long>(i);
        const bool inside = frame >= 0;
        const size_t index = inside ? static_cast<size_t>(frame) % songFrames : 0;
        window[2 * i] = inside ? song.samples[2 * index] : 0;
        window[2 * i + 1] = inside ? song.samples[2 * index + 1] : 0;
    }
    return packedPeakLevel(window, LEVEL_WINDOW_FRAMES);
}
