// The camera file: rows of every age and shape read into the set and write back the
// same bytes, limits skip rows without stopping the load, the aircraft's file is found
// in its order, and a failed save leaves the old file whole.
#include <signal.h>
#include <sys/resource.h>

#include <cmath>
#include <cstring>
#include <random>
#include <vector>

#include "XPLMGraphics.h"
#include "data/camera_file.h"
#include "data/plugin_state.h"
#include "motion/frame_driver.h"
#include "panels/messages.h"
#include "user_files_fixture.h"

namespace {

// One row as an older or newer program writes it: the 70 default columns, with some
// replaced, cut to `columns` tokens or lengthened past the last one.
std::string row(const std::string& category, const std::string& camera,
                std::vector<std::pair<int, std::string>> changes = {}, int columns = 70,
                const std::string& extra = "") {
    std::vector<std::string> t(70, "FALSE");
    t[0] = category;
    t[1] = camera;
    for (int c : {2, 14, 36, 38, 46, 48, 49, 50, 58, 67, 68}) t[c] = "0";
    for (int c : {3, 4, 5, 6, 7, 17, 18, 19, 20, 21, 22, 29, 30, 52, 57, 64}) t[c] = "0.000000";
    t[11] = t[12] = "TRUE";
    t[23] = "1.000000";
    t[24] = t[42] = "60.000000";
    t[36] = "1";
    t[39] = t[66] = "0.0";
    t[41] = "2.4.3";
    t[43] = "Cub";
    t[44] = "Jane Doe ";
    t[45] = "2024-01-02 03:04:05 ";
    for (auto& [column, text] : changes) t[column] = text;
    std::string line;
    for (int c = 0; c < columns; ++c) line += t[c] + (c + 1 < columns ? "," : "");
    return line + extra + "\n";
}

Camera& cam(int category, int index) { return workingSet().categories[category].cameras[index]; }
Category& cat(int index) { return workingSet().categories[index]; }

int columnsOf(const std::string& line) {
    int commas = 0;
    for (char c : line) commas += c == ',';
    return commas + 1;
}

std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> out;
    std::stringstream in(text);
    for (std::string line; std::getline(in, line);) out.push_back(line);
    return out;
}

class CameraFileTest : public UserFilesTest {};

TEST_F(CameraFileTest, RowsOfEveryAgeLoadByTheirRulesAndRewriteToTheSameBytes) {
    std::string file = cameraFileHeader();
    file += row("Cockpit", "Pilot", {{2, "1"}, {3, "-0.4"}, {4, "1.1"}, {5, "2.5"}, {24, "0"}, {25, "FALSE"}});
    file += row("Outside", "Chase", {{33, "TRUE"}, {9, "TRUE"}, {37, "TRUE"}, {26, "TRUE"}});
    file += "Cockpit,Ten,3,1.5,2,3,90,5,TRUE,FALSE\r\n";  // a row of exactly 10 tokens, CRLF
    file += row("Outside", "Old Free", {{3, "120"}, {4, "30"}, {5, "-400"}, {35, "TRUE"}}, 48);
    file += row("Cockpit", "Yoke True", {{58, "TRUE"}, {60, "TRUE"}, {10, "TRUE"}});
    file += row("Cockpit", "Yoke False", {{58, "FALSE"}, {39, "0.25"}, {34, "TRUE"}, {53, "TRUE"}});
    file += row("Cockpit", "Extra", {}, 70, ",junk,more columns");
    writeFile(perModelPath(), file);

    ASSERT_TRUE(loadCameraFile(nullptr));
    ASSERT_EQ(categoryCount(), 2);
    // Rows of a category need not be adjacent: they join it in file order.
    EXPECT_STREQ(cat(0).name, "Cockpit");
    ASSERT_EQ(cat(0).cameraCount, 5);
    EXPECT_STREQ(cam(0, 1).name, "Ten");
    EXPECT_STREQ(cam(0, 4).name, "Extra");
    ASSERT_EQ(cat(1).cameraCount, 2);
    EXPECT_STREQ(cam(1, 1).name, "Old Free");

    // FOV 0 without forcing falls back to the simulator's field of view.
    EXPECT_FLOAT_EQ(cam(0, 0).fov, defaultFov());
    EXPECT_FALSE(cam(0, 0).enableFov);
    EXPECT_FLOAT_EQ(cam(0, 0).x, -0.4f);

    // Ten tokens: everything from column 10 at its reset value.
    const Camera& ten = cam(0, 1);
    EXPECT_EQ(ten.viewId, 3);
    EXPECT_FLOAT_EQ(ten.pitch, 5.0f);
    EXPECT_TRUE(ten.trackIrEnabled);
    EXPECT_TRUE(ten.retainMouseLook);
    EXPECT_TRUE(ten.temporaryPositioning);
    EXPECT_FLOAT_EQ(ten.zoom, 1.0f);
    EXPECT_EQ(ten.initialMovementRange, 1);

    // Bezier wins over smooth and takes the smooth joins with it.
    EXPECT_TRUE(cam(1, 0).bezierTransition);
    EXPECT_FALSE(cam(1, 0).smoothTransition);
    EXPECT_FALSE(cam(1, 0).smoothCameraJoins);

    // An old free camera gets its world position from its local one.
    const Camera& free = cam(1, 1);
    EXPECT_TRUE(free.external);
    double x, y, z;
    XPLMWorldToLocal(free.latitude, free.longitude, free.elevation, &x, &y, &z);
    EXPECT_NEAR(x, 120.0, 0.01);
    EXPECT_NEAR(y, 30.0, 0.01);
    EXPECT_NEAR(z, -400.0, 0.01);

    EXPECT_EQ(cam(0, 2).hideYoke, 1);
    EXPECT_EQ(cam(0, 3).hideYoke, 0);
    EXPECT_TRUE(cam(0, 2).xpRealistic);
    EXPECT_FALSE(cam(0, 2).headShake);  // one effect at a time, XP-Realistic first
    EXPECT_TRUE(cam(0, 3).targetFollowing);
    EXPECT_FALSE(cam(0, 3).cineflex);
    EXPECT_STREQ(activeFile()->author, "Jane Doe");
    EXPECT_STREQ(activeFile()->fileVersion, "2024-01-02 03:04:05");

    ASSERT_TRUE(saveCameraFile(false, false));
    std::string first = readFile(perModelPath());
    std::vector<std::string> rows = lines(first);
    ASSERT_EQ(rows.size(), 8u);
    EXPECT_EQ(rows[0] + "\n", cameraFileHeader());
    for (size_t i = 1; i < rows.size(); ++i) EXPECT_EQ(columnsOf(rows[i]), 70) << rows[i];
    EXPECT_EQ(first.find("junk"), std::string::npos);
    EXPECT_NE(rows[3].find(",Yoke True,"), std::string::npos);
    EXPECT_NE(rows[3].find(",0.000000,1,FALSE,TRUE,FALSE,"), std::string::npos);  // Hide Yoke now a number
    EXPECT_NE(rows[4].find(",0.2,"), std::string::npos);                 // one decimal
    EXPECT_NE(rows[1].find(",Jane Doe ,2024-01-02 03:04:05 ,"), std::string::npos);

    ASSERT_TRUE(loadCameraFile(nullptr));
    ASSERT_TRUE(saveCameraFile(false, false));
    EXPECT_EQ(readFile(perModelPath()), first);
}

TEST_F(CameraFileTest, AnyWorkingSetSavesToAFileThatReadsBackTheSameSet) {
    std::mt19937 random(7);
    std::uniform_real_distribution<float> value(-5000.0f, 5000.0f);
    auto coin = [&] { return random() % 2 == 1; };
    const char* names[] = {"Cockpit", "Wing, left", "", "Tail\tcam", "A name far longer than thirty characters",
                           "Cockpit"};
    clearWorkingSet();
    CameraSet& set = workingSet();
    set.categoryCount = 6;
    for (int c = 0; c < 6; ++c) {
        copyText(set.categories[c].name, names[c]);
        set.categories[c].cameraCount = 1 + int(random() % 4);
        for (int i = 0; i < set.categories[c].cameraCount; ++i) {
            Camera& camera = set.categories[c].cameras[i];
            resetCamera(&camera);
            copyText(camera.name, names[(c + i) % 6]);
            camera.x = value(random), camera.y = value(random), camera.z = value(random);
            camera.heading = value(random), camera.pitch = value(random), camera.roll = value(random);
            camera.zoom = 1.0f + float(random() % 50) / 7.0f;
            camera.fov = 15.0f + float(random() % 150);
            camera.trackIrMax.x = value(random), camera.trackIrMin.z = value(random);
            camera.cgX = value(random), camera.aglHeight = value(random);
            camera.transitionSeconds = value(random), camera.transitionDelay = value(random);
            camera.viewId = int(random() % 66);
            camera.linearTransitionFrames = int(random() % 1000);
            camera.hideYoke = int(random() % 3);
            camera.scriptId = int(random() % 9), camera.cameraOrigin = int(random() % 3);
            camera.runCode = int(random());
            camera.initialMovementRange = int(random() % 4);
            camera.trackIrEnabled = coin(), camera.hidden = coin(), camera.circleView = coin();
            camera.aglCamera = coin(), camera.targetReciprocal = coin(), camera.enableFov = coin();
            camera.smoothTransition = true;  // one transition kind, as the panels keep it
            camera.external = coin();
            camera.freeCamera = camera.external && coin();
            if (camera.freeCamera) {
                camera.latitude = 47.0 + value(random) / 1e5;
                camera.longitude = 8.0 + value(random) / 1e5;
                camera.elevation = 400.0 + value(random) / 10;
            }
        }
    }
    relinkSet(true);
    CameraFile* head = cameraFileListHead();
    copyText(head->author, "Someone, somewhere ");
    copyText(head->fileVersion, "");
    copyText(head->path, perModelPath().c_str());
    setActiveFile(head);

    ASSERT_TRUE(saveCameraFile(false, false));
    std::string first = readFile(perModelPath());
    // What the writer changed, it changed in memory too.
    EXPECT_STREQ(cat(1).name, "Wing  left");
    EXPECT_STREQ(cat(2).name, "Category 3");
    EXPECT_STREQ(cat(4).name, "A name far longer than thirty ");
    EXPECT_STREQ(cat(5).name, "Cockpit 2");
    EXPECT_STREQ(head->author, "Someone  somewhere");
    for (const std::string& line : lines(first)) EXPECT_EQ(columnsOf(line), 70) << line;

    int cameras = 0;
    for (int c = 0; c < 6; ++c) cameras += cat(c).cameraCount;
    ASSERT_TRUE(loadCameraFile(nullptr));
    EXPECT_EQ(categoryCount(), 6);
    int loaded = 0;
    for (int c = 0; c < categoryCount(); ++c) loaded += cat(c).cameraCount;
    EXPECT_EQ(loaded, cameras);
    ASSERT_TRUE(saveCameraFile(false, false));
    EXPECT_EQ(readFile(perModelPath()), first);
}

TEST_F(CameraFileTest, ARowWithoutACategoryNameIsKeptAndNamedOnSaving) {
    // A spreadsheet's export with quoted fields and the category cell left empty.
    writeFile(perModelPath(), cameraFileHeader() + row("Cockpit", "One") + row("\"\"", "Nameless"));
    ASSERT_TRUE(loadCameraFile(nullptr));
    ASSERT_EQ(categoryCount(), 2);
    EXPECT_STREQ(cam(1, 0).name, "Nameless");
    ASSERT_TRUE(saveCameraFile(false, false));
    ASSERT_TRUE(loadCameraFile(nullptr));
    ASSERT_EQ(categoryCount(), 2);
    EXPECT_STREQ(cat(1).name, "Category 2");
    EXPECT_STREQ(cam(1, 0).name, "Nameless");
}

TEST_F(CameraFileTest, LimitsSkipTheirRowsAndAShortRowEndsTheLoad) {
    std::string file = cameraFileHeader();
    for (int c = 1; c <= 21; ++c) file += row("Cat " + std::to_string(c), "Only");
    for (int i = 1; i <= 151; ++i) file += row("Cat 1", "More " + std::to_string(i));
    file += row("Cat 2", "After the limits");
    writeFile(perModelPath(), file);
    ASSERT_TRUE(loadCameraFile(nullptr));
    EXPECT_EQ(categoryCount(), 20);
    EXPECT_EQ(findOrAddCategory("Cat 21", false), -1);
    EXPECT_EQ(cat(0).cameraCount, 150);
    EXPECT_STREQ(cam(0, 149).name, "More 149");
    EXPECT_STREQ(cam(1, 1).name, "After the limits");
    EXPECT_TRUE(logHas("Maximum allowed camera categories"));
    EXPECT_TRUE(logHas("Maximum allowed cameras in a category"));
    EXPECT_TRUE(logHas("Unexpected error reading camera parameters"));

    file = cameraFileHeader() + row("Cockpit", "One") + "Cockpit,Broken,1,2,3\n" + row("Cockpit", "Never");
    writeFile(perModelPath(), file);
    EXPECT_FALSE(loadCameraFile(nullptr));
    EXPECT_EQ(cat(0).cameraCount, 1);
    EXPECT_TRUE(logHas("The camera file does not have the minimum number of camera parameters"));
}

TEST_F(CameraFileTest, AircraftFileIsFoundPerModelThenPerFolderThenMadeNew) {
    // Nothing there: a new set with the pilot's view, written at once.
    EXPECT_FALSE(cameraFileExists());
    xphost::forceValue("sim/graphics/view/pilots_head_y", 1.25);
    ASSERT_TRUE(loadCameraFile(nullptr));
    EXPECT_STREQ(cat(0).name, "Cockpit");
    EXPECT_STREQ(cam(0, 0).name, "Pilot View");
    EXPECT_EQ(cam(0, 0).viewId, 1);
    EXPECT_FLOAT_EQ(cam(0, 0).y, 1.25f);
    EXPECT_TRUE(exists(perModelPath()));
    EXPECT_TRUE(cameraFileExists());
    EXPECT_FALSE(queuedMessageBoxes().empty());
    std::filesystem::remove(perModelPath());

    // Only the older per-folder file: read, but it doesn't make the plane enable itself
    // and it is never written; the next save goes to the per-model file.
    std::string folderFile = cameraFileHeader() + row("Old", "From folder");
    writeFile(folderPath(), folderFile);
    EXPECT_FALSE(cameraFileExists());
    ASSERT_TRUE(loadCameraFile(nullptr));
    EXPECT_STREQ(cam(0, 0).name, "From folder");
    EXPECT_EQ(std::string(activeFile()->path), perModelPath());
    ASSERT_TRUE(saveCameraFile(false, false));
    EXPECT_EQ(readFile(folderPath()), folderFile);
    EXPECT_TRUE(cameraFileExists());

    // Both: the per-model file wins.
    writeFile(perModelPath(), cameraFileHeader() + row("Mine", "Per model"));
    ASSERT_TRUE(loadCameraFile(nullptr));
    EXPECT_STREQ(cam(0, 0).name, "Per model");

    // A header alone counts as an empty file: the default set is built and written.
    writeFile(perModelPath(), cameraFileHeader());
    ASSERT_TRUE(loadCameraFile(nullptr));
    EXPECT_STREQ(cam(0, 0).name, "Pilot View");
    EXPECT_NE(readFile(perModelPath()).find("Pilot View"), std::string::npos);
}

TEST_F(CameraFileTest, LoadKeepsTheSelectionOfEachSetAndFallsBackWhenItIsGone) {
    writeFile(perModelPath(), cameraFileHeader() + row("A", "1") + row("B", "1") + row("B", "2"));
    ASSERT_TRUE(loadCameraFile(nullptr));
    selectCategory(1);
    selectCamera(1);
    ASSERT_TRUE(loadCameraFile(nullptr));
    EXPECT_EQ(currentCategoryIndex(), 1);
    EXPECT_EQ(cat(1).currentCamera, 1);
    EXPECT_EQ(savedSet(0).categoryCount, 2);

    writeFile(perModelPath(), cameraFileHeader() + row("A", "1") + row("A", "2"));
    ASSERT_TRUE(loadCameraFile(nullptr));
    EXPECT_EQ(currentCategoryIndex(), 0);
    EXPECT_EQ(cat(0).currentCamera, 0);
    selectCamera(1);
    restoreAllCameras();
    EXPECT_EQ(currentCategoryIndex(), 0);
    EXPECT_EQ(cat(0).currentCamera, 0);
}

TEST_F(CameraFileTest, FailedWriteLeavesTheOldFileWholeAndSaysSo) {
    writeFile(perModelPath(), cameraFileHeader() + row("Cockpit", "Pilot"));
    ASSERT_TRUE(loadCameraFile(nullptr));
    const std::string before = readFile(perModelPath());
    for (int i = 1; i < 40; ++i) {
        Camera& camera = cat(0).cameras[i];
        resetCamera(&camera);
        copyText(camera.name, ("Added " + std::to_string(i)).c_str());
    }
    cat(0).cameraCount = 40;
    relinkSet(true);

    // The file system refuses the write part-way (no permission check stops root, a
    // file size limit does).
    struct rlimit saved;
    getrlimit(RLIMIT_FSIZE, &saved);
    struct rlimit small = saved;
    small.rlim_cur = 2048;
    signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    bool written = saveCameraFile(false, false);
    setrlimit(RLIMIT_FSIZE, &saved);

    EXPECT_FALSE(written);
    EXPECT_EQ(readFile(perModelPath()), before);
    EXPECT_TRUE(logHas("Unable to write camera file"));
    int leftovers = 0;
    for (auto& entry : std::filesystem::directory_iterator(aircraftDir)) leftovers += entry.path() != perModelPath();
    EXPECT_EQ(leftovers, 0);
    EXPECT_EQ(cat(0).cameraCount, 40);  // the set stays in memory

    // A folder that can't be written at all (as a normal user).
    if (geteuid() != 0) {
        std::filesystem::permissions(aircraftDir, std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
        EXPECT_FALSE(saveCameraFile(false, false));
        std::filesystem::permissions(aircraftDir, std::filesystem::perms::owner_all);
        EXPECT_EQ(readFile(perModelPath()), before);
    }
}

TEST_F(CameraFileTest, AnalysingCountsRowsAndCategoriesWithoutTouchingTheSet) {
    writeFile(perModelPath(), cameraFileHeader() + row("Mine", "Kept"));
    ASSERT_TRUE(loadCameraFile(nullptr));
    std::string other = pluginDir + "CommunityAircraftCameras/Vistarig_Other.csv";
    writeFile(other, cameraFileHeader() + row("A", "1", {{43, "Other"}, {46, "0"}}) +
                         row("B", "1", {{46, "1"}}) + row("C", "1", {{43, "Other Plane"}, {46, "2"}}));
    CameraFile file{};
    copyText(file.path, other.c_str());
    analyseCameraFile(&file);
    EXPECT_EQ(file.cameraTotal, 3);
    EXPECT_EQ(file.categoryTotal, 3);
    EXPECT_STREQ(file.aircraft, "Other Plane");
    EXPECT_STREQ(file.author, "Jane Doe ");  // untrimmed, as the browser shows it
    EXPECT_STREQ(cam(0, 0).name, "Kept");

    CameraFile missing{};
    copyText(missing.path, (root + "nowhere.csv").c_str());
    analyseCameraFile(&missing);
    EXPECT_TRUE(logHas("Unable to read " + root + "nowhere.csv"));
}

}  // namespace
