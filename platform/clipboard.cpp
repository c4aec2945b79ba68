#include "platform/clipboard.h"

#include <cstring>

#ifdef _WIN32
#include <windows.h>

bool copyTextToClipboard(const char* text) {
    if (!OpenClipboard(nullptr)) return false;
    EmptyClipboard();
    const size_t size = std::strlen(text) + 1;
    HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, size);
    bool done = false;
    if (memory) {
        std::memcpy(GlobalLock(memory), text, size);
        GlobalUnlock(memory);
        done = SetClipboardData(CF_TEXT, memory) != nullptr;
        if (!done) GlobalFree(memory);
    }
    CloseClipboard();
    return done;
}

#else
#include "platform/process_hooks.h"

bool copyTextToClipboard(const char* text) {
    using Set = int (*)(const char*);
    auto set = reinterpret_cast<Set>(findProcessFunction("vistarig_clipboard_set"));
    return set && set(text) != 0;
}
#endif
