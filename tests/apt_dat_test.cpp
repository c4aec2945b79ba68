// The apt.dat reader on real files of the simulator's scenery (CRLF and LF, formats
// 1000 and 1100+), the order of the scenery packs, and the limits of a record.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>

#include "airports/apt_dat.h"
#include "host/host.h"
#include "tests/support/plugin_fixture.h"

namespace fs = std::filesystem;

namespace {

const std::string kData = VISTARIG_TEST_DATA;

std::string sample(const char* name) { return testsupport::readFile(kData + "/apt/" + name + "/apt.dat"); }

std::unique_ptr<AirportScenery> readSample(const char* name, const char* id) {
    std::FILE* file = std::fopen((kData + "/apt/" + name + "/apt.dat").c_str(), "rb");
    if (!file) return nullptr;
    std::unique_ptr<AirportScenery> found(readAptDat(file, id));
    std::fclose(file);
    return found;
}

TEST(AptDat, RealAirportsReadWithTheirRunwaysSignsAndStarts) {
    // Medium airport, CRLF, with metadata.
    auto ksyr = readSample("KSYR", "KSYR");
    ASSERT_TRUE(ksyr);
    EXPECT_DOUBLE_EQ(ksyr->elevation, 418);
    ASSERT_EQ(ksyr->runwayCount, 2);
    EXPECT_STREQ(ksyr->runways[0].ends[0].name, "10");
    EXPECT_STREQ(ksyr->runways[0].ends[1].name, "28");
    EXPECT_FLOAT_EQ(ksyr->runways[0].ends[0].latitude, 43.1082f);
    EXPECT_FLOAT_EQ(ksyr->runways[0].ends[1].longitude, -76.092476f);
    EXPECT_EQ(ksyr->signCount, 71);
    EXPECT_STREQ(ksyr->signs[0].text, "H H");
    EXPECT_STREQ(ksyr->signs[2].text, "Y P P Y");
    EXPECT_EQ(ksyr->startCount, 23);
    EXPECT_STREQ(ksyr->starts[0].name, "Gate 1 South A");
    EXPECT_FLOAT_EQ(ksyr->starts[0].heading, 40.0f);
    EXPECT_EQ(ksyr->viewPointCount, 1);

    // Small airport, LF, the older format without metadata.
    auto gmmt = readSample("GMMT", "GMMT");
    ASSERT_TRUE(gmmt);
    ASSERT_EQ(gmmt->runwayCount, 1);
    EXPECT_STREQ(gmmt->runways[0].ends[0].name, "18");
    EXPECT_STREQ(gmmt->runways[0].ends[1].name, "36");
    EXPECT_EQ(gmmt->startCount, 14);

    // Many airports in one file: a seaplane base's water runway, a heliport's helipad,
    // old start rows, and the last airport with no header behind it.
    auto seaplane = readSample("gateway-sample", "CJY9");
    ASSERT_TRUE(seaplane);
    ASSERT_EQ(seaplane->runwayCount, 1);
    EXPECT_STREQ(seaplane->runways[0].ends[0].name, "09");
    EXPECT_STREQ(seaplane->runways[0].ends[1].name, "27");
    EXPECT_FLOAT_EQ(seaplane->runways[0].ends[1].longitude, -109.418f);
    auto heliport = readSample("gateway-sample", "TN04");
    ASSERT_TRUE(heliport);
    ASSERT_GE(heliport->helipadCount, 1);
    EXPECT_STREQ(heliport->helipads[0].name, "H1");
    auto last = readSample("gateway-sample", "XRP001U");
    ASSERT_TRUE(last);
    EXPECT_STREQ(last->id, "XRP001U");
    EXPECT_FALSE(readSample("gateway-sample", "ZZZZ"));
}

TEST(AptDat, RowsAreKeptUpToTheirLimitsAndNamedAsTheyMustBe) {
    std::ostringstream text;
    text << "I\n1100 Version\n\n1 100 0 0 XTST Test\n";
    for (int i = 0; i < kMaxRunways + 1; ++i)
        text << "100 30 1 0 0.25 0 2 0 " << i << " 10.0 20.0 0 0 1 0 0 0 R" << i << " 10.1 20.1 0 0 1 0 0 0\n";
    for (int i = 0; i < kMaxStartLocations + 1; ++i)
        text << (i % 2 ? "15 10 20 90 Old " : "1300 10 20 90 gate jets New ") << i << "\n";
    for (int i = 0; i < kMaxSigns + 1; ++i) text << "20 10 20 0 0 2 {@Y}A_" << i << "\n";
    for (int i = 0; i < kMaxViewPoints + 1; ++i) text << "14 10 20 50 0" << (i == 0 ? "" : " Tower") << "\n";
    for (int i = 0; i < kMaxHelipads + 1; ++i) text << "102 H" << i << " 10 20 0 10 10 1\n";
    text << "20 10 20 0 0 2 {@L}{@@}{^r}\n";  // all in braces: empty text, but dropped (full)
    text << "1302 icao_code\n";               // no value: the ID stays
    text << "1302 city Testville\n";
    std::string bytes = text.str();
    std::unique_ptr<AirportScenery> a(readAptDatText(bytes.data(), bytes.size(), "XTST"));
    ASSERT_TRUE(a);
    EXPECT_EQ(a->runwayCount, kMaxRunways);
    EXPECT_EQ(a->startCount, kMaxStartLocations);
    EXPECT_STREQ(a->starts[0].name, "New 0");
    EXPECT_STREQ(a->starts[1].name, "Old 1") << "rows 15 and 1300 fill one array";
    EXPECT_EQ(a->signCount, kMaxSigns);
    EXPECT_STREQ(a->signs[7].text, "A 7");
    EXPECT_EQ(a->viewPointCount, kMaxViewPoints);
    EXPECT_STREQ(a->viewPoints[0].name, "Viewpoint");
    EXPECT_STREQ(a->viewPoints[1].name, "Tower");
    EXPECT_EQ(a->helipadCount, kMaxHelipads);

    char cleaned[32];
    cleanSignText("{@L}{@@}{^r}", cleaned, sizeof cleaned);
    EXPECT_STREQ(cleaned, "");
    cleanSignText("  {@Y}B_2{@@}  _C ", cleaned, sizeof cleaned);
    EXPECT_STREQ(cleaned, "B 2 C");
}

TEST(AptDat, MetadataRenamesTheAirportItFollows) {
    std::string text = "1 10 0 0 X01 First\n100 30 1 0 0.25 0 2 0 09 1 2 0 0 1 0 0 0 27 1 3 0 0 1 0 0 0\n"
                       "1302 icao_code KX01\n"
                       "1 20 0 0 X02 Second\n";
    std::unique_ptr<AirportScenery> byMetadata(readAptDatText(text.data(), text.size(), "KX01"));
    ASSERT_TRUE(byMetadata);
    EXPECT_EQ(byMetadata->runwayCount, 1);
    EXPECT_DOUBLE_EQ(byMetadata->elevation, 10);
    EXPECT_FALSE(std::unique_ptr<AirportScenery>(readAptDatText(text.data(), text.size(), "X01")));
}

class SceneryPacksTest : public ::testing::Test {
protected:
    std::string root;
    void SetUp() override {
        root = testsupport::makeTempTree("vistarig-packs");
        xphost::reset();
        xphost::setRoot(root);
    }
    void TearDown() override { testsupport::removeTree(root); }
    void pack(const std::string& folder, const std::string& aptDat) {
        testsupport::writeFile(root, folder + "Earth nav data/apt.dat", aptDat);
    }
};

TEST_F(SceneryPacksTest, TheFirstPackInThePrioritiesWinsAndTheDefaultDataComesLast) {
    std::string global = sample("KSYR");
    pack("Global Scenery/Global Airports/", global);
    // A custom KSYR with one runway, listed above the global airports.
    pack("Custom Scenery/My KSYR/",
         "I\n1100 Version\n1 420 0 0 KSYR Custom Syracuse\n"
         "100 45 1 1 0.25 1 3 1 10 43.1 -76.1 0 0 3 8 0 0 28 43.11 -76.09 0 0 3 2 1 0\n");
    pack("Resources/default scenery/default apt dat/", sample("GMMT"));
    testsupport::writeFile(root, "Custom Scenery/scenery_packs.ini",
                           "I\n1000 Version\nSCENERY\n\n"
                           "SCENERY_PACK_DISABLED Custom Scenery/Not There/\n"
                           "SCENERY_PACK Custom Scenery/My KSYR/\n"
                           "SCENERY_PACK *GLOBAL_AIRPORTS*\n"
                           "SCENERY_PACK Custom Scenery/Empty Pack/\n");
    std::unique_ptr<AirportScenery> ksyr(findAirport("KSYR"));
    ASSERT_TRUE(ksyr);
    EXPECT_EQ(ksyr->runwayCount, 1) << "the custom pack above the global airports";
    EXPECT_DOUBLE_EQ(ksyr->elevation, 420);

    std::unique_ptr<AirportScenery> gmmt(findAirport("GMMT"));
    ASSERT_TRUE(gmmt) << "found last in the default apt data";
    EXPECT_EQ(gmmt->runwayCount, 1);
    EXPECT_FALSE(std::unique_ptr<AirportScenery>(findAirport("NONE")));

    // The custom pack moved below the global airports: the global one wins.
    testsupport::writeFile(root, "Custom Scenery/scenery_packs.ini",
                           "SCENERY_PACK *GLOBAL_AIRPORTS*\nSCENERY_PACK Custom Scenery/My KSYR/\n");
    std::unique_ptr<AirportScenery> global2(findAirport("KSYR"));
    ASSERT_TRUE(global2);
    EXPECT_EQ(global2->runwayCount, 2);

    // Without the packs file only the default data is searched.
    fs::remove(root + "Custom Scenery/scenery_packs.ini");
    EXPECT_FALSE(std::unique_ptr<AirportScenery>(findAirport("KSYR")));
}

}  // namespace
