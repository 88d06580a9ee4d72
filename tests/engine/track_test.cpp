// Keyframe tracks: tangents, evaluation, ease, the World's frame clock and
// the camera update.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "tests/engine/scene_bytes.h"

namespace {

Key key(int frame, float x) {
    Key k;
    k.frame = frame;
    k.value = Vector{x, -x, 2.0f * x, 0.0f};
    return k;
}

// A track owning a copy of `keys`, prepared as the reader prepares it.
void fill(Track& track, std::initializer_list<Key> keys) {
    track.adoptKeys(new Key[keys.size()], static_cast<uint32_t>(keys.size()));
    std::copy(keys.begin(), keys.end(), track.keys);
    prepareTangents(track);
}

TEST(Tracks, EvenlySpacedKeysGiveTheExampleCurve) {
    Track track;
    fill(track, {key(0, 0), key(10, 10), key(20, 40)});
    EXPECT_EQ(track.keys[1].tangentIn.x, 20.0f);
    EXPECT_EQ(track.keys[1].tangentOut.x, 20.0f);
    EXPECT_EQ(track.keys[0].tangentOut.x, 5.0f);
    EXPECT_EQ(track.keys[2].tangentIn.x, 35.0f);
    EXPECT_EQ(track.keys[1].tangentIn.y, -20.0f);  // every axis alike
    // Outside the keys the nearest end key holds.
    const float values[][2] = {{5, 3.125f}, {15, 23.125f}, {10, 10}, {-3, 0}, {25, 40}};
    for (const auto& [frame, x] : values) {
        EXPECT_EQ(evaluateTrack(track, frame).x, x) << frame;
    }
    EXPECT_EQ(evaluateTrack(track, 15).z, 46.25f);
}

TEST(Tracks, UnevenSpacingAndKochanekBartelsParameters) {
    Key previous = key(0, 0), middle = key(10, 10), next = key(30, 40);
    computeMiddleTangents(previous, middle, next);
    EXPECT_NEAR(middle.tangentIn.x, 13.3333f, 1e-4f);
    EXPECT_NEAR(middle.tangentOut.x, 26.6667f, 1e-4f);
    Key shaped = key(10, 10), last = key(20, 40);
    shaped.tension = 0.5f;
    shaped.continuity = 0.5f;
    shaped.bias = -0.5f;
    computeMiddleTangents(previous, shaped, last);
    EXPECT_EQ(shaped.tangentIn.x, 17.5f);
    EXPECT_EQ(shaped.tangentOut.x, 7.5f);
}

TEST(Tracks, UnevenKeysShapedByTensionContinuityBiasAndEase) {
    // Frames 0, 10, 40: the end tangents see gaps of 10 and 30 out of 40.
    Key first = key(0, 0), middle = key(10, 10), last = key(40, 40);
    first.tension = 0.5f;
    first.easeFrom = 0.5f;
    middle.tension = 0.5f;
    middle.continuity = 0.5f;
    middle.bias = -0.5f;
    middle.easeTo = 0.25f;
    last.tension = 0.25f;
    Track track;
    fill(track, {first, middle, last});
    // First: c = 1/4 - 10/80, (1.5 (10 - 20) + 40 c + 20) (1 - 0.5). Middle: rp 0.5,
    // rn 1.5, ap 0.75, an 1.25, so 10 * 3/64 + 30 * 27/64 in and 40 * 15/64 out. Last:
    // c = 1/4 - 30/80, (1.5 (30 - 20) + 40 c + 20) (1 - 0.25).
    EXPECT_EQ(track.keys[0].tangentOut.x, 5.0f);
    EXPECT_EQ(track.keys[1].tangentIn.x, 13.125f);
    EXPECT_EQ(track.keys[1].tangentOut.x, 9.375f);
    EXPECT_EQ(track.keys[2].tangentIn.x, 22.5f);
    EXPECT_EQ(track.keys[2].tangentIn.z, 45.0f);
    // Frames 2, 6 and 9 eased to u = 1.6 t^2, 0.8 (2t - 0.5) and 1 - 3.2 (1 - t)^2;
    // frames 25 and 34 on the plain second segment (u = 0.5 and 0.8).
    const float values[][2] = {{0, 0},  {2, 0.34766848f}, {6, 4.62672f}, {9, 9.5813414f},
                               {10, 10}, {25, 23.359375f}, {34, 34.3f}, {40, 40}};
    for (const auto& [frame, x] : values) {
        EXPECT_NEAR(evaluateTrack(track, frame).x, x, 2e-5f) << frame;
    }
}

TEST(Tracks, TwoKeysMoveEvenlyAndBadFramesStayFinite) {
    Track two;
    fill(two, {key(0, 0), key(10, 100)});
    for (int frame = 0; frame <= 10; ++frame) {
        EXPECT_FLOAT_EQ(evaluateTrack(two, static_cast<float>(frame)).x, 10.0f * frame);
    }
    Track stuck;
    fill(stuck, {key(5, 0), key(5, 10), key(5, 40), key(3, 1)});
    for (uint32_t i = 0; i < stuck.keyCount; ++i) {
        EXPECT_TRUE(std::isfinite(stuck.keys[i].tangentIn.x + stuck.keys[i].tangentOut.x)) << i;
    }
    EXPECT_TRUE(std::isfinite(evaluateTrack(stuck, 4).x));
    // Only the low 16 bits of a frame count, as a signed number.
    Track wide;
    fill(wide, {key(0x10000, 0), key(0x1000A, 10)});
    EXPECT_FLOAT_EQ(evaluateTrack(wide, 5).x, 5.0f);
}

TEST(Tracks, EaseValues) {
    EXPECT_EQ(ease(0.5f, 0.25f, 0.25f), 0.5f);
    EXPECT_NEAR(ease(0.1f, 0.25f, 0.25f), 0.026667f, 1e-6f);
    EXPECT_NEAR(ease(0.9f, 0.25f, 0.25f), 0.973333f, 1e-6f);
    EXPECT_EQ(ease(0.25f, 1.0f, 1.0f), 0.125f);
    EXPECT_EQ(ease(0.3f, 0.0f, 0.0f), 0.3f);
    EXPECT_EQ(ease(1.0f, 0.5f, 0.0f), 1.0f);
}

TEST(Tracks, SetFrameWrapsAsRepeatedSubtractionAndClampsAtTheEnd) {
    // start, end and loop of the segment, the time given, the frame set. A whole
    // multiple of the end stays at the end, however far out (1e30f is
    // 1000000015047466219876688855040, 40 past a multiple of 100); a held
    // segment stops at its end, not a frame later. A time that is no number, or
    // infinitely far along a loop, gives the start: never a NaN frame.
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float inf = std::numeric_limits<float>::infinity();
    const float cases[][5] = {{0, 0, 1, 75, 75},  // end frame 0: nothing to wrap by
                              {0, 100, 1, 250, 50}, {0, 100, 1, 100, 100}, {0, 100, 1, 100.5f, 0.5f},
                              {0, 100, 1, 200, 100}, {0, 100, 1, 409700, 100}, {0, 100, 1, 1e6f, 100},
                              {0, 100, 1, 409750, 50}, {0, 100, 1, 1e30f, 40},  {0, 100, 1, -5, 0},
                              {20, 100, 1, 130, 30},  {20, 100, 1, 110, 20},   {20, 100, 1, 300, 100},
                              {20, 100, 0, 150, 100}, {0, 100, 0, 100, 100},   {0, 100, 0, 99.5f, 99.5f},
                              {0, 100, 0, 100.5f, 100}, {0, 100, 1, nan, 0},   {20, 100, 0, nan, 20},
                              {20, 100, 1, inf, 20},    {20, 100, 1, -inf, 20}, {20, 100, 0, inf, 100},
                              {20, 0, 1, inf, 20}};
    World world;
    for (const auto& [start, end, loop, time, frame] : cases) {
        *world.segment = {static_cast<int32_t>(start), static_cast<int32_t>(end), static_cast<uint8_t>(loop)};
        world.setFrame(time);
        EXPECT_EQ(world.currentFrame, frame) << start << "-" << end << " loop " << loop << " at " << time;
    }
}

TEST(Tracks, CameraTakesItsTracksAndEmptyTracksMoveNothing) {
    Camera camera;
    camera.position = Vector{1, 2, 3, 0};
    fill(*camera.targetTrack, {key(50, 9)});
    camera.update(15);
    expectVector(camera.position, 1, 2, 3);
    expectVector(camera.target, 9, -9, 18);  // one key holds whatever the frame
}

}  // namespace
