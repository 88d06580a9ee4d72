#include "content/music/soundtrack.h"

#include "content/formats/mp3_encoder.h"

std::vector<uint8_t> makeSoundtrackMp3() { return encodeMp3(renderSoundtrackPcm(), SOUNDTRACK_RATE, SOUNDTRACK_KBPS); }
