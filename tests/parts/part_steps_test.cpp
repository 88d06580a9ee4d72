// The parts' steps in a real context on hand-built Worlds, the demo clock and
// music levels driven by the test: what a frame leaves in the World and in the
// sequencer's counter at the times that matter; a scene short of what its part
// draws ending the show at the set-up.
#include "parts/part_state.h"
#include "parts/parts.h"
#include "parts/scene_needs.h"

#include "app/sequencer.h"
#include "app/shell.h"
#include "audio/clock.h"
#include "audio/music.h"
#include "engine/world.h"
#include "resources/library.h"
#include "resources/texture.h"

#include <gtest/gtest.h>

#include <cmath>
#include <utility>

#include "tests/renderer/test_worlds.h"
#include "tests/resources/gl_test_window.h"
#include "tests/resources/resource_test_files.h"
#include "tests/support/fatal_catcher.h"

namespace {

uint32_t g_fakeMillis = 0;
uint32_t g_fakeLevel = 0;

// A camera at (0, 0, 100), two omni lights and `meshes` small squares in "GREEN FLAT".
World* makeWorld(int meshes) {
    auto* world = new World;
    addTestCamera(*world);
    world->addLight("key", 10, 20, 30, 255, 255, 255, 1000.0f);
    world->addLight("fill", -10, 40, -30, 128, 128, 128, 1000.0f);
    Material* material = addTestMaterial(*world, "GREEN FLAT", MODE_FLAT, 0xFF00FF00);
    for (int i = 0; i < meshes; ++i) {
        addTestSquare(*world, material, 5.0f, static_cast<float>(-10 * i));
    }
    return world;
}

bool same(const Vector& a, const Vector& b) { return a.x == b.x && a.y == b.y && a.z == b.z; }

// A 4 x 4 black texture, uploaded: enough for an overlay to draw.
Texture* overlayTexture() {
    auto* texture = new Texture;
    texture->allocate(4, 4);
    texture->convertToRgba(false);
    glGenTextures(1, &texture->id);
    texture->upload();
    return texture;
}

// Runs `step` once with the demo clock at `demoTime` (tenths of a second, a
// whole number of milliseconds) and the levels `left` and `right` (0..128).
void runAt(void (*step)(), double demoTime, uint32_t left = 0, uint32_t right = 0) {
    g_fakeMillis = static_cast<uint32_t>(std::lround(demoTime / DEMO_TIME_SCALE));
    g_fakeLevel = left | (right << 16);
    step();
}

const Vector LAST_VIEW{40.0f, 40.0f, -10.0f, 0.0f};  // part 4's second view's target

// The GL test window in the show's start state, a fake clock (demo time 0 at
// tick 0) and level source; the Worlds and textures the tests fill are freed
// after each.
class PartSteps : public ::testing::Test {
protected:
    void SetUp() override {
        if (!openGlTestWindow()) {
            GTEST_SKIP() << "no display: run under xvfb-run";
        }
        setShowStartState();
        g_millisecondClock = [] { return g_fakeMillis; };
        g_levelSource = [](AudioHandle) { return g_fakeLevel; };
        g_musicStartTick = 0;
        g_partStart = g_partTime = 0.0f;
        g_frameCount = 0;
    }
    void TearDown() override {
        g_millisecondClock = monotonicMillis;
        g_levelSource = audioChannelGetLevel;
        g_partCounter = 0;
        for (World** world : {&g_testWorld, &g_rum2World, &g_world4d, &g_world5d}) {
            delete std::exchange(*world, nullptr);
        }
        for (Texture** texture : {&g_logoTexture, &g_oooTexture, &g_greetTexture, &g_objectsTexture}) {
            if (*texture != nullptr) {
                glDeleteTextures(1, &(*texture)->id);
                delete[] (*texture)->pixels;
                delete std::exchange(*texture, nullptr);
            }
        }
    }
    // Part 4's room: eight meshes (flying from index 6), its camera aimed at
    // (1, 2, 3) from height 7, part 4 running.
    static Camera& startRoom() {
        g_rum2World = makeWorld(8);
        g_oooTexture = overlayTexture();
        g_rum2World->camera->target = Vector{1.0f, 2.0f, 3.0f, 0.0f};
        g_rum2World->camera->position.y = 7.0f;
        g_partCounter = 7;
        return *g_rum2World->camera;
    }
};

TEST_F(PartSteps, OpeningLatchesSetTheirTimesAndRiseShowsFromTheNextFrameUntilThePartEndsAfter210) {
    g_testWorld = makeWorld(4);
    g_logoTexture = overlayTexture();
    g_logoSlideStart = g_riseStart = 0.0f;
    g_partCounter = 1;

    runAt(drawPart1, 145.0);
    EXPECT_EQ(g_logoSlideStart, 0.0f);
    runAt(drawPart1, 145.5);
    runAt(drawPart1, 150.0);
    EXPECT_EQ(g_logoSlideStart, 145.5f);
    runAt(drawPart1, 190.0);
    EXPECT_EQ(g_riseStart, 0.0f);
    runAt(drawPart1, 190.5);
    EXPECT_EQ(g_riseStart, 190.5f);
    EXPECT_EQ(g_testWorld->meshes[0]->translation.y, 0.0f);
    runAt(drawPart1, 191.0);
    for (int i = 0; i < 4; ++i) {  // the three turning meshes rise
        EXPECT_EQ(g_testWorld->meshes[i]->translation.y, i < 3 ? 25.0f : 0.0f) << i;
    }
    EXPECT_EQ(g_riseStart, 190.5f);
    runAt(drawPart1, 210.0);
    EXPECT_EQ(g_partCounter, 1);
    runAt(drawPart1, 210.01);
    EXPECT_EQ(g_partCounter, 2);
    EXPECT_EQ(g_frameCount, 8);
}

TEST_F(PartSteps, PartFoursViewsChangeOnlyAfterTheirTimesAndNeverReturn) {
    const Camera& camera = startRoom();
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
    EXPECT_EQ(g_partCounter, 7);
}

TEST_F(PartSteps, PartTwelveStartsFromTheStatePartFourLeft) {
    const Camera& camera = startRoom();
    runAt(drawPart4, 534.5);  // part 4's last frame
    ASSERT_EQ(g_partCounter, 8);
    const Vector leftBehind = camera.position;
    const Vector flight6 = g_rum2World->meshes[6]->translation;

    g_partCounter = 23;
    g_partStart = 1200.0f;
    runAt(drawPart12, 1925.0);
    // Its first frame lit the scene from the camera part 4 left, y 120 and all.
    EXPECT_TRUE(same(g_rum2World->lights[0]->position, leftBehind));
    EXPECT_EQ(leftBehind.y, 120.0f);
    // The target stays part 4's; the new camera is set for the next frame.
    EXPECT_TRUE(same(camera.target, LAST_VIEW));
    EXPECT_EQ(camera.position.y, 150.0f);
    EXPECT_FLOAT_EQ(camera.position.x, static_cast<float>(std::sin(0.03 * 725.0) * 70.0));
    EXPECT_FLOAT_EQ(camera.position.z, static_cast<float>(std::cos(0.04 * 725.0) * 135.0));
    // The meshes from 6 on fly on from where part 4 left them; the others stay.
    EXPECT_FALSE(same(g_rum2World->meshes[6]->translation, flight6));
    EXPECT_FLOAT_EQ(g_rum2World->meshes[6]->translation.x, static_cast<float>(std::sin(6 + 0.01 * 725.0) * 500.0));
    EXPECT_FLOAT_EQ(g_rum2World->meshes[7]->translation.z, static_cast<float>(std::sin(7 + 0.02 * 725.0) * 700.0));
    EXPECT_TRUE(same(g_rum2World->meshes[5]->translation, Vector{}));
    EXPECT_EQ(g_partCounter, 23);
    runAt(drawPart12, 1925.01);
    EXPECT_EQ(g_partCounter, 24);
}

TEST_F(PartSteps, PartSevensLoudnessPushesOneMeshThatSpringsBackWhenTheBandIsLeft) {
    g_world4d = makeWorld(3);
    g_greetTexture = overlayTexture();
    g_objectsTexture = overlayTexture();
    g_partCounter = 13;
    const struct {
        uint32_t left, right;
        int pushed;
    } frames[] = {{36, 35, 1}, {35, 35, -1}, {128, 128, -1}};  // 71: mesh 1; 70: a bound; past the last band
    for (const auto& f : frames) {
        runAt(drawPart7, 800.0, f.left, f.right);
        for (int i = 0; i < 3; ++i) {
            const float offset = i == f.pushed ? 30.0f : 0.0f;
            EXPECT_TRUE(same(g_world4d->meshes[i]->translation, Vector{offset, offset, offset, 0.0f}))
                << f.left + f.right << " mesh " << i;
        }
    }
}

TEST_F(PartSteps, PartEightsSceneWithoutACameraEndsTheShowAtItsSetUp) {
    WorkingTempDir directory;
    if (g_library == nullptr) {
        g_library = new Library;
    }
    // An exporter's scene with nine meshes and no camera, where part 8 needs one.
    writeBytes("3d", buildArchive({{"5d.3ds", readBytes(testDataPath("3ds/test1.3ds"))}}));
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
