#include "panels/community_popups.h"

#include <imgui.h>

#include <cstring>
#include <ctime>
#include <vector>

#include "community/share.h"
#include "data/aircraft_files.h"
#include "data/camera_file.h"
#include "data/camera_set.h"
#include "data/set_editing.h"
#include "panels/kvt_im_window.h"
#include "panels/messages.h"
#include "panels/updater_widget.h"
#include "platform/file_system.h"
#include "platform/runtime.h"

namespace {

constexpr float kButtonWidth = 120.0f;
const ImVec4 kRed(1.0f, 0.0f, 0.0f, 1.0f);

struct ShareState {
    bool needsText = true;
    char shareText[2048] = {};
    char errorText[512] = {};
};
ShareState& share() {
    static ShareState state;
    return state;
}

struct BrowseState {
    // Indexes into the scan's list: a rescan replaces the list, and the indexes are
    // rebuilt (needsReset) before they are read again.
    std::vector<size_t> filtered;
    char filterText[100] = {};
    int selected = 1;
    int totalFiles = 0;
    bool needsReset = true;
    bool autoCorrect = false;
    int listGeneration = -1;
    CameraFile blankFile{};
};
BrowseState& browse() {
    static BrowseState state;
    return state;
}

void nowText(char* out, size_t size) {
    const std::time_t now = std::time(nullptr);
    const std::tm local = localTimeOf(now);
    std::strftime(out, size, "%Y-%m-%d %H:%M:%S", &local);
}

const char* kShareTextFormat =
    "You are about to share your camera file with the Vistarig community.\n\n%d camera file(s) for the aircraft "
    "type %s have been submitted so far\n\nBy pressing OK you agree that your uploads are being submitted to the "
    "community \nfree of charge and that the author name specified in the control panel will be \nvisible in the "
    "shared file. The author field does not need to be your real name, \na pseudonym is perfectly acceptable and "
    "may be preferable. We recommend that \nyou use a date for the version.\n\nPress Ok to share your camera file, "
    "press Cancel to return.";

int filterCapitals(ImGuiInputTextCallbackData* data) {
    if (data->EventChar < 256 && data->EventChar >= 'a' && data->EventChar <= 'z') data->EventChar -= 'a' - 'A';
    return 0;
}

}  // namespace

void clearShareError() { share().errorText[0] = '\0'; }

void buildSharePopup() {
    if (!ImGui::BeginPopupModal("Share Community File", nullptr, ImGuiWindowFlags_AlwaysAutoResize)) return;
    ShareState& s = share();
    CameraFile* header = activeFile();
    if (s.needsText) {
        int done = 0, total = 0;
        if (communityScanProgress(&done, &total)) {
            std::snprintf(s.shareText, sizeof s.shareText,
                          "                       Reading community file %d of %d ,please wait", done, total);
        } else if (!std::strstr(s.shareText, "By pressing OK you agree")) {
            const std::string model = aircraftModelName();
            std::snprintf(s.shareText, sizeof s.shareText, kShareTextFormat, communityFileCount(model.c_str()),
                          model.c_str());
            s.needsText = false;
        }
    }
    ImGui::TextUnformatted(s.shareText);
    ImGui::Separator();
    if (s.errorText[0]) {
        ImGui::TextColored(kRed, "%s", s.errorText);
        ImGui::Separator();
    }
    if (header) {
        ImGui::InputText("Author", header->author, sizeof header->author);
        ImGui::InputText("Version", header->fileVersion, sizeof header->fileVersion);
        ImGui::SameLine();
        if (ImGui::Button("Now", ImVec2(70, 0))) nowText(header->fileVersion, sizeof header->fileVersion);
    }
    if (ImGui::Button("Ok", ImVec2(kButtonWidth, 0))) {
        s.errorText[0] = '\0';
        if (!header || !header->author[0] || !header->fileVersion[0]) {
            std::snprintf(s.errorText, sizeof s.errorText, "You must fill in an Author and Version.");
        } else {
            const SharedInfo earlier = readSharedInfo();
            if (earlier.present && std::strcmp(earlier.version, header->fileVersion) == 0)
                std::snprintf(s.errorText, sizeof s.errorText,
                              "The community version is the same as your current version.\n\nIf you have made "
                              "changes and want to submit an updated file you\nmust have a different version number.");
        }
        if (!s.errorText[0]) {
            s.needsText = true;
            const ShareOutcome outcome = shareCameraFile();
            if (!outcome.logLine.empty()) logMessage("%s", outcome.logLine.c_str());
            if (outcome.waited > std::chrono::milliseconds(1000))
                logMessage("The community server held the simulator for %lld ms", static_cast<long long>(outcome.waited.count()));
            showMessageBox(outcome.title, outcome.text);
            ImGui::CloseCurrentPopup();
        }
    }
    ImGui::SameLine();
    if (ImGui::Button("Cancel", ImVec2(kButtonWidth, 0))) {
        s.needsText = true;
        ImGui::CloseCurrentPopup();
    }
    ImGui::SetItemDefaultFocus();
    ImGui::EndPopup();
}

int applyCommunityFilter() {
    BrowseState& b = browse();
    b.filtered.clear();
    const std::vector<CommunityFile>& list = communityFileList();
    for (size_t i = 0; i < list.size(); ++i)
        if (!b.filterText[0] || std::strstr(list[i].searchText, b.filterText)) b.filtered.push_back(i);
    return static_cast<int>(list.size());
}

char* communityFilterText() { return browse().filterText; }
int& communitySelection() { return browse().selected; }
int communityFilteredCount() { return static_cast<int>(browse().filtered.size()); }

void buildBrowsePopup() {
    if (!ImGui::BeginPopupModal("Browse Community Files", nullptr, ImGuiWindowFlags_AlwaysAutoResize)) return;
    BrowseState& b = browse();
    int done = 0, total = 0;
    const bool scanning = communityScanProgress(&done, &total);
    if (b.needsReset) {
        b.blankFile = CameraFile{};
        if (!scanning) {
            b.totalFiles = applyCommunityFilter();
            if (b.filtered.empty()) b.selected = 0;
            else if (b.selected > static_cast<int>(b.filtered.size())) b.selected = 1;
            b.needsReset = false;
        }
    }
    // A scan that ended while the popup stood open replaced the list: indexes into the old
    // one must not be read.
    if (!scanning && !b.needsReset && b.totalFiles != static_cast<int>(communityFileList().size())) {
        b.totalFiles = applyCommunityFilter();
        if (b.selected > static_cast<int>(b.filtered.size())) b.selected = b.filtered.empty() ? 0 : 1;
    }
    if (scanning) {
        ImGui::Text("             Analyzing file %d of %d, please wait...                   ", done, total);
    } else {
        if (ImGui::Button("Check for Updates")) openUpdater();
        ImGui::SameLine();
        ImGui::Text("%d  Files filtered from a total of %d file(s)", static_cast<int>(b.filtered.size()), b.totalFiles);
        const int count = static_cast<int>(b.filtered.size());
        ImGui::PushButtonRepeat(true);
        if (ImGui::ArrowButton("##LeftFileArrow", ImGuiDir_Left) && b.selected > 1) --b.selected;
        ImGui::SameLine();
        ImGui::SetNextItemWidth(500);
        if (ImGui::DragInt("##FileSection", &b.selected, 1.0f, 0, count,
                           b.selected < 1 ? "No Selection" : "File: %d Selected")) {
            if (b.selected < 0) b.selected = 0;
            if (b.selected > count) b.selected = count;
        }
        ImGui::SameLine();
        if (ImGui::ArrowButton("##RightFileArrow", ImGuiDir_Right) && b.selected < count) ++b.selected;
        ImGui::PopButtonRepeat();
        if (ImGui::InputText("Filter##CommunityFileFilter", b.filterText, sizeof b.filterText,
                             ImGuiInputTextFlags_CharsUppercase | ImGuiInputTextFlags_CallbackCharFilter,
                             filterCapitals)) {
            b.totalFiles = applyCommunityFilter();
            b.selected = b.filtered.empty() ? 0 : 1;
        }
        ImGui::SameLine();
        ShowHelpMarker(
            "Enter your search text here. It will find any files with a partial match in the Aircraft name or Author "
            "fields");
        ImGui::Spacing();
        const std::vector<CommunityFile>& list = communityFileList();
        const CameraFile& shown = b.selected > 0 && b.selected <= static_cast<int>(b.filtered.size())
                                      ? list[b.filtered[static_cast<size_t>(b.selected - 1)]].file
                                      : b.blankFile;
        // Two columns, the second at 170: a fixed indent, which (unlike ImGui's columns)
        // doesn't clip the first row to the columns' width of the frame before.
        auto row = [](const char* label, const char* value) {
            ImGui::TextUnformatted(label);
            ImGui::SameLine(170);
            ImGui::TextUnformatted(value);
        };
        char number[64];
        row("File Name:", shown.fileName);
        row("Aircraft:", shown.aircraft);
        row("Author:", shown.author);
        row("Version:", shown.fileVersion);
        std::snprintf(number, sizeof number, "%d", shown.cameraTotal);
        row("Cameras:", number);
        std::snprintf(number, sizeof number, "%d", shown.categoryTotal);
        row("Categories:", number);
        std::snprintf(number, sizeof number, "Vistarig %s", shown.programVersion);
        row("Created With:", number);
        std::snprintf(number, sizeof number, "%.2f", shown.defaultFov);
        row("Default FOV:", number);
    }
    ImGui::Spacing();
    if (ImGui::Button("Cancel", ImVec2(kButtonWidth, 0))) {
        b.needsReset = true;
        ImGui::CloseCurrentPopup();
    }
    ImGui::SetItemDefaultFocus();
    if (!scanning && b.selected > 0 && b.selected <= static_cast<int>(b.filtered.size())) {
        ImGui::SameLine();
        if (ImGui::Button("Import File", ImVec2(kButtonWidth, 0))) {
            // The first camera of the first category stands for the cockpit of the aircraft loaded now.
            const Camera cockpit = categoryAt(0)->cameras[0];
            CameraFile* chosen = &communityFileList()[b.filtered[static_cast<size_t>(b.selected - 1)]].file;
            loadCameraFile(chosen);
            if (CameraFile* header = activeFile()) {
                header->author[0] = '\0';
                nowText(header->fileVersion, sizeof header->fileVersion);
            }
            if (b.autoCorrect) autoCorrectCockpit(cockpit);
            b.needsReset = true;
            ImGui::CloseCurrentPopup();
        }
        ImGui::SameLine();
        ImGui::Checkbox("Try to Auto-Correct Cockpit", &b.autoCorrect);
        ImGui::SameLine();
        ShowHelpMarker(
            "This attempts to adjust the position of any imported cameras that are within 5 meters of the original "
            "pilot view camera so they are relative to the size of plane.");
    }
    ImGui::EndPopup();
}
