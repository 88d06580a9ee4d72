// A soundtrack shorter than the show: which part it keeps repeating, and the
// one line the show says about it.
#include "app/soundtrack_check.h"

#include <gtest/gtest.h>

namespace {

TEST(ShortSoundtrack, NamesThePartPlayingWhenTheSongStartsAgain) {
    // The demo time of a song of L ms reaches (L - 1) / 100 at most: a part ends
    // only when that is above its end time (part 1: 210, part 2: 335, part 12:
    // 1925, part 13: 2269).
    const struct {
        uint32_t millis;
        int32_t part;
    } cases[] = {{12300, 1},  {21001, 1},  {21002, 2},  {30000, 2},   {192500, 12},
                 {192502, 13}, {226901, 13}, {226902, 0}, {231000, 0}, {0, 0}};
    for (const auto& c : cases) {
        EXPECT_EQ(partRepeatedBySong(c.millis), c.part) << c.millis << " ms";
    }
}

TEST(ShortSoundtrack, SaysSoOnceInOneLine) {
    EXPECT_EQ(shortSoundtrackWarning("harbour.mp3", 12300),
              "kaskade: harbour.mp3 lasts 12.3 s, shorter than the show (226.9 s): the show will not get past part 1");
    EXPECT_EQ(shortSoundtrackWarning("song.mod", 100000),
              "kaskade: song.mod lasts 100.0 s, shorter than the show (226.9 s): the show will not get past part 8");
    EXPECT_EQ(shortSoundtrackWarning("harbour.mp3", 231000), "");
}

}  // namespace
