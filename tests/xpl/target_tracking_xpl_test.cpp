// A target-following camera as a new user meets it, through the runner and the built
// .xpl: the default aircraft flies past a stored target while its chase camera, made
// target-following by its command, keeps the target in the middle of the picture (the
// CSV's heading and pitch against the direction worked out here from the two world
// positions, and a marker drawn at the target in a screenshot); then a right-button aim
// places the Free Target on the ground under a red cross, with the simulator paused
// for the aim, and "Save Target Position" writes where it went.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "host/host.h"
#include "host/windows.h"
#include "host/world.h"

namespace fs = std::filesystem;

namespace {

constexpr double kPi = 3.14159265358979323846;
double degrees(double radians) { return radians * 180.0 / kPi; }
double angleGap(double a, double b) {
    double d = std::fmod(std::fabs(a - b), 360.0);
    return d > 180.0 ? 360.0 - d : d;
}

struct Csv {
    std::vector<std::string> names;
    std::vector<std::vector<double>> rows;
    double at(size_t row, const char* name) const {
        for (size_t i = 0; i < names.size(); ++i)
            if (names[i] == name) return rows.at(row).at(i);
        ADD_FAILURE() << "no column " << name;
        return 0;
    }
};

Csv readCsv(const fs::path& path) {
    Csv csv;
    std::ifstream in(path);
    std::string line, cell;
    if (!std::getline(in, line)) return csv;
    std::stringstream header(line);
    while (std::getline(header, cell, ',')) csv.names.push_back(cell);
    while (std::getline(in, line)) {
        std::vector<double> row;
        std::stringstream cells(line);
        while (std::getline(cells, cell, ',')) row.push_back(std::strtod(cell.c_str(), nullptr));
        csv.rows.push_back(row);
    }
    return csv;
}

// Heading (0 north, clockwise) and pitch from a camera to a point, local coordinates.
void directionTo(double cx, double cy, double cz, double px, double py, double pz, double& heading, double& pitch) {
    const double dx = px - cx, dy = py - cy, dz = pz - cz;
    heading = degrees(std::atan2(dx, -dz));
    if (heading < 0) heading += 360.0;
    pitch = degrees(std::atan2(dy, std::hypot(dx, dz)));
}

struct Picture {
    std::vector<uint8_t> rgba;
    int width = 0, height = 0;
    uint32_t pixel(int x, int yTop) const {
        const uint8_t* p = &rgba[(static_cast<size_t>(yTop) * width + x) * 4];
        return (uint32_t(p[0]) << 24) | (uint32_t(p[1]) << 16) | (uint32_t(p[2]) << 8) | p[3];
    }
};

bool magenta(uint32_t c) { return (c >> 24) > 200 && ((c >> 16) & 0xFF) < 60 && ((c >> 8) & 0xFF) > 200; }
bool red(uint32_t c) { return (c >> 24) > 200 && ((c >> 16) & 0xFF) < 60 && ((c >> 8) & 0xFF) < 60; }

TEST(TargetTrackingXpl, AChaseCameraKeepsAStoredTargetCentredAndAnAimPlacesTheFreeTarget) {
    xphost::reset();
    const fs::path work = fs::temp_directory_path() / ("vistarig-targets-" + std::to_string(::getpid()));
    fs::remove_all(work);
    fs::create_directories(work / "Resources/plugins/Vistarig/MyTargets");

    // The stored target stands on the ground ahead and to the left of the default path.
    const double tx = 450, tz = -250;
    double ty = 0;
    ASSERT_TRUE(xphost::terrainHeight(tx, tz, ty));
    double lat, lon, elev;
    xphost::localToWorld(tx, ty, tz, lat, lon, elev);
    char row[200];
    std::snprintf(row, sizeof row, "Mast,2024-01-01 10:00:00,%.9f,%.9f,%.4f\n", lat, lon, elev);
    std::ofstream(work / "Resources/plugins/Vistarig/MyTargets/MyTargets.csv")
        << "Name, Date, Latitude, Longitude, Elevation in Meters\n" << row;
    std::ofstream(work / "Resources/plugins/Vistarig/Vistarig.ini")
        << "PAUSE_ON_FREE_TARGET_AIM 1\nMOUSE_SMOOTHING_FACTOR 1\n"
        // The info panel stands in the middle of a screen whose primary monitor the
        // simulator hasn't told, over the marker and the cross.
        << "ENABLE_SHOW_TARGET_INFORMATION 0\n";
    char marker[160];
    std::snprintf(marker, sizeof marker, "marker %.9f %.9f %.4f\n", lat, lon, elev);

    std::ofstream(work / "targets.scn")
        << "command KVT/Vistarig/Next_Category once\nframes 5\n"  // the chase camera
        << "command KVT/Vistarig/Toggle_Target_Following_Camera once\n"
        << "command KVT/Vistarig/Select_Nearest_Target once\n"
        << "frames 302\n" << marker << "frames 1\nscreenshot tracking.png\n"
        << "command KVT/Vistarig/Select_Free_Target once\nframes 2\n"
        << "get sim/time/paused\nmouse 960 700\nmouse down right\nframes 2\n"
        << "get sim/time/paused\nscreenshot aiming.png\n"
        << "mouse 960 500\nframes 3\nmouse up right\nframes 3\nget sim/time/paused\n"
        << "menu \"Plugins/Vistarig/Save Target Position\"\nframes 2\n"
        << "ui_type \"Save Camera as Target\" \"Target Name\" Aimed\n"
        << "ui_click \"Save Camera as Target\" \"Create Target\"\nframes 2\n";
    std::string command = std::string("'") + VISTARIG_SIM_PATH + "' '" + (work / "targets.scn").string() +
                          "' --work '" + work.string() + "' 2>&1";
    std::FILE* pipe = ::popen(command.c_str(), "r");
    ASSERT_TRUE(pipe);
    std::string output;
    char buffer[4096];
    while (std::fgets(buffer, sizeof buffer, pipe)) output += buffer;
    const int status = ::pclose(pipe);
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << output;

    // 300 frames of the pass: the camera looks straight at the target all the time.
    const Csv csv = readCsv(work / "vistarig-frames.csv");
    ASSERT_GE(csv.rows.size(), 320u);
    double largest = 0;
    for (size_t r = 8; r < 308; ++r) {
        double heading, pitch;
        directionTo(csv.at(r, "camera_x"), csv.at(r, "camera_y"), csv.at(r, "camera_z"), tx, ty, tz, heading, pitch);
        const double off = std::max(angleGap(csv.at(r, "camera_heading"), heading),
                                    angleGap(csv.at(r, "camera_pitch"), pitch));
        largest = std::max(largest, off);
        ASSERT_LT(off, 0.5) << "row " << r;
    }
    // The aircraft passed the target: the camera turned well round.
    EXPECT_GT(angleGap(csv.at(8, "camera_heading"), csv.at(307, "camera_heading")), 40.0);
    std::printf("largest aim error over 300 frames: %.6f degrees\n", largest);

    // The marker at the target sits in the middle of the picture.
    Picture shot;
    std::string error;
    ASSERT_TRUE(xphost::readPng((work / "tracking.png").string(), shot.rgba, shot.width, shot.height, &error)) << error;
    double sx = 0, sy = 0;
    int count = 0;
    for (int y = 0; y < shot.height; ++y)
        for (int x = 0; x < shot.width; ++x)
            if (magenta(shot.pixel(x, y))) sx += x + 0.5, sy += y + 0.5, ++count;
    ASSERT_GT(count, 20);
    EXPECT_NEAR(sx / count, shot.width / 2.0, 5.0);
    EXPECT_NEAR(sy / count, shot.height / 2.0, 5.0);
    std::printf("marker centroid %.2f %.2f of %d pixels\n", sx / count, sy / count, count);

    // The aim: paused while the button is down, the red cross at the centre, resumed after.
    std::vector<int> paused;
    for (size_t at = output.find("sim/time/paused = "); at != std::string::npos;
         at = output.find("sim/time/paused = ", at + 1))
        paused.push_back(std::atoi(output.c_str() + at + 18));
    ASSERT_EQ(paused.size(), 3u) << output;
    EXPECT_EQ(paused[0], 0);
    EXPECT_EQ(paused[1], 1);
    EXPECT_EQ(paused[2], 0);
    Picture aiming;
    ASSERT_TRUE(xphost::readPng((work / "aiming.png").string(), aiming.rgba, aiming.width, aiming.height, &error));
    const int cx = aiming.width / 2, cy = aiming.height / 2;
    int crossPixels = 0;
    for (int y = cy - 12; y <= cy + 12; ++y)
        for (int x = cx - 12; x <= cx + 12; ++x) crossPixels += red(aiming.pixel(x, y));
    EXPECT_GT(crossPixels, 40);
    EXPECT_TRUE(red(aiming.pixel(cx + 8, cy)));
    EXPECT_TRUE(red(aiming.pixel(cx, cy + 8)));
    EXPECT_FALSE(red(aiming.pixel(cx + 8, cy + 8)));

    // The saved Free Target lies on the ground where the last aimed pose looked, and the
    // camera looks at it from then on.
    std::ifstream targets(work / "Resources/plugins/Vistarig/MyTargets/MyTargets.csv");
    std::string line;
    double alat = NAN, alon = NAN, aelev = NAN;
    while (std::getline(targets, line))
        if (line.rfind("Aimed,", 0) == 0) std::sscanf(line.c_str(), "Aimed,%*[^,],%lf,%lf,%lf", &alat, &alon, &aelev);
    ASSERT_FALSE(std::isnan(alat)) << output;
    double ax, ay, az, ground;
    xphost::worldToLocal(alat, alon, aelev, ax, ay, az);
    ASSERT_TRUE(xphost::terrainHeight(ax, az, ground));
    EXPECT_NEAR(ay, ground + 1.0, 0.05);
    // Frames counted through the script: row 314 is the last one with the button down.
    const size_t aimedRow = 314;
    EXPECT_LT(csv.at(aimedRow, "camera_pitch"), -30.0) << "the mouse turned the view down, folded to -180..180";
    double heading, pitch;
    directionTo(csv.at(aimedRow, "camera_x"), csv.at(aimedRow, "camera_y"), csv.at(aimedRow, "camera_z"), ax, ground,
                az, heading, pitch);
    EXPECT_LT(angleGap(csv.at(aimedRow, "camera_heading"), heading), 0.5);
    EXPECT_LT(angleGap(csv.at(aimedRow, "camera_pitch"), pitch), 0.5);
    const size_t last = csv.rows.size() - 1;
    directionTo(csv.at(last, "camera_x"), csv.at(last, "camera_y"), csv.at(last, "camera_z"), ax, ay, az, heading,
                pitch);
    EXPECT_LT(angleGap(csv.at(last, "camera_heading"), heading), 0.5);
    EXPECT_LT(angleGap(csv.at(last, "camera_pitch"), pitch), 0.5);
    // The pictures stay beside the other tests' screenshots, to be looked at.
    std::error_code ignored;
    fs::create_directories(VISTARIG_SCREENSHOT_DIR, ignored);
    for (const char* name : {"tracking.png", "aiming.png"})
        fs::copy_file(work / name, fs::path(VISTARIG_SCREENSHOT_DIR) / (std::string("target-") + name),
                      fs::copy_options::overwrite_existing, ignored);
    if (!HasFailure()) fs::remove_all(work);
}

}  // namespace
