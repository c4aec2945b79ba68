// Target tracking: what a tracking camera costs every frame (`currentTarget`, one
// distance), and a rebuild of the near list from the one-degree grid with 100,000
// targets spread over the globe, against 1,000,000 targets that all lie outside the
// cells the rebuild searches: the grid keeps both the same.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <random>

#include "data/camera_set.h"
#include "data/settings.h"
#include "data/targets.h"
#include "host/host.h"
#include "host/world.h"
#include "motion/frame_driver.h"
#include "motion/target_tracking.h"

namespace {

constexpr double kLatitude = 47.4638, kLongitude = -122.3078;  // where the aircraft stands

// A host, one target-following outside camera, and an empty grid.
void setUp() {
    xphost::reset();
    xphost::freezeAircraft(true);
    settings() = builtInSettings();
    clearWorkingSet();
    findOrAddCategory("Bench", true);
    Category& category = workingSet().categories[0];
    category.cameraCount = 1;
    resetCamera(&category.cameras[0]);
    category.cameras[0].external = true;
    category.cameras[0].targetFollowing = true;
    relinkSet(true);
    setCurrentCategoryIndex(0);
    initFrameDriver();
    clearTargets();
    double x, y, z;
    xphost::worldToLocal(kLatitude, kLongitude, 300, x, y, z);
    xphost::forceValue("sim/flightmodel/position/local_x", x);
    xphost::forceValue("sim/flightmodel/position/local_y", y);
    xphost::forceValue("sim/flightmodel/position/local_z", z);
    xphost::forceValue("sim/flightmodel/position/latitude", kLatitude);
    xphost::forceValue("sim/flightmodel/position/longitude", kLongitude);
}

// Targets uniform over the sphere; `outside` keeps them off the rows 46 to 48 north.
void fill(int count, bool outside) {
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> unit(-1.0, 1.0), longitude(-180.0, 180.0);
    char name[32];
    for (int i = 0; i < count;) {
        const double latitude = std::asin(unit(random)) * 180.0 / 3.14159265358979323846;
        if (outside && latitude > 45.0 && latitude < 50.0) continue;
        std::snprintf(name, sizeof name, "T%d", i);
        addTarget(name, "2024-01-01 00:00:00", latitude, longitude(random), 0, 0);
        ++i;
    }
}

void BM_CurrentTargetEachFrame(benchmark::State& state) {
    setUp();
    fill(100000, false);
    currentTarget();
    // A little way on from where the list was built, so that the distance is worked out.
    xphost::forceValue("sim/flightmodel/position/latitude", kLatitude + 0.01);
    for (auto _ : state) benchmark::DoNotOptimize(currentTarget());
    clearTargets();
}
BENCHMARK(BM_CurrentTargetEachFrame);

void BM_RebuildNearTargets(benchmark::State& state) {
    setUp();
    fill(static_cast<int>(state.range(0)), state.range(1) != 0);
    rebuildNearTargets();  // the Free Target comes near once
    for (auto _ : state) rebuildNearTargets();
    state.counters["listed"] = nearTargets().nearCount;
    state.counters["stored"] = targetCount();
    clearTargets();
}
BENCHMARK(BM_RebuildNearTargets)
    ->Args({100000, 0})
    ->Args({1000000, 1})
    ->ArgNames({"targets", "outside"})
    ->Unit(benchmark::kMicrosecond);

}  // namespace
