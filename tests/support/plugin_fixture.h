// A test with the plug-in loaded in-process: the host reset, a temporary X-Plane
// tree with the default aircraft, the plug-in's own XPlugin* functions loaded as a
// plug-in and enabled, and short helpers to run frames, read and write datarefs,
// run commands and send messages. Derive from PluginTest.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "XPLMDefs.h"
#include "host/host.h"

extern "C" {
int XPluginStart(char* outName, char* outSignature, char* outDescription);
int XPluginEnable(void);
void XPluginDisable(void);
void XPluginStop(void);
void XPluginReceiveMessage(XPLMPluginID inFrom, int inMessage, void* inParam);
}

namespace testsupport {

// A fresh folder under TMPDIR (or /tmp), ending with "/"; removed by removeTree.
std::string makeTempTree(const char* prefix = "vistarig-test");
void removeTree(const std::string& root);
// Writes a file under root, making its folders; returns its absolute path.
std::string writeFile(const std::string& root, const std::string& relativePath, const std::string& content);
std::string readFile(const std::string& path);

// The aircraft every fixture installs, relative to the root.
extern const char* const aircraftPath;

}  // namespace testsupport

class PluginTest : public ::testing::Test {
protected:
    // Override to false to load the plug-in without enabling it.
    virtual bool enableOnSetUp() { return true; }

    void SetUp() override;
    void TearDown() override;

    // The plug-in's lifecycle, as the simulator drives it.
    void enable() { xphost::enablePlugin(plugin); }
    void disable() { xphost::disablePlugin(plugin); }
    void stop() { xphost::stopPlugin(plugin); }
    void planeLoaded(int index = 0) { xphost::sendPlaneLoaded(index); }
    void message(int id, intptr_t param = 0) { xphost::sendMessage(id, param); }

    void runFrames(int n = 1) { xphost::runFrames(n); }

    // Datarefs by name; a missing name fails the test. Writes go in as the
    // simulator's, so read-only datarefs can be set up too.
    double get(const std::string& name, int index = 0);
    float getf(const std::string& name, int index = 0) { return static_cast<float>(get(name, index)); }
    int geti(const std::string& name, int index = 0) { return static_cast<int>(get(name, index)); }
    void set(const std::string& name, double value, int index = -1);
    void setf(const std::string& name, float value, int index = -1) { set(name, value, index); }
    void seti(const std::string& name, int value, int index = -1) { set(name, value, index); }

    // A command by name; a missing command fails the test.
    void command(const std::string& name, xphost::Phase phase = xphost::Phase::Once);

    // A file in the X-Plane tree.
    std::string writeFile(const std::string& relativePath, const std::string& content) {
        return testsupport::writeFile(root, relativePath, content);
    }
    // The aircraft's folder, ending with "/".
    std::string aircraftFolder() const;

    std::string root;  // the X-Plane folder, ending with "/"
    int plugin = -1;
};
