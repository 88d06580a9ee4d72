#include "content/images/lettering.h"

#include <ft2build.h>
#include FT_FREETYPE_H

#include <cmath>
#include <stdexcept>
#include <vector>

namespace {

// One open face at the style's size, released with the object.
class Face {
public:
    Face(const TextStyle& style, float aspect) {
        if (FT_Init_FreeType(&library_) != 0) {
            throw std::runtime_error("FreeType cannot start");
        }
        if (FT_New_Face(library_, style.fontFile, 0, &face_) != 0) {
            FT_Done_FreeType(library_);
            throw std::runtime_error(std::string("cannot open font ") + style.fontFile);
        }
        FT_Set_Char_Size(face_, 0, static_cast<FT_F26Dot6>(std::lround(style.size * 64.0f)), 72, 72);
        xScale_ = 1.0f / aspect;
        tracking_ = style.tracking * style.size * xScale_;
    }
    ~Face() {
        FT_Done_Face(face_);
        FT_Done_FreeType(library_);
    }
    Face(const Face&) = delete;
    Face& operator=(const Face&) = delete;

    // Loads one character rendered with the pen's fractional part applied.
    FT_GlyphSlot render(unsigned code, float penFraction) {
        FT_Matrix matrix = scaleMatrix();
        FT_Vector delta{static_cast<FT_Pos>(std::lround(penFraction * 64.0f)), 0};
        FT_Set_Transform(face_, &matrix, &delta);
        if (FT_Load_Char(face_, code, FT_LOAD_NO_HINTING | FT_LOAD_RENDER) != 0) {
            return nullptr;
        }
        return face_->glyph;
    }

    // Pen advance of one character in pixels, tracking included.
    float advance(unsigned code) {
        FT_Matrix matrix = scaleMatrix();
        FT_Set_Transform(face_, &matrix, nullptr);
        if (FT_Load_Char(face_, code, FT_LOAD_NO_HINTING) != 0) {
            return 0.0f;
        }
        return static_cast<float>(face_->glyph->advance.x) / 64.0f + tracking_;
    }

    // Kerning between two characters in pixels (0 when the font has none).
    float kerning(unsigned previous, unsigned code) {
        if (previous == 0 || !FT_HAS_KERNING(face_)) {
            return 0.0f;
        }
        FT_Vector kern{0, 0};
        FT_Get_Kerning(face_, FT_Get_Char_Index(face_, previous), FT_Get_Char_Index(face_, code),
                       FT_KERNING_UNFITTED, &kern);
        return static_cast<float>(kern.x) / 64.0f * xScale_;
    }

private:
    FT_Matrix scaleMatrix() const {
        return FT_Matrix{static_cast<FT_Fixed>(std::lround(xScale_ * 65536.0f)), 0, 0, 0x10000};
    }

    FT_Library library_ = nullptr;
    FT_Face face_ = nullptr;
    float xScale_ = 1.0f;
    float tracking_ = 0.0f;
};

// Code points of a UTF-8 string; malformed bytes are skipped.
std::vector<unsigned> codePoints(const std::string& text) {
    std::vector<unsigned> out;
    for (size_t i = 0; i < text.size();) {
        const unsigned char lead = static_cast<unsigned char>(text[i]);
        int extra = lead < 0x80 ? 0 : (lead >> 5) == 6 ? 1 : (lead >> 4) == 14 ? 2 : (lead >> 3) == 30 ? 3 : -1;
        if (extra < 0 || i + static_cast<size_t>(extra) >= text.size()) {
            ++i;
            continue;
        }
        unsigned code = extra == 0 ? lead : lead & (0x3F >> extra);
        for (int k = 1; k <= extra; ++k) code = (code << 6) | (static_cast<unsigned char>(text[i + k]) & 0x3F);
        out.push_back(code);
        i += static_cast<size_t>(extra) + 1;
    }
    return out;
}

void blitGlyph(Mask& mask, const FT_Bitmap& bitmap, int left, int top) {
    for (unsigned row = 0; row < bitmap.rows; ++row) {
        const unsigned char* line = bitmap.buffer + static_cast<long>(row) * bitmap.pitch;
        for (unsigned column = 0; column < bitmap.width; ++column) {
            if (line[column] != 0) {
                mask.cover(left + static_cast<int>(column), top + static_cast<int>(row), line[column] / 255.0f);
            }
        }
    }
}

}  // namespace

float textWidth(const TextStyle& style, const std::string& text, float aspect) {
    if (text.empty()) return 0.0f;
    Face face(style, aspect);
    float width = 0.0f;
    unsigned previous = 0;
    for (unsigned code : codePoints(text)) {
        width += face.kerning(previous, code) + face.advance(code);
        previous = code;
    }
    return width - style.tracking * style.size / aspect;  // no tracking after the last letter
}

void drawText(Mask& mask, const TextStyle& style, const std::string& text, float x, float baseline) {
    Face face(style, mask.aspect);
    float pen = x;
    unsigned previous = 0;
    const int row = static_cast<int>(std::lround(baseline));
    for (unsigned code : codePoints(text)) {
        pen += face.kerning(previous, code);
        const float whole = std::floor(pen);
        const FT_GlyphSlot glyph = face.render(code, pen - whole);
        if (glyph != nullptr && glyph->bitmap.pixel_mode == FT_PIXEL_MODE_GRAY) {
            blitGlyph(mask, glyph->bitmap, static_cast<int>(whole) + glyph->bitmap_left, row - glyph->bitmap_top);
        }
        pen += face.advance(code);
        previous = code;
    }
}

void drawTextCentred(Mask& mask, const TextStyle& style, const std::string& text, float centreX, float baseline) {
    drawText(mask, style, text, centreX - textWidth(style, text, mask.aspect) * 0.5f, baseline);
}

void drawTextRight(Mask& mask, const TextStyle& style, const std::string& text, float rightX, float baseline) {
    drawText(mask, style, text, rightX - textWidth(style, text, mask.aspect), baseline);
}
