// The published integration datarefs, read and written through the simulator's
// dataref calls as another plug-in would.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "data/camera_set.h"
#include "host/host.h"
#include "inputs/axis_input.h"
#include "shell/host_interface.h"
#include "shell/integration_datarefs.h"

namespace {

XPLMDataRef ref(const char* name) {
    XPLMDataRef r = XPLMFindDataRef((std::string("KVT/Vistarig/integration/") + name).c_str());
    EXPECT_NE(r, nullptr) << name;
    return r;
}

Camera& cam(int category, int index) { return workingSet().categories[category].cameras[index]; }

class IntegrationDatarefsTest : public ::testing::Test {
protected:
    void SetUp() override {
        xphost::reset();
        integrationValues() = IntegrationValues{};
        axisInput() = AxisInput{};
        resetCameraMotionAxisAssignment();
        setControlPanelOpen(false);
        buildSet({2, 3});
        publishIntegrationDatarefs();
    }
    void TearDown() override {
        unpublishIntegrationDatarefs();
        pluginState() = PluginState();
        setControlPanelOpen(false);
    }

    static void buildSet(std::initializer_list<int> counts) {
        clearWorkingSet();
        int c = 0;
        for (int count : counts) {
            char name[16];
            std::snprintf(name, sizeof name, "Cat%d", c);
            Category& category = workingSet().categories[findOrAddCategory(name, true)];
            category.cameraCount = count;
            ++c;
        }
        relinkSet(true);
        setCurrentCategoryIndex(0);
    }
    static void cameraLevel(bool on) { pluginState().cameraEnabled = on; }
};

TEST_F(IntegrationDatarefsTest, SelectedCameraReadsAndSelectsByCategoryAndIndex) {
    XPLMDataRef selected = ref("SelectedCamera");
    EXPECT_EQ(XPLMGetDatai(selected), -1);
    XPLMSetDatai(selected, 151);
    EXPECT_EQ(currentCategoryIndex(), 0) << "no selection while the camera level is off";

    cameraLevel(true);
    EXPECT_EQ(XPLMGetDatai(selected), 0);
    XPLMSetDatai(selected, 151);
    EXPECT_EQ(currentCamera(), &cam(1, 1));
    EXPECT_EQ(XPLMGetDatai(selected), 151);
    // Camera 141 of the first category doesn't exist.
    XPLMSetDatai(selected, 140);
    EXPECT_EQ(currentCamera(), &cam(1, 1));
    XPLMSetDatai(selected, 1);
    EXPECT_EQ(XPLMGetDatai(selected), 1);
}

TEST_F(IntegrationDatarefsTest, ArraysGiveTheirSizeAndClipAtTheEnd) {
    cameraLevel(true);
    cam(1, 2).viewId = 65;
    cam(1, 2).heading = 12.5f;
    cam(0, 1).viewId = 3;
    cam(0, 1).x = 1.5f;
    relinkSet(false);

    XPLMDataRef x = ref("camera_x");
    EXPECT_EQ(XPLMGetDatavf(x, nullptr, 0, 0), 66);
    float values[10];
    EXPECT_EQ(XPLMGetDatavf(x, values, 60, 10), 6);
    EXPECT_EQ(XPLMGetDatavf(x, values, 66, 10), 0);
    EXPECT_EQ(XPLMGetDatavf(ref("camera_heading"), values, 60, 10), 6);
    EXPECT_EQ(values[5], 12.5f);
    EXPECT_EQ(XPLMGetDatavf(x, values, 0, 4), 4);
    EXPECT_EQ(values[0], 0.0f);
    EXPECT_EQ(values[3], 1.5f);
    EXPECT_EQ(XPLMGetDatavi(ref("camera_status"), nullptr, 0, 0), 66);
    EXPECT_EQ(XPLMGetDatavi(ref("camera_motion_axis_assignment"), nullptr, 0, 0), 6);

    // Writes reach cameras only, and only while the camera level is on.
    float in[2] = {7.0f, 8.0f};
    XPLMSetDatavf(x, in, 2, 2);
    EXPECT_EQ(cam(0, 1).x, 8.0f);
    cameraLevel(false);
    in[1] = 9.0f;
    XPLMSetDatavf(x, in, 2, 2);
    EXPECT_EQ(cam(0, 1).x, 8.0f);
    EXPECT_EQ(XPLMGetDatavf(x, values, 3, 1), 1);
    EXPECT_EQ(values[0], 0.0f) << "every element reads 0 with the camera level off";
}

TEST_F(IntegrationDatarefsTest, AxisAssignmentTakesOnlyMinusFiveToFive) {
    XPLMDataRef assignment = ref("camera_motion_axis_assignment");
    int six = 6;
    XPLMSetDatavi(assignment, &six, 2, 1);
    int values[6];
    ASSERT_EQ(XPLMGetDatavi(assignment, values, 0, 6), 6);
    EXPECT_EQ(values[2], 2);
    int write[4] = {-5, 9, 1, 1};
    XPLMSetDatavi(assignment, write, 3, 4);  // runs past the sixth element: cut off
    ASSERT_EQ(XPLMGetDatavi(assignment, values, 0, 6), 6);
    EXPECT_EQ(values[3], -5);
    EXPECT_EQ(values[4], 4);
    EXPECT_EQ(values[5], 1);
}

TEST_F(IntegrationDatarefsTest, StatusValuesSumTheirParts) {
    XPLMDataRef overall = ref("overall_status");
    XPLMDataRef status = ref("camera_status");
    setControlPanelOpen(true);
    EXPECT_EQ(XPLMGetDatai(overall), 0);

    cameraLevel(true);
    cam(0, 0).trackIrEnabled = true;
    cam(0, 0).viewId = 1;
    cam(1, 0).viewId = 2;
    relinkSet(false);
    EXPECT_EQ(XPLMGetDatai(overall), 11);
    cam(0, 0).scriptId = 4;
    EXPECT_EQ(XPLMGetDatai(overall), 43);
    EXPECT_EQ(XPLMGetDatai(ref("effect_script_id")), 4);

    int values[4];
    xphost::forceValue("sim/graphics/view/view_type", 1026);
    ASSERT_EQ(XPLMGetDatavi(status, values, 0, 4), 4);
    EXPECT_EQ(values[0], 0);
    EXPECT_EQ(values[1], 1 + 2 + 8) << "selected and shown, panel open";
    EXPECT_EQ(values[2], 1 + 8);
    EXPECT_EQ(values[3], 0) << "an unused view ID stays 0 with the panel open";
    xphost::forceValue("sim/graphics/view/view_type", 1017);
    xphost::forceValue("sim/graphics/view/view_is_external", 0);
    ASSERT_EQ(XPLMGetDatavi(status, values, 1, 1), 1);
    EXPECT_EQ(values[0], 1 + 8) << "a view that doesn't show the camera";
}

TEST_F(IntegrationDatarefsTest, ScalarsStoreWhatIsWrittenAndReadOnlyOnesRefuse) {
    XPLMDataRef heading = ref("heading_offset");
    XPLMSetDataf(heading, 2.5f);
    EXPECT_EQ(XPLMGetDataf(heading), 2.5f);
    EXPECT_EQ(integrationValues().headingOffset, 2.5f);
    XPLMSetDataf(ref("effect_script_roll_offset"), -1.0f);
    XPLMSetDatai(ref("headtracking_present"), 1);
    EXPECT_EQ(integrationValues().headtrackingPresent, 1);
    EXPECT_EQ(integrationValues().effectScriptRollOffset, -1.0f);
    clearEffectScriptOffsets();
    EXPECT_EQ(XPLMGetDataf(ref("effect_script_roll_offset")), 0.0f);

    for (const char* name : {"Vistarig_enabled", "camera_status", "effect_script_id", "overall_status"})
        EXPECT_FALSE(XPLMCanWriteDataRef(ref(name))) << name;
    EXPECT_TRUE(XPLMCanWriteDataRef(ref("camera_roll")));
    EXPECT_EQ(XPLMGetDataRefTypes(ref("camera_roll")), 8);
    EXPECT_EQ(XPLMGetDataRefTypes(ref("camera_motion_axis_assignment")), 16);
    EXPECT_EQ(XPLMGetDataRefTypes(ref("roll_offset")), 2);
    EXPECT_EQ(XPLMGetDataRefTypes(ref("SelectedCamera")), 1);
    // Unknown refcons read as nothing.
    EXPECT_EQ(readIntegrationInt(reinterpret_cast<void*>(99)), 0);
    EXPECT_EQ(readIntegrationFloat(reinterpret_cast<void*>(16)), 0.0f);
}

}  // namespace
