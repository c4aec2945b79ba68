// The simulator's Quick Look views of an aircraft become its first cameras: cockpit
// views beside "Pilot View", outside views in "External", with view IDs that match the
// Quick Look commands, saved at once.
#include <cmath>
#include <filesystem>

#include "data/camera_file.h"
#include "data/quick_look.h"
#include "panels/messages.h"
#include "user_files_fixture.h"

namespace {

class QuickLookTest : public UserFilesTest {
protected:
    std::string prefsPath() const { return aircraftDir + "Cub_prefs.txt"; }
};

TEST_F(QuickLookTest, TheViewsAreReadByTypeAndNumber) {
    std::string prefs = "I\n1100 Version\n"
                        "_iql_view_type_12 v_3dc\n"
                        "_iql_pe_x_12 0.25\n"
                        "_iql_pe_x_1 9.5\n"
                        "_iql_view_type_1 v_cha\n"
                        "_iql_view_type_3 v_twr\n"  // a tower view: not taken
                        "_iql_view_type_25 v_3dc\n"  // beyond the table
                        "_iql_circ_dis_1 30\n";
    EXPECT_EQ(parseQuickLookViews(prefs.data(), prefs.size()), 2);
    EXPECT_STREQ(quickLookTable()[12].type, "v_3dc");
    EXPECT_FLOAT_EQ(quickLookTable()[12].x, 0.25f) << "two-digit numbers are read whole";
    EXPECT_FLOAT_EQ(quickLookTable()[1].x, 9.5f);
    EXPECT_STREQ(quickLookTable()[3].type, "");
}

TEST_F(QuickLookTest, ANewFileOffersTheImportAndTheImportMakesAndSavesTheCameras) {
    writeFile(prefsPath(), "_iql_view_type_0 v_3dc\n_iql_pe_x_0 -0.3\n_iql_pe_y_0 1.1\n_iql_pe_z_0 -2.0\n"
                           "_iql_look_os_psi_0 10\n_iql_look_os_the_0 -5\n"
                           "_iql_view_type_2 v_rid\n_iql_circ_dis_2 20\n_iql_circ_psi_2 0\n_iql_circ_the_2 0\n"
                           "_iql_view_type_4 v_cir\n_iql_circ_dis_4 50\n_iql_circ_psi_4 90\n_iql_circ_the_4 0\n");
    size_t boxes = queuedMessageBoxes().size();
    loadCameraFile(nullptr);
    ASSERT_EQ(queuedMessageBoxes().size(), boxes + 1);
    const MessageBoxRequest offer = queuedMessageBoxes().back();
    EXPECT_NE(offer.text.find("Press OK to import the Quick Look Views."), std::string::npos);
    ASSERT_TRUE(offer.callback);

    offer.callback();  // the user presses OK
    ASSERT_EQ(categoryCount(), 2);
    const Category& cockpit = workingSet().categories[0];
    ASSERT_EQ(cockpit.cameraCount, 2);
    EXPECT_STREQ(cockpit.cameras[0].name, "Pilot View");
    EXPECT_EQ(cockpit.cameras[0].viewId, 0) << "view 0 takes view ID 1";
    EXPECT_STREQ(cockpit.cameras[1].name, "Quick Look 0");
    EXPECT_EQ(cockpit.cameras[1].viewId, 1);
    EXPECT_FLOAT_EQ(cockpit.cameras[1].heading, 10.0f);
    const Category& external = workingSet().categories[1];
    EXPECT_STREQ(external.name, "External");
    ASSERT_EQ(external.cameraCount, 2);
    const Camera& ride = external.cameras[0];
    EXPECT_STREQ(ride.name, "Quick Look 2");
    EXPECT_EQ(ride.viewId, 3);
    EXPECT_NEAR(ride.x, 0.0, 1e-4);
    EXPECT_NEAR(ride.z, 20.0, 1e-4) << "behind the aircraft, on the +z axis";
    const Camera& circle = external.cameras[1];
    EXPECT_TRUE(circle.trackHeading && circle.trackPitch && circle.external);
    EXPECT_NEAR(std::hypot(circle.x, circle.z), 50.0, 1e-3);
    EXPECT_NEAR(circle.heading, 270.0, 1e-3);
    // Saved without the user's help.
    EXPECT_NE(readFile(perModelPath()).find("External,Quick Look 4,5,"), std::string::npos);
}

// Only cockpit views: no "External" category. Then, for a new file again, only outside
// views: "Pilot View" alone in front, the chase view straight behind at its distance.
TEST_F(QuickLookTest, CockpitOnlyAndOutsideOnlyViewsEachMakeTheirOwnCategories) {
    writeFile(prefsPath(), "_iql_view_type_3 v_3dc\n_iql_pe_y_3 1.2\n_iql_view_type_19 v_3dc\n_iql_pe_z_19 -0.5\n");
    loadCameraFile(nullptr);
    ASSERT_TRUE(queuedMessageBoxes().back().callback);
    queuedMessageBoxes().back().callback();
    ASSERT_EQ(categoryCount(), 1);
    const Category& cockpit = workingSet().categories[0];
    ASSERT_EQ(cockpit.cameraCount, 3);
    EXPECT_EQ(cockpit.cameras[0].viewId, 1) << "no view 0: the pilot's view keeps view ID 1";
    EXPECT_STREQ(cockpit.cameras[2].name, "Quick Look 19");
    EXPECT_EQ(cockpit.cameras[2].viewId, 20);
    EXPECT_FLOAT_EQ(cockpit.cameras[2].z, -0.5f);
    EXPECT_TRUE(cockpit.cameras[1].smoothTransition);
    EXPECT_EQ(currentCategoryIndex(), 0);
    EXPECT_EQ(cockpit.currentCamera, 0);

    std::filesystem::remove(perModelPath());
    writeFile(prefsPath(), "_iql_view_type_0 v_cha\n_iql_circ_dis_0 35\n_iql_circ_psi_0 40\n"
                           "_iql_view_type_7 v_tow\n_iql_circ_dis_7 99\n");
    EXPECT_EQ(countQuickLookViews(), 1) << "a tower view is neither counted nor imported";
    loadCameraFile(nullptr);
    ASSERT_TRUE(queuedMessageBoxes().back().callback);
    queuedMessageBoxes().back().callback();
    ASSERT_EQ(categoryCount(), 2);
    ASSERT_EQ(workingSet().categories[0].cameraCount, 1);
    EXPECT_STREQ(workingSet().categories[0].cameras[0].name, "Pilot View");
    EXPECT_EQ(workingSet().categories[0].cameras[0].viewId, 0) << "view 0 takes view ID 1";
    const Category& external = workingSet().categories[1];
    ASSERT_EQ(external.cameraCount, 1);
    const Camera& chase = external.cameras[0];
    EXPECT_EQ(chase.viewId, 1);
    EXPECT_TRUE(chase.chaseView9 && chase.external);
    EXPECT_EQ(chase.initialMovementRange, 2);
    EXPECT_FLOAT_EQ(chase.z, 35.0f);
    EXPECT_FLOAT_EQ(chase.x, 0.0f);
    EXPECT_FLOAT_EQ(chase.heading, 0.0f);
    EXPECT_EQ(currentCategoryIndex(), 0);
}

TEST_F(QuickLookTest, NoPreferencesFileIsNoViewsAndSaysWhichFile) {
    EXPECT_EQ(countQuickLookViews(), 0);
    EXPECT_TRUE(logHas("Unable to read " + prefsPath()));
    loadCameraFile(nullptr);
    EXPECT_FALSE(queuedMessageBoxes().back().callback) << "nothing to offer";
}

}  // namespace
