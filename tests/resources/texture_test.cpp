// Textures: the decoder's pixels reordered to RGBA (tests/overlay loads, uploads and draws one).
#include "resources/texture.h"

#include <gtest/gtest.h>

namespace {

TEST(TextureRgba, SwapsBlueAndRedAndMakesPixelsWithAllChannelsBelowTwoTransparentWhenAsked) {
    // Blue, green, red as decoded: every channel at 1, then one channel at 2 (blue,
    // green, red) with the others at 0 or 1.
    const std::vector<uint8_t> decoded = {1, 1, 1, 7, 1, 0, 1, 7, 2, 0, 0, 7, 0, 2, 0, 7,
                                          1, 1, 2, 7, 0, 0, 2, 7, 10, 20, 30, 7};
    for (bool blackTransparent : {false, true}) {
        Texture texture{};
        texture.allocate(7, 1);
        std::copy(decoded.begin(), decoded.end(), texture.pixels);
        texture.convertToRgba(blackTransparent);
        const uint8_t clear = blackTransparent ? 0 : 255;
        EXPECT_EQ(std::vector<uint8_t>(texture.pixels, texture.pixels + 28),
                  std::vector<uint8_t>({1, 1, 1, clear, 1, 0, 1, clear, 0, 0, 2, 255, 0, 2, 0, 255, 2, 1, 1, 255,
                                        2, 0, 0, 255, 30, 20, 10, 255}));
        delete[] texture.pixels;
    }
}

}  // namespace
