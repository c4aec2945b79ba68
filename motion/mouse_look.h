// The mouse: the invisible input window over the whole screen (wheel, right button,
// and a per-frame reading of the mouse), mouse look with its three endings, the
// middle button and its latch, the mouse move commands, and the circle view's orbit
// by mouse. Owns the one `MouseState` record. Main thread only.
#pragma once

#include <cstdint>

#include "XPLMDisplay.h"
#include "XPLMUtilities.h"
#include "data/camera_set.h"
#include "data/running_average.h"
#include "inputs/pose_offsets.h"

struct MouseState {
    XPLMWindowID inputWindow = nullptr;
    bool rightButtonHeld = false;
    bool middleLatch = false;
    bool middleWasDown = false;
    bool mouseLookActive = false;
    int32_t lookStartX = 0, lookStartY = 0;
    int32_t lookOffsetX = 0, lookOffsetY = 0;
    float degreesPerPixelX = 0, degreesPerPixelY = 0;
    int32_t mouseMoveMode = 0;  // 0 none, 1 X and Z, 2 X and Y, 3 heading and pitch, 4 zoom
    int32_t moveLastX = 0, moveLastY = 0;
    int32_t screenWidth = 0, screenHeight = 0;
    int32_t smoothedMouseX = 0, smoothedMouseY = 0;
    bool circleContinuous = false;
    int32_t circleClickX = 0, circleClickY = 0;
    int32_t circleLastX = 0, circleLastY = 0;
    RunningAverage lookFilterX, lookFilterY;
    RunningAverage moveFilterX, moveFilterY;
    RunningAverage globalFilterX, globalFilterY;
    bool mouseFiltersReady = false;
};

MouseState& mouseState();
// Back to the start values (the window handle included); for host enable and tests.
void resetMouseState();

// The window exists from host enable to host disable.
void createInputWindow();
void destroyInputWindow();

// The physical middle button or the latch.
bool middleButtonDown();
// KVT/Vistarig/Simulate_Middle_Mouse_Button: begin raises the latch, end clears it.
void middleButtonCommand(XPLMCommandPhase phase);
// KVT/Vistarig/Toggle_Mouse_Look_On_or_Off.
void toggleMouseLook();

// Once a frame after the pose is known: starts, follows and ends the look gesture.
void updateMouseLook(CameraPose& pose, Camera* camera);
// The running gesture's smoothed offset, for the frame's pose only.
PoseOffsets mouseLookOffsets();

// Starts (modes 1 to 4) or ends (0) dragging the camera with the mouse.
void beginMouseMove(int32_t mode);
// Once a frame while no transition runs.
void applyMouseMove(Camera* camera);

// Orbit of a circle view camera by mouse: phase 1 stores the start, 2 moves.
void circleDrag(int32_t x, int32_t y, int32_t phase);

// The input window's functions; tests call them directly as well.
void inputWindowDraw(XPLMWindowID window, void* refcon);
int inputWindowWheel(XPLMWindowID window, int x, int y, int wheel, int clicks, void* refcon);
int inputWindowRightClick(XPLMWindowID window, int x, int y, XPLMMouseStatus status, void* refcon);
