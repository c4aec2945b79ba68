// The host's frame: flight-loop scheduling, camera control and its loss on a view
// command, the moving aircraft and the per-frame record.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <string>
#include <vector>

#include "XPLMCamera.h"
#include "XPLMDataAccess.h"
#include "XPLMProcessing.h"
#include "XPLMUtilities.h"
#include "host/host.h"

namespace {

class HostFrame : public ::testing::Test {
protected:
    void SetUp() override { xphost::reset(); }
};

struct LoopLog {
    std::vector<int> frames;
    std::vector<float> sinceLast;
    std::vector<int> counters;
    float next = -1.0f;
    int stopAfter = -1;
};

float logLoop(float sinceLast, float, int counter, void* refcon) {
    auto* log = static_cast<LoopLog*>(refcon);
    log->frames.push_back(xphost::frameNumber());
    log->sinceLast.push_back(sinceLast);
    log->counters.push_back(counter);
    if (log->stopAfter >= 0 && static_cast<int>(log->frames.size()) >= log->stopAfter) return 0;
    return log->next;
}

TEST_F(HostFrame, FlightLoopIntervalsInFramesSecondsAndZero) {
    LoopLog everyFrame, everyThird, halfSecond, twice;
    everyThird.next = -3;
    halfSecond.next = 0.5f;
    twice.stopAfter = 2;
    XPLMRegisterFlightLoopCallback(logLoop, -1, &everyFrame);
    XPLMRegisterFlightLoopCallback(logLoop, -3, &everyThird);
    XPLMRegisterFlightLoopCallback(logLoop, 0.5f, &halfSecond);
    XPLMRegisterFlightLoopCallback(logLoop, -1, &twice);
    LoopLog never;
    XPLMRegisterFlightLoopCallback(logLoop, 0, &never);  // registered, not scheduled

    xphost::runFrames(31);
    EXPECT_EQ(everyFrame.frames.size(), 31u);
    EXPECT_EQ(everyFrame.counters.front(), 1);
    EXPECT_NEAR(everyFrame.sinceLast[5], 1.0 / 30, 1e-5);
    EXPECT_EQ(everyThird.frames, (std::vector<int>{3, 6, 9, 12, 15, 18, 21, 24, 27, 30}));
    EXPECT_EQ(halfSecond.frames, (std::vector<int>{15, 30}));
    EXPECT_NEAR(halfSecond.sinceLast[1], 0.5, 1e-4);
    EXPECT_EQ(twice.frames.size(), 2u);
    EXPECT_TRUE(never.frames.empty());

    // Scheduling a registered loop later, relative to now.
    XPLMSetFlightLoopCallbackInterval(logLoop, -2, 1, &never);
    xphost::runFrames(2);
    EXPECT_EQ(never.frames, (std::vector<int>{33}));

    XPLMUnregisterFlightLoopCallback(logLoop, &everyFrame);
    xphost::runFrames(1);
    EXPECT_EQ(everyFrame.frames.size(), 33u);
    EXPECT_NEAR(XPLMGetElapsedTime(), 34.0 / 30, 1e-4);
    EXPECT_EQ(XPLMGetCycleNumber(), 34);
}

std::vector<std::string> order;
float beforeModel(float, float, int, void*) {
    XPLMDataRef x = XPLMFindDataRef("sim/flightmodel/position/local_x");
    order.push_back("before " + std::to_string(static_cast<int>(std::lround(XPLMGetDatad(x)))));
    return -1;
}
float afterModel(float, float, int, void*) {
    XPLMDataRef x = XPLMFindDataRef("sim/flightmodel/position/local_x");
    order.push_back("after " + std::to_string(static_cast<int>(std::lround(XPLMGetDatad(x)))));
    return -1;
}

TEST_F(HostFrame, CreatedLoopsRunInTheirPhaseAroundTheFlightModel) {
    order.clear();
    xphost::setAircraftMover([](double t) {
        xphost::AircraftState s;
        s.x = t * 30.0;  // one metre a frame
        return s;
    });
    XPLMCreateFlightLoop_t after{sizeof(XPLMCreateFlightLoop_t), xplm_FlightLoop_Phase_AfterFlightModel,
                                 afterModel, nullptr};
    XPLMCreateFlightLoop_t before{sizeof(XPLMCreateFlightLoop_t), xplm_FlightLoop_Phase_BeforeFlightModel,
                                  beforeModel, nullptr};
    XPLMFlightLoopID a = XPLMCreateFlightLoop(&after);
    XPLMFlightLoopID b = XPLMCreateFlightLoop(&before);
    xphost::runFrames(1);
    EXPECT_TRUE(order.empty());  // created, not yet scheduled
    XPLMScheduleFlightLoop(a, -1, 1);
    XPLMScheduleFlightLoop(b, -1, 1);
    xphost::runFrames(1);
    EXPECT_EQ(order, (std::vector<std::string>{"before 1", "after 2"}));
    XPLMDestroyFlightLoop(a);
    XPLMDestroyFlightLoop(b);
    xphost::runFrames(1);
    EXPECT_EQ(order.size(), 2u);
}

int churnCalls = 0, newcomerCalls = 0;
float newcomer(float, float, int, void*) {
    ++newcomerCalls;
    return -1;
}
float churn(float, float, int, void* refcon) {
    ++churnCalls;
    // Replaces itself from inside its own call.
    XPLMUnregisterFlightLoopCallback(churn, refcon);
    XPLMRegisterFlightLoopCallback(newcomer, -1, nullptr);
    return -1;
}

TEST_F(HostFrame, RegistrationChangesInsideACallbackAreSafe) {
    churnCalls = newcomerCalls = 0;
    XPLMRegisterFlightLoopCallback(churn, -1, nullptr);
    xphost::runFrames(1);
    EXPECT_EQ(churnCalls, 1);
    EXPECT_EQ(newcomerCalls, 0);  // waits for the next frame
    xphost::runFrames(2);
    EXPECT_EQ(churnCalls, 1);
    EXPECT_EQ(newcomerCalls, 2);
}

struct CameraLog {
    int calls = 0;
    int losing = 0;
    bool nullOnLosing = false;
    int keep = 1;
    float prefilledZoom = 0;
};

int cameraCallback(XPLMCameraPosition_t* pos, int losing, void* refcon) {
    auto* log = static_cast<CameraLog*>(refcon);
    if (losing) {
        log->losing++;
        log->nullOnLosing = pos == nullptr;
        return 0;
    }
    log->calls++;
    log->prefilledZoom = pos->zoom;
    pos->x = 100;
    pos->y = 200;
    pos->z = 300;
    pos->heading = 45;
    pos->zoom = 2;
    return log->keep;
}

TEST_F(HostFrame, CameraControlUntilTheUserPicksASimulatorView) {
    CameraLog log;
    XPLMCommandOnce(XPLMFindCommand("sim/view/free_camera"));
    XPLMControlCamera(xplm_ControlCameraForever, cameraCallback, &log);
    XPLMCameraControlDuration how = 0;
    EXPECT_EQ(XPLMIsCameraBeingControlled(&how), 1);
    EXPECT_EQ(how, xplm_ControlCameraForever);
    xphost::runFrames(2);
    EXPECT_EQ(log.calls, 2);
    EXPECT_FLOAT_EQ(log.prefilledZoom, 2.0f);  // the second call starts from the first's result
    XPLMCameraPosition_t read;
    XPLMReadCameraPosition(&read);
    EXPECT_FLOAT_EQ(read.x, 100);
    EXPECT_FLOAT_EQ(read.heading, 45);
    ASSERT_FALSE(xphost::frames().empty());
    EXPECT_TRUE(xphost::frames().back().cameraControlled);
    EXPECT_FLOAT_EQ(xphost::frames().back().camera.z, 300);

    XPLMCommandOnce(XPLMFindCommand("sim/view/chase"));
    EXPECT_EQ(log.losing, 1);
    EXPECT_TRUE(log.nullOnLosing);
    EXPECT_EQ(XPLMIsCameraBeingControlled(nullptr), 0);
    xphost::runFrames(1);
    EXPECT_EQ(log.calls, 2);
    EXPECT_FALSE(xphost::frames().back().cameraControlled);

    // A result of 0 hands the camera back at once, without a losing call.
    CameraLog once;
    once.keep = 0;
    XPLMControlCamera(xplm_ControlCameraUntilViewChanges, cameraCallback, &once);
    xphost::runFrames(2);
    EXPECT_EQ(once.calls, 1);
    EXPECT_EQ(once.losing, 0);
    EXPECT_FALSE(xphost::cameraControlled());

    // XPLMDontControlCamera releases without a callback.
    CameraLog quiet;
    XPLMControlCamera(xplm_ControlCameraForever, cameraCallback, &quiet);
    XPLMDontControlCamera();
    xphost::runFrames(1);
    EXPECT_EQ(quiet.calls + quiet.losing, 0);
}

TEST_F(HostFrame, AircraftFliesTheDefaultPathAndFramesAreRecorded) {
    xphost::FlightPath path;
    path.turnRate = 0;
    path.headingDeg = 90;
    path.speed = 60;
    xphost::setFlightPath(path);
    xphost::runFrames(30);
    XPLMDataRef x = XPLMFindDataRef("sim/flightmodel/position/local_x");
    XPLMDataRef z = XPLMFindDataRef("sim/flightmodel/position/local_z");
    EXPECT_NEAR(XPLMGetDatad(x), 60.0, 1e-3);  // east for one second
    EXPECT_NEAR(XPLMGetDatad(z), 0.0, 1e-3);

    path.headingDeg = 0;
    path.turnRate = 3;  // a full circle in two minutes
    xphost::setFlightPath(path);
    xphost::runFrames(60, 1.0);  // the path is closed-form: big steps land on it too
    EXPECT_NEAR(XPLMGetDataf(XPLMFindDataRef("sim/flightmodel/position/psi")), 180.0, 0.01);
    // Half a circle to the right from north ends east of the start by the circle's
    // diameter, 2 v / w.
    double diameter = 2 * 60 / (3 * M_PI / 180);
    EXPECT_NEAR(XPLMGetDatad(x), diameter, 0.01);
    EXPECT_NEAR(XPLMGetDatad(z), 0.0, 0.01);

    xphost::addFrameColumn("probe", [] { return 7.0; });
    xphost::runFrames(1);
    const auto& f = xphost::frames();
    EXPECT_EQ(static_cast<int>(f.size()), xphost::frameNumber());
    EXPECT_EQ(f.back().viewType, 1026);
    EXPECT_FLOAT_EQ(f.back().fov, 60.0f);
    ASSERT_EQ(f.back().extra.size(), 1u);

    std::string csv = ::testing::TempDir() + "host_frames.csv";
    ASSERT_TRUE(xphost::writeFrameCsv(csv));
    std::ifstream in(csv);
    std::string header, row;
    std::getline(in, header);
    EXPECT_EQ(header.rfind("frame,time,view_type,head_x", 0), 0u);
    EXPECT_NE(header.find("camera_zoom,probe"), std::string::npos);
    int rows = 0;
    while (std::getline(in, row)) ++rows;
    EXPECT_EQ(rows, xphost::frameNumber());
}

TEST_F(HostFrame, CockpitEyeFollowsTheAircraftsAttitude) {
    // Rolled 90 degrees right while heading north: the head's "up" offset points east;
    // pitched 90 up instead, it points back, which is south.
    auto fly = [](float theta, float phi) {
        xphost::setAircraftMover([theta, phi](double) {
            xphost::AircraftState a;
            a.x = 100;
            a.y = 500;
            a.z = -200;
            a.theta = theta;
            a.phi = phi;
            return a;
        });
        xphost::runFrames(1);
        return xphost::cameraPosition();
    };
    ASSERT_TRUE(xphost::forceValue("sim/graphics/view/pilots_head_x", 0));
    ASSERT_TRUE(xphost::forceValue("sim/graphics/view/pilots_head_y", 1));
    ASSERT_TRUE(xphost::forceValue("sim/graphics/view/pilots_head_z", 0));
    xphost::CameraPosition rolled = fly(0, 90);
    EXPECT_NEAR(rolled.x, 101, 1e-4);
    EXPECT_NEAR(rolled.y, 500, 1e-4);
    xphost::CameraPosition pitched = fly(90, 0);
    EXPECT_NEAR(pitched.y, 500, 1e-4);
    EXPECT_NEAR(pitched.z, -199, 1e-4);
}

}  // namespace
