// Names and places of the aircraft's files, the backups taken on saving and the
// shared-info file.
#include <cstring>

#include "data/camera_file.h"
#include "panels/messages.h"
#include "user_files_fixture.h"

namespace {

class AircraftFilesTest : public UserFilesTest {};

TEST_F(AircraftFilesTest, NamesComeFromTheModelUpToItsFirstFullStop) {
    EXPECT_EQ(aircraftModelName(), "Cub");
    EXPECT_EQ(aircraftCameraFileName(), "Vistarig_Cub.csv");
    std::string path;
    sharedInfoPath(path);
    EXPECT_EQ(path, aircraftDir + "Vistarig_Cub.shr");
    aircraftPrefsPath(path);
    EXPECT_EQ(path, aircraftDir + "Cub_prefs.txt");
    EXPECT_EQ(communityAircraftFolder(), pluginDir + "CommunityAircraftCameras");

    std::string folder;
    EXPECT_TRUE(pluginDirectoryFromPath("/X/Resources/plugins/Vistarig/lin_x64/Vistarig.xpl", folder));
    EXPECT_EQ(folder, "/X/Resources/plugins/Vistarig/");
    EXPECT_FALSE(pluginDirectoryFromPath("/X/Resources/Vistarig/lin_x64/Vistarig.xpl", folder));
    // "plugins" must be a whole folder name with a folder after it; the first such wins.
    EXPECT_FALSE(pluginDirectoryFromPath("/X/myplugins/Vistarig/lin_x64/Vistarig.xpl", folder));
    EXPECT_FALSE(pluginDirectoryFromPath("/X/Resources/plugins//Vistarig.xpl", folder));
    EXPECT_TRUE(pluginDirectoryFromPath("/X/plugins.old/Resources/plugins/Vistarig/lin_x64/Vistarig.xpl", folder));
    EXPECT_EQ(folder, "/X/plugins.old/Resources/plugins/Vistarig/");
    // Linux file names may hold a backslash: it separates nothing there.
    EXPECT_EQ(backupNameFor("/X/Aircraft/A\\B/Vistarig_Cub.csv"), "A\\B_Vistarig_Cub.csv");
}

TEST_F(AircraftFilesTest, SaveWithBackupCopiesTheFileUnderAFlattenedName) {
    writeFile(perModelPath(), std::string(cameraFileHeader()));
    ASSERT_TRUE(loadCameraFile(nullptr));
    ASSERT_TRUE(saveCameraFile(true, true));
    std::string backup = pluginDir + "AircraftCameraBackups/Test Plane_Vistarig_Cub.csv";
    EXPECT_EQ(readFile(backup), readFile(perModelPath()));
    auto boxes = queuedMessageBoxes();
    ASSERT_FALSE(boxes.empty());
    EXPECT_EQ(boxes.back().title, "Info");
    EXPECT_EQ(boxes.back().text, "Created Backup:\n\n" + backup);
    auto spoken = queuedAnnouncements();
    EXPECT_FALSE(spoken.empty());

    // Outside any "Aircraft" folder: saved, but no backup and no message.
    std::filesystem::create_directories(root + "Elsewhere");
    xphost::setUserAircraft("Elsewhere/Kite.acf");
    setActiveFile(nullptr);
    ASSERT_TRUE(loadCameraFile(nullptr));  // a new file, with its own message
    size_t before = queuedMessageBoxes().size();
    ASSERT_TRUE(saveCameraFile(false, true));
    EXPECT_TRUE(exists(root + "Elsewhere/Vistarig_Kite.csv"));
    EXPECT_EQ(queuedMessageBoxes().size(), before);
    EXPECT_EQ(backupNameFor((root + "Elsewhere/Vistarig_Kite.csv").c_str()), "");
}

TEST_F(AircraftFilesTest, SharedInfoReadsWhatWasWrittenAndSurvivesAShortFile) {
    ASSERT_TRUE(writeSharedInfo("2024-01-01 10:00:00", "Vistarig_Cub_1.csv"));
    SharedInfo info = readSharedInfo();
    EXPECT_TRUE(info.present);
    EXPECT_EQ(std::strlen(info.date), 19u);
    EXPECT_STREQ(info.version, "2024-01-01 10:00:00");
    EXPECT_STREQ(info.fileName, "Vistarig_Cub_1.csv");

    writeFile(aircraftDir + "Vistarig_Cub.shr", "2024-01-01 10:00:00\r\n2024\r\n");
    info = readSharedInfo();
    EXPECT_TRUE(info.present);
    EXPECT_STREQ(info.version, "2024");
    EXPECT_STREQ(info.fileName, "");
    EXPECT_TRUE(logHas("Unable to read shared file name from " + aircraftDir + "Vistarig_Cub.shr"));

    std::filesystem::remove(aircraftDir + "Vistarig_Cub.shr");
    EXPECT_FALSE(readSharedInfo().present);
}

}  // namespace
