// The parts' draw steps in a real context on hand-built Worlds, the demo clock
// and music levels driven by the test: what a frame hands to the renderer and
// the overlays (written down by tests/parts/frame_recorder.h), what it leaves
// in the World and in the sequencer's counter at the times that matter; a
// scene short of what its part draws ending the show at the set-up.
#include "parts/part_state.h"
#include "parts/parts.h"
#include "parts/scene_needs.h"
#include "parts/wave_map.h"

#include "app/sequencer.h"
#include "app/shell.h"
#include "audio/clock.h"
#include "audio/music.h"
#include "engine/world.h"
#include "resources/library.h"
#include "resources/texture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <sstream>
#include <utility>

#include "tests/parts/frame_recorder.h"
#include "tests/renderer/test_worlds.h"
#include "tests/resources/gl_test_window.h"
#include "tests/resources/resource_test_files.h"
#include "tests/support/fatal_catcher.h"

namespace {

uint32_t g_fakeMillis = 0;
uint32_t g_fakeLevel = 0;

// The test camera (eye (0, 0, 100) at the origin, field of view 90), omni
// lights at (10, 20, 30) and (-10, 40, -30), and `meshes` small squares, mesh
// i at z = -10 i in material materials[i % count], each MODE_FLAT 0xFF00FF00
// and opaque until a part sets it.
World* makeWorld(int meshes, std::initializer_list<const char*> materials) {
    auto* world = new World;
    addTestCamera(*world);
    world->addLight("key", 10, 20, 30, 255, 255, 255, 1000.0f);
    world->addLight("fill", -10, 40, -30, 128, 128, 128, 1000.0f);
    for (const char* name : materials) {
        addTestMaterial(*world, name, MODE_FLAT, 0xFF00FF00);
    }
    for (int i = 0; i < meshes; ++i) {
        addTestSquare(*world, world->materials[i % world->materialCount], 5.0f, static_cast<float>(-10 * i));
    }
    return world;
}

void hide(World& world, int mesh) { world.meshes[mesh]->flags &= static_cast<uint8_t>(~MESH_VISIBLE); }

// The camera's keyframes: its eye at (f, 0, 100) on frame f of 0 to 100, aimed
// at the origin; the keyframe segment 0 to 100 loops.
void flyAlongX(World& world) {
    auto* keys = new Key[2];
    keys[0].value = Vector{0.0f, 0.0f, 100.0f, 0.0f};
    keys[1].value = Vector{100.0f, 0.0f, 100.0f, 0.0f};
    keys[1].frame = 100;
    world.camera->positionTrack->adoptKeys(keys, 2);
    prepareTangents(*world.camera->positionTrack);
    world.camera->targetTrack->adoptKeys(new Key[1], 1);
    *world.segment = KeyframeSegment{0, 100, 1};
}

// Runs `step` once with the demo clock at `demoTime` (tenths of a second, a
// whole number of milliseconds) and the levels `left` and `right` (0..128).
void runAt(void (*step)(), double demoTime, uint32_t left = 0, uint32_t right = 0) {
    g_fakeMillis = static_cast<uint32_t>(std::lround(demoTime / DEMO_TIME_SCALE));
    g_fakeLevel = left | (right << 16);
    step();
}

// runAt, and what the frame handed to the renderer and the overlays.
std::string frameAt(void (*step)(), double demoTime, uint32_t left = 0, uint32_t right = 0) {
    startFrameRecording();
    runAt(step, demoTime, left, right);
    return frameRecording();
}

// The lines of `recording` that begin with `prefix`.
std::string linesOf(const std::string& recording, const std::string& prefix) {
    std::istringstream lines(recording);
    std::string found;
    for (std::string line; std::getline(lines, line);) {
        found += line.rfind(prefix, 0) == 0 ? line + "\n" : "";
    }
    return found;
}

bool same(const Vector& a, const Vector& b) { return a.x == b.x && a.y == b.y && a.z == b.z; }

const Vector LAST_VIEW{40.0f, 40.0f, -10.0f, 0.0f};  // part 4's second view's target

World** const WORLDS[] = {&g_testWorld, &g_stilWorld, &g_rumWorld, &g_rum2World, &g_world2d, &g_world3d,
                          &g_world4d,   &g_world5d,   &g_world6d, &g_world7d,   &g_world8d, &g_world9d};
const std::pair<Texture**, const char*> TEXTURES[] = {
    {&g_objectsTexture, "objects"}, {&g_logoTexture, "mark12"},  {&g_credTexture, "cred"},
    {&g_xxxTexture, "xxx"},         {&g_oooTexture, "ooo"},      {&g_texture2, "texture2"},
    {&g_partTexture, "part"},       {&g_greetTexture, "greet"},  {&g_everTexture, "ever"},
    {&g_forgetTexture, "forget"},   {&g_invertTexture, "invert"}, {&g_outsideTexture, "outside"}};

// The GL test window in the show's start state, fog off, a fake clock (demo
// time 0 at tick 0) and level source, and every part's World and images as
// its set-up would leave them, on hand-built scenes: 4 x 4 black images named
// as their files; part 4's room of seven meshes (2 to 5 hidden, 6 flying)
// aimed at (1, 2, 3) from height 7; parts 8 and 11 flying their cameras along x.
class PartSteps : public ::testing::Test {
protected:
    void SetUp() override {
        if (!openGlTestWindow()) {
            GTEST_SKIP() << "no display: run under xvfb-run";
        }
        setShowStartState();
        glDisable(GL_FOG);
        g_millisecondClock = [] { return g_fakeMillis; };
        g_levelSource = [](AudioHandle) { return g_fakeLevel; };
        g_musicStartTick = 0;
        g_partStart = g_partTime = 0.0f;
        g_frameCount = 0;
        g_logoSlideStart = g_riseStart = 0.0f;
        g_revealIndex = 3;
        g_revealArmed = 1;
        for (const auto& [texture, name] : TEXTURES) {
            *texture = new Texture;
            (*texture)->allocate(4, 4);
            (*texture)->convertToRgba(false);
            glGenTextures(1, &(*texture)->id);
            (*texture)->upload();
            nameRecordedTexture(*texture, name);
        }
        g_testWorld = makeWorld(5, {"GREEN FLAT"});
        hide(*g_testWorld, 3);
        hide(*g_testWorld, 4);
        g_stilWorld = makeWorld(2, {"ORANGE FLAT"});
        hide(*g_stilWorld, 1);
        g_rumWorld = makeWorld(1, {"GREEN FLAT"});
        g_rum2World = makeWorld(7, {"GREEN FLAT", "BLUE FLAT"});
        for (int mesh = 2; mesh < 6; ++mesh) {
            hide(*g_rum2World, mesh);
        }
        g_rum2World->camera->target = Vector{1.0f, 2.0f, 3.0f, 0.0f};
        g_rum2World->camera->position.y = 7.0f;
        g_world2d = makeWorld(5, {"BLUE FLAT", "GREEN FLAT", "ORANGE FLAT"});
        g_world3d = makeWorld(2, {"GREEN FLAT", "ORANGE FLAT"});
        g_world4d = makeWorld(4, {"RED FLAT", "BLUE FLAT", "GREEN FLAT", "ORANGE FLAT"});
        g_world5d = makeWorld(3, {"BLUE FLAT", "GREEN FLAT", "ORANGE FLAT"});
        g_world6d = makeWorld(5, {"ORANGE FLAT", "GREEN FLAT", "BLACK WIRE"});
        g_world7d = makeWorld(2, {"WHITE FLAT", "ORANGE FLAT"});
        g_world8d = makeWorld(1, {"BLUE FLAT"});
        g_world9d = makeWorld(1, {"GREEN FLAT"});
        flyAlongX(*g_world5d);
        flyAlongX(*g_world8d);
        g_waveMap = static_cast<uint8_t*>(std::malloc(WAVE_MAP_BYTES));
    }
    void TearDown() override {
        g_millisecondClock = monotonicMillis;
        g_levelSource = audioChannelGetLevel;
        g_partCounter = 0;
        for (World** world : WORLDS) {
            delete std::exchange(*world, nullptr);
        }
        for (const auto& [texture, name] : TEXTURES) {
            if (*texture != nullptr) {
                glDeleteTextures(1, &(*texture)->id);
                delete[] (*texture)->pixels;
                delete std::exchange(*texture, nullptr);
            }
        }
        std::free(std::exchange(g_waveMap, nullptr));
    }
};

// A part's frames at demo times with music levels, from the part-local
// clock's start `partStart`; what the last of them draws, worked out by hand
// from the part's formulas; the part's end time.
struct Frame {
    double time;
    uint32_t left = 0, right = 0;
};
struct PartFrame {
    const char* name;
    void (*step)();
    int32_t counter;  // g_partCounter while the part plays
    float endTime;
    float partStart;
    std::vector<Frame> frames;
    std::string expected;
};
void PrintTo(const PartFrame& row, std::ostream* out) { *out << row.name; }

const std::string STACKED = R"(overlay darken ooo (170,190)-(470,290) -110
overlay add ooo (170,290)-(470,390) -100
overlay add ooo (170,90)-(470,190) -130
)";

// Part 6's squares at part time 201: n = 10050 + k, 100 apart from -2450, none wrapped yet.
std::string spriteStream() {
    std::string line = "overlay darken texture2 (240,240)-(360,360)";
    for (int depth = -2450; depth <= 2450; depth += 100) {
        line += " " + std::to_string(depth);
    }
    return line + "\n";
}

class DrawStep : public PartSteps, public ::testing::WithParamInterface<PartFrame> {};

// Draws the row's frames, then one at the end time (the part goes on) and one
// just past it (the counter moves on; the frame is still drawn and counted).
TEST_P(DrawStep, DrawsItsFrameAndMovesTheCounterOnJustAfterItsEndTime) {
    const PartFrame& row = GetParam();
    g_partCounter = row.counter;
    g_partStart = row.partStart;
    std::string recorded;
    for (const Frame& frame : row.frames) {
        recorded = frameAt(row.step, frame.time, frame.left, frame.right);
    }
    EXPECT_EQ(recorded, row.expected);
    g_frameCount = 0;
    runAt(row.step, row.endTime);
    EXPECT_EQ(g_partCounter, row.counter);
    EXPECT_NE(linesOf(frameAt(row.step, row.endTime + 0.01), "render"), "");
    EXPECT_EQ(g_partCounter, row.counter + 1);
    EXPECT_EQ(g_frameCount, 2);
}

const PartFrame FRAMES[] = {
    // The turning meshes at one degree per tenth, the camera's height sin(0.1 t) * 80,
    // white fog; the beat (20 + 20 > 30) shows mesh 4 in the same frame.
    {"part1", drawPart1, 1, 210.0f, 0.0f, {{100.0, 20, 20}},
     R"(render, fog exp (1,1,1,1) 0.002, lights (10,20,30) (-10,40,-30), camera (0,-43.5217,100) to (0,0,0)
mesh MODE_FLAT 0xFF00FF00 MAT_OPAQUE rot (0,100,0)
mesh MODE_FLAT 0xFF00FF00 MAT_OPAQUE rot (0,100,0)
mesh MODE_FLAT 0xFF00FF00 MAT_OPAQUE rot (0,100,0)
mesh MODE_FLAT 0xFF00FF00 MAT_OPAQUE
overlay add mark12 (170,190)-(470,290) -100
)"},
    // The first light at the eye; the enlarged additive shell, then the solid.
    {"part2", drawPart2, 3, 335.0f, 210.0f, {{280.0}},
     R"(render, no fog, lights (0,0,100) (-10,40,-30), camera (0,0,100) to (0,0,0)
mesh MODE_WIRE 0xC89B1900 MAT_ADD scale (1.2,1.2,1.2)
render, no fog, lights (0,0,100) (-10,40,-30), camera (0,0,100) to (0,0,0)
mesh MODE_FLAT 0xC8FF7D00 MAT_ALPHA
overlay add xxx (120,140)-(520,340) -110
overlay add cred (170,190)-(470,290) -110
)"},
    // The sway of the frame before (t = 90): x = sin(2.7) * 50, z = cos(3.6) * 35.
    {"part3", drawPart3, 5, 395.0f, 210.0f, {{300.0}, {310.0}},
     R"(render, no fog, lights (21.369,0,-31.3865) (21.369,40,-30), camera (21.369,0,-31.3865) to (0,0,0)
mesh MODE_WIRE 0x64646464 MAT_ADD
)" + STACKED},
    // The sway and flight of the frame before (t = 340), the first view (after 460)
    // at height 20 aimed at x 50; mesh 6 at (sin(9.4) * 500, cos(16.2) * 400, sin(12.8) * 700).
    {"part4", drawPart4, 7, 534.0f, 125.0f, {{465.0}, {470.0}},
     R"(render, no fog, lights (-34.9937,20,17.9096) (-34.9937,40,-30), camera (-34.9937,20,17.9096) to (50,2,3)
mesh MODE_WIRE 0x64646464 MAT_ADD
mesh MODE_FLAT 0x64648CC8 MAT_ADD
mesh MODE_WIRE 0x64646464 MAT_ADD move (12.3877,-352.549,162.057)
)" + STACKED},
    // t = 270: the camera at x 2300 - 4 t; spins -1.1 t, t, t, -0.7 t, 1.2 t for meshes 0 to 4.
    {"part5", drawPart5, 9, 658.0f, 330.0f, {{600.0}},
     R"(render, no fog, lights (1220,0,100) (1220,40,-30), camera (1220,0,100) to (0,0,0)
mesh MODE_WIRE_LIT 0x64737D87 MAT_OPAQUE rot (0,0,-297)
mesh MODE_FLAT 0x64379B69 MAT_ADD rot (0,0,270)
mesh MODE_FLAT 0x64CD7D05 MAT_ADD rot (0,0,270)
mesh MODE_WIRE_LIT 0x64737D87 MAT_OPAQUE rot (0,0,-189)
mesh MODE_FLAT 0x64379B69 MAT_ADD rot (0,0,324)
render, no fog, lights (1220,0,100) (1220,40,-30), camera (1220,0,100) to (0,0,0)
mesh MODE_WIRE 0x64737D87 MAT_OPAQUE scale (1.1,1.1,1.1) rot (0,0,-297)
mesh MODE_WIRE 0x64379B69 MAT_ADD scale (1.1,1.1,1.1) rot (0,0,270)
mesh MODE_WIRE 0x64CD7D05 MAT_ADD scale (1.1,1.1,1.1) rot (0,0,270)
mesh MODE_WIRE 0x64737D87 MAT_OPAQUE scale (1.1,1.1,1.1) rot (0,0,-189)
mesh MODE_WIRE 0x64379B69 MAT_ADD scale (1.1,1.1,1.1) rot (0,0,324)
overlay add objects (120,140)-(520,340) -110
)"},
    // The first light where the eye was at t = 200 (600 (sin 4, 0, cos 4)), the eye
    // now at 600 (sin 4.02, 0, cos 4.02); fog in the clear colour.
    {"part6", drawPart6, 11, 770.0f, 500.0f, {{700.0}, {701.0}},
     R"(render, fog exp (0.6,0.2,0.1,0.5) 0.002, lights (-454.081,0,-392.186) (-10,40,-30), camera (-461.834,0,-383.027) to (0,0,0)
mesh MODE_FLAT 0x64379B69 MAT_ADD
mesh MODE_FLAT 0x64CD7D05 MAT_ADD
render, fog exp (0.6,0.2,0.1,0.5) 0.002, lights (-454.081,0,-392.186) (-10,40,-30), camera (-461.834,0,-383.027) to (0,0,0)
mesh MODE_WIRE 0x64379B69 MAT_ADD scale (1.1,1.1,1.1)
mesh MODE_WIRE 0x64CD7D05 MAT_ADD scale (1.1,1.1,1.1)
)" + spriteStream() + "overlay add part (120,140)-(520,340) -110\n"},
    // t = 400: mesh i turned ((i + t) / 2, i / 2 + 0.6 t, 0.3 t + i / 2); the loudness
    // 36 pushes mesh 0, mesh 1 (pushed by 71 a frame before) is back; the eye at
    // (200 sin 32, 200 cos 32, 300 sin 12).
    {"part7", drawPart7, 13, 960.0f, 400.0f, {{790.0, 36, 35}, {800.0, 18, 18}},
     R"(render, no fog, lights (10,20,30) (-10,40,-30), camera (110.285,166.845,-160.972) to (0,0,0)
mesh MODE_FLAT 0x649B370F MAT_ADD rot (200,240,120) move (30,30,30)
mesh MODE_FLAT 0x640F379B MAT_ADD rot (200.5,240.5,120.5)
mesh MODE_FLAT 0x64379B69 MAT_ADD rot (201,241,121)
mesh MODE_FLAT 0x64CD7D05 MAT_ADD rot (201.5,241.5,121.5)
render, no fog, lights (10,20,30) (-10,40,-30), camera (110.285,166.845,-160.972) to (0,0,0)
mesh MODE_WIRE 0x649B370F MAT_ADD scale (1.1,1.1,1.1) rot (200,240,120) move (30,30,30)
mesh MODE_WIRE 0x640F379B MAT_ADD scale (1.1,1.1,1.1) rot (200.5,240.5,120.5)
mesh MODE_WIRE 0x64379B69 MAT_ADD scale (1.1,1.1,1.1) rot (201,241,121)
mesh MODE_WIRE 0x64CD7D05 MAT_ADD scale (1.1,1.1,1.1) rot (201.5,241.5,121.5)
overlay add greet (160,140)-(480,340) -110
)"},
    // t = 30.1: frame 4 t = 120.4 wraps to 20.4 and is taken as 20; no overlay.
    {"part8", drawPart8, 15, 1127.0f, 1000.0f, {{1030.1}},
     R"(render, no fog, lights (10,20,30) (-10,40,-30), camera (20,0,100) to (0,0,0)
mesh MODE_WIRE 0x64737D87 MAT_OPAQUE
mesh MODE_WIRE 0x64D77D23 MAT_OPAQUE
mesh MODE_FLAT 0x64CD7D05 MAT_ALPHA
)"},
    // t = 400: the eye and first light at (120 sin 20, 90 cos 32, 50 sin 12); mesh 0
    // shown again in the solid pass (the last cage hid it), mesh 4 never.
    {"part9", drawPart9, 17, 1307.0f, 600.0f, {{990.0}, {1000.0}},
     R"(render, no fog, lights (109.553,75.0801,-26.8286) (-10,40,-30), camera (109.553,75.0801,-26.8286) to (0,0,0)
mesh MODE_FLAT 0x64CD7D05 MAT_ALPHA
mesh MODE_FLAT 0x642D875F MAT_ALPHA
mesh MODE_FLAT 0x642D875F MAT_ALPHA
mesh MODE_FLAT 0x64CD7D05 MAT_ALPHA
render, no fog, lights (109.553,75.0801,-26.8286) (-10,40,-30), camera (109.553,75.0801,-26.8286) to (0,0,0)
mesh MODE_WIRE 0x642D875F MAT_ALPHA scale (1.1,1.1,1.1)
mesh MODE_WIRE 0x64F58719 MAT_ALPHA scale (1.1,1.1,1.1)
mesh MODE_WIRE 0x64CD7D05 MAT_ALPHA scale (1.1,1.1,1.1)
overlay add ever (160,140)-(480,340) -110
)"},
    // t = 500: the eye at (140 sin 10, 0, 200 cos 10) in dense fog; the solid back
    // together after the last frame's cage, the cage's mesh 0 20 below and mesh 1 20 above.
    {"part10", drawPart10, 19, 1498.0f, 900.0f, {{1390.0}, {1400.0}},
     R"(render, fog exp (0.6,0.2,0.1,0.5) 0.008, lights (10,20,30) (-10,40,-30), camera (-76.163,0,-167.814) to (0,0,0)
mesh MODE_FLAT 0x64C8C8C8 MAT_OPAQUE
mesh MODE_FLAT 0x64737D87 MAT_OPAQUE
render, fog exp (0.6,0.2,0.1,0.5) 0.008, lights (10,20,30) (-10,40,-30), camera (-76.163,0,-167.814) to (0,0,0)
mesh MODE_WIRE 0x64FFFFFF MAT_OPAQUE scale (1.1,1.1,1.1) move (0,-20,0)
mesh MODE_WIRE 0x64737D87 MAT_OPAQUE scale (1.1,1.1,1.1) move (0,20,0)
overlay add forget (160,140)-(480,340) -110
)"},
    // t = 30.1: frame 5 t = 150.5 wraps to 50.5, taken as 50; the cage at the solid's size.
    {"part11", drawPart11, 21, 1758.0f, 1000.0f, {{1030.1}},
     R"(render, no fog, lights (10,20,30) (-10,40,-30), camera (50,0,100) to (0,0,0)
mesh MODE_FLAT 0x64737D87 MAT_OPAQUE
render, no fog, lights (10,20,30) (-10,40,-30), camera (50,0,100) to (0,0,0)
mesh MODE_WIRE 0x64737D87 MAT_OPAQUE
overlay add invert (160,140)-(480,340) -110
)"},
    // The camera of the frame before (t = 700): (70 sin 21, 150, 135 cos 28), the
    // target left alone; mesh 6 at (sin 13 * 500, cos 27 * 400, sin 20 * 700).
    {"part12", drawPart12, 23, 1925.0f, 1200.0f, {{1900.0}, {1910.0}},
     R"(render, no fog, lights (58.5659,150,-129.952) (58.5659,40,-30), camera (58.5659,150,-129.952) to (1,2,3)
mesh MODE_WIRE 0x64646464 MAT_ADD
mesh MODE_FLAT 0x64648CC8 MAT_ADD
mesh MODE_WIRE 0x64646464 MAT_ADD move (210.084,-116.856,639.062)
)" + STACKED},
    // t = 755: the eye at (140 sin 15.1, 300 cos 22.65, 200 cos 15.1) in dense fog,
    // the scene's own material.
    {"part13", drawPart13, 25, 2269.0f, 1245.0f, {{2000.0}},
     R"(render, fog exp (0.6,0.2,0.1,0.5) 0.008, lights (10,20,30) (-10,40,-30), camera (79.9676,-237.209,-164.163) to (0,0,0)
mesh MODE_FLAT 0xFF00FF00 MAT_OPAQUE
overlay add outside (160,140)-(480,340) -110
)"},
};

INSTANTIATE_TEST_SUITE_P(Parts, DrawStep, ::testing::ValuesIn(FRAMES),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(PartSteps, OpeningLogoSlidesRightAfter145AndTheTurningMeshesRiseAfter190FromTheNextFrame) {
    g_partCounter = 1;
    // The slide latched at 145.5 (not at 145): 4 units per tenth, 18 at 150.
    const struct { double time; const char* overlay; } slides[] = {
        {145.0, "overlay add mark12 (170,190)-(470,290) -100\n"},
        {145.5, "overlay add mark12 (170,190)-(470,290) -100\n"},
        {150.0, "overlay add mark12 (188,190)-(488,290) -100\n"}};
    for (const auto& [time, overlay] : slides) {
        EXPECT_EQ(linesOf(frameAt(drawPart1, time), "overlay"), overlay) << time;
    }
    // The rise latched at 190.51 (not at 190), in whole units from the frame after:
    // trunc(0.01 * 50) = 0 at 190.52, trunc(0.49 * 50) = 24 at 191, drawn at 192.
    for (double time : {190.0, 190.51, 190.52, 191.0}) {
        EXPECT_EQ(linesOf(frameAt(drawPart1, time), "mesh").find("move"), std::string::npos) << time;
    }
    const std::string risen = "mesh MODE_FLAT 0xFF00FF00 MAT_OPAQUE rot (0,192,0) move (0,24,0)\n";
    EXPECT_EQ(linesOf(frameAt(drawPart1, 192.0), "mesh"), risen + risen + risen);
}

TEST_F(PartSteps, WaveMeshCreditsJoinOnTheFirstFrameAfter270) {
    g_partCounter = 3;
    const std::string xxx = "overlay add xxx (120,140)-(520,340) -110\n";
    EXPECT_EQ(linesOf(frameAt(drawPart2, 270.0), "overlay"), xxx);
    EXPECT_EQ(linesOf(frameAt(drawPart2, 270.01), "overlay"), xxx + "overlay add cred (170,190)-(470,290) -110\n");
}

// The music's level is the two channels' levels together: a beat that one
// channel alone, or either channel counted twice, would make or miss differently.
TEST_F(PartSteps, PartOneRevealsOnTheLevelsOfBothChannelsTogether) {
    const struct { uint32_t left, right; size_t meshesDrawn; } frames[] = {
        {30, 1, 4},   // 31: a beat (the left alone, 30, is none; the right twice, 2, is none)
        {1, 30, 4},   // 31: a beat (the right alone is none; the left twice is none)
        {15, 15, 3},  // 30: none
        {0, 0, 3},
    };
    for (const auto& frame : frames) {
        g_partCounter = 1;
        g_revealIndex = 3;
        g_revealArmed = 1;
        hide(*g_testWorld, 4);
        const std::string meshes = linesOf(frameAt(drawPart1, 100.0, frame.left, frame.right), "mesh");
        EXPECT_EQ(static_cast<size_t>(std::count(meshes.begin(), meshes.end(), '\n')), frame.meshesDrawn)
            << "left " << frame.left << ", right " << frame.right;
    }
}

// The mesh part 7 pushes out of place (move (30,30,30)) in its solid pass: its
// number among the meshes drawn, or -1 for none.
int pushedMesh(const std::string& recording) {
    std::istringstream lines(recording);
    int mesh = -1;
    int index = 0;
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("render", 0) == 0 && index > 0) {
            break;
        }
        if (line.rfind("mesh", 0) == 0) {
            mesh = line.find("move (30,30,30)") != std::string::npos ? index : mesh;
            ++index;
        }
    }
    return mesh;
}

TEST_F(PartSteps, PartSevenPushesTheMeshOfTheLevelsOfBothChannelsTogether) {
    const struct { uint32_t left, right; int pushed; } frames[] = {
        {36, 35, 1},   // 71 (the left alone: mesh 0; the right twice, 70: none)
        {35, 36, 1},   // 71 (the right alone: mesh 0; the left twice, 70: none)
        {0, 40, 0},    // 40 (the left alone: none; the right twice, 80: mesh 1)
        {40, 0, 0},    // 40 (the right alone: none; the left twice: mesh 1)
        {20, 15, -1},  // 35, on a band's bound (the left twice, 40: mesh 0)
    };
    for (const auto& frame : frames) {
        g_partCounter = 13;
        g_partStart = 400.0f;
        EXPECT_EQ(pushedMesh(frameAt(drawPart7, 800.0, frame.left, frame.right)), frame.pushed)
            << "left " << frame.left << ", right " << frame.right;
    }
}

TEST_F(PartSteps, PartsEightNineAndElevenDrawWithoutTheFogTheyFind) {
    for (void (*step)() : {drawPart8, drawPart9, drawPart11}) {
        glEnable(GL_FOG);
        EXPECT_NE(linesOf(frameAt(step, 1000.0), "render, no fog"), "");
    }
}

TEST_F(PartSteps, PartFoursViewsChangeOnlyAfterTheirTimesAndNeverReturn) {
    const Camera& camera = *g_rum2World->camera;
    g_partCounter = 7;
    const struct {
        double demoTime;
        Vector target;
        float height;
    } frames[] = {
        {460.0, {1.0f, 2.0f, 3.0f, 0.0f}, 7.0f},   {460.01, {50.0f, 2.0f, 3.0f, 0.0f}, 20.0f},
        {520.0, {50.0f, 2.0f, 3.0f, 0.0f}, 20.0f}, {520.01, LAST_VIEW, 120.0f},
        {530.0, LAST_VIEW, 120.0f},
    };
    for (const auto& f : frames) {
        runAt(drawPart4, f.demoTime);
        EXPECT_TRUE(same(camera.target, f.target)) << f.demoTime;
        EXPECT_EQ(camera.position.y, f.height) << f.demoTime;
    }
}

TEST_F(PartSteps, PartTwelvesFirstFrameIsDrawnFromThePlacesPartFourLeft) {
    g_partCounter = 7;
    g_partStart = 125.0f;
    runAt(drawPart4, 534.5);  // part 4's last frame, t = 409.5
    g_partCounter = 23;
    g_partStart = 1200.0f;
    const std::string first = frameAt(drawPart12, 1925.0);
    // Its sway (50 sin 12.285, 35 cos 16.38), the second view at height 120, and the
    // flight of mesh 6 at (sin 10.095 * 500, cos 18.285 * 400, sin 14.19 * 700).
    EXPECT_EQ(linesOf(first, "render") + linesOf(first, "mesh MODE_WIRE 0x64646464 MAT_ADD move"),
              R"(render, no fog, lights (-13.8836,120,-27.3894) (-13.8836,40,-30), camera (-13.8836,120,-27.3894) to (40,40,-10)
mesh MODE_WIRE 0x64646464 MAT_ADD move (-310.58,337.931,699.023)
)");
}

TEST_F(PartSteps, PartEightsSceneWithoutACameraEndsTheShowAtItsSetUp) {
    WorkingTempDir directory;
    if (g_library == nullptr) {
        g_library = new Library;
    }
    // An exporter's scene with nine meshes and no camera, where part 8 needs one.
    writeBytes("3d", buildArchive({{"5d.3ds", readBytes(testDataPath("3ds/test1.3ds"))}}));
    delete std::exchange(g_world5d, nullptr);
    const FatalError error = expectFatal([] { setupPart8(); });
    EXPECT_EQ(error.caption, "tessel openGL engine");
    EXPECT_EQ(error.status, 1);
    g_library->close();
}

TEST(SceneNeeds, TooFewMeshesOrLightsOrARestShapeOfAnotherSizeAreFatal) {
    World world;
    addTestCamera(world);
    Material* material = addTestMaterial(world, "GREEN FLAT", MODE_FLAT, 0xFF00FF00);
    addTestSquare(world, material, 1.0f);
    addTestSquare(world, material, 2.0f);
    world.addLight("only", 0, 0, 0, 255, 255, 255, 1000.0f);

    requireScene(world, "stil.3ds", 2, 1);
    requireRestShape(world, "stil.3ds", 0, 1);
    EXPECT_EQ(expectFatal([&] { requireScene(world, "rum.3ds", 0, 2); }).status, 1);
    EXPECT_EQ(expectFatal([&] { requireScene(world, "2d.3ds", 5, 0); }).status, 1);
    world.meshes[1]->vertexCount = 3;  // the rest shape lost a vertex
    EXPECT_EQ(expectFatal([&] { requireRestShape(world, "stil.3ds", 0, 1); }).status, 1);
    world.meshes[1]->vertexCount = 4;
}

}  // namespace
