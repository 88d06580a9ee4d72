// What the engine and the wave-mesh parts cost per frame and per load, on the
// show's own scenes: `build/bench/engine_bench` (Google Benchmark).
#include "content/scenes/scenes.h"
#include "engine/world.h"
#include "parts/wave_map.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace {

// A World loaded from scene bytes, through a memory stream as the archive would give them.
std::unique_ptr<World> loadScene(const std::vector<uint8_t>& bytes) {
    auto world = std::make_unique<World>();
    FILE* file = fmemopen(const_cast<uint8_t*>(bytes.data()), bytes.size(), "rb");
    world->loadFromFile(file);
    std::fclose(file);
    return world;
}

void loadStilScene(benchmark::State& state) {
    const std::vector<uint8_t> bytes = makeStilScene();
    for (auto _ : state) {
        benchmark::DoNotOptimize(loadScene(bytes));
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * bytes.size()));
}
BENCHMARK(loadStilScene)->Unit(benchmark::kMillisecond);

// Part 2's per-frame deformation: wave map, displacement, normals.
void waveMeshFrame(benchmark::State& state) {
    const std::unique_ptr<World> world = loadScene(makeStilScene());
    g_waveMap = static_cast<uint8_t*>(std::malloc(WAVE_MAP_BYTES));
    for (auto _ : state) {
        fillWaveMap(0.13);
        displaceMesh(*world->meshes[0], *world->meshes[1], 0.015);
        world->meshes[0]->computeNormals();
    }
    state.counters["vertices"] = world->meshes[0]->vertexCount;
    std::free(g_waveMap);
    g_waveMap = nullptr;
}
BENCHMARK(waveMeshFrame)->Unit(benchmark::kMicrosecond);

// Part 8's camera: one frame of keyframe evaluation on its flight path.
void keyframedCamera(benchmark::State& state) {
    const std::unique_ptr<World> world = loadScene(make5dScene());
    float time = 0.0f;
    for (auto _ : state) {
        world->setFrame(time);
        world->camera->update(static_cast<int>(world->currentFrame));
        time += 1.3f;
    }
}
BENCHMARK(keyframedCamera);

}  // namespace

BENCHMARK_MAIN();
