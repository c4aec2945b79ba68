// The host's navigation data: nearest and fragment searches and walking the
// airports, as the nearest-airport logic uses them.
#include <gtest/gtest.h>

#include <string>

#include "XPLMNavigation.h"
#include "host/host.h"
#include "tests/support/plugin_fixture.h"

namespace {

std::string idOf(XPLMNavRef ref) {
    char id[32] = {0};
    XPLMGetNavAidInfo(ref, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, id, nullptr, nullptr);
    return id;
}

TEST(HostNavigation, SearchesFollowXPlanesRules) {
    xphost::reset();
    float lat = 47.52f, lon = -122.30f;
    EXPECT_EQ(idOf(XPLMFindNavAid(nullptr, nullptr, &lat, &lon, nullptr, xplm_Nav_Airport)), "KBFI");
    // Without a position: the last match.
    EXPECT_EQ(idOf(XPLMFindNavAid(nullptr, "K", nullptr, nullptr, nullptr, xplm_Nav_Airport)), "KPAE");
    EXPECT_EQ(idOf(XPLMFindNavAid("Renton", nullptr, nullptr, nullptr, nullptr, xplm_Nav_Airport)), "KRNT");
    int frequency = 11680;
    EXPECT_EQ(idOf(XPLMFindNavAid(nullptr, nullptr, &lat, &lon, &frequency, xplm_Nav_VOR | xplm_Nav_NDB)), "SEA");
    EXPECT_EQ(XPLMFindNavAid(nullptr, "LOWI", nullptr, nullptr, nullptr, xplm_Nav_Airport), XPLM_NAV_NOT_FOUND);

    xphost::addAirport("LOWI", "Innsbruck", 47.2602, 11.3439, 581);
    int airports = 0;
    for (XPLMNavRef r = XPLMFindFirstNavAidOfType(xplm_Nav_Airport); r != XPLM_NAV_NOT_FOUND;
         r = XPLMGetNextNavAid(r)) {
        XPLMNavType type;
        XPLMGetNavAidInfo(r, &type, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
        if (type != xplm_Nav_Airport) break;
        ++airports;
    }
    EXPECT_EQ(airports, 5);
    EXPECT_EQ(XPLMFindLastNavAidOfType(xplm_Nav_Airport), 4);

    xphost::clearNavData();
    EXPECT_EQ(XPLMFindNavAid(nullptr, nullptr, &lat, &lon, nullptr, xplm_Nav_Airport), XPLM_NAV_NOT_FOUND);
    EXPECT_EQ(XPLMGetFirstNavAid(), XPLM_NAV_NOT_FOUND);
}

}  // namespace

namespace {

// X-Plane's database holds every airport of the installed scenery: the host reads the
// tree's apt.dat files at the first search, positions from the datum, else a runway.
TEST(HostNavigation, TheSceneryAirportsJoinTheDatabase) {
    xphost::reset();
    std::string root = testsupport::makeTempTree("vistarig-nav");
    testsupport::writeFile(root, "Custom Scenery/KSYR/Earth nav data/apt.dat",
                           testsupport::readFile(std::string(VISTARIG_TEST_DATA) + "/apt/KSYR/apt.dat"));
    testsupport::writeFile(root, "Global Scenery/Global Airports/Earth nav data/apt.dat",
                           testsupport::readFile(std::string(VISTARIG_TEST_DATA) + "/apt/gateway-sample/apt.dat"));
    xphost::setRoot(root);
    XPLMNavRef ksyr = XPLMFindNavAid(nullptr, "KSYR", nullptr, nullptr, nullptr, xplm_Nav_Airport);
    ASSERT_NE(ksyr, XPLM_NAV_NOT_FOUND);
    float latitude = 0, longitude = 0;
    char name[256] = {0};
    XPLMGetNavAidInfo(ksyr, nullptr, &latitude, &longitude, nullptr, nullptr, nullptr, nullptr, name, nullptr);
    EXPECT_NEAR(latitude, 43.1112, 1e-3);
    EXPECT_NEAR(longitude, -76.1063, 1e-3);
    EXPECT_STREQ(name, "Syracuse Hancock Intl");

    // A seaplane base without a datum: the middle of its water runway.
    XPLMNavRef seaplane = XPLMFindNavAid(nullptr, "CJY9", nullptr, nullptr, nullptr, xplm_Nav_Airport);
    ASSERT_NE(seaplane, XPLM_NAV_NOT_FOUND);
    int airports = 0;
    for (XPLMNavRef ref = XPLMFindFirstNavAidOfType(xplm_Nav_Airport); ref != XPLM_NAV_NOT_FOUND;
         ref = XPLMGetNextNavAid(ref)) {
        XPLMNavType type;
        XPLMGetNavAidInfo(ref, &type, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
        if (type == xplm_Nav_Airport) ++airports;
    }
    EXPECT_EQ(airports, 4 + 1 + 32) << "the defaults, KSYR, and the gateway sample's 32";
    testsupport::removeTree(root);
}

}  // namespace
