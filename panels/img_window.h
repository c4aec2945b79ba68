// ImgWindow: one Dear ImGui interface in one simulator window. It owns the window,
// its own ImGui context, font atlas and font texture, and the queue of key events;
// it turns the window callbacks into ImGui input, builds one ImGui frame each time
// the simulator asks the window to draw, and renders the draw lists with
// fixed-function OpenGL inside the simulator's draw pass.
#pragma once

#include <deque>
#include <string>

#include "XPLMDisplay.h"
#include "panels/img_window_logic.h"

struct ImGuiContext;

class ImgWindow {
public:
    ImgWindow(int left, int top, int right, int bottom, int decoration, int layer);
    ImgWindow(const ImgWindow&) = delete;
    ImgWindow& operator=(const ImgWindow&) = delete;

    // Second step of creation: calls ConfigureContext, which is virtual.
    void Init();

    virtual void ConfigureContext() = 0;
    virtual void BuildContents() = 0;
    virtual bool CanShow() { return true; }
    virtual void RequestDestroy() { destroyRequested = true; }
    virtual ~ImgWindow();
    virtual void SetVisible(bool visible);

    bool IsVisible() const;
    void SetTitle(const std::string& newTitle);
    XPLMWindowID GetWindowId() const { return windowId; }
    ImGuiContext* GetContext() const { return context; }
    const std::string& GetTitle() const { return title; }

    // Queued key events not yet taken by a frame (tests look at it).
    size_t PendingKeyCount() const { return keyQueue.size(); }

    // The path of "Imgui.ini", shared by all windows.
    static const std::string& IniPath();

protected:
    // Puts the window into or out of VR positioning as the simulator's VR state says.
    void CheckVr();

    float modelView[16] = {};
    float projection[16] = {};
    int viewport[4] = {};
    bool destroyRequested = false;
    std::string title;
    XPLMWindowID windowId = nullptr;
    ImGuiContext* context = nullptr;
    int fontTexture = 0;
    int fontFilter = 0;  // the atlas's sampling filter now set
    bool inVr = false;
    int top = 0, bottom = 0, left = 0, right = 0;
    int savedTop = 0, savedBottom = 0, savedLeft = 0, savedRight = 0;
    int layer = 0;
    int pendingRelease = -1;
    std::deque<KeyEvent> keyQueue;
    bool firstFrame = true;
    int decoration = 0;
    int windowFlags = 35;  // no title bar, no resize, no collapse
    bool isOpen = true;
    bool pointerSeen = false;  // a pointer callback came since the last frame

private:
    void BuildFontTexture();
    void BuildFrame();
    void RenderFrame();
    void MouseEvent(int x, int y, XPLMMouseStatus status, int button);

    static void DrawCallback(XPLMWindowID id, void* refcon);
    static int LeftClickCallback(XPLMWindowID id, int x, int y, XPLMMouseStatus status, void* refcon);
    static int RightClickCallback(XPLMWindowID id, int x, int y, XPLMMouseStatus status, void* refcon);
    static XPLMCursorStatus CursorCallback(XPLMWindowID id, int x, int y, void* refcon);
    static int WheelCallback(XPLMWindowID id, int x, int y, int wheel, int clicks, void* refcon);
    static void KeyCallback(XPLMWindowID id, char key, XPLMKeyFlags flags, char virtualKey, void* refcon,
                            int losingFocus);
};
