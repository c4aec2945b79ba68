// The view axis calibration wizard with the plug-in loaded in-process and worked through
// its panel by the UI driver: what opening it does to the settings and the camera, the
// centres it measures, and what "Finish" and "Cancel" leave in memory and in
// "Vistarig.ini" (the close box, and Cancel after the first step, are tried through the
// built .xpl in tests/xpl/calibrate_view_axis_xpl_test.cpp).
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

#include "data/aircraft_files.h"
#include "data/camera_file.h"
#include "data/settings.h"
#include "host/host.h"
#include "host/joystick.h"
#include "host/ui_driver.h"
#include "host/windows.h"
#include "inputs/axis_input.h"
#include "panels/calibrate_view_axis_widget.h"
#include "shell/host_interface.h"
#include "support/plugin_fixture.h"

namespace {

const char* const kTitle = "Calibrate View Axis";

// Mapped axis functions of the simulator: view heading, pitch, zoom, camera left/right,
// up/down, forward/back.
constexpr int kHeading = 41, kPitch = 42, kZoom = 43, kLeftRight = 44, kForwardBack = 46;

class CalibrateViewAxisTest : public PluginTest {
protected:
    void SetUp() override {
        overridePluginDirectory("");  // found again under this test's tree
        axisInput().calibrating = false;  // the axis tests before may leave it set
        PluginTest::SetUp();
        for (const char* folder : {"MyTargets", "AircraftCameraBackups", "MyAirportCameras"})
            std::filesystem::create_directories(root + "Resources/plugins/Vistarig/" + folder);
        const char* font = "/usr/share/fonts/truetype/roboto/unhinted/RobotoTTF/Roboto-Regular.ttf";
        if (std::filesystem::exists(font)) {
            std::filesystem::create_directories(root + "Resources/fonts");
            std::filesystem::copy_file(font, root + "Resources/fonts/Roboto-Regular.ttf",
                                       std::filesystem::copy_options::overwrite_existing);
        }
        // A cockpit camera looking straight ahead that takes the view axes.
        std::string row =
            "Cockpit,Axes,1,0,1,0,0,0,FALSE,FALSE,FALSE,FALSE,FALSE,FALSE,0,FALSE,FALSE,0,0,0,0,0,0,1,60,FALSE,"
            "FALSE,FALSE,FALSE,0,0,FALSE,TRUE,FALSE,FALSE,FALSE,1,FALSE,0,0,FALSE,2.4.3,60,Cessna_172SP,Tests,"
            "2024-01-01 12:00:00,0,FALSE,0,0,0,FALSE,0,FALSE,FALSE,FALSE,FALSE,0,0,FALSE,FALSE,FALSE,FALSE,FALSE,0,"
            "FALSE,0,0,0,FALSE\n";
        writeFile(aircraftFolder().substr(root.size()) + "Vistarig_Cessna_172SP.csv",
                  std::string(cameraFileHeader()) + row);
        // Calibrated before: these stand in the file and in memory.
        settings().VIEW_AXIS_HEADING_CENTER = 0.2f;
        settings().VIEW_AXIS_CAMERA_LR_CENTER = -0.1f;
        settings().VIEW_AXIS_NULL_ZONE = 0.05f;
        ASSERT_TRUE(writeSettings());
        planeLoaded();
        ASSERT_TRUE(cameraEnabled()) << xphost::logTail(10);
        ASSERT_FLOAT_EQ(settings().VIEW_AXIS_HEADING_CENTER, 0.2f);
        fileBefore = testsupport::readFile(iniPath());
    }

    std::string iniPath() const { return root + "Resources/plugins/Vistarig/Vistarig.ini"; }

    static void open() {
        std::string error;
        ASSERT_TRUE(xphost::pickMenuItem("Plugins/Vistarig/Calibrate View Axis", error)) << error;
        xphost::runFrames(2);
        ASSERT_NE(calibrateViewAxisWidget(), nullptr);
    }
    static void click(const char* label) { ASSERT_EQ(xphost::uiClick(kTitle, label), ""); }

    // The user's axes: heading, pitch and left/right off centre, forward/back at rest,
    // up/down not assigned.
    static void restAxes() {
        xphost::setMappedAxis(kHeading, true, 0.12f);
        xphost::setMappedAxis(kPitch, true, -0.04f);
        xphost::setMappedAxis(kZoom, true, 0.98f);
        xphost::setMappedAxis(kLeftRight, true, 0.75f);
        xphost::setMappedAxis(kForwardBack, true, 0.5f);
    }

    // Step one: every axis swept to both ends; step two: let go, and "Next" at once.
    void sweepAndCentre() {
        ASSERT_EQ(xphost::uiExpectText(kTitle, "Move each view axis through it's full range."), "");
        for (float end : {-1.0f, 1.0f}) {
            for (int f : {kHeading, kPitch, kLeftRight, kForwardBack}) xphost::setMappedAxis(f, true, end);
            runFrames(20);
        }
        click("Next");
        ASSERT_EQ(xphost::uiExpectText(kTitle, "Center each axis. Press Next when complete."), "");
        restAxes();
        click("Next");
        ASSERT_EQ(calibrateViewAxisWidget()->phase, 2);
    }

    void expectCentresBefore() {
        const Settings& s = settings();
        EXPECT_FLOAT_EQ(s.VIEW_AXIS_HEADING_CENTER, 0.2f);
        EXPECT_FLOAT_EQ(s.VIEW_AXIS_CAMERA_LR_CENTER, -0.1f);
        EXPECT_FLOAT_EQ(s.VIEW_AXIS_PITCH_CENTER, 0.0f);
        EXPECT_FLOAT_EQ(s.VIEW_AXIS_NULL_ZONE, 0.05f);
    }

    void expectMeasuredCentres() {
        const Settings& s = settings();
        EXPECT_NEAR(s.VIEW_AXIS_HEADING_CENTER, 0.12f, 1e-5);
        EXPECT_NEAR(s.VIEW_AXIS_PITCH_CENTER, -0.04f, 1e-5);
        EXPECT_NEAR(s.VIEW_AXIS_ZOOM_CENTER, 0.02f, 1e-5) << "1 - reading";
        EXPECT_NEAR(s.VIEW_AXIS_CAMERA_LR_CENTER, 0.5f, 1e-5) << "doubled about the middle";
        EXPECT_EQ(s.VIEW_AXIS_CAMERA_UD_CENTER, 0.0f) << "no reading stores 0";
        EXPECT_NEAR(s.VIEW_AXIS_CAMERA_FB_CENTER, 0.0f, 1e-5);
    }

    std::string fileBefore;
};

TEST_F(CalibrateViewAxisTest, OpeningShowsRawReadingsAndTheCameraIgnoresTheAxes) {
    xphost::setMappedAxis(kHeading, true, 0.3f);
    runFrames(10);
    EXPECT_NEAR(getf("sim/graphics/view/pilots_head_psi"), (0.3f - 0.2f) * 180.0f, 1e-3);

    open();
    EXPECT_TRUE(axisInput().calibrating);
    EXPECT_EQ(settings().VIEW_AXIS_HEADING_CENTER, 0.0f);
    EXPECT_EQ(settings().VIEW_AXIS_CAMERA_LR_CENTER, 0.0f);
    EXPECT_EQ(settings().VIEW_AXIS_NULL_ZONE, 0.0f);
    runFrames(5);
    EXPECT_NEAR(getf("sim/graphics/view/pilots_head_psi"), 0.0f, 1e-4) << "the camera's own heading";
    EXPECT_EQ(xphost::uiExpectText(kTitle, "Axis Not Detected - Check X-Plane axis assigments"), "");
    EXPECT_EQ(xphost::uiExpectText(kTitle, "View Heading"), "");
    EXPECT_EQ(xphost::uiExpectText(kTitle, "Camera Forward / Back"), "");

    // The menu item again keeps the one panel and the centres it put aside.
    open();
    EXPECT_FLOAT_EQ(calibrateViewAxisWidget()->savedCentres[kAxisViewHeading], 0.2f);
    EXPECT_FLOAT_EQ(calibrateViewAxisWidget()->savedNullZone, 0.05f);
}

TEST_F(CalibrateViewAxisTest, ThreeStepsMeasureTheCentresAndFinishWritesThem) {
    // A long filter: the frames alone can't fill it with the centred position before
    // "Next" acts, so the centres show that the wizard filled it itself.
    settings().VIEW_AXIS_SMOOTHING_FACTOR = 100;
    open();
    sweepAndCentre();
    expectMeasuredCentres();
    EXPECT_FLOAT_EQ(settings().VIEW_AXIS_NULL_ZONE, 0.05f) << "the null zone is back for the last step";
    EXPECT_TRUE(axisInput().calibrating);
    EXPECT_EQ(xphost::uiExpectText(kTitle, "Adjust the null zone. Press Finish when complete."), "");
    // A slider takes the press where it lands (the middle, 0.125), then the drag.
    ASSERT_EQ(xphost::uiDrag(kTitle, "Null Zone", 40, 0), "");
    const float nullZone = settings().VIEW_AXIS_NULL_ZONE;
    EXPECT_GT(nullZone, 0.125f);
    EXPECT_LE(nullZone, 0.25f);
    EXPECT_EQ(testsupport::readFile(iniPath()), fileBefore) << "nothing written before Finish";

    click("Finish");
    runFrames(2);
    EXPECT_EQ(calibrateViewAxisWidget(), nullptr);
    EXPECT_FALSE(axisInput().calibrating);
    xphost::WindowInfo w;
    EXPECT_FALSE(xphost::findWindow(kTitle, w));
    const std::string written = testsupport::readFile(iniPath());
    EXPECT_NE(written.find("VIEW_AXIS_HEADING_CENTER 0.120000\n"), std::string::npos) << written;
    EXPECT_NE(written.find("VIEW_AXIS_PITCH_CENTER -0.040000\n"), std::string::npos);
    EXPECT_NE(written.find("VIEW_AXIS_CAMERA_LR_CENTER 0.500000\n"), std::string::npos) << written;
    char nullZoneLine[64];
    std::snprintf(nullZoneLine, sizeof nullZoneLine, "VIEW_AXIS_NULL_ZONE %f\n", nullZone);
    EXPECT_NE(written.find(nullZoneLine), std::string::npos);
    // And they hold after the plug-in is disabled, which reads the file again.
    disable();
    enable();
    EXPECT_NEAR(settings().VIEW_AXIS_HEADING_CENTER, 0.12f, 1e-6);
}

TEST_F(CalibrateViewAxisTest, CancelAfterCentringPutsBackTheCentresInForceBefore) {
    open();
    sweepAndCentre();
    click("Cancel");
    runFrames(2);
    EXPECT_EQ(calibrateViewAxisWidget(), nullptr);
    EXPECT_FALSE(axisInput().calibrating);
    expectCentresBefore();
    EXPECT_EQ(testsupport::readFile(iniPath()), fileBefore);
}

TEST_F(CalibrateViewAxisTest, APluginDisableWithTheWizardOpenEndsItAndLeavesNothing) {
    open();
    click("Next");
    disable();
    EXPECT_EQ(calibrateViewAxisWidget(), nullptr);
    EXPECT_FALSE(axisInput().calibrating);
    expectCentresBefore();
    stop();
    EXPECT_TRUE(xphost::leaks().empty()) << xphost::leaks()[0];
}

}  // namespace
