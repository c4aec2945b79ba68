#include "shell/plugin_menu.h"

#include "XPLMMenus.h"
#include "XPLMPlugin.h"
#include "data/targets.h"
#include "inputs/effects.h"
#include "motion/frame_driver.h"
#include "panels/calibrate_view_axis_widget.h"
#include "motion/target_tracking.h"
#include "panels/control_panel_widget.h"
#include "panels/messages.h"
#include "panels/mini_control_panel_widget.h"
#include "panels/settings_widget.h"
#include "panels/target_panels.h"
#include "panels/updater_widget.h"
#include "shell/host_interface.h"
#include "panels/traffic_display_widget.h"

namespace {

const char* const kItemNames[kMenuItemCount] = {
    "Enable",       "Disable",         "Toggle Control Panel",   "Settings",
    "Toggle Mini-Control Panel",       "System Check",           "Save Target Position",
    "Refresh Targets",                 "Toggle Traffic Display", "Calibrate View Axis",
    "Check for Updates",
};

int gPluginsIndex = -1;
XPLMMenuID gMenu = nullptr;

void menuHandler(void*, void* itemRef) {
    try {
        const intptr_t item = reinterpret_cast<intptr_t>(itemRef);
        switch (item) {
            case kMenuEnable: enableCamera(); break;
            case kMenuDisable: disableCamera(false); break;
            case kMenuToggleControlPanel: ControlPanelAction(1); break;
            case kMenuSettings: SettingsPanelAction(true); break;
            case kMenuToggleMiniControlPanel: MiniControlPanelAction(1); break;
            case kMenuSystemCheck: systemCheck(); break;
            case kMenuSaveTargetPosition: openSaveTargetPanel(); break;
            case kMenuRefreshTargets:
                readTargets();
                rebuildNearTargets();
                sortNearTargets();
                break;
            case kMenuToggleTrafficDisplay: toggleTrafficDisplay(); break;
            case kMenuCalibrateViewAxis: openCalibrateViewAxisPanel(); break;
            case kMenuCheckForUpdates: openUpdater(); break;
            default: break;  // not one of ours
        }
    } catch (...) {
        logMessage("The menu item failed");
    }
}

const char* trackIrText(int status, bool simulatorTrackIrOn) {
    switch (status) {
        case 0: return "TrackIR - Unknown Status.\n\n";
        case 1: return "TrackIR - Software is not installed.\n\n";
        case 2: return "TrackIR - Software is installed but not running.\n\n";
        case 3:
            return "TrackIR - Found but Vistarig is not in the game list.\nUpdate your TrackIR game list, restart the "
                   "TrackIR software, and disable and re-enable Vistarig.\n\n";
        case 4:
            return simulatorTrackIrOn ? "TrackIR - Found but there was an error initializing it.\nYou must disable it "
                                        "in the X-Plane Equipment / Accessories settings.\n\n"
                                      : "TrackIR - Error registering the window handle.\nVerify that the TrackIR "
                                        "software is running\n\n";
        case 5: return "TrackIR - Cursor Error.\n\n";
        case 6:
            return simulatorTrackIrOn ? "TrackIR - Found but you must disable it in the X-Plane Equipment / "
                                        "Accessories settings.\n\n"
                                      : "TrackIR - Found and enabled.\n\n";
        case 7: return "TrackIR - Found and currently disabled.\n\n";
        case 8: return "TrackIR - Unexpected Error.\n\n";
        default: return "";
    }
}

const char* scenicFlyerText(int status) {
    switch (status) {
        case 0: return "Scenic Flyer - Status unknown.\n\n";
        case 11: return "Scenic Flyer - Found and enabled.\n\n";
        case 12: return "Scenic Flyer - Not Found.\n\n";
        default: return "";
    }
}

}  // namespace

bool menuItemEnabled(int item, bool cameraOn) {
    switch (item) {
        case kMenuEnable: return !cameraOn;
        case kMenuSettings:
        case kMenuRefreshTargets:
        case kMenuToggleTrafficDisplay:
        case kMenuCheckForUpdates: return true;
        default: return cameraOn;
    }
}

void buildMenu() {
    XPLMMenuID plugins = XPLMFindPluginsMenu();
    gPluginsIndex = XPLMAppendMenuItem(plugins, "Vistarig", nullptr, 1);
    gMenu = XPLMCreateMenu("Menu Navigation", plugins, gPluginsIndex, menuHandler, nullptr);
    for (intptr_t i = 0; i < kMenuItemCount; ++i)
        XPLMAppendMenuItem(gMenu, kItemNames[i], reinterpret_cast<void*>(i), 1);
    // No camera follows a target yet, so nothing may draw the aiming cross.
    unregisterAimingCross();
    refreshMenu();
}

void refreshMenu() {
    if (!gMenu) return;
    const bool on = cameraEnabled();
    for (int i = 0; i < kMenuItemCount; ++i) XPLMEnableMenuItem(gMenu, i, menuItemEnabled(i, on) ? 1 : 0);
}

void removeMenu() {
    if (gPluginsIndex >= 0) XPLMRemoveMenuItem(XPLMFindPluginsMenu(), gPluginsIndex);
    if (gMenu) {
        XPLMClearAllMenuItems(gMenu);
        XPLMDestroyMenu(gMenu);
    }
    gPluginsIndex = -1;
    gMenu = nullptr;
    destroyTrafficDisplay();
}

std::string systemCheckText(const SystemFindings& found) {
    std::string text;
    text.reserve(10000);
    text += trackIrText(found.trackIrStatus, found.simulatorTrackIrOn);
    text += scenicFlyerText(found.scenicFlyerStatus);
    if (!found.headShakeFound) text += "HeadShake - Not Found.\n\n";
    else if (found.headShakeUsable) text += "HeadShake - Found and enabled.\n\n";
    else text += "HeadShake - Found but it is not at version 1.3 or higher.\n\n";
    if (found.pilotViewFound)
        text += "PilotView - Found and it is not compatible with Vistarig.\nEither remove PilotView or make sure it is "
                "not enabled.\n\n";
    return text;
}

void systemCheck() {
    SystemFindings found;
    const PluginState& state = pluginState();
    found.trackIrStatus = state.trackIrStatus;
    XPLMDataRef eqTrackIr = XPLMFindDataRef("sim/graphics/view/eq_trackir");
    found.simulatorTrackIrOn = eqTrackIr && XPLMGetDatai(eqTrackIr) != 0;
    found.scenicFlyerStatus = state.scenicFlyerStatus;
    found.headShakeFound = XPLMFindPluginBySignature("com.simcoders.headshake") != -1;
    found.headShakeUsable = found.headShakeFound && headShakeAvailable();
    found.pilotViewFound = XPLMFindPluginBySignature("acmetools.projects.pilotview") != -1;
    showMessageBox("System Status", systemCheckText(found));
}
