#include "community/updater_jobs.h"

#include <cstdio>

#include "community/community_names.h"
#include "community/ftp_session.h"
#include "community/server_text.h"
#include "platform/file_system.h"

std::vector<std::string> UpdaterJob::newsLines() const {
    std::lock_guard<std::mutex> hold(newsLock);
    return versionLines;
}

void UpdaterJob::addNewsLine(const std::string& line) {
    std::lock_guard<std::mutex> hold(newsLock);
    versionLines.push_back(line);
}

bool UpdaterJob::waitUntilFinished(std::chrono::milliseconds limit) {
    std::unique_lock<std::mutex> hold(finishLock);
    return finishSignal.wait_for(hold, limit, [this] { return !running; });
}

void UpdaterJob::markRunning() {
    std::lock_guard<std::mutex> hold(finishLock);
    running = true;
}

void UpdaterJob::markFinished() {
    std::lock_guard<std::mutex> hold(finishLock);
    running = false;
    finishSignal.notify_all();
}

namespace {

constexpr int kReadBuffer = 2000;

std::string connectFailure(int failedStep, const std::string& reply) {
    if (failedStep == 1) return "Unable to connect to the community file server: " + reply;
    return "Unable to authenticate on the community file server, error: " + reply;
}

void readNews(UpdaterJob& job, netbuf* control) {
    netbuf* data = nullptr;
    if (!FtpAccess(kServerNewsPath, FTPLIB_FILE_READ, FTPLIB_ASCII, control, &data)) {
        job.errorText = "Unable to retrieve the Vistarig version list: " + lastReply(control);
        return;
    }
    NewsText news;
    char buffer[kReadBuffer];
    size_t shown = 0;
    int got;
    while ((got = FtpRead(buffer, kReadBuffer, data)) > 0) {
        const bool more = feedNews(news, buffer, static_cast<size_t>(got));
        for (; shown < news.lines.size(); ++shown) job.addNewsLine(news.lines[shown]);
        if (!more) break;
    }
    finishNews(news);
    for (; shown < news.lines.size(); ++shown) job.addNewsLine(news.lines[shown]);
    if (news.splitter.stopped || news.splitter.overlongLines)
        job.addNewsLine("(The rest of the news was too long to show.)");
    FtpClose(data);
}

// The listing; false when it couldn't be trusted (then errorText says why).
bool readListing(UpdaterJob& job, netbuf* control, SyncMap& server) {
    netbuf* data = nullptr;
    if (!FtpAccess(kServerFolder, FTPLIB_DIR, FTPLIB_ASCII, control, &data)) {
        job.errorText = "Unable to retrieve the list of community file, error: " + lastReply(control);
        return false;
    }
    ServerListing listing;
    char buffer[kReadBuffer];
    int got;
    while ((got = FtpRead(buffer, kReadBuffer, data)) > 0)
        if (!feedListing(listing, buffer, static_cast<size_t>(got))) break;
    finishListing(listing);
    FtpClose(data);
    job.serverCount = listing.serverCount;
    job.refusedNames = listing.unsafeNames;
    if (listing.tooLong) {
        // Half a list would delete the local files it left out.
        job.errorText = "The list of community files is longer than " + std::to_string(ServerListing::kMaxNames) +
                        " names; nothing was changed.";
        return false;
    }
    server = std::move(listing.files);
    return true;
}

void readLocalFolder(UpdaterJob& job, SyncMap& local) {
    int count = 0;
    listFolder(job.localFolder.c_str(), [&](const char* name, EntryKind) {
        // Plain files only: a link or a folder is left alone.
        if (entryKind((job.localFolder + job.separator + name).c_str()) != EntryKind::file) return true;
        ++count;
        insertSyncEntry(local, name);
        return true;
    });
    job.localCount = count;
}

std::string guardText(int reason) {
    switch (reason) {
        case TransferGuard::stalled: return " (the server stopped sending)";
        case TransferGuard::tooLarge: return " (the file is larger than a camera file can be)";
        case TransferGuard::overDeadline: return " (the file took too long)";
        default: return "";
    }
}

}  // namespace

void runUpdaterCheck(UpdaterJob& job) {
    ignoreBrokenPipeOnThisThread();
    job.filesToRemove.clear();
    job.filesToDownload.clear();
    job.serverCount = 0;
    job.localCount = 0;
    job.state = UpdaterJob::checking;

    SyncMap server, local;
    int failedStep = 0;
    std::string reply;
    if (netbuf* control = openCommunitySession(failedStep, reply)) {
        TransferGuard guard;
        guard.cancel = &job.cancelRequested;
        guard.stallLimit = kTransferStallLimit;
        guardTransfers(control, guard);
        readNews(job, control);
        readListing(job, control, server);
        closeCommunitySession(control);
    } else {
        job.errorText = connectFailure(failedStep, reply);
    }
    // Also after a failed connection, so that the local count shows.
    readLocalFolder(job, local);

    for (auto& [key, slot] : server) {
        auto found = local.find(key);
        if (found == local.end()) continue;
        slot.matched = true;
        found->second.matched = true;
    }
    for (const auto& [key, slot] : server)
        if (!slot.matched) job.filesToDownload.push_back(slot.entry.name);
    for (const auto& [key, slot] : local)
        if (!slot.matched) job.filesToRemove.push_back(slot.entry.name);

    int32_t end = job.cancelRequested ? UpdaterJob::canceled : UpdaterJob::checkDone;
    if (!job.errorText.empty()) end = UpdaterJob::failed;
    job.cancelRequested = 0;
    job.state = end;
}

void runUpdaterUpdate(UpdaterJob& job) {
    ignoreBrokenPipeOnThisThread();
    job.processed = 0;
    job.state = UpdaterJob::updating;
    auto finish = [&](int32_t end) {
        if (!job.errorText.empty()) end = UpdaterJob::failed;
        job.cancelRequested = 0;
        job.state = end;
    };

    for (const std::string& name : job.filesToRemove) {
        if (job.cancelRequested) return finish(UpdaterJob::canceled);
        std::remove((job.localFolder + job.separator + name).c_str());
        ++job.processed;
    }
    if (job.cancelRequested) return finish(UpdaterJob::canceled);

    if (!job.filesToDownload.empty()) {
        makeFolder(job.localFolder.c_str());
        int failedStep = 0;
        std::string reply;
        if (netbuf* control = openCommunitySession(failedStep, reply)) {
            TransferGuard guard;
            guard.cancel = &job.cancelRequested;
            guard.stallLimit = kTransferStallLimit;
            guard.maxBytes = kMaxCameraFileBytes;
            guardTransfers(control, guard);
            // A download lands under a name of its own and takes its real name only when
            // whole, so a broken transfer leaves no partial camera file behind.
            static std::atomic<int> downloads{0};
            const std::string temporary =
                job.localFolder + job.separator + ".download-" + std::to_string(++downloads) + ".part";
            for (const std::string& name : job.filesToDownload) {
                if (job.cancelRequested) break;
                const std::string remote = kServerFilePrefix + name;
                guard.deadline = std::chrono::steady_clock::now() + kFileTimeLimit;
                // Image mode: ftplib reads ASCII data a whole line at a time, so a server that
                // trickles bytes without a line feed would never let the guard see Cancel.
                // The camera file reader takes either line end.
                // The size the server announces, when it does: a transfer cut short can
                // still end with a "226" (and a file too large is refused before it comes).
                unsigned int announced = 0;
                const bool sized = FtpSize(remote.c_str(), &announced, FTPLIB_IMAGE, control) != 0;
                const bool got = FtpGet(temporary.c_str(), remote.c_str(), FTPLIB_IMAGE, control) != 0;
                uint64_t stored = 0;
                const bool whole = !sized || (fileSize(temporary.c_str(), stored) && stored == announced);
                // A transfer the guard ended may still look complete to ftplib.
                if (!got || !whole || guard.reason != TransferGuard::none) {
                    std::remove(temporary.c_str());
                    if (guard.reason == TransferGuard::cancelled) break;
                    job.errorText = "Unable to get aircraft file, " + name + ", from the community server, error: " +
                                    lastReply(control) + guardText(guard.reason) +
                                    (got && !whole ? " (the transfer was cut short)" : "");
                    break;
                }
                if (job.cancelRequested) {
                    std::remove(temporary.c_str());
                    break;
                }
                if (!renameReplacing(temporary.c_str(), (job.localFolder + job.separator + name).c_str())) {
                    std::remove(temporary.c_str());
                    job.errorText = "Unable to store aircraft file, " + name + ", in the community folder";
                    break;
                }
                ++job.processed;
            }
            closeCommunitySession(control);
        } else {
            job.errorText = connectFailure(failedStep, reply);
        }
    }

    if (!job.cancelRequested) {
        job.rescanWanted = 1;
        finish(UpdaterJob::complete);
    } else {
        finish(UpdaterJob::canceled);
    }
}
