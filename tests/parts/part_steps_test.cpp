// The parts' draw steps in a real context on hand-built Worlds, the demo clock
// and music levels driven by the test: what a frame hands to the renderer and
// the overlays against the cases of
// tests/data/parts/frames.txt, the sequencer's counter at the end times; a
// scene short of what its part draws ending the show at the set-up.
#include "parts/part_state.h"
#include "parts/parts.h"
#include "parts/scene_needs.h"
#include "parts/wave_map.h"

#include "app/sequencer.h"
#include "app/shell.h"
#include "base/gl.h"
#include "audio/clock.h"
#include "audio/music.h"
#include "engine/world.h"
#include "resources/archive_format.h"
#include "resources/library.h"
#include "resources/texture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <map>
#include <cstdlib>
#include <sstream>
#include <utility>

#include "tests/engine/scene_text.h"
#include "tests/engine/text_cases.h"
#include "tests/renderer/test_worlds.h"
#include "tests/resources/gl_test_window.h"
#include "tests/resources/resource_test_files.h"
#include "tests/support/fatal_catcher.h"

// What a draw step hands to the renderer and the overlays is written down on
// its way there (the line format: tests/data/parts/frames.txt): this program
// links World::render, drawOverlayAdd and drawOverlayDarken with --wrap, so
// every call still draws.
namespace {

std::string g_lines;
std::string g_lastOverlay;  // the last line's overlay and corners, while it is an overlay
std::map<const Texture*, std::string> g_textureNames;

void addLine(const std::string& line) {
    g_lines += line + "\n";
    g_lastOverlay.clear();
}

std::string vector3(const Vector& v) { return listText({v.x, v.y, v.z}); }

std::string fog() {
    if (!glIsEnabled(GL_FOG)) return "no fog";
    GLint mode = 0;
    GLfloat c[4], density = 0;
    glGetIntegerv(GL_FOG_MODE, &mode);
    glGetFloatv(GL_FOG_COLOR, c);
    glGetFloatv(GL_FOG_DENSITY, &density);
    return (mode == GL_EXP ? "fog exp " : "fog (not exp) ") + listText({c[0], c[1], c[2], c[3]}) + " " + numberText(density);
}

const std::map<uint32_t, const char*> FLAGS = {{MAT_OPAQUE, "MAT_OPAQUE"}, {MAT_ADD, "MAT_ADD"}, {MAT_DARKEN, "MAT_DARKEN"},
                                               {MAT_ALPHA, "MAT_ALPHA"}, {MAT_LINEAR, "MAT_LINEAR"}, {MAT_NO_DEPTH, "MAT_NO_DEPTH"}};

void writeMesh(const MeshObject& mesh, const Material& material) {
    char colour[16];
    std::snprintf(colour, sizeof colour, " 0x%08X ", material.diffuse);
    std::string line = std::string("mesh ") +
                       (MODE_NAMES.contains(material.mode) ? MODE_NAMES.at(material.mode) : numberText(material.mode)) + colour;
    for (const auto& [bit, name] : FLAGS) line += material.flags & bit ? std::string(name) + "|" : "";
    line.pop_back();  // the last '|', or the space before no flags
    const std::string scale = vector3(mesh.scale), rotation = vector3(mesh.rotation), move = vector3(mesh.translation);
    line += scale != "(1,1,1)" ? " scale " + scale : "";
    line += rotation != "(0,0,0)" ? " rot " + rotation : "";
    line += move != "(0,0,0)" ? " move " + move : "";
    addLine(line);
}

void writeOverlay(const char* function, const Texture* texture, int x0, int y0, int x1, int y1, int z) {
    const auto name = g_textureNames.find(texture);
    const std::string shape = std::string("overlay ") + function + " " +
                              (name != g_textureNames.end() ? name->second : "(unnamed)") + " " +
                              listText({x0 + 0.0, y0 + 0.0}) + "-" + listText({x1 + 0.0, y1 + 0.0});
    if (shape == g_lastOverlay) {
        g_lines.insert(g_lines.size() - 1, " " + std::to_string(z));  // before the line's '\n'
    } else {
        addLine(shape + " " + std::to_string(z));
    }
    g_lastOverlay = shape;
}

void startFrameRecording() {
    g_lines.clear();
    g_lastOverlay.clear();
}

std::string frameRecording() { return g_lines; }

void nameRecordedTexture(const Texture* texture, const std::string& name) { g_textureNames[texture] = name; }

}  // namespace

// The wrapped functions by their linker names: World::render() and the two
// overlay functions (Texture*, int x0, int y0, int x1, int y1, int z).
extern "C" {

void __real__ZN5World6renderEv(World* world);
void __wrap__ZN5World6renderEv(World* world) {
    std::string line = "render, " + fog() + ", lights";
    for (int32_t i = 0; i < world->lightCount; ++i) line += " " + vector3(world->lights[i]->position);
    if (world->camera != nullptr) {
        addLine(line + ", camera " + vector3(world->camera->position) + " to " + vector3(world->camera->target));
        for (int32_t i = 0; i < world->meshCount; ++i) {
            const MeshObject& mesh = *world->meshes[i];
            if ((mesh.flags & MESH_VISIBLE) && mesh.faceCount > 0 && mesh.faces[0].material != nullptr) {
                writeMesh(mesh, *mesh.faces[0].material);
            }
        }
    }
    __real__ZN5World6renderEv(world);
}

void __real__Z14drawOverlayAddP7Textureiiiii(Texture* texture, int x0, int y0, int x1, int y1, int z);
void __wrap__Z14drawOverlayAddP7Textureiiiii(Texture* texture, int x0, int y0, int x1, int y1, int z) {
    writeOverlay("add", texture, x0, y0, x1, y1, z);
    __real__Z14drawOverlayAddP7Textureiiiii(texture, x0, y0, x1, y1, z);
}

void __real__Z17drawOverlayDarkenP7Textureiiiii(Texture* texture, int x0, int y0, int x1, int y1, int z);
void __wrap__Z17drawOverlayDarkenP7Textureiiiii(Texture* texture, int x0, int y0, int x1, int y1, int z) {
    writeOverlay("darken", texture, x0, y0, x1, y1, z);
    __real__Z17drawOverlayDarkenP7Textureiiiii(texture, x0, y0, x1, y1, z);
}

}  // extern "C"

namespace {

uint32_t g_fakeMillis = 0;
uint32_t g_fakeLevel = 0;

// The test camera, omni lights at (10, 20, 30) and (-10, 40, -30), and `meshes`
// small squares, mesh i at z = -10 i in material materials[i % count], each
// MODE_FLAT 0xFF00FF00 and opaque until a part sets it.
World* makeWorld(int meshes, std::initializer_list<const char*> materials, std::initializer_list<int> hidden = {}) {
    auto* world = new World;
    addTestCamera(*world);
    world->addLight("key", 10, 20, 30, 255, 255, 255, 1000.0f);
    world->addLight("fill", -10, 40, -30, 128, 128, 128, 1000.0f);
    for (const char* name : materials) addTestMaterial(*world, name, MODE_FLAT, 0xFF00FF00);
    for (int i = 0; i < meshes; ++i) {
        addTestSquare(*world, world->materials[i % world->materialCount], 5.0f, static_cast<float>(-10 * i));
    }
    for (int mesh : hidden) world->meshes[mesh]->flags &= static_cast<uint8_t>(~MESH_VISIBLE);
    return world;
}

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
// whole number of milliseconds) and the levels `left` and `right` (0..128);
// returns what the frame handed to the renderer and the overlays.
std::string frameAt(void (*step)(), double demoTime, uint32_t left = 0, uint32_t right = 0) {
    g_fakeMillis = static_cast<uint32_t>(std::lround(demoTime / DEMO_TIME_SCALE));
    g_fakeLevel = left | (right << 16);
    startFrameRecording();
    step();
    return frameRecording();
}

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
// as their files; part 4's room aimed at (1, 2, 3) from height 7; parts 8 and
// 11 flying their cameras along x.
class PartSteps : public ::testing::Test {
protected:
    void SetUp() override {
        if (!openGlTestWindow()) GTEST_SKIP() << "no display: run under xvfb-run";
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
        g_testWorld = makeWorld(5, {"GREEN FLAT"}, {3, 4});
        g_stilWorld = makeWorld(2, {"ORANGE FLAT"}, {1});
        g_rumWorld = makeWorld(1, {"GREEN FLAT"});
        g_rum2World = makeWorld(7, {"GREEN FLAT", "BLUE FLAT"}, {2, 3, 4, 5});
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
        for (World** world : WORLDS) delete std::exchange(*world, nullptr);
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

class DrawStep : public PartSteps, public ::testing::WithParamInterface<TextCase> {};

TEST_P(DrawStep, HandsTheRendererAndTheOverlaysWhatItsPartDraws) {
    void (*const STEPS[])() = {drawPart1, drawPart2, drawPart3,  drawPart4,  drawPart5,  drawPart6, drawPart7,
                               drawPart8, drawPart9, drawPart10, drawPart11, drawPart12, drawPart13};
    std::istringstream steps(GetParam().input);
    void (*step)() = nullptr;
    std::string word, recorded;
    float end = -1.0f;
    while (steps >> word) {
        int number = 0;
        double time = 0.0;
        char slash = 0;
        uint32_t left = 0, right = 0;
        if (word == "part" && steps >> number) {
            step = STEPS[number - 1];
        } else if (word == "counter") {
            steps >> g_partCounter;
        } else if (word == "start") {
            steps >> g_partStart;
        } else if (word == "fog") {
            glEnable(GL_FOG);
        } else if (word == "at" && steps >> time) {
            if (steps.peek() == '/') steps >> slash >> left >> slash >> right;
            recorded = frameAt(step, time, left, right);
        } else if (word == "ends") {
            steps >> end;
        } else {
            FAIL() << "unknown step " << word;
        }
    }
    EXPECT_EQ(comparedLines(GetParam(), recorded), GetParam().expected);
    if (end >= 0.0f) {
        const int32_t counter = g_partCounter;
        g_frameCount = 0;
        frameAt(step, end);
        EXPECT_EQ(g_partCounter, counter);
        EXPECT_NE(frameAt(step, end + 0.01).find("render"), std::string::npos);
        EXPECT_EQ(g_partCounter, counter + 1);
        EXPECT_EQ(g_frameCount, 2);
    }
}

INSTANTIATE_TEST_SUITE_P(Frames, DrawStep, ::testing::ValuesIn(readTextCases("parts/frames.txt")), caseName);

TEST_F(PartSteps, ASceneShortOfWhatItsPartUsesEndsTheShowAtTheSetUp) {
    WorkingTempDir directory;
    g_library = g_library != nullptr ? g_library : new Library;
    // An exporter's scene with nine meshes and no camera, where part 8 needs one.
    std::vector<uint8_t> archive, scene = readBytes(testDataPath("3ds/test1.3ds"));
    appendArchiveEntry(archive, "5d.3ds", scene.data(), scene.size(), nullptr);
    writeBytes("3d", archive);
    delete std::exchange(g_world5d, nullptr);
    const FatalError error = expectFatal([] { setupPart8(); });
    EXPECT_EQ(std::pair(error.caption, error.status), std::pair(std::string("tessel openGL engine"), 1));
    g_library->close();

    // Too few meshes or lights, or a rest shape of another size than its wave mesh.
    World& world = *g_stilWorld;
    requireScene(world, "stil.3ds", 2, 2);
    requireRestShape(world, "stil.3ds", 0, 1);
    EXPECT_EQ(expectFatal([&] { requireScene(world, "rum.3ds", 0, 3); }).status, 1);
    EXPECT_EQ(expectFatal([&] { requireScene(world, "2d.3ds", 3, 0); }).status, 1);
    world.meshes[1]->vertexCount = 3;
    EXPECT_EQ(expectFatal([&] { requireRestShape(world, "stil.3ds", 0, 1); }).status, 1);
    world.meshes[1]->vertexCount = 4;
}

}  // namespace
