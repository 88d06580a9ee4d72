// Makers of the single pictures behind makeImages(), with the sizes the demo
// parts load them at and the shape of the quads they are shown on.
#pragma once

#include "content/content_entry.h"
#include "content/images/raster.h"

constexpr int PICTURE_WIDTH = 512;
constexpr int PICTURE_HEIGHT = 256;
constexpr int SPRITE_SIZE = 256;

// Screen width of one picture pixel relative to its height, by quad shape:
constexpr float ASPECT_STRIP = 1.5f;  // 300 x 100 quads: logo, credits, rings
constexpr float ASPECT_LAYER = 1.0f;  // 400 x 200 quads (and the square sprite)
constexpr float ASPECT_PANEL = 0.8f;  // 320 x 200 quads: greetings and the words

ContentEntry makeLogoPicture();      // "mark12.pcx", 24-bit
Canvas paintLogo();                  // the logo before it is written as PCX (the program's icon is cut from it)
ContentEntry makeObjectsPicture();   // "objects.pcx", 24-bit
ContentEntry makeCreditsPicture();   // "cred.pcx", indexed
ContentEntry makeCrossesPicture();   // "xxx.pcx", indexed
ContentEntry makeRingsPicture();     // "ooo.pcx", indexed
ContentEntry makeSpritePicture();    // "texture2.pcx", indexed, 256 x 256
ContentEntry makePartPicture();      // "part.pcx", 24-bit
ContentEntry makeGreetingsPicture(); // "greet.pcx", 24-bit
ContentEntry makeEverPicture();      // "ever.pcx", 24-bit
ContentEntry makeForgetPicture();    // "forget.pcx", indexed
ContentEntry makeInvertPicture();    // "invert.pcx", indexed
ContentEntry makeOutsidePicture();   // "outside.pcx", 24-bit
