#include "panels/calibrate_view_axis_widget.h"

#include <imgui.h>

#include <cmath>
#include <cstdio>

#include "data/settings.h"
#include "panels/msg_box_widget.h"
#include "platform/runtime.h"

namespace {

CalibrateViewAxisWidget* openPanel = nullptr;

// Reads that fill an axis's smoothing filter with where it stands now (the window is at
// most 100) before its centre is taken.
constexpr int kFillReads = 100;
constexpr float kBarWidthMargin = 220.0f;  // room right of the bars for the longest label
constexpr float kButtonsFromRight = 150.0f;

const char* const kInstructions[3] = {
    "Move each view axis through it's full range. Press Next when complete.",
    "Center each axis. Press Next when complete.",
    "Adjust the null zone. Press Finish when complete.",
};

}  // namespace

float calibrationBarFraction(int32_t axis, float value) {
    if (axis == kAxisViewZoom) return std::trunc(value * 500.0f) / 500.0f;
    return std::trunc(value * 250.0f + 250.0f) / 500.0f;
}

CalibrateViewAxisWidget* calibrateViewAxisWidget() { return openPanel; }

void openCalibrateViewAxisPanel() {
    if (openPanel) {
        openPanel->SetVisible(true);
        return;
    }
    int screenLeft = 0, screenTop = 0, screenRight = 0, screenBottom = 0;
    XPLMGetScreenBoundsGlobal(&screenLeft, &screenTop, &screenRight, &screenBottom);
    ImGuiContext* saved = ImGui::GetCurrentContext();
    auto* panel = new CalibrateViewAxisWidget(screenLeft + 175, screenTop - 75, screenLeft + 825, screenTop - 385, 1);
    panel->phase = 0;
    rescanAxes();
    Settings& s = settings();
    panel->savedNullZone = s.VIEW_AXIS_NULL_ZONE;
    // Raw readings show while the centres and the null zone are 0.
    for (int32_t axis = 0; axis < kAxisCount; ++axis) {
        panel->savedCentres[axis] = axisCentreSetting(axis);
        axisCentreSetting(axis) = 0.0f;
    }
    s.VIEW_AXIS_NULL_ZONE = 0.0f;
    panel->SetVisible(true);
    panel->Init();
    axisInput().calibrating = true;
    ImGui::SetCurrentContext(saved);
}

void destroyCalibrateViewAxisPanel() {
    if (!openPanel) return;
    ImGuiContext* saved = ImGui::GetCurrentContext();
    ImGuiContext* own = openPanel->GetContext();
    openPanel->cancel();
    delete openPanel;
    ImGui::SetCurrentContext(saved == own ? nullptr : saved);
}

CalibrateViewAxisWidget::CalibrateViewAxisWidget(int left_, int top_, int right_, int bottom_, int decoration_)
    : KvtImWindow(left_, top_, right_, bottom_, decoration_) {
    SetTitle("Calibrate View Axis");
    openPanel = this;
}

CalibrateViewAxisWidget::~CalibrateViewAxisWidget() {
    if (openPanel == this) openPanel = nullptr;
}

void CalibrateViewAxisWidget::ConfigureContext() {
    const std::string path = panelFontPath();
    if (std::FILE* probe = std::fopen(path.c_str(), "rb")) {
        std::fclose(probe);
        ImGui::GetIO().Fonts->AddFontFromFileTTF(path.c_str(), 18.0f);
    }
}

void CalibrateViewAxisWidget::BuildContents() {
    ImGui::Spacing();
    ImGui::TextUnformatted(kInstructions[phase >= 0 && phase < 3 ? phase : 0]);
    ImGui::Spacing();

    const float width = static_cast<float>(right - left);
    for (int32_t axis = 0; axis < kAxisCount; ++axis) {
        float value = 0.0f;
        const ImVec2 size(width - kBarWidthMargin, 0.0f);
        if (readAxis(axis, value)) ImGui::ProgressBar(calibrationBarFraction(axis, value), size, "");
        else ImGui::ProgressBar(0.2f, size, "Axis Not Detected - Check X-Plane axis assigments");
        ImGui::SameLine();
        ImGui::TextUnformatted(axisLabel(axis));
    }

    if (phase == 2)
        ImGui::SliderFloat("Null Zone", &settings().VIEW_AXIS_NULL_ZONE, 0.0f, 0.25f, "%.3f");

    ImGui::Spacing();
    ImGui::Spacing();
    ImGui::SetCursorPosX(width - kButtonsFromRight);
    if (ImGui::Button("Cancel") && !destroyPending) {
        cancel();
        return;
    }
    ImGui::SameLine();
    if (phase < 2) {
        if (ImGui::Button("Next") && !destroyPending) next();
    } else if (ImGui::Button("Finish") && !destroyPending) {
        finish();
    }
}

void CalibrateViewAxisWidget::next() {
    if (phase == 0) {
        phase = 1;
        return;
    }
    if (phase != 1) return;
    // The centres are still 0, so a reading is where the axis stands.
    for (int32_t axis = 0; axis < kAxisCount; ++axis) {
        float value = 0.0f;
        for (int i = 0; i < kFillReads; ++i) readAxis(axis, value);
        float centre = 0.0f;
        readAxis(axis, centre);
        axisCentreSetting(axis) = centre;
    }
    settings().VIEW_AXIS_NULL_ZONE = savedNullZone;
    phase = 2;
}

void CalibrateViewAxisWidget::finish() {
    writeSettings();
    axisInput().calibrating = false;
    RequestDestroy();
}

void CalibrateViewAxisWidget::cancel() {
    settings().VIEW_AXIS_NULL_ZONE = savedNullZone;
    for (int32_t axis = 0; axis < kAxisCount; ++axis) axisCentreSetting(axis) = savedCentres[axis];
    axisInput().calibrating = false;
    RequestDestroy();
}

void CalibrateViewAxisWidget::OnHidden() {
    axisInput().calibrating = false;
    delete this;
}
