#include "audio/sound_source.h"

#include "audio/mpeg_frames.h"

#include <libopenmpt/libopenmpt.h>
#include <libopenmpt/libopenmpt_stream_callbacks_file.h>
#include <mpg123.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <vector>

struct SoundSource {
    mpg123_handle* mp3 = nullptr;
    openmpt_module* module = nullptr;
};

namespace {

constexpr long OUTPUT_RATE_HZ = 44100;
// How far into a file the first MPEG frame is looked for, past whatever was
// written before it.
constexpr size_t MP3_SEARCH_BYTES = 64 * 1024;
// Frames in a row that make a file an MP3 when it does not start with one.
constexpr int MP3_FRAME_RUN = 4;

std::vector<uint8_t> readFileStart(const char* path, size_t count, uint64_t* fileSize) {
    std::vector<uint8_t> bytes;
    FILE* file = std::fopen(path, "rb");
    if (file == nullptr) {
        return bytes;
    }
    std::fseek(file, 0, SEEK_END);
    const long size = std::ftell(file);
    std::fseek(file, 0, SEEK_SET);
    *fileSize = size > 0 ? static_cast<uint64_t>(size) : 0;
    bytes.resize(count);
    bytes.resize(std::fread(bytes.data(), 1, count, file));
    std::fclose(file);
    return bytes;
}

bool looksLikeMp3(const std::vector<uint8_t>& start) {
    if (start.size() >= 10 && std::memcmp(start.data(), "ID3", 3) == 0) {
        return true;
    }
    // MPEG audio frame sync: 11 set bits, a valid layer, bitrate and sample-rate index.
    if (start.size() >= 4 && start[0] == 0xFF && (start[1] & 0xE0) == 0xE0) {
        const int version = (start[1] >> 3) & 3;
        const int layer = (start[1] >> 1) & 3;
        const int bitrate = start[2] >> 4;
        const int rate = (start[2] >> 2) & 3;
        return version != 1 && layer != 0 && bitrate != 15 && rate != 3;
    }
    return false;
}

bool mpg123Ready() {
    static const bool ready = mpg123_init() == MPG123_OK;
    return ready;
}

void silentLog(const char*, void*) {}

}  // namespace

SoundFormat probeSoundFile(const char* path) {
    uint64_t fileSize = 0;
    const size_t probeSize = std::max<size_t>(openmpt_probe_file_header_get_recommended_size(), MP3_SEARCH_BYTES);
    const std::vector<uint8_t> start = readFileStart(path, probeSize, &fileSize);
    if (start.empty()) {
        return SoundFormat::Unreadable;
    }
    const int probe = openmpt_probe_file_header(OPENMPT_PROBE_FILE_HEADER_FLAGS_DEFAULT, start.data(), start.size(),
                                                fileSize, silentLog, nullptr, nullptr, nullptr, nullptr, nullptr);
    if (probe == OPENMPT_PROBE_FILE_HEADER_RESULT_SUCCESS) {
        return SoundFormat::Module;
    }
    if (looksLikeMp3(start) || findMpegFrameRun(start.data(), start.size(), MP3_FRAME_RUN) >= 0) {
        return SoundFormat::Mp3;
    }
    return SoundFormat::Unknown;
}

SoundSource* openStreamSource(const char* path) {
    if (probeSoundFile(path) != SoundFormat::Mp3 || !mpg123Ready()) {
        return nullptr;
    }
    mpg123_handle* mp3 = mpg123_new(nullptr, nullptr);
    if (mp3 == nullptr) {
        return nullptr;
    }
    mpg123_param(mp3, MPG123_ADD_FLAGS, MPG123_QUIET | MPG123_FORCE_STEREO | MPG123_GAPLESS, 0.0);
    mpg123_param(mp3, MPG123_FORCE_RATE, OUTPUT_RATE_HZ, 0.0);
    mpg123_format_none(mp3);
    mpg123_format(mp3, OUTPUT_RATE_HZ, MPG123_STEREO, MPG123_ENC_SIGNED_16);
    long rate = 0;
    int channels = 0;
    int encoding = 0;
    // Anything but MPG123_OK (including MPG123_DONE for some non-MP3 input) means "not MP3".
    if (mpg123_open(mp3, path) != MPG123_OK || mpg123_getformat(mp3, &rate, &channels, &encoding) != MPG123_OK ||
        channels != 2 || encoding != MPG123_ENC_SIGNED_16) {
        mpg123_delete(mp3);
        return nullptr;
    }
    // The whole file's frame index, for an exact length and exact seeks.
    mpg123_scan(mp3);
    auto* source = new SoundSource;
    source->mp3 = mp3;
    return source;
}

SoundSource* openModuleSource(const char* path) {
    if (probeSoundFile(path) != SoundFormat::Module) {
        return nullptr;
    }
    FILE* file = std::fopen(path, "rb");
    if (file == nullptr) {
        return nullptr;
    }
    openmpt_module* module = openmpt_module_create2(openmpt_stream_get_file_callbacks(), file, silentLog, nullptr,
                                                    nullptr, nullptr, nullptr, nullptr, nullptr);
    std::fclose(file);
    if (module == nullptr) {
        return nullptr;
    }
    // Repeat count 0 with "continue" at the end: a read returns 0 frames exactly
    // at the song's end and the next read starts it again, so the end is seen.
    openmpt_module_set_repeat_count(module, 0);
    openmpt_module_ctl_set_text(module, "play.at_end", "continue");
    openmpt_module_ctl_set_integer(module, "dither", 0);
    auto* source = new SoundSource;
    source->module = module;
    return source;
}

void closeSource(SoundSource* source) {
    if (source == nullptr) {
        return;
    }
    if (source->mp3 != nullptr) {
        mpg123_close(source->mp3);
        mpg123_delete(source->mp3);
    }
    if (source->module != nullptr) {
        openmpt_module_destroy(source->module);
    }
    delete source;
}

size_t sourceLength(SoundSource& source) {
    if (source.module != nullptr) {
        return static_cast<size_t>(std::llround(openmpt_module_get_duration_seconds(source.module) * OUTPUT_RATE_HZ));
    }
    const off_t length = mpg123_length(source.mp3);
    return length > 0 ? static_cast<size_t>(length) : 0;
}

size_t seekSource(SoundSource& source, size_t frame) {
    if (source.module != nullptr) {
        const double reached =
            openmpt_module_set_position_seconds(source.module, static_cast<double>(frame) / OUTPUT_RATE_HZ);
        return reached > 0.0 ? static_cast<size_t>(std::llround(reached * OUTPUT_RATE_HZ)) : 0;
    }
    const off_t reached = mpg123_seek(source.mp3, static_cast<off_t>(frame), SEEK_SET);
    return reached >= 0 ? static_cast<size_t>(reached) : frame;
}

size_t readSource(SoundSource& source, int16_t* out, size_t frames) {
    if (source.module != nullptr) {
        return openmpt_module_read_interleaved_stereo(source.module, OUTPUT_RATE_HZ, frames, out);
    }
    size_t done = 0;
    int status = MPG123_NEW_FORMAT;
    while (done == 0 && status == MPG123_NEW_FORMAT) {
        status = mpg123_read(source.mp3, reinterpret_cast<unsigned char*>(out), frames * 4, &done);
    }
    if (done == 0 && status != MPG123_OK) {
        // The end (or an undecodable tail): start over from the first sample.
        mpg123_seek(source.mp3, 0, SEEK_SET);
        return 0;
    }
    return done / 4;
}
