// One frame of a message box window on Mesa's software renderer: the ImGui frame,
// the draw lists through fixed-function GL, and the host's draw pass around it
// (clearing the 1920 x 1080 screen and waiting for the pixels). The empty screen
// alone is measured too, so the box's own share is the difference.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <filesystem>

#include "host/host.h"
#include "host/windows.h"
#include "panels/messages.h"
#include "panels/msg_box_widget.h"

namespace {

std::string freshRoot() {
    const auto root = std::filesystem::temp_directory_path() / ("vistarig-bench-" + std::to_string(::getpid()));
    std::filesystem::create_directories(root);
    xphost::reset();
    xphost::setRoot(root.string());
    return root.string();
}

void BM_EmptyScreenFrame(benchmark::State& state) {
    const std::string root = freshRoot();
    for (auto _ : state) xphost::drawScreen();
    std::filesystem::remove_all(root);
}
BENCHMARK(BM_EmptyScreenFrame)->Unit(benchmark::kMicrosecond);

void BM_MessageBoxFrame(benchmark::State& state) {
    const std::string root = freshRoot();
    showMessageBoxWithCallback("Delete camera", "Do you really want to delete the camera \"Tower 3\"?", [] {});
    xphost::runFrames(3);  // opened, fonts built, fitted to the text
    for (auto _ : state) xphost::drawScreen();
    while (openMessageBoxCount() > 0) delete openMessageBox(0);
    destroyMessageBoxQueue();
    std::filesystem::remove_all(root);
}
BENCHMARK(BM_MessageBoxFrame)->Unit(benchmark::kMicrosecond);

}  // namespace
