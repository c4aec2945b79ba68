// A visit to Syracuse as a user makes it, through the runner, the real .xpl and the
// panel driver (tests/scenarios/airport_visit.scn): the airport's file and cameras
// made from the Control Panel, saved and read back, the first gate camera looking at
// the parked aircraft, and the automatic mode picking the camera nearest to the
// aircraft after a 2 km taxi. The geometry is worked out here from the saved file.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

struct CameraLine {
    double x, y, z, heading, pitch;
};

// "camera controlled x X y Y z Z pitch P heading H ..." lines of the runner's output.
std::vector<CameraLine> cameraLines(const std::string& output) {
    std::vector<CameraLine> lines;
    std::istringstream in(output);
    std::string line;
    while (std::getline(in, line)) {
        CameraLine c{};
        if (std::sscanf(line.c_str(), "camera controlled x %lf y %lf z %lf pitch %lf heading %lf", &c.x, &c.y, &c.z,
                        &c.pitch, &c.heading) == 5)
            lines.push_back(c);
    }
    return lines;
}

double printed(const std::string& output, const std::string& name) {
    size_t at = output.find(name + " = ");
    return at == std::string::npos ? NAN : std::strtod(output.c_str() + at + name.size() + 3, nullptr);
}

double degrees(double radians) { return radians * 180.0 / 3.14159265358979323846; }
double angleBetween(double a, double b) {
    double d = std::fmod(std::fabs(a - b), 360.0);
    return d > 180.0 ? 360.0 - d : d;
}

TEST(AirportVisit, CamerasMadeFromThePanelFollowTheAircraftAroundSyracuse) {
    fs::path work = fs::temp_directory_path() / ("vistarig-visit-" + std::to_string(::getpid()));
    fs::remove_all(work);
    std::string command = std::string("'") + VISTARIG_SIM_PATH + "' '" + VISTARIG_SOURCE_DIR +
                          "/tests/scenarios/airport_visit.scn' --work '" + work.string() + "' --no-draw 2>&1";
    std::FILE* pipe = ::popen(command.c_str(), "r");
    ASSERT_TRUE(pipe);
    std::string output;
    char buffer[4096];
    while (std::fgets(buffer, sizeof buffer, pipe)) output += buffer;
    int status = ::pclose(pipe);
    ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << output;

    // The file as saved: categories and cameras with their local positions.
    std::ifstream file(work / "Resources/plugins/Vistarig/MyAirportCameras/KSYR.csv");
    std::string row;
    std::vector<std::string> categories;
    struct Saved {
        std::string category, name;
        double x, y, z, pitch;
    };
    std::vector<Saved> cameras;
    while (std::getline(file, row)) {
        std::vector<std::string> cells;
        std::stringstream split(row);
        for (std::string cell; std::getline(split, cell, ',');) cells.push_back(cell);
        if (cells.size() < 36 || cells[0] == "Category Name") continue;
        if (categories.empty() || categories.back() != cells[0]) categories.push_back(cells[0]);
        if (cells[35] == "TRUE")  // free cameras only
            cameras.push_back({cells[0], cells[1], std::stod(cells[3]), std::stod(cells[4]), std::stod(cells[5]),
                               std::stod(cells[7])});
    }
    ASSERT_GE(categories.size(), 4u);
    EXPECT_EQ(categories[0], "Starting Locations");
    EXPECT_EQ(categories[1], "View Points");
    EXPECT_EQ(categories[2], "Runways");
    EXPECT_EQ(categories[3], "Signs 0");
    ASSERT_GE(cameras.size(), 2u);
    EXPECT_EQ(cameras[1].name, "Gate 3 South A");
    EXPECT_NEAR(cameras[1].pitch, -10.0, 1e-4) << "a starting-location camera is made with a pitch of -10";

    // Read back, the first gate camera looks at the parked aircraft, which stands at
    // the local origin: heading and pitch within half a degree of the line between them.
    std::vector<CameraLine> seen = cameraLines(output);
    ASSERT_EQ(seen.size(), 2u) << output;
    const CameraLine& gate = seen[0];
    EXPECT_NEAR(gate.x, cameras[0].x, 0.01);
    EXPECT_NEAR(gate.z, cameras[0].z, 0.01);
    double bearing = degrees(std::atan2(-gate.x, gate.z));
    double elevation = degrees(std::atan2(-gate.y, std::hypot(gate.x, gate.z)));
    EXPECT_LT(angleBetween(gate.heading, bearing < 0 ? bearing + 360 : bearing), 0.5);
    EXPECT_LT(angleBetween(gate.pitch, elevation < 0 ? elevation + 360 : elevation), 0.5);

    // After the taxi, within 2 s of simulated time: the free camera nearest to the
    // aircraft by the sum of the axes' distances.
    double ax = printed(output, "sim/flightmodel/position/local_x");
    double ay = printed(output, "sim/flightmodel/position/local_y");
    double az = printed(output, "sim/flightmodel/position/local_z");
    ASSERT_GT(std::hypot(ax, az), 1900.0) << "a taxi of 2 km";
    const Saved* nearest = nullptr;
    double best = 1e18;
    for (const Saved& c : cameras) {
        double d = std::fabs(c.x - ax) + std::fabs(c.y - ay) + std::fabs(c.z - az);
        if (d < best) best = d, nearest = &c;
    }
    ASSERT_TRUE(nearest);
    EXPECT_NEAR(seen[1].x, nearest->x, 0.01) << nearest->category << " / " << nearest->name;
    EXPECT_NEAR(seen[1].z, nearest->z, 0.01) << nearest->category << " / " << nearest->name;
    fs::remove_all(work);
}

}  // namespace
