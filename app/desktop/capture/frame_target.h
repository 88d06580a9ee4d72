// Where the show's frames are drawn, and how a frame of any size holds the
// show's 4:3 picture: in the largest centred 4:3 rectangle, with black bars
// beside it or above and below it where nothing is drawn (no clear colour, no
// geometry, no overlay), and lines as thick, relative to the picture, as at
// 640 x 480 (width picture height / 480). The show's own steps set no viewport.
//
// The target is the window, following its size (fullscreen, --size, a window
// the user resizes), or, for capture, a framebuffer of its own of any size,
// multisampled when asked, that the screen's size does not limit. It keeps its
// rows top first, as a window does, so that it draws a window's pixels.
#pragma once

#include <cstdint>
#include <string>

// The picture's place in a frame, in pixels from the frame's top left corner,
// as the frame is seen on the screen or in a file.
struct PictureRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

// The largest 4:3 rectangle centred in a width x height frame (whole pixels;
// the spare pixel of an odd margin goes to the right or bottom bar, in a
// window and in a capture alike).
PictureRect pictureRect(int frameWidth, int frameHeight);

// The window is the target, now width x height: GLUT's reshape callback.
void fitToWindow(int width, int height);

// From now on frames are drawn into a framebuffer of width x height pixels
// with `samples` samples per pixel (0 or 1: none); `opaque`: its pixels read
// back with alpha 255, else with whatever alpha the drawing left. False and
// `error` when the GL cannot make it.
bool drawOffscreen(int width, int height, int samples, bool opaque, std::string* error);

// Sets the viewport, scissor and line width for the current target again,
// after something (the looping show's return to its start state) reset them.
void refitFrame();

// Before each frame: the bars black. Restores the clear colour it used.
void prepareFrame();

// The finished frame (before it is shown) into `pixels`: frameWidth() x
// frameHeight() packed pixels of 4 bytes, top row first: blue, green, red,
// alpha with `bgra`, else red, green, blue, alpha.
void readFrame(uint8_t* pixels, bool bgra);

// Offscreen: shows the finished frame in the window, scaled to it.
void previewFrame();

// The target's size in pixels.
int frameWidth();
int frameHeight();
