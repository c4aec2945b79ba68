#include "platform/middle_button.h"

#ifdef _WIN32
#include <windows.h>

bool physicalMiddleButtonDown() { return GetAsyncKeyState(VK_MBUTTON) != 0; }

#else
#include <dlfcn.h>

namespace {
using ButtonQuery = int (*)();

ButtonQuery findQuery() {
    // Looked up on each call rather than cached: the simulator stand-in of the tests
    // may be reloaded, and dlsym on the global scope is cheap next to a frame.
    return reinterpret_cast<ButtonQuery>(dlsym(RTLD_DEFAULT, "vistarig_middle_button_down"));
}
}  // namespace

bool physicalMiddleButtonDown() {
    ButtonQuery query = findQuery();
    return query != nullptr && query() != 0;
}
#endif
