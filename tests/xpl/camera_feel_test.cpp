// How the cameras feel to a user, flown through the runner (`vistarig-sim`) with the
// built .xpl: each case writes an aircraft with its camera file and a scenario, runs
// the runner, and checks the per-frame CSV against geometry computed here: turns by
// the key's angle, outside cameras that centre their subject, transitions and keys
// that never jump, mouse look under a head tracker, one step per command, smooth
// chains without a kink, delays counted in frames.
//
// VISTARIG_TEST_XPL, when set, names another build of the plug-in to fly.
#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

constexpr double kPi = 3.14159265358979323846;
double radians(double degrees) { return degrees * kPi / 180.0; }
double degrees(double radians) { return radians * 180.0 / kPi; }

struct Vec {
    double x = 0, y = 0, z = 0;
};
Vec operator-(Vec a, Vec b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
Vec operator+(Vec a, Vec b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
Vec operator*(Vec a, double k) { return {a.x * k, a.y * k, a.z * k}; }
double length(Vec a) { return std::sqrt(a.x * a.x + a.y * a.y + a.z * a.z); }
double dot(Vec a, Vec b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

// The simulator's local frame: x east, y up, z south. Heading 0 looks north (-z),
// heading 90 east (+x); positive pitch looks up.
Vec lookDirection(double headingDeg, double pitchDeg) {
    double h = radians(headingDeg), p = radians(pitchDeg);
    return {std::sin(h) * std::cos(p), std::sin(p), -std::cos(h) * std::cos(p)};
}

double angleBetween(Vec a, Vec b) {
    double c = dot(a, b) / (length(a) * length(b));
    return degrees(std::acos(std::fmax(-1.0, std::fmin(1.0, c))));
}

double angleGap(double a, double b) {
    double d = std::fmod(std::fabs(a - b), 360.0);
    return d > 180.0 ? 360.0 - d : d;
}

// A camera row of the 70-column file: the runner's default cockpit row with some
// columns replaced.
std::string cameraRow(const std::map<int, std::string>& columns) {
    static const char* const base =
        "Cockpit,Camera,1,0,1,0,0,0,FALSE,FALSE,FALSE,FALSE,FALSE,FALSE,0,FALSE,FALSE,0,0,0,0,0,0,1,60,FALSE,"
        "FALSE,FALSE,FALSE,0,0,FALSE,FALSE,FALSE,FALSE,FALSE,1,FALSE,0,0,FALSE,2.4.3,60,Feel,Tests,"
        "2024-01-01 12:00:00,0,FALSE,0,0,0,FALSE,0,FALSE,FALSE,FALSE,FALSE,0,0,FALSE,FALSE,FALSE,FALSE,FALSE,0,"
        "FALSE,0,0,0,FALSE";
    std::vector<std::string> cells;
    std::stringstream in(base);
    std::string cell;
    while (std::getline(in, cell, ',')) cells.push_back(cell);
    for (const auto& [index, value] : columns) cells.at(static_cast<size_t>(index)) = value;
    std::string row;
    for (size_t i = 0; i < cells.size(); ++i) row += (i ? "," : "") + cells[i];
    return row + "\n";
}

// Column numbers of the camera file.
enum Col : int {
    kCategory = 0, kName = 1, kViewId = 2, kX = 3, kY = 4, kZ = 5, kHeading = 6, kPitch = 7, kTrackIr = 8,
    kSmooth = 9, kRetainMouseLook = 11, kLinear = 13, kLinearFrames = 14, kAutoAdvance = 15,
    kSmoothJoins = 26, kTrackHeading = 27, kTrackPitch = 28, kExternal = 33, kMovementRange = 36,
    kTransitionSeconds = 39, kDisableZoom = 62, kTransitionDelay = 66, kCameraOrigin = 68,
};

struct Frames {
    std::vector<std::string> names;
    std::vector<std::vector<double>> rows;
    double at(size_t row, const std::string& name) const {
        for (size_t i = 0; i < names.size(); ++i)
            if (names[i] == name) return rows.at(row).at(i);
        ADD_FAILURE() << "no column " << name;
        return 0;
    }
    Vec head(size_t row) const { return {at(row, "head_x"), at(row, "head_y"), at(row, "head_z")}; }
    Vec camera(size_t row) const { return {at(row, "camera_x"), at(row, "camera_y"), at(row, "camera_z")}; }
    size_t size() const { return rows.size(); }
};

struct Flight {
    int status = -1;
    std::string output;
    Frames frames;
    // The values the scenario's `get` lines printed, in order.
    std::vector<std::pair<std::string, double>> gets;
    double get(const std::string& name, size_t nth = 0) const {
        for (const auto& [key, value] : gets)
            if (key == name && nth-- == 0) return value;
        ADD_FAILURE() << "no get of " << name;
        return 0;
    }
};

class CameraFeelTest : public ::testing::Test {
protected:
    fs::path work;

    void SetUp() override {
        work = fs::temp_directory_path() / ("vistarig-feel-" + std::to_string(::getpid()) + "-" +
                                            ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(work);
        fs::create_directories(work / "Aircraft/Feel");
        fs::create_directories(work / "Resources/plugins/Vistarig");
        std::ofstream(work / "Aircraft/Feel/Feel.acf") << "I\n1100 Version\n";
    }

    void TearDown() override {
        if (!HasFailure()) fs::remove_all(work);
    }

    // Runs the scenario with the aircraft "Feel" and these cameras and settings.
    Flight fly(const std::string& rows, const std::string& scenario, const std::string& ini = "",
            const std::string& before = "") {
        std::ofstream(work / "Aircraft/Feel/Vistarig_Feel.csv")
            << "Category Name,Camera Name,View ID,X,Y,Z,heading,pitch,TrackIR Enabled,Smooth Transition,HeadShake,"
               "RetainMouseLookPosition, Enable Temporary Positioning,Enable Linear Transition,Linear Transition "
               "Frames,Enable Auto Advance\n"
            << rows;
        if (!ini.empty()) std::ofstream(work / "Resources/plugins/Vistarig/Vistarig.ini") << ini;
        std::ofstream(work / "feel.scn") << before << "aircraft " << (work / "Aircraft/Feel/Feel.acf").string()
                                         << "\n" << scenario;
        std::string command = std::string("'") + VISTARIG_SIM_PATH + "' '" + (work / "feel.scn").string() +
                              "' --work '" + work.string() + "' --no-draw";
        if (const char* xpl = std::getenv("VISTARIG_TEST_XPL")) command += std::string(" --xpl '") + xpl + "'";
        command += " 2>&1";
        Flight run;
        std::FILE* pipe = ::popen(command.c_str(), "r");
        if (!pipe) {
            ADD_FAILURE() << "cannot run " << command;
            return run;
        }
        char buffer[4096];
        while (std::fgets(buffer, sizeof buffer, pipe)) run.output += buffer;
        int status = ::pclose(pipe);
        run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        std::stringstream lines(run.output);
        std::string line;
        while (std::getline(lines, line)) {
            size_t eq = line.find(" = ");
            if (eq != std::string::npos && line.find(' ') == eq)
                run.gets.emplace_back(line.substr(0, eq), std::strtod(line.c_str() + eq + 3, nullptr));
        }
        readCsv(run.frames);
        return run;
    }

    void readCsv(Frames& frames) {
        std::ifstream in(work / "vistarig-frames.csv");
        std::string line;
        if (!std::getline(in, line)) {
            ADD_FAILURE() << "no frames CSV";
            return;
        }
        std::stringstream header(line);
        std::string cell;
        while (std::getline(header, cell, ',')) frames.names.push_back(cell);
        while (std::getline(in, line)) {
            std::vector<double> row;
            std::stringstream cells(line);
            while (std::getline(cells, cell, ',')) row.push_back(std::strtod(cell.c_str(), nullptr));
            frames.rows.push_back(row);
        }
    }
};

// Steps of a sine-eased transition of m frames as the view should take them: every
// frame moves, the weights sum to one, slow at both ends.
std::vector<double> easedProgress(int m) {
    std::vector<double> weights;
    double sum = 0;
    for (int k = 1; k <= m; ++k) sum += std::sin(radians(180.0 * k / (m + 1)));
    double done = 0;
    for (int k = 1; k <= m; ++k) {
        done += std::sin(radians(180.0 * k / (m + 1))) / sum;
        weights.push_back(done);
    }
    return weights;
}

// ---------------------------------------------------------------- turn and zoom keys

TEST_F(CameraFeelTest, TurnKeysTurnOncePerTapByTheirAngleAndZoomKeysOncePerPress) {
    std::string rows = cameraRow({{kName, "Seat"}}) +
                       cameraRow({{kCategory, "Outside"}, {kName, "Side"}, {kViewId, "2"}, {kX, "10"},
                                  {kY, "2"}, {kZ, "20"}, {kExternal, "TRUE"}});
    Flight run = fly(rows,
                  "frames 5\n"
                  "command sim/view/right_45 once\nframes 3\n"          // row 7: 45
                  "command sim/view/right_90 begin\nframes 20\n"
                  "command sim/view/right_90 end\nframes 3\n"           // row 30: 135
                  "command sim/view/left_135 once\nframes 3\n"          // row 33: 0
                  "command sim/view/left_45 once\nframes 3\n"           // row 36: 315
                  "command KVT/Vistarig/Next_Category once\nframes 10\n"
                  "command sim/general/zoom_in begin\nframes 15\n"
                  "command sim/general/zoom_in end\nframes 3\n"
                  "command sim/general/zoom_in_fast once\nframes 3\n");
    ASSERT_EQ(run.status, 0) << run.output;
    const Frames& f = run.frames;
    ASSERT_EQ(f.size(), 68u);
    EXPECT_NEAR(f.at(4, "head_psi"), 0, 1e-4);
    EXPECT_NEAR(f.at(7, "head_psi"), 45, 1e-4);
    // Held: the turn comes once, at the press, and stays while the key is down.
    for (size_t r = 9; r < 28; ++r) EXPECT_NEAR(f.at(r, "head_psi"), 135, 1e-4) << "row " << r;
    EXPECT_NEAR(f.at(30, "head_psi"), 135, 1e-4);
    EXPECT_NEAR(f.at(33, "head_psi"), 0, 1e-4);
    EXPECT_NEAR(f.at(36, "head_psi"), 315, 1e-4);

    // Outside: zoom 1 + 0.05 for the held press, + 0.1 for the fast one.
    EXPECT_NEAR(f.at(46, "camera_zoom"), 1.0, 1e-5);
    for (size_t r = 48; r < 65; ++r) EXPECT_NEAR(f.at(r, "camera_zoom"), 1.05, 1e-5) << "row " << r;
    EXPECT_NEAR(f.at(67, "camera_zoom"), 1.15, 1e-5);
}

// ---------------------------------------------------------------- outside cameras aim true

TEST_F(CameraFeelTest, OutsideCamerasCentreTheirSubject) {
    // A tracking camera well to the side, a fixed one set to look at the aircraft,
    // and a tracking camera on the carrier.
    std::string rows =
        cameraRow({{kCategory, "Outside"}, {kName, "Side"}, {kX, "400"}, {kY, "20"}, {kZ, "-30"},
                   {kExternal, "TRUE"}, {kTrackHeading, "TRUE"}, {kTrackPitch, "TRUE"}}) +
        cameraRow({{kCategory, "Outside"}, {kName, "Abeam"}, {kViewId, "2"}, {kX, "400"}, {kY, "0"}, {kZ, "0"},
                   {kHeading, "270"}, {kExternal, "TRUE"}}) +
        cameraRow({{kCategory, "Outside"}, {kName, "Deck"}, {kViewId, "3"}, {kX, "54"}, {kY, "12"}, {kZ, "8"},
                   {kExternal, "TRUE"}, {kTrackHeading, "TRUE"}, {kTrackPitch, "TRUE"}, {kCameraOrigin, "1"}});
    const char* aircraftGets =
        "get sim/flightmodel/position/local_x\nget sim/flightmodel/position/local_y\n"
        "get sim/flightmodel/position/local_z\n";
    Flight run = fly(rows,
                  std::string("boat carrier 300 0 -2000 40\n"
                              "frames 40\n") +
                      aircraftGets +
                      "command KVT/Vistarig/Next_Camera once\nframes 40\n" + aircraftGets +
                      "command KVT/Vistarig/Next_Camera once\nframes 40\n"
                      "get sim/world/boat/x_mtr[0]\nget sim/world/boat/y_mtr[0]\nget sim/world/boat/z_mtr[0]\n");
    ASSERT_EQ(run.status, 0) << run.output;
    const Frames& f = run.frames;
    ASSERT_EQ(f.size(), 120u);
    // The aircraft turns and banks along its path, so its attitude is in play.
    for (int shot = 0; shot < 3; ++shot) {
        size_t row = 39 + 40 * shot;
        Vec subject = shot < 2 ? Vec{run.get("sim/flightmodel/position/local_x", shot),
                                     run.get("sim/flightmodel/position/local_y", shot),
                                     run.get("sim/flightmodel/position/local_z", shot)}
                               : Vec{run.get("sim/world/boat/x_mtr[0]"), run.get("sim/world/boat/y_mtr[0]"),
                                     run.get("sim/world/boat/z_mtr[0]")};
        Vec eye = f.camera(row);
        Vec look = lookDirection(f.at(row, "camera_heading"), f.at(row, "camera_pitch"));
        EXPECT_LT(angleBetween(look, subject - eye), 0.01) << "camera " << shot;
        EXPECT_GT(length(subject - eye), 40.0) << "camera " << shot;
    }
}

// ---------------------------------------------------------------- no jumps

TEST_F(CameraFeelTest, CameraChangeDuringATransitionStartsFromTheViewAndEndsOnTheCamera) {
    std::string rows = cameraRow({{kName, "A"}, {kX, "0"}, {kY, "1"}, {kZ, "0"}}) +
                       cameraRow({{kName, "B"}, {kViewId, "2"}, {kX, "2"}, {kY, "1"}, {kZ, "0"}, {kHeading, "60"},
                                  {kSmooth, "TRUE"}, {kLinearFrames, "60"}}) +
                       cameraRow({{kName, "C"}, {kViewId, "3"}, {kX, "2"}, {kY, "1.5"}, {kZ, "-2"},
                                  {kHeading, "0"}, {kSmooth, "TRUE"}, {kLinearFrames, "60"}});
    Flight run = fly(rows,
                  "frames 5\n"
                  "command KVT/Vistarig/Next_Camera once\nframes 20\n"  // rows 5..24: A towards B
                  "command KVT/Vistarig/Next_Camera once\nframes 70\n");  // row 25 on: towards C
    ASSERT_EQ(run.status, 0) << run.output;
    const Frames& f = run.frames;
    ASSERT_EQ(f.size(), 95u);
    // The new transition starts where the view stood and eases to C over 60 frames.
    Vec start = f.head(24);
    double startHeading = f.at(24, "head_psi");
    EXPECT_GT(start.x, 0.1);
    EXPECT_LT(start.x, 1.9);
    Vec c{2, 1.5, -2};
    std::vector<double> progress = easedProgress(60);
    EXPECT_LT(length(f.head(25) - start), 1e-4);
    for (int k = 1; k <= 60; ++k) {
        Vec want = start + (c - start) * progress[k - 1];
        EXPECT_LT(length(f.head(25 + k) - want), 2e-4) << "frame " << k;
        EXPECT_LT(angleGap(f.at(25 + k, "head_psi"), startHeading * (1 - progress[k - 1])), 2e-3) << "frame " << k;
    }
    // Nowhere a step larger than the fastest frame of an eased 60-frame glide.
    double fastest = 2.0 * length(c - start) / 60.0;
    for (size_t r = 1; r < f.size(); ++r) EXPECT_LT(length(f.head(r) - f.head(r - 1)), fastest) << "row " << r;
}

TEST_F(CameraFeelTest, MovementKeyStopsATransitionWhereTheViewIsAndMovesOnFromThere) {
    std::string rows = cameraRow({{kName, "A"}, {kX, "0"}, {kY, "1"}, {kZ, "0"}, {kMovementRange, "2"}}) +
                       cameraRow({{kName, "B"}, {kViewId, "2"}, {kX, "2"}, {kY, "1"}, {kZ, "0"}, {kHeading, "60"},
                                  {kSmooth, "TRUE"}, {kLinearFrames, "60"}, {kMovementRange, "2"}});
    Flight run = fly(rows,
                  "frames 5\n"
                  "command KVT/Vistarig/Next_Camera once\nframes 25\n"  // rows 5..29
                  "command sim/general/forward begin\nframes 1\n"       // row 30: one step
                  "command sim/general/forward end\nframes 30\n");
    ASSERT_EQ(run.status, 0) << run.output;
    const Frames& f = run.frames;
    ASSERT_EQ(f.size(), 61u);
    Vec stopped = f.head(29);
    double heading = f.at(29, "head_psi");
    EXPECT_GT(heading, 5.0);
    EXPECT_LT(heading, 55.0);
    // One step of 0.1 m (the camera's large range) along the view, then nothing more.
    Vec step = lookDirection(heading, 0) * 0.1;
    for (size_t r = 30; r < f.size(); ++r) {
        EXPECT_LT(length(f.head(r) - (stopped + step)), 1e-4) << "row " << r;
        EXPECT_NEAR(f.at(r, "head_psi"), heading, 1e-4) << "row " << r;
    }
}

// ---------------------------------------------------------------- mouse look with a head tracker

TEST_F(CameraFeelTest, MouseLookFollowsTheDragWhileATrackerIsActive) {
    std::string rows = cameraRow({{kName, "Tracked"}, {kX, "-0.3"}, {kY, "1"}, {kZ, "0.3"}, {kTrackIr, "TRUE"},
                                  {kRetainMouseLook, "TRUE"}});
    // The tracker turns the head 1000 raw units of yaw; a drag of 192 pixels on the
    // 1920-pixel screen looks 36 degrees to the right.
    Flight run = fly(rows,
                  "frames 10\n"
                  "mouse 960 540\nmouse down right\nframes 2\n"  // rows 10, 11
                  "mouse 1152 540\nframes 20\n"                  // rows 12..31
                  "mouse up right\nframes 10\n",                 // rows 32..41
                  "MOUSE_SMOOTHING_FACTOR 0\nHEAD_TRACK_SMOOTHING_FACTOR 0\n", "trackir 0 0 0 1000 0 0\n");
    ASSERT_EQ(run.status, 0) << run.output;
    const Frames& f = run.frames;
    ASSERT_EQ(f.size(), 42u);
    double tracked = f.at(9, "head_psi");
    // The tracker is at work: the head is turned away from the camera's heading of 0.
    EXPECT_GT(angleGap(tracked, 0), 5.0);
    for (size_t r = 12; r < 42; ++r) EXPECT_NEAR(angleGap(f.at(r, "head_psi"), tracked), 36.0, 1e-3) << "row " << r;
}

// ---------------------------------------------------------------- one step per command

TEST_F(CameraFeelTest, MovementCommandSentOnceMovesOneStep) {
    std::string rows = cameraRow({{kName, "Seat"}, {kX, "0"}, {kY, "1"}, {kZ, "0"}, {kHeading, "30"},
                                  {kMovementRange, "2"}});
    Flight run = fly(rows,
                  "frames 5\n"
                  "command sim/general/forward once\nframes 5\n"  // rows 5..9
                  "command sim/general/right once\nframes 5\n"    // rows 10..14
                  "command sim/general/up once\nframes 5\n");     // rows 15..19
    ASSERT_EQ(run.status, 0) << run.output;
    const Frames& f = run.frames;
    ASSERT_EQ(f.size(), 20u);
    Vec home{0, 1, 0};
    Vec forward = lookDirection(30, 0) * 0.1;
    Vec right = lookDirection(120, 0) * 0.1;
    Vec up{0, 0.1, 0};
    for (size_t r = 0; r < 5; ++r) EXPECT_LT(length(f.head(r) - home), 1e-5) << "row " << r;
    for (size_t r = 5; r < 10; ++r) EXPECT_LT(length(f.head(r) - (home + forward)), 1e-5) << "row " << r;
    for (size_t r = 10; r < 15; ++r) EXPECT_LT(length(f.head(r) - (home + forward + right)), 1e-5) << "row " << r;
    for (size_t r = 15; r < 20; ++r)
        EXPECT_LT(length(f.head(r) - (home + forward + right + up)), 1e-5) << "row " << r;
}

// ---------------------------------------------------------------- smooth chains

TEST_F(CameraFeelTest, SmoothJoinsOnShortLegsKeepTheVelocityContinuous) {
    // A square of linear legs of 40 frames, shorter than the rounding window of 60.
    auto leg = [](const char* name, const char* id, const char* x, const char* z, bool advance) {
        return cameraRow({{kName, name}, {kViewId, id}, {kX, x}, {kY, "1"}, {kZ, z}, {kLinear, "TRUE"},
                          {kLinearFrames, "40"}, {kAutoAdvance, advance ? "TRUE" : "FALSE"},
                          {kSmoothJoins, "TRUE"}});
    };
    std::string rows = cameraRow({{kName, "A"}, {kX, "0"}, {kY, "1"}, {kZ, "0"}}) + leg("B", "2", "4", "0", true) +
                       leg("C", "3", "4", "-4", true) + leg("D", "4", "0", "-4", true) +
                       leg("E", "5", "0", "-8", false);
    Flight run = fly(rows, "frames 5\ncommand KVT/Vistarig/Next_Camera once\nframes 180\n", "SMOOTH_WINDOW 60\n");
    ASSERT_EQ(run.status, 0) << run.output;
    const Frames& f = run.frames;
    ASSERT_EQ(f.size(), 185u);
    // The chain: the start frame at A (row 5), then 4 x 40 frames, ending on E.
    EXPECT_LT(length(f.head(165) - Vec{0, 1, -8}), 1e-4);
    EXPECT_LT(length(f.head(164) - Vec{0, 1, -8}), 0.2);
    // Speed 0.1 m a frame; inside the chain the velocity changes smoothly: no frame
    // turns it by more than a tenth of the speed.
    double worst = 0;
    for (size_t r = 7; r + 1 < 165; ++r) {
        Vec before = f.head(r) - f.head(r - 1);
        Vec after = f.head(r + 1) - f.head(r);
        EXPECT_NEAR(length(after), 0.1, 0.03) << "row " << r;
        worst = std::fmax(worst, length(after - before));
    }
    EXPECT_LT(worst, 0.01);
    // And the corners are rounded: the path passes inside B, C and D.
    double nearest = 1e9;
    for (size_t r = 5; r < 165; ++r) nearest = std::fmin(nearest, length(f.head(r) - Vec{4, 1, 0}));
    EXPECT_GT(nearest, 0.2);
}

TEST_F(CameraFeelTest, SmoothTransitionMovesOnEveryFrameAndEndsOnItsLast) {
    std::string rows = cameraRow({{kName, "A"}, {kX, "0"}, {kY, "1"}, {kZ, "0"}}) +
                       cameraRow({{kName, "B"}, {kViewId, "2"}, {kX, "1"}, {kY, "1.2"}, {kZ, "-0.5"},
                                  {kHeading, "40"}, {kPitch, "-10"}, {kSmooth, "TRUE"}, {kLinearFrames, "20"}});
    Flight run = fly(rows, "frames 5\ncommand KVT/Vistarig/Next_Camera once\nframes 25\n");
    ASSERT_EQ(run.status, 0) << run.output;
    const Frames& f = run.frames;
    ASSERT_EQ(f.size(), 30u);
    Vec a{0, 1, 0}, b{1, 1.2, -0.5};
    std::vector<double> progress = easedProgress(20);
    EXPECT_LT(length(f.head(5) - a), 1e-5);
    for (int k = 1; k <= 20; ++k) {
        EXPECT_LT(length(f.head(5 + k) - (a + (b - a) * progress[k - 1])), 1e-4) << "frame " << k;
        EXPECT_NEAR(f.at(5 + k, "head_psi"), 40 * progress[k - 1], 1e-3) << "frame " << k;
        EXPECT_GT(length(f.head(5 + k) - f.head(4 + k)), 1e-3) << "frame " << k << " repeats the one before";
    }
    EXPECT_LT(length(f.head(25) - b), 1e-5);
    EXPECT_NEAR(f.at(25, "head_the"), -10, 1e-4);
}

// ---------------------------------------------------------------- delays in frames

TEST_F(CameraFeelTest, TransitionDelayHoldsTheSameFramesInEveryRun) {
    std::string rows = cameraRow({{kName, "A"}, {kX, "0"}, {kY, "1"}, {kZ, "0"}}) +
                       cameraRow({{kName, "Delayed"}, {kViewId, "2"}, {kX, "1"}, {kY, "1"}, {kZ, "0"},
                                  {kSmooth, "TRUE"}, {kLinearFrames, "30"}, {kTransitionDelay, "3"}}) +
                       cameraRow({{kName, "Prompt"}, {kViewId, "3"}, {kX, "1"}, {kY, "1"}, {kZ, "-1"},
                                  {kSmooth, "TRUE"}, {kLinearFrames, "30"}});
    // The first frame after `from` whose head differs from the frame before the change.
    auto firstMove = [](const Frames& f, size_t from) {
        Vec still = f.head(from - 1);
        for (size_t r = from; r < f.size(); ++r)
            if (length(f.head(r) - still) > 1e-6) return static_cast<int>(r - from);
        return -1;
    };
    // Twice at 30 frames a second, once at 50.
    const std::pair<const char*, int> rates[] = {{"0.0333333333333", 30}, {"0.0333333333333", 30}, {"0.02", 50}};
    for (const auto& [step, perSecond] : rates) {
        {
            const int hold = 3 * perSecond + 40;
            Flight run = fly(rows, std::string("step ") + step + "\nframes 5\n" +
                                       "command KVT/Vistarig/Next_Camera once\nframes " + std::to_string(hold) +
                                       "\ncommand KVT/Vistarig/Next_Camera once\nframes 10\n");
            ASSERT_EQ(run.status, 0) << run.output;
            ASSERT_EQ(run.frames.size(), static_cast<size_t>(15 + hold));
            const int prompt = firstMove(run.frames, static_cast<size_t>(5 + hold));
            const int delayed = firstMove(run.frames, 5);
            // Without a delay the first frame of the transition is its start; with one,
            // exactly three seconds of frames come before it.
            EXPECT_EQ(prompt, 1) << step;
            EXPECT_EQ(delayed, prompt + 3 * perSecond) << step;
        }
    }
}

// ---------------------------------------------------------------- the wheel zoom given back

TEST_F(CameraFeelTest, WheelZoomIsGivenBackWhenTheCameraLevelGoesOff) {
    std::string rows = cameraRow({{kName, "Locked"}, {kX, "-0.3"}, {kY, "1"}, {kZ, "0.3"}, {kDisableZoom, "TRUE"}});
    Flight run = fly(rows,
                  "frames 5\n"
                  "expect sim/private/controls/camera/kill_wheel_zoom 1\n"
                  "command KVT/Vistarig/Disable_Vistarig once\nframes 3\n"
                  "expect sim/private/controls/camera/kill_wheel_zoom 0\n"
                  "command KVT/Vistarig/Enable_Vistarig once\nframes 3\n"
                  "expect sim/private/controls/camera/kill_wheel_zoom 1\n"
                  "disable\nframes 3\n"
                  "expect sim/private/controls/camera/kill_wheel_zoom 0\n");
    EXPECT_EQ(run.status, 0) << run.output;
    // The camera held the head while on, and the simulator's own head came back at
    // the first switch-off.
    const Frames& f = run.frames;
    ASSERT_GE(f.size(), 8u);
    EXPECT_NEAR(f.at(4, "head_x"), -0.3, 1e-5);
    EXPECT_GT(std::fabs(f.at(7, "head_x") + 0.3), 1e-3);
}

}  // namespace
