#include "shell/sim_commands.h"

#include "data/angles.h"
#include "data/camera_file.h"
#include "data/settings.h"
#include "motion/frame_driver.h"
#include "motion/movement.h"
#include "motion/transitions.h"
#include "shell/command_table.h"
#include "shell/host_interface.h"

namespace {

enum class Act : uint8_t {
    Pan,          // panCamera(phase, a)
    Look,         // heading a, pitch b (a or b below 0: leave it)
    Turn,         // heading + a
    Glance,       // begin: remember the heading and turn by a; end: turn back
    Pass,         // the simulator's own handling
    Move,         // moveCamera(a, walk mode)
    ZoomIn,       // outside cameras: currentZoom + a
    ZoomOut,      // outside cameras: currentZoom - a, not below 1
    QuickLookStore,
    QuickLookRecall,
};

struct SimCommand {
    const char* name;
    Act act;
    float a;
    float b;
};

const SimCommand simCommands[kSimCommandCount] = {
    {"sim/general/rot_up_slow", Act::Pan, 18, 0},
    {"sim/general/rot_down_slow", Act::Pan, 19, 0},
    {"sim/general/rot_right_slow", Act::Pan, 17, 0},
    {"sim/general/rot_left_slow", Act::Pan, 16, 0},
    {"sim/view/pan_left", Act::Pan, 16, 0},
    {"sim/view/pan_right", Act::Pan, 17, 0},
    {"sim/view/pan_up", Act::Pan, 18, 0},
    {"sim/view/pan_down", Act::Pan, 19, 0},
    {"sim/general/rot_up", Act::Pan, 18, 0},
    {"sim/general/rot_down", Act::Pan, 19, 0},
    {"sim/general/rot_right", Act::Pan, 17, 0},
    {"sim/general/rot_left", Act::Pan, 16, 0},
    {"sim/view/pan_left_fast", Act::Pan, 16, 0},
    {"sim/view/pan_right_fast", Act::Pan, 17, 0},
    {"sim/view/pan_up_fast", Act::Pan, 18, 0},
    {"sim/view/pan_down_fast", Act::Pan, 19, 0},
    {"sim/general/rot_up_fast", Act::Pan, 18, 0},
    {"sim/general/rot_down_fast", Act::Pan, 19, 0},
    {"sim/general/rot_right_fast", Act::Pan, 17, 0},
    {"sim/general/rot_left_fast", Act::Pan, 16, 0},
    {"sim/view/left_up", Act::Look, 315.0f, 45.0f},
    {"sim/view/right_up", Act::Look, 45.0f, 45.0f},
    {"sim/view/glance_right", Act::Glance, 90.0f, 0},
    {"sim/view/glance_left", Act::Glance, -90.0f, 0},
    {"sim/view/forward", Act::Pass, 0, 0},
    {"sim/view/forward_with_panel", Act::Pass, 0, 0},
    {"sim/view/back", Act::Look, 180.0f, -1.0f},
    {"sim/view/straight_up", Act::Look, -1.0f, 90.0f},
    {"sim/view/straight_down", Act::Look, -1.0f, 270.0f},
    {"sim/view/up_left", Act::Look, 315.0f, 45.0f},
    {"sim/view/up_right", Act::Look, 45.0f, 45.0f},
    {"sim/view/right_135", Act::Turn, 135.0f, 0},
    {"sim/view/left_135", Act::Turn, -135.0f, 0},
    {"sim/view/right_90", Act::Turn, 90.0f, 0},
    {"sim/view/left_90", Act::Turn, -90.0f, 0},
    // Each turn key turns by the angle it names, as the simulator's own command does;
    // stepping a right angle for the 45-degree keys surprised everyone who pressed one.
    {"sim/view/right_45", Act::Turn, 45.0f, 0},
    {"sim/view/left_45", Act::Turn, -45.0f, 0},
    {"sim/general/forward", Act::Move, 0, 0},
    {"sim/general/backward", Act::Move, 1, 0},
    {"sim/general/left", Act::Move, 2, 0},
    {"sim/general/right", Act::Move, 3, 0},
    {"sim/general/up", Act::Move, 4, 0},
    {"sim/general/down", Act::Move, 5, 0},
    {"sim/general/forward_fast", Act::Move, 0, 0},
    {"sim/general/backward_fast", Act::Move, 1, 0},
    {"sim/general/left_fast", Act::Move, 2, 0},
    {"sim/general/right_fast", Act::Move, 3, 0},
    {"sim/general/up_fast", Act::Move, 4, 0},
    {"sim/general/down_fast", Act::Move, 5, 0},
    {"sim/general/forward_slow", Act::Move, 0, 0},
    {"sim/general/backward_slow", Act::Move, 1, 0},
    {"sim/general/left_slow", Act::Move, 2, 0},
    {"sim/general/right_slow", Act::Move, 3, 0},
    {"sim/general/up_slow", Act::Move, 4, 0},
    {"sim/general/down_slow", Act::Move, 5, 0},
    {"sim/general/zoom_in", Act::ZoomIn, 0.05f, 0},
    {"sim/general/zoom_in_slow", Act::ZoomIn, 0.025f, 0},
    {"sim/general/zoom_in_fast", Act::ZoomIn, 0.1f, 0},
    {"sim/general/zoom_out", Act::ZoomOut, 0.05f, 0},
    {"sim/general/zoom_out_slow", Act::ZoomOut, 0.025f, 0},
    {"sim/general/zoom_out_fast", Act::ZoomOut, 0.1f, 0},
    {"sim/general/hat_switch_up", Act::Pan, 18, 0},
    {"sim/general/hat_switch_up_right", Act::Pan, 21, 0},
    {"sim/general/hat_switch_right", Act::Pan, 17, 0},
    {"sim/general/hat_switch_down_right", Act::Pan, 22, 0},
    {"sim/general/hat_switch_down", Act::Pan, 19, 0},
    {"sim/general/hat_switch_down_left", Act::Pan, 23, 0},
    {"sim/general/hat_switch_left", Act::Pan, 16, 0},
    {"sim/general/hat_switch_up_left", Act::Pan, 20, 0},
    {"sim/view/quick_look_0_mem", Act::QuickLookStore, 0, 0},
    {"sim/view/quick_look_1_mem", Act::QuickLookStore, 0, 0},
    {"sim/view/quick_look_2_mem", Act::QuickLookStore, 0, 0},
    {"sim/view/quick_look_3_mem", Act::QuickLookStore, 0, 0},
    {"sim/view/quick_look_4_mem", Act::QuickLookStore, 0, 0},
    {"sim/view/quick_look_5_mem", Act::QuickLookStore, 0, 0},
    {"sim/view/quick_look_6_mem", Act::QuickLookStore, 0, 0},
    {"sim/view/quick_look_7_mem", Act::QuickLookStore, 0, 0},
    {"sim/view/quick_look_8_mem", Act::QuickLookStore, 0, 0},
    {"sim/view/quick_look_9_mem", Act::QuickLookStore, 0, 0},
    {"sim/view/quick_look_10_mem", Act::QuickLookStore, 0, 0},
    {"sim/view/quick_look_11_mem", Act::QuickLookStore, 0, 0},
    {"sim/view/quick_look_12_mem", Act::QuickLookStore, 0, 0},
    {"sim/view/quick_look_13_mem", Act::QuickLookStore, 0, 0},
    {"sim/view/quick_look_14_mem", Act::QuickLookStore, 0, 0},
    {"sim/view/quick_look_15_mem", Act::QuickLookStore, 0, 0},
    {"sim/view/quick_look_16_mem", Act::QuickLookStore, 0, 0},
    {"sim/view/quick_look_17_mem", Act::QuickLookStore, 0, 0},
    {"sim/view/quick_look_18_mem", Act::QuickLookStore, 0, 0},
    {"sim/view/quick_look_19_mem", Act::QuickLookStore, 0, 0},
    {"sim/view/quick_look_0", Act::QuickLookRecall, 0, 0},
    {"sim/view/quick_look_1", Act::QuickLookRecall, 0, 0},
    {"sim/view/quick_look_2", Act::QuickLookRecall, 0, 0},
    {"sim/view/quick_look_3", Act::QuickLookRecall, 0, 0},
    {"sim/view/quick_look_4", Act::QuickLookRecall, 0, 0},
    {"sim/view/quick_look_5", Act::QuickLookRecall, 0, 0},
    {"sim/view/quick_look_6", Act::QuickLookRecall, 0, 0},
    {"sim/view/quick_look_7", Act::QuickLookRecall, 0, 0},
    {"sim/view/quick_look_8", Act::QuickLookRecall, 0, 0},
    {"sim/view/quick_look_9", Act::QuickLookRecall, 0, 0},
    {"sim/view/quick_look_10", Act::QuickLookRecall, 0, 0},
    {"sim/view/quick_look_11", Act::QuickLookRecall, 0, 0},
    {"sim/view/quick_look_12", Act::QuickLookRecall, 0, 0},
    {"sim/view/quick_look_13", Act::QuickLookRecall, 0, 0},
    {"sim/view/quick_look_14", Act::QuickLookRecall, 0, 0},
    {"sim/view/quick_look_15", Act::QuickLookRecall, 0, 0},
    {"sim/view/quick_look_16", Act::QuickLookRecall, 0, 0},
    {"sim/view/quick_look_17", Act::QuickLookRecall, 0, 0},
    {"sim/view/quick_look_18", Act::QuickLookRecall, 0, 0},
    {"sim/view/quick_look_19", Act::QuickLookRecall, 0, 0},
};

XPLMCommandRef handles[kSimCommandCount];

constexpr int kPass = 1;
constexpr int kSwallow = 0;

bool isMovementKey(int32_t index) { return index >= kFirstMovementKey && index <= kLastMovementKey; }

bool quickLookEmulation() { return !settings().DISABLE_QUICK_LOOK_EMULATION; }

// Pressing the same Quick Look twice goes there and back.
int quickLookRecall(int32_t viewId) {
    if (!viewIdInUse(viewId)) return kPass;
    CommandHandlerState& handler = commandHandlerState();
    if (cameraForViewId(viewId) == currentCamera() && handler.quickLookReturnCamera != nullptr) {
        selectCameraRecord(handler.quickLookReturnCamera);
        noteSelectionChanged();
        return kSwallow;
    }
    handler.quickLookReturnCamera = currentCamera();
    selectViewHandler(nullptr, xplm_CommandBegin, refconOf(viewId));
    return kSwallow;
}

void setSpeedMultipliers(int32_t index) {
    MovementState& movement = movementState();
    const Settings& s = settings();
    movement.rotationMultiplier = 1.0f;
    movement.movementMultiplier = 1.0f;
    if (index >= 0 && index <= 3) movement.rotationMultiplier = 1.0f / s.panSpeedFactor;
    if (index >= 12 && index <= 19) movement.rotationMultiplier = s.panSpeedFactor;
    if (index >= 43 && index <= 48) movement.movementMultiplier = s.movementSpeedFactor;
    if (index >= 49 && index <= 54) movement.movementMultiplier = 1.0f / s.movementSpeedFactor;
}

// The camera's own direction changes, as a new stored position would.
int act(const SimCommand& command, XPLMCommandPhase phase) {
    Camera* camera = currentCamera();
    CommandHandlerState& handler = commandHandlerState();
    switch (command.act) {
        case Act::Pan: panCamera(phase, static_cast<int32_t>(command.a)); return kSwallow;
        case Act::Look:
            if (command.a >= 0.0f) camera->heading = command.a;
            if (command.b >= 0.0f) camera->pitch = command.b;
            return kSwallow;
        case Act::Turn:
            // A tap turns once, in its begin phase: applying the step in every phase
            // turned a tap three times over and spun the view while a key was held.
            if (phase == xplm_CommandBegin) camera->heading = addAngles(camera->heading, command.a);
            return kSwallow;
        case Act::Glance:
            if (phase == xplm_CommandBegin) {
                handler.glanceHeading = camera->heading;
                camera->heading = addAngles(camera->heading, command.a);
            } else if (phase == xplm_CommandEnd) {
                camera->heading = handler.glanceHeading;
            }
            return kSwallow;
        case Act::Pass: return kPass;
        case Act::Move: moveCamera(static_cast<int32_t>(command.a), movementState().walkMode); return kSwallow;
        case Act::ZoomIn:
            // In the cockpit the simulator keeps its own zoom. Outside, one press zooms
            // one step, in its begin phase, like a turn key.
            if (!camera->external) return kPass;
            if (phase == xplm_CommandBegin) camera->currentZoom += command.a;
            return kSwallow;
        case Act::ZoomOut:
            if (!camera->external) return kPass;
            if (phase == xplm_CommandBegin) camera->currentZoom -= command.a;
            if (camera->currentZoom < 1.0f) camera->currentZoom = 1.0f;
            return kSwallow;
        case Act::QuickLookStore:
        case Act::QuickLookRecall: return kPass;
    }
    return kPass;
}

}  // namespace

const char* simCommandName(int32_t index) {
    if (index < 0 || index >= kSimCommandCount) return "";
    return simCommands[index].name;
}

XPLMCommandRef simCommandHandle(int32_t index) {
    if (index < 0 || index >= kSimCommandCount) return nullptr;
    return handles[index];
}

void installInterceptors() {
    for (int32_t index = 0; index < kSimCommandCount; ++index) {
        if (handles[index] != nullptr) continue;
        // A command this version of the simulator lacks is simply not taken over.
        handles[index] = XPLMFindCommand(simCommands[index].name);
        if (handles[index] != nullptr) XPLMRegisterCommandHandler(handles[index], interceptor, 1, refconOf(index));
    }
}

void removeInterceptors() {
    for (int32_t index = 0; index < kSimCommandCount; ++index) {
        if (handles[index] != nullptr) XPLMUnregisterCommandHandler(handles[index], interceptor, 1, refconOf(index));
        handles[index] = nullptr;
    }
}

int interceptor(XPLMCommandRef, XPLMCommandPhase phase, void* refcon) {
    int32_t index = valueOfRefcon(refcon);
    if (index < 0 || index >= kSimCommandCount) return kPass;
    if (!cameraEnabled()) return kPass;

    // Quick Look recall works from any view: it is how the user gets back to a camera.
    if (index >= kFirstQuickLookRecall && phase == xplm_CommandBegin && quickLookEmulation())
        return quickLookRecall(index - kFirstQuickLookRecall + 1);

    Camera* camera = currentCamera();
    if (!isCockpitView() && !(isExternalView() && camera->external)) return kPass;

    MovementState& movement = movementState();
    if (movement.walkMode && phase == xplm_CommandContinue) return kSwallow;

    // A locked keyboard moves the simulator's own things, and the camera only while
    // the user works in the Control Panel.
    if (isMovementKey(index) && settings().LOCK_KEYBOARD_CONTROL && !controlPanelOpen()) return kPass;

    // A held movement key steps once, waits, then repeats each frame.
    CommandHandlerState& handler = commandHandlerState();
    if (phase == xplm_CommandBegin) handler.repeatCount = 0;
    if (isMovementKey(index)) {
        if (phase == xplm_CommandEnd) {
            endHeldMotion();
            return kSwallow;
        }
        if (phase == xplm_CommandContinue && handler.repeatCount < kHeldKeyRepeatDelay) {
            ++handler.repeatCount;
            return kSwallow;
        }
    }

    setSpeedMultipliers(index);

    if (index >= kFirstQuickLookStore && index < kFirstQuickLookRecall && phase == xplm_CommandBegin &&
        quickLookEmulation()) {
        stopCameraMotion();
        setViewId(index - kFirstQuickLookStore + 1);
        saveCameraFile(false, false);
        return kSwallow;
    }
    if (index >= kFirstQuickLookStore) return kPass;

    return act(simCommands[index], phase);
}
