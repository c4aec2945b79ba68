#include "motion/ai_traffic.h"

#include <cmath>
#include <cstdio>
#include <cstring>

#include "XPLMDataAccess.h"
#include "XPLMPlanes.h"
#include "data/angles.h"
#include "motion/frame_driver.h"

namespace {

constexpr double kMetresPerNauticalMile = 1852.0;
constexpr int kFlightIdBytes = 8;

struct TrafficDatarefs {
    bool bound = false;
    // TCAS: x, y, z, psi, the, phi.
    XPLMDataRef tcas[6] = {};
    XPLMDataRef flightId = nullptr, modeSId = nullptr, numAcf = nullptr;
    // Multiplayer: the same six for planes 1 to 19.
    XPLMDataRef multiplayer[kMaxMultiplayerPlanes][6] = {};
};

TrafficDatarefs gRefs;
AiPlaneSelection gSelection;
AiPlaneRecord gRecord;
TrafficList gList;
char gCallsign[kFlightIdBytes];

void bind() {
    if (!gRefs.bound) initAiTraffic();
}

float readElement(XPLMDataRef ref, int32_t element) {
    float value = 0.0f;
    if (ref) XPLMGetDatavf(ref, &value, element, 1);
    return value;
}

}  // namespace

AiPlaneSelection& aiPlaneSelection() { return gSelection; }

void initAiTraffic() {
    gRefs = TrafficDatarefs();
    static const char* const kTcas[6] = {
        "sim/cockpit2/tcas/targets/position/x",   "sim/cockpit2/tcas/targets/position/y",
        "sim/cockpit2/tcas/targets/position/z",   "sim/cockpit2/tcas/targets/position/psi",
        "sim/cockpit2/tcas/targets/position/the", "sim/cockpit2/tcas/targets/position/phi",
    };
    for (int i = 0; i < 6; ++i) gRefs.tcas[i] = XPLMFindDataRef(kTcas[i]);
    gRefs.flightId = XPLMFindDataRef("sim/cockpit2/tcas/targets/flight_id");
    gRefs.modeSId = XPLMFindDataRef("sim/cockpit2/tcas/targets/modeS_id");
    gRefs.numAcf = XPLMFindDataRef("sim/cockpit2/tcas/indicators/tcas_num_acf");
    static const char* const kAxes[6] = {"x", "y", "z", "psi", "the", "phi"};
    char name[64];
    for (int plane = 0; plane < kMaxMultiplayerPlanes; ++plane) {
        for (int i = 0; i < 6; ++i) {
            std::snprintf(name, sizeof name, "sim/multiplayer/position/plane%d_%s", plane + 1, kAxes[i]);
            gRefs.multiplayer[plane][i] = XPLMFindDataRef(name);
        }
    }
    gRefs.bound = true;
}

bool tcasAvailable() {
    bind();
    return gRefs.tcas[0] != nullptr && gRefs.numAcf != nullptr && XPLMGetDatai(gRefs.numAcf) > 1;
}

int32_t aiPlaneCount() {
    bind();
    int total = 0, active = 0;
    XPLMPluginID controller = 0;
    XPLMCountAircraft(&total, &active, &controller);
    int32_t count = active - 1;
    if (count < 0) return 0;
    // A count beyond the source's table would read planes that aren't there: at the
    // local origin, deep under the ground.
    int32_t table = tcasAvailable() ? kMaxTrafficPlanes : kMaxMultiplayerPlanes;
    return count < table ? count : table;
}

const AiPlaneRecord& aiPlaneRecord(int32_t index) {
    bind();
    gRecord = AiPlaneRecord();
    if (index < 0) return gRecord;
    if (tcasAvailable()) {
        if (index >= kMaxTrafficPlanes) return gRecord;
        gRecord.x = readElement(gRefs.tcas[0], index + 1);
        gRecord.y = readElement(gRefs.tcas[1], index + 1);
        gRecord.z = readElement(gRefs.tcas[2], index + 1);
        gRecord.heading = readElement(gRefs.tcas[3], index + 1);
        gRecord.pitch = readElement(gRefs.tcas[4], index + 1);
        gRecord.roll = readElement(gRefs.tcas[5], index + 1);
        return gRecord;
    }
    if (index >= kMaxMultiplayerPlanes) return gRecord;
    XPLMDataRef* refs = gRefs.multiplayer[index];
    gRecord.x = refs[0] ? static_cast<float>(XPLMGetDatad(refs[0])) : 0.0f;
    gRecord.y = refs[1] ? static_cast<float>(XPLMGetDatad(refs[1])) : 0.0f;
    gRecord.z = refs[2] ? static_cast<float>(XPLMGetDatad(refs[2])) : 0.0f;
    gRecord.heading = refs[3] ? XPLMGetDataf(refs[3]) : 0.0f;
    gRecord.pitch = refs[4] ? XPLMGetDataf(refs[4]) : 0.0f;
    gRecord.roll = refs[5] ? XPLMGetDataf(refs[5]) : 0.0f;
    return gRecord;
}

int32_t aiPlaneId(int32_t index) {
    if (!tcasAvailable()) return index;
    int value = 0;
    if (gRefs.modeSId && index >= 0 && index < kMaxTrafficPlanes) XPLMGetDatavi(gRefs.modeSId, &value, index + 1, 1);
    return value;
}

int32_t aiPlaneIndexOfId(int32_t id) {
    if (!tcasAvailable() || !gRefs.modeSId) return 0;
    int32_t count = aiPlaneCount();
    int ids[kMaxTrafficPlanes + 1] = {};
    int got = XPLMGetDatavi(gRefs.modeSId, ids, 0, count + 1);
    for (int32_t i = 0; i < count && i + 1 < got; ++i)
        if (ids[i + 1] == id) return i;
    return 0;
}

const char* aiPlaneCallsign(int32_t index) {
    std::memset(gCallsign, 0, sizeof gCallsign);
    if (!tcasAvailable() || !gRefs.flightId || index < 0 || index >= kMaxTrafficPlanes) return gCallsign;
    XPLMGetDatab(gRefs.flightId, gCallsign, index * kFlightIdBytes + kFlightIdBytes, kFlightIdBytes - 1);
    gCallsign[kFlightIdBytes - 1] = '\0';
    return gCallsign;
}

namespace {

// Where distances are measured from, in local coordinates.
void referencePoint(double& x, double& y, double& z) {
    if (frameDriver().cameraControlled) {
        const Camera* camera = currentCamera();
        if (camera->freeCamera) {
            x = camera->x;
            y = camera->y;
            z = camera->z;
            return;
        }
        Origin o = originOf(camera);
        x = o.x;
        y = o.y;
        z = o.z;
        return;
    }
    Origin o = aircraftOrigin();
    x = o.x;
    y = o.y;
    z = o.z;
}

float distanceFrom(double x, double y, double z, int32_t index) {
    const AiPlaneRecord& plane = aiPlaneRecord(index);
    double dx = plane.x - x, dy = plane.y - y, dz = plane.z - z;
    return static_cast<float>(std::sqrt(dx * dx + dy * dy + dz * dz) / kMetresPerNauticalMile);
}

}  // namespace

float aiPlaneDistance(int32_t index) {
    double x, y, z;
    referencePoint(x, y, z);
    return distanceFrom(x, y, z, index);
}

void insertByDistance(TrafficList& list, float distance, int32_t index) {
    if (list.count >= kMaxTrafficPlanes) return;
    int32_t at = list.count;
    while (at > 0 && list.entries[at - 1].distance > distance) {
        list.entries[at] = list.entries[at - 1];
        --at;
    }
    list.entries[at] = TrafficEntry{distance, index};
    ++list.count;
}

const TrafficList& trafficList() {
    gList.count = 0;
    int32_t count = aiPlaneCount();
    if (count == 0) return gList;
    double x, y, z;
    referencePoint(x, y, z);
    for (int32_t i = 0; i < count; ++i) insertByDistance(gList, distanceFrom(x, y, z, i), i);
    return gList;
}

void resyncAiPlane() {
    if (aiPlaneId(gSelection.index) == gSelection.modeSId) return;
    gSelection.index = aiPlaneIndexOfId(gSelection.modeSId);
    gSelection.modeSId = aiPlaneId(gSelection.index);
}

int32_t nextFartherIndex(const TrafficList& list, int32_t current) {
    if (list.count == 0) return 0;
    for (int32_t i = 0; i + 1 < list.count; ++i)
        if (list.entries[i].index == current) return list.entries[i + 1].index;
    return list.entries[0].index;
}

int32_t previousNearerIndex(const TrafficList& list, int32_t current) {
    if (list.count == 0) return 0;
    for (int32_t i = 1; i < list.count; ++i)
        if (list.entries[i].index == current) return list.entries[i - 1].index;
    return list.entries[list.count - 1].index;
}

float steppedScale(float scale, float step) {
    // Kept on tenths, so that any run of steps lands exactly on the limits and the
    // panels' tests against them hold.
    float next = std::round((scale + step) * 10.0f) / 10.0f;
    if (next < kAiScaleMin) return kAiScaleMin;
    if (next > kAiScaleMax) return kAiScaleMax;
    return next;
}

namespace {

void choose(int32_t index) {
    gSelection.index = index;
    gSelection.modeSId = aiPlaneId(index);
}

// The selection commands act only while following a plane and with planes about. The
// chosen plane is found again first: the simulator may have renumbered its traffic
// since the last frame.
int32_t followingCount() {
    if (!gSelection.perspectiveOn) return 0;
    int32_t count = aiPlaneCount();
    if (count > 0) resyncAiPlane();
    return count;
}

}  // namespace

void toggleAiPerspective() {
    int32_t count = aiPlaneCount();
    if (count >= 1 && !gSelection.perspectiveOn) {
        gSelection.perspectiveOn = true;
        choose(gSelection.index < count && gSelection.index >= 0 ? gSelection.index : 0);
        return;
    }
    gSelection.perspectiveOn = false;
}

void selectAiPlane(int32_t index) {
    if (index < 0 || index >= aiPlaneCount()) return;
    choose(index);
}

void selectNextAiPlane() {
    int32_t count = followingCount();
    if (count == 0) return;
    choose(gSelection.index + 1 < count ? gSelection.index + 1 : 0);
}

void selectPreviousAiPlane() {
    int32_t count = followingCount();
    if (count == 0) return;
    choose(gSelection.index - 1 >= 0 ? gSelection.index - 1 : count - 1);
}

void selectNextDistantAiPlane() {
    if (followingCount() == 0) return;
    TrafficList list = trafficList();
    choose(nextFartherIndex(list, gSelection.index));
}

void selectPreviousDistantAiPlane() {
    if (followingCount() == 0) return;
    TrafficList list = trafficList();
    choose(previousNearerIndex(list, gSelection.index));
}

void aiScaleUp() { gSelection.scale = steppedScale(gSelection.scale, kAiScaleStep); }
void aiScaleDown() { gSelection.scale = steppedScale(gSelection.scale, -kAiScaleStep); }

bool aiPerspectiveOrigin(const Camera* camera, Origin& origin) {
    if (!gSelection.perspectiveOn || camera->freeCamera) return false;
    if (aiPlaneCount() == 0) {
        // The last plane left: back to the user's aircraft, without a word.
        gSelection.perspectiveOn = false;
        return false;
    }
    resyncAiPlane();
    const AiPlaneRecord& plane = aiPlaneRecord(gSelection.index);
    origin.x = plane.x;
    origin.y = plane.y;
    origin.z = plane.z;
    origin.heading = wrapAngle(plane.heading);
    origin.pitch = foldAngle(plane.pitch);
    origin.roll = foldAngle(plane.roll);
    return true;
}

bool aiAimPoint(const Camera* camera, AimPoint& point) {
    if (!gSelection.perspectiveOn || camera->freeCamera || aiPlaneCount() == 0) return false;
    resyncAiPlane();
    const AiPlaneRecord& plane = aiPlaneRecord(gSelection.index);
    point = AimPoint{plane.x, plane.y, plane.z};
    return true;
}

bool aiTargetReferencePoint(double& x, double& y, double& z) {
    AimPoint point;
    // Asked first: with the set empty, asking for the camera would load the aircraft's file.
    if (!gSelection.perspectiveOn || !aiAimPoint(currentCamera(), point)) return false;
    x = point.x;
    y = point.y;
    z = point.z;
    return true;
}
