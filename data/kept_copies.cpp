#include "data/kept_copies.h"

#include <cstring>
#include <set>

#include "data/aircraft_files.h"
#include "data/text_io.h"
#include "data/user_messages.h"
#include "platform/file_system.h"
#include "platform/runtime.h"

namespace {

// Paths (after links) whose partial read could not be kept.
std::set<std::string> refusals;

// Far above any file the plug-in writes; a copy is taken whole or not at all.
constexpr size_t kCopyLimit = size_t(1) << 30;

std::string backupsFolder() {
    std::string folder;
    if (!pluginDirectory(folder)) return std::string();
    folder += "AircraftCameraBackups/";
    // A fresh install may lack it; the copy matters more than the folder's absence.
    makeFolder(folder.c_str());
    return folder;
}

// Writes a new file that must not replace anything: false when `path` exists.
bool writeNewFile(const std::string& path, const std::string& content) {
    if (pathPresent(path.c_str())) return false;
    return replaceFileAtomically(path.c_str(), content);
}

void appendCount(std::string& out, int count, const char* one, const char* many) {
    if (!count) return;
    if (!out.empty()) out += ", ";
    out += std::to_string(count);
    out += ' ';
    out += count == 1 ? one : many;
}

}  // namespace

std::string ReadLosses::describe() const {
    std::string out;
    appendCount(out, shortRows, "row with too few values", "rows with too few values");
    appendCount(out, rowsAfterShortRow, "row after it not read", "rows after it not read");
    appendCount(out, badBooleans, "value neither TRUE nor FALSE", "values neither TRUE nor FALSE");
    appendCount(out, badNumbers, "value that is not a number", "values that are not numbers");
    appendCount(out, unreadableBytes, "unreadable byte or line", "unreadable bytes or lines");
    appendCount(out, cutTexts, "text cut to its field", "texts cut to their fields");
    appendCount(out, droppedRows, "row turned away", "rows turned away");
    appendCount(out, extraValues, "value not known", "values not known");
    return out;
}

std::string keptCopyBaseName(const char* path) {
    std::string name = backupNameFor(path);
    if (!name.empty()) return name;
    std::string whole = path ? path : "";
    size_t slash = lastPathSeparator(whole);
    return slash == std::string::npos ? whole : whole.substr(slash + 1);
}

std::string keepOriginalCopy(const char* path, const char* why, bool* made) {
    if (made) *made = false;
    std::string folder = backupsFolder();
    std::string original;
    bool truncated = false;
    if (folder.empty() || !readWholeFile(path, original, kCopyLimit, &truncated) || truncated) return std::string();

    std::string stem = keptCopyBaseName(path) + "." + why + "-";
    // The same damaged file loaded again needs no second copy.
    std::string same;
    listFolder(folder.c_str(), [&](const char* name, EntryKind) {
        if (std::strncmp(name, stem.c_str(), stem.size()) != 0) return true;
        std::string held;
        if (readWholeFile((folder + name).c_str(), held, original.size() + 1) && held == original) same = folder + name;
        return same.empty();
    });
    if (!same.empty()) return same;

    std::string base = folder + stem + localTimeText("%Y-%m-%d_%H%M%S");
    std::string copy = base;
    for (int n = 2; n < 100 && !writeNewFile(copy, original); ++n) {
        if (!pathPresent(copy.c_str())) return std::string();  // the write itself failed
        copy = base + "-" + std::to_string(n);
    }
    if (made) *made = true;
    return copy;
}

void protectPartlyReadFile(const char* path, const char* label, const ReadLosses& losses) {
    if (!losses.any() || !path || !*path) return;
    bool made = false;
    std::string copy = keepOriginalCopy(path, "unread", &made);
    std::string what = losses.describe();
    if (copy.empty()) {
        refusals.insert(resolveLinks(path));
        logMessage("%s %s was read only in part (%s) and no copy of it could be kept; it will not be written over",
                   label, path, what.c_str());
        announce("%s read only in part. It will not be overwritten.", label);
        return;
    }
    logMessage("%s %s was read only in part (%s); its original is kept as %s", label, path, what.c_str(),
               copy.c_str());
    // Spoken once: a copy that was already there was announced when it was made.
    if (made) announce("%s read only in part. The original is kept in the backups folder.", label);
}

bool replacingForbidden(const char* path) { return path && refusals.count(resolveLinks(path)) > 0; }

void clearReplacingRefusals() {
    refusals.clear();
}

std::string writeAutosave(const char* path, const std::string& content) {
    std::string folder = backupsFolder();
    if (folder.empty()) return std::string();
    std::string autosave = folder + keptCopyBaseName(path) + ".autosave";
    if (!replaceFileAtomically(autosave.c_str(), content)) return std::string();
    return autosave;
}
