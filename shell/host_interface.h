// The plug-in's side of the simulator: the XPLM headers, the one log function, the
// millisecond clock, and the plug-in state record with its two levels of being on
// (host level between XPluginEnable/Disable, camera level between
// enableCamera/disableCamera). Every subsystem includes this to reach the simulator.
#pragma once

#include <cstdint>

#include "XPLMCamera.h"
#include "XPLMDataAccess.h"
#include "XPLMDefs.h"
#include "XPLMDisplay.h"
#include "XPLMGraphics.h"
#include "XPLMPlanes.h"
#include "XPLMPlugin.h"
#include "XPLMProcessing.h"
#include "XPLMScenery.h"
#include "XPLMUtilities.h"
#include "data/camera_set.h"

#define VISTARIG_NAME "Vistarig"
#define VISTARIG_SIGNATURE "KVT.Vistarig"
#define VISTARIG_MAJOR 2
#define VISTARIG_MINOR "4.3"

// "Vistarig: " + formatted text + newline, through XPLMDebugString. Never throws;
// a text longer than the buffer is cut, not overrun.
void logMessage(const char* format, ...) __attribute__((format(printf, 1, 2)));

// Whole milliseconds since the first call (made in XPluginStart); 0 means "not set".
int64_t monotonicMilliseconds();

// The simulator's time in seconds: the sum, in double, of the flight loop's elapsed
// times. Delays and timers of the view count this rather than the system clock, so
// they keep in step with the frames whether the simulator runs slower or faster than
// real time, and X-Plane and the host drive them alike. Summing in double keeps a
// whole microsecond after years of frames.
double simulatorSeconds();
void advanceSimulatorClock(float seconds);

// "2.4.3": the version text of the plug-in.
const char* versionText();

struct PluginState {
    bool cameraEnabled = false;
    bool firstFrameAfterEnable = false;
    float lastFrameSeconds = 0;
    int64_t miniPanelStartTime = 0;
    int32_t savedCinemaVerite = 0;
    int32_t savedHideYoke = 0;
    CameraPose savedHeadPose;
    bool communityRescanRequested = false;
    bool airportPositionsKnown = false;
    int32_t trackIrStatus = 0;
    int32_t scenicFlyerStatus = 0;
    bool hostEnabled = false;
};

PluginState& pluginState();
inline bool cameraEnabled() { return pluginState().cameraEnabled; }
inline float lastFrameSeconds() { return pluginState().lastFrameSeconds; }

void enableCamera();
void disableCamera(bool keepHead);
void requestCommunityRescan();

// The simulator's major version number as XPLMGetVersions gives it (e.g. 12004).
int simulatorVersion();
