// Capture of the show: every swapped frame, read back from the back buffer
// (640 x 480, as shown), goes to a directory of PNG frames or, for a path
// ending in .mp4, .mkv or .webm, to a video with the soundtrack as its audio,
// cut to the length of the show.
#pragma once

#include <string>

// Prepares the capture before the show starts. False and `error` when it
// cannot be done (a video without ffmpeg, a directory that cannot be made).
bool startCapture(const std::string& path, int fps, const std::string& soundtrackPath, std::string* error);

bool captureActive();

// Reads back the frame about to be swapped and writes it; updates the progress line.
void captureFrame(float demoTime);

// Completes the files (for a video: the audio is added and the length cut).
// Returns false and prints why on standard error when that fails.
bool finishCapture();

// True when `path` names a video container the capture encodes.
bool isVideoPath(const std::string& path);

// The first executable called `name` on PATH, or "".
std::string findProgram(const std::string& name);
