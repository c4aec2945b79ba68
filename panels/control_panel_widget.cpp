#include "panels/control_panel_widget.h"

#include <imgui.h>

#include <cstdio>

#include "XPLMDisplay.h"
#include "XPLMGraphics.h"
#include "airports/airport_files.h"
#include "data/camera_file.h"
#include "data/camera_set.h"
#include "data/set_editing.h"
#include "data/settings.h"
#include "motion/transitions.h"
#include "panels/camera_lists_pane.h"
#include "panels/camera_options_pane.h"
#include "panels/community_popups.h"
#include "panels/file_dialog.h"
#include "panels/movement_pane.h"
#include "panels/msg_box_widget.h"
#include "platform/runtime.h"

namespace {

ControlPanelWidget* controlPanel = nullptr;
int controlPanelDecoration = 1;
bool controlPanelFontSmall = false;
bool clipboardsEmptied = false;

constexpr int kPanelWidth = 900;
constexpr int kSmallFontHeight = 700;
constexpr int kLargeFontHeight = 805;
constexpr int kTitleBarExtra = 25;    // the translucent form draws its own title bar
constexpr int kAdvancedOptionsHeight = 190;
constexpr int kCollapsedHeight = 20;
constexpr int kSaveCompletedFrames = 61;

ControlPanelWidget* buildControlPanel() {
    int screenLeft = 0, screenTop = 0, screenRight = 0, screenBottom = 0;
    XPLMGetScreenBoundsGlobal(&screenLeft, &screenTop, &screenRight, &screenBottom);
    const Settings& s = settings();
    int height = s.USE_SMALL_FONT ? kSmallFontHeight : kLargeFontHeight;
    int decoration = 1;
    bool selfDecorated = false;
    if (!s.ENABLE_SOLID_CONTROL_PANEL) {
        decoration = 2;
        selfDecorated = true;
        height += kTitleBarExtra;
    }
    const int top = screenTop - 75;
    auto* panel = new ControlPanelWidget(screenLeft + 175, top, screenLeft + 175 + kPanelWidth, top - height, decoration,
                                         selfDecorated);
    panel->Init();
    panel->PlaceOnPrimaryMonitor();
    controlPanelDecoration = decoration;
    controlPanelFontSmall = s.USE_SMALL_FONT;
    return panel;
}

// What the model's rules (hidden cameras, chains) need to know of the panel.
void publishPanelState() {
    setControlPanelOpen(controlPanel && controlPanel->IsVisible());
    setControlPanelAllowsAutoAdvance(controlPanel && (controlPanel->collapsed || controlPanel->allowAutoAdvance));
}

// A panel may be deleted at once except from inside its own frame, where only a
// request is safe.
void destroyControlPanel() {
    ControlPanelWidget* panel = controlPanel;
    controlPanel = nullptr;
    publishPanelState();
    if (!panel) return;
    if (panel->insideFrame()) {
        panel->RequestDestroy();
    } else {
        // Another window's frame may be under way: its context stays current.
        ImGuiContext* saved = ImGui::GetCurrentContext();
        ImGuiContext* own = panel->GetContext();
        delete panel;
        ImGui::SetCurrentContext(saved == own ? nullptr : saved);
    }
}

// The test build's band: above the panel's contents and inside each menu.
void testSpacer() {
    if (const int spacer = controlPanelTestSpacer(); spacer > 0) ImGui::Dummy(ImVec2(10.0f, static_cast<float>(spacer)));
}

bool fitsSettings() {
    const Settings& s = settings();
    const bool formFits = (controlPanelDecoration == 1 && s.ENABLE_SOLID_CONTROL_PANEL) ||
                          (controlPanelDecoration == 2 && !s.ENABLE_SOLID_CONTROL_PANEL);
    return formFits && controlPanelFontSmall == s.USE_SMALL_FONT;
}

}  // namespace

ControlPanelWidget* controlPanelWidget() { return controlPanel; }
int controlPanelDecorationInUse() { return controlPanelDecoration; }
bool controlPanelBuiltWithSmallFont() { return controlPanelFontSmall; }
__attribute__((weak)) int controlPanelTestSpacer() { return 0; }

bool ControlPanelAction(int op) {
    switch (op) {
        case 1:  // toggle
            if (!controlPanel) {
                controlPanel = buildControlPanel();
            } else {
                controlPanel->SetVisible(!controlPanel->IsVisible());
            }
            publishPanelState();
            return controlPanel->IsVisible();
        case 4:  // destroy
            destroyControlPanel();
            return false;
        case 5:  // is open
            return controlPanel && controlPanel->IsVisible();
        case 6:  // may auto advance
            return !controlPanel || controlPanel->collapsed || controlPanel->allowAutoAdvance;
        case 7: {  // reconfigure: a changed form or font takes a new window
            if (!controlPanel) return false;
            const bool visible = controlPanel->IsVisible();
            publishPanelState();
            if (fitsSettings()) return visible;
            destroyControlPanel();
            if (!visible) return false;
            controlPanel = buildControlPanel();
            publishPanelState();
            return controlPanel->IsVisible();
        }
        default: return false;
    }
}

ControlPanelWidget::ControlPanelWidget(int left_, int top_, int right_, int bottom_, int decoration_,
                                       bool selfDecorated_)
    : KvtImWindow(left_, top_, right_, bottom_, decoration_), selfDecorated(selfDecorated_) {
    fullWidth = right_ - left_;
    fullHeight = top_ - bottom_;
    char text[128];
    std::snprintf(text, sizeof text, "Vistarig %s Control Panel", versionText());
    SetTitle(text);
    XPLMSetWindowIsVisible(windowId, 1);
    showAdvanced = settings().ALWAYS_SHOW_ADVANCED_CAMERA_OPTIONS;
    // The clipboards outlive panels, but start empty in the life of the process.
    if (!clipboardsEmptied) {
        cameraClipboard().name[0] = '\0';
        categoryClipboard().name[0] = '\0';
        setClipboard().categoryCount = 0;
        clipboardsEmptied = true;
    }
}

ControlPanelWidget::~ControlPanelWidget() {
    if (fileDialog) destroyFileDialog(fileDialog);
    if (controlPanel == this) {
        controlPanel = nullptr;
        publishPanelState();
    }
}

void ControlPanelWidget::SetVisible(bool visible) {
    ImgWindow::SetVisible(visible);
    if (controlPanel == this) publishPanelState();
}

void ControlPanelWidget::ConfigureContext() {
    const std::string path = panelFontPath();
    if (std::FILE* probe = std::fopen(path.c_str(), "rb")) {
        std::fclose(probe);
        ImGui::GetIO().Fonts->AddFontFromFileTTF(path.c_str(), settings().USE_SMALL_FONT ? 14.0f : 18.0f);
    }
    if (!selfDecorated) {
        windowFlags |= ImGuiWindowFlags_MenuBar;
    } else {
        windowFlags &= ~(ImGuiWindowFlags_NoTitleBar | ImGuiWindowFlags_NoCollapse);
        windowFlags |= ImGuiWindowFlags_MenuBar | ImGuiWindowFlags_NoBackground;
    }
}

void ControlPanelWidget::OnFlightLoop() {
    WindowPosition& position = settings().LAST_CONTROL_PANEL_POSITION;
    if (XPLMWindowIsPoppedOut(windowId)) {
        position.kind = 2;
        XPLMGetWindowGeometryOS(windowId, &position.left, &position.top, &position.right, &position.bottom);
    } else {
        position.kind = 1;
        XPLMGetWindowGeometry(windowId, &position.left, &position.top, &position.right, &position.bottom);
    }
    if (closeRequested) {
        SetVisible(false);
        closeRequested = false;
    }
}

void ControlPanelWidget::BuildContents() {
    buildingFrame = true;
    if (saveCounter > 0 && ++saveCounter >= kSaveCompletedFrames) saveCounter = 0;

    if (selfDecorated) {
        if (!isOpen) {  // the close box
            SetVisible(false);
            isOpen = true;
        }
        const ImGuiIO& io = ImGui::GetIO();
        const bool onTitleBar = ImGui::IsWindowHovered(ImGuiHoveredFlags_RootWindow) &&
                                io.MousePos.y >= 0 && io.MousePos.y < ImGui::GetFrameHeight() &&
                                ImGui::IsMouseClicked(0);
        dragByTitleBar(drag, windowId, onTitleBar, io.MouseDown[0], DragMode::wholeWindow);
        int width = 0, height = 0;
        GetWindowSize(width, height);
        if (ImGui::IsWindowCollapsed()) {
            // The simulator window shrinks to the title bar, and nothing else is built.
            if (height > 100) SetWindowSize(fullWidth, kCollapsedHeight);
            collapsed = true;
            buildingFrame = false;
            return;
        }
        collapsed = false;
        if (height < 100)  // just expanded
            SetWindowSize(fullWidth, fullHeight - (showAdvanced ? 0 : kAdvancedOptionsHeight));
    } else {
        collapsed = false;
    }

    testSpacer();
    BuildMenuBar();
    BuildPanes();
    BuildSaveRow();
    BuildPopups();
    buildingFrame = false;
}

void ControlPanelWidget::BuildMenuBar() {
    if (!ImGui::BeginMenuBar()) return;
    if (const int spacer = controlPanelTestSpacer(); spacer > 0) {
        ImGui::Dummy(ImVec2(static_cast<float>(spacer), 1.0f));
        ImGui::SameLine();
    }
    BuildFileMenu();
    BuildEditMenu();
    BuildAirportMenu();

    ImGui::SetCursorPosX(ImGui::GetWindowWidth() - 180.0f);
    ImGui::Checkbox("Solid Background", &settings().ENABLE_SOLID_CONTROL_PANEL);
    ImGui::SameLine();
    ShowHelpMarker(
        "The control panel needs to be in solid background mode in order to pop it out to an OS level window. If "
        "the window is popped out unchecking this will pop it back in as a translucent control panel.");
    ImGui::EndMenuBar();
}

void ControlPanelWidget::BuildFileMenu() {
    if (!ImGui::BeginMenu("File")) return;
    testSpacer();
    const bool aircraftSet = !isAirportSetActive();
    if (aircraftSet && ImGui::MenuItem("New Aircraft Camera File")) {
        stopCameraMotion();
        pendingPopup = confirmNewSetPopup;
    }
    if (ImGui::MenuItem("Save All")) {
        stopCameraMotion();
        ++saveCounter;
        saveCameraFile(true, false);
    }
    if (ImGui::MenuItem("Restore")) {
        stopCameraMotion();
        loadCameraFile(activeFile());
    }
    if (ImGui::MenuItem("Display View ID Assignments")) {
        stopCameraMotion();
        pendingPopup = viewIdPopup;
    }
    if (aircraftSet) {
        if (ImGui::MenuItem("Share Camera File with Community")) {
            stopCameraMotion();
            clearShareError();
            pendingPopup = sharePopup;
        }
        if (ImGui::MenuItem("Browse Community Aircraft Files")) {
            stopCameraMotion();
            pendingPopup = browsePopup;
        }
        if (ImGui::MenuItem("Import Camera File")) {
            stopCameraMotion();
            pendingPopup = importPopup;
            importKind = importPopup;
            importPath[0] = '\0';
        }
        if (ImGui::MenuItem("Import Camera File from Backup")) {
            stopCameraMotion();
            pendingPopup = importBackupPopup;
            importKind = importBackupPopup;
            importPath[0] = '\0';
        }
    } else if (ImGui::MenuItem("Load Aircraft File")) {
        stopCameraMotion();
        saveCameraFile(false, false);
        toggleAirportCameras();
    }
    if (ImGui::MenuItem("Close Window")) closeRequested = true;
    ImGui::EndMenu();
}

void ControlPanelWidget::BuildEditMenu() {
    if (!ImGui::BeginMenu("Edit")) return;
    testSpacer();
    if (ImGui::MenuItem("Copy Camera Set")) copySet(&setClipboard());
    ImGui::Separator();
    if (ImGui::MenuItem("Paste Camera Set", nullptr, false, setClipboard().categoryCount > 0))
        pendingPopup = confirmPastePopup;
    ImGui::EndMenu();
}

void ControlPanelWidget::BuildAirportMenu() {
    if (!ImGui::BeginMenu("Airport File")) return;
    testSpacer();
    // A copy: an entry's action asks for the list again, which rebuilds it.
    const std::vector<NearbyAirport> airports = nearbyAirports(false);
    bool anyWithout = false, anyWith = false;
    for (const NearbyAirport& airport : airports) (airport.hasFile ? anyWith : anyWithout) = true;
    char label[400];  // an ID, a distance and a name of up to 255 characters
    if (anyWithout && ImGui::BeginMenu("Create Airport File")) {
        for (const NearbyAirport& airport : airports) {
            if (airport.hasFile) continue;
            std::snprintf(label, sizeof label, "%s (%.1f NM) %s", airport.id, airport.distance, airport.name);
            if (ImGui::MenuItem(label)) {
                stopCameraMotion();
                CreateAirportFile(airport);
            }
        }
        ImGui::EndMenu();
    }
    if (anyWith && ImGui::BeginMenu("Open Airport File")) {
        for (const NearbyAirport& airport : airports) {
            if (!airport.hasFile) continue;
            std::snprintf(label, sizeof label, "%s (%.1f NM) %s", airport.id, airport.distance, airport.name);
            if (ImGui::MenuItem(label)) {
                stopCameraMotion();
                saveCameraFile(false, false);
                loadCameraFile(openAirportFile(airport.id));
            }
        }
        ImGui::EndMenu();
    }
    const bool airportSet = isAirportSetActive();
    if (ImGui::MenuItem("Create Airport Cameras", nullptr, false, airportSet)) pendingPopup = airportCamerasPopup;
    if (ImGui::MenuItem("Close Airport Camera File", nullptr, false, airportSet)) {
        stopCameraMotion();
        saveCameraFile(false, false);
        toggleAirportCameras();
    }
    ImGui::EndMenu();
}

void ControlPanelWidget::BuildPanes() {
    const bool small = controlPanelFontSmall;
    const float listHeight = small ? 155.0f : 185.0f;
    const float padHeight = small ? 145.0f : 160.0f;
    const ImGuiWindowFlags paneFlags = ImGuiWindowFlags_MenuBar;
    auto pane = [&](const char* name, float width, float height, void (*build)(ControlPanelWidget&)) {
        ImGui::PushStyleVar(ImGuiStyleVar_ChildRounding, 5.0f);
        ImGui::PushStyleColor(ImGuiCol_ChildBg, 0x32000000u);
        if (ImGui::BeginChild(name, ImVec2(width, height), true, paneFlags)) build(*this);
        ImGui::EndChild();
        ImGui::PopStyleColor();
        ImGui::PopStyleVar();
    };
    pane("ChildCategoryLists", 435.0f, listHeight, buildCategoryListPane);
    ImGui::SameLine();
    pane("ChildCameraLists", 435.0f, listHeight, buildCameraListPane);
    pane("TrackIR", 435.0f, padHeight, buildTrackIrPane);
    ImGui::SameLine();
    pane("ChildMovement", 435.0f, padHeight, buildMovementPane);
    float optionsHeight = small ? 110.0f : 135.0f;
    if (showAdvanced) optionsHeight = small ? 325.0f : 380.0f;
    pane("CameraOptions", 880.0f, optionsHeight, buildCameraOptionsPane);
}

void ControlPanelWidget::BuildSaveRow() {
    const float width = ImGui::GetWindowWidth();
    ImGui::SetCursorPosX(width - 150.0f);
    if (saveCounter > 0) {
        ImGui::TextColored(ImVec4(0, 1, 0, 1), "[SAVE COMPLETED]");
        return;
    }
    if (ImGui::Button("Save All Cameras##SaveAllCamerasButton")) {
        saveCameraFile(true, createBackup);
        ++saveCounter;
    }
    if (isAirportSetActive()) {  // airport files have no backups
        createBackup = false;
        return;
    }
    ImGui::SameLine(width - 310.0f);
    ImGui::Checkbox("Create Backup", &createBackup);
    ImGui::SameLine();
    ShowHelpMarker("Also create a backup copy in Vistarig/AircraftCameraBackups when Save All Cameras is clicked.");
}

void ControlPanelWidget::CreateAirportFile(const NearbyAirport& airport) {
    saveCameraFile(false, false);
    CameraFile* file = openAirportFile(airport.id);
    if (!file) return;
    loadCameraFile(file);
    Camera* camera = currentCamera();
    camera->latitude = airport.latitude;
    camera->longitude = airport.longitude;
    camera->elevation = static_cast<double>(airport.height) + 200.0;
    if (camera->freeCamera) {
        double x = 0, y = 0, z = 0;
        XPLMWorldToLocal(camera->latitude, camera->longitude, camera->elevation, &x, &y, &z);
        camera->x = static_cast<float>(x);
        camera->y = static_cast<float>(y);
        camera->z = static_cast<float>(z);
        refreshHomePose(camera);
    }
    saveCameraFile(false, false);
    nearbyAirports(true);
}
