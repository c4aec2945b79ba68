#include "motion/frame_driver.h"

#include <cmath>

#include "XPLMCamera.h"
#include "XPLMDataAccess.h"
#include "XPLMDisplay.h"
#include "XPLMGraphics.h"
#include "XPLMUtilities.h"
#include "data/angles.h"
#include "data/events.h"
#include "data/plugin_state.h"
#include "data/settings.h"
#include "inputs/axis_input.h"
#include "inputs/scenic_flyer.h"
#include "motion/camera_inputs.h"
#include "motion/camera_pose.h"
#include "motion/mouse_look.h"
#include "motion/movement.h"
#include "motion/target_tracking.h"
#include "motion/transitions.h"
#include "platform/runtime.h"

namespace {

FrameDriver gDriver;
ViewDatarefs gRefs;
void (*gNearestAirportSelector)() = nullptr;

constexpr int kCockpitViewType = 1026;
constexpr int kExternalViewType = 1028;
constexpr double kStaleControlSeconds = 0.5;
constexpr double kNearestAirportSeconds = 2.0;
// Sums of frame times carry rounding; a timer that is due within this is due.
constexpr double kTimerSlack = 1e-6;

XPLMDataRef find(const char* name) { return XPLMFindDataRef(name); }

float getf(XPLMDataRef ref) { return ref ? XPLMGetDataf(ref) : 0.0f; }
int geti(XPLMDataRef ref) { return ref ? XPLMGetDatai(ref) : 0; }
void setf(XPLMDataRef ref, float v) {
    if (ref) XPLMSetDataf(ref, v);
}
void seti(XPLMDataRef ref, int v) {
    if (ref) XPLMSetDatai(ref, v);
}

void runSimCommand(const char* name) {
    XPLMCommandRef command = XPLMFindCommand(name);
    if (command) XPLMCommandOnce(command);
}

// The simulator's wheel-zoom switch exists only in some versions; a failed lookup
// is repeated once, later, because the dataref may be published after we start.
bool killWheelZoomAvailable() {
    if (gRefs.killWheelZoom) return true;
    if (!gRefs.killWheelZoomRetried) {
        gRefs.killWheelZoomRetried = true;
        gRefs.killWheelZoom = find("sim/private/controls/camera/kill_wheel_zoom");
    }
    return false;
}

void writeHead(const CameraPose& pose) {
    setf(gRefs.headX, pose.x);
    setf(gRefs.headY, pose.y);
    setf(gRefs.headZ, pose.z);
    setf(gRefs.headPsi, pose.heading);
    setf(gRefs.headThe, foldAngle(pose.pitch));
    setf(gRefs.headRoll, foldAngle(pose.roll));
}

bool userChoseExternalView() { return !isCockpitView(); }

// Step 4 of the frame: bring the simulator's view in line with the current camera.
// Returns false when the frame ends here.
bool reconcileView(Camera* current) {
    FrameDriver& d = gDriver;
    bool cockpitView = isCockpitView();
    bool external = current->external;
    if (!external && d.cameraControlled) {
        releaseCameraControl();
        selectCockpitView(false);
        return true;
    }
    if (external && d.cameraControlled && cameraControlStale() && (d.selectionChanged || cockpitView)) {
        if (cockpitView) selectFreeView();
        takeCameraControl();
        return true;
    }
    if (external && d.cameraControlled && cameraControlStale()) return true;
    if (!external && !d.cameraControlled && d.selectionChanged && !cockpitView) {
        selectCockpitView(false);
        return true;
    }
    if (d.selectionChanged) return true;
    if (cockpitView) return true;
    if (external) return true;
    if (d.cockpitReturnRequested) {
        selectCockpitView(false);
        pluginState().savedHeadPose = readHeadPose();
        return false;
    }
    if (userChoseExternalView()) {
        if (!d.headRollAvailable) setf(gRefs.headRoll, 0.0f);
        if (getf(gRefs.fieldOfView) != defaultFov()) setFieldOfView(defaultFov());
        return false;
    }
    return true;
}

}  // namespace

FrameDriver& frameDriver() { return gDriver; }
ViewDatarefs& viewDatarefs() { return gRefs; }

void initFrameDriver() {
    initCameraPose();
    initTargetTracking();
    gRefs = ViewDatarefs();
    gRefs.headX = find("sim/graphics/view/pilots_head_x");
    gRefs.headY = find("sim/graphics/view/pilots_head_y");
    gRefs.headZ = find("sim/graphics/view/pilots_head_z");
    gRefs.headPsi = find("sim/graphics/view/pilots_head_psi");
    gRefs.headThe = find("sim/graphics/view/pilots_head_the");
    gRefs.headRoll = find("sim/graphics/view/pilots_head_phi");
    gDriver.headRollAvailable = gRefs.headRoll != nullptr;
    if (!gRefs.headRoll) gRefs.headRoll = find("sim/graphics/view/field_of_view_roll_deg");
    gRefs.fieldOfView = find("sim/graphics/view/field_of_view_deg");
    gRefs.viewType = find("sim/graphics/view/view_type");
    gRefs.viewIsExternal = find("sim/graphics/view/view_is_external");
    gRefs.cinemaVerite = find("sim/graphics/view/cinema_verite");
    gRefs.hideYoke = find("sim/graphics/view/hide_yoke");
    gRefs.frameRatePeriod = find("sim/operation/misc/frame_rate_period");
    gRefs.killWheelZoom = find("sim/private/controls/camera/kill_wheel_zoom");

    bool rollAvailable = gDriver.headRollAvailable;
    gDriver = FrameDriver();
    gDriver.headRollAvailable = rollAvailable;
    // Until the camera level reads the simulator's, as every host enable has had it.
    pluginState().defaultFov = 60.0f;
    prime(gDriver.frameRateFilter, 100, 30.0f);

    DataEvents events;
    events.selectionChanged = noteSelectionChanged;
    events.restoreBegun = beginRestore;
    events.callbackCameraChanged = setCallbackCamera;
    subscribeDataEvents(events);
}

void closeFrameDriver() {
    unsubscribeDataEvents();
    gNearestAirportSelector = nullptr;
}

void setNearestAirportSelector(void (*select)()) { gNearestAirportSelector = select; }

void noteSelectionChanged() { gDriver.selectionChanged = true; }

bool isCockpitView() { return geti(gRefs.viewType) == kCockpitViewType; }

bool isExternalView() {
    if (simulatorVersion() < 10000) return geti(gRefs.viewIsExternal) != 0;
    return geti(gRefs.viewType) == kExternalViewType;
}

bool viewIsForeign() {
    if (!cameraEnabled()) return true;
    Camera* current = currentCamera();
    if (isCockpitView() && !current->external) return false;
    return !isExternalView() || !current->external || cameraControlStale();
}

bool cameraControlStale() {
    // Counted in the simulator's time, not the system clock: a host that runs faster
    // than real time, or a paused debugger, must not make control look stale.
    return gDriver.cameraControlled && simulatorSeconds() - gDriver.lastCallbackTime > kStaleControlSeconds + kTimerSlack;
}

void takeCameraControl() {
    XPLMControlCamera(xplm_ControlCameraForever, cameraCallback, &gDriver.framePose);
    gDriver.cameraControlled = true;
    gDriver.lastCallbackTime = simulatorSeconds();
}

void releaseCameraControl() {
    if (gDriver.cameraControlled) XPLMDontControlCamera();
    gDriver.cameraControlled = false;
}

void selectCockpitView(bool force) {
    if (isCockpitView() && !force) {
        gDriver.cockpitReturnRequested = false;
        return;
    }
    runSimCommand(simulatorVersion() < 10000 ? "sim/view/3d_cockpit" : "sim/view/3d_cockpit_cmnd_look");
    gDriver.cockpitReturnRequested = false;
}

void selectFreeView() {
    if (isExternalView()) return;
    runSimCommand(simulatorVersion() < 10000 ? "sim/view/free_view_toggle" : "sim/view/free_camera");
}

void requestCockpitReturn() {
    if (!isCockpitView()) gDriver.cockpitReturnRequested = true;
}

void setFieldOfView(float degrees) {
    if (!settings().ENABLE_FORCE_FOV) return;
    setf(gRefs.fieldOfView, degrees);
}

float currentFrameRate() {
    // One more sample of the last value, so the figure follows the filter's window.
    return average(gDriver.frameRateFilter, 100, lastValue(gDriver.frameRateFilter));
}

void setCallbackCamera(Camera* camera) { gDriver.callbackCamera = camera; }

void beginRestore(Camera* camera) {
    gDriver.restoreSnapshot = *camera;
    camera->x = camera->homePose.x;
    camera->y = camera->homePose.y;
    camera->z = camera->homePose.z;
    camera->heading = camera->homePose.heading;
    camera->pitch = camera->homePose.pitch;
    gDriver.restorePending = camera->smoothTransition || camera->linearTransition;
}

CameraPose readHeadPose() {
    CameraPose pose;
    pose.x = getf(gRefs.headX);
    pose.y = getf(gRefs.headY);
    pose.z = getf(gRefs.headZ);
    pose.heading = getf(gRefs.headPsi);
    pose.pitch = getf(gRefs.headThe);
    pose.roll = getf(gRefs.headRoll);
    pose.fov = getf(gRefs.fieldOfView);
    pose.zoom = 1.0f;
    return pose;
}

void runFrame() {
    FrameDriver& d = gDriver;
    PluginState& plugin = pluginState();
    Camera* current = currentCamera();

    // 1. The movement speed belongs to the camera.
    movementState().speedSelector = current->initialMovementRange;

    // 2. In a view that is neither ours nor the cockpit, the simulator rules alone.
    if (!isCockpitView() && !isExternalView() && !d.selectionChanged) {
        releaseCameraControl();
        return;
    }

    // 3. The near targets depend on the object the camera hangs on.
    if (d.lastFrameCamera && d.lastFrameCamera != current && d.lastFrameCamera->cameraOrigin != current->cameraOrigin)
        selectNearestTarget();

    // 4. View reconciliation.
    if (!reconcileView(current)) return;

    // 5, 6.
    d.selectionChanged = false;
    if (plugin.firstFrameAfterEnable) {
        plugin.savedHeadPose = readHeadPose();
        plugin.firstFrameAfterEnable = false;
    }

    // 7. The nearest airport timer, in the simulator's time summed in double, so that
    // it falls due on the same frame in every run.
    d.nearestAirportTimer += plugin.lastFrameSeconds;
    if (d.nearestAirportTimer >= kNearestAirportSeconds - kTimerSlack) {
        if (isAirportSetActive() && d.autoNearestAirport && gNearestAirportSelector) gNearestAirportSelector();
        d.nearestAirportTimer = 0.0;
    }

    // 8. Frame rate.
    float period = getf(gRefs.frameRatePeriod);
    average(d.frameRateFilter, 100, period > 0.0f ? 1.0f / period : 30.0f);

    // 9. Scenic Flyer's panel follows the camera.
    scenicFlyerStep(current, false);

    // 10. Cinema verite follows the camera every frame.
    seti(gRefs.cinemaVerite, current->cinemaVerite ? 1 : 0);

    // 11.
    if (d.restorePending) {
        d.restorePending = false;
        d.lastFrameCamera = &d.restoreSnapshot;
    }

    // 12. A new camera this frame.
    if (current != d.lastFrameCamera) {
        if (current->cameraAxis || current->viewAxis || current->external) rescanAxes();
        if (current->freeCamera) worldToLocal(current);
        Camera* last = d.lastFrameCamera;
        if (last && !last->external && last->hideYoke != 0) seti(gRefs.hideYoke, plugin.savedHideYoke);
    }

    // 13.
    if (!current->external && current->hideYoke > 0) seti(gRefs.hideYoke, current->hideYoke - 1);

    // 14. The aiming cross is only needed by target-following cameras.
    if (current->targetFollowing) registerAimingCross();
    else unregisterAimingCross();

    // 15. Cockpit zoom lock.
    if (!current->external) {
        if (killWheelZoomAvailable()) {
            setf(gRefs.killWheelZoom, current->disable3dCockpitZoom ? 1.0f : 0.0f);
        } else if (current->disable3dCockpitZoom) {
            XPLMCameraPosition_t position;
            XPLMReadCameraPosition(&position);
            if (position.zoom != current->zoom) XPLMControlCamera(xplm_ControlCameraForever, zoomOnceCallback, &current->zoom);
        }
    }

    // 16. A camera's own zoom is applied once when it is selected or restored.
    if ((current != d.lastFrameCamera || current->positionRestored) && current->zoom >= 1.0f) {
        if (!current->external) XPLMControlCamera(xplm_ControlCameraForever, zoomOnceCallback, &current->zoom);
        current->currentZoom = current->zoom;
        current->positionRestored = false;
    }

    // 17. The camera has changed: the camera left behind forgets or keeps what the
    // user did to it.
    if (d.lastFrameCamera && d.lastFrameCamera != current) {
        Camera* last = d.lastFrameCamera;
        freeTransition();
        if (movementState().walkMode) stopMovement();
        // Only a change within one category of one set glides; anything else jumps.
        bool glides = last->categoryIndex == current->categoryIndex &&
                      d.previousAirportFlag == (current->airportCamera ? 1 : 0);
        // A change while a transition was on screen starts from the pose the view
        // had reached, not from the previous camera's own values: restarting from
        // those made the view jump back before it moved on.
        if (glides && current->bezierTransition)
            transitionState().transitionHead = buildBezierTransition(last, current);
        else if (glides && (current->linearTransition || current->smoothTransition))
            startTransition(d.shownFromTransition ? &d.shownPose : nullptr, last, current);
        if (last->temporaryPositioning) restoreHomePosition(last);
        else refreshHomePose(last);
    }

    // 18.
    d.previousAirportFlag = current->airportCamera ? 1 : 0;
    d.lastFrameCamera = current;

    // 19. Axes act as velocities through the movement rates.
    if (current->cameraAxis) applyAxisMotion(*current);

    // 20.
    applyMovementRates(current);

    // 21. The pose of this frame: from the running transition, which may move the
    // selection along a chain, or from the camera.
    d.shownFromTransition = transitionRunning();
    if (!transitionRunning()) {
        applyMouseMove(current);
        d.framePose = cameraPose(current);
    } else {
        stepTransition(current);
    }
    d.shownPose = d.framePose;

    // 22, 23. A cockpit camera aims and levels here; an outside one in the callback.
    if (!current->external) {
        if (current->trackHeading) aimHeading(d.framePose, current, nullptr);
        if (current->trackPitch) aimPitch(d.framePose, current, nullptr);
    }
    if (current->levelCamera) levelCockpitPose(d.framePose, current);

    // 24. Mouse look follows the pose it turns.
    updateMouseLook(d.framePose, current);

    // 25. An external camera is placed by the camera callback.
    if (current->external) {
        d.callbackCamera = current;
        if (!(isExternalView() && d.cameraControlled)) {
            if (!isExternalView()) selectFreeView();
            d.cockpitReturnRequested = false;
            if (!d.cameraControlled) takeCameraControl();
            return;
        }
    } else {
        // 26. A cockpit camera moves the pilot's head.
        applyCameraInputs(current, d.framePose);
        applyScriptOffsets(current, d.framePose);
        writeHead(d.framePose);
        setFieldOfView(d.framePose.fov);
    }

    // 27. Auto advance: a camera that ends its own transition hands on to the next.
    Camera* next = nextCameraInCategory();
    if (!transitionRunning() && current->autoAdvance &&
        (next->linearTransition || next->smoothTransition || next->bezierTransition) && mayAutoAdvance())
        nextCamera(true);
}

int cameraCallback(XPLMCameraPosition_t* position, int losingControl, void* refcon) {
    FrameDriver& d = gDriver;
    if (!d.callbackCamera || !cameraEnabled()) {
        if (losingControl) d.cameraControlled = false;
        return 0;
    }
    if (losingControl) {
        d.cameraControlled = false;
        return 0;
    }
    if (!position) return 0;
    d.lastCallbackTime = simulatorSeconds();
    Camera* camera = d.callbackCamera;
    if (camera->chaseView9) {
        camera->x = camera->y = camera->heading = 0.0f;
        d.framePose.x = d.framePose.y = d.framePose.heading = 0.0f;
    }
    CameraPose out;
    externalPose(camera, out, d.framePose);
    position->x = out.x;
    position->y = out.y;
    position->z = out.z;
    position->pitch = out.pitch;
    position->heading = out.heading;
    position->roll = out.roll;
    position->zoom = out.zoom;
    float axisZoomValue;
    if (axisZoom(axisZoomValue)) position->zoom = axisZoomValue;
    setFieldOfView(out.fov);
    camera->transitionPose = out;
    return 1;
}

int zoomOnceCallback(XPLMCameraPosition_t* position, int losingControl, void* refcon) {
    if (!position || !refcon) return 0;
    float wanted = *static_cast<float*>(refcon);
    if (position->zoom == wanted) return 0;
    position->zoom = wanted;
    return 1;
}

int aimingCrossDrawCallback(XPLMDrawingPhase, int, void*) {
    try {
        if (aimingCrossWanted()) drawAimingCross();
    } catch (...) {
        logMessage("The aiming cross failed");
    }
    return 1;
}

void registerAimingCross() {
    if (gDriver.drawCallbackRegistered) return;
    XPLMRegisterDrawCallback(aimingCrossDrawCallback, xplm_Phase_Window, 1, nullptr);
    gDriver.drawCallbackRegistered = true;
}

void unregisterAimingCross() {
    if (!gDriver.drawCallbackRegistered) return;
    XPLMUnregisterDrawCallback(aimingCrossDrawCallback, xplm_Phase_Window, 1, nullptr);
    gDriver.drawCallbackRegistered = false;
}
