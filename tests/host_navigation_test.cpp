// The host's navigation data: nearest and fragment searches and walking the
// airports, as the nearest-airport logic uses them.
#include <gtest/gtest.h>

#include <string>

#include "XPLMNavigation.h"
#include "host/host.h"

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
