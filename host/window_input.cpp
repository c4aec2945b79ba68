// Mouse input into the simulator's windows as X-Plane routes it: presses to the
// front-most window that takes them, drags and releases to the window that took the
// press, the title bar, close, pop-out and resize controls of decorated windows, the
// wheel and the cursor; and keys to the window with keyboard focus.
#include <algorithm>

#include "host/window_state.h"

namespace xphost {

using namespace win;

namespace win {

// Press, drag and release as X-Plane routes them: the press goes to the front-most
// window under the pointer whose callback takes it (result 1), or through to the one
// below; drags and the release go to the window that took the press.
bool routeButton(int button, int status, int x, int y) {
    WindowState& s = state();
    if (status != xplm_MouseDown) {
        if (s.capture == Capture::none || button != s.captureButton) return false;
        const uintptr_t id = s.captured;
        const Capture kind = s.capture;
        if (status == xplm_MouseUp) {
            s.capture = Capture::none;
            s.captured = 0;
        }
        Window* w = lookup(toId(id));
        if (!w) return true;
        if (kind == Capture::resize) {
            // The top left corner stays; the size follows the pointer within the
            // window's resizing limits.
            const int width = std::clamp(s.resizeWidth + (x - s.resizeFromX), std::max(w->minWidth, 40),
                                         std::max(w->maxWidth, 40));
            const int height = std::clamp(s.resizeHeight - (y - s.resizeFromY), std::max(w->minHeight, 30),
                                          std::max(w->maxHeight, 30));
            w->right = w->left + width;
            w->bottom = w->top - height;
            syncOsGeometry(*w);
            return true;
        }
        if (kind == Capture::titleBar) {
            const int dx = x - s.lastDragX, dy = y - s.lastDragY;
            s.lastDragX = x;
            s.lastDragY = y;
            w->left += dx, w->right += dx, w->top += dy, w->bottom += dy;
            syncOsGeometry(*w);
            return true;
        }
        int result = 0;
        sendClick(id, button, status, x, y, result);
        return true;
    }
    const auto order = stacking();
    for (auto it = order.rbegin(); it != order.rend(); ++it) {
        Window* w = lookup(toId(*it));
        if (!w || !onScreen(*w)) continue;
        if (inResizeCorner(*w, x, y)) {
            if (w->layer == xplm_WindowLayerFloatingWindows) bringToFront(*w);
            s.capture = Capture::resize;
            s.captured = *it;
            s.captureButton = button;
            s.resizeFromX = x, s.resizeFromY = y;
            s.resizeWidth = w->right - w->left, s.resizeHeight = w->top - w->bottom;
            return true;
        }
        if (inTitleBar(*w, x, y)) {
            if (w->layer == xplm_WindowLayerFloatingWindows) bringToFront(*w);
            if (inCloseBox(*w, x, y)) {
                w->visible = false;  // the simulator's close box hides, it doesn't destroy
                return true;
            }
            if (inPopOutBox(*w, x, y)) {
                w->mode = xplm_WindowPopOut;
                w->modeMonitor = -1;
                w->poppedOut = true;
                syncOsGeometry(*w);
                return true;
            }
            s.capture = Capture::titleBar;
            s.captured = *it;
            s.captureButton = button;
            s.lastDragX = x;
            s.lastDragY = y;
            return true;
        }
        if (!inClient(*w, x, y)) continue;
        int result = 0;
        sendClick(*it, button, status, x, y, result);
        if (!result) continue;
        if (Window* still = lookup(toId(*it)); still && still->layer == xplm_WindowLayerFloatingWindows)
            bringToFront(*still);
        s.capture = Capture::client;
        s.captured = *it;
        s.captureButton = button;
        return true;
    }
    return false;
}

bool routeWheel(int x, int y, int clicks, int axis) {
    const auto order = stacking();
    for (auto it = order.rbegin(); it != order.rend(); ++it) {
        Window* w = lookup(toId(*it));
        if (!w || !onScreen(*w) || !inClient(*w, x, y) || !w->params.handleMouseWheelFunc) continue;
        PluginScope scope(w->plugin);
        if (w->params.handleMouseWheelFunc(toId(*it), x, y, axis, clicks, w->params.refcon)) return true;
    }
    return false;
}

// Front to back under the pointer: the first window that asks for a cursor decides
// it; one that answers xplm_CursorDefault (or has no callback) passes the move on to
// the windows below, and after them to the simulator.
void routeCursor(int x, int y) {
    const auto order = stacking();
    for (auto it = order.rbegin(); it != order.rend(); ++it) {
        Window* w = lookup(toId(*it));
        if (!w || !onScreen(*w) || !inClient(*w, x, y) || !w->params.handleCursorFunc) continue;
        PluginScope scope(w->plugin);
        if (w->params.handleCursorFunc(toId(*it), x, y, w->params.refcon) != xplm_CursorDefault) return;
    }
}

bool routeMouse(const MouseEvent& event) {
    if (event.kind == MouseEventKind::Wheel) return routeWheel(event.x, event.y, event.clicks, event.wheelAxis);
    if (event.button == MouseButton::Middle) return false;
    return routeButton(static_cast<int>(event.button), static_cast<int>(event.kind), event.x, event.y);
}

struct CursorHook {
    CursorHook() { addFrameHook(FramePoint::Input, "window cursor", [] { routeCursor(mouseX(), mouseY()); }); }
} cursorHook;

}  // namespace win

void mouseMove(int x, int y) {
    setMousePosition(x, y);
    routeCursor(x, y);
}

void mouseButton(int button, int status, int x, int y) {
    setMousePosition(x, y);
    const MouseButton b = button == 1 ? MouseButton::Right : MouseButton::Left;
    if (status == xplm_MouseDown)
        pressMouseButton(b);
    else if (status == xplm_MouseUp)
        releaseMouseButton(b);
    else
        routeButton(button, status, x, y);
}

void click(int x, int y, int button) {
    mouseButton(button, xplm_MouseDown, x, y);
    mouseButton(button, xplm_MouseUp, x, y);
}

void drag(int x1, int y1, int x2, int y2, int steps, int button) {
    if (steps < 1) steps = 1;
    mouseButton(button, xplm_MouseDown, x1, y1);
    // The mouse module sends the held button's drag event at every frame.
    for (int i = 1; i <= steps; ++i) {
        mouseMove(x1 + (x2 - x1) * i / steps, y1 + (y2 - y1) * i / steps);
        runFrames(1);
    }
    mouseButton(button, xplm_MouseUp, x2, y2);
}

void wheel(int x, int y, int clicks, int axis) {
    setMousePosition(x, y);
    turnMouseWheel(clicks, axis);
}

bool sendKeyToFocusedWindow(char keyChar, int flags, int virtualKey) {
    WindowState& s = state();
    Window* w = lookup(toId(s.focus));
    if (!w || !w->params.handleKeyFunc || !pluginActive(w->plugin)) return false;
    PluginScope scope(w->plugin);
    w->params.handleKeyFunc(toId(s.focus), keyChar, flags, static_cast<char>(virtualKey), w->params.refcon, 0);
    return true;
}

}  // namespace xphost
