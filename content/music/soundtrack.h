// content/music: the synthesizer, the score and the mix that make the soundtrack.
//
// The show's soundtrack "harbour.mp3": about 231 seconds of music made by the
// project's own synthesizer (drums, bass, pads, arpeggio and a lead, one
// section per demo part), stereo at 44,100 Hz, encoded with libmp3lame so that
// it loops without a gap.
#pragma once

#include <cstdint>
#include <vector>

constexpr int SOUNDTRACK_RATE = 44100;
constexpr int SOUNDTRACK_KBPS = 192;

// The mixed track as 16-bit interleaved stereo PCM (left, right). Peaks stay
// below 0.9 of full scale. Same samples on every run.
std::vector<int16_t> renderSoundtrackPcm();

// renderSoundtrackPcm() encoded as a complete MP3 file (constant 192 kbps,
// with the encoder's delay and padding recorded in its first frame).
std::vector<uint8_t> makeSoundtrackMp3();
