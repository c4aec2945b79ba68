#include "data/aircraft_files.h"

#include <cctype>
#include <cstring>
#include <ctime>
#include <mutex>

#include "XPLMPlanes.h"
#include "XPLMPlugin.h"
#include "XPLMUtilities.h"
#include "data/camera_file.h"
#include "data/text_io.h"
#include "data/user_messages.h"
#include "platform/file_system.h"
#include "platform/runtime.h"

namespace {

std::string cachedPluginDirectory;
bool pluginDirectoryKnown = false;

struct Aircraft {
    std::string modelFile;
    std::string folder;  // with its trailing "/"
};

Aircraft userAircraft() {
    char fileName[2048] = {0};
    char path[4096] = {0};
    XPLMGetNthAircraftModel(0, fileName, path);
    fileName[sizeof fileName - 1] = 0;
    path[sizeof path - 1] = 0;
    Aircraft aircraft;
    aircraft.modelFile = fileName;
    std::string full = path;
    size_t slash = lastPathSeparator(full);
    aircraft.folder = slash == std::string::npos ? std::string() : full.substr(0, slash + 1);
    return aircraft;
}

// ---- scan state: the flag and counters are written by the thread and read by the
// main thread; the list and failures only while no scan runs.
std::atomic<bool> scanRunning{false};
std::atomic<int> scanDone{0};
std::atomic<int> scanTotal{0};
std::vector<CommunityFile> communityFiles;
std::vector<std::string> scanFailures;  // paths that couldn't be read, logged on join

void scanThreadBody(std::vector<char>* names, std::string folder) {
    communityFiles.clear();
    scanFailures.clear();
    const char* name = names->data();
    const char* end = names->data() + names->size();
    while (name < end && *name) {
        CommunityFile entry;
        std::memset(&entry, 0, sizeof entry);
        copyText(entry.file.fileName, name, 1000);
        std::string path = folder + "/" + name;
        copyText(entry.file.path, path.c_str());
        entry.file.readFromPath = 1;
        if (!analyseCameraFileQuietly(&entry.file)) scanFailures.push_back(path);
        std::string search = std::string(entry.file.aircraft) + " " + entry.file.author;
        for (char& c : search) c = char(std::toupper(static_cast<unsigned char>(c)));
        copyText(entry.searchText, search.c_str());
        communityFiles.push_back(entry);
        scanDone.fetch_add(1);
        name += std::strlen(name) + 1;
    }
    delete names;
    scanRunning.store(false);
}

}  // namespace

// ---------------------------------------------------------------- names

std::string modelNameFromFileName(const char* modelFileName) {
    std::string name = modelFileName ? modelFileName : "";
    size_t stop = name.find('.');
    return stop == std::string::npos ? name : name.substr(0, stop);
}

std::string aircraftModelName() { return modelNameFromFileName(userAircraft().modelFile.c_str()); }
std::string aircraftCameraFileName() { return "Vistarig_" + aircraftModelName() + ".csv"; }
std::string aircraftFolder() { return userAircraft().folder; }

void perModelCameraPath(std::string& out) {
    Aircraft a = userAircraft();
    out = a.folder + "Vistarig_" + modelNameFromFileName(a.modelFile.c_str()) + ".csv";
}
void folderCameraPath(std::string& out) { out = userAircraft().folder + "Vistarig.csv"; }
void aircraftPrefsPath(std::string& out) {
    Aircraft a = userAircraft();
    out = a.folder + modelNameFromFileName(a.modelFile.c_str()) + "_prefs.txt";
}
void sharedInfoPath(std::string& out) {
    Aircraft a = userAircraft();
    out = a.folder + "Vistarig_" + modelNameFromFileName(a.modelFile.c_str()) + ".shr";
}

bool pluginDirectoryFromPath(const char* pluginFilePath, std::string& out) {
    // The plug-in's folder is the one inside "plugins", whichever separators the
    // simulator uses (on Windows "C:\X-Plane 12\Resources\plugins\Vistarig\win_x64\...").
    const std::string path = pluginFilePath ? pluginFilePath : "";
    const size_t length = std::strlen("plugins");
    for (size_t at = path.find("plugins"); at != std::string::npos; at = path.find("plugins", at + 1)) {
        if (at + length >= path.size() || !isPathSeparator(path[at + length])) continue;
        if (at > 0 && !isPathSeparator(path[at - 1])) continue;
        for (size_t end = at + length + 1; end < path.size(); ++end) {
            if (!isPathSeparator(path[end])) continue;
            if (end == at + length + 1) break;  // "plugins//": no folder name
            out = path.substr(0, end + 1);
            return true;
        }
        return false;
    }
    return false;
}

bool pluginDirectory(std::string& out) {
    if (!pluginDirectoryKnown) {
        char path[4096] = {0};
        XPLMGetPluginInfo(XPLMGetMyID(), nullptr, path, nullptr, nullptr);
        path[sizeof path - 1] = 0;
        if (!pluginDirectoryFromPath(path, cachedPluginDirectory)) {
            logMessage("Unable to determine the plugin directory");
            out.clear();
            return false;
        }
        pluginDirectoryKnown = true;
    }
    out = cachedPluginDirectory;
    return true;
}

void overridePluginDirectory(const char* path) {
    if (!path || !*path) {
        pluginDirectoryKnown = false;
        cachedPluginDirectory.clear();
        return;
    }
    cachedPluginDirectory = path;
    if (!isPathSeparator(cachedPluginDirectory.back())) cachedPluginDirectory += '/';
    pluginDirectoryKnown = true;
}

std::string communityAircraftFolder() {
    std::string folder;
    pluginDirectory(folder);
    return folder + "CommunityAircraftCameras";
}

// ---------------------------------------------------------------- backups

std::string backupNameFor(const char* path) {
    const std::string text = path ? path : "";
    const size_t length = std::strlen("Aircraft");
    size_t at = text.find("Aircraft");
    while (at != std::string::npos &&
           (at == 0 || !isPathSeparator(text[at - 1]) || at + length >= text.size() || !isPathSeparator(text[at + length])))
        at = text.find("Aircraft", at + 1);
    if (at == std::string::npos) return std::string();
    std::string name = text.substr(at + length + 1);
    if (name.size() > 2000) name.resize(2000);
    for (char& c : name)
        if (isPathSeparator(c)) c = '_';
    return name;
}

void backupCameraFile(const char* path) {
    std::string name = backupNameFor(path);
    if (name.empty()) return;
    std::string folder;
    pluginDirectory(folder);
    std::string backup = folder + "AircraftCameraBackups/" + name;
    std::FILE* source = std::fopen(path, "rb");
    if (!source) {
        showMessageBox("Error", std::string("Unable to read: ") + path);
        return;
    }
    std::string content;
    char chunk[4096];
    size_t got;
    while ((got = std::fread(chunk, 1, sizeof chunk, source)) > 0) content.append(chunk, got);
    std::fclose(source);
    if (!replaceFileAtomically(backup.c_str(), content)) {
        showMessageBox("Error", "Unable to write:\n\n" + backup);
        return;
    }
    showMessageBox("Info", "Created Backup:\n\n" + backup);
}

// ---------------------------------------------------------------- shared info

void readSharedInfoFrom(std::FILE* file, const char* path, SharedInfo& info) {
    char* fields[3] = {info.date, info.version, info.fileName};
    const char* failures[3] = {"Unable to read shared date from %s", "Unable to read shared version number from %s",
                               "Unable to read shared file name from %s"};
    for (int i = 0; i < 3; ++i) {
        if (!readBoundedLine(file, fields[i], 2000)) {
            fields[i][0] = 0;
            logMessage(failures[i], path);
        }
    }
    info.present = true;
}

SharedInfo readSharedInfo() {
    SharedInfo info;
    std::memset(&info, 0, sizeof info);
    std::string path;
    sharedInfoPath(path);
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (!file) return info;
    readSharedInfoFrom(file, path.c_str(), info);
    std::fclose(file);
    return info;
}

bool writeSharedInfo(const char* version, const char* fileName) {
    std::string path;
    sharedInfoPath(path);
    // Each line must stay one line, or the reader would take the wrong field.
    auto oneLine = [](const char* text) {
        std::string line = text ? text : "";
        for (char& c : line)
            if (c == '\n' || c == '\r') c = ' ';
        return line;
    };
    std::string content = localTimeText() + "\n" + oneLine(version) + "\n" + oneLine(fileName) + "\n";
    if (!replaceFileAtomically(path.c_str(), content)) {
        logMessage("Unable to create shared data file %s", path.c_str());
        return false;
    }
    return true;
}

// ---------------------------------------------------------------- community scan

std::thread* startCommunityScan() {
    if (scanRunning.load()) return nullptr;
    scanRunning.store(true);
    scanDone.store(0);
    scanTotal.store(0);
    constexpr int kBufferSize = 5000000;
    auto* names = new std::vector<char>(kBufferSize, 0);
    std::string folder = communityAircraftFolder();
    int returned = 0;
    XPLMGetDirectoryContents(folder.c_str(), 0, names->data(), kBufferSize, nullptr, 0, nullptr, &returned);
    names->back() = 0;
    int total = 0;
    for (const char* name = names->data(); name < names->data() + kBufferSize - 1 && *name; name += std::strlen(name) + 1)
        ++total;
    scanTotal.store(total);
    try {
        return new std::thread(scanThreadBody, names, folder);
    } catch (...) {
        delete names;
        scanRunning.store(false);
        return nullptr;
    }
}

bool communityScanProgress(int* done, int* total) {
    if (done) *done = scanDone.load();
    if (total) *total = scanTotal.load();
    return scanRunning.load();
}

std::vector<CommunityFile>& communityFileList() { return communityFiles; }

int communityFileCount(const char* aircraft) {
    int count = 0;
    for (const CommunityFile& entry : communityFiles)
        if (std::strcmp(entry.file.aircraft, aircraft ? aircraft : "") == 0) ++count;
    return count;
}

void serviceCommunityScan(std::thread*& thread, bool& rescanRequested) {
    if (!thread && !rescanRequested) return;
    if (communityScanProgress(nullptr, nullptr)) return;
    if (thread) {
        if (thread->joinable()) thread->join();
        delete thread;
        thread = nullptr;
        for (const std::string& path : scanFailures) logMessage("Unable to read %s", path.c_str());
        scanFailures.clear();
    }
    if (rescanRequested) {
        thread = startCommunityScan();
        rescanRequested = false;
    }
}
