// The Control Panel's cost per frame: the whole draw pass with the panel on Mesa's
// software renderer (compare BM_EmptyScreenFrame for the screen alone; BM_ControlPanelShare
// gives the panel's share of the process's processor time, BM_ControlPanelOwnFrame its
// own draw callback until its pixels are made), and the ImGui
// build of one panel frame without any GL, with and without the UI driver's capture;
// the panes hold two categories of a dozen cameras and show the advanced options.
#include <benchmark/benchmark.h>
#include <imgui.h>
#include <time.h>
#include <unistd.h>

#include <filesystem>

#include "data/camera_set.h"
#include "data/set_editing.h"
#include "data/settings.h"
#include "host/host.h"
#include "host/windows.h"
#include "panels/control_panel_widget.h"
#include "panels/ui_hooks.h"

namespace {

std::string panelRoot(bool solid) {
    const auto root = std::filesystem::temp_directory_path() / ("vistarig-bench-cp-" + std::to_string(::getpid()));
    std::filesystem::create_directories(root / "Resources/fonts");
    const char* font = "/usr/share/fonts/truetype/roboto/unhinted/RobotoTTF/Roboto-Regular.ttf";
    if (std::filesystem::exists(font) && !std::filesystem::exists(root / "Resources/fonts/Roboto-Regular.ttf"))
        std::filesystem::copy_file(font, root / "Resources/fonts/Roboto-Regular.ttf");
    xphost::reset();
    xphost::setRoot(root.string());
    settings().ENABLE_SOLID_CONTROL_PANEL = solid;
    settings().USE_SMALL_FONT = false;
    // The panes filled: two categories of a dozen cameras, the advanced options shown.
    newAircraftSet();
    for (int i = 0; i < 11; ++i) addCamera();
    addCategory();
    for (int i = 0; i < 11; ++i) addCamera();
    ControlPanelAction(1);
    controlPanelWidget()->showAdvanced = true;
    xphost::runFrames(3);  // fonts built, layout settled
    return root.string();
}

void finish(const std::string& root) {
    ControlPanelAction(4);
    std::filesystem::remove_all(root);
}

void BM_ControlPanelFrame(benchmark::State& state) {
    const std::string root = panelRoot(state.range(0) != 0);
    for (auto _ : state) xphost::drawScreen();
    finish(root);
}
BENCHMARK(BM_ControlPanelFrame)->Arg(1)->Arg(0)->ArgName("solid")->Unit(benchmark::kMicrosecond);

double processCpuMs() {
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_nsec) / 1e6;
}

// The panel's own share of a frame in processor time of the whole process, Mesa's
// rasterizer threads included: the same screen drawn with the panel shown and hidden,
// alternately, so that the world behind it and a busy machine cancel out.
void BM_ControlPanelShare(benchmark::State& state) {
    const std::string root = panelRoot(state.range(0) != 0);
    ControlPanelWidget* panel = controlPanelWidget();
    double shown = 0, hidden = 0;
    for (auto _ : state) {
        const double a = processCpuMs();
        xphost::drawScreen();
        const double b = processCpuMs();
        panel->SetVisible(false);
        xphost::drawScreen();
        const double c = processCpuMs();
        panel->SetVisible(true);
        shown += b - a;
        hidden += c - b;
    }
    const double n = static_cast<double>(state.iterations());
    state.counters["shown_cpu_ms"] = shown / n;
    state.counters["hidden_cpu_ms"] = hidden / n;
    state.counters["panel_cpu_ms"] = (shown - hidden) / n;
    finish(root);
}
BENCHMARK(BM_ControlPanelShare)->Arg(1)->Arg(0)->ArgName("solid")->Unit(benchmark::kMillisecond)->Iterations(100);

// One Control Panel frame as the panel itself costs it: its draw callback, the ImGui
// build and the GL drawing, until Mesa has made every pixel (GL is finished before and
// after it), by the clock and in processor time with the rasterizer threads.
void BM_ControlPanelOwnFrame(benchmark::State& state) {
    const std::string root = panelRoot(state.range(0) != 0);
    void* id = controlPanelWidget()->GetWindowId();
    xphost::setTimingWindowDraws(true);
    double wall = 0, cpu = 0;
    for (auto _ : state) {
        xphost::drawScreen();
        state.PauseTiming();
        for (const xphost::WindowInfo& w : xphost::windows())
            if (w.id == id) wall += w.lastDrawWallMs, cpu += w.lastDrawCpuMs;
        state.ResumeTiming();
    }
    const double n = static_cast<double>(state.iterations());
    state.counters["panel_wall_ms"] = wall / n;
    state.counters["panel_cpu_ms"] = cpu / n;
    xphost::setTimingWindowDraws(false);
    finish(root);
}
BENCHMARK(BM_ControlPanelOwnFrame)->Arg(1)->Arg(0)->ArgName("solid")->Unit(benchmark::kMillisecond)->Iterations(200);

// One ImGui frame of the panel as its window builds it, without rendering.
void buildOnce(ControlPanelWidget& panel, bool capture) {
    ImGui::SetCurrentContext(panel.GetContext());
    ImGuiIO& io = ImGui::GetIO();
    io.DisplaySize = ImVec2(900, 805);
    io.DeltaTime = 1.0f / 30.0f;
    if (capture) uiHooksFrameBegin(panel.GetContext(), panel.GetWindowId(), 0, 805);
    ImGui::NewFrame();
    ImGui::SetNextWindowPos(ImVec2(0, 0), ImGuiCond_Always);
    ImGui::SetNextWindowSize(io.DisplaySize, ImGuiCond_Always);
    ImGui::Begin(panel.GetTitle().c_str(), nullptr,
                 ImGuiWindowFlags_NoTitleBar | ImGuiWindowFlags_NoResize | ImGuiWindowFlags_NoCollapse |
                     ImGuiWindowFlags_MenuBar);
    if (capture) uiHooksWindowBegun();
    panel.BuildContents();
    ImGui::End();
    if (capture) uiHooksFrameEnd();
    ImGui::Render();
}

void BM_ControlPanelImGuiBuild(benchmark::State& state) {
    const bool capture = state.range(0) != 0;
    const std::string root = panelRoot(true);
    ControlPanelWidget* panel = controlPanelWidget();
    for (auto _ : state) buildOnce(*panel, capture);
    const ImDrawData* data = ImGui::GetDrawData();
    int commands = 0;
    for (int i = 0; data && i < data->CmdListsCount; ++i) commands += data->CmdLists[i]->CmdBuffer.Size;
    state.counters["draw_commands"] = commands;
    state.counters["vertices"] = data ? data->TotalVtxCount : 0;
    finish(root);
}
BENCHMARK(BM_ControlPanelImGuiBuild)->Arg(0)->Arg(1)->ArgName("driver_capture")->Unit(benchmark::kMicrosecond);

}  // namespace
