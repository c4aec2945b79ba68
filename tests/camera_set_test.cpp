// The camera set model and the smoothing filter: selection walks, view IDs, the
// links that relinkSet rebuilds, and the moving average's ramp and window changes.
#include <gtest/gtest.h>

#include <cstring>

#include "data/camera_set.h"
#include "motion/frame_driver.h"
#include "data/running_average.h"

namespace {

// Builds a working set: one entry per category, each the number of its cameras.
void buildSet(std::initializer_list<int> cameraCounts) {
    clearWorkingSet();
    int c = 0;
    for (int count : cameraCounts) {
        char name[16];
        std::snprintf(name, sizeof name, "Cat%d", c);
        int index = findOrAddCategory(name, true);
        ASSERT_EQ(index, c);
        Category* category = &workingSet().categories[index];
        category->cameraCount = count;
        for (int i = 0; i < count; ++i) std::snprintf(category->cameras[i].name, 32, "C%d.%d", c, i);
        ++c;
    }
    relinkSet(true);
    setCurrentCategoryIndex(0);
}

Camera& cam(int category, int index) { return workingSet().categories[category].cameras[index]; }

class CameraSetTest : public ::testing::Test {
protected:
    void SetUp() override {
        setControlPanelOpen(false);
        frameDriver() = FrameDriver();
    }
};

TEST_F(CameraSetTest, RelinkBuildsRingsIndexesAndListIds) {
    buildSet({3, 1, 2});
    // Category rings close on their first camera; the set ring crosses categories
    // and closes on the first camera of category 0.
    EXPECT_EQ(cam(0, 2).nextInCategory, &cam(0, 0));
    EXPECT_EQ(cam(1, 0).nextInCategory, &cam(1, 0));
    EXPECT_EQ(cam(0, 2).nextInSet, &cam(1, 0));
    EXPECT_EQ(cam(1, 0).nextInSet, &cam(2, 0));
    EXPECT_EQ(cam(2, 1).nextInSet, &cam(0, 0));
    EXPECT_EQ(cam(2, 1).categoryIndex, 2);
    EXPECT_EQ(cam(2, 1).indexInCategory, 1);
    // Numbers run through categories and their cameras in order, from 1.
    EXPECT_EQ(workingSet().categories[0].listId, 1);
    EXPECT_EQ(cam(0, 2).listId, 4);
    EXPECT_EQ(workingSet().categories[1].listId, 5);
    EXPECT_EQ(cam(2, 1).listId, 9);
}

TEST_F(CameraSetTest, ViewIdsAreUniqueAfterSetAndLastDuplicateWinsInTable) {
    buildSet({3, 2});
    cam(0, 1).viewId = 7;
    cam(1, 1).viewId = 7;
    relinkSet(false);
    EXPECT_EQ(cameraForViewId(7), &cam(1, 1)) << "the table keeps the last camera in set order";
    EXPECT_EQ(viewIdCount(), 2);
    Camera* holders[4];
    EXPECT_EQ(camerasWithViewId(7, holders, 4), 2);

    selectCamera(2);
    setViewId(7);
    relinkSet(false);
    EXPECT_EQ(camerasWithViewId(7, holders, 4), 1);
    EXPECT_EQ(holders[0], &cam(0, 2));
    EXPECT_EQ(cameraForViewId(7), &cam(0, 2));
    EXPECT_EQ(cameraForViewId(0), nullptr);
    EXPECT_EQ(cameraForViewId(66), nullptr);
}

TEST_F(CameraSetTest, NextAndPreviousSkipHiddenUnlessAskedOrPanelOpen) {
    buildSet({4});
    cam(0, 1).hidden = true;
    cam(0, 2).hidden = true;
    nextCamera(false);
    EXPECT_EQ(currentCategory()->currentCamera, 3);
    nextCamera(false);
    EXPECT_EQ(currentCategory()->currentCamera, 0) << "wraps";
    previousCamera(false);
    EXPECT_EQ(currentCategory()->currentCamera, 3);

    cam(0, 3).hidden = true;
    selectCamera(0);
    nextCamera(false);
    EXPECT_EQ(currentCategory()->currentCamera, 0) << "all others hidden: the selection stays";
    nextCamera(true);
    EXPECT_EQ(currentCategory()->currentCamera, 1);
    setControlPanelOpen(true);
    previousCamera(false);
    EXPECT_EQ(currentCategory()->currentCamera, 0);
}

TEST_F(CameraSetTest, SelectViewIdSearchesFromBehindTheCurrentCamera) {
    buildSet({2, 2});
    cam(0, 0).viewId = 3;
    cam(1, 1).viewId = 5;
    relinkSet(false);
    EXPECT_TRUE(selectViewId(5));
    EXPECT_EQ(currentCamera(), &cam(1, 1));
    EXPECT_TRUE(selectViewId(3));
    EXPECT_EQ(currentCamera(), &cam(0, 0));

    // The current camera's own ID sends it home when it has temporary positioning.
    Camera& current = cam(0, 0);
    current.temporaryPositioning = true;
    current.homePose.x = 1.5f;
    current.x = 9.0f;
    EXPECT_TRUE(selectViewId(3));
    EXPECT_FLOAT_EQ(current.x, 1.5f);
    EXPECT_TRUE(current.positionRestored);

    EXPECT_FALSE(selectViewId(9));
    EXPECT_EQ(currentCamera(), &cam(0, 0));
}

TEST_F(CameraSetTest, NextViewIdWalksAcrossCategoriesAndWraps) {
    buildSet({2, 3});
    cam(0, 1).viewId = 2;
    cam(1, 2).viewId = 4;
    relinkSet(false);
    nextViewId();
    EXPECT_EQ(currentCamera(), &cam(0, 1));
    nextViewId();
    EXPECT_EQ(currentCamera(), &cam(1, 2));
    nextViewId();
    EXPECT_EQ(currentCamera(), &cam(0, 1)) << "wraps at the end of the set";
    previousViewId();
    EXPECT_EQ(currentCamera(), &cam(1, 2));
}

TEST_F(CameraSetTest, FindOrAddCategoryCutsNamesAndStopsAtTwenty) {
    clearWorkingSet();
    const char* longName = "A category name that is far longer than thirty characters";
    int index = findOrAddCategory(longName, true);
    EXPECT_EQ(std::strlen(workingSet().categories[index].name), 30u);
    for (int i = 1; i < kMaxCategories; ++i) {
        char name[8];
        std::snprintf(name, sizeof name, "K%d", i);
        EXPECT_EQ(findOrAddCategory(name, true), i);
    }
    EXPECT_EQ(findOrAddCategory("one too many", true), -1);
    EXPECT_EQ(findOrAddCategory("K5", false), 5);
}

TEST(RunningAverageTest, RampsWhileFillingThenAverages) {
    RunningAverage filter;
    clear(filter);
    EXPECT_FLOAT_EQ(average(filter, 4, 8.0f), 2.0f);
    EXPECT_FLOAT_EQ(average(filter, 4, 8.0f), 4.0f);
    EXPECT_FLOAT_EQ(average(filter, 4, 8.0f), 6.0f);
    EXPECT_FLOAT_EQ(average(filter, 4, 8.0f), 8.0f);
    EXPECT_FLOAT_EQ(average(filter, 4, 0.0f), 6.0f);
    EXPECT_EQ(filter.count, 4);
    // A factor below 1 bypasses the filter and leaves it alone.
    EXPECT_FLOAT_EQ(average(filter, 0, 123.0f), 123.0f);
    EXPECT_EQ(filter.count, 4);
}

TEST(RunningAverageTest, ShrinkingWindowTakesOverWithinAFewCalls) {
    RunningAverage filter;
    prime(filter, 100, 1.0f);
    int calls = 0;
    while (filter.count > 12 && calls < 20) {
        average(filter, 10, 5.0f);
        ++calls;
    }
    // About half of the excess goes per call. The ring settles within two values
    // of the window (the filter's long-standing behaviour) and then stays put.
    EXPECT_LE(calls, 8);
    for (int i = 0; i < 30; ++i) average(filter, 10, 5.0f);
    int settled = filter.count;
    EXPECT_GE(settled, 11);
    EXPECT_LE(settled, 12);
    for (int i = 0; i < 30; ++i) average(filter, 10, 5.0f);
    EXPECT_EQ(filter.count, settled);
    EXPECT_FLOAT_EQ(filter.sum, 5.0f * settled) << "only the new values are left";
}

TEST(RunningAverageTest, LongRunsKeepTheSumHonest) {
    RunningAverage filter;
    clear(filter);
    float value = 0;
    for (int i = 0; i < 5000; ++i) value = average(filter, 499, 0.25f);
    EXPECT_NEAR(value, 0.25f, 1e-3f);
    EXPECT_LE(filter.count, RunningAverage::kCapacity);
    // A window larger than the ring is clamped rather than overrunning it.
    for (int i = 0; i < 1000; ++i) value = average(filter, 10000, 2.0f);
    EXPECT_NEAR(value, 2.0f, 1e-3f);
}

}  // namespace
