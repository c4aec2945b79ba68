// The in-process fixture with the plug-in's own code: it loads under its signature,
// survives frames and messages, and leaves nothing registered after XPluginStop.
#include <gtest/gtest.h>

#include "XPLMPlugin.h"
#include "tests/support/plugin_fixture.h"

namespace {

class HostFixture : public PluginTest {};

TEST_F(HostFixture, PluginRunsAndStopsCleanly) {
    EXPECT_EQ(XPLMFindPluginBySignature("KVT.Vistarig"), plugin);
    EXPECT_TRUE(xphost::pluginEnabled(plugin));
    planeLoaded();
    runFrames(30);
    message(XPLM_MSG_AIRPORT_LOADED);
    command("sim/view/chase");
    runFrames(5);
    disable();
    enable();
    runFrames(5);
    stop();
    std::string all;
    for (auto& l : xphost::leaks()) all += l + "\n";
    EXPECT_TRUE(xphost::leaks().empty()) << all << "Log:\n" << xphost::logTail(15);
    EXPECT_EQ(xphost::threadViolationCount(), 0);
}

}  // namespace
