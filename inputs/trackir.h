// The TrackIR head tracker: the client library's table of entry points, the start and
// stop sequences with their status values, the 80-byte data frame, polling from the
// camera calculation, smoothing, the head offsets for a pose, external head tracking fed
// through the integration datarefs and the cockpit limits. One client for the
// whole plug-in; main thread only.
#pragma once

#include <cstdint>

#include "data/camera_set.h"
#include "data/running_average.h"
#include "inputs/pose_offsets.h"

// trackIrStatus values, shown by System Check.
enum : int32_t {
    kTrackIrStatusUnknown = 0,
    kTrackIrStatusNotInstalled = 1,
    kTrackIrStatusNotRunning = 2,
    kTrackIrStatusNotInGameList = 3,
    kTrackIrStatusWindowHandleError = 4,
    kTrackIrStatusCursorError = 5,
    kTrackIrStatusEnabled = 6,
    kTrackIrStatusDisabled = 7,
    kTrackIrStatusUnexpectedError = 8,
};

// Request mask: the three rotations and the three translations.
constexpr uint16_t kTrackIrRequestedData = 119;
constexpr uint16_t kTrackIrProfileId = 3775;
constexpr int kTrackIrFrameBytes = 80;
constexpr int kTrackIrSignatureFieldBytes = 200;
// Raw translations run to +-32766 and rotations to +-16383 (about 180 degrees).
constexpr float kTrackIrTranslationDivisor = 32766.0f;
constexpr float kTrackIrRotationFactor = 0.010987f;

// The client's calling convention on 32-bit Windows; a no-op everywhere else.
#if defined(_WIN32) && !defined(_WIN64)
#define TRACKIR_CALL __stdcall
#else
#define TRACKIR_CALL
#endif

struct TrackIrSignature {
    char dllSignature[kTrackIrSignatureFieldBytes];
    char appSignature[kTrackIrSignatureFieldBytes];
};

// Each entry is null until resolved. Every call goes through a wrapper that answers 4
// for a null entry and otherwise the library's result; 0 is success.
struct TrackIrFunctions {
    int(TRACKIR_CALL* getSignature)(TrackIrSignature*);
    int(TRACKIR_CALL* registerWindowHandle)(void*);
    int(TRACKIR_CALL* unregisterWindowHandle)();
    int(TRACKIR_CALL* registerProgramProfileId)(unsigned short);
    int(TRACKIR_CALL* queryVersion)(unsigned short*);
    int(TRACKIR_CALL* requestData)(unsigned short);
    int(TRACKIR_CALL* getData)(void*);
    int(TRACKIR_CALL* startCursor)();
    int(TRACKIR_CALL* stopCursor)();
    int(TRACKIR_CALL* reCenter)();
    int(TRACKIR_CALL* startDataTransmission)();
    int(TRACKIR_CALL* stopDataTransmission)();
};

// The fields of a data frame that are used; the frame is little-endian on the wire.
struct TrackIrFrame {
    uint16_t status;
    uint16_t signature;
    float roll, pitch, yaw;
    float x, y, z;
};

// Head values: x, y, z in metres after range scaling, then yaw, pitch, roll in degrees.
enum : int { kHeadX = 0, kHeadY, kHeadZ, kHeadYaw, kHeadPitch, kHeadRoll, kHeadValueCount };

struct TrackIrClient {
    void* library = nullptr;
    TrackIrFunctions functions{};
    bool active = false;
    uint16_t lastSignature = 0;
    float head[kHeadValueCount] = {};
    RunningAverage filters[kHeadValueCount];
    bool filtersFresh = true;
    RunningAverage externalFilters[kHeadValueCount];
    bool externalFiltersFresh = true;
    // The pose after head tracking, before limits and effects; the TrackIR pane sets a
    // limit from it.
    CameraPose currentHeadPose;
};

TrackIrClient& trackIrClient();

// ---- lifecycle, called by the camera level
void TrackIRStart(int32_t& status);
void TrackIRStop(int32_t& status);
bool TrackIRIsActive();

// ---- the camera calculation
// Polls the client and hands over the smoothed head offsets for a pose of this
// heading; only for a camera with trackIrEnabled while the client is active. The
// speed selector (motion's) sets the range.
PoseOffsets trackIrOffsets(float heading, int32_t speedSelector);
// Offsets of an outside head tracker (integration datarefs), with their own filters;
// only while headtracking_present is non-zero.
PoseOffsets externalHeadTrackingOffsets(int32_t speedSelector);
// The limits that follow them at once, whether or not the TrackIR client runs.
void applyExternalHeadTrackingLimits(const Camera& camera, CameraPose& pose);
// Holds x, y, z within the camera's limits: the position in the aircraft, not the offset.
void clampToTrackIrLimits(const Camera& camera, CameraPose& pose);
// The cockpit limits apply only with an active client.
void applyTrackIrLimits(const Camera& camera, CameraPose& pose);
const CameraPose& currentHeadPose();
void storeCurrentHeadPose(const CameraPose& pose);

// ---- pieces without the library, for tests and the panel
// Decodes the used fields of an 80-byte frame.
TrackIrFrame decodeTrackIrFrame(const unsigned char* bytes);
// Stores the six head values of a usable new frame; false when the frame is skipped
// (non-zero status, or the signature last seen).
bool acceptTrackIrFrame(TrackIrClient& client, const TrackIrFrame& frame, float range);
// The head values as offsets, the heading's cosine the only horizontal scale.
PoseOffsets headTrackerOffsets(const float head[kHeadValueCount], float cosHeading);
// Head track range of a speed selector value (0 small .. 3 very large).
float headTrackRange(int32_t speedSelector);
