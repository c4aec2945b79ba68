#include "motion/mouse_look.h"

#include <cmath>
#include <cstdlib>

#include "XPLMDataAccess.h"
#include "XPLMDefs.h"
#include "XPLMDisplay.h"
#include "XPLMUtilities.h"
#include "data/angles.h"
#include "data/plugin_state.h"
#include "data/settings.h"
#include "motion/camera_pose.h"
#include "motion/frame_driver.h"
#include "motion/movement.h"
#include "motion/target_tracking.h"
#include "motion/transitions.h"
#include "platform/middle_button.h"

namespace {

MouseState state;

constexpr float kDegreesToRadians = 0.017453292519943295f;

int32_t smoothing() { return settings().MOUSE_SMOOTHING_FACTOR; }

float movementSpeedOf(int32_t selector) {
    const Settings& s = settings();
    switch (selector) {
        case 0: return s.SMALL_MOVEMENT_SPEED;
        case 2: return s.LARGE_MOVEMENT_SPEED;
        case 3: return s.VERY_LARGE_MOVEMENT_SPEED;
        default: return s.MEDIUM_MOVEMENT_SPEED;
    }
}

float rotationSpeedOf(int32_t selector) {
    const Settings& s = settings();
    switch (selector) {
        case 0: return s.SMALL_ROTATION_SPEED;
        case 2: return s.LARGE_ROTATION_SPEED;
        case 3: return s.VERY_LARGE_ROTATION_SPEED;
        default: return s.MEDIUM_ROTATION_SPEED;
    }
}

void mouseLocation(int32_t& x, int32_t& y) {
    int mx = 0, my = 0;
    XPLMGetMouseLocation(&mx, &my);
    x = mx;
    y = my;
}

// A sweep across the whole screen is a full turn across and half a turn up.
void readScreenScale() {
    int width = 0, height = 0;
    XPLMGetScreenSize(&width, &height);
    state.screenWidth = width > 0 ? width : 1;
    state.screenHeight = height > 0 ? height : 1;
    state.degreesPerPixelX = 360.0f / static_cast<float>(state.screenWidth) * settings().MOUSE_SPEED_FACTOR;
    state.degreesPerPixelY = 180.0f / static_cast<float>(state.screenHeight) * settings().MOUSE_SPEED_FACTOR;
}

float aircraftHeading() {
    // Looked up at each use: only a Cineflex camera under a mouse move asks.
    XPLMDataRef psi = XPLMFindDataRef("sim/flightmodel/position/psi");
    return psi != nullptr ? XPLMGetDataf(psi) : 0.0f;
}

bool freeTargetAim(const Camera* camera) {
    return camera->targetFollowing && !camera->targetReciprocal && freeTargetSelected();
}

bool externalCircleView() {
    return cameraEnabled() && isExternalView() && currentCamera()->circleView;
}

int inputWindowClick(XPLMWindowID, int, int, XPLMMouseStatus, void*) { return 0; }
XPLMCursorStatus inputWindowCursor(XPLMWindowID, int, int, void*) { return xplm_CursorDefault; }
void inputWindowKey(XPLMWindowID, char, XPLMKeyFlags, char, void*, int) {}

}  // namespace

MouseState& mouseState() { return state; }

void resetMouseState() { state = MouseState{}; }

// ---------------------------------------------------------------- the input window

void createInputWindow() {
    if (state.inputWindow != nullptr) return;
    // A new host session starts with no gesture, latch or circle running.
    state = MouseState{};
    int left = 0, top = 0, right = 0, bottom = 0;
    XPLMGetScreenBoundsGlobal(&left, &top, &right, &bottom);
    XPLMCreateWindow_t params{};
    params.structSize = sizeof params;
    params.left = left;
    params.top = top;
    params.right = right;
    params.bottom = bottom;
    params.visible = 1;
    params.drawWindowFunc = inputWindowDraw;
    params.handleMouseClickFunc = inputWindowClick;
    params.handleKeyFunc = inputWindowKey;
    params.handleCursorFunc = inputWindowCursor;
    params.handleMouseWheelFunc = inputWindowWheel;
    params.refcon = nullptr;
    params.decorateAsFloatingWindow = xplm_WindowDecorationNone;
    // Below every floating window, so the panels get their own clicks and wheel.
    params.layer = xplm_WindowLayerFlightOverlay;
    params.handleRightClickFunc = inputWindowRightClick;
    state.inputWindow = XPLMCreateWindowEx(&params);
    if (state.inputWindow != nullptr) XPLMSetWindowGravity(state.inputWindow, 0.0f, 1.0f, 1.0f, 0.0f);
    state.rightButtonHeld = false;
}

void destroyInputWindow() {
    if (state.inputWindow != nullptr) XPLMDestroyWindow(state.inputWindow);
    state.inputWindow = nullptr;
    state.rightButtonHeld = false;
}

void inputWindowDraw(XPLMWindowID, void*) {
    int x = 0, y = 0;
    XPLMGetMouseLocationGlobal(&x, &y);
    int32_t n = smoothing();
    if (!state.mouseFiltersReady) {
        prime(state.globalFilterX, n, static_cast<float>(x));
        prime(state.globalFilterY, n, static_cast<float>(y));
        state.mouseFiltersReady = true;
    }
    state.smoothedMouseX = static_cast<int32_t>(average(state.globalFilterX, n, static_cast<float>(x)));
    state.smoothedMouseY = static_cast<int32_t>(average(state.globalFilterY, n, static_cast<float>(y)));
    if (externalCircleView()) {
        if (state.circleContinuous) circleDrag(state.smoothedMouseX, state.smoothedMouseY, 2);
        return;
    }
    if (!cameraEnabled()) state.circleContinuous = false;
}

int inputWindowWheel(XPLMWindowID, int, int, int, int clicks, void*) {
    if (!cameraEnabled() || !isExternalView() || cameraControlStale()) return 0;
    Camera* camera = currentCamera();
    if (!camera->external) return 0;
    if (camera->circleView && !settings().CIRCLE_VIEW_WHEEL_ZOOM) {
        // Towards or away from the centre of the circle.
        moveCamera(clicks < 1 ? 1 : 0, false);
        return 1;
    }
    if (camera->disable3dCockpitZoom) return 0;
    camera->currentZoom += static_cast<float>(clicks) * 0.05f;
    if (camera->currentZoom < 1.0f) camera->currentZoom = 1.0f;
    return 1;
}

int inputWindowRightClick(XPLMWindowID, int x, int y, XPLMMouseStatus status, void*) {
    if (viewIsForeign()) {
        // A press on one of the simulator's own views is the simulator's.
        state.rightButtonHeld = false;
        return 0;
    }
    if (currentCamera()->circleView && isExternalView()) {
        state.rightButtonHeld = false;
        if (status == xplm_MouseDown) {
            if (!state.circleContinuous) {
                state.circleClickX = x;
                state.circleClickY = y;
                circleDrag(state.smoothedMouseX, state.smoothedMouseY, 1);
                state.circleContinuous = true;
            } else {
                state.circleContinuous = false;
            }
        } else if (status == xplm_MouseDrag) {
            if (x != state.circleClickX || y != state.circleClickY) state.circleContinuous = false;
            circleDrag(state.smoothedMouseX, state.smoothedMouseY, 2);
        }
        return 1;
    }
    if (status == xplm_MouseDown) state.rightButtonHeld = true;
    if (status == xplm_MouseUp) state.rightButtonHeld = false;
    return 1;
}

// ---------------------------------------------------------------- circle view

void circleDrag(int32_t x, int32_t y, int32_t phase) {
    if (phase == 1) {
        state.circleLastX = x;
        state.circleLastY = y;
        return;
    }
    if (phase != 2) return;
    Camera* camera = currentCamera();
    int32_t selector = movementState().speedSelector;
    // The farther out the camera, the faster it climbs.
    float d = std::fabs(camera->x) > std::fabs(camera->z) ? std::fabs(camera->x) : std::fabs(camera->z);
    float climb = movementSpeedOf(selector) / 10.0f * static_cast<float>(y - state.circleLastY) * d / 30.0f;
    camera->y += settings().REVERSE_CIRCLE_VIEW_MOUSE_Y ? -climb : climb;
    float turn = rotationSpeedOf(selector) / 10.0f * static_cast<float>(x - state.circleLastX);
    Vector3 v = rotateVector(Vector3{camera->x, camera->y, camera->z}, 0.0f, turn, 0.0f);
    camera->x = v.x;
    camera->y = v.y;
    camera->z = v.z;
    state.circleLastX = x;
    state.circleLastY = y;
}

// ---------------------------------------------------------------- middle button

bool middleButtonDown() { return physicalMiddleButtonDown() || state.middleLatch; }

void middleButtonCommand(XPLMCommandPhase phase) {
    if (phase == xplm_CommandBegin) state.middleLatch = true;
    if (phase == xplm_CommandEnd) state.middleLatch = false;
}

void toggleMouseLook() { state.middleLatch = !state.middleLatch; }

// ---------------------------------------------------------------- mouse look

void updateMouseLook(CameraPose& pose, Camera* camera) {
    bool right = state.rightButtonHeld;
    bool middle = middleButtonDown();
    bool active = right;
    if (settings().MIDDLE_MOUSE_BEHAVIOR == 0) {
        active = right || middle;
    } else if (settings().MIDDLE_MOUSE_BEHAVIOR == 1) {
        // One press, one flip of the zoom lock, however long it is held.
        if (middle && !state.middleWasDown) camera->disable3dCockpitZoom = !camera->disable3dCockpitZoom;
        state.middleWasDown = middle;
    }

    if (active && !state.mouseLookActive) {
        readScreenScale();
        mouseLocation(state.lookStartX, state.lookStartY);
        prime(state.lookFilterX, smoothing(), 0.0f);
        prime(state.lookFilterY, smoothing(), 0.0f);
        // Aiming the Free Target holds the simulation still while the user aims.
        if (freeTargetAim(camera)) beginFreeTargetAim();
    }
    if (active) {
        state.mouseLookActive = true;
        int32_t x = 0, y = 0;
        mouseLocation(x, y);
        state.lookOffsetX = x - state.lookStartX;
        state.lookOffsetY = y - state.lookStartY;
        return;
    }
    if (state.mouseLookActive) {
        endFreeTargetAim(camera, freeTargetAim(camera));
        float dh = static_cast<float>(state.lookOffsetX) * state.degreesPerPixelX;
        float dp = static_cast<float>(state.lookOffsetY) * state.degreesPerPixelY;
        if (!transitionRunning() && camera->retainMouseLook) {
            pose.heading = addAngles(pose.heading, dh);
            pose.pitch = addAngles(pose.pitch, dp);
            camera->heading = addAngles(camera->heading, dh);
            camera->pitch = addAngles(camera->pitch, dp);
        } else if (!transitionRunning() && camera->smoothTransition && !camera->external) {
            // Glide back from where the head was looking.
            pose.heading = addAngles(pose.heading, dh);
            pose.pitch = addAngles(pose.pitch, dp);
            startReturnTransition();
        }
    }
    state.mouseLookActive = false;
}

PoseOffsets mouseLookOffsets() {
    PoseOffsets o;
    if (!state.mouseLookActive || (state.lookOffsetX == 0 && state.lookOffsetY == 0)) return o;
    int32_t n = smoothing();
    o.wrapsAngles = true;
    o.setHeading(average(state.lookFilterX, n, static_cast<float>(state.lookOffsetX) * state.degreesPerPixelX));
    o.setPitch(average(state.lookFilterY, n, static_cast<float>(state.lookOffsetY) * state.degreesPerPixelY));
    return o;
}

// ---------------------------------------------------------------- mouse moves

void beginMouseMove(int32_t mode) {
    state.mouseMoveMode = mode;
    mouseLocation(state.moveLastX, state.moveLastY);
    prime(state.moveFilterX, smoothing(), 0.0f);
    prime(state.moveFilterY, smoothing(), 0.0f);
    readScreenScale();
}

void applyMouseMove(Camera* camera) {
    if (state.mouseMoveMode == 0) return;
    bool walking = movementState().walkMode;
    float s = movementSpeedOf(camera->initialMovementRange);
    if (walking) s /= 1000.0f;
    float heading = camera->heading;
    if (camera->cineflex) heading = wrapAngle(heading - aircraftHeading());
    float h = heading * kDegreesToRadians;
    float p = camera->pitch * kDegreesToRadians;

    int32_t x = 0, y = 0;
    mouseLocation(x, y);
    int32_t n = smoothing();
    float ax = average(state.moveFilterX, n, static_cast<float>(x - state.moveLastX));
    float ay = average(state.moveFilterY, n, static_cast<float>(y - state.moveLastY));
    int32_t mode = state.mouseMoveMode;
    if (mode == 1 || mode == 2) {
        ax *= s;
        ay *= s;
    }

    float dx = 0, dy = 0, dz = 0;
    if (mode == 1) {
        dx = (ax * std::cos(h) + ay * std::sin(h)) * std::cos(p);
        dy = ay * std::sin(p);
        dz = -(ay * std::cos(h) - ax * std::sin(h)) * std::cos(p);
    } else if (mode == 2) {
        dx = ax * std::cos(h);
        dy = ay;
        dz = ax * std::sin(h);
    }

    if (!walking) {
        if (mode == 1 || mode == 2) {
            camera->x += dx;
            camera->y += dy;
            camera->z += dz;
        } else if (mode == 3) {
            camera->heading = addAngles(camera->heading, state.degreesPerPixelX * ax);
            camera->pitch = addAngles(camera->pitch, state.degreesPerPixelY * ay);
        } else if (mode == 4) {
            camera->currentZoom += ay * 0.01f;
            if (camera->currentZoom < 1.0f) camera->currentZoom = 1.0f;
        }
    } else {
        // In walk mode the mouse sets the speed of the walk rather than the place.
        if (mode == 1 || mode == 2) {
            addRates(dx, dy, dz, 0.0f, 0.0f);
        } else if (mode == 3) {
            addRates(0.0f, 0.0f, 0.0f, ax / (2.0f * static_cast<float>(state.screenWidth)),
                     ay / (2.0f * static_cast<float>(state.screenHeight)));
        }
    }
    state.moveLastX = x;
    state.moveLastY = y;
}
