#include "motion/movement.h"

#include "data/angles.h"
#include "data/integration_values.h"
#include "data/plugin_state.h"
#include "data/settings.h"
#include "motion/camera_pose.h"
#include "motion/transitions.h"

namespace {

MovementState gMovement;

// The filter window must leave a slot of the ring free.
constexpr int32_t kMaxSmoothing = RunningAverage::kCapacity - 1;

float speedOf(const float (&speeds)[4]) {
    int32_t s = gMovement.speedSelector;
    if (s < 0) s = 0;
    if (s > 3) s = 3;
    return speeds[s];
}

void clearRates() {
    gMovement.rateX = gMovement.rateY = gMovement.rateZ = 0.0f;
    gMovement.rateHeading = gMovement.ratePitch = 0.0f;
}

float stepAngle(float a) {
    if (a >= 360.0f) return a - 360.0f;
    if (a < 0.0f) return a + 360.0f;
    return a;
}

}  // namespace

MovementState& movementState() { return gMovement; }

void resetMovement() { gMovement = MovementState(); }

float movementStep() {
    const Settings& s = settings();
    float speeds[4] = {s.SMALL_MOVEMENT_SPEED, s.MEDIUM_MOVEMENT_SPEED, s.LARGE_MOVEMENT_SPEED,
                       s.VERY_LARGE_MOVEMENT_SPEED};
    return gMovement.movementMultiplier * speedOf(speeds);
}

float rotationStep() {
    const Settings& s = settings();
    float speeds[4] = {s.SMALL_ROTATION_SPEED, s.MEDIUM_ROTATION_SPEED, s.LARGE_ROTATION_SPEED,
                       s.VERY_LARGE_ROTATION_SPEED};
    return gMovement.rotationMultiplier * speedOf(speeds);
}

float effectiveHeading(const Camera* camera) {
    const IntegrationValues& v = integrationValues();
    bool offsets = (camera->xpRealistic && v.xpRealisticPresent != 0) || (camera->realView && v.realViewPresent != 0);
    if (!offsets) return camera->heading;
    return wrapAngle(camera->heading + v.headingOffset);
}

void moveCamera(int32_t operation, bool continuous) {
    // Any movement input ends a transition at once. It stops where the view stands
    // and the press moves on from there: stopping at the camera's own values threw the
    // view to the destination in one frame.
    if (transitionRunning()) {
        stopTransitionWhereItIs();
        stopCameraMotion();
    }
    MovementState& mv = gMovement;
    Camera* camera = currentCamera();
    float m = movementStep();
    float r = rotationStep();
    Vector3 d;
    float h = camera->cineflex ? wrapAngle(camera->heading - aircraftOrigin().heading) : effectiveHeading(camera);

    switch (operation) {
        case moveForward: d.z = -m; mv.ratesHeld = continuous; break;
        case moveBack: d.z = m; mv.ratesHeld = continuous; break;
        case moveLeft: d.x = -m; mv.ratesHeld = continuous; break;
        case moveRight: d.x = m; mv.ratesHeld = continuous; break;
        case moveUp:
        case moveDown:
            // An AGL camera's height belongs to the terrain.
            if (!camera->aglCamera) {
                d.y = operation == moveUp ? m : -m;
                mv.ratesHeld = continuous;
            }
            break;
        case movePitchUp: mv.ratePitch += r; mv.ratesHeld = continuous; break;
        case movePitchDown: mv.ratePitch -= r; mv.ratesHeld = continuous; break;
        case moveTurnLeft: mv.rateHeading -= r; mv.ratesHeld = continuous; break;
        case moveTurnRight: mv.rateHeading += r; mv.ratesHeld = continuous; break;
        case moveWalkMode:
            if (!mv.walkMode) {
                mv.walkMode = true;
                mv.ratesHeld = true;
            } else {
                mv.walkMode = false;
                mv.ratesHeld = false;
                clearRates();
            }
            break;
        case moveHome: {
            const CameraPose& head = pluginState().savedHeadPose;
            camera->x = head.x;
            camera->y = head.y;
            camera->z = head.z;
            camera->pitch = 0.0f;
            camera->heading = 0.0f;
            break;
        }
        case moveZeroBearing: camera->heading = camera->cineflex ? aircraftOrigin().heading : 0.0f; break;
        case moveZeroPitch: camera->pitch = 0.0f; break;
        case moveRangeUp:
            if (mv.speedSelector < 3) camera->initialMovementRange = ++mv.speedSelector;
            break;
        case moveRangeDown:
            if (mv.speedSelector > 0) camera->initialMovementRange = --mv.speedSelector;
            break;
        default: return;
    }

    // Forward means along the view, except round a circle view's centre.
    if (!camera->circleView) {
        d = rotateVector(d, camera->pitch, 0.0f, 0.0f);
        d = rotateVector(d, 0.0f, h, 0.0f);
    }
    mv.rateX += d.x;
    mv.rateY += d.y;
    mv.rateZ += d.z;
    if (operation <= moveTurnRight) mv.stepPending = true;
}

void panCamera(int32_t phase, int32_t code) {
    MovementState& mv = gMovement;
    if (mv.walkMode && phase == 1) return;
    if (phase == 2) {
        if (mv.lastPanCode == code) {
            endHeldMotion();
            mv.lastPanCode = 0;
        }
        return;
    }
    const Settings& s = settings();
    if (s.ENABLE_PANSPEED_TOGGLE) {
        float factor = s.panSpeedFactor;
        mv.rotationMultiplier = mv.panSpeedMode == 0 ? 1.0f / factor : mv.panSpeedMode == 1 ? 1.0f : factor;
    }
    float m = movementStep();
    float r = rotationStep();
    if (code >= 16 && code <= 23) {
        // On a circle view the pans orbit (x, degrees) and climb (y) round the centre.
        bool circle = currentCamera()->circleView;
        switch (code) {
            case 16:
                if (circle) mv.rateX = -m;
                else { mv.rateHeading -= r; mv.ratePitch = 0.0f; }
                break;
            case 17:
                if (circle) mv.rateX = m;
                else { mv.rateHeading += r; mv.ratePitch = 0.0f; }
                break;
            case 18:
                if (circle) mv.rateY = m;
                else { mv.ratePitch += r; mv.rateHeading = 0.0f; }
                break;
            case 19:
                if (circle) mv.rateY = -m;
                else { mv.ratePitch -= r; mv.rateHeading = 0.0f; }
                break;
            case 20:
                if (circle) { mv.rateX = -m; mv.rateY = m; }
                else { mv.rateHeading -= r; mv.ratePitch += r; }
                break;
            case 21:
                if (circle) { mv.rateX = m; mv.rateY = 2.0f * m; }
                else { mv.rateHeading += r; mv.ratePitch += r; }
                break;
            case 22:
                if (circle) { mv.rateX = m; mv.rateY = -m; }
                else { mv.rateHeading += r; mv.ratePitch -= r; }
                break;
            case 23:
                if (circle) { mv.rateX = -m; mv.rateY = -m; }
                else { mv.rateHeading -= r; mv.ratePitch -= r; }
                break;
        }
    }
    mv.ratesHeld = mv.walkMode;
    mv.lastPanCode = code;
}

void endHeldMotion() {
    if (transitionRunning()) {
        stopTransitionWhereItIs();
        stopCameraMotion();
        return;
    }
    // In walk mode the end of a key press changes nothing.
    if (gMovement.walkMode) return;
    gMovement.ratesHeld = false;
    // A press and its release in one go (a command sent once) would otherwise clear
    // the step before any frame applied it, and the camera never moved; the next
    // frame spends it and clears the rates itself.
    if (!gMovement.stepPending) clearRates();
}

void addRates(float x, float y, float z, float heading, float pitch) {
    gMovement.rateX += x;
    gMovement.rateY += y;
    gMovement.rateZ += z;
    gMovement.rateHeading += heading;
    gMovement.ratePitch += pitch;
}

void cyclePanSpeed() {
    gMovement.panSpeedMode = gMovement.panSpeedMode >= 2 ? 0 : gMovement.panSpeedMode + 1;
}

void applyMovementRates(Camera* camera) {
    MovementState& mv = gMovement;
    if (!mv.filtersCleared) {
        for (RunningAverage& f : mv.filters) clear(f);
        mv.filtersCleared = true;
    }
    float rates[5] = {mv.rateX, mv.rateY, mv.rateZ, mv.rateHeading, mv.ratePitch};
    float values[5];
    int32_t w = settings().MOVEMENT_SMOOTHING_FACTOR;
    if (w > kMaxSmoothing) w = kMaxSmoothing;
    if (!mv.ratesHeld && w > 2 && !camera->cameraAxis && !camera->viewAxis) {
        // A glide: each input refills its filter with a third of itself, and once the
        // input stops the zeros fed in bring the output down over w frames.
        for (int i = 0; i < 5; ++i)
            if (rates[i] != 0.0f) prime(mv.filters[i], w, rates[i] / 3.0f);
        for (int i = 0; i < 5; ++i) values[i] = average(mv.filters[i], w, 0.0f);
    } else {
        for (int i = 0; i < 5; ++i) values[i] = rates[i];
    }
    if (!mv.ratesHeld) clearRates();
    mv.stepPending = false;

    if (camera->circleView) {
        circleMoveCamera(camera, values[0], values[1], values[2]);
    } else {
        camera->x += values[0];
        camera->y += values[1];
        camera->z += values[2];
        camera->heading = stepAngle(camera->heading + values[3]);
        camera->pitch = stepAngle(camera->pitch + values[4]);
    }
    if (camera->freeCamera) localToWorld(camera);
}

void circleMove(float orbit, float height, float distance) {
    circleMoveCamera(currentCamera(), orbit, height, distance);
}

void circleMoveCamera(Camera* camera, float orbit, float height, float distance) {
    if (!camera->circleView) return;
    // Into a frame where the camera's own bearing is zero, then back, turned by the orbit.
    Vector3 v{camera->x, camera->y, camera->z};
    v = rotateVector(v, 0.0f, 360.0f - camera->heading, 0.0f);
    v.y += height;
    v.z += distance;
    v = rotateVector(v, 0.0f, camera->heading - orbit, 0.0f);
    camera->x = v.x;
    camera->y = v.y;
    camera->z = v.z;
}

void stopMovement() {
    gMovement.walkMode = false;
    gMovement.ratesHeld = false;
    gMovement.stepPending = false;
    clearRates();
}
