// Simulator windows of plug-ins: creation with every callback, geometry in global
// boxels and OS pixels, positioning modes, visibility, layers and z-order, keyboard
// focus, the title bar of decorated windows, input routing, monitors, and the draw
// pass that runs the draw callbacks and windows each frame in the Mesa context.
#include <GL/gl.h>

#include <sys/stat.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <fstream>
#include <map>
#include <memory>

#include "XPLMDisplay.h"
#include "XPLMGraphics.h"
#include "host/host_internal.h"
#include "host/mouse.h"
#include "host/scene.h"
#include "host/title_text.h"
#include "host/windows.h"

namespace xphost {

namespace {

struct Window {
    int plugin = 0;
    XPLMCreateWindow_t params{};
    int left = 0, top = 0, right = 0, bottom = 0;
    int osLeft = 0, osTop = 0, osRight = 0, osBottom = 0;
    bool visible = false;
    int decoration = 0;
    int layer = xplm_WindowLayerFloatingWindows;
    std::string title;
    int mode = xplm_WindowPositionFree;
    int modeMonitor = -1;
    bool poppedOut = false;
    bool inVr = false;
    float gravity[4] = {0, 1, 0, 1};
    int minWidth = 0, minHeight = 0, maxWidth = INT_MAX, maxHeight = INT_MAX;
    int vrWidth = 0, vrHeight = 0;
    uint64_t order = 0;
    int drawCount = 0;
    std::vector<uint8_t> popBuffer;
    std::vector<uint8_t> vrBuffer;  // the panel a VR window shows in the headset
    std::string titleShown;  // what the title bar showed at the last draw
};

struct DrawCallback {
    uint64_t serial = 0;
    int plugin = 0;
    XPLMDrawCallback_f callback = nullptr;
    int phase = 0;
    int before = 0;
    void* refcon = nullptr;
};

enum class Capture { none, client, titleBar, resize };

struct WindowState {
    std::map<uintptr_t, Window> windows;
    uintptr_t nextId = 1;
    uint64_t nextOrder = 1;
    uint64_t nextSerial = 1;
    uintptr_t focus = 0;
    uintptr_t captured = 0;
    Capture capture = Capture::none;
    int captureButton = 0;
    bool screenStale = true;  // frames were skipped since the last real draw
    bool drawing = true;      // off: callbacks run, nothing is drawn
    std::vector<uint8_t> blindPixel;
    int lastDragX = 0, lastDragY = 0;  // title bar drags move by the pointer's steps
    int resizeFromX = 0, resizeFromY = 0, resizeWidth = 0, resizeHeight = 0;  // a corner drag's start
    std::vector<MonitorBounds> monitors{MonitorBounds{0, 1080, 1920, 0}};
    bool fullScreen = true;
    float scale = 1.0f;
    std::vector<DrawCallback> drawCallbacks;
    SimDataRef* modelView = nullptr;
    SimDataRef* projection = nullptr;
    SimDataRef* viewport = nullptr;
    SimDataRef* windowWidth = nullptr;
    SimDataRef* windowHeight = nullptr;
};

WindowState& state() {
    static WindowState s;
    return s;
}

uintptr_t idOf(XPLMWindowID id) { return reinterpret_cast<uintptr_t>(id); }
XPLMWindowID toId(uintptr_t id) { return reinterpret_cast<XPLMWindowID>(id); }

Window* lookup(XPLMWindowID id) {
    auto it = state().windows.find(idOf(id));
    return it == state().windows.end() ? nullptr : &it->second;
}

// Unknown ids are a plug-in bug that X-Plane would crash on; here it is logged.
Window* lookupOrLog(XPLMWindowID id, const char* function) {
    Window* w = lookup(id);
    if (!w) writeLog(std::string("xplm_host: ") + function + " with an unknown window id\n");
    return w;
}

MonitorBounds screenBounds() {
    MonitorBounds b;
    const auto& list = state().monitors;
    for (size_t i = 0; i < list.size(); ++i) {
        const MonitorBounds& m = list[i];
        if (i == 0 || m.left < b.left) b.left = m.left;
        if (i == 0 || m.right > b.right) b.right = m.right;
        if (i == 0 || m.top > b.top) b.top = m.top;
        if (i == 0 || m.bottom < b.bottom) b.bottom = m.bottom;
    }
    return b;
}

int toPixels(int boxels) { return static_cast<int>(static_cast<float>(boxels) * state().scale + 0.5f); }
int toBoxels(int pixels) { return static_cast<int>(static_cast<float>(pixels) / state().scale + 0.5f); }

void syncOsGeometry(Window& w) {
    w.osLeft = toPixels(w.left);
    w.osTop = toPixels(w.top);
    w.osRight = toPixels(w.right);
    w.osBottom = toPixels(w.bottom);
}

// Modes that tie the window to monitors keep its geometry in step with them.
void applyMode(Window& w) {
    const auto& list = state().monitors;
    const MonitorBounds all = screenBounds();
    const MonitorBounds one =
        (w.modeMonitor >= 0 && w.modeMonitor < static_cast<int>(list.size())) ? list[static_cast<size_t>(w.modeMonitor)]
                                                                                : list.front();
    switch (w.mode) {
        case xplm_WindowCenterOnMonitor: {
            const int width = w.right - w.left, height = w.top - w.bottom;
            w.left = (one.left + one.right) / 2 - width / 2;
            w.right = w.left + width;
            w.bottom = (one.top + one.bottom) / 2 - height / 2;
            w.top = w.bottom + height;
            break;
        }
        case xplm_WindowFullScreenOnMonitor:
            w.left = one.left, w.top = one.top, w.right = one.right, w.bottom = one.bottom;
            break;
        case xplm_WindowFullScreenOnAllMonitors:
            w.left = all.left, w.top = all.top, w.right = all.right, w.bottom = all.bottom;
            break;
        default: break;
    }
}

// Back to front: layer, then the order of bringing to front.
std::vector<uintptr_t> stacking() {
    std::vector<uintptr_t> ids;
    for (auto& [id, w] : state().windows) ids.push_back(id);
    std::sort(ids.begin(), ids.end(), [](uintptr_t a, uintptr_t b) {
        const Window& wa = state().windows[a];
        const Window& wb = state().windows[b];
        if (wa.layer != wb.layer) return wa.layer < wb.layer;
        return wa.order < wb.order;
    });
    return ids;
}

bool onScreen(const Window& w) { return w.visible && !w.poppedOut && !w.inVr && pluginActive(w.plugin); }

bool inClient(const Window& w, int x, int y) { return x >= w.left && x < w.right && y >= w.bottom && y < w.top; }
bool inTitleBar(const Window& w, int x, int y) {
    return w.decoration == xplm_WindowDecorationRoundRectangle && x >= w.left && x < w.right && y >= w.top &&
           y < w.top + titleBarHeight;
}
bool inCloseBox(const Window& w, int x, int y) { return inTitleBar(w, x, y) && x >= w.right - 26 && x < w.right - 4; }
// The title bar offers popping out to a decorated floating window that stands free
// on the screen (not in VR, not held to a monitor by its positioning mode).
bool canPopOut(const Window& w) {
    return w.decoration == xplm_WindowDecorationRoundRectangle && w.layer == xplm_WindowLayerFloatingWindows &&
           w.mode == xplm_WindowPositionFree && !w.inVr && !w.poppedOut;
}
bool inPopOutBox(const Window& w, int x, int y) {
    return canPopOut(w) && inTitleBar(w, x, y) && x >= w.right - 52 && x < w.right - 30;
}
// The grip at the bottom right corner of a window the simulator resizes.
constexpr int resizeGrip = 14;
bool resizable(const Window& w) {
    return (w.decoration == xplm_WindowDecorationRoundRectangle ||
            w.decoration == xplm_WindowDecorationSelfDecoratedResizable) &&
           w.mode == xplm_WindowPositionFree;
}
bool inResizeCorner(const Window& w, int x, int y) {
    return resizable(w) && x >= w.right - resizeGrip && x < w.right + 3 && y >= w.bottom - 3 &&
           y < w.bottom + resizeGrip;
}

void bringToFront(Window& w) { w.order = state().nextOrder++; }

void loadMatrices(const float* modelView, const float* projection, const int* viewport) {
    glViewport(viewport[0], viewport[1], viewport[2], viewport[3]);
    glMatrixMode(GL_PROJECTION);
    glLoadMatrixf(projection);
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixf(modelView);
}

// A plain modelview and a projection that maps the area's global boxels onto a
// viewport in pixels: the boxel-to-pixel scale lives in the projection, as in
// X-Plane's window pass. A plug-in that flips and moves the projection by its
// window's boxels (the usual way to draw ImGui in a simulator window) depends on
// this split; with the scale in the modelview its drawing slid off its window at
// any scale but 1.
void screenMatrices(float modelView[16], float projection[16], int viewport[4], const MonitorBounds& area,
                    int pixelWidth, int pixelHeight) {
    std::memset(modelView, 0, 16 * sizeof(float));
    std::memset(projection, 0, 16 * sizeof(float));
    modelView[0] = modelView[5] = modelView[10] = modelView[15] = 1;
    const float width = static_cast<float>(area.right - area.left);
    const float height = static_cast<float>(area.top - area.bottom);
    projection[0] = 2.0f / width;
    projection[5] = 2.0f / height;
    projection[10] = -1;
    projection[12] = -static_cast<float>(area.right + area.left) / width;
    projection[13] = -static_cast<float>(area.top + area.bottom) / height;
    projection[15] = 1;
    viewport[0] = 0;
    viewport[1] = 0;
    viewport[2] = pixelWidth;
    viewport[3] = pixelHeight;
}

void publishMatrices(const float modelView[16], const float projection[16], const int viewport[4]) {
    WindowState& s = state();
    if (s.modelView) s.modelView->floats.assign(modelView, modelView + 16);
    if (s.projection) s.projection->floats.assign(projection, projection + 16);
    if (s.viewport) s.viewport->ints.assign(viewport, viewport + 4);
}

struct PassMatrices {
    float modelView[16];
    float projection[16];
    int viewport[4];
};

// Every callback starts from the same state, whatever the previous one left.
void restoreState(const PassMatrices& m) {
    glDisable(GL_SCISSOR_TEST);
    XPLMSetGraphicsState(0, 0, 0, 0, 1, 0, 0);
    loadMatrices(m.modelView, m.projection, m.viewport);
    glColor4f(1, 1, 1, 1);
}

void drawQuad(int left, int top, int right, int bottom, float r, float g, float b, float a) {
    glColor4f(r, g, b, a);
    glBegin(GL_QUADS);
    glVertex2i(left, bottom);
    glVertex2i(right, bottom);
    glVertex2i(right, top);
    glVertex2i(left, top);
    glEnd();
}

void drawResizeGrip(const Window& w) {
    glColor4f(0.75f, 0.77f, 0.8f, 1.0f);
    glBegin(GL_TRIANGLES);
    glVertex2i(w.right - resizeGrip + 4, w.bottom + 1);
    glVertex2i(w.right - 1, w.bottom + 1);
    glVertex2i(w.right - 1, w.bottom + resizeGrip - 4);
    glEnd();
}

// Frame, title bar with the title's text, the pop-out and close boxes; the resize
// grip comes after the window's own drawing, on top of it.
void drawDecoration(Window& w) {
    if (w.decoration != xplm_WindowDecorationRoundRectangle) return;
    drawQuad(w.left - 2, w.top + titleBarHeight, w.right + 2, w.bottom - 2, 0.16f, 0.17f, 0.19f, 1.0f);
    drawQuad(w.right - 26, w.top + titleBarHeight - 5, w.right - 4, w.top + 5, 0.55f, 0.22f, 0.22f, 1.0f);
    int textEnd = w.right - 30;
    if (canPopOut(w)) {
        drawQuad(w.right - 52, w.top + titleBarHeight - 5, w.right - 30, w.top + 5, 0.25f, 0.4f, 0.6f, 1.0f);
        drawQuad(w.right - 46, w.top + titleBarHeight - 9, w.right - 36, w.top + 9, 0.16f, 0.17f, 0.19f, 1.0f);
        textEnd = w.right - 56;
    }
    w.titleShown = drawTitleText(w.title, static_cast<float>(w.left + 8), static_cast<float>(w.top + 10),
                                 static_cast<float>(textEnd - w.left - 8), state().scale);
}

void callWindowDraw(uintptr_t id, const PassMatrices& m) {
    Window* w = lookup(toId(id));
    if (!w || !w->params.drawWindowFunc) return;
    restoreState(m);
    ++w->drawCount;
    PluginScope scope(w->plugin);
    w->params.drawWindowFunc(toId(id), w->params.refcon);  // may destroy the window
}

void drawPoppedOut(uintptr_t id) {
    Window* w = lookup(toId(id));
    if (!w) return;
    const int width = w->osRight - w->osLeft, height = w->osTop - w->osBottom;
    if (!makeBufferCurrent(w->popBuffer, width, height)) return;
    PassMatrices m;
    screenMatrices(m.modelView, m.projection, m.viewport, MonitorBounds{w->left, w->top, w->right, w->bottom}, width,
                   height);
    publishMatrices(m.modelView, m.projection, m.viewport);
    restoreState(m);
    glClearColor(0.1f, 0.1f, 0.1f, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    callWindowDraw(id, m);
    glFinish();
}

// A window in VR is drawn onto a panel of its own, its VR size in boxels, with the
// window's origin at the panel's lower left.
void drawInVr(uintptr_t id) {
    Window* w = lookup(toId(id));
    if (!w || w->vrWidth <= 0 || w->vrHeight <= 0) return;
    const int width = toPixels(w->vrWidth), height = toPixels(w->vrHeight);
    if (!makeBufferCurrent(w->vrBuffer, width, height)) return;
    PassMatrices m;
    screenMatrices(m.modelView, m.projection, m.viewport,
                   MonitorBounds{w->left, w->bottom + w->vrHeight, w->left + w->vrWidth, w->bottom}, width, height);
    publishMatrices(m.modelView, m.projection, m.viewport);
    restoreState(m);
    glClearColor(0, 0, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT);
    callWindowDraw(id, m);
    glFinish();
}

void runDrawCallbacks(int phase, int before, const PassMatrices& m) {
    std::vector<DrawCallback> list = state().drawCallbacks;
    for (const DrawCallback& cb : list) {
        if (cb.phase != phase || (cb.before != 0) != (before != 0)) continue;
        const auto& live = state().drawCallbacks;
        if (std::none_of(live.begin(), live.end(), [&](const DrawCallback& c) { return c.serial == cb.serial; }))
            continue;  // unregistered by an earlier callback of this pass
        if (!pluginActive(cb.plugin)) continue;
        restoreState(m);
        PluginScope scope(cb.plugin);
        cb.callback(phase, before, cb.refcon);
    }
}

bool routeMouse(const MouseEvent& event);

void resetWindows() {
    WindowState& s = state();
    s.windows.clear();
    s.nextOrder = 1;
    s.focus = 0;
    s.captured = 0;
    s.capture = Capture::none;
    s.monitors = {MonitorBounds{0, 1080, 1920, 0}};
    s.fullScreen = true;
    s.scale = 1.0f;
    s.drawCallbacks.clear();
    s.screenStale = true;
    s.drawing = true;
    s.modelView = defineFloatArray("sim/graphics/view/modelview_matrix", 16, false);
    s.projection = defineFloatArray("sim/graphics/view/projection_matrix", 16, false);
    s.viewport = defineIntArray("sim/graphics/view/viewport", 4, false);
    s.windowWidth = defineInt("sim/graphics/view/window_width", 1920, false);
    s.windowHeight = defineInt("sim/graphics/view/window_height", 1080, false);
    setMouseRouter(routeMouse);
    PassMatrices m;
    const MonitorBounds all = screenBounds();
    screenMatrices(m.modelView, m.projection, m.viewport, all, toPixels(all.right - all.left),
                   toPixels(all.top - all.bottom));
    publishMatrices(m.modelView, m.projection, m.viewport);
}

void listLeaks(int plugin, std::vector<std::string>& out) {
    WindowState& s = state();
    for (auto& [id, w] : s.windows)
        if (w.plugin == plugin) out.push_back("window \"" + w.title + "\" still exists");
    for (auto& cb : s.drawCallbacks)
        if (cb.plugin == plugin) out.push_back("draw callback of phase " + std::to_string(cb.phase) + " still registered");
}

HostModule windowsModule("windows", resetWindows, listLeaks);

// A frame with nothing of a plug-in's to draw only clears the sky: it is left out,
// and drawn when somebody looks at the screen.
void drawFrameIfNeeded() {
    WindowState& s = state();
    bool anything = false;
    for (auto& [id, w] : s.windows) anything = anything || (w.visible && pluginActive(w.plugin));
    for (auto& cb : s.drawCallbacks) anything = anything || pluginActive(cb.plugin);
    if (anything)
        drawScreen();
    else
        s.screenStale = true;
}

void drawIfStale() {
    if (state().screenStale && state().drawing) drawScreen();
}

struct DrawHook {
    DrawHook() { addFrameHook(FramePoint::Draw, "windows", drawFrameIfNeeded); }
} drawHook;

// X-Plane ships the panels' font in "Resources/fonts"; the host's tree gets it from
// Debian's fonts-roboto the first time a window is made under a root.
void installFont() {
    static std::string installedUnder;
    const std::string base = root();
    if (installedUnder == base) return;
    installedUnder = base;
    const std::string target = base + "Resources/fonts/Roboto-Regular.ttf";
    struct stat info {};
    if (::stat(target.c_str(), &info) == 0) return;
    std::ifstream in("/usr/share/fonts/truetype/roboto/unhinted/RobotoTTF/Roboto-Regular.ttf", std::ios::binary);
    if (!in) return;
    ::mkdir(base.c_str(), 0755);
    ::mkdir((base + "Resources").c_str(), 0755);
    ::mkdir((base + "Resources/fonts").c_str(), 0755);
    std::ofstream out(target, std::ios::binary);
    out << in.rdbuf();
}

void sendClick(uintptr_t id, int button, int status, int x, int y, int& result) {
    Window* w = lookup(toId(id));
    result = 0;
    if (!w) return;
    XPLMHandleMouseClick_f f = button == 0 ? w->params.handleMouseClickFunc : w->params.handleRightClickFunc;
    if (!f) return;
    PluginScope scope(w->plugin);
    result = f(toId(id), x, y, status, w->params.refcon);
}

}  // namespace

// ---------------------------------------------------------------- control API

void setMonitors(const std::vector<MonitorBounds>& list) {
    if (list.empty()) return;
    WindowState& s = state();
    const MonitorBounds before = screenBounds();
    s.monitors = list;
    const MonitorBounds after = screenBounds();
    // Free windows follow the screen's edges by their gravity.
    for (auto& [id, w] : s.windows) {
        if (w.mode != xplm_WindowPositionFree || w.poppedOut) {
            applyMode(w);
            continue;
        }
        auto follow = [](int edge, float gravity, int lowBefore, int highBefore, int lowAfter, int highAfter) {
            const float moved = (1.0f - gravity) * static_cast<float>(lowAfter - lowBefore) +
                                gravity * static_cast<float>(highAfter - highBefore);
            return edge + static_cast<int>(moved);
        };
        w.left = follow(w.left, w.gravity[0], before.left, before.right, after.left, after.right);
        w.right = follow(w.right, w.gravity[2], before.left, before.right, after.left, after.right);
        w.top = follow(w.top, w.gravity[1], before.bottom, before.top, after.bottom, after.top);
        w.bottom = follow(w.bottom, w.gravity[3], before.bottom, before.top, after.bottom, after.top);
    }
    if (s.windowWidth) s.windowWidth->set(list.front().right - list.front().left);
    if (s.windowHeight) s.windowHeight->set(list.front().top - list.front().bottom);
}

const std::vector<MonitorBounds>& monitors() { return state().monitors; }
void setMonitorsFullScreen(bool fullScreen) { state().fullScreen = fullScreen; }
void setDrawScale(float scale) {
    if (scale > 0) state().scale = scale;
    for (auto& [id, w] : state().windows)
        if (!w.poppedOut) syncOsGeometry(w);
}
float drawScale() { return state().scale; }

std::vector<WindowInfo> windows() {
    std::vector<WindowInfo> out;
    for (uintptr_t id : stacking()) {
        const Window& w = state().windows[id];
        WindowInfo info;
        info.id = toId(id);
        info.plugin = w.plugin;
        info.title = w.title;
        info.left = w.left, info.top = w.top, info.right = w.right, info.bottom = w.bottom;
        info.visible = w.visible;
        info.decoration = w.decoration;
        info.layer = w.layer;
        info.positioningMode = w.mode;
        info.poppedOut = w.poppedOut;
        info.inVr = w.inVr;
        info.hasFocus = state().focus == id;
        info.drawCount = w.drawCount;
        info.titleShown = w.titleShown;
        info.canPopOut = canPopOut(w);
        info.resizable = resizable(w);
        out.push_back(info);
    }
    return out;
}

bool findWindow(const std::string& title, WindowInfo& out) {
    for (const WindowInfo& info : windows())
        if (info.title == title) {
            out = info;
            return true;
        }
    return false;
}

void closeWindow(void* id) {
    if (Window* w = lookup(id)) w->visible = false;
}

void setDrawing(bool on) {
    state().drawing = on;
    state().screenStale = true;
}
bool drawing() { return state().drawing; }

bool windowControl(void* id, WindowControl control, int& x, int& y) {
    const Window* w = lookup(id);
    if (!w || !onScreen(*w)) return false;
    const bool titled = w->decoration == xplm_WindowDecorationRoundRectangle;
    switch (control) {
        case WindowControl::titleBar:
            x = (w->left + w->right - 60) / 2, y = w->top + titleBarHeight / 2;
            return titled;
        case WindowControl::closeBox:
            x = w->right - 15, y = w->top + titleBarHeight / 2;
            return titled;
        case WindowControl::popOutBox:
            x = w->right - 41, y = w->top + titleBarHeight / 2;
            return canPopOut(*w);
        case WindowControl::resizeCorner:
            x = w->right - 4, y = w->bottom + 4;
            return resizable(*w);
    }
    return false;
}

int drawCallbackCount() { return static_cast<int>(state().drawCallbacks.size()); }

void drawScreen() {
    if (!checkThread("draw pass")) return;
    WindowState& s = state();
    int width = 0, height = 0;
    if (s.drawing) {
        if (!makeScreenCurrent()) return;
        s.screenStale = false;
        screenBuffer(width, height);
    } else {
        // Without drawing the callbacks run as ever, with the screen's matrices, into
        // a single pixel: no world and no panel pixels are made.
        if (!makeBufferCurrent(s.blindPixel, 1, 1)) return;
        const MonitorBounds all = screenBounds();
        width = toPixels(all.right - all.left);
        height = toPixels(all.top - all.bottom);
    }
    PassMatrices m;
    screenMatrices(m.modelView, m.projection, m.viewport, screenBounds(), width, height);
    publishMatrices(m.modelView, m.projection, m.viewport);
    restoreState(m);
    if (s.drawing) {
        glClearColor(0.32f, 0.46f, 0.62f, 1.0f);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        drawScene(width, height);
    }

    for (auto& [id, w] : s.windows) applyMode(w);
    static const int phases[] = {xplm_Phase_Modern3D, xplm_Phase_FirstCockpit, xplm_Phase_Panel, xplm_Phase_Gauges,
                                 xplm_Phase_Window, xplm_Phase_LastCockpit};
    for (int phase : phases) {
        runDrawCallbacks(phase, 1, m);
        if (phase == xplm_Phase_Window) {
            for (uintptr_t id : stacking()) {
                Window* w = lookup(toId(id));
                if (!w || !onScreen(*w)) continue;
                restoreState(m);
                drawDecoration(*w);
                callWindowDraw(id, m);
                if (Window* still = lookup(toId(id)); still && onScreen(*still) && resizable(*still)) {
                    restoreState(m);
                    drawResizeGrip(*still);
                }
            }
        }
        runDrawCallbacks(phase, 0, m);
    }
    restoreState(m);
    glFinish();

    std::vector<uintptr_t> popped, vr;
    for (auto& [id, w] : s.windows) {
        if (w.visible && w.poppedOut && pluginActive(w.plugin)) popped.push_back(id);
        if (w.visible && w.inVr && pluginActive(w.plugin)) vr.push_back(id);
    }
    if (popped.empty() && vr.empty()) return;
    for (uintptr_t id : popped) drawPoppedOut(id);
    for (uintptr_t id : vr) drawInVr(id);
    makeScreenCurrent();
    publishMatrices(m.modelView, m.projection, m.viewport);
    restoreState(m);
}

uint32_t screenPixel(int x, int y) {
    drawIfStale();
    int width = 0, height = 0;
    const uint8_t* pixels = screenBuffer(width, height);
    if (!pixels || x < 0 || y < 0 || x >= width || y >= height) return 0;
    const uint8_t* p = pixels + (static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)) * 4;
    return (static_cast<uint32_t>(p[0]) << 24) | (static_cast<uint32_t>(p[1]) << 16) |
           (static_cast<uint32_t>(p[2]) << 8) | p[3];
}

std::vector<uint8_t> screenImage(int& width, int& height) {
    drawIfStale();
    const uint8_t* pixels = screenBuffer(width, height);
    std::vector<uint8_t> out;
    if (!pixels) return out;
    const size_t row = static_cast<size_t>(width) * 4;
    out.resize(row * static_cast<size_t>(height));
    for (int y = 0; y < height; ++y)
        std::memcpy(out.data() + row * static_cast<size_t>(y), pixels + row * static_cast<size_t>(height - 1 - y), row);
    return out;
}

bool windowPicture(void* id, std::vector<uint8_t>& rgbaTopDown, int& width, int& height) {
    drawIfStale();
    rgbaTopDown.clear();
    Window* w = lookup(id);
    if (!w || (!w->inVr && !w->poppedOut)) return false;
    const std::vector<uint8_t>& buffer = w->inVr ? w->vrBuffer : w->popBuffer;
    width = w->inVr ? toPixels(w->vrWidth) : w->osRight - w->osLeft;
    height = w->inVr ? toPixels(w->vrHeight) : w->osTop - w->osBottom;
    const size_t row = static_cast<size_t>(std::max(width, 0)) * 4;
    if (width <= 0 || height <= 0 || buffer.size() < row * static_cast<size_t>(height)) return false;
    rgbaTopDown.resize(row * static_cast<size_t>(height));
    for (int y = 0; y < height; ++y)
        std::memcpy(rgbaTopDown.data() + row * static_cast<size_t>(y),
                    buffer.data() + row * static_cast<size_t>(height - 1 - y), row);
    return true;
}

bool screenshot(const std::string& path, std::string* error) {
    int width = 0, height = 0;
    if (!state().drawing) {
        if (error) *error = "drawing is off";
        return false;
    }
    std::vector<uint8_t> image = screenImage(width, height);
    if (image.empty()) {
        if (error) *error = "nothing has been drawn";
        return false;
    }
    return writePng(path, image.data(), width, height, error);
}

// ---------------------------------------------------------------- input

namespace {

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

}  // namespace

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
