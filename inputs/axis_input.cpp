#include "inputs/axis_input.h"

#include <cmath>

#include "XPLMDataAccess.h"
#include "data/settings.h"
#include "data/vector_math.h"
#include "platform/runtime.h"

namespace {

constexpr double kRadiansPerDegree = 3.14159265358979323846 / 180.0;

// Raw arrays of older simulators: the assignment codes of the three camera axes.
constexpr int32_t kFirstCameraAxisCode = 44;
constexpr int32_t kLastCameraAxisCode = 46;
constexpr int kJoystickArraySize = 500;
// A raw axis has to leave its rest value by more than this before it counts, so an
// untouched lever with some noise doesn't drift the camera.
constexpr float kMovementGate = 0.02f;
// Below this span the simulator holds no real calibration for the axis.
constexpr float kMinimumSpan = 0.5f;
// From this version the camera axes come mapped like the view axes.
constexpr int kMappedCameraAxesVersion = 11000;

struct JoystickRefs {
    XPLMDataRef mappedAvail, mappedValue, assignments, values, minimum, maximum, reverse;
};

AxisInput input{};
JoystickRefs refs{};

void findRefs() {
    if (refs.mappedAvail == nullptr) refs.mappedAvail = XPLMFindDataRef("sim/joystick/joy_mapped_axis_avail");
    if (refs.mappedValue == nullptr) refs.mappedValue = XPLMFindDataRef("sim/joystick/joy_mapped_axis_value");
    if (refs.assignments == nullptr) refs.assignments = XPLMFindDataRef("sim/joystick/joystick_axis_assignments");
    if (refs.values == nullptr) refs.values = XPLMFindDataRef("sim/joystick/joystick_axis_values");
    if (refs.minimum == nullptr) refs.minimum = XPLMFindDataRef("sim/joystick/joystick_axis_minimum");
    if (refs.maximum == nullptr) refs.maximum = XPLMFindDataRef("sim/joystick/joystick_axis_maximum");
    if (refs.reverse == nullptr) refs.reverse = XPLMFindDataRef("sim/joystick/joystick_axis_reverse");
}

int readIntElement(XPLMDataRef ref, int index) {
    int value = 0;
    if (ref != nullptr && index >= 0 && XPLMGetDatavi(ref, &value, index, 1) == 1) return value;
    return 0;
}

float readFloatElement(XPLMDataRef ref, int index) {
    float value = 0.0f;
    if (ref != nullptr && index >= 0 && XPLMGetDatavf(ref, &value, index, 1) == 1) return value;
    return 0.0f;
}

bool usesMappedPath(int32_t axis) { return axis < kAxisCameraLeftRight || simulatorVersion() >= kMappedCameraAxesVersion; }

void scanMappedAxis(int32_t axis) {
    AxisRecord& record = input.axes[axis];
    record.arrayIndex = mappedAxisIndex(axis, simulatorVersion());
    if (readIntElement(refs.mappedAvail, record.arrayIndex) == 0) return;
    record.available = true;
    record.reverse = 0;
    record.minimum = -1.0f;
    record.maximum = 1.0f;
    record.centre = 0.0f;
}

}  // namespace

AxisInput& axisInput() { return input; }

float& axisCentreSetting(int32_t axis) {
    Settings& s = settings();
    switch (axis) {
        case kAxisViewHeading: return s.VIEW_AXIS_HEADING_CENTER;
        case kAxisViewPitch: return s.VIEW_AXIS_PITCH_CENTER;
        case kAxisViewZoom: return s.VIEW_AXIS_ZOOM_CENTER;
        case kAxisCameraLeftRight: return s.VIEW_AXIS_CAMERA_LR_CENTER;
        case kAxisCameraUpDown: return s.VIEW_AXIS_CAMERA_UD_CENTER;
        default: return s.VIEW_AXIS_CAMERA_FB_CENTER;
    }
}

const char* axisLabel(int32_t axis) {
    static const char* const labels[kAxisCount] = {"View Heading",        "View Pitch",       "View Zoom",
                                                   "Camera Left / Right", "Camera Up / Down", "Camera Forward / Back"};
    return axis >= 0 && axis < kAxisCount ? labels[axis] : "";
}

void resetCameraMotionAxisAssignment() {
    for (int32_t i = 0; i < kAxisCount; ++i) input.cameraMotionAxisAssignment[i] = i;
}

bool setCameraMotionAxisAssignment(int32_t entry, int32_t value) {
    if (entry < 0 || entry >= kAxisCount || value < -5 || value > 5) return false;
    input.cameraMotionAxisAssignment[entry] = value;
    return true;
}

int32_t mappedAxisIndex(int32_t axis, int version) {
    // The older simulators had the two view axes one slot lower.
    if (axis <= kAxisViewPitch && version < 10000) return 40 + axis;
    return 41 + axis;
}

float mappedAxisValue(int32_t axis, float reading, float centre) {
    if (axis == kAxisViewZoom) return 1.0f - reading;
    if (axis < kAxisViewZoom) return reading - centre;
    return (reading - 0.5f) * 2.0f - centre;
}

float applyNullZone(int32_t axis, float value, float nullZone) {
    if (axis != kAxisViewZoom && std::fabs(value) < nullZone) return 0.0f;
    return value;
}

float zoomFromAxisValue(float value) {
    return static_cast<float>(std::tan(static_cast<double>(value) * 89.5 * kRadiansPerDegree) + 1.0);
}

void rescanAxes() {
    findRefs();
    int assignments[kJoystickArraySize] = {};
    int count = refs.assignments ? XPLMGetDatavi(refs.assignments, assignments, 0, kJoystickArraySize) : 0;
    if (count < 0) count = 0;
    if (count > kJoystickArraySize) count = kJoystickArraySize;
    for (int32_t axis = 0; axis < kAxisCount; ++axis) {
        input.axes[axis].available = false;
        input.axes[axis].moved = false;
        clear(input.filters[axis]);
    }
    if (simulatorVersion() >= kMappedCameraAxesVersion) return;
    for (int position = 0; position < count; ++position) {
        const int code = assignments[position];
        if (code < kFirstCameraAxisCode || code > kLastCameraAxisCode) continue;
        AxisRecord& record = input.axes[code - kFirstCameraAxisCode + kAxisCameraLeftRight];
        if (record.available) continue;
        record.arrayIndex = position;
        record.reverse = readIntElement(refs.reverse, position);
        record.maximum = readFloatElement(refs.maximum, position);
        record.minimum = readFloatElement(refs.minimum, position);
        const float span = record.maximum - record.minimum;
        record.centre = record.minimum + span / 2.0f;
        if (std::fabs(span) > kMinimumSpan) {
            record.available = true;
            record.restValue = readFloatElement(refs.values, position);
        }
    }
}

bool readAxis(int32_t axis, float& value) {
    value = 0.0f;
    const int32_t a = axis < 0 ? -axis : axis;
    if (a >= kAxisCount) return false;
    findRefs();
    AxisRecord& record = input.axes[a];
    // An axis not found at the last look is tried again on each read, mapped ones only.
    if (!record.available && usesMappedPath(a)) scanMappedAxis(a);
    if (!record.available) return false;

    float v;
    if (usesMappedPath(a)) {
        v = mappedAxisValue(a, readFloatElement(refs.mappedValue, record.arrayIndex), axisCentreSetting(a));
    } else {
        const float reading = readFloatElement(refs.values, record.arrayIndex);
        if (!record.moved) {
            if (std::fabs(reading - record.restValue) <= kMovementGate) return false;
            record.moved = true;
        }
        record.reverse = readIntElement(refs.reverse, record.arrayIndex);
        v = (reading - 0.5f) * 2.0f - axisCentreSetting(a);
    }
    v = applyNullZone(a, v, settings().VIEW_AXIS_NULL_ZONE);
    v = average(input.filters[a], settings().VIEW_AXIS_SMOOTHING_FACTOR, v);
    if (record.reverse != 0) v = -v;
    if (axis < 0) v = -v;
    value = v;
    return true;
}

bool viewAxesCircle(const Camera& camera) { return camera.circleView && !camera.cameraAxis; }

PoseOffsets viewAxisOffsets(const Camera& camera) {
    PoseOffsets o;
    if (input.calibrating || viewAxesCircle(camera)) return o;
    float value;
    if (readAxis(input.cameraMotionAxisAssignment[kAxisViewHeading], value)) o.setHeading(value * 180.0f);
    if (readAxis(input.cameraMotionAxisAssignment[kAxisViewPitch], value)) o.setPitch(value * 180.0f);
    return o;
}

PoseOffsets axisMotionRates(const Camera& camera, float move, float rotate) {
    PoseOffsets rates;
    if (input.calibrating) return rates;
    Vector3 v;
    const float scale = move * 2.5f;
    for (int32_t i = 0; i < kAxisCount; ++i) {
        float value;
        if (!readAxis(input.cameraMotionAxisAssignment[i], value)) continue;
        switch (i) {
            case kAxisViewHeading:
                if (!camera.viewAxis) rates.setHeading(value * rotate);
                else if (camera.circleView) v.x = value * scale;
                break;
            case kAxisViewPitch:
                if (!camera.viewAxis) rates.setPitch(value * rotate);
                else if (camera.circleView) v.y = value * scale;
                break;
            case kAxisCameraLeftRight:
                if (camera.cameraAxis) v.x = value * scale;
                break;
            case kAxisCameraUpDown:
                if (camera.cameraAxis) v.y = value * scale * -1.0f;
                break;
            case kAxisCameraForwardBack:
                if (camera.cameraAxis) v.z = value * scale;
                break;
            default: break;
        }
    }
    // The motion follows the camera's own direction, except round a circle view's centre.
    if (!camera.circleView) {
        v = rotateVector(v, camera.pitch, 0.0f, 0.0f);
        v = rotateVector(v, 0.0f, camera.heading, 0.0f);
    }
    rates.setX(v.x);
    rates.setY(v.y);
    rates.setZ(v.z);
    return rates;
}

bool axisZoom(float& zoom) {
    if (input.calibrating) return false;
    float value;
    if (!readAxis(kAxisViewZoom, value)) return false;
    zoom = zoomFromAxisValue(value);
    return true;
}
