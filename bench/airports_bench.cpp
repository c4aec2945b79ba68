// Airports: the search of a world-sized apt.dat for an airport it doesn't hold, beside
// grep on the same file in the same run; building the cameras of the largest sample
// airport; the nearby airports of a world-sized navigation database; the nearest of
// 3,000 airport cameras.
#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>

#include "airports/airport_cameras.h"
#include "airports/airport_files.h"
#include "airports/apt_dat.h"
#include "data/aircraft_files.h"
#include "data/camera_file.h"
#include "data/camera_set.h"
#include "host/host.h"
#include "host/world.h"

namespace fs = std::filesystem;

namespace {

std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

// About 400 MB of real airports: the gateway sample written again and again, each
// copy's IDs made fresh so that no airport repeats.
struct WorldAptDat {
    std::string path;
    WorldAptDat() {
        path = fs::temp_directory_path() / ("vistarig-world-apt-" + std::to_string(::getpid()) + ".dat");
        std::string sample = readFile(std::string(VISTARIG_TEST_DATA) + "/apt/gateway-sample/apt.dat");
        size_t body = sample.find("\n1 ");
        std::string airports = sample.substr(body == std::string::npos ? 0 : body + 1);
        size_t end = airports.rfind("\n99");
        if (end != std::string::npos) airports.resize(end + 1);
        std::ofstream out(path, std::ios::binary);
        out << "I\n1100 Version\n\n";
        size_t written = 0;
        for (int copy = 0; written < (size_t(400) << 20); ++copy) {
            std::string renamed = airports;
            std::string tag = "Q" + std::to_string(copy) + "_";
            for (size_t at = 0; (at = renamed.find("\n1 ", at)) != std::string::npos; at += 3) {
                size_t id = renamed.find_first_not_of(' ', at + 3);
                for (int field = 0; field < 3 && id != std::string::npos; ++field)
                    id = renamed.find_first_not_of(' ', renamed.find(' ', id));
                if (id != std::string::npos) renamed.insert(id, tag);
            }
            out << renamed;
            written += renamed.size();
        }
        out << "99\n";
    }
    ~WorldAptDat() { fs::remove(path); }
};

long peakKilobytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

void BM_FindAbsentAirportInWorldAptDat(benchmark::State& state) {
    static WorldAptDat world;
    long before = peakKilobytes();
    for (auto _ : state) {
        std::FILE* file = std::fopen(world.path.c_str(), "rb");
        std::unique_ptr<AirportScenery> found(readAptDat(file, "ZZZZ9"));
        std::fclose(file);
        benchmark::DoNotOptimize(found.get());
    }
    state.counters["MB"] = double(fs::file_size(world.path)) / 1048576.0;
    state.counters["peak_growth_kB"] = double(peakKilobytes() - before);
}
BENCHMARK(BM_FindAbsentAirportInWorldAptDat)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly();

void BM_GrepAbsentAirportInWorldAptDat(benchmark::State& state) {
    static WorldAptDat world;
    std::string command = "grep -c -F ZZZZ9 '" + world.path + "' > /dev/null";
    for (auto _ : state) benchmark::DoNotOptimize(std::system(command.c_str()));
}
BENCHMARK(BM_GrepAbsentAirportInWorldAptDat)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly();

// A tree with KSYR's scenery and an airport set open for it.
struct AirportTree {
    std::string root;
    AirportTree() {
        root = fs::temp_directory_path() / ("vistarig-bench-airport-" + std::to_string(::getpid()) + "/");
        fs::create_directories(root + "Custom Scenery/KSYR/Earth nav data");
        fs::create_directories(root + "Resources/plugins/Vistarig/MyAirportCameras");
        fs::create_directories(root + "Resources/plugins/Vistarig/MyTargets");
        fs::copy_file(std::string(VISTARIG_TEST_DATA) + "/apt/KSYR/apt.dat",
                      root + "Custom Scenery/KSYR/Earth nav data/apt.dat", fs::copy_options::overwrite_existing);
        std::ofstream(root + "Custom Scenery/scenery_packs.ini") << "SCENERY_PACK Custom Scenery/KSYR/\n";
        xphost::reset();
        xphost::setRoot(root);
        xphost::setReferencePoint(43.1112, -76.1063);
        overridePluginDirectory((root + "Resources/plugins/Vistarig/").c_str());
        setActiveFile(nullptr);
        clearWorkingSet();
        buildCameraFileList();
        loadCameraFile(openAirportFile("KSYR"));
    }
    ~AirportTree() {
        freeCameraFileList();
        setActiveFile(nullptr);
        overridePluginDirectory(nullptr);
        fs::remove_all(root);
    }
};

void BM_CreateCamerasOfKsyr(benchmark::State& state) {
    AirportTree tree;
    AirportCameraOptions options;
    options.createTargets = false;
    for (auto _ : state) createAirportCameras(options);
    state.counters["cameras"] = double(workingSet().categories[0].cameraCount);
}
BENCHMARK(BM_CreateCamerasOfKsyr)->Unit(benchmark::kMillisecond);

void BM_NearbyAirportsOfAWorldDatabase(benchmark::State& state) {
    xphost::reset();
    xphost::clearNavData();
    // 38,000 airports over the globe, some 200 of them within 10 nautical miles.
    for (int64_t i = 0; i < 38000; ++i) {
        double latitude = -60.0 + 120.0 * double((i * 7919) % 38000) / 38000.0;
        double longitude = -180.0 + 360.0 * double((i * 104729) % 38000) / 38000.0;
        xphost::addAirport("A" + std::to_string(i), "Airport", latitude, longitude, 100);
    }
    xphost::forceValue("sim/flightmodel/position/latitude", 10.0);
    xphost::forceValue("sim/flightmodel/position/longitude", 10.0);
    for (auto _ : state) benchmark::DoNotOptimize(nearbyAirports(true).size());
}
BENCHMARK(BM_NearbyAirportsOfAWorldDatabase)->Unit(benchmark::kMillisecond);

void BM_NearestOf3000AirportCameras(benchmark::State& state) {
    AirportTree tree;
    CameraSet& set = workingSet();
    set.categoryCount = kMaxCategories;
    for (int c = 0; c < kMaxCategories; ++c) {
        Category& category = set.categories[c];
        std::snprintf(category.name, sizeof category.name, "Category %d", c);
        category.cameraCount = kMaxCameras;
        for (int i = 0; i < kMaxCameras; ++i) {
            Camera& camera = category.cameras[i];
            resetCamera(&camera);
            camera.freeCamera = camera.external = true;
            camera.x = float(c * 100 - i), camera.y = 10, camera.z = float(i * 37 % 500);
        }
    }
    relinkSet(true);
    for (auto _ : state) selectNearestAirportCamera();
}
BENCHMARK(BM_NearestOf3000AirportCameras)->Unit(benchmark::kMicrosecond);

}  // namespace
