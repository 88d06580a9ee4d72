#include "content/formats/mp3_encoder.h"

#include <lame/lame.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace {

// Owns one encoder.
class LameEncoder {
public:
    LameEncoder() : flags_(lame_init()) {
        if (flags_ == nullptr) throw std::runtime_error("libmp3lame cannot start");
    }
    ~LameEncoder() { lame_close(flags_); }
    LameEncoder(const LameEncoder&) = delete;
    LameEncoder& operator=(const LameEncoder&) = delete;
    lame_global_flags* get() const { return flags_; }

private:
    lame_global_flags* flags_;
};

void configure(lame_global_flags* flags, int sampleRate, int kbps) {
    lame_set_num_channels(flags, 2);
    lame_set_in_samplerate(flags, sampleRate);
    lame_set_out_samplerate(flags, sampleRate);
    lame_set_mode(flags, JOINT_STEREO);
    lame_set_VBR(flags, vbr_off);
    lame_set_brate(flags, kbps);
    lame_set_quality(flags, 5);
    lame_set_bWriteVbrTag(flags, 1);  // the Info frame that carries delay and padding
    lame_set_write_id3tag_automatic(flags, 0);
    if (lame_init_params(flags) < 0) throw std::runtime_error("libmp3lame refuses the settings");
}

}  // namespace

std::vector<uint8_t> encodeMp3(const std::vector<int16_t>& pcm, int sampleRate, int kbps) {
    LameEncoder encoder;
    configure(encoder.get(), sampleRate, kbps);

    constexpr size_t CHUNK_FRAMES = 8192;
    std::vector<unsigned char> buffer(CHUNK_FRAMES * 5 / 4 + 7200);
    std::vector<uint8_t> out;
    const size_t frames = pcm.size() / 2;
    for (size_t done = 0; done < frames; done += CHUNK_FRAMES) {
        const size_t count = std::min(CHUNK_FRAMES, frames - done);
        // libmp3lame takes a non-const pointer but does not write through it.
        short* samples = const_cast<short*>(reinterpret_cast<const short*>(pcm.data() + done * 2));
        const int written = lame_encode_buffer_interleaved(encoder.get(), samples, static_cast<int>(count),
                                                           buffer.data(), static_cast<int>(buffer.size()));
        if (written < 0) throw std::runtime_error("libmp3lame failed to encode");
        out.insert(out.end(), buffer.begin(), buffer.begin() + written);
    }
    const int flushed = lame_encode_flush(encoder.get(), buffer.data(), static_cast<int>(buffer.size()));
    if (flushed < 0) throw std::runtime_error("libmp3lame failed to flush");
    out.insert(out.end(), buffer.begin(), buffer.begin() + flushed);

    // The encoder wrote a placeholder of the tag's size as the first frame.
    unsigned char tag[4096];
    const size_t tagSize = lame_get_lametag_frame(encoder.get(), tag, sizeof tag);
    if (tagSize == 0 || tagSize > sizeof tag || tagSize > out.size()) {
        throw std::runtime_error("libmp3lame gave no Info frame");
    }
    std::memcpy(out.data(), tag, tagSize);
    return out;
}
