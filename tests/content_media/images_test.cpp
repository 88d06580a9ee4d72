// The twelve generated pictures, decoded by the show's PCX decoder at the
// sizes the demo parts load them with.
#include "content/images/images.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>

#include "tests/content_media/decoded_image.h"

namespace {

// Every image the demo parts load, with the width and height they pass to Texture::load.
const std::map<std::string, std::pair<int, int>> SIZES = {
    {"objects.pcx", {512, 256}}, {"mark12.pcx", {512, 256}}, {"cred.pcx", {512, 256}},
    {"xxx.pcx", {512, 256}},     {"ooo.pcx", {512, 256}},    {"texture2.pcx", {256, 256}},
    {"part.pcx", {512, 256}},    {"greet.pcx", {512, 256}},  {"ever.pcx", {512, 256}},
    {"forget.pcx", {512, 256}},  {"invert.pcx", {512, 256}}, {"outside.pcx", {512, 256}},
};

}  // namespace

// Added to or subtracted from the frame, black is "no change": each picture is
// light marks on a black ground, with something bright in it.
TEST(GeneratedImages, DecodeAtTheirSizesToLightMarksOnBlackInBothPcxKinds) {
    const std::vector<ContentEntry> images = makeImages();
    std::set<std::string> names;
    std::set<int> planes;
    for (const ContentEntry& entry : images) {
        SCOPED_TRACE(entry.name);
        ASSERT_EQ(SIZES.count(entry.name), 1u);
        names.insert(entry.name);
        const auto [width, height] = SIZES.at(entry.name);
        PcxHeader header{};
        ASSERT_EQ(parsePcxHeader(entry.bytes.data(), entry.bytes.size(), &header), nullptr);
        EXPECT_EQ(header.width, width);
        EXPECT_EQ(header.height, height);
        planes.insert(header.planes);
        const DecodedImage image = decodeImage(entry.bytes, width, height);
        EXPECT_EQ(image.endPosition, static_cast<long>(entry.bytes.size()));

        const auto brightness = [&](int x, int y) { return std::max({image.red(x, y), image.green(x, y), image.blue(x, y)}); };
        int black = 0, brightest = 0;
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                black += brightness(x, y) < 8 ? 1 : 0;
                brightest = std::max<int>(brightest, brightness(x, y));
            }
        }
        EXPECT_GT(black, 0.4 * width * height);
        EXPECT_LT(black, 0.97 * width * height);
        EXPECT_GE(brightest, 220);
        for (const auto& [x, y] : {std::pair{0, 0}, {width - 1, 0}, {0, height - 1}, {width - 1, height - 1}}) {
            EXPECT_LT(brightness(x, y), 8) << "corner " << x << "," << y;
        }
    }
    EXPECT_EQ(images.size(), SIZES.size());
    EXPECT_EQ(names.size(), SIZES.size());
    // Both kinds, so both of the decoder's paths run in the show.
    EXPECT_EQ(planes, (std::set<int>{1, 3}));
}

TEST(GeneratedImages, AreTheSameOnEveryRun) {
    const std::vector<ContentEntry> first = makeImages();
    const std::vector<ContentEntry> again = makeImages();
    ASSERT_EQ(again.size(), first.size());
    for (size_t i = 0; i < again.size(); ++i) {
        EXPECT_EQ(again[i].name, first[i].name);
        EXPECT_TRUE(again[i].bytes == first[i].bytes) << again[i].name;
    }
}
