// The Mini Control Panel's ImGui build of one frame, without GL, with a full camera
// row of 150 cameras (which wraps over several lines of a 1920-wide monitor).
#include <benchmark/benchmark.h>
#include <imgui.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>

#include "data/camera_set.h"
#include "data/settings.h"
#include "host/host.h"
#include "panels/mini_control_panel_widget.h"

namespace {

void BM_MiniControlPanelImGuiBuild(benchmark::State& state) {
    const auto root = std::filesystem::temp_directory_path() / ("vistarig-bench-mini-" + std::to_string(::getpid()));
    std::filesystem::create_directories(root / "Resources/fonts");
    const char* font = "/usr/share/fonts/truetype/roboto/unhinted/RobotoTTF/Roboto-Regular.ttf";
    if (std::filesystem::exists(font) && !std::filesystem::exists(root / "Resources/fonts/Roboto-Regular.ttf"))
        std::filesystem::copy_file(font, root / "Resources/fonts/Roboto-Regular.ttf");
    xphost::reset();
    xphost::setRoot(root.string());
    clearWorkingSet();
    CameraSet& set = workingSet();
    set.categoryCount = 2;
    for (int c = 0; c < 2; ++c) {
        Category& category = set.categories[c];
        std::snprintf(category.name, sizeof category.name, "Category %d", c + 1);
        category.cameraCount = c == 0 ? kMaxCameras : 1;
        for (int i = 0; i < category.cameraCount; ++i) {
            std::snprintf(category.cameras[i].name, sizeof category.cameras[i].name, "Camera %d", i + 1);
            category.cameras[i].viewId = i < 20 ? i + 1 : 0;
        }
    }
    relinkSet(false);
    MiniControlPanelAction(1);
    xphost::runFrames(3);  // fonts built, layout settled
    MiniControlPanelWidget* panel = miniControlPanelWidget();
    for (auto _ : state) {
        ImGui::SetCurrentContext(panel->GetContext());
        ImGuiIO& io = ImGui::GetIO();
        io.DisplaySize = ImVec2(1920, 150);
        io.DeltaTime = 1.0f / 30.0f;
        ImGui::NewFrame();
        ImGui::SetNextWindowPos(ImVec2(0, 0), ImGuiCond_Always);
        ImGui::SetNextWindowSize(io.DisplaySize, ImGuiCond_Always);
        ImGui::Begin(panel->GetTitle().c_str(), nullptr,
                     ImGuiWindowFlags_NoTitleBar | ImGuiWindowFlags_NoResize | ImGuiWindowFlags_MenuBar);
        panel->BuildContents();
        ImGui::End();
        ImGui::Render();
    }
    MiniControlPanelAction(4);
    std::filesystem::remove_all(root);
}
BENCHMARK(BM_MiniControlPanelImGuiBuild)->Unit(benchmark::kMicrosecond);

}  // namespace
