// How the inputs reach a frame's pose. Each input hands over what it adds (the head
// tracker, the view axes, mouse look, the effect plug-ins, the script offsets; see
// inputs/pose_offsets.h), and this unit applies them: `applyCameraInputs` in its one
// fixed order, each input on its own for the callers that need one, and the axes'
// additions to the movement rates. The order lives here, not beside the inputs: they
// stand below motion/ and never call it, so a frame's pose is put together in one
// place. Main thread only.
#pragma once

#include "data/camera_set.h"
#include "inputs/pose_offsets.h"

// Adds the fields the input set; heading and pitch by `addAngles` when it says so.
void addOffsets(CameraPose& pose, const PoseOffsets& offsets);

// Head tracking or mouse look and view axes, outside head tracking, the head pose for
// the TrackIR pane, the limits, then HeadShake and the XP-Realistic/RealView offsets.
void applyCameraInputs(Camera* camera, CameraPose& pose);

// The TrackIR head offsets at the present speed selector; only for a camera with
// trackIrEnabled while the client is active.
void TrackIRApply(CameraPose& pose);
// An outside head tracker's offsets, then its limits.
void applyExternalHeadTracking(const Camera& camera, CameraPose& pose);
// View heading and pitch onto a pose (a circle view camera moves instead).
void applyViewAxes(CameraPose& pose, const Camera& camera);
// Axis input into the movement rates.
void applyAxisMotion(const Camera& camera);

// Puts the head position into the selected camera (x, y, z, heading, pitch; roll stays).
// The caller stops camera motion first.
void snapCameraToTrackIr();
