// Target tracking: the targets near the aircraft (gathered from the one-degree grid of
// data/targets), which one is selected, each target's local position and distance, the
// four targets that are not stored (the Free Target, the aircraft, the carrier, the
// frigate), the Free Target placed by aiming at the ground, and the aiming of a
// target-following outside camera. Main thread only.
#pragma once

#include <cstdint>

#include "data/camera_set.h"
#include "data/targets.h"

// At most 999 stored targets, then the Free Target and the three objects, then null.
constexpr int kMaxNearStoredTargets = 999;
constexpr int kNearTargetCapacity = kMaxNearStoredTargets + 4 + 1;
// A stored target is offered within 30 nautical miles; the list is built again after
// the aircraft has moved 15 nautical miles from where it was built.
constexpr float kNearTargetReachKm = 55.56f;
constexpr double kRebuildDistanceNm = 15.0;

struct NearTargets {
    Target* entries[kNearTargetCapacity];  // ended by null
    int32_t nearCount;
    int32_t selectedTarget;
    double listLatitude, listLongitude;  // where the centre was when the list was built
    bool built;
};

NearTargets& nearTargets();

// Host enable (through the frame driver): finds the datarefs, empties the list and puts
// the four records back as made, the Free Target nowhere yet.
void initTargetTracking();

// The run-time switch of the Target Information panel.
bool& showTargetInformation();

// The selected target, after building the list again when the centre has moved more
// than 15 nautical miles (the selection then falls back to the nearest). Null only
// while there is no list.
Target* currentTarget();
void rebuildNearTargets();
void sortNearTargets();
// The position (local and world) of one target and its distance from the reference
// point, now.
void refreshTarget(Target* target);
void selectNearestTarget();
void selectNextTarget();
void selectPreviousTarget();
void selectFreeTarget();

// The four records that are not stored.
Target& freeTarget();
Target& aircraftTarget();
Target& carrierTarget();
Target& frigateTarget();

// Puts the Free Target where the line of sight of `pose` (local position, heading and
// pitch) meets the ground. False when the pose doesn't look down, or when the aim point
// finds no terrain (the target then stands just above the camera).
bool positionFreeTarget(const CameraPose& pose);
// Back near the camera's object, 10 degrees down ahead of it.
void resetFreeTarget();

// The cells the near list searches around a centre: two rows of three columns, whole
// rows above 80 degrees. Writes (row, column) pairs; returns how many.
int nearTargetCells(double latitude, double longitude, int (*cells)[2], int capacity);
// The ground distance over level ground at which a line of sight from `height` above
// the ground, `pitch` degrees down (negative), meets it.
double groundDistanceOfAim(double height, double pitch);

// The Free Target is the selected target (what mouse look aims).
bool freeTargetSelected();
// The mouse-look gesture on a Free Target aim begins and ends: the simulation pauses
// for the aim when the setting asks, and the end places the target (`place`) where the
// camera last looked and resumes a pause this aim began.
void beginFreeTargetAim();
void endFreeTargetAim(Camera* camera, bool place);

// The end of an outside camera's pose for a target-following camera: aim at the
// selected target, or stand at it and look back with `targetReciprocal`.
void aimAtCurrentTarget(Camera* camera, CameraPose& out);

// A target at the current camera (a free camera), the Free Target (a target-following
// camera aiming at it) or the aircraft; written at once, and the near list follows.
void saveCameraAsTarget(const char* name);

// The aiming cross, drawn at the centre of the screen while the user aims the Free
// Target with the right button.
bool aimingCrossWanted();
void drawAimingCross();
