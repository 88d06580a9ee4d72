// Capture of the show: every frame as drawn, at any size and with
// multisampling, to a directory of PNG frames or, for a path ending in .mp4,
// .mkv or .webm, to one video with the soundtrack of the same stretch of the
// show, encoded in one pass. The frames are drawn offscreen (the screen's size
// does not limit them) and written by a thread of their own.
#pragma once

#include <string>

struct DecodedAudio;

struct CaptureSettings {
    std::string path;
    int fps = 30;
    int width = 640;
    int height = 480;
    int samples = 0;                        // per pixel; 0 or 1: no multisampling
    const DecodedAudio* soundtrack = nullptr;  // null: a silent video
    long firstFrame = 0;                    // the show's frame number of the capture's frame 0
    int crf = -1;                           // a video's constant rate factor; -1: the encoder's default
    long frameLimit = 0;                    // frames to capture before the show ends; 0: all to its end
};

// Whether the capture can be made at all (a video needs ffmpeg, frames a
// directory that can be made), before the show opens its window. False and
// `error` when not.
bool checkCapture(const std::string& path, std::string* error);

// Starts drawing offscreen and writing: needs the GL context. False and `error`
// when it cannot be done.
bool startCapture(const CaptureSettings& settings, std::string* error);

bool captureActive();

// Reads back the frame just drawn and hands it to the writer; updates the progress line.
void captureFrame(float demoTime);

// Writes what is left and completes the files. Returns false and prints why
// on standard error when that fails.
bool finishCapture();

// The first executable called `name` on PATH, or "".
std::string findProgram(const std::string& name);
