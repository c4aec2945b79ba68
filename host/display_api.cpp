// The XPLMDisplay API of the host: draw callbacks, screen and monitor bounds, and the
// windows of plug-ins with their geometry, positioning, visibility and keyboard focus.
#include <algorithm>
#include <cstddef>
#include <cstring>

#include "host/window_state.h"

namespace xphost {
using namespace win;
}  // namespace xphost

using namespace xphost;

// ---------------------------------------------------------------- XPLMDisplay

int XPLMRegisterDrawCallback(XPLMDrawCallback_f callback, XPLMDrawingPhase phase, int before, void* refcon) {
    if (!checkThread("XPLMRegisterDrawCallback") || !callback) return 0;
    DrawCallback cb;
    cb.serial = state().nextSerial++;
    cb.plugin = callingPlugin();
    cb.callback = callback;
    cb.phase = phase;
    cb.before = before;
    cb.refcon = refcon;
    state().drawCallbacks.push_back(cb);
    return 1;
}

int XPLMUnregisterDrawCallback(XPLMDrawCallback_f callback, XPLMDrawingPhase phase, int before, void* refcon) {
    if (!checkThread("XPLMUnregisterDrawCallback")) return 0;
    auto& list = state().drawCallbacks;
    for (auto it = list.begin(); it != list.end(); ++it)
        if (it->callback == callback && it->phase == phase && (it->before != 0) == (before != 0) &&
            it->refcon == refcon && it->plugin == callingPlugin()) {
            list.erase(it);
            return 1;
        }
    return 0;
}

void XPLMGetScreenSize(int* width, int* height) {
    if (!checkThread("XPLMGetScreenSize")) return;
    const MonitorBounds& main = state().monitors.front();
    if (width) *width = main.right - main.left;
    if (height) *height = main.top - main.bottom;
}

void XPLMGetScreenBoundsGlobal(int* left, int* top, int* right, int* bottom) {
    if (!checkThread("XPLMGetScreenBoundsGlobal")) return;
    const MonitorBounds b = screenBounds();
    if (left) *left = b.left;
    if (top) *top = b.top;
    if (right) *right = b.right;
    if (bottom) *bottom = b.bottom;
}

void XPLMGetAllMonitorBoundsGlobal(XPLMReceiveMonitorBoundsGlobal_f callback, void* refcon) {
    if (!checkThread("XPLMGetAllMonitorBoundsGlobal") || !callback || !state().fullScreen) return;
    const auto list = state().monitors;
    for (size_t i = 0; i < list.size(); ++i)
        callback(static_cast<int>(i), list[i].left, list[i].top, list[i].right, list[i].bottom, refcon);
}

void XPLMGetAllMonitorBoundsOS(XPLMReceiveMonitorBoundsOS_f callback, void* refcon) {
    if (!checkThread("XPLMGetAllMonitorBoundsOS") || !callback) return;
    const auto list = state().monitors;
    for (size_t i = 0; i < list.size(); ++i)
        callback(static_cast<int>(i), toPixels(list[i].left), toPixels(list[i].top), toPixels(list[i].right),
                 toPixels(list[i].bottom), refcon);
}

XPLMWindowID XPLMCreateWindowEx(XPLMCreateWindow_t* params) {
    if (!checkThread("XPLMCreateWindowEx") || !params) return nullptr;
    installFont();
    Window w;
    // Older plug-ins pass a shorter structure; only what it holds is read.
    const size_t size = std::min(sizeof(XPLMCreateWindow_t), static_cast<size_t>(params->structSize > 0 ? params->structSize : 0));
    std::memcpy(&w.params, params, size);
    w.plugin = callingPlugin();
    w.left = params->left, w.top = params->top, w.right = params->right, w.bottom = params->bottom;
    w.visible = params->visible != 0;
    if (size >= offsetof(XPLMCreateWindow_t, decorateAsFloatingWindow) + sizeof(int))
        w.decoration = params->decorateAsFloatingWindow;
    if (size >= offsetof(XPLMCreateWindow_t, layer) + sizeof(int)) w.layer = params->layer;
    w.order = state().nextOrder++;
    syncOsGeometry(w);
    const uintptr_t id = state().nextId++;
    state().windows[id] = std::move(w);
    return toId(id);
}

XPLMWindowID XPLMCreateWindow(int left, int top, int right, int bottom, int visible, XPLMDrawWindow_f draw,
                              XPLMHandleKey_f keyFunc, XPLMHandleMouseClick_f mouse, void* refcon) {
    XPLMCreateWindow_t params{};
    params.structSize = offsetof(XPLMCreateWindow_t, decorateAsFloatingWindow);
    params.left = left, params.top = top, params.right = right, params.bottom = bottom;
    params.visible = visible;
    params.drawWindowFunc = draw;
    params.handleKeyFunc = keyFunc;
    params.handleMouseClickFunc = mouse;
    params.refcon = refcon;
    return XPLMCreateWindowEx(&params);
}

void XPLMDestroyWindow(XPLMWindowID id) {
    if (!checkThread("XPLMDestroyWindow") || !lookupOrLog(id, "XPLMDestroyWindow")) return;
    WindowState& s = state();
    if (s.focus == idOf(id)) s.focus = 0;
    if (s.captured == idOf(id)) {
        s.captured = 0;
        s.capture = Capture::none;
    }
    s.windows.erase(idOf(id));
}

void XPLMGetWindowGeometry(XPLMWindowID id, int* left, int* top, int* right, int* bottom) {
    if (!checkThread("XPLMGetWindowGeometry")) return;
    Window* w = lookupOrLog(id, "XPLMGetWindowGeometry");
    if (!w) return;
    if (left) *left = w->left;
    if (top) *top = w->top;
    if (right) *right = w->right;
    if (bottom) *bottom = w->bottom;
}

void XPLMSetWindowGeometry(XPLMWindowID id, int left, int top, int right, int bottom) {
    if (!checkThread("XPLMSetWindowGeometry")) return;
    Window* w = lookupOrLog(id, "XPLMSetWindowGeometry");
    if (!w) return;
    w->left = left, w->top = top, w->right = right, w->bottom = bottom;
    if (!w->poppedOut) syncOsGeometry(*w);
}

void XPLMGetWindowGeometryOS(XPLMWindowID id, int* left, int* top, int* right, int* bottom) {
    if (!checkThread("XPLMGetWindowGeometryOS")) return;
    Window* w = lookupOrLog(id, "XPLMGetWindowGeometryOS");
    if (!w) return;
    if (left) *left = w->osLeft;
    if (top) *top = w->osTop;
    if (right) *right = w->osRight;
    if (bottom) *bottom = w->osBottom;
}

void XPLMSetWindowGeometryOS(XPLMWindowID id, int left, int top, int right, int bottom) {
    if (!checkThread("XPLMSetWindowGeometryOS")) return;
    Window* w = lookupOrLog(id, "XPLMSetWindowGeometryOS");
    if (!w) return;
    w->osLeft = left, w->osTop = top, w->osRight = right, w->osBottom = bottom;
    // The simulator keeps the boxel geometry in step with the OS window.
    w->left = toBoxels(left), w->top = toBoxels(top), w->right = toBoxels(right), w->bottom = toBoxels(bottom);
}

void XPLMGetWindowGeometryVR(XPLMWindowID id, int* width, int* height) {
    if (!checkThread("XPLMGetWindowGeometryVR")) return;
    Window* w = lookupOrLog(id, "XPLMGetWindowGeometryVR");
    if (!w) return;
    if (width) *width = w->inVr ? w->vrWidth : 0;
    if (height) *height = w->inVr ? w->vrHeight : 0;
}

void XPLMSetWindowGeometryVR(XPLMWindowID id, int width, int height) {
    if (!checkThread("XPLMSetWindowGeometryVR")) return;
    if (Window* w = lookupOrLog(id, "XPLMSetWindowGeometryVR")) w->vrWidth = width, w->vrHeight = height;
}

int XPLMGetWindowIsVisible(XPLMWindowID id) {
    if (!checkThread("XPLMGetWindowIsVisible")) return 0;
    Window* w = lookupOrLog(id, "XPLMGetWindowIsVisible");
    return w && w->visible ? 1 : 0;
}

void XPLMSetWindowIsVisible(XPLMWindowID id, int visible) {
    if (!checkThread("XPLMSetWindowIsVisible")) return;
    Window* w = lookupOrLog(id, "XPLMSetWindowIsVisible");
    if (!w) return;
    if (visible && !w->visible && w->layer == xplm_WindowLayerFloatingWindows) bringToFront(*w);
    w->visible = visible != 0;
}

int XPLMWindowIsPoppedOut(XPLMWindowID id) {
    if (!checkThread("XPLMWindowIsPoppedOut")) return 0;
    Window* w = lookupOrLog(id, "XPLMWindowIsPoppedOut");
    return w && w->poppedOut ? 1 : 0;
}

int XPLMWindowIsInVR(XPLMWindowID id) {
    if (!checkThread("XPLMWindowIsInVR")) return 0;
    Window* w = lookupOrLog(id, "XPLMWindowIsInVR");
    return w && w->inVr ? 1 : 0;
}

void XPLMSetWindowGravity(XPLMWindowID id, float left, float top, float right, float bottom) {
    if (!checkThread("XPLMSetWindowGravity")) return;
    Window* w = lookupOrLog(id, "XPLMSetWindowGravity");
    if (!w) return;
    w->gravity[0] = left, w->gravity[1] = top, w->gravity[2] = right, w->gravity[3] = bottom;
}

void XPLMSetWindowResizingLimits(XPLMWindowID id, int minWidth, int minHeight, int maxWidth, int maxHeight) {
    if (!checkThread("XPLMSetWindowResizingLimits")) return;
    Window* w = lookupOrLog(id, "XPLMSetWindowResizingLimits");
    if (!w) return;
    w->minWidth = minWidth, w->minHeight = minHeight, w->maxWidth = maxWidth, w->maxHeight = maxHeight;
}

void XPLMSetWindowPositioningMode(XPLMWindowID id, XPLMWindowPositioningMode mode, int monitorIndex) {
    if (!checkThread("XPLMSetWindowPositioningMode")) return;
    Window* w = lookupOrLog(id, "XPLMSetWindowPositioningMode");
    if (!w) return;
    const SimDataRef* vrRef = simDataRef("sim/graphics/VR/enabled");
    const bool vr = vrRef && vrRef->i != 0;
    if (mode == xplm_WindowVR && !vr) return;  // X-Plane ignores VR placement outside VR
    w->mode = mode;
    w->modeMonitor = monitorIndex;
    w->inVr = mode == xplm_WindowVR;
    const bool wasPoppedOut = w->poppedOut;
    w->poppedOut = mode == xplm_WindowPopOut;
    if (w->poppedOut && !wasPoppedOut) syncOsGeometry(*w);
    if (w->inVr && w->vrWidth == 0) w->vrWidth = w->right - w->left, w->vrHeight = w->top - w->bottom;
    applyMode(*w);
}

void XPLMSetWindowTitle(XPLMWindowID id, const char* title) {
    if (!checkThread("XPLMSetWindowTitle")) return;
    if (Window* w = lookupOrLog(id, "XPLMSetWindowTitle")) w->title = title ? title : "";
}

void* XPLMGetWindowRefCon(XPLMWindowID id) {
    if (!checkThread("XPLMGetWindowRefCon")) return nullptr;
    Window* w = lookupOrLog(id, "XPLMGetWindowRefCon");
    return w ? w->params.refcon : nullptr;
}

void XPLMSetWindowRefCon(XPLMWindowID id, void* refcon) {
    if (!checkThread("XPLMSetWindowRefCon")) return;
    if (Window* w = lookupOrLog(id, "XPLMSetWindowRefCon")) w->params.refcon = refcon;
}

void XPLMTakeKeyboardFocus(XPLMWindowID id) {
    if (!checkThread("XPLMTakeKeyboardFocus")) return;
    WindowState& s = state();
    if (id && !lookupOrLog(id, "XPLMTakeKeyboardFocus")) return;
    const uintptr_t previous = s.focus;
    if (previous == idOf(id)) return;
    s.focus = idOf(id);
    // The window that loses the keyboard hears of it through its key callback.
    if (Window* old = lookup(toId(previous)); old && old->params.handleKeyFunc && pluginActive(old->plugin)) {
        PluginScope scope(old->plugin);
        old->params.handleKeyFunc(toId(previous), 0, 0, 0, old->params.refcon, 1);
    }
}

int XPLMHasKeyboardFocus(XPLMWindowID id) {
    if (!checkThread("XPLMHasKeyboardFocus")) return 0;
    return state().focus == idOf(id) ? 1 : 0;
}

void XPLMBringWindowToFront(XPLMWindowID id) {
    if (!checkThread("XPLMBringWindowToFront")) return;
    if (Window* w = lookupOrLog(id, "XPLMBringWindowToFront")) bringToFront(*w);
}

int XPLMIsWindowInFront(XPLMWindowID id) {
    if (!checkThread("XPLMIsWindowInFront")) return 0;
    Window* w = lookupOrLog(id, "XPLMIsWindowInFront");
    if (!w) return 0;
    for (auto& [other, o] : state().windows)
        if (other != idOf(id) && o.layer == w->layer && o.visible && o.order > w->order) return 0;
    return 1;
}
