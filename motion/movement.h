// Manual movement: inputs (keys, pans, the hat, the movement pad, the mouse) add to
// five movement rates, and the frame driver applies them once a frame to the current
// camera's stored values, optionally smoothed. Owns the movement state and walk mode.
// Rates are per frame, so a held key's speed follows the frame rate.
#pragma once

#include <cstdint>

#include "data/camera_set.h"
#include "data/running_average.h"

struct MovementState {
    int32_t speedSelector = 1;  // 0 small, 1 medium, 2 large, 3 very large
    float rotationMultiplier = 1.0f;
    float movementMultiplier = 1.0f;
    int32_t panSpeedMode = 1;  // 0 slow, 1 normal, 2 fast
    float rateX = 0, rateY = 0, rateZ = 0;  // metres per frame, camera frame
    float rateHeading = 0, ratePitch = 0;  // degrees per frame
    bool ratesHeld = false;
    bool walkMode = false;
    int32_t lastPanCode = 0;
    // A key's step that no frame has applied yet; the key's end leaves it in place.
    bool stepPending = false;
    bool filtersCleared = false;
    RunningAverage filters[5];  // x, y, z, heading, pitch
};

enum MoveOperation : int32_t {
    moveForward = 0,
    moveBack = 1,
    moveLeft = 2,
    moveRight = 3,
    moveUp = 4,
    moveDown = 5,
    movePitchUp = 6,
    movePitchDown = 7,
    moveTurnLeft = 8,
    moveTurnRight = 9,
    moveWalkMode = 10,
    moveHome = 11,
    moveZeroBearing = 12,
    moveZeroPitch = 13,
    moveRangeUp = 14,
    moveRangeDown = 15,
};

MovementState& movementState();
// Back to the start values (at camera enable and in tests).
void resetMovement();

float movementStep();
float rotationStep();
void moveCamera(int32_t operation, bool continuous);
// phase 0 begin, 1 continue, 2 end; codes 16 to 23.
void panCamera(int32_t phase, int32_t code);
void endHeldMotion();
void addRates(float x, float y, float z, float heading, float pitch);
void cyclePanSpeed();
void applyMovementRates(Camera* camera);
float effectiveHeading(const Camera* camera);
// Moves the current circle view camera round its origin: orbit in degrees, height and
// distance in metres.
void circleMove(float orbit, float height, float distance);
void circleMoveCamera(Camera* camera, float orbit, float height, float distance);
// The movement half of stopping all camera motion: walk mode off, rates cleared.
void stopMovement();
