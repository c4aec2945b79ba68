// The community popups of the Control Panel and the updater window in the loaded
// plug-in, worked through the UI driver against a real FTP server on loopback: the
// share popup's checks and upload, the browser's filter, arrows and import, the
// updater's news, Copy, update and Close, and closing it on a silent server. Pictures
// of the three go beside the test binary.
#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <filesystem>
#include <thread>

#include "data/aircraft_files.h"
#include "data/camera_file.h"
#include "data/camera_set.h"
#include "data/settings.h"
#include "host/outside_services.h"
#include "host/ui_driver.h"
#include "host/windows.h"
#include "panels/community_popups.h"
#include "panels/control_panel_widget.h"
#include "panels/updater_widget.h"
#include "shell/host_interface.h"
#include "support/community_server_fixture.h"
#include "support/plugin_fixture.h"

namespace {

const char* const kTitle = "Vistarig 2.4.3 Control Panel";
const char* const kUpdates = "Vistarig Updates";
const char* const kFiles = "Resources/plugins/Vistarig/CommunityAircraftCameras/";

// A community camera file of one camera for `aircraft` by `author`.
std::string communityCsv(const std::string& aircraft, const std::string& author, const std::string& camera) {
    std::string line = "C," + camera;
    for (int c = 2; c < 70; ++c) {
        line += ",";
        if (c == 43) line += aircraft;
        else if (c == 44) line += author + " ";
        else line += "0";
    }
    return std::string(cameraFileHeader()) + line + "\n";
}

class CommunityPanelsTest : public PluginTest {
protected:
    static LoopbackFtpServer* server;
    static void SetUpTestSuite() {
        server = new LoopbackFtpServer;
        std::string error;
        if (server->start(true, error)) return;
        delete server;
        server = nullptr;
        FAIL() << error;
    }
    static void TearDownTestSuite() {
        if (server) server->stop();
        delete server;
        server = nullptr;
    }

    bool enableOnSetUp() override { return false; }
    void SetUp() override {
        PluginTest::SetUp();
        ASSERT_NE(server, nullptr);
        server->setMode("normal");
        server->clearFiles();
        xphost::setCommunityServer("127.0.0.1:" + std::to_string(server->port));
        xphost::clearClipboard();
        for (const char* folder : {"MyTargets", "AircraftCameraBackups", "MyAirportCameras"})
            std::filesystem::create_directories(root + "Resources/plugins/Vistarig/" + folder);
        writeFile(std::string(kFiles) + "100_Vistarig_Cub.csv", communityCsv("Cub", "Pilot1", "Cub cam"));
        writeFile(std::string(kFiles) + "200_Vistarig_Cessna_172SP.csv", communityCsv("Cessna_172SP", "Ann", "Wing view"));
        writeFile(std::string(kFiles) + "300_Vistarig_Cessna_172SP.csv", communityCsv("Cessna_172SP", "Bob", "Tail view"));
        const char* font = "/usr/share/fonts/truetype/roboto/unhinted/RobotoTTF/Roboto-Regular.ttf";
        if (std::filesystem::exists(font)) {
            std::filesystem::create_directories(root + "Resources/fonts");
            std::filesystem::copy_file(font, root + "Resources/fonts/Roboto-Regular.ttf",
                                       std::filesystem::copy_options::overwrite_existing);
        }
        ASSERT_TRUE(xphost::enablePlugin(plugin));
        writeFile("Aircraft/Laminar Research/Cessna 172 SP/Vistarig_Cessna_172SP.csv",
                  "Category Name,Camera Name,View ID,X,Y,Z,heading,pitch,TrackIR Enabled,Smooth Transition\n"
                  "Cockpit,Pilot View,1,-0.3,1.05,0.35,0,0,FALSE,FALSE\n");
        planeLoaded();
        runFrames(3);
        ASSERT_TRUE(cameraEnabled());
        // A scan started by an earlier test's plug-in may be the one that ran: read this tree.
        ASSERT_TRUE(waitForScan());
        requestCommunityRescan();
        runFrames(2);
        ASSERT_TRUE(waitForScan());
        settings().ENABLE_SOLID_CONTROL_PANEL = true;
        settings().USE_SMALL_FONT = false;
        command("KVT/Vistarig/Toggle_Control_Panel_on_or_off");
        runFrames(2);
        ASSERT_TRUE(ControlPanelAction(5));
    }
    void TearDown() override {
        server->setMode("normal");
        PluginTest::TearDown();
    }

    bool waitForScan() {
        for (int i = 0; i < 500 && communityScanProgress(nullptr, nullptr); ++i) {
            runFrames(1);
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        runFrames(2);
        return !communityScanProgress(nullptr, nullptr);
    }
    static bool shows(const char* window, const std::string& text) { return xphost::uiExpectText(window, text).empty(); }
    static bool has(const char* window, const std::string& label) {
        xphost::UiItem item;
        return xphost::uiFind(window, label, item).empty();
    }
    static void click(const char* window, const std::string& label) { ASSERT_EQ(xphost::uiClick(window, label), ""); }
    static void type(const char* window, const std::string& label, const std::string& text) {
        ASSERT_EQ(xphost::uiType(window, label, text), "");
    }
    static void picture(const std::string& name) {
        const std::string folder = VISTARIG_SCREENSHOT_DIR;
        std::filesystem::create_directories(folder);
        std::string error;
        EXPECT_TRUE(xphost::screenshot(folder + "/" + name, &error)) << error;
    }
    // Frames until the window shows the text (the workers run beside the frames).
    bool framesUntil(const char* window, const std::string& text, int seconds = 10) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
        while (std::chrono::steady_clock::now() < end) {
            runFrames(1);
            if (shows(window, text)) return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return false;
    }
    std::vector<std::string> serverNames() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(server->filesFolder()))
            names.push_back(entry.path().filename().string());
        return names;
    }
};
LoopbackFtpServer* CommunityPanelsTest::server = nullptr;

TEST_F(CommunityPanelsTest, SharePopupAsksForAuthorAndANewVersionThenUploads) {
    CameraFile* header = activeFile();
    ASSERT_NE(header, nullptr);
    header->author[0] = header->fileVersion[0] = '\0';
    click(kTitle, "File/Share Camera File with Community");
    EXPECT_TRUE(shows(kTitle, "2 camera file(s) for the aircraft type Cessna_172SP have been submitted so far"));
    click(kTitle, "Ok");
    EXPECT_TRUE(shows(kTitle, "You must fill in an Author and Version."));
    EXPECT_TRUE(serverNames().empty());
    type(kTitle, "Author", "Tester");
    click(kTitle, "Now");
    EXPECT_EQ(std::strlen(header->fileVersion), 19u) << header->fileVersion;
    picture("community_share_popup.png");
    click(kTitle, "Ok");
    EXPECT_FALSE(shows(kTitle, "By pressing OK you agree"));
    ASSERT_EQ(serverNames().size(), 1u);
    EXPECT_NE(serverNames()[0].find("_Vistarig_Cessna_172SP.csv"), std::string::npos);
    EXPECT_TRUE(framesUntil("Thank You", "successfully submitted", 5));

    // The same version again is refused; the popup stays with the complaint in red.
    click(kTitle, "File/Share Camera File with Community");
    EXPECT_FALSE(shows(kTitle, "The community version is the same"));
    click(kTitle, "Ok");
    EXPECT_TRUE(shows(kTitle, "The community version is the same as your current version."));
    EXPECT_EQ(serverNames().size(), 1u);
    click(kTitle, "Cancel");
}

TEST_F(CommunityPanelsTest, BrowserFiltersStepsAndImportsWithoutTheAuthor) {
    click(kTitle, "File/Browse Community Aircraft Files");
    xphost::UiFrame frame;
    xphost::uiFrame(kTitle, frame);
    EXPECT_TRUE(shows(kTitle, "3  Files filtered from a total of 3 file(s)")) << frame.text;
    type(kTitle, "Filter##CommunityFileFilter", "cessna");
    EXPECT_TRUE(shows(kTitle, "2  Files filtered from a total of 3 file(s)"));
    EXPECT_STREQ(communityFilterText(), "CESSNA");
    EXPECT_EQ(communitySelection(), 1);
    EXPECT_TRUE(shows(kTitle, "File: 1 Selected"));
    picture("community_browse_popup.png");

    type(kTitle, "Filter##CommunityFileFilter", "nobody");
    EXPECT_TRUE(shows(kTitle, "No Selection"));
    EXPECT_FALSE(has(kTitle, "Import File"));
    type(kTitle, "Filter##CommunityFileFilter", "ann");
    EXPECT_TRUE(shows(kTitle, "Wing view") || shows(kTitle, "200_Vistarig_Cessna_172SP.csv"));
    click(kTitle, "Import File");
    EXPECT_FALSE(shows(kTitle, "Files filtered"));
    EXPECT_STREQ(activeFile()->author, "");
    EXPECT_EQ(std::strlen(activeFile()->fileVersion), 19u);
    EXPECT_STREQ(categoryAt(0)->cameras[0].name, "Wing view");
}

TEST_F(CommunityPanelsTest, UpdaterShowsNewsCopiesTheLinkUpdatesAndRescans) {
    std::filesystem::create_directories(server->folder + "/Vistarig");
    testsupport::writeFile(server->folder + "/", "Vistarig/Versions.txt",
                           "Version 2.4.4 is out\nDownload it from https://example.org/vistarig\n");
    testsupport::writeFile(server->filesFolder(), "100_Vistarig_Cub.csv", communityCsv("Cub", "Pilot1", "Cub cam"));
    testsupport::writeFile(server->filesFolder(), "400_Vistarig_Cessna_172SP.csv",
                           communityCsv("Cessna_172SP", "Cy", "Nose view"));
    click(kTitle, "File/Browse Community Aircraft Files");
    click(kTitle, "Check for Updates");
    ASSERT_NE(updaterWidget(), nullptr);
    ASSERT_TRUE(framesUntil(kUpdates, "Server Files to be Downloaded: 1"));
    EXPECT_TRUE(shows(kUpdates, "Local Files to be Removed: 2"));
    EXPECT_TRUE(shows(kUpdates, "Community Aircraft Files Server Count: 2"));
    click(kUpdates, "Copy##Copy_1");
    EXPECT_EQ(xphost::clipboardText(), "Download it from https://example.org/vistarig");
    EXPECT_FALSE(has(kUpdates, "Copy##Copy_0"));
    picture("community_updater.png");

    click(kUpdates, "Update Community Files");
    ASSERT_TRUE(framesUntil(kUpdates, "Update Complete"));
    EXPECT_TRUE(std::filesystem::exists(root + kFiles + "400_Vistarig_Cessna_172SP.csv"));
    EXPECT_FALSE(std::filesystem::exists(root + kFiles + "300_Vistarig_Cessna_172SP.csv"));
    runFrames(3);
    ASSERT_TRUE(waitForScan());
    EXPECT_EQ(communityFileList().size(), 2u) << "the rescan was requested and ran";
    click(kUpdates, "Close");
    runFrames(2);
    EXPECT_EQ(updaterWidget(), nullptr);
    EXPECT_EQ(xphost::threadViolationCount(), 0);
}

TEST_F(CommunityPanelsTest, ClosingTheUpdaterOnASilentServerWaitsAtMostTwoSeconds) {
    server->setMode("stall-reply");
    openUpdater();
    openUpdater();  // a second opening keeps the one window
    runFrames(5);
    EXPECT_TRUE(shows(kUpdates, "Your are currently running Vistarig 2.4.3"));
    EXPECT_FALSE(has(kUpdates, "Close"));
    const auto start = std::chrono::steady_clock::now();
    destroyUpdater();
    const auto waited = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
    EXPECT_LE(waited.count(), 2200);
    std::printf("[ figures  ] closing the updater on a silent server took %lld ms\n",
                static_cast<long long>(waited.count()));
    EXPECT_EQ(updaterWidget(), nullptr);
}

}  // namespace
