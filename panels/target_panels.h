// The two panels of target-following cameras: `TargetInfoWidget`, which floats over the
// view with the bearing, pitch and distance of the selected target and steps through
// the targets, and `SaveTargetWidget`, which names a new target made from the current
// camera. Each exists at most once; this unit owns both.
#pragma once

#include "panels/kvt_im_window.h"
#include "panels/window_placement.h"

class TargetInfoWidget : public KvtImWindow {
public:
    TargetInfoWidget(int left, int top, int right, int bottom, int decoration);

    void ConfigureContext() override;
    void BuildContents() override;
    // Shown exactly while the current camera follows a target and the switch is on.
    void OnFlightLoop() override;

    TitleBarDrag drag;
    bool movable = true;
};

class SaveTargetWidget : public KvtImWindow {
public:
    SaveTargetWidget(int left, int top, int right, int bottom, int decoration);

    void ConfigureContext() override;
    void BuildContents() override;

    char targetName[70] = {};
    const char* errorText = "";
};

// false: builds the info panel if it doesn't exist (every frame of a target-following
// camera); true: destroys it (the camera level goes off).
void TargetInfoPanelAction(bool destroy);
TargetInfoWidget* targetInfoWidget();

// "Save Target Position" and its command: shows the panel, building it on first use.
void openSaveTargetPanel();
SaveTargetWidget* saveTargetWidget();
// Host disable: the panel goes.
void destroySaveTargetPanel();

// The text of the info panel for the current camera: empty without a target.
void targetInformationText(char* text, int capacity);
