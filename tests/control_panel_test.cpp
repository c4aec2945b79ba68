// The Control Panel in the loaded plug-in, worked through the UI driver as a user
// works it: the save row's timing, the airport set's rules, the translucent form's
// collapse, changes of form and font, the confirmations, the queries of
// ControlPanelAction, a driver that follows controls that move, and screenshots of
// both forms at UI scale 1 and 1.5.
#include <gtest/gtest.h>

#include "control_panel_fixture.h"

namespace {

using namespace controlpanel;

TEST_F(ControlPanelTest, SaveCompletedShowsInTheMenusFrameOrTheButtonsNextFrameFor60Frames) {
    open();
    EXPECT_TRUE(shows("Save All Cameras"));
    click("File");
    const xphost::UiItem save = item("Save All");
    xphost::click(save.centreX(), save.centreY());
    xphost::runFrames(2);  // the press, then the release in which the entry acts
    EXPECT_TRUE(shows("[SAVE COMPLETED]"));
    EXPECT_FALSE(has("Save All Cameras")) << "the text stands in the button's place";
    int shown = 0;
    while (shows("[SAVE COMPLETED]") && shown < 100) {
        ++shown;
        runFrames(1);
    }
    EXPECT_EQ(shown, 60);

    const xphost::UiItem button = item("Save All Cameras");
    xphost::click(button.centreX(), button.centreY());
    xphost::runFrames(2);
    EXPECT_FALSE(shows("[SAVE COMPLETED]")) << "the clicked button is drawn in its own frame";
    runFrames(1);
    EXPECT_TRUE(shows("[SAVE COMPLETED]"));
}

TEST_F(ControlPanelTest, AnAirportSetHidesAndClearsCreateBackupAndOffersItsOwnFileEntries) {
    ControlPanelWidget* panel = open();
    click("Create Backup");
    EXPECT_TRUE(panel->createBackup);
    EXPECT_TRUE(item("Create Backup").checked());

    CameraFile airport{};
    airport.kind = 1;
    setActiveFile(&airport);
    runFrames(1);
    EXPECT_FALSE(has("Create Backup"));
    EXPECT_FALSE(panel->createBackup);
    click("File");
    EXPECT_TRUE(has("Load Aircraft File"));
    EXPECT_FALSE(has("New Aircraft Camera File"));
    EXPECT_FALSE(has("Import Camera File"));
    click("File");
    click("Airport File");
    EXPECT_FALSE(item("Close Airport Camera File").disabled);
    click("Airport File");
    setActiveFile(savedActive);
    runFrames(1);
    EXPECT_TRUE(has("Create Backup"));
    EXPECT_FALSE(item("Create Backup").checked()) << "the cleared value stays cleared";
}

TEST_F(ControlPanelTest, CollapsedTranslucentPanelBuildsNothingAndExpandsWithoutTheAdvancedOptions) {
    ControlPanelWidget* panel = open();
    ASSERT_TRUE(panel->selfDecorated);
    EXPECT_EQ(controlPanelDecorationInUse(), 2);
    EXPECT_EQ(panel->fullHeight, 830);
    EXPECT_EQ(windowHeight(), 830 - 190) << "without the advanced options the first frame shortens the panel";
    EXPECT_FALSE(ControlPanelAction(6)) << "an open panel holds the chain";

    click("#collapse");
    EXPECT_TRUE(panel->collapsed);
    EXPECT_EQ(windowHeight(), 20);
    EXPECT_FALSE(shows("Save All Cameras"));
    EXPECT_FALSE(has("File"));
    EXPECT_TRUE(ControlPanelAction(6)) << "a collapsed panel lets the chain advance";
    panel->pendingPopup = ControlPanelWidget::confirmNewSetPopup;
    runFrames(2);
    EXPECT_FALSE(shows("WARNING")) << "no popups while collapsed";

    click("#collapse");
    EXPECT_FALSE(panel->collapsed);
    EXPECT_EQ(windowHeight(), 830 - 190);
    EXPECT_TRUE(shows("WARNING")) << "the waiting popup opens once expanded";
    click("Cancel");
}

TEST_F(ControlPanelTest, SolidBackgroundTakesANewWindowInTheNextFlightLoop) {
    // A new window, not only a new record: the allocator may hand back the same address.
    XPLMWindowID translucent = open()->GetWindowId();
    click("Solid Background");
    EXPECT_TRUE(settings().ENABLE_SOLID_CONTROL_PANEL);
    ControlPanelWidget* solid = controlPanelWidget();
    ASSERT_NE(solid, nullptr);
    EXPECT_NE(solid->GetWindowId(), translucent);
    EXPECT_EQ(controlPanelDecorationInUse(), 1);
    EXPECT_FALSE(solid->selfDecorated);
    EXPECT_TRUE(solid->IsVisible());
    EXPECT_EQ(windowHeight(), 805);

    // Popped out, then unchecked: back inside the simulator as a translucent panel.
    XPLMSetWindowPositioningMode(solid->GetWindowId(), xplm_WindowPopOut, -1);
    runFrames(2);
    ASSERT_TRUE(XPLMWindowIsPoppedOut(solid->GetWindowId()));
    EXPECT_EQ(settings().LAST_CONTROL_PANEL_POSITION.kind, 2);
    settings().ENABLE_SOLID_CONTROL_PANEL = false;
    runFrames(1);
    ControlPanelWidget* back = controlPanelWidget();
    ASSERT_NE(back, nullptr);
    EXPECT_TRUE(back->selfDecorated);
    EXPECT_FALSE(XPLMWindowIsPoppedOut(back->GetWindowId()));
    EXPECT_TRUE(back->IsVisible());
}

TEST_F(ControlPanelTest, SmallFontWhileHiddenDestroysThePanelAndTheNextToggleBuildsIt) {
    open();
    command(kToggle);
    runFrames(1);
    ASSERT_NE(controlPanelWidget(), nullptr) << "hidden, kept";
    EXPECT_FALSE(controlPanelOpen());
    settings().USE_SMALL_FONT = true;
    runFrames(1);
    EXPECT_EQ(controlPanelWidget(), nullptr);
    EXPECT_TRUE(ControlPanelAction(1));
    EXPECT_TRUE(controlPanelBuiltWithSmallFont());
    runFrames(1);
    EXPECT_EQ(windowHeight(), 700 + 25 - 190) << "the advanced options are off";
}

TEST_F(ControlPanelTest, NewCameraSetAsksFirstAndCancelChangesNothing) {
    open();
    const int before = categoryCount();
    ASSERT_GT(before, 1);
    click("File/New Aircraft Camera File");
    EXPECT_TRUE(shows("WARNING"));
    click("Cancel");
    EXPECT_FALSE(shows("WARNING"));
    EXPECT_EQ(categoryCount(), before);

    click("File/New Aircraft Camera File");
    click("Create New Aircraft Camera Set");
    EXPECT_EQ(categoryCount(), 1);
    EXPECT_STREQ(categoryAt(0)->name, "Cockpit");
}

TEST_F(ControlPanelTest, CopiedSetPastesBackAfterConfirmation) {
    open();
    const int before = categoryCount();
    click("Edit");
    EXPECT_TRUE(item("Paste Camera Set").disabled);
    click("Copy Camera Set");
    click("Category/Create Fly-By");
    ASSERT_EQ(xphost::uiType(kTitle, "Name##FlyByName", "Pass"), "");
    click("Create");
    ASSERT_EQ(categoryCount(), before + 1);
    click("Edit/Paste Camera Set");
    EXPECT_TRUE(shows("Do you want to paste this camera set?"));
    click("OK");
    EXPECT_EQ(categoryCount(), before);
    EXPECT_EQ(findOrAddCategory("Pass", false), -1);
}

TEST_F(ControlPanelTest, QueriesAndCloseWindowFollowThePanel) {
    EXPECT_FALSE(ControlPanelAction(5));
    EXPECT_TRUE(ControlPanelAction(6)) << "no panel, nothing holds the chain";
    EXPECT_FALSE(ControlPanelAction(7));
    ControlPanelWidget* panel = open();
    EXPECT_TRUE(controlPanelOpen());
    panel->allowAutoAdvance = true;
    EXPECT_TRUE(ControlPanelAction(6));
    panel->allowAutoAdvance = false;

    click("File/Close Window");
    EXPECT_FALSE(ControlPanelAction(5));
    EXPECT_FALSE(controlPanelOpen());
    EXPECT_EQ(controlPanelWidget(), panel) << "hidden, not destroyed";
    EXPECT_TRUE(ControlPanelAction(1));
    EXPECT_EQ(controlPanelWidget(), panel);
    EXPECT_FALSE(ControlPanelAction(4));
    EXPECT_EQ(controlPanelWidget(), nullptr);
    runFrames(2);
    xphost::WindowInfo w;
    EXPECT_FALSE(xphost::findWindow(kTitle, w));
}

TEST_F(ControlPanelTest, DriverFollowsAControlThatMovesAndNamesWhatItCannotFind) {
    ControlPanelWidget* panel = open();
    const xphost::UiItem before = item("Create Backup");
    int l = 0, t = 0, r = 0, b = 0;
    XPLMGetWindowGeometry(panel->GetWindowId(), &l, &t, &r, &b);
    XPLMSetWindowGeometry(panel->GetWindowId(), l - 120, t - 60, r - 120, b - 60);
    runFrames(1);
    const xphost::UiItem after = item("Create Backup");
    EXPECT_FLOAT_EQ(after.left, before.left - 120);
    EXPECT_FLOAT_EQ(after.top, before.top - 60);
    click("Create Backup");
    EXPECT_TRUE(panel->createBackup);
    EXPECT_TRUE(has("#0x" + [&] {
        char hex[16];
        std::snprintf(hex, sizeof hex, "%08X", after.id);
        return std::string(hex);
    }()));

    EXPECT_NE(xphost::uiClick(kTitle, "File/No Such Entry").find("No Such Entry"), std::string::npos);
    EXPECT_NE(xphost::uiClick("No Such Window", "File").find("no visible window"), std::string::npos);
    EXPECT_EQ(item("ChildCameraLists").isWindow, true);
    EXPECT_EQ(item("ChildCameraLists").right - item("ChildCameraLists").left, 435.0f);
}

// Both forms at UI scale 1 and 1.5, as PNG files beside the test binary.
TEST_F(ControlPanelTest, ScreenshotsOfBothFormsAtUiScaleOneAndOneAndAHalf) {
    const std::string folder = VISTARIG_SCREENSHOT_DIR;
    std::filesystem::create_directories(folder);
    for (float scale : {1.0f, 1.5f}) {
        for (bool solid : {true, false}) {
            ControlPanelAction(4);
            runFrames(1);
            xphost::setDrawScale(scale);
            settings().ENABLE_SOLID_CONTROL_PANEL = solid;
            open();
            click("Category/Create Orbit");
            runFrames(2);
            const std::string path = folder + "/control_panel_" + (solid ? "solid" : "translucent") + "_" +
                                     (scale == 1.0f ? "1" : "1.5") + ".png";
            std::string error;
            EXPECT_TRUE(xphost::screenshot(path, &error)) << error;
            EXPECT_TRUE(shows("Initial Camera Heading"));
            click("Cancel");
        }
    }
}

}  // namespace
