#include "panels/img_window_logic.h"

#include <imgui.h>

#include <cmath>

bool deliverOneKey(std::deque<KeyEvent>& queue, ImGuiIO& io) {
    if (queue.empty()) return false;
    KeyEvent event = queue.front();
    queue.pop_front();
    if (!io.WantCaptureKeyboard) return false;

    const bool up = (event.flags & keyFlagUp) != 0;
    // A key is down from its down event to its up event; a key left down repeats.
    io.KeysDown[event.virtualKey] = !up;
    io.KeyShift = (event.flags & keyFlagShift) != 0;
    io.KeyAlt = (event.flags & keyFlagOption) != 0;
    io.KeyCtrl = (event.flags & keyFlagControl) != 0;
    const unsigned char c = static_cast<unsigned char>(event.key);
    if (!up && !io.KeyCtrl && !io.KeyAlt && c >= 32 && c < 127) {
        const char text[2] = {event.key, 0};
        io.AddInputCharactersUTF8(text);
    }
    return true;
}

void globalToImGui(const WindowBox& box, int x, int y, float& outX, float& outY) {
    const int wx = x - box.left;
    const int wy = box.top - y;
    if (wx < 0 || wx > box.right - box.left || wy < 0 || wy > box.top - box.bottom) {
        outX = outY = noMousePosition;
        return;
    }
    outX = static_cast<float>(wx);
    outY = static_cast<float>(wy);
}

void applyMouseStatus(ImGuiIO& io, int status, int button, int& pendingRelease) {
    if (button < 0 || button >= IM_ARRAYSIZE(io.MouseDown)) return;
    if (status == 1 || status == 2)
        io.MouseDown[button] = true;
    else if (status == 3)
        pendingRelease = button;
}

void finishPendingRelease(ImGuiIO& io, int& pendingRelease) {
    if (pendingRelease >= 0 && pendingRelease < IM_ARRAYSIZE(io.MouseDown)) io.MouseDown[pendingRelease] = false;
    pendingRelease = -1;
}

void forgetAbsentPointer(ImGuiIO& io, bool& pointerSeen) {
    bool held = false;
    for (bool down : io.MouseDown) held = held || down;
    if (!pointerSeen && !held) io.MousePos = ImVec2(noMousePosition, noMousePosition);
    pointerSeen = false;
}

void clearAllKeys(ImGuiIO& io) {
    for (bool& down : io.KeysDown) down = false;
}

namespace {
void multiply(const float m[16], const float in[4], float out[4]) {
    for (int row = 0; row < 4; ++row)
        out[row] = m[row] * in[0] + m[4 + row] * in[1] + m[8 + row] * in[2] + m[12 + row] * in[3];
}
}  // namespace

void globalToNative(float gx, float gy, const float modelView[16], const float projection[16], const int viewport[4],
                    float& outX, float& outY) {
    const float point[4] = {gx, gy, 0.0f, 1.0f};
    float eye[4], clip[4];
    multiply(modelView, point, eye);
    multiply(projection, eye, clip);
    const float w = clip[3] != 0.0f ? clip[3] : 1.0f;
    const float ndcX = clip[0] / w, ndcY = clip[1] / w;
    outX = (ndcX * 0.5f + 0.5f) * static_cast<float>(viewport[2]) + static_cast<float>(viewport[0]);
    outY = (ndcY * 0.5f + 0.5f) * static_cast<float>(viewport[3]) + static_cast<float>(viewport[1]);
}

void globalToNative(float gx, float gy, const float modelView[16], const float projection[16], const int viewport[4],
                    int& outX, int& outY) {
    float x = 0, y = 0;
    globalToNative(gx, gy, modelView, projection, viewport, x, y);
    outX = static_cast<int>(x);
    outY = static_cast<int>(y);
}

bool unitIsOnePixel(int windowLeft, int windowTop, const float modelView[16], const float projection[16],
                    const int viewport[4]) {
    const float span = 256.0f;
    float x0 = 0, y0 = 0, x1 = 0, y1 = 0;
    globalToNative(static_cast<float>(windowLeft), static_cast<float>(windowTop), modelView, projection, viewport, x0,
                   y0);
    globalToNative(static_cast<float>(windowLeft) + span, static_cast<float>(windowTop) - span, modelView, projection,
                   viewport, x1, y1);
    const auto near = [](float a, float b) { return std::fabs(a - b) < 1e-3f; };
    return near(x1 - x0, span) && near(y0 - y1, span) && near(x0, std::round(x0)) && near(y0, std::round(y0));
}

NativeRect clipRectToNative(float x1, float y1, float x2, float y2, int windowLeft, int windowTop,
                            const float modelView[16], const float projection[16], const int viewport[4]) {
    // Truncated to whole global units first, as the simulator's own coordinates are.
    const int gLeft = static_cast<int>(static_cast<float>(windowLeft) + x1);
    const int gTop = static_cast<int>(static_cast<float>(windowTop) - y1);
    const int gRight = static_cast<int>(static_cast<float>(windowLeft) + x2);
    const int gBottom = static_cast<int>(static_cast<float>(windowTop) - y2);
    NativeRect r;
    globalToNative(static_cast<float>(gLeft), static_cast<float>(gTop), modelView, projection, viewport, r.left, r.top);
    globalToNative(static_cast<float>(gRight), static_cast<float>(gBottom), modelView, projection, viewport, r.right,
                   r.bottom);
    return r;
}

VrChange vrChange(bool vrEnabled, bool inVr) {
    if (vrEnabled && !inVr) return VrChange::enter;
    if (!vrEnabled && inVr) return VrChange::leave;
    return VrChange::none;
}
