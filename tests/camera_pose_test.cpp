// Camera pose: the rotation against rotation matrices, aiming, and the world pose of
// outside cameras against geometry computed here from the aircraft's attitude.
#include <gtest/gtest.h>

#include <cmath>

#include "host/world.h"
#include "data/angles.h"
#include "motion/camera_pose.h"
#include "motion_fixture.h"

namespace {

constexpr double kRad = 3.14159265358979323846 / 180.0;

struct Vec {
    double x, y, z;
};

// Rotation matrices in the simulator's axes (x east, y up, z south): heading turns
// clockwise seen from above, pitch raises the nose (-z), roll lowers the right wing.
struct Mat {
    double m[3][3];
    Vec operator*(const Vec& v) const {
        return {m[0][0] * v.x + m[0][1] * v.y + m[0][2] * v.z, m[1][0] * v.x + m[1][1] * v.y + m[1][2] * v.z,
                m[2][0] * v.x + m[2][1] * v.y + m[2][2] * v.z};
    }
    Mat operator*(const Mat& o) const {
        Mat r{};
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j)
                for (int k = 0; k < 3; ++k) r.m[i][j] += m[i][k] * o.m[k][j];
        return r;
    }
};

Mat headingMatrix(double h) {
    double c = std::cos(h * kRad), s = std::sin(h * kRad);
    return {{{c, 0, -s}, {0, 1, 0}, {s, 0, c}}};
}
Mat pitchMatrix(double p) {
    double c = std::cos(p * kRad), s = std::sin(p * kRad);
    return {{{1, 0, 0}, {0, c, -s}, {0, s, c}}};
}
Mat rollMatrix(double r) {
    double c = std::cos(r * kRad), s = std::sin(r * kRad);
    return {{{c, s, 0}, {-s, c, 0}, {0, 0, 1}}};
}
Mat attitude(double pitch, double heading, double roll) {
    return headingMatrix(heading) * pitchMatrix(pitch) * rollMatrix(roll);
}

// The unit vector a camera looks along, from its world heading and pitch.
Vec viewDirection(float heading, float pitch) {
    double h = heading * kRad, p = pitch * kRad;
    return {std::sin(h) * std::cos(p), std::sin(p), -std::cos(h) * std::cos(p)};
}

void expectNear(const Vec& a, const Vec& b, double tolerance) {
    EXPECT_NEAR(a.x, b.x, tolerance);
    EXPECT_NEAR(a.y, b.y, tolerance);
    EXPECT_NEAR(a.z, b.z, tolerance);
}

Camera outsideCamera(float x, float y, float z) {
    Camera c{};
    resetCamera(&c);
    c.external = true;
    c.x = x;
    c.y = y;
    c.z = z;
    return c;
}

CameraPose worldPose(Camera& camera) {
    CameraPose out;
    externalPose(&camera, out, cameraPose(&camera));
    return out;
}

using CameraPoseTest = MotionTest;

TEST_F(CameraPoseTest, SingleAnglesTurnTheAxesTheSimulatorsWay) {
    Vector3 up = rotateVector({0, 0, -1}, 30, 0, 0);
    EXPECT_NEAR(up.y, 0.5, 1e-6);
    EXPECT_NEAR(up.z, -std::cos(30 * kRad), 1e-6);
    Vector3 east = rotateVector({0, 0, -1}, 0, 90, 0);
    EXPECT_NEAR(east.x, 1.0, 1e-6);
    EXPECT_NEAR(east.z, 0.0, 1e-6);
    Vector3 down = rotateVector({1, 0, 0}, 0, 0, 30);
    EXPECT_NEAR(down.x, std::cos(30 * kRad), 1e-6);
    EXPECT_NEAR(down.y, -0.5, 1e-6);
    // Pitch is folded first: 390 is 30.
    Vector3 folded = rotateVector({0, 0, -1}, 390, 0, 0);
    EXPECT_NEAR(folded.y, 0.5, 1e-6);
}

TEST_F(CameraPoseTest, FullAttitudeMatchesRotationMatrices) {
    const float cases[][3] = {{10, 30, 20}, {-35, 250, -60}, {80, 359, 170}, {5, 90, -90}};
    for (const auto& a : cases) {
        Mat m = attitude(a[0], a[1], a[2]);
        for (Vec v : {Vec{0, 0, -1}, Vec{1, 0, 0}, Vec{0.3, -2, 7}}) {
            Vector3 r = rotateByAttitude({float(v.x), float(v.y), float(v.z)}, a[0], a[1], a[2]);
            expectNear({r.x, r.y, r.z}, m * v, 1e-4 * (1 + std::fabs(v.z)));
        }
    }
}

TEST_F(CameraPoseTest, AimingLooksAtTheReference) {
    placeAircraft(0, 0, 0, 0, 0, 0);
    Camera c = outsideCamera(0, 0, 0);
    CameraPose p;
    p.x = 10;  // east of the aircraft, level with it: looks west, pitch 360
    aimHeading(p, &c, nullptr);
    aimPitch(p, &c, nullptr);
    EXPECT_FLOAT_EQ(p.heading, 270.0f);
    EXPECT_FLOAT_EQ(p.pitch, 360.0f);
    EXPECT_FLOAT_EQ(foldAngle(p.pitch), 0.0f);

    p = CameraPose();
    p.y = 5;  // straight over it: heading 0, looking down
    aimHeading(p, &c, nullptr);
    aimPitch(p, &c, nullptr);
    EXPECT_FLOAT_EQ(p.heading, 0.0f);
    EXPECT_FLOAT_EQ(p.pitch, 270.0f);

    p = CameraPose();
    p.x = -10;
    p.y = -10;  // west and below: looks east, 45 up
    aimHeading(p, &c, nullptr);
    aimPitch(p, &c, nullptr);
    EXPECT_NEAR(p.heading, 90.0f, 1e-4);
    EXPECT_NEAR(p.pitch, 45.0f, 1e-4);
}

TEST_F(CameraPoseTest, CameraBehindAircraftHeadingEastStandsWestOfIt) {
    placeAircraft(1000, 500, -200, 0, 0, 90);
    Camera c = outsideCamera(0, 0, 10);
    CameraPose out = worldPose(c);
    EXPECT_NEAR(out.x, 990.0, 1e-3);
    EXPECT_NEAR(out.y, 500.0, 1e-3);
    EXPECT_NEAR(out.z, -200.0, 1e-3);
    EXPECT_NEAR(out.heading, 90.0, 1e-3);
    EXPECT_NEAR(out.pitch, 0.0, 1e-3);
    EXPECT_NEAR(out.roll, 0.0, 1e-3);
}

TEST_F(CameraPoseTest, AttitudeCarriesOffsetAndViewIntoTheWorld) {
    const float theta = 10, phi = 20, psi = 30;
    placeAircraft(100, 2000, 300, theta, phi, psi);
    Mat aircraft = attitude(theta, psi, phi);

    // An offset camera looking along the aircraft: position and view.
    Camera ahead = outsideCamera(2, 1, 5);
    CameraPose out = worldPose(ahead);
    Vec offset = aircraft * Vec{2, 1, 5};
    expectNear({out.x, out.y, out.z}, {100 + offset.x, 2000 + offset.y, 300 + offset.z}, 1e-3);
    expectNear(viewDirection(out.heading, out.pitch), aircraft * Vec{0, 0, -1}, 1e-4);
    EXPECT_NEAR(out.roll, phi, 1e-3);  // looking along the aircraft it takes its roll

    // The camera's own heading and pitch turn with the aircraft's attitude.
    Camera turned = outsideCamera(0, 0, 0);
    turned.heading = 40;
    turned.pitch = -15;
    out = worldPose(turned);
    Vec forward = aircraft * (attitude(-15, 40, 0) * Vec{0, 0, -1});
    expectNear(viewDirection(out.heading, out.pitch), forward, 1e-4);

    // Offset and own orientation together: the far point 5 km out lies on the
    // camera's turned axis through the rotated offset, so the view is off by at most
    // the offset's share of that distance.
    Camera both = outsideCamera(2, 1, 5);
    both.heading = 40;
    both.pitch = -15;
    out = worldPose(both);
    expectNear(viewDirection(out.heading, out.pitch), forward, std::sqrt(30.0) * 2 / 5000);
}

TEST_F(CameraPoseTest, LevelAndCineflexIgnoreTheAttitude) {
    placeAircraft(0, 1000, 0, 20, 30, 90);
    Camera level = outsideCamera(0, 0, 10);
    level.levelCamera = true;
    CameraPose out = worldPose(level);
    // Only the heading turns the offset.
    EXPECT_NEAR(out.x, -10.0, 1e-3);
    EXPECT_NEAR(out.y, 1000.0, 1e-3);
    EXPECT_NEAR(out.z, 0.0, 1e-3);
    EXPECT_NEAR(foldAngle(out.pitch), 0.0, 1e-3);
    EXPECT_NEAR(foldAngle(out.roll), 0.0, 1e-3);

    Camera cine = outsideCamera(5, 2, 30);
    cine.cineflex = true;
    cine.heading = 30;
    cine.pitch = -5;
    cine.roll = 2;
    CameraPose first = worldPose(cine);
    placeAircraft(800, 1200, -50, -15, -40, 200);
    CameraPose second = worldPose(cine);
    for (const CameraPose* p : {&first, &second}) {
        EXPECT_FLOAT_EQ(p->heading, 30.0f);
        EXPECT_FLOAT_EQ(p->pitch, -5.0f);
        EXPECT_FLOAT_EQ(p->roll, 2.0f);
    }
    EXPECT_GT(std::fabs(second.x - first.x), 100.0f);  // the position still follows
}

TEST_F(CameraPoseTest, GroundRulesOfAglAndCircleCameras) {
    // Ground rising to the east at ten percent, 5 m at the origin.
    xphost::setTerrain([](double x, double, double& y) {
        y = 5.0 + 0.1 * x;
        return true;
    });
    placeAircraft(0, 100, 0, 0, 0, 0);
    Camera agl = outsideCamera(0, 0, 20);
    agl.aglCamera = true;
    agl.aglHeight = 10;
    CameraPose out = worldPose(agl);
    EXPECT_NEAR(out.y, 15.0, 1e-3);
    EXPECT_NEAR(agl.y, -85.0, 1e-3);  // the stored offset is rewritten while it runs
    placeAircraft(200, 100, 0, 0, 0, 0);
    out = worldPose(agl);
    EXPECT_NEAR(out.y, 35.0, 5e-3);  // the ground curves away by 3 mm at 200 m

    xphost::setTerrain([](double, double, double& y) {
        y = 0.0;
        return true;
    });
    placeAircraft(0, 0, 0, 0, 0, 0);
    Camera low = outsideCamera(0, 0.4f, 10);
    low.circleView = true;
    out = worldPose(low);
    EXPECT_NEAR(out.y, 1.0, 1e-4);
    EXPECT_NEAR(low.y, 1.0, 1e-4);
    Camera high = outsideCamera(0, 5, 10);
    high.circleView = true;
    out = worldPose(high);
    EXPECT_FLOAT_EQ(out.y, 5.0f);

    // A probe that misses leaves the pose alone.
    xphost::setTerrain([](double, double, double&) { return false; });
    out = worldPose(low);
    EXPECT_NEAR(out.y, 1.0f, 1e-4);
    EXPECT_EQ(xphost::liveProbeCount(), 0);
}

TEST_F(CameraPoseTest, BoatsAreOriginsWithoutPitchOrRoll) {
    placeAircraft(0, 500, 0, 15, 25, 0);
    xphost::setBoat(0, {-800, 0, 400, 180, 0});
    xphost::Boat frigate;
    frigate.x = 500;
    frigate.z = -300;
    frigate.heading = 90;
    xphost::setBoat(1, frigate);

    Camera c = outsideCamera(0, 20, 10);
    c.cameraOrigin = 2;
    CameraPose out = worldPose(c);
    EXPECT_NEAR(out.x, 490.0, 1e-3);
    EXPECT_NEAR(out.y, 20.0, 1e-3);
    EXPECT_NEAR(out.z, -300.0, 1e-3);
    EXPECT_NEAR(foldAngle(out.roll), 0.0, 1e-3);
}

TEST_F(CameraPoseTest, TrackingAimsAtTheAircraftAndStoresTheAim) {
    placeAircraft(0, 1000, 0, 0, 0, 90);
    Camera c = outsideCamera(0, 10, 50);
    c.trackHeading = true;
    c.trackPitch = true;
    CameraPose out = worldPose(c);
    // The camera stands 50 m west and 10 m above: in the aircraft's frame it looks
    // forward and down at it, and the aim is written back into the camera.
    EXPECT_FLOAT_EQ(c.heading, 360.0f);
    EXPECT_NEAR(c.pitch, 360.0 - std::atan2(10.0, 50.0) / kRad, 1e-4);
    // In the world it looks east and down at the aircraft, within the far point's
    // share of the offset.
    Vec toAircraft{0 - out.x, 1000 - out.y, 0 - out.z};
    double length = std::sqrt(toAircraft.x * toAircraft.x + toAircraft.y * toAircraft.y + toAircraft.z * toAircraft.z);
    expectNear(viewDirection(out.heading, out.pitch), {toAircraft.x / length, toAircraft.y / length, toAircraft.z / length},
               length / 5000);
}

TEST_F(CameraPoseTest, LevelCockpitPoseCountersTheAttitude) {
    placeAircraft(0, 0, 0, 10, -20, 0);
    Camera cockpit{};
    resetCamera(&cockpit);
    CameraPose p;
    p.x = 0.5f;
    p.y = 1.0f;
    levelCockpitPose(p, &cockpit);
    EXPECT_NEAR(p.pitch, 350.0, 1e-3);  // nose up 10: the head looks 10 down
    EXPECT_NEAR(p.roll, 20.0, 1e-3);    // left wing down 20: the head rolls right
    EXPECT_NEAR(p.y, 1.0 + 0.5 * std::tan(340 * kRad), 1e-4);

    // Looking out to the right, the aircraft's pitch becomes roll.
    placeAircraft(0, 0, 0, 10, 0, 0);
    p = CameraPose();
    p.heading = 90;
    levelCockpitPose(p, &cockpit);
    EXPECT_NEAR(p.roll, 350.0, 1e-3);
}

}  // namespace
