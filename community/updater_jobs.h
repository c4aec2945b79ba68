// The updater's two jobs, run on worker threads: the check (news from "Versions.txt",
// the server's list against the local community folder) and the update (deletions,
// then downloads). A job works only on its `UpdaterJob` record, never on the simulator,
// and the panel that shows it reads the record: the counts and the state at any time,
// the lists and the error once the state says the job has finished, the news through
// its lock. The record is shared, so a panel that stops waiting for a stalled job can
// go while the job ends by itself.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

struct UpdaterJob {
    enum State { created = 0, checking = 1, checkDone = 2, updating = 3, complete = 4, canceled = 5, failed = 6 };

    std::string localFolder;
    std::string separator = "/";

    std::atomic<int32_t> state{created};
    std::atomic<int32_t> cancelRequested{0};
    std::atomic<int32_t> serverCount{0};
    std::atomic<int32_t> localCount{0};
    std::atomic<int32_t> processed{0};
    std::atomic<int32_t> refusedNames{0};  // names the server listed that could reach outside the folder
    std::atomic<int32_t> rescanWanted{0};  // the update ended; the main thread asks for a community rescan

    // Written by the check; read once the state is 2 or above.
    std::vector<std::string> filesToRemove;
    std::vector<std::string> filesToDownload;
    std::string errorText;

    // The news, shown while the check may still add to it.
    std::vector<std::string> newsLines() const;
    void addNewsLine(const std::string& line);

    // Whether the running job has ended, waiting at most `limit`.
    bool waitUntilFinished(std::chrono::milliseconds limit);
    void markRunning();
    void markFinished();

private:
    mutable std::mutex newsLock;
    std::vector<std::string> versionLines;
    std::mutex finishLock;
    std::condition_variable finishSignal;
    bool running = false;
};

// The two jobs, each run on the thread that calls it.
void runUpdaterCheck(UpdaterJob& job);
void runUpdaterUpdate(UpdaterJob& job);

// Bounds of the jobs' transfers: silence, and the whole time of one file (a camera
// file takes well under a second; a server that trickles bytes is cut off).
constexpr std::chrono::milliseconds kTransferStallLimit{10000};
constexpr std::chrono::milliseconds kFileTimeLimit{120000};
