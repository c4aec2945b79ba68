// The operating system's own window of a popped-out panel, for the one thing the
// simulator offers no call for: keeping it above other windows. Where the platform
// has no such handle (Linux, macOS) both operations do nothing.
#pragma once

// The top-level window of this thread whose title equals `title` exactly; null if none.
void* findOsWindowByTitle(const char* title);
// Sets or clears the top-most state, keeping the window's position and size.
void setOsWindowTopmost(void* handle, bool topmost);
