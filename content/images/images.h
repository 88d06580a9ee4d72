// content/images: the twelve PCX pictures, with the raster and lettering they are drawn with.
//
// The twelve pictures of the show's archive, generated: titles, credits,
// greetings, words and a sprite, light graphics and lettering on black (the
// show adds them to the frame or darkens the frame with them, so black is "no
// change"). Both PCX kinds occur: some are indexed with a palette, some 24-bit.
#pragma once

#include <vector>

#include "content/content_entry.h"

// Entries named as the demo parts load them ("objects.pcx", "mark12.pcx", ...);
// every image is 512 x 256 except "texture2.pcx", 256 x 256. Same bytes on every run.
std::vector<ContentEntry> makeImages();
