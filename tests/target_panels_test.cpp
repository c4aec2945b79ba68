// Target-following cameras with the plug-in loaded: the target commands and the menu's
// "Refresh Targets", the Free Target aimed with the right button (the red cross drawn
// meanwhile, the simulator paused when the setting asks), the Target Information panel
// following the camera and its switch, and "Save Camera as Target" with its complaint,
// its kept name and a missing targets folder.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <map>
#include <sstream>
#include <vector>

#include "data/aircraft_files.h"
#include "data/camera_set.h"
#include "data/settings.h"
#include "data/targets.h"
#include "host/mouse.h"
#include "host/ui_driver.h"
#include "host/windows.h"
#include "host/world.h"
#include "motion/frame_driver.h"
#include "motion/mouse_look.h"
#include "motion/target_tracking.h"
#include "panels/target_panels.h"
#include "shell/host_interface.h"
#include "support/plugin_fixture.h"

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr int kCentreX = 960, kCentreY = 540;

// A full camera row: the cockpit defaults with some columns replaced.
std::string cameraRow(const std::map<int, std::string>& columns) {
    static const char* const base =
        "Cockpit,Camera,0,0,1,0,0,0,FALSE,FALSE,FALSE,FALSE,FALSE,FALSE,0,FALSE,FALSE,0,0,0,0,0,0,1,60,FALSE,"
        "FALSE,FALSE,FALSE,0,0,FALSE,FALSE,FALSE,FALSE,FALSE,1,FALSE,0,0,FALSE,2.4.3,60,Cessna_172SP,Tests,"
        "2024-01-01 12:00:00,0,FALSE,0,0,0,FALSE,0,FALSE,FALSE,FALSE,FALSE,0,0,FALSE,FALSE,FALSE,FALSE,FALSE,0,"
        "FALSE,0,0,0,FALSE";
    std::vector<std::string> cells;
    std::stringstream in(base);
    for (std::string cell; std::getline(in, cell, ',');) cells.push_back(cell);
    for (const auto& [index, value] : columns) cells.at(static_cast<size_t>(index)) = value;
    std::string row;
    for (size_t i = 0; i < cells.size(); ++i) row += (i ? "," : "") + cells[i];
    return row + "\n";
}

bool isCrossRed(uint32_t rgba) {
    return (rgba >> 24) > 200 && ((rgba >> 16) & 0xFF) < 60 && ((rgba >> 8) & 0xFF) < 60;
}

int redNearCentre() {
    int n = 0;
    for (int x = kCentreX - 15; x <= kCentreX + 15; ++x)
        for (int y = kCentreY - 15; y <= kCentreY + 15; ++y)
            if (isCrossRed(xphost::screenPixel(x, y))) ++n;
    return n;
}

const char* const kInfo = "Target Info";
const char* const kSave = "Save Camera as Target";

class TargetPanelsTest : public PluginTest {
protected:
    bool enableOnSetUp() override { return false; }
    void SetUp() override {
        overridePluginDirectory("");  // found again under this test's tree
        PluginTest::SetUp();
        std::filesystem::create_directories(root + "Resources/plugins/Vistarig/MyTargets");
        const char* font = "/usr/share/fonts/truetype/roboto/unhinted/RobotoTTF/Roboto-Regular.ttf";
        if (std::filesystem::exists(font)) {
            std::filesystem::create_directories(root + "Resources/fonts");
            std::filesystem::copy_file(font, root + "Resources/fonts/Roboto-Regular.ttf",
                                       std::filesystem::copy_options::overwrite_existing);
        }
        // A target 2 km north-east of where the aircraft stands, and the boats farther.
        xphost::freezeAircraft(true);
        xphost::setBoat(0, {20000, 0, 20000, 0, 0});
        xphost::setBoat(1, {-20000, 0, 20000, 0, 0});
        writeFile("Resources/plugins/Vistarig/MyTargets/MyTargets.csv",
                  "Name, Date, Latitude, Longitude, Elevation in Meters\nMast,2024-01-01 10:00:00,47.4780,-122.2890,120\n");
        ASSERT_TRUE(xphost::enablePlugin(plugin));
        writeFile("Aircraft/Laminar Research/Cessna 172 SP/Vistarig_Cessna_172SP.csv",
                  "Category Name,Camera Name,View ID,X,Y,Z,heading,pitch,TrackIR Enabled,Smooth Transition\n" +
                      cameraRow({{1, "Seat"}}) +
                      cameraRow({{0, "Outside"}, {1, "Tracker"}, {3, "40"}, {4, "10"}, {5, "60"}, {33, "TRUE"}, {53, "TRUE"}}) +
                      cameraRow({{0, "Outside"}, {1, "Chase"}, {4, "3"}, {5, "20"}, {33, "TRUE"}}) +
                      cameraRow({{0, "Outside"}, {1, "Deck"}, {4, "30"}, {33, "TRUE"}, {53, "TRUE"}, {68, "1"}}));
        xphost::setMousePosition(kCentreX, kCentreY);
        planeLoaded();
        runFrames(2);
        ASSERT_TRUE(cameraEnabled()) << xphost::logTail(10);
        ASSERT_EQ(workingSet().categoryCount, 2) << xphost::logTail(20);
        settings().MOUSE_SMOOTHING_FACTOR = 1;
    }

    static bool windowVisible(const char* title) {
        xphost::WindowInfo w;
        return xphost::findWindow(title, w) && w.visible;
    }
    // The arrow buttons carry no label: the first and second unnamed items of the
    // child's menu bar, left to right.
    void clickArrow(int which) {
        xphost::UiFrame frame;
        ASSERT_EQ(xphost::uiFrame(kInfo, frame), "");
        std::vector<xphost::UiItem> arrows;
        for (const xphost::UiItem& item : frame.items)
            if (item.label.empty() && item.window.find("/TargetInfo") != std::string::npos) arrows.push_back(item);
        ASSERT_EQ(arrows.size(), 2u);
        if (arrows[0].left > arrows[1].left) std::swap(arrows[0], arrows[1]);
        xphost::click(arrows[which].centreX(), arrows[which].centreY());
        runFrames(3);
    }
    void tracker() {
        command("sim/view/3d_cockpit_cmnd_look");
        command("KVT/Vistarig/Select_Free_Target");  // jumps to the tracking camera
        runFrames(3);
        ASSERT_STREQ(currentCamera()->name, "Tracker");
        ASSERT_TRUE(xphost::cameraControlled());
    }
};

TEST_F(TargetPanelsTest, CommandsJumpToTheTrackingCameraAndTheMenuRereadsTheFile) {
    ASSERT_STREQ(currentCamera()->name, "Seat");
    EXPECT_EQ(xphost::drawCallbackCount(), 0) << "no cross without a tracking camera";
    command("KVT/Vistarig/Toggle_Target_Following_Camera");
    EXPECT_FALSE(currentCamera()->targetFollowing) << "a cockpit camera doesn't follow targets";

    command("KVT/Vistarig/Select_Nearest_Target");
    runFrames(2);
    ASSERT_STREQ(currentCamera()->name, "Tracker");
    EXPECT_EQ(xphost::drawCallbackCount(), 1);
    ASSERT_NE(currentTarget(), nullptr);
    EXPECT_STREQ(currentTarget()->name, "Mast");
    command("KVT/Vistarig/Select_Free_Target");
    EXPECT_TRUE(freeTargetSelected());
    command("KVT/Vistarig/Toggle_Target_Reciprocal");
    EXPECT_TRUE(currentCamera()->targetReciprocal);
    command("KVT/Vistarig/Toggle_Target_Following_Camera");
    EXPECT_FALSE(currentCamera()->targetFollowing);
    runFrames(2);
    EXPECT_EQ(xphost::drawCallbackCount(), 0);

    // A camera on the carrier: the list is built again for it, nearest first.
    currentCamera()->targetFollowing = true;
    command("KVT/Vistarig/Select_Next_Target");
    command("KVT/Vistarig/Previous_Camera");  // round to "Deck"
    runFrames(2);
    ASSERT_STREQ(currentCamera()->name, "Deck");
    EXPECT_EQ(nearTargets().selectedTarget, 0);
    bool carrier = false, aircraft = false;
    for (int i = 0; i < nearTargets().nearCount; ++i) {
        carrier |= nearTargets().entries[i] == &carrierTarget();
        aircraft |= nearTargets().entries[i] == &aircraftTarget();
    }
    EXPECT_FALSE(carrier);
    EXPECT_TRUE(aircraft);

    // A target added to the file by hand comes in with "Refresh Targets"; the selection stays.
    command("KVT/Vistarig/Select_Next_Target");
    const int selected = nearTargets().selectedTarget;
    writeFile("Resources/plugins/Vistarig/MyTargets/MyTargets.csv",
              "Name, Date, Latitude, Longitude, Elevation in Meters\nMast,2024-01-01 10:00:00,47.4780,-122.2890,120\n"
              "Pier,2024-01-02 10:00:00,47.4700,-122.3000,2\n");
    std::string error;
    ASSERT_TRUE(xphost::pickMenuItem("Plugins/Vistarig/Refresh Targets", error)) << error;
    bool found = false;
    for (int i = 0; i < nearTargets().nearCount; ++i) found |= std::string(nearTargets().entries[i]->name) == "Pier";
    EXPECT_TRUE(found);
    EXPECT_EQ(nearTargets().selectedTarget, selected);
}

TEST_F(TargetPanelsTest, TheRightButtonAimsTheFreeTargetUnderARedCrossAndPausesWhenAsked) {
    settings().PAUSE_ON_FREE_TARGET_AIM = true;
    // The info panel would stand over the cross on a screen whose primary monitor the
    // simulator hasn't told.
    settings().ENABLE_SHOW_TARGET_INFORMATION = false;
    showTargetInformation() = false;
    tracker();
    ASSERT_TRUE(freeTargetSelected());
    runFrames(1);
    EXPECT_EQ(redNearCentre(), 0) << "no cross without the button";

    // Pressed below the info panel, which stands in the middle of a screen whose
    // primary monitor the simulator hasn't told.
    xphost::mouseButton(1, 1, kCentreX, 300);
    runFrames(1);
    EXPECT_EQ(geti("sim/time/paused"), 1);
    EXPECT_GT(redNearCentre(), 40) << "the cross while aiming";
    EXPECT_TRUE(isCrossRed(xphost::screenPixel(kCentreX + 8, kCentreY)));
    EXPECT_TRUE(isCrossRed(xphost::screenPixel(kCentreX, kCentreY - 8)));
    EXPECT_FALSE(isCrossRed(xphost::screenPixel(kCentreX + 8, kCentreY + 8)));
    // Down a little, and let go.
    xphost::mouseMove(kCentreX, 240);
    runFrames(3);
    const CameraPose aimed = currentCamera()->transitionPose;
    xphost::mouseButton(1, 3, kCentreX, 240);
    runFrames(2);
    EXPECT_EQ(geti("sim/time/paused"), 0) << "the aim resumes the pause it made";
    EXPECT_EQ(redNearCentre(), 0);

    // The target lies on the ground along the line of sight that was aimed.
    const Target& t = freeTarget();
    double ground = 0;
    ASSERT_TRUE(xphost::terrainHeight(t.x, t.z, ground));
    EXPECT_NEAR(t.y, ground + 1.0, 0.1);
    const double dx = t.x - aimed.x, dz = t.z - aimed.z;
    double bearing = std::atan2(dx, -dz) * 180.0 / kPi;
    if (bearing < 0) bearing += 360.0;
    EXPECT_NEAR(bearing, aimed.heading, 0.5);
    const double pitch = std::atan2(ground - aimed.y, std::hypot(dx, dz)) * 180.0 / kPi;
    EXPECT_NEAR(pitch, std::remainder(aimed.pitch, 360.0), 0.5);

    // Without the setting the world runs on during the aim.
    settings().PAUSE_ON_FREE_TARGET_AIM = false;
    xphost::mouseButton(1, 1, kCentreX, 300);
    runFrames(2);
    EXPECT_EQ(geti("sim/time/paused"), 0);
    xphost::mouseButton(1, 3, kCentreX, 300);
    runFrames(2);
}

TEST_F(TargetPanelsTest, TheInfoPanelFollowsTheCameraAndItsSwitch) {
    EXPECT_FALSE(windowVisible(kInfo));
    tracker();
    command("KVT/Vistarig/Select_Nearest_Target");
    runFrames(2);
    ASSERT_TRUE(windowVisible(kInfo));
    EXPECT_EQ(xphost::uiExpectText(kInfo, "To: Mast"), "");
    EXPECT_EQ(xphost::uiExpectText(kInfo, "Bearing: ["), "");
    EXPECT_EQ(xphost::uiExpectText(kInfo, "Nautical Miles]"), "");
    std::string error;
    std::filesystem::create_directories(VISTARIG_SCREENSHOT_DIR);
    EXPECT_TRUE(xphost::screenshot(std::string(VISTARIG_SCREENSHOT_DIR) + "/target-info.png", &error)) << error;

    // Only the translucent child: the margin around it shows the view unchanged.
    xphost::WindowInfo w;
    ASSERT_TRUE(xphost::findWindow(kInfo, w));
    const int mx = w.left + 3, my = (w.top + w.bottom) / 2;
    const uint32_t withPanel = xphost::screenPixel(mx, my);
    const uint32_t inChild = xphost::screenPixel(w.left + 40, w.bottom + 30);

    command("KVT/Vistarig/Toggle_Target_Information");
    runFrames(2);
    EXPECT_FALSE(windowVisible(kInfo));
    EXPECT_EQ(xphost::screenPixel(mx, my), withPanel);
    EXPECT_NE(xphost::screenPixel(w.left + 40, w.bottom + 30), inChild) << "the child darkens the view";
    command("KVT/Vistarig/Toggle_Target_Information");
    runFrames(2);
    EXPECT_TRUE(windowVisible(kInfo));

    // Another camera hides the panel at the next flight loop; back, it shows.
    command("KVT/Vistarig/Next_Camera");  // the chase camera
    runFrames(2);
    EXPECT_FALSE(windowVisible(kInfo));
    command("KVT/Vistarig/Previous_Camera");
    runFrames(2);
    EXPECT_TRUE(windowVisible(kInfo));

    // The arrows step through the list.
    const int before = nearTargets().selectedTarget;
    clickArrow(1);
    EXPECT_EQ(nearTargets().selectedTarget, (before + 1) % nearTargets().nearCount);
    clickArrow(0);
    clickArrow(0);
    EXPECT_EQ(nearTargets().selectedTarget, (before + nearTargets().nearCount - 1) % nearTargets().nearCount);

    // The close box flips the switch; the command brings the panel back.
    ASSERT_EQ(xphost::uiClick(kInfo, "X##CloseTargetInfo"), "");
    runFrames(1);
    EXPECT_FALSE(showTargetInformation());
    EXPECT_FALSE(windowVisible(kInfo));
    command("KVT/Vistarig/Toggle_Target_Information");
    runFrames(2);
    EXPECT_TRUE(windowVisible(kInfo));

    // The switch starts from the setting at every enable.
    settings().ENABLE_SHOW_TARGET_INFORMATION = false;
    writeSettings();
    disable();
    EXPECT_EQ(targetInfoWidget(), nullptr);
    enable();
    EXPECT_FALSE(showTargetInformation());
}

TEST_F(TargetPanelsTest, SaveTargetComplainsOfAnEmptyNameKeepsTheNameAndMakesItsFolder) {
    tracker();
    std::filesystem::remove_all(root + "Resources/plugins/Vistarig/MyTargets");
    const int before = targetCount();
    command("KVT/Vistarig/Save_Camera_As_Target");
    runFrames(2);
    ASSERT_TRUE(windowVisible(kSave));
    ASSERT_EQ(xphost::uiClick(kSave, "Create Target"), "");
    EXPECT_EQ(xphost::uiExpectText(kSave, "You must give the target a name"), "");
    EXPECT_EQ(targetCount(), before);
    EXPECT_TRUE(windowVisible(kSave));

    ASSERT_EQ(xphost::uiType(kSave, "Target Name", "Ridge"), "");
    ASSERT_EQ(xphost::uiClick(kSave, "Create Target"), "");
    EXPECT_FALSE(windowVisible(kSave));
    EXPECT_EQ(targetCount(), before + 1);
    const std::string file = testsupport::readFile(root + "Resources/plugins/Vistarig/MyTargets/MyTargets.csv");
    EXPECT_NE(file.find("\nRidge,"), std::string::npos) << file;
    // The camera follows the Free Target, so the new target stands where that one does,
    // and the near list has it at once.
    const Target* ridge = nullptr;
    for (int i = 0; i < nearTargets().nearCount; ++i)
        if (std::string(nearTargets().entries[i]->name) == "Ridge") ridge = nearTargets().entries[i];
    ASSERT_NE(ridge, nullptr);
    EXPECT_NEAR(ridge->latitude, freeTarget().latitude, 1e-7);
    EXPECT_NEAR(ridge->longitude, freeTarget().longitude, 1e-7);
    EXPECT_NEAR(ridge->elevation, freeTarget().elevation, 0.01);
    EXPECT_TRUE(freeTargetSelected()) << "the selection stays with its target as the list is sorted again";

    // Opened again, the panel shows what was typed and said before.
    std::string error;
    ASSERT_TRUE(xphost::pickMenuItem("Plugins/Vistarig/Save Target Position", error)) << error;
    runFrames(2);
    EXPECT_TRUE(windowVisible(kSave));
    EXPECT_STREQ(saveTargetWidget()->targetName, "Ridge");
    EXPECT_EQ(xphost::uiExpectText(kSave, "You must give the target a name"), "");
    ASSERT_EQ(xphost::uiClick(kSave, "Cancel"), "");
    EXPECT_FALSE(windowVisible(kSave));
    EXPECT_EQ(targetCount(), before + 1);
}

}  // namespace

