// The Control Panel's panes in the loaded plug-in, worked through the UI driver: the
// category and camera lists (selection, drag reordering, renaming, context menus, the
// view ID combo and the assignments popup), the camera options and their rules, the
// movement pad's held buttons and the TrackIR limits, the panes' layout, and
// screenshots of the filled panel at UI scale 1 and 1.5.
#include <gtest/gtest.h>
#include <imgui.h>
#include <imgui_internal.h>

#include <cctype>
#include <cmath>
#include <cstring>
#include <functional>
#include <vector>

#include "XPLMDataAccess.h"
#include "control_panel_fixture.h"
#include "data/set_editing.h"
#include "inputs/trackir.h"
#include "motion/movement.h"
#include "panels/camera_lists_pane.h"
#include "panels/movement_pane.h"

namespace {

using namespace controlpanel;

class ControlPanelPanesTest : public ControlPanelTest {
protected:
    // The current category filled with `count` cameras named "Cam 1", "Cam 2"...
    void fillCategory(int count) {
        Category* category = currentCategory();
        category->cameraCount = 0;
        for (int i = 0; i < count; ++i) {
            Camera& camera = category->cameras[category->cameraCount++];
            resetCamera(&camera);
            std::snprintf(camera.name, sizeof camera.name, "Cam %d", i + 1);
        }
        category->currentCamera = 0;
        relinkSet(true);
    }
    static std::string cameraLabel(const Camera& camera) {
        return std::string(camera.name) + "##Cam_" + std::to_string(camera.listId);
    }
    static std::vector<std::string> cameraNames() {
        std::vector<std::string> names;
        const Category* category = currentCategory();
        for (int i = 0; i < category->cameraCount; ++i) names.emplace_back(category->cameras[i].name);
        return names;
    }
    static void type(const std::string& label, const std::string& text) {
        ASSERT_EQ(xphost::uiType(kTitle, label, text), "");
    }
    // Whether any pixel inside the item's rectangle is pure-ish red (a duplicate's row).
    static int redPixels(const xphost::UiItem& area) {
        int n = 0;
        const float scale = xphost::drawScale();
        for (int x = static_cast<int>(area.left * scale); x < static_cast<int>(area.right * scale); ++x)
            for (int y = static_cast<int>(area.bottom * scale); y < static_cast<int>(area.top * scale); ++y) {
                const uint32_t p = xphost::screenPixel(x, y);
                if ((p >> 24) > 150 && ((p >> 16) & 0xFF) < 60 && ((p >> 8) & 0xFF) < 60) ++n;
            }
        return n;
    }
};

// ---- lists

TEST_F(ControlPanelPanesTest, DraggingMovesOnePlacePerNeighbourAndNotPastEitherEnd) {
    open();
    fillCategory(5);
    runFrames(1);
    const std::vector<std::string> start = cameraNames();

    // The ends: nothing to swap with.
    ASSERT_EQ(xphost::uiDrag(kTitle, "Cam 1##Cam_" + std::to_string(currentCategory()->cameras[0].listId), 0, -40),
              "");
    EXPECT_EQ(cameraNames(), start);
    ASSERT_EQ(xphost::uiDrag(kTitle, cameraLabel(currentCategory()->cameras[4]), 0, 40), "");
    EXPECT_EQ(cameraNames(), start);

    // A slow drag of the first camera over three neighbours, watched frame by frame:
    // it never moves more than one place a frame nor back, and lands three down.
    click(cameraLabel(currentCategory()->cameras[0]));
    const int listId = currentCategory()->cameras[0].listId;
    const xphost::UiItem first = item(cameraLabel(currentCategory()->cameras[0]));
    const xphost::UiItem second = item(cameraLabel(currentCategory()->cameras[1]));
    const float row = first.top - second.top;
    ASSERT_GT(row, 10.0f);
    auto indexOfHeld = [&] {
        const Category* category = currentCategory();
        for (int i = 0; i < category->cameraCount; ++i)
            if (category->cameras[i].listId == listId) return i;
        return -1;
    };
    const int x = first.centreX(), y = first.centreY();
    xphost::mouseButton(0, 1, x, y);
    runFrames(1);
    int last = 0, swaps = 0;
    const int steps = 42;
    for (int i = 1; i <= steps; ++i) {
        xphost::mouseMove(x, y - static_cast<int>(std::lround(3.2f * row * i / steps)));
        runFrames(1);
        const int now = indexOfHeld();
        EXPECT_TRUE(now == last || now == last + 1) << "frame " << i << ": " << last << " -> " << now;
        if (now != last) ++swaps;
        last = now;
    }
    // Held still outside its old place: no swap back and forth.
    runFrames(5);
    EXPECT_EQ(indexOfHeld(), last);
    xphost::mouseButton(0, 3, x, y - static_cast<int>(std::lround(3.2f * row)));
    runFrames(2);
    EXPECT_EQ(swaps, 3);
    EXPECT_EQ(indexOfHeld(), 3);
    EXPECT_EQ(cameraNames(), (std::vector<std::string>{"Cam 2", "Cam 3", "Cam 4", "Cam 1", "Cam 5"}));
    EXPECT_EQ(currentCategory()->currentCamera, 3) << "letting go over the item selects it there";

    // The pure rule: the ends and a delta just reset give no neighbour.
    EXPECT_EQ(dragNeighbour(0, 5, -12.0f), -1);
    EXPECT_EQ(dragNeighbour(4, 5, 12.0f), -1);
    EXPECT_EQ(dragNeighbour(2, 5, 0.0f), -1);
    EXPECT_EQ(dragNeighbour(2, 5, -1.0f), 1);
}

TEST_F(ControlPanelPanesTest, SelectRenameAndContextMenusFollowTheCounts) {
    open();
    click("Outside##Cat_" + std::to_string(categoryAt(1)->listId));
    EXPECT_EQ(currentCategoryIndex(), 1);
    EXPECT_STREQ(currentCamera()->name, "Chase");

    // One camera: no "Delete"; a rename keeps the menu open until Enter.
    click(cameraLabel(*currentCamera()));
    ASSERT_EQ(xphost::uiClick(kTitle, cameraLabel(*currentCamera()), 1), "");
    EXPECT_TRUE(has("Add to End"));
    EXPECT_FALSE(has("Delete"));
    EXPECT_FALSE(has("Paste Over")) << "empty clipboard";
    // Typed a key a frame without Enter: the menu stays open while the name changes.
    ASSERT_EQ(xphost::uiClick(kTitle, "##edit"), "");
    for (char ch : std::string("ab")) {
        xphost::typeKey(ch, std::toupper(static_cast<unsigned char>(ch)));
        runFrames(2);  // the window hands ImGui one key event a frame
        EXPECT_TRUE(has("Add to End")) << ch;
    }
    EXPECT_NE(std::string(currentCamera()->name).find("ab"), std::string::npos) << currentCamera()->name;
    type("##edit", "Tail View");
    EXPECT_STREQ(currentCamera()->name, "Tail View");
    EXPECT_FALSE(has("Add to End")) << "Enter closed the menu";
    EXPECT_TRUE(has(cameraLabel(*currentCamera()))) << "the renamed item keeps its list number";

    // A copy, and a category full to the brim: inserting is gone, pasting over stays.
    ASSERT_EQ(xphost::uiClick(kTitle, cameraLabel(*currentCamera()), 1), "");
    click("Copy");
    fillCategory(kMaxCameras);
    runFrames(1);
    ASSERT_EQ(xphost::uiClick(kTitle, cameraLabel(*currentCamera()), 1), "");
    EXPECT_TRUE(has("Delete"));
    EXPECT_TRUE(has("Paste Over"));
    for (const char* gone : {"Add to End", "Insert New Above", "Insert Copy Below", "Insert Copy Above"})
        EXPECT_FALSE(has(gone)) << gone;
    click("Paste Over");
    EXPECT_STREQ(currentCamera()->name, "(Copy of) Tail View");

    // One category: no "Delete" in its menu; "Clear All Camera View ID's" waits for a copy.
    CameraSet& set = workingSet();
    set.categoryCount = 1;
    setCurrentCategoryIndex(0);
    relinkSet(true);
    runFrames(1);
    categoryClipboard().name[0] = '\0';
    const std::string cockpit = "Cockpit##Cat_" + std::to_string(categoryAt(0)->listId);
    ASSERT_EQ(xphost::uiClick(kTitle, cockpit, 1), "");
    EXPECT_FALSE(has("Delete"));
    EXPECT_FALSE(has("Clear All Camera View ID's"));
    click("Add to End");
    EXPECT_EQ(categoryCount(), 2);
    click("Category");
    EXPECT_TRUE(item("Paste Category").disabled);
    click("Category");
}

TEST_F(ControlPanelPanesTest, ViewIdComboRunsTo50ForAnAircraftAnd65ForAnAirportAndNamesItsHolders) {
    open();
    // Three holders of 7, one of 9.
    CameraSet& set = workingSet();
    set.categories[0].cameras[0].viewId = 7;
    set.categories[0].cameras[1].viewId = 7;
    set.categories[1].cameras[0].viewId = 7;
    selectCategory(0);
    selectCamera(0);
    set.categories[0].cameras[0].viewId = 9;
    Camera* spare = &set.categories[0].cameras[2];
    set.categories[0].cameraCount = 3;
    resetCamera(spare);
    std::strcpy(spare->name, "Spare");
    spare->viewId = 7;
    relinkSet(true);
    runFrames(1);

    click("View ID");
    EXPECT_TRUE(has("7 Used [3]"));
    EXPECT_TRUE(has("9 Used"));
    EXPECT_TRUE(has("50"));
    EXPECT_FALSE(has("51"));
    click("10");  // the list opens scrolled to the chosen 9
    EXPECT_EQ(currentCamera()->viewId, 10);
    EXPECT_EQ(cameraForViewId(10), currentCamera()) << "the table is rebuilt";
    EXPECT_EQ(cameraForViewId(9), nullptr);

    CameraFile airport{};
    airport.kind = 1;
    setActiveFile(&airport);
    runFrames(1);
    click("View ID");
    EXPECT_TRUE(has("65"));
    EXPECT_TRUE(has("10 Used"));
    click("View ID");
    setActiveFile(savedActive);
    runFrames(1);

    // The assignments: one plain row for 7 and two red ones; then one red row fewer.
    click("File/Display View ID Assignments");
    EXPECT_TRUE(shows("Action"));
    // Rows by ID: 7 (plain, then its two duplicates), then 10; the counter numbers the buttons.
    EXPECT_TRUE(has("Clear##clearID0"));
    EXPECT_TRUE(has("Clear Duplicate##ClearDupID1"));
    EXPECT_TRUE(has("Clear Duplicate##ClearDupID2"));
    EXPECT_TRUE(has("Clear##clearID3"));
    EXPECT_FALSE(has("Clear Duplicate##ClearDupID4"));
    const xphost::UiItem plain = item("Clear##clearID0"), red = item("Clear Duplicate##ClearDupID1");
    xphost::UiItem plainRow = plain, redRow = red;
    plainRow.left = redRow.left = plain.left - 675.0f;
    EXPECT_EQ(redPixels(plainRow), 0);
    EXPECT_GT(redPixels(redRow), 20);
    click("Clear Duplicate##ClearDupID1");
    EXPECT_EQ(camerasWithViewId(7, nullptr, 0), 2);
    EXPECT_TRUE(has("Clear Duplicate##ClearDupID1"));
    EXPECT_FALSE(has("Clear Duplicate##ClearDupID2"));
    EXPECT_TRUE(has("Clear##clearID2"));
    click("Clear All");
    EXPECT_FALSE(anyViewIdAssigned());
    EXPECT_FALSE(has("Clear##clearID0"));
    click("Ok");
    EXPECT_FALSE(shows("Action"));
}

// ---- options

struct OptionRule {
    const char* what;
    const char* label;
    std::function<void(Camera&)> before;
    std::function<void(const Camera&)> after;
};

TEST_F(ControlPanelPanesTest, EachOptionRuleActsOnlyOnTheUsersChange) {
    settings().ENABLE_FORCE_FOV = true;
    ControlPanelWidget* panel = open();
    click("Show Advanced Camera Options");
    ASSERT_TRUE(panel->showAdvanced);
    const float tail = getf("sim/aircraft/view/acf_size_z");
    selectCategory(1);
    runFrames(1);
    // The frame driver works on the camera between the click and the check: a circle
    // view turns round its centre, an AGL camera takes its height from the ground.
    auto behind = [tail](const Camera& c, float metres) {
        EXPECT_NEAR(c.x, 0.0f, 1e-4);
        if (!c.aglCamera) {
            EXPECT_NEAR(c.y, 0.0f, 1e-4);
        }
        EXPECT_NEAR(c.z, tail + metres, 1e-4);
        EXPECT_NEAR(std::fmod(c.heading, 360.0f), 0.0f, 1e-4);
        EXPECT_FLOAT_EQ(c.homePose.z, tail + metres);
    };
    const std::vector<OptionRule> rules = {
        {"smooth clears an advanced transition", "Enable Smooth Transition",
         [](Camera& c) { c.linearTransition = true; },
         [](const Camera& c) { EXPECT_TRUE(c.smoothTransition && !c.linearTransition && !c.bezierTransition); }},
        {"linear leaves smooth set", "Linear", [](Camera& c) { c.smoothTransition = true; },
         [](const Camera& c) { EXPECT_TRUE(c.smoothTransition && c.linearTransition); }},
        {"Lua Script from 0 gives 1", "Lua Script", [](Camera& c) { c.scriptId = 0; },
         [](const Camera& c) { EXPECT_EQ(c.scriptId, 1); }},
        {"Lua Script keeps 42", "Lua Script", [](Camera& c) { c.scriptId = 42; },
         [](const Camera& c) { EXPECT_EQ(c.scriptId, 42); }},
        {"a plug-in clears the others", "XP-Realistic", [](Camera& c) { c.headShake = true; c.scriptId = 5; },
         [](const Camera& c) { EXPECT_TRUE(c.xpRealistic && !c.headShake && c.scriptId == 0); }},
        {"None clears the script", "None", [](Camera& c) { c.scriptId = 42; },
         [](const Camera& c) { EXPECT_EQ(c.scriptId, 0); }},
        {"frames clear seconds", "Transition Frames", [](Camera& c) { c.transitionSeconds = 4.0f; },
         [](const Camera& c) { EXPECT_EQ(c.linearTransitionFrames, 30); EXPECT_EQ(c.transitionSeconds, 0.0f); }},
        {"seconds clear frames", "Transitions Seconds", [](Camera& c) { c.linearTransitionFrames = 30; },
         [](const Camera& c) { EXPECT_EQ(c.transitionSeconds, 30.0f); EXPECT_EQ(c.linearTransitionFrames, 0); }},
        {"the last visible camera stays visible", "Hidden Camera", [](Camera& c) { c.hidden = false; },
         [](const Camera& c) { EXPECT_FALSE(c.hidden); }},
        {"external goes 10 m behind the tail", "Enable External Camera", [](Camera& c) { c.external = false; },
         [&](const Camera& c) { behind(c, 10.0f); EXPECT_EQ(c.initialMovementRange, 2); }},
        {"circle view: 30 m, very large, no temporary positioning", "Circle View",
         [](Camera& c) { c.temporaryPositioning = true; c.cineflex = true; },
         [&](const Camera& c) {
             behind(c, 30.0f);
             EXPECT_TRUE(c.external && c.levelCamera && c.trackHeading && c.trackPitch);
             EXPECT_FALSE(c.temporaryPositioning || c.cineflex);
             EXPECT_EQ(c.initialMovementRange, 3);
         }},
        {"chase view: 20 m, no head tracking, home pose kept", "X-Plane 9 Chase View",
         [](Camera& c) { c.trackIrEnabled = c.circleView = c.trackPitch = true; c.homePose.z = -5.0f; },
         [&](const Camera& c) {
             EXPECT_FLOAT_EQ(c.z, tail + 20.0f);
             EXPECT_EQ(c.homePose.z, -5.0f);
             EXPECT_FALSE(c.trackIrEnabled || c.circleView || c.trackPitch);
         }},
        {"cineflex from a free camera clears the offsets", "Enable Cineflex Camera",
         [](Camera& c) { c.external = c.freeCamera = true; c.x = 40.0f; c.heading = 30.0f; },
         [](const Camera& c) {
             EXPECT_EQ(c.x, 0.0f);
             EXPECT_EQ(c.heading, 0.0f);
             EXPECT_TRUE(c.cineflex && c.external && !c.freeCamera);
         }},
        {"target following from a cockpit camera keeps the place", "Target Following Camera",
         [](Camera& c) { c.x = 0.5f; c.aglCamera = true; },
         [](const Camera& c) { EXPECT_EQ(c.x, 0.5f); EXPECT_TRUE(c.external && c.targetFollowing && !c.aglCamera); }},
        {"free camera starts 15 m above the aircraft", "Free Camera", [](Camera& c) { c.trackHeading = true; },
         [this](const Camera& c) {
             EXPECT_NEAR(c.y, get("sim/flightmodel/position/local_y") + 15.0, 0.01);
             EXPECT_NEAR(c.x, get("sim/flightmodel/position/local_x"), 10.0) << "the aircraft flies on";
             EXPECT_TRUE(c.external && c.freeCamera && !c.trackHeading);
             EXPECT_NE(c.latitude, 0.0);
         }},
        {"AGL 1 m behind the tail", "AGL Camera", [](Camera& c) { c.aglHeight = 7.0f; },
         [&](const Camera& c) { behind(c, 10.0f); EXPECT_EQ(c.aglHeight, 1.0f); EXPECT_TRUE(c.external); }},
        {"unchecking external ends the outside kinds", "Enable External Camera",
         [](Camera& c) { c.external = c.freeCamera = c.chaseView9 = true; c.x = 9.0f; c.cameraOrigin = 2; },
         [](const Camera& c) {
             EXPECT_FALSE(c.external || c.freeCamera || c.chaseView9);
             EXPECT_EQ(c.x, 0.0f);
             EXPECT_EQ(c.initialMovementRange, 1);
             EXPECT_EQ(c.cameraOrigin, 0);
         }},
        {"track pitch ends level and cineflex", "Enable Track Camera Pitch",
         [](Camera& c) { c.levelCamera = c.cineflex = true; },
         [](const Camera& c) { EXPECT_TRUE(c.trackPitch && !c.levelCamera && !c.cineflex); }},
        {"carrier origin: ship watching start", "Carrier", [](Camera& c) { c.external = true; },
         [](const Camera& c) {
             EXPECT_EQ(c.cameraOrigin, 1);
             EXPECT_EQ(c.x, 100.0f);
             EXPECT_EQ(c.heading, 270.0f);
             EXPECT_TRUE(c.trackHeading && c.trackPitch);
         }},
        {"force FOV takes the default", "Force FOV", [](Camera& c) { c.fov = 20.0f; },
         [](const Camera& c) { EXPECT_TRUE(c.enableFov); EXPECT_NE(c.fov, 20.0f); }},
        {"unchecking force FOV keeps the value", "Force FOV", [](Camera& c) { c.enableFov = true; c.fov = 33.0f; },
         [](const Camera& c) { EXPECT_FALSE(c.enableFov); EXPECT_EQ(c.fov, 33.0f); }},
    };
    for (const OptionRule& rule : rules) {
        SCOPED_TRACE(rule.what);
        Camera& camera = *currentCamera();
        const std::string name = camera.name;
        resetCamera(&camera);
        std::strcpy(camera.name, name.c_str());
        rule.before(camera);
        relinkSet(false);
        runFrames(1);
        const std::string label = rule.label;
        if (label == "Linear") {
            click("Advanced Transitions");
            click(label);
        } else if (label == "Lua Script" || label == "None" || label == "XP-Realistic") {
            click("Effect Plugins");
            click(label);
        } else if (label == "Carrier") {
            click("Camera Origin");
            click(label);
        } else if (label == "Transition Frames" || label == "Transitions Seconds") {
            type(label, "30");
        } else {
            click(label);
        }
        rule.after(*currentCamera());
    }

    // Choosing "Aircraft" changes only the origin; no FOV controls without the setting.
    currentCamera()->external = true;
    currentCamera()->cameraOrigin = 1;
    currentCamera()->x = 3.0f;
    runFrames(1);
    click("Camera Origin");
    click("Aircraft");
    EXPECT_EQ(currentCamera()->cameraOrigin, 0);
    EXPECT_EQ(currentCamera()->x, 3.0f);
    // Picking the ship already chosen keeps a camera the user had placed at it.
    currentCamera()->cameraOrigin = 1;
    runFrames(1);
    click("Camera Origin");
    click("Carrier");
    EXPECT_EQ(currentCamera()->cameraOrigin, 1);
    EXPECT_EQ(currentCamera()->x, 3.0f);
    settings().ENABLE_FORCE_FOV = false;
    currentCamera()->enableFov = true;
    runFrames(1);
    EXPECT_FALSE(has("Force FOV"));
    EXPECT_FALSE(has("FOV Degrees"));
    EXPECT_TRUE(currentCamera()->enableFov);
}

TEST_F(ControlPanelPanesTest, AnAirportFileLacksTheAircraftCellsAndTheWarningNamesAdvancedOptions) {
    ControlPanelWidget* panel = open();
    currentCamera()->trackHeading = true;
    runFrames(1);
    EXPECT_TRUE(shows("Warning! This camera has advanced option(s)"));
    EXPECT_FALSE(has("Hidden Camera"));
    click("Show Advanced Camera Options");
    EXPECT_TRUE(panel->showAdvanced);
    EXPECT_FALSE(shows("Warning! This camera has advanced option(s)"));
    EXPECT_TRUE(has("Allow Camera Auto Advance"));
    CameraFile airport{};
    airport.kind = 1;
    setActiveFile(&airport);
    runFrames(1);
    for (const char* gone : {"Effect Plugins", "Manually Enable Vistarig", "Disable Cockpit Zoom", "Yoke Visibility",
                             "Enable External Camera", "Enable Level Camera", "Enable Cineflex Camera",
                             "X-Plane 9 Chase View", "Circle View", "Target Following Camera", "Free Camera"})
        EXPECT_FALSE(has(gone)) << gone;
    EXPECT_TRUE(has("AGL Camera"));
    EXPECT_TRUE(has("Hidden Camera"));
}

// ---- pad and TrackIR

TEST_F(ControlPanelPanesTest, AHeldPadButtonRepeatsAtImGuisRepeatDelayAndRate) {
    settings().MOVEMENT_SMOOTHING_FACTOR = 0;
    ControlPanelWidget* panel = open();
    Camera& camera = *currentCamera();
    camera.heading = camera.pitch = 0.0f;
    runFrames(1);
    const float step = movementStep();
    ImGuiContext* saved = ImGui::GetCurrentContext();
    ImGui::SetCurrentContext(panel->GetContext());
    const float delay = ImGui::GetIO().KeyRepeatDelay, rate = ImGui::GetIO().KeyRepeatRate;
    ImGui::SetCurrentContext(saved);
    const float dt = getf("sim/operation/misc/frame_rate_period");
    ASSERT_GT(dt, 0.0f);

    // Frame by frame, the presses ImGui's typematic rule for the mouse gives (half the
    // key rate once the delay has passed) with the hold's time as ImGui counts it; a
    // hold shorter than the delay presses once, at its release.
    const ImGuiIO& io = panel->GetContext()->IO;
    const xphost::UiItem forward = item("Forward");
    int longHold = 0;
    for (int frames : {3, 30}) {
        SCOPED_TRACE(frames);
        const float before = currentCamera()->z;
        int expected = 0;
        xphost::mouseButton(0, 1, forward.centreX(), forward.centreY());
        for (int frame = 0; frame < frames + 4; ++frame) {
            if (frame == frames) xphost::mouseButton(0, 3, forward.centreX(), forward.centreY());
            const float earlier = currentCamera()->z;
            runFrames(1);
            const float t = io.MouseDownDuration[0];
            if (t > delay && ImGui::CalcTypematicRepeatAmount(t - dt, t, delay, rate * 0.5f) > 0) ++expected;
            if (t >= 0.0f && t <= delay + dt) {
                EXPECT_FLOAT_EQ(currentCamera()->z, earlier) << "nothing before the repeat delay, frame " << frame;
            }
        }
        if (expected == 0) expected = 1;
        const float moved = before - currentCamera()->z;
        EXPECT_NEAR(moved / step, static_cast<float>(expected), 0.01f);
        if (frames == 30) longHold = expected;
    }
    EXPECT_GT(longHold, 15) << "a second's hold repeats at about every frame";

    // The increment changes the fields' drag speed and is stored with the camera.
    click("Movement Increment");
    click("Very Large");
    EXPECT_EQ(currentCamera()->initialMovementRange, 3);
    runFrames(1);
    EXPECT_EQ(movementStep(), settings().VERY_LARGE_MOVEMENT_SPEED);
    // A drag of "X" by the same 30 boxels moves far at "Very Large" and little at "Small".
    auto dragX = [&] {
        const float before = currentCamera()->x;
        EXPECT_EQ(xphost::uiDrag(kTitle, "X", 30, 0), "");
        return currentCamera()->x - before;
    };
    const float large = dragX();
    click("Movement Increment");
    click("Small");
    const float small = dragX();
    EXPECT_GT(large, 15.0f * settings().VERY_LARGE_MOVEMENT_SPEED);
    EXPECT_LT(small, 30.5f * settings().SMALL_MOVEMENT_SPEED);
    EXPECT_GT(small, 0.0f);

    // Pitch 350 shows as -10, and -11 stores 349; the yaw wraps past 360.
    currentCamera()->pitch = 350.0f;
    runFrames(1);
    EXPECT_TRUE(shows("-10.0"));
    type("Pitch", "-11");
    EXPECT_FLOAT_EQ(currentCamera()->pitch, 349.0f);
    type("Yaw", "360.5");
    EXPECT_NEAR(currentCamera()->heading, 0.5f, 0.001f);
    EXPECT_FLOAT_EQ(shownPitch(190.0f), -170.0f);
    EXPECT_FLOAT_EQ(storedPitch(-180.0f), 180.0f);
}

TEST_F(ControlPanelPanesTest, TrackIrLimitsReachTheCamera) {
    open();
    Camera& camera = *currentCamera();
    camera.x = 1.0f;
    camera.y = 2.0f;
    camera.z = 3.0f;
    runFrames(1);
    click("TrackIr/Reset TrackIR Limits");
    EXPECT_FLOAT_EQ(camera.trackIrMin.x, 0.0f);
    EXPECT_FLOAT_EQ(camera.trackIrMax.x, 2.0f);
    EXPECT_FLOAT_EQ(camera.trackIrMin.y, 1.0f);
    EXPECT_FLOAT_EQ(camera.trackIrMax.y, 3.0f);
    EXPECT_FLOAT_EQ(camera.trackIrMin.z, 2.0f);
    EXPECT_FLOAT_EQ(camera.trackIrMax.z, 4.0f);

    click("Enable Limits");
    EXPECT_TRUE(camera.limitTrackIr);
    type("Max Left", "0.75");
    EXPECT_FLOAT_EQ(camera.trackIrMin.x, 0.75f);
    // The frame driver keeps the head pose: here the camera's own place.
    click("##SetMaxUp");
    EXPECT_FLOAT_EQ(camera.trackIrMax.y, currentHeadPose().y);
    EXPECT_NE(camera.trackIrMax.y, 3.0f);

    // The limits hold the head's position in the camera.
    CameraPose pose = cameraPose(&camera);
    pose.x = -4.0f;
    pose.y = 9.0f;
    clampToTrackIrLimits(camera, pose);
    EXPECT_FLOAT_EQ(pose.x, 0.75f);
    EXPECT_FLOAT_EQ(pose.y, camera.trackIrMax.y);
}

// ---- layout and pictures

TEST_F(ControlPanelPanesTest, PanesStandWhereTheLayoutPutsThemWithoutStrayScrollbars) {
    settings().ENABLE_SOLID_CONTROL_PANEL = true;
    ControlPanelWidget* panel = open();
    panel->showAdvanced = true;
    runFrames(2);
    struct Pane {
        const char* name;
        float width, height;
    };
    const Pane panes[] = {{"ChildCategoryLists", 435, 185}, {"ChildCameraLists", 435, 185}, {"TrackIR", 435, 160},
                          {"ChildMovement", 435, 160},      {"CameraOptions", 880, 380}};
    xphost::UiItem rects[5];
    for (int i = 0; i < 5; ++i) {
        rects[i] = item(panes[i].name);
        EXPECT_NEAR(rects[i].right - rects[i].left, panes[i].width, 2.0f) << panes[i].name;
        EXPECT_NEAR(rects[i].top - rects[i].bottom, panes[i].height, 2.0f) << panes[i].name;
    }
    xphost::WindowInfo w;
    ASSERT_TRUE(xphost::findWindow(kTitle, w));
    const float spacing = 8.0f, rowSpacing = 4.0f;
    EXPECT_NEAR(rects[0].left, w.left + 8.0f, 2.0f);
    EXPECT_NEAR(rects[1].left, rects[0].right + spacing, 2.0f);
    EXPECT_NEAR(rects[1].top, rects[0].top, 2.0f);
    EXPECT_NEAR(rects[2].top, rects[0].bottom - rowSpacing, 2.0f);
    EXPECT_NEAR(rects[3].left, rects[1].left, 2.0f);
    EXPECT_NEAR(rects[4].top, rects[2].bottom - rowSpacing, 2.0f);
    EXPECT_GT(rects[4].bottom, w.bottom + 20.0f) << "the save row fits below the options";

    // Only the lists scroll, and only when they hold more than they show.
    const ImGuiContext* own = panel->GetContext();
    for (const ImGuiWindow* window : own->Windows) {
        if (!window->Active || !(window->Flags & ImGuiWindowFlags_ChildWindow)) continue;
        EXPECT_FALSE(window->ScrollbarY) << window->Name;
        EXPECT_FALSE(window->ScrollbarX) << window->Name;
    }
}

TEST_F(ControlPanelPanesTest, ScreenshotsOfTheFilledPanelWithAdvancedOptions) {
    const std::string folder = VISTARIG_SCREENSHOT_DIR;
    std::filesystem::create_directories(folder);
    for (float scale : {1.0f, 1.5f}) {
        ControlPanelAction(4);
        runFrames(1);
        xphost::setDrawScale(scale);
        settings().ENABLE_SOLID_CONTROL_PANEL = true;
        ControlPanelWidget* panel = open();
        click("Show Advanced Camera Options");
        ASSERT_TRUE(panel->showAdvanced);
        runFrames(2);
        const std::string path = folder + "/control_panel_panes_" + (scale == 1.0f ? "1" : "1.5") + ".png";
        std::string error;
        EXPECT_TRUE(xphost::screenshot(path, &error)) << error;
        EXPECT_TRUE(has("Enable External Camera"));
        EXPECT_TRUE(has("Forward"));
        EXPECT_TRUE(has("Max Left"));
    }
}

}  // namespace
