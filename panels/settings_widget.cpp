#include "panels/settings_widget.h"

#include <imgui.h>

#include <cstdio>
#include <memory>

#include "panels/msg_box_widget.h"
#include "platform/runtime.h"

namespace {

std::unique_ptr<SettingsWidget> settingsPanel;

constexpr float kItemWidth = 90.0f;
constexpr float kGridColumns[4] = {240.0f, 360.0f, 480.0f, 600.0f};
constexpr float kRightColumn = 360.0f;

const char* const kMonitorNames[maxMonitors] = {"0", "1", "2",  "3",  "4",  "5",  "6", "7",
                                                "8", "9", "10", "11", "12", "13", "14"};

void gridRow(const char* label, const char* const ids[4], float* const fields[4], float minimum) {
    static const float speeds[4] = {0.005f, 0.05f, 0.1f, 1.0f};
    ImGui::TextUnformatted(label);
    for (int i = 0; i < 4; ++i) {
        ImGui::SameLine(kGridColumns[i]);
        ImGui::DragFloat(ids[i], fields[i], speeds[i], minimum, 10000.0f, "%.4f");
    }
}

void floatRow(const char* label, const char* id, float* field, float speed, float minimum, float maximum,
              const char* format) {
    ImGui::TextUnformatted(label);
    ImGui::SameLine(kGridColumns[0]);
    ImGui::DragFloat(id, field, speed, minimum, maximum, format);
}

void intRow(const char* label, const char* id, int32_t* field, int minimum, int maximum) {
    ImGui::TextUnformatted(label);
    ImGui::SameLine(kGridColumns[0]);
    ImGui::DragInt(id, field, 1.0f, minimum, maximum, "%d");
}

// Two checkboxes on a line; `right` may be null.
void checkboxPair(const char* left, bool* leftField, const char* right, bool* rightField) {
    ImGui::Checkbox(left, leftField);
    if (!right) return;
    ImGui::SameLine(kRightColumn);
    ImGui::Checkbox(right, rightField);
}

bool outside(int32_t value, int32_t low, int32_t high) { return value < low || value > high; }

}  // namespace

void enforceSettingBounds(Settings& s, const Settings& d, int monitorCount) {
    constexpr float kSpeedFloor = 0.000005f;
    float Settings::*const speeds[] = {
        &Settings::SMALL_ROTATION_SPEED,  &Settings::MEDIUM_ROTATION_SPEED,  &Settings::LARGE_ROTATION_SPEED,
        &Settings::SMALL_MOVEMENT_SPEED,  &Settings::MEDIUM_MOVEMENT_SPEED,  &Settings::LARGE_MOVEMENT_SPEED,
        &Settings::SMALL_HEADTRACK_RANGE, &Settings::MEDIUM_HEADTRACK_RANGE, &Settings::LARGE_HEADTRACK_RANGE,
    };
    for (auto field : speeds)
        if (s.*field < kSpeedFloor) s.*field = d.*field;
    if (s.panSpeedFactor < 1.0f) s.panSpeedFactor = d.panSpeedFactor;
    if (s.movementSpeedFactor < 1.0f) s.movementSpeedFactor = d.movementSpeedFactor;
    if (outside(s.MOUSE_SMOOTHING_FACTOR, 1, 50)) s.MOUSE_SMOOTHING_FACTOR = d.MOUSE_SMOOTHING_FACTOR;
    if (outside(s.MOVEMENT_SMOOTHING_FACTOR, 0, 50)) s.MOVEMENT_SMOOTHING_FACTOR = d.MOVEMENT_SMOOTHING_FACTOR;
    if (outside(s.HEAD_TRACK_SMOOTHING_FACTOR, 0, 50)) s.HEAD_TRACK_SMOOTHING_FACTOR = d.HEAD_TRACK_SMOOTHING_FACTOR;
    if (outside(s.VIEW_AXIS_SMOOTHING_FACTOR, 1, 100)) s.VIEW_AXIS_SMOOTHING_FACTOR = d.VIEW_AXIS_SMOOTHING_FACTOR;
    if (s.SMOOTH_WINDOW < kSmoothWindowFloor) s.SMOOTH_WINDOW = d.SMOOTH_WINDOW;
    if (s.MINI_CONTROL_PANEL_MONITOR_INDEX >= monitorCount) s.MINI_CONTROL_PANEL_MONITOR_INDEX = 0;
}

SettingsWidget* settingsWidget() { return settingsPanel.get(); }

void destroySettingsPanel() {
    ImGuiContext* saved = ImGui::GetCurrentContext();
    ImGuiContext* own = settingsPanel ? settingsPanel->GetContext() : nullptr;
    settingsPanel.reset();
    ImGui::SetCurrentContext(saved == own ? nullptr : saved);
}

void SettingsPanelAction(bool toggle) {
    if (settingsPanel) {
        settingsPanel->SetVisible(toggle ? !settingsPanel->IsVisible() : true);
        return;
    }
    int screenLeft = 0, screenTop = 0, screenRight = 0, screenBottom = 0;
    XPLMGetScreenBoundsGlobal(&screenLeft, &screenTop, &screenRight, &screenBottom);
    ImGuiContext* saved = ImGui::GetCurrentContext();
    // 650 high: at the 18-point font every row and the button row fit without a scroll bar.
    settingsPanel = std::make_unique<SettingsWidget>(screenLeft + 175, screenTop - 75, screenLeft + 885,
                                                     screenTop - 725, 1);
    settingsPanel->SetVisible(true);
    FillGlobalMonitors(settingsPanel->monitors);
    settingsPanel->Init();
    settingsPanel->PlaceOnPrimaryMonitor();
    ImGui::SetCurrentContext(saved);
}

SettingsWidget::SettingsWidget(int left_, int top_, int right_, int bottom_, int decoration_)
    : KvtImWindow(left_, top_, right_, bottom_, decoration_) {
    char text[128];
    std::snprintf(text, sizeof text, "Vistarig %s Settings", versionText());
    SetTitle(text);
}

void SettingsWidget::ConfigureContext() {
    // Always the large font: this panel is read, not flown with.
    const std::string path = panelFontPath();
    if (std::FILE* probe = std::fopen(path.c_str(), "rb")) {
        std::fclose(probe);
        ImGui::GetIO().Fonts->AddFontFromFileTTF(path.c_str(), 18.0f);
    }
}

void SettingsWidget::BuildContents() {
    Settings& s = settings();
    ImGui::PushItemWidth(kItemWidth);
    ImGui::TextUnformatted("");

    ImGui::SameLine(kGridColumns[0]);
    ImGui::TextUnformatted("Small");
    ImGui::SameLine(kGridColumns[1]);
    ImGui::TextUnformatted("Medium");
    ImGui::SameLine(kGridColumns[2]);
    ImGui::TextUnformatted("Large");
    ImGui::SameLine(kGridColumns[3]);
    ImGui::TextUnformatted("Very Large");

    static const char* const panIds[4] = {"##SmallPanSpeed", "##MediumPanSpeed", "##LargePanSpeed",
                                          "##VeryLargePanSpeed"};
    float* const pan[4] = {&s.SMALL_ROTATION_SPEED, &s.MEDIUM_ROTATION_SPEED, &s.LARGE_ROTATION_SPEED,
                           &s.VERY_LARGE_ROTATION_SPEED};
    gridRow("Pan Speed in Degrees", panIds, pan, 0.000005f);
    static const char* const moveIds[4] = {"##SmallMovementSpeed", "##MediumMovementSpeed", "##LargeMovementSpeed",
                                           "##VeryLargeMovementSpeed"};
    float* const move[4] = {&s.SMALL_MOVEMENT_SPEED, &s.MEDIUM_MOVEMENT_SPEED, &s.LARGE_MOVEMENT_SPEED,
                            &s.VERY_LARGE_MOVEMENT_SPEED};
    gridRow("Movement Speed in Meters", moveIds, move, 0.000005f);
    static const char* const trackIds[4] = {"##SmallTrack RangeSpeed", "##MediumTrack RangeSpeed",
                                            "##LargeTrack RangeSpeed", "##VeryLargeTrack RangeSpeed"};
    float* const track[4] = {&s.SMALL_HEADTRACK_RANGE, &s.MEDIUM_HEADTRACK_RANGE, &s.LARGE_HEADTRACK_RANGE,
                             &s.VERY_LARGE_HEADTRACK_RANGE};
    gridRow("Head Track Range in Meters", trackIds, track, 1.0f);

    floatRow("Pan Speed Factor", "##Pan Speed Factor", &s.panSpeedFactor, 0.1f, 1.0f, 10000.0f, "%.4f");
    floatRow("Movement Speed Factor", "##Movement Speed Factor", &s.movementSpeedFactor, 0.1f, 1.0f, 10000.0f,
             "%.4f");
    intRow("Movement Smoothing Factor", "##Movement Smoothing Factor", &s.MOVEMENT_SMOOTHING_FACTOR, 0, 50);
    ImGui::SameLine();
    ShowHelpMarker(
        "You must set this to a value greater than 2 to have any movement smoothing.\n\nNote: If you enable View or "
        "Camera axis input on a camera then movement smoothing will not be applied.");
    intRow("Mouse Smoothing Factor", "##Mouse Smoothing Factor", &s.MOUSE_SMOOTHING_FACTOR, 1, 50);
    ImGui::SameLine(kRightColumn);
    ImGui::TextUnformatted("Mouse Speed Factor");
    ImGui::SameLine(kGridColumns[3]);
    ImGui::DragFloat("##Mouse Speed Factor", &s.MOUSE_SPEED_FACTOR, 0.01f, 0.1f, 2.0f, "%.2f");
    intRow("Head Track Smoothing Factor", "##Head Track Smoothing Factor", &s.HEAD_TRACK_SMOOTHING_FACTOR, 0, 50);
    intRow("View Axis Smoothing Factor", "##View Axis Smoothing Factor", &s.VIEW_AXIS_SMOOTHING_FACTOR, 1, 100);
    intRow("Camera Smoothing Factor", "##Camera Smoothing Factor", &s.SMOOTH_WINDOW, 60, 1000);
    ImGui::SameLine(kRightColumn);
    ImGui::TextUnformatted("Mini Control Panel Monitor");
    ImGui::SameLine();
    ShowHelpMarker(
        "If you have X-Plane configured to use multiple monitors for the cockpit display this will allow you to "
        "specify which monitor you want the Mini-Control panel on. If you have three monitors configured then the "
        "valid values for this are 0,1, and 2");
    ImGui::SameLine(kGridColumns[3]);
    if (s.MINI_CONTROL_PANEL_MONITOR_INDEX > 14 || s.MINI_CONTROL_PANEL_MONITOR_INDEX < 0)
        s.MINI_CONTROL_PANEL_MONITOR_INDEX = 0;
    const int monitorItems = monitors.count > 0 ? monitors.count : 1;
    int monitor = s.MINI_CONTROL_PANEL_MONITOR_INDEX;
    if (ImGui::Combo("##Mini Control Panel Monitor Index", &monitor, kMonitorNames, monitorItems))
        s.MINI_CONTROL_PANEL_MONITOR_INDEX = monitor;

    checkboxPair("Enable Auto Show Mini Control Panel", &s.ENABLE_AUTO_SHOW_MINI_CONTROL_PANEL,
                 "Open Mini Control Panel on Start", &s.ENABLE_OPEN_MINI_CONTROL_PANEL_ON_START);
    checkboxPair("Show Target Information", &s.ENABLE_SHOW_TARGET_INFORMATION, "Pause When Aiming Target",
                 &s.PAUSE_ON_FREE_TARGET_AIM);
    ImGui::Checkbox("Lock Keyboard Control", &s.LOCK_KEYBOARD_CONTROL);
    ImGui::SameLine();
    ShowHelpMarker(
        "Enabling this may eliminate a possible conflict using the up and down arrow keys with ATC and camera "
        "movement.\n\nPlease refer to the Vistarig User Guide for more information.");
    ImGui::SameLine(kRightColumn);
    ImGui::Checkbox("Enable Pan Speed Toggle", &s.ENABLE_PANSPEED_TOGGLE);
    checkboxPair("Enable Solid Control Panel", &s.ENABLE_SOLID_CONTROL_PANEL, "Enable Transparent Mini Control Panel",
                 &s.ENABLE_TRANSPARENT_MINI_CONTROL_PANEL);
    checkboxPair("Disable Quick Look Emulation", &s.DISABLE_QUICK_LOOK_EMULATION,
                 "Hide Favorites in Mini Control Panel", &s.HIDE_FAVORITES);
    checkboxPair("Enable Force Fov", &s.ENABLE_FORCE_FOV, "Always Show Advanced Camera Options",
                 &s.ALWAYS_SHOW_ADVANCED_CAMERA_OPTIONS);
    ImGui::Checkbox("Disable Voice Messages", &s.DISABLE_VOICE_PROMPTS);
    ImGui::SameLine(kRightColumn);
    ImGui::PushItemWidth(150.0f);
    static const char* const middleMouse[3] = {"Mouse Look", "Toggle Zoom Lock", "None"};
    int behaviour = s.MIDDLE_MOUSE_BEHAVIOR >= 0 && s.MIDDLE_MOUSE_BEHAVIOR < 3 ? s.MIDDLE_MOUSE_BEHAVIOR : 0;
    if (ImGui::Combo("Middle Mouse Behavior", &behaviour, middleMouse, 3)) s.MIDDLE_MOUSE_BEHAVIOR = behaviour;
    ImGui::PopItemWidth();
    ImGui::Checkbox("Use Small Font for Both Control Panels", &s.USE_SMALL_FONT);
    ImGui::SameLine(kRightColumn);
    ImGui::Checkbox("Reverse Circle View Mouse Y Axis", &s.REVERSE_CIRCLE_VIEW_MOUSE_Y);
    ImGui::SameLine();
    ShowHelpMarker(
        "When checked will have the forward and back movement of the mouse make the\ncircle camera height adjustment "
        "behavior more closely match the X-Plane circle view.");
    ImGui::Checkbox("Circle View Wheel Zoom", &s.CIRCLE_VIEW_WHEEL_ZOOM);
    ImGui::SameLine();
    ShowHelpMarker(
        "When checked the mouse wheel will zoom a circle view camera.\nWhen unchecked the mouse wheel will move the "
        "circle view camera\ncloser or further away from plane.");

    ImGui::TextUnformatted("");
    ImGui::SetCursorPosX(400.0f);
    if (ImGui::Button("Close")) SetVisible(false);
    ImGui::SameLine();
    if (ImGui::Button("Default Settings")) applyDefaultSettings();
    ImGui::SameLine();
    if (ImGui::Button("Save Settings")) {
        writeSettings();
        SetVisible(false);
    }
    ImGui::PopItemWidth();

    // Whatever was edited, nothing leaves this frame out of bounds.
    enforceSettingBounds(s, defaults(), monitors.count > 0 ? monitors.count : 1);
}
