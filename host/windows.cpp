// Simulator windows of plug-ins: creation with every callback, geometry in global
// boxels and OS pixels, positioning modes, visibility, layers and z-order, keyboard
// focus, the title bar of decorated windows, monitors, and the draw pass that runs
// the draw callbacks and windows each frame in the Mesa context.
#ifdef _WIN32
#include <windows.h>
#endif
#include <GL/gl.h>

#include <time.h>

#include "host/portable.h"

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
#include "host/window_state.h"
#include "host/windows.h"


namespace xphost {
namespace win {


WindowState& state() {
    static WindowState s;
    return s;
}


Window* lookup(XPLMWindowID id) {
    auto it = state().windows.find(idOf(id));
    return it == state().windows.end() ? nullptr : &it->second;
}

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

double clockMs(clockid_t clock) {
    timespec t{};
    clock_gettime(clock, &t);
    return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_nsec) / 1e6;
}

void callWindowDraw(uintptr_t id, const PassMatrices& m) {
    Window* w = lookup(toId(id));
    if (!w || !w->params.drawWindowFunc) return;
    restoreState(m);
    ++w->drawCount;
    const bool timed = state().timeDraws;
    double wall0 = 0, cpu0 = 0;
    if (timed) {
        glFinish();
        wall0 = clockMs(CLOCK_MONOTONIC);
        cpu0 = clockMs(CLOCK_PROCESS_CPUTIME_ID);
    }
    {
        PluginScope scope(w->plugin);
        w->params.drawWindowFunc(toId(id), w->params.refcon);  // may destroy the window
    }
    if (!timed) return;
    glFinish();
    if (Window* still = lookup(toId(id))) {
        still->lastDrawWallMs = clockMs(CLOCK_MONOTONIC) - wall0;
        still->lastDrawCpuMs = clockMs(CLOCK_PROCESS_CPUTIME_ID) - cpu0;
    }
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
    s.timeDraws = false;
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

}  // namespace win

using namespace win;


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
        info.lastDrawWallMs = w.lastDrawWallMs;
        info.lastDrawCpuMs = w.lastDrawCpuMs;
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

void setTimingWindowDraws(bool on) { state().timeDraws = on; }

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

}  // namespace xphost
