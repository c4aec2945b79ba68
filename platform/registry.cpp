#include "platform/registry.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "platform/runtime.h"

namespace {
void setText(char* path, int capacity, const char* text) {
    if (path == nullptr || capacity <= 0) return;
    std::snprintf(path, static_cast<size_t>(capacity), "%s", text);
}
}  // namespace

#ifdef _WIN32
#include <windows.h>

bool readTrackIrLocation(const char* /*pluginFolder*/, char* path, int capacity) {
    setText(path, capacity, kUnknownLocation);
    HKEY key = nullptr;
    // 0x20019: KEY_READ.
    if (RegOpenKeyExA(HKEY_CURRENT_USER, "Software\\NaturalPoint\\NATURALPOINT\\NPClient Location", 0, 0x20019,
                      &key) != ERROR_SUCCESS)
        return false;
    DWORD size = 0;
    if (RegQueryValueExA(key, "Path", nullptr, nullptr, nullptr, &size) != ERROR_SUCCESS) {
        RegCloseKey(key);
        return false;
    }
    // One byte more than asked for: a stored string need not carry its terminator.
    char* value = static_cast<char*>(std::malloc(static_cast<size_t>(size) + 1));
    if (value == nullptr) {
        logMessage("TrackIR was unable to allocate sufficient memory!");
        RegCloseKey(key);
        return false;
    }
    if (RegQueryValueExA(key, "Path", nullptr, nullptr, reinterpret_cast<LPBYTE>(value), &size) != ERROR_SUCCESS) {
        logMessage("TrackIR was unable to read location key!");
        std::free(value);
        RegCloseKey(key);
        return false;
    }
    RegCloseKey(key);
    value[size] = '\0';
    bool fits = std::strlen(value) < static_cast<size_t>(capacity);
    if (fits) setText(path, capacity, value);
    std::free(value);
    return fits;
}

#else

bool readTrackIrLocation(const char* pluginFolder, char* path, int capacity) {
    setText(path, capacity, kUnknownLocation);
    if (pluginFolder == nullptr) return false;
    std::string fileName = std::string(pluginFolder) + kTrackIrLocationFileName;
    std::FILE* file = std::fopen(fileName.c_str(), "rb");
    if (file == nullptr) return false;
    std::string line;
    int c;
    while ((c = std::fgetc(file)) != EOF && c != '\n') line.push_back(static_cast<char>(c));
    std::fclose(file);
    // Editors on Windows leave a carriage return; trailing blanks are never part of a path.
    while (!line.empty() && (line.back() == '\r' || line.back() == ' ' || line.back() == '\t')) line.pop_back();
    if (line.size() >= static_cast<size_t>(capacity)) return false;
    setText(path, capacity, line.c_str());
    return true;
}
#endif
