#include "motion/camera_pose.h"

#include <cmath>
#include <cstring>

#include "XPLMDataAccess.h"
#include "XPLMScenery.h"
#include "data/angles.h"
#include "inputs/effects.h"
#include "motion/ai_traffic.h"
#include "motion/camera_inputs.h"
#include "motion/frame_driver.h"
#include "motion/target_tracking.h"

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kDegrees = 180.0 / kPi;
constexpr double kRadians = kPi / 180.0;
// A point this far ahead of the camera gives its world direction.
constexpr float kFarPoint = 5000.0f;
constexpr int kProbeInfoSize = 44;

struct PoseDatarefs {
    bool bound = false;
    XPLMDataRef theta = nullptr, phi = nullptr, psi = nullptr;
    XPLMDataRef localX = nullptr, localY = nullptr, localZ = nullptr;
    XPLMDataRef boatX = nullptr, boatY = nullptr, boatZ = nullptr, boatHeading = nullptr;
};

PoseDatarefs gRefs;

void bind() {
    if (gRefs.bound) return;
    initCameraPose();
}

float getf(XPLMDataRef ref) { return ref ? XPLMGetDataf(ref) : 0.0f; }
double getd(XPLMDataRef ref) { return ref ? XPLMGetDatad(ref) : 0.0; }

// Position of a camera-frame offset in the local frame of the origin.
void placeInOrigin(const Origin& o, Vector3 v, double& x, double& y, double& z) {
    Vector3 r = rotateByAttitude(v, o.pitch, o.heading, o.roll);
    x = o.x + r.x;
    y = o.y + r.y;
    z = o.z + r.z;
}

// The reference of an aim without an explicit point, in the order of precedence.
void aimDifference(const CameraPose& pose, const Camera* camera, const AimPoint* aim, double& dx,
                   double& dy, double& dz) {
    if (!camera->external && !(camera->targetFollowing && camera->targetReciprocal)) {
        dx = pose.x;
        dy = pose.y;
        dz = pose.z;
        return;
    }
    if (aim) {
        dx = pose.x - aim->x;
        dy = pose.y - aim->y;
        dz = pose.z - aim->z;
        return;
    }
    // Following another aircraft: the reference is that plane.
    AimPoint plane;
    if (aiAimPoint(camera, plane)) {
        dx = pose.x - plane.x;
        dy = pose.y - plane.y;
        dz = pose.z - plane.z;
        return;
    }
    if (camera->cameraOrigin != 0) {
        Origin o = originOf(camera);
        dx = pose.x - o.x;
        dy = pose.y - o.y;
        dz = pose.z - o.z;
        return;
    }
    Vector3 p = aircraftAimPoint(pose);
    dx = static_cast<double>(pose.x) - p.x;
    dy = static_cast<double>(pose.y) - p.y;
    dz = static_cast<double>(pose.z) - p.z;
}

}  // namespace

void initCameraPose() {
    gRefs = PoseDatarefs();
    gRefs.theta = XPLMFindDataRef("sim/flightmodel/position/theta");
    gRefs.phi = XPLMFindDataRef("sim/flightmodel/position/phi");
    gRefs.psi = XPLMFindDataRef("sim/flightmodel/position/psi");
    gRefs.localX = XPLMFindDataRef("sim/flightmodel/position/local_x");
    gRefs.localY = XPLMFindDataRef("sim/flightmodel/position/local_y");
    gRefs.localZ = XPLMFindDataRef("sim/flightmodel/position/local_z");
    gRefs.boatX = XPLMFindDataRef("sim/world/boat/x_mtr");
    gRefs.boatY = XPLMFindDataRef("sim/world/boat/y_mtr");
    gRefs.boatZ = XPLMFindDataRef("sim/world/boat/z_mtr");
    gRefs.boatHeading = XPLMFindDataRef("sim/world/boat/heading_deg");
    gRefs.bound = true;
}

float counterAngle(float a) {
    if (a >= 360.0f) a = 360.0f - a;
    return a > 180.0f ? 360.0f - a : -a;
}

Origin aircraftOrigin() {
    bind();
    Origin o;
    o.x = getd(gRefs.localX);
    o.y = getd(gRefs.localY);
    o.z = getd(gRefs.localZ);
    o.pitch = foldAngle(getf(gRefs.theta));
    o.roll = foldAngle(getf(gRefs.phi));
    o.heading = wrapAngle(getf(gRefs.psi));
    return o;
}

Origin originOf(const Camera* camera) {
    if (!(camera->external && !camera->freeCamera && camera->cameraOrigin > 0)) return aircraftOrigin();
    bind();
    // Element 0 is the carrier, element 1 the frigate.
    float xs[2] = {0, 0}, ys[2] = {0, 0}, zs[2] = {0, 0}, hs[2] = {0, 0};
    if (gRefs.boatX) XPLMGetDatavf(gRefs.boatX, xs, 0, 2);
    if (gRefs.boatY) XPLMGetDatavf(gRefs.boatY, ys, 0, 2);
    if (gRefs.boatZ) XPLMGetDatavf(gRefs.boatZ, zs, 0, 2);
    if (gRefs.boatHeading) XPLMGetDatavf(gRefs.boatHeading, hs, 0, 2);
    int i = camera->cameraOrigin >= 2 ? 1 : 0;
    Origin o;
    o.x = xs[i];
    o.y = ys[i];
    o.z = zs[i];
    o.heading = hs[i];
    return o;
}

Vector3 aircraftAimPoint(const CameraPose& pose) {
    Origin o = aircraftOrigin();
    Vector3 p{static_cast<float>(o.x), static_cast<float>(o.y), static_cast<float>(o.z)};
    if (pose.cgX != 0.0f || pose.cgY != 0.0f || pose.cgZ != 0.0f) {
        Vector3 cg = rotateByAttitude({pose.cgX, pose.cgY, pose.cgZ}, o.pitch, o.heading, o.roll);
        p.x += cg.x;
        p.y += cg.y;
        p.z += cg.z;
    }
    return p;
}

float headingFromDifference(double dx, double dz) {
    if (dx == 0.0 && dz == 0.0) return 0.0f;
    double a = std::atan2(-dz, std::fabs(dx)) * kDegrees;
    return static_cast<float>(dx >= 0.0 ? 270.0 - a : 90.0 + a);
}

float pitchFromDifference(double dx, double dy, double dz) {
    double h = std::sqrt(dx * dx + dz * dz);
    if (dy == 0.0 && h == 0.0) return 0.0f;
    double a = std::atan2(dy, h) * kDegrees;
    return static_cast<float>(a < 0.0 ? -a : 360.0 - a);
}

void aimHeading(CameraPose& pose, const Camera* camera, const AimPoint* aim) {
    double dx, dy, dz;
    aimDifference(pose, camera, aim, dx, dy, dz);
    pose.heading = headingFromDifference(dx, dz);
}

void aimPitch(CameraPose& pose, const Camera* camera, const AimPoint* aim) {
    double dx, dy, dz;
    aimDifference(pose, camera, aim, dx, dy, dz);
    pose.pitch = pitchFromDifference(dx, dy, dz);
}

void aimHeadingAt(CameraPose& pose, const AimPoint* target) {
    if (!target) return;
    pose.heading = headingFromDifference(pose.x - target->x, pose.z - target->z);
}

void aimPitchAt(CameraPose& pose, const AimPoint* target) {
    if (!target) return;
    pose.pitch = pitchFromDifference(pose.x - target->x, pose.y - target->y, pose.z - target->z);
}

void levelCockpitPose(CameraPose& pose, const Camera* camera) {
    if (camera->external) return;
    bind();
    float theta = getf(gRefs.theta);
    float phi = getf(gRefs.phi);
    if (phi < 0.0f) phi += 360.0f;
    float t = counterAngle(theta);
    float r = counterAngle(phi);
    double h = pose.heading * kRadians;
    pose.pitch = addAngles(0.0f, static_cast<float>(t * std::cos(h) - r * std::sin(h)));
    pose.roll = addAngles(0.0f, static_cast<float>(r * std::cos(h) + t * std::sin(h)));
    pose.y = static_cast<float>(pose.y + pose.x * std::tan(phi * kRadians));
}

bool groundHeight(double x, double y, double z, double& height) {
    XPLMProbeRef probe = XPLMCreateProbe(xplm_ProbeY);
    if (!probe) return false;
    XPLMProbeInfo_t info;
    std::memset(&info, 0, sizeof info);
    info.structSize = kProbeInfoSize;
    bool hit = XPLMProbeTerrainXYZ(probe, static_cast<float>(x), static_cast<float>(y),
                                   static_cast<float>(z), &info) == xplm_ProbeHitTerrain;
    if (hit) height = info.locationY;
    XPLMDestroyProbe(probe);
    return hit;
}

void applyScriptOffsets(const Camera* camera, CameraPose& pose) { addOffsets(pose, scriptOffsets(*camera)); }

namespace {

void freeCameraPose(Camera* camera, CameraPose& out, CameraPose p) {
    double ground;
    if (camera->aglCamera && groundHeight(p.x, p.y, p.z, ground)) {
        p.y = static_cast<float>(camera->aglHeight + ground);
        camera->y = p.y;
    }
    applyScriptOffsets(camera, p);
    // The stored orientation follows the tracking, so a later move starts from it.
    if (camera->trackHeading) {
        aimHeading(p, camera, nullptr);
        camera->heading = p.heading;
    }
    if (camera->trackPitch) {
        aimPitch(p, camera, nullptr);
        camera->pitch = p.pitch;
    }
    applyCameraInputs(camera, p);
    out = p;
}

// Keeps an outside camera at its height over the terrain: at least a metre for a
// circle view, exactly `aglHeight` for an AGL camera. `scale` is the AI perspective's
// factor already in the pose: the stored height stays in the camera's own, unscaled
// measure.
void applyGroundRule(Camera* camera, CameraPose& p, const Origin& o, float scale) {
    double wx, wy, wz;
    placeInOrigin(o, {p.x, p.y, p.z}, wx, wy, wz);
    double ground;
    if (!groundHeight(wx, wy, wz, ground)) return;
    double above = wy - ground;
    if (camera->circleView) {
        if (above < 1.0) p.y = static_cast<float>(p.y + (1.0 - above));
    } else {
        p.y = static_cast<float>(p.y + (camera->aglHeight - above));
    }
    camera->y = p.y / scale;
}

}  // namespace

void externalPose(Camera* camera, CameraPose& out, const CameraPose& in) {
    CameraPose p = in;
    if (camera->freeCamera) {
        freeCameraPose(camera, out, p);
        return;
    }

    // Hung on another aircraft: the plane takes the place of the origin and the offset
    // grows or shrinks by the chosen scale.
    Origin o = originOf(camera);
    const bool onAiPlane = aiPerspectiveOrigin(camera, o);
    const float scale = onAiPlane ? aiPlaneSelection().scale : 1.0f;
    if (onAiPlane) {
        p.x *= scale;
        p.y *= scale;
        p.z *= scale;
    }
    if (camera->levelCamera) {
        o.pitch = 0.0f;
        o.roll = 0.0f;
    }
    if (camera->aglCamera || camera->circleView) applyGroundRule(camera, p, o, scale);
    applyScriptOffsets(camera, p);

    AimPoint cg{p.cgX, p.cgY, p.cgZ};
    if (camera->trackHeading) {
        aimHeading(p, camera, &cg);
        camera->heading = p.heading;
    }
    if (camera->trackPitch) {
        aimPitch(p, camera, &cg);
        camera->pitch = p.pitch;
    }
    applyCameraInputs(camera, p);

    // The orientation goes into the world as the direction from the camera's world
    // position along its own forward axis: the camera's attitude, then the origin's,
    // applied to the forward vector alone. Rotating the camera's offset together with
    // the far point turned the view off its subject by up to several degrees for a
    // camera standing well to the side.
    Vector3 forward = rotateByAttitude({0.0f, 0.0f, -kFarPoint}, p.pitch, p.heading, p.roll);
    forward = rotateByAttitude(forward, o.pitch, o.heading, o.roll);
    double cx, cy, cz;
    placeInOrigin(o, {p.x, p.y, p.z}, cx, cy, cz);

    out = p;
    out.x = static_cast<float>(cx);
    out.y = static_cast<float>(cy);
    out.z = static_cast<float>(cz);
    // The aim formulas give the direction from the far point back to the camera.
    float tp = pitchFromDifference(forward.x, forward.y, forward.z);
    float th = headingFromDifference(forward.x, forward.z);
    out.pitch = foldAngle(-tp);
    out.heading = wrapAngle(th - 180.0f);

    if (camera->chaseView9) {
        out.roll = p.roll;
    } else {
        // Looking along the object the camera rolls with its roll, sideways with its pitch.
        double b = wrapAngle(out.heading - o.heading) * kRadians;
        out.roll = p.roll + foldAngle(static_cast<float>(o.roll * std::cos(b) + o.pitch * std::sin(b)));
    }
    if (camera->cineflex) {
        out.heading = wrapAngle(p.heading);
        out.pitch = p.pitch;
        out.roll = p.roll;
    }
    out.fov = p.fov;
    out.zoom = p.zoom;

    if (!camera->targetFollowing) return;
    aimAtCurrentTarget(camera, out);
}
