// A simulator with the plug-in linked in, enabled, and an aircraft whose camera file
// holds two categories: "Cockpit" (three cockpit cameras, view IDs 1, 2 and 4) and
// "Outside" (two cameras that the tests make external). Shared by the command,
// interceptor and mouse tests.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "data/camera_set.h"
#include "data/settings.h"
#include "host/host.h"
#include "motion/frame_driver.h"
#include "shell/host_interface.h"

extern "C" {
int XPluginStart(char* name, char* signature, char* description);
int XPluginEnable();
void XPluginDisable();
void XPluginStop();
void XPluginReceiveMessage(XPLMPluginID from, int message, void* param);
}

class PluginWithCameras : public ::testing::Test {
protected:
    std::filesystem::path root;
    int plugin = -1;

    void SetUp() override {
        xphost::reset();
        // One tree per process: the plug-in keeps its folder from the first enable, as
        // it may in the simulator, so every test of a process must see the same path.
        root = std::filesystem::temp_directory_path() / ("vistarig-cm-" + std::to_string(::getpid()));
        std::filesystem::remove_all(root);
        std::filesystem::create_directories(root / "Aircraft/Test/Glider");
        std::filesystem::create_directories(root / "Resources/plugins/Vistarig/lin_x64");
        std::filesystem::create_directories(root / "Resources/plugins/Vistarig/MyTargets");
        std::filesystem::create_directories(root / "Output/preferences");
        std::ofstream(root / "Aircraft/Test/Glider/Glider.acf") << "I\n1100 Version\n";
        xphost::setRoot(root.string());
        xphost::setUserAircraft("Aircraft/Test/Glider/Glider.acf");
        xphost::freezeAircraft(true);
        xphost::EntryPoints entry;
        entry.start = XPluginStart;
        entry.enable = XPluginEnable;
        entry.disable = XPluginDisable;
        entry.stop = XPluginStop;
        entry.receive = reinterpret_cast<xphost::ReceiveFn>(XPluginReceiveMessage);
        plugin = xphost::loadPlugin(entry, (root / "Resources/plugins/Vistarig/lin_x64/Vistarig.xpl").string());
        ASSERT_GE(plugin, 0) << xphost::logTail(20);
        ASSERT_TRUE(xphost::enablePlugin(plugin));
    }

    void TearDown() override {
        xphost::stopAllPlugins();
        EXPECT_EQ(xphost::threadViolationCount(), 0);
        std::filesystem::remove_all(root);
    }

    void writeCameraFile() {
        std::ofstream(root / "Aircraft/Test/Glider/Vistarig_Glider.csv")
            << "Category Name,Camera Name,View ID,X,Y,Z,heading,pitch,TrackIR Enabled,Smooth Transition\n"
            << "Cockpit,Left Seat,1,-0.35,1.05,-2.4,10,5,FALSE,FALSE\n"
            << "Cockpit,Right Seat,2,0.35,1.05,-2.4,20,0,FALSE,FALSE\n"
            << "Cockpit,Panel,4,0.0,0.9,-2.9,0,350,FALSE,FALSE\n"
            << "Outside,Chase,0,0,3,25,0,0,FALSE,FALSE\n"
            << "Outside,Orbit,0,20,5,0,0,0,FALSE,FALSE\n";
    }

    // Loads the aircraft with its camera file: the camera level comes on.
    void loadAircraftWithCameras() {
        writeCameraFile();
        xphost::sendPlaneLoaded(0);
        ASSERT_TRUE(cameraEnabled()) << xphost::logTail(20);
        settings().MOVEMENT_SMOOTHING_FACTOR = 0;
        settings().MOUSE_SMOOTHING_FACTOR = 0;
        xphost::runFrames(2);
    }

    Camera& camera(int category, int index) { return workingSet().categories[category].cameras[index]; }

    // Makes the "Outside" cameras external and selects one of them.
    void selectOutsideCamera(int index) {
        camera(1, 0).external = true;
        camera(1, 1).external = true;
        selectCategory(1);
        selectCamera(index);
        noteSelectionChanged();
        xphost::runFrames(3);
        ASSERT_EQ(xphost::viewType(), xphost::viewFreeCamera);
        ASSERT_TRUE(xphost::cameraControlled());
    }
};
