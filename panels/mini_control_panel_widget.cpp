#include "panels/mini_control_panel_widget.h"

#include <imgui.h>

#include <cstdio>

#include "XPLMUtilities.h"
#include "data/camera_set.h"
#include "data/settings.h"
#include "motion/ai_traffic.h"
#include "motion/frame_driver.h"
#include "panels/labelled_items.h"
#include "panels/msg_box_widget.h"
#include "data/plugin_state.h"
#include "platform/runtime.h"

namespace {

MiniControlPanelWidget* miniPanel = nullptr;
int miniPanelDecoration = 2;
int miniPanelMonitor = 0;
bool miniPanelFontSmall = false;
bool miniPanelTransparent = true;

constexpr int kDockedHeight = 150;
constexpr int kDockedHeightWithoutFavourites = 125;
constexpr int kShowBand = 5;  // boxels above the bottom edge that bring the panel up

// Row colours: hues in sevenths of the circle.
constexpr float kCategoryHue = 1.0f / 7.0f;
constexpr float kFavouriteHue = 2.0f / 7.0f;
constexpr float kCameraHue = 6.0f / 7.0f;

// The buttons reach the commands by name, through the simulator, as a key would.
void sendCommand(const char* name) {
    char full[128];
    std::snprintf(full, sizeof full, "KVT/Vistarig/%s", name);
    if (XPLMCommandRef command = XPLMFindCommand(full)) XPLMCommandOnce(command);
}

void pushRowColours(float hue) {
    ImGui::PushStyleColor(ImGuiCol_Button, static_cast<ImVec4>(ImColor::HSV(hue, 0.6f, 0.6f)));
    ImGui::PushStyleColor(ImGuiCol_ButtonHovered, static_cast<ImVec4>(ImColor::HSV(hue, 0.7f, 0.7f)));
    ImGui::PushStyleColor(ImGuiCol_ButtonActive, static_cast<ImVec4>(ImColor::HSV(hue, 0.8f, 0.8f)));
}

// "%s%s%s##<kind>%d": the name, in braces when it is the current one.
void rowLabel(char* out, size_t size, const char* name, bool current, const char* kind, int number) {
    std::snprintf(out, size, "%s%s%s##%s%d", current ? "{" : "", name, current ? "}" : "", kind, number);
}

void destroyMiniPanel() {
    MiniControlPanelWidget* panel = miniPanel;
    miniPanel = nullptr;
    if (!panel) return;
    if (panel->insideFrame()) {
        panel->RequestDestroy();
        return;
    }
    ImGuiContext* saved = ImGui::GetCurrentContext();
    ImGuiContext* own = panel->GetContext();
    delete panel;
    ImGui::SetCurrentContext(saved == own ? nullptr : saved);
}

MiniControlPanelWidget* buildMiniPanel(int op) {
    Settings& s = settings();
    MonitorTable monitors;
    FillGlobalMonitors(monitors);
    int monitor = 0;
    if (monitors.count > 1) {
        if (s.MINI_CONTROL_PANEL_MONITOR_INDEX >= 0 && s.MINI_CONTROL_PANEL_MONITOR_INDEX < monitors.count)
            monitor = s.MINI_CONTROL_PANEL_MONITOR_INDEX;
        else
            s.MINI_CONTROL_PANEL_MONITOR_INDEX = 0;
    }
    miniPanelMonitor = monitor;
    const WindowPosition saved = s.LAST_MINI_CONTROL_PANEL_POSITION;
    const bool savedPoppedOut = op == 0 && saved.kind == 2 && IsPositionOnMonitor(saved);
    if (savedPoppedOut) miniPanelDecoration = 1;

    const WindowBox screen{monitors.left[monitor], monitors.top[monitor], monitors.right[monitor],
                           monitors.bottom[monitor]};
    const WindowBox box = miniPanelBox(screen, miniPanelDecoration, s.HIDE_FAVORITES, saved);
    ImGuiContext* context = ImGui::GetCurrentContext();
    auto* panel = new MiniControlPanelWidget(box.left, box.top, box.right, box.bottom, miniPanelDecoration);
    panel->Init();
    ImGui::SetCurrentContext(context);
    const XPLMWindowID window = panel->GetWindowId();
    // The right edge follows the screen's; the others stay.
    if (miniPanelDecoration == 2) XPLMSetWindowGravity(window, 0.0f, 0.0f, 1.0f, 0.0f);
    bool shown = false;
    if (op == 0) {
        if (savedPoppedOut) {
            XPLMSetWindowPositioningMode(window, xplm_WindowPopOut, -1);
            XPLMSetWindowGeometryOS(window, saved.left, saved.top, saved.right, saved.bottom);
            panel->SetVisible(true);
            shown = true;
        } else if (!s.ENABLE_OPEN_MINI_CONTROL_PANEL_ON_START) {
            panel->SetVisible(false);
            shown = true;
        }
    }
    if (!shown) {
        if (s.ENABLE_AUTO_SHOW_MINI_CONTROL_PANEL) panel->pinned = true;
        panel->SetVisible(true);
    }
    miniPanelFontSmall = s.USE_SMALL_FONT;
    miniPanelTransparent = s.ENABLE_TRANSPARENT_MINI_CONTROL_PANEL;
    return panel;
}

bool needsRebuild() {
    const Settings& s = settings();
    if (s.USE_SMALL_FONT != miniPanelFontSmall) return true;
    if (miniPanelDecoration == 2 && (s.MINI_CONTROL_PANEL_MONITOR_INDEX != miniPanelMonitor ||
                                     s.ENABLE_TRANSPARENT_MINI_CONTROL_PANEL != miniPanelTransparent))
        return true;
    if (miniPanelDecoration == 2 && !miniPanel->docked) {
        miniPanelDecoration = 1;
        return true;
    }
    if (miniPanelDecoration == 1 && miniPanel->docked) {
        miniPanelDecoration = 2;
        return true;
    }
    return false;
}

}  // namespace

WindowBox miniPanelBox(const WindowBox& monitor, int decoration, bool hideFavorites, const WindowPosition& saved) {
    WindowBox box;
    if (decoration == 2) {
        box.left = monitor.left;
        box.right = monitor.right;
        box.bottom = monitor.bottom;
        box.top = box.bottom + (hideFavorites ? kDockedHeightWithoutFavourites : kDockedHeight);
        if (saved.kind == 3) box.top = box.bottom + saved.top - saved.bottom;
        return box;
    }
    const int width = monitor.right - monitor.left, height = monitor.top - monitor.bottom;
    box.left = monitor.left + width / 3;
    box.right = box.left + width / 3;
    box.bottom = monitor.bottom + height / 3;
    box.top = box.bottom + height / 3;
    return box;
}

int edgeVisibility(bool visible, bool pinned, const WindowBox& panel, int mouseX, int mouseY) {
    if (mouseX <= panel.left || mouseX >= panel.right) return 0;
    if (!visible) return mouseY < panel.bottom + kShowBand ? 1 : 0;
    return mouseY > panel.top && !pinned ? -1 : 0;
}

MiniControlPanelWidget* miniControlPanelWidget() { return miniPanel; }

bool MiniControlPanelAction(int op) {
    switch (op) {
        case 0:  // start-up
            if (!miniPanel) miniPanel = buildMiniPanel(0);
            return miniPanel->IsVisible();
        case 1:  // toggle
            if (!miniPanel) {
                miniPanel = buildMiniPanel(1);
            } else if (miniPanel->IsVisible()) {
                miniPanel->SetVisible(false);
            } else {
                // Called up by hand, it stays until the user lets it go.
                if (settings().ENABLE_AUTO_SHOW_MINI_CONTROL_PANEL) miniPanel->pinned = true;
                miniPanel->SetVisible(true);
            }
            return miniPanel->IsVisible();
        case 4:  // destroy
            destroyMiniPanel();
            return false;
        case 6:  // reconfigure
            if (!miniPanel || !needsRebuild()) return miniPanel && miniPanel->IsVisible();
            destroyMiniPanel();
            miniPanel = buildMiniPanel(6);
            return miniPanel->IsVisible();
        default: return false;
    }
}

MiniControlPanelWidget::MiniControlPanelWidget(int left_, int top_, int right_, int bottom_, int decoration_)
    : KvtImWindow(left_, top_, right_, bottom_, decoration_) {
    std::snprintf(titleText, sizeof titleText, "Vistarig %s Mini-Control Panel", versionText());
    SetTitle(titleText);
    SetVisible(true);
    docked = decoration_ == 2;
    ApplyAlwaysOnTop(settings().POPPED_OUT_MINI_PANEL_ALWAYS_ON_TOP);
}

void MiniControlPanelWidget::ConfigureContext() {
    const std::string path = panelFontPath();
    if (std::FILE* probe = std::fopen(path.c_str(), "rb")) {
        std::fclose(probe);
        ImGui::GetIO().Fonts->AddFontFromFileTTF(path.c_str(), settings().USE_SMALL_FONT ? 14.0f : 18.0f);
    }
    windowFlags |= ImGuiWindowFlags_MenuBar;
    if (decoration == 2) {
        if (settings().ENABLE_TRANSPARENT_MINI_CONTROL_PANEL) windowFlags |= ImGuiWindowFlags_NoBackground;
    } else {
        windowFlags |= ImGuiWindowFlags_HorizontalScrollbar;
    }
}

void MiniControlPanelWidget::OnFlightLoop() {
    const Settings& s = settings();
    if (!drag.dragging && s.ENABLE_AUTO_SHOW_MINI_CONTROL_PANEL && cameraEnabled() && docked) {
        WindowBox box;
        XPLMGetWindowGeometry(windowId, &box.left, &box.top, &box.right, &box.bottom);
        int x = 0, y = 0;
        XPLMGetMouseLocationGlobal(&x, &y);
        const int change = edgeVisibility(IsVisible(), pinned, box, x, y);
        if (change != 0) SetVisible(change > 0);
    }
    if (pendingCommand) {
        const char* name = pendingCommand;
        pendingCommand = nullptr;
        sendCommand(name);
    }
    WindowPosition& position = settings().LAST_MINI_CONTROL_PANEL_POSITION;
    if (XPLMWindowIsPoppedOut(windowId)) {
        position.kind = 2;
        XPLMGetWindowGeometryOS(windowId, &position.left, &position.top, &position.right, &position.bottom);
    } else {
        position.kind = docked ? 3 : 1;
        XPLMGetWindowGeometry(windowId, &position.left, &position.top, &position.right, &position.bottom);
    }
}

void MiniControlPanelWidget::BuildContents() {
    buildingFrame = true;
    if (decoration == 2) {
        // The docked panel's height follows a drag on its menu bar.
        const ImGuiIO& io = ImGui::GetIO();
        const bool onBar = ImGui::IsWindowHovered(ImGuiHoveredFlags_RootWindow) && io.MousePos.y >= 0 &&
                           io.MousePos.y < ImGui::GetFrameHeight() && ImGui::IsMouseClicked(0) &&
                           !ImGui::IsAnyItemHovered();
        dragByTitleBar(drag, windowId, onBar, io.MouseDown[0], DragMode::topOnly);
    }
    BuildMenuBar();
    BuildActionRow();
    BuildFavouritesRow();
    BuildCategoryRow();
    BuildCameraRow();
    buildingFrame = false;
}

void MiniControlPanelWidget::BuildMenuBar() {
    if (!ImGui::BeginMenuBar()) return;
    Settings& s = settings();
    if (docked && s.ENABLE_AUTO_SHOW_MINI_CONTROL_PANEL) ImGui::Checkbox("Pin Mini-Control Panel", &pinned);
    else ImGui::InvisibleButton("AnInvisableButton", ImVec2(5, 20));
    if (docked) {
        ImGui::SameLine();
        ShowHelpMarker(
            "You can set the height of the docked Mini-Control Panel by left clicking on this title bar and moving the "
            "mouse up and down.");
    } else if (XPLMWindowIsPoppedOut(windowId)) {
        if (!osWindow) ApplyAlwaysOnTop(s.POPPED_OUT_MINI_PANEL_ALWAYS_ON_TOP);
        if (osWindow) {
            ImGui::SameLine();
            if (ImGui::Checkbox("Always On Top", &s.POPPED_OUT_MINI_PANEL_ALWAYS_ON_TOP)) {
                ApplyAlwaysOnTop(s.POPPED_OUT_MINI_PANEL_ALWAYS_ON_TOP);
                writeSettings();
            }
        }
    }
    const CameraFile* file = activeFile();
    const Category* category = currentCategory();
    const Camera* camera = currentCamera();
    char heading[2200];
    std::snprintf(heading, sizeof heading, "%s [%s] [%s]", file ? file->fileName : "", category ? category->name : "",
                  camera ? camera->name : "");
    const float width = ImGui::GetWindowWidth();
    ImGui::SameLine(width / 2.0f - ImGui::CalcTextSize(heading).x / 2.0f);
    ImGui::TextUnformatted(heading);
    ImGui::SameLine(width - 125.0f);
    ImGui::Checkbox("Docked", &docked);
    ImGui::SameLine();
    ShowHelpMarker(
        "You need to undock the Mini-Control Panel in order to pop it out to an OS level window. If the Mini-Control "
        "Panel is popped out then checking this box will pop it back in and dock it to the bottom of the screen.");
    ImGui::EndMenuBar();
}

void MiniControlPanelWidget::BuildActionRow() {
    if (isAirportSetActive()) {
        if (ImGui::Button("Aircraft Cameras")) sendCommand("Toggle_Nearest_Airport_Camera");
        ImGui::SameLine();
        if (ImGui::Button("Nearest Camera")) sendCommand("Select_Nearest_Airport_Camera");
        ImGui::SameLine();
        const bool automatic = frameDriver().autoNearestAirport;
        if (automatic) pushRowColours(kFavouriteHue);
        if (ImGui::Button("Auto Select Nearest Camera"))
            sendCommand(automatic ? "Select_Nearest_Airport_Camera" : "Auto_Select_Nearest_Airport_Camera");
        if (automatic) ImGui::PopStyleColor(3);
    } else {
        if (ImGui::Button("Airport Cameras")) sendCommand("Toggle_Airport_Cameras");
        ImGui::SameLine();
        if (ImGui::Button("Nearest Airport Camera")) sendCommand("Toggle_Nearest_Airport_Camera");
        ImGui::SameLine();
        if (ImGui::Button("Auto Select Nearest Airport Camera")) sendCommand("Toggle_Auto_Nearest_Airport_Camera");
    }
    // These open or close windows: never inside this frame.
    ImGui::SameLine();
    if (ImGui::Button("Control Panel")) pendingCommand = "Toggle_Control_Panel_on_or_off";
    ImGui::SameLine();
    if (ImGui::Button("Settings")) pendingCommand = "Open_Settings";
    ImGui::SameLine();
    if (ImGui::Button("Traffic Display")) pendingCommand = "Toggle_Traffic_Display";

    const Camera* camera = currentCamera();
    if (camera->cineflex) {
        ImGui::SameLine();
        if (ImGui::Button("Center")) sendCommand("Center_Camera");
    } else if (camera->targetFollowing) {
        ImGui::SameLine();
        if (ImGui::Button("Free Target")) sendCommand("Select_Free_Target");
        ImGui::SameLine();
        if (ImGui::ArrowButton("Previous Target", ImGuiDir_Left)) sendCommand("Select_Previous_Target");
        ImGui::SameLine();
        if (ImGui::ArrowButton("Next Target", ImGuiDir_Right)) sendCommand("Select_Next_Target");
        ImGui::SameLine();
        if (ImGui::Button("Nearest Target")) sendCommand("Select_Nearest_Target");
        ImGui::SameLine();
        if (ImGui::Button("Reciprocal")) sendCommand("Toggle_Target_Reciprocal");
        ImGui::SameLine();
        if (ImGui::Button("Info")) sendCommand("Toggle_Target_Information");
    }
    if (camera->external && !camera->freeCamera) {
        ImGui::SameLine();
        if (ImGui::Button("Toggle Target Following")) sendCommand("Toggle_Target_Following_Camera");
    }
    if (camera->external) BuildAiControls();
}

void MiniControlPanelWidget::BuildAiControls() {
    const AiPlaneSelection& selection = aiPlaneSelection();
    const int32_t planes = aiPlaneCount();
    if (!selection.perspectiveOn) {
        if (planes < 1) return;
        ImGui::SameLine();
        if (ImGui::Button("AI Perspective On")) sendCommand("Toggle_AI_Perspective");
        return;
    }
    ImGui::SameLine();
    if (ImGui::Button("AI Perspective Off")) sendCommand("Toggle_AI_Perspective");
    if (planes > 1) {
        ImGui::SameLine();
        if (labelledArrow("Previous AI Plane", ImGuiDir_Left)) sendCommand("Select_Previous_Distant_AI_Plane");
        ImGui::SameLine();
        if (labelledArrow("Next AI Plane", ImGuiDir_Right)) {
            trafficList();
            sendCommand("Select_Next_Distant_AI_Plane");
        }
    }
    // Copied at once: the distance reads planes again and overwrites the callsign.
    char callsign[16];
    std::snprintf(callsign, sizeof callsign, "%s", aiPlaneCallsign(selection.index));
    const float distance = aiPlaneDistance(selection.index);
    ImGui::SameLine();
    ImGui::Text("%s [%.1f NM]", callsign[0] ? callsign : "Unknown", distance);
    if (selection.scale > kAiScaleMin) {
        ImGui::SameLine();
        if (labelledArrow("Scale Down", ImGuiDir_Down)) sendCommand("AI_Scale_Down");
    }
    if (selection.scale < kAiScaleMax) {
        ImGui::SameLine();
        if (labelledArrow("Scale Up", ImGuiDir_Up)) sendCommand("AI_Scale_Up");
    }
}

void MiniControlPanelWidget::BuildFavouritesRow() {
    if (!anyViewIdAssigned() || settings().HIDE_FAVORITES) return;
    const CameraSet& set = isAirportSetActive() ? savedSet(0) : workingSet();
    const int currentId = currentCamera()->viewId;
    pushRowColours(kFavouriteHue);
    bool first = true;
    for (int c = 0; c < set.categoryCount; ++c) {
        const Category& category = set.categories[c];
        for (int i = 0; i < category.cameraCount; ++i) {
            const Camera& camera = category.cameras[i];
            if (camera.hidden || camera.viewId <= 0) continue;
            if (!first) ImGui::SameLine();
            first = false;
            char label[96];
            rowLabel(label, sizeof label, camera.name, camera.viewId == currentId, "ViewID", camera.viewId);
            if (ImGui::Button(label)) {
                char name[64];
                std::snprintf(name, sizeof name, "Select_View_ID_%d", camera.viewId);
                sendCommand(name);
            }
        }
    }
    ImGui::PopStyleColor(3);
}

void MiniControlPanelWidget::BuildCategoryRow() {
    pushRowColours(kCategoryHue);
    const int current = currentCategoryIndex();
    for (int c = 0; c < categoryCount(); ++c) {
        if (c > 0) ImGui::SameLine();
        char label[96];
        rowLabel(label, sizeof label, categoryAt(c)->name, c == current, "Category_", c);
        if (ImGui::Button(label)) selectCategory(c);
    }
    ImGui::PopStyleColor(3);
}

void MiniControlPanelWidget::BuildCameraRow() {
    pushRowColours(kCameraHue);
    const Category* category = currentCategory();
    bool first = true;
    for (int i = 0; category && i < category->cameraCount; ++i) {
        const Camera& camera = category->cameras[i];
        if (camera.hidden) continue;
        // Only this row wraps: a button that would not fit starts a new line.
        if (!first) {
            ImGui::SameLine();
            if (ImGui::CalcTextSize(camera.name).x + 20.0f > ImGui::GetWindowWidth() - ImGui::GetCursorPosX())
                ImGui::NewLine();
        }
        first = false;
        char label[96];
        rowLabel(label, sizeof label, camera.name, i == category->currentCamera, "Camera_", i);
        if (ImGui::Button(label)) selectCamera(i);
    }
    ImGui::PopStyleColor(3);
}
