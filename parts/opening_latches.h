// Part 1's two latched motions: the logo slides away to the right from the
// first frame after 14.5 s, and the turning meshes rise from the first frame
// after 19 s. Each latch keeps the demo time of that first frame.
#pragma once

constexpr float LOGO_SLIDE_TIME = 145.0f;  // demo-time units
constexpr float RISE_TIME = 190.0f;

// The logo's x offset (640 x 480 layout units) on a frame at `demoTime`: 0
// while demoTime <= 145. On the first frame after 145, *slideStart (0 until
// then) takes demoTime; from then on the offset is (demoTime - *slideStart) * 4,
// a float: 4 units per tenth of a second, 0 on that first frame.
float logoSlideOffset(float demoTime, float* slideStart);

// Whether the meshes rise on a frame at `demoTime` (only when demoTime > 190)
// and, if so, *height: trunc((demoTime - *riseStart) * 50.0) toward zero, as a
// float. *riseStart (0 until then) takes demoTime on the first such frame, so
// the height is 0 there and grows 500 units per second.
bool riseHeight(float demoTime, float* riseStart, float* height);
