// Airport cameras built from scenery, checked with geometry worked out here from the
// host's own coordinates: parking cameras look at the parked aircraft, runway cameras
// face each other down the runway, signs are culled and split into categories, and
// targets are made only for viewpoints, runway ends and helipads.
#include <cmath>
#include <cstring>
#include <sstream>

#include "airports/airport_cameras.h"
#include "airports/airport_files.h"
#include "data/camera_file.h"
#include "data/targets.h"
#include "host/world.h"
#include "panels/messages.h"
#include "user_files_fixture.h"

namespace {

constexpr double kLat = 47.0, kLon = 8.0;
constexpr double kPi = 3.14159265358979323846;

// Latitude and longitude of a point `east` and `north` metres from the reference.
void offset(double east, double north, double& latitude, double& longitude) {
    latitude = kLat + north / 111132.0;
    longitude = kLon + east / (111320.0 * std::cos(kLat * kPi / 180.0));
}

// The compass bearing from one local point to another (x east, z south).
double bearing(double x1, double z1, double x2, double z2) {
    double b = std::atan2(x2 - x1, -(z2 - z1)) * 180.0 / kPi;
    return b < 0 ? b + 360.0 : b;
}

double angleBetween(double a, double b) {
    double d = std::fabs(a - b);
    return d > 180.0 ? 360.0 - d : d;
}

class AirportCamerasTest : public UserFilesTest {
protected:
    std::ostringstream apt;

    void SetUp() override {
        UserFilesTest::SetUp();
        xphost::setReferencePoint(kLat, kLon);
        xphost::setTerrain([](double, double, double& y) {
            y = 5.0;
            return true;
        });
        clearTargets();
        apt << "I\n1100 Version\n\n1 100 0 0 XTST Test Field\n";
    }
    void TearDown() override {
        freeCameraFileList();
        clearTargets();
        UserFilesTest::TearDown();
    }

    void row(const std::string& text) { apt << text << "\n"; }
    std::string at(double east, double north) {
        double latitude, longitude;
        offset(east, north, latitude, longitude);
        char text[64];
        std::snprintf(text, sizeof text, "%.8f %.8f", latitude, longitude);
        return text;
    }

    // Writes the scenery and opens the airport's set, as the Control Panel would.
    void openAirport(const char* id = "XTST") {
        std::filesystem::create_directories(root + "Custom Scenery/Test Field/Earth nav data");
        writeFile(root + "Custom Scenery/Test Field/Earth nav data/apt.dat", apt.str());
        writeFile(root + "Custom Scenery/scenery_packs.ini", "SCENERY_PACK Custom Scenery/Test Field/\n");
        buildCameraFileList();
        loadCameraFile(openAirportFile(id));
        ASSERT_TRUE(isAirportSetActive());
    }

    const Category* category(const char* name) {
        for (int i = 0; i < categoryCount(); ++i)
            if (std::strcmp(workingSet().categories[i].name, name) == 0) return &workingSet().categories[i];
        return nullptr;
    }
    // Where a feature lies: apt.dat positions are kept in single precision.
    void local(double east, double north, double& x, double& z) {
        double latitude, longitude, y;
        offset(east, north, latitude, longitude);
        xphost::worldToLocal(float(latitude), float(longitude), 100 / 3.2808399, x, y, z);
    }
};

TEST_F(AirportCamerasTest, ParkingCamerasLookAtTheAircraftAndRunwayCamerasFaceEachOther) {
    // An aircraft parked 200 m east, facing 60 degrees; a runway whose ends lie on a
    // bearing of 45 degrees although it is named "09" and "27".
    row("1300 " + at(200, 0) + " 60.00 gate jets Gate A1");
    row("14 " + at(-50, -50) + " 65.6168 0 Tower");
    row("100 45 1 1 0.25 1 3 1 09 " + at(0, 0) + " 0 0 3 8 0 0 27 " + at(707.1, 707.1) + " 0 0 3 2 1 0");
    row("102 H1 " + at(300, 300) + " 0 10 10 1");
    openAirport();
    createAirportCameras(AirportCameraOptions());

    // The categories in their order, with no "Signs" (the field has none).
    ASSERT_EQ(categoryCount(), 4);
    EXPECT_STREQ(workingSet().categories[0].name, "Starting Locations");
    EXPECT_STREQ(workingSet().categories[1].name, "View Points");
    EXPECT_STREQ(workingSet().categories[2].name, "Runways");
    EXPECT_STREQ(workingSet().categories[3].name, "Helipads");

    double ax, az;
    local(200, 0, ax, az);
    const Camera& gate = category("Starting Locations")->cameras[0];
    EXPECT_STREQ(gate.name, "Gate A1");
    EXPECT_TRUE(gate.freeCamera && gate.external && gate.trackHeading);
    EXPECT_FLOAT_EQ(gate.pitch, -10.0f);
    EXPECT_NEAR(std::hypot(gate.x - ax, gate.z - az), 40.0, 0.01);
    EXPECT_NEAR(angleBetween(bearing(gate.x, gate.z, ax, az), gate.heading), 0.0, 0.01) << "looks at the aircraft";
    EXPECT_NEAR(gate.y, 5.0 + 20.0, 0.01);  // the ground curves away by 4 mm at 235 m
    EXPECT_NEAR(gate.heading, 240.0, 0.01);

    const Category& runways = *category("Runways");
    ASSERT_EQ(runways.cameraCount, 2);
    const Camera& end09 = runways.cameras[0];
    const Camera& end27 = runways.cameras[1];
    EXPECT_NEAR(end09.heading, 45.0, 0.05) << "from the ends' places, not the name";
    EXPECT_NEAR(angleBetween(end09.heading, end27.heading), 180.0, 0.05);
    double x0, z0;
    local(0, 0, x0, z0);
    EXPECT_NEAR(std::hypot(end09.x - x0, end09.z - z0), 40.0, 0.05);
    EXPECT_NEAR(angleBetween(bearing(end09.x, end09.z, x0, z0), 45.0), 0.0, 0.05) << "beyond its end, looking down";

    const Camera& tower = category("View Points")->cameras[0];
    EXPECT_NEAR(tower.y, 5.0 + 20.0, 1e-3) << "the viewpoint's 65.6 feet";

    // Targets for the viewpoint, both runway ends and the helipad; none for the gate.
    EXPECT_EQ(targetCount(), 4);
    EXPECT_NE(readFile(pluginDir + "MyTargets/MyTargets.csv").find("XTST - Runway - 27,"), std::string::npos);
}

TEST_F(AirportCamerasTest, ForwardFacingSignsCullingAndAMissingAirport) {
    row("1300 " + at(200, 0) + " 60.00 gate jets Gate A1");
    // Two signs 4 m apart, then 249 more 10 m apart, one of them with an empty text.
    row("20 " + at(0, 0) + " 0 0 2 {@Y}A1");
    row("20 " + at(4, 0) + " 0 0 2 {@Y}A2");
    for (int i = 1; i < 250; ++i) row("20 " + at(10.0 * i, 500) + " 0 0 2 " + (i == 7 ? "{@L}{@@}" : "{@Y}B_" + std::to_string(i)));
    openAirport();
    AirportCameraOptions options;
    options.forwardFacing = true;
    options.createTargets = false;
    createAirportCameras(options);

    double ax, az;
    local(200, 0, ax, az);
    const Camera& gate = category("Starting Locations")->cameras[0];
    EXPECT_NEAR(gate.heading, 60.0, 0.01) << "looks the way the aircraft points";
    EXPECT_NEAR(angleBetween(bearing(gate.x, gate.z, ax, az), 60.0), 0.0, 0.01) << "from behind it";

    // 250 signs kept of 251: "Signs 0", "Signs 1", "Signs 2" with 100, 100 and 50.
    ASSERT_TRUE(category("Signs 0") && category("Signs 1") && category("Signs 2"));
    EXPECT_EQ(category("Signs 0")->cameraCount, 100);
    EXPECT_EQ(category("Signs 1")->cameraCount, 100);
    EXPECT_EQ(category("Signs 2")->cameraCount, 50);
    EXPECT_EQ(category("Signs 3"), nullptr);
    EXPECT_STREQ(category("Signs 0")->cameras[1].name, "B 1") << "the sign 4 m away was culled";
    EXPECT_STREQ(category("Signs 0")->cameras[7].name, "Sign_7");
    EXPECT_EQ(targetCount(), 0);

    // With no culling both near signs stay.
    options.signCullingRadius = 0;
    createAirportCameras(options);
    EXPECT_STREQ(category("Signs 0")->cameras[1].name, "A2");
    EXPECT_EQ(category("Signs 2")->cameraCount, 51);

    // An airport the scenery doesn't hold: an announcement, and the set as it was.
    loadCameraFile(openAirportFile("XNON"));
    int before = categoryCount();
    createAirportCameras(options);
    EXPECT_EQ(categoryCount(), before);
    ASSERT_FALSE(queuedAnnouncements().empty());
    EXPECT_EQ(queuedAnnouncements().back(), "Unable to find this airport in the scenery database");
}

}  // namespace
