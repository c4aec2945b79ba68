#include "community/ftp_session.h"

#include <condition_variable>
#include <csignal>
#include <memory>
#include <mutex>
#include <thread>

#include "community_build.h"
#include "platform/process_hooks.h"

std::string communityServerAddress() {
    if (const char* seam = processCommunityServer()) return seam;
    return VISTARIG_COMMUNITY_HOST;
}
const char* communityUser() { return "KVTUpdates"; }
const char* communityPassword() { return VISTARIG_COMMUNITY_PASSWORD; }

std::string lastReply(netbuf* control) {
    if (!control) return std::string();
    const char* text = FtpLastResponse(control);
    std::string reply = text ? text : "";
    while (!reply.empty() && (reply.back() == '\n' || reply.back() == '\r')) reply.pop_back();
    return reply;
}

netbuf* openCommunitySession(int& failedStep, std::string& reply, std::atomic<int>* step) {
    failedStep = 0;
    reply.clear();
    netbuf* control = nullptr;
    const std::string address = communityServerAddress();
    if (!FtpConnect(address.c_str(), &control)) {
        failedStep = 1;
        // ftplib frees its control record on a failed connect and leaves no reply.
        return nullptr;
    }
    if (step) *step = 2;
    if (!FtpLogin(communityUser(), communityPassword(), control)) {
        failedStep = 2;
        reply = lastReply(control);
        FtpClose(control);
        return nullptr;
    }
    return control;
}

void closeCommunitySession(netbuf* control) {
    if (control) FtpClose(control);
}

namespace {
int transferGuardCallback(netbuf*, fsz_t transferred, void* arg) {
    auto& guard = *static_cast<TransferGuard*>(arg);
    const auto now = std::chrono::steady_clock::now();
    const uint64_t bytes = transferred;
    if (guard.cancel && guard.cancel->load() != 0) guard.reason = TransferGuard::cancelled;
    else if (now >= guard.deadline) guard.reason = TransferGuard::overDeadline;
    else if (guard.maxBytes && bytes > guard.maxBytes) guard.reason = TransferGuard::tooLarge;
    else if (bytes != guard.lastBytes || guard.lastProgress == std::chrono::steady_clock::time_point{}) {
        guard.lastBytes = bytes;
        guard.lastProgress = now;
    } else if (now - guard.lastProgress > guard.stallLimit) {
        guard.reason = TransferGuard::stalled;
    }
    return guard.reason == TransferGuard::none ? 1 : 0;
}
}  // namespace

void guardTransfers(netbuf* control, TransferGuard& guard) {
    guard.reason = TransferGuard::none;
    guard.lastBytes = 0;
    guard.lastProgress = std::chrono::steady_clock::time_point{};
    FtpCallbackOptions options{};
    options.cbFunc = transferGuardCallback;
    options.cbArg = &guard;
    // After every read: a server that trickles a byte at a time never leaves the
    // connection idle, yet Cancel and the deadline must still be seen.
    options.bytesXferred = 1;
    options.idleTime = 100;
    FtpSetCallback(&options, control);
}

void ignoreBrokenPipeOnThisThread() {
#ifndef _WIN32
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
#endif
}

bool runWithDeadline(std::function<void()> job, std::chrono::milliseconds limit, std::chrono::milliseconds* waited) {
    struct Shared {
        std::mutex lock;
        std::condition_variable ended;
        bool done = false;
    };
    auto shared = std::make_shared<Shared>();
    const auto start = std::chrono::steady_clock::now();
    std::thread([shared, job = std::move(job)] {
        ignoreBrokenPipeOnThisThread();
        job();
        std::lock_guard<std::mutex> hold(shared->lock);
        shared->done = true;
        shared->ended.notify_all();
    }).detach();
    bool inTime;
    {
        std::unique_lock<std::mutex> hold(shared->lock);
        inTime = shared->ended.wait_for(hold, limit, [&] { return shared->done; });
    }
    if (waited)
        *waited = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
    // The job's code must stay mapped after the plug-in is unloaded.
    if (!inTime) keepModuleLoaded();
    return inTime;
}
