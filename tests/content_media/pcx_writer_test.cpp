// The PCX writer, read back with the show's decoder.
#include "content/formats/pcx_writer.h"

#include <gtest/gtest.h>

#include <array>
#include <stdexcept>

#include "tests/content_media/decoded_image.h"

namespace {

// Per line: a run of 0xC8 longer than one packet holds, then lone values of
// 0xC0 and up (which need a count byte of their own) among noise.
std::vector<uint8_t> awkwardBytes(int width, int height, int channels) {
    std::vector<uint8_t> bytes(static_cast<size_t>(width) * height * channels);
    uint32_t state = 12345;
    for (size_t i = 0; i < bytes.size(); ++i) {
        state = state * 1103515245u + 12345u;
        const size_t x = i / channels % width;
        bytes[i] = x < 70 ? 0xC8 : x % 5 == 0 ? static_cast<uint8_t>(0xC0 + (state >> 28)) : static_cast<uint8_t>(state >> 24);
    }
    return bytes;
}

}  // namespace

TEST(PcxWriter, ImagesOfBothKindsDecodeToTheirColours) {
    const int height = 6;
    for (int width : {130, 131}) {  // an even width and one that needs a pad byte
        const std::vector<uint8_t> indices = awkwardBytes(width, height, 1);
        const std::vector<uint8_t> rgb = awkwardBytes(width, height, 3);
        PcxPalette palette{};
        for (size_t i = 0; i < palette.size(); ++i) palette[i] = static_cast<uint8_t>(i * 37 + i / 3);
        const std::vector<uint8_t> files[2] = {writePcxIndexed(width, height, indices, palette), writePcxRgb(width, height, rgb)};
        for (int kind = 0; kind < 2; ++kind) {
            SCOPED_TRACE(testing::Message() << (kind == 0 ? "indexed" : "rgb") << " width " << width);
            PcxHeader header{};
            ASSERT_EQ(parsePcxHeader(files[kind].data(), files[kind].size(), &header), nullptr);
            EXPECT_EQ(header.planes, kind == 0 ? 1 : 3);
            EXPECT_EQ(header.bytesPerLine, width + width % 2);  // lines of an even length
            const DecodedImage image = decodeImage(files[kind], width, height);
            EXPECT_EQ(image.endPosition, static_cast<long>(files[kind].size()));
            for (int i = 0; i < width * height; ++i) {
                const uint8_t* colour = kind == 0 ? &palette[indices[i] * 3u] : &rgb[i * 3u];
                const int x = i % width, y = i / width;
                ASSERT_EQ((std::array{image.red(x, y), image.green(x, y), image.blue(x, y)}),
                          (std::array{colour[0], colour[1], colour[2]})) << x << "," << y;
            }
        }
    }
}

TEST(PcxWriter, RefusesPixelsThatDoNotMatchTheSize) {
    EXPECT_THROW(writePcxIndexed(4, 4, std::vector<uint8_t>(15), PcxPalette{}), std::invalid_argument);
    EXPECT_THROW(writePcxIndexed(0, 4, {}, PcxPalette{}), std::invalid_argument);
    EXPECT_THROW(writePcxRgb(70000, 1, std::vector<uint8_t>(210000)), std::invalid_argument);
    EXPECT_THROW(writePcxRgb(4, 4, std::vector<uint8_t>(16)), std::invalid_argument);
}
