#include "inputs/trackir.h"

#include <cmath>
#include <cstring>
#include <string>

#include "data/aircraft_files.h"
#include "data/integration_values.h"
#include "data/settings.h"
#include "platform/library_loader.h"
#include "platform/registry.h"
#include "platform/runtime.h"

#ifdef _WIN32
#include <windows.h>
#endif

namespace {

constexpr double kRadiansPerDegree = 3.14159265358979323846 / 180.0;

// The vendor's fixed signature strings; the client answers with exactly these bytes.
constexpr const char* kDllSignature =
    "precise head tracking\n put your head into the game\n now go look around\n\n Copyright EyeControl "
    "Technologies";
constexpr const char* kAppSignature =
    "hardware camera\n software processing data\n track user movement\n\n Copyright EyeControl Technologies";

// A longer folder than this is treated as one that doesn't load.
constexpr int kPathCapacity = 1024;

constexpr int kEntryMissing = 4;

TrackIrClient client;

template <typename Entry, typename... Args>
int callEntry(Entry entry, Args... args) {
    if (entry == nullptr) return kEntryMissing;
    return entry(args...);
}

template <typename Entry>
void resolve(Entry& entry, const char* name) {
    entry = reinterpret_cast<Entry>(findLibrarySymbol(client.library, name));
}

uint16_t readU16(const unsigned char* p) { return static_cast<uint16_t>(p[0] | (p[1] << 8)); }

float readFloat(const unsigned char* p) {
    uint32_t bits = static_cast<uint32_t>(p[0]) | (static_cast<uint32_t>(p[1]) << 8) |
                    (static_cast<uint32_t>(p[2]) << 16) | (static_cast<uint32_t>(p[3]) << 24);
    float value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

// Locate, load, check the signature and resolve the table. On failure the status of
// the failed step is left in `status`.
bool loadClient(int32_t& status) {
    std::string folder;
    pluginDirectory(folder);
    char location[kPathCapacity];
    // Without a location "Error" stays in the buffer, and the load below fails.
    readTrackIrLocation(folder.c_str(), location, kPathCapacity);

    std::string path = location;
    if (!path.empty()) path.push_back(librarySeparator());
    path += trackIrLibraryName();
    if (path.size() >= static_cast<size_t>(kPathCapacity)) {
        status = kTrackIrStatusNotInstalled;
        return false;
    }

    client.functions = TrackIrFunctions{};
    client.library = loadLibrary(path.c_str());
    if (client.library == nullptr) {
        status = kTrackIrStatusNotInstalled;
        return false;
    }

    resolve(client.functions.getSignature, "NP_GetSignature");
    TrackIrSignature signature;
    std::memset(&signature, 0, sizeof signature);
    if (callEntry(client.functions.getSignature, &signature) != 0) {
        status = kTrackIrStatusNotInstalled;
        logMessage("TrackIR - unable to retrive the DLL Signature, is the TrackIR software running?.");
        return false;
    }
    // The client need not terminate a full field; compare within the field only.
    if (std::strncmp(signature.dllSignature, kDllSignature, sizeof signature.dllSignature) != 0 ||
        std::strncmp(signature.appSignature, kAppSignature, sizeof signature.appSignature) != 0) {
        status = kTrackIrStatusNotRunning;
        logMessage("TrackIR - DLL Signature check failed, is the TrackIR software running?.");
        return false;
    }

    resolve(client.functions.registerWindowHandle, "NP_RegisterWindowHandle");
    resolve(client.functions.unregisterWindowHandle, "NP_UnregisterWindowHandle");
    resolve(client.functions.registerProgramProfileId, "NP_RegisterProgramProfileID");
    resolve(client.functions.queryVersion, "NP_QueryVersion");
    resolve(client.functions.requestData, "NP_RequestData");
    resolve(client.functions.getData, "NP_GetData");
    resolve(client.functions.startCursor, "NP_StartCursor");
    resolve(client.functions.stopCursor, "NP_StopCursor");
    resolve(client.functions.reCenter, "NP_ReCenter");
    resolve(client.functions.startDataTransmission, "NP_StartDataTransmission");
    resolve(client.functions.stopDataTransmission, "NP_StopDataTransmission");
    return true;
}

void* activeWindowHandle() {
#ifdef _WIN32
    return reinterpret_cast<void*>(GetActiveWindow());
#else
    return nullptr;
#endif
}

void poll(int32_t speedSelector) {
    if (!client.active) return;
    unsigned char buffer[kTrackIrFrameBytes];
    std::memset(buffer, 0, sizeof buffer);
    if (callEntry(client.functions.getData, static_cast<void*>(buffer)) != 0) return;
    acceptTrackIrFrame(client, decodeTrackIrFrame(buffer), headTrackRange(speedSelector));
}

void clearFilters(RunningAverage (&filters)[kHeadValueCount]) {
    for (RunningAverage& filter : filters) clear(filter);
}

}  // namespace

TrackIrClient& trackIrClient() { return client; }

TrackIrFrame decodeTrackIrFrame(const unsigned char* bytes) {
    TrackIrFrame frame;
    frame.status = readU16(bytes + 0);
    frame.signature = readU16(bytes + 2);
    frame.roll = readFloat(bytes + 8);
    frame.pitch = readFloat(bytes + 12);
    frame.yaw = readFloat(bytes + 16);
    frame.x = readFloat(bytes + 20);
    frame.y = readFloat(bytes + 24);
    frame.z = readFloat(bytes + 28);
    return frame;
}

bool acceptTrackIrFrame(TrackIrClient& target, const TrackIrFrame& frame, float range) {
    if (frame.status != 0 || frame.signature == target.lastSignature) return false;
    target.head[kHeadX] = frame.x / kTrackIrTranslationDivisor * range;
    target.head[kHeadY] = frame.y / kTrackIrTranslationDivisor * range;
    target.head[kHeadZ] = frame.z / kTrackIrTranslationDivisor * range;
    target.head[kHeadYaw] = frame.yaw * kTrackIrRotationFactor;
    target.head[kHeadPitch] = frame.pitch * kTrackIrRotationFactor;
    target.head[kHeadRoll] = frame.roll * kTrackIrRotationFactor;
    target.lastSignature = frame.signature;
    return true;
}

PoseOffsets headTrackerOffsets(const float head[kHeadValueCount], float cosHeading) {
    // No sine term: a camera looking sideways loses the horizontal offsets, one looking
    // back has them reversed. The heading is left unnormalised for the caller. A
    // subtraction is the sum of the negated value, bit for bit.
    PoseOffsets o;
    o.setAll(-(head[kHeadX] * cosHeading), head[kHeadY], head[kHeadZ] * cosHeading, -head[kHeadYaw],
             -head[kHeadPitch], -head[kHeadRoll]);
    return o;
}

float headTrackRange(int32_t speedSelector) {
    const Settings& s = settings();
    switch (speedSelector) {
        case 0: return s.SMALL_HEADTRACK_RANGE;
        case 2: return s.LARGE_HEADTRACK_RANGE;
        case 3: return s.VERY_LARGE_HEADTRACK_RANGE;
        default: return s.MEDIUM_HEADTRACK_RANGE;
    }
}

void TrackIRStart(int32_t& status) {
    status = kTrackIrStatusEnabled;
    if (!loadClient(status)) {
        logMessage("TrackIR was not detected");
        return;
    }
    if (callEntry(client.functions.registerWindowHandle, activeWindowHandle()) != 0) {
        logMessage("TrackIR - Detected an error registering the window handle, check that the TrackIR software is running.");
        status = kTrackIrStatusWindowHandleError;
        return;
    }
    callEntry(client.functions.requestData, static_cast<unsigned short>(kTrackIrRequestedData));
    if (callEntry(client.functions.registerProgramProfileId, static_cast<unsigned short>(kTrackIrProfileId)) != 0) {
        logMessage("TrackIR - Vistarig is not in the game list, update your TrackIR game list.");
        status = kTrackIrStatusNotInGameList;
        return;
    }
    if (callEntry(client.functions.stopCursor) != 0) {
        logMessage("TrackIR - error stopping cursor");
        status = kTrackIrStatusCursorError;
        return;
    }
    if (callEntry(client.functions.startDataTransmission) != 0) {
        logMessage("TrackIR - error starting data transmission");
        status = kTrackIrStatusUnexpectedError;
        return;
    }
    client.active = true;
    logMessage("TrackIR was found and is enabled");
}

void TrackIRStop(int32_t& status) {
    if (!client.active) return;
    client.active = false;
    callEntry(client.functions.stopDataTransmission);
    callEntry(client.functions.unregisterWindowHandle);
    logMessage("TrackIR has been shutdown");
    status = kTrackIrStatusDisabled;
}

bool TrackIRIsActive() { return client.active; }

PoseOffsets trackIrOffsets(float heading, int32_t speedSelector) {
    // The cosine belongs to the pose as it came in, before any head yaw.
    const float c = static_cast<float>(std::cos(static_cast<double>(heading) * kRadiansPerDegree));
    poll(speedSelector);
    if (client.filtersFresh) {
        clearFilters(client.filters);
        client.filtersFresh = false;
    }
    float head[kHeadValueCount];
    std::memcpy(head, client.head, sizeof head);
    const int32_t n = settings().HEAD_TRACK_SMOOTHING_FACTOR;
    if (n > 0) {
        for (int i = 0; i < kHeadValueCount; ++i) head[i] = average(client.filters[i], n, head[i]);
    }
    return headTrackerOffsets(head, c);
}

void clampToTrackIrLimits(const Camera& camera, CameraPose& pose) {
    // Raise to the minimum first, then lower to the maximum: crossed limits end on the maximum.
    if (pose.x < camera.trackIrMin.x) pose.x = camera.trackIrMin.x;
    if (pose.x > camera.trackIrMax.x) pose.x = camera.trackIrMax.x;
    if (pose.y < camera.trackIrMin.y) pose.y = camera.trackIrMin.y;
    if (pose.y > camera.trackIrMax.y) pose.y = camera.trackIrMax.y;
    if (pose.z < camera.trackIrMin.z) pose.z = camera.trackIrMin.z;
    if (pose.z > camera.trackIrMax.z) pose.z = camera.trackIrMax.z;
}

void applyTrackIrLimits(const Camera& camera, CameraPose& pose) {
    if (client.active && camera.trackIrEnabled && camera.limitTrackIr && !camera.external)
        clampToTrackIrLimits(camera, pose);
}

PoseOffsets externalHeadTrackingOffsets(int32_t speedSelector) {
    const IntegrationValues& in = integrationValues();
    if (client.externalFiltersFresh) {
        clearFilters(client.externalFilters);
        client.externalFiltersFresh = false;
    }
    const int32_t n = settings().HEAD_TRACK_SMOOTHING_FACTOR;
    const float range = headTrackRange(speedSelector);
    RunningAverage* f = client.externalFilters;
    PoseOffsets o;
    o.setX(average(f[kHeadX], n, in.headtrackingXOffset) * range);
    o.setY(average(f[kHeadY], n, in.headtrackingYOffset) * range);
    o.setZ(average(f[kHeadZ], n, in.headtrackingZOffset) * range);
    o.setHeading(average(f[kHeadYaw], n, in.headtrackingHeadingOffset));
    o.setPitch(average(f[kHeadPitch], n, in.headtrackingPitchOffset));
    o.setRoll(average(f[kHeadRoll], n, in.headtrackingRollOffset));
    return o;
}

void applyExternalHeadTrackingLimits(const Camera& camera, CameraPose& pose) {
    // An outside tracker is limited whether or not the TrackIR client runs.
    if (camera.limitTrackIr && !camera.external) clampToTrackIrLimits(camera, pose);
}

const CameraPose& currentHeadPose() { return client.currentHeadPose; }
void storeCurrentHeadPose(const CameraPose& pose) { client.currentHeadPose = pose; }
