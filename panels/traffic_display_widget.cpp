#include "panels/traffic_display_widget.h"

#include <cstdio>

#include <imgui.h>

#include "XPLMDisplay.h"
#include "XPLMUtilities.h"
#include "data/camera_set.h"
#include "data/plugin_state.h"
#include "motion/ai_traffic.h"
#include "motion/frame_driver.h"
#include "panels/labelled_items.h"
#include "panels/msg_box_widget.h"

namespace {

TrafficDisplayWidget* instance = nullptr;

constexpr float kDistanceColumn = 130.0f;
constexpr float kZoomColumn = 240.0f;

// The selected camera while the plug-in holds the view, else null.
Camera* controlledCamera() {
    if (!cameraEnabled() || !frameDriver().cameraControlled) return nullptr;
    return currentCamera();
}

void runCommand(const char* name) {
    if (XPLMCommandRef command = XPLMFindCommand(name)) XPLMCommandOnce(command);
}

}  // namespace

TrafficDisplayWidget* trafficDisplayWidget() { return instance; }

void toggleTrafficDisplay() {
    if (instance) {
        destroyTrafficDisplay();
        return;
    }
    // The caller may be in the middle of drawing another panel.
    ImGuiContext* saved = ImGui::GetCurrentContext();
    int left = 0, top = 0, right = 0, bottom = 0;
    XPLMGetScreenBoundsGlobal(&left, &top, &right, &bottom);
    instance = new TrafficDisplayWidget(left + 175, top - 75, left + 475, top - 575, 1);
    instance->Init();
    instance->PlaceOnPrimaryMonitor();
    instance->SetVisible(true);
    ImGui::SetCurrentContext(saved);
}

void destroyTrafficDisplay() {
    if (!instance) return;
    ImGuiContext* saved = ImGui::GetCurrentContext();
    ImGuiContext* own = instance->GetContext();
    delete instance;
    ImGui::SetCurrentContext(saved == own ? nullptr : saved);
}

const char* trafficReferenceHeader() {
    const Camera* camera = controlledCamera();
    if (!camera) return "From Aircraft";
    if (isAirportSetActive()) return "From Airport";
    if (camera->external && !camera->freeCamera && camera->cameraOrigin == 1) return "From Carrier";
    if (camera->external && !camera->freeCamera && camera->cameraOrigin == 2) return "From Frigate";
    if (camera->freeCamera) return "From Free Camera";
    return "From Aircraft";
}

TrafficDisplayWidget::TrafficDisplayWidget(int left_, int top_, int right_, int bottom_, int decoration_)
    : KvtImWindow(left_, top_, right_, bottom_, decoration_) {
    instance = this;
    SetTitle("Vistarig Traffic Display");
}

TrafficDisplayWidget::~TrafficDisplayWidget() {
    if (instance == this) instance = nullptr;
}

void TrafficDisplayWidget::ConfigureContext() {
    const std::string path = panelFontPath();
    if (std::FILE* probe = std::fopen(path.c_str(), "rb")) {
        std::fclose(probe);
        ImGui::GetIO().Fonts->AddFontFromFileTTF(path.c_str(), 18.0f);
    }
}

void TrafficDisplayWidget::BuildContents() {
    // A copy: every reading below rebuilds the one static list.
    const TrafficList list = trafficList();
    Camera* camera = controlledCamera();
    const bool outside = camera && camera->external;
    AiPlaneSelection& selection = aiPlaneSelection();

    if (outside) {
        if (!selection.perspectiveOn) {
            if (ImGui::Button("AI Perspective On")) toggleAiPerspective();
        } else {
            if (ImGui::Button("AI Perspective Off")) toggleAiPerspective();
            if (!camera->freeCamera) {
                ImGui::SameLine();
                ShowHelpMarker("Use the arrow buttons \nto scale the AI perspective\nup or down");
                ImGui::SameLine();
                if (labelledArrow("##ScaleDown", ImGuiDir_Down)) runCommand("KVT/Vistarig/AI_Scale_Down");
                ImGui::SameLine();
                if (labelledArrow("##ScaleUp", ImGuiDir_Up)) runCommand("KVT/Vistarig/AI_Scale_Up");
            }
        }
    } else {
        ImGui::Spacing();
        ImGui::Spacing();
    }

    ImGui::Separator();
    ImGui::TextUnformatted("Callsign");
    ImGui::SameLine(kDistanceColumn);
    ImGui::TextUnformatted(trafficReferenceHeader());
    if (outside) {
        ImGui::SameLine(kZoomColumn);
        ImGui::TextUnformatted("Zoom");
    }
    ImGui::Separator();

    const bool choosing = outside && selection.perspectiveOn;
    for (int32_t i = 0; i < list.count; ++i) {
        const int32_t index = list.entries[i].index;
        const char* callsign = aiPlaneCallsign(index);
        const char* name = callsign[0] ? callsign : "Unknown";
        if (choosing) {
            char label[64];
            std::snprintf(label, sizeof label, "%s##traffic_%d", name, index);
            bool ticked = index == selection.index;
            // Unticking does nothing: one plane is always followed.
            if (ImGui::Checkbox(label, &ticked) && ticked) selectAiPlane(index);
        } else {
            ImGui::TextUnformatted(name);
        }
        ImGui::SameLine(kDistanceColumn);
        ImGui::Text("%10.1f NM", list.entries[i].distance);
    }

    if (outside) {
        ImGui::SetCursorPos(ImVec2(kZoomColumn, 65.0f));
        const float height = ImGui::GetWindowContentRegionMax().y - ImGui::GetWindowContentRegionMin().y - 75.0f;
        ImGui::VSliderFloat("##ZoomSlider", ImVec2(35.0f, height > 1.0f ? height : 1.0f), &camera->currentZoom, 1.0f,
                            50.0f, "%.1f", ImGuiSliderFlags_None);
    }
}
