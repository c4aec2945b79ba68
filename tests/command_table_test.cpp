// The plug-in's own commands: that all 201 exist in the simulator with their handlers
// and leave nothing registered after stop, the DataRefTool notice, and what the rows
// and the numbered families do through the simulator's command path.
#include <algorithm>
#include <cstdio>
#include <set>

#include "commands_and_mouse_fixture.h"
#include "host/dataref_tool.h"
#include "motion/movement.h"
#include "panels/messages.h"
#include "shell/command_table.h"

namespace {

std::string own(const char* name) { return std::string("KVT/Vistarig/") + name; }

bool announced(const std::string& text) {
    for (const std::string& queued : queuedAnnouncements())
        if (queued == text) return true;
    for (const std::string& spoken : xphost::spoken())
        if (spoken == text) return true;
    return false;
}

// The numbered families, formatted here independently of the plug-in's table.
std::vector<std::string> familyNames() {
    std::vector<std::string> names;
    char text[96];
    for (int n = 1; n <= 50; ++n) {
        std::snprintf(text, sizeof text, "KVT/Vistarig/Select_View_ID_%d", n);
        names.push_back(text);
        std::snprintf(text, sizeof text, "KVT/Vistarig/Momentary_Select_View_ID_%d", n);
        names.push_back(text);
    }
    for (int n = 51; n <= 65; ++n) {
        std::snprintf(text, sizeof text, "KVT/Vistarig/Select_Airport_View_ID_%d", n);
        names.push_back(text);
    }
    for (int n = 1; n <= 20; ++n) {
        std::snprintf(text, sizeof text, "KVT/Vistarig/Select_Category_%d", n);
        names.push_back(text);
    }
    return names;
}

using CommandTableTest = PluginWithCameras;

TEST_F(CommandTableTest, AllCommandsExistInTheSimulatorAndTheirHandlersGoAtStop) {
    std::set<std::string> names;
    for (int row = 0; row < kCommandRowCount; ++row) names.insert(commandRow(row).name);
    for (const std::string& name : familyNames()) names.insert(name);
    ASSERT_EQ(names.size(), 201u);
    int existing = 0;
    for (const std::string& name : names) existing += xphost::commandExists(name) ? 1 : 0;
    EXPECT_EQ(existing, 201);
    // The families stop where their numbers do.
    EXPECT_FALSE(xphost::commandExists(own("Select_View_ID_51")));
    EXPECT_FALSE(xphost::commandExists(own("Select_Airport_View_ID_50")));
    EXPECT_FALSE(xphost::commandExists(own("Select_Category_21")));

    loadAircraftWithCameras();
    xphost::stopPlugin(plugin);
    // Neither the command handlers nor the interceptors stay behind.
    EXPECT_TRUE(xphost::leaks().empty()) << xphost::leaks().front();
}

TEST(CommandTableDataRefTool, EveryNumberedCommandIsOfferedWhenDataRefToolIsThere) {
    xphost::reset();
    xphost::addDataRefTool();
    xphost::EntryPoints entry;
    entry.start = XPluginStart;
    entry.enable = XPluginEnable;
    entry.disable = XPluginDisable;
    entry.stop = XPluginStop;
    entry.receive = XPluginReceiveMessage;
    int id = xphost::loadPlugin(entry, "/tmp/Vistarig.xpl");
    ASSERT_GE(id, 0);
    ASSERT_TRUE(xphost::enablePlugin(id));
    std::vector<std::string> expected = familyNames();
    std::vector<std::string> got = xphost::dataRefToolNames();
    std::sort(expected.begin(), expected.end());
    std::sort(got.begin(), got.end());
    EXPECT_EQ(got, expected);
    xphost::stopAllPlugins();
}

TEST_F(CommandTableTest, EnableRowsWorkWhileOffAndOtherRowsWaitForTheCameraLevel) {
    writeCameraFile();
    xphost::sendPlaneLoaded(0);
    ASSERT_TRUE(cameraEnabled());
    ASSERT_TRUE(xphost::runCommand(own("Toggle_Vistarig_on_or_off"), xphost::Phase::Once));
    EXPECT_FALSE(cameraEnabled());
    // Off: a camera command does nothing.
    Camera* before = currentCamera();
    xphost::runCommand(own("Next_Camera"), xphost::Phase::Once);
    EXPECT_EQ(currentCamera(), before);
    ASSERT_TRUE(xphost::runCommand(own("Toggle_Vistarig_on_or_off"), xphost::Phase::Once));
    EXPECT_TRUE(cameraEnabled());
    xphost::runCommand(own("Enable_Vistarig"), xphost::Phase::Once);
    EXPECT_TRUE(cameraEnabled());
    xphost::runCommand(own("Disable_Vistarig"), xphost::Phase::Once);
    EXPECT_FALSE(cameraEnabled());
    xphost::runCommand(own("Enable_Vistarig"), xphost::Phase::Once);
    EXPECT_TRUE(cameraEnabled());
}

TEST_F(CommandTableTest, SelectionRowsMoveTheSelectionAndBringTheCockpitBack) {
    loadAircraftWithCameras();
    ASSERT_EQ(currentCamera(), &camera(0, 0));
    // The user chose the simulator's chase view: the plug-in is passive...
    xphost::forceValue("sim/graphics/view/view_type", xphost::viewChase);
    xphost::runFrames(2);
    ASSERT_NE(xphost::viewType(), xphost::viewCockpit3d);
    // ...until a camera command, which the frame driver acts on in any view.
    xphost::runCommand(own("Next_Camera"), xphost::Phase::Once);
    EXPECT_EQ(currentCamera(), &camera(0, 1));
    xphost::runFrames(2);
    EXPECT_EQ(xphost::viewType(), xphost::viewCockpit3d);
    EXPECT_NEAR(xphost::getValue("sim/graphics/view/pilots_head_x"), 0.35, 1e-5);

    xphost::runCommand(own("Previous_Camera"), xphost::Phase::Once);
    EXPECT_EQ(currentCamera(), &camera(0, 0));
    xphost::runCommand(own("Next_Category"), xphost::Phase::Once);
    EXPECT_EQ(currentCategoryIndex(), 1);
    xphost::runCommand(own("Previous_Category"), xphost::Phase::Once);
    EXPECT_EQ(currentCategoryIndex(), 0);
    // Continue and end phases of a selection row do nothing.
    xphost::runCommand(own("Next_Camera"), xphost::Phase::Continue);
    EXPECT_EQ(currentCamera(), &camera(0, 0));
}

TEST_F(CommandTableTest, ViewIdCommandEnablesForAnAircraftWithItsOwnFileOnly) {
    // No camera file: the command does nothing.
    xphost::sendPlaneLoaded(0);
    ASSERT_FALSE(cameraEnabled());
    xphost::runCommand(own("Select_View_ID_3"), xphost::Phase::Once);
    EXPECT_FALSE(cameraEnabled());

    // With one, the same press enables and selects.
    writeCameraFile();
    xphost::sendPlaneLoaded(0);
    xphost::runCommand(own("Disable_Vistarig"), xphost::Phase::Once);
    ASSERT_FALSE(cameraEnabled());
    xphost::runCommand(own("Select_View_ID_4"), xphost::Phase::Once);
    EXPECT_TRUE(cameraEnabled());
    EXPECT_EQ(currentCamera(), &camera(0, 2));

    // A view ID that no camera has is announced and changes nothing.
    xphost::runCommand(own("Select_View_ID_9"), xphost::Phase::Once);
    EXPECT_EQ(currentCamera(), &camera(0, 2));
    EXPECT_TRUE(announced("Unable to find view ID 9"));
}

TEST_F(CommandTableTest, ReselectingATemporaryCameraPutsItBackHome) {
    loadAircraftWithCameras();
    Camera& left = camera(0, 0);
    left.temporaryPositioning = true;
    left.heading = 77;
    left.x = 3;
    xphost::runCommand(own("Select_View_ID_1"), xphost::Phase::Once);
    EXPECT_FLOAT_EQ(left.heading, left.homePose.heading);
    EXPECT_FLOAT_EQ(left.x, left.homePose.x);
}

TEST_F(CommandTableTest, MomentaryViewHoldsOnlyWhileTheButtonIsDown) {
    loadAircraftWithCameras();
    ASSERT_TRUE(xphost::runCommand(own("Momentary_Select_View_ID_2"), xphost::Phase::Begin));
    EXPECT_EQ(currentCamera(), &camera(0, 1));
    xphost::runFrames(3);
    EXPECT_EQ(currentCamera(), &camera(0, 1));
    xphost::runCommand(own("Momentary_Select_View_ID_2"), xphost::Phase::End);
    EXPECT_EQ(currentCamera(), &camera(0, 0));
}

TEST_F(CommandTableTest, CategoryCommandsCountFromOne) {
    loadAircraftWithCameras();
    xphost::runCommand(own("Select_Category_2"), xphost::Phase::Once);
    EXPECT_EQ(currentCategoryIndex(), 1);
    xphost::runCommand(own("Select_Category_1"), xphost::Phase::Once);
    EXPECT_EQ(currentCategoryIndex(), 0);
    xphost::runCommand(own("Select_Category_7"), xphost::Phase::Once);
    EXPECT_EQ(currentCategoryIndex(), 0);
}

TEST_F(CommandTableTest, PanRowTurnsTheCameraWhileHeldAndWalkModeTogglesByRow) {
    loadAircraftWithCameras();
    Camera& current = *currentCamera();
    float start = current.heading;
    xphost::runCommand(own("Pan_Right"), xphost::Phase::Begin);
    xphost::runFrames(5);
    xphost::runCommand(own("Pan_Right"), xphost::Phase::End);
    float turned = current.heading - start;
    EXPECT_GT(turned, 0.0f);
    xphost::runFrames(5);
    EXPECT_FLOAT_EQ(current.heading - start, turned);

    runCommandRow(kRowToggleWalkMode);
    EXPECT_TRUE(movementState().walkMode);
    runCommandRow(kRowToggleWalkMode);
    EXPECT_FALSE(movementState().walkMode);
}

}  // namespace
