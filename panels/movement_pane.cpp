#include "panels/movement_pane.h"

#include <imgui.h>

#include "data/camera_set.h"
#include "data/settings.h"
#include "inputs/trackir.h"
#include "motion/camera_inputs.h"
#include "motion/movement.h"
#include "motion/transitions.h"
#include "panels/control_panel_widget.h"
#include "panels/kvt_im_window.h"
#include "panels/labelled_items.h"

namespace {

constexpr float kLimitColumn = 230.0f;
const ImVec2 kPadButton(65.0f, 25.0f);

// An arrow that takes the head's present position into one limit.
void limitRow(const char* leftArrow, const char* leftLabel, float& leftValue, const char* rightArrow,
              const char* rightLabel, float& rightValue, float head) {
    if (labelledArrow(leftArrow, ImGuiDir_Right)) leftValue = head;
    ImGui::SameLine();
    ImGui::DragFloat(leftLabel, &leftValue, 0.05f, 0.0f, 0.0f, "%.3f");
    ImGui::SameLine(kLimitColumn);
    if (labelledArrow(rightArrow, ImGuiDir_Right)) rightValue = head;
    ImGui::SameLine();
    ImGui::DragFloat(rightLabel, &rightValue, 0.05f, 0.0f, 0.0f, "%.3f");
}

void padButton(const char* label, int32_t operation, bool continuous) {
    if (ImGui::Button(label, kPadButton)) moveCamera(operation, continuous);
}

float movementSpeedOf(int32_t range) {
    const Settings& s = settings();
    switch (range) {
        case 0: return s.SMALL_MOVEMENT_SPEED;
        case 2: return s.LARGE_MOVEMENT_SPEED;
        case 3: return s.VERY_LARGE_MOVEMENT_SPEED;
        default: return s.MEDIUM_MOVEMENT_SPEED;
    }
}

}  // namespace

float shownPitch(float pitch) {
    while (pitch < 0.0f) pitch += 360.0f;
    while (pitch >= 360.0f) pitch -= 360.0f;
    return pitch > 180.0f ? pitch - 360.0f : pitch;
}

float storedPitch(float shown) {
    while (shown < 0.0f) shown += 360.0f;
    while (shown >= 360.0f) shown -= 360.0f;
    return shown;
}

void buildTrackIrPane(ControlPanelWidget&) {
    Camera& c = *currentCamera();
    if (ImGui::BeginMenuBar()) {
        if (ImGui::BeginMenu("TrackIr")) {
            if (ImGui::MenuItem("Snap Camera to TrackIR Position")) {
                stopCameraMotion();
                snapCameraToTrackIr();
            }
            if (ImGui::MenuItem("Reset TrackIR Limits")) {
                c.trackIrMin.x = c.x - 1.0f;
                c.trackIrMax.x = c.x + 1.0f;
                c.trackIrMin.y = c.y - 1.0f;
                c.trackIrMax.y = c.y + 1.0f;
                c.trackIrMin.z = c.z - 1.0f;
                c.trackIrMax.z = c.z + 1.0f;
            }
            ImGui::EndMenu();
        }
        ShowHelpMarker(
            "Enable TrackIR to apply head tracking offsets to this camera. Enable TrackIR limits to prevent those "
            "applied offsets from postitioning your view outside the cockpit\n\nUse the drag fields to edit the "
            "limit in meters. Lean to the desired limit and use the arrow buttons to set that limit to your current "
            "head position");
        ImGui::EndMenuBar();
    }
    ImGui::PushItemWidth(85.0f);
    ImGui::Checkbox("Enable TrackIR", &c.trackIrEnabled);
    ImGui::SameLine(kLimitColumn);
    ImGui::Checkbox("Enable Limits", &c.limitTrackIr);
    const CameraPose& head = currentHeadPose();
    limitRow("##SetMaxLeft", "Max Left", c.trackIrMin.x, "##SetMaxRight", "Max Right", c.trackIrMax.x, head.x);
    limitRow("##SetMaxUp", "Max Up", c.trackIrMax.y, "##SetMaxDown", "Max Down", c.trackIrMin.y, head.y);
    limitRow("##SetMaxForward", "Max Forward", c.trackIrMin.z, "##SetMaxBack", "Max Back", c.trackIrMax.z, head.z);
    ImGui::PopItemWidth();
}

void buildMovementPane(ControlPanelWidget&) {
    Camera& c = *currentCamera();
    if (ImGui::BeginMenuBar()) {
        const char* items[] = {"Small", "Medium", "Large", "Very Large"};
        ImGui::SetNextItemWidth(150.0f);
        labelledCombo("Movement Increment", &c.initialMovementRange, items, 4);
        ImGui::SameLine();
        ShowHelpMarker("The movement increment determines how far the camera will move with each button press.");
        ImGui::EndMenuBar();
    }
    const bool walk = movementState().walkMode;
    ImGui::PushItemWidth(70.0f);
    ImGui::PushButtonRepeat(true);

    padButton("Home", moveHome, false);
    ImGui::SameLine();
    padButton("Up", moveUp, walk);
    ImGui::SameLine();
    padButton("Forward", moveForward, walk);
    ImGui::SameLine();
    float pitch = shownPitch(c.pitch);
    if (ImGui::DragFloat("Pitch", &pitch, 0.5f, -180.0f, 180.0f, "%.1f")) c.pitch = storedPitch(pitch);
    ImGui::SameLine(370.0f);
    if (labelledArrow("##PitchUp", ImGuiDir_Up)) moveCamera(movePitchUp, walk);

    padButton("Left", moveLeft, walk);
    ImGui::SameLine();
    if (ImGui::Button("Center", kPadButton)) {
        moveCamera(moveZeroBearing, false);
        moveCamera(moveZeroPitch, false);
    }
    ImGui::SameLine();
    padButton("Right", moveRight, walk);
    ImGui::SameLine();
    if (ImGui::DragFloat("Yaw", &c.heading, 0.5f, -1.0f, 361.0f, "%.1f")) {
        if (c.heading < 0.0f) c.heading += 360.0f;
        if (c.heading > 360.0f) c.heading -= 360.0f;
    }
    ImGui::SameLine(350.0f);
    if (labelledArrow("##RotateLeft", ImGuiDir_Left)) moveCamera(moveTurnLeft, walk);
    ImGui::SameLine(390.0f);
    if (labelledArrow("##RotateRight", ImGuiDir_Right)) moveCamera(moveTurnRight, walk);

    ImGui::InvisibleButton("Invisable", kPadButton);
    ImGui::SameLine();
    padButton("Down", moveDown, walk);
    ImGui::SameLine();
    padButton("Back", moveBack, walk);
    ImGui::SameLine();
    ImGui::DragFloat("Roll", &c.roll, 0.5f, -180.0f, 180.0f, "%.1f");
    ImGui::SameLine(370.0f);
    if (labelledArrow("##PitchDown", ImGuiDir_Down)) moveCamera(movePitchDown, walk);

    ImGui::PopButtonRepeat();
    ImGui::PopItemWidth();

    ImGui::PushItemWidth(100.0f);
    const float speed = movementSpeedOf(c.initialMovementRange);
    ImGui::DragFloat("X", &c.x, speed, 0.0f, 0.0f, "%.3f");
    ImGui::SameLine();
    ImGui::DragFloat("Y", &c.y, speed, 0.0f, 0.0f, "%.3f");
    ImGui::SameLine();
    ImGui::DragFloat("Z", &c.z, speed, 0.0f, 0.0f, "%.3f");
    ImGui::SameLine();
    ShowHelpMarker(
        "Double click the numeric fields to manually enter the value or left click and drag to change the value "
        "with horizontal mouse movement. Hold the buttons down to repeat a movement.");
    ImGui::PopItemWidth();
}
