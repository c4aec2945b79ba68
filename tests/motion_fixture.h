// A simulator with the plug-in's motion code linked in but no plug-in loaded: the
// host's datarefs, a frozen aircraft placed by the test, built-in settings and a
// working set of one category whose cameras the test fills. Shared by the pose,
// transition and movement tests.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

#include "data/camera_set.h"
#include "data/settings.h"
#include "host/host.h"
#include "motion/camera_pose.h"
#include "motion/frame_driver.h"
#include "motion/movement.h"
#include "motion/transitions.h"

class MotionTest : public ::testing::Test {
protected:
    void SetUp() override {
        xphost::reset();
        xphost::freezeAircraft(true);
        settings() = builtInSettings();
        setControlPanelOpen(false);
        initFrameDriver();
        initCameraPose();
        freeTransition();
        resetMovement();
        placeAircraft(0, 0, 0, 0, 0, 0);
    }

    void TearDown() override { freeTransition(); }

    // Local position and attitude of the user's aircraft, in the simulator's datarefs.
    static void placeAircraft(double x, double y, double z, float theta, float phi, float psi) {
        xphost::forceValue("sim/flightmodel/position/local_x", x);
        xphost::forceValue("sim/flightmodel/position/local_y", y);
        xphost::forceValue("sim/flightmodel/position/local_z", z);
        xphost::forceValue("sim/flightmodel/position/theta", theta);
        xphost::forceValue("sim/flightmodel/position/phi", phi);
        xphost::forceValue("sim/flightmodel/position/psi", psi);
    }

    // One category of `count` cameras, linked into a ring; camera 0 current.
    static void buildCategory(int count) {
        clearWorkingSet();
        int index = findOrAddCategory("Motion", true);
        ASSERT_EQ(index, 0);
        Category& category = workingSet().categories[0];
        category.cameraCount = count;
        for (int i = 0; i < count; ++i) {
            resetCamera(&category.cameras[i]);
            std::snprintf(category.cameras[i].name, sizeof category.cameras[i].name, "M%d", i);
        }
        relinkSet(true);
        setCurrentCategoryIndex(0);
        category.currentCamera = 0;
    }

    static Camera& cam(int index) { return workingSet().categories[0].cameras[index]; }

    // Average frame rate the transitions see.
    static void setFrameRate(float fps) { prime(frameDriver().frameRateFilter, 100, fps); }
};
