#include "panels/target_panels.h"

#include <imgui.h>

#include <cstdio>
#include <memory>

#include "data/camera_set.h"
#include "data/plugin_state.h"
#include "data/text_io.h"
#include "motion/target_tracking.h"
#include "panels/msg_box_widget.h"

namespace {

TargetInfoWidget* targetInfoPanel = nullptr;
std::unique_ptr<SaveTargetWidget> saveTargetPanel;

constexpr float kNauticalMilesPerKilometre = 0.539957f;
constexpr float kFontSize = 18.0f;
constexpr ImU32 kChildBackground = 0x4B000000;  // black, about 30 % opaque

void addPanelFont() {
    const std::string path = panelFontPath();
    if (std::FILE* probe = std::fopen(path.c_str(), "rb")) {
        std::fclose(probe);
        ImGui::GetIO().Fonts->AddFontFromFileTTF(path.c_str(), kFontSize);
    }
}

// Deletes a panel outside its own frame; another window's frame may be under way, so
// its context stays current.
void deletePanel(KvtImWindow* panel) {
    ImGuiContext* saved = ImGui::GetCurrentContext();
    ImGuiContext* own = panel->GetContext();
    delete panel;
    ImGui::SetCurrentContext(saved == own ? nullptr : saved);
}

std::string oneDecimal(double value) {
    char text[64];
    formatFixed(text, sizeof text, value, 1);
    return text;
}

}  // namespace

void targetInformationText(char* text, int capacity) {
    if (capacity <= 0) return;
    text[0] = 0;
    const Camera* camera = currentCamera();
    if (!camera->targetFollowing) return;
    const Target* target = currentTarget();
    if (!target) return;
    std::snprintf(text, static_cast<size_t>(capacity),
                  "%s: %s\nBearing: [%s] Pitch: [%s] \nDistance: [%s Kilometers] [%s Nautical Miles]",
                  camera->targetReciprocal ? "From" : "To", target->name, oneDecimal(target->headingTo).c_str(),
                  oneDecimal(target->pitchTo).c_str(), oneDecimal(target->distanceKm).c_str(),
                  oneDecimal(target->distanceKm * kNauticalMilesPerKilometre).c_str());
}

// ---------------------------------------------------------------- TargetInfoWidget

TargetInfoWidget* targetInfoWidget() { return targetInfoPanel; }

void TargetInfoPanelAction(bool destroy) {
    if (destroy) {
        TargetInfoWidget* panel = targetInfoPanel;
        targetInfoPanel = nullptr;
        if (panel) deletePanel(panel);
        return;
    }
    if (targetInfoPanel) return;
    int screenLeft = 0, screenTop = 0, screenRight = 0, screenBottom = 0;
    XPLMGetScreenBoundsGlobal(&screenLeft, &screenTop, &screenRight, &screenBottom);
    ImGuiContext* saved = ImGui::GetCurrentContext();
    targetInfoPanel =
        new TargetInfoWidget(screenLeft + 175, screenTop - 75, screenLeft + 795, screenTop - 195, 0);
    targetInfoPanel->Init();
    targetInfoPanel->PlaceOnPrimaryMonitor();
    targetInfoPanel->SetVisible(true);
    ImGui::SetCurrentContext(saved);
}

TargetInfoWidget::TargetInfoWidget(int left_, int top_, int right_, int bottom_, int decoration_)
    : KvtImWindow(left_, top_, right_, bottom_, decoration_) {
    SetTitle("Target Info");
}

void TargetInfoWidget::ConfigureContext() {
    addPanelFont();
    // Only the translucent child shows over the view.
    if (movable) windowFlags |= ImGuiWindowFlags_NoBackground;
    else windowFlags |= ImGuiWindowFlags_MenuBar;
}

void TargetInfoWidget::OnFlightLoop() {
    const bool wanted = cameraEnabled() && currentCamera()->targetFollowing && showTargetInformation();
    if (IsVisible() != wanted) SetVisible(wanted);
}

void TargetInfoWidget::BuildContents() {
    const ImGuiIO& io = ImGui::GetIO();
    const bool onTitleBar = ImGui::IsWindowHovered(ImGuiHoveredFlags_RootAndChildWindows) && io.MousePos.y >= 0 &&
                            io.MousePos.y < 18.0f && ImGui::IsMouseClicked(0);
    if (movable) dragByTitleBar(drag, windowId, onTitleBar, io.MouseDown[0], DragMode::wholeWindow);

    int width = 0, height = 0;
    GetWindowSize(width, height);
    ImGui::PushStyleVar(ImGuiStyleVar_ChildRounding, 5.0f);
    ImGui::PushStyleColor(ImGuiCol_ChildBg, kChildBackground);
    ImGui::BeginChild("TargetInfo", ImVec2(static_cast<float>(width - 20), static_cast<float>(height - 20)), true,
                      ImGuiWindowFlags_MenuBar);
    Camera* camera = currentCamera();
    if (ImGui::BeginMenuBar()) {
        if (ImGui::ArrowButton("Previous Target", ImGuiDir_Left)) selectPreviousTarget();
        ImGui::SameLine();
        if (ImGui::ArrowButton("Next Target", ImGuiDir_Right)) selectNextTarget();
        ImGui::SameLine();
        ShowHelpMarker("Use the left and right arrow buttons to select the previous and next targets respectively.");
        ImGui::SameLine(ImGui::GetWindowWidth() - 215.0f);
        ImGui::Checkbox("Target Reciprocal", &camera->targetReciprocal);
        ImGui::SameLine();
        ShowHelpMarker("The target reciprocal view orients the camera looking from the target camera to your aircraft..");
        ImGui::SameLine();
        if (ImGui::Button("X##CloseTargetInfo")) showTargetInformation() = !showTargetInformation();
        ImGui::EndMenuBar();
    }
    if (camera->targetFollowing) {
        char text[400];
        targetInformationText(text, sizeof text);
        ImGui::TextUnformatted(text);
    }
    ImGui::EndChild();
    ImGui::PopStyleColor();
    ImGui::PopStyleVar();
}

// ---------------------------------------------------------------- SaveTargetWidget

SaveTargetWidget* saveTargetWidget() { return saveTargetPanel.get(); }

void destroySaveTargetPanel() {
    if (saveTargetPanel) deletePanel(saveTargetPanel.release());
}

void openSaveTargetPanel() {
    if (saveTargetPanel) {
        saveTargetPanel->SetVisible(true);
        return;
    }
    int screenLeft = 0, screenTop = 0, screenRight = 0, screenBottom = 0;
    XPLMGetScreenBoundsGlobal(&screenLeft, &screenTop, &screenRight, &screenBottom);
    ImGuiContext* saved = ImGui::GetCurrentContext();
    // 130 high: at the 18-point font the red complaint and its separators pushed the
    // buttons below a 100-high panel.
    saveTargetPanel = std::make_unique<SaveTargetWidget>(screenLeft + 175, screenTop - 75, screenLeft + 585,
                                                         screenTop - 205, 1);
    saveTargetPanel->SetVisible(true);
    saveTargetPanel->Init();
    saveTargetPanel->PlaceOnPrimaryMonitor();
    ImGui::SetCurrentContext(saved);
}

SaveTargetWidget::SaveTargetWidget(int left_, int top_, int right_, int bottom_, int decoration_)
    : KvtImWindow(left_, top_, right_, bottom_, decoration_) {
    SetTitle("Save Camera as Target");
}

void SaveTargetWidget::ConfigureContext() { addPanelFont(); }

void SaveTargetWidget::BuildContents() {
    if (errorText[0]) {
        ImGui::Separator();
        ImGui::TextColored(ImVec4(1.0f, 0.0f, 0.0f, 1.0f), "%s", errorText);
        ImGui::Separator();
    } else {
        ImGui::TextUnformatted("");
    }
    ImGui::PushItemWidth(300.0f);
    ImGui::InputText("Target Name", targetName, sizeof targetName);
    ImGui::PopItemWidth();
    ImGui::TextUnformatted("");
    ImGui::SetCursorPosX(ImGui::GetWindowWidth() - 175.0f);
    if (ImGui::Button("Cancel")) SetVisible(false);
    ImGui::SameLine();
    if (ImGui::Button("Create Target")) {
        // The name and the complaint stay for the next opening.
        if (!targetName[0]) {
            errorText = "You must give the target a name";
        } else {
            saveCameraAsTarget(targetName);
            SetVisible(false);
        }
    }
}
