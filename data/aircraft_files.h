// Where the user's files lie and how they are named: the camera files beside the
// aircraft, the plug-in's own folder and the folders below it, the backups taken on
// saving, the ".shr" shared-info file, and the background scan of the community
// camera folder. Native paths are on: "/" everywhere, and on Windows "\" as well, with
// a drive letter; what the plug-in adds itself uses "/", which Windows takes too.
#pragma once

#include <atomic>
#include <cstdio>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include "data/camera_set.h"

// ---- names beside the aircraft (from XPLMGetNthAircraftModel(0))
// The model file name cut at its first full stop.
std::string aircraftModelName();
// "Vistarig_" + model name + ".csv"
std::string aircraftCameraFileName();
// The aircraft's folder with its trailing "/".
std::string aircraftFolder();
void perModelCameraPath(std::string& out);  // folder + "Vistarig_<model>.csv"
void folderCameraPath(std::string& out);    // folder + "Vistarig.csv": read, never written
void aircraftPrefsPath(std::string& out);   // folder + "<model>_prefs.txt"
void sharedInfoPath(std::string& out);      // folder + "Vistarig_<model>.shr"

// ---- the plug-in's folder, with its trailing "/"; false (and a log line) when the
// plug-in's own path holds no "plugins/". Worked out once and kept.
bool pluginDirectory(std::string& out);
// Tests and the runner point the plug-in at a folder of their own; empty forgets it.
void overridePluginDirectory(const char* path);
// The plug-in folder + "CommunityAircraftCameras", no trailing "/".
std::string communityAircraftFolder();
// Pure helpers behind the above, for tests.
bool pluginDirectoryFromPath(const char* pluginFilePath, std::string& out);
std::string modelNameFromFileName(const char* modelFileName);

// ---- backups: one per camera file, under "AircraftCameraBackups/". Nothing happens
// for a path outside any "/Aircraft/" folder.
void backupCameraFile(const char* path);
// The backup's file name for `path`, empty when the path holds no "/Aircraft/".
std::string backupNameFor(const char* path);

// ---- what was last sent to the community server
struct SharedInfo {
    bool present;
    char date[2000];
    char version[2000];
    char fileName[2000];
};
SharedInfo readSharedInfo();
bool writeSharedInfo(const char* version, const char* fileName);
// The reader on an open stream, for the fuzzer; `path` only names it in log lines.
void readSharedInfoFrom(std::FILE* file, const char* path, SharedInfo& info);

// ---- the community folder scan
struct CommunityFile {
    CameraFile file;
    char searchText[100];  // "<AIRCRAFT> <AUTHOR>" in upper case, for the browser's filter
};

// Starts the scan unless one runs; the caller owns the thread and joins it once
// `communityScanProgress` says it has finished. Null when none was started.
std::thread* startCommunityScan();
// Whether a scan runs; fills the files analysed so far and the files found.
bool communityScanProgress(int* done, int* total);
// Only to be read while no scan runs.
std::vector<CommunityFile>& communityFileList();
int communityFileCount(const char* aircraft);
// Main-thread housekeeping of the flight loop: joins a finished scan and starts the
// one that was requested. `thread` is the caller's holder (may be null on entry).
void serviceCommunityScan(std::thread*& thread, bool& rescanRequested);
