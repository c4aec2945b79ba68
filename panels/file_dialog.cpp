#include "panels/file_dialog.h"

#include <imgui.h>

#include <cstdio>
#include <cstring>

#include "panels/msg_box_widget.h"

namespace {

const ImVec4 kGreen(0, 1, 0, 1);

// A text field takes the keyboard on the click that activates the window, not only on
// the click after it.
void focusOnClick() {
    if (ImGui::IsItemHovered() && ImGui::IsMouseClicked(0)) ImGui::SetKeyboardFocusHere(-1);
}

void copyBounded(char* to, size_t capacity, const std::string& from) {
    const size_t length = from.size() < capacity - 1 ? from.size() : capacity - 1;
    std::memcpy(to, from.data(), length);
    to[length] = '\0';
}

}  // namespace

FileDialog::FileDialog(int left_, int top_, int right_, int bottom_, int decoration_)
    : KvtImWindow(left_, top_, right_, bottom_, decoration_) {
    SetTitle("File Selector");
}

FileDialog::~FileDialog() {
    // Nothing waits on a tree that is being thrown away.
    scan.cancel.store(true);
    joinScan(scan);
}

void FileDialog::ConfigureContext() {
    const std::string path = panelFontPath();
    if (std::FILE* probe = std::fopen(path.c_str(), "rb")) {
        std::fclose(probe);
        ImGui::GetIO().Fonts->AddFontFromFileTTF(path.c_str(), 14.0f);
    }
}

void FileDialog::Open(const char* path, const char* newFilter) {
    joinScan(scan);
    root.reset();
    copyBounded(rootPath, sizeof rootPath, normaliseRootPath(path));
    root = std::make_unique<FileNode>(makeFolderNode(rootPath));
    selectedPath.clear();
    if (newFilter != filter) copyBounded(filter, sizeof filter, newFilter ? newFilter : "");
    cancelled = false;
    opened = false;
    frameCount = 0;
    if (!IsVisible()) SetVisible(true);
}

void FileDialog::StartScan() {
    if (!root) return;
    // No thread: the tree stays empty and the count closes at once.
    startScan(scan, root.get(), filter, &selectedPath);
}

void FileDialog::BuildContents() {
    if (frameCount++ == 0) {
        StartScan();
        ImGui::OpenPopup("Loading Files");
    }
    const bool running = scan.running.load(std::memory_order_acquire);
    if (ImGui::BeginPopupModal("Loading Files", nullptr, ImGuiWindowFlags_AlwaysAutoResize)) {
        ImGui::TextUnformatted("");
        ImGui::Text("          %s Please Wait...          ", countWithSeparators(scan.count.load()).c_str());
        ImGui::TextUnformatted("");
        ImGui::SetCursorPosX(ImGui::GetWindowWidth() / 2 - 20);
        if (ImGui::Button("Cancel##PopulateCancel")) scan.cancel.store(true);
        if (!running) ImGui::CloseCurrentPopup();
        ImGui::EndPopup();
        return;
    }
    // The tree is the worker's until it has finished.
    if (running || !root) return;

    const float width = ImGui::GetWindowWidth();
    ImGui::SetNextItemWidth(450);
    ImGui::InputText("Root Path##FileRootPath", rootPath, 1999);
    focusOnClick();
    ImGui::SameLine();
    if (ImGui::Button("Apply##ApplyNewPath")) {
        const std::string path = rootPath;
        Open(path.c_str(), filter);
        return;
    }
    ImGui::TextColored(kGreen, "%s", selectedPath.c_str());

    const float listHeight = ImGui::GetWindowHeight() - ImGui::GetCursorPosY() - 35;
    if (ImGui::BeginChild("FileListChild", ImVec2(width - 15, listHeight), true)) DrawNode(*root, true);
    ImGui::EndChild();

    ImGui::SetNextItemWidth(200);
    ImGui::InputText("Filter##FileFilter", filter, 199);
    focusOnClick();
    ImGui::SameLine();
    if (ImGui::Button("Apply##ApplyNewFilter")) applyFilter(*root, filter, selectedPath);
    ImGui::SameLine(width - 110);
    if (ImGui::Button("Cancel")) cancelled = true;
    if (!selectedPath.empty()) {
        ImGui::SameLine(width - 60);
        if (ImGui::Button("Open")) opened = true;
    }
}

// Closed folders cost one tree node: what lies below them isn't visited.
void FileDialog::DrawNode(FileNode& node, bool isRoot) {
    if (!node.hasMatch) return;
    const std::string label = node.name + "##" + node.path;
    if (isRoot) ImGui::SetNextItemOpen(true, ImGuiCond_Once);
    if (!ImGui::TreeNode(label.c_str())) return;
    for (FileNode& folder : node.folders) DrawNode(folder, false);
    ImGui::PushStyleColor(ImGuiCol_Text, kGreen);
    std::string fileLabel;
    for (FileEntry& file : node.files) {
        if (!file.visible) continue;
        fileLabel = file.name + "##" + node.path + file.name;
        bool selected = file.selected;
        if (ImGui::Selectable(fileLabel.c_str(), &selected)) selectFile(*root, node, file, selected, selectedPath);
    }
    ImGui::PopStyleColor();
    ImGui::TreePop();
}

FileDialog* createFileDialog() {
    ImGuiContext* saved = ImGui::GetCurrentContext();
    int screenLeft = 0, screenTop = 0, screenRight = 0, screenBottom = 0;
    XPLMGetScreenBoundsGlobal(&screenLeft, &screenTop, &screenRight, &screenBottom);
    auto* dialog = new FileDialog(screenLeft + 175, screenTop - 75, screenLeft + 775, screenTop - 575, 1);
    dialog->Init();
    dialog->PlaceOnPrimaryMonitor();
    ImGui::SetCurrentContext(saved);
    return dialog;
}

void destroyFileDialog(FileDialog* dialog) {
    ImGuiContext* saved = ImGui::GetCurrentContext();
    ImGuiContext* own = dialog ? dialog->GetContext() : nullptr;
    delete dialog;
    ImGui::SetCurrentContext(saved == own ? nullptr : saved);
}
