// The Control Panel's popup "Import Camera File" and its file selector in the loaded
// plug-in, worked through the UI driver: typed paths checked at each change, a refused
// file in red with no import, the backups tree with only the folders that hold a match,
// one selected file, the filter, Cancel and the close box, and the import itself; then
// the simulator's frames while the selector's worker reads a large tree.
// VISTARIG_SCAN_FILES=200000 sizes that tree (ten files a folder) and prints figures.
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <thread>

#include "XPLMDisplay.h"
#include "data/camera_set.h"
#include "data/settings.h"
#include "host/ui_driver.h"
#include "host/windows.h"
#include "panels/control_panel_widget.h"
#include "panels/file_dialog.h"
#include "shell/host_interface.h"
#include "support/plugin_fixture.h"

namespace fs = std::filesystem;

namespace {

// Under a sanitizer the frames are timed and reported, but not held to the limit.
#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define VISTARIG_SANITIZED 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__) || defined(VISTARIG_SANITIZED)
constexpr bool kTimed = false;
#else
constexpr bool kTimed = true;
#endif

const char* const kTitle = "Vistarig 2.4.3 Control Panel";
const char* const kSelector = "File Selector";
const char* const kBackups = "Resources/plugins/Vistarig/AircraftCameraBackups/";
const char* const kBackupName = "Laminar Research_Cessna 172 SP_Vistarig_Cessna_172SP.csv";

const char* const kOwnFile =
    "Category Name,Camera Name,View ID,X,Y,Z,heading,pitch,TrackIR Enabled,Smooth Transition\n"
    "Cockpit,Pilot View,1,-0.3,1.05,0.35,0,0,FALSE,FALSE\n"
    "Outside,Chase,0,0,3,25,0,0,FALSE,FALSE\n";
const char* const kBackupFile =
    "Category Name,Camera Name,View ID,X,Y,Z,heading,pitch,TrackIR Enabled,Smooth Transition\n"
    "Front Seats,Left Seat,1,-0.25,1.1,0.3,0,0,FALSE,FALSE\n"
    "Front Seats,Right Seat,2,0.25,1.1,0.3,0,0,FALSE,FALSE\n"
    "Wings,Left Tip,3,-5.5,1.6,1.0,60,0,FALSE,FALSE\n";

class FileDialogTest : public PluginTest {
protected:
    bool enableOnSetUp() override { return false; }
    void SetUp() override {
        PluginTest::SetUp();
        for (const char* folder : {"MyTargets", "AircraftCameraBackups", "MyAirportCameras"})
            fs::create_directories(root + "Resources/plugins/Vistarig/" + folder);
        ASSERT_TRUE(xphost::enablePlugin(plugin));
        const char* font = "/usr/share/fonts/truetype/roboto/unhinted/RobotoTTF/Roboto-Regular.ttf";
        if (fs::exists(font) && !fs::exists(root + "Resources/fonts/Roboto-Regular.ttf")) {
            fs::create_directories(root + "Resources/fonts");
            fs::copy_file(font, root + "Resources/fonts/Roboto-Regular.ttf");
        }
        writeFile("Aircraft/Laminar Research/Cessna 172 SP/Vistarig_Cessna_172SP.csv", kOwnFile);
        planeLoaded();
        runFrames(3);
        ASSERT_TRUE(cameraEnabled());
        settings().ENABLE_SOLID_CONTROL_PANEL = true;
        settings().USE_SMALL_FONT = false;
        settings().ALWAYS_SHOW_ADVANCED_CAMERA_OPTIONS = false;
    }
    void TearDown() override {
        ControlPanelAction(4);
        setActiveFile(savedActive);
        PluginTest::TearDown();
    }

    ControlPanelWidget* open() {
        command("KVT/Vistarig/Toggle_Control_Panel_on_or_off");
        runFrames(2);
        EXPECT_TRUE(ControlPanelAction(5));
        return controlPanelWidget();
    }
    static bool shows(const char* window, const std::string& text) {
        return xphost::uiExpectText(window, text).empty();
    }
    static bool has(const char* window, const std::string& label) {
        xphost::UiItem item;
        return xphost::uiFind(window, label, item).empty();
    }
    static void click(const char* window, const std::string& label) {
        ASSERT_EQ(xphost::uiClick(window, label), "");
    }
    // Pixels of a refusal's red inside a window (the modal's dimming lightens it).
    static int redPixels(const char* window) {
        xphost::WindowInfo w;
        if (!xphost::findWindow(window, w)) return 0;
        int count = 0;
        for (int x = w.left; x < w.right; ++x)
            for (int y = w.bottom; y < w.top; ++y) {
                const uint32_t p = xphost::screenPixel(x, y);
                const int r = static_cast<int>(p >> 24), g = (p >> 16) & 0xFF, b = (p >> 8) & 0xFF;
                count += r > 180 && r > g + 80 && r > b + 80;
            }
        return count;
    }
    // "Finder", then frames until the selector's worker is done and its count has closed.
    void openFinder(ControlPanelWidget* panel) {
        click(kTitle, "Finder");
        for (int i = 0; i < 2000 && (!panel->fileDialog || panel->fileDialog->frameCount == 0 ||
                                     panel->fileDialog->scan.running.load());
             ++i) {
            runFrames(1);
            if (panel->fileDialog && panel->fileDialog->scan.running.load())
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        runFrames(3);
    }
    static void screenshot(const std::string& name) {
        fs::create_directories(VISTARIG_SCREENSHOT_DIR);
        std::string error;
        EXPECT_TRUE(xphost::screenshot(std::string(VISTARIG_SCREENSHOT_DIR) + "/" + name, &error)) << error;
    }

    CameraFile* savedActive = activeFile();
};

TEST_F(FileDialogTest, TypedPathsAreCheckedAtEachChangeAndAGoodFileIsImportedAsTheAircraftsOwn) {
    ControlPanelWidget* panel = open();
    writeFile("bad.csv", "Cockpit,Pilot View,1,0,0,0,0,0\n");
    writeFile("good.csv", kBackupFile);
    click(kTitle, "File/Import Camera File");
    ASSERT_TRUE(shows(kTitle, "Finder"));
    EXPECT_FALSE(has(kTitle, "Import Camera File##ImportCameraFile")) << "no path, no import";
    // Worked without pixels (typing takes a frame a key), drawn again for the colour and
    // the pictures. This entry's selector starts at the aircraft folders.
    xphost::setDrawing(false);
    openFinder(panel);
    ASSERT_NE(panel->fileDialog, nullptr);
    EXPECT_EQ(panel->fileDialog->rootPath, root + "Aircraft/");
    EXPECT_TRUE(has(kSelector, "Laminar Research"));
    click(kSelector, "Cancel");
    runFrames(1);
    EXPECT_EQ(panel->fileDialog, nullptr);

    ASSERT_EQ(xphost::uiType(kTitle, "File Path", root + "bad.csv"), "");
    xphost::setDrawing(true);
    runFrames(1);
    EXPECT_EQ(panel->importError, "Does not appear to be a valid Vistarig file");
    EXPECT_TRUE(shows(kTitle, "Does not appear to be a valid Vistarig file"));
    EXPECT_FALSE(has(kTitle, "Import Camera File##ImportCameraFile"));
    EXPECT_GT(redPixels(kTitle), 100) << "the refusal stands in red";
    screenshot("import_popup_refused.png");

    xphost::setDrawing(false);
    ASSERT_EQ(xphost::uiType(kTitle, "File Path", root + "gone.csv"), "");
    EXPECT_TRUE(shows(kTitle, "File does not exist"));
    // One key at a time: every change is checked again, so the last one clears it.
    ASSERT_EQ(xphost::uiType(kTitle, "File Path", root + "good.csv"), "");
    xphost::setDrawing(true);
    runFrames(1);
    EXPECT_EQ(panel->importError, "");
    EXPECT_EQ(redPixels(kTitle), 0);
    ASSERT_TRUE(has(kTitle, "Import Camera File##ImportCameraFile"));
    EXPECT_TRUE(shows(kTitle, "Try to Auto-Correct Cockpit"));
    screenshot("import_popup.png");

    click(kTitle, "Try to Auto-Correct Cockpit");
    EXPECT_TRUE(panel->autoCorrectImport);
    click(kTitle, "Import Camera File##ImportCameraFile");
    EXPECT_FALSE(shows(kTitle, "Finder")) << "the popup closes";
    ASSERT_EQ(categoryCount(), 2);
    EXPECT_STREQ(categoryAt(0)->name, "Front Seats");
    EXPECT_STREQ(categoryAt(1)->cameras[0].name, "Left Tip");
    // Fitted to the pilot's view that was there before: the seats by its offset, the
    // wing tip, farther than 5 m, left alone.
    EXPECT_NEAR(categoryAt(0)->cameras[0].y, 1.05f, 1e-4);
    EXPECT_NEAR(categoryAt(0)->cameras[1].z, 0.35f, 1e-4);
    EXPECT_NEAR(categoryAt(1)->cameras[0].y, 1.6f, 1e-4);
    CameraFile* active = activeFile();
    ASSERT_NE(active, nullptr);
    EXPECT_NE(std::string(active->path).find("Vistarig_Cessna_172SP.csv"), std::string::npos)
        << "the next save writes the aircraft's own file";
    EXPECT_STREQ(active->author, "");
    char year[8];
    const std::time_t now = std::time(nullptr);
    std::strftime(year, sizeof year, "%Y-", std::localtime(&now));
    EXPECT_EQ(std::string(active->fileVersion).rfind(year, 0), 0u) << active->fileVersion;
}

TEST_F(FileDialogTest, FinderShowsTheBackupsWithAMatchAndHandsOverOneChosenFile) {
    writeFile(std::string(kBackups) + kBackupName, kBackupFile);
    writeFile(std::string(kBackups) + "notes.txt", "x");
    writeFile(std::string(kBackups) + "old/vistarig_old.csv", kOwnFile);
    writeFile(std::string(kBackups) + "junk/readme.txt", "x");
    ControlPanelWidget* panel = open();
    click(kTitle, "File/Import Camera File from Backup");
    openFinder(panel);
    ASSERT_NE(panel->fileDialog, nullptr);
    FileDialog* dialog = panel->fileDialog;
    EXPECT_TRUE(shows(kTitle, "Waiting for File Selection...."));
    EXPECT_EQ(dialog->rootPath, root + kBackups);
    EXPECT_STREQ(dialog->filter, "Vistarig_");
    ASSERT_TRUE(shows(kSelector, "Root Path"));

    // Folders only with a match below; files only if they match, case aside.
    EXPECT_TRUE(has(kSelector, "old"));
    EXPECT_FALSE(has(kSelector, "junk"));
    EXPECT_FALSE(has(kSelector, "notes.txt"));
    EXPECT_FALSE(has(kSelector, "vistarig_old.csv")) << "a closed folder draws nothing";
    click(kSelector, "old");
    EXPECT_TRUE(has(kSelector, "vistarig_old.csv"));
    EXPECT_FALSE(has(kSelector, "Open"));

    click(kSelector, kBackupName);
    EXPECT_EQ(dialog->selectedPath, root + kBackups + kBackupName);
    EXPECT_TRUE(shows(kSelector, dialog->selectedPath));
    click(kSelector, "vistarig_old.csv");
    EXPECT_EQ(dialog->selectedPath, root + kBackups + "old/vistarig_old.csv") << "one file at a time";
    click(kSelector, "vistarig_old.csv");
    EXPECT_EQ(dialog->selectedPath, "");
    EXPECT_FALSE(has(kSelector, "Open")) << "no file, no Open";

    click(kSelector, kBackupName);
    ASSERT_EQ(xphost::uiType(kSelector, "Filter##FileFilter", "OLD"), "");
    EXPECT_STREQ(dialog->filter, "OLD");
    click(kSelector, "Apply##ApplyNewFilter");
    EXPECT_EQ(dialog->selectedPath, "") << "a new filter clears the choice";
    EXPECT_FALSE(has(kSelector, kBackupName));
    EXPECT_TRUE(has(kSelector, "vistarig_old.csv"));
    click(kSelector, "vistarig_old.csv");
    screenshot("file_selector.png");

    click(kSelector, "Open");
    runFrames(2);
    EXPECT_EQ(panel->fileDialog, nullptr) << "taken and destroyed";
    EXPECT_FALSE(xphost::uiExpectText(kSelector, "Root Path").empty());
    EXPECT_EQ(std::string(panel->importPath), root + kBackups + "old/vistarig_old.csv");
    EXPECT_TRUE(has(kTitle, "Import Camera File##ImportCameraFile"));

    // "Cancel" and the simulator's close box both end the wait with no path.
    openFinder(panel);
    click(kSelector, "Cancel");
    runFrames(1);
    EXPECT_EQ(panel->fileDialog, nullptr);
    EXPECT_EQ(std::string(panel->importPath), "");
    EXPECT_TRUE(shows(kTitle, "Finder"));
    openFinder(panel);
    ASSERT_NE(panel->fileDialog, nullptr);
    XPLMSetWindowIsVisible(panel->fileDialog->GetWindowId(), 0);
    runFrames(3);
    EXPECT_EQ(panel->fileDialog, nullptr);
    EXPECT_FALSE(shows(kTitle, "Waiting for File Selection...."));
}

// The worker reads while the simulator draws: no frame waits for it, the count shows
// with separators, and "Cancel##PopulateCancel" ends it with what was read.
TEST_F(FileDialogTest, FramesStayShortWhileTheSelectorReadsALargeTree) {
    const char* asked = std::getenv("VISTARIG_SCAN_FILES");
    const int files = asked ? std::atoi(asked) : 5000;
    const fs::path tree = fs::path(root) / "Aircraft/Many";
    for (int f = 0; f < (files + 9) / 10; ++f) {
        const fs::path dir = tree / ("group" + std::to_string(f / 100)) / ("plane" + std::to_string(f));
        fs::create_directories(dir);
        for (int i = 0; i < 10 && f * 10 + i < files; ++i) std::ofstream(dir / ("Vistarig_" + std::to_string(i)));
    }
    using clock = std::chrono::steady_clock;
    auto frameMs = [](auto from) { return std::chrono::duration<double, std::milli>(clock::now() - from).count(); };

    // The simulator's own drawing (here Mesa's software raster) is not the plug-in's:
    // frames are timed with the callbacks and panels run as ever, but no pixels made.
    xphost::setDrawing(false);
    double idleWorst = 0;
    for (int i = 0; i < 10; ++i) {
        const auto from = clock::now();
        runFrames(1);
        idleWorst = std::max(idleWorst, frameMs(from));
    }

    // A selector's first frame makes its font texture: on an empty folder first, for
    // the cost of that frame without a scan.
    fs::create_directories(fs::path(root) / "Aircraft/None");
    FileDialog* empty = createFileDialog();
    empty->Open((fs::path(root) / "Aircraft/None").c_str(), "Vistarig_");
    const auto emptyFrom = clock::now();
    runFrames(1);
    const double emptyFirstMs = frameMs(emptyFrom);
    destroyFileDialog(empty);

    FileDialog* dialog = createFileDialog();
    dialog->Open(tree.c_str(), "Vistarig_");
    // The scan starts in the window's first frame.
    const auto scanFrom = clock::now();
    runFrames(1);
    const double firstMs = frameMs(scanFrom);
    double worst = 0;
    int frames = 1, worstFrame = 0;
    bool countShown = false;
    do {
        const auto from = clock::now();
        runFrames(1);
        ++frames;
        if (frameMs(from) > worst) worst = frameMs(from), worstFrame = frames;
        if (dialog->scan.count.load() > 1000)
            countShown |= xphost::uiExpectText(kSelector, ",").empty() && shows(kSelector, "Please Wait...");
    } while (dialog->scan.running.load() && frames < 100000);
    const double scanMs = frameMs(scanFrom);
    EXPECT_EQ(dialog->scan.count.load(), files);
    if (kTimed) {
        EXPECT_LT(worst, 50.0) << "a frame waited for the scan";
        EXPECT_LT(firstMs, emptyFirstMs + 50.0);
    }
    runFrames(2);
    EXPECT_FALSE(shows(kSelector, "Please Wait...")) << "the count closes by itself";
    EXPECT_TRUE(shows(kSelector, "Many"));
    std::printf("selector scan of %d files: %.0f ms over %d frames; first frame %.1f ms (%.1f ms on an empty folder), worst after it %.1f ms "
                "(frame %d), idle worst %.1f ms%s\n",
                files, scanMs, frames, firstMs, emptyFirstMs, worst, worstFrame, idleWorst,
                countShown ? "; count shown with separators" : "");

    // Cancelled through its button, once the count is on the screen.
    dialog->Open(tree.c_str(), "Vistarig_");
    runFrames(3);
    if (dialog->scan.running.load()) {
        const auto from = clock::now();
        const std::string clicked = xphost::uiClick(kSelector, "Cancel##PopulateCancel");
        while (dialog->scan.running.load() && frameMs(from) < 1000) std::this_thread::yield();
        std::printf("cancelled through the button after %d files: the worker ended %.0f ms after the click began\n",
                    dialog->scan.count.load(), frameMs(from));
        if (clicked.empty()) {
            EXPECT_FALSE(dialog->scan.running.load());
            runFrames(2);
            EXPECT_FALSE(shows(kSelector, "Please Wait..."));
            EXPECT_EQ(treeFileCount(*dialog->root), static_cast<size_t>(dialog->scan.count.load()));
        }
    }
    destroyFileDialog(dialog);
    xphost::setDrawing(true);
}

}  // namespace
