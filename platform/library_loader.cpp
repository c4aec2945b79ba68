#include "platform/library_loader.h"

#ifdef _WIN32
#include <windows.h>

void* loadLibrary(const char* path) {
    if (path == nullptr) return nullptr;
    return reinterpret_cast<void*>(LoadLibraryA(path));
}

void* findLibrarySymbol(void* library, const char* name) {
    if (library == nullptr || name == nullptr) return nullptr;
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

const char* trackIrLibraryName() { return "NPClient64.dll"; }
char librarySeparator() { return '\\'; }

#else
#include <dlfcn.h>

void* loadLibrary(const char* path) {
    if (path == nullptr) return nullptr;
    // RTLD_LOCAL keeps the client's symbols out of the simulator's global scope, where
    // the plug-ins of other vendors live.
    return dlopen(path, RTLD_NOW | RTLD_LOCAL);
}

void* findLibrarySymbol(void* library, const char* name) {
    if (library == nullptr || name == nullptr) return nullptr;
    return dlsym(library, name);
}

// There is no vendor build for Linux; a compatible client (or a bridge to one) is
// expected under this name in the folder that "NPClient Location.txt" names.
const char* trackIrLibraryName() { return "NPClient64.so"; }
char librarySeparator() { return '/'; }
#endif
