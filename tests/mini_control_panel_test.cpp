// The Mini Control Panel: its place and the bottom-edge rule as pure functions, then
// the loaded plug-in: the start a second after the first working frame, auto show and
// hide, the pin of a hand toggle, "Docked", the wrapping camera row, hidden cameras,
// deferred commands and the row hues in a screenshot at UI scale 1.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "data/camera_set.h"
#include "data/aircraft_files.h"
#include "data/settings.h"
#include "host/mouse.h"
#include "host/ui_driver.h"
#include "host/windows.h"
#include "panels/mini_control_panel_widget.h"
#include "panels/settings_widget.h"
#include "shell/host_interface.h"
#include "support/plugin_fixture.h"

namespace {

TEST(MiniPanelRules, PlaceDockedOrInTheMiddleThird) {
    const WindowBox monitor{0, 1080, 1920, 0};
    WindowPosition none;
    WindowBox docked = miniPanelBox(monitor, 2, false, none);
    EXPECT_EQ(docked.left, 0);
    EXPECT_EQ(docked.right, 1920);
    EXPECT_EQ(docked.top, 150);
    EXPECT_EQ(miniPanelBox(monitor, 2, true, none).top, 125);
    // A height the user set outlasts the favourites setting.
    WindowPosition saved{3, 0, 210, 1920, 0};
    EXPECT_EQ(miniPanelBox(monitor, 2, true, saved).top, 210);
    const WindowBox second{1920, 1200, 3840, 0};
    WindowBox free = miniPanelBox(second, 1, false, saved);
    EXPECT_EQ(free.left, 1920 + 640);
    EXPECT_EQ(free.right, 1920 + 1280);
    EXPECT_EQ(free.bottom, 400);
    EXPECT_EQ(free.top, 800);
}

TEST(MiniPanelRules, BottomEdgeShowsAndLeavingHidesUnlessPinned) {
    const WindowBox panel{0, 150, 1920, 0};
    EXPECT_EQ(edgeVisibility(false, false, panel, 960, 4), 1);
    EXPECT_EQ(edgeVisibility(false, false, panel, 960, 5), 0);
    EXPECT_EQ(edgeVisibility(false, false, panel, 0, 0), 0);  // the very left edge is outside the span
    EXPECT_EQ(edgeVisibility(true, false, panel, 960, 151), -1);
    EXPECT_EQ(edgeVisibility(true, false, panel, 960, 150), 0);
    EXPECT_EQ(edgeVisibility(true, true, panel, 960, 600), 0);
    EXPECT_EQ(edgeVisibility(true, false, panel, 1920, 600), 0);
}

const char* const kTitle = "Vistarig 2.4.3 Mini-Control Panel";

class MiniControlPanelTest : public PluginTest {
protected:
    bool enableOnSetUp() override { return false; }
    void SetUp() override {
        overridePluginDirectory("");  // found again under this test's tree
        PluginTest::SetUp();
        for (const char* folder : {"MyTargets", "AircraftCameraBackups", "MyAirportCameras"})
            std::filesystem::create_directories(root + "Resources/plugins/Vistarig/" + folder);
        const char* font = "/usr/share/fonts/truetype/roboto/unhinted/RobotoTTF/Roboto-Regular.ttf";
        if (std::filesystem::exists(font)) {
            std::filesystem::create_directories(root + "Resources/fonts");
            std::filesystem::copy_file(font, root + "Resources/fonts/Roboto-Regular.ttf",
                                       std::filesystem::copy_options::overwrite_existing);
        }
        ASSERT_TRUE(xphost::enablePlugin(plugin));
        std::string file =
            "Category Name,Camera Name,View ID,X,Y,Z,heading,pitch,TrackIR Enabled,Smooth Transition\n"
            "Cockpit,Pilot View,1,-0.3,1.05,0.35,0,0,FALSE,FALSE\n"
            "Cockpit,Panel,2,0.0,0.9,-0.2,0,350,FALSE,FALSE\n";
        // Enough cameras for the row to wrap on one monitor.
        for (int i = 1; i <= 40; ++i) file += "Outside,Chase " + std::to_string(i) + ",0,0,3," + std::to_string(i) + ",0,0,FALSE,FALSE\n";
        writeFile("Aircraft/Laminar Research/Cessna 172 SP/Vistarig_Cessna_172SP.csv", file);
        xphost::setMousePosition(960, 600);
        planeLoaded();
        runFrames(2);
        ASSERT_TRUE(cameraEnabled());
    }
    static bool visible() {
        xphost::WindowInfo w;
        return xphost::findWindow(kTitle, w) && w.visible;
    }
    // The start-up build comes a second after the first working frame.
    void waitForStart() {
        ::usleep(1100 * 1000);
        runFrames(2);
        ASSERT_NE(miniControlPanelWidget(), nullptr);
    }
    static void click(const std::string& label) { ASSERT_EQ(xphost::uiClick(kTitle, label), ""); }
};

TEST_F(MiniControlPanelTest, StartsHiddenAndFollowsThePointerAtTheBottomEdge) {
    EXPECT_EQ(miniControlPanelWidget(), nullptr);
    waitForStart();
    EXPECT_FALSE(visible());
    xphost::setMousePosition(0, 2);  // the very left edge: outside the span
    runFrames(1);
    EXPECT_FALSE(visible());
    xphost::setMousePosition(960, 4);
    runFrames(1);
    EXPECT_TRUE(visible());
    // Dragging the bar up sets the height; the pointer above the old top doesn't hide it.
    xphost::setMousePosition(400, 140);
    runFrames(1);
    xphost::pressMouseButton(xphost::MouseButton::Left);
    runFrames(2);
    for (int y = 150; y <= 200; y += 10) {
        xphost::setMousePosition(400, y);
        runFrames(1);
        EXPECT_TRUE(visible()) << y;
    }
    xphost::releaseMouseButton(xphost::MouseButton::Left);
    runFrames(2);
    xphost::WindowInfo w;
    ASSERT_TRUE(xphost::findWindow(kTitle, w));
    EXPECT_GT(w.top, 180);
    xphost::setMousePosition(960, w.top + 1);
    runFrames(1);
    EXPECT_FALSE(visible());

    // Toggled by hand it is pinned: the pointer leaving doesn't hide it.
    command("KVT/Vistarig/Toggle_Mini_Control_Panel");
    runFrames(1);
    EXPECT_TRUE(visible());
    EXPECT_TRUE(miniControlPanelWidget()->pinned);
    xphost::setMousePosition(960, 700);
    runFrames(2);
    EXPECT_TRUE(visible());
    EXPECT_EQ(settings().LAST_MINI_CONTROL_PANEL_POSITION.kind, 3);
}

TEST_F(MiniControlPanelTest, RowsCommandsAndDocking) {
    command("KVT/Vistarig/Toggle_Mini_Control_Panel");
    runFrames(2);
    ASSERT_TRUE(visible());
    // A click on a category, then a camera, selects them.
    click("Outside");
    EXPECT_EQ(currentCategoryIndex(), 1);
    click("Chase 3");
    EXPECT_STREQ(currentCamera()->name, "Chase 3");
    xphost::UiItem first, last;
    ASSERT_EQ(xphost::uiFind(kTitle, "Chase 1##Camera_0", first), "");
    ASSERT_EQ(xphost::uiFind(kTitle, "Chase 40##Camera_39", last), "");
    EXPECT_LT(last.top, first.bottom);  // the camera row wrapped

    // A hidden camera is left out.
    currentCategory()->cameras[5].hidden = true;
    runFrames(1);
    xphost::UiItem item;
    EXPECT_NE(xphost::uiFind(kTitle, "Chase 6##Camera_5", item), "");

    // Unchecking "Docked" rebuilds it free; checking it again docks it.
    click("Docked");
    runFrames(1);
    xphost::WindowInfo w;
    ASSERT_TRUE(xphost::findWindow(kTitle, w));
    EXPECT_EQ(w.decoration, 1);
    EXPECT_TRUE(w.visible);
    click("Docked");
    runFrames(1);
    ASSERT_TRUE(xphost::findWindow(kTitle, w));
    EXPECT_EQ(w.decoration, 2);
    EXPECT_EQ(w.bottom, 0);

    // "Settings" opens its panel in the next flight loop, not in the frame of the click.
    xphost::UiItem settingsButton;
    ASSERT_EQ(xphost::uiFind(kTitle, "Settings", settingsButton), "");
    xphost::click(settingsButton.centreX(), settingsButton.centreY());
    bool waitedAFrame = false;
    for (int frame = 0; frame < 4 && !(settingsWidget() && settingsWidget()->IsVisible()); ++frame) {
        runFrames(1);
        if (miniControlPanelWidget()->pendingCommand && !(settingsWidget() && settingsWidget()->IsVisible()))
            waitedAFrame = true;
    }
    EXPECT_TRUE(waitedAFrame);
    EXPECT_TRUE(settingsWidget() && settingsWidget()->IsVisible());
}

// Hue of an RGBA pixel in turns.
float hueOf(uint32_t rgba) {
    const float r = (rgba >> 24) / 255.0f, g = ((rgba >> 16) & 0xFF) / 255.0f, b = ((rgba >> 8) & 0xFF) / 255.0f;
    const float mx = std::max({r, g, b}), mn = std::min({r, g, b});
    if (mx - mn < 1e-4f) return -1.0f;
    float h;
    if (mx == r) h = std::fmod((g - b) / (mx - mn), 6.0f);
    else if (mx == g) h = (b - r) / (mx - mn) + 2.0f;
    else h = (r - g) / (mx - mn) + 4.0f;
    h /= 6.0f;
    return h < 0 ? h + 1.0f : h;
}

TEST_F(MiniControlPanelTest, ScreenshotShowsTheRowHues) {
    xphost::setDrawScale(1.0f);
    settings().ENABLE_TRANSPARENT_MINI_CONTROL_PANEL = false;
    command("KVT/Vistarig/Toggle_Mini_Control_Panel");
    runFrames(2);
    selectCategory(1);
    runFrames(2);
    const std::string folder = VISTARIG_SCREENSHOT_DIR;
    std::filesystem::create_directories(folder);
    std::string error;
    EXPECT_TRUE(xphost::screenshot(folder + "/mini_control_panel_docked_1.png", &error)) << error;
    struct Probe {
        const char* label;
        float hue;
    } probes[] = {{"Pilot View##ViewID1", 2.0f / 7.0f}, {"{Outside}##Category_1", 1.0f / 7.0f},
                  {"Chase 2##Camera_1", 6.0f / 7.0f}};
    int lastBand = 100000;
    for (const Probe& probe : probes) {
        xphost::UiItem item;
        ASSERT_EQ(xphost::uiFind(kTitle, probe.label, item), "") << probe.label;
        // A point on the button's face clear of its text.
        const uint32_t pixel = xphost::screenPixel(static_cast<int>(item.left) + 3, item.centreY());
        EXPECT_NEAR(hueOf(pixel), probe.hue, 0.02f) << probe.label;
        EXPECT_LT(item.top, lastBand) << probe.label;  // each row in a band of its own
        lastBand = static_cast<int>(item.bottom);
    }
}

}  // namespace

namespace {

TEST_F(MiniControlPanelTest, PoppedOutPlaceComesBackAtStartAndDockedBringsItHome) {
    command("KVT/Vistarig/Toggle_Mini_Control_Panel");
    runFrames(2);
    click("Docked");  // undocked: a free window the simulator can pop out
    runFrames(1);
    xphost::WindowInfo w;
    ASSERT_TRUE(xphost::findWindow(kTitle, w));
    int x = 0, y = 0;
    ASSERT_TRUE(xphost::windowControl(w.id, xphost::WindowControl::popOutBox, x, y));
    xphost::click(x, y);
    runFrames(2);
    ASSERT_TRUE(xphost::findWindow(kTitle, w));
    ASSERT_TRUE(w.poppedOut);
    const WindowPosition saved = settings().LAST_MINI_CONTROL_PANEL_POSITION;
    EXPECT_EQ(saved.kind, 2);

    // The next start puts it back out there.
    MiniControlPanelAction(4);
    EXPECT_TRUE(MiniControlPanelAction(0));
    runFrames(2);
    ASSERT_TRUE(xphost::findWindow(kTitle, w));
    EXPECT_TRUE(w.poppedOut);
    EXPECT_EQ(w.decoration, 1);

    // "Docked" on the popped-out panel: back in, along the bottom of the screen. The
    // host's pointer works windows inside the simulator only, so the box is set as its
    // click would set it.
    miniControlPanelWidget()->docked = true;
    runFrames(1);
    ASSERT_TRUE(xphost::findWindow(kTitle, w));
    EXPECT_FALSE(w.poppedOut);
    EXPECT_EQ(w.decoration, 2);
    EXPECT_EQ(w.bottom, 0);
    EXPECT_EQ(w.right - w.left, 1920);
}

}  // namespace

namespace {

TEST_F(MiniControlPanelTest, DocksOnTheChosenMonitorAndMovesWhenTheSettingChanges) {
    xphost::setMonitors({{0, 1080, 1920, 0}, {1920, 1200, 3840, 0}});
    settings().MINI_CONTROL_PANEL_MONITOR_INDEX = 1;
    command("KVT/Vistarig/Toggle_Mini_Control_Panel");
    runFrames(2);
    xphost::WindowInfo w;
    ASSERT_TRUE(xphost::findWindow(kTitle, w));
    EXPECT_EQ(w.left, 1920);
    EXPECT_EQ(w.right, 3840);
    settings().MINI_CONTROL_PANEL_MONITOR_INDEX = 0;
    runFrames(2);
    ASSERT_TRUE(xphost::findWindow(kTitle, w));
    EXPECT_EQ(w.left, 0);
    EXPECT_EQ(w.right, 1920);
    EXPECT_TRUE(w.visible);
    // An index past the monitors falls back to the first, and the setting with it.
    MiniControlPanelAction(4);
    settings().MINI_CONTROL_PANEL_MONITOR_INDEX = 7;
    MiniControlPanelAction(1);
    EXPECT_EQ(settings().MINI_CONTROL_PANEL_MONITOR_INDEX, 0);
}

}  // namespace
