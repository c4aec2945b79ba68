// ImGui items that ImGui adds without handing on their label (combos, arrow buttons),
// named for the panel test driver after they are built.
#pragma once

#include <imgui.h>

#include "panels/ui_hooks.h"

inline bool labelledCombo(const char* label, int* current, const char* const items[], int count) {
    const ImGuiID id = ImGui::GetID(label);
    const bool changed = ImGui::Combo(label, current, items, count);
    uiHooksLabelItem(id, label);
    return changed;
}

inline bool labelledArrow(const char* label, ImGuiDir direction) {
    const ImGuiID id = ImGui::GetID(label);
    const bool pressed = ImGui::ArrowButton(label, direction);
    uiHooksLabelItem(id, label);
    return pressed;
}
