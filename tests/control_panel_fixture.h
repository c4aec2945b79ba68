// The Control Panel suites' fixture: the plug-in loaded in-process with a small
// aircraft camera file, the panel's font in the tree, and short helpers that work the
// panel through the UI driver by label.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "XPLMDisplay.h"
#include "data/camera_set.h"
#include "data/settings.h"
#include "host/ui_driver.h"
#include "host/windows.h"
#include "panels/control_panel_widget.h"
#include "shell/host_interface.h"
#include "support/plugin_fixture.h"

namespace controlpanel {

const char* const kTitle = "Vistarig 2.4.3 Control Panel";
const char* const kToggle = "KVT/Vistarig/Toggle_Control_Panel_on_or_off";

class ControlPanelTest : public PluginTest {
protected:
    bool enableOnSetUp() override { return false; }
    void SetUp() override {
        PluginTest::SetUp();
        // The plug-in's own folders, so that no message box about them stands in the pictures.
        for (const char* folder : {"MyTargets", "AircraftCameraBackups", "MyAirportCameras"})
            std::filesystem::create_directories(root + "Resources/plugins/Vistarig/" + folder);
        ASSERT_TRUE(xphost::enablePlugin(plugin));
        const char* font = "/usr/share/fonts/truetype/roboto/unhinted/RobotoTTF/Roboto-Regular.ttf";
        if (std::filesystem::exists(font) && !std::filesystem::exists(root + "Resources/fonts/Roboto-Regular.ttf")) {
            std::filesystem::create_directories(root + "Resources/fonts");
            std::filesystem::copy_file(font, root + "Resources/fonts/Roboto-Regular.ttf");
        }
        writeFile("Aircraft/Laminar Research/Cessna 172 SP/Vistarig_Cessna_172SP.csv",
                  "Category Name,Camera Name,View ID,X,Y,Z,heading,pitch,TrackIR Enabled,Smooth Transition\n"
                  "Cockpit,Pilot View,1,-0.3,1.05,0.35,0,0,FALSE,FALSE\n"
                  "Cockpit,Panel,2,0.0,0.9,-0.2,0,350,FALSE,FALSE\n"
                  "Outside,Chase,0,0,3,25,0,0,FALSE,FALSE\n");
        planeLoaded();
        runFrames(3);
        ASSERT_TRUE(cameraEnabled());
        settings().ENABLE_SOLID_CONTROL_PANEL = false;
        settings().USE_SMALL_FONT = false;
        settings().ALWAYS_SHOW_ADVANCED_CAMERA_OPTIONS = false;
    }
    void TearDown() override {
        setActiveFile(savedActive);
        PluginTest::TearDown();
    }

    ControlPanelWidget* open() {
        command(kToggle);
        runFrames(2);
        EXPECT_TRUE(ControlPanelAction(5));
        return controlPanelWidget();
    }
    static bool shows(const std::string& text) { return xphost::uiExpectText(kTitle, text).empty(); }
    static bool has(const std::string& label) {
        xphost::UiItem item;
        return xphost::uiFind(kTitle, label, item).empty();
    }
    static xphost::UiItem item(const std::string& label) {
        xphost::UiItem found;
        const std::string error = xphost::uiFind(kTitle, label, found);
        EXPECT_EQ(error, "");
        return found;
    }
    static void click(const std::string& label) { ASSERT_EQ(xphost::uiClick(kTitle, label), ""); }
    static int windowHeight() {
        xphost::WindowInfo w;
        EXPECT_TRUE(xphost::findWindow(kTitle, w));
        return w.top - w.bottom;
    }

    CameraFile* savedActive = activeFile();
};

}  // namespace controlpanel
