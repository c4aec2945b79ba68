// The built Vistarig.xpl, loaded by the host with dlopen from an X-Plane tree on disk,
// as X-Plane loads it: the host and camera levels, plane loads, VR, and what the
// plug-in leaves registered when it stops.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include <unistd.h>

#include "host/host.h"

namespace fs = std::filesystem;

namespace {

const char* kHeadRefs[] = {"sim/graphics/view/pilots_head_x", "sim/graphics/view/pilots_head_y",
                           "sim/graphics/view/pilots_head_z", "sim/graphics/view/pilots_head_psi",
                           "sim/graphics/view/pilots_head_the"};

class XplLifecycleTest : public ::testing::Test {
protected:
    fs::path root;
    int plugin = -1;
    double defaultHead[5] = {};

    void SetUp() override {
        xphost::reset();
        root = fs::temp_directory_path() / ("vistarig-xpl-" + std::to_string(::getpid()) + "-" +
                                            ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(root);
        fs::create_directories(root / "Aircraft/Test/Glider");
        fs::create_directories(root / "Resources/plugins/Vistarig/lin_x64");
        fs::create_directories(root / "Output/preferences");
        std::ofstream(root / "Aircraft/Test/Glider/Glider.acf") << "I\n1100 Version\n";
        fs::copy_file(VISTARIG_XPL_PATH, root / "Resources/plugins/Vistarig/lin_x64/Vistarig.xpl");
        xphost::setRoot(root.string());
        xphost::setUserAircraft("Aircraft/Test/Glider/Glider.acf");
        for (int i = 0; i < 5; ++i) defaultHead[i] = xphost::getValue(kHeadRefs[i]);
        plugin = xphost::loadPlugin((root / "Resources/plugins/Vistarig/lin_x64/Vistarig.xpl").string());
        ASSERT_GE(plugin, 0) << xphost::logTail(20);
        ASSERT_TRUE(xphost::enablePlugin(plugin));
    }

    void TearDown() override {
        xphost::stopAllPlugins();
        EXPECT_EQ(xphost::threadViolationCount(), 0);
        fs::remove_all(root);
    }

    // A camera file of one category whose rows carry only the first ten columns, as
    // the oldest files do.
    void writeCameraFile(const char* rows) {
        std::ofstream(root / "Aircraft/Test/Glider/Vistarig_Glider.csv")
            << "Category Name,Camera Name,View ID,X,Y,Z,heading,pitch,TrackIR Enabled,Smooth Transition\n"
            << rows;
    }

    void expectHeadAt(double x, double y, double z, double psi, double the) {
        const double want[5] = {x, y, z, psi, the};
        for (int i = 0; i < 5; ++i) EXPECT_NEAR(xphost::getValue(kHeadRefs[i]), want[i], 1e-4) << kHeadRefs[i];
    }

    void expectHeadAtDefault() {
        for (int i = 0; i < 5; ++i) EXPECT_NEAR(xphost::getValue(kHeadRefs[i]), defaultHead[i], 1e-6) << kHeadRefs[i];
    }
};

TEST_F(XplLifecycleTest, PlaneLoadWithCameraFileDrivesTheHeadAndDisableRestoresIt) {
    writeCameraFile("Cockpit,Left Seat,1,-0.35,1.05,-2.4,15,-5,FALSE,FALSE\n"
                    "Cockpit,Right Seat,2,0.35,1.05,-2.4,-10,-3,FALSE,FALSE\n");
    xphost::sendPlaneLoaded(0);
    xphost::runFrames(100);
    EXPECT_EQ(xphost::viewType(), xphost::viewCockpit3d);
    EXPECT_FALSE(xphost::cameraControlled());
    expectHeadAt(-0.35, 1.05, -2.4, 15, -5);
    // Every frame wrote the camera, not only the last one.
    const auto& frames = xphost::frames();
    ASSERT_GE(frames.size(), 100u);
    for (size_t i = frames.size() - 90; i < frames.size(); ++i) EXPECT_NEAR(frames[i].headPsi, 15.0, 1e-4);

    xphost::disablePlugin(plugin);
    expectHeadAtDefault();
}

TEST_F(XplLifecycleTest, PlaneLoadForAnotherAircraftChangesNothing) {
    writeCameraFile("Cockpit,Left Seat,1,-0.35,1.05,-2.4,15,-5,FALSE,FALSE\n");
    xphost::sendPlaneLoaded(1);
    xphost::runFrames(30);
    expectHeadAtDefault();
}

TEST_F(XplLifecycleTest, AircraftWithoutCameraFileLeavesTheViewToTheSimulator) {
    xphost::sendPlaneLoaded(0);
    xphost::runFrames(30);
    expectHeadAtDefault();
    EXPECT_EQ(xphost::viewType(), xphost::viewCockpit3d);
}

TEST_F(XplLifecycleTest, VirtualRealityRefusesTheCameraLevel) {
    writeCameraFile("Cockpit,Left Seat,1,-0.35,1.05,-2.4,15,-5,FALSE,FALSE\n");
    ASSERT_TRUE(xphost::forceValue("sim/graphics/VR/enabled", 1));
    xphost::sendPlaneLoaded(0);
    xphost::runFrames(30);
    expectHeadAtDefault();
    EXPECT_NE(xphost::logText().find("will not auto-enable because Vistarig does not support Virtual Reality Mode"),
              std::string::npos);

    // Entering VR while enabled switches the camera level off again.
    ASSERT_TRUE(xphost::forceValue("sim/graphics/VR/enabled", 0));
    xphost::sendPlaneLoaded(0);
    xphost::runFrames(5);
    expectHeadAt(-0.35, 1.05, -2.4, 15, -5);
    xphost::sendEnteredVr();
    xphost::runFrames(5);
    expectHeadAtDefault();
}

TEST_F(XplLifecycleTest, StopLeavesNothingRegistered) {
    writeCameraFile("Cockpit,Left Seat,1,-0.35,1.05,-2.4,15,-5,FALSE,FALSE\n");
    xphost::sendPlaneLoaded(0);
    xphost::runFrames(10);
    xphost::stopPlugin(plugin);
    EXPECT_TRUE(xphost::leaks().empty()) << [] {
        std::string all;
        for (const auto& line : xphost::leaks()) all += line + "\n";
        return all;
    }();
    EXPECT_NE(xphost::logText().find("Vistarig: Initialization complete for version 2.4.3"), std::string::npos);
}

}  // namespace

// Mesa keeps its context allocations until the process ends; they are not ours.
extern "C" const char* __lsan_default_suppressions() { return "leak:libOSMesa.so\n"; }
