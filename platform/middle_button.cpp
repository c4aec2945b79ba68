#include "platform/middle_button.h"

#ifdef _WIN32
#include <windows.h>

bool physicalMiddleButtonDown() { return GetAsyncKeyState(VK_MBUTTON) != 0; }

#else
#include "platform/process_hooks.h"

bool physicalMiddleButtonDown() {
    using ButtonQuery = int (*)();
    auto query = reinterpret_cast<ButtonQuery>(findProcessFunction("vistarig_middle_button_down"));
    return query != nullptr && query() != 0;
}
#endif
