#include "shell/command_table.h"

#include <cstdio>
#include <cstring>

#include "XPLMPlugin.h"
#include "airports/airport_files.h"
#include "data/camera_file.h"
#include "data/set_editing.h"
#include "data/settings.h"
#include "motion/ai_traffic.h"
#include "motion/frame_driver.h"
#include "motion/mouse_look.h"
#include "motion/movement.h"
#include "motion/target_tracking.h"
#include "motion/transitions.h"
#include "panels/control_panel_widget.h"
#include "panels/mini_control_panel_widget.h"
#include "panels/settings_widget.h"
#include "panels/target_panels.h"
#include "panels/traffic_display_widget.h"
#include "shell/host_interface.h"

namespace {

CommandRow rows[kCommandRowCount] = {
    {"KVT/Vistarig/Save_All_Cameras", "Saves all camera positions to Vistarig.csv in the aircraft folder", nullptr},
    {"KVT/Vistarig/Enable_Vistarig", "Enables Vistarig when in the virtual cockpit view", nullptr},
    {"KVT/Vistarig/Disable_Vistarig", "Disables Vistarig when in the virtual cockpit view", nullptr},
    {"KVT/Vistarig/Toggle_Vistarig_on_or_off", "Toggles Vistarig on or off", nullptr},
    {"KVT/Vistarig/Toggle_Control_Panel_on_or_off", "Toggles control panel on or off", nullptr},
    {"KVT/Vistarig/Toggle_Mini_Control_Panel", "Toggles the mini-control panel on or off", nullptr},
    {"KVT/Vistarig/Next_Camera", "Selects the next camera in the current category", nullptr},
    {"KVT/Vistarig/Previous_Camera", "Selects the previous camera in the current category", nullptr},
    {"KVT/Vistarig/Next_Category", "Selects the next view category", nullptr},
    {"KVT/Vistarig/Previous_Category", "Selects the previous view category", nullptr},
    {"KVT/Vistarig/Add_A_Camera_to_a_New_Category",
     "Creates a new category cloning the current camera as the first camera", nullptr},
    {"KVT/Vistarig/Add_A_Camera_to_The_Current_Category",
     "Creates a new camera in the category as a clone of the current camera", nullptr},
    {"KVT/Vistarig/Toggle_TrackIR_on_or_off_for_this_camera", "Toggles TrackIR on or off for the current camera",
     nullptr},
    {"KVT/Vistarig/Toggle_HeadShake_for_this_camera", "Toggles HeadShake on or off for the current camera", nullptr},
    {"KVT/Vistarig/Toggle_Mouse_Look_On_or_Off", "Toggles Mouse Look on or off", nullptr},
    {"KVT/Vistarig/Center_Camera", "Zeros the camera heading and pitch", nullptr},
    {"KVT/Vistarig/Pan_Left", "Pans the camera left", nullptr},
    {"KVT/Vistarig/Pan_Right", "Pans the camera right", nullptr},
    {"KVT/Vistarig/Pan_Up", "Pans the camera up", nullptr},
    {"KVT/Vistarig/Pan_Down", "Pans the camera down", nullptr},
    {"KVT/Vistarig/Pan_Left_And_Up", "Pans the camera left and up", nullptr},
    {"KVT/Vistarig/Pan_Right_And_Up", "Pans the camera right and up", nullptr},
    {"KVT/Vistarig/Pan_Right_And_Down", "Pans the camera right and down", nullptr},
    {"KVT/Vistarig/Pan_Left_And_Down", "Pans the camera left and down", nullptr},
    {"KVT/Vistarig/Simulate_Middle_Mouse_Button", "Simulates the middle mouse button being depressed", nullptr},
    {"KVT/Vistarig/Restore_All_Cameras", "Restores camera settings from a previously saved camera file", nullptr},
    {"KVT/Vistarig/Restore_Cameras_And_Home", "Restores camera settings and selects the first category and camera",
     nullptr},
    {"KVT/Vistarig/Restore_Current_Camera_Position",
     "Restores the camera position for the currently selected camera", nullptr},
    {"KVT/Vistarig/Toggle_Pan_Speed", "Toggles panning speed between slow and fast", nullptr},
    {"KVT/Vistarig/Toggle_Airport_Cameras", "Toggles between airport cameras and aircraft cameras", nullptr},
    {"KVT/Vistarig/Toggle_Walk_Mode", "Toggles walk mode on or off", nullptr},
    {"KVT/Vistarig/Select_Nearest_Airport_Camera", "Selects the nearest airport camera", nullptr},
    {"KVT/Vistarig/Toggle_Nearest_Airport_Camera", "Toggles between the nearest airport camera and aircraft cameras",
     nullptr},
    {"KVT/Vistarig/Auto_Select_Nearest_Airport_Camera", "Auto Selects the nearest airport camera", nullptr},
    {"KVT/Vistarig/Toggle_Auto_Nearest_Airport_Camera",
     "Toggles between the auto select nearest airport camera and aircraft", nullptr},
    {"KVT/Vistarig/MouseMove_X_Y", "Moves the camera with the mouse in a left-right / up-down fashion", nullptr},
    {"KVT/Vistarig/MouseMove_X_Z", "Moves the camera with the mouse in a left-right / forward-back fashion", nullptr},
    {"KVT/Vistarig/MouseMove_Heading_Pitch", "Moves the camera with the mouse in a rotate / pitch fashion", nullptr},
    {"KVT/Vistarig/MouseMove_Zoom", "Zooms the camera with the mouse", nullptr},
    {"KVT/Vistarig/Select_Nearest_Target", "Selects the nearest target on a target tracking camera", nullptr},
    {"KVT/Vistarig/Select_Next_Target", "Selects the next target on a target tracking camera", nullptr},
    {"KVT/Vistarig/Select_Previous_Target", "Selects the previous target on a target tracking camera", nullptr},
    {"KVT/Vistarig/Toggle_Target_Information", "Toggles target information on or off", nullptr},
    {"KVT/Vistarig/Toggle_Target_Reciprocal", "Toggles target reciprocal", nullptr},
    {"KVT/Vistarig/Save_Camera_As_Target", "Saves the current camera location as a target", nullptr},
    {"KVT/Vistarig/Toggle_Target_Following_Camera", "Toggles target following on or off for this camera", nullptr},
    {"KVT/Vistarig/Select_Free_Target", "Selects the free target", nullptr},
    {"KVT/Vistarig/Toggle_Lock_Keyboard", "Toggles locking camera movement from the keyboard", nullptr},
    {"KVT/Vistarig/Select_Next_View_ID", "Selects the next camera with an assigned view ID", nullptr},
    {"KVT/Vistarig/Select_Previous_View_ID", "Selects the previous camera with an assigned view ID", nullptr},
    {"KVT/Vistarig/Toggle_Camera_Axis_Input", "Toggles Camera Axis Input", nullptr},
    {"KVT/Vistarig/Toggle_AI_Perspective", "Toggles external camera view between User and AI Plane", nullptr},
    {"KVT/Vistarig/Select_Next_AI_Plane", "Selects the next AI plane when AI perspective is active", nullptr},
    {"KVT/Vistarig/Select_Previous_AI_Plane", "Selects the previous AI plane when AI perspective is active", nullptr},
    {"KVT/Vistarig/Select_Next_Distant_AI_Plane",
     "Selects the next more distant AI plane when AI perspective is active", nullptr},
    {"KVT/Vistarig/Select_Previous_Distant_AI_Plane",
     "Selects the previous less distant AI plane when AI perspective is active", nullptr},
    {"KVT/Vistarig/Open_Settings", "Opens the settings dialog box", nullptr},
    {"KVT/Vistarig/AI_Scale_Up", "Scales the AI perspective up", nullptr},
    {"KVT/Vistarig/AI_Scale_Down", "Scales the AI perspective down", nullptr},
    {"KVT/Vistarig/Home_Camera", "Positions the camera at the home position", nullptr},
    {"KVT/Vistarig/Zero_Camera_Bearing", "Sets the camera bearing to zero", nullptr},
    {"KVT/Vistarig/Zero_Camera_Pitch", "Sets the camera pitch to zero", nullptr},
    {"KVT/Vistarig/Increase_Movement_Speed", "Increases the movement speed", nullptr},
    {"KVT/Vistarig/Decrease_Movement_Speed", "Decreases the movement speed", nullptr},
    {"KVT/Vistarig/Toggle_Zoom_Disable", "Toggles the scroll wheel zoom disable on the current cameras", nullptr},
    {"KVT/Vistarig/Toggle_Traffic_Display", "Toggles the TCAS traffic display", nullptr},
};

constexpr const char* kPrefix = "KVT/Vistarig/";

// One numbered family: names and descriptions are formatted once into fixed storage,
// so the name handed to DataRefTool stays valid for as long as the plug-in is loaded.
struct Family {
    const char* namePattern;
    const char* descriptionPattern;
    int32_t first;
    int32_t last;
    int32_t refconOffset;  // refcon = number + offset
    XPLMCommandCallback_f handler;
};

const Family families[] = {
    {"KVT/Vistarig/Select_View_ID_%d", "Selects the camera with a view ID of %d", kViewFamilyFirst, kViewFamilyLast, 0,
     selectViewHandler},
    {"KVT/Vistarig/Momentary_Select_View_ID_%d", "Momentarily selects the camera with a view ID of %d",
     kViewFamilyFirst, kViewFamilyLast, 0, momentaryViewHandler},
    {"KVT/Vistarig/Select_Airport_View_ID_%d", "Selects the airport camera with a view ID of %d", kAirportFamilyFirst,
     kAirportFamilyLast, 0, airportViewHandler},
    {"KVT/Vistarig/Select_Category_%d", "Selects the last active camera in category %d", 1, kCategoryFamilyCount, -1,
     categoryHandler},
};

constexpr int32_t kFamilyCommandCount = kOwnCommandCount - kCommandRowCount;

struct FamilyCommand {
    char name[64];
    char description[64];
    XPLMCommandCallback_f handler;
    int32_t refcon;
    XPLMCommandRef handle;
};

FamilyCommand familyCommands[kFamilyCommandCount];
bool handlersRegistered = false;
CommandHandlerState handlerState;

constexpr int kDataRefToolAddName = 0x1000000;

// DataRefTool lists commands it is told about; without it nothing happens.
void offerToDataRefTool(const char* name) {
    XPLMPluginID tool = XPLMFindPluginBySignature("com.acmedev.datareftool");
    if (tool == XPLM_NO_PLUGIN_ID) return;
    XPLMSendMessageToPlugin(tool, kDataRefToolAddName, const_cast<char*>(name));
}

void restoreHomeDirection(Camera* camera) {
    camera->x = camera->homePose.x;
    camera->y = camera->homePose.y;
    camera->z = camera->homePose.z;
    camera->heading = camera->homePose.heading;
    camera->pitch = camera->homePose.pitch;
}

// The common part of the view, airport and category handlers: the selection may
// switch the camera level on by itself, for an aircraft with its own camera file.
void selectAndNote(XPLMCommandPhase phase, bool (*select)(int32_t), int32_t value) {
    if (!cameraEnabled() && phase == xplm_CommandBegin && cameraFileExists()) enableCamera();
    if (!cameraEnabled() || phase != xplm_CommandBegin) return;
    stopCameraMotion();
    Camera* before = currentCamera();
    if (!select(value)) return;
    // Selecting the camera that is already current puts a temporary one back home.
    if (currentCamera() == before && before->temporaryPositioning) restoreHomeDirection(before);
    noteSelectionChanged();
}

// The target commands that act on a tracking camera first jump to one from anywhere.
bool onTrackingCamera() { return selectFirstTargetFollowingCamera(); }

void nearestAirportCamera(bool automatic) {
    frameDriver().autoNearestAirport = automatic;
    selectNearestAirportCamera();
}

int32_t mouseModeOfRow(int32_t row) {
    switch (row) {
        case kRowMouseMoveXY: return 2;
        case kRowMouseMoveXZ: return 1;
        case kRowMouseMoveHeadingPitch: return 3;
        default: return 4;
    }
}

// Rows that act while the camera level is off.
bool actsWhileOff(int32_t row) {
    return row == kRowEnable || row == kRowDisable || row == kRowToggleEnabled || row == kRowToggleTrafficDisplay;
}

void switchOff() {
    stopCameraMotion();
    disableCamera(false);
}

void runRowAction(int32_t row) {
    // Asked for only by the rows that act on it: with the set empty, asking would
    // load the aircraft's file, which a row that works while off must not do.
    auto current = [] { return currentCamera(); };
    switch (row) {
        case kRowSaveAllCameras: stopCameraMotion(); saveCameraFile(true, false); break;
        case kRowEnable: if (!cameraEnabled()) enableCamera(); break;
        case kRowDisable: if (cameraEnabled()) switchOff(); break;
        case kRowToggleEnabled: if (cameraEnabled()) switchOff(); else enableCamera(); break;
        case kRowToggleControlPanel: ControlPanelAction(1); break;
        case kRowToggleMiniControlPanel: MiniControlPanelAction(1); break;
        case kRowNextCamera: stopCameraMotion(); nextCamera(false); break;
        case kRowPreviousCamera: stopCameraMotion(); previousCamera(false); break;
        case kRowNextCategory: stopCameraMotion(); nextCategory(); break;
        case kRowPreviousCategory: stopCameraMotion(); previousCategory(); break;
        case kRowAddCameraToNewCategory: stopCameraMotion(); addCategory(); break;
        case kRowAddCameraToCategory: stopCameraMotion(); addCamera(); break;
        case kRowToggleTrackIr: current()->trackIrEnabled = !current()->trackIrEnabled; break;
        case kRowToggleHeadShake: current()->headShake = !current()->headShake; break;
        case kRowToggleMouseLook: toggleMouseLook(); break;
        case kRowCenterCamera: moveCamera(12, false); moveCamera(13, false); break;
        case kRowRestoreAllCameras: stopCameraMotion(); loadCameraFile(nullptr); break;
        case kRowRestoreCamerasAndHome: stopCameraMotion(); restoreAllCameras(); break;
        case kRowRestoreCurrentCamera: stopCameraMotion(); restoreHomePosition(current()); break;
        case kRowTogglePanSpeed: cyclePanSpeed(); break;
        case kRowToggleAirportCameras: toggleAirportCameras(); break;
        case kRowToggleWalkMode: moveCamera(10, false); break;
        case kRowSelectNearestAirportCamera: nearestAirportCamera(false); break;
        case kRowToggleNearestAirportCamera:
            toggleAirportCameras();
            if (isAirportSetActive()) nearestAirportCamera(false);
            break;
        case kRowAutoSelectNearestAirportCamera: nearestAirportCamera(true); break;
        case kRowToggleAutoNearestAirportCamera:
            toggleAirportCameras();
            if (isAirportSetActive()) nearestAirportCamera(true);
            break;
        case kRowMouseMoveXY:
        case kRowMouseMoveXZ:
        case kRowMouseMoveHeadingPitch:
        case kRowMouseMoveZoom: beginMouseMove(mouseModeOfRow(row)); break;
        case kRowSelectNearestTarget: if (onTrackingCamera()) selectNearestTarget(); break;
        case kRowSelectNextTarget: if (onTrackingCamera()) selectNextTarget(); break;
        case kRowSelectPreviousTarget: if (onTrackingCamera()) selectPreviousTarget(); break;
        case kRowToggleTargetInformation: showTargetInformation() = !showTargetInformation(); break;
        case kRowToggleTargetReciprocal:
            if (onTrackingCamera()) {
                Camera* tracking = currentCamera();
                if (tracking->targetFollowing) tracking->targetReciprocal = !tracking->targetReciprocal;
            }
            break;
        case kRowSaveCameraAsTarget: openSaveTargetPanel(); break;
        case kRowToggleTargetFollowing:
            if (current()->external && !current()->freeCamera)
                current()->targetFollowing = !current()->targetFollowing;
            break;
        case kRowSelectFreeTarget: if (onTrackingCamera()) selectFreeTarget(); break;
        case kRowToggleLockKeyboard:
            settings().LOCK_KEYBOARD_CONTROL = !settings().LOCK_KEYBOARD_CONTROL;
            break;
        case kRowSelectNextViewId: nextViewId(); break;
        case kRowSelectPreviousViewId: previousViewId(); break;
        case kRowToggleCameraAxis: current()->cameraAxis = !current()->cameraAxis; break;
        case kRowToggleAiPerspective: toggleAiPerspective(); break;
        case kRowSelectNextAiPlane: selectNextAiPlane(); break;
        case kRowSelectPreviousAiPlane: selectPreviousAiPlane(); break;
        case kRowSelectNextDistantAiPlane: selectNextDistantAiPlane(); break;
        case kRowSelectPreviousDistantAiPlane: selectPreviousDistantAiPlane(); break;
        case kRowOpenSettings: SettingsPanelAction(true); break;
        case kRowAiScaleUp: aiScaleUp(); break;
        case kRowAiScaleDown: aiScaleDown(); break;
        case kRowHomeCamera: moveCamera(11, false); break;
        case kRowZeroBearing: moveCamera(12, false); break;
        case kRowZeroPitch: moveCamera(13, false); break;
        case kRowIncreaseSpeed: moveCamera(14, false); break;
        case kRowDecreaseSpeed: moveCamera(15, false); break;
        case kRowToggleZoomDisable: current()->disable3dCockpitZoom = !current()->disable3dCockpitZoom; break;
        case kRowToggleTrafficDisplay: toggleTrafficDisplay(); break;
        default:
            // The pans, when their own path above didn't take them (walk mode or a
            // transition running): walk mode turns by them too.
            if (row >= kRowPanLeft && row <= kRowPanLeftAndDown) panCamera(xplm_CommandBegin, row);
            break;
    }
}

}  // namespace

CommandHandlerState& commandHandlerState() { return handlerState; }

const CommandRow& commandRow(int32_t row) {
    static const CommandRow none{"", "", nullptr};
    if (row < 0 || row >= kCommandRowCount) return none;
    return rows[row];
}

int32_t commandRowIndex(const char* name) {
    if (name == nullptr) return -1;
    size_t prefixLength = std::strlen(kPrefix);
    const char* shortName = std::strncmp(name, kPrefix, prefixLength) == 0 ? name + prefixLength : name;
    for (int32_t row = 0; row < kCommandRowCount; ++row) {
        if (std::strcmp(rows[row].name + prefixLength, shortName) == 0) return row;
    }
    return -1;
}

void createCommands() {
    if (handlersRegistered) return;
    handlerState = CommandHandlerState{};
    // The AI offset scale starts afresh with every registration; the rest of the
    // selection lives as long as the plug-in.
    aiPlaneSelection().scale = 1.0f;
    for (int32_t row = 0; row < kCommandRowCount; ++row) {
        rows[row].handle = XPLMCreateCommand(rows[row].name, rows[row].description);
        if (rows[row].handle != nullptr) XPLMRegisterCommandHandler(rows[row].handle, commandHandler, 0, refconOf(row));
    }
    int32_t slot = 0;
    for (const Family& family : families) {
        for (int32_t number = family.first; number <= family.last && slot < kFamilyCommandCount; ++number, ++slot) {
            FamilyCommand& command = familyCommands[slot];
            std::snprintf(command.name, sizeof command.name, family.namePattern, number);
            std::snprintf(command.description, sizeof command.description, family.descriptionPattern, number);
            command.handler = family.handler;
            command.refcon = number + family.refconOffset;
            command.handle = XPLMCreateCommand(command.name, command.description);
            if (command.handle != nullptr)
                XPLMRegisterCommandHandler(command.handle, command.handler, 0, refconOf(command.refcon));
            offerToDataRefTool(command.name);
        }
    }
    handlersRegistered = true;
}

void removeCommandHandlers() {
    if (!handlersRegistered) return;
    for (int32_t row = 0; row < kCommandRowCount; ++row) {
        if (rows[row].handle != nullptr)
            XPLMUnregisterCommandHandler(rows[row].handle, commandHandler, 0, refconOf(row));
        rows[row].handle = nullptr;
    }
    for (FamilyCommand& command : familyCommands) {
        if (command.handle != nullptr)
            XPLMUnregisterCommandHandler(command.handle, command.handler, 0, refconOf(command.refcon));
        command.handle = nullptr;
    }
    handlersRegistered = false;
}

int commandHandler(XPLMCommandRef, XPLMCommandPhase phase, void* refcon) {
    int32_t row = valueOfRefcon(refcon);
    if (row < 0 || row >= kCommandRowCount) return 1;
    bool on = cameraEnabled();

    if (row >= kRowMouseMoveXY && row <= kRowMouseMoveZoom && on && !transitionRunning()) {
        if (phase == xplm_CommandBegin) beginMouseMove(mouseModeOfRow(row));
        if (phase == xplm_CommandEnd) beginMouseMove(0);
        return 1;
    }
    if (row == kRowSimulateMiddleButton && on) {
        middleButtonCommand(phase);
        return 1;
    }
    if (row >= kRowPanLeft && row <= kRowPanLeftAndDown && on && !transitionRunning() && !movementState().walkMode) {
        stopCameraMotion();
        panCamera(phase, row);
        return 1;
    }
    if (phase != xplm_CommandBegin) return 1;
    if (!on && !actsWhileOff(row)) return 1;
    runRowAction(row);
    // The frame driver acts on the result in whatever view the simulator stands.
    noteSelectionChanged();
    return 1;
}

void runCommandRow(int32_t row) {
    if (row < 0 || row >= kCommandRowCount) return;
    commandHandler(rows[row].handle, xplm_CommandBegin, refconOf(row));
}

int selectViewHandler(XPLMCommandRef, XPLMCommandPhase phase, void* refcon) {
    selectAndNote(phase, selectViewId, valueOfRefcon(refcon));
    return 1;
}

int momentaryViewHandler(XPLMCommandRef, XPLMCommandPhase phase, void* refcon) {
    if (phase == xplm_CommandBegin) {
        if (!cameraEnabled() && cameraFileExists()) enableCamera();
        if (!cameraEnabled()) return 1;
        handlerState.momentaryReturnCamera = currentCamera();
        selectAndNote(phase, selectViewId, valueOfRefcon(refcon));
    } else if (phase == xplm_CommandEnd && cameraEnabled() && handlerState.momentaryReturnCamera != nullptr) {
        selectCameraRecord(handlerState.momentaryReturnCamera);
        noteSelectionChanged();
    }
    return 1;
}

int airportViewHandler(XPLMCommandRef, XPLMCommandPhase phase, void* refcon) {
    if (phase != xplm_CommandBegin || !cameraEnabled()) return 1;
    if (!isAirportSetActive()) toggleAirportCameras();
    if (isAirportSetActive()) selectAndNote(phase, selectViewId, valueOfRefcon(refcon));
    return 1;
}

int categoryHandler(XPLMCommandRef, XPLMCommandPhase phase, void* refcon) {
    selectAndNote(phase, selectCategoryByCommand, valueOfRefcon(refcon));
    return 1;
}
