// Stand-ins for entry points whose features come later; see pending_actions.h.
#include "panels/pending_actions.h"

#include "platform/runtime.h"

#include <imgui.h>

namespace {
void notYet(const char* what) { logMessage("%s is not available in this build", what); }
}  // namespace

void openCalibrateViewAxisPanel() { notYet("View axis calibration"); }

// A modal popup that only says so, with a button to close it.
static void placeholderPopup(const char* name) {
    if (!ImGui::BeginPopupModal(name, nullptr, ImGuiWindowFlags_AlwaysAutoResize)) return;
    ImGui::TextUnformatted("This is not available in this build.");
    if (ImGui::Button("Cancel", ImVec2(120, 0))) ImGui::CloseCurrentPopup();
    ImGui::SetItemDefaultFocus();
    ImGui::EndPopup();
}

