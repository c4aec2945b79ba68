// The plug-in's own commands under "KVT/Vistarig/": the 66 rows of `CommandTable` and
// the four numbered families (view IDs, momentary view IDs, airport view IDs,
// categories), 201 in all, with their handlers and the handler state that the
// simulator-command interceptors share. Made at host enable; the handlers go at host
// disable so that nothing of ours stays registered after the plug-in stops.
#pragma once

#include <cstdint>

#include "XPLMUtilities.h"
#include "data/camera_set.h"

// Row numbers; the row is the refcon of `commandHandler` and the panels' handle on a
// command.
enum CommandRowId : int32_t {
    kRowSaveAllCameras = 0,
    kRowEnable = 1,
    kRowDisable = 2,
    kRowToggleEnabled = 3,
    kRowToggleControlPanel = 4,
    kRowToggleMiniControlPanel = 5,
    kRowNextCamera = 6,
    kRowPreviousCamera = 7,
    kRowNextCategory = 8,
    kRowPreviousCategory = 9,
    kRowAddCameraToNewCategory = 10,
    kRowAddCameraToCategory = 11,
    kRowToggleTrackIr = 12,
    kRowToggleHeadShake = 13,
    kRowToggleMouseLook = 14,
    kRowCenterCamera = 15,
    kRowPanLeft = 16,
    kRowPanLeftAndDown = 23,
    kRowSimulateMiddleButton = 24,
    kRowRestoreAllCameras = 25,
    kRowRestoreCamerasAndHome = 26,
    kRowRestoreCurrentCamera = 27,
    kRowTogglePanSpeed = 28,
    kRowToggleAirportCameras = 29,
    kRowToggleWalkMode = 30,
    kRowSelectNearestAirportCamera = 31,
    kRowToggleNearestAirportCamera = 32,
    kRowAutoSelectNearestAirportCamera = 33,
    kRowToggleAutoNearestAirportCamera = 34,
    kRowMouseMoveXY = 35,
    kRowMouseMoveXZ = 36,
    kRowMouseMoveHeadingPitch = 37,
    kRowMouseMoveZoom = 38,
    kRowSelectNearestTarget = 39,
    kRowSelectNextTarget = 40,
    kRowSelectPreviousTarget = 41,
    kRowToggleTargetInformation = 42,
    kRowToggleTargetReciprocal = 43,
    kRowSaveCameraAsTarget = 44,
    kRowToggleTargetFollowing = 45,
    kRowSelectFreeTarget = 46,
    kRowToggleLockKeyboard = 47,
    kRowSelectNextViewId = 48,
    kRowSelectPreviousViewId = 49,
    kRowToggleCameraAxis = 50,
    kRowToggleAiPerspective = 51,
    kRowSelectNextAiPlane = 52,
    kRowSelectPreviousAiPlane = 53,
    kRowSelectNextDistantAiPlane = 54,
    kRowSelectPreviousDistantAiPlane = 55,
    kRowOpenSettings = 56,
    kRowAiScaleUp = 57,
    kRowAiScaleDown = 58,
    kRowHomeCamera = 59,
    kRowZeroBearing = 60,
    kRowZeroPitch = 61,
    kRowIncreaseSpeed = 62,
    kRowDecreaseSpeed = 63,
    kRowToggleZoomDisable = 64,
    kRowToggleTrafficDisplay = 65,
    kCommandRowCount = 66,
};

enum : int32_t {
    kViewFamilyFirst = 1,
    kViewFamilyLast = 50,
    kAirportFamilyFirst = 51,
    kAirportFamilyLast = 65,
    kCategoryFamilyCount = 20,
    // 66 rows + 50 view + 50 momentary + 15 airport + 20 category.
    kOwnCommandCount = 201,
};

struct CommandRow {
    const char* name;
    const char* description;
    XPLMCommandRef handle;
};

struct CommandHandlerState {
    int32_t repeatCount = 0;           // continue phases since the last begin of a movement key
    float glanceHeading = 0;           // heading before a glance
    Camera* quickLookReturnCamera = nullptr;
    Camera* momentaryReturnCamera = nullptr;
};

CommandHandlerState& commandHandlerState();

// The row's name, description and handle (null before `createCommands`).
const CommandRow& commandRow(int32_t row);
// The row of a command named with or without "KVT/Vistarig/"; -1 if none.
int32_t commandRowIndex(const char* name);

// Creates every command and registers its handler; offers each numbered command's
// name to DataRefTool.
void createCommands();
// Unregisters every handler `createCommands` registered. The commands themselves stay:
// the simulator can't delete a command.
void removeCommandHandlers();

int commandHandler(XPLMCommandRef command, XPLMCommandPhase phase, void* refcon);
// What a panel's button does: the row's handler with the begin phase, at once.
void runCommandRow(int32_t row);

int selectViewHandler(XPLMCommandRef command, XPLMCommandPhase phase, void* refcon);
int momentaryViewHandler(XPLMCommandRef command, XPLMCommandPhase phase, void* refcon);
int airportViewHandler(XPLMCommandRef command, XPLMCommandPhase phase, void* refcon);
int categoryHandler(XPLMCommandRef command, XPLMCommandPhase phase, void* refcon);

// Refcon helpers: rows and numbers travel as the pointer value.
inline void* refconOf(int32_t value) { return reinterpret_cast<void*>(static_cast<intptr_t>(value)); }
inline int32_t valueOfRefcon(void* refcon) { return static_cast<int32_t>(reinterpret_cast<intptr_t>(refcon)); }
