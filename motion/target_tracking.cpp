#include "motion/target_tracking.h"

#include <GL/gl.h>

#include <algorithm>
#include <cmath>
#include <cstring>

#include "XPLMDataAccess.h"
#include "XPLMDisplay.h"
#include "XPLMGraphics.h"
#include "XPLMScenery.h"
#include "XPLMUtilities.h"
#include "data/angles.h"
#include "data/great_circle.h"
#include "data/plugin_state.h"
#include "data/settings.h"
#include "data/user_messages.h"
#include "motion/ai_traffic.h"
#include "motion/camera_inputs.h"
#include "motion/camera_pose.h"
#include "motion/mouse_look.h"

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kRadians = kPi / 180.0;
constexpr int kProbeInfoSize = 44;

struct Refs {
    bool bound = false;
    XPLMDataRef latitude = nullptr, longitude = nullptr;
    XPLMDataRef localX = nullptr, localY = nullptr, localZ = nullptr, psi = nullptr;
    XPLMDataRef boatX = nullptr, boatY = nullptr, boatZ = nullptr, boatHeading = nullptr;
};

Refs gRefs;
NearTargets gNear;
bool gShowTargetInformation = true;
bool gAimPaused = false;

Target gFree, gAircraft, gCarrier, gFrigate;

void initRecord(Target& t, const char* name, int32_t kind);

void bind() {
    if (gRefs.bound) return;
    initRecord(gFree, "Free Target", 0);
    gFree.isFreeTarget = true;
    initRecord(gAircraft, "My Aircraft", 1);
    initRecord(gCarrier, "Aircraft Carrier", 2);
    initRecord(gFrigate, "Frigate", 3);
    gRefs.latitude = XPLMFindDataRef("sim/flightmodel/position/latitude");
    gRefs.longitude = XPLMFindDataRef("sim/flightmodel/position/longitude");
    gRefs.localX = XPLMFindDataRef("sim/flightmodel/position/local_x");
    gRefs.localY = XPLMFindDataRef("sim/flightmodel/position/local_y");
    gRefs.localZ = XPLMFindDataRef("sim/flightmodel/position/local_z");
    gRefs.psi = XPLMFindDataRef("sim/flightmodel/position/psi");
    gRefs.boatX = XPLMFindDataRef("sim/world/boat/x_mtr");
    gRefs.boatY = XPLMFindDataRef("sim/world/boat/y_mtr");
    gRefs.boatZ = XPLMFindDataRef("sim/world/boat/z_mtr");
    gRefs.boatHeading = XPLMFindDataRef("sim/world/boat/heading_deg");
    gRefs.bound = true;
}

double getd(XPLMDataRef ref) { return ref ? XPLMGetDatad(ref) : 0.0; }

float element(XPLMDataRef ref, int index) {
    float value = 0.0f;
    if (ref) XPLMGetDatavf(ref, &value, index, 1);
    return value;
}

void initRecord(Target& t, const char* name, int32_t kind) {
    std::memset(&t, 0, sizeof t);
    copyText(t.name, name);
    t.kind = kind;
}

// Local position of the carrier (0) or the frigate (1), and its heading.
void boatPosition(int index, double& x, double& y, double& z, float& heading) {
    bind();
    x = element(gRefs.boatX, index);
    y = element(gRefs.boatY, index);
    z = element(gRefs.boatZ, index);
    heading = element(gRefs.boatHeading, index);
}

// The camera hangs on a boat: 1 the carrier, 2 the frigate; 0 otherwise.
int boatOrigin(const Camera* camera) {
    if (camera->external && !camera->freeCamera && (camera->cameraOrigin == 1 || camera->cameraOrigin == 2))
        return camera->cameraOrigin;
    return 0;
}

// The centre of the near list: the aircraft, or the boat the selected camera hangs on.
void centrePoint(double& latitude, double& longitude) {
    bind();
    latitude = getd(gRefs.latitude);
    longitude = getd(gRefs.longitude);
    if (int boat = boatOrigin(currentCamera())) {
        double x, y, z, elevation;
        float heading;
        boatPosition(boat - 1, x, y, z, heading);
        XPLMLocalToWorld(x, y, z, &latitude, &longitude, &elevation);
    }
}

// What distances are measured from: the centre, or the plane the AI perspective follows.
void referencePoint(double& latitude, double& longitude) {
    centrePoint(latitude, longitude);
    double x, y, z, elevation;
    if (aiTargetReferencePoint(x, y, z)) XPLMLocalToWorld(x, y, z, &latitude, &longitude, &elevation);
}

// Distance from a reference point; a target standing on it is 0 without the arc cosine.
void measure(Target* t, double latitude, double longitude) {
    if (t->latitude == latitude && t->longitude == longitude) t->distanceKm = 0.0f;
    else t->distanceKm = static_cast<float>(greatCircle(t->latitude, t->longitude, latitude, longitude, 'K'));
}

void refreshAt(Target* t, double refLatitude, double refLongitude) {
    if (t->kind != 0) {
        double x, y, z;
        if (t->kind == 1) {
            bind();
            x = getd(gRefs.localX);
            y = getd(gRefs.localY);
            z = getd(gRefs.localZ);
        } else {
            float heading;
            boatPosition(t->kind - 2, x, y, z, heading);
        }
        t->x = x;
        t->y = y;
        t->z = z;
        XPLMLocalToWorld(x, y, z, &t->latitude, &t->longitude, &t->elevation);
    } else {
        XPLMWorldToLocal(t->latitude, t->longitude, t->elevation, &t->x, &t->y, &t->z);
    }
    measure(t, refLatitude, refLongitude);
}

void add(Target* t) {
    if (gNear.nearCount < kNearTargetCapacity - 1) gNear.entries[gNear.nearCount++] = t;
    gNear.entries[gNear.nearCount] = nullptr;
}

XPLMProbeResult probeAt(XPLMProbeRef probe, double x, double y, double z, XPLMProbeInfo_t& info) {
    std::memset(&info, 0, sizeof info);
    info.structSize = kProbeInfoSize;
    return XPLMProbeTerrainXYZ(probe, static_cast<float>(x), static_cast<float>(y), static_cast<float>(z), &info);
}

void runSimCommand(const char* name) {
    XPLMCommandRef command = XPLMFindCommand(name);
    if (command) XPLMCommandOnce(command);
}

}  // namespace

NearTargets& nearTargets() { return gNear; }

Target& freeTarget() { return gFree; }
Target& aircraftTarget() { return gAircraft; }
Target& carrierTarget() { return gCarrier; }
Target& frigateTarget() { return gFrigate; }

bool& showTargetInformation() { return gShowTargetInformation; }

void initTargetTracking() {
    gRefs = Refs();
    bind();
    std::memset(&gNear, 0, sizeof gNear);
    gAimPaused = false;
}

int nearTargetCells(double latitude, double longitude, int (*cells)[2], int capacity) {
    const double wholeLatitude = std::trunc(latitude);
    const int row = static_cast<int>(wholeLatitude) + 90;
    const int column = static_cast<int>(std::trunc(longitude)) + 180 - 1;
    // The second row is the neighbour on the side of the nearer cell edge.
    const double middle = wholeLatitude + (latitude < 0 ? -0.5 : 0.5);
    int rows[2] = {row, latitude > middle ? row + 1 : row - 1};
    for (int& r : rows) {
        if (r < 0) r = 179;
        if (r >= kTargetGridRows) r = 0;
    }
    const bool polar = latitude < -80.0 || latitude > 80.0;
    int count = 0;
    for (int r : rows) {
        if (polar) {
            // Column 360 holds the longitude 180 itself, the same meridian as column 0.
            for (int c = 0; c < kTargetGridColumns && count < capacity; ++c) cells[count][0] = r, cells[count++][1] = c;
            continue;
        }
        for (int k = 0; k < 3 && count < capacity; ++k) {
            int c = column + k;
            if (c < 0) c += 360;
            if (c > 360) c -= 360;
            cells[count][0] = r;
            cells[count++][1] = c;
        }
    }
    return count;
}

void refreshTarget(Target* target) {
    if (!target) return;
    double latitude, longitude;
    referencePoint(latitude, longitude);
    refreshAt(target, latitude, longitude);
}

void rebuildNearTargets() {
    bind();
    double latitude, longitude;
    centrePoint(latitude, longitude);
    gNear.listLatitude = latitude;
    gNear.listLongitude = longitude;
    gNear.built = true;
    gNear.nearCount = 0;
    gNear.entries[0] = nullptr;

    double refLatitude, refLongitude;
    referencePoint(refLatitude, refLongitude);
    static int cells[2 * kTargetGridColumns][2];
    const int cellCount = nearTargetCells(latitude, longitude, cells, 2 * kTargetGridColumns);
    int stored = 0;
    for (int i = 0; i < cellCount; ++i)
        for (Target* t = targetCell(cells[i][0], cells[i][1]); t && stored < kMaxNearStoredTargets; t = t->nextInCell) {
            refreshAt(t, refLatitude, refLongitude);
            if (t->distanceKm < kNearTargetReachKm) {
                add(t);
                ++stored;
            }
        }

    refreshAt(&gFree, refLatitude, refLongitude);
    if (gFree.distanceKm > kNearTargetReachKm) resetFreeTarget();
    add(&gFree);

    // The object the camera hangs on is never its own target.
    const int32_t origin = currentCamera()->cameraOrigin;
    const struct {
        Target* record;
        int32_t excludedOrigin;
    } objects[] = {{&gAircraft, 0}, {&gCarrier, 1}, {&gFrigate, 2}};
    for (const auto& o : objects) {
        if (origin == o.excludedOrigin) continue;
        refreshAt(o.record, refLatitude, refLongitude);
        add(o.record);
    }
}

void sortNearTargets() {
    double latitude, longitude;
    referencePoint(latitude, longitude);
    for (int i = 0; i < gNear.nearCount; ++i) {
        refreshAt(gNear.entries[i], latitude, longitude);
        gNear.entries[i]->pitchTo = 0.0f;
    }
    // Stable, as a bubble sort that swaps only on a strict difference: equal distances
    // keep the order in which they were gathered.
    std::stable_sort(gNear.entries, gNear.entries + gNear.nearCount,
                     [](const Target* a, const Target* b) { return a->distanceKm < b->distanceKm; });
}

Target* currentTarget() {
    double latitude, longitude;
    centrePoint(latitude, longitude);
    // A list never built is built now: the first list used to wait for the aircraft to
    // be 15 miles from latitude 0, longitude 0.
    if (!gNear.built || greatCircle(latitude, longitude, gNear.listLatitude, gNear.listLongitude, 'N') >
                            kRebuildDistanceNm) {
        rebuildNearTargets();
        sortNearTargets();
        gNear.selectedTarget = 0;
        return gNear.entries[0];
    }
    if (gNear.selectedTarget < 0 || gNear.selectedTarget >= gNear.nearCount) return nullptr;
    return gNear.entries[gNear.selectedTarget];
}

void selectNearestTarget() {
    rebuildNearTargets();
    sortNearTargets();
    gNear.selectedTarget = 0;
}

void selectNextTarget() {
    if (gNear.nearCount <= 0) return;
    if (++gNear.selectedTarget >= gNear.nearCount) gNear.selectedTarget = 0;
}

void selectPreviousTarget() {
    if (gNear.nearCount <= 0) return;
    if (--gNear.selectedTarget < 0) gNear.selectedTarget = gNear.nearCount - 1;
}

void selectFreeTarget() {
    if (!gNear.built) currentTarget();
    for (int i = 0; i < gNear.nearCount; ++i)
        if (gNear.entries[i]->isFreeTarget) {
            gNear.selectedTarget = i;
            return;
        }
}

double groundDistanceOfAim(double height, double pitch) { return height / std::tan(-pitch * kRadians); }

bool positionFreeTarget(const CameraPose& pose) {
    const float p = foldAngle(pose.pitch);
    if (p >= 0.0f || p <= -90.0f) return false;
    copyText(gFree.name, "Free Target");
    gFree.isFreeTarget = true;
    gFree.kind = 0;

    XPLMProbeRef probe = XPLMCreateProbe(xplm_ProbeY);
    if (!probe) return false;
    XPLMProbeInfo_t info;
    bool placed = false;
    if (probeAt(probe, pose.x, pose.y, pose.z, info) == xplm_ProbeHitTerrain) {
        const double d = groundDistanceOfAim(pose.y - info.locationY, p);
        const double h = pose.heading * kRadians;
        if (probeAt(probe, pose.x + d * std::sin(h), pose.y, pose.z - d * std::cos(h), info) == xplm_ProbeHitTerrain) {
            XPLMLocalToWorld(info.locationX, info.locationY + 1.0, info.locationZ, &gFree.latitude,
                             &gFree.longitude, &gFree.elevation);
            placed = true;
        }
    }
    XPLMDestroyProbe(probe);
    if (!placed)
        XPLMLocalToWorld(pose.x, pose.y + 1.0, pose.z, &gFree.latitude, &gFree.longitude, &gFree.elevation);
    XPLMWorldToLocal(gFree.latitude, gFree.longitude, gFree.elevation, &gFree.x, &gFree.y, &gFree.z);
    return placed;
}

void resetFreeTarget() {
    bind();
    CameraPose pose;
    if (int boat = boatOrigin(currentCamera())) {
        double x, y, z;
        float heading;
        boatPosition(boat - 1, x, y, z, heading);
        pose.x = static_cast<float>(x);
        pose.y = static_cast<float>(y + 100.0);
        pose.z = static_cast<float>(z);
        pose.heading = heading;
    } else {
        pose.x = static_cast<float>(getd(gRefs.localX));
        pose.y = static_cast<float>(getd(gRefs.localY));
        pose.z = static_cast<float>(getd(gRefs.localZ));
        pose.heading = gRefs.psi ? XPLMGetDataf(gRefs.psi) : 0.0f;
    }
    pose.pitch = 350.0f;
    positionFreeTarget(pose);
}

bool freeTargetSelected() {
    Target* t = currentTarget();
    return t && t->isFreeTarget;
}

void beginFreeTargetAim() {
    // The user aims at a world that holds still.
    if (!settings().PAUSE_ON_FREE_TARGET_AIM) return;
    runSimCommand("sim/operation/pause_toggle");
    gAimPaused = true;
}

void endFreeTargetAim(Camera* camera, bool place) {
    bool placed = place && positionFreeTarget(camera->transitionPose);
    // Resumes only a pause this aim made, even when the aim no longer counts (the
    // selection changed while the button was held).
    if (gAimPaused) {
        runSimCommand("sim/operation/pause_toggle");
        gAimPaused = false;
    }
    if (place && !placed)
        showMessageBox("Error", "Unable to position the free target.\n\nThere was no terrain found at the aim point.");
}

void aimAtCurrentTarget(Camera* camera, CameraPose& out) {
    if (Target* t = currentTarget()) {
        refreshTarget(t);
        if (camera->targetReciprocal) {
            // Stands at the target, over the deck or the aircraft, and looks back.
            static const float lift[4] = {0.0f, 10.0f, 50.0f, 30.0f};
            out.x = static_cast<float>(t->x);
            out.y = static_cast<float>(t->y + (t->kind >= 0 && t->kind < 4 ? lift[t->kind] : 0.0f));
            out.z = static_cast<float>(t->z);
            aimHeading(out, camera, nullptr);
            aimPitch(out, camera, nullptr);
        } else {
            AimPoint aim{t->x, t->y, t->z};
            aimHeadingAt(out, &aim);
            aimPitchAt(out, &aim);
        }
        out.roll = 0.0f;
        t->pitchTo = foldAngle(out.pitch);
        t->headingTo = out.heading;
    }
    // Inputs and offsets act on the aimed result, also without a target.
    applyCameraInputs(camera, out);
    applyScriptOffsets(camera, out);
    // The simulator gets the pitch folded, as from every other outside camera: a level
    // aim is 0, not 360.
    out.pitch = foldAngle(out.pitch);
}

void saveCameraAsTarget(const char* name) {
    bind();
    Camera* camera = currentCamera();
    double x, y, z;
    Target* tracked = camera->targetFollowing && !camera->freeCamera ? currentTarget() : nullptr;
    if (camera->freeCamera) {
        x = camera->x;
        y = camera->y;
        z = camera->z;
    } else if (tracked && tracked->isFreeTarget) {
        x = tracked->x;
        y = tracked->y;
        z = tracked->z;
    } else {
        x = getd(gRefs.localX);
        y = getd(gRefs.localY);
        z = getd(gRefs.localZ);
    }
    double latitude = 0, longitude = 0, elevation = 0;
    XPLMLocalToWorld(x, y, z, &latitude, &longitude, &elevation);
    addTarget(name, nullptr, latitude, longitude, elevation, 0);
    writeTargets();
    // The selection stays with its target, not with its place in the list: the new
    // target moved the others along, and the camera turned to another one.
    Target* selected = gNear.selectedTarget >= 0 && gNear.selectedTarget < gNear.nearCount
                           ? gNear.entries[gNear.selectedTarget]
                           : nullptr;
    rebuildNearTargets();
    sortNearTargets();
    for (int i = 0; selected && i < gNear.nearCount; ++i)
        if (gNear.entries[i] == selected) gNear.selectedTarget = i;
}

bool aimingCrossWanted() {
    if (!cameraEnabled()) return false;
    const Camera* camera = currentCamera();
    return camera->targetFollowing && !camera->targetReciprocal && mouseState().rightButtonHeld &&
           freeTargetSelected();
}

void drawAimingCross() {
    int width = 0, height = 0;
    XPLMGetScreenSize(&width, &height);
    const int cx = width / 2, cy = height / 2;
    XPLMSetGraphicsState(0, 0, 0, 0, 0, 0, 0);
    glColor3f(1.0f, 0.0f, 0.0f);
    glLineWidth(3.0f);
    glBegin(GL_LINES);
    glVertex2i(cx - 10, cy);
    glVertex2i(cx + 10, cy);
    glVertex2i(cx, cy - 10);
    glVertex2i(cx, cy + 10);
    glEnd();
}
