// The host's window records shared by its window modules: the windows of plug-ins,
// their draw callbacks and the state of the pointer's capture (host/windows.cpp draws
// and owns them, host/window_input.cpp routes the mouse to them, host/display_api.cpp
// is the XPLMDisplay API over them).
#pragma once

#include <climits>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "XPLMDisplay.h"
#include "host/host_internal.h"
#include "host/mouse.h"
#include "host/windows.h"

namespace xphost {
namespace win {

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
    double lastDrawWallMs = 0, lastDrawCpuMs = 0;  // its last draw, when draws are timed
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
    bool timeDraws = false;   // each window's draw finished and timed on its own
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

WindowState& state();
inline uintptr_t idOf(XPLMWindowID id) { return reinterpret_cast<uintptr_t>(id); }
inline XPLMWindowID toId(uintptr_t id) { return reinterpret_cast<XPLMWindowID>(id); }
Window* lookup(XPLMWindowID id);
// Unknown ids are a plug-in bug that X-Plane would crash on; here it is logged.
Window* lookupOrLog(XPLMWindowID id, const char* function);
MonitorBounds screenBounds();
int toPixels(int boxels);
int toBoxels(int pixels);
void syncOsGeometry(Window& w);
// Modes that tie the window to monitors keep its geometry in step with them.
void applyMode(Window& w);
// Back to front: layer, then the order of bringing to front.
std::vector<uintptr_t> stacking();
bool onScreen(const Window& w);
bool inClient(const Window& w, int x, int y);
bool inTitleBar(const Window& w, int x, int y);
bool inCloseBox(const Window& w, int x, int y);
bool canPopOut(const Window& w);
bool inPopOutBox(const Window& w, int x, int y);
bool resizable(const Window& w);
bool inResizeCorner(const Window& w, int x, int y);
void bringToFront(Window& w);
void drawIfStale();
void installFont();
void sendClick(uintptr_t id, int button, int status, int x, int y, int& result);
// The host mouse's router into the windows (host/window_input.cpp).
bool routeMouse(const MouseEvent& event);

}  // namespace win
}  // namespace xphost
