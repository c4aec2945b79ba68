// The host's commands: phases and refcons, before-handlers swallowing the
// simulator's handling, held commands, and the simulator's own view commands.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "XPLMDataAccess.h"
#include "XPLMUtilities.h"
#include "host/host.h"

namespace {

struct Trace {
    std::vector<std::string> calls;
    int beforeResult = 1;
};

Trace trace;

int before(XPLMCommandRef, XPLMCommandPhase phase, void* refcon) {
    trace.calls.push_back(std::string("before ") + static_cast<const char*>(refcon) + " " + std::to_string(phase));
    return trace.beforeResult;
}

int after(XPLMCommandRef, XPLMCommandPhase phase, void* refcon) {
    trace.calls.push_back(std::string("after ") + static_cast<const char*>(refcon) + " " + std::to_string(phase));
    return 1;
}

class HostCommands : public ::testing::Test {
protected:
    void SetUp() override {
        xphost::reset();
        trace = Trace();
    }
};

TEST_F(HostCommands, PhasesReachHandlersInOrderWithTheirRefcons) {
    EXPECT_EQ(XPLMFindCommand("test/cmd"), nullptr);
    XPLMCommandRef cmd = XPLMCreateCommand("test/cmd", "A test");
    ASSERT_NE(cmd, nullptr);
    EXPECT_EQ(XPLMCreateCommand("test/cmd", "again"), cmd);
    EXPECT_EQ(XPLMFindCommand("test/cmd"), cmd);
    static char a[] = "a", b[] = "b";
    XPLMRegisterCommandHandler(cmd, after, 0, a);
    XPLMRegisterCommandHandler(cmd, before, 1, b);

    XPLMCommandOnce(cmd);
    EXPECT_EQ(trace.calls, (std::vector<std::string>{"before b 0", "after a 0", "before b 2", "after a 2"}));

    // Held: a continue phase every frame until the end.
    trace.calls.clear();
    XPLMCommandBegin(cmd);
    xphost::runFrames(3);
    XPLMCommandEnd(cmd);
    xphost::runFrames(2);
    std::vector<std::string> befores;
    for (auto& c : trace.calls)
        if (c[0] == 'b') befores.push_back(c);
    EXPECT_EQ(befores, (std::vector<std::string>{"before b 0", "before b 1", "before b 1", "before b 1",
                                                 "before b 2"}));

    XPLMUnregisterCommandHandler(cmd, before, 1, b);
    XPLMUnregisterCommandHandler(cmd, after, 0, a);
    trace.calls.clear();
    XPLMCommandOnce(cmd);
    EXPECT_TRUE(trace.calls.empty());
}

TEST_F(HostCommands, BeforeHandlerReturningZeroSwallowsTheSimulatorsHandling) {
    XPLMCommandRef rot = XPLMFindCommand("sim/general/rot_right");
    ASSERT_NE(rot, nullptr);
    static char tag[] = "x";
    XPLMRegisterCommandHandler(rot, before, 1, tag);
    XPLMRegisterCommandHandler(rot, after, 0, tag);
    XPLMDataRef psi = XPLMFindDataRef("sim/graphics/view/pilots_head_psi");

    trace.beforeResult = 0;
    XPLMCommandOnce(rot);
    EXPECT_EQ(XPLMGetDataf(psi), 0.0f);
    EXPECT_EQ(xphost::simCommandCount("sim/general/rot_right"), 0);
    EXPECT_EQ(trace.calls, (std::vector<std::string>{"before x 0", "before x 2"}));

    trace.beforeResult = 1;
    trace.calls.clear();
    XPLMCommandBegin(rot);
    xphost::runFrames(2);
    XPLMCommandEnd(rot);
    // Begin and two continue phases each turn the head by one degree.
    EXPECT_FLOAT_EQ(XPLMGetDataf(psi), 3.0f);
    EXPECT_EQ(xphost::simCommandCount("sim/general/rot_right"), 1);
    EXPECT_EQ(trace.calls.back(), "after x 2");
}

int selfRemovals = 0;
int removeSelf(XPLMCommandRef cmd, XPLMCommandPhase, void* refcon) {
    ++selfRemovals;
    XPLMUnregisterCommandHandler(cmd, removeSelf, 1, refcon);
    XPLMRegisterCommandHandler(cmd, after, 0, refcon);
    return 1;
}

TEST_F(HostCommands, HandlersMayRegisterAndUnregisterFromInsideAHandler) {
    selfRemovals = 0;
    XPLMCommandRef cmd = XPLMCreateCommand("test/self", "");
    static char tag[] = "s";
    XPLMRegisterCommandHandler(cmd, removeSelf, 1, tag);
    XPLMCommandOnce(cmd);
    EXPECT_EQ(selfRemovals, 1);
    // The handler added during the begin phase already hears the end phase.
    EXPECT_EQ(trace.calls, (std::vector<std::string>{"after s 0", "after s 2"}));
}

TEST_F(HostCommands, SimulatorViewCommandsSelectTheirViews) {
    XPLMDataRef type = XPLMFindDataRef("sim/graphics/view/view_type");
    XPLMDataRef external = XPLMFindDataRef("sim/graphics/view/view_is_external");
    XPLMCommandOnce(XPLMFindCommand("sim/view/free_camera"));
    EXPECT_EQ(XPLMGetDatai(type), 1028);
    EXPECT_EQ(XPLMGetDatai(external), 1);
    XPLMCommandOnce(XPLMFindCommand("sim/view/chase"));
    EXPECT_EQ(XPLMGetDatai(type), 1017);
    XPLMCommandOnce(XPLMFindCommand("sim/view/3d_cockpit_cmnd_look"));
    EXPECT_EQ(XPLMGetDatai(type), 1026);
    EXPECT_EQ(XPLMGetDatai(external), 0);

    // The commands that a camera plug-in intercepts all exist.
    for (const char* name : {"sim/view/quick_look_19_mem", "sim/view/quick_look_0", "sim/general/zoom_in_fast",
                             "sim/general/hat_switch_down_left", "sim/view/glance_left", "sim/view/pan_up_fast",
                             "sim/view/straight_down", "sim/general/backward_slow", "sim/view/free_view_toggle",
                             "sim/view/3d_cockpit", "sim/operation/pause_toggle"})
        EXPECT_NE(XPLMFindCommand(name), nullptr) << name;
}

}  // namespace
