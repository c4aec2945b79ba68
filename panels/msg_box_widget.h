// MsgBoxWidget: the small window of one message, with "Ok" or with "Cancel" and
// "Ok"; the window is fitted to its text in the first frame. Nothing owns a box: it
// destroys itself when a button is pressed or its window is closed.
#pragma once

#include <imgui.h>

#include <string>

#include "panels/kvt_im_window.h"
#include "panels/messages.h"

class MsgBoxWidget : public KvtImWindow {
public:
    MsgBoxWidget(int left, int top, int right, int bottom, int decoration);
    ~MsgBoxWidget() override;

    void ConfigureContext() override;
    void BuildContents() override;
    void OnHidden() override { delete this; }

    // Makes and shows a box at the opening place for one request.
    static MsgBoxWidget* Open(const MessageBoxRequest& request);

    bool needsFit = true;
    std::string text;
    MessageBoxCallback callback = nullptr;
};

// What the box's size is made of, in boxels: the text's size and the font's and
// style's real sizes.
struct MessageBoxMeasures {
    ImVec2 text;
    float fontSize = 0;
    ImVec2 windowPadding, itemSpacing, framePadding;
    float okLabel = 0, cancelLabel = 0;  // label widths of the buttons
};
struct BoxSize {
    int width = 0, height = 0;
};
// The smallest box that shows the text and its buttons with no scroll bar.
BoxSize messageBoxSize(const MessageBoxMeasures& measures, bool twoButtons);
// A box of `size` with the centre of `current`, moved (and if need be shrunk) into
// `screen`, keeping `roomAbove` free above it for a title bar.
WindowBox fitAround(const WindowBox& current, BoxSize size, const WindowBox& screen, int roomAbove);
// Above a decorated window: the simulator's title bar.
constexpr int decoratedTitleRoom = 35;

// The boxes that exist now, oldest first (openMessageBoxCount is in messages.h).
MsgBoxWidget* openMessageBox(int index);

// The font file every panel uses, under the simulator's folder.
std::string panelFontPath();
