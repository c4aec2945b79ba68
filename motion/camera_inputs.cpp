#include "motion/camera_inputs.h"

#include "data/angles.h"
#include "data/integration_values.h"
#include "inputs/axis_input.h"
#include "inputs/effects.h"
#include "inputs/trackir.h"
#include "motion/mouse_look.h"
#include "motion/movement.h"

void addOffsets(CameraPose& pose, const PoseOffsets& o) {
    if (o.has(PoseOffsets::kX)) pose.x += o.x;
    if (o.has(PoseOffsets::kY)) pose.y += o.y;
    if (o.has(PoseOffsets::kZ)) pose.z += o.z;
    if (o.has(PoseOffsets::kHeading))
        pose.heading = o.wrapsAngles ? addAngles(pose.heading, o.heading) : pose.heading + o.heading;
    if (o.has(PoseOffsets::kPitch)) pose.pitch = o.wrapsAngles ? addAngles(pose.pitch, o.pitch) : pose.pitch + o.pitch;
    if (o.has(PoseOffsets::kRoll)) pose.roll += o.roll;
}

void applyCameraInputs(Camera* camera, CameraPose& pose) {
    if (camera == nullptr) return;
    IntegrationValues& in = integrationValues();
    in.vistarigEnabled = camera->trackIrEnabled ? 2 : 1;

    // Head tracking takes the camera in place of the view axes. Mouse look still
    // shows on top of it while the button is held: without it a drag showed nothing
    // and the view jumped by the whole drag when the button came up.
    if (!TrackIRIsActive() || !camera->trackIrEnabled) {
        addOffsets(pose, mouseLookOffsets());
        if (camera->viewAxis) applyViewAxes(pose, *camera);
    } else {
        TrackIRApply(pose);
        addOffsets(pose, mouseLookOffsets());
    }
    if (camera->trackIrEnabled && in.headtrackingPresent != 0) applyExternalHeadTracking(*camera, pose);
    storeCurrentHeadPose(pose);
    // The limits bound the head only; the effects below may carry the view past them.
    applyTrackIrLimits(*camera, pose);
    if (camera->headShake) addOffsets(pose, headShakeOffsets());
    addOffsets(pose, effectPluginOffsets(*camera));
}

void TrackIRApply(CameraPose& pose) { addOffsets(pose, trackIrOffsets(pose.heading, movementState().speedSelector)); }

void applyExternalHeadTracking(const Camera& camera, CameraPose& pose) {
    addOffsets(pose, externalHeadTrackingOffsets(movementState().speedSelector));
    applyExternalHeadTrackingLimits(camera, pose);
}

void applyViewAxes(CameraPose& pose, const Camera& camera) {
    // In a circle view the view axes move the camera round its centre instead of turning it.
    if (viewAxesCircle(camera)) applyAxisMotion(camera);
    else addOffsets(pose, viewAxisOffsets(camera));
}

void applyAxisMotion(const Camera& camera) {
    const PoseOffsets rates = axisMotionRates(camera, movementStep(), rotationStep());
    MovementState& motion = movementState();
    if (rates.has(PoseOffsets::kHeading)) motion.rateHeading += rates.heading;
    if (rates.has(PoseOffsets::kPitch)) motion.ratePitch += rates.pitch;
    if (rates.has(PoseOffsets::kX)) motion.rateX += rates.x;
    if (rates.has(PoseOffsets::kY)) motion.rateY += rates.y;
    if (rates.has(PoseOffsets::kZ)) motion.rateZ += rates.z;
}

void snapCameraToTrackIr() {
    Camera* camera = currentCamera();
    if (camera == nullptr) return;
    CameraPose pose = cameraPose(camera);
    if (TrackIRIsActive() && camera->trackIrEnabled) TrackIRApply(pose);
    camera->x = pose.x;
    camera->y = pose.y;
    camera->z = pose.z;
    camera->heading = pose.heading;
    camera->pitch = pose.pitch;
}
