#include "panels/msg_box_widget.h"

#include <imgui.h>

#include <algorithm>
#include <cmath>
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

BoxSize messageBoxSize(const MessageBoxMeasures& m, bool twoButtons) {
    // Rows: an empty line, the text, two empty lines, the buttons; ImGui puts item
    // spacing between each pair of the five and window padding round them all.
    const float buttonHeight = m.fontSize + 2.0f * m.framePadding.y;
    const float height =
        2.0f * m.windowPadding.y + 3.0f * m.fontSize + m.text.y + buttonHeight + 4.0f * m.itemSpacing.y;
    const float okWidth = m.okLabel + 2.0f * m.framePadding.x;
    const float cancelWidth = m.cancelLabel + 2.0f * m.framePadding.x;
    // The buttons start at the middle ("Ok"), or 75 left of it ("Cancel" then "Ok"),
    // and must end inside the right padding.
    const float buttonsFrom = twoButtons ? -75.0f : 0.0f;
    const float buttonsWidth = twoButtons ? cancelWidth + m.itemSpacing.x + okWidth : okWidth;
    float width = m.text.x + 2.0f * m.windowPadding.x;
    width = std::max(width, 2.0f * (buttonsFrom + buttonsWidth + m.windowPadding.x));
    width = std::max(width, 2.0f * (m.windowPadding.x - buttonsFrom));
    // A boxel of slack against rounding, so no scroll bar appears on a fraction.
    return BoxSize{static_cast<int>(std::ceil(width)) + 2, static_cast<int>(std::ceil(height)) + 2};
}

WindowBox fitAround(const WindowBox& current, BoxSize size, const WindowBox& screen, int roomAbove) {
    const int width = std::min(size.width, screen.right - screen.left);
    const int height = std::min(size.height, screen.top - roomAbove - screen.bottom);
    const int centreX = (current.left + current.right) / 2, centreY = (current.top + current.bottom) / 2;
    WindowBox box{centreX - width / 2, centreY + height / 2, 0, 0};
    box.left = std::clamp(box.left, screen.left, screen.right - width);
    box.top = std::clamp(box.top, screen.bottom + height, screen.top - roomAbove);
    box.right = box.left + width;
    box.bottom = box.top - height;
    return box;
}

void MsgBoxWidget::BuildContents() {
    if (needsFit) {
        // Measured with the box's own font and style, where a fixed "text + 20 by text
        // + 100" gave a scroll bar and cut the buttons off; the centre stays, and the
        // box is kept on the screen with room for the simulator's title bar.
        const ImGuiStyle& style = ImGui::GetStyle();
        MessageBoxMeasures m;
        m.text = ImGui::CalcTextSize(text.c_str());
        m.fontSize = ImGui::GetFontSize();
        m.windowPadding = style.WindowPadding;
        m.itemSpacing = style.ItemSpacing;
        m.framePadding = style.FramePadding;
        m.okLabel = ImGui::CalcTextSize("Ok").x;
        m.cancelLabel = ImGui::CalcTextSize("Cancel").x;
        WindowBox screen;
        XPLMGetScreenBoundsGlobal(&screen.left, &screen.top, &screen.right, &screen.bottom);
        const WindowBox box = fitAround(WindowBox{left, top, right, bottom}, messageBoxSize(m, callback != nullptr),
                                        screen, decoration == 1 ? decoratedTitleRoom : 0);
        XPLMSetWindowGeometry(windowId, box.left, box.top, box.right, box.bottom);
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
