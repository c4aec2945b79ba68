// The world under the windows, seen through the simulator's camera: the aircraft in
// front of a camera behind it at the size the field of view and the screen's shape
// give, its roll, the horizon, the sky overhead, and nothing of it behind the camera.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "XPLMCamera.h"
#include "XPLMUtilities.h"
#include "host/host.h"
#include "host/windows.h"

namespace {

xphost::CameraPosition wanted;

int holdCamera(XPLMCameraPosition_t* position, int losingControl, void*) {
    if (losingControl || !position) return 0;
    *position = XPLMCameraPosition_t{wanted.x,       wanted.y,    wanted.z,   wanted.pitch,
                                     wanted.heading, wanted.roll, wanted.zoom};
    return 1;
}

// Bright orange-red paint against green ground and blue sky.
bool isPaint(const uint8_t* p) { return p[0] > 100 && p[0] > 2 * p[1] && p[0] > 2 * p[2]; }
bool isSky(const uint8_t* p) { return p[2] > p[0] && p[2] > p[1]; }

struct Shot {
    std::vector<uint8_t> pixels;  // rows from the top
    int width = 0, height = 0;
    const uint8_t* at(int x, int y) const { return pixels.data() + (static_cast<size_t>(y) * width + x) * 4; }
};

// The painted area's box, as fractions of the screen; empty when nothing is painted.
struct Extent {
    int count = 0;
    double left = 1, right = 0, top = 1, bottom = 0;
};

class HostScene : public ::testing::Test {
protected:
    void SetUp() override {
        xphost::reset();
        placeAircraft(0, 0);
        XPLMCommandOnce(XPLMFindCommand("sim/view/free_camera"));
        XPLMControlCamera(xplm_ControlCameraForever, holdCamera, nullptr);
    }
    void TearDown() override { XPLMDontControlCamera(); }

    // Level at 500 m over the origin, heading east.
    static void placeAircraft(float pitch, float roll) {
        xphost::setAircraftMover([pitch, roll](double) {
            xphost::AircraftState a;
            a.y = 500;
            a.psi = 90;
            a.theta = pitch;
            a.phi = roll;
            return a;
        });
    }

    static Shot look(float x, float pitch, float heading, float zoom = 1) {
        wanted = xphost::CameraPosition{x, 500.8f, 0, pitch, heading, 0, zoom};
        xphost::runFrames(1);
        Shot shot;
        shot.pixels = xphost::screenImage(shot.width, shot.height);
        return shot;
    }

    static Extent paintExtent(const Shot& shot) {
        Extent e;
        for (int y = 0; y < shot.height; y += 2)
            for (int x = 0; x < shot.width; x += 2) {
                if (!isPaint(shot.at(x, y))) continue;
                ++e.count;
                const double fx = static_cast<double>(x) / shot.width, fy = static_cast<double>(y) / shot.height;
                e.left = std::min(e.left, fx);
                e.right = std::max(e.right, fx);
                e.top = std::min(e.top, fy);
                e.bottom = std::max(e.bottom, fy);
            }
        return e;
    }
};

TEST_F(HostScene, AircraftAheadOfTheCameraFillsTheFieldOfViewItShould) {
    // 40 m behind, looking east at it: the 11 m wing spans 11 / (2 * 40 * tan 30)
    // of the 60 degree wide screen, whatever the screen's height.
    Shot shot = look(-40, 0, 90);
    ASSERT_EQ(shot.width, 1920);
    ASSERT_TRUE(isPaint(shot.at(shot.width / 2, shot.height / 2 - 20)));
    Extent e = paintExtent(shot);
    EXPECT_NEAR(e.right - e.left, 0.238, 0.02);
    EXPECT_NEAR((e.left + e.right) / 2, 0.5, 0.01);
    EXPECT_GT(e.top, 0.4);
    EXPECT_LT(e.bottom, 0.6);

    // Zoom 2 halves the field of view.
    e = paintExtent(look(-40, 0, 90, 2));
    EXPECT_NEAR(e.right - e.left, 0.525, 0.03);

    // A roll to the right puts the right wing down.
    placeAircraft(0, 30);
    shot = look(-40, 0, 90);
    double leftRows = 0, rightRows = 0;
    int leftCount = 0, rightCount = 0;
    for (int y = 0; y < shot.height; y += 2)
        for (int x = 0; x < shot.width; x += 2) {
            if (!isPaint(shot.at(x, y))) continue;
            if (x < shot.width * 9 / 20) leftRows += y, ++leftCount;
            if (x > shot.width * 11 / 20) rightRows += y, ++rightCount;
        }
    ASSERT_GT(leftCount, 0);
    ASSERT_GT(rightCount, 0);
    EXPECT_GT(rightRows / rightCount, leftRows / leftCount + 50) << "rows count from the top";

    // Rolled on its side, the wing stands up across the screen.
    placeAircraft(0, 90);
    e = paintExtent(look(-40, 0, 90));
    EXPECT_LT(e.right - e.left, 0.08);
    EXPECT_GT(e.bottom - e.top, 0.35);
}

TEST_F(HostScene, HorizonSkyOverheadAndNothingBehind) {
    // Level: sky above the middle, ground below it.
    Shot level = look(-40, 0, 90);
    EXPECT_TRUE(isSky(level.at(100, level.height / 2 - 40)));
    EXPECT_FALSE(isSky(level.at(100, level.height / 2 + 40)));
    EXPECT_FALSE(isSky(level.at(level.width - 100, level.height - 10)));

    Shot up = look(-40, 90, 90);
    int notSky = 0;
    for (int y = 0; y < up.height; y += 8)
        for (int x = 0; x < up.width; x += 8) notSky += isSky(up.at(x, y)) ? 0 : 1;
    EXPECT_EQ(notSky, 0) << "straight up is all sky";

    // Turned away, looking west: ground and sky, no aircraft.
    Shot away = look(-40, -10, 270);
    EXPECT_EQ(paintExtent(away).count, 0);
    EXPECT_FALSE(isSky(away.at(away.width / 2, away.height - 10)));
}

}  // namespace
