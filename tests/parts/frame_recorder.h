// What a draw step hands to the renderer and the overlays, written down on
// its way there: the test program links World::render, drawOverlayAdd and
// drawOverlayDarken with --wrap (frame_recorder.cpp), so every call still
// draws. One line per event, in the parts' terms:
//
//   render, FOG, lights (x,y,z)..., camera (eye) to (target)
//       a World::render: the fog it draws in ("no fog" or "fog exp (r,g,b,a)
//       density", from the GL state), the omni lights and the camera it uses
//   mesh MODE 0xAARRGGBB FLAGS [scale (x,y,z)] [rot (x,y,z)] [move (x,y,z)]
//       each mesh it draws, in order: its first face's material (drawing mode,
//       diffuse colour, flag bits), and its scale, rotation and translation
//       where they are not the identity
//   overlay add|darken NAME (x0,y0)-(x1,y1) z...
//       an overlay call; calls in a row with the same image and corners add
//       their depths to one line
//
// Numbers are printed with %g.
#pragma once

#include <string>

struct Texture;

// Forgets everything written down so far.
void startFrameRecording();

// The lines since startFrameRecording, each ending in '\n'.
std::string frameRecording();

// Names `texture` in overlay lines.
void nameRecordedTexture(const Texture* texture, const std::string& name);
