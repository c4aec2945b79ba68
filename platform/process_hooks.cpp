#include "platform/process_hooks.h"

#ifdef _WIN32
#include <windows.h>

#include <initializer_list>

void* findProcessFunction(const char* name) {
    for (const char* module : {"XPLM_64.dll", static_cast<const char*>(nullptr)}) {
        HMODULE handle = GetModuleHandleA(module);
        if (!handle) continue;
        if (FARPROC found = GetProcAddress(handle, name)) return reinterpret_cast<void*>(found);
    }
    return nullptr;
}

void keepModuleLoaded() {
    HMODULE module = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                       reinterpret_cast<LPCSTR>(&keepModuleLoaded), &module);
}

#else
#include <dlfcn.h>

void* findProcessFunction(const char* name) { return dlsym(RTLD_DEFAULT, name); }

void keepModuleLoaded() {
    Dl_info info{};
    if (!dladdr(reinterpret_cast<void*>(&keepModuleLoaded), &info) || !info.dli_fname) return;
    // A second reference with RTLD_NODELETE: the module stays mapped after dlclose.
    dlopen(info.dli_fname, RTLD_NOW | RTLD_NOLOAD | RTLD_NODELETE);
}
#endif

const char* processCommunityServer() {
    using Query = const char* (*)();
    auto query = reinterpret_cast<Query>(findProcessFunction("vistarig_community_server"));
    return query ? query() : nullptr;
}
