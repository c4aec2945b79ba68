// One short session with the community file server through ftplib: connect, log in,
// do the work, close (no QUIT). Owns the server's address and the account, and the
// guards that keep a stalled, dropping or hostile server from holding a thread or the
// user's disk: a transfer guard that ends data transfers on cancel, stall, size or
// deadline, and a deadline runner for callers that may not wait without one.
//
// ftplib waits without a time-out on its control connection (its idle callback covers
// data connections only, and FtpConnect has none), so no caller ever waits for a whole
// session: a session runs on a thread of its own and the caller waits for it up to a
// deadline; past it the caller goes on and the session ends by itself when the server
// answers or drops it. Such a session owns everything it touches.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <string>

#include <ftplib.h>

// The server: the build setting VISTARIG_COMMUNITY_HOST (ftplib takes "host" or
// "host:port"), unless the process offers `vistarig_community_server` (the simulator
// stand-in does, for tests). The account is fixed in the program.
std::string communityServerAddress();
const char* communityUser();
const char* communityPassword();

// Opens a session: FtpConnect, then FtpLogin. Null on failure, with `failedStep` 1
// (connect) or 2 (login) and `reply` the server's last reply text ("" without a control
// connection). The connection is closed on a failed login. `step`, when given, becomes
// 2 once connected, so that a caller that stops waiting knows where the server stalled.
netbuf* openCommunitySession(int& failedStep, std::string& reply, std::atomic<int>* step = nullptr);
void closeCommunitySession(netbuf* control);
std::string lastReply(netbuf* control);

// What may end a data transfer early. The guard is called by ftplib every 100 ms of
// silence and after every read; a transfer it ends fails like one the server broke off.
struct TransferGuard {
    enum Reason { none = 0, cancelled = 1, stalled = 2, tooLarge = 3, overDeadline = 4 };
    const std::atomic<int32_t>* cancel = nullptr;  // non-zero ends the transfer
    std::chrono::steady_clock::time_point deadline = std::chrono::steady_clock::time_point::max();
    std::chrono::milliseconds stallLimit{10000};   // this long without a byte ends it
    uint64_t maxBytes = 0;                         // more than this ends it; 0 no bound

    std::chrono::steady_clock::time_point lastProgress{};
    uint64_t lastBytes = 0;
    Reason reason = none;
};
// Installs the guard on the control connection; data connections opened later take it.
void guardTransfers(netbuf* control, TransferGuard& guard);
// A camera file holds at most 20 x 150 cameras; 8 MB is far beyond any real one.
constexpr uint64_t kMaxCameraFileBytes = 8u << 20;

// A broken connection must fail a write, not kill the simulator with SIGPIPE: every
// thread that runs a session calls this first.
void ignoreBrokenPipeOnThisThread();

// Runs `job` on a thread of its own and waits for it at most `limit`. True when it
// ended in time; `waited` (if given) gets the time waited. A job that overruns runs on
// alone, so it must own everything it touches.
bool runWithDeadline(std::function<void()> job, std::chrono::milliseconds limit,
                     std::chrono::milliseconds* waited = nullptr);
