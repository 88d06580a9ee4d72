// The video a capture makes: ffmpeg encodes, in one pass, the frames (raw
// blue, green, red, unused bytes on its standard input, top row first) and the soundtrack of the same stretch
// of the show (raw 16-bit stereo PCM at 44,100 Hz on descriptor 3). A thread
// of its own feeds the soundtrack from the capture's first frame on, looping
// as the show's music does, ahead of the frames; the video ends with the last
// frame and ffmpeg ends the sound there (-shortest).
#pragma once

#include "app/desktop/capture/child_process.h"

#include <cstdint>
#include <string>
#include <thread>
#include <vector>

struct DecodedAudio;

struct VideoSettings {
    std::string path;  // .mp4, .mkv or .webm
    int width = 640;
    int height = 480;
    int fps = 30;
    const DecodedAudio* sound = nullptr;  // null or empty: a silent video
    long firstFrame = 0;                   // the show's frame at the capture's frame 0
    int crf = -1;                          // constant rate factor; -1: the codec's default below
};

struct VideoEncoder {
    ChildProcess ffmpeg;
    std::thread soundFeed;
};

// True when `path` names a video container the encoder makes (.mp4, .mkv, .webm).
bool isVideoPath(const std::string& path);
// True for a WebM video (VP9, whose rate factor runs to 63 rather than 51).
bool isWebmPath(const std::string& path);

// The ffmpeg command line, argv[0] being `ffmpeg`.
std::vector<std::string> encoderCommand(const std::string& ffmpeg, const VideoSettings& video);

// The sample (stereo frame at 44,100 Hz, from the show's start) under the show's
// frame `frame` at `fps`: frames and samples start together at 0.
long long firstSampleOfFrame(long frame, int fps);

// Starts ffmpeg (found as `ffmpeg`) and the sound feed. False and `error` when it cannot.
bool startVideoEncoder(VideoEncoder& encoder, const std::string& ffmpeg, const VideoSettings& video,
                       std::string* error);

// Hands one frame (width x height x 4 bytes) to the encoder; false when it has stopped.
bool encodeFrame(VideoEncoder& encoder, const uint8_t* pixels, size_t bytes);

// Ends the video after the frames given and waits for ffmpeg; true when it wrote the file.
bool finishVideoEncoder(VideoEncoder& encoder);
