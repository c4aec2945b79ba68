// Sharing the current aircraft's camera file with the community: the upload behind the
// "Share Community File" popup. It runs from the main thread, which waits for it at most
// `kShareDeadline`; what the user is to be told comes back to the caller, which shows it.
#pragma once

#include <chrono>
#include <string>

// The main thread holds the simulator while it waits; a stalled server may not hold it longer.
constexpr std::chrono::milliseconds kShareDeadline{10000};

struct ShareOutcome {
    bool sent = false;
    std::string title;    // message box title: "Thank You" or "Error"
    std::string text;     // message box text
    std::string logLine;  // for the log, empty when none
    std::string serverName;              // the name the file got on the server
    std::chrono::milliseconds waited{0};  // how long the main thread waited for the server
};

// Saves the working set, sends the camera file under a new name, deletes this user's
// earlier upload of the aircraft (a failed delete is ignored), then records the new
// upload in the shared-info file. The new file is stored before the old one is deleted.
ShareOutcome shareCameraFile();
