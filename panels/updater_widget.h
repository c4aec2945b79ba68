// UpdaterWidget: the "Vistarig Updates" window that brings the local community folder
// into line with the server. Opening it starts the check on a worker thread; the
// window shows the news and the counts, and offers the update, Cancel and Close. The
// jobs themselves and everything they share with the window are community/updater_jobs.
// At most one exists.
#pragma once

#include <memory>
#include <thread>

#include "community/updater_jobs.h"
#include "panels/kvt_im_window.h"

class UpdaterWidget : public KvtImWindow {
public:
    UpdaterWidget(int left, int top, int right, int bottom, int decoration);
    ~UpdaterWidget() override;

    void ConfigureContext() override;
    void BuildContents() override;
    void OnFlightLoop() override;
    void OnHidden() override { delete this; }

    // The state as the window shows it: the job's, or "Update Canceled" once the window
    // stopped waiting for a job that didn't answer its cancel.
    int shownState() const;
    const std::shared_ptr<UpdaterJob>& job() const { return work; }

    // How long Cancel and closing wait for a worker before leaving it to end alone.
    static constexpr std::chrono::milliseconds kStopWait{2000};

private:
    void startWorker(void (*run)(UpdaterJob&));
    // Waits for the worker at most kStopWait; joins it, or lets it go on alone.
    void stopWorker();
    void serveRescan();

    std::shared_ptr<UpdaterJob> work;
    std::thread worker;
    std::chrono::steady_clock::time_point cancelSince{};
    bool abandoned = false;
};

// Shows the one window, building it (and its check) when there is none.
void openUpdater();
UpdaterWidget* updaterWidget();
// Destroys the window; used when the plug-in is disabled.
void destroyUpdater();
