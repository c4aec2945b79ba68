// What the lower layers hand to the higher ones: the camera data's events reach the
// frame driver only while it is subscribed, and an input's offsets change only the
// fields it set, bit for bit.
#include <gtest/gtest.h>

#include <cmath>

#include "data/events.h"
#include "motion/camera_inputs.h"
#include "motion_fixture.h"

namespace {

class DataEventsTest : public MotionTest {};

TEST_F(DataEventsTest, SelectionAndRestoreReachTheFrameDriverOnlyWhileSubscribed) {
    buildCategory(3);
    selectCamera(1);
    EXPECT_TRUE(frameDriver().selectionChanged);

    // Reselecting a camera with temporary positioning sends it home, gliding from where it stood.
    cam(1).temporaryPositioning = true;
    cam(1).smoothTransition = true;
    cam(1).x = 7;
    refreshHomePose(&cam(1));
    cam(1).x = 9;
    selectCamera(1);
    EXPECT_TRUE(frameDriver().restorePending);
    EXPECT_EQ(frameDriver().restoreSnapshot.x, 9.0f);
    EXPECT_EQ(cam(1).x, 7.0f);

    closeFrameDriver();
    frameDriver().selectionChanged = false;
    frameDriver().restorePending = false;
    cam(2).temporaryPositioning = true;
    cam(2).smoothTransition = true;
    selectCamera(2);
    selectCamera(2);
    EXPECT_FALSE(frameDriver().selectionChanged) << "no subscriber, no event";
    EXPECT_FALSE(frameDriver().restorePending);

    initFrameDriver();
    selectCamera(0);
    EXPECT_TRUE(frameDriver().selectionChanged);
}

TEST(PoseOffsetsTest, OnlyTheFieldsAnInputSetAreAdded) {
    CameraPose pose;
    pose.x = -0.0f;
    pose.heading = 350.0f;
    pose.pitch = 10.0f;
    addOffsets(pose, PoseOffsets{});
    EXPECT_TRUE(std::signbit(pose.x)) << "an input with nothing leaves even a negative zero";

    PoseOffsets turn;
    turn.setHeading(20.0f);
    turn.setPitch(-20.0f);
    CameraPose summed = pose;
    addOffsets(summed, turn);
    EXPECT_EQ(summed.heading, 370.0f);
    EXPECT_EQ(summed.pitch, -10.0f);
    EXPECT_TRUE(std::signbit(summed.x));

    turn.wrapsAngles = true;  // mouse look keeps its angles in range
    addOffsets(pose, turn);
    EXPECT_EQ(pose.heading, 10.0f);
    EXPECT_EQ(pose.pitch, 350.0f);
}

}  // namespace
