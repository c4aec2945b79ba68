// The frame of a camera change into an orbit chain: a 37-camera orbit that ends, and
// a 36-camera ring that goes round until the depth limit, both with smooth joins;
// then the cost per frame of playing the list, which builds the legs ahead as it goes.
// Counters: frames built at the change and in the whole chain, heap left behind once
// the transition ends, the frame pool's bytes, peak resident memory.
#include <benchmark/benchmark.h>
#include <malloc.h>
#include <sys/resource.h>

#include <cmath>
#include <cstdio>

#include "data/camera_set.h"
#include "data/settings.h"
#include "host/host.h"
#include "motion/frame_driver.h"
#include "motion/transitions.h"

namespace {

// An orbit round the aircraft in steps of 10 degrees, 10 m out, swinging 3 m up and
// down once a circle, 30 seconds a circle.
void buildOrbit(bool continuous, float fps) {
    xphost::reset();
    xphost::freezeAircraft(true);
    settings() = builtInSettings();
    setControlPanelOpen(false);
    initFrameDriver();
    prime(frameDriver().frameRateFilter, 100, fps);

    clearWorkingSet();
    int index = findOrAddCategory("Orbit", true);
    Category& category = workingSet().categories[index];
    int n = continuous ? 36 : 37;
    category.cameraCount = n;
    const double rad = 3.14159265358979323846 / 180.0;
    float a = 0;
    for (int i = 0; i < n; ++i) {
        Camera& c = category.cameras[i];
        resetCamera(&c);
        std::snprintf(c.name, sizeof c.name, "Orbit - %d", i);
        float h = 270.0f - a;
        if (h < 0) h += 360.0f;
        bool transition = continuous || i > 0;
        c.linearTransition = transition;
        c.transitionSeconds = transition ? 30.0f / n : 0.0f;
        c.hidden = i > 0;
        c.x = static_cast<float>(-std::sin(h * rad) * 10.0);
        c.z = static_cast<float>(std::cos(h * rad) * 10.0);
        c.y = static_cast<float>(std::sin(a * rad) * 3.0);
        c.heading = h;
        c.external = c.autoAdvance = c.trackHeading = c.trackPitch = true;
        c.temporaryPositioning = false;
        c.smoothCameraJoins = true;
        c.initialMovementRange = 2;
        a -= 10.0f;
        if (a < 0) a += 360.0f;
    }
    if (!continuous) category.cameras[n - 1].autoAdvance = false;
    relinkSet(true);
    setCurrentCategoryIndex(index);
}

long peakResidentKb() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

// One camera change: camera 0 to camera 1 starts the chain's transition, which builds
// what the frames ahead need; freeing it stands for its end.
void changeCamera(benchmark::State& state, bool continuous) {
    float fps = static_cast<float>(state.range(0));
    buildOrbit(continuous, fps);
    Category& category = workingSet().categories[currentCategoryIndex()];
    Camera* from = &category.cameras[0];
    Camera* to = &category.cameras[1];

    // Warm-up, and the heap mark after a change and its end.
    startTransition(nullptr, from, to);
    freeTransition();
    size_t heapBefore = mallinfo2().uordblks;
    int64_t frames = 0;
    for (auto _ : state) {
        startTransition(nullptr, from, to);
        state.PauseTiming();
        frames = transitionLength(transitionState().transitionHead);
        freeTransition();
        state.ResumeTiming();
    }
    size_t heapAfter = mallinfo2().uordblks;
    state.counters["frames_built"] = static_cast<double>(frames);
    state.counters["heap_growth_bytes"] = static_cast<double>(heapAfter) - static_cast<double>(heapBefore);
    state.counters["frames_alive"] = static_cast<double>(framesAllocated());
    state.counters["pool_bytes"] = static_cast<double>(framePoolCapacity()) * sizeof(TransitionFrame);
    state.counters["peak_rss_kb"] = static_cast<double>(peakResidentKb());
    // The frames of the whole chain, as a check that it is the chain of before; its
    // memory goes back at once.
    TransitionFrame* whole = buildTransition(from, to);
    state.counters["chain_frames"] = static_cast<double>(transitionLength(whole));
    freeTransitionList(whole);
    releaseFramePool();
}

void BM_CameraChangeIntoOrbit(benchmark::State& state) { changeCamera(state, false); }
void BM_CameraChangeIntoContinuousOrbit(benchmark::State& state) { changeCamera(state, true); }

// Playing the list: one frame popped per simulator frame.
void BM_TransitionFramePlayback(benchmark::State& state) {
    buildOrbit(true, 30.0f);
    Category& category = workingSet().categories[currentCategoryIndex()];
    selectCameraRecord(&category.cameras[1]);
    Camera* current = &category.cameras[1];
    startTransition(nullptr, &category.cameras[0], current);
    for (auto _ : state) {
        if (!transitionRunning()) {
            state.PauseTiming();
            startTransition(nullptr, &category.cameras[0], current);
            state.ResumeTiming();
        }
        stepTransition(current);
        benchmark::DoNotOptimize(frameDriver().framePose);
    }
    freeTransition();
}

BENCHMARK(BM_CameraChangeIntoOrbit)->Arg(30)->Arg(60)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CameraChangeIntoContinuousOrbit)->Arg(30)->Arg(60)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TransitionFramePlayback);

}  // namespace
