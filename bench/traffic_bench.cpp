// Other aircraft: one Traffic Display frame with 60 aircraft in the list (the ImGui
// build without GL, the list rebuilt as every frame does), and the camera calculation
// of an outside camera riding a followed plane among them.
#include <benchmark/benchmark.h>
#include <imgui.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>

#include "data/camera_set.h"
#include "data/settings.h"
#include "host/host.h"
#include "host/traffic.h"
#include "motion/ai_traffic.h"
#include "motion/camera_pose.h"
#include "motion/frame_driver.h"
#include "panels/traffic_display_widget.h"

namespace {

// 60 aircraft on a spiral around the user's, each with a flight ID; an outside camera
// under control following one of them.
Camera* sixtyPlanes() {
    xphost::reset();
    xphost::freezeAircraft(true);
    settings() = builtInSettings();
    initFrameDriver();
    initCameraPose();
    initAiTraffic();
    xphost::installTraffic(xphost::TrafficSource::Tcas);
    for (int i = 0; i < 60; ++i) {
        xphost::TrafficPath path;
        path.startX = 300.0 * i * ((i % 2) ? 1 : -1);
        path.startZ = 170.0 * (i % 7) - 500.0;
        path.startY = 1000 + 20 * i;
        path.headingDeg = static_cast<float>(i * 6);
        path.turnRate = (i % 3) - 1.0f;
        char flightId[16];
        std::snprintf(flightId, sizeof flightId, "BNC%03d", i);
        xphost::addTrafficAircraft(flightId, 0x400 + i, path);
    }
    clearWorkingSet();
    findOrAddCategory("Outside", true);
    Category& category = workingSet().categories[0];
    category.cameraCount = 1;
    resetCamera(&category.cameras[0]);
    Camera* camera = &category.cameras[0];
    camera->external = true;
    camera->y = 4;
    camera->z = 30;
    relinkSet(true);
    setCurrentCategoryIndex(0);
    frameDriver().cameraControlled = true;
    aiPlaneSelection() = AiPlaneSelection();
    toggleAiPerspective();
    selectAiPlane(37);
    return camera;
}

void BM_TrafficDisplayImGuiBuild(benchmark::State& state) {
    const auto root = std::filesystem::temp_directory_path() / ("vistarig-bench-traffic-" + std::to_string(::getpid()));
    std::filesystem::create_directories(root / "Resources/fonts");
    const char* font = "/usr/share/fonts/truetype/roboto/unhinted/RobotoTTF/Roboto-Regular.ttf";
    if (std::filesystem::exists(font) && !std::filesystem::exists(root / "Resources/fonts/Roboto-Regular.ttf"))
        std::filesystem::copy_file(font, root / "Resources/fonts/Roboto-Regular.ttf");
    sixtyPlanes();
    xphost::setRoot(root.string());
    toggleTrafficDisplay();
    xphost::runFrames(3);  // fonts built, layout settled
    TrafficDisplayWidget* panel = trafficDisplayWidget();
    for (auto _ : state) {
        ImGui::SetCurrentContext(panel->GetContext());
        ImGuiIO& io = ImGui::GetIO();
        io.DisplaySize = ImVec2(300, 500);
        io.DeltaTime = 1.0f / 30.0f;
        ImGui::NewFrame();
        ImGui::SetNextWindowPos(ImVec2(0, 0), ImGuiCond_Always);
        ImGui::SetNextWindowSize(io.DisplaySize, ImGuiCond_Always);
        ImGui::Begin(panel->GetTitle().c_str(), nullptr, ImGuiWindowFlags_NoTitleBar | ImGuiWindowFlags_NoResize);
        panel->BuildContents();
        ImGui::End();
        ImGui::Render();
    }
    state.counters["planes"] = trafficList().count;
    destroyTrafficDisplay();
    std::filesystem::remove_all(root);
}
BENCHMARK(BM_TrafficDisplayImGuiBuild)->Unit(benchmark::kMicrosecond);

void BM_CameraFrameOnFollowedPlane(benchmark::State& state) {
    Camera* camera = sixtyPlanes();
    CameraPose in;
    in.y = camera->y;
    in.z = camera->z;
    CameraPose out;
    for (auto _ : state) {
        externalPose(camera, out, in);
        benchmark::DoNotOptimize(out);
    }
    state.counters["followed"] = aiPlaneSelection().index;
}
BENCHMARK(BM_CameraFrameOnFollowedPlane);

}  // namespace
