// Joystick axes that the user assigned to view functions in the simulator: six axis
// records with their filters, the two ways of reading them (the simulator's mapped
// axes, and the raw arrays of older versions), and what they do to the camera: view
// heading and pitch, zoom, and movement rates, each handed over to the motion layer.
// Also `cameraMotionAxisAssignment`, the function-to-axis table that other plug-ins
// can rewrite. Main thread only.
#pragma once

#include <cstdint>

#include "data/camera_set.h"
#include "data/running_average.h"
#include "inputs/pose_offsets.h"

enum : int32_t {
    kAxisViewHeading = 0,
    kAxisViewPitch = 1,
    kAxisViewZoom = 2,
    kAxisCameraLeftRight = 3,
    kAxisCameraUpDown = 4,
    kAxisCameraForwardBack = 5,
    kAxisCount = 6,
};

struct AxisRecord {
    bool available;
    bool moved;  // raw-array axes: left the rest position since the last scan
    int32_t arrayIndex;
    int32_t reverse;
    float minimum, maximum;
    float centre;
    float restValue;
};

struct AxisInput {
    AxisRecord axes[kAxisCount];
    RunningAverage filters[kAxisCount];
    // Entry i names the axis serving function i; a negative entry is that axis inverted.
    int32_t cameraMotionAxisAssignment[kAxisCount];
    // The calibration panel is open: no axis acts on the camera.
    bool calibrating;
};

AxisInput& axisInput();
// The centre setting of an axis in the live settings record (0 to 5).
float& axisCentreSetting(int32_t axis);

// The panel's label of an axis ("View Heading", ...).
const char* axisLabel(int32_t axis);

// 0, 1, 2, 3, 4, 5: host enable, camera enable, a new aircraft.
void resetCameraMotionAxisAssignment();
// Takes values from -5 to 5 into entries 0 to 5; anything else is ignored (false).
bool setCameraMotionAxisAssignment(int32_t entry, int32_t value);

// Forgets all six axes and looks again.
void rescanAxes();
// False when the axis gives no reading; `value` is then 0. `axis` may be negative.
bool readAxis(int32_t axis, float& value);
// A circle view camera without camera axes is moved round its centre by the view
// axes (through the movement rates) instead of being turned by them.
bool viewAxesCircle(const Camera& camera);
// View heading and pitch as offsets on a pose; nothing for such a circle view or
// during calibration.
PoseOffsets viewAxisOffsets(const Camera& camera);
// Axis input as additions to the movement rates (x, y, z, heading, pitch), given the
// movement and rotation steps of the moment; nothing during calibration.
PoseOffsets axisMotionRates(const Camera& camera, float moveStep, float rotateStep);
// The zoom from the zoom axis; false when the axis gives no reading or during calibration.
bool axisZoom(float& zoom);

// ---- the arithmetic without the simulator
// Index of an axis in the simulator's mapped-axis arrays.
int32_t mappedAxisIndex(int32_t axis, int simulatorVersion);
// A mapped reading made relative: heading and pitch less their centre, zoom 1 - reading,
// the camera axes (reading - 0.5) * 2 less their centre.
float mappedAxisValue(int32_t axis, float reading, float centre);
// Below the null zone an axis reads 0; the zoom axis has none.
float applyNullZone(int32_t axis, float value, float nullZone);
// Full deflection 1 gives about 115.6, rest gives 1.0.
float zoomFromAxisValue(float value);
