// The simulator-free half of ImgWindow: the key queue, the mouse buttons with their
// deferred release, the conversion of global coordinates to ImGui's, the clip
// rectangle through the simulator's matrices to native pixels, and the VR state
// change. Only ImGui's io record is touched here, never the simulator or OpenGL.
#pragma once

#include <cstdint>
#include <deque>

struct ImGuiIO;

struct KeyEvent {
    char key = 0;
    uint32_t flags = 0;      // XPLMKeyFlags
    uint8_t virtualKey = 0;  // XPLM_VK_*
};

// X-Plane's key flag bits, restated so this file needs no simulator header.
enum : uint32_t { keyFlagShift = 1, keyFlagOption = 2, keyFlagControl = 4, keyFlagDown = 8, keyFlagUp = 16 };

// Takes at most one event from the front of the queue. It reaches `io` only while
// ImGui wants the keyboard; otherwise it is dropped. Returns true when it reached `io`.
bool deliverOneKey(std::deque<KeyEvent>& queue, ImGuiIO& io);

// Window geometry in global boxels, y up.
struct WindowBox {
    int left = 0, top = 0, right = 0, bottom = 0;
};

// ImGui's lowest float: "no mouse".
constexpr float noMousePosition = -3.4028235e38f;

// Global (y up) to the window's ImGui coordinates (y down from the top left corner);
// a point outside the window gives noMousePosition on both axes.
void globalToImGui(const WindowBox& box, int x, int y, float& outX, float& outY);

// The simulator's mouse status: down 1, drag 2, up 3. A release is only noted in
// `pendingRelease`, so a press and release between two frames shows as pressed for one frame.
void applyMouseStatus(ImGuiIO& io, int status, int button, int& pendingRelease);
// After a frame has been rendered.
void finishPendingRelease(ImGuiIO& io, int& pendingRelease);
// At the start of a frame: a window that heard nothing of the pointer since its last
// frame (no cursor, click or wheel callback) no longer has it, so ImGui must not
// keep hovering the last item; a held button keeps the position for the drag.
// Clears `pointerSeen` for the next frame.
void forgetAbsentPointer(ImGuiIO& io, bool& pointerSeen);
// Giving the keyboard back: no key may stay down.
void clearAllKeys(ImGuiIO& io);

struct NativeRect {
    int left = 0, bottom = 0, right = 0, top = 0;
};

// One point in global units through modelview, projection (column-major) and viewport.
void globalToNative(float gx, float gy, const float modelView[16], const float projection[16], const int viewport[4],
                    int& outX, int& outY);
void globalToNative(float gx, float gy, const float modelView[16], const float projection[16], const int viewport[4],
                    float& outX, float& outY);
// True when one global unit is one native pixel and the window's corner a whole pixel:
// then every texel of the font atlas lands on one pixel and sampling needs no filtering.
bool unitIsOnePixel(int windowLeft, int windowTop, const float modelView[16], const float projection[16],
                    const int viewport[4]);
// An ImGui clip rectangle (x1, y1, x2, y2, window coordinates, y down) to native
// pixels, for glScissor(left, bottom, right - left, top - bottom).
NativeRect clipRectToNative(float x1, float y1, float x2, float y2, int windowLeft, int windowTop,
                            const float modelView[16], const float projection[16], const int viewport[4]);

enum class VrChange { none, enter, leave };
VrChange vrChange(bool vrEnabled, bool inVr);
