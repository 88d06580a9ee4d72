// The soundtrack as the browser decodes it (Web Audio's decodeAudioData) on
// the page, while it arrives: what the web build plays, meters and hands to
// the fixed-step clock in place of libmpg123's decoding. The page makes room
// for the whole song first and fills it in as pieces are decoded; what is not
// decoded yet is silence, and is not played before it is.
#pragma once

#include "audio/decoded_audio.h"

// The soundtrack the page handed over for `fileName`; null when the page
// handed over none for that file (it did not decode in this browser).
const DecodedAudio* browserSoundtrack(const char* fileName);

// For the page: room for `frames` interleaved 16-bit stereo frames at
// 44,100 Hz of the soundtrack `fileName`, which the page fills as it decodes.
// Replaces what an earlier call held; with `keep` (the song's length turned
// out other than first said), the samples held stay, cut or followed by
// silence. Null, and nothing held, for a song longer than
// BROWSER_SOUNDTRACK_MAX_FRAMES. The pointer holds until the next call.
constexpr uint32_t BROWSER_SOUNDTRACK_MAX_FRAMES = 44100u * 60u * 10u;  // ten minutes
extern "C" int16_t* kaskade_soundtrack_buffer(const char* fileName, uint32_t frames, int keep);
