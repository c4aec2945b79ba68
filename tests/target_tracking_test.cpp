// Target tracking against the host's datarefs and terrain: the cells searched around
// the centre, the near list across degree boundaries and at the pole, the objects each
// camera origin may aim at, the selection and its fall-back after 15 nautical miles,
// distances, the Free Target placed by an aim, and the aimed pose of a tracking camera.
#include <cmath>
#include <cstring>
#include <set>
#include <string>
#include <utility>

#include "data/targets.h"
#include "host/world.h"
#include "motion/target_tracking.h"
#include "motion_fixture.h"

namespace {

constexpr double kPi = 3.14159265358979323846;
double degrees(double radians) { return radians * 180.0 / kPi; }

class TargetTrackingTest : public MotionTest {
protected:
    void SetUp() override {
        MotionTest::SetUp();
        clearTargets();
        xphost::setTerrain([](double, double, double& y) {
            y = 0;
            return true;
        });
        buildCategory(2);
        placeAt(47.5, -122.3, 500);
    }
    void TearDown() override {
        clearTargets();
        MotionTest::TearDown();
    }

    // The aircraft at a world position, with both its local and world datarefs.
    static void placeAt(double latitude, double longitude, double elevation, float heading = 0) {
        double x, y, z;
        xphost::worldToLocal(latitude, longitude, elevation, x, y, z);
        placeAircraft(x, y, z, 0, 0, heading);
        xphost::forceValue("sim/flightmodel/position/latitude", latitude);
        xphost::forceValue("sim/flightmodel/position/longitude", longitude);
    }

    static std::set<std::string> listed() {
        std::set<std::string> names;
        const NearTargets& n = nearTargets();
        for (int i = 0; i < n.nearCount; ++i) names.insert(n.entries[i]->name);
        EXPECT_EQ(n.entries[n.nearCount], nullptr);
        return names;
    }

    static int indexOf(const char* name) {
        const NearTargets& n = nearTargets();
        for (int i = 0; i < n.nearCount; ++i)
            if (std::strcmp(n.entries[i]->name, name) == 0) return i;
        return -1;
    }
};

TEST_F(TargetTrackingTest, CellsAreTwoRowsOfThreeColumnsOrWholeRowsNearThePoles) {
    int cells[800][2];
    auto set = [&](int count) {
        std::set<std::pair<int, int>> s;
        for (int i = 0; i < count; ++i) s.insert({cells[i][0], cells[i][1]});
        return s;
    };
    // The second row lies towards the nearer edge of the cell.
    EXPECT_EQ(set(nearTargetCells(47.7, 8.5, cells, 800)),
              (std::set<std::pair<int, int>>{{137, 187}, {137, 188}, {137, 189}, {138, 187}, {138, 188}, {138, 189}}));
    EXPECT_EQ(set(nearTargetCells(47.3, 8.5, cells, 800)).count({136, 188}), 1u);
    EXPECT_EQ(set(nearTargetCells(-47.7, -8.5, cells, 800)),
              (std::set<std::pair<int, int>>{{43, 171}, {43, 172}, {43, 173}, {42, 171}, {42, 172}, {42, 173}}));
    // Across the date line the columns wrap.
    EXPECT_EQ(set(nearTargetCells(10.2, -180.0, cells, 800)).count({100, 359}), 1u);
    EXPECT_EQ(set(nearTargetCells(10.2, 179.5, cells, 800)).count({100, 360}), 1u);
    // Above 80 degrees every column of both rows, the meridian of 180 included.
    EXPECT_EQ(nearTargetCells(80.5, 10, cells, 800), 2 * 361);
    EXPECT_EQ(nearTargetCells(-85, 10, cells, 800), 2 * 361);
    EXPECT_EQ(nearTargetCells(79.9, 10, cells, 800), 6);
    EXPECT_EQ(nearTargetCells(85, 10, cells, 100), 100) << "the capacity holds";
}

TEST_F(TargetTrackingTest, NearListFindsTargetsAcrossCellEdgesAndAroundThePole) {
    // Near the north-east corner of its cell: neighbours across both edges count.
    placeAt(47.98, -122.02, 300);
    addTarget("North", "d", 48.01, -122.02, 0, 0);
    addTarget("East", "d", 47.98, -121.99, 0, 0);
    addTarget("Out of reach", "d", 48.6, -122.02, 0, 0);  // 69 km
    addTarget("Elsewhere", "d", 10, 10, 0, 0);
    rebuildNearTargets();
    EXPECT_EQ(listed(), (std::set<std::string>{"North", "East", "Free Target", "Aircraft Carrier", "Frigate"}));

    // Nothing stored near: the Free Target and the objects the camera may aim at.
    clearTargets();
    rebuildNearTargets();
    EXPECT_EQ(listed(), (std::set<std::string>{"Free Target", "Aircraft Carrier", "Frigate"}));
    EXPECT_LT(freeTarget().distanceKm, kNearTargetReachKm) << "a far Free Target comes back near the aircraft";

    // Near the pole a target a quarter turn of longitude away is 31 km off.
    placeAt(89.8, 0, 300);
    addTarget("Across the pole", "d", 89.8, 90, 0, 0);
    rebuildNearTargets();
    EXPECT_EQ(listed().count("Across the pole"), 1u);
}

TEST_F(TargetTrackingTest, TheObjectACameraHangsOnIsNeverItsTarget) {
    Camera& c = cam(0);
    c.external = true;
    struct Case {
        int origin;
        const char* absent;
    } cases[] = {{0, "My Aircraft"}, {1, "Aircraft Carrier"}, {2, "Frigate"}};
    for (const Case& k : cases) {
        c.cameraOrigin = k.origin;
        rebuildNearTargets();
        std::set<std::string> names = listed();
        EXPECT_EQ(names.size(), 3u) << k.origin;
        EXPECT_EQ(names.count(k.absent), 0u) << k.origin;
        EXPECT_EQ(names.count("Free Target"), 1u);
    }
}

TEST_F(TargetTrackingTest, SelectionWrapsAndFallsBackToTheNearestAfter15Miles) {
    xphost::setBoat(0, {0, 0, -30000, 0, 0});  // 30 km south of the origin
    xphost::setBoat(1, {0, 0, -40000, 0, 0});
    addTarget("Two km", "d", 47.518, -122.3, 0, 0);
    addTarget("One km", "d", 47.509, -122.3, 0, 0);
    Target* first = currentTarget();  // builds the list at the first need
    ASSERT_NE(first, nullptr);
    const NearTargets& n = nearTargets();
    ASSERT_EQ(n.nearCount, 5);
    for (int i = 1; i < n.nearCount; ++i) EXPECT_LE(n.entries[i - 1]->distanceKm, n.entries[i]->distanceKm);
    EXPECT_STREQ(first->name, "One km");

    selectPreviousTarget();
    EXPECT_EQ(n.selectedTarget, 4);
    selectNextTarget();
    EXPECT_EQ(n.selectedTarget, 0);
    selectFreeTarget();
    EXPECT_TRUE(currentTarget()->isFreeTarget);
    EXPECT_TRUE(freeTargetSelected());

    // 14.9 miles from where the list was built: the selection holds.
    const double perMile = 1.0 / 60.0 / 1.1515 / 0.8684;  // degrees of latitude a nautical mile
    placeAt(47.5 + 14.9 * perMile, -122.3, 500);
    EXPECT_TRUE(currentTarget()->isFreeTarget);
    // 15.1 miles: the list is built again around the new place and the nearest taken.
    placeAt(47.5 + 15.1 * perMile, -122.3, 500);
    Target* after = currentTarget();
    EXPECT_EQ(n.selectedTarget, 0);
    EXPECT_EQ(after, n.entries[0]);
    EXPECT_NEAR(n.listLatitude, 47.5 + 15.1 * perMile, 1e-9);
}

TEST_F(TargetTrackingTest, DistancesFromTheReferencePoint) {
    Target* here = addTarget("Right here", "d", 47.5, -122.3, 0, 0);
    here->distanceKm = 99;
    refreshTarget(here);
    EXPECT_EQ(here->distanceKm, 0.0f) << "no arc cosine on the spot itself";
    Target* mile = addTarget("A mile north", "d", 47.5 + 1.0 / 60.0, -122.3, 0, 0);
    refreshTarget(mile);
    EXPECT_NEAR(mile->distanceKm, 1.853, 0.01);
    // A stored target's local position comes from its world position.
    double x, y, z;
    xphost::worldToLocal(mile->latitude, mile->longitude, mile->elevation, x, y, z);
    EXPECT_NEAR(mile->x, x, 1e-6);
    EXPECT_NEAR(mile->z, z, 1e-6);

    // From a camera on the carrier, distances count from the carrier.
    double cx, cy, cz;
    xphost::worldToLocal(47.5, -122.3, 0, cx, cy, cz);
    xphost::setBoat(0, {cx, 0, cz - 1852.0, 0, 0});
    cam(0).external = true;
    cam(0).cameraOrigin = 1;
    refreshTarget(mile);
    EXPECT_LT(mile->distanceKm, 0.05);
    Target& carrier = carrierTarget();
    refreshTarget(&carrier);
    EXPECT_NEAR(carrier.z, cz - 1852.0, 0.01) << "an object's record follows the object";
    EXPECT_EQ(carrier.distanceKm, 0.0f);
}

TEST_F(TargetTrackingTest, TheFreeTargetGoesWhereTheAimMeetsTheGround) {
    CameraPose pose;
    pose.x = 0;
    pose.y = 100;
    pose.z = 0;
    pose.heading = 0;
    pose.pitch = 315;  // 45 degrees down
    ASSERT_TRUE(positionFreeTarget(pose));
    Target& t = freeTarget();
    EXPECT_STREQ(t.name, "Free Target");
    EXPECT_TRUE(t.isFreeTarget);
    EXPECT_NEAR(t.x, 0.0, 0.05);
    EXPECT_NEAR(t.z, -100.0, 0.05) << "100 m ahead, to the north";
    EXPECT_NEAR(t.y, 1.0, 0.05) << "a metre over the ground";
    pose.heading = 90;
    pose.pitch = -45;
    ASSERT_TRUE(positionFreeTarget(pose));
    EXPECT_NEAR(t.x, 100.0, 0.05);
    EXPECT_NEAR(t.z, 0.0, 0.05);

    // Straight down, level, up: the target stays.
    for (float pitch : {-90.0f, 270.0f, 0.0f, 360.0f, 10.0f}) {
        pose.pitch = pitch;
        EXPECT_FALSE(positionFreeTarget(pose)) << pitch;
        EXPECT_NEAR(t.x, 100.0, 0.05) << pitch;
    }
    EXPECT_NEAR(groundDistanceOfAim(100, -45), 100.0, 1e-9);

    // No terrain at the aim point: just above the camera, and false.
    xphost::setTerrain([](double x, double, double& y) {
        y = 0;
        return x < 50;
    });
    pose.pitch = -45;
    EXPECT_FALSE(positionFreeTarget(pose));
    EXPECT_NEAR(t.x, 0.0, 0.05);
    EXPECT_NEAR(t.y, 101.0, 0.05);
}

TEST_F(TargetTrackingTest, ATrackingCameraLooksAtItsTargetOrStandsAtItAndLooksBack) {
    Camera& c = cam(0);
    c.external = true;
    c.targetFollowing = true;
    c.x = 20;
    c.y = 5;
    c.z = 0;
    const double ax = xphost::getValue("sim/flightmodel/position/local_x");
    const double ay = xphost::getValue("sim/flightmodel/position/local_y");
    const double az = xphost::getValue("sim/flightmodel/position/local_z");
    // Nearer than the Free Target, which first goes 2.8 km ahead of the aircraft.
    double tx = ax + 500, ty = ay - 450, tz = az - 800, lat, lon, elev;
    xphost::localToWorld(tx, ty, tz, lat, lon, elev);
    Target* stored = addTarget("Tower", "d", lat, lon, elev, 0);
    ASSERT_EQ(currentTarget(), stored);

    CameraPose out;
    externalPose(&c, out, cameraPose(&c));
    const double dx = tx - out.x, dy = ty - out.y, dz = tz - out.z;
    EXPECT_NEAR(out.x, ax + 20, 1e-3);
    EXPECT_NEAR(out.heading, degrees(std::atan2(dx, -dz)), 0.01);
    EXPECT_NEAR(out.pitch, degrees(std::atan2(dy, std::hypot(dx, dz))), 0.01);
    EXPECT_EQ(out.roll, 0.0f);
    EXPECT_EQ(stored->headingTo, out.heading);
    EXPECT_EQ(stored->pitchTo, out.pitch);

    // Reciprocal: at the target, looking back at the aircraft.
    c.targetReciprocal = true;
    externalPose(&c, out, cameraPose(&c));
    EXPECT_NEAR(out.x, tx, 1e-2);
    EXPECT_NEAR(out.y, ty, 1e-2);
    EXPECT_NEAR(out.heading, degrees(std::atan2(ax - tx, -(az - tz))) + 360.0, 0.01);
    EXPECT_NEAR(out.pitch, degrees(std::atan2(ay - ty, std::hypot(ax - tx, az - tz))), 0.01);

    // Standing at the aircraft from a camera on the carrier: 10 m over it.
    c.cameraOrigin = 1;
    selectNearestTarget();
    nearTargets().selectedTarget = indexOf("My Aircraft");
    externalPose(&c, out, cameraPose(&c));
    EXPECT_NEAR(out.y, ay + 10.0, 1e-2);
}

}  // namespace
