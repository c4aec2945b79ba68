#include "inputs/effects.h"

#include "inputs/axis_input.h"
#include "inputs/trackir.h"
#include "motion/mouse_look.h"
#include "shell/host_interface.h"
#include "shell/integration_datarefs.h"

namespace {
HeadShakeLink link{};

void lookUpHeadShake() {
    if (link.checked) return;
    logMessage("Attempting to initialize HeadShake");
    link.override = XPLMFindDataRef("simcoders/headshake/override");
    link.offsetX = XPLMFindDataRef("simcoders/headshake/offset_x");
    link.offsetY = XPLMFindDataRef("simcoders/headshake/offset_y");
    link.offsetZ = XPLMFindDataRef("simcoders/headshake/offset_z");
    link.offsetYaw = XPLMFindDataRef("simcoders/headshake/offset_yaw");
    link.offsetPitch = XPLMFindDataRef("simcoders/headshake/offset_pitch");
    link.offsetRoll = XPLMFindDataRef("simcoders/headshake/offset_roll");
    link.available = link.override && link.offsetX && link.offsetY && link.offsetZ && link.offsetYaw &&
                     link.offsetPitch && link.offsetRoll;
    if (link.available) logMessage("HeadShake was found and will be enabled");
    else logMessage("HeadShake not found");
    link.checked = true;
}
}  // namespace

HeadShakeLink& headShakeLink() { return link; }

bool headShakeAvailable() {
    lookUpHeadShake();
    return link.available;
}

void headShakeOverride(bool on) {
    if (headShakeAvailable()) XPLMSetDatai(link.override, on ? 1 : 0);
}

void applyHeadShake(CameraPose& pose) {
    if (!link.available) return;
    pose.x += XPLMGetDataf(link.offsetX);
    pose.y += XPLMGetDataf(link.offsetY);
    pose.z += XPLMGetDataf(link.offsetZ);
    pose.heading += XPLMGetDataf(link.offsetYaw);
    pose.pitch += XPLMGetDataf(link.offsetPitch);
    pose.roll += XPLMGetDataf(link.offsetRoll);
}

bool effectOffsetsApply(const Camera& camera) {
    const IntegrationValues& in = integrationValues();
    return (camera.xpRealistic && in.xpRealisticPresent != 0) || (camera.realView && in.realViewPresent != 0);
}

void applyCameraInputs(Camera* camera, CameraPose& pose) {
    if (camera == nullptr) return;
    IntegrationValues& in = integrationValues();
    in.vistarigEnabled = camera->trackIrEnabled ? 2 : 1;

    // Head tracking takes the camera in place of the view axes. Mouse look still
    // shows on top of it while the button is held: without it a drag showed nothing
    // and the view jumped by the whole drag when the button came up.
    if (!TrackIRIsActive() || !camera->trackIrEnabled) {
        applyMouseLookOffsets(camera, pose);
        if (camera->viewAxis) applyViewAxes(pose, *camera);
    } else {
        TrackIRApply(pose);
        applyMouseLookOffsets(camera, pose);
    }
    if (camera->trackIrEnabled && in.headtrackingPresent != 0) applyExternalHeadTracking(*camera, pose);
    storeCurrentHeadPose(pose);
    // The limits bound the head only; the effects below may carry the view past them.
    applyTrackIrLimits(*camera, pose);
    if (camera->headShake) applyHeadShake(pose);
    if (effectOffsetsApply(*camera)) {
        pose.x += in.xOffset;
        pose.y += in.yOffset;
        pose.z += in.zOffset;
        pose.heading += in.headingOffset;
        pose.pitch += in.pitchOffset;
        pose.roll += in.rollOffset;
    }
}
