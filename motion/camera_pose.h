// Camera pose arithmetic: how the stored values of a camera become what the simulator
// receives. Owns the origins an outside camera hangs on (the aircraft, the carrier,
// the frigate), aiming, the level rules, terrain probes, where the script offsets
// act, and the world pose of an outside camera. The rotation itself (`rotateVector`)
// and the free camera's world/local conversion are data/'s, below. No state beyond
// the dataref handles.
#pragma once

#include <cstdint>

#include "data/camera_set.h"
#include "data/vector_math.h"
#include "data/world_position.h"

// A point in local coordinates, given to the aiming operations.
struct AimPoint {
    double x = 0, y = 0, z = 0;
};

// What an outside camera hangs on: local position and attitude.
struct Origin {
    double x = 0, y = 0, z = 0;
    float heading = 0, pitch = 0, roll = 0;
};

// Finds the aircraft and boat datarefs. Called at host enable; the
// operations below also find them on first use.
void initCameraPose();

// The signed opposite of an attitude angle.
float counterAngle(float a);

Origin originOf(const Camera* camera);
Origin aircraftOrigin();
Vector3 aircraftAimPoint(const CameraPose& pose);

// The heading and pitch that look along the difference d = eye - reference, from the
// reference to the eye reversed: a level aim gives pitch 360, not 0.
float headingFromDifference(double dx, double dz);
float pitchFromDifference(double dx, double dy, double dz);

// Point the pose at its reference; `aim` may be null.
void aimHeading(CameraPose& pose, const Camera* camera, const AimPoint* aim);
void aimPitch(CameraPose& pose, const Camera* camera, const AimPoint* aim);
// At a target's local position; null does nothing.
void aimHeadingAt(CameraPose& pose, const AimPoint* target);
void aimPitchAt(CameraPose& pose, const AimPoint* target);

// Holds a cockpit camera's view level with the horizon.
void levelCockpitPose(CameraPose& pose, const Camera* camera);

// The world pose of an outside camera, from the frame's camera-relative pose `in`.
void externalPose(Camera* camera, CameraPose& out, const CameraPose& in);

// Local height of the terrain under the point; false when the probe misses.
bool groundHeight(double x, double y, double z, double& height);

void applyScriptOffsets(const Camera* camera, CameraPose& pose);
