// Sound files the audio tests make for themselves: MP3s encoded by Debian's
// ffmpeg (libmp3lame, with the encoder-delay tag that gapless playback needs)
// and a tracker module written byte by byte.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

// `frames` stereo frames: left and right 441 Hz sine tones of the given amplitudes
// (0..32767) for the first `loudFrames`, silence after.
std::vector<int16_t> tone(size_t frames, size_t loudFrames, int leftAmplitude, int rightAmplitude);

// Encodes interleaved stereo 44,100 Hz samples to an MP3 file at `path`.
void writeMp3(const std::string& path, const std::vector<int16_t>& samples);

// A four-channel ProTracker module: one square-wave note on channel 1 for one
// pattern at speed 1 (64 rows of 20 ms), so the song ends after about 1.3 s.
void writeModule(const std::string& path);

// A PCM WAV file of `samples` (the MP3 decoder would take it; the show must not).
void writeWav(const std::string& path, const std::vector<int16_t>& samples);

void writeBytes(const std::string& path, const std::vector<uint8_t>& bytes);

// A fresh empty directory for one test's files.
std::string makeTempDir();
