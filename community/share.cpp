#include "community/share.h"

#include <atomic>
#include <ctime>
#include <memory>
#include <mutex>

#include "community/community_names.h"
#include "community/ftp_session.h"
#include "data/aircraft_files.h"
#include "data/camera_file.h"
#include "data/camera_set.h"

namespace {

// What the network thread did; the main thread reads it once the thread has ended, or
// not at all when it gave up waiting.
struct Upload {
    std::string localPath, remotePath, oldRemotePath;
    std::atomic<int> step{0};  // 1 connecting, 2 logging in, 3 sending, 4 deleting the old one, 5 done
    std::atomic<bool> sent{false};
    std::atomic<int> guardReason{0};
    std::mutex lock;
    std::string reply;
    std::atomic<int32_t> abandoned{0};  // the main thread stopped waiting
};

void runUpload(const std::shared_ptr<Upload>& upload) {
    upload->step = 1;
    int failedStep = 0;
    std::string reply;
    netbuf* control = openCommunitySession(failedStep, reply, &upload->step);
    if (!control) {
        std::lock_guard<std::mutex> hold(upload->lock);
        upload->reply = reply;
        upload->step = failedStep == 1 ? -1 : -2;
        return;
    }
    TransferGuard guard;
    guard.cancel = &upload->abandoned;
    // Ends the transfer itself a little before the main thread stops waiting.
    guard.deadline = std::chrono::steady_clock::now() + kShareDeadline - std::chrono::milliseconds(500);
    guard.stallLimit = std::chrono::milliseconds(5000);
    guardTransfers(control, guard);
    upload->step = 3;
    if (!FtpPut(upload->localPath.c_str(), upload->remotePath.c_str(), FTPLIB_ASCII, control)) {
        std::lock_guard<std::mutex> hold(upload->lock);
        upload->reply = lastReply(control);
        upload->guardReason = guard.reason;
        upload->step = -3;
        closeCommunitySession(control);
        return;
    }
    upload->sent = true;
    upload->step = 4;
    if (!upload->oldRemotePath.empty() && !upload->abandoned) FtpDelete(upload->oldRemotePath.c_str(), control);
    closeCommunitySession(control);
    upload->step = 5;
}

}  // namespace

ShareOutcome shareCameraFile() {
    ShareOutcome outcome;
    // The file sent holds the author and version just entered.
    saveCameraFile(false, false);
    auto upload = std::make_shared<Upload>();
    perModelCameraPath(upload->localPath);
    const std::string fileName = aircraftCameraFileName();
    const CameraFile* header = activeFile();
    const std::string version = header ? header->fileVersion : "";
    const uint32_t now = static_cast<uint32_t>(std::time(nullptr));
    outcome.serverName = sharedFileName(now, upload->localPath.c_str(), version.c_str(), fileName.c_str());
    upload->remotePath = std::string(kServerFilePrefix) + outcome.serverName;
    const SharedInfo earlier = readSharedInfo();
    if (earlier.present && earlier.fileName[0]) upload->oldRemotePath = std::string(kServerFilePrefix) + earlier.fileName;

    const bool inTime = runWithDeadline([upload] { runUpload(upload); }, kShareDeadline, &outcome.waited);
    if (!inTime) upload->abandoned = 1;
    const int step = upload->step.load();
    std::string reply;
    {
        std::lock_guard<std::mutex> hold(upload->lock);
        reply = upload->reply;
    }
    // Once the file is stored the share stands, even if the old one's delete is still on its way.
    if (upload->sent) {
        writeSharedInfo(version.c_str(), outcome.serverName.c_str());
        outcome.sent = true;
        outcome.title = "Thank You";
        outcome.text =
            "Your camera file has been successfully submitted to the community server.\n\n\t\tThank you for your contribution.";
        return outcome;
    }
    outcome.title = "Error";
    const char* late = inTime ? "" : " (the server did not answer within 10 seconds)";
    if (step == -1 || step == 1) {
        outcome.text = "Unable to connect to the community file server";
        outcome.logLine = outcome.text + late;
    } else if (step == -2 || step == 2) {
        outcome.text = "Unable to authenticate on the community file server";
        outcome.logLine = "Unable to authenticate on the community file server, error: " + reply + late;
    } else {
        outcome.text = "Unable to send aircraft file to the community server";
        outcome.logLine = outcome.text + late;
    }
    return outcome;
}
