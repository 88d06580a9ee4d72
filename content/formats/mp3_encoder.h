// MP3 encoding of 16-bit stereo PCM with libmp3lame.
#pragma once

#include <cstdint>
#include <vector>

// Encodes interleaved stereo `pcm` at `sampleRate` Hz as constant-bitrate
// joint stereo at `kbps`, with no ID3 tag. The first frame is the encoder's
// Info/LAME tag, rewritten after encoding with the real encoder delay and
// padding, so decoders that honour it (libmpg123 does) return exactly the
// encoded samples, and a loop of the file has no gap. Throws
// std::runtime_error when the encoder fails.
std::vector<uint8_t> encodeMp3(const std::vector<int16_t>& pcm, int sampleRate, int kbps);
