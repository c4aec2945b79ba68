// Loading and saving a full camera set: 20 categories of 150 cameras.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "data/camera_file.h"
#include "data/camera_set.h"
#include "host/host.h"

namespace {

struct FullSet {
    std::string folder;
    std::string path;
    CameraFile file{};

    FullSet() {
        char pattern[] = "/tmp/vistarig-bench-XXXXXX";
        folder = mkdtemp(pattern);
        path = folder + "/Vistarig_Bench.csv";
        xphost::reset();
        xphost::setRoot(folder);
        clearWorkingSet();
        CameraSet& set = workingSet();
        for (int c = 0; c < kMaxCategories; ++c) {
            Category& category = set.categories[c];
            std::snprintf(category.name, sizeof category.name, "Category %d", c + 1);
            for (int i = 0; i < kMaxCameras; ++i) {
                Camera& camera = category.cameras[i];
                resetCamera(&camera);
                std::snprintf(camera.name, sizeof camera.name, "Camera %d", i + 1);
                camera.x = 0.25f * float(i), camera.y = 1.5f, camera.z = -0.125f * float(c);
                camera.heading = float(i % 360), camera.pitch = -5.0f, camera.fov = 70.0f;
                camera.external = i % 2 == 1;
                camera.smoothTransition = true;
                camera.transitionSeconds = 2.5f;
            }
            category.cameraCount = kMaxCameras;
        }
        set.categoryCount = kMaxCategories;
        relinkSet(true);
        copyText(file.path, path.c_str());
        setActiveFile(&file);
    }
    ~FullSet() {
        setActiveFile(nullptr);
        std::filesystem::remove_all(folder);
    }
};

void BM_SaveFullCameraSet(benchmark::State& state) {
    FullSet full;
    for (auto _ : state) benchmark::DoNotOptimize(saveCameraFile(false, false));
    state.counters["bytes"] = double(std::filesystem::file_size(full.path));
}
BENCHMARK(BM_SaveFullCameraSet)->Unit(benchmark::kMillisecond);

void BM_LoadFullCameraSet(benchmark::State& state) {
    FullSet full;
    saveCameraFile(false, false);
    for (auto _ : state) {
        clearWorkingSet();
        std::FILE* stream = std::fopen(full.path.c_str(), "rb");
        benchmark::DoNotOptimize(readCameraRows(stream, full.file));
        std::fclose(stream);
    }
    if (categoryCount() != kMaxCategories || workingSet().categories[19].cameraCount != kMaxCameras)
        state.SkipWithError("the set did not load whole");
}
BENCHMARK(BM_LoadFullCameraSet)->Unit(benchmark::kMillisecond);

}  // namespace
