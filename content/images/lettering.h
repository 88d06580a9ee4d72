// Lettering for the show's pictures: text rendered with FreeType from the
// fonts of Debian's fonts-dejavu-core into a coverage mask, anti-aliased, at
// fractional pen positions, with the font's kerning. On a mask whose aspect is
// not 1 the letters are narrowed by 1 / aspect so that they look right once the
// picture is stretched on screen. Text is UTF-8.
#pragma once

#include <string>

#include "content/images/raster.h"

constexpr const char* FONT_SANS = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf";
constexpr const char* FONT_SANS_BOLD = "/usr/share/fonts/truetype/dejavu/DejaVuSans-Bold.ttf";
constexpr const char* FONT_MONO = "/usr/share/fonts/truetype/dejavu/DejaVuSansMono.ttf";
constexpr const char* FONT_SERIF = "/usr/share/fonts/truetype/dejavu/DejaVuSerif.ttf";

struct TextStyle {
    const char* fontFile;   // one of the FONT_... files
    float size;             // em size in vertical pixels
    float tracking = 0.0f;  // extra space after every letter, in em
};

// Width of `text` in image pixels on a mask of the given aspect. Throws
// std::runtime_error when the font cannot be opened.
float textWidth(const TextStyle& style, const std::string& text, float aspect);

// Draws `text` with the pen starting at x and the baseline at row `baseline`
// (image pixels). Coverage joins what the mask holds (the larger value wins).
void drawText(Mask& mask, const TextStyle& style, const std::string& text, float x, float baseline);
void drawTextCentred(Mask& mask, const TextStyle& style, const std::string& text, float centreX, float baseline);
void drawTextRight(Mask& mask, const TextStyle& style, const std::string& text, float rightX, float baseline);
