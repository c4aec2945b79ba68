// The Settings panel: the editor of the one `Settings` record. Every control writes
// straight into the live record; only "Save Settings" writes "Vistarig.ini". At most
// one exists, made on first use and kept (hidden) for the life of the plug-in.
#pragma once

#include "data/settings.h"
#include "panels/kvt_im_window.h"
#include "panels/window_placement.h"

class SettingsWidget : public KvtImWindow {
public:
    SettingsWidget(int left, int top, int right, int bottom, int decoration);

    void ConfigureContext() override;
    void BuildContents() override;

    MonitorTable monitors;  // filled once, when the panel is made
};

// Shows the panel, making it on first use; with `toggle` a visible panel hides.
void SettingsPanelAction(bool toggle);
// The panel, or null before its first use.
SettingsWidget* settingsWidget();
// At plug-in stop: the panel goes.
void destroySettingsPanel();

// Puts each field that left its bounds back to its default (not to the nearest
// limit); a monitor index at or past `monitorCount` becomes 0.
void enforceSettingBounds(Settings& values, const Settings& defaultValues, int monitorCount);
