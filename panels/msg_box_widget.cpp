#include "panels/msg_box_widget.h"

#include <imgui.h>

#include <algorithm>
#include <vector>

#include "XPLMUtilities.h"

namespace {
std::vector<MsgBoxWidget*> openBoxes;
}

std::string panelFontPath() {
    char system[1024] = {};
    XPLMGetSystemPath(system);
    return std::string(system) + "Resources/fonts/Roboto-Regular.ttf";
}

MsgBoxWidget::MsgBoxWidget(int left_, int top_, int right_, int bottom_, int decoration_)
    : KvtImWindow(left_, top_, right_, bottom_, decoration_) {
    openBoxes.push_back(this);
}

MsgBoxWidget::~MsgBoxWidget() { openBoxes.erase(std::remove(openBoxes.begin(), openBoxes.end(), this), openBoxes.end()); }

int openMessageBoxCount() { return static_cast<int>(openBoxes.size()); }
MsgBoxWidget* openMessageBox(int index) {
    return index >= 0 && index < static_cast<int>(openBoxes.size()) ? openBoxes[static_cast<size_t>(index)] : nullptr;
}

MsgBoxWidget* MsgBoxWidget::Open(const MessageBoxRequest& request) {
    int screenLeft = 0, screenTop = 0, screenRight = 0, screenBottom = 0;
    XPLMGetScreenBoundsGlobal(&screenLeft, &screenTop, &screenRight, &screenBottom);
    auto* box = new MsgBoxWidget(screenLeft + 175, screenTop - 75, screenLeft + 275, screenTop - 175, 1);
    box->SetTitle(request.title);
    box->text = request.text;
    box->callback = request.callback;
    box->SetVisible(true);
    box->Init();
    box->PlaceOnPrimaryMonitor();
    return box;
}

void MsgBoxWidget::ConfigureContext() {
    // A missing font file leaves ImGui's built-in font; the box still works.
    const std::string path = panelFontPath();
    if (std::FILE* probe = std::fopen(path.c_str(), "rb")) {
        std::fclose(probe);
        ImGui::GetIO().Fonts->AddFontFromFileTTF(path.c_str(), 18.0f);
    }
}

void MsgBoxWidget::BuildContents() {
    if (needsFit) {
        const ImVec2 size = ImGui::CalcTextSize(text.c_str());
        const int centreX = (left + right) / 2, centreY = (top + bottom) / 2;
        const int halfWidth = static_cast<int>((size.x + 20.0f) / 2.0f);
        const int halfHeight = static_cast<int>((size.y + 100.0f) / 2.0f);
        XPLMSetWindowGeometry(windowId, centreX - halfWidth, centreY + halfHeight, centreX + halfWidth,
                              centreY - halfHeight);
        needsFit = false;
    }
    ImGui::TextUnformatted("");
    ImGui::TextUnformatted(text.c_str());
    ImGui::TextUnformatted("");
    ImGui::TextUnformatted("");
    const float middle = static_cast<float>((right - left) / 2);
    if (!callback) {
        ImGui::SetCursorPosX(middle);
        if (ImGui::Button("Ok")) RequestDestroy();
        return;
    }
    ImGui::SetCursorPosX(middle - 75.0f);
    if (ImGui::Button("Cancel")) RequestDestroy();
    ImGui::SameLine();
    if (ImGui::Button("Ok") && !destroyPending) {
        callback();
        RequestDestroy();
    }
}
