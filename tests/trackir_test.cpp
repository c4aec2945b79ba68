// The head tracker client through its real loading path: the plug-in folder's location
// file names the folder of a stand-in client library, which serves scripted frames and
// can be told to fail any entry.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include "commands_and_mouse_fixture.h"
#include "data/aircraft_files.h"
#include "data/settings.h"
#include "host/host.h"
#include "inputs/trackir.h"
#include "motion/camera_inputs.h"
#include "motion/movement.h"
#include "platform/library_loader.h"
#include "platform/registry.h"
#include "host/outside_plugins.h"
#include "motion/frame_driver.h"
#include "shell/integration_datarefs.h"

namespace {

struct DoubleControls {
    void (*reset)();
    void (*setResult)(const char*, int);
    void (*setSignature)(const char*, const char*);
    void (*queueFrame)(const unsigned char*);
    int (*callCount)(const char*);
    long (*lastArgument)(const char*);
};

const std::string kDoubleDir = VISTARIG_TRACKIR_DOUBLE_DIR;

// Opening the client's file again hands back the instance the plug-in loaded.
DoubleControls controls() {
    void* library = loadLibrary((kDoubleDir + "/NPClient64.so").c_str());
    EXPECT_NE(library, nullptr);
    DoubleControls c;
    c.reset = reinterpret_cast<void (*)()>(findLibrarySymbol(library, "trackirDoubleReset"));
    c.setResult = reinterpret_cast<void (*)(const char*, int)>(findLibrarySymbol(library, "trackirDoubleSetResult"));
    c.setSignature = reinterpret_cast<void (*)(const char*, const char*)>(
        findLibrarySymbol(library, "trackirDoubleSetSignature"));
    c.queueFrame = reinterpret_cast<void (*)(const unsigned char*)>(findLibrarySymbol(library, "trackirDoubleQueueFrame"));
    c.callCount = reinterpret_cast<int (*)(const char*)>(findLibrarySymbol(library, "trackirDoubleCallCount"));
    c.lastArgument = reinterpret_cast<long (*)(const char*)>(findLibrarySymbol(library, "trackirDoubleLastArgument"));
    return c;
}

// Raw values as the tracker sends them: rotations then translations.
struct RawFrame {
    uint16_t status = 0;
    uint16_t signature = 1;
    float roll = 0, pitch = 0, yaw = 0, x = 0, y = 0, z = 0;
};

void encode(const RawFrame& f, unsigned char* bytes) {
    std::memset(bytes, 0, kTrackIrFrameBytes);
    bytes[0] = f.status & 0xff;
    bytes[1] = f.status >> 8;
    bytes[2] = f.signature & 0xff;
    bytes[3] = f.signature >> 8;
    const float values[6] = {f.roll, f.pitch, f.yaw, f.x, f.y, f.z};
    for (int i = 0; i < 6; ++i) {
        uint32_t bits;
        std::memcpy(&bits, &values[i], 4);
        for (int b = 0; b < 4; ++b) bytes[8 + 4 * i + b] = static_cast<unsigned char>(bits >> (8 * b));
    }
}

class TrackIrTest : public ::testing::Test {
protected:
    std::filesystem::path folder;
    DoubleControls tracker{};
    int32_t status = 0;

    void SetUp() override {
        xphost::reset();
        folder = std::filesystem::temp_directory_path() / ("vistarig-trackir-" + std::to_string(::getpid()));
        std::filesystem::remove_all(folder);
        std::filesystem::create_directories(folder);
        overridePluginDirectory((folder.string() + "/").c_str());
        writeLocation(kDoubleDir);
        settings() = builtInSettings();
        resetMovement();
        integrationValues() = IntegrationValues{};
        trackIrClient() = TrackIrClient();
        tracker = controls();
        tracker.reset();
    }

    void TearDown() override {
        overridePluginDirectory("");
        std::filesystem::remove_all(folder);
    }

    void writeLocation(const std::string& location) {
        std::ofstream(folder / kTrackIrLocationFileName) << location << "\n";
    }

    void startAndSend(const RawFrame& frame) {
        TrackIRStart(status);
        ASSERT_TRUE(TrackIRIsActive()) << xphost::logTail(5);
        send(frame);
    }

    void send(const RawFrame& frame) {
        unsigned char bytes[kTrackIrFrameBytes];
        encode(frame, bytes);
        tracker.queueFrame(bytes);
    }

    CameraPose applied(float heading = 0) {
        CameraPose pose;
        pose.heading = heading;
        TrackIRApply(pose);
        return pose;
    }
};

TEST_F(TrackIrTest, EachFailingStepLeavesItsStatusAndMessage) {
    struct Case {
        const char* failingEntry;
        int expectedStatus;
        const char* message;
    };
    const Case cases[] = {
        {"NP_GetSignature", 1, "TrackIR - unable to retrive the DLL Signature, is the TrackIR software running?."},
        {"NP_RegisterWindowHandle", 4, "TrackIR - Detected an error registering the window handle"},
        {"NP_RegisterProgramProfileID", 3, "TrackIR - Vistarig is not in the game list, update your TrackIR game list."},
        {"NP_StopCursor", 5, "TrackIR - error stopping cursor"},
        {"NP_StartDataTransmission", 8, "TrackIR - error starting data transmission"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.failingEntry);
        tracker.reset();
        tracker.setResult(c.failingEntry, 1);
        status = 0;
        TrackIRStart(status);
        EXPECT_EQ(status, c.expectedStatus);
        EXPECT_FALSE(TrackIRIsActive());
        EXPECT_NE(xphost::logText().find(c.message), std::string::npos);
    }

    // The wrong vendor answering.
    tracker.reset();
    tracker.setSignature("precise head tracking", "hardware camera");
    TrackIRStart(status);
    EXPECT_EQ(status, 2);
    EXPECT_NE(xphost::logText().find("TrackIR - DLL Signature check failed"), std::string::npos);
    EXPECT_EQ(tracker.callCount("NP_RegisterWindowHandle"), 0);

    // No client where the location points, and no location at all.
    writeLocation(folder.string());
    TrackIRStart(status);
    EXPECT_EQ(status, 1);
    std::filesystem::remove(folder / kTrackIrLocationFileName);
    status = 6;
    TrackIRStart(status);
    EXPECT_EQ(status, 1);
    EXPECT_NE(xphost::logText().find("Vistarig: TrackIR was not detected\n"), std::string::npos);
    EXPECT_FALSE(TrackIRIsActive());
}

TEST_F(TrackIrTest, StartRegistersAndRequestsDataAndStopEndsIt) {
    // A trailing separator gets a second one, which the loader accepts.
    writeLocation(kDoubleDir + "/");
    TrackIRStart(status);
    EXPECT_EQ(status, kTrackIrStatusEnabled);
    EXPECT_TRUE(TrackIRIsActive());
    EXPECT_NE(xphost::logText().find("TrackIR was found and is enabled"), std::string::npos);
    EXPECT_EQ(tracker.lastArgument("NP_RequestData"), 119);
    EXPECT_EQ(tracker.lastArgument("NP_RegisterProgramProfileID"), 3775);
    EXPECT_EQ(tracker.callCount("NP_QueryVersion"), 0);
    EXPECT_EQ(tracker.callCount("NP_StartCursor"), 0);
    EXPECT_EQ(tracker.callCount("NP_ReCenter"), 0);

    // A failing stop call is ignored.
    tracker.setResult("NP_StopDataTransmission", 3);
    TrackIRStop(status);
    EXPECT_EQ(status, kTrackIrStatusDisabled);
    EXPECT_FALSE(TrackIRIsActive());
    EXPECT_EQ(tracker.callCount("NP_StopDataTransmission"), 1);
    EXPECT_EQ(tracker.callCount("NP_UnregisterWindowHandle"), 1);
    EXPECT_NE(xphost::logText().find("TrackIR has been shutdown"), std::string::npos);

    // Only an active client is stopped.
    status = 4;
    TrackIRStop(status);
    EXPECT_EQ(status, 4);
    EXPECT_EQ(tracker.callCount("NP_StopDataTransmission"), 1);
}

TEST_F(TrackIrTest, OverlongLocationCountsAsNotInstalled) {
    writeLocation(kDoubleDir + "/" + std::string(2000, 'x'));
    TrackIRStart(status);
    EXPECT_EQ(status, kTrackIrStatusNotInstalled);
    EXPECT_FALSE(TrackIRIsActive());
}

TEST_F(TrackIrTest, FramesAreScaledAndOnlyNewUsableOnesCount) {
    settings().MEDIUM_HEADTRACK_RANGE = 0.5f;
    RawFrame frame;
    frame.x = 32766;  // full scale: exactly the range
    frame.y = -16383;
    frame.z = 8191.5f;
    frame.yaw = 1000;
    frame.pitch = -2000;
    frame.roll = 300;
    startAndSend(frame);
    CameraPose pose = applied(0);
    EXPECT_FLOAT_EQ(pose.x, -0.5f);
    EXPECT_FLOAT_EQ(pose.y, -0.25f);
    EXPECT_FLOAT_EQ(pose.z, 0.125f);
    EXPECT_FLOAT_EQ(pose.heading, -1000 * 0.010987f);
    EXPECT_FLOAT_EQ(pose.pitch, 2000 * 0.010987f);
    EXPECT_FLOAT_EQ(pose.roll, -300 * 0.010987f);

    // Same signature: ignored, the last values stay.
    RawFrame same = frame;
    same.x = 0;
    send(same);
    EXPECT_FLOAT_EQ(applied(0).x, -0.5f);
    // A new signature with a non-zero status: skipped.
    RawFrame bad = same;
    bad.signature = 2;
    bad.status = 1;
    send(bad);
    EXPECT_FLOAT_EQ(applied(0).x, -0.5f);
    // A failing read: skipped as well.
    tracker.setResult("NP_GetData", 1);
    RawFrame good = same;
    good.signature = 3;
    send(good);
    EXPECT_FLOAT_EQ(applied(0).x, -0.5f);
    tracker.setResult("NP_GetData", 0);
    EXPECT_FLOAT_EQ(applied(0).x, 0.0f);
}

TEST_F(TrackIrTest, FirstFrameWithSignatureZeroCountsAsSeen) {
    RawFrame frame;
    frame.signature = 0;
    frame.x = 32766;
    startAndSend(frame);
    EXPECT_FLOAT_EQ(applied(0).x, 0.0f);
}

TEST_F(TrackIrTest, RangeIsFixedWhenTheFrameArrives) {
    settings().SMALL_HEADTRACK_RANGE = 0.25f;
    settings().LARGE_HEADTRACK_RANGE = 2.0f;
    movementState().speedSelector = 0;
    RawFrame frame;
    frame.z = 32766;
    startAndSend(frame);
    EXPECT_FLOAT_EQ(applied(0).z, 0.25f);
    movementState().speedSelector = 2;
    EXPECT_FLOAT_EQ(applied(0).z, 0.25f) << "old frame keeps the old range";
    frame.signature = 2;
    send(frame);
    EXPECT_FLOAT_EQ(applied(0).z, 2.0f);
}

TEST_F(TrackIrTest, HorizontalOffsetsFollowOnlyTheCosineOfTheHeading) {
    RawFrame frame;
    frame.x = 32766;
    frame.z = 32766;
    startAndSend(frame);
    CameraPose ahead = applied(0);
    EXPECT_FLOAT_EQ(ahead.x, -1.0f);
    EXPECT_FLOAT_EQ(ahead.z, 1.0f);
    CameraPose back = applied(180);
    EXPECT_FLOAT_EQ(back.x, 1.0f);
    EXPECT_FLOAT_EQ(back.z, -1.0f);
    CameraPose side = applied(90);
    EXPECT_NEAR(side.x, 0.0f, 1e-6);
    EXPECT_NEAR(side.z, 0.0f, 1e-6);
}

TEST_F(TrackIrTest, SmoothingRampsAndFactorZeroPassesThrough) {
    RawFrame frame;
    frame.y = 32766;
    startAndSend(frame);
    EXPECT_FLOAT_EQ(applied().y, 1.0f);
    EXPECT_EQ(trackIrClient().filters[kHeadY].count, 0) << "factor 0 leaves the filters alone";

    settings().HEAD_TRACK_SMOOTHING_FACTOR = 3;
    // The unchanged frame goes on feeding the filter, so the offset settles on it.
    const float expected[] = {1.0f / 3, 2.0f / 3, 1.0f, 1.0f, 1.0f};
    for (float e : expected) EXPECT_FLOAT_EQ(applied().y, e);
}

TEST_F(TrackIrTest, CockpitLimitsNeedAnActiveClientAndSpareOutsideCameras) {
    Camera camera{};
    camera.trackIrEnabled = true;
    camera.limitTrackIr = true;
    camera.trackIrMin.x = -0.2f;
    camera.trackIrMax.x = 0.3f;
    camera.trackIrMin.y = camera.trackIrMin.z = -1;
    camera.trackIrMax.y = camera.trackIrMax.z = 1;
    CameraPose pose;
    pose.x = 0.8f;

    CameraPose p = pose;
    applyTrackIrLimits(camera, p);
    EXPECT_FLOAT_EQ(p.x, 0.8f) << "no tracker, no limit";

    TrackIRStart(status);
    ASSERT_TRUE(TrackIRIsActive());
    p = pose;
    applyTrackIrLimits(camera, p);
    EXPECT_FLOAT_EQ(p.x, 0.3f);
    p.x = -5;
    applyTrackIrLimits(camera, p);
    EXPECT_FLOAT_EQ(p.x, -0.2f);

    camera.external = true;
    p = pose;
    applyTrackIrLimits(camera, p);
    EXPECT_FLOAT_EQ(p.x, 0.8f) << "outside cameras are never limited";
}

TEST_F(TrackIrTest, ExternalHeadTrackingIsRangedSmoothedAndLimitedWithoutClient) {
    settings().MEDIUM_HEADTRACK_RANGE = 0.5f;
    settings().HEAD_TRACK_SMOOTHING_FACTOR = 2;
    IntegrationValues& in = integrationValues();
    in.headtrackingXOffset = 1.0f;
    in.headtrackingHeadingOffset = 10.0f;
    Camera camera{};
    camera.trackIrEnabled = true;
    CameraPose pose;
    applyExternalHeadTracking(camera, pose);
    EXPECT_FLOAT_EQ(pose.x, 0.25f) << "half the window filled, then the range";
    EXPECT_FLOAT_EQ(pose.heading, 5.0f);

    camera.limitTrackIr = true;
    camera.trackIrMax.x = 0.1f;
    camera.trackIrMin.x = -1;
    camera.trackIrMax.y = camera.trackIrMax.z = 1;
    camera.trackIrMin.y = camera.trackIrMin.z = -1;
    pose = CameraPose();
    applyExternalHeadTracking(camera, pose);
    EXPECT_FLOAT_EQ(pose.x, 0.1f);
}

// The camera level starts and stops the tracker, and a tracked cockpit camera moves
// the pilot's head by the frame's offsets.
class TrackIrInPluginTest : public PluginWithCameras {};

TEST_F(TrackIrInPluginTest, CameraLevelDrivesTheTrackerAndTheHead) {
    std::ofstream(root / "Resources/plugins/Vistarig" / kTrackIrLocationFileName) << kDoubleDir << "\n";
    DoubleControls tracker = controls();
    tracker.reset();
    xphost::installHeadShake();
    loadAircraftWithCameras();
    EXPECT_EQ(pluginState().trackIrStatus, kTrackIrStatusEnabled) << xphost::logTail(10);
    EXPECT_EQ(xphost::headShakeOverrideValue(), 1);
    EXPECT_EQ(xphost::getValue("KVT/Vistarig/integration/Vistarig_enabled"), 1);

    Camera& seat = camera(0, 0);
    seat.trackIrEnabled = true;
    RawFrame frame;
    frame.x = 32766;
    frame.yaw = 1000;
    unsigned char bytes[kTrackIrFrameBytes];
    encode(frame, bytes);
    tracker.queueFrame(bytes);
    xphost::runFrames(2);
    EXPECT_EQ(xphost::getValue("KVT/Vistarig/integration/Vistarig_enabled"), 2);
    const float c = std::cos(seat.heading * static_cast<float>(M_PI) / 180.0f);
    EXPECT_NEAR(xphost::getValue("sim/graphics/view/pilots_head_x"), seat.x - c, 1e-4);
    EXPECT_NEAR(xphost::getValue("sim/graphics/view/pilots_head_psi"), seat.heading - 1000 * 0.010987f, 1e-4);

    // The snap keeps the head position in the camera; the roll stays the camera's.
    const float x = seat.x, heading = seat.heading;
    seat.roll = 4;
    snapCameraToTrackIr();
    EXPECT_FLOAT_EQ(seat.x, x - c);
    EXPECT_FLOAT_EQ(seat.heading, heading - 1000 * 0.010987f);
    EXPECT_EQ(seat.roll, 4.0f);

    disableCamera(false);
    EXPECT_EQ(pluginState().trackIrStatus, kTrackIrStatusDisabled);
    EXPECT_EQ(xphost::headShakeOverrideValue(), 0);
    EXPECT_EQ(xphost::getValue("KVT/Vistarig/integration/Vistarig_enabled"), 0);
    EXPECT_EQ(tracker.callCount("NP_StopDataTransmission"), 1);
}

}  // namespace
