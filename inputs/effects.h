// Effect plug-ins that move the view while this plug-in drives the camera: HeadShake
// (whose datarefs are read), XP-Realistic and RealView (which write the integration
// offsets), and `applyCameraInputs`, the fixed order in which head tracking, mouse
// look, view axes, limits and effects reach a pose. Main thread only.
#pragma once

#include "XPLMDataAccess.h"
#include "data/camera_set.h"

struct HeadShakeLink {
    bool checked;
    bool available;
    XPLMDataRef override;
    XPLMDataRef offsetX, offsetY, offsetZ, offsetYaw, offsetPitch, offsetRoll;
};

HeadShakeLink& headShakeLink();

// Looks the seven datarefs up at the first call (never again), then answers.
bool headShakeAvailable();
// 1 at camera enable, 0 at camera disable: HeadShake then leaves the view to us.
void headShakeOverride(bool on);
void applyHeadShake(CameraPose& pose);

// The six XP-Realistic/RealView offsets reach this camera now.
bool effectOffsetsApply(const Camera& camera);
// Head tracking or mouse look and view axes, outside head tracking, the head pose for
// the TrackIR pane, the limits, then HeadShake and the XP-Realistic/RealView offsets.
void applyCameraInputs(Camera* camera, CameraPose& pose);
