// The frame driver: `runFrame`, called once a frame from the flight loop, decides
// whether the plug-in may act on the view, reconciles the simulator's view with the
// kind of the current camera, notices camera changes and produces `framePose`. It
// owns the driver state record, the camera callback and the view datarefs.
#pragma once

#include <cstdint>

#include "XPLMCamera.h"
#include "XPLMDataAccess.h"
#include "XPLMDisplay.h"
#include "data/camera_set.h"
#include "data/running_average.h"

struct FrameDriver {
    CameraPose framePose;
    Camera* lastFrameCamera = nullptr;
    Camera* callbackCamera = nullptr;
    bool cameraControlled = false;
    double lastCallbackTime = 0;  // simulator seconds of the last camera callback
    bool selectionChanged = false;
    bool cockpitReturnRequested = false;
    RunningAverage frameRateFilter;
    double nearestAirportTimer = 0;  // simulator seconds since the last nearest airport test
    bool autoNearestAirport = false;
    int32_t previousAirportFlag = 0;
    bool headRollAvailable = false;
    Camera restoreSnapshot;
    bool restorePending = false;
    bool drawCallbackRegistered = false;
    // The pose this frame took from the running transition or the camera, before
    // aiming and inputs, and whether a transition gave it: where the view stands when
    // a camera change or a movement key interrupts a transition.
    CameraPose shownPose;
    bool shownFromTransition = false;
};

// The simulator's view datarefs, found at host enable.
struct ViewDatarefs {
    XPLMDataRef headX = nullptr, headY = nullptr, headZ = nullptr;
    XPLMDataRef headPsi = nullptr, headThe = nullptr, headRoll = nullptr;
    XPLMDataRef fieldOfView = nullptr;
    XPLMDataRef viewType = nullptr;
    XPLMDataRef viewIsExternal = nullptr;
    XPLMDataRef cinemaVerite = nullptr;
    XPLMDataRef hideYoke = nullptr;
    XPLMDataRef frameRatePeriod = nullptr;
    XPLMDataRef killWheelZoom = nullptr;
    bool killWheelZoomRetried = false;
};

FrameDriver& frameDriver();
ViewDatarefs& viewDatarefs();

// Finds the view datarefs, resets the driver and subscribes it to the camera data's
// events (data/events); called at host enable.
void initFrameDriver();
// Unsubscribes it again and forgets the nearest airport selector; host disable.
void closeFrameDriver();
// The nearest airport choice lives above this layer (airports/): the shell hands it
// in at host enable, and the driver calls it when the timer falls due.
void setNearestAirportSelector(void (*select)());

void runFrame();
void noteSelectionChanged();
bool isCockpitView();
bool isExternalView();
bool viewIsForeign();
bool cameraControlStale();
void takeCameraControl();
void releaseCameraControl();
void selectCockpitView(bool force);
void selectFreeView();
void requestCockpitReturn();
void setFieldOfView(float degrees);
float currentFrameRate();
void setCallbackCamera(Camera* camera);
void beginRestore(Camera* camera);
CameraPose readHeadPose();

int cameraCallback(XPLMCameraPosition_t* position, int losingControl, void* refcon);
int zoomOnceCallback(XPLMCameraPosition_t* position, int losingControl, void* refcon);

// The draw callback of the aiming cross, registered while the current camera follows a
// target.
int aimingCrossDrawCallback(XPLMDrawingPhase phase, int isBefore, void* refcon);
void registerAimingCross();
void unregisterAimingCross();
