// The "Vistarig" entry of the simulator's Plugins menu: its eleven items, which of
// them can be chosen at each level of being on, what each one does, and System
// Check, the report of what the plug-in found of the tracker and the outside
// plug-ins it works with.
#pragma once

#include <string>

// At host enable: the entry, its submenu and items; then `refreshMenu`.
void buildMenu();
// Greys out the items that don't fit `cameraEnabled`; at camera enable and disable.
void refreshMenu();
// At host disable: the entry and submenu go, and the Traffic Display with them.
void removeMenu();

// The "System Status" message box.
void systemCheck();

// What System Check found, and the text it makes of it (pure, for tests).
struct SystemFindings {
    int trackIrStatus = 0;
    bool simulatorTrackIrOn = false;  // sim/graphics/view/eq_trackir
    int scenicFlyerStatus = 0;
    bool headShakeFound = false;
    bool headShakeUsable = false;  // its datarefs were found
    bool pilotViewFound = false;
};
std::string systemCheckText(const SystemFindings& found);

// Item positions, which are also the items' refcons.
enum MenuItemId {
    kMenuEnable = 0,
    kMenuDisable,
    kMenuToggleControlPanel,
    kMenuSettings,
    kMenuToggleMiniControlPanel,
    kMenuSystemCheck,
    kMenuSaveTargetPosition,
    kMenuRefreshTargets,
    kMenuToggleTrafficDisplay,
    kMenuCalibrateViewAxis,
    kMenuCheckForUpdates,
    kMenuItemCount
};
// Whether an item can be chosen at this level of being on.
bool menuItemEnabled(int item, bool cameraOn);
