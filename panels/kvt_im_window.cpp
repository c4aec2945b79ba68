#include "panels/kvt_im_window.h"

#include <imgui.h>

#include <cstring>

#include "platform/window_handles.h"

KvtImWindow::KvtImWindow(int left_, int top_, int right_, int bottom_, int decoration_)
    : ImgWindow(left_, top_, right_, bottom_, decoration_, xplm_WindowLayerFloatingWindows) {
    XPLMCreateFlightLoop_t params;
    std::memset(&params, 0, sizeof params);
    params.structSize = sizeof params;
    params.phase = xplm_FlightLoop_Phase_AfterFlightModel;
    params.callbackFunc = FlightLoop;
    params.refcon = this;
    flightLoopId = XPLMCreateFlightLoop(&params);
    XPLMScheduleFlightLoop(flightLoopId, -1.0f, 1);
}

KvtImWindow::~KvtImWindow() {
    if (flightLoopId) XPLMDestroyFlightLoop(flightLoopId);
}

float KvtImWindow::FlightLoop(float, float, int, void* refcon) {
    auto* window = static_cast<KvtImWindow*>(refcon);
    window->OnFlightLoop();
    const bool visible = window->IsVisible();
    if (window->lastVisible == -1) {
        window->lastVisible = visible ? 1 : 0;
    } else if (window->lastVisible == 1 && !visible) {
        window->lastVisible = 0;
        window->OnHidden();  // may delete the window: touch nothing after it
        return -1.0f;
    }
    if (window->destroyPending) {
        delete window;
        return -1.0f;
    }
    window->lastVisible = visible ? 1 : 0;
    if (visible) window->CheckVr();
    return -1.0f;
}

void KvtImWindow::PlaceOnPrimaryMonitor() {
    int screenLeft = 0, screenTop = 0, screenRight = 0, screenBottom = 0;
    XPLMGetScreenBoundsGlobal(&screenLeft, &screenTop, &screenRight, &screenBottom);
    int l = 0, t = 0, r = 0, b = 0;
    XPLMGetWindowGeometry(windowId, &l, &t, &r, &b);
    const int width = r - l, height = t - b;
    const int screenWidth = screenRight - screenLeft, screenHeight = screenTop - screenBottom;

    int newLeft = screenWidth / 2 - width / 2 + screenLeft;
    int newBottom = screenHeight / 2 - height / 2 + screenBottom;
    int newTop = newBottom + height;

    const PrimaryMonitor& monitor = refreshPrimaryMonitor();
    if (monitor.valid) {
        newTop = monitor.top - 100;
        newLeft = (monitor.right - monitor.left) / 2 - width / 2 + monitor.left;
    } else {
        // Room for the simulator's own title bar on a decorated window.
        int limit = screenTop - 30;
        if (decoration == 1) limit -= 35;
        if (newTop > limit) newTop = limit;
    }
    XPLMSetWindowGeometry(windowId, newLeft, newTop, newLeft + width, newTop - height);
}

bool KvtImWindow::RestorePosition(const WindowPosition& saved) {
    if ((saved.kind == 1 || saved.kind == 2) && IsPositionOnMonitor(saved)) {
        if (saved.kind == 2) {
            XPLMSetWindowPositioningMode(windowId, xplm_WindowPopOut, -1);
            XPLMSetWindowGeometryOS(windowId, saved.left, saved.top, saved.right, saved.bottom);
        } else {
            XPLMSetWindowGeometry(windowId, saved.left, saved.top, saved.right, saved.bottom);
        }
        return true;
    }
    PlaceOnPrimaryMonitor();
    return false;
}

void KvtImWindow::GetWindowSize(int& width, int& height) const {
    int l = 0, t = 0, r = 0, b = 0;
    if (XPLMWindowIsPoppedOut(windowId))
        XPLMGetWindowGeometryOS(windowId, &l, &t, &r, &b);
    else
        XPLMGetWindowGeometry(windowId, &l, &t, &r, &b);
    width = r - l;
    height = t - b;
}

void KvtImWindow::SetWindowSize(int width, int height) {
    int l = 0, t = 0, r = 0, b = 0;
    if (XPLMWindowIsPoppedOut(windowId)) {
        XPLMGetWindowGeometryOS(windowId, &l, &t, &r, &b);
        XPLMSetWindowGeometryOS(windowId, l, t, l + width, t - height);
    } else {
        XPLMGetWindowGeometry(windowId, &l, &t, &r, &b);
        XPLMSetWindowGeometry(windowId, l, t, l + width, t - height);
    }
}

void KvtImWindow::ApplyAlwaysOnTop(bool onTop) {
    if (!XPLMWindowIsPoppedOut(windowId)) return;
    // The OS window only comes to exist on popping out.
    if (!osWindow) osWindow = findOsWindowByTitle(title.c_str());
    if (osWindow) setOsWindowTopmost(osWindow, onTop);
}

void ShowHelpMarker(const char* text) {
    ImGui::TextDisabled("(?)");
    if (!ImGui::IsItemHovered()) return;
    ImGui::PushStyleColor(ImGuiCol_PopupBg, 0xFF2D2D2D);
    ImGui::BeginTooltip();
    ImGui::PushTextWrapPos(ImGui::GetFontSize() * 35.0f);
    ImGui::TextUnformatted(text);
    ImGui::PopTextWrapPos();
    ImGui::EndTooltip();
    ImGui::PopStyleColor();
}
