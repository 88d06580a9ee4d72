// What parts 3, 4 and 12 (the wireframe rooms) share: lights that follow the
// camera, part 4's room drawn with its flying meshes, its two view changes, and
// the three stacked "ooo.pcx" overlays. Part 5 uses the lights as well.
#pragma once

struct World;
struct Camera;
struct Texture;

// lights[0]'s position = the current camera's position (all four
// components); then lights[1]'s position x = the camera's position x. Needs
// a camera and two omni lights.
void lightsFollowCamera(World& world);

// Part 4's room as parts 4 and 12 draw it every frame: lightsFollowCamera,
// "GREEN FLAT" as MODE_WIRE 0x64646464 and "BLUE FLAT" as MODE_FLAT
// 0x64648CC8, both additive, then the render.
void renderFlyingRoom(World& world);

// Every mesh i from 6 to meshCount - 1, with t = partTime:
// setTranslation(sin(i + 0.01 t) * 500, cos(i + 0.03 t) * 400,
// sin(i + 0.02 t) * 700), in double, rounded to float.
void flyMeshes(World& world, float partTime);
constexpr int FIRST_FLYING_MESH = 6;

// Part 4's view changes, on every frame after their times (demo-time units,
// strict): after 460, target x = 50 and position y = 20; then, after 520,
// target (40, 40, -10) and position y = 120.
void applyRoomViewChanges(Camera& camera, float demoTime);
constexpr float FIRST_VIEW_TIME = 460.0f;
constexpr float SECOND_VIEW_TIME = 520.0f;

// After glMatrixMode(GL_MODELVIEW) and glLoadIdentity(): drawOverlayDarken at
// (170, 190)-(470, 290) depth -110, drawOverlayAdd at (170, 290)-(470, 390)
// depth -100 and at (170, 90)-(470, 190) depth -130, all with `texture`.
void drawStackedOverlays(Texture* texture);
