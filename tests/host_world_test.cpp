// The host's world: local and world coordinates checked against the ellipsoid's radii
// of curvature far from the origin, the aircraft's world datarefs, terrain probes with
// their leak report, and the boats.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "XPLMGraphics.h"
#include "XPLMScenery.h"
#include "host/host.h"
#include "host/world.h"

namespace {

constexpr double kRad = 3.14159265358979323846 / 180.0;
constexpr double kA = 6378137.0;
constexpr double kE2 = 0.00669437999014;

static_assert(sizeof(XPLMProbeInfo_t) == 44, "the simulator's probe record is 44 bytes");

class HostWorld : public ::testing::Test {
protected:
    void SetUp() override { xphost::reset(); }
};

TEST_F(HostWorld, ReferencePointIsTheOriginWithTheSimulatorsAxes) {
    xphost::setReferencePoint(47.5, -122.25);
    double x, y, z;
    xphost::worldToLocal(47.5, -122.25, 0, x, y, z);
    EXPECT_NEAR(x, 0, 1e-6);
    EXPECT_NEAR(y, 0, 1e-6);
    EXPECT_NEAR(z, 0, 1e-6);
    xphost::worldToLocal(47.51, -122.25, 0, x, y, z);
    EXPECT_LT(z, -1000);  // north is -z
    EXPECT_NEAR(x, 0, 1e-6);
    xphost::worldToLocal(47.5, -122.24, 0, x, y, z);
    EXPECT_GT(x, 700);  // east is +x
    xphost::worldToLocal(47.5, -122.25, 250, x, y, z);
    EXPECT_NEAR(y, 250, 1e-6);
}

TEST_F(HostWorld, TensOfKilometresOutTheMetricMatchesTheEllipsoid) {
    xphost::setReferencePoint(47.5, -122.25);
    const double points[2][3] = {{30000, 800, -40000}, {-45000, 50, 25000}};
    for (const auto& local : points) {
        double lat, lon, elev, x, y, z;
        xphost::localToWorld(local[0], local[1], local[2], lat, lon, elev);
        xphost::worldToLocal(lat, lon, elev, x, y, z);
        EXPECT_NEAR(x, local[0], 1e-3);
        EXPECT_NEAR(y, local[1], 1e-3);
        EXPECT_NEAR(z, local[2], 1e-3);

        // A small step there is as long as the radii of curvature say.
        double s = std::sin(lat * kRad);
        double meridian = kA * (1 - kE2) / std::pow(1 - kE2 * s * s, 1.5) + elev;
        double normal = (kA / std::sqrt(1 - kE2 * s * s) + elev) * std::cos(lat * kRad);
        const double step = 0.0001;
        double nx, ny, nz, ex, ey, ez;
        xphost::worldToLocal(lat + step, lon, elev, nx, ny, nz);
        xphost::worldToLocal(lat, lon + step, elev, ex, ey, ez);
        EXPECT_NEAR(std::hypot(nx - x, ny - y, nz - z), meridian * step * kRad, 1e-3);
        EXPECT_NEAR(std::hypot(ex - x, ey - y, ez - z), normal * step * kRad, 1e-3);
    }
}

TEST_F(HostWorld, AircraftWorldPositionAgreesWithItsLocalPosition) {
    xphost::runFrames(90);
    double lat = xphost::getValue("sim/flightmodel/position/latitude");
    double lon = xphost::getValue("sim/flightmodel/position/longitude");
    double elev = xphost::getValue("sim/flightmodel/position/elevation");
    double x, y, z;
    XPLMWorldToLocal(lat, lon, elev, &x, &y, &z);
    xphost::AircraftState a = xphost::aircraft();
    EXPECT_NEAR(x, a.x, 1e-3);
    EXPECT_NEAR(y, a.y, 1e-3);
    EXPECT_NEAR(z, a.z, 1e-3);
    EXPECT_GT(std::fabs(a.x) + std::fabs(a.z), 100.0);  // it did fly
}

TEST_F(HostWorld, ProbesFindTheTerrain) {
    XPLMProbeRef probe = XPLMCreateProbe(xplm_ProbeY);
    ASSERT_NE(probe, nullptr);
    XPLMProbeInfo_t info;
    std::memset(&info, 0, sizeof info);
    info.structSize = 40;
    EXPECT_EQ(XPLMProbeTerrainXYZ(probe, 0, 500, 0, &info), xplm_ProbeError);
    info.structSize = sizeof info;

    // The default field: flat round the origin, rising outside it.
    ASSERT_EQ(XPLMProbeTerrainXYZ(probe, 100, 500, -200, &info), xplm_ProbeHitTerrain);
    EXPECT_NEAR(info.locationY, 0.0f, 0.005);  // the earth's curve: 4 mm at 224 m
    EXPECT_EQ(info.normalY, 1.0f);
    ASSERT_EQ(XPLMProbeTerrainXYZ(probe, 8000, 500, 0, &info), xplm_ProbeHitTerrain);
    EXPECT_GT(info.locationY, 400.0f);

    // A scenario's plane, with its normal.
    xphost::setTerrain([](double x, double, double& y) {
        y = 20 + 0.1 * x;
        return true;
    });
    ASSERT_EQ(XPLMProbeTerrainXYZ(probe, 50, 0, 7, &info), xplm_ProbeHitTerrain);
    EXPECT_NEAR(info.locationY, 25.0, 1e-3);
    EXPECT_NEAR(info.normalX, -0.1 / std::sqrt(1.01), 1e-4);
    EXPECT_NEAR(info.normalY, 1.0 / std::sqrt(1.01), 1e-4);

    xphost::setTerrain([](double, double, double&) { return false; });
    EXPECT_EQ(XPLMProbeTerrainXYZ(probe, 0, 0, 0, &info), xplm_ProbeMissed);
    EXPECT_EQ(xphost::liveProbeCount(), 1);
    XPLMDestroyProbe(probe);
    EXPECT_EQ(xphost::liveProbeCount(), 0);
    EXPECT_EQ(XPLMProbeTerrainXYZ(probe, 0, 0, 0, &info), xplm_ProbeError);
}

// A plug-in that makes a probe and forgets it.
int forgetfulStart(char* name, char* signature, char* description) {
    std::strcpy(name, "Forgetful");
    std::strcpy(signature, "test.forgetful");
    std::strcpy(description, "leaves a probe behind");
    XPLMCreateProbe(xplm_ProbeY);
    return 1;
}

TEST_F(HostWorld, ProbesAliveAfterStopAreReportedAsLeaks) {
    xphost::EntryPoints entry;
    entry.start = forgetfulStart;
    int id = xphost::loadPlugin(entry, "/tmp/forgetful.xpl");
    ASSERT_GE(id, 0);
    xphost::stopPlugin(id);
    bool reported = false;
    for (const std::string& line : xphost::leaks())
        if (line.find("XPLMProbeRef") != std::string::npos) reported = true;
    EXPECT_TRUE(reported);
}

TEST_F(HostWorld, BoatsSailAlongTheirHeadings) {
    xphost::setBoat(0, {0, 0, 0, 90, 10});
    xphost::setBoat(1, {100, 2, -100, 0, 5});
    xphost::runFrames(30, 1.0 / 30);
    EXPECT_NEAR(xphost::getValue("sim/world/boat/x_mtr", 0), 10.0, 1e-3);
    EXPECT_NEAR(xphost::getValue("sim/world/boat/z_mtr", 0), 0.0, 1e-3);
    EXPECT_NEAR(xphost::getValue("sim/world/boat/z_mtr", 1), -105.0, 1e-3);
    EXPECT_NEAR(xphost::getValue("sim/world/boat/y_mtr", 1), 2.0, 1e-3);
    EXPECT_NEAR(xphost::getValue("sim/world/boat/heading_deg", 1), 0.0, 1e-6);
}

}  // namespace
