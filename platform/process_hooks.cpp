#include "platform/process_hooks.h"

#ifdef _WIN32
#include <windows.h>

const char* processCommunityServer() { return nullptr; }

void keepModuleLoaded() {
    HMODULE module = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                       reinterpret_cast<LPCSTR>(&keepModuleLoaded), &module);
}

#else
#include <dlfcn.h>

const char* processCommunityServer() {
    using Query = const char* (*)();
    auto query = reinterpret_cast<Query>(dlsym(RTLD_DEFAULT, "vistarig_community_server"));
    return query ? query() : nullptr;
}

void keepModuleLoaded() {
    Dl_info info{};
    if (!dladdr(reinterpret_cast<void*>(&keepModuleLoaded), &info) || !info.dli_fname) return;
    // A second reference with RTLD_NODELETE: the module stays mapped after dlclose.
    dlopen(info.dli_fname, RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE);
}
#endif
