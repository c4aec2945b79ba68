// Paths, directory listings, versions, the log, speech and language: the
// XPLMUtilities calls other than commands.
#include <dirent.h>

#include <algorithm>
#include <cstring>

#include "XPLMUtilities.h"
#include "host/core_parts.h"
#include "host/portable.h"

namespace xphost {

namespace {

void copyOut(char* out, const std::string& s) {
    if (!out) return;
    std::memcpy(out, s.c_str(), s.size() + 1);
}

}  // namespace

void resetUtilities() {}

}  // namespace xphost

using namespace xphost;

void XPLMGetSystemPath(char* outSystemPath) {
    if (!checkThread("XPLMGetSystemPath")) return;
    copyOut(outSystemPath, nativePath(root()));
}

void XPLMGetPrefsPath(char* outPrefsPath) {
    if (!checkThread("XPLMGetPrefsPath")) return;
    copyOut(outPrefsPath, nativePath(root() + "Output/preferences/Set X-Plane.prf"));
}

const char* XPLMGetDirectorySeparator(void) {
    static const std::string separator = nativePath("/");
    if (!checkThread("XPLMGetDirectorySeparator")) return separator.c_str();
    return separator.c_str();
}

char* XPLMExtractFileAndPath(char* inFullPath) {
    if (!checkThread("XPLMExtractFileAndPath") || !inFullPath) return inFullPath;
    size_t n = std::strlen(inFullPath);
    // A trailing separator marks a directory: it goes, and the file part is empty.
    if (n > 1 && inFullPath[n - 1] == '/') {
        inFullPath[n - 1] = 0;
        return inFullPath + n - 1;
    }
    char* slash = std::strrchr(inFullPath, '/');
    if (!slash) return inFullPath;
    *slash = 0;
    return slash + 1;
}

int XPLMGetDirectoryContents(const char* inDirectoryPath, int inFirstReturn, char* outFileNames,
                             int inFileNameBufSize, char** outIndices, int inIndexCount, int* outTotalFiles,
                             int* outReturnedFiles) {
    if (outTotalFiles) *outTotalFiles = 0;
    if (outReturnedFiles) *outReturnedFiles = 0;
    if (!checkThread("XPLMGetDirectoryContents") || !inDirectoryPath) return 0;
    std::vector<std::string> names;
    if (DIR* dir = opendir(inDirectoryPath)) {
        while (dirent* d = readdir(dir)) {
            if (std::strcmp(d->d_name, ".") == 0 || std::strcmp(d->d_name, "..") == 0) continue;
            names.push_back(d->d_name);
        }
        closedir(dir);
    } else {
        return 0;
    }
    std::sort(names.begin(), names.end());
    int total = static_cast<int>(names.size());
    if (outTotalFiles) *outTotalFiles = total;
    int first = std::max(0, inFirstReturn);
    int returned = 0;
    int used = 0;
    bool allFit = true;
    for (int i = first; i < total; ++i) {
        const std::string& name = names[i];
        int need = static_cast<int>(name.size()) + 1;
        // Room for the name, the empty string that ends the list, and an index slot
        // plus the null index that follows the last one.
        bool nameFits = outFileNames && used + need + 1 <= inFileNameBufSize;
        bool indexFits = !outIndices || returned + 1 < inIndexCount;
        if (!nameFits || !indexFits) {
            allFit = false;
            break;
        }
        std::memcpy(outFileNames + used, name.c_str(), need);
        if (outIndices) outIndices[returned] = outFileNames + used;
        used += need;
        ++returned;
    }
    if (outFileNames && used < inFileNameBufSize) outFileNames[used] = 0;
    if (outIndices && returned < inIndexCount) outIndices[returned] = nullptr;
    if (outReturnedFiles) *outReturnedFiles = returned;
    return allFit ? 1 : 0;
}

int XPLMLoadDataFile(XPLMDataFileType inFileType, const char* inFilePath) {
    if (!checkThread("XPLMLoadDataFile")) return 0;
    return 0;
}

int XPLMSaveDataFile(XPLMDataFileType inFileType, const char* inFilePath) {
    if (!checkThread("XPLMSaveDataFile")) return 0;
    return 0;
}

void XPLMGetVersions(int* outXPlaneVersion, int* outXPLMVersion, XPLMHostApplicationID* outHostID) {
    if (!checkThread("XPLMGetVersions")) return;
    int v = version();
    // The SDK that shipped with each simulator version.
    int xplm = v >= 12100 ? 410 : v >= 12000 ? 400 : v >= 11500 ? 303 : v >= 11200 ? 302
             : v >= 11000 ? 301 : v >= 10000 ? 210 : 200;
    if (outXPlaneVersion) *outXPlaneVersion = v;
    if (outXPLMVersion) *outXPLMVersion = xplm;
    if (outHostID) *outHostID = xplm_Host_XPlane;
}

XPLMLanguageCode XPLMGetLanguage(void) {
    if (!checkThread("XPLMGetLanguage")) return xplm_Language_Unknown;
    return xplm_Language_English;
}

void* XPLMFindSymbol(const char* inString) {
    if (!checkThread("XPLMFindSymbol")) return nullptr;
    return nullptr;
}

void XPLMSetErrorCallback(XPLMError_CB inCallback) {
    checkThread("XPLMSetErrorCallback");
}

void XPLMDebugString(const char* inString) {
    if (!checkThread("XPLMDebugString") || !inString) return;
    writeLog(inString);
}

void XPLMSpeakString(const char* inString) {
    if (!checkThread("XPLMSpeakString") || !inString) return;
    recordSpeech(inString);
}

const char* XPLMGetVirtualKeyDescription(char inVirtualKey) {
    if (!checkThread("XPLMGetVirtualKeyDescription")) return "";
    return "";
}

void XPLMReloadScenery(void) {
    checkThread("XPLMReloadScenery");
}
