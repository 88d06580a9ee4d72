// The rules of part 1's beat reveal, part 7's loudness bands and part 6's
// sprite depths (part 1's latches are tested through its draw step).
#include "parts/beat_reveal.h"
#include "parts/loudness_bands.h"
#include "parts/sprite_stream.h"

#include "engine/world.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

// Part 1's reveal over a World of `meshes` empty meshes, hidden from index 3 on
// as its set-up leaves them.
struct Reveal {
    World world;
    int32_t index = 3;
    int32_t armed = 1;
    explicit Reveal(int meshes) {
        for (int i = 0; i < meshes; ++i) {
            world.addMesh(new MeshObject);
            if (i >= 3) {
                world.meshes[i]->flags &= static_cast<uint8_t>(~MESH_VISIBLE);
            }
        }
    }
    void frames(const std::vector<uint32_t>& levelSums) {
        for (uint32_t sum : levelSums) {
            revealOnBeat(world, sum, &index, &armed);
        }
    }
};

}  // namespace

TEST(BeatReveal, EachBeatAfterAQuietFrameShowsTheNextMeshFromFourUpToTheLast) {
    const struct { const char* what; int meshes; std::vector<uint32_t> levelSums; int32_t index, armed; } cases[] = {
        {"loudness that stays up reveals once; a failed query is loud", 7, {200, 200, 65535u + 65535u}, 4, 0},
        {"a quiet frame re-arms", 7, {200, 29}, 4, 1},
        {"then the next beat shows mesh 5", 7, {200, 29, 31}, 5, 0},
        {"a sum of exactly 30 does not reveal while armed", 7, {30}, 3, 1},
        {"nor re-arm", 7, {31, 30, 31}, 4, 0},
        {"more beats than meshes stop at the last", 6, {60, 0, 60, 0, 60, 0, 60, 0, 60}, 5, 0},
        {"a World without meshes is left alone", 0, {60}, -1, 0},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        Reveal reveal(c.meshes);
        reveal.frames(c.levelSums);
        EXPECT_EQ(reveal.index, c.index);
        EXPECT_EQ(reveal.armed, c.armed);
        for (int i = 0; i < c.meshes; ++i) {  // mesh 3 is never shown
            const bool shown = i < 3 || (i > 3 && i <= c.index);
            EXPECT_EQ((reveal.world.meshes[i]->flags & MESH_VISIBLE) != 0, shown) << "mesh " << i;
        }
    }
}

TEST(BeatReveal, LastMeshHiddenBySomeoneElseComesBackOnTheNextBeatWithItsOtherFlags) {
    Reveal reveal(6);
    reveal.frames({60, 0, 60});
    ASSERT_EQ(reveal.index, 5);
    reveal.world.meshes[5]->flags = 0x80;
    reveal.frames({0, 60});
    EXPECT_EQ(reveal.index, 5);
    EXPECT_EQ(reveal.world.meshes[5]->flags, 0x80 | MESH_VISIBLE);
}

TEST(LoudnessBands, ALevelSelectsTheMeshWhoseBandHoldsItBoundsAndBeyondTheLastSelectNothing) {
    const struct { uint32_t levelSum; int32_t meshes, selected; } cases[] = {
        {0, 10, -1}, {35, 10, -1}, {70, 10, -1}, {105, 10, -1}, {140, 10, -1}, {36, 10, 0},  {69, 10, 0},
        {71, 10, 1}, {104, 10, 1}, {106, 10, 2}, {256, 10, 6},  {139, 3, 2},   {141, 3, -1}, {256, 3, -1},
        {65535u + 65535u, 3, -1},  {36, 0, -1}};
    for (const auto& c : cases) {
        EXPECT_EQ(loudnessSelection(c.levelSum, c.meshes), c.selected) << c.levelSum << " of " << c.meshes;
    }
}

TEST(SpriteDepths, MoveFiftyPerTenthFromEvenSpacingAndWrapWithTheSignOfN) {
    for (int k = 0; k < SPRITE_COUNT * SPRITE_SPACING; k += SPRITE_SPACING) {
        EXPECT_EQ(spriteDepth(k, 0.0f), k - 2500) << k;
        EXPECT_EQ(spriteDepth(k, 1.0f), k - 2450) << k;
    }
    // n = 4999, 5000 (jumps back) and 13500 (near where part 6 starts); -0.5
    // truncates toward zero, 99.5 to 99; -50 mod 5000 is -50, -5000 mod 5000 is
    // 0; n = -5100; n = -4999, the deepest a square goes.
    const struct { int k; float partTime; int depth; } cases[] = {
        {4900, 1.984375f, 2499}, {4900, 2.0f, -2500},   {0, 270.0f, 1000},       {0, -0.01f, -2500},
        {100, -0.01f, -2401},    {0, -1.0f, -2550},     {0, -100.0f, -2500},     {0, -101.0f, -2550},
        {4900, -200.0f, -2600},  {0, -99.984375f, -7499}};
    for (const auto& c : cases) {
        EXPECT_EQ(spriteDepth(c.k, c.partTime), c.depth) << c.k << " at " << c.partTime;
    }
}
