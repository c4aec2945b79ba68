#include "platform/window_handles.h"

#ifdef _WIN32
#include <windows.h>

#include <cstring>

namespace {
struct TitleSearch {
    const char* title;
    HWND found;
};

BOOL CALLBACK matchTitle(HWND window, LPARAM param) {
    auto* search = reinterpret_cast<TitleSearch*>(param);
    char text[2000] = {};
    GetWindowTextA(window, text, sizeof text);
    if (std::strcmp(text, search->title) == 0) {
        search->found = window;
        return FALSE;
    }
    return TRUE;
}
}  // namespace

void* findOsWindowByTitle(const char* title) {
    if (!title) return nullptr;
    TitleSearch search{title, nullptr};
    EnumThreadWindows(GetCurrentThreadId(), matchTitle, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

void setOsWindowTopmost(void* handle, bool topmost) {
    if (!handle) return;
    HWND window = static_cast<HWND>(handle);
    RECT rect;
    if (!GetWindowRect(window, &rect)) return;
    SetWindowPos(window, topmost ? HWND_TOPMOST : HWND_NOTOPMOST, rect.left, rect.top, rect.right - rect.left,
                 rect.bottom - rect.top, 0);
}

#else

void* findOsWindowByTitle(const char*) { return nullptr; }
void setOsWindowTopmost(void*, bool) {}

#endif
