#include "panels/control_panel_panes.h"

#include <imgui.h>

#include "data/camera_set.h"
#include "panels/control_panel_widget.h"

void buildCategoryListPane(ControlPanelWidget& panel) {
    if (!ImGui::BeginMenuBar()) return;
    if (ImGui::BeginMenu("Category")) {
        // The generators fill a category of the aircraft's own set only.
        if (!isAirportSetActive()) {
            if (ImGui::MenuItem("Create Orbit")) panel.pendingPopup = ControlPanelWidget::orbitPopup;
            if (ImGui::MenuItem("Create Fly-By")) panel.pendingPopup = ControlPanelWidget::flyByPopup;
        }
        ImGui::EndMenu();
    }
    ImGui::EndMenuBar();
}

void buildCameraListPane(ControlPanelWidget&) {}
void buildTrackIrPane(ControlPanelWidget&) {}
void buildMovementPane(ControlPanelWidget&) {}
void buildCameraOptionsPane(ControlPanelWidget&) {}
