// The twelve generated scenes as the show reads them, from the archive the
// build wrote, checked for what each demo part does with its scene: the meshes
// it moves, hides or deforms, the material names it sets, the lights it moves
// and the camera it looks through or flies.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <tuple>

#include "content/scenes/scenes.h"
#include "engine/world.h"
#include "resources/archive_format.h"
#include "resources/library.h"

namespace {

// What a part needs of its scene. `hidden` meshes are never drawn (the rest
// shapes of the wave parts, the opening's spare), so they cost no triangles.
struct SceneNeeds {
    const char* name;
    int meshes;      // at least
    int omniLights;  // at least
    std::vector<const char*> materials;  // the names the part sets
    std::vector<int> hidden;
};

const SceneNeeds SCENES[12] = {
    {"test.3ds", 4 + 24, 0, {"GREEN FLAT", "BLACK WIRE", "WHITE WIRE"}, {3}},
    {"stil.3ds", 2, 1, {"ORANGE FLAT"}, {1}},
    {"rum.3ds", 1, 2, {"WHITE WIRE", "GREEN FLAT"}, {}},
    {"rum2.3ds", 7, 2, {"WHITE WIRE", "GREEN FLAT", "BLUE FLAT"}, {}},
    {"2d.3ds", 5, 2, {"BLUE FLAT", "GREEN FLAT", "ORANGE FLAT"}, {}},
    {"3d.3ds", 1, 1, {"GREEN FLAT", "ORANGE FLAT"}, {}},
    {"4d.3ds", 1, 0, {"RED FLAT", "BLUE FLAT", "GREEN FLAT", "ORANGE FLAT"}, {}},
    {"5d.3ds", 1, 0, {"BLUE FLAT", "GREEN FLAT", "ORANGE FLAT"}, {}},
    {"6d.3ds", 5, 1, {"ORANGE FLAT", "GREEN FLAT", "BLACK WIRE"}, {4}},
    {"7d.3ds", 2, 0, {"WHITE FLAT", "ORANGE FLAT"}, {}},
    {"8d.3ds", 1, 0, {"BLUE FLAT"}, {}},
    {"9d.3ds", 1, 0, {}, {}},
};

// Drawing cost guard: immediate mode pays per triangle, and the heaviest parts
// draw their scene twice.
constexpr int32_t TRIANGLE_BUDGET = 5000;

const Material* findMaterial(const World& world, const char* name) {
    for (int32_t i = 0; i < world.materialCount; ++i) {
        if (std::strcmp(world.materials[i]->name, name) == 0) return world.materials[i];
    }
    return nullptr;
}

const MeshObject* findMesh(const World& world, const char* name) {
    for (int32_t i = 0; i < world.meshCount; ++i) {
        if (std::strcmp(world.meshes[i]->name, name) == 0) return world.meshes[i];
    }
    return nullptr;
}

Vector placed(const MeshObject& mesh, int32_t vertex) {
    const Vector& p = mesh.vertices[vertex].position;
    return {p.x + mesh.centre.x, p.y + mesh.centre.y, p.z + mesh.centre.z};
}

float distance(const Vector& a, const Vector& b) { return std::hypot(a.x - b.x, a.y - b.y, a.z - b.z); }

// The largest difference along one axis.
float axisGap(const Vector& a, const Vector& b) {
    return std::max({std::fabs(a.x - b.x), std::fabs(a.y - b.y), std::fabs(a.z - b.z)});
}

// Every scene loaded by World::load from the build's archive "3d"; when the
// build makes no content, from an archive of freshly generated scenes.
class ArchiveScenes : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        std::filesystem::path dir = KASKADE_BUILD_DIR;
        std::string error;
        g_archive = new std::vector<uint8_t>;
        const bool built = readWholeFile((dir / "3d").string(), g_archive, &error);
        if (!built) {
            dir = std::filesystem::temp_directory_path() / ("kaskade-scenes-" + std::to_string(getpid()));
            std::filesystem::create_directories(dir);
            for (const ContentEntry& e : makeScenes()) appendArchiveEntry(*g_archive, e.name, e.bytes.data(), e.bytes.size(), &error);
            writeWholeFile((dir / "3d").string(), *g_archive, &error);
        }
        const std::filesystem::path previous = std::filesystem::current_path();
        std::filesystem::current_path(dir);  // the library opens its archive by a short name
        Library library;
        library.open("3d");
        g_worlds = new std::map<std::string, std::unique_ptr<World>>;
        for (const SceneNeeds& scene : SCENES) {
            auto world = std::make_unique<World>();
            world->load(scene.name, library);
            (*g_worlds)[scene.name] = std::move(world);
        }
        library.close();
        std::filesystem::current_path(previous);
        if (!built) std::filesystem::remove_all(dir);
    }
    static void TearDownTestSuite() {
        delete g_worlds;
        delete g_archive;
    }
    static World& scene(const char* name) { return *g_worlds->at(name); }

    static std::vector<uint8_t>* g_archive;
    static std::map<std::string, std::unique_ptr<World>>* g_worlds;
};

std::vector<uint8_t>* ArchiveScenes::g_archive = nullptr;
std::map<std::string, std::unique_ptr<World>>* ArchiveScenes::g_worlds = nullptr;

}  // namespace

TEST_F(ArchiveScenes, AreTheTwelveOfTheShowWithTheBytesOfEveryRun) {
    const std::vector<ContentEntry> fresh = makeScenes();
    ASSERT_EQ(fresh.size(), 12u);
    std::map<std::string, std::vector<uint8_t>> archived;
    ArchiveWalker walker{g_archive->data(), g_archive->size(), 0};
    ArchiveEntryView entry;
    while (walker.next(&entry) == ArchiveStep::Entry) archived[std::string(entry.name)].assign(entry.data, entry.data + entry.size);
    for (size_t i = 0; i < fresh.size(); ++i) {
        EXPECT_EQ(fresh[i].name, SCENES[i].name);
        EXPECT_TRUE(archived[fresh[i].name] == fresh[i].bytes) << fresh[i].name << " differs from a fresh run";
    }
}

TEST_F(ArchiveScenes, HoldTheMeshesMaterialsLightsAndCameraTheirPartsUse) {
    for (const SceneNeeds& needs : SCENES) {
        SCOPED_TRACE(needs.name);
        const World& world = scene(needs.name);
        ASSERT_NE(world.camera, nullptr);
        EXPECT_EQ(world.camera, world.cameras[0]);
        EXPECT_GE(world.camera->positionTrack->keyCount, 1u);
        EXPECT_GE(world.camera->targetTrack->keyCount, 1u);
        EXPECT_LT(world.segment->startFrame, world.segment->endFrame);
        EXPECT_GE(world.meshCount, needs.meshes);
        EXPECT_GE(world.lightCount, needs.omniLights);
        for (int32_t i = 0; i < world.lightCount; ++i) EXPECT_GE(world.lights[i]->positionTrack->keyCount, 1u);
        // The renderer never switches a light off: a third light would keep
        // shining on every later part, so only the closing scene may have one.
        if (std::strcmp(needs.name, "9d.3ds") != 0) {
            EXPECT_LE(world.lightCount + world.spotlightCount, 2);
        }

        std::set<std::string> names;
        int32_t drawn = 0;
        for (int32_t i = 0; i < world.meshCount; ++i) {
            const MeshObject& mesh = *world.meshes[i];
            EXPECT_TRUE(names.insert(mesh.name).second) << "two meshes named " << mesh.name;
            ASSERT_GT(mesh.faceCount, 0) << mesh.name;
            for (int32_t f = 0; f < mesh.faceCount; ++f) ASSERT_NE(mesh.faces[f].material, nullptr) << mesh.name;
            EXPECT_EQ(mesh.positionTrack->keyCount, 1u) << mesh.name;
            if (std::find(needs.hidden.begin(), needs.hidden.end(), i) == needs.hidden.end()) drawn += mesh.faceCount;
        }
        EXPECT_LE(drawn, TRIANGLE_BUDGET);
        for (const char* name : needs.materials) {
            const Material* material = findMaterial(world, name);
            ASSERT_NE(material, nullptr) << name;
            // Some mesh is drawn with it, or setting it would change nothing.
            bool used = false;
            for (int32_t i = 0; i < world.meshCount && !used; ++i) used = world.meshes[i]->faces[0].material == material;
            EXPECT_TRUE(used) << name;
        }
    }
}

TEST_F(ArchiveScenes, OpeningTurnsItsFirstThreeMeshesInPlaceAndRevealsNoBlackPiece) {
    const World& world = scene("test.3ds");
    ASSERT_GE(world.meshCount, 4);
    for (int i = 0; i < 3; ++i) {
        // They turn about the vertical axis through the origin.
        EXPECT_NEAR(world.meshes[i]->centre.x, 0.0f, 1.0f);
        EXPECT_NEAR(world.meshes[i]->centre.z, 0.0f, 1.0f);
    }
    // The logo takes the colour of the last mesh drawn, the piece revealed
    // last: a black piece would blank it.
    const Material* black = findMaterial(world, "BLACK WIRE");
    for (int32_t i = 4; i < world.meshCount; ++i) EXPECT_NE(world.meshes[i]->faces[0].material, black) << i;
}

TEST_F(ArchiveScenes, WaveMeshesMatchTheirRestShapesVertexForVertex) {
    const std::array<std::tuple<const char*, int, int>, 2> pairs = {{{"stil.3ds", 0, 1}, {"6d.3ds", 3, 4}}};
    for (const auto& [name, wave, rest] : pairs) {
        SCOPED_TRACE(name);
        ASSERT_GT(scene(name).meshCount, std::max(wave, rest));
        const MeshObject& w = *scene(name).meshes[wave];
        const MeshObject& r = *scene(name).meshes[rest];
        ASSERT_EQ(w.vertexCount, r.vertexCount);
        ASSERT_GT(w.vertexCount, 100);
        for (int32_t i = 0; i < w.vertexCount; ++i) {
            const Vertex& v = w.vertices[i];
            ASSERT_TRUE(v.u >= 0.0f && v.u < 1.0f && v.v >= 0.0f && v.v < 1.0f) << "vertex " << i;
            // Vertex i of the rest shape lies where vertex i of the wave mesh
            // does, so scaling it moves the wave mesh's own vertex.
            ASSERT_LE(axisGap(v.position, r.vertices[i].position), 1e-3f) << "vertex " << i;
        }
        // The swell grows about the place the wave mesh is drawn at.
        EXPECT_LE(axisGap(w.centre, r.centre), 1e-2f);
    }
}

TEST_F(ArchiveScenes, PlacedMeshesStandWhereTheirPartsMoveThem) {
    const World& rum2 = scene("rum2.3ds");
    for (int32_t i = 6; i < rum2.meshCount; ++i) {
        // The flight formula gives the offset from the mesh's own place.
        EXPECT_LT(distance(rum2.meshes[i]->centre, {0, 0, 0}), 40.0f) << rum2.meshes[i]->name;
    }
    const World& wheels = scene("2d.3ds");
    ASSERT_GE(wheels.meshCount, 5);
    for (int i = 0; i < 5; ++i) {
        // They spin about the z axis: centred on it, they spin in place.
        EXPECT_NEAR(wheels.meshes[i]->centre.x, 0.0f, 2.0f) << i;
        EXPECT_NEAR(wheels.meshes[i]->centre.y, 0.0f, 2.0f) << i;
    }
    // The stream of squares lies at x -80..40, y 0..120 about the last mesh's
    // centre: that centre puts it down the middle of the tunnel.
    const World& tunnel = scene("3d.3ds");
    ASSERT_GT(tunnel.meshCount, 0);
    EXPECT_LE(axisGap(tunnel.meshes[tunnel.meshCount - 1]->centre, {20.0f, -60.0f, 0.0f}), 1.0f);

    // Mesh i is pushed for a level sum 35(i + 1) < L < 35(i + 2), L at most
    // 256: every band can be reached and together they cover the loud end.
    const World& tumble = scene("4d.3ds");
    EXPECT_LT(35 * tumble.meshCount, 256);
    EXPECT_GE(35 * (tumble.meshCount + 1), 240);
    for (int32_t i = 0; i < tumble.meshCount; ++i) EXPECT_LT(distance(tumble.meshes[i]->centre, {0, 0, 0}), 5.0f) << i;
}

TEST_F(ArchiveScenes, SplitCageHalvesCloseIntoOneBallAndPartVertically) {
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
                const Vector p = placed(*half, half->faces[f].index[k]);
                const Vector q = placed(*half, half->faces[f].index[(k + 1) % 3]);
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

TEST_F(ArchiveScenes, ClosingSceneDefinesSeveralDrawingModesIncludingWire) {
    const World& world = scene("9d.3ds");
    std::set<uint32_t> modes;
    for (int32_t i = 0; i < world.materialCount; ++i) {
        const uint32_t mode = world.materials[i]->mode;
        EXPECT_TRUE(mode == MODE_FLAT || mode == MODE_SMOOTH || mode == MODE_SPHERE_MAP || mode == MODE_WIRE) << i;
        modes.insert(mode);
    }
    EXPECT_GE(modes.size(), 3u);
    EXPECT_EQ(modes.count(MODE_WIRE), 1u);
}

// The keyframed flights of parts 8 and 11, flown the way the parts fly them:
// World::setFrame from the part-local time (tenths of a second) times the
// part's factor, Camera::update at the whole frame. The part-local time starts
// near 376 in part 8 and 764 in part 11; the ranges reach a little beyond.
TEST_F(ArchiveScenes, CameraFlightsLoopOverTheSegmentSmoothlyAndClearOfTheSolids) {
    struct Flight {
        const char* scene;
        float factor, firstTime, lastTime;
        const char* solids;  // the camera keeps 60 units of plan distance from its vertices
    };
    for (const Flight& flight : {Flight{"5d.3ds", 4.0f, 360.0f, 560.0f, "Towers"},
                                 Flight{"8d.3ds", 5.0f, 750.0f, 1040.0f, "Pylons"}}) {
        SCOPED_TRACE(flight.scene);
        World& world = scene(flight.scene);
        Camera& camera = *world.camera;
        EXPECT_EQ(world.segment->startFrame, 0);
        for (const Track* track : {camera.positionTrack, camera.targetTrack}) {
            // A closed loop keyed over the whole segment.
            ASSERT_GE(track->keyCount, 12u);
            const Key& first = track->keys[0];
            const Key& last = track->keys[track->keyCount - 1];
            EXPECT_EQ(first.frame, world.segment->startFrame);
            EXPECT_EQ(last.frame, world.segment->endFrame);
            EXPECT_EQ(distance(first.value, last.value), 0.0f);
        }
        const MeshObject* solids = findMesh(world, flight.solids);
        ASSERT_NE(solids, nullptr);
        Vector previous{};
        float longestStep = 0.0f, shortestStep = 1e9f;
        // One animation frame per step: the camera moves on every step.
        for (float time = flight.firstTime; time <= flight.lastTime; time += 1.0f / flight.factor) {
            world.setFrame(flight.factor * time);
            camera.update(static_cast<int>(world.currentFrame));
            ASSERT_TRUE(std::isfinite(camera.position.x + camera.position.y + camera.position.z));
            EXPECT_GT(distance(camera.position, camera.target), 50.0f);
            if (time > flight.firstTime) {
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
