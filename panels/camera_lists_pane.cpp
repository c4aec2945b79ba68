#include "panels/camera_lists_pane.h"

#include <imgui.h>

#include <cstdio>

#include "data/camera_set.h"
#include "data/set_editing.h"
#include "motion/transitions.h"
#include "panels/control_panel_widget.h"
#include "panels/kvt_im_window.h"
#include "panels/labelled_items.h"

namespace {

constexpr float kListItemWidth = 420.0f;
constexpr ImGuiInputTextFlags kEnterCloses = ImGuiInputTextFlags_EnterReturnsTrue;

// The held item moves once the pointer has left it; the swap itself comes after the
// list is drawn, so that no item is drawn twice or skipped in this frame.
struct PendingMove {
    int from = -1;
    int to = -1;
};

void noteDrag(int index, int count, PendingMove& move) {
    if (!ImGui::IsItemActive() || ImGui::IsItemHovered()) return;
    const int neighbour = dragNeighbour(index, count, ImGui::GetMouseDragDelta(0).y);
    if (neighbour < 0) return;
    move.from = index;
    move.to = neighbour;
}

// "Edit: " with the name field and "Ok"; Enter closes the menu as "Ok" does.
void renameRow(char* name, int capacity) {
    ImGui::TextUnformatted("Edit: ");
    ImGui::SameLine();
    if (ImGui::InputText("##edit", name, static_cast<size_t>(capacity), kEnterCloses)) ImGui::CloseCurrentPopup();
    ImGui::SameLine();
    if (ImGui::Button("Ok")) ImGui::CloseCurrentPopup();
}

void categoryContextMenu(Category& category) {
    if (!ImGui::BeginPopupContextItem("item context menu")) return;
    renameRow(category.name, sizeof category.name);
    const int count = categoryCount();
    if (count < maxCategories()) {
        if (ImGui::MenuItem("Add to End")) {
            stopCameraMotion();
            addCategory();
        }
        if (ImGui::MenuItem("Insert New Above")) {
            stopCameraMotion();
            insertCategoryAbove();
        }
    }
    if (count > 1 && ImGui::MenuItem("Delete")) {
        stopCameraMotion();
        deleteCurrentCategory();
    }
    if (ImGui::MenuItem("Copy")) copyCurrentCategory();
    if (categoryClipboardFull()) {
        if (ImGui::MenuItem("Paste Over")) pasteCategory(&categoryClipboard(), currentCategory(), 0);
        if (count < maxCategories()) {
            if (ImGui::MenuItem("Insert Copy Below")) pasteCategory(&categoryClipboard(), currentCategory(), 2);
            if (ImGui::MenuItem("Insert Copy Above")) pasteCategory(&categoryClipboard(), currentCategory(), 1);
        }
        if (ImGui::MenuItem("Clear All Camera View ID's")) {
            clearViewIds(currentCategoryIndex());
            relinkSet(false);
        }
    }
    ImGui::EndPopup();
}

void cameraContextMenu(Camera& camera) {
    if (!ImGui::BeginPopupContextItem("item context menu")) return;
    renameRow(camera.name, sizeof camera.name);
    const int count = currentCategory()->cameraCount;
    if (count < maxCameras()) {
        if (ImGui::MenuItem("Add to End")) {
            stopCameraMotion();
            addCamera();
        }
        if (ImGui::MenuItem("Insert New Above")) {
            stopCameraMotion();
            insertCameraAbove();
        }
    }
    if (count > 1 && ImGui::MenuItem("Delete")) {
        stopCameraMotion();
        deleteCurrentCamera();
    }
    if (ImGui::MenuItem("Copy")) {
        stopCameraMotion();
        copyCurrentCamera();
    }
    if (cameraClipboardFull()) {
        if (ImGui::MenuItem("Paste Over")) pasteCamera(&cameraClipboard(), currentCamera(), 0);
        if (count < maxCameras()) {
            if (ImGui::MenuItem("Insert Copy Below")) pasteCamera(&cameraClipboard(), currentCamera(), 2);
            if (ImGui::MenuItem("Insert Copy Above")) pasteCamera(&cameraClipboard(), currentCamera(), 1);
        }
    }
    ImGui::EndPopup();
}

void categoryMenu(ControlPanelWidget& panel) {
    if (!ImGui::BeginMenu("Category")) return;
    if (categoryCount() < maxCategories()) {
        if (ImGui::MenuItem("Add New Category to End")) {
            stopCameraMotion();
            addCategory();
        }
        ImGui::Separator();
    }
    if (ImGui::MenuItem("Copy Category")) copyCurrentCategory();
    if (ImGui::BeginMenu("Paste Category", categoryClipboardFull())) {
        if (ImGui::MenuItem("Paste Over")) pasteCategory(&categoryClipboard(), currentCategory(), 0);
        if (ImGui::MenuItem("Insert Copy Below")) pasteCategory(&categoryClipboard(), currentCategory(), 2);
        if (ImGui::MenuItem("Insert Copy Above")) pasteCategory(&categoryClipboard(), currentCategory(), 1);
        if (ImGui::MenuItem("Clear All Camera View ID's")) {
            clearViewIds(currentCategoryIndex());
            relinkSet(false);
        }
        ImGui::EndMenu();
    }
    // The generators fill a category of the aircraft's own set only.
    const bool aircraftSet = !isAirportSetActive();
    if (ImGui::MenuItem("Create Fly-By", nullptr, false, aircraftSet))
        panel.pendingPopup = ControlPanelWidget::flyByPopup;
    if (ImGui::MenuItem("Create Orbit", nullptr, false, aircraftSet))
        panel.pendingPopup = ControlPanelWidget::orbitPopup;
    ImGui::EndMenu();
}

void cameraMenu() {
    if (!ImGui::BeginMenu("Camera")) return;
    if (currentCategory()->cameraCount < maxCameras()) {
        if (ImGui::MenuItem("Add New Camera to End")) {
            stopCameraMotion();
            addCamera();
        }
        ImGui::Separator();
    }
    if (ImGui::MenuItem("Copy Camera")) copyCurrentCamera();
    if (ImGui::BeginMenu("Paste Camera", cameraClipboardFull())) {
        if (ImGui::MenuItem("Paste Over")) pasteCamera(&cameraClipboard(), currentCamera(), 0);
        if (ImGui::MenuItem("Insert Copy Below")) pasteCamera(&cameraClipboard(), currentCamera(), 2);
        if (ImGui::MenuItem("Insert Copy Above")) pasteCamera(&cameraClipboard(), currentCamera(), 1);
        ImGui::EndMenu();
    }
    ImGui::EndMenu();
}

// The combo's items name who holds each ID; an airport set has IDs up to 65.
void viewIdCombo() {
    static char labels[kMaxViewId + 1][24];
    static const char* items[kMaxViewId + 1];
    const int last = isAirportSetActive() ? kMaxViewId : kMaxAircraftViewId;
    std::snprintf(labels[0], sizeof labels[0], "None");
    items[0] = labels[0];
    for (int id = 1; id <= last; ++id) {
        const int holders = camerasWithViewId(id, nullptr, 0);
        if (holders == 0) std::snprintf(labels[id], sizeof labels[id], "%d", id);
        else if (holders == 1) std::snprintf(labels[id], sizeof labels[id], "%d Used", id);
        else std::snprintf(labels[id], sizeof labels[id], "%d Used [%d]", id, holders);
        items[id] = labels[id];
    }
    Camera* camera = currentCamera();
    int selected = camera->viewId >= 0 && camera->viewId <= last ? camera->viewId : 0;
    ImGui::SetCursorPosX(95.0f);
    ImGui::SetNextItemWidth(135.0f);
    if (labelledCombo("View ID", &selected, items, last + 1)) {
        camera->viewId = selected;
        relinkSet(false);
    }
}

// One row of the assignments table; `id` makes the button's ImGui ID unique.
bool assignmentRow(const Camera& camera, const char* buttonFormat, int id) {
    const Category* category = categoryAt(camera.categoryIndex);
    ImGui::TextUnformatted(category ? category->name : "");
    ImGui::SameLine(300.0f);
    ImGui::TextUnformatted(camera.name);
    ImGui::SameLine(600.0f);
    ImGui::Text("%d", camera.viewId);
    ImGui::SameLine(675.0f);
    char label[48];
    std::snprintf(label, sizeof label, buttonFormat, id);
    return ImGui::Button(label);
}

}  // namespace

int dragNeighbour(int index, int count, float dragDeltaY) {
    if (dragDeltaY == 0.0f) return -1;
    const int neighbour = dragDeltaY < 0.0f ? index - 1 : index + 1;
    return neighbour >= 0 && neighbour < count ? neighbour : -1;
}

void buildCategoryListPane(ControlPanelWidget& panel) {
    if (ImGui::BeginMenuBar()) {
        categoryMenu(panel);
        ShowHelpMarker(
            "Select the category and then drag up or down to change the order of the category. Use the right mouse "
            "button to open a context window to rename the category or to add or delete a category.");
        ImGui::EndMenuBar();
    }
    ImGui::PushItemWidth(kListItemWidth);
    PendingMove move;
    const int count = categoryCount();
    char label[64];
    for (int i = 0; i < count; ++i) {
        Category* category = categoryAt(i);
        std::snprintf(label, sizeof label, "%s##Cat_%d", category->name, category->listId);
        if (ImGui::Selectable(label, i == currentCategoryIndex())) selectCategory(i);
        if (i == currentCategoryIndex()) categoryContextMenu(*category);
        noteDrag(i, count, move);
    }
    // The selection follows the moved records, so the held item stays the current one.
    if (move.from >= 0 && moveCategory(move.from, move.to - move.from)) ImGui::ResetMouseDragDelta(0);
    ImGui::PopItemWidth();
}

void buildCameraListPane(ControlPanelWidget&) {
    if (ImGui::BeginMenuBar()) {
        cameraMenu();
        ShowHelpMarker(
            "Select the camera and then drag up or down to change the order of the Camera. Use the right mouse "
            "button to open a context window to rename the camera or to add or delete a camera.");
        viewIdCombo();
        ImGui::SameLine();
        ShowHelpMarker(
            "The view ID is used to map keys or joystick buttons to the Vistarig Select_View_ID_n commands. Use the "
            "left and right arrow buttons to go to the previous and next camera with an assigned View ID.\n\nNote: "
            "The View ID is one number higher than the quick look numpad keys. Numpad 0 is view ID 1, numpad 1 is "
            "view ID 2, etc.");
        ImGui::SameLine(340.0f);
        if (labelledArrow("##left", ImGuiDir_Left)) previousViewId();
        ImGui::SameLine();
        if (labelledArrow("##right", ImGuiDir_Right)) nextViewId();
        ImGui::EndMenuBar();
    }
    ImGui::PushItemWidth(kListItemWidth);
    PendingMove move;
    Category* category = currentCategory();
    const int categoryIndex = currentCategoryIndex();
    const int count = category->cameraCount;
    char label[64];
    for (int i = 0; i < count; ++i) {
        Camera& camera = category->cameras[i];
        std::snprintf(label, sizeof label, "%s##Cam_%d", camera.name, camera.listId);
        if (ImGui::Selectable(label, i == category->currentCamera)) selectCamera(i);
        if (i == category->currentCamera) cameraContextMenu(camera);
        noteDrag(i, count, move);
    }
    if (move.from >= 0 && moveCamera(categoryIndex, move.from, move.to - move.from)) ImGui::ResetMouseDragDelta(0);
    ImGui::PopItemWidth();
}

void buildViewIdPopup() {
    if (!ImGui::BeginPopupModal("Display View ID Assignments", nullptr, ImGuiWindowFlags_AlwaysAutoResize)) return;
    ImGui::TextUnformatted("Category");
    ImGui::SameLine(300.0f);
    ImGui::TextUnformatted("Camera");
    ImGui::SameLine(600.0f);
    ImGui::TextUnformatted("View ID");
    ImGui::SameLine(675.0f);
    ImGui::TextUnformatted("Action");
    ImGui::Separator();
    ImGui::NewLine();

    int counter = 0;
    bool changed = false;
    for (int id = 1; id <= kMaxViewId; ++id) {
        Camera* holder = cameraForViewId(id);
        if (!holder) continue;
        if (assignmentRow(*holder, "Clear##clearID%d", counter++)) {
            holder->viewId = 0;
            changed = true;
        }
        Camera* holders[kMaxCategories * kMaxCameras];
        const int found = camerasWithViewId(id, holders, kMaxCategories * kMaxCameras);
        // The table holds the last one found; the others are the duplicates.
        ImGui::PushStyleColor(ImGuiCol_Text, IM_COL32(255, 0, 0, 255));
        for (int n = 0; n + 1 < found; ++n) {
            if (assignmentRow(*holders[n], "Clear Duplicate##ClearDupID%d", counter++)) {
                holders[n]->viewId = 0;
                changed = true;
            }
        }
        ImGui::PopStyleColor();
    }
    ImGui::NewLine();
    ImGui::NewLine();
    if (ImGui::Button("Clear All", ImVec2(120.0f, 0))) {
        for (int c = 0; c < categoryCount(); ++c) {
            Category* category = categoryAt(c);
            for (int i = 0; i < category->cameraCount; ++i)
                if (category->cameras[i].viewId >= 1 && category->cameras[i].viewId <= kMaxViewId)
                    category->cameras[i].viewId = 0;
        }
        changed = true;
    }
    if (ImGui::Button("Ok")) ImGui::CloseCurrentPopup();
    if (changed) relinkSet(false);
    ImGui::EndPopup();
}
