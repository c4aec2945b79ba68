// The mouse through the simulator's own input path (the host routes presses, drags
// and the wheel to the plug-in's full-screen window): mouse look and its endings, the
// middle button's behaviours, the wheel, the mouse move commands and circle view.
#include <cmath>

#include "commands_and_mouse_fixture.h"
#include "host/mouse.h"
#include "host/windows.h"
#include "motion/mouse_look.h"
#include "motion/movement.h"
#include "motion/transitions.h"
#include "shell/command_table.h"

namespace {

constexpr int kCentreX = 960, kCentreY = 540;
constexpr float kDegreesPerPixelX = 360.0f / 1920.0f;

void rightDown() { xphost::mouseButton(1, 1, xphost::mouseX(), xphost::mouseY()); }
void rightUp() { xphost::mouseButton(1, 3, xphost::mouseX(), xphost::mouseY()); }
void rightClick() {
    rightDown();
    rightUp();
}

class MouseLookTest : public PluginWithCameras {
protected:
    void SetUp() override {
        PluginWithCameras::SetUp();
        loadAircraftWithCameras();
        xphost::mouseMove(kCentreX, kCentreY);
        xphost::runFrames(1);
    }

    // Right button down, 100 pixels to the right, up: the frames between let the
    // frame driver see the gesture start, run and end.
    void lookRightBy100() {
        rightDown();
        xphost::runFrames(1);
        xphost::mouseMove(kCentreX + 100, kCentreY);
        xphost::runFrames(2);
        ASSERT_TRUE(mouseState().mouseLookActive);
        ASSERT_EQ(mouseState().lookOffsetX, 100);
        rightUp();
        xphost::runFrames(1);
    }
};

TEST_F(MouseLookTest, TheInputWindowCoversTheScreenForHostEnableOnly) {
    int ours = 0;
    for (const xphost::WindowInfo& w : xphost::windows()) {
        if (w.id != mouseState().inputWindow) continue;
        ++ours;
        EXPECT_EQ(w.left, 0);
        EXPECT_EQ(w.bottom, 0);
        EXPECT_EQ(w.right, 1920);
        EXPECT_EQ(w.top, 1080);
        EXPECT_TRUE(w.visible);
        EXPECT_EQ(w.decoration, 0);
    }
    EXPECT_EQ(ours, 1);
    void* window = mouseState().inputWindow;
    xphost::disablePlugin(plugin);
    EXPECT_EQ(mouseState().inputWindow, nullptr);
    for (const xphost::WindowInfo& w : xphost::windows()) EXPECT_NE(w.id, window);
}

TEST_F(MouseLookTest, EndingsSnapBackRetainOrGlideBack) {
    Camera& c = *currentCamera();
    c.retainMouseLook = false;
    c.smoothTransition = false;
    const float heading = c.heading;

    // Neither flag: the view snaps back and the camera keeps its direction.
    lookRightBy100();
    EXPECT_FALSE(mouseState().mouseLookActive);
    EXPECT_FLOAT_EQ(c.heading, heading);
    EXPECT_FALSE(transitionRunning());

    // Retained: the offset becomes the camera's.
    c.retainMouseLook = true;
    xphost::mouseMove(kCentreX, kCentreY);
    lookRightBy100();
    EXPECT_NEAR(c.heading, heading + 100 * kDegreesPerPixelX, 1e-4);
    EXPECT_FALSE(transitionRunning());

    // Smooth: the camera stays, and the view glides back from where it looked.
    c.retainMouseLook = false;
    c.smoothTransition = true;
    const float now = c.heading;
    xphost::mouseMove(kCentreX, kCentreY);
    lookRightBy100();
    EXPECT_FLOAT_EQ(c.heading, now);
    EXPECT_TRUE(transitionRunning());
}

TEST_F(MouseLookTest, AGestureEndingDuringATransitionLeavesNothing) {
    Camera& c = *currentCamera();
    c.retainMouseLook = true;
    c.smoothTransition = true;
    c.transitionSeconds = 2.0f;
    const float heading = c.heading;
    rightDown();
    xphost::runFrames(1);
    xphost::mouseMove(kCentreX + 200, kCentreY);
    xphost::runFrames(1);
    startReturnTransition();
    ASSERT_TRUE(transitionRunning());
    rightUp();
    xphost::runFrames(1);
    EXPECT_FALSE(mouseState().mouseLookActive);
    EXPECT_TRUE(transitionRunning());
    EXPECT_FLOAT_EQ(c.heading, heading);
}

TEST_F(MouseLookTest, ARightPressOnTheSimulatorsOwnViewIsNotTaken) {
    xphost::forceValue("sim/graphics/view/view_type", xphost::viewChase);
    xphost::runFrames(1);
    rightDown();
    xphost::runFrames(2);
    EXPECT_FALSE(mouseState().rightButtonHeld);
    EXPECT_FALSE(mouseState().mouseLookActive);
    rightUp();
}

TEST_F(MouseLookTest, MiddleButtonBehaviours) {
    Camera& c = *currentCamera();
    // 0: the middle button looks; the toggle keeps the gesture running until given again.
    xphost::pressMouseButton(xphost::MouseButton::Middle);
    xphost::runFrames(2);
    EXPECT_TRUE(mouseState().mouseLookActive);
    xphost::releaseMouseButton(xphost::MouseButton::Middle);
    xphost::runFrames(1);
    EXPECT_FALSE(mouseState().mouseLookActive);
    runCommandRow(kRowToggleMouseLook);
    xphost::runFrames(5);
    EXPECT_TRUE(mouseState().mouseLookActive);
    runCommandRow(kRowToggleMouseLook);
    xphost::runFrames(1);
    EXPECT_FALSE(mouseState().mouseLookActive);

    // 1: each press flips the zoom lock once, however long it is held, and doesn't look.
    settings().MIDDLE_MOUSE_BEHAVIOR = 1;
    const bool lock = c.disable3dCockpitZoom;
    xphost::runCommand("KVT/Vistarig/Simulate_Middle_Mouse_Button", xphost::Phase::Begin);
    xphost::runFrames(6);
    EXPECT_NE(c.disable3dCockpitZoom, lock);
    EXPECT_FALSE(mouseState().mouseLookActive);
    xphost::runCommand("KVT/Vistarig/Simulate_Middle_Mouse_Button", xphost::Phase::End);
    xphost::runFrames(1);
    xphost::pressMouseButton(xphost::MouseButton::Middle);
    xphost::runFrames(3);
    xphost::releaseMouseButton(xphost::MouseButton::Middle);
    xphost::runFrames(1);
    EXPECT_EQ(c.disable3dCockpitZoom, lock);

    // 2: the middle button and the toggle do nothing; the right button still looks.
    settings().MIDDLE_MOUSE_BEHAVIOR = 2;
    runCommandRow(kRowToggleMouseLook);
    xphost::runFrames(2);
    EXPECT_FALSE(mouseState().mouseLookActive);
    EXPECT_EQ(c.disable3dCockpitZoom, lock);
    rightDown();
    xphost::runFrames(1);
    EXPECT_TRUE(mouseState().mouseLookActive);
    rightUp();
}

TEST_F(MouseLookTest, TheWheelZoomsOutsideCamerasOnlyAndNeverBelowOne) {
    Camera& cockpit = *currentCamera();
    const float cockpitZoom = cockpit.currentZoom;
    xphost::wheel(kCentreX, kCentreY, 3);
    EXPECT_FLOAT_EQ(cockpit.currentZoom, cockpitZoom);

    selectOutsideCamera(0);
    Camera& c = *currentCamera();
    c.currentZoom = 1.0f;
    xphost::wheel(kCentreX, kCentreY, 2);
    EXPECT_FLOAT_EQ(c.currentZoom, 1.1f);
    xphost::wheel(kCentreX, kCentreY, -10);
    EXPECT_FLOAT_EQ(c.currentZoom, 1.0f);
    c.disable3dCockpitZoom = true;
    xphost::wheel(kCentreX, kCentreY, 4);
    EXPECT_FLOAT_EQ(c.currentZoom, 1.0f);
}

TEST_F(MouseLookTest, CircleViewWheelMovesTowardsTheCentreUnlessItZooms) {
    camera(1, 1).circleView = true;
    selectOutsideCamera(1);
    Camera& c = *currentCamera();
    c.currentZoom = 1.0f;
    xphost::wheel(kCentreX, kCentreY, 1);
    EXPECT_FLOAT_EQ(c.currentZoom, 1.0f);
    EXPECT_NE(movementState().rateZ, 0.0f);

    settings().CIRCLE_VIEW_WHEEL_ZOOM = true;
    xphost::wheel(kCentreX, kCentreY, 1);
    EXPECT_FLOAT_EQ(c.currentZoom, 1.05f);
}

TEST_F(MouseLookTest, CircleViewClickCirclesWithoutAButtonAndADragOnlyWhileHeld) {
    camera(1, 1).circleView = true;
    selectOutsideCamera(1);
    Camera& c = *currentCamera();
    const float radius = std::hypot(c.x, c.z);
    auto bearing = [&] { return std::atan2(c.x, -c.z) * 57.29578f; };

    // A click without a drag starts the continuous mode.
    rightClick();
    EXPECT_TRUE(mouseState().circleContinuous);
    EXPECT_FALSE(mouseState().rightButtonHeld);
    float before = bearing();
    xphost::mouseMove(kCentreX + 50, kCentreY);
    xphost::runFrames(2);
    // 0.1 degree a pixel at the medium rotation speed.
    EXPECT_NEAR(std::fabs(bearing() - before), 5.0f, 0.01f);
    EXPECT_NEAR(std::hypot(c.x, c.z), radius, 1e-3);

    // A second click ends it.
    rightClick();
    EXPECT_FALSE(mouseState().circleContinuous);
    before = bearing();
    xphost::mouseMove(kCentreX + 150, kCentreY);
    xphost::runFrames(2);
    EXPECT_FLOAT_EQ(bearing(), before);

    // A drag circles while the button is held, and not after.
    rightDown();
    for (int step = 1; step <= 5; ++step) {
        xphost::mouseMove(kCentreX + 150 - 10 * step, kCentreY);
        xphost::runFrames(1);
    }
    // The drag follows the filtered mouse, which the window reads once a frame.
    xphost::runFrames(1);
    rightUp();
    EXPECT_FALSE(mouseState().circleContinuous);
    EXPECT_NEAR(std::fabs(bearing() - before), 5.0f, 0.01f);
    before = bearing();
    xphost::mouseMove(kCentreX + 300, kCentreY);
    xphost::runFrames(2);
    EXPECT_FLOAT_EQ(bearing(), before);
}

TEST_F(MouseLookTest, MouseMoveCommandsDragTheCameraUntilTheirEnd) {
    Camera& c = *currentCamera();
    c.heading = 0;
    c.pitch = 0;
    const float x0 = c.x, y0 = c.y;
    xphost::runCommand("KVT/Vistarig/MouseMove_X_Y", xphost::Phase::Begin);
    xphost::mouseMove(kCentreX + 100, kCentreY + 40);
    xphost::runFrames(1);
    // A hundred pixels at the medium movement speed of 0.005 metres a pixel.
    EXPECT_NEAR(c.x - x0, 0.5f, 1e-4);
    EXPECT_NEAR(c.y - y0, 0.2f, 1e-4);
    xphost::runCommand("KVT/Vistarig/MouseMove_X_Y", xphost::Phase::End);
    xphost::mouseMove(kCentreX, kCentreY);
    xphost::runFrames(2);
    EXPECT_NEAR(c.x - x0, 0.5f, 1e-4);

    xphost::runCommand("KVT/Vistarig/MouseMove_Heading_Pitch", xphost::Phase::Begin);
    xphost::mouseMove(kCentreX + 100, kCentreY);
    xphost::runFrames(1);
    xphost::runCommand("KVT/Vistarig/MouseMove_Heading_Pitch", xphost::Phase::End);
    EXPECT_NEAR(c.heading, 100 * kDegreesPerPixelX, 1e-4);

    selectOutsideCamera(0);
    Camera& outside = *currentCamera();
    outside.currentZoom = 1.0f;
    xphost::runCommand("KVT/Vistarig/MouseMove_Zoom", xphost::Phase::Begin);
    xphost::mouseMove(kCentreX + 100, kCentreY + 50);
    xphost::runFrames(1);
    EXPECT_NEAR(outside.currentZoom, 1.5f, 1e-4);
    xphost::mouseMove(kCentreX + 100, kCentreY - 500);
    xphost::runFrames(1);
    EXPECT_FLOAT_EQ(outside.currentZoom, 1.0f);
    xphost::runCommand("KVT/Vistarig/MouseMove_Zoom", xphost::Phase::End);
}

TEST_F(MouseLookTest, InWalkModeTheMouseSetsTheSpeedAtAThousandth) {
    Camera& c = *currentCamera();
    c.heading = 0;
    c.pitch = 0;
    runCommandRow(kRowToggleWalkMode);
    ASSERT_TRUE(movementState().walkMode);
    xphost::runCommand("KVT/Vistarig/MouseMove_X_Y", xphost::Phase::Begin);
    xphost::mouseMove(kCentreX + 100, kCentreY);
    // The rate lands in the frame; no jump of the camera itself.
    const float x0 = c.x;
    applyMouseMove(&c);
    EXPECT_FLOAT_EQ(c.x, x0);
    EXPECT_NEAR(movementState().rateX, 100 * 0.005f / 1000.0f, 1e-7);
    xphost::runCommand("KVT/Vistarig/MouseMove_X_Y", xphost::Phase::End);
}

}  // namespace
