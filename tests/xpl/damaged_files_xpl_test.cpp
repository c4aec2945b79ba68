// Camera files as users really keep them, loaded by the built Vistarig.xpl through
// the host: after the simulator's Quick Look store and "Save All", either every camera
// of the file is in the saved file, or the file's original bytes are in the copy that
// the log names. A file that yields no camera leaves the simulator's pilot's eye and is
// read once, not on every frame.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>

#include "host/host.h"

namespace fs = std::filesystem;

namespace {

std::string readFile(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

size_t occurrences(const std::string& text, const std::string& part) {
    size_t count = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
    return count;
}

struct DamagedFile {
    const char* kind;
    std::string bytes;
    // What a whole read writes back (names, values); empty where the file can't be
    // read whole. The Quick Look store gives the current camera view ID 2, and a pitch
    // of -5 is written as 355.
    std::vector<std::string> rows;
};

std::vector<DamagedFile> damagedFiles() {
    const std::string header =
        "Category Name,Camera Name,View ID,X,Y,Z,heading,pitch,TrackIR Enabled,Smooth Transition\n";
    return {
        {"semicolon export",
         "Category Name;Camera Name;View ID;X;Y;Z;heading;pitch;TrackIR Enabled;Smooth Transition\r\n"
         "Cockpit;Left Seat;1;-0,35;1,05;-2,4;15;-5;FALSE;TRUE\r\n"
         "Outside;Chase;2;0;3;25;0;0;FALSE;FALSE\r\n",
         {"\nCockpit,Left Seat,", ",-0.350000,1.050000,-2.400000,15.000000,355.000000,FALSE,TRUE,",
          "\nOutside,Chase,", ",0.000000,3.000000,25.000000,"}},
        {"short row mid-file",
         header + "Cockpit,Left Seat,1,-0.35,1.05,-2.4,15,-5,FALSE,FALSE\n" + "Cockpit,Half,2,0.35,1.05\n" +
             "Outside,Chase,3,0,3,25,0,0,FALSE,FALSE\n",
         {}},
        {"byte order mark",
         "\xEF\xBB\xBF" + header + "Cockpit,Left Seat,1,-0.35,1.05,-2.4,15,-5,FALSE,FALSE\n" +
             "Outside,Chase,2,0,3,25,0,0,FALSE,FALSE\n",
         {"\nCockpit,Left Seat,", "\nOutside,Chase,"}},
        {"quoted fields",
         "\"Category Name\",\"Camera Name\",\"View ID\",\"X\",\"Y\",\"Z\",\"heading\",\"pitch\",\"TrackIR "
         "Enabled\",\"Smooth Transition\"\n"
         "\"Cockpit\",\"Left Seat\",\"1\",\"-0.35\",\"1.05\",\"-2.4\",\"15\",\"-5\",\"TRUE\",\"TRUE\"\n"
         "\"Outside\",\"Chase\",\"2\",\"0\",\"3\",\"25\",\"0\",\"0\",\"FALSE\",\"FALSE\"\n",
         {"\nCockpit,Left Seat,", ",-0.350000,1.050000,-2.400000,15.000000,355.000000,TRUE,TRUE,",
          "\nOutside,Chase,", ",0.000000,3.000000,25.000000,"}},
        {"first row short", header + "Cockpit;Left Seat;1;-0,35;1,05\n", {}},
    };
}

class DamagedFilesXplTest : public ::testing::Test {
protected:
    fs::path root;
    fs::path cameraFile;
    int plugin = -1;

    void SetUp() override {
        xphost::reset();
        root = fs::temp_directory_path() / ("vistarig-damaged-" + std::to_string(::getpid()) + "-" +
                                            ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(root);
        fs::create_directories(root / "Aircraft/Test/Glider");
        fs::create_directories(root / "Resources/plugins/Vistarig/lin_x64");
        fs::create_directories(root / "Resources/plugins/Vistarig/AircraftCameraBackups");
        fs::create_directories(root / "Output/preferences");
        std::ofstream(root / "Aircraft/Test/Glider/Glider.acf") << "I\n1100 Version\n";
        fs::copy_file(VISTARIG_XPL_PATH, root / "Resources/plugins/Vistarig/lin_x64/Vistarig.xpl");
        cameraFile = root / "Aircraft/Test/Glider/Vistarig_Glider.csv";
        xphost::setRoot(root.string());
        xphost::setUserAircraft("Aircraft/Test/Glider/Glider.acf");
        xphost::freezeAircraft(true);
    }

    void TearDown() override {
        xphost::stopAllPlugins();
        EXPECT_EQ(xphost::threadViolationCount(), 0);
        EXPECT_TRUE(xphost::leaks().empty());
        fs::remove_all(root);
    }

    void startWith(const std::string& bytes) {
        std::ofstream(cameraFile, std::ios::binary) << bytes;
        plugin = xphost::loadPlugin((root / "Resources/plugins/Vistarig/lin_x64/Vistarig.xpl").string());
        ASSERT_GE(plugin, 0) << xphost::logTail(20);
        ASSERT_TRUE(xphost::enablePlugin(plugin));
        xphost::sendPlaneLoaded(0);
        xphost::runFrames(60);
    }

    std::string keptCopyFromLog() const {
        std::smatch match;
        std::string log = xphost::logText();
        static const std::regex line("its original is kept as ([^\n]+)");
        return std::regex_search(log, match, line) ? match[1].str() : std::string();
    }
};

TEST_F(DamagedFilesXplTest, EveryDamagedFileIsReadWholeOrKeptBeforeItIsWrittenOver) {
    for (const DamagedFile& damaged : damagedFiles()) {
        SCOPED_TRACE(damaged.kind);
        xphost::stopAllPlugins();
        xphost::reset();
        xphost::setRoot(root.string());
        xphost::setUserAircraft("Aircraft/Test/Glider/Glider.acf");
        xphost::freezeAircraft(true);
        for (const auto& entry : fs::directory_iterator(root / "Resources/plugins/Vistarig/AircraftCameraBackups"))
            fs::remove(entry.path());
        startWith(damaged.bytes);

        // What the user then does: the simulator's Quick Look store, then "Save All".
        ASSERT_TRUE(xphost::runCommand("sim/view/quick_look_1_mem", xphost::Phase::Once));
        xphost::runFrames(2);
        ASSERT_TRUE(xphost::runCommand("KVT/Vistarig/Save_All_Cameras", xphost::Phase::Once));
        xphost::runFrames(2);
        std::string saved = readFile(cameraFile);

        std::string kept = keptCopyFromLog();
        if (!damaged.rows.empty()) {
            EXPECT_TRUE(kept.empty()) << "read whole, nothing to keep: " << kept;
            for (const std::string& row : damaged.rows)
                EXPECT_NE(saved.find(row), std::string::npos) << row << "\n" << saved;
            EXPECT_EQ(occurrences(saved, "\n"), 3u) << "the header and both cameras";
            EXPECT_EQ(saved.find("\xEF\xBB\xBF"), std::string::npos);
        } else {
            ASSERT_FALSE(kept.empty()) << xphost::logTail(10);
            EXPECT_EQ(readFile(kept), damaged.bytes);
            EXPECT_NE(kept.find("/AircraftCameraBackups/Test_Glider_Vistarig_Glider.csv.unread-"), std::string::npos);
            bool announced = false;
            for (const std::string& said : xphost::spoken())
                announced |= said.find("read only in part") != std::string::npos;
            EXPECT_TRUE(announced);
        }
    }
}

TEST_F(DamagedFilesXplTest, AFileWithoutACameraLeavesThePilotsEyeAndIsReadOnce) {
    double eye[3] = {xphost::getValue("sim/graphics/view/pilots_head_x"),
                     xphost::getValue("sim/graphics/view/pilots_head_y"),
                     xphost::getValue("sim/graphics/view/pilots_head_z")};
    std::string bytes = "Category Name;Camera Name;View ID\nCockpit;Left Seat;1\n";
    startWith(bytes);
    xphost::runFrames(240);
    EXPECT_EQ(occurrences(xphost::logText(), "does not have the minimum number of camera parameters"), 1u)
        << "read once, not on every frame";
    EXPECT_EQ(readFile(cameraFile), bytes) << "nothing written until the user saves";
    EXPECT_NEAR(xphost::getValue("sim/graphics/view/pilots_head_x"), eye[0], 1e-5);
    EXPECT_NEAR(xphost::getValue("sim/graphics/view/pilots_head_y"), eye[1], 1e-5);
    EXPECT_NEAR(xphost::getValue("sim/graphics/view/pilots_head_z"), eye[2], 1e-5);
    EXPECT_FALSE(xphost::cameraControlled());
    EXPECT_EQ(xphost::viewType(), xphost::viewCockpit3d);
}

TEST_F(DamagedFilesXplTest, EditsNeverSavedAreKeptWhenAnotherAircraftLoads) {
    startWith("Category Name,Camera Name,View ID,X,Y,Z,heading,pitch,TrackIR Enabled,Smooth Transition\n"
              "Cockpit,Left Seat,1,-0.35,1.05,-2.4,15,-5,FALSE,FALSE\n");
    // Move the camera by the plug-in's own command for a while: an edit in memory.
    ASSERT_TRUE(xphost::runCommand("KVT/Vistarig/Pan_Left", xphost::Phase::Begin));
    xphost::runFrames(30);
    ASSERT_TRUE(xphost::runCommand("KVT/Vistarig/Pan_Left", xphost::Phase::End));
    xphost::runFrames(2);

    fs::create_directories(root / "Aircraft/Test/Cub");
    std::ofstream(root / "Aircraft/Test/Cub/Cub.acf") << "I\n1100 Version\n";
    xphost::setUserAircraft("Aircraft/Test/Cub/Cub.acf");
    xphost::sendPlaneLoaded(0);
    xphost::runFrames(2);
    fs::path autosave = root / "Resources/plugins/Vistarig/AircraftCameraBackups/Test_Glider_Vistarig_Glider.csv.autosave";
    ASSERT_TRUE(fs::exists(autosave)) << xphost::logTail(10);
    EXPECT_NE(readFile(autosave).find("Cockpit,Left Seat,1,"), std::string::npos);
    EXPECT_NE(xphost::logText().find("were kept as " + autosave.string()), std::string::npos);
}

}  // namespace
