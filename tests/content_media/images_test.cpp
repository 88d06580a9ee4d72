// The PCX writer and the twelve generated pictures written with it, decoded by
// the show's decoder at the sizes the demo parts load them with.
#include "content/formats/pcx_writer.h"
#include "content/images/images.h"
#include "resources/pcx_decoder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>

namespace {

// `file` decoded by decodePcx into a width x height buffer: blue, green, red
// and an untouched byte a pixel; its header; the stream's position after decoding.
struct DecodedImage {
    PcxHeader header{};
    std::vector<uint8_t> pixels;
    long endPosition = 0;
    DecodedImage(const std::vector<uint8_t>& file, int width, int height)
        : pixels(static_cast<size_t>(width) * height * 4, 0) {
        EXPECT_EQ(parsePcxHeader(file.data(), file.size(), &header), nullptr);
        const std::unique_ptr<FILE, int (*)(FILE*)> stream(std::tmpfile(), std::fclose);
        std::fwrite(file.data(), 1, file.size(), stream.get());
        std::rewind(stream.get());
        decodePcx(stream.get(), static_cast<uint32_t>(file.size()), pixels.data(), width, height);
        endPosition = std::ftell(stream.get());
        EXPECT_EQ(endPosition, static_cast<long>(file.size())) << "the whole file read";
    }
    // Red, green and blue of pixel `i`.
    std::array<uint8_t, 3> rgb(size_t i) const { return {pixels[4 * i + 2], pixels[4 * i + 1], pixels[4 * i]}; }
};

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

TEST(PcxWriter, ImagesOfBothKindsDecodeToTheirColoursAndPixelsThatDoNotMatchTheSizeAreRefused) {
    const int height = 6;
    for (int width : {130, 131}) {  // an even width and one that needs a pad byte
        const std::vector<uint8_t> indices = awkwardBytes(width, height, 1);
        const std::vector<uint8_t> rgb = awkwardBytes(width, height, 3);
        PcxPalette palette{};
        for (size_t i = 0; i < palette.size(); ++i) palette[i] = static_cast<uint8_t>(i * 37 + i / 3);
        const std::vector<uint8_t> files[2] = {writePcxIndexed(width, height, indices, palette), writePcxRgb(width, height, rgb)};
        for (int kind = 0; kind < 2; ++kind) {
            SCOPED_TRACE(testing::Message() << (kind == 0 ? "indexed" : "rgb") << " width " << width);
            const DecodedImage image(files[kind], width, height);
            EXPECT_EQ(image.header.planes, kind == 0 ? 1 : 3);
            EXPECT_EQ(image.header.bytesPerLine, width + width % 2);  // lines of an even length
            for (int i = 0; i < width * height; ++i) {
                const uint8_t* colour = kind == 0 ? &palette[indices[i] * 3u] : &rgb[i * 3u];
                ASSERT_EQ(image.rgb(i), (std::array{colour[0], colour[1], colour[2]})) << "pixel " << i;
            }
        }
    }
    EXPECT_THROW(writePcxIndexed(4, 4, std::vector<uint8_t>(15), PcxPalette{}), std::invalid_argument);
    EXPECT_THROW(writePcxIndexed(0, 4, {}, PcxPalette{}), std::invalid_argument);
    EXPECT_THROW(writePcxRgb(70000, 1, std::vector<uint8_t>(210000)), std::invalid_argument);
    EXPECT_THROW(writePcxRgb(4, 4, std::vector<uint8_t>(16)), std::invalid_argument);
}

// Added to or subtracted from the frame, black is "no change": each picture is
// light marks on a black ground, with something bright in it; the same on every run.
TEST(GeneratedImages, DecodeAtTheirSizesToLightMarksOnBlackInBothPcxKindsTheSameOnEveryRun) {
    // Every image the demo parts load, with the width and height they pass to Texture::load.
    std::map<std::string, std::pair<int, int>> sizes;
    for (const char* name : {"objects", "mark12", "cred", "xxx", "ooo", "part", "greet", "ever", "forget", "invert", "outside"}) {
        sizes[std::string(name) + ".pcx"] = {512, 256};
    }
    sizes["texture2.pcx"] = {256, 256};
    const std::vector<ContentEntry> images = makeImages(), again = makeImages();
    ASSERT_EQ(images.size(), sizes.size());
    std::set<int> planes;
    for (size_t n = 0; n < images.size(); ++n) {
        const ContentEntry& entry = images[n];
        SCOPED_TRACE(entry.name);
        EXPECT_TRUE(again[n].bytes == entry.bytes && again[n].name == entry.name) << "differs from a second run";
        ASSERT_EQ(sizes.count(entry.name), 1u);
        const auto [width, height] = sizes.at(entry.name);
        sizes.erase(entry.name);
        const DecodedImage image(entry.bytes, width, height);
        EXPECT_EQ(std::pair(image.header.width, image.header.height), std::pair(width, height));
        planes.insert(image.header.planes);
        int black = 0, brightest = 0;
        for (size_t i = 0; i < image.pixels.size() / 4; ++i) {
            const std::array<uint8_t, 3> c = image.rgb(i);
            const int brightness = *std::max_element(c.begin(), c.end());
            black += brightness < 8 ? 1 : 0;
            brightest = std::max(brightest, brightness);
        }
        EXPECT_GT(black, 0.4 * width * height);
        EXPECT_LT(black, 0.97 * width * height);
        EXPECT_GE(brightest, 220);
        for (const size_t corner : {0, width - 1, (height - 1) * width, height * width - 1}) {
            EXPECT_LT(std::ranges::max(image.rgb(corner)), 8) << "corner pixel " << corner;
        }
    }
    // Both kinds, so both of the decoder's paths run in the show.
    EXPECT_EQ(planes, (std::set<int>{1, 3}));
}
