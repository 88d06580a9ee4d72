// The audio layer the music and clock stand on: one output device at 44,100 Hz
// (SDL2) playing channels made from files, with an end sync and a peak level
// per channel. Handles are small positive numbers; 0 is "no channel".
//
// Every function may be called with handle 0 or before audioInit: it then does
// nothing, and audioChannelGetLevel reports the error value 0xFFFFFFFF.
#pragma once

#include <cstddef>
#include <cstdint>

using AudioHandle = uint32_t;

// Called on the audio thread each time a channel reaches its end (and, when
// looping, starts again from its beginning). Arguments: the sync, the channel,
// a data word (always 0).
using AudioSyncProc = void (*)(uint32_t sync, uint32_t channel, uint32_t data);

// Opens the default output device at `frequency` Hz, paused. False when no
// device can be opened. The audio libraries' own messages are kept off the terminal.
bool audioInit(int frequency);

// The mixer without an output device: audioMix is then driven by the caller
// (tests, the fixed-step clock). Always succeeds.
void audioInitWithoutDevice();

// A looping-capable channel from an MP3 file; 0 unless the file really is MP3.
AudioHandle audioStreamCreateFile(const char* path);
// A channel from a tracker module; 0 unless libopenmpt loads the file.
AudioHandle audioMusicLoad(const char* path);

// Sets the channel's end sync (one per channel; a later call replaces it).
void audioChannelSetSync(AudioHandle channel, AudioSyncProc proc);

// Starts the output device.
void audioStart();

// Starts the channel; with `loop` it starts again at its end, else it stops there.
void audioChannelPlay(AudioHandle channel, bool loop);

// The channel's song length in milliseconds (rounded); 0 when it cannot be
// told or for a handle that names no channel.
uint32_t audioChannelGetLength(AudioHandle channel);

// The channel plays on from `millis` into its song (wrapped at its length),
// or from as near it as the song allows (a tracker module starts at a row);
// its level history starts again in silence. Looping and the end sync work as
// from the start. Returns the position it plays on from, in milliseconds into
// the song; 0 for a handle that names no channel.
uint32_t audioChannelSetPosition(AudioHandle channel, uint32_t millis);

// The channel stops where it is (`paused`), or goes on from there. Playing,
// looping, setting its position and its end sync are kept as they are; a
// paused channel plays nothing until it goes on.
void audioChannelPause(AudioHandle channel, bool paused);

// The gain (0..1) of everything played, 1 at start. It applies after the
// channels' levels are taken: audioChannelGetLevel reads the music as it is
// in the file at any volume.
void audioSetGain(float gain);

// Peak level of the channel over the most recent 20 ms it played: left in the
// low 16 bits, right in the high 16 bits, each 0..128. 0xFFFFFFFF for a handle
// that names no channel.
uint32_t audioChannelGetLevel(AudioHandle channel);

// The level the channel's song has `songMillis` into it (the 20 ms before
// that point; past its end the song loops), as audioChannelGetLevel reports it
// once the channel has played there: what the frames a seek passes react to. The first call decodes the song from its file as far as asked, and
// keeps it for later ones. 0xFFFFFFFF for a handle that names no channel.
uint32_t audioChannelLevelAt(AudioHandle channel, uint32_t songMillis);

// Closes the device and releases every channel.
void audioFree();

// Fills `out` with `frames` stereo frames of everything playing, exactly as the
// device callback does (saturating sum of the playing channels).
void audioMix(int16_t* out, size_t frames);
