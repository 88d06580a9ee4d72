// The soundtrack as the browser decoded it (Web Audio's decodeAudioData) on
// the page, before the show started: what the web build plays, meters and
// hands to the fixed-step clock in place of libmpg123's decoding.
#pragma once

#include "audio/decoded_audio.h"

// The soundtrack the page handed over for `fileName`; null when the page
// handed over none for that file (it did not decode in this browser).
const DecodedAudio* browserSoundtrack(const char* fileName);

// For the page: room for `frames` interleaved 16-bit stereo frames at
// 44,100 Hz of the soundtrack `fileName`, which the page fills before the show
// starts. Replaces what an earlier call held. Null, and nothing held, for a
// song longer than BROWSER_SOUNDTRACK_MAX_FRAMES.
constexpr uint32_t BROWSER_SOUNDTRACK_MAX_FRAMES = 44100u * 60u * 10u;  // ten minutes
extern "C" int16_t* kaskade_soundtrack_buffer(const char* fileName, uint32_t frames);
