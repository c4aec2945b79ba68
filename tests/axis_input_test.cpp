// Joystick axes through the simulator's joystick datarefs: the mapped path, the raw
// array path of older simulators with its movement gate, null zone, inversion, zoom,
// and how axes become view angles or movement rates.
#include <gtest/gtest.h>

#include "data/settings.h"
#include "host/host.h"
#include "host/joystick.h"
#include "inputs/axis_input.h"
#include "motion/camera_inputs.h"
#include "motion/movement.h"

namespace {

class AxisInputTest : public ::testing::Test {
protected:
    void SetUp() override {
        xphost::reset();
        xphost::setVersion(12100);
        settings() = builtInSettings();
        // A window of one: each read gives the plain value.
        settings().VIEW_AXIS_SMOOTHING_FACTOR = 1;
        axisInput() = AxisInput{};
        resetCameraMotionAxisAssignment();
        resetMovement();
        rescanAxes();
    }

    static float read(int axis) {
        float value = -99;
        EXPECT_TRUE(readAxis(axis, value)) << "axis " << axis;
        return value;
    }
};

TEST_F(AxisInputTest, NullZoneZeroesSmallDeflectionsButNotTheZoom) {
    xphost::setMappedAxis(41, true, 0.02f);
    EXPECT_EQ(read(kAxisViewHeading), 0.0f);
    settings().VIEW_AXIS_HEADING_CENTER = 0.1f;
    xphost::setMappedAxis(41, true, 0.12f);
    EXPECT_EQ(read(kAxisViewHeading), 0.0f) << "the zone lies around the calibrated centre";
    xphost::setMappedAxis(41, true, 0.2f);
    EXPECT_FLOAT_EQ(read(kAxisViewHeading), 0.1f);

    // Camera axes come as 0..1 and are doubled about the middle.
    xphost::setMappedAxis(44, true, 0.51f);
    EXPECT_EQ(read(kAxisCameraLeftRight), 0.0f);
    xphost::setMappedAxis(44, true, 0.6f);
    EXPECT_NEAR(read(kAxisCameraLeftRight), 0.2f, 1e-6);

    xphost::setMappedAxis(43, true, 0.99f);
    EXPECT_NEAR(read(kAxisViewZoom), 0.01f, 1e-6);

    float value = 5;
    EXPECT_FALSE(readAxis(kAxisViewPitch, value));
    EXPECT_EQ(value, 0.0f);
}

TEST_F(AxisInputTest, NegativeAssignmentInvertsAndOnlyMinusFiveToFiveAreTaken) {
    xphost::setMappedAxis(42, true, 0.3f);
    EXPECT_FLOAT_EQ(read(kAxisViewPitch), 0.3f);
    EXPECT_FLOAT_EQ(read(-kAxisViewPitch), -0.3f);

    EXPECT_TRUE(setCameraMotionAxisAssignment(0, -1));
    EXPECT_FALSE(setCameraMotionAxisAssignment(0, 7));
    EXPECT_FALSE(setCameraMotionAxisAssignment(6, 1));
    EXPECT_EQ(axisInput().cameraMotionAxisAssignment[0], -1);
    Camera camera{};
    camera.viewAxis = true;
    CameraPose pose;
    applyViewAxes(pose, camera);
    EXPECT_FLOAT_EQ(pose.heading, -54.0f) << "heading served by the pitch axis, inverted";
    EXPECT_FLOAT_EQ(pose.pitch, 54.0f);

    EXPECT_TRUE(setCameraMotionAxisAssignment(3, -5));
    resetCameraMotionAxisAssignment();
    for (int i = 0; i < kAxisCount; ++i) EXPECT_EQ(axisInput().cameraMotionAxisAssignment[i], i);
}

TEST_F(AxisInputTest, OlderSimulatorsReadCameraAxesFromTheRawArraysOnceMoved) {
    xphost::setVersion(10500);
    xphost::setRawAxis(7, 45, 0.5f, 0.0f, 1.0f, 0);
    xphost::setRawAxis(9, 44, 0.9f, 0.3f, 0.6f, 0);  // span too small to be calibrated
    rescanAxes();
    float value;
    EXPECT_FALSE(readAxis(kAxisCameraUpDown, value));
    xphost::setRawAxisValue(7, 0.515f);
    EXPECT_FALSE(readAxis(kAxisCameraUpDown, value)) << "inside the 0.02 gate";
    xphost::setRawAxisValue(7, 0.53f);
    EXPECT_NEAR(read(kAxisCameraUpDown), 0.06f, 1e-6);
    xphost::setRawAxisValue(7, 0.51f);
    EXPECT_EQ(read(kAxisCameraUpDown), 0.0f) << "once moved it reads, through the null zone";
    // The reverse flag is read again at each reading.
    xphost::setRawAxis(7, 45, 0.6f, 0.0f, 1.0f, 1);
    EXPECT_NEAR(read(kAxisCameraUpDown), -0.2f, 1e-6);
    xphost::setRawAxisValue(9, 0.1f);
    EXPECT_FALSE(readAxis(kAxisCameraLeftRight, value));
    // A new scan forgets the movement.
    rescanAxes();
    EXPECT_FALSE(readAxis(kAxisCameraUpDown, value));

    // Before version 10000 the view axes sat one slot lower.
    xphost::setVersion(9500);
    xphost::setMappedAxis(40, true, 0.4f);
    rescanAxes();
    EXPECT_FLOAT_EQ(read(kAxisViewHeading), 0.4f);

    // From 11000 the raw arrays are not looked at.
    xphost::setVersion(11000);
    rescanAxes();
    xphost::setRawAxisValue(7, 0.9f);
    EXPECT_FALSE(readAxis(kAxisCameraUpDown, value));
}

TEST_F(AxisInputTest, ZoomComesFromTheZoomAxis) {
    float zoom = 0;
    EXPECT_FALSE(axisZoom(zoom));
    xphost::setMappedAxis(43, true, 0.0f);
    ASSERT_TRUE(axisZoom(zoom));
    EXPECT_NEAR(zoom, 115.59f, 0.01f);
    xphost::setMappedAxis(43, true, 1.0f);
    ASSERT_TRUE(axisZoom(zoom));
    EXPECT_FLOAT_EQ(zoom, 1.0f);
    axisInput().calibrating = true;
    EXPECT_FALSE(axisZoom(zoom));
}

TEST_F(AxisInputTest, AxesBecomeRatesAlongTheCameraDirection) {
    settings().MEDIUM_MOVEMENT_SPEED = 0.01f;
    settings().MEDIUM_ROTATION_SPEED = 2.0f;
    Camera camera{};
    camera.cameraAxis = true;
    camera.heading = 90;
    xphost::setMappedAxis(46, true, 1.0f);  // forward/back full
    xphost::setMappedAxis(41, true, 0.5f);  // view heading half
    applyAxisMotion(camera);
    MovementState& m = movementState();
    EXPECT_NEAR(m.rateX, -0.025f, 1e-6);
    EXPECT_NEAR(m.rateZ, 0.0f, 1e-6);
    EXPECT_FLOAT_EQ(m.rateHeading, 1.0f) << "without view axis input the heading axis turns";

    // A circle view with view axis input: the heading axis moves the camera sideways,
    // unrotated, and the view doesn't turn.
    resetMovement();
    Camera circle{};
    circle.circleView = true;
    circle.viewAxis = true;
    circle.heading = 90;
    xphost::setMappedAxis(46, false, 0.0f);
    CameraPose pose;
    applyViewAxes(pose, circle);
    EXPECT_EQ(pose.heading, 0.0f);
    EXPECT_NEAR(movementState().rateX, 0.5f * 0.01f * 2.5f, 1e-6);
    EXPECT_EQ(movementState().rateHeading, 0.0f);

    resetMovement();
    axisInput().calibrating = true;
    applyAxisMotion(camera);
    EXPECT_EQ(movementState().rateHeading, 0.0f);
}

}  // namespace
