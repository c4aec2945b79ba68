// A new user's way through the runner and the real .xpl
// (tests/scenarios/quick_look_import.scn): an aircraft with Quick Look views and no
// camera file gets them as cameras, the simulator's Quick Look 2 key then draws from
// that view (seen in the per-frame CSV), and a backup imported through the file
// selector becomes the aircraft's set, row for row.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

std::vector<std::string> cells(const std::string& row) {
    std::vector<std::string> out;
    std::stringstream split(row);
    for (std::string cell; std::getline(split, cell, ',');) out.push_back(cell);
    return out;
}

// Category, name, view ID and pose of every camera row, in file order.
std::vector<std::string> cameraRows(const fs::path& path) {
    std::ifstream file(path);
    std::vector<std::string> rows;
    for (std::string row; std::getline(file, row);) {
        std::vector<std::string> c = cells(row);
        if (c.size() < 8 || c[0] == "Category Name") continue;
        std::string key = c[0] + "|" + c[1] + "|" + c[2];
        for (int i = 3; i < 8; ++i) {
            double value = std::stod(c[i]);
            if (i >= 6 && value < 0) value += 360.0;  // angles are kept from 0 to 360
            key += "|" + std::to_string(std::lround(value * 1000));
        }
        rows.push_back(key);
    }
    return rows;
}

TEST(QuickLookImport, QuickLookViewsBecomeCamerasAndABackupComesBackThroughTheFileSelector) {
    fs::path work = fs::temp_directory_path() / ("vistarig-quicklook-" + std::to_string(::getpid()));
    fs::remove_all(work);
    const std::string command = std::string("'") + VISTARIG_SIM_PATH + "' '" + VISTARIG_SOURCE_DIR +
                                "/tests/scenarios/quick_look_import.scn' --work '" + work.string() + "' 2>&1";
    std::FILE* pipe = ::popen(command.c_str(), "r");
    ASSERT_TRUE(pipe);
    std::string output;
    char buffer[4096];
    while (std::fgets(buffer, sizeof buffer, pipe)) output += buffer;
    const int status = ::pclose(pipe);
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << output;

    // The frames: once Quick Look 2 was pressed, the head stands at that view's eye and
    // looks its way (heading 315, pitch -5), as the preferences file has it.
    std::ifstream csv(work / "vistarig-frames.csv");
    std::string header;
    ASSERT_TRUE(std::getline(csv, header));
    std::map<std::string, size_t> column;
    std::vector<std::string> names = cells(header);
    for (size_t i = 0; i < names.size(); ++i) column[names[i]] = i;
    for (const char* name : {"head_x", "head_y", "head_z", "head_psi", "head_the", "view_type"})
        ASSERT_TRUE(column.count(name)) << name;
    int atQuickLook = 0;
    for (std::string row; std::getline(csv, row);) {
        std::vector<std::string> c = cells(row);
        auto value = [&](const char* name) { return std::stod(c[column[name]]); };
        if (std::fabs(value("head_x") - 0.3) < 1e-3 && std::fabs(value("head_y") - 1.0) < 1e-3 &&
            std::fabs(value("head_z") - 0.1) < 1e-3) {
            ++atQuickLook;
            EXPECT_NEAR(std::fmod(value("head_psi") + 360.0, 360.0), 315.0, 0.01);
            EXPECT_NEAR(value("head_the"), -5.0, 0.01);
            EXPECT_EQ(value("view_type"), 1026) << "the 3-D cockpit";
        }
    }
    EXPECT_GE(atQuickLook, 10) << "the frames after the Quick Look key";

    // The backup's cameras are the aircraft's now, saved in its own file.
    const fs::path backup =
        work / "Resources/plugins/Vistarig/AircraftCameraBackups/Laminar Research_Cessna 172 SP_Vistarig_Cessna_172SP.csv";
    const fs::path own = work / "Aircraft/Laminar Research/Cessna 172 SP/Vistarig_Cessna_172SP.csv";
    const std::vector<std::string> expected = cameraRows(backup);
    ASSERT_EQ(expected.size(), 15u);
    EXPECT_EQ(cameraRows(own), expected);
    EXPECT_NE(output.find("file-selector.png"), std::string::npos);
    fs::remove_all(work);
}

}  // namespace
