// Manual movement: steps and their direction, the smoothing glide, walk mode, pans,
// angle wrapping, the speed range, circle moves and the ways back.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "motion_fixture.h"
#include "shell/host_interface.h"

namespace {

class MovementTest : public MotionTest {
protected:
    void SetUp() override {
        MotionTest::SetUp();
        buildCategory(2);
        settings().MOVEMENT_SMOOTHING_FACTOR = 0;
        // Very large: one metre and two degrees a step.
        movementState().speedSelector = 3;
    }
    Camera& current() { return *currentCamera(); }
    // x after each of n frames.
    std::vector<float> xTrack(int n) {
        std::vector<float> out;
        for (int i = 0; i < n; ++i) {
            applyMovementRates(&current());
            out.push_back(current().x);
        }
        return out;
    }
};

TEST_F(MovementTest, TapMovesExactlyOneStepAlongTheView) {
    ASSERT_FLOAT_EQ(movementStep(), 1.0f);
    current().heading = 90;
    moveCamera(moveForward, false);
    EXPECT_EQ(current().x, 0.0f);  // nothing moves before the frame
    applyMovementRates(&current());
    applyMovementRates(&current());
    EXPECT_NEAR(current().x, 1.0, 1e-6);
    EXPECT_NEAR(current().z, 0.0, 1e-6);

    current().x = 0;
    current().heading = 0;
    current().pitch = 30;
    moveCamera(moveForward, false);
    applyMovementRates(&current());
    EXPECT_NEAR(current().y, 0.5, 1e-6);
    EXPECT_NEAR(current().z, -std::cos(30 * 3.14159265358979 / 180), 1e-6);

    // Up and down belong to the terrain on an AGL camera.
    current().aglCamera = true;
    float y = current().y;
    moveCamera(moveUp, true);
    applyMovementRates(&current());
    EXPECT_EQ(current().y, y);
    EXPECT_FALSE(movementState().ratesHeld);
}

TEST_F(MovementTest, SmoothingGlidesOutOverTheWindow) {
    settings().MOVEMENT_SMOOTHING_FACTOR = 10;
    moveCamera(moveRight, false);
    std::vector<float> x = xTrack(12);
    // A third of the step, falling in a straight line to nothing over ten frames.
    float previous = 0;
    for (int i = 0; i < 10; ++i) {
        float step = x[i] - previous;
        EXPECT_NEAR(step, (9 - i) / 30.0, 1e-5) << i;
        previous = x[i];
    }
    EXPECT_NEAR(x[11], 1.5, 1e-4);

    // A factor of 2 doesn't smooth, 3 does.
    settings().MOVEMENT_SMOOTHING_FACTOR = 2;
    current().x = 0;
    moveCamera(moveRight, false);
    EXPECT_NEAR(xTrack(1)[0], 1.0, 1e-6);
    settings().MOVEMENT_SMOOTHING_FACTOR = 3;
    current().x = 0;
    moveCamera(moveRight, false);
    EXPECT_NEAR(xTrack(1)[0], 2.0 / 9.0, 1e-5);
    xTrack(5);

    // Camera axes switch smoothing off.
    settings().MOVEMENT_SMOOTHING_FACTOR = 10;
    current().cameraAxis = true;
    current().x = 0;
    moveCamera(moveRight, false);
    EXPECT_NEAR(xTrack(1)[0], 1.0, 1e-6);
}

TEST_F(MovementTest, WalkModeHoldsItsSpeed) {
    moveCamera(moveWalkMode, false);
    ASSERT_TRUE(movementState().walkMode);
    moveCamera(moveForward, true);
    moveCamera(moveForward, true);  // twice the speed
    for (int i = 0; i < 3; ++i) applyMovementRates(&current());
    EXPECT_NEAR(current().z, -6.0, 1e-5);
    endHeldMotion();  // a key's end changes nothing
    panCamera(1, 17);  // continue phases are swallowed
    EXPECT_EQ(movementState().rateHeading, 0.0f);
    applyMovementRates(&current());
    EXPECT_NEAR(current().z, -8.0, 1e-5);
    moveCamera(moveBack, true);  // the opposite key slows it
    applyMovementRates(&current());
    EXPECT_NEAR(current().z, -9.0, 1e-5);
    stopCameraMotion();
    EXPECT_FALSE(movementState().walkMode);
    applyMovementRates(&current());
    EXPECT_NEAR(current().z, -9.0, 1e-5);
}

TEST_F(MovementTest, AnglesWrapAndTheRangeStops) {
    movementState().speedSelector = 1;  // one degree
    current().heading = 359.5f;
    moveCamera(moveTurnRight, false);
    applyMovementRates(&current());
    EXPECT_NEAR(current().heading, 0.5, 1e-4);
    movementState().speedSelector = 0;  // half a degree
    moveCamera(movePitchDown, false);
    applyMovementRates(&current());
    EXPECT_NEAR(current().pitch, 359.5, 1e-4);

    movementState().speedSelector = 2;
    moveCamera(moveRangeUp, false);
    moveCamera(moveRangeUp, false);
    EXPECT_EQ(movementState().speedSelector, 3);
    EXPECT_EQ(current().initialMovementRange, 3);
    for (int i = 0; i < 5; ++i) moveCamera(moveRangeDown, false);
    EXPECT_EQ(movementState().speedSelector, 0);
    EXPECT_EQ(current().initialMovementRange, 0);
}

TEST_F(MovementTest, MovementEndsATransitionWhereTheViewStandsAndMovesFromThere) {
    cam(1).smoothTransition = true;
    transitionState().transitionHead = buildTransition(&cam(1), &cam(0));
    CameraPose shown;
    shown.x = 0.5f;
    shown.y = 1.0f;
    shown.z = 0.25f;
    shown.heading = 0.0f;
    frameDriver().shownPose = shown;
    const float step = movementStep();
    moveCamera(moveForward, false);
    EXPECT_FALSE(transitionRunning());
    applyMovementRates(&current());
    EXPECT_FLOAT_EQ(current().x, 0.5f);
    EXPECT_FLOAT_EQ(current().y, 1.0f);
    EXPECT_NEAR(current().z, 0.25f - step, 1e-6);
}

TEST_F(MovementTest, AKeyPressedAndReleasedBeforeAFrameStillMovesOneStep) {
    const float z = current().z;
    const float step = movementStep();
    moveCamera(moveForward, false);
    endHeldMotion();
    applyMovementRates(&current());
    EXPECT_NEAR(current().z, z - step, 1e-6);
    // Spent: the next frame doesn't move again.
    applyMovementRates(&current());
    EXPECT_NEAR(current().z, z - step, 1e-6);
    // Released after a frame applied the step: the rates are cleared at once.
    moveCamera(moveForward, true);
    applyMovementRates(&current());
    endHeldMotion();
    applyMovementRates(&current());
    EXPECT_NEAR(current().z, z - 2 * step, 1e-6);
}

TEST_F(MovementTest, PansTurnOrOrbit) {
    panCamera(0, 17);
    applyMovementRates(&current());
    EXPECT_NEAR(current().heading, 2.0, 1e-5);
    panCamera(1, 17);
    panCamera(1, 17);
    applyMovementRates(&current());
    EXPECT_NEAR(current().heading, 6.0, 1e-5);

    // On a circle view the pans orbit and climb.
    current().circleView = true;
    current().z = 10;
    panCamera(0, 21);
    EXPECT_FLOAT_EQ(movementState().rateX, 1.0f);
    EXPECT_FLOAT_EQ(movementState().rateY, 2.0f);
    endHeldMotion();
    EXPECT_EQ(movementState().rateX, 0.0f);
}

TEST_F(MovementTest, CircleMoveKeepsTheDistanceAndTurnsRoundTheOrigin) {
    Camera& c = current();
    c.circleView = true;
    c.z = 10;
    circleMove(90, 0, 0);
    EXPECT_NEAR(c.x, 10.0, 1e-4);  // from behind round to the right
    EXPECT_NEAR(c.z, 0.0, 1e-4);
    EXPECT_EQ(c.heading, 0.0f);
    circleMove(0, 2, 0);
    EXPECT_NEAR(c.y, 2.0, 1e-5);
    // Distance runs along the camera's bearing, which tracking keeps on the centre.
    c.heading = 270;
    circleMove(-30, 0, 5);
    EXPECT_NEAR(std::hypot(c.x, c.z), 15.0, 1e-3);

    // Rates on a circle view go through the orbit.
    c.x = 0;
    c.y = 0;
    c.z = 10;
    addRates(180, 0, 0, 0, 0);
    applyMovementRates(&c);
    EXPECT_NEAR(c.z, -10.0, 1e-4);
}

TEST_F(MovementTest, CineflexKeysFollowTheAircraftsHeading) {
    placeAircraft(0, 0, 0, 0, 0, 120);
    current().cineflex = true;
    moveCamera(moveZeroBearing, false);
    EXPECT_FLOAT_EQ(current().heading, 120.0f);
    // A Cineflex camera's keys move relative to the aircraft's heading.
    moveCamera(moveForward, false);
    applyMovementRates(&current());
    EXPECT_NEAR(current().z, -1.0, 1e-5);
}

}  // namespace
