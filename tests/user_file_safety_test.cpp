// The user's files are never lost: files the user protected stay as they are, links
// stay links and modes stay modes, a file read only in part keeps its original bytes
// before anything replaces it, spreadsheet exports are read whole, and edits that were
// never saved are kept before their set is replaced.
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <functional>
#include <regex>

#include "data/camera_file.h"
#include "data/kept_copies.h"
#include "data/settings.h"
#include "data/targets.h"
#include "data/text_io.h"
#include "panels/messages.h"
#include "user_files_fixture.h"

namespace fs = std::filesystem;

namespace {

constexpr uid_t kNobody = 65534;

const char kHeaderLine[] =
    "Category Name,Camera Name,View ID,X,Y,Z,heading,pitch,TrackIR Enabled,Smooth Transition\n";

class FileSafetyTest : public UserFilesTest {
protected:
    void SetUp() override {
        UserFilesTest::SetUp();
        clearReplacingRefusals();
        speakQueuedAnnouncements();  // start with an empty queue
    }

    // Runs `body` as an ordinary user: as root, permissions would not stop anything.
    // The tree is handed to that user the first time; the result comes back through
    // the files and Log.txt, and `body` returns true for success.
    static bool runAsUser(const std::string& tree, const std::function<bool()>& body) {
        if (geteuid() != 0) return body();
        struct stat info{};
        if (stat(tree.c_str(), &info) != 0) return false;
        if (info.st_uid != kNobody) {
            for (const auto& entry : fs::recursive_directory_iterator(tree))
                if (lchown(entry.path().c_str(), kNobody, kNobody) != 0) return false;
            if (chown(tree.c_str(), kNobody, kNobody) != 0) return false;
        }
        std::fflush(nullptr);
        pid_t child = fork();
        if (child == 0) {
            bool ok = setgid(kNobody) == 0 && setuid(kNobody) == 0 && body();
            std::fflush(nullptr);
            _exit(ok ? 0 : 1);
        }
        int status = 0;
        waitpid(child, &status, 0);
        return WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }

    std::string logFile() const { return readFile(root + "Log.txt"); }

    static mode_t modeOf(const std::string& path) {
        struct stat info{};
        stat(path.c_str(), &info);
        return info.st_mode & 07777;
    }

    void writeCameraRows(const std::string& rows) { writeFile(perModelPath(), std::string(kHeaderLine) + rows); }

    // The path named by the log line of a file read only in part.
    std::string keptCopyFromLog() const {
        std::smatch match;
        std::string log = xphost::logText();
        static const std::regex line("its original is kept as ([^\n]+)");
        return std::regex_search(log, match, line) ? match[1].str() : std::string();
    }

    std::vector<std::string> backupFiles() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(pluginDir + "AircraftCameraBackups"))
            names.push_back(entry.path().filename().string());
        return names;
    }

    int loadedCameras() const {
        int count = 0;
        for (int i = 0; i < categoryCount(); ++i) count += workingSet().categories[i].cameraCount;
        return count;
    }
};

const char kTwoRows[] = "Cockpit,Left Seat,1,-0.35,1.05,-2.4,15,-5,FALSE,FALSE\n"
                        "Cockpit,Right Seat,2,0.35,1.05,-2.4,-10,-3,FALSE,TRUE\n";

// ---------------------------------------------------------------- protected files

TEST_F(FileSafetyTest, ProtectedCameraFilesStayAsTheUserLeftThem) {
    // Read-only by its mode, owned by the user.
    writeCameraRows(kTwoRows);
    loadCameraFile(nullptr);
    std::string before = readFile(perModelPath());
    chmod(perModelPath().c_str(), 0444);
    EXPECT_TRUE(runAsUser(root, [] { return !saveCameraFile(false, false); }));
    EXPECT_EQ(readFile(perModelPath()), before);
    EXPECT_EQ(modeOf(perModelPath()), 0444u);
    EXPECT_NE(logFile().find("Vistarig: Unable to write camera file"), std::string::npos);
    EXPECT_NE(logFile().find("it is read-only"), std::string::npos);

    // Even the superuser, whom the system lets through, leaves a file without write
    // permission alone.
    if (geteuid() == 0) {
        EXPECT_FALSE(saveCameraFile(false, false));
        EXPECT_EQ(readFile(perModelPath()), before);
    }
}

TEST_F(FileSafetyTest, AFileOfAnotherUserIsNotReplacedThroughItsFolder) {
    if (geteuid() != 0) GTEST_SKIP() << "needs a second user";
    writeCameraRows(kTwoRows);
    loadCameraFile(nullptr);
    std::string before = readFile(perModelPath());
    // The folder is the user's, the file root's (0644): renaming over it would work.
    ASSERT_TRUE(runAsUser(root, [] { return true; }));
    ASSERT_EQ(chown(perModelPath().c_str(), 0, 0), 0);
    pid_t child = fork();
    if (child == 0) {
        bool refused = setgid(kNobody) == 0 && setuid(kNobody) == 0 && !saveCameraFile(false, false);
        _exit(refused ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    EXPECT_EQ(readFile(perModelPath()), before);
}

TEST_F(FileSafetyTest, LinksModesAndHardLinksSurviveASave) {
    // One set shared by two aircraft through a symbolic link.
    fs::create_directories(root + "Shared");
    std::string shared = root + "Shared/glider-set.csv";
    writeFile(shared, std::string(kHeaderLine) + kTwoRows);
    fs::create_symlink("../../Shared/glider-set.csv", perModelPath());
    chmod(shared.c_str(), 0640);
    loadCameraFile(nullptr);
    copyText(workingSet().categories[0].cameras[0].name, "Renamed Seat", kNameCopyLimit);
    ASSERT_TRUE(runAsUser(root, [] { return saveCameraFile(false, false); }));
    EXPECT_TRUE(fs::is_symlink(perModelPath()));
    EXPECT_NE(readFile(shared).find("Cockpit,Renamed Seat,"), std::string::npos);
    EXPECT_EQ(modeOf(shared), 0640u);

    // A hard link: both names still show one file.
    std::string twin = root + "Shared/twin.csv";
    fs::remove(perModelPath());
    fs::create_hard_link(shared, perModelPath());
    fs::create_hard_link(shared, twin);
    copyText(workingSet().categories[0].cameras[1].name, "Second Seat", kNameCopyLimit);
    ASSERT_TRUE(runAsUser(root, [] { return saveCameraFile(false, false); }));
    EXPECT_NE(readFile(twin).find("Cockpit,Second Seat,"), std::string::npos);
    EXPECT_EQ(readFile(twin), readFile(perModelPath()));
    EXPECT_EQ(modeOf(twin), 0640u);
    for (const auto& entry : fs::directory_iterator(root + "Shared"))
        EXPECT_EQ(entry.path().filename().string().find(".old"), std::string::npos) << "nothing left aside";
}

TEST_F(FileSafetyTest, ReadOnlySettingsAndTargetsStayAsTheyAre) {
    std::string ini = pluginDir + "Vistarig.ini";
    writeFile(ini, "SMOOTH_WINDOW 90\nMOUSE_SPEED_FACTOR 2.5\n");
    chmod(ini.c_str(), 0444);
    std::string targets = pluginDir + "MyTargets/MyTargets.csv";
    std::string targetText = "Name, Date, Latitude, Longitude, Elevation in Meters\nTower,2024-01-01,47.5,8.5,400\n";
    writeFile(targets, targetText);
    chmod(targets.c_str(), 0444);

    EXPECT_TRUE(runAsUser(root, [] {
        readSettings();
        settings().MOUSE_SPEED_FACTOR = 4.0f;
        bool settingsRefused = !writeSettings();
        writeSettingsKeepingPanelPositions();  // what plug-in disable does
        readTargets();
        addTarget("Bridge", nullptr, 47.6, 8.6, 410, 0);
        return settingsRefused && !writeTargets() && settings().SMOOTH_WINDOW == 90;
    }));
    EXPECT_EQ(readFile(ini), "SMOOTH_WINDOW 90\nMOUSE_SPEED_FACTOR 2.5\n");
    EXPECT_EQ(readFile(targets), targetText);
    EXPECT_EQ(modeOf(ini), 0444u);
    EXPECT_NE(logFile().find("Vistarig: Unable to create " + ini), std::string::npos);
    EXPECT_NE(logFile().find("Vistarig: Unable to write target file: " + targets), std::string::npos);
}

TEST_F(FileSafetyTest, FilesThereButUnreadableAreNeverReplacedByNewOnes) {
    if (geteuid() != 0) GTEST_SKIP() << "needs a file this user can't read, made by another";
    std::string ini = pluginDir + "Vistarig.ini";
    std::string targets = pluginDir + "MyTargets/MyTargets.csv";
    writeFile(ini, "SMOOTH_WINDOW 90\n");
    writeFile(targets, "Tower,2024-01-01,47.5,8.5,400\n");
    writeCameraRows(kTwoRows);
    ASSERT_TRUE(runAsUser(root, [] { return true; }));
    for (const std::string& path : {ini, targets, perModelPath()}) {
        ASSERT_EQ(chown(path.c_str(), 0, 0), 0);
        chmod(path.c_str(), 0600);  // root's own: the ordinary user can neither read nor write it
    }
    chmod((pluginDir + "MyTargets").c_str(), 0777);
    EXPECT_TRUE(runAsUser(root, [] {
        readSettings();
        readTargets();
        loadCameraFile(nullptr);
        return categoryCount() == 1 && std::strcmp(workingSet().categories[0].cameras[0].name, "Pilot View") == 0;
    }));
    EXPECT_EQ(readFile(ini), "SMOOTH_WINDOW 90\n");
    EXPECT_EQ(readFile(targets), "Tower,2024-01-01,47.5,8.5,400\n");
    EXPECT_EQ(readFile(perModelPath()), std::string(kHeaderLine) + kTwoRows);
}

// ---------------------------------------------------------------- files read only in part

TEST_F(FileSafetyTest, AShortRowKeepsTheOriginalBeforeAnySave) {
    std::string original = std::string(kHeaderLine) + "Cockpit,Left Seat,1,-0.35,1.05,-2.4,15,-5,FALSE,FALSE\n" +
                           "Cockpit,Broken,2,0.35\n" + "Outside,Chase,0,0,3,25,0,0,FALSE,FALSE\n";
    writeFile(perModelPath(), original);
    EXPECT_FALSE(loadCameraFile(nullptr));
    EXPECT_EQ(loadedCameras(), 1) << "reading stops at the short row";
    std::string kept = keptCopyFromLog();
    ASSERT_FALSE(kept.empty()) << xphost::logTail(5);
    EXPECT_EQ(readFile(kept), original);
    EXPECT_NE(kept.find("AircraftCameraBackups/Test Plane_Vistarig_Cub.csv.unread-"), std::string::npos) << kept;
    EXPECT_TRUE(logHas("1 row with too few values, 1 row after it not read"));
    EXPECT_EQ(queuedAnnouncements().size(), 1u);

    // The same damaged file again: no second copy and no second announcement.
    clearWorkingSet();
    loadCameraFile(nullptr);
    EXPECT_EQ(backupFiles().size(), 1u);
    EXPECT_EQ(queuedAnnouncements().size(), 1u);

    // The user's save replaces the file; the original stays in the copy.
    EXPECT_TRUE(saveCameraFile(false, false));
    EXPECT_EQ(readFile(kept), original);
}

TEST_F(FileSafetyTest, AFileWithNoReadableCameraLeavesThePilotsEyeAndTheFileAlone) {
    std::string original = "Category Name;Camera Name\nCockpit;Left Seat;1\n";
    writeFile(perModelPath(), original);
    xphost::setValue("sim/graphics/view/pilots_head_y", 1.25);
    size_t boxes = queuedMessageBoxes().size();
    EXPECT_FALSE(loadCameraFile(nullptr));
    ASSERT_EQ(categoryCount(), 1);
    EXPECT_STREQ(workingSet().categories[0].cameras[0].name, "Pilot View");
    EXPECT_FLOAT_EQ(workingSet().categories[0].cameras[0].y, 1.25f);
    EXPECT_EQ(readFile(perModelPath()), original) << "nothing saved at load";
    EXPECT_EQ(queuedMessageBoxes().size(), boxes) << "no new-file box: no new file was made";
    EXPECT_EQ(readFile(keptCopyFromLog()), original);
}

TEST_F(FileSafetyTest, ValuesThatCanNotBeReadKeepACopyAndBlanksAroundABooleanDoNot) {
    writeCameraRows("Cockpit,Left Seat,1,-0.35,1.05,-2.4,15,-5, TRUE ,FALSE\n");
    loadCameraFile(nullptr);
    EXPECT_TRUE(workingSet().categories[0].cameras[0].trackIrEnabled);
    EXPECT_TRUE(backupFiles().empty()) << "read whole";

    struct Damage {
        std::string row;
        const char* told;
    };
    const Damage damages[] = {
        {"Cockpit,Left Seat,1,-0.35,1.05,-2.4,15,-5,yes,FALSE\n", "1 value neither TRUE nor FALSE"},
        {"Cockpit,Left Seat,1,-0.35,1.05m,-2.4,15,-5,FALSE,FALSE\n", "1 value that is not a number"},
        {"Cockpit,A camera name far longer than thirty characters,1,0,1,0,0,0,FALSE,FALSE\n",
         "1 text cut to its field"},
        {"Cockpit,Left Seat,1,-0.35,1.05,-2.4,15,-5,FALSE,FALSE,FALSE,TRUE,TRUE,FALSE,0,FALSE,FALSE,0,0,0,0,0,0,1,"
         "60,FALSE,FALSE,FALSE,FALSE,0,0,FALSE,FALSE,FALSE,FALSE,FALSE,1,FALSE,0,0.0,FALSE,2.4.3,60,Cub,a ,b ,0,"
         "FALSE,0,0,0,FALSE,0,FALSE,FALSE,FALSE,FALSE,0,0,FALSE,FALSE,FALSE,FALSE,FALSE,0,FALSE,0.0,0,0,FALSE,"
         "future\n",
         "1 value not known"},
        {std::string("Cockpit,Left\0Seat,1,0,1,0,0,0,FALSE,FALSE\n", 42), "1 unreadable byte or line"},
    };
    for (const Damage& damage : damages) {
        fs::remove_all(pluginDir + "AircraftCameraBackups");
        std::string text = std::string(kHeaderLine) + damage.row;
        writeFile(perModelPath(), text);
        xphost::reset();
        xphost::setRoot(root);
        xphost::setUserAircraft("Aircraft/Test Plane/Cub.test.acf");
        loadCameraFile(nullptr);
        EXPECT_TRUE(logHas(damage.told)) << damage.told << "\n" << xphost::logTail(3);
        EXPECT_EQ(readFile(keptCopyFromLog()), text) << damage.told;
    }
}

TEST_F(FileSafetyTest, SpreadsheetExportsAreReadWhole) {
    // Saved from a spreadsheet: a byte order mark, quoted text with a doubled quote
    // and a comma inside, quoted booleans, CRLF.
    std::string quoted =
        "\xEF\xBB\xBF\"Category Name\",\"Camera Name\",\"View ID\",X,Y,Z,heading,pitch,\"TrackIR Enabled\","
        "\"Smooth Transition\"\r\n"
        "\"Cockpit\",\"Pilot \"\"A\"\", left\",1,-0.35,1.05,-2.4,15,-5,\"TRUE\",\"TRUE\"\r\n";
    writeFile(perModelPath(), quoted);
    loadCameraFile(nullptr);
    ASSERT_EQ(loadedCameras(), 1);
    EXPECT_STREQ(workingSet().categories[0].name, "Cockpit");
    const Camera& pilot = workingSet().categories[0].cameras[0];
    EXPECT_STREQ(pilot.name, "Pilot \"A\", left");
    EXPECT_TRUE(pilot.trackIrEnabled);
    EXPECT_TRUE(pilot.smoothTransition);
    EXPECT_TRUE(backupFiles().empty());

    // A European export: semicolons between values, decimal commas.
    std::string semicolons = "Category Name;Camera Name;View ID;X;Y;Z;heading;pitch;TrackIR Enabled;Smooth Transition\n"
                             "Cockpit;Left Seat;1;-0,35;1,05;-2,4;15;-5;FALSE;TRUE\n"
                             "Outside;Chase;0;0;3;25,5;0;0;FALSE;FALSE\n";
    writeFile(perModelPath(), semicolons);
    clearWorkingSet();
    loadCameraFile(nullptr);
    ASSERT_EQ(loadedCameras(), 2);
    EXPECT_FLOAT_EQ(workingSet().categories[0].cameras[0].x, -0.35f);
    EXPECT_FLOAT_EQ(workingSet().categories[1].cameras[0].z, 25.5f);
    EXPECT_TRUE(workingSet().categories[0].cameras[0].smoothTransition);
    EXPECT_TRUE(backupFiles().empty());
    // Written back in the plug-in's own format.
    ASSERT_TRUE(saveCameraFile(false, false));
    EXPECT_NE(readFile(perModelPath()).find("Outside,Chase,0,0.000000,3.000000,25.500000,"), std::string::npos);

    // A quote at the front of a name must not turn the row into a quoted export.
    copyText(workingSet().categories[1].cameras[0].name, "\"Hero\" shot, low", kNameCopyLimit);
    ASSERT_TRUE(saveCameraFile(false, false));
    EXPECT_NE(readFile(perModelPath()).find("\nOutside,'Hero\" shot  low,0,"), std::string::npos);
    clearWorkingSet();
    loadCameraFile(nullptr);
    EXPECT_EQ(loadedCameras(), 2);
    EXPECT_STREQ(workingSet().categories[1].cameras[0].name, "'Hero\" shot  low");
    EXPECT_TRUE(backupFiles().empty());
}

TEST_F(FileSafetyTest, NoCopyNoWrite) {
    // The backups folder can't be made: the damaged file is never written over.
    fs::remove_all(pluginDir + "AircraftCameraBackups");
    writeFile(pluginDir + "AircraftCameraBackups", "a file where the folder should be");
    std::string original = std::string(kHeaderLine) + "Cockpit,Left Seat,1,0,1,0,0,0,maybe,FALSE\n";
    writeFile(perModelPath(), original);
    loadCameraFile(nullptr);
    EXPECT_TRUE(logHas("no copy of it could be kept; it will not be written over"));
    EXPECT_FALSE(saveCameraFile(false, false));
    EXPECT_EQ(readFile(perModelPath()), original);
}

TEST_F(FileSafetyTest, SettingsAndTargetsReadOnlyInPartKeepTheirOriginals) {
    std::string ini = pluginDir + "Vistarig.ini";
    writeFile(ini, "SMOOTH_WINDOW 90\nFUTURE_SETTING 7\n");
    readSettings();
    EXPECT_EQ(settings().SMOOTH_WINDOW, 90);
    std::string keptIni = keptCopyFromLog();
    EXPECT_NE(keptIni.find("Vistarig.ini.unread-"), std::string::npos);
    EXPECT_EQ(readFile(keptIni), "SMOOTH_WINDOW 90\nFUTURE_SETTING 7\n");
    EXPECT_TRUE(writeSettings());

    std::string targets = pluginDir + "MyTargets/MyTargets.csv";
    std::string text = "Name, Date, Latitude, Longitude, Elevation in Meters\nTower,2024-01-01,47.5,8.5,400\n"
                       "Half a line,2024\nBridge,2024-01-02,47.6,8.6,410\n";
    writeFile(targets, text);
    xphost::reset();
    xphost::setRoot(root);
    readTargets();
    EXPECT_EQ(targetCount(), 1);
    EXPECT_EQ(readFile(keptCopyFromLog()), text);
}

// ---------------------------------------------------------------- unsaved edits and imports

TEST_F(FileSafetyTest, UnsavedEditsAreKeptBeforeTheSetIsReplaced) {
    writeCameraRows(kTwoRows);
    loadCameraFile(nullptr);
    restoreAllCameras();
    EXPECT_FALSE(workingSetHasUnsavedEdits());
    EXPECT_TRUE(backupFiles().empty()) << "nothing to keep";

    workingSet().categories[0].cameras[1].heading = 42.0f;
    EXPECT_TRUE(workingSetHasUnsavedEdits());
    restoreAllCameras();
    std::string autosave = pluginDir + "AircraftCameraBackups/Test Plane_Vistarig_Cub.csv.autosave";
    ASSERT_TRUE(exists(autosave));
    EXPECT_NE(readFile(autosave).find("Cockpit,Right Seat,2,0.350000,1.050000,-2.400000,42.000000,"),
              std::string::npos);
    EXPECT_TRUE(logHas("were kept as " + autosave));
    EXPECT_FLOAT_EQ(workingSet().categories[0].cameras[1].heading, -10.0f) << "the file's set is back";

    // Saved edits are no edits.
    workingSet().categories[0].cameras[1].heading = 43.0f;
    ASSERT_TRUE(saveCameraFile(false, false));
    EXPECT_FALSE(workingSetHasUnsavedEdits());
}

TEST_F(FileSafetyTest, AnImportThatCanNotBeOpenedChangesNothing) {
    writeCameraRows(kTwoRows);
    loadCameraFile(nullptr);
    std::string before = readFile(perModelPath());
    static CameraFile import;
    std::memset(&import, 0, sizeof import);
    copyText(import.path, (root + "Nowhere/Vistarig_Missing.csv").c_str());
    import.readFromPath = 1;
    EXPECT_FALSE(loadCameraFile(&import));
    EXPECT_EQ(loadedCameras(), 2);
    EXPECT_EQ(readFile(perModelPath()), before);
    EXPECT_TRUE(logHas("Unable to read " + root + "Nowhere/Vistarig_Missing.csv"));
}

}  // namespace
