// The interceptors of the simulator's own commands, driven through the simulator's
// command path: what reaches the simulator (its own handling counts a pass) and what
// the cameras do instead.
#include <cmath>

#include "commands_and_mouse_fixture.h"
#include "motion/movement.h"
#include "shell/command_table.h"
#include "shell/sim_commands.h"

namespace {

std::string own(const char* name) { return std::string("KVT/Vistarig/") + name; }

class SimCommandsTest : public PluginWithCameras {
protected:
    // Runs a command once and tells whether the simulator's own handling saw it.
    bool passes(const std::string& name) {
        int before = xphost::simCommandCount(name);
        EXPECT_TRUE(xphost::runCommand(name, xphost::Phase::Once)) << name << " isn't a simulator command";
        return xphost::simCommandCount(name) > before;
    }

    // The cockpit camera looks straight ahead so that forward is -z.
    Camera& levelCockpitCamera() {
        Camera& c = *currentCamera();
        c.heading = 0;
        c.pitch = 0;
        return c;
    }
};

TEST_F(SimCommandsTest, EveryInterceptedCommandExistsInTheSimulatorAndIsTakenWhileOn) {
    loadAircraftWithCameras();
    int found = 0;
    for (int index = 0; index < kSimCommandCount; ++index) found += simCommandHandle(index) != nullptr ? 1 : 0;
    EXPECT_EQ(found, kSimCommandCount);
    EXPECT_STREQ(simCommandName(0), "sim/general/rot_up_slow");
    EXPECT_STREQ(simCommandName(68), "sim/general/hat_switch_up_left");
    EXPECT_STREQ(simCommandName(108), "sim/view/quick_look_19");

    // With the camera level off the interceptors are gone.
    runCommandRow(kRowDisable);
    for (int index = 0; index < kSimCommandCount; ++index) EXPECT_EQ(simCommandHandle(index), nullptr);
    EXPECT_TRUE(passes("sim/general/forward"));
    EXPECT_TRUE(passes("sim/view/back"));
}

TEST_F(SimCommandsTest, QuickLookTwiceGoesThereAndBack) {
    loadAircraftWithCameras();
    ASSERT_EQ(currentCamera(), &camera(0, 0));
    EXPECT_FALSE(passes("sim/view/quick_look_3"));  // view ID 4
    EXPECT_EQ(currentCamera(), &camera(0, 2));
    xphost::runFrames(2);
    EXPECT_FALSE(passes("sim/view/quick_look_3"));
    EXPECT_EQ(currentCamera(), &camera(0, 0));

    // No camera on view ID 6: the simulator does its own quick look.
    EXPECT_TRUE(passes("sim/view/quick_look_5"));
    EXPECT_EQ(currentCamera(), &camera(0, 0));

    // Storing puts the view ID on the current camera, and recalling then finds it.
    selectCamera(1);
    EXPECT_FALSE(passes("sim/view/quick_look_5_mem"));
    EXPECT_EQ(camera(0, 1).viewId, 6);
    selectCamera(0);
    EXPECT_FALSE(passes("sim/view/quick_look_5"));
    EXPECT_EQ(currentCamera(), &camera(0, 1));
}

TEST_F(SimCommandsTest, WithoutQuickLookEmulationQuickLooksPassAndTheRestStands) {
    loadAircraftWithCameras();
    settings().DISABLE_QUICK_LOOK_EMULATION = true;
    EXPECT_TRUE(passes("sim/view/quick_look_3"));
    EXPECT_TRUE(passes("sim/view/quick_look_3_mem"));
    EXPECT_EQ(currentCamera(), &camera(0, 0));
    EXPECT_NE(camera(0, 0).viewId, 4);
    EXPECT_FALSE(passes("sim/view/back"));
    EXPECT_FLOAT_EQ(currentCamera()->heading, 180.0f);
}

TEST_F(SimCommandsTest, HeldMovementKeyStepsOnceWaitsTenFramesThenRepeats) {
    loadAircraftWithCameras();
    Camera& c = levelCockpitCamera();
    float z0 = c.z;
    float m = movementStep();
    auto steps = [&] { return static_cast<int>(std::lround((z0 - c.z) / m)); };

    ASSERT_TRUE(xphost::runCommand("sim/general/forward", xphost::Phase::Begin));
    xphost::runFrames(10);  // ten continue phases, all swallowed
    EXPECT_EQ(steps(), 1);
    xphost::runFrames(1);
    EXPECT_EQ(steps(), 2);
    xphost::runFrames(5);
    EXPECT_EQ(steps(), 7);
    xphost::runCommand("sim/general/forward", xphost::Phase::End);
    xphost::runFrames(5);
    EXPECT_EQ(steps(), 7);
    EXPECT_EQ(xphost::simCommandCount("sim/general/forward"), 0);

    // A second press starts the gate again.
    xphost::runCommand("sim/general/forward", xphost::Phase::Begin);
    xphost::runFrames(10);
    xphost::runCommand("sim/general/forward", xphost::Phase::End);
    xphost::runFrames(2);
    EXPECT_EQ(steps(), 8);
}

TEST_F(SimCommandsTest, WalkModeTakesOneStepPerPressAndSwallowsContinuePhases) {
    loadAircraftWithCameras();
    Camera& c = levelCockpitCamera();
    runCommandRow(kRowToggleWalkMode);
    ASSERT_TRUE(movementState().walkMode);
    float m = movementStep();
    xphost::runCommand("sim/general/forward", xphost::Phase::Begin);
    xphost::runFrames(20);
    xphost::runCommand("sim/general/forward", xphost::Phase::End);
    // The walk goes on at one step a frame after the key is up.
    float z1 = c.z;
    xphost::runFrames(4);
    EXPECT_NEAR(z1 - c.z, 4 * m, 1e-5);
}

TEST_F(SimCommandsTest, LockedKeyboardMovesTheCameraOnlyWhileTheControlPanelIsOpen) {
    loadAircraftWithCameras();
    Camera& c = levelCockpitCamera();
    settings().LOCK_KEYBOARD_CONTROL = true;
    float z0 = c.z;
    EXPECT_TRUE(passes("sim/general/forward"));
    xphost::runFrames(2);
    EXPECT_FLOAT_EQ(c.z, z0);
    // Pans aren't movement keys: they still turn the camera.
    EXPECT_FALSE(passes("sim/view/pan_left"));

    setControlPanelOpen(true);
    xphost::runCommand("sim/general/forward", xphost::Phase::Begin);
    xphost::runFrames(2);
    xphost::runCommand("sim/general/forward", xphost::Phase::End);
    EXPECT_EQ(xphost::simCommandCount("sim/general/forward"), 1);
    EXPECT_LT(c.z, z0);
    setControlPanelOpen(false);
}

TEST_F(SimCommandsTest, ViewKeysSetTheStoredDirectionAndForwardAlwaysPasses) {
    loadAircraftWithCameras();
    Camera& c = *currentCamera();
    EXPECT_TRUE(passes("sim/view/forward"));
    xphost::runCommand(own("Select_View_ID_1"), xphost::Phase::Once);
    xphost::runFrames(2);
    c.heading = 10;
    EXPECT_FALSE(passes("sim/view/left_up"));
    EXPECT_FLOAT_EQ(c.heading, 315.0f);
    EXPECT_FLOAT_EQ(c.pitch, 45.0f);
    EXPECT_FALSE(passes("sim/view/straight_down"));
    EXPECT_FLOAT_EQ(c.pitch, 270.0f);
    // A turning key turns once, at its press, by the angle it names; holding it
    // doesn't spin the view.
    c.heading = 300;
    xphost::runCommand("sim/view/right_45", xphost::Phase::Begin);
    EXPECT_FLOAT_EQ(c.heading, 345.0f);
    xphost::runFrames(1);
    EXPECT_FLOAT_EQ(c.heading, 345.0f);
    xphost::runCommand("sim/view/right_45", xphost::Phase::End);
    EXPECT_FLOAT_EQ(c.heading, 345.0f);
    c.heading = 30;
    xphost::runCommand("sim/view/left_135", xphost::Phase::Begin);
    EXPECT_FLOAT_EQ(c.heading, 255.0f);
    EXPECT_EQ(xphost::simCommandCount("sim/view/left_135"), 0);
    xphost::runCommand("sim/view/left_135", xphost::Phase::End);

    // A glance looks aside while held and returns to the heading it left.
    c.heading = 20;
    xphost::runCommand("sim/view/glance_left", xphost::Phase::Begin);
    EXPECT_FLOAT_EQ(c.heading, 290.0f);
    xphost::runFrames(3);
    EXPECT_FLOAT_EQ(c.heading, 290.0f);
    xphost::runCommand("sim/view/glance_left", xphost::Phase::End);
    EXPECT_FLOAT_EQ(c.heading, 20.0f);
}

TEST_F(SimCommandsTest, ZoomKeysWorkOnlyOnOutsideCameras) {
    loadAircraftWithCameras();
    EXPECT_TRUE(passes("sim/general/zoom_in"));
    selectOutsideCamera(0);
    Camera& c = *currentCamera();
    c.currentZoom = 1.0f;
    // A press zooms once, at its begin.
    EXPECT_FALSE(passes("sim/general/zoom_in_fast"));
    EXPECT_FLOAT_EQ(c.currentZoom, 1.1f);
    xphost::runCommand("sim/general/zoom_in_slow", xphost::Phase::Begin);
    EXPECT_FLOAT_EQ(c.currentZoom, 1.125f);
    xphost::runCommand("sim/general/zoom_in_slow", xphost::Phase::End);
    EXPECT_FLOAT_EQ(c.currentZoom, 1.125f);
    for (int i = 0; i < 5; ++i) EXPECT_FALSE(passes("sim/general/zoom_out"));
    EXPECT_FLOAT_EQ(c.currentZoom, 1.0f);
    // The outside camera's movement keys are taken too.
    EXPECT_FALSE(passes("sim/general/up"));
}

TEST_F(SimCommandsTest, SpeedMultipliersFollowTheLastKey) {
    loadAircraftWithCameras();
    float pan = settings().panSpeedFactor, move = settings().movementSpeedFactor;
    passes("sim/general/rot_left_fast");
    EXPECT_FLOAT_EQ(movementState().rotationMultiplier, pan);
    passes("sim/general/rot_up_slow");
    EXPECT_FLOAT_EQ(movementState().rotationMultiplier, 1.0f / pan);
    passes("sim/general/forward_slow");
    EXPECT_FLOAT_EQ(movementState().rotationMultiplier, 1.0f);
    EXPECT_FLOAT_EQ(movementState().movementMultiplier, 1.0f / move);
    passes("sim/general/down_fast");
    EXPECT_FLOAT_EQ(movementState().movementMultiplier, move);
    passes("sim/view/pan_up");
    EXPECT_FLOAT_EQ(movementState().movementMultiplier, 1.0f);
}

TEST_F(SimCommandsTest, EverythingPassesInAViewTheFrameDriverDoesNotServeButQuickLookRecall) {
    loadAircraftWithCameras();
    Camera& c = *currentCamera();
    const Camera copy = c;
    for (int index = 0; index < kFirstQuickLookRecall; ++index) {
        xphost::forceValue("sim/graphics/view/view_type", xphost::viewChase);
        EXPECT_TRUE(passes(simCommandName(index))) << simCommandName(index);
    }
    xphost::forceValue("sim/graphics/view/view_type", xphost::viewChase);
    xphost::runFrames(2);
    EXPECT_EQ(currentCamera(), &c);
    EXPECT_FLOAT_EQ(c.heading, copy.heading);
    EXPECT_FLOAT_EQ(c.z, copy.z);
    // The Quick Look recall brings a camera back from any view.
    EXPECT_FALSE(passes("sim/view/quick_look_1"));
    EXPECT_EQ(currentCamera(), &camera(0, 1));
    xphost::runFrames(2);
    EXPECT_EQ(xphost::viewType(), xphost::viewCockpit3d);
}

}  // namespace
