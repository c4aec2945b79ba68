// One steady-state frame of the plug-in: the main flight loop with runFrame on a
// cockpit camera, and the same frame as the host runs it (flight loops, camera,
// records).
#include <benchmark/benchmark.h>

#include <filesystem>
#include <fstream>

#include <unistd.h>

#include "host/host.h"
#include "shell/host_interface.h"
#include "shell/lifecycle.h"

extern "C" {
int XPluginStart(char*, char*, char*);
int XPluginEnable();
void XPluginDisable();
void XPluginStop();
void XPluginReceiveMessage(int, int, void*);
}

namespace fs = std::filesystem;

namespace {

struct LoadedPlugin {
    fs::path root;
    int id = -1;

    LoadedPlugin() {
        xphost::reset();
        root = fs::temp_directory_path() / ("vistarig-bench-" + std::to_string(::getpid()));
        fs::remove_all(root);
        fs::create_directories(root / "Aircraft/Bench");
        fs::create_directories(root / "Resources/plugins/Vistarig/lin_x64");
        std::ofstream(root / "Aircraft/Bench/Bench.acf") << "I\n";
        std::ofstream(root / "Aircraft/Bench/Vistarig_Bench.csv")
            << "Category Name,Camera Name,View ID,X,Y,Z,heading,pitch,TrackIR Enabled,Smooth Transition\n"
            << "Cockpit,Pilot,1,-0.3,1.1,-2.2,5,-4,FALSE,FALSE\n";
        xphost::setRoot(root.string());
        xphost::setUserAircraft("Aircraft/Bench/Bench.acf");
        xphost::EntryPoints entry;
        entry.start = XPluginStart;
        entry.enable = XPluginEnable;
        entry.disable = XPluginDisable;
        entry.stop = XPluginStop;
        entry.receive = reinterpret_cast<xphost::ReceiveFn>(XPluginReceiveMessage);
        id = xphost::loadPlugin(entry, (root / "Resources/plugins/Vistarig/lin_x64/Vistarig.xpl").string());
        xphost::enablePlugin(id);
        xphost::sendPlaneLoaded(0);
        xphost::runFrames(10);
    }
    ~LoadedPlugin() {
        xphost::stopAllPlugins();
        fs::remove_all(root);
    }
};

void BM_FlightLoopCockpitFrame(benchmark::State& state) {
    LoadedPlugin plugin;
    for (auto _ : state) benchmark::DoNotOptimize(mainFlightLoop(1.0f / 30.0f, 1.0f / 30.0f, 0, nullptr));
}
BENCHMARK(BM_FlightLoopCockpitFrame);

void BM_HostFrameWithPlugin(benchmark::State& state) {
    LoadedPlugin plugin;
    for (auto _ : state) xphost::runFrames(1);
}
BENCHMARK(BM_HostFrameWithPlugin);

}  // namespace
