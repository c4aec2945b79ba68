// The plug-in's state record: its two levels of being on (host level between
// XPluginEnable/Disable, camera level between enableCamera/disableCamera), what the
// camera level saved of the simulator's view, and the status values System Check
// shows. The shell owns its changes; every layer may read it.
#pragma once

#include <cstdint>

#include "data/camera_set.h"

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
    // The simulator's field of view when the camera level came on (60 until then): a
    // camera without a usable field of view of its own gets it.
    float defaultFov = 60.0f;
};

PluginState& pluginState();
inline bool cameraEnabled() { return pluginState().cameraEnabled; }
inline float lastFrameSeconds() { return pluginState().lastFrameSeconds; }
inline float defaultFov() { return pluginState().defaultFov; }
// The community folders are scanned again; the main flight loop starts it.
inline void requestCommunityRescan() { pluginState().communityRescanRequested = true; }
