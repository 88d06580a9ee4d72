// The twelve generated scenes as the show reads them (the archive the build
// wrote holds the bytes of a fresh run), checked for what each demo part does
// with its scene: the meshes it moves, hides or deforms, the material names it
// sets, the lights it moves and the camera it looks through or flies.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <map>
#include <memory>
#include <set>

#include "content/scenes/scenes.h"
#include "engine/world.h"
#include "resources/archive_format.h"
#include "tests/engine/scene_text.h"

namespace {

template <typename Record>
const Record* named(Record* const* records, int32_t count, const char* name) {
    const auto found = std::find_if(records, records + count, [name](const Record* r) { return std::strcmp(r->name, name) == 0; });
    return found == records + count ? nullptr : *found;
}
Vector placed(const MeshObject& mesh, int32_t vertex) { return mesh.vertices[vertex].position.add(mesh.centre); }
float distance(const Vector& a, const Vector& b) { return std::hypot(a.x - b.x, a.y - b.y, a.z - b.z); }
// The largest difference along one axis.
float axisGap(const Vector& a, const Vector& b) { return std::max({std::fabs(a.x - b.x), std::fabs(a.y - b.y), std::fabs(a.z - b.z)}); }

// Every scene of a fresh run, read by the engine; the scenes of the build's
// archive "3d" (when the build makes content) that differ from them.
class GeneratedScenes : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        std::vector<uint8_t> archive;
        std::string error;
        readWholeFile(std::string(KASKADE_BUILD_DIR) + "/3d", &archive, &error);
        std::map<std::string, std::vector<uint8_t>> archived;
        ArchiveWalker walker{archive.data(), archive.size(), 0};
        for (ArchiveEntryView entry; walker.next(&entry) == ArchiveStep::Entry;) {
            archived[std::string(entry.name)].assign(entry.data, entry.data + entry.size);
        }
        for (ContentEntry& scene : makeScenes()) {
            if (!archive.empty() && archived[scene.name] != scene.bytes) stale.push_back(scene.name);
            loadScene(*(worlds[scene.name] = std::make_unique<World>()), scene.bytes);
        }
    }
    static void TearDownTestSuite() { worlds.clear(); }
    static World& scene(const char* name) { return *worlds.at(name); }
    static inline std::map<std::string, std::unique_ptr<World>> worlds;
    static inline std::vector<std::string> stale;
};

// What each part needs of its scene: at least so many meshes and omni lights,
// the material names it sets, drawn with; `hidden` meshes are never drawn
// (the rest shapes of the wave parts, the opening's spare), so they cost no
// triangles. Immediate mode pays per triangle, and the heaviest parts draw
// their scene twice: at most 5,000 drawn. The renderer never switches a light
// off: a third light would keep shining on every later part, so only the
// closing scene may have one.
TEST_F(GeneratedScenes, AreTheTwelveOfTheShowWithTheBytesOfEveryRunAndHoldWhatTheirPartsUse) {
    EXPECT_EQ(worlds.size(), 12u);
    EXPECT_EQ(stale, std::vector<std::string>{}) << "the build's archive differs from a fresh run";
    const struct { const char* name; int meshes, omniLights; std::vector<const char*> materials; std::vector<int> hidden; } needs[] = {
        {"test.3ds", 4 + 24, 0, {"GREEN FLAT", "BLACK WIRE", "WHITE WIRE"}, {3}}, {"stil.3ds", 2, 1, {"ORANGE FLAT"}, {1}},
        {"rum.3ds", 1, 2, {"WHITE WIRE", "GREEN FLAT"}, {}}, {"rum2.3ds", 7, 2, {"WHITE WIRE", "GREEN FLAT", "BLUE FLAT"}, {}},
        {"2d.3ds", 5, 2, {"BLUE FLAT", "GREEN FLAT", "ORANGE FLAT"}, {}}, {"3d.3ds", 1, 1, {"GREEN FLAT", "ORANGE FLAT"}, {}},
        {"4d.3ds", 1, 0, {"RED FLAT", "BLUE FLAT", "GREEN FLAT", "ORANGE FLAT"}, {}},
        {"5d.3ds", 1, 0, {"BLUE FLAT", "GREEN FLAT", "ORANGE FLAT"}, {}},
        {"6d.3ds", 5, 1, {"ORANGE FLAT", "GREEN FLAT", "BLACK WIRE"}, {4}}, {"7d.3ds", 2, 0, {"WHITE FLAT", "ORANGE FLAT"}, {}},
        {"8d.3ds", 1, 0, {"BLUE FLAT"}, {}}, {"9d.3ds", 1, 0, {}, {}}};
    for (const auto& need : needs) {
        SCOPED_TRACE(need.name);
        const World& world = scene(need.name);
        ASSERT_NE(world.camera, nullptr);
        EXPECT_GE(std::min(world.camera->positionTrack->keyCount, world.camera->targetTrack->keyCount), 1u);
        EXPECT_LT(world.segment->startFrame, world.segment->endFrame);
        EXPECT_GE(world.meshCount, need.meshes);
        EXPECT_GE(world.lightCount, need.omniLights);
        for (int32_t i = 0; i < world.lightCount; ++i) EXPECT_GE(world.lights[i]->positionTrack->keyCount, 1u);
        EXPECT_TRUE(world.lightCount + world.spotlightCount <= 2 || std::strcmp(need.name, "9d.3ds") == 0);
        std::set<std::string> names;
        int32_t drawn = 0;
        for (int32_t i = 0; i < world.meshCount; ++i) {
            const MeshObject& mesh = *world.meshes[i];
            EXPECT_TRUE(names.insert(mesh.name).second) << "two meshes named " << mesh.name;
            ASSERT_GT(mesh.faceCount, 0) << mesh.name;
            for (int32_t f = 0; f < mesh.faceCount; ++f) ASSERT_NE(mesh.faces[f].material, nullptr) << mesh.name;
            EXPECT_EQ(mesh.positionTrack->keyCount, 1u) << mesh.name;
            drawn += std::ranges::count(need.hidden, i) ? 0 : mesh.faceCount;
        }
        EXPECT_LE(drawn, 5000);
        for (const char* name : need.materials) {  // some mesh is drawn with it, or setting it would change nothing
            const Material* material = named(world.materials, world.materialCount, name);
            const auto drawnWith = [material](const MeshObject* mesh) { return mesh->faces[0].material == material; };
            EXPECT_TRUE(material != nullptr && std::any_of(world.meshes, world.meshes + world.meshCount, drawnWith)) << name;
        }
    }
}

TEST_F(GeneratedScenes, PlacedMeshesStandWhereTheirPartsMoveThem) {
    // The opening turns its first three meshes about the vertical axis through
    // the origin. Its logo takes the colour of the last mesh drawn, the piece
    // revealed last: a black piece would blank it.
    const World& opening = scene("test.3ds");
    ASSERT_GE(opening.meshCount, 4);
    for (int i = 0; i < 3; ++i) EXPECT_LE(std::max(std::fabs(opening.meshes[i]->centre.x), std::fabs(opening.meshes[i]->centre.z)), 1.0f) << i;
    const Material* black = named(opening.materials, opening.materialCount, "BLACK WIRE");
    for (int32_t i = 4; i < opening.meshCount; ++i) EXPECT_NE(opening.meshes[i]->faces[0].material, black) << i;
    // The flight formula gives the offset from the mesh's own place.
    const World& rum2 = scene("rum2.3ds");
    for (int32_t i = 6; i < rum2.meshCount; ++i) EXPECT_LT(distance(rum2.meshes[i]->centre, {0, 0, 0}), 40.0f) << i;
    // The wheels spin about the z axis: centred on it, they spin in place.
    const World& wheels = scene("2d.3ds");
    ASSERT_GE(wheels.meshCount, 5);
    for (int i = 0; i < 5; ++i) EXPECT_LE(axisGap(wheels.meshes[i]->centre, {0, 0, wheels.meshes[i]->centre.z}), 2.0f) << i;
    // The stream of squares lies at x -80..40, y 0..120 about the last mesh's
    // centre: that centre puts it down the middle of the tunnel.
    const World& tunnel = scene("3d.3ds");
    EXPECT_LE(axisGap(tunnel.meshes[tunnel.meshCount - 1]->centre, {20.0f, -60.0f, 0.0f}), 1.0f);
    // Mesh i is pushed for a level sum 35(i + 1) < L < 35(i + 2), L at most
    // 256: every band can be reached and together they cover the loud end.
    const World& tumble = scene("4d.3ds");
    EXPECT_TRUE(35 * tumble.meshCount < 256 && 35 * (tumble.meshCount + 1) >= 240) << tumble.meshCount;
    for (int32_t i = 0; i < tumble.meshCount; ++i) EXPECT_LT(distance(tumble.meshes[i]->centre, {0, 0, 0}), 5.0f) << i;
    // The closing scene draws in several of the modes a scene can hold, wire among them.
    std::set<uint32_t> modes;
    const World& closing = scene("9d.3ds");
    for (int32_t i = 0; i < closing.materialCount; ++i) modes.insert(closing.materials[i]->mode);
    EXPECT_TRUE(modes.size() >= 3 && modes.contains(MODE_WIRE) &&
                std::ranges::includes(std::set<uint32_t>{MODE_FLAT, MODE_SMOOTH, MODE_SPHERE_MAP, MODE_WIRE}, modes));
    // Vertex i of a wave part's rest shape lies where vertex i of its wave mesh
    // does, so scaling it moves the wave mesh's own vertex; the swell grows
    // about the place the wave mesh is drawn at.
    for (const auto& [name, wave, rest] : {std::tuple{"stil.3ds", 0, 1}, std::tuple{"6d.3ds", 3, 4}}) {
        SCOPED_TRACE(name);
        ASSERT_GT(scene(name).meshCount, std::max(wave, rest));
        const MeshObject& w = *scene(name).meshes[wave];
        const MeshObject& r = *scene(name).meshes[rest];
        ASSERT_TRUE(w.vertexCount == r.vertexCount && w.vertexCount > 100) << w.vertexCount << " " << r.vertexCount;
        for (int32_t i = 0; i < w.vertexCount; ++i) {
            const Vertex& v = w.vertices[i];
            ASSERT_TRUE(v.u >= 0.0f && v.u < 1.0f && v.v >= 0.0f && v.v < 1.0f) << "vertex " << i;
            ASSERT_LE(axisGap(v.position, r.vertices[i].position), 1e-3f) << "vertex " << i;
        }
        EXPECT_LE(axisGap(w.centre, r.centre), 1e-2f);
    }
}

TEST_F(GeneratedScenes, SplitCageHalvesCloseIntoOneBallAndPartVertically) {
    const World& world = scene("7d.3ds");
    ASSERT_GE(world.meshCount, 2);
    const MeshObject& lower = *world.meshes[0];
    const MeshObject& upper = *world.meshes[1];
    EXPECT_LT(lower.centre.y, upper.centre.y);
    // Together the halves close: every edge of one face is an edge of another
    // face, of either half, running the other way. No gap in the solid pass.
    std::map<std::array<long, 6>, int> edges;
    for (const MeshObject* half : {&lower, &upper}) {
        for (int32_t f = 0; f < half->faceCount; ++f) {
            for (int k = 0; k < 3; ++k) {
                const Vector p = placed(*half, half->faces[f].index[k]), q = placed(*half, half->faces[f].index[(k + 1) % 3]);
                ++edges[{std::lround(10 * p.x), std::lround(10 * p.y), std::lround(10 * p.z), std::lround(10 * q.x),
                         std::lround(10 * q.y), std::lround(10 * q.z)}];
            }
        }
    }
    for (const auto& [edge, count] : edges) {
        EXPECT_EQ(count, 1);
        EXPECT_EQ(edges.count({edge[3], edge[4], edge[5], edge[0], edge[1], edge[2]}), 1u);
    }
    // The seam zigzags: the upper half reaches below the lower half's top, so
    // the halves interlock when closed and part along a jagged line.
    float upperLowest = 1e9f, lowerHighest = -1e9f;
    for (int32_t i = 0; i < upper.vertexCount; ++i) upperLowest = std::min(upperLowest, placed(upper, i).y);
    for (int32_t i = 0; i < lower.vertexCount; ++i) lowerHighest = std::max(lowerHighest, placed(lower, i).y);
    EXPECT_LT(upperLowest, lowerHighest);
}

// The keyframed flights of parts 8 and 11, flown the way the parts fly them:
// World::setFrame from the part-local time (tenths of a second) times the
// part's factor, Camera::update at the whole frame. The part-local time starts
// near 376 in part 8 and 764 in part 11; the ranges reach a little beyond.
// The camera keeps 60 units of plan distance from the solids' vertices.
TEST_F(GeneratedScenes, CameraFlightsLoopOverTheSegmentSmoothlyAndClearOfTheSolids) {
    for (const auto& [name, factor, firstTime, lastTime, solidsName] :
         {std::tuple{"5d.3ds", 4.0f, 360.0f, 560.0f, "Towers"}, std::tuple{"8d.3ds", 5.0f, 750.0f, 1040.0f, "Pylons"}}) {
        SCOPED_TRACE(name);
        World& world = scene(name);
        Camera& camera = *world.camera;
        EXPECT_EQ(world.segment->startFrame, 0);
        for (const Track* track : {camera.positionTrack, camera.targetTrack}) {  // a closed loop keyed over the whole segment
            ASSERT_GE(track->keyCount, 12u);
            EXPECT_EQ(std::pair(track->keys[0].frame, track->keys[track->keyCount - 1].frame), std::pair(0, world.segment->endFrame));
            EXPECT_EQ(distance(track->keys[0].value, track->keys[track->keyCount - 1].value), 0.0f);
        }
        const MeshObject* solids = named(world.meshes, world.meshCount, solidsName);
        ASSERT_NE(solids, nullptr);
        Vector previous{};
        float longestStep = 0.0f, shortestStep = 1e9f;
        // One animation frame per step: the camera moves on every step.
        for (float time = firstTime; time <= lastTime; time += 1.0f / factor) {
            world.setFrame(factor * time);
            camera.update(static_cast<int>(world.currentFrame));
            ASSERT_TRUE(std::isfinite(camera.position.x + camera.position.y + camera.position.z));
            EXPECT_GT(distance(camera.position, camera.target), 50.0f);
            if (time > firstTime) {
                longestStep = std::max(longestStep, distance(previous, camera.position));
                shortestStep = std::min(shortestStep, distance(previous, camera.position));
            }
            previous = camera.position;
            for (int32_t v = 0; v < solids->vertexCount; v += 4) {
                const Vector p = placed(*solids, v);
                ASSERT_GT(std::hypot(p.x - camera.position.x, p.z - camera.position.z), 60.0f) << "at time " << time;
            }
        }
        // Never standing still, never jumping (the wrap included): no step is
        // more than a few times another.
        EXPECT_GT(shortestStep, 0.5f);
        EXPECT_LT(longestStep, 6.0f * shortestStep);
    }
}

}  // namespace
