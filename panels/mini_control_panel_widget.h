// The Mini Control Panel: the strip of buttons a pilot flies with. Docked, it is glued
// to the bottom of a chosen monitor, shows when the pointer touches the bottom edge and
// leaves when it goes above it (unless pinned); undocked, it is a free window that the
// simulator can pop out. Its buttons reach the plug-in's commands through the
// simulator by name. At most one exists; `MiniControlPanelAction` owns it.
#pragma once

#include "panels/img_window_logic.h"
#include "panels/kvt_im_window.h"
#include "panels/window_placement.h"

class MiniControlPanelWidget : public KvtImWindow {
public:
    MiniControlPanelWidget(int left, int top, int right, int bottom, int decoration);

    void ConfigureContext() override;
    void BuildContents() override;
    void OnFlightLoop() override;

    char titleText[2000] = {};
    TitleBarDrag drag;                      // the docked panel's height, by its menu bar
    bool pinned = false;                    // "Pin Mini-Control Panel": no automatic hiding
    bool docked = false;                    // the "Docked" checkbox
    const char* pendingCommand = nullptr;  // run by the flight loop; opens or closes a window

    bool insideFrame() const { return buildingFrame; }

private:
    void BuildMenuBar();
    void BuildActionRow();
    void BuildAiControls();
    void BuildFavouritesRow();
    void BuildCategoryRow();
    void BuildCameraRow();
    bool buildingFrame = false;
};

// 0 start-up build, 1 toggle, 4 destroy, 6 reconfigure (every flight loop); answers
// whether the panel is visible.
bool MiniControlPanelAction(int op);
MiniControlPanelWidget* miniControlPanelWidget();

// Pure rules, for tests.
// Where the panel stands on `monitor`: docked (decoration 2) along its bottom, 150 high
// or 125 without favourites, or a height the user set (a saved kind 3); undocked in
// the middle third.
WindowBox miniPanelBox(const WindowBox& monitor, int decoration, bool hideFavorites, const WindowPosition& saved);
// Auto show and hide at the bottom edge: 1 show, -1 hide, 0 stay. Only a pointer
// strictly inside the panel's x span counts.
int edgeVisibility(bool visible, bool pinned, const WindowBox& panel, int mouseX, int mouseY);
