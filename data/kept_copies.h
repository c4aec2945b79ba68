// Copies of the user's files that the plug-in keeps before it could shrink them: the
// original bytes of a file that was read only in part, and the autosave of a camera
// set with unsaved edits. Both lie in "AircraftCameraBackups/" below the plug-in
// folder. A file read only in part whose original could not be kept is not written
// over for the rest of the run. Main thread only.
#pragma once

#include <string>

// What a reader could not take over from a file. Anything counted here would be gone
// from the file after the next write, so the file's bytes are kept first.
struct ReadLosses {
    int shortRows = 0;          // rows below the minimum of values
    int rowsAfterShortRow = 0;  // rows never read because reading stopped there
    int badBooleans = 0;        // neither "TRUE" nor "FALSE"
    int badNumbers = 0;         // not a number, or more than one
    int unreadableBytes = 0;    // NUL and control bytes, lines beyond the line limit
    int cutTexts = 0;           // names and texts longer than their fields
    int droppedRows = 0;        // rows a limit turned away (categories, cameras, bad values)
    int extraValues = 0;        // values beyond the last known column, unknown keys

    bool any() const {
        return shortRows || rowsAfterShortRow || badBooleans || badNumbers || unreadableBytes || cutTexts ||
               droppedRows || extraValues;
    }
    // "2 rows after a short row, 1 value that is not a number", for the log.
    std::string describe() const;
};

// The name a kept copy of `path` starts with: the backup name of a file below an
// "Aircraft" folder, else the file's own name.
std::string keptCopyBaseName(const char* path);

// Keeps the bytes of the file at `path` as "<base>.<why>-YYYY-MM-DD_HHMMSS" in the
// backups folder, unless a copy with the same bytes and stem is there already. Returns
// the copy's path, empty when none could be kept; `made` tells whether it is new.
std::string keepOriginalCopy(const char* path, const char* why, bool* made);

// After a reader lost something from the file at `path`: keeps its original and tells
// the user once (a log line naming the copy, and an announcement), or, when no copy
// can be kept, refuses every later write over it. `label` names the file for the user
// ("Camera file").
void protectPartlyReadFile(const char* path, const char* label, const ReadLosses& losses);

// Whether a write over `path` must be refused (its partial read could not be kept).
bool replacingForbidden(const char* path);
// Forgets every refusal: a fresh start of the plug-in.
void clearReplacingRefusals();

// Writes `content` as the autosave of the camera file at `path`
// ("<base>.autosave", replaced each time); returns its path, empty on failure.
std::string writeAutosave(const char* path, const std::string& content);
