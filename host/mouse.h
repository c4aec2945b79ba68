// The simulator's mouse: where it stands on the desktop (global boxels, origin at the
// bottom left of the main screen), which buttons are down, and the wheel. Pressing,
// dragging and turning the wheel are handed to the window module, which routes them
// to the windows under the mouse. The middle button is also offered to plug-ins'
// platform layer through the C function vistarig_middle_button_down().
#pragma once

#include <functional>

namespace xphost {

enum class MouseButton { Left = 0, Right = 1, Middle = 2 };
enum class MouseEventKind { Down = 1, Drag = 2, Up = 3, Wheel = 4 };

struct MouseEvent {
    MouseEventKind kind = MouseEventKind::Down;
    MouseButton button = MouseButton::Left;
    int x = 0, y = 0;
    int wheelAxis = 0;  // 0 vertical, 1 horizontal
    int clicks = 0;
};

void setMousePosition(int x, int y);
int mouseX();
int mouseY();
void pressMouseButton(MouseButton button);
void releaseMouseButton(MouseButton button);
bool mouseButtonDown(MouseButton button);
void turnMouseWheel(int clicks, int axis = 0);

// The window module routes events: result true when a window took the event. Until a
// router is set, events reach no window.
using MouseRouter = std::function<bool(const MouseEvent& event)>;
void setMouseRouter(MouseRouter router);

}  // namespace xphost
