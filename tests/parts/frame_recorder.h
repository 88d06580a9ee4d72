// What a draw step hands to the renderer and the overlays, written down on
// its way there (the line format: tests/data/parts/frames.txt): the test
// program links World::render, drawOverlayAdd and drawOverlayDarken with
// --wrap (frame_recorder.cpp), so every call still draws.
#pragma once

#include <string>

struct Texture;

// Forgets everything written down so far.
void startFrameRecording();

// The lines since startFrameRecording, each ending in '\n'.
std::string frameRecording();

// Names `texture` in overlay lines.
void nameRecordedTexture(const Texture* texture, const std::string& name);
