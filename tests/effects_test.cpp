// The order in which inputs and effects reach a pose, with the outside plug-ins as the
// simulator presents them: HeadShake's datarefs and XP-Realistic writing the
// integration datarefs.
#include <gtest/gtest.h>

#include "data/settings.h"
#include "host/host.h"
#include "host/joystick.h"
#include "host/outside_plugins.h"
#include "inputs/axis_input.h"
#include "inputs/effects.h"
#include "inputs/trackir.h"
#include "motion/camera_inputs.h"
#include "motion/mouse_look.h"
#include "motion/movement.h"
#include "shell/integration_datarefs.h"

namespace {

class EffectsTest : public ::testing::Test {
protected:
    void SetUp() override {
        xphost::reset();
        settings() = builtInSettings();
        settings().VIEW_AXIS_SMOOTHING_FACTOR = 1;
        integrationValues() = IntegrationValues{};
        headShakeLink() = HeadShakeLink{};
        trackIrClient() = TrackIrClient();
        axisInput() = AxisInput{};
        resetCameraMotionAxisAssignment();
        resetMovement();
        resetMouseState();
    }
    void TearDown() override { unpublishIntegrationDatarefs(); }
};

TEST_F(EffectsTest, LimitsHoldTheHeadWhileHeadShakeCarriesItPast) {
    xphost::installHeadShake();
    xphost::setHeadShakeOffsets(0.2f, 0, 0, 3, 0, 0);
    headShakeOverride(true);
    EXPECT_EQ(xphost::headShakeOverrideValue(), 1);
    EXPECT_NE(xphost::logText().find("HeadShake was found and will be enabled"), std::string::npos);

    Camera camera{};
    camera.trackIrEnabled = true;
    camera.limitTrackIr = true;
    camera.headShake = true;
    camera.trackIrMin = CameraPose{};
    camera.trackIrMin.x = camera.trackIrMin.y = camera.trackIrMin.z = -1;
    camera.trackIrMax.x = 0.5f;
    camera.trackIrMax.y = camera.trackIrMax.z = 1;
    integrationValues().headtrackingPresent = 1;
    integrationValues().headtrackingXOffset = 5.0f;

    CameraPose pose;
    applyCameraInputs(&camera, pose);
    EXPECT_FLOAT_EQ(currentHeadPose().x, 0.5f);
    EXPECT_FLOAT_EQ(pose.x, 0.7f);
    EXPECT_FLOAT_EQ(pose.heading, 3.0f);
    EXPECT_EQ(integrationValues().vistarigEnabled, 2);

    headShakeOverride(false);
    EXPECT_EQ(xphost::headShakeOverrideValue(), 0);
}

TEST_F(EffectsTest, WithoutHeadShakeTheFlagDoesNothing) {
    Camera camera{};
    camera.headShake = true;
    CameraPose pose;
    applyCameraInputs(&camera, pose);
    EXPECT_EQ(pose.x, 0.0f);
    EXPECT_FALSE(headShakeAvailable());
    EXPECT_NE(xphost::logText().find("Vistarig: HeadShake not found"), std::string::npos);
    EXPECT_EQ(integrationValues().vistarigEnabled, 1);
    // The look-up isn't repeated, even once the plug-in turns up.
    xphost::installHeadShake();
    EXPECT_FALSE(headShakeAvailable());
}

TEST_F(EffectsTest, XpRealisticOffsetsReachOnlyCamerasThatTakeThem) {
    publishIntegrationDatarefs();
    integrationValues().xOffset = 1.0f;
    Camera camera{};
    camera.xpRealistic = true;
    CameraPose pose;
    applyCameraInputs(&camera, pose);
    EXPECT_EQ(pose.x, 0.0f) << "XP-Realistic hasn't said it is there";

    xphost::installXpRealistic();
    xphost::setXpRealisticOffsets(0.1f, 0.2f, 0.3f, 4, 5, 6);
    xphost::runFrames(1);
    ASSERT_EQ(integrationValues().xpRealisticPresent, 1);
    pose = CameraPose();
    applyCameraInputs(&camera, pose);
    EXPECT_FLOAT_EQ(pose.x, 0.1f);
    EXPECT_FLOAT_EQ(pose.z, 0.3f);
    EXPECT_FLOAT_EQ(pose.pitch, 4.0f);
    EXPECT_FLOAT_EQ(pose.heading, 5.0f);
    EXPECT_FLOAT_EQ(pose.roll, 6.0f);

    // RealView shares the one set of offsets but needs its own presence flag.
    Camera realView{};
    realView.realView = true;
    pose = CameraPose();
    applyCameraInputs(&realView, pose);
    EXPECT_EQ(pose.x, 0.0f);
    integrationValues().realViewPresent = 1;
    applyCameraInputs(&realView, pose);
    EXPECT_FLOAT_EQ(pose.y, 0.2f);
}

TEST_F(EffectsTest, ViewAxesApplyWhenNoTrackerTakesTheCamera) {
    xphost::setMappedAxis(41, true, 0.5f);
    Camera camera{};
    camera.viewAxis = true;
    camera.trackIrEnabled = true;  // but no tracker runs
    CameraPose pose;
    applyCameraInputs(&camera, pose);
    EXPECT_FLOAT_EQ(pose.heading, 90.0f);
    camera.viewAxis = false;
    pose = CameraPose();
    applyCameraInputs(&camera, pose);
    EXPECT_EQ(pose.heading, 0.0f);
}

}  // namespace
