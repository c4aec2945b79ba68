// Effect plug-ins that move the view while this plug-in drives the camera: HeadShake
// (whose datarefs are read), XP-Realistic and RealView (which write the integration
// offsets) and the effect script offsets, each handed over as the offsets it adds;
// `applyCameraInputs` (motion/camera_inputs) applies them in their fixed order. Main
// thread only.
#pragma once

#include "XPLMDataAccess.h"
#include "data/camera_set.h"
#include "inputs/pose_offsets.h"

struct HeadShakeLink {
    bool checked;
    bool available;
    XPLMDataRef override;
    XPLMDataRef offsetX, offsetY, offsetZ, offsetYaw, offsetPitch, offsetRoll;
};

HeadShakeLink& headShakeLink();

// Looks the seven datarefs up at the first call (never again), then answers.
bool headShakeAvailable();
// Forgets the look-up, so that the next call looks again (at every plug-in start).
void forgetHeadShake();
// 1 at camera enable, 0 at camera disable: HeadShake then leaves the view to us.
void headShakeOverride(bool on);
// HeadShake's six offsets; nothing while HeadShake isn't there.
PoseOffsets headShakeOffsets();

// The six XP-Realistic/RealView offsets reach this camera now.
bool effectOffsetsApply(const Camera& camera);
// Those six offsets, or nothing when they don't reach the camera.
PoseOffsets effectPluginOffsets(const Camera& camera);
// The six effect script offsets of a camera with a script ID, else nothing.
PoseOffsets scriptOffsets(const Camera& camera);
