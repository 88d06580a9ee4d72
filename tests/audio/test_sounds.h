// Sound files the tests make for themselves: MP3s encoded by Debian's ffmpeg
// (libmp3lame, with the encoder-delay tag that gapless playback needs).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

// `frames` stereo frames: left and right 441 Hz sine tones of the given amplitudes
// (0..32767) for the first `loudFrames`, silence after.
std::vector<int16_t> tone(size_t frames, size_t loudFrames, int leftAmplitude, int rightAmplitude);

// Encodes interleaved stereo 44,100 Hz samples to an MP3 file at `path`, or to a
// PCM WAV file when `path` ends in ".wav" (the MP3 decoder would take it; the show must not).
void writeMp3(const std::string& path, const std::vector<int16_t>& samples);

// The tests' sounds, made once per program, by name: "song.mp3" is 0.5 s of
// which the first 0.25 s sound (left amplitude 16000, right 8000), then
// silence; "song.wav" the same as PCM WAV.
std::string testSound(const std::string& name);

void writeBytes(const std::string& path, const std::vector<uint8_t>& bytes);

// A fresh empty directory for one test's files.
std::string makeTempDir();
