// Other aircraft: counting and reading them from the source in force (TCAS or the
// multiplayer slots), the list by distance, stepping through it, the offset scale, and
// an outside camera riding the followed plane through renumbering and departures. The
// traffic is the host's stand-in traffic plug-in.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "XPLMPlanes.h"
#include "data/angles.h"
#include "host/traffic.h"
#include "host/world.h"
#include "motion/ai_traffic.h"
#include "motion_fixture.h"

namespace {

constexpr double kNm = 1852.0;

class AiTrafficTest : public MotionTest {
protected:
    void SetUp() override {
        MotionTest::SetUp();
        initAiTraffic();
        aiPlaneSelection() = AiPlaneSelection();
        buildCategory(2);
    }

    // A plane parked in the air: it doesn't move while no frame runs.
    static void join(const char* flightId, int id, double x, double y, double z, float heading = 0,
                     float turnRate = 0) {
        xphost::TrafficPath path;
        path.startX = x;
        path.startY = y;
        path.startZ = z;
        path.headingDeg = heading;
        path.turnRate = turnRate;
        ASSERT_TRUE(xphost::addTrafficAircraft(flightId, id, path));
    }

    // Four planes, from index 0: 3 km east, 1 km north, 1 km south, 5 km west.
    static void fourPlanes() {
        xphost::installTraffic(xphost::TrafficSource::Tcas);
        join("EAST3", 0xA1, 3000, 0, 0, 90, 2.0f);
        join("NORTH1", 0xA2, 0, 0, -1000, 180);
        join("SOUTH1", 0xA3, 0, 0, 1000, 270);
        join("WEST5", 0xA4, -5000, 0, 0, 0);
    }

    static Camera& outside(float x, float y, float z) {
        Camera& c = cam(0);
        c.external = true;
        c.x = x;
        c.y = y;
        c.z = z;
        return c;
    }

    static CameraPose pose(const Camera& c) {
        CameraPose in;
        in.x = c.x;
        in.y = c.y;
        in.z = c.z;
        in.heading = c.heading;
        in.pitch = c.pitch;
        return in;
    }

    // Where the camera stands and looks when it rides a plane (or the aircraft) with
    // this attitude: its offset carried through the attitude, its view along it.
    static void expectRiding(const CameraPose& out, double x, double y, double z, float heading, float pitch,
                             float roll, Vector3 offset) {
        Vector3 r = rotateByAttitude(offset, pitch, heading, roll);
        EXPECT_NEAR(out.x, x + r.x, 1e-3);
        EXPECT_NEAR(out.y, y + r.y, 1e-3);
        EXPECT_NEAR(out.z, z + r.z, 1e-3);
        EXPECT_NEAR(foldAngle(out.heading - heading), 0.0f, 0.01f);
        EXPECT_NEAR(out.pitch, pitch, 0.01f);
        EXPECT_NEAR(out.roll, roll, 0.01f);
    }
};

// ---------------------------------------------------------------- reading the traffic

TEST_F(AiTrafficTest, CountsOnlyOtherAircraftAndReadsWhicheverSourceIsFilled) {
    // Only the user's aircraft: nothing, not -1; nothing to follow.
    EXPECT_EQ(aiPlaneCount(), 0);
    EXPECT_FALSE(tcasAvailable());
    toggleAiPerspective();
    EXPECT_FALSE(aiPlaneSelection().perspectiveOn);
    EXPECT_EQ(trafficList().count, 0);

    fourPlanes();
    join("LONGNAME", 0xB5, 100, 200, 300);
    ASSERT_EQ(aiPlaneCount(), 5);
    ASSERT_TRUE(tcasAvailable());
    AiPlaneRecord north = aiPlaneRecord(1);
    EXPECT_FLOAT_EQ(north.z, -1000.0f);
    EXPECT_FLOAT_EQ(north.heading, 180.0f);
    EXPECT_STREQ(aiPlaneCallsign(1), "NORTH1");
    EXPECT_STREQ(aiPlaneCallsign(4), "LONGNAM");  // seven characters at most
    EXPECT_EQ(aiPlaneId(3), 0xA4);
    EXPECT_EQ(aiPlaneIndexOfId(0xA3), 2);
    EXPECT_EQ(aiPlaneIndexOfId(0x999), 0);
    // A turning plane banks: its attitude is read, not assumed level.
    EXPECT_GT(aiPlaneRecord(0).roll, 5.0f);

    // The older way: the same planes in the multiplayer slots, numbers for identifiers,
    // no flight IDs.
    xphost::installTraffic(xphost::TrafficSource::Multiplayer);
    EXPECT_FALSE(tcasAvailable());
    ASSERT_EQ(aiPlaneCount(), 5);
    AiPlaneRecord last = aiPlaneRecord(4);
    EXPECT_FLOAT_EQ(last.x, 100.0f);
    EXPECT_FLOAT_EQ(last.y, 200.0f);
    EXPECT_FLOAT_EQ(last.z, 300.0f);
    EXPECT_STREQ(aiPlaneCallsign(1), "");
    EXPECT_EQ(aiPlaneId(3), 3);
    EXPECT_EQ(aiPlaneIndexOfId(3), 0);

    // More active aircraft than the source's table: only the table is read.
    xphost::setAircraftCount(40, 40);
    EXPECT_EQ(aiPlaneCount(), kMaxMultiplayerPlanes);
    EXPECT_FLOAT_EQ(aiPlaneRecord(25).x, 0.0f);
}

// ---------------------------------------------------------------- by distance

TEST_F(AiTrafficTest, ListsNearestFirstWithEqualDistancesInIndexOrderFromTheCamerasReference) {
    fourPlanes();
    TrafficList list = trafficList();
    ASSERT_EQ(list.count, 4);
    const int32_t order[4] = {1, 2, 0, 3};
    for (int i = 0; i < 4; ++i) EXPECT_EQ(list.entries[i].index, order[i]) << i;
    EXPECT_FLOAT_EQ(list.entries[0].distance, static_cast<float>(1000.0 / kNm));
    EXPECT_FLOAT_EQ(list.entries[1].distance, list.entries[0].distance);
    EXPECT_FLOAT_EQ(list.entries[3].distance, static_cast<float>(5000.0 / kNm));

    // Wrapping at both ends; an index the list doesn't hold starts from an end.
    EXPECT_EQ(nextFartherIndex(list, 3), 1);
    EXPECT_EQ(previousNearerIndex(list, 1), 3);
    EXPECT_EQ(nextFartherIndex(list, 2), 0);
    EXPECT_EQ(previousNearerIndex(list, 0), 2);
    EXPECT_EQ(nextFartherIndex(list, 17), 1);
    EXPECT_EQ(previousNearerIndex(list, 17), 3);
    TrafficList empty;
    EXPECT_EQ(nextFartherIndex(empty, 2), 0);
    EXPECT_EQ(previousNearerIndex(empty, 2), 0);

    // Under control a free camera measures from where it stands, an outside camera on
    // the carrier from the carrier.
    frameDriver().cameraControlled = true;
    Camera& c = cam(0);
    c.external = c.freeCamera = true;
    c.x = -5000;
    c.y = 0;
    c.z = 0;
    EXPECT_EQ(trafficList().entries[0].index, 3);
    EXPECT_NEAR(aiPlaneDistance(3), 0.0f, 1e-6);
    c.freeCamera = false;
    c.cameraOrigin = 1;
    xphost::Boat carrier = xphost::boat(0);
    carrier.x = 3000;
    carrier.y = 0;
    carrier.z = 0;
    xphost::setBoat(0, carrier);
    EXPECT_EQ(trafficList().entries[0].index, 0);
}

TEST_F(AiTrafficTest, SelectionCommandsStepAndWrapOnlyWhileFollowing) {
    fourPlanes();
    AiPlaneSelection& s = aiPlaneSelection();
    selectNextAiPlane();
    selectNextDistantAiPlane();
    EXPECT_EQ(s.index, 0);  // off: nothing moves

    s.index = 9;  // a plane that has gone since it was chosen
    toggleAiPerspective();
    ASSERT_TRUE(s.perspectiveOn);
    EXPECT_EQ(s.index, 0);
    EXPECT_EQ(s.modeSId, 0xA1);

    selectPreviousAiPlane();
    EXPECT_EQ(s.index, 3);
    EXPECT_EQ(s.modeSId, 0xA4);
    selectNextAiPlane();
    EXPECT_EQ(s.index, 0);

    // By distance, from the farthest (3) on to the nearest (1), and back.
    s.index = 3;
    s.modeSId = 0xA4;
    selectNextDistantAiPlane();
    EXPECT_EQ(s.index, 1);
    EXPECT_EQ(s.modeSId, 0xA2);
    selectPreviousDistantAiPlane();
    EXPECT_EQ(s.index, 3);
    selectPreviousDistantAiPlane();
    EXPECT_EQ(s.index, 0);

    selectAiPlane(4);  // out of range: ignored
    EXPECT_EQ(s.index, 0);
    selectAiPlane(2);
    EXPECT_EQ(s.modeSId, 0xA3);

    // Off and on again keeps the plane.
    toggleAiPerspective();
    EXPECT_FALSE(s.perspectiveOn);
    toggleAiPerspective();
    EXPECT_EQ(s.index, 2);
}

TEST_F(AiTrafficTest, ScaleStepsStopAtTheirLimits) {
    EXPECT_FLOAT_EQ(steppedScale(5.9f, kAiScaleStep), 6.0f);
    EXPECT_FLOAT_EQ(steppedScale(6.0f, kAiScaleStep), 6.0f);
    EXPECT_FLOAT_EQ(steppedScale(0.3f, -kAiScaleStep), 0.2f);
    EXPECT_FLOAT_EQ(steppedScale(0.2f, -kAiScaleStep), 0.2f);
    // A long run of presses lands on the limits exactly, so the panels' arrows go.
    AiPlaneSelection& s = aiPlaneSelection();
    for (int i = 0; i < 30; ++i) aiScaleUp();
    EXPECT_EQ(s.scale, kAiScaleMax);
    for (int i = 0; i < 30; ++i) aiScaleDown();
    EXPECT_EQ(s.scale, kAiScaleMin);
}

// ---------------------------------------------------------------- riding a plane

TEST_F(AiTrafficTest, TheViewRidesTheFollowedPlaneThroughRenumberingAndDepartures) {
    placeAircraft(50, 300, 60, 4, -7, 33);
    fourPlanes();
    Camera& c = outside(4, 3, 25);
    AiPlaneSelection& s = aiPlaneSelection();
    toggleAiPerspective();  // plane 0, EAST3, turning and banked
    CameraPose out;
    externalPose(&c, out, pose(c));
    AiPlaneRecord p = aiPlaneRecord(0);
    expectRiding(out, p.x, p.y, p.z, p.heading, p.pitch, p.roll, {4, 3, 25});

    // The offset grows with the scale; the stored camera doesn't.
    aiScaleUp();
    aiScaleUp();
    externalPose(&c, out, pose(c));
    expectRiding(out, p.x, p.y, p.z, p.heading, p.pitch, p.roll, {4 * 1.4f, 3 * 1.4f, 25 * 1.4f});
    EXPECT_FLOAT_EQ(c.z, 25.0f);
    s.scale = 1.0f;

    // The simulator renumbers: the view stays on EAST3, now at index 2; the target
    // reference follows it too.
    ASSERT_TRUE(xphost::moveTrafficAircraft("EAST3", 2));
    externalPose(&c, out, pose(c));
    EXPECT_EQ(s.index, 2);
    expectRiding(out, p.x, p.y, p.z, p.heading, p.pitch, p.roll, {4, 3, 25});
    double rx, ry, rz;
    ASSERT_TRUE(aiTargetReferencePoint(rx, ry, rz));
    EXPECT_EQ(rx, 3000.0);

    // It leaves while others remain: plane 0 without a word.
    ASSERT_TRUE(xphost::removeTrafficAircraft("EAST3"));
    externalPose(&c, out, pose(c));
    EXPECT_TRUE(s.perspectiveOn);
    EXPECT_EQ(s.index, 0);
    EXPECT_EQ(s.modeSId, 0xA2);
    AiPlaneRecord north = aiPlaneRecord(0);
    expectRiding(out, north.x, north.y, north.z, north.heading, north.pitch, north.roll, {4, 3, 25});

    // The last leaves: back on the user's aircraft, the perspective off by itself.
    s.scale = 3.0f;
    for (const char* id : {"NORTH1", "SOUTH1", "WEST5"}) ASSERT_TRUE(xphost::removeTrafficAircraft(id));
    externalPose(&c, out, pose(c));
    EXPECT_FALSE(s.perspectiveOn);
    expectRiding(out, 50, 300, 60, 33, 4, -7, {4, 3, 25});
    EXPECT_FALSE(aiTargetReferencePoint(rx, ry, rz));
    EXPECT_TRUE(xphost::spoken().empty());
}

TEST_F(AiTrafficTest, FreeAndGroundHoldingCamerasKeepTheirOwnValues) {
    fourPlanes();
    AiPlaneSelection& s = aiPlaneSelection();
    toggleAiPerspective();
    s.scale = 2.0f;

    // A free camera: neither the plane nor the scale.
    Camera& c = outside(120, 40, -80);
    c.freeCamera = true;
    CameraPose out;
    externalPose(&c, out, pose(c));
    EXPECT_FLOAT_EQ(out.x, 120.0f);
    EXPECT_FLOAT_EQ(out.y, 40.0f);
    EXPECT_FLOAT_EQ(out.z, -80.0f);
    EXPECT_TRUE(s.perspectiveOn);
    double rx, ry, rz;
    EXPECT_FALSE(aiTargetReferencePoint(rx, ry, rz));

    // An AGL camera on a plane at 40 m over flat ground (nose 2 degrees up): 10 m up,
    // and its stored height stays in its own measure, not the scaled one.
    c.freeCamera = false;
    c.aglCamera = true;
    c.aglHeight = 10.0f;
    c.x = c.z = 0;
    c.y = 0;
    xphost::removeTrafficAircraft("EAST3");
    xphost::removeTrafficAircraft("NORTH1");
    xphost::removeTrafficAircraft("SOUTH1");
    xphost::removeTrafficAircraft("WEST5");
    join("LOW", 0xC1, 100, 40, 100);
    s.perspectiveOn = false;
    toggleAiPerspective();
    float stored = 0;
    for (int frame = 0; frame < 5; ++frame) {
        externalPose(&c, out, pose(c));
        EXPECT_NEAR(out.y, 10.0f, 0.05) << frame;
        if (frame == 0) stored = c.y;
        EXPECT_NEAR(c.y, stored, 0.05) << frame;
    }
    EXPECT_NEAR(stored, -15.0f, 0.05);  // (10 - 40) / 2
}

}  // namespace
