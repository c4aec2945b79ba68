// KvtImWindow: the common base of all panels. Adds to ImgWindow a flight loop of its
// own (a place to act outside the draw callback), destruction at that safe moment,
// notice of being hidden, placement on the primary monitor, size for popped-out
// windows and the always-on-top state of a popped-out OS window.
#pragma once

#include "XPLMProcessing.h"
#include "panels/img_window.h"
#include "panels/window_placement.h"

class KvtImWindow : public ImgWindow {
public:
    KvtImWindow(int left, int top, int right, int bottom, int decoration);
    ~KvtImWindow() override;

    // Destruction waits for the window's next flight loop.
    void RequestDestroy() override { destroyPending = true; }
    virtual void OnHidden() {}
    virtual void OnFlightLoop() {}

    // Horizontally centred, 100 boxels below the top of the monitor that shows the
    // view straight ahead; the middle of the desktop if that monitor is unknown.
    void PlaceOnPrimaryMonitor();
    // Back to a saved place (kind 1 inside the simulator, 2 popped out) when its
    // title bar is still on a monitor; otherwise, and for any other kind, onto the
    // primary monitor by PlaceOnPrimaryMonitor. True when the saved place was used.
    bool RestorePosition(const WindowPosition& saved);
    // In OS pixels while popped out, else in boxels. The top left corner stays.
    void GetWindowSize(int& width, int& height) const;
    void SetWindowSize(int width, int height);

    // Looks up the OS window of a popped-out panel once it exists; then keeps it on
    // top or not. Does nothing where there is no such window.
    void ApplyAlwaysOnTop(bool onTop);

    bool IsDestroyPending() const { return destroyPending; }

protected:
    XPLMFlightLoopID flightLoopId = nullptr;
    int lastVisible = -1;
    bool destroyPending = false;
    void* osWindow = nullptr;

private:
    static float FlightLoop(float sinceLastCall, float sinceLastLoop, int counter, void* refcon);
};

// The "(?)" helper: shows `text` as a wrapped tool tip while hovered.
void ShowHelpMarker(const char* text);
