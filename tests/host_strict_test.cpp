// Where the host behaves as X-Plane does and a kinder stand-in would hide a fault:
// the pointer passing through windows, VR windows drawn, water and moving decks under
// probes, the earth's curve, elapsed time against paused simulated time, flight-loop
// misuse named in the leftover report, and a frame pass without drawing.
#include <GL/gl.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include "XPLMDataAccess.h"
#include "XPLMDisplay.h"
#include "XPLMGraphics.h"
#include "XPLMProcessing.h"
#include "XPLMScenery.h"
#include "host/host.h"
#include "host/windows.h"
#include "host/world.h"

namespace {

class HostStrict : public ::testing::Test {
protected:
    void SetUp() override { xphost::reset(); }
};

struct PointerLog {
    int cursorCalls = 0;
    int clicks = 0;
    int wheels = 0;
    XPLMCursorStatus cursor = xplm_CursorDefault;
    int takes = 0;  // what the click and wheel callbacks answer
};

XPLMCursorStatus logCursor(XPLMWindowID, int, int, void* refcon) {
    auto* log = static_cast<PointerLog*>(refcon);
    ++log->cursorCalls;
    return log->cursor;
}
int logClick(XPLMWindowID, int, int, XPLMMouseStatus, void* refcon) {
    auto* log = static_cast<PointerLog*>(refcon);
    ++log->clicks;
    return log->takes;
}
int logWheel(XPLMWindowID, int, int, int, int, void* refcon) {
    auto* log = static_cast<PointerLog*>(refcon);
    ++log->wheels;
    return log->takes;
}
void fillRed(XPLMWindowID id, void*) {
    int l, t, r, b;
    XPLMGetWindowGeometry(id, &l, &t, &r, &b);
    XPLMSetGraphicsState(0, 0, 0, 0, 0, 0, 0);
    glColor4f(1, 0, 0, 1);
    glBegin(GL_QUADS);
    glVertex2i(l, b);
    glVertex2i(r, b);
    glVertex2i(r, t);
    glVertex2i(l, t);
    glEnd();
}

XPLMWindowID makeWindow(int left, int top, int right, int bottom, PointerLog* log, XPLMDrawWindow_f draw = nullptr) {
    XPLMCreateWindow_t p{};
    p.structSize = sizeof p;
    p.left = left, p.top = top, p.right = right, p.bottom = bottom;
    p.visible = 1;
    p.drawWindowFunc = draw ? draw : [](XPLMWindowID, void*) {};
    p.handleMouseClickFunc = logClick;
    p.handleRightClickFunc = logClick;
    p.handleCursorFunc = logCursor;
    p.handleMouseWheelFunc = logWheel;
    p.refcon = log;
    p.layer = xplm_WindowLayerFloatingWindows;
    return XPLMCreateWindowEx(&p);
}

TEST_F(HostStrict, PointerEventsNoWindowTakesGoOnToTheWindowsBelow) {
    PointerLog below, above;
    makeWindow(100, 500, 500, 100, &below);
    makeWindow(200, 400, 400, 200, &above);
    below.cursor = xplm_CursorHidden;
    below.takes = 1;

    // The front window answers "default" and takes nothing: everything reaches the back one.
    xphost::mouseMove(300, 300);
    EXPECT_EQ(above.cursorCalls, 1);
    EXPECT_EQ(below.cursorCalls, 1);
    // A front window that sets the cursor keeps the move.
    above.cursor = xplm_CursorArrow;
    xphost::mouseMove(310, 300);
    EXPECT_EQ(above.cursorCalls, 2);
    EXPECT_EQ(below.cursorCalls, 1);

    xphost::wheel(300, 300, 1);
    EXPECT_EQ(above.wheels, 1);
    EXPECT_EQ(below.wheels, 1);
    xphost::click(300, 300);
    EXPECT_EQ(above.clicks, 1);
    EXPECT_EQ(below.clicks, 2);  // down and up: it took the press
}

TEST_F(HostStrict, VrWindowsAreDrawnOntoAPictureOfTheirOwn) {
    PointerLog log;
    XPLMWindowID id = makeWindow(100, 300, 300, 100, &log, fillRed);
    xphost::forceValue("sim/graphics/VR/enabled", 1);
    XPLMSetWindowPositioningMode(id, xplm_WindowVR, -1);
    XPLMSetWindowGeometryVR(id, 64, 32);
    ASSERT_EQ(XPLMWindowIsInVR(id), 1);
    xphost::runFrames(1);

    std::vector<uint8_t> picture;
    int width = 0, height = 0;
    ASSERT_TRUE(xphost::windowPicture(id, picture, width, height));
    EXPECT_EQ(width, 64);
    EXPECT_EQ(height, 32);
    const uint8_t* centre = &picture[(16 * 64 + 32) * 4];
    EXPECT_EQ(centre[0], 255);
    EXPECT_EQ(centre[1], 0);
    // Not on the monitor: the screen under its desktop place shows no red.
    EXPECT_NE(xphost::screenPixel(200, 200) >> 24, 255u);
}

XPLMProbeInfo_t probeAt(XPLMProbeRef probe, float x, float z, XPLMProbeResult& result) {
    XPLMProbeInfo_t info;
    std::memset(&info, 0, sizeof info);
    info.structSize = sizeof info;
    result = XPLMProbeTerrainXYZ(probe, x, 500, z, &info);
    return info;
}

TEST_F(HostStrict, ProbesKnowWaterAndTheMovingDecksOfTheBoats) {
    XPLMProbeRef probe = XPLMCreateProbe(xplm_ProbeY);
    XPLMProbeResult result;
    // The default field is land at the origin and sea in the bay of the boats.
    EXPECT_EQ(probeAt(probe, 0, 0, result).is_wet, 0);
    EXPECT_EQ(probeAt(probe, 0, 1800, result).is_wet, 1);

    // The carrier heading east at 10 m/s, the frigate still, due north.
    xphost::setBoat(0, {500, 0, 2000, 90, 10});
    xphost::setBoat(1, {-500, 0, 2000, 0, 0});
    XPLMProbeInfo_t deck = probeAt(probe, 600, 2010, result);
    ASSERT_EQ(result, xplm_ProbeHitTerrain);
    EXPECT_NEAR(deck.locationY, xphost::boatShape(0).freeboard, 1e-3);
    EXPECT_NEAR(deck.velocityX, 10.0, 1e-4);
    EXPECT_NEAR(deck.velocityZ, 0.0, 1e-4);
    EXPECT_EQ(deck.is_wet, 0);
    // Across the carrier's beam (60 m) the sea again.
    EXPECT_EQ(probeAt(probe, 600, 2040, result).is_wet, 1);
    // The frigate points north: long along z, narrow along x.
    EXPECT_NEAR(probeAt(probe, -500, 1950, result).locationY, xphost::boatShape(1).freeboard, 1e-3);
    EXPECT_EQ(probeAt(probe, -480, 2000, result).is_wet, 1);

    // The deck moves with the boat: 10 m in a second, over what was sea.
    EXPECT_EQ(probeAt(probe, 670, 2000, result).is_wet, 1);
    xphost::runFrames(30, 1.0 / 30);
    EXPECT_NEAR(probeAt(probe, 670, 2000, result).locationY, xphost::boatShape(0).freeboard, 1e-3);
    XPLMDestroyProbe(probe);
}

TEST_F(HostStrict, TheGroundAndLocalCoordinatesCurveWithTheEarth) {
    xphost::setTerrain([](double, double, double& elevation) {
        elevation = 0;
        return true;
    });
    XPLMProbeRef probe = XPLMCreateProbe(xplm_ProbeY);
    XPLMProbeResult result;
    // Sea level 20 km out lies about 31 m under the origin's tangent plane.
    XPLMProbeInfo_t far = probeAt(probe, 20000, 0, result);
    ASSERT_EQ(result, xplm_ProbeHitTerrain);
    EXPECT_NEAR(far.locationY, -31.4, 0.5);
    EXPECT_NEAR(probeAt(probe, 0, -20000, result).locationY, -31.4, 0.5);
    // The ground the probe found is at elevation 0, and back again through the SDK.
    double lat, lon, elevation, x, y, z;
    XPLMLocalToWorld(20000, far.locationY, 0, &lat, &lon, &elevation);
    EXPECT_NEAR(elevation, 0.0, 0.05);
    XPLMWorldToLocal(lat, lon, 0, &x, &y, &z);
    EXPECT_NEAR(y, far.locationY, 0.05);
    // Its normal leans away from the origin by the arc's angle (20 km / 6371 km).
    EXPECT_NEAR(far.normalX, 20000.0 / 6371000.0, 3e-4);
    XPLMDestroyProbe(probe);
}

struct TimeLog {
    std::vector<float> elapsed;
    std::vector<float> sinceLast;
};

float timeLoop(float sinceLast, float, int, void* refcon) {
    auto* log = static_cast<TimeLog*>(refcon);
    log->elapsed.push_back(XPLMGetElapsedTime());
    log->sinceLast.push_back(sinceLast);
    return -1;
}

TEST_F(HostStrict, PausingStopsTheFlightModelWhileElapsedTimeAndDrawingGoOn) {
    TimeLog log;
    XPLMRegisterFlightLoopCallback(timeLoop, -1, &log);
    PointerLog pointer;
    XPLMWindowID window = makeWindow(0, 100, 100, 0, &pointer);
    XPLMDataRef runningTime = XPLMFindDataRef("sim/time/total_running_time_sec");
    xphost::runFrames(10, 0.1);
    const xphost::AircraftState before = xphost::aircraft();
    const double simBefore = xphost::simTime();
    EXPECT_NEAR(XPLMGetElapsedTime(), 1.0, 1e-4);

    xphost::runCommand("sim/operation/pause_toggle", xphost::Phase::Once);
    int drawsBefore = 0;
    for (const auto& w : xphost::windows())
        if (w.id == window) drawsBefore = w.drawCount;
    xphost::runFrames(5, 0.1);
    // Elapsed time and the flight loops' times count on; the aircraft and simulated time stand.
    EXPECT_NEAR(XPLMGetElapsedTime(), 1.5, 1e-4);
    EXPECT_NEAR(log.elapsed.back(), 1.5f, 1e-4);
    EXPECT_NEAR(log.sinceLast.back(), 0.1f, 1e-5);
    EXPECT_EQ(xphost::simTime(), simBefore);
    EXPECT_NEAR(XPLMGetDataf(runningTime), simBefore, 1e-4);
    EXPECT_EQ(xphost::aircraft().x, before.x);
    EXPECT_EQ(xphost::aircraft().z, before.z);
    int drawsAfter = 0;
    for (const auto& w : xphost::windows())
        if (w.id == window) drawsAfter = w.drawCount;
    EXPECT_EQ(drawsAfter, drawsBefore + 5);

    xphost::runCommand("sim/operation/pause_toggle", xphost::Phase::Once);
    xphost::runFrames(5, 0.1);
    EXPECT_NEAR(xphost::simTime(), simBefore + 0.5, 1e-6);
    EXPECT_NE(xphost::aircraft().x, before.x);
    XPLMUnregisterFlightLoopCallback(timeLoop, &log);
}

// A plug-in that unregisters its flight loop from inside it, and registers another twice.
int selfCalls = 0, doubleCalls = 0;
float selfRemoving(float, float, int, void* refcon) {
    ++selfCalls;
    XPLMUnregisterFlightLoopCallback(selfRemoving, refcon);
    return -1;
}
float counted(float, float, int, void*) {
    ++doubleCalls;
    return -1;
}
int misuseStart(char* name, char* signature, char* description) {
    std::strcpy(name, "Misuse");
    std::strcpy(signature, "test.misuse");
    std::strcpy(description, "flight loop misuse");
    return 1;
}
int misuseEnable() {
    XPLMRegisterFlightLoopCallback(selfRemoving, -1, nullptr);
    XPLMRegisterFlightLoopCallback(counted, -1, nullptr);
    XPLMRegisterFlightLoopCallback(counted, -1, nullptr);
    return 1;
}
void misuseDisable() {
    XPLMUnregisterFlightLoopCallback(counted, nullptr);
    XPLMUnregisterFlightLoopCallback(counted, nullptr);
}

TEST_F(HostStrict, FlightLoopMisuseBehavesAsInXPlaneAndIsReported) {
    selfCalls = doubleCalls = 0;
    xphost::EntryPoints entry;
    entry.start = misuseStart;
    entry.enable = misuseEnable;
    entry.disable = misuseDisable;
    const int id = xphost::loadPlugin(entry, "/tmp/misuse.xpl");
    ASSERT_GE(id, 0);
    ASSERT_TRUE(xphost::enablePlugin(id));
    xphost::runFrames(3);
    EXPECT_EQ(selfCalls, 1);     // removed: never called again
    EXPECT_EQ(doubleCalls, 6);   // both registrations run
    xphost::stopPlugin(id);
    std::string report;
    for (const std::string& line : xphost::leaks()) report += line + "\n";
    EXPECT_NE(report.find("unregistered from inside itself"), std::string::npos) << report;
    EXPECT_NE(report.find("registered twice"), std::string::npos) << report;
}

int drawPassCalls = 0;
float modelViewScale = 0;
int passCallback(XPLMDrawingPhase, int, void*) {
    ++drawPassCalls;
    float m[16];
    XPLMGetDatavf(XPLMFindDataRef("sim/graphics/view/modelview_matrix"), m, 0, 16);
    modelViewScale = m[0];
    return 1;
}

TEST_F(HostStrict, WithoutDrawingCallbacksRunWithTheScreensMatricesAndNoPixels) {
    xphost::setDrawing(false);
    drawPassCalls = 0;
    XPLMRegisterDrawCallback(passCallback, xplm_Phase_Window, 0, nullptr);
    xphost::runFrames(5);
    EXPECT_EQ(drawPassCalls, 5);
    EXPECT_EQ(modelViewScale, 1.0f);
    int viewport[4] = {};
    XPLMGetDatavi(XPLMFindDataRef("sim/graphics/view/viewport"), viewport, 0, 4);
    EXPECT_EQ(viewport[2], 1920);
    EXPECT_EQ(viewport[3], 1080);
    std::string error;
    EXPECT_FALSE(xphost::screenshot("/tmp/never.png", &error));
    EXPECT_EQ(error, "drawing is off");
    XPLMUnregisterDrawCallback(passCallback, xplm_Phase_Window, 0, nullptr);
}

TEST_F(HostStrict, ScenarioBeforeLoadSectionsAndAircraftAttitude) {
    const std::string text = "frames 1\nbefore_load\nversion 11550\nend\nframes 2\n";
    std::string before, rest, error;
    ASSERT_TRUE(xphost::splitBeforeLoad(text, before, rest, error)) << error;
    EXPECT_EQ(before, "\n\nversion 11550\n\n\n");
    EXPECT_EQ(rest, "frames 1\n\n\n\nframes 2\n");
    EXPECT_FALSE(xphost::splitBeforeLoad("before_load\nframes 1\n", before, rest, error));
    EXPECT_EQ(error, "1: before_load without end");
    EXPECT_FALSE(xphost::splitBeforeLoad("end\n", before, rest, error));

    std::ostringstream out;
    ASSERT_TRUE(xphost::runScenarioText("aircraft_attitude 12.5 -30\nframes 3\n", "t", out, error)) << error;
    EXPECT_NEAR(xphost::getValue("sim/flightmodel/position/theta"), 12.5, 1e-4);
    EXPECT_NEAR(xphost::getValue("sim/flightmodel/position/phi"), -30, 1e-4);
    EXPECT_NE(xphost::getValue("sim/flightmodel/position/psi"), 90.0);  // the path still turns it
}

}  // namespace
