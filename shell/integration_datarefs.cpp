#include "shell/integration_datarefs.h"

#include <cstdint>
#include <cstring>
#include <string>

#include "data/camera_set.h"
#include "inputs/axis_input.h"
#include "motion/camera_pose.h"
#include "motion/transitions.h"
#include "shell/host_interface.h"

namespace {

constexpr const char* kPrefix = "KVT/Vistarig/integration/";

const char* const kNames[kIntegrationDatarefCount] = {
    "Vistarig_enabled",
    "XPRealistic_present",
    "RealView_present",
    "x_offset",
    "y_offset",
    "z_offset",
    "pitch_offset",
    "heading_offset",
    "roll_offset",
    "headtracking_present",
    "headtracking_x_offset",
    "headtracking_y_offset",
    "headtracking_z_offset",
    "headtracking_pitch_offset",
    "headtracking_heading_offset",
    "headtracking_roll_offset",
    "camera_x",
    "camera_y",
    "camera_z",
    "camera_heading",
    "camera_pitch",
    "camera_roll",
    "camera_status",
    "camera_motion_axis_assignment",
    "effect_script_id",
    "effect_script_x_offset",
    "effect_script_y_offset",
    "effect_script_z_offset",
    "effect_script_pitch_offset",
    "effect_script_heading_offset",
    "effect_script_roll_offset",
    "overall_status",
    "SelectedCamera",
};

// The stored values live below (data/integration_values), where the inputs read them.
IntegrationValues& values = integrationValues();
XPLMDataRef handles[kIntegrationDatarefCount] = {};
bool published = false;
XPLMDataRef viewTypeRef = nullptr;
XPLMDataRef viewIsExternalRef = nullptr;

// The type bits of XPLMDataTypeID (int 1, float 2, float array 8, int array 16), by
// value so the code builds against every edition of the SDK headers.
constexpr XPLMDataTypeID kTypeInt = 1;
constexpr XPLMDataTypeID kTypeFloat = 2;
constexpr XPLMDataTypeID kTypeFloatArray = 8;
constexpr XPLMDataTypeID kTypeIntArray = 16;

int32_t indexOf(void* refcon) { return static_cast<int32_t>(reinterpret_cast<intptr_t>(refcon)); }

int32_t* intSlot(int32_t index) {
    switch (index) {
        case kIntegrationXpRealisticPresent: return &values.xpRealisticPresent;
        case kIntegrationRealViewPresent: return &values.realViewPresent;
        case kIntegrationHeadtrackingPresent: return &values.headtrackingPresent;
        default: return nullptr;
    }
}

float* floatSlot(int32_t index) {
    switch (index) {
        case 3: return &values.xOffset;
        case 4: return &values.yOffset;
        case 5: return &values.zOffset;
        case 6: return &values.pitchOffset;
        case 7: return &values.headingOffset;
        case 8: return &values.rollOffset;
        case 10: return &values.headtrackingXOffset;
        case 11: return &values.headtrackingYOffset;
        case 12: return &values.headtrackingZOffset;
        case 13: return &values.headtrackingPitchOffset;
        case 14: return &values.headtrackingHeadingOffset;
        case 15: return &values.headtrackingRollOffset;
        case 25: return &values.effectScriptXOffset;
        case 26: return &values.effectScriptYOffset;
        case 27: return &values.effectScriptZOffset;
        case 28: return &values.effectScriptPitchOffset;
        case 29: return &values.effectScriptHeadingOffset;
        case 30: return &values.effectScriptRollOffset;
        default: return nullptr;
    }
}

// The camera field behind one of the per-view-ID float arrays.
float* cameraField(Camera* camera, int32_t index) {
    switch (index) {
        case 16: return &camera->x;
        case 17: return &camera->y;
        case 18: return &camera->z;
        case 19: return &camera->heading;
        case 20: return &camera->pitch;
        case 21: return &camera->roll;
        default: return nullptr;
    }
}


// The camera published under a view ID, or null while the camera level is off.
Camera* cameraOfViewId(int32_t id) {
    if (!cameraEnabled() || id < 1 || id > kMaxViewId) return nullptr;
    return cameraForViewId(id);
}

// The simulator shows the 3-D cockpit or an outside view: the selected camera is on screen.
bool selectedCameraShown() {
    if (viewTypeRef == nullptr) viewTypeRef = XPLMFindDataRef("sim/graphics/view/view_type");
    if (viewIsExternalRef == nullptr) viewIsExternalRef = XPLMFindDataRef("sim/graphics/view/view_is_external");
    int viewType = viewTypeRef ? XPLMGetDatai(viewTypeRef) : 0;
    if (viewType == 1026) return true;
    if (simulatorVersion() >= 10000) return viewIsExternalRef != nullptr && XPLMGetDatai(viewIsExternalRef) != 0;
    return viewType == 1028;
}

int32_t cameraStatusOf(int32_t id) {
    Camera* camera = cameraOfViewId(id);
    if (camera == nullptr) return 0;
    int32_t status = 1;
    if (camera == currentCamera() && selectedCameraShown()) {
        status += 2;
        if (transitionRunning()) status += 16;
    }
    if (isAirportSetActive()) status += 4;
    if (controlPanelOpen()) status += 8;
    return status;
}

int32_t selectedCameraValue() {
    if (!cameraEnabled()) return -1;
    const Camera* camera = currentCamera();
    return selectedCameraNumber(camera->categoryIndex, camera->indexInCategory);
}

void selectCameraByNumber(int value) {
    if (!cameraEnabled()) return;
    const int32_t category = value / kMaxCameras;
    const int32_t index = value % kMaxCameras;
    Camera* first = firstCamera();
    Camera* camera = first;
    // The ring closes on the first camera; the bound guards a ring that a bug left open.
    for (int32_t steps = 0; camera != nullptr && steps < kMaxCategories * kMaxCameras; ++steps) {
        if (camera->categoryIndex == category && camera->indexInCategory == index) {
            selectCameraRecord(camera);
            return;
        }
        camera = camera->nextInSet;
        if (camera == first) break;
    }
}

}  // namespace

const char* integrationDatarefName(int32_t index) {
    if (index < 0 || index >= kIntegrationDatarefCount) return nullptr;
    return kNames[index];
}

int arrayReadCount(int size, int offset, int max) {
    if (offset < 0 || offset >= size || max <= 0) return 0;
    return max < size - offset ? max : size - offset;
}

int32_t overallStatusOf(bool cameraOn, bool trackIrCamera, bool airportSet, bool controlPanel, bool transition,
                        bool scriptCamera) {
    if (!cameraOn) return 0;
    int32_t status = trackIrCamera ? 3 : 1;
    if (airportSet) status += 4;
    if (controlPanel) status += 8;
    if (transition) status += 16;
    if (scriptCamera) status += 32;
    return status;
}

int32_t selectedCameraNumber(int32_t categoryIndex, int32_t indexInCategory) {
    return categoryIndex * kMaxCameras + indexInCategory;
}

int readIntegrationInt(void* refcon) {
    const int32_t index = indexOf(refcon);
    switch (index) {
        case kIntegrationEnabled: return values.vistarigEnabled;
        case kIntegrationEffectScriptId: return cameraEnabled() ? currentCamera()->scriptId : 0;
        case kIntegrationOverallStatus: {
            if (!cameraEnabled()) return 0;
            const Camera* camera = currentCamera();
            return overallStatusOf(true, camera->trackIrEnabled, isAirportSetActive(), controlPanelOpen(),
                                   transitionRunning(), camera->scriptId > 0);
        }
        case kIntegrationSelectedCamera: return selectedCameraValue();
        default: {
            const int32_t* slot = intSlot(index);
            return slot ? *slot : 0;
        }
    }
}

void writeIntegrationInt(void* refcon, int value) {
    const int32_t index = indexOf(refcon);
    if (index == kIntegrationSelectedCamera) {
        selectCameraByNumber(value);
        return;
    }
    if (int32_t* slot = intSlot(index)) *slot = value;
}

float readIntegrationFloat(void* refcon) {
    const float* slot = floatSlot(indexOf(refcon));
    return slot ? *slot : 0.0f;
}

void writeIntegrationFloat(void* refcon, float value) {
    if (float* slot = floatSlot(indexOf(refcon))) *slot = value;
}

int readIntegrationFloatArray(void* refcon, float* out, int offset, int max) {
    const int32_t index = indexOf(refcon);
    if (index < kIntegrationCameraX || index > kIntegrationCameraRoll) return 0;
    if (out == nullptr) return kIntegrationViewArraySize;
    const int count = arrayReadCount(kIntegrationViewArraySize, offset, max);
    for (int i = 0; i < count; ++i) {
        Camera* camera = cameraOfViewId(offset + i);
        out[i] = camera ? *cameraField(camera, index) : 0.0f;
    }
    return count;
}

void writeIntegrationFloatArray(void* refcon, float* in, int offset, int count) {
    const int32_t index = indexOf(refcon);
    if (index < kIntegrationCameraX || index > kIntegrationCameraRoll || in == nullptr || !cameraEnabled()) return;
    const int n = arrayReadCount(kIntegrationViewArraySize, offset, count);
    for (int i = 0; i < n; ++i) {
        Camera* camera = cameraOfViewId(offset + i);
        if (camera == nullptr) continue;
        *cameraField(camera, index) = in[i];
        // A free camera's world position is what counts; keep it in step with x, y, z.
        if (camera->freeCamera && index <= kIntegrationCameraX + 2) localToWorld(camera);
    }
}

int readIntegrationIntArray(void* refcon, int* out, int offset, int max) {
    const int32_t index = indexOf(refcon);
    if (index == kIntegrationCameraStatus) {
        if (out == nullptr) return kIntegrationViewArraySize;
        const int count = arrayReadCount(kIntegrationViewArraySize, offset, max);
        for (int i = 0; i < count; ++i) out[i] = cameraStatusOf(offset + i);
        return count;
    }
    if (index == kIntegrationCameraMotionAxisAssignment) {
        if (out == nullptr) return kIntegrationAxisArraySize;
        const int count = arrayReadCount(kIntegrationAxisArraySize, offset, max);
        for (int i = 0; i < count; ++i) out[i] = axisInput().cameraMotionAxisAssignment[offset + i];
        return count;
    }
    return 0;
}

void writeIntegrationIntArray(void* refcon, int* in, int offset, int count) {
    if (indexOf(refcon) != kIntegrationCameraMotionAxisAssignment || in == nullptr) return;
    // Cut off at the sixth element, as the read is.
    const int n = arrayReadCount(kIntegrationAxisArraySize, offset, count);
    for (int i = 0; i < n; ++i) setCameraMotionAxisAssignment(offset + i, in[i]);
}

void publishIntegrationDatarefs() {
    // A host re-enable keeps the registrations that are still good.
    if (published && handles[0] != nullptr && XPLMIsDataRefGood(handles[0])) return;
    for (int32_t index = 0; index < kIntegrationDatarefCount; ++index) {
        void* refcon = reinterpret_cast<void*>(static_cast<intptr_t>(index));
        const std::string name = std::string(kPrefix) + kNames[index];
        XPLMDataTypeID type = kTypeInt;
        bool writable = true;
        if (floatSlot(index) != nullptr) type = kTypeFloat;
        if (index >= kIntegrationCameraX && index <= kIntegrationCameraRoll) type = kTypeFloatArray;
        if (index == kIntegrationCameraStatus || index == kIntegrationCameraMotionAxisAssignment) type = kTypeIntArray;
        if (index == kIntegrationEnabled || index == kIntegrationCameraStatus || index == kIntegrationEffectScriptId ||
            index == kIntegrationOverallStatus)
            writable = false;
        const bool isInt = type == kTypeInt, isFloat = type == kTypeFloat;
        const bool isFloatArray = type == kTypeFloatArray, isIntArray = type == kTypeIntArray;
        handles[index] = XPLMRegisterDataAccessor(
            name.c_str(), type, writable ? 1 : 0, isInt ? readIntegrationInt : nullptr,
            isInt && writable ? writeIntegrationInt : nullptr, isFloat ? readIntegrationFloat : nullptr,
            isFloat && writable ? writeIntegrationFloat : nullptr, nullptr, nullptr,
            isIntArray ? readIntegrationIntArray : nullptr, isIntArray && writable ? writeIntegrationIntArray : nullptr,
            isFloatArray ? readIntegrationFloatArray : nullptr,
            isFloatArray && writable ? writeIntegrationFloatArray : nullptr, nullptr, nullptr, refcon, refcon);
    }
    viewTypeRef = XPLMFindDataRef("sim/graphics/view/view_type");
    viewIsExternalRef = XPLMFindDataRef("sim/graphics/view/view_is_external");
    published = true;
}

void unpublishIntegrationDatarefs() {
    for (XPLMDataRef& handle : handles) {
        if (handle != nullptr) XPLMUnregisterDataAccessor(handle);
        handle = nullptr;
    }
    published = false;
}

