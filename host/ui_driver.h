// The host's half of the panel test driver: it receives, through the C function
// vistarig_ui_frame that a plug-in looks up at run time, every ImGui item and the
// drawn text of each panel frame, and works a panel as a user would: it finds a
// control by its label (or ImGui ID, or a menu path such as "File/Save All") in a
// window named by its title, and clicks, drags or types into it through the host's
// mouse and keys. Positions come from the last frame, so a control that moves in the
// layout is still found.
#pragma once

#include <string>
#include <vector>

namespace xphost {

struct UiItem {
    unsigned id = 0;
    std::string label;   // as submitted, "##" suffix included; a window's short name
    std::string window;  // the ImGui window that holds it
    int flags = 0;       // ImGui's item status flags
    float left = 0, top = 0, right = 0, bottom = 0;  // global boxels, y up
    bool visible = true;
    bool disabled = false;
    bool isWindow = false;
    int centreX() const { return static_cast<int>((left + right) / 2.0f + 0.5f); }
    int centreY() const { return static_cast<int>((top + bottom) / 2.0f + 0.5f); }
    bool checked() const;  // a checkbox or check mark that is set
};

struct UiFrame {
    void* windowId = nullptr;
    int frame = -1;  // host frame number when it was built
    std::vector<UiItem> items;
    std::string text;  // what the frame drew, one line per row
    bool wantTextInput = false;
    unsigned activeId = 0;
};

// Every function names the window by its title: exact, else the one visible window
// whose title contains WINDOW. They return an empty string on success, else why not.

// The last frame the window drew (runs a frame if it has drawn none yet).
std::string uiFrame(const std::string& window, UiFrame& out);
// LABEL: the label as shown ("Save All"), the whole label ("Save##SaveButton"), a
// child window's name, or "#0x1234ABCD" for an ImGui ID. Items that are visible win.
std::string uiFind(const std::string& window, const std::string& label, UiItem& out);
// A click in the middle of the item once it stands still; then three frames: ImGui
// sees the press, the release (the control acts), and the frame that shows the result. A LABEL that isn't found and holds "/" is taken as a menu path:
// each part is clicked in turn once the previous one has opened it.
std::string uiClick(const std::string& window, const std::string& label, int button = 0);
// Press in the middle, move by DX, DY boxels (y down, as on the screen) one step a
// frame, release.
std::string uiDrag(const std::string& window, const std::string& label, int dx, int dy, int steps = 10);
// Clicks the field (a drag or slider gets a double click, which turns it into a text
// field), selects all, types TEXT one key a frame and presses Enter.
std::string uiType(const std::string& window, const std::string& label, const std::string& text);
// Whether the window's last frame drew TEXT (within one row of items).
std::string uiExpectText(const std::string& window, const std::string& text, bool shown = true);

// The frames received since the last reset (benchmarks and tests count them).
int uiFramesReceived();

}  // namespace xphost
