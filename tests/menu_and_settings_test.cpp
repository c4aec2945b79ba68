// The Plugins menu entry, System Check and the Settings panel: the pure rules (which
// items can be chosen, which blocks System Check writes, the out-of-bounds rule, the
// file "Save Settings" writes), then the loaded plug-in worked through its menu and the
// UI driver, with screenshots of the Settings panel and the "System Status" box.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "data/aircraft_files.h"
#include "data/settings.h"
#include "host/host.h"
#include "host/outside_plugins.h"
#include "host/ui_driver.h"
#include "host/windows.h"
#include "panels/control_panel_widget.h"
#include "panels/settings_widget.h"
#include "shell/host_interface.h"
#include "shell/plugin_menu.h"
#include "support/plugin_fixture.h"

namespace {

int blockCount(const std::string& text) {
    int blocks = 0;
    for (size_t at = text.find("\n\n"); at != std::string::npos; at = text.find("\n\n", at + 2)) ++blocks;
    return blocks;
}

TEST(MenuRules, ChoosableItemsFollowTheCameraLevel) {
    std::vector<int> offItems, onItems;
    for (int i = 0; i < kMenuItemCount; ++i) {
        if (menuItemEnabled(i, false)) offItems.push_back(i);
        if (!menuItemEnabled(i, true)) onItems.push_back(i);
    }
    EXPECT_EQ(offItems, (std::vector<int>{kMenuEnable, kMenuSettings, kMenuRefreshTargets, kMenuToggleTrafficDisplay,
                                          kMenuCheckForUpdates}));
    EXPECT_EQ(onItems, std::vector<int>{kMenuEnable});
}

TEST(SystemCheckText, BlocksAndTheTrackIrAdvice) {
    SystemFindings found;
    std::string text = systemCheckText(found);
    EXPECT_EQ(text, "TrackIR - Unknown Status.\n\nScenic Flyer - Status unknown.\n\nHeadShake - Not Found.\n\n");
    EXPECT_EQ(blockCount(text), 3);
    found.pilotViewFound = true;
    EXPECT_EQ(blockCount(systemCheckText(found)), 4);

    // The client started well, but the simulator's own support still holds the tracker.
    found.trackIrStatus = 6;
    found.simulatorTrackIrOn = true;
    EXPECT_NE(systemCheckText(found).find("Found but you must disable it in the X-Plane Equipment"),
              std::string::npos);
    found.simulatorTrackIrOn = false;
    EXPECT_NE(systemCheckText(found).find("TrackIR - Found and enabled."), std::string::npos);

    // A status outside the tables adds nothing; an old HeadShake is named as such.
    found = SystemFindings();
    found.trackIrStatus = 9;
    found.scenicFlyerStatus = 5;
    found.headShakeFound = true;
    EXPECT_EQ(systemCheckText(found), "HeadShake - Found but it is not at version 1.3 or higher.\n\n");
}

TEST(SettingBounds, OutOfBoundsValuesTakeTheDefaultNotTheLimit) {
    const Settings d = builtInSettings();
    Settings s = d;
    s.SMALL_ROTATION_SPEED = 0.0f;
    s.LARGE_HEADTRACK_RANGE = -3.0f;
    s.VERY_LARGE_MOVEMENT_SPEED = -1.0f;  // no floor for the very large column
    s.panSpeedFactor = 0.5f;
    s.MOUSE_SMOOTHING_FACTOR = 0;  // its floor is 1, the others' 0
    s.MOVEMENT_SMOOTHING_FACTOR = 0;
    s.HEAD_TRACK_SMOOTHING_FACTOR = 51;
    s.VIEW_AXIS_SMOOTHING_FACTOR = 101;
    s.SMOOTH_WINDOW = 59;
    s.MINI_CONTROL_PANEL_MONITOR_INDEX = 1;
    enforceSettingBounds(s, d, 1);
    EXPECT_EQ(s.SMALL_ROTATION_SPEED, d.SMALL_ROTATION_SPEED);
    EXPECT_EQ(s.LARGE_HEADTRACK_RANGE, d.LARGE_HEADTRACK_RANGE);
    EXPECT_EQ(s.VERY_LARGE_MOVEMENT_SPEED, -1.0f);
    EXPECT_EQ(s.panSpeedFactor, d.panSpeedFactor);
    EXPECT_EQ(s.MOUSE_SMOOTHING_FACTOR, d.MOUSE_SMOOTHING_FACTOR);
    EXPECT_EQ(s.MOVEMENT_SMOOTHING_FACTOR, 0);
    EXPECT_EQ(s.HEAD_TRACK_SMOOTHING_FACTOR, d.HEAD_TRACK_SMOOTHING_FACTOR);
    EXPECT_EQ(s.VIEW_AXIS_SMOOTHING_FACTOR, d.VIEW_AXIS_SMOOTHING_FACTOR);
    EXPECT_EQ(s.SMOOTH_WINDOW, d.SMOOTH_WINDOW);
    EXPECT_EQ(s.MINI_CONTROL_PANEL_MONITOR_INDEX, 0);
    s.MINI_CONTROL_PANEL_MONITOR_INDEX = 2;
    enforceSettingBounds(s, d, 3);
    EXPECT_EQ(s.MINI_CONTROL_PANEL_MONITOR_INDEX, 2);
}

const char* const kSettingsTitle = "Vistarig 2.4.3 Settings";

class MenuAndSettingsTest : public PluginTest {
protected:
    bool enableOnSetUp() override { return false; }
    void SetUp() override {
        overridePluginDirectory("");  // found again under this test's tree
        PluginTest::SetUp();
        // The plug-in's own folders first, so that no message box about them stands in the pictures.
        for (const char* folder : {"MyTargets", "AircraftCameraBackups", "MyAirportCameras"})
            std::filesystem::create_directories(root + "Resources/plugins/Vistarig/" + folder);
        ASSERT_TRUE(xphost::enablePlugin(plugin));
        const char* font = "/usr/share/fonts/truetype/roboto/unhinted/RobotoTTF/Roboto-Regular.ttf";
        if (std::filesystem::exists(font)) {
            std::filesystem::create_directories(root + "Resources/fonts");
            std::filesystem::copy_file(font, root + "Resources/fonts/Roboto-Regular.ttf",
                                       std::filesystem::copy_options::overwrite_existing);
        }
    }
    static void pick(const std::string& item) {
        std::string error;
        ASSERT_TRUE(xphost::pickMenuItem("Plugins/Vistarig/" + item, error)) << error;
        xphost::runFrames(2);
    }
    static void click(const std::string& label) { ASSERT_EQ(xphost::uiClick(kSettingsTitle, label), ""); }
    std::string iniPath() const { return root + "Resources/plugins/Vistarig/Vistarig.ini"; }
};

TEST_F(MenuAndSettingsTest, MenuGoesWithTheHostLevelAndLeavesNothing) {
    EXPECT_EQ(xphost::menuItemState("Plugins/Vistarig/Enable"), "enabled");
    EXPECT_EQ(xphost::menuItemState("Plugins/Vistarig/System Check"), "disabled");
    disable();
    EXPECT_EQ(xphost::menuItemState("Plugins/Vistarig"), "absent");
    enable();
    EXPECT_EQ(xphost::menuItemState("Plugins/Vistarig/Check for Updates"), "enabled");
    pick("Enable");
    EXPECT_TRUE(cameraEnabled());
    EXPECT_EQ(xphost::menuItemState("Plugins/Vistarig/Enable"), "disabled");
    EXPECT_EQ(xphost::menuItemState("Plugins/Vistarig/Calibrate View Axis"), "enabled");
    pick("Settings");
    EXPECT_TRUE(settingsWidget() && settingsWidget()->IsVisible());
    disable();
    stop();
    EXPECT_TRUE(xphost::leaks().empty()) << xphost::leaks()[0];
}

TEST_F(MenuAndSettingsTest, SystemCheckBeforeTheFirstAircraftAndWithPilotView) {
    // The item waits for the camera level, which starts the tracker: the check itself
    // runs before any aircraft has loaded.
    systemCheck();
    runFrames(2);
    EXPECT_EQ(xphost::uiExpectText("System Status", "TrackIR - Unknown Status."), "");
    EXPECT_EQ(xphost::uiExpectText("System Status", "Scenic Flyer - Status unknown."), "");
    EXPECT_EQ(xphost::uiExpectText("System Status", "PilotView", false), "");
}

TEST_F(MenuAndSettingsTest, TypedValuesDefaultsAndTheSavedFile) {
    pick("Settings");
    Settings& s = settings();
    const Settings d = defaults();
    // Typed below its floor: the default in the same frame, not the floor.
    ASSERT_EQ(xphost::uiType(kSettingsTitle, "##Pan Speed Factor", "0.5"), "");
    EXPECT_EQ(s.panSpeedFactor, d.panSpeedFactor);
    ASSERT_EQ(xphost::uiType(kSettingsTitle, "##Mouse Smoothing Factor", "7"), "");
    EXPECT_EQ(s.MOUSE_SMOOTHING_FACTOR, 7);

    // "Default Settings" keeps calibration and panel places, and writes nothing.
    s.VIEW_AXIS_PITCH_CENTER = 0.25f;
    s.LAST_MINI_CONTROL_PANEL_POSITION = WindowPosition{3, 0, 150, 1920, 0};
    const std::string before = testsupport::readFile(iniPath());
    click("Default Settings");
    EXPECT_EQ(s.MOUSE_SMOOTHING_FACTOR, d.MOUSE_SMOOTHING_FACTOR);
    EXPECT_EQ(s.VIEW_AXIS_PITCH_CENTER, 0.25f);
    EXPECT_EQ(s.LAST_MINI_CONTROL_PANEL_POSITION.top, 150);
    EXPECT_EQ(testsupport::readFile(iniPath()), before);

    // "Save Settings" writes the golden file, hides the panel, and reads back the same.
    s = builtInSettings();
    click("Save Settings");
    EXPECT_FALSE(settingsWidget()->IsVisible());
    const std::string written = testsupport::readFile(iniPath());
    ASSERT_FALSE(written.empty()) << xphost::logTail(10);
    EXPECT_EQ(written, testsupport::readFile(VISTARIG_TEST_DATA "/settings/Vistarig_saved.ini"));
    if (const char* out = std::getenv("VISTARIG_WRITE_GOLDEN")) testsupport::writeFile("", out, written);
    const std::string saved = formatSettingsText(settings());
    readSettings();
    EXPECT_EQ(formatSettingsText(settings()), saved);
}

TEST_F(MenuAndSettingsTest, SolidControlPanelReplacesTheOpenOneInTheNextFlightLoop) {
    pick("Enable");
    pick("Toggle Control Panel");
    settings().ENABLE_SOLID_CONTROL_PANEL = false;
    runFrames(2);
    ASSERT_EQ(controlPanelDecorationInUse(), 2);
    pick("Settings");
    ASSERT_EQ(xphost::uiClick(kSettingsTitle, "Enable Solid Control Panel"), "");
    EXPECT_EQ(controlPanelDecorationInUse(), 1);
}

TEST_F(MenuAndSettingsTest, ScreenshotsOfTheSettingsPanelAndSystemStatus) {
    const std::string folder = VISTARIG_SCREENSHOT_DIR;
    std::filesystem::create_directories(folder);
    xphost::setDrawScale(1.0f);
    pick("Settings");
    std::string error;
    EXPECT_TRUE(xphost::screenshot(folder + "/settings_panel_1.png", &error)) << error;
    click("Close");
    xphost::installPilotView();
    pick("Enable");
    pick("System Check");
    EXPECT_EQ(xphost::uiExpectText("System Status", "PilotView - Found and it is not compatible"), "");
    EXPECT_TRUE(xphost::screenshot(folder + "/system_status_1.png", &error)) << error;
}

}  // namespace
