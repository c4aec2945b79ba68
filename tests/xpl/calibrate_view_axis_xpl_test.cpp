// The view axis calibration wizard of the built Vistarig.xpl, loaded by the host with
// dlopen and worked as a joystick user works it: the menu item, the three steps by the
// panel's buttons (UI driver), and then what stands in "Vistarig.ini" and what the view
// axis does with the centres in memory: the view heading turns by (reading - centre) * 180.
#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "host/host.h"
#include "host/joystick.h"
#include "host/ui_driver.h"
#include "host/windows.h"

namespace fs = std::filesystem;

namespace {

const char* const kTitle = "Calibrate View Axis";
constexpr int kHeading = 41, kPitch = 42;

std::string readFile(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

class CalibrateViewAxisXplTest : public ::testing::Test {
protected:
    fs::path root;
    int plugin = -1;
    std::string fileBefore;

    void SetUp() override {
        xphost::reset();
        root = fs::temp_directory_path() / ("vistarig-calibrate-" + std::to_string(::getpid()) + "-" +
                                            ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(root);
        fs::create_directories(root / "Aircraft/Test/Glider");
        for (const char* folder : {"lin_x64", "MyTargets", "AircraftCameraBackups", "MyAirportCameras"})
            fs::create_directories(root / "Resources/plugins/Vistarig" / folder);
        fs::create_directories(root / "Output/preferences");
        const char* font = "/usr/share/fonts/truetype/roboto/unhinted/RobotoTTF/Roboto-Regular.ttf";
        if (fs::exists(font)) {
            fs::create_directories(root / "Resources/fonts");
            fs::copy_file(font, root / "Resources/fonts/Roboto-Regular.ttf");
        }
        std::ofstream(root / "Aircraft/Test/Glider/Glider.acf") << "I\n1100 Version\n";
        // One cockpit camera looking ahead, with "Enable View Axis" (column 32).
        std::ofstream(root / "Aircraft/Test/Glider/Vistarig_Glider.csv")
            << "Category Name,Camera Name,View ID,X,Y,Z,heading,pitch,TrackIR Enabled,Smooth Transition\n"
            << "Cockpit,Axes,1,0,1,0,0,0,FALSE,FALSE,FALSE,FALSE,FALSE,FALSE,0,FALSE,FALSE,0,0,0,0,0,0,1,60,FALSE,"
               "FALSE,FALSE,FALSE,0,0,FALSE,TRUE,FALSE,FALSE,FALSE,1,FALSE,0,0,FALSE\n";
        // Calibrated before, by hand: the rest of the file keeps its defaults.
        std::ofstream(iniPath()) << "VIEW_AXIS_HEADING_CENTER 0.2\nVIEW_AXIS_NULL_ZONE 0.05\n";
        fileBefore = readFile(iniPath());
        fs::copy_file(VISTARIG_XPL_PATH, root / "Resources/plugins/Vistarig/lin_x64/Vistarig.xpl");
        xphost::setRoot(root.string());
        xphost::setUserAircraft("Aircraft/Test/Glider/Glider.acf");
        plugin = xphost::loadPlugin((root / "Resources/plugins/Vistarig/lin_x64/Vistarig.xpl").string());
        ASSERT_GE(plugin, 0) << xphost::logTail(20);
        ASSERT_TRUE(xphost::enablePlugin(plugin));
        xphost::sendPlaneLoaded(0);
        xphost::setMappedAxis(kHeading, true, 0.2f);
        xphost::setMappedAxis(kPitch, true, 0.0f);
        xphost::runFrames(5);
    }

    void TearDown() override {
        xphost::stopAllPlugins();
        EXPECT_TRUE(xphost::leaks().empty()) << xphost::leaks()[0];
        EXPECT_EQ(xphost::threadViolationCount(), 0);
        if (!HasFailure()) fs::remove_all(root);
    }

    fs::path iniPath() const { return root / "Resources/plugins/Vistarig/Vistarig.ini"; }

    static void open() {
        std::string error;
        ASSERT_TRUE(xphost::pickMenuItem("Plugins/Vistarig/Calibrate View Axis", error)) << error;
        xphost::runFrames(2);
        xphost::WindowInfo w;
        ASSERT_TRUE(xphost::findWindow(kTitle, w));
    }
    static void click(const char* label) { ASSERT_EQ(xphost::uiClick(kTitle, label), ""); }
    static void closeBox() {
        xphost::WindowInfo w;
        ASSERT_TRUE(xphost::findWindow(kTitle, w));
        xphost::closeWindow(w.id);
        xphost::runFrames(2);
        EXPECT_FALSE(xphost::findWindow(kTitle, w));
    }

    // Step one: the heading axis swept to both ends.
    static void sweep() {
        for (float end : {-1.0f, 1.0f, 0.6f}) {
            xphost::setMappedAxis(kHeading, true, end);
            xphost::runFrames(10);
        }
        click("Next");
    }
    // Step two: the heading axis let go where it rests, at 0.1.
    static void centre() {
        xphost::setMappedAxis(kHeading, true, 0.1f);
        click("Next");
    }

    // The view heading with the axis held at 0.4, once the smoothing has settled.
    static double headingAtPointFour() {
        xphost::setMappedAxis(kHeading, true, 0.4f);
        xphost::runFrames(20);
        return xphost::getValue("sim/graphics/view/pilots_head_psi");
    }
};

TEST_F(CalibrateViewAxisXplTest, ThreeStepsAndFinishPutTheNewCentresInTheSettingsFile) {
    EXPECT_NEAR(headingAtPointFour(), (0.4 - 0.2) * 180.0, 1e-3) << "the hand-made calibration";
    open();
    EXPECT_NEAR(headingAtPointFour(), 0.0, 1e-4) << "no axis moves the view during the wizard";
    EXPECT_EQ(xphost::uiExpectText(kTitle, "Move each view axis through it's full range. Press Next when complete."),
              "");
    sweep();
    EXPECT_EQ(xphost::uiExpectText(kTitle, "Center each axis. Press Next when complete."), "");
    centre();
    EXPECT_EQ(xphost::uiExpectText(kTitle, "Adjust the null zone. Press Finish when complete."), "");
    EXPECT_EQ(readFile(iniPath()), fileBefore);

    // The wizard as the user sees it in its last step.
    xphost::setMappedAxis(kHeading, true, 0.35f);
    xphost::setMappedAxis(kPitch, true, -0.3f);
    xphost::setMappedAxis(43, true, 0.6f);
    xphost::runFrames(10);
    const std::string folder = VISTARIG_SCREENSHOT_DIR;
    fs::create_directories(folder);
    std::string error;
    EXPECT_TRUE(xphost::screenshot(folder + "/calibrate_view_axis.png", &error)) << error;

    click("Finish");
    xphost::runFrames(2);
    xphost::WindowInfo w;
    EXPECT_FALSE(xphost::findWindow(kTitle, w));
    const std::string written = readFile(iniPath());
    EXPECT_NE(written.find("VIEW_AXIS_HEADING_CENTER 0.100000\n"), std::string::npos) << written;
    EXPECT_NE(written.find("VIEW_AXIS_NULL_ZONE 0.050000\n"), std::string::npos);
    EXPECT_NE(written.find("VIEW_AXIS_PITCH_CENTER 0.000000\n"), std::string::npos);
    EXPECT_NEAR(headingAtPointFour(), (0.4 - 0.1) * 180.0, 1e-3);
}

TEST_F(CalibrateViewAxisXplTest, CancelAfterTheFirstStepChangesNothing) {
    open();
    sweep();
    click("Cancel");
    xphost::runFrames(2);
    xphost::WindowInfo w;
    EXPECT_FALSE(xphost::findWindow(kTitle, w));
    EXPECT_EQ(readFile(iniPath()), fileBefore);
    EXPECT_NEAR(headingAtPointFour(), (0.4 - 0.2) * 180.0, 1e-3) << "the centre in force before";
}

TEST_F(CalibrateViewAxisXplTest, TheCloseBoxLeavesTheCentresInMemoryAsTheWizardLeftThemAndTheFileAlone) {
    // Closed after the first step: the centres stand at the zero that shows raw readings.
    open();
    sweep();
    closeBox();
    EXPECT_EQ(readFile(iniPath()), fileBefore);
    EXPECT_NEAR(headingAtPointFour(), 0.4 * 180.0, 1e-3);

    // Closed after the centring step: the measured centre acts, unwritten.
    open();
    sweep();
    centre();
    closeBox();
    EXPECT_EQ(readFile(iniPath()), fileBefore);
    EXPECT_NEAR(headingAtPointFour(), (0.4 - 0.1) * 180.0, 1e-3);
}

}  // namespace
