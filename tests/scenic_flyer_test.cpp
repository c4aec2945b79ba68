// The link to Scenic Flyer's panels, with the plug-in loaded in-process beside the
// host's Scenic Flyer stand-in: cameras that want a panel get it one command a frame,
// a camera change sends only what differs, the user's own presses stay in the camera,
// a command kept across a camera-level disable, and a simulator without Scenic Flyer.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "data/camera_file.h"
#include "data/camera_set.h"
#include "data/plugin_state.h"
#include "host/host.h"
#include "host/outside_plugins.h"
#include "inputs/scenic_flyer.h"
#include "shell/host_interface.h"
#include "support/plugin_fixture.h"

namespace {

// A cockpit camera row of the 70-column file, with the two panel columns set.
std::string cameraRow(const char* name, int viewId, bool ga, bool glass) {
    static const char* const base =
        "Cockpit,Camera,1,0,1,0,0,0,FALSE,FALSE,FALSE,FALSE,FALSE,FALSE,0,FALSE,FALSE,0,0,0,0,0,0,1,60,FALSE,"
        "FALSE,FALSE,FALSE,0,0,FALSE,FALSE,FALSE,FALSE,FALSE,1,FALSE,0,0,FALSE,2.4.3,60,Cessna_172SP,Tests,"
        "2024-01-01 12:00:00,0,FALSE,0,0,0,FALSE,0,FALSE,FALSE,FALSE,FALSE,0,0,FALSE,FALSE,FALSE,FALSE,FALSE,0,"
        "FALSE,0,0,0,FALSE";
    std::vector<std::string> cells;
    std::stringstream in(base);
    for (std::string cell; std::getline(in, cell, ',');) cells.push_back(cell);
    cells[1] = name;
    cells[2] = std::to_string(viewId);
    cells[54] = ga ? "TRUE" : "FALSE";
    cells[55] = glass ? "TRUE" : "FALSE";
    std::string row;
    for (size_t i = 0; i < cells.size(); ++i) row += (i ? "," : "") + cells[i];
    return row + "\n";
}

class ScenicFlyerTest : public PluginTest {
protected:
    // The cameras of the aircraft, in order; the first is selected at load.
    void loadAircraft(const std::string& rows, bool withScenicFlyer = true) {
        if (withScenicFlyer) xphost::installScenicFlyer();
        writeFile(aircraftFolder().substr(root.size()) + "Vistarig_Cessna_172SP.csv",
                  std::string(cameraFileHeader()) + rows);
        planeLoaded();
        ASSERT_TRUE(cameraEnabled()) << xphost::logTail(10);
    }

    static xphost::ScenicFlyerPanel panel() { return xphost::scenicFlyerPanel(); }

    // Runs frames one by one; fails if any frame sends more than one command.
    void runCheckingOneCommandAFrame(int frames) {
        for (int i = 0; i < frames; ++i) {
            const int before = panel().commands;
            runFrames(1);
            EXPECT_LE(panel().commands - before, 1) << "frame " << i;
        }
    }

    void nextCamera() {
        command("KVT/Vistarig/Next_Camera");
        runCheckingOneCommandAFrame(6);
    }
};

TEST_F(ScenicFlyerTest, CamerasGetTheirPanelOneCommandAFrameAndChangesSendOnlyTheDifference) {
    loadAircraft(cameraRow("GA", 1, true, false) + cameraRow("None", 2, false, false) +
                 cameraRow("Glass", 3, false, true));
    EXPECT_EQ(pluginState().scenicFlyerStatus, 11);
    EXPECT_NE(xphost::logTail(40).find("Scenic Flyer Found and enabled - Scenic Flyer panels"), std::string::npos);

    runCheckingOneCommandAFrame(6);
    EXPECT_TRUE(panel().shown && !panel().glass);
    EXPECT_EQ(panel().commands, 1);

    // GA to no panel: one "show or hide".
    nextCamera();
    EXPECT_FALSE(panel().shown);
    EXPECT_EQ(panel().commands, 2);

    // No panel (GA type) to glass: the type switched, then shown, a frame apart; the
    // camera's own flags stay as they were.
    nextCamera();
    EXPECT_TRUE(panel().shown && panel().glass);
    EXPECT_EQ(panel().commands, 4);
    EXPECT_EQ(scenicFlyerLink().panelState, 3);
    EXPECT_TRUE(currentCamera()->scenicFlyerGlassPanel);
    EXPECT_FALSE(currentCamera()->scenicFlyerGaPanel);

    // Glass back to GA: one "select".
    nextCamera();
    EXPECT_STREQ(currentCamera()->name, "GA");
    EXPECT_TRUE(panel().shown && !panel().glass);
    EXPECT_EQ(panel().commands, 5);
}

TEST_F(ScenicFlyerTest, TheUsersOwnPressesAreKeptInTheSelectedCamera) {
    loadAircraft(cameraRow("Glass", 1, false, true));
    runFrames(6);
    ASSERT_TRUE(panel().shown && panel().glass);

    // Over a glass panel "select" makes it GA, and the camera becomes a GA camera.
    command(kScenicSelect);
    runFrames(4);
    EXPECT_TRUE(currentCamera()->scenicFlyerGaPanel);
    EXPECT_FALSE(currentCamera()->scenicFlyerGlassPanel);
    EXPECT_TRUE(panel().shown && !panel().glass) << "the link doesn't fight the user";

    // Hiding it makes a camera without a panel.
    command(kScenicForceOn);
    runFrames(4);
    EXPECT_FALSE(currentCamera()->scenicFlyerGaPanel || currentCamera()->scenicFlyerGlassPanel);
    EXPECT_FALSE(panel().shown);
    EXPECT_EQ(panel().commands, 4);
}

TEST_F(ScenicFlyerTest, ADisableWithAPanelOnShowKeepsOneCommandForTheNextEnable) {
    loadAircraft(cameraRow("GA", 1, true, false));
    runFrames(4);
    ASSERT_TRUE(panel().shown);
    ASSERT_EQ(panel().commands, 1);

    disableCamera(false);
    runFrames(10);
    EXPECT_EQ(scenicFlyerLink().pendingCount, 1);
    EXPECT_EQ(panel().commands, 1) << "nothing goes out while the camera level is off";
    // A press while off changes the panel but not the camera.
    command(kScenicSelect);
    EXPECT_TRUE(currentCamera()->scenicFlyerGaPanel);
    command(kScenicSelect);

    enableCamera();
    EXPECT_EQ(panel().commands, 4) << "the kept command goes out at the enable";
    EXPECT_FALSE(panel().shown);
    runCheckingOneCommandAFrame(6);
    EXPECT_TRUE(panel().shown && !panel().glass) << "and the camera's panel comes back";
    EXPECT_EQ(panel().commands, 5);
}

TEST_F(ScenicFlyerTest, WithoutScenicFlyerNothingIsSentAndNothingStaysRegistered) {
    loadAircraft(cameraRow("Glass", 1, false, true), false);
    EXPECT_EQ(pluginState().scenicFlyerStatus, 12);
    EXPECT_NE(xphost::logTail(40).find("Scenic Flyer not found"), std::string::npos);
    runFrames(5);
    EXPECT_EQ(scenicFlyerLink().pendingCount, 0);
    EXPECT_TRUE(scenicFlyerLink().ready);
    // The look-up is once for the host level: Scenic Flyer installed later isn't seen...
    xphost::installScenicFlyer();
    planeLoaded();
    runFrames(5);
    EXPECT_EQ(panel().commands, 0);
    // ...until the plug-in is disabled and enabled again, which forgets the look-up.
    disable();
    enable();
    EXPECT_EQ(pluginState().scenicFlyerStatus, 0);
    planeLoaded();
    runFrames(5);
    EXPECT_TRUE(panel().shown && panel().glass);
    stop();
    EXPECT_TRUE(xphost::leaks().empty()) << xphost::leaks()[0];
}

TEST_F(ScenicFlyerTest, ACommandThatNeverComesByHoldsBackTheRest) {
    loadAircraft(cameraRow("Glass", 1, false, true));
    // The echo of a sent command never comes by (the link's handlers are taken away,
    // the plug-in still counted as found): nothing more goes out after it.
    forgetScenicFlyer();
    ScenicFlyerLink& link = scenicFlyerLink();
    link.found = true;
    runFrames(3);
    EXPECT_FALSE(link.ready);
    EXPECT_EQ(panel().commands, 1) << "one command out, and no second without its echo";
    forgetScenicFlyer();
}

}  // namespace
