#include "app/desktop/capture/video_encoder.h"

#include "audio/decoded_audio.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr size_t SOUND_CHUNK_FRAMES = 4096;

bool endsWith(const std::string& text, const char* end) {
    const std::string tail(end);
    return text.size() >= tail.size() && text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
}

bool hasSound(const VideoSettings& video) { return video.sound != nullptr && video.sound->frames() > 0; }

// H.264 at a constant quality that keeps the show's thin lines and flat
// colours without visible loss (SSIM 0.991 against the drawn frames in the same
// 4:2:0 sampling) at a fifth less than ultrafast needs for it, and at half the
// encoding work of veryfast (bench/encoder-settings); VP9 in its real-time mode
// for WebM. A rate factor the user gives replaces the default only.
std::vector<std::string> videoCodec(const std::string& path, int crf) {
    if (isWebmPath(path)) {
        const std::string factor = std::to_string(crf >= 0 ? crf : 24);
        return {"-c:v", "libvpx-vp9", "-deadline", "realtime", "-cpu-used", "8", "-crf", factor, "-b:v", "0"};
    }
    const std::string factor = std::to_string(crf >= 0 ? crf : 17);
    return {"-c:v", "libx264", "-preset", "superfast", "-crf", factor, "-pix_fmt", "yuv420p"};
}

std::vector<std::string> audioCodec(const std::string& path) {
    if (isWebmPath(path)) {
        return {"-c:a", "libopus", "-b:a", "160k"};
    }
    return {"-c:a", "aac", "-b:a", "192k"};
}

void append(std::vector<std::string>& to, const std::vector<std::string>& more) {
    to.insert(to.end(), more.begin(), more.end());
}

// Writes the song from `sample` on, looping, until the encoder stops reading.
void feedSound(int fd, const DecodedAudio* song, long long sample) {
    const size_t songFrames = song->frames();
    size_t at = static_cast<size_t>(sample % static_cast<long long>(songFrames));
    for (;;) {
        const size_t count = std::min(SOUND_CHUNK_FRAMES, songFrames - at);
        if (!writeAll(fd, song->samples.data() + at * 2, count * 2 * sizeof(int16_t))) {
            return;
        }
        at = (at + count) % songFrames;
    }
}

}  // namespace

bool isVideoPath(const std::string& path) {
    return endsWith(path, ".mp4") || endsWith(path, ".mkv") || isWebmPath(path);
}

bool isWebmPath(const std::string& path) { return endsWith(path, ".webm"); }

std::vector<std::string> encoderCommand(const std::string& ffmpeg, const VideoSettings& video) {
    std::vector<std::string> command{ffmpeg, "-loglevel", "error", "-y", "-f", "rawvideo", "-pix_fmt", "bgr0", "-s",
                                     std::to_string(video.width) + "x" + std::to_string(video.height), "-r",
                                     std::to_string(video.fps), "-thread_queue_size", "64", "-i", "pipe:0"};
    if (hasSound(video)) {
        append(command, {"-f", "s16le", "-ar", "44100", "-ac", "2", "-thread_queue_size", "64", "-i", "pipe:3"});
    }
    append(command, {"-map", "0:v"});
    append(command, videoCodec(video.path, video.crf));
    if (hasSound(video)) {
        append(command, {"-map", "1:a"});
        append(command, audioCodec(video.path));
        append(command, {"-shortest"});
    }
    command.push_back(video.path);
    return command;
}

long long firstSampleOfFrame(long frame, int fps) {
    return std::llround(static_cast<double>(frame) * 44100.0 / fps);
}

bool startVideoEncoder(VideoEncoder& encoder, const std::string& ffmpeg, const VideoSettings& video,
                       std::string* error) {
    const bool sound = hasSound(video);
    encoder.ffmpeg = startChild(encoderCommand(ffmpeg, video), sound ? 2 : 1);
    if (encoder.ffmpeg.pid < 0) {
        *error = "cannot start ffmpeg";
        return false;
    }
    if (sound) {
        encoder.soundFeed = std::thread(feedSound, encoder.ffmpeg.input3, video.sound,
                                        firstSampleOfFrame(video.firstFrame, video.fps));
    }
    return true;
}

bool encodeFrame(VideoEncoder& encoder, const uint8_t* pixels, size_t bytes) {
    return writeAll(encoder.ffmpeg.input, pixels, bytes);
}

bool finishVideoEncoder(VideoEncoder& encoder) {
    // The frames end; ffmpeg then ends the sound, stops reading it and exits,
    // which ends the feed's last write. Only then is the feed's pipe closed.
    close(encoder.ffmpeg.input);
    encoder.ffmpeg.input = -1;
    const int feed = encoder.ffmpeg.input3;
    encoder.ffmpeg.input3 = -1;
    const bool written = finishChild(encoder.ffmpeg);
    if (encoder.soundFeed.joinable()) {
        encoder.soundFeed.join();
    }
    if (feed >= 0) {
        close(feed);
    }
    return written;
}
