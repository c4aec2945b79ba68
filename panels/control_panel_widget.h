// The Control Panel: the main editing window over the working camera set. It owns
// its menu bar (File, Edit, Airport File), the places of the panes, the save row and
// the modal popups its menus open, and it comes in two forms: solid (the simulator
// draws its frame; it can pop out) and translucent (ImGui draws the title bar,
// collapse arrow and close box). At most one exists; `ControlPanelAction` builds,
// shows, hides, rebuilds and destroys it.
#pragma once

#include <string>

#include "panels/kvt_im_window.h"
#include "panels/window_placement.h"

struct NearbyAirport;
class FileDialog;

class ControlPanelWidget : public KvtImWindow {
public:
    ControlPanelWidget(int left, int top, int right, int bottom, int decoration, bool selfDecorated);
    ~ControlPanelWidget() override;

    void ConfigureContext() override;
    void BuildContents() override;
    void OnFlightLoop() override;
    void SetVisible(bool visible) override;

    // Popup codes of `pendingPopup`.
    enum Popup {
        noPopup = 0,
        confirmPastePopup = 1,
        sharePopup = 2,
        browsePopup = 3,
        orbitPopup = 4,
        flyByPopup = 5,
        airportCamerasPopup = 6,
        confirmNewSetPopup = 7,
        viewIdPopup = 8,
        importPopup = 9,
        importBackupPopup = 10
    };

    TitleBarDrag drag;             // title bar dragging of the translucent form
    bool allowAutoAdvance = false;  // "Allow Camera Auto Advance"
    bool collapsed = false;         // the ImGui window was collapsed in the last frame
    bool closeRequested = false;    // "Close Window", honoured by the flight loop
    bool createBackup = false;      // "Create Backup"
    bool showAdvanced = false;      // "Show Advanced Camera Options"
    bool optionsSized = false;      // the options pane has sized a translucent panel once
    int pendingPopup = noPopup;     // opened at the end of this frame
    int importKind = 0;             // 9 "Import Camera File", 10 "... from Backup"
    bool selfDecorated = false;     // the translucent form
    int fullWidth = 0, fullHeight = 0;  // size when built, advanced options shown
    char importPath[512] = {};
    FileDialog* fileDialog = nullptr;  // the import popup's file selector; null when none is open
    int saveCounter = 0;         // frames since a save, for "[SAVE COMPLETED]"; 0 idle
    bool autoCorrectImport = false;
    std::string importError;

    bool insideFrame() const { return buildingFrame; }

    // The import popup's file selector: true while the user is still choosing; takes
    // the chosen path and destroys the selector once it is done. With `open` and no
    // selector, makes one on the folder of `importKind`.
    bool pollFileDialog(bool open);
    // `importError` for `importPath`.
    void validateImportPath();

private:
    void BuildMenuBar();
    void BuildFileMenu();
    void BuildEditMenu();
    void BuildAirportMenu();
    void BuildPanes();
    void BuildSaveRow();
    void BuildPopups();
    void BuildImportPopup();
    void CreateAirportFile(const NearbyAirport& airport);

    bool buildingFrame = false;
};

// 1 toggle, 4 destroy, 5 is open, 6 may auto advance, 7 reconfigure (every flight
// loop); see the .cpp for each result.
bool ControlPanelAction(int op);

// The one panel, or null.
ControlPanelWidget* controlPanelWidget();
// The decoration the panel was last built with (1 solid, 2 translucent) and the
// value of USE_SMALL_FONT it was built with.
int controlPanelDecorationInUse();
bool controlPanelBuiltWithSmallFont();

// A blank band of this height above the panel's contents: 0 here (a weak definition);
// a test build of the plug-in links a strong one to prove that the UI tests find
// controls by label and not by place.
int controlPanelTestSpacer();
