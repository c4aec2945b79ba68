// Editing the working set: the limits of adds and deletes, where the selection lands,
// what a freed slot holds, the clipboards, and the cockpit correction of an import.
#include <cstring>

#include "data/set_editing.h"
#include "panels/messages.h"
#include "user_files_fixture.h"

namespace {

Camera& cam(int category, int index) { return workingSet().categories[category].cameras[index]; }
Category& cat(int index) { return workingSet().categories[index]; }

class SetEditingTest : public UserFilesTest {
protected:
    // Categories "K0".. with cameras "K0.0"..; camera i of category c has view ID c*10+i+1.
    void build(std::initializer_list<int> counts) {
        clearWorkingSet();
        int c = 0;
        for (int count : counts) {
            std::string name = "K" + std::to_string(c);
            ASSERT_EQ(findOrAddCategory(name.c_str(), true), c);
            for (int i = 0; i < count; ++i) {
                Camera& camera = cam(c, i);
                copyText(camera.name, (name + "." + std::to_string(i)).c_str());
                camera.viewId = c * 10 + i + 1;
                camera.x = float(i);
            }
            cat(c).cameraCount = count;
            ++c;
        }
        relinkSet(true);
        setCurrentCategoryIndex(0);
    }
};

TEST_F(SetEditingTest, DeletesStopAtTheLastItemAndMoveTheSelectionOnlyAtTheEnd) {
    build({1, 3});
    deleteCurrentCamera();
    EXPECT_EQ(cat(0).cameraCount, 1);  // a category keeps its last camera

    selectCategory(1);
    selectCamera(1);
    deleteCurrentCamera();
    EXPECT_EQ(cat(1).currentCamera, 1);  // the camera behind moved under the selection
    EXPECT_STREQ(currentCamera()->name, "K1.2");
    deleteCurrentCamera();
    EXPECT_EQ(cat(1).currentCamera, 0);  // the last one went: the one before it
    EXPECT_EQ(cat(1).cameraCount, 1);
    // The freed slots are reset: a new camera can't inherit a view ID.
    EXPECT_EQ(cam(1, 1).viewId, 0);
    EXPECT_EQ(cam(1, 1).name[0], 0);
    ASSERT_TRUE(addCamera());
    EXPECT_EQ(cam(1, 1).viewId, 0);
    EXPECT_STREQ(cam(1, 1).name, "Camera 2");

    deleteCurrentCategory();
    EXPECT_EQ(categoryCount(), 1);
    EXPECT_EQ(currentCategoryIndex(), 0);
    EXPECT_EQ(cat(1).name[0], 0);
    deleteCurrentCategory();
    EXPECT_EQ(categoryCount(), 1);  // a set keeps its last category

    build({1, 1, 1});
    selectCategory(0);
    deleteCurrentCategory();
    EXPECT_EQ(currentCategoryIndex(), 0);
    EXPECT_STREQ(cat(0).name, "K1");
}

TEST_F(SetEditingTest, AddsAndInsertsCopyTheCurrentCameraUpToTheLimits) {
    build({149});
    cat(0).currentCamera = 5;
    cam(0, 5).trackIrEnabled = true;
    ASSERT_TRUE(addCamera());
    EXPECT_EQ(cat(0).cameraCount, 150);
    EXPECT_EQ(cat(0).currentCamera, 149);
    EXPECT_TRUE(cam(0, 149).trackIrEnabled);
    EXPECT_EQ(cam(0, 149).viewId, 0);
    EXPECT_STREQ(cam(0, 149).name, "Camera 150");
    EXPECT_FALSE(addCamera());
    EXPECT_FALSE(insertCameraAbove());
    EXPECT_EQ(cat(0).cameraCount, 150);
    auto boxes = queuedMessageBoxes();
    ASSERT_FALSE(boxes.empty());
    EXPECT_EQ(boxes.back().title, "ERROR");
    EXPECT_EQ(boxes.back().text, "There are no more cameras available in this category");

    build({3});
    cat(0).currentCamera = 1;
    ASSERT_TRUE(insertCameraAbove());
    EXPECT_EQ(cat(0).currentCamera, 1);
    EXPECT_STREQ(cam(0, 0).name, "K0.0");
    EXPECT_STREQ(cam(0, 1).name, "Camera 4");
    EXPECT_STREQ(cam(0, 2).name, "K0.1");
    EXPECT_EQ(cam(0, 3).indexInCategory, 3);

    build({1, 1});
    selectCategory(1);
    ASSERT_TRUE(insertCategoryAbove());
    EXPECT_EQ(categoryCount(), 3);
    EXPECT_EQ(currentCategoryIndex(), 1);
    EXPECT_STREQ(cat(1).name, "Category 3");
    EXPECT_STREQ(cat(2).name, "K1");
    for (int i = 3; i < 20; ++i) ASSERT_TRUE(addCategory());
    EXPECT_FALSE(addCategory());
    EXPECT_EQ(queuedMessageBoxes().back().text, "There are no more categories available");
}

TEST_F(SetEditingTest, ClipboardsCutNamesAndCategoryPasteBringsViewIds) {
    build({2, 1});
    copyText(cam(0, 0).name, "A very long camera name indeed!");
    cam(0, 0).viewId = 7;
    copyCurrentCamera();
    EXPECT_TRUE(cameraClipboardFull());
    EXPECT_STREQ(cameraClipboard().name, "(Copy of) A very long camera n");
    EXPECT_EQ(std::strlen(cameraClipboard().name), 30u);
    EXPECT_EQ(cameraClipboard().viewId, 0);

    ASSERT_TRUE(pasteCamera(&cameraClipboard(), &cam(0, 1), 2));
    EXPECT_EQ(cat(0).cameraCount, 3);
    EXPECT_STREQ(cam(0, 2).name, "(Copy of) A very long camera n");
    EXPECT_FALSE(pasteCamera(&cameraClipboard(), &cam(0, 1), 3));
    EXPECT_FALSE(pasteCamera(&cameraClipboard(), &cam(0, 5), 0));  // not a live camera

    copyCurrentCategory();
    EXPECT_STREQ(categoryClipboard().name, "(Copy of) K0");
    ASSERT_TRUE(pasteCategory(&categoryClipboard(), &cat(1), 2));
    EXPECT_EQ(categoryCount(), 3);
    Camera* found[4];
    EXPECT_EQ(camerasWithViewId(7, found, 4), 2);
    EXPECT_EQ(cameraForViewId(7), &cam(2, 0));  // the later one wins the table
    EXPECT_FALSE(pasteCategory(&categoryClipboard(), &cat(5), 0));

    CameraSet& spare = setClipboard();
    copySet(&spare);
    deleteCurrentCategory();
    pasteSet(&spare);
    EXPECT_EQ(categoryCount(), 3);
    EXPECT_EQ(cam(2, 0).categoryIndex, 2);
}

TEST_F(SetEditingTest, CockpitCorrectionMovesNearCockpitCamerasOnly) {
    build({4});
    cam(0, 0).x = -0.5f, cam(0, 0).y = 1.0f, cam(0, 0).z = 2.0f;
    cam(0, 1).x = 0.5f, cam(0, 1).y = 1.0f, cam(0, 1).z = 2.0f;      // copilot, across the centre line
    cam(0, 2).x = 1.0f, cam(0, 2).y = 1.0f, cam(0, 2).z = 2.0f;
    cam(0, 2).external = true;                                          // close, but outside
    cam(0, 3).x = -0.5f, cam(0, 3).y = 1.0f, cam(0, 3).z = 7.0f;      // 5 m behind: not chosen
    Camera reference{};
    reference.x = -0.7f, reference.y = 1.2f, reference.z = 1.5f;
    autoCorrectCockpit(reference);
    EXPECT_FLOAT_EQ(cam(0, 0).x, -0.7f);
    EXPECT_FLOAT_EQ(cam(0, 0).y, 1.2f);
    EXPECT_FLOAT_EQ(cam(0, 0).z, 1.5f);
    EXPECT_FLOAT_EQ(cam(0, 1).x, 0.7f);
    EXPECT_FLOAT_EQ(cam(0, 1).z, 1.5f);
    EXPECT_FLOAT_EQ(cam(0, 2).x, 1.0f);
    EXPECT_FLOAT_EQ(cam(0, 3).z, 7.0f);
    EXPECT_FLOAT_EQ(cam(0, 1).homePose.x, 0.7f);
}

TEST_F(SetEditingTest, DragMovesSwapNeighboursAndKeepListNumbers) {
    build({3});
    int listId = cam(0, 0).listId;
    cat(0).currentCamera = 0;
    ASSERT_TRUE(moveCamera(0, 0, 1));
    EXPECT_STREQ(cam(0, 1).name, "K0.0");
    EXPECT_EQ(cam(0, 1).listId, listId);
    EXPECT_EQ(cat(0).currentCamera, 1);
    EXPECT_FALSE(moveCamera(0, 2, 1));
}

}  // namespace
