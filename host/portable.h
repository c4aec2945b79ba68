// The few POSIX calls the host and the runner make, for Windows: dlopen and its kin
// over LoadLibrary and GetProcAddress, and mkdir with a mode. Elsewhere simply the
// system's headers.
#pragma once

#include <string>

#ifdef _WIN32
#include <windows.h>

#include <direct.h>
#include <sys/stat.h>

#include <cstdio>

#define RTLD_NOW 0
#define RTLD_LOCAL 0

inline void* dlopen(const char* path, int) { return reinterpret_cast<void*>(LoadLibraryA(path)); }
inline void* dlsym(void* library, const char* name) {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}
inline int dlclose(void* library) { return FreeLibrary(static_cast<HMODULE>(library)) ? 0 : 1; }
inline const char* dlerror() {
    static char text[64];
    std::snprintf(text, sizeof text, "Windows error %lu", static_cast<unsigned long>(GetLastError()));
    return text;
}
// Windows folders have no mode bits.
inline int mkdir(const char* path, int) { return _mkdir(path); }

namespace xphost {
// The plug-in folder of this platform's .xpl.
inline const char* xplPlatformFolder() { return "win_x64"; }
// A path as X-Plane reports it with native paths on: backslashes.
inline std::string nativePath(std::string path) {
    for (char& c : path)
        if (c == '/') c = '\\';
    return path;
}
// An absolute path with its drive ("/tmp/x" is "Z:/tmp/x" under Wine), kept with "/"
// inside the host.
inline std::string absoluteFolder(const std::string& path) {
    char full[4096];
    DWORD n = GetFullPathNameA(path.c_str(), sizeof full, full, nullptr);
    std::string out = n > 0 && n < sizeof full ? std::string(full, n) : path;
    for (char& c : out)
        if (c == '\\') c = '/';
    return out;
}
}  // namespace xphost
#else
#include <dlfcn.h>
#include <sys/stat.h>

namespace xphost {
inline const char* xplPlatformFolder() { return "lin_x64"; }
inline std::string nativePath(std::string path) { return path; }
inline std::string absoluteFolder(const std::string& path) { return path; }
}  // namespace xphost
#endif
