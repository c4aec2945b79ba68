// The airports' camera files: which file serves an airport, the nearest airport with a
// file, the airports around the aircraft, and the airport camera nearest to it.
#include <cstring>

#include "airports/airport_files.h"
#include "data/camera_file.h"
#include "data/great_circle.h"
#include "motion/frame_driver.h"
#include "user_files_fixture.h"

namespace {

// Degrees of latitude for a distance in nautical miles, by the simulator's own rule of
// a nautical mile as a minute of arc (60 x 1.1515 statute miles x 0.8684).
double degreesFor(double nauticalMiles) { return nauticalMiles / (60.0 * 1.1515 * 0.8684); }

class AirportFilesTest : public UserFilesTest {
protected:
    void SetUp() override {
        UserFilesTest::SetUp();
        xphost::clearNavData();
        placeAircraft(43.0, -76.0);
    }
    void TearDown() override {
        freeCameraFileList();
        setControlPanelOpen(false);
        UserFilesTest::TearDown();
    }
    void placeAircraft(double latitude, double longitude) {
        xphost::forceValue("sim/flightmodel/position/latitude", latitude);
        xphost::forceValue("sim/flightmodel/position/longitude", longitude);
    }
    void airportFile(const char* folder, const char* name, const std::string& rows = "") {
        writeFile(pluginDir + folder + "/" + name,
                  "Category Name,Camera Name,View ID,X,Y,Z,heading,pitch,TrackIR Enabled,Smooth Transition\n" + rows);
    }
};

TEST_F(AirportFilesTest, TheUsersOwnFileWinsAndIdsMatchAsAnyCaseSubstring) {
    airportFile("CommunityAirportCameras", "KSYR-community.csv");
    airportFile("MyAirportCameras", "ksyr.csv");
    airportFile("CommunityAirportCameras", "KBTV.csv");
    buildCameraFileList();
    CameraFile* ksyr = findAirportFile("KsYr");
    ASSERT_TRUE(ksyr);
    EXPECT_EQ(ksyr->folderIndex, 0);
    EXPECT_STREQ(ksyr->fileName, "ksyr.csv");
    EXPECT_EQ(airportFilePath(*ksyr), pluginDir + "MyAirportCameras/ksyr.csv");
    ASSERT_TRUE(findAirportFile("BTV")) << "a three-letter ID matches the file of the four-letter one";
    EXPECT_EQ(findAirportFile("BTV")->folderIndex, 1);
    EXPECT_EQ(findAirportFile("EGLL"), nullptr);

    CameraFile named{};
    named.kind = 1;
    copyText(named.fileName, "KSYR-Syracuse v2.csv");
    EXPECT_EQ(airportIdOfFile(named), "KSYR");
    copyText(named.fileName, "noseparator");
    EXPECT_EQ(airportIdOfFile(named), "");
    named.kind = 0;
    EXPECT_EQ(airportIdOfFile(named), "");
}

TEST_F(AirportFilesTest, TheNearestFileLiesWithinTwentyNauticalMiles) {
    airportFile("MyAirportCameras", "KFAR.csv");
    xphost::addAirport("KFAR", "Far Field", 43.0 + degreesFor(19.9), -76.0, 100);
    xphost::addAirport("KNEA", "Near Field", 43.0 + degreesFor(2.0), -76.0, 100);  // nearer, without a file
    buildCameraFileList();
    lookUpAllAirportPositions();
    EXPECT_EQ(nearestAirportId(), "KNEA");
    CameraFile* found = findNearestAirportFile();
    ASSERT_TRUE(found);
    EXPECT_STREQ(found->fileName, "KFAR.csv");

    placeAircraft(43.0 - degreesFor(0.1), -76.0);  // now 20.0 away
    EXPECT_EQ(findNearestAirportFile(), nullptr);

    // Only the Control Panel makes a file for the nearest airport; a command does not.
    toggleAirportCameras();
    EXPECT_FALSE(isAirportSetActive());
    setControlPanelOpen(true);
    CameraFile* made = openAirportFile(nullptr);
    ASSERT_TRUE(made);
    EXPECT_STREQ(made->fileName, "KNEA.csv");
    EXPECT_FALSE(exists(pluginDir + "MyAirportCameras/KNEA.csv")) << "no file until the set is loaded";
    EXPECT_EQ(openAirportFile("KNEA"), made);
}

TEST_F(AirportFilesTest, TheNearbyListHoldsAirportsWithinTenMilesAndIsRebuiltAfterAMove) {
    xphost::addAirport("KIN1", "Inside", 43.0 + degreesFor(9.99), -76.0, 100);
    xphost::addAirport("KOUT", "Outside", 43.0 - degreesFor(10.01), -76.0, 100);
    airportFile("MyAirportCameras", "KIN1.csv");
    buildCameraFileList();
    std::vector<NearbyAirport> list = nearbyAirports(false);
    ASSERT_EQ(list.size(), 1u);
    EXPECT_STREQ(list[0].id, "KIN1");
    EXPECT_STREQ(list[0].name, "Inside");
    EXPECT_TRUE(list[0].hasFile);
    EXPECT_NEAR(list[0].distance, 9.99, 0.01);

    // A move under 0.1 nautical miles keeps the list; forcing rebuilds it.
    xphost::addAirport("KNEW", "New", 43.0, -76.0 + 0.01, 100);
    placeAircraft(43.0 + degreesFor(0.05), -76.0);
    EXPECT_EQ(nearbyAirports(false).size(), 1u);
    EXPECT_EQ(nearbyAirports(true).size(), 2u);
}

TEST_F(AirportFilesTest, TheNearestFreeCameraOfTheAirportSetIsSelected) {
    airportFile("MyAirportCameras", "KSYR.csv",
                "Gates,Not free,0,0,0,0,0,0,FALSE,FALSE\n");
    xphost::addAirport("KSYR", "Syracuse", 43.0 + degreesFor(1.0), -76.0, 100);
    buildCameraFileList();
    lookUpAllAirportPositions();
    writeFile(perModelPath(), "Category Name,Camera Name,View ID,X,Y,Z,heading,pitch,TrackIR Enabled,Smooth Transition\n"
                              "Cockpit,Pilot,1,0,1,0,0,0,FALSE,FALSE\n");
    loadCameraFile(nullptr);

    // From the aircraft's set the first call only switches to the airport's set.
    selectNearestAirportCamera();
    ASSERT_TRUE(isAirportSetActive());
    CameraSet& set = workingSet();
    ASSERT_EQ(set.categoryCount, 1);
    // Three more cameras: one free camera far off, two free ones at equal Manhattan
    // distance, and the camera that is not free and lies nearest of all.
    Category& gates = set.categories[0];
    auto freeCamera = [&](const char* name, float x, float y, float z) {
        Camera& c = gates.cameras[gates.cameraCount++];
        resetCamera(&c);
        copyText(c.name, name, kNameCopyLimit);
        c.external = c.freeCamera = true;
        c.x = x, c.y = y, c.z = z;
    };
    freeCamera("Far", 900, 0, 900);
    freeCamera("Tie A", 30, 10, 0);
    freeCamera("Tie B", 0, 10, 30);
    relinkSet(true);
    xphost::forceValue("sim/flightmodel/position/local_x", 0.0);
    xphost::forceValue("sim/flightmodel/position/local_y", 0.0);
    xphost::forceValue("sim/flightmodel/position/local_z", 0.0);
    selectNearestAirportCamera();
    EXPECT_STREQ(currentCamera()->name, "Tie A") << "the earlier of two equal, never the camera that is not free";

    // Leaving the airport set ends the automatic choice.
    frameDriver().autoNearestAirport = true;
    toggleAirportCameras();
    EXPECT_FALSE(isAirportSetActive());
    EXPECT_FALSE(frameDriver().autoNearestAirport);
    EXPECT_STREQ(currentCamera()->name, "Pilot");
}

}  // namespace
