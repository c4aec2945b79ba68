// The Traffic Display: the other aircraft by distance, nearest first, from the point
// the selected camera measures from; while an outside camera is under control it also
// switches the AI perspective, picks the followed plane and zooms. At most one exists;
// the toggle makes it or destroys it.
#pragma once

#include "panels/kvt_im_window.h"

class TrafficDisplayWidget : public KvtImWindow {
public:
    TrafficDisplayWidget(int left, int top, int right, int bottom, int decoration);
    ~TrafficDisplayWidget() override;

    void ConfigureContext() override;
    void BuildContents() override;
    // Closed by its close box: gone, as the toggle would.
    void OnHidden() override { delete this; }
};

// The menu item and the command: makes the panel, or destroys the one there is.
void toggleTrafficDisplay();
// Destroys the panel if it exists (host disable).
void destroyTrafficDisplay();
TrafficDisplayWidget* trafficDisplayWidget();

// What the distance column is measured from, as its header says.
const char* trafficReferenceHeader();
