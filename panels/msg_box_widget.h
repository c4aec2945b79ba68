// MsgBoxWidget: the small window of one message, with "Ok" or with "Cancel" and
// "Ok"; the window is fitted to its text in the first frame. Nothing owns a box: it
// destroys itself when a button is pressed or its window is closed.
#pragma once

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

// The boxes that exist now, oldest first (openMessageBoxCount is in messages.h).
MsgBoxWidget* openMessageBox(int index);

// The font file every panel uses, under the simulator's folder.
std::string panelFontPath();
