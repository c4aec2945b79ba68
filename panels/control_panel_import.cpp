// The Control Panel's popup "Import Camera File", for both of its File entries: a camera
// file found with the file selector (under "Aircraft/", or the backups folder) or typed,
// checked, and read as the aircraft's own set.
#include <imgui.h>

#include <cstring>

#include "data/camera_file.h"
#include "data/camera_set.h"
#include "data/file_tree.h"
#include "data/set_editing.h"
#include "data/text_io.h"
#include "panels/control_panel_widget.h"
#include "panels/file_dialog.h"
#include "XPLMUtilities.h"

namespace {

constexpr float kButtonWidth = 120.0f;
const char* const kBackupFolder = "Resources/plugins/Vistarig/AircraftCameraBackups/";

void importCameraFile(const char* path, bool autoCorrect) {
    Camera reference{};
    resetCamera(&reference);
    if (const Camera* first = firstCamera()) copyCameraSettings(first, &reference);
    CameraFile file;
    std::memset(&file, 0, sizeof file);
    copyText(file.path, path);
    file.readFromPath = 1;
    if (!loadCameraFile(&file)) return;
    // The set is the aircraft's own now, made here and now.
    if (CameraFile* active = activeFile()) {
        active->author[0] = '\0';
        copyText(active->fileVersion, localTimeText("%Y-%m-%d %H:%M:%S").c_str());
    }
    if (autoCorrect) autoCorrectCockpit(reference);
}

}  // namespace

void ControlPanelWidget::validateImportPath() { importError = cameraFileProblem(importPath); }

bool ControlPanelWidget::pollFileDialog(bool open) {
    if (fileDialog) {
        if (fileDialog->IsVisible() && !fileDialog->cancelled && !fileDialog->opened) return true;
        if (fileDialog->opened) {
            copyText(importPath, fileDialog->GetSelectedPath().c_str());
            validateImportPath();
        }
        destroyFileDialog(fileDialog);
        fileDialog = nullptr;
        return false;
    }
    if (!open) return false;
    importError.clear();
    fileDialog = createFileDialog();
    char system[1024] = {};
    XPLMGetSystemPath(system);
    const std::string folder = std::string(system) + (importKind == importBackupPopup ? kBackupFolder : "Aircraft/");
    fileDialog->Open(folder.c_str(), "Vistarig_");
    return false;
}

void ControlPanelWidget::BuildImportPopup() {
    if (!ImGui::BeginPopupModal("Import Camera File", nullptr, ImGuiWindowFlags_AlwaysAutoResize)) {
        // Closed by other means while a selector stood open: it goes too.
        if (fileDialog && !ImGui::IsPopupOpen("Import Camera File")) {
            destroyFileDialog(fileDialog);
            fileDialog = nullptr;
        }
        return;
    }
    if (pollFileDialog(false)) {
        // The keyboard is the selector's: an open modal claims it in every frame, and the
        // two windows would take it in turns, each losing keys.
        ImGui::GetIO().WantCaptureKeyboard = false;
        ImGui::TextColored(ImVec4(1, 1, 0, 1), "Waiting for File Selection....");
        ImGui::EndPopup();
        return;
    }
    if (importError.empty()) ImGui::TextUnformatted("");
    else ImGui::TextColored(ImVec4(1, 0, 0, 1), "%s", importError.c_str());
    if (ImGui::Button("Finder")) {
        importPath[0] = '\0';
        pollFileDialog(true);
    }
    ImGui::SameLine();
    ImGui::SetNextItemWidth(500.0f);
    if (ImGui::InputText("File Path", importPath, sizeof importPath)) validateImportPath();
    ImGui::SameLine();
    ShowHelpMarker("Camera file names start with Vistarig_ followed by the aircraft name and then ending with a .csv "
                   "extension");
    ImGui::TextUnformatted("");
    if (ImGui::Button("Cancel", ImVec2(kButtonWidth, 0))) ImGui::CloseCurrentPopup();
    ImGui::SetItemDefaultFocus();
    if (importPath[0] && importError.empty()) {
        ImGui::SameLine();
        if (ImGui::Button("Import Camera File##ImportCameraFile")) {
            importCameraFile(importPath, autoCorrectImport);
            ImGui::CloseCurrentPopup();
        }
        ImGui::SameLine();
        ImGui::Checkbox("Try to Auto-Correct Cockpit", &autoCorrectImport);
        ImGui::SameLine();
        ShowHelpMarker("This attempts to adjust the position of any imported cameras that are within 5 meters of the "
                       "original pilot view camera so they are relative to the size of plane.");
    }
    ImGui::EndPopup();
}
