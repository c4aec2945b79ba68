// The in-process plug-in fixture and its file helpers.
#include "tests/support/plugin_fixture.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace testsupport {

const char* const aircraftPath = "Aircraft/Laminar Research/Cessna 172 SP/Cessna_172SP.acf";

std::string makeTempTree(const char* prefix) {
    const char* tmp = std::getenv("TMPDIR");
    std::string pattern = std::string(tmp && *tmp ? tmp : "/tmp") + "/" + prefix + "-XXXXXX";
    std::string buffer = pattern;
    if (!mkdtemp(buffer.data())) return std::string();
    return buffer + "/";
}

void removeTree(const std::string& root) {
    if (root.size() < 6) return;  // never a short path by mistake
    std::error_code ignored;
    std::filesystem::remove_all(root, ignored);
}

std::string writeFile(const std::string& root, const std::string& relativePath, const std::string& content) {
    std::string path = relativePath.empty() || relativePath[0] != '/' ? root + relativePath : relativePath;
    std::error_code ignored;
    std::filesystem::create_directories(std::filesystem::path(path).parent_path(), ignored);
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << content;
    return path;
}

std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

}  // namespace testsupport

void PluginTest::SetUp() {
    xphost::reset();
    root = testsupport::makeTempTree();
    ASSERT_FALSE(root.empty()) << "no temporary folder";
    testsupport::writeFile(root, testsupport::aircraftPath, "I\n1200 version\nACF\n");
    testsupport::writeFile(root, "Resources/plugins/Vistarig/lin_x64/.keep", "");
    testsupport::writeFile(root, "Output/preferences/.keep", "");
    xphost::setRoot(root);
    xphost::setUserAircraft(testsupport::aircraftPath);
    xphost::EntryPoints entry;
    entry.start = XPluginStart;
    entry.enable = XPluginEnable;
    entry.disable = XPluginDisable;
    entry.stop = XPluginStop;
    entry.receive = XPluginReceiveMessage;
    plugin = xphost::loadPlugin(entry, root + "Resources/plugins/Vistarig/lin_x64/Vistarig.xpl");
    ASSERT_GT(plugin, 0) << xphost::logTail(5);
    xphost::setScenarioPlugin(plugin);
    if (enableOnSetUp()) {
        ASSERT_TRUE(xphost::enablePlugin(plugin));
    }
}

void PluginTest::TearDown() {
    xphost::stopAllPlugins();
    EXPECT_EQ(xphost::threadViolationCount(), 0);
    testsupport::removeTree(root);
}

double PluginTest::get(const std::string& name, int index) {
    bool ok = false;
    double v = xphost::getValue(name, index, &ok);
    EXPECT_TRUE(ok) << "no dataref " << name << "[" << index << "]";
    return v;
}

void PluginTest::set(const std::string& name, double value, int index) {
    EXPECT_TRUE(xphost::forceValue(name, value, index)) << "cannot write " << name;
}

void PluginTest::command(const std::string& name, xphost::Phase phase) {
    EXPECT_TRUE(xphost::runCommand(name, phase)) << "no command " << name;
}

std::string PluginTest::aircraftFolder() const {
    std::string path = xphost::userAircraftPath();
    return path.substr(0, path.rfind('/') + 1);
}
