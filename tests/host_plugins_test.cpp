// The host's plug-in side: identity and messages, the leak report after
// XPluginStop, the main-thread check, files and versions, and scenario scripts.
#include <gtest/gtest.h>

#include <cstring>
#include <sstream>
#include <thread>

#include "XPLMCamera.h"
#include "XPLMDataAccess.h"
#include "XPLMPlanes.h"
#include "XPLMPlugin.h"
#include "XPLMProcessing.h"
#include "XPLMUtilities.h"
#include "host/host.h"
#include "tests/support/plugin_fixture.h"

namespace {

// A small plug-in made of plain functions; `sloppy` leaves its registrations behind.
struct TestPlugin {
    int myIdAtStart = -1;
    std::vector<int> messages;
    std::vector<intptr_t> params;
    std::vector<int> senders;
    bool sloppy = false;
    XPLMDataRef accessor = nullptr;
    XPLMCommandRef command = nullptr;
};
TestPlugin tp;

float loop(float, float, int, void*) { return -1; }
int readZero(void*) { return 0; }
int handler(XPLMCommandRef, XPLMCommandPhase, void*) { return 1; }
int camera(XPLMCameraPosition_t*, int, void*) { return 1; }

int start(char* name, char* signature, char* description) {
    std::strcpy(name, "Test Plugin");
    std::strcpy(signature, "test.plugin");
    std::strcpy(description, "Registers one of everything");
    tp.myIdAtStart = XPLMGetMyID();
    return 1;
}
int enable() {
    XPLMRegisterFlightLoopCallback(loop, -1, nullptr);
    tp.accessor = XPLMRegisterDataAccessor("test/plugin/value", xplmType_Int, 0, readZero, nullptr, nullptr,
                                           nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                           nullptr, nullptr, nullptr);
    tp.command = XPLMCreateCommand("test/plugin/cmd", "");
    XPLMRegisterCommandHandler(tp.command, handler, 1, nullptr);
    XPLMControlCamera(xplm_ControlCameraForever, camera, nullptr);
    return 1;
}
void disable() {
    if (tp.sloppy) return;
    XPLMUnregisterFlightLoopCallback(loop, nullptr);
    XPLMUnregisterDataAccessor(tp.accessor);
    XPLMUnregisterCommandHandler(tp.command, handler, 1, nullptr);
    XPLMDontControlCamera();
}
void stop() {}
void receive(int from, int message, void* param) {
    tp.senders.push_back(from);
    tp.messages.push_back(message);
    tp.params.push_back(reinterpret_cast<intptr_t>(param));
}

xphost::EntryPoints entries() {
    xphost::EntryPoints e;
    e.start = start;
    e.enable = enable;
    e.disable = disable;
    e.stop = stop;
    e.receive = receive;
    return e;
}

class HostPlugins : public ::testing::Test {
protected:
    void SetUp() override {
        xphost::reset();
        tp = TestPlugin();
        root = testsupport::makeTempTree("host-plugins");
        xphost::setRoot(root);
    }
    void TearDown() override { testsupport::removeTree(root); }
    std::string root;
};

TEST_F(HostPlugins, IdentityAndMessages) {
    int id = xphost::loadPlugin(entries(), root + "Resources/plugins/Test/lin_x64/Test.xpl");
    ASSERT_GT(id, 0);
    EXPECT_EQ(tp.myIdAtStart, id);
    char name[256], path[256], signature[256], description[256];
    XPLMGetPluginInfo(id, name, path, signature, description);
    EXPECT_STREQ(name, "Test Plugin");
    EXPECT_EQ(std::string(path), root + "Resources/plugins/Test/lin_x64/Test.xpl");
    EXPECT_STREQ(signature, "test.plugin");
    EXPECT_EQ(XPLMFindPluginBySignature("test.plugin"), id);
    EXPECT_EQ(XPLMFindPluginBySignature("com.acmedev.datareftool"), -1);

    // Messages reach enabled plug-ins only.
    xphost::sendPlaneLoaded(0);
    EXPECT_TRUE(tp.messages.empty());
    ASSERT_TRUE(xphost::enablePlugin(id));
    EXPECT_EQ(XPLMIsPluginEnabled(id), 1);
    xphost::sendPlaneLoaded(3);
    xphost::sendEnteredVr();
    EXPECT_EQ(tp.messages, (std::vector<int>{XPLM_MSG_PLANE_LOADED, XPLM_MSG_ENTERED_VR}));
    EXPECT_EQ(tp.params.front(), 3);
    EXPECT_EQ(tp.senders.front(), XPLM_PLUGIN_XPLANE);

    // A stand-in plug-in hears a message sent to it, with the sender's id.
    static std::vector<std::string> heard;
    heard.clear();
    int tool = xphost::addStandInPlugin("DataRefTool", "com.acmedev.datareftool", "", [](int from, int msg, void* p) {
        if (msg == 0x1000000) heard.push_back(std::to_string(from) + ":" + static_cast<const char*>(p));
    });
    EXPECT_EQ(XPLMFindPluginBySignature("com.acmedev.datareftool"), tool);
    EXPECT_EQ(XPLMCountPlugins(), 2);
    EXPECT_EQ(XPLMGetNthPlugin(1), tool);
    XPLMSendMessageToPlugin(tool, 0x1000000, const_cast<char*>("KVT/x"));
    EXPECT_EQ(heard, (std::vector<std::string>{std::to_string(id) + ":KVT/x"}));

    // Disabled plug-ins' callbacks stop: the accessor reads 0 and the loop pauses.
    tp.sloppy = true;
    xphost::disablePlugin(id);
    xphost::sendAirportLoaded();
    EXPECT_EQ(tp.messages.size(), 2u);
    EXPECT_EQ(xphost::cameraController(), -1);
}

TEST_F(HostPlugins, LeakReportNamesWhatAStoppedPluginLeftRegistered) {
    int id = xphost::loadPlugin(entries(), root + "Test.xpl");
    ASSERT_TRUE(xphost::enablePlugin(id));
    xphost::stopPlugin(id);
    EXPECT_TRUE(xphost::leaks().empty()) << xphost::leaks().front();

    tp = TestPlugin();
    tp.sloppy = true;
    id = xphost::loadPlugin(entries(), root + "Test.xpl");
    ASSERT_TRUE(xphost::enablePlugin(id));
    xphost::stopPlugin(id);
    std::string all;
    for (auto& l : xphost::leaks()) all += l + "\n";
    EXPECT_EQ(xphost::leaks().size(), 3u) << all;  // camera control ended with XPluginDisable
    EXPECT_NE(all.find("Test Plugin: flight loop callback"), std::string::npos) << all;
    EXPECT_NE(all.find("data accessor test/plugin/value"), std::string::npos) << all;
    EXPECT_NE(all.find("command handler (before) test/plugin/cmd"), std::string::npos) << all;
    EXPECT_NE(xphost::logText().find("still has registered after XPluginStop"), std::string::npos);
    // What was left no longer runs.
    xphost::runFrames(2);
    EXPECT_EQ(XPLMFindDataRef("test/plugin/value"), nullptr);
}

TEST_F(HostPlugins, CallsFromAWorkerThreadAreViolations) {
    XPLMDataRef found = reinterpret_cast<XPLMDataRef>(1);
    std::thread worker([&] { found = XPLMFindDataRef("sim/graphics/view/view_type"); });
    worker.join();
    EXPECT_EQ(found, nullptr);
    ASSERT_EQ(xphost::threadViolationCount(), 1);
    EXPECT_NE(xphost::threadViolations()[0].find("XPLMFindDataRef"), std::string::npos);
    EXPECT_NE(XPLMFindDataRef("sim/graphics/view/view_type"), nullptr);
    EXPECT_EQ(xphost::threadViolationCount(), 1);
}

TEST_F(HostPlugins, DirectoryContentsFollowXPlanesBufferRules) {
    for (const char* f : {"b.csv", "a.csv", "c_longer_name.csv"}) testsupport::writeFile(root, std::string("dir/") + f, "x");
    std::string dir = root + "dir";
    char names[64];
    char* index[8];
    int total = -1, returned = -1;
    EXPECT_EQ(XPLMGetDirectoryContents(dir.c_str(), 0, names, sizeof names, index, 8, &total, &returned), 1);
    EXPECT_EQ(total, 3);
    EXPECT_EQ(returned, 3);
    EXPECT_STREQ(index[0], "a.csv");
    EXPECT_STREQ(index[2], "c_longer_name.csv");
    EXPECT_EQ(index[3], nullptr);

    // Too small a buffer: what fits, and 0.
    char small[14];
    EXPECT_EQ(XPLMGetDirectoryContents(dir.c_str(), 0, small, sizeof small, index, 8, &total, &returned), 0);
    EXPECT_EQ(total, 3);
    EXPECT_EQ(returned, 2);
    // Skipping the first two.
    EXPECT_EQ(XPLMGetDirectoryContents(dir.c_str(), 2, names, sizeof names, index, 8, &total, &returned), 1);
    EXPECT_EQ(returned, 1);
    EXPECT_STREQ(index[0], "c_longer_name.csv");
    // Index array too short.
    EXPECT_EQ(XPLMGetDirectoryContents(dir.c_str(), 0, names, sizeof names, index, 2, &total, &returned), 0);
    EXPECT_EQ(returned, 1);

    EXPECT_EQ(XPLMGetDirectoryContents((root + "missing").c_str(), 0, names, sizeof names, index, 8, &total,
                                       &returned),
              0);
    EXPECT_EQ(total, 0);
}

TEST_F(HostPlugins, PathsAircraftVersionsAndLog) {
    char system[512];
    XPLMGetSystemPath(system);
    EXPECT_EQ(std::string(system), root);
    char full[] = "/x/Aircraft/C172/Cessna.acf";
    char* file = XPLMExtractFileAndPath(full);
    EXPECT_STREQ(file, "Cessna.acf");
    EXPECT_STREQ(full, "/x/Aircraft/C172");

    xphost::setUserAircraft("Aircraft/Test/Plane.acf");
    char name[256], path[512];
    XPLMGetNthAircraftModel(0, name, path);
    EXPECT_STREQ(name, "Plane.acf");
    EXPECT_EQ(std::string(path), root + "Aircraft/Test/Plane.acf");

    int xp = 0, xplm = 0;
    XPLMHostApplicationID host = 0;
    XPLMGetVersions(&xp, &xplm, &host);
    EXPECT_EQ(xp, 12100);
    EXPECT_EQ(xplm, 410);
    EXPECT_EQ(host, xplm_Host_XPlane);
    xphost::setVersion(11550);
    XPLMGetVersions(&xp, &xplm, nullptr);
    EXPECT_EQ(xp, 11550);
    EXPECT_EQ(xplm, 303);

    XPLMDebugString("first line\n");
    XPLMDebugString("second line\n");
    XPLMSpeakString("hello");
    EXPECT_EQ(xphost::logTail(1), "second line\n");
    EXPECT_EQ(testsupport::readFile(root + "Log.txt"), "first line\nsecond line\n");
    EXPECT_EQ(xphost::spoken(), (std::vector<std::string>{"hello"}));
}

TEST_F(HostPlugins, ScenarioScriptsDriveTheHostAndStopAtABadLine) {
    std::ostringstream out;
    std::string error;
    const char* script =
        "# a comment\n"
        "set sim/graphics/view/pilots_head_x 0.25\n"
        "command sim/view/chase once\n"
        "frames 3\n"
        "expect sim/graphics/view/view_type 1017\n"
        "expect sim/joystick/joystick_axis_values[4] 0\n"
        "get sim/graphics/view/pilots_head_x\n"
        "print done \"quoted\"\n";
    EXPECT_TRUE(xphost::runScenarioText(script, "ok.scn", out, error)) << error;
    EXPECT_EQ(xphost::frameNumber(), 3);
    EXPECT_NE(out.str().find("sim/graphics/view/pilots_head_x = 0.25\n"), std::string::npos) << out.str();
    EXPECT_NE(out.str().find("done \"quoted\"\n"), std::string::npos);

    EXPECT_FALSE(xphost::runScenarioText("frames 1\nexpect sim/graphics/view/view_type 1026\nframes 1\n", "a.scn",
                                         out, error));
    EXPECT_EQ(error, "a.scn:2: expected sim/graphics/view/view_type = 1026, got 1017");
    EXPECT_EQ(xphost::frameNumber(), 4);  // nothing after the failing line ran

    for (const char* bad : {"fly 3\n", "frames x\n", "command no/such once\n", "set sim/none 1\n",
                            "command sim/view/chase sideways\n"}) {
        EXPECT_FALSE(xphost::runScenarioText(bad, "b.scn", out, error)) << bad;
        EXPECT_EQ(error.rfind("b.scn:1: ", 0), 0u) << error;
    }
}

}  // namespace
