// The host's windows, drawing and input: simulator windows of plug-ins with their
// callbacks, a configurable set of monitors, a real off-screen OpenGL context (Mesa)
// in which every frame the visible windows and draw callbacks are drawn, mouse and
// key input routed as X-Plane routes it, and screenshots of the whole screen.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace xphost {

// ---------------------------------------------------------------- monitors
// One monitor in global boxels, y up. The first is the main monitor.
struct MonitorBounds {
    int left = 0, top = 0, right = 0, bottom = 0;
};
// Default: one 1920 x 1080 monitor at the origin.
void setMonitors(const std::vector<MonitorBounds>& monitors);
const std::vector<MonitorBounds>& monitors();
// X-Plane only reports full-screen monitors through XPLMGetAllMonitorBoundsGlobal;
// false models a windowed simulator (the call reports nothing). Default true.
void setMonitorsFullScreen(bool fullScreen);
// Pixels per boxel (the user interface scale). Default 1. OS pixels and the GL
// framebuffer follow it.
void setDrawScale(float scale);
float drawScale();

// ---------------------------------------------------------------- windows
struct WindowInfo {
    void* id = nullptr;
    int plugin = 0;
    std::string title;
    int left = 0, top = 0, right = 0, bottom = 0;  // global boxels
    bool visible = false;
    int decoration = 0;
    int layer = 0;
    int positioningMode = 0;
    bool poppedOut = false;
    bool inVr = false;
    bool hasFocus = false;
    int drawCount = 0;  // times its draw callback ran
    std::string titleShown;  // the text its title bar showed at the last draw
    bool canPopOut = false;  // its title bar has the pop-out box
    bool resizable = false;  // the simulator resizes it by its bottom right corner
    // Its last draw callback until GL had finished what it drew, by the clock and in
    // processor time of the process (Mesa's rasterizer threads included); only while
    // draws are timed.
    double lastDrawWallMs = 0, lastDrawCpuMs = 0;
};
// Back to front, as drawn.
std::vector<WindowInfo> windows();
bool findWindow(const std::string& title, WindowInfo& out);
// The title bar's close box of a decorated window, as the user clicks it.
void closeWindow(void* id);
// Height of the simulator's title bar over a window of decoration 1.
constexpr int titleBarHeight = 30;
// What the simulator gives a user to work a window with. A decorated window has a
// title bar with its title, the close box and, standing free, the pop-out box; a
// decorated or self-decorated resizable window has a resize grip at its bottom
// right corner.
enum class WindowControl { titleBar, closeBox, popOutBox, resizeCorner };
// The middle of a control in global boxels, where a click works it; false when the
// window (visible, on the screen) has no such control.
bool windowControl(void* id, WindowControl control, int& x, int& y);

// ---------------------------------------------------------------- input (global boxels)
// Through the host's mouse (host/mouse.h), delivered at once to the window X-Plane
// would give it to.
void mouseMove(int x, int y);
void mouseButton(int button, int status, int x, int y);  // button 0 left, 1 right; status 1 down, 2 drag, 3 up
void click(int x, int y, int button = 0);                // down and up
// Down at the start, one frame and one drag event per step, up at the end.
void drag(int x1, int y1, int x2, int y2, int steps, int button = 0);
void wheel(int x, int y, int clicks, int axis = 0);
// Key sniffers, then the window with keyboard focus, then hot keys.
void key(char key, int flags, int virtualKey);
// Down then up of one key; a printable character is sent with the down event only.
void typeKey(char key, int virtualKey, int modifierFlags = 0);

// ---------------------------------------------------------------- drawing
// Off: the frame's draw callbacks and windows are still called with the screen's
// matrices, but neither the world nor their pixels are drawn, and there are no
// screenshots. Long runs use it. On after reset.
void setDrawing(bool on);
bool drawing();
// Draws one frame now (the frame loop does this at its draw point).
void drawScreen();
// On: GL finishes before and after each window's draw callback, so that the window's
// own cost (its build and the pixels it made) is timed apart from the rest of the
// frame. For benchmarks; off after reset.
void setTimingWindowDraws(bool on);
// RGBA of one pixel of the last drawn screen, framebuffer pixels with y up.
uint32_t screenPixel(int x, int y);
// The whole screen, RGBA, rows from the top; width and height in pixels.
std::vector<uint8_t> screenImage(int& width, int& height);
// The last frame as a PNG; false when it can't be written (error says why).
bool screenshot(const std::string& path, std::string* error = nullptr);
// What a window in VR (its panel in the headset) or a popped-out window showed in the
// last frame, RGBA rows from the top; false for a window on the screen or none drawn.
bool windowPicture(void* id, std::vector<uint8_t>& rgbaTopDown, int& width, int& height);
// Draw callbacks registered, for tests.
int drawCallbackCount();

// ---------------------------------------------------------------- between host modules
// The key callback of the window with keyboard focus; false when no window has it.
bool sendKeyToFocusedWindow(char key, int flags, int virtualKey);
// The Mesa context on the main thread, drawing into the screen's buffer.
bool makeScreenCurrent();
// Draw into a buffer of its own (a popped-out window) and back.
bool makeBufferCurrent(std::vector<uint8_t>& buffer, int width, int height);
const uint8_t* screenBuffer(int& width, int& height);  // rows from the bottom
bool writePng(const std::string& path, const uint8_t* rgbaTopDown, int width, int height, std::string* error);
// A PNG as RGBA rows from the top (tests read back the pictures a run wrote).
bool readPng(const std::string& path, std::vector<uint8_t>& rgbaTopDown, int& width, int& height,
             std::string* error = nullptr);

}  // namespace xphost
