#include "panels/updater_widget.h"

#include <imgui.h>

#include <cstdio>

#include "XPLMDisplay.h"
#include "data/aircraft_files.h"
#include "data/plugin_state.h"
#include "data/settings.h"
#include "panels/msg_box_widget.h"
#include "platform/clipboard.h"
#include "platform/runtime.h"

namespace {
UpdaterWidget* instance = nullptr;
}

UpdaterWidget* updaterWidget() { return instance; }

void openUpdater() {
    if (instance) {
        instance->SetVisible(true);
        return;
    }
    // The caller may be in the middle of drawing another panel.
    ImGuiContext* saved = ImGui::GetCurrentContext();
    int left = 0, top = 0, right = 0, bottom = 0;
    XPLMGetScreenBoundsGlobal(&left, &top, &right, &bottom);
    instance = new UpdaterWidget(left + 175, top - 75, left + 875, top - 425, 1);
    instance->Init();
    instance->PlaceOnPrimaryMonitor();
    instance->SetVisible(true);
    ImGui::SetCurrentContext(saved);
}

void destroyUpdater() {
    if (!instance) return;
    ImGuiContext* saved = ImGui::GetCurrentContext();
    ImGuiContext* own = instance->GetContext();
    delete instance;
    ImGui::SetCurrentContext(saved == own ? nullptr : saved);
}

UpdaterWidget::UpdaterWidget(int left_, int top_, int right_, int bottom_, int decoration_)
    : KvtImWindow(left_, top_, right_, bottom_, decoration_), work(std::make_shared<UpdaterJob>()) {
    SetTitle("Vistarig Updates");
    work->localFolder = communityAircraftFolder();
    work->separator = "/";
    startWorker(runUpdaterCheck);
}

UpdaterWidget::~UpdaterWidget() {
    if (instance == this) instance = nullptr;
    stopWorker();
    serveRescan();
}

void UpdaterWidget::startWorker(void (*run)(UpdaterJob&)) {
    work->markRunning();
    std::shared_ptr<UpdaterJob> job = work;
    worker = std::thread([job, run] {
        run(*job);
        job->markFinished();
    });
}

void UpdaterWidget::stopWorker() {
    if (!worker.joinable()) return;
    work->cancelRequested = 1;
    if (work->waitUntilFinished(kStopWait)) {
        worker.join();
    } else {
        // A server that doesn't answer may not hold the simulator: the job owns its
        // record and ends by itself once the server answers or drops the connection.
        worker.detach();
        abandoned = true;
    }
}

void UpdaterWidget::serveRescan() {
    // The workers don't touch the plug-in's state: the request is served here, on the main thread.
    if (work->rescanWanted.exchange(0)) requestCommunityRescan();
}

int UpdaterWidget::shownState() const { return abandoned ? UpdaterJob::canceled : work->state.load(); }

void UpdaterWidget::OnFlightLoop() {
    serveRescan();
    // Cancel that the worker hasn't answered in time: stop waiting for it.
    if (!abandoned && cancelSince != std::chrono::steady_clock::time_point{} && worker.joinable()) {
        if (work->waitUntilFinished(std::chrono::milliseconds(0))) {
            worker.join();
            cancelSince = {};
        } else if (std::chrono::steady_clock::now() - cancelSince >= kStopWait) {
            worker.detach();
            abandoned = true;
        }
    }
}

void UpdaterWidget::ConfigureContext() {
    const std::string path = panelFontPath();
    if (std::FILE* probe = std::fopen(path.c_str(), "rb")) {
        std::fclose(probe);
        ImGui::GetIO().Fonts->AddFontFromFileTTF(path.c_str(), settings().USE_SMALL_FONT ? 14.0f : 18.0f);
    }
}

void UpdaterWidget::BuildContents() {
    const int state = shownState();
    UpdaterJob& job = *work;
    if (state < UpdaterJob::updating) {
        ImGui::Text("Your are currently running Vistarig %s", versionText());
        ImGui::Spacing();
        const std::vector<std::string> news = job.newsLines();
        for (size_t i = 0; i < news.size(); ++i) {
            if (news[i].find("https://") != std::string::npos) {
                char label[32];
                std::snprintf(label, sizeof label, "Copy##Copy_%d", static_cast<int>(i));
                if (ImGui::Button(label)) {
                    // Without a system clipboard the text stays at least in the panels' own.
                    if (!copyTextToClipboard(news[i].c_str())) ImGui::SetClipboardText(news[i].c_str());
                }
                ImGui::SameLine();
                ShowHelpMarker("Use the Copy Button to copy the URL to the clip board and then paste it into your browser");
            }
            ImGui::TextUnformatted(news[i].c_str());
        }
        if (!news.empty()) ImGui::Spacing();
        ImGui::Text("Community Aircraft Files Server Count: %d", job.serverCount.load());
        ImGui::Text("Community Aircraft Files Local Count: %d", job.localCount.load());
        if (state == UpdaterJob::checkDone) {
            ImGui::Spacing();
            if (job.refusedNames > 0)
                ImGui::Text("Server Files Refused (unsafe names): %d", job.refusedNames.load());
            ImGui::Text("Local Files to be Removed: %d", static_cast<int>(job.filesToRemove.size()));
            ImGui::Text("Server Files to be Downloaded: %d", static_cast<int>(job.filesToDownload.size()));
        }
    } else if (state == UpdaterJob::updating) {
        ImGui::TextUnformatted("Updating Local Community Aircraft Files...");
        const int total = static_cast<int>(job.filesToRemove.size() + job.filesToDownload.size());
        const int done = job.processed.load();
        char overlay[32];
        std::snprintf(overlay, sizeof overlay, "%d/%d", done, total);
        ImGui::ProgressBar(total > 0 ? static_cast<float>(done) / static_cast<float>(total) : 0.0f, ImVec2(-1, 0),
                           overlay);
    } else if (state == UpdaterJob::complete) {
        ImGui::TextUnformatted("Update Complete");
    } else if (state == UpdaterJob::canceled) {
        ImGui::TextUnformatted("Update Canceled");
    } else if (state == UpdaterJob::failed) {
        ImGui::PushTextWrapPos(0.0f);
        ImGui::Text("Update Error: %s", job.errorText.c_str());
        ImGui::PopTextWrapPos();
    }

    const ImVec2 size = ImGui::GetWindowSize();
    if (state == UpdaterJob::checkDone && (!job.filesToRemove.empty() || !job.filesToDownload.empty())) {
        ImGui::SetCursorPos(ImVec2(size.x - 250, size.y - 40));
        if (ImGui::Button("Update Community Files")) {
            if (worker.joinable()) worker.join();  // the check has ended: its state says so
            startWorker(runUpdaterUpdate);
            return;
        }
    }
    ImGui::SetCursorPos(ImVec2(size.x - 70, size.y - 40));
    if (state == UpdaterJob::updating) {
        if (ImGui::Button("Cancel")) {
            job.cancelRequested = 1;
            cancelSince = std::chrono::steady_clock::now();
        }
    } else if (state >= UpdaterJob::checkDone) {
        if (ImGui::Button("Close")) RequestDestroy();
    }
}
