// The Control Panel's modal popups: opening the one a menu asked for, and the forms
// of the panel's own popups (paste and new set confirmations, the orbit, fly-by and
// airport camera generators). The forms keep their values for the run of the plug-in.
#include <imgui.h>

#include "airports/airport_cameras.h"
#include "data/camera_set.h"
#include "data/generators.h"
#include "data/set_editing.h"
#include "panels/camera_lists_pane.h"
#include "panels/community_popups.h"
#include "panels/control_panel_widget.h"

namespace {

constexpr float kButtonWidth = 120.0f;
constexpr float kDragWidth = 100.0f;
constexpr int kAirportWaitFrames = 10;

const char* popupName(int code) {
    switch (code) {
        case ControlPanelWidget::confirmPastePopup: return "Confirm Paste Camera Set";
        case ControlPanelWidget::sharePopup: return "Share Community File";
        case ControlPanelWidget::browsePopup: return "Browse Community Files";
        case ControlPanelWidget::orbitPopup: return "Create Orbit";
        case ControlPanelWidget::flyByPopup: return "Create FlyBy";
        case ControlPanelWidget::airportCamerasPopup: return "Create Airport Cameras";
        case ControlPanelWidget::confirmNewSetPopup: return "Confirm Create New Camera Set";
        case ControlPanelWidget::viewIdPopup: return "Display View ID Assignments";
        case ControlPanelWidget::importPopup:
        case ControlPanelWidget::importBackupPopup: return "Import Camera File";
        default: return nullptr;
    }
}

struct FormState {
    bool autoCorrectPaste = false;
    bool orbitFilled = false, flyByFilled = false;
    OrbitOptions orbit;
    FlyByOptions flyBy;
    int airportWait = 0;  // frames since "Create"; 0 while the form shows
};

FormState& forms() {
    static FormState state;
    return state;
}

// A heading that a drag takes past 0 or 360 comes back round by 360.
void headingField(const char* label, float& value) {
    ImGui::SetNextItemWidth(kDragWidth);
    if (ImGui::DragFloat(label, &value, 1.0f, -1.0f, 361.0f, "%.1f")) {
        if (value < 0) value += 360.0f;
        if (value > 360.0f) value -= 360.0f;
    }
}

void metresField(const char* label, float& value, float speed = 1.0f, float low = 0, float high = 0) {
    ImGui::SetNextItemWidth(kDragWidth);
    ImGui::DragFloat(label, &value, speed, low, high, "%.2f");
}

bool cancelButton() {
    const bool pressed = ImGui::Button("Cancel", ImVec2(kButtonWidth, 0));
    ImGui::SetItemDefaultFocus();
    return pressed;
}

// "Create" is offered only with a name: an empty one would name no live category.
bool createButton(const char* name) {
    const bool empty = name[0] == '\0';
    if (empty) ImGui::BeginDisabled();
    const bool pressed = ImGui::Button("Create", ImVec2(kButtonWidth, 0));
    if (empty) ImGui::EndDisabled();
    return pressed;
}

void buildConfirmPaste() {
    if (!ImGui::BeginPopupModal("Confirm Paste Camera Set", nullptr, ImGuiWindowFlags_AlwaysAutoResize)) return;
    ImGui::TextUnformatted("Do you want to paste this camera set?");
    ImGui::Separator();
    ImGui::Checkbox("Auto Correct Cockpit Cameras", &forms().autoCorrectPaste);
    if (ImGui::Button("OK", ImVec2(kButtonWidth, 0))) {
        // The pilot's view of the set being replaced is what the pasted cockpit fits to.
        Camera reference{};
        resetCamera(&reference);
        copyCameraSettings(firstCamera(), &reference);
        pasteSet(&setClipboard());
        if (forms().autoCorrectPaste) autoCorrectCockpit(reference);
        ImGui::CloseCurrentPopup();
    }
    ImGui::SetItemDefaultFocus();
    ImGui::SameLine();
    if (ImGui::Button("Cancel", ImVec2(kButtonWidth, 0))) ImGui::CloseCurrentPopup();
    ImGui::EndPopup();
}

void buildOrbitForm() {
    FormState& f = forms();
    if (!ImGui::BeginPopupModal("Create Orbit", nullptr, ImGuiWindowFlags_AlwaysAutoResize)) return;
    if (!f.orbitFilled) f.orbit = OrbitOptions(), f.orbitFilled = true;
    OrbitOptions& o = f.orbit;
    ImGui::SetNextItemWidth(250.0f);
    ImGui::InputText("Name##OrbitName", o.name, sizeof o.name);
    headingField("Initial Camera Heading", o.initialHeading);
    metresField("Radius in Meters", o.radius);
    metresField("Min Height in Meters", o.minHeight);
    metresField("Max Height in Meters", o.maxHeight);
    metresField("Duration in Seconds", o.duration, 0.5f, 0.0f, 1000.0f);
    ImGui::Checkbox("Reverse Rotation", &o.reverse);
    ImGui::Checkbox("Continuous", &o.continuous);
    ImGui::Checkbox("Use Level Camera", &o.levelCamera);
    if (createButton(o.name)) {
        createOrbit(o);
        ImGui::CloseCurrentPopup();
    }
    ImGui::SameLine();
    if (ImGui::Button("Defaults", ImVec2(kButtonWidth, 0))) o = OrbitOptions();
    ImGui::SameLine();
    if (cancelButton()) ImGui::CloseCurrentPopup();
    ImGui::EndPopup();
}

void buildFlyByForm() {
    FormState& f = forms();
    if (!ImGui::BeginPopupModal("Create FlyBy", nullptr, ImGuiWindowFlags_AlwaysAutoResize)) return;
    if (!f.flyByFilled) f.flyBy = FlyByOptions(), f.flyByFilled = true;
    FlyByOptions& o = f.flyBy;
    ImGui::SetNextItemWidth(250.0f);
    ImGui::InputText("Name##FlyByName", o.name, sizeof o.name);
    headingField("Camera Attack Heading", o.attackHeading);
    metresField("Initial Height in Meters", o.initialHeight);
    metresField("Distance in Meters", o.distance);
    metresField("CPA X in Meters", o.cpaX);
    metresField("CPA Z in Meters", o.cpaZ);
    metresField("CPA Y in Meters", o.cpaY);
    metresField("Duration in Seconds", o.duration, 0.5f, 0.0f, 1000.0f);
    if (createButton(o.name)) {
        createFlyBy(o);
        ImGui::CloseCurrentPopup();
    }
    ImGui::SameLine();
    if (ImGui::Button("Defaults", ImVec2(kButtonWidth, 0))) o = FlyByOptions();
    ImGui::SameLine();
    if (cancelButton()) ImGui::CloseCurrentPopup();
    ImGui::EndPopup();
}

void buildAirportCamerasForm() {
    FormState& f = forms();
    if (!ImGui::BeginPopupModal("Create Airport Cameras", nullptr, ImGuiWindowFlags_AlwaysAutoResize)) return;
    if (f.airportWait > 0) {
        // The text is drawn for a few frames before the work holds up the simulator.
        ImGui::TextUnformatted("          Please wait, this can take a while...        ");
        if (++f.airportWait > kAirportWaitFrames) {
            if (isAirportSetActive()) createAirportCameras(airportCameraOptions());
            f.airportWait = 0;
            ImGui::CloseCurrentPopup();
        }
        ImGui::EndPopup();
        return;
    }
    AirportCameraOptions& o = airportCameraOptions();
    ImGui::TextUnformatted("Camera Offsets in Meters");
    metresField("Runways Horizontal Offset", o.runwayHorizontalOffset);
    metresField("Runways Vertical Offset", o.runwayVerticalOffset);
    metresField("Starting Position Horizontal Offset", o.startHorizontalOffset);
    metresField("Starting Position Vertical Offset", o.startVerticalOffset);
    metresField("Signs Vertical Offset", o.signVerticalOffset);
    metresField("Signs Camera Culling Radius", o.signCullingRadius, 1.0f, 0.0f, 1000.0f);
    if (o.signCullingRadius < 0) o.signCullingRadius = 0;
    ImGui::Checkbox("Enable Tracking Cameras", &o.trackingCameras);
    ImGui::Checkbox("Forward Facing Starting Position Camera", &o.forwardFacing);
    ImGui::Checkbox("Create Airport Targets", &o.createTargets);
    if (ImGui::Button("Create", ImVec2(kButtonWidth, 0))) f.airportWait = 1;
    ImGui::SameLine();
    if (ImGui::Button("Defaults", ImVec2(kButtonWidth, 0))) o = AirportCameraOptions();
    ImGui::SameLine();
    if (cancelButton()) ImGui::CloseCurrentPopup();
    ImGui::EndPopup();
}

void buildConfirmNewSet() {
    if (!ImGui::BeginPopupModal("Confirm Create New Camera Set", nullptr, ImGuiWindowFlags_AlwaysAutoResize)) return;
    ImGui::TextUnformatted("WARNING");
    ImGui::PushTextWrapPos(ImGui::GetFontSize() * 30.0f);
    ImGui::TextWrapped(
        "This will remove all categories and cameras and create a new single Cockpit category with the default "
        "X-Plane pilot camera. Prior to executing a Save All Cameras you will still be able to restore your "
        "previous camera set.");
    ImGui::PopTextWrapPos();
    ImGui::TextUnformatted("Do you want to create a new aircraft camera set?");
    if (cancelButton()) ImGui::CloseCurrentPopup();
    ImGui::SameLine();
    if (ImGui::Button("Create New Aircraft Camera Set")) {
        newAircraftSet();
        ImGui::CloseCurrentPopup();
    }
    ImGui::EndPopup();
}

}  // namespace

void ControlPanelWidget::BuildPopups() {
    // A menu item can't open a popup from inside its menu: the panel's own window level can.
    if (const char* name = popupName(pendingPopup)) ImGui::OpenPopup(name);
    pendingPopup = noPopup;
    buildSharePopup();
    buildConfirmPaste();
    buildBrowsePopup();
    buildOrbitForm();
    buildFlyByForm();
    buildAirportCamerasForm();
    buildConfirmNewSet();
    buildViewIdPopup();
    BuildImportPopup();
}
