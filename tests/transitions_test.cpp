// Transitions: frame counts, the sine-eased and linear legs, the short way round,
// delays, chains that move the selection along, Bezier curves against de Casteljau's
// construction, and the rounding of chain corners.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <vector>

#include "motion_fixture.h"
#include "shell/host_interface.h"

namespace {

std::vector<CameraPose> poses(const TransitionFrame* head) {
    std::vector<CameraPose> out;
    for (; head; head = head->next) out.push_back(head->pose);
    return out;
}

void place(Camera& c, float x, float y, float z, float heading = 0) {
    c.x = x;
    c.y = y;
    c.z = z;
    c.heading = heading;
}

class TransitionsTest : public MotionTest {
protected:
    TransitionFrame* list = nullptr;
    void TearDown() override {
        freeTransitionList(list);
        MotionTest::TearDown();
    }
    TransitionFrame* build(Camera& from, Camera& to) {
        freeTransitionList(list);
        list = buildTransition(&from, &to);
        return list;
    }
};

TEST_F(TransitionsTest, FrameCountFollowsSecondsAndFrameRate) {
    buildCategory(2);
    cam(1).linearTransition = true;
    cam(1).transitionSeconds = 2.0f;
    place(cam(1), 10, 0, 0);
    setFrameRate(30);
    EXPECT_EQ(transitionLength(build(cam(0), cam(1))), 61);  // head frame + 60
    setFrameRate(45);
    EXPECT_EQ(transitionLength(build(cam(0), cam(1))), 91);

    // Without seconds the camera's own frame count applies; linear steps are even.
    cam(1).transitionSeconds = 0;
    cam(1).linearTransitionFrames = 4;
    std::vector<CameraPose> p = poses(build(cam(0), cam(1)));
    ASSERT_EQ(p.size(), 5u);
    for (int i = 0; i < 5; ++i) EXPECT_NEAR(p[i].x, 2.5f * i, 1e-5);
}

TEST_F(TransitionsTest, PlainSmoothTakesFifteenEasedFrames) {
    buildCategory(2);
    cam(1).smoothTransition = true;
    place(cam(1), 30, -6, 12);
    for (float fps : {20.0f, 60.0f}) {
        setFrameRate(fps);
        std::vector<CameraPose> p = poses(build(cam(0), cam(1)));
        ASSERT_EQ(p.size(), 16u);
        EXPECT_NEAR(p.back().x, 30.0, 1e-4);
        EXPECT_NEAR(p.back().y, -6.0, 1e-4);
        EXPECT_NEAR(p.back().z, 12.0, 1e-4);
        // Slow at both ends, fastest in the middle.
        float first = p[1].x - p[0].x, middle = p[8].x - p[7].x, last = p[15].x - p[14].x;
        EXPECT_LT(first, middle);
        EXPECT_LT(last, first);
    }
    // One frame lands on the end pose.
    cam(1).linearTransitionFrames = 1;
    std::vector<CameraPose> one = poses(build(cam(0), cam(1)));
    ASSERT_EQ(one.size(), 2u);
    EXPECT_NEAR(one[1].x, 30.0, 1e-5);
}

TEST_F(TransitionsTest, AnglesGoTheShortWayRound) {
    buildCategory(2);
    cam(1).linearTransition = true;
    cam(1).linearTransitionFrames = 8;
    cam(0).heading = 350;
    cam(1).heading = 10;
    cam(0).roll = 20;
    cam(1).roll = 340;
    for (const CameraPose& p : poses(build(cam(0), cam(1)))) {
        EXPECT_TRUE(p.heading >= 350.0f || p.heading <= 10.0f) << p.heading;
        EXPECT_TRUE(p.roll <= 20.0f || p.roll >= 340.0f) << p.roll;
        EXPECT_GE(p.heading, 0.0f);
        EXPECT_LT(p.heading, 360.0f);
    }
    // Exactly 180 keeps the plain difference's direction.
    EXPECT_FLOAT_EQ(signedDifference(0, 180), 180.0f);
    EXPECT_FLOAT_EQ(signedDifference(180, 0), -180.0f);
    EXPECT_FLOAT_EQ(signedDifference(10, 200), -170.0f);
    cam(0).heading = 0;
    cam(1).heading = 180;
    std::vector<CameraPose> p = poses(build(cam(0), cam(1)));
    EXPECT_NEAR(p[1].heading, 22.5, 1e-4);
}

TEST_F(TransitionsTest, JumpsKeepTheirDelay) {
    buildCategory(2);
    place(cam(1), 5, 6, 7);
    cam(1).linearTransition = true;  // no frames and no seconds: a jump
    cam(1).transitionDelay = 1.5f;
    cam(1).autoAdvance = true;
    TransitionFrame* head = build(cam(0), cam(1));
    ASSERT_EQ(transitionLength(head), 1);
    EXPECT_FLOAT_EQ(head->pose.x, 5.0f);
    EXPECT_FLOAT_EQ(head->delay, 1.5f);
    EXPECT_EQ(head->camera, &cam(1));
}

TEST_F(TransitionsTest, DelayHoldsTheViewThenMoves) {
    buildCategory(2);
    cam(1).linearTransition = true;
    cam(1).linearTransitionFrames = 3;
    cam(1).transitionDelay = 3.0f;
    place(cam(0), 1, 1, 1);
    place(cam(1), 4, 1, 1);
    selectCameraRecord(&cam(1));
    transitionState().transitionHead = buildTransition(&cam(0), &cam(1));

    FrameDriver& d = frameDriver();
    d.shownPose = cameraPose(&cam(0));  // the last pose of the old camera
    Camera* current = &cam(1);
    // Frames of a tenth of a second: the delay counts the simulator's time, so it
    // holds exactly thirty of them.
    int held = 0;
    for (; held < 100 && transitionLength(transitionState().transitionHead) == 4; ++held) {
        advanceSimulatorClock(0.1f);
        stepTransition(current);
        if (transitionLength(transitionState().transitionHead) == 4) {
            EXPECT_FLOAT_EQ(d.framePose.x, 1.0f);
        }
        if (held == 4) {
            EXPECT_NEAR(delaySecondsLeft(), 2.6f, 1e-3);
        }
    }
    EXPECT_EQ(held, 31);  // 30 held, then the head frame in the frame the delay ran out
    EXPECT_EQ(transitionState().delayEndTime, 0);
    EXPECT_FLOAT_EQ(d.framePose.x, 1.0f);
    std::vector<float> seen;
    while (transitionRunning()) {
        stepTransition(current);
        seen.push_back(d.framePose.x);
    }
    EXPECT_EQ(seen, (std::vector<float>{2, 3, 4}));
}

// Control of the simulator's camera turns stale after half a second of the
// simulator's time without a camera callback: fifteen frames at 30 a second are not
// yet too long, the sixteenth is.
TEST_F(TransitionsTest, StaleControlCountsTheSimulatorsTime) {
    FrameDriver& d = frameDriver();
    d.cameraControlled = true;
    d.lastCallbackTime = simulatorSeconds();
    for (int frame = 0; frame < 15; ++frame) {
        advanceSimulatorClock(1.0f / 30.0f);
        EXPECT_FALSE(cameraControlStale()) << frame;
    }
    advanceSimulatorClock(1.0f / 30.0f);
    EXPECT_TRUE(cameraControlStale());
    d.cameraControlled = false;
    EXPECT_FALSE(cameraControlStale());
}

TEST_F(TransitionsTest, ChainMovesTheSelectionAlong) {
    buildCategory(3);
    for (int i = 1; i < 3; ++i) {
        cam(i).linearTransition = true;
        cam(i).linearTransitionFrames = 4;
    }
    cam(1).autoAdvance = true;
    cam(2).transitionDelay = 0.5f;
    place(cam(0), 0, 0, 0);
    place(cam(1), 4, 0, 0);
    place(cam(2), 4, 0, 8);
    TransitionFrame* head = build(cam(0), cam(1));
    std::vector<CameraPose> p = poses(head);
    ASSERT_EQ(p.size(), 9u);  // 1 + 4 + 4: the second leg's head repeats the corner
    EXPECT_FLOAT_EQ(p[4].x, 4.0f);
    EXPECT_FLOAT_EQ(p[5].z, 2.0f);
    EXPECT_FLOAT_EQ(p[8].z, 8.0f);
    const TransitionFrame* f = head;
    for (int i = 0; i < 5; ++i, f = f->next) EXPECT_EQ(f->camera, &cam(1));
    EXPECT_EQ(f->camera, &cam(2));
    EXPECT_FLOAT_EQ(f->delay, 0.5f);  // the dropped head's delay moves on

    // Stepping through it: the selection follows the legs.
    selectCameraRecord(&cam(1));
    transitionState().transitionHead = list;
    list = nullptr;
    Camera* current = &cam(1);
    for (int i = 0; i < 4; ++i) stepTransition(current);
    EXPECT_EQ(current, &cam(1));
    stepTransition(current);
    EXPECT_EQ(current, &cam(2));
    EXPECT_EQ(currentCamera(), &cam(2));
    EXPECT_EQ(frameDriver().lastFrameCamera, &cam(2));

    // A ring of auto-advancing cameras runs to the depth limit.
    for (int i = 0; i < 3; ++i) {
        cam(i).autoAdvance = true;
        cam(i).linearTransition = true;
        cam(i).linearTransitionFrames = 2;
        cam(i).transitionDelay = 0;
    }
    EXPECT_EQ(transitionLength(build(cam(0), cam(1))), 1 + 2 * kMaxChainDepth);

    // With the Control Panel open, chains don't start.
    setControlPanelOpen(true);
    EXPECT_EQ(transitionLength(build(cam(0), cam(1))), 3);
    setControlPanelOpen(false);
}

// de Casteljau: repeated linear interpolation of the control polygon.
void deCasteljau(std::vector<std::array<double, 3>> points, double t, double out[3]) {
    for (size_t level = points.size() - 1; level > 0; --level)
        for (size_t i = 0; i < level; ++i)
            for (int k = 0; k < 3; ++k) points[i][k] = (1 - t) * points[i][k] + t * points[i + 1][k];
    for (int k = 0; k < 3; ++k) out[k] = points[0][k];
}

TEST_F(TransitionsTest, BezierFollowsDeCasteljau) {
    buildCategory(5);
    const float xyz[5][3] = {{0, 0, 0}, {100, 20, 0}, {100, 40, -100}, {0, 10, -150}, {-50, 0, -50}};
    for (int i = 0; i < 5; ++i) place(cam(i), xyz[i][0], xyz[i][1], xyz[i][2], 10.0f * i);
    for (int i = 1; i < 5; ++i) {
        cam(i).bezierTransition = true;
        cam(i).autoAdvance = i < 3;
        cam(i).linearTransitionFrames = 12;
    }
    cam(2).linearTransitionFrames = 5;  // a leg is never shorter than 10 frames
    cam(2).transitionDelay = 0.25f;

    TransitionFrame* head = buildBezierTransition(&cam(0), &cam(1));
    ASSERT_NE(head, nullptr);
    std::vector<CameraPose> p = poses(head);
    ASSERT_EQ(p.size(), 12u + 10u + 12u);  // control points 0..3: three legs
    std::vector<std::array<double, 3>> control;
    for (int i = 0; i < 4; ++i) control.push_back({xyz[i][0], xyz[i][1], xyz[i][2]});
    for (size_t i = 0; i < p.size(); ++i) {
        double expected[3];
        deCasteljau(control, double(i) / (p.size() - 1), expected);
        EXPECT_NEAR(p[i].x, expected[0], 1e-3);
        EXPECT_NEAR(p[i].y, expected[1], 1e-3);
        EXPECT_NEAR(p[i].z, expected[2], 1e-3);
    }
    // Orientation passes through each camera at the start of its leg.
    EXPECT_FLOAT_EQ(p[0].heading, 0.0f);
    EXPECT_FLOAT_EQ(p[12].heading, 10.0f);
    EXPECT_FLOAT_EQ(p[22].heading, 20.0f);
    const TransitionFrame* f = head;
    for (int i = 0; i < 12; ++i) f = f->next;
    EXPECT_FLOAT_EQ(f->delay, 0.25f);
    for (f = head; f; f = f->next) EXPECT_EQ(f->camera, &cam(3));  // straight to the end
    freeTransitionList(head);

    // Too few points: a Bezier camera not followed by an advancing Bezier camera.
    cam(1).autoAdvance = false;
    EXPECT_EQ(buildBezierTransition(&cam(0), &cam(1)), nullptr);
}

TEST_F(TransitionsTest, CornersAreRoundedOverAtMostHalfOfEitherLeg) {
    settings().SMOOTH_WINDOW = 60;  // half 30
    buildCategory(3);
    place(cam(0), 0, 0, 0);
    place(cam(1), 100, 0, 0);
    place(cam(2), 100, 0, -100);
    for (int i = 1; i < 3; ++i) {
        cam(i).linearTransition = true;
        cam(i).linearTransitionFrames = 40;
    }
    cam(1).autoAdvance = true;
    std::vector<CameraPose> sharp = poses(build(cam(0), cam(1)));
    cam(1).smoothCameraJoins = true;
    std::vector<CameraPose> round = poses(build(cam(0), cam(1)));
    ASSERT_EQ(sharp.size(), round.size());
    const int corner = 40;  // the last frame of the first leg stands at camera 1
    EXPECT_FLOAT_EQ(sharp[corner].x, 100.0f);
    // Legs of 40 frames narrow the window of 60 to 20 frames each side.
    for (int i = 0; i < int(sharp.size()); ++i) {
        bool inside = i > corner - 20 && i < corner + 20;
        if (!inside) {
            EXPECT_NEAR(round[i].x, sharp[i].x, 1e-3) << i;
            EXPECT_NEAR(round[i].z, sharp[i].z, 1e-3) << i;
        }
    }
    // The corner is cut: the rounded path passes inside the square's corner.
    EXPECT_LT(round[corner].x, 99.0f);
    EXPECT_LT(round[corner].z, -1.0f);

    // A leg of 18 frames leaves less than a Bezier leg's ten frames: no rounding.
    cam(1).linearTransitionFrames = 18;
    std::vector<CameraPose> shortSharp;
    cam(1).smoothCameraJoins = false;
    shortSharp = poses(build(cam(0), cam(1)));
    cam(1).smoothCameraJoins = true;
    std::vector<CameraPose> shortRound = poses(build(cam(0), cam(1)));
    ASSERT_EQ(shortSharp.size(), shortRound.size());
    for (size_t i = 0; i < shortSharp.size(); ++i) EXPECT_FLOAT_EQ(shortRound[i].x, shortSharp[i].x);
}

}  // namespace
