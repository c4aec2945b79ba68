// Targets: the one-degree grid at its edges, replacement within a cell, the reader's
// stops and drops, and a file that reads back to the same grid.
#include <cmath>
#include <cstring>

#include "data/targets.h"
#include "user_files_fixture.h"

namespace {

class TargetsTest : public UserFilesTest {
protected:
    void SetUp() override {
        UserFilesTest::SetUp();
        clearTargets();
    }
    void TearDown() override {
        clearTargets();
        UserFilesTest::TearDown();
    }
    std::string targetsFile() const { return pluginDir + "MyTargets/MyTargets.csv"; }
};

TEST_F(TargetsTest, CellsRunFromPoleToPoleAndAcrossTheDateLine) {
    struct Case {
        double latitude, longitude;
        int row, column;
    } cases[] = {{90, 0, 180, 180},      {-90, 0, 0, 180},       {0.999, -0.999, 90, 180}, {-0.5, 0.5, 90, 180},
                 {47.9, 180, 137, 360},  {47.9, -180, 137, 0},   {-33.9, 151.2, 57, 331}};
    for (const Case& c : cases) {
        int row = -1, column = -1;
        ASSERT_TRUE(targetCellOf(c.latitude, c.longitude, &row, &column)) << c.latitude << " " << c.longitude;
        EXPECT_EQ(row, c.row) << c.latitude;
        EXPECT_EQ(column, c.column) << c.longitude;
    }
    int row, column;
    EXPECT_FALSE(targetCellOf(90.5, 0, &row, &column));
    EXPECT_FALSE(targetCellOf(0, -180.01, &row, &column));
    EXPECT_FALSE(targetCellOf(std::nan(""), 0, &row, &column));
    EXPECT_EQ(addTarget("Nowhere", nullptr, 91, 0, 0, 0), nullptr);

    ASSERT_NE(addTarget("North Pole", "then", 90, 180, 0, 0), nullptr);
    EXPECT_STREQ(targetCell(180, 360)->name, "North Pole");
    EXPECT_EQ(targetCell(181, 0), nullptr);
}

TEST_F(TargetsTest, SameNameInACellReplacesInPlaceAndElsewhereAdds) {
    addTarget("Tower", "d1", 47.1, 8.1, 400, 0);
    addTarget("Hangar", "d1", 47.2, 8.2, 410, 0);
    addTarget("Tower   ", "d2", 47.5, 8.5, 420, 0);  // trailing blanks are cut: the same name
    Target* head = targetCell(137, 188);
    ASSERT_NE(head, nullptr);
    EXPECT_STREQ(head->name, "Tower");
    EXPECT_STREQ(head->date, "d2");
    EXPECT_DOUBLE_EQ(head->latitude, 47.5);
    EXPECT_STREQ(head->nextInCell->name, "Hangar");
    EXPECT_EQ(head->nextInCell->nextInCell, nullptr);

    addTarget("Tower", "d3", 48.1, 8.1, 400, 0);  // a degree away: a second target
    EXPECT_EQ(targetCount(), 3);

    // Names and dates hold nothing that would break their line; a date is cut to 25.
    Target* odd = addTarget("Lake, north\nshore", "2024-01-01 10:00:00 and more text", 46, 7, 0, 0);
    EXPECT_STREQ(odd->name, "Lake  north shore");
    EXPECT_EQ(std::strlen(odd->date), 25u);
    EXPECT_STREQ(addTarget("   ", nullptr, 46, 7.5, 0, 0)->name, "Target");
}

TEST_F(TargetsTest, ReaderSkipsHeaderStopsAtShortLineAndDropsInvalidRows) {
    writeFile(targetsFile(),
              "Name , Date , Latitude, Longitude, Elevation in Meters\r\n"
              "First,2024-01-01 10:00:00,47.5,8.5,400\r\n"
              ",,,\n"
              "Too far north,2024,91,8,0\n"
              "Too far east,2024,47,181,0\n"
              "Not a number,2024,abc,8,0\n"
              "Second,,,2024-02-02,-33.9,151.2,5,extra,columns\n"
              "Short,2024,1,2\n"
              "Never,2024,1,2,3\n");
    readTargets();
    EXPECT_EQ(targetCount(), 2);
    EXPECT_STREQ(targetCell(137, 188)->name, "First");
    EXPECT_STREQ(targetCell(57, 331)->name, "Second");
    EXPECT_TRUE(logHas("Invalid Latitude detected while reading Target Too far north, Latitude: 91.000000 "
                       "Longitude: 8.000000 Elevation: 0.000000"));
    EXPECT_TRUE(logHas("Invalid Longitude detected while reading Target Too far east"));
    EXPECT_TRUE(logHas("Unexpected error reading target parameters"));
    EXPECT_TRUE(logHas("The target file does not have the minimum number of target parameters"));
}

TEST_F(TargetsTest, MissingFileIsCreatedAndAWrittenGridReadsBackTheSame) {
    readTargets();
    EXPECT_TRUE(logHas("Unable to read target file: " + targetsFile() + ", a new one will be created"));
    EXPECT_EQ(readFile(targetsFile()), "Name, Date, Latitude, Longitude, Elevation in Meters\n");

    addTarget("B", "2024-01-01 00:00:00", 10.5, -20.25, 1e6, 0);
    addTarget("A", "2024-01-01 00:00:00", -10.5, 20.25, -3.5, 0);
    addTarget("C, with comma", "2024-01-01 00:00:00", 89.9999999, 179.9999999, 0, 0);
    ASSERT_TRUE(writeTargets());
    std::string first = readFile(targetsFile());
    EXPECT_NE(first.find("\nA,2024-01-01 00:00:00,-10.500000,20.250000,-3.500000\n"), std::string::npos);
    EXPECT_LT(first.find("\nA,"), first.find("\nB,"));  // rows of the grid first
    readTargets();
    EXPECT_EQ(targetCount(), 3);
    ASSERT_TRUE(writeTargets());
    EXPECT_EQ(readFile(targetsFile()), first);

    // A missing targets folder is made: a fresh install has none.
    overridePluginDirectory((root + "fresh/").c_str());
    EXPECT_TRUE(writeTargets());
    EXPECT_EQ(readFile(root + "fresh/MyTargets/MyTargets.csv"), first);
    // Where no folder can be made the write fails loudly and the grid stays.
    writeFile(root + "plain-file", "x");
    overridePluginDirectory((root + "plain-file/").c_str());
    EXPECT_FALSE(writeTargets());
    EXPECT_TRUE(logHas("Unable to write target file: " + root + "plain-file/MyTargets/MyTargets.csv"));
    EXPECT_EQ(targetCount(), 3);
}

}  // namespace
