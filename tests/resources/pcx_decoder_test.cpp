// The PCX decoder against files from other encoders and against hand-made byte
// sequences for what encoders rarely write; and the decoded pixels made RGBA.
#include "resources/pcx_decoder.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <functional>
#include <memory>
#include <numeric>

#include "app/desktop/capture/png_file.h"
#include "resources/texture.h"
#include "tests/resources/resource_test_files.h"
#include "tests/support/fatal_catcher.h"

namespace {

constexpr uint8_t UNTOUCHED = 0x5A;
using Rgb = std::array<uint8_t, 3>;
const Rgb NONE{UNTOUCHED, UNTOUCHED, UNTOUCHED};  // for a pixel decoding leaves as it was

// Decodes `bytes` as an entry of `dataSize` bytes (all of them when negative)
// into a width x height buffer filled with UNTOUCHED beforehand.
std::vector<uint8_t> decode(const std::vector<uint8_t>& bytes, int width, int height, long dataSize = -1) {
    std::vector<uint8_t> pixels(static_cast<size_t>(width) * height * 4, UNTOUCHED);
    std::unique_ptr<FILE, int (*)(FILE*)> file(std::tmpfile(), std::fclose);  // closed when a report unwinds
    std::fwrite(bytes.data(), 1, bytes.size(), file.get());
    std::rewind(file.get());
    decodePcx(file.get(), static_cast<uint32_t>(dataSize < 0 ? bytes.size() : dataSize), pixels.data(), width, height);
    return pixels;
}

// A width x height buffer as decoding should leave it: blue, green, red of
// `colour(x, y)`, the fourth byte untouched.
std::vector<uint8_t> bufferOf(int width, int height, const std::function<Rgb(int x, int y)>& colour) {
    std::vector<uint8_t> buffer;
    for (int i = 0; i < width * height; ++i) {
        const Rgb rgb = colour(i % width, i / width);
        buffer.insert(buffer.end(), {rgb[2], rgb[1], rgb[0], UNTOUCHED});
    }
    return buffer;
}

// The colours of `raw`, three planes of `bytesPerLine` a line, over its first width x height pixels.
std::function<Rgb(int, int)> planar(const std::vector<uint8_t>& raw, int bytesPerLine, int width, int height) {
    return [=](int x, int y) {
        const size_t red = static_cast<size_t>(y * 3 * bytesPerLine + x);
        return x < width && y < height ? Rgb{raw[red], raw[red + bytesPerLine], raw[red + 2 * bytesPerLine]} : NONE;
    };
}

TEST(PcxReferenceFiles, DecodeToTheReferencePixelsInBlueGreenRedOrder) {
    size_t images = 0;
    for (const auto& item : std::filesystem::directory_iterator(testDataPath("pcx"))) {
        if (item.path().extension() == ".pcx") {
            SCOPED_TRACE(item.path().string());
            ++images;
            PngImage png;
            std::string error;
            ASSERT_TRUE(readPng(std::filesystem::path(item.path()).replace_extension(".png"), &png, &error)) << error;
            EXPECT_TRUE(decode(readBytes(item.path()), png.width, png.height) ==
                        bufferOf(png.width, png.height, [&](int x, int y) {
                            const uint8_t* rgb = png.pixels.data() + (static_cast<size_t>(y) * png.width + x) * png.channels;
                            return Rgb{rgb[0], rgb[1], rgb[2]};
                        }));
        }
    }
    EXPECT_GE(images, 7u);
}

TEST(PcxIndexed, TakesPaletteColoursDropsLinePaddingAndSkipsRunsOfCountZero) {
    std::vector<uint8_t> palette(30);
    std::iota(palette.begin(), palette.end(), 0);  // index n: red 3n, green 3n + 1, blue 3n + 2
    // 3 x 2 from (3, 3) to (5, 4), lines padded to 4 bytes with index 9.
    const std::vector<uint8_t> file = pcxFile({.width = 3, .height = 2, .bytesPerLine = 4, .offsetOrigin = true},
                                              {0xC0, 0x33, 1, 2, 3, 9, 0xC2, 4, 5, 9}, palette);
    EXPECT_EQ(decode(file, 4, 2), bufferOf(4, 2, [](int x, int y) {  // one column more than the image
        const int n = y == 0 ? x + 1 : x + 3 + (x == 0);                  // 1 2 3 / 4 4 5
        return x == 3 ? NONE : Rgb{uint8_t(n * 3), uint8_t(n * 3 + 1), uint8_t(n * 3 + 2)};
    }));
}

TEST(PcxThreePlanes, RunsAcrossPlanesAndLinesDecodeIntoBuffersOfAnySize) {
    // 5 x 2 pixels, lines padded to 6 bytes; runs of equal bytes straddle the
    // red/green, green/blue and line boundaries.
    const std::vector<uint8_t> raw = {7, 7, 7, 7, 7, 7, /**/ 7, 7, 9, 9, 9, 9, /**/ 9, 9, 9, 9, 9, 9,
                                      9, 9, 1, 2, 3, 3, /**/ 3, 250, 251, 252, 0, 0, /**/ 0, 0, 0, 5, 6, 6};
    const std::vector<uint8_t> file = pcxFile({.width = 5, .height = 2, .planes = 3, .bytesPerLine = 6}, encodeRuns(raw));
    for (const auto& [width, height] : {std::pair{5, 2}, {4, 1}, {8, 3}}) {  // the image keeps its top-left corner
        EXPECT_EQ(decode(file, width, height), bufferOf(width, height, planar(raw, 6, 5, 2))) << width << "x" << height;
    }
}

TEST(PcxRefused, UnsupportedOrCutHeadersEndWithTheLibraryError) {
    auto file = [](PcxFields fields) { return pcxFile(fields, {0xC2, 1}); };
    const std::vector<uint8_t> plain = file({});
    const std::tuple<const char*, std::vector<uint8_t>, const char*, long> cases[] = {
        {"version 3", file({.version = 3}), "This isn't a pcx file", -1},
        {"version 4", file({.version = 4}), "This isn't a pcx file", -1},
        {"1 bit", file({.bitsPerPixel = 1}), "This isn't a pcx file", -1},
        {"2 bits", file({.bitsPerPixel = 2}), "This isn't a pcx file", -1},
        {"4 planes", file({.planes = 4}), "unknown pcx type", -1},
        {"file ends in the header", {plain.begin(), plain.begin() + 127}, "This isn't a pcx file", -1},
        {"entry ends in the header", plain, "This isn't a pcx file", 100}};
    for (const auto& [what, bytes, text, dataSize] : cases) {
        const FatalError error = expectFatal([&] { decode(bytes, 2, 1, dataSize); });
        EXPECT_EQ(std::tie(error.caption, error.text, error.status), std::make_tuple("KOBALT LIBRARY ERROR", text, -1))
            << what;
    }
}

TEST(PcxCutShort, StopsAtTheEndOfTheFileOrOfTheEntryAndLeavesTheRest) {
    std::vector<uint8_t> raw(4 * 12);
    std::iota(raw.begin(), raw.end(), 0);  // no runs: each byte is its own packet
    const std::vector<uint8_t> whole = pcxFile({.width = 4, .height = 4, .planes = 3, .bytesPerLine = 4}, raw);
    EXPECT_EQ(decode(whole, 4, 4, 128 + 24), bufferOf(4, 4, planar(raw, 4, 4, 2)));  // the stream goes on
    EXPECT_EQ(decode({whole.begin(), whole.begin() + 128 + 24}, 4, 4), bufferOf(4, 4, planar(raw, 4, 4, 2)));
    // An indexed image ending after one line and one pixel, before its palette: black as far as it goes.
    const std::vector<uint8_t> indexed = pcxFile({.width = 3, .height = 2, .bytesPerLine = 3}, {4, 5, 6, 7});
    EXPECT_EQ(decode({indexed.begin(), indexed.begin() + 132}, 3, 2),
              bufferOf(3, 2, [](int x, int y) { return y == 0 || x == 0 ? Rgb{0, 0, 0} : NONE; }));
}

TEST(PcxBounds, RunsOverrunningTheLastLineStopAtTheBuffer) {
    std::vector<uint8_t> palette(18);
    palette[15] = 90;  // index 5
    const std::vector<uint8_t> indexed = pcxFile({.width = 4, .height = 2, .bytesPerLine = 4}, {1, 0xFF, 5}, palette);
    EXPECT_EQ(decode(indexed, 4, 2),  // 1 + 63 pixels for 8, then the palette
              bufferOf(4, 2, [](int x, int y) { return Rgb{uint8_t(x + y ? 90 : 0), 0, 0}; }));
    const std::vector<uint8_t> rgb = pcxFile({.width = 2, .height = 2, .planes = 3, .bytesPerLine = 2}, {0xFF, 9});
    EXPECT_EQ(decode(rgb, 2, 2), bufferOf(2, 2, [](int, int) { return Rgb{9, 9, 9}; }));
}

TEST(TextureRgba, SwapsBlueAndRedAndMakesPixelsWithAllChannelsBelowTwoTransparentWhenAsked) {
    // Blue, green, red as decoded: every channel at 1, then one channel at 2
    // (blue, green, red) with the others at 0 or 1.
    const std::vector<uint8_t> decoded = {1, 1, 1, 7, 1, 0, 1, 7, 2, 0, 0, 7, 0, 2, 0, 7, 1, 1, 2, 7, 0, 0, 2, 7, 10, 20, 30, 7};
    for (const uint8_t clear : {255, 0}) {
        Texture texture{};
        texture.allocate(7, 1);
        std::copy(decoded.begin(), decoded.end(), texture.pixels);
        texture.convertToRgba(clear == 0);
        EXPECT_EQ(std::vector<uint8_t>(texture.pixels, texture.pixels + 28),
                  std::vector<uint8_t>({1, 1, 1, clear, 1, 0, 1, clear, 0, 0, 2, 255, 0, 2, 0, 255, 2, 1, 1, 255,
                                        2, 0, 0, 255, 30, 20, 10, 255}));
        delete[] texture.pixels;
    }
}

}  // namespace
