#include "shell/lifecycle.h"

#include <thread>

#include "airports/airport_files.h"
#include "data/aircraft_files.h"
#include "data/angles.h"
#include "data/camera_file.h"
#include "data/settings.h"
#include "data/targets.h"
#include "inputs/axis_input.h"
#include "inputs/effects.h"
#include "inputs/scenic_flyer.h"
#include "inputs/trackir.h"
#include "motion/ai_traffic.h"
#include "motion/frame_driver.h"
#include "motion/mouse_look.h"
#include "motion/target_tracking.h"
#include "motion/transitions.h"
#include "panels/calibrate_view_axis_widget.h"
#include "panels/control_panel_widget.h"
#include "panels/messages.h"
#include "panels/mini_control_panel_widget.h"
#include "panels/settings_widget.h"
#include "panels/target_panels.h"
#include "panels/updater_widget.h"
#include "shell/command_table.h"
#include "shell/host_interface.h"
#include "shell/integration_datarefs.h"
#include "shell/sim_commands.h"
#include "shell/plugin_menu.h"

namespace {

// The state record, by the name this file has always used.
PluginState& gState = pluginState();
std::thread* gCommunityScanThread = nullptr;
XPLMDataRef gVrEnabled = nullptr;
XPLMDataRef gLocalX = nullptr, gLocalY = nullptr, gLocalZ = nullptr;

int findIntRef(const char* name) {
    XPLMDataRef ref = XPLMFindDataRef(name);
    return ref ? XPLMGetDatai(ref) : 0;
}

void setIntRef(const char* name, int value) {
    XPLMDataRef ref = XPLMFindDataRef(name);
    if (ref) XPLMSetDatai(ref, value);
}

// The airport files' positions come from the navigation data, which the simulator has
// only once it has loaded an aircraft at an airport: looked up once a run, at the first
// of the two messages that says so.
void lookUpAirportPositionsOnce() {
    if (gState.airportPositionsKnown) return;
    gState.airportPositionsKnown = true;
    lookUpAllAirportPositions();
}

void planeLoaded() {
    if (vrEnabled()) {
        logMessage(
            "Vistarig has deteted a camera file for this aircraft but will not auto-enable because Vistarig does not "
            "support Virtual Reality Mode");
        return;
    }
    resetCameraMotionAxisAssignment();
    findScenicFlyer();
    if (gState.cameraEnabled) disableCamera(true);
    lookUpAirportPositionsOnce();
    // The last aircraft's edits that were never saved are kept before its set goes.
    autosaveUnsavedEdits();
    clearWorkingSet();
    // Without a per-model file for this aircraft the plug-in stays off and the
    // simulator keeps its view.
    if (!cameraFileExists()) return;
    loadCameraFile(nullptr);
    CameraFile* file = activeFile();
    if (file && file->manualEnable) requestCockpitReturn();
    else enableCamera();
}

void airportLoaded() {
    if (gState.cameraEnabled) requestCockpitReturn();
    lookUpAirportPositionsOnce();
}

}  // namespace

bool vrEnabled() { return gVrEnabled && XPLMGetDatai(gVrEnabled) != 0; }

void pluginStart() {
    gState = PluginState();
    forgetScenicFlyer();
    clearReplacingRefusals();
    clearWorkingSet();
}

void hostEnable() {
    resetCameraMotionAxisAssignment();
    gState.trackIrStatus = 0;
    gState.scenicFlyerStatus = 0;

    std::string directory;
    pluginDirectory(directory);

    gLocalX = XPLMFindDataRef("sim/flightmodel/position/local_x");
    gLocalY = XPLMFindDataRef("sim/flightmodel/position/local_y");
    gLocalZ = XPLMFindDataRef("sim/flightmodel/position/local_z");
    gVrEnabled = XPLMFindDataRef("sim/graphics/VR/enabled");

    publishIntegrationDatarefs();

    initFrameDriver();
    initAiTraffic();
    setNearestAirportSelector(selectNearestAirportCamera);
    createCommands();

    readSettings();
    buildMenu();
    readTargets();
    showTargetInformation() = settings().ENABLE_SHOW_TARGET_INFORMATION;
    buildCameraFileList();
    logMessage("Initialization complete for version %s", versionText());
    if (!gCommunityScanThread) gCommunityScanThread = startCommunityScan();
    createInputWindow();
    gState.hostEnabled = true;
}

void hostDisable() {
    if (gState.cameraEnabled) disableCamera(false);
    autosaveUnsavedEdits();
    removeMenu();
    destroyCalibrateViewAxisPanel();
    // Its command handlers go with the host level; the next aircraft looks again.
    forgetScenicFlyer();
    ControlPanelAction(4);
    destroyUpdater();
    MiniControlPanelAction(4);
    // No window of ours outlives the host level; the next use makes the panel again.
    destroySettingsPanel();
    destroySaveTargetPanel();
    destroyMessageBoxQueue();
    writeSettingsKeepingPanelPositions();
    destroyInputWindow();
    // Nothing of ours may stay registered once the plug-in is gone; the next enable
    // registers the handlers again.
    removeCommandHandlers();
    closeFrameDriver();
    gState.hostEnabled = false;
}

void pluginStop() {
    if (gState.cameraEnabled) disableCamera(false);
    freeCameraFileList();
    // The targets live on the heap: a plug-in that is unloaded must not leave them.
    clearTargets();
    unpublishIntegrationDatarefs();
    if (gCommunityScanThread) {
        gCommunityScanThread->join();
        delete gCommunityScanThread;
        gCommunityScanThread = nullptr;
    }
}

void receiveMessage(XPLMPluginID from, int message, void* param) {
    switch (message) {
        case XPLM_MSG_PLANE_LOADED:
            if (param == nullptr) planeLoaded();
            break;
        case XPLM_MSG_AIRPORT_LOADED:
            airportLoaded();
            break;
        case XPLM_MSG_WILL_WRITE_PREFS: {
            XPLMDataRef fov = viewDatarefs().fieldOfView;
            if (gState.cameraEnabled && fov && XPLMGetDataf(fov) != defaultFov() && settings().ENABLE_FORCE_FOV)
                XPLMSetDataf(fov, defaultFov());
            break;
        }
        case XPLM_MSG_ENTERED_VR:
            if (gState.cameraEnabled) disableCamera(false);
            break;
        default:
            break;
    }
}

void enableCamera() {
    if (vrEnabled()) {
        logMessage("Vistarig does not support Virtual Reality Mode");
        return;
    }
    if (gState.cameraEnabled) return;
    resetCameraMotionAxisAssignment();
    scenicFlyerStep(nullptr, true);
    XPLMDataRef fov = viewDatarefs().fieldOfView;
    installInterceptors();
    gState.defaultFov = fov ? XPLMGetDataf(fov) : 60.0f;
    integrationValues().vistarigEnabled = 1;
    gState.firstFrameAfterEnable = true;
    gState.savedCinemaVerite = findIntRef("sim/graphics/view/cinema_verite");
    gState.savedHideYoke = findIntRef("sim/graphics/view/hide_yoke");
    headShakeOverride(true);
    if (integrationValues().xpRealisticPresent != 0) logMessage("XPRealistic was found and will be enabled");
    XPLMRegisterFlightLoopCallback(mainFlightLoop, -1.0f, nullptr);
    TrackIRStart(gState.trackIrStatus);
    gState.cameraEnabled = true;
    selectCockpitView(false);
    refreshMenu();
}

void disableCamera(bool keepHead) {
    if (!gState.cameraEnabled) return;
    scenicFlyerStep(nullptr, true);
    FrameDriver& driver = frameDriver();
    ViewDatarefs& refs = viewDatarefs();
    integrationValues().vistarigEnabled = 0;
    stopCameraMotion();
    releaseFramePool();
    setFieldOfView(gState.defaultFov);
    removeInterceptors();
    XPLMDontControlCamera();
    driver.cameraControlled = false;
    XPLMUnregisterFlightLoopCallback(mainFlightLoop, nullptr);
    TrackIRStop(gState.trackIrStatus);
    gState.cameraEnabled = false;
    refreshMenu();

    const CameraPose& head = gState.savedHeadPose;
    if (!keepHead) {
        if (refs.headX) XPLMSetDataf(refs.headX, head.x);
        if (refs.headY) XPLMSetDataf(refs.headY, head.y);
        if (refs.headZ) XPLMSetDataf(refs.headZ, head.z);
        if (refs.headPsi) XPLMSetDataf(refs.headPsi, head.heading);
        if (refs.headThe) XPLMSetDataf(refs.headThe, foldAngle(head.pitch));
    }
    if (refs.headRoll) XPLMSetDataf(refs.headRoll, foldAngle(head.roll));

    setIntRef("sim/graphics/view/cinema_verite", gState.savedCinemaVerite);
    setIntRef("sim/graphics/view/hide_yoke", gState.savedHideYoke);
    // The simulator's wheel zoom is given back with the rest of the view: a cockpit
    // camera's zoom lock must not outlive the camera level.
    if (refs.killWheelZoom) XPLMSetDataf(refs.killWheelZoom, 0.0f);
    headShakeOverride(false);
    selectCockpitView(true);
    if (XPLMIsCameraBeingControlled(nullptr)) XPLMDontControlCamera();
    unregisterAimingCross();
    TargetInfoPanelAction(true);
}

float mainFlightLoop(float sinceLastCall, float sinceLastLoop, int counter, void* refcon) {
    try {
        speakQueuedAnnouncements();
        serviceCommunityScan(gCommunityScanThread, gState.communityRescanRequested);
        if (gState.firstFrameAfterEnable) gState.miniPanelStartTime = monotonicMilliseconds();
        if (gState.miniPanelStartTime > 0 && monotonicMilliseconds() - gState.miniPanelStartTime > 1000) {
            MiniControlPanelAction(0);
            gState.miniPanelStartTime = 0;
        }
        gState.lastFrameSeconds = sinceLastCall;
        advanceSimulatorClock(sinceLastCall);
        runFrame();
        // The info panel is made by the first frame of a target-following camera; it
        // hides and shows itself from then on.
        if (currentCamera()->targetFollowing) TargetInfoPanelAction(false);
        MiniControlPanelAction(6);
        ControlPanelAction(7);  // a changed form or font takes effect here
    } catch (...) {
        logMessage("The frame failed and was skipped");
    }
    return -1.0f;
}
