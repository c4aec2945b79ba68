// The AI perspective as a user flies it, through the runner (`vistarig-sim`) and the
// built .xpl: four traffic aircraft of the stand-in traffic plug-in, an outside camera
// hung on them one after another by distance, a plane renumbered under the view, and
// the traffic leaving. The per-frame CSV is checked against the camera's offset carried
// through each plane's own position and attitude, computed here.
//
// VISTARIG_TEST_XPL, when set, names another build of the plug-in to fly.
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

constexpr double kPi = 3.14159265358979323846;
double radians(double degrees) { return degrees * kPi / 180.0; }

struct Vec {
    double x = 0, y = 0, z = 0;
};

// An offset in an object's frame (x right, y up, z aft) carried into the simulator's
// local frame (x east, y up, z south) by the object's roll, then pitch, then heading.
Vec carry(Vec v, double headingDeg, double pitchDeg, double rollDeg) {
    const double r = radians(rollDeg), p = radians(pitchDeg), h = radians(headingDeg);
    Vec a{v.x * std::cos(r) + v.y * std::sin(r), v.y * std::cos(r) - v.x * std::sin(r), v.z};
    Vec b{a.x, a.y * std::cos(p) - a.z * std::sin(p), a.y * std::sin(p) + a.z * std::cos(p)};
    return {b.x * std::cos(h) - b.z * std::sin(h), b.y, b.x * std::sin(h) + b.z * std::cos(h)};
}

double angleGap(double a, double b) {
    double d = std::fmod(std::fabs(a - b), 360.0);
    return d > 180.0 ? 360.0 - d : d;
}

struct Frames {
    std::vector<std::string> names;
    std::vector<std::vector<double>> rows;
    double at(size_t row, const std::string& name) const {
        for (size_t i = 0; i < names.size(); ++i)
            if (names[i] == name) return rows.at(row).at(i);
        ADD_FAILURE() << "no column " << name;
        return 0;
    }
    size_t size() const { return rows.size(); }
};

// One plane of the traffic table in one frame.
struct Plane {
    int id = 0;
    Vec at;
    double psi = 0, the = 0, phi = 0;
};

std::vector<Plane> planesOf(const Frames& f, size_t row) {
    std::vector<Plane> planes;
    for (int place = 0; place < 6; ++place) {
        const std::string p = "traffic" + std::to_string(place) + "_";
        const int id = static_cast<int>(f.at(row, p + "id"));
        if (id == 0) break;
        planes.push_back({id, {f.at(row, p + "x"), f.at(row, p + "y"), f.at(row, p + "z")}, f.at(row, p + "psi"),
                          f.at(row, p + "the"), f.at(row, p + "phi")});
    }
    return planes;
}

const Plane* planeWithId(const std::vector<Plane>& planes, int id) {
    for (const Plane& p : planes)
        if (p.id == id) return &p;
    return nullptr;
}

// The camera of this frame stands at the offset from the object and looks along its
// attitude (the camera's own heading and pitch are 0).
void expectRiding(const Frames& f, size_t row, Vec origin, double psi, double the, double phi, Vec offset) {
    const Vec r = carry(offset, psi, the, phi);
    EXPECT_NEAR(f.at(row, "camera_x"), origin.x + r.x, 1e-3) << "row " << row;
    EXPECT_NEAR(f.at(row, "camera_y"), origin.y + r.y, 1e-3) << "row " << row;
    EXPECT_NEAR(f.at(row, "camera_z"), origin.z + r.z, 1e-3) << "row " << row;
    EXPECT_LT(angleGap(f.at(row, "camera_heading"), psi), 0.01) << "row " << row;
    EXPECT_NEAR(f.at(row, "camera_pitch"), the, 0.01) << "row " << row;
    EXPECT_NEAR(f.at(row, "camera_roll"), phi, 0.01) << "row " << row;
}

class TrafficXplTest : public ::testing::Test {
protected:
    fs::path work;
    std::string output;
    int status = -1;
    Frames frames;

    void SetUp() override {
        work = fs::temp_directory_path() / ("vistarig-traffic-" + std::to_string(::getpid()) + "-" +
                                            ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(work);
        fs::create_directories(work / "Aircraft/Ride");
        std::ofstream(work / "Aircraft/Ride/Ride.acf") << "I\n1100 Version\n";
        // A cockpit camera, then an outside one 4 m up and 30 m behind its object.
        std::ofstream(work / "Aircraft/Ride/Vistarig_Ride.csv")
            << "Category Name,Camera Name,View ID,X,Y,Z,heading,pitch,TrackIR Enabled,Smooth Transition,HeadShake,"
               "RetainMouseLookPosition, Enable Temporary Positioning,Enable Linear Transition,Linear Transition "
               "Frames,Enable Auto Advance\n"
            << row("Cockpit,Seat,1,0,1,0,0,0", "FALSE") << row("Outside,Ride,2,0,4,30,0,0", "TRUE");
    }

    void TearDown() override {
        if (!HasFailure()) fs::remove_all(work);
    }

    // A 70-column row: the first eight given, External as told, the rest defaults.
    static std::string row(const std::string& first, const char* external) {
        std::string r = first +
                        ",FALSE,FALSE,FALSE,FALSE,FALSE,FALSE,0,FALSE,FALSE,0,0,0,0,0,0,1,60,FALSE,FALSE,FALSE,FALSE,0,0,"
                        "FALSE,FALSE,";
        r += external;
        r += ",FALSE,FALSE,1,FALSE,0,0,FALSE,2.4.3,60,Ride,Tests,2024-01-01 12:00:00,0,FALSE,0,0,0,FALSE,0,FALSE,"
             "FALSE,FALSE,FALSE,0,0,FALSE,FALSE,FALSE,FALSE,FALSE,0,FALSE,0,0,0,FALSE\n";
        return r;
    }

    // A value a `get` line printed ("sim/flightmodel/position/NAME = VALUE").
    double got(const std::string& name) const {
        const std::string key = "sim/flightmodel/position/" + name + " = ";
        const size_t at = output.find(key);
        if (at == std::string::npos) {
            ADD_FAILURE() << "no get of " << name;
            return 0;
        }
        return std::strtod(output.c_str() + at + key.size(), nullptr);
    }

    void fly(const std::string& scenario) {
        std::ofstream(work / "ride.scn") << "aircraft " << (work / "Aircraft/Ride/Ride.acf").string() << "\n"
                                         << scenario;
        std::string command = std::string("'") + VISTARIG_SIM_PATH + "' '" + (work / "ride.scn").string() +
                              "' --work '" + work.string() + "' --no-draw";
        if (const char* xpl = std::getenv("VISTARIG_TEST_XPL")) command += std::string(" --xpl '") + xpl + "'";
        command += " 2>&1";
        std::FILE* pipe = ::popen(command.c_str(), "r");
        ASSERT_NE(pipe, nullptr);
        char buffer[4096];
        while (std::fgets(buffer, sizeof buffer, pipe)) output += buffer;
        int result = ::pclose(pipe);
        status = WIFEXITED(result) ? WEXITSTATUS(result) : -1;
        std::ifstream in(work / "vistarig-frames.csv");
        std::string line, cell;
        ASSERT_TRUE(std::getline(in, line)) << output;
        std::stringstream header(line);
        while (std::getline(header, cell, ',')) frames.names.push_back(cell);
        while (std::getline(in, line)) {
            std::vector<double> values;
            std::stringstream cells(line);
            while (std::getline(cells, cell, ',')) values.push_back(std::strtod(cell.c_str(), nullptr));
            frames.rows.push_back(values);
        }
    }
};

TEST_F(TrafficXplTest, TheCameraRidesEachPlaneByDistanceThroughRenumberingUntilTheLastLeaves) {
    // The user's aircraft holds still at (0, 1000, 0), heading 90, nose 2 up, 2 right
    // wing down; the four planes fly their own paths, nearest to farthest in the order
    // they join, some turning (and so banking) and one climbing.
    fly("aircraft_freeze\n"
        "get sim/flightmodel/position/local_x\nget sim/flightmodel/position/local_y\n"
        "get sim/flightmodel/position/local_z\nget sim/flightmodel/position/psi\n"
        "get sim/flightmodel/position/theta\nget sim/flightmodel/position/phi\n"
        "traffic tcas\n"
        "traffic_join UAL1 101 700 1000 -300 90 70 2\n"
        "traffic_join DAL2 102 -1500 1100 500 0 65\n"
        "traffic_join SWA3 103 2500 900 2000 180 75 -1.5 3\n"
        "traffic_join AAL4 104 -4000 1200 -3000 270 80\n"
        "frames 5\n"
        "command KVT/Vistarig/Next_Category once\n"          // row 5: the outside camera
        "frames 5\n"
        "command KVT/Vistarig/Toggle_AI_Perspective once\n"  // row 10: UAL1, the nearest
        "frames 10\n"
        "command KVT/Vistarig/Select_Next_Distant_AI_Plane once\nframes 10\n"      // 20: DAL2
        "command KVT/Vistarig/Select_Next_Distant_AI_Plane once\nframes 10\n"      // 30: SWA3
        "command KVT/Vistarig/Select_Next_Distant_AI_Plane once\nframes 10\n"      // 40: AAL4
        "command KVT/Vistarig/Select_Previous_Distant_AI_Plane once\nframes 10\n"  // 50: SWA3
        "command KVT/Vistarig/Select_Previous_Distant_AI_Plane once\nframes 10\n"  // 60: DAL2
        "command KVT/Vistarig/Select_Previous_Distant_AI_Plane once\nframes 10\n"  // 70: UAL1
        "traffic_slot UAL1 3\nframes 10\n"                                         // 80: renumbered
        "traffic_leave DAL2\ntraffic_leave SWA3\ntraffic_leave AAL4\nframes 10\n"  // 90: UAL1 alone
        "speech\nprint -- the last plane leaves\n"
        "traffic_leave UAL1\nframes 10\n"                                          // 100: the user's
        "speech\n");
    ASSERT_EQ(status, 0) << output;
    const Frames& f = frames;
    ASSERT_EQ(f.size(), 110u);

    // Which plane each stretch rides, and the distance rank the steps put it at.
    const int ridden[10] = {101, 102, 103, 104, 103, 102, 101, 101, 101, 0};
    const Vec user{got("local_x"), got("local_y"), got("local_z")};
    const double psi = got("psi"), the = got("theta"), phi = got("phi");
    const Vec offset{0, 4, 30};
    for (int stretch = 0; stretch < 10; ++stretch) {
        const size_t first = 10 + 10 * static_cast<size_t>(stretch);
        for (size_t r = first; r < first + 10; ++r) {
            const std::vector<Plane> planes = planesOf(f, r);
            if (ridden[stretch] == 0) {
                EXPECT_TRUE(planes.empty()) << "row " << r;
                expectRiding(f, r, user, psi, the, phi, offset);
                continue;
            }
            const Plane* plane = planeWithId(planes, ridden[stretch]);
            ASSERT_NE(plane, nullptr) << "row " << r;
            expectRiding(f, r, plane->at, plane->psi, plane->the, plane->phi, offset);
        }
        if (stretch > 6) continue;
        // The plane the steps chose has the rank they claim: the planes keep their
        // order by distance from the aircraft throughout.
        std::vector<Plane> planes = planesOf(f, first);
        std::vector<std::pair<double, int>> byDistance;
        for (const Plane& p : planes)
            byDistance.emplace_back(std::hypot(p.at.x - user.x, p.at.y - user.y, p.at.z - user.z), p.id);
        std::sort(byDistance.begin(), byDistance.end());
        const int rank[7] = {0, 1, 2, 3, 2, 1, 0};
        EXPECT_EQ(byDistance.at(static_cast<size_t>(rank[stretch])).second, ridden[stretch]) << "stretch " << stretch;
    }
    // The renumbered plane really moved: UAL1 is last in the table there.
    EXPECT_EQ(f.at(85, "traffic3_id"), 101);
    EXPECT_EQ(f.at(95, "traffic0_id"), 101);
    // The banked and the climbing plane were ridden with their attitude.
    EXPECT_GT(std::fabs(f.at(15, "traffic0_phi")), 5.0);
    // Back on the user's aircraft without a word: nothing more was spoken.
    const size_t marker = output.find("the last plane leaves");
    ASSERT_NE(marker, std::string::npos) << output;
    auto spokenLines = [](const std::string& text) {
        size_t n = 0;
        for (size_t at = text.find("spoken: "); at != std::string::npos; at = text.find("spoken: ", at + 1)) ++n;
        return n;
    };
    EXPECT_EQ(spokenLines(output.substr(marker)), spokenLines(output.substr(0, marker)));
}

}  // namespace
