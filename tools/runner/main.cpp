// vistarig-sim: builds an X-Plane tree, installs and loads the plug-in in the
// simulator host, flies the default path or runs a scenario, and writes what the
// simulator was given each frame beside the log.
#include "host/portable.h"
#ifdef _WIN32
#include <direct.h>
#define getcwd _getcwd
#else
#include <unistd.h>
#endif

#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>

#include "contact_sheet.h"
#include "default_tree.h"
#include "host/host.h"
#include "host/windows.h"

#ifndef VISTARIG_XPL_PATH
#define VISTARIG_XPL_PATH "Vistarig/lin_x64/Vistarig.xpl"
#endif

namespace {

const char* const usageText =
    "usage: vistarig-sim [SCENARIO] [--scenario FILE] [--work DIR] [--xpl PLUGIN] [--frames N] [--no-draw] [--debug]\n"
    "  Without a scenario the aircraft flies its default path for N frames (300).\n"
    "  --no-draw    callbacks run but nothing is drawn: no world, no pictures (long runs)\n"
    "  --work DIR   the X-Plane tree to build and use (default ./vistarig-run)\n"
    "  --xpl FILE   the plug-in to install (default: the one built with this runner)\n"
    "  --debug      log the datarefs the plug-in looks for and the simulator lacks\n"
    "Scenario verbs:\n";

const char* const csvName = "vistarig-frames.csv";
const char* const screenshotName = "vistarig-screen.png";
const char* const cockpitShotName = "vistarig-cockpit.png";
const char* const outsideShotName = "vistarig-outside.png";
const char* const contactSheetName = "vistarig-contact-sheet.png";

struct Options {
    std::string scenario;
    std::string work = "vistarig-run";
    std::string xpl = VISTARIG_XPL_PATH;
    int frames = 300;
    bool debug = false;
    bool draw = true;
};

bool parseArgs(int argc, char** argv, Options& o, std::string& error) {
    for (int i = 1; i < argc; ++i) {
        std::string a = argv[i];
        auto value = [&](std::string& out) {
            if (i + 1 >= argc) {
                error = a + " needs a value";
                return false;
            }
            out = argv[++i];
            return true;
        };
        if (a == "--help" || a == "-h") {
            error = "";
            return false;
        }
        if (a == "--debug") {
            o.debug = true;
        } else if (a == "--no-draw") {
            o.draw = false;
        } else if (a == "--scenario") {
            if (!value(o.scenario)) return false;
        } else if (a == "--work") {
            if (!value(o.work)) return false;
        } else if (a == "--xpl") {
            if (!value(o.xpl)) return false;
        } else if (a == "--frames") {
            std::string n;
            if (!value(n)) return false;
            double v;
            if (!xphost::parseNumber(n, v) || v < 0) {
                error = "--frames needs a number";
                return false;
            }
            o.frames = static_cast<int>(v);
        } else if (!a.empty() && a[0] == '-') {
            error = "unknown option " + a;
            return false;
        } else if (o.scenario.empty()) {
            o.scenario = a;
        } else {
            error = "one scenario only";
            return false;
        }
    }
    return true;
}

std::string absolutePath(const std::string& path) {
    if (!path.empty() && path[0] == '/') return xphost::absoluteFolder(path);
#ifdef _WIN32
    if (path.size() > 2 && path[1] == ':') return xphost::absoluteFolder(path);
#endif
    char cwd[4096];
    if (!getcwd(cwd, sizeof cwd)) return path;
    return std::string(cwd) + "/" + path;
}

bool installPlugin(const std::string& from, const std::string& root, std::string& installed) {
    std::string folder = root + "Resources/plugins/Vistarig/" + xphost::xplPlatformFolder() + "/";
    mkdir((root + "Resources/plugins/Vistarig").c_str(), 0755);
    mkdir(folder.c_str(), 0755);
    installed = folder + "Vistarig.xpl";
    std::ifstream in(from, std::ios::binary);
    if (!in) return false;
    std::string temporary = installed + ".tmp";
    {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        out << in.rdbuf();
        if (!out) return false;
    }
    return std::rename(temporary.c_str(), installed.c_str()) == 0;
}

void takeScreenshot(const std::string& root, const char* name, const char* label) {
    if (!xphost::drawing()) return;
    std::string error;
    if (xphost::screenshot(root + name, &error))
        std::cout << label << ": " << root << name << "\n";
    else
        std::cerr << "vistarig-sim: no " << name << ": " << error << "\n";
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    std::string error;
    if (!parseArgs(argc, argv, options, error)) {
        std::cerr << (error.empty() ? "" : "vistarig-sim: " + error + "\n") << usageText << xphost::scenarioHelp();
        return error.empty() ? 0 : 2;
    }
    std::string root = absolutePath(options.work);
    if (root.back() != '/') root += '/';
    mkdir(root.c_str(), 0755);
    if (!writeDefaultTree(root, error)) {
        std::cerr << "vistarig-sim: " << error << "\n";
        return 1;
    }
    // Each run starts a fresh log, as X-Plane does.
    std::remove((root + "Log.txt").c_str());
    std::remove((root + csvName).c_str());
    for (const char* name : {screenshotName, cockpitShotName, outsideShotName, contactSheetName})
        std::remove((root + name).c_str());

    // A scenario's before_load section runs before the plug-in and the aircraft load.
    std::string beforeLoad, scenarioText;
    if (!options.scenario.empty()) {
        std::ifstream in(options.scenario, std::ios::binary);
        if (!in) {
            std::cerr << "vistarig-sim: " << options.scenario << ": cannot be read\n";
            return 1;
        }
        std::ostringstream text;
        text << in.rdbuf();
        if (!xphost::splitBeforeLoad(text.str(), beforeLoad, scenarioText, error)) {
            std::cerr << "vistarig-sim: " << options.scenario << ":" << error << "\n";
            return 1;
        }
    }

    xphost::reset();
    xphost::setRoot(root);
    xphost::setUserAircraft(defaultAircraftPath);
    xphost::setLogUnknownDataRefs(options.debug);
#ifdef _WIN32
    // The Windows stand-in has no renderer: every run goes as with --no-draw.
    options.draw = false;
#endif
    xphost::setDrawing(options.draw);
    for (int i = 0; i < defaultTreeFileCount; ++i)
        if (std::strstr(defaultTreeFiles[i].path, "/Vistarig_") != nullptr) learnCameraNames(defaultTreeFiles[i].content);

    bool scenarioOk = true;
    if (!beforeLoad.empty()) {
        scenarioOk = xphost::runScenarioText(beforeLoad, options.scenario, std::cout, error);
        if (!scenarioOk) {
            std::cerr << "vistarig-sim: " << error << "\n";
            return 1;
        }
    }

    std::string installed;
    if (!installPlugin(options.xpl, root, installed)) {
        std::cerr << "vistarig-sim: cannot install the plug-in " << options.xpl << "\n";
        return 1;
    }
    int plugin = xphost::loadPlugin(installed);
    if (plugin < 0) {
        std::cerr << "vistarig-sim: the plug-in did not load:\n" << xphost::logTail(5);
        return 1;
    }
    xphost::setScenarioPlugin(plugin);
    if (!xphost::enablePlugin(plugin)) std::cerr << "vistarig-sim: the plug-in refused to be enabled\n";
    xphost::sendPlaneLoaded(0);

    if (options.scenario.empty()) {
        // A tour of the default camera file: the cockpit, an outside camera, the
        // Cineflex pair, then the orbit chain, which plays by itself.
        static const char* const parts[] = {"cockpit camera", "outside camera", "Cineflex pair", "orbit chain"};
        const int share[] = {15, 15, 10, 60};
        // Twelve pictures evenly over the run for the contact sheet.
        const int pictureEvery = options.frames >= 12 ? options.frames / 12 : 1;
        int run = 0;
        for (int part = 0; part < 4; ++part) {
            int n = part == 3 ? options.frames - run : options.frames * share[part] / 100;
            if (part > 0) xphost::runCommand("KVT/Vistarig/Next_Category", xphost::Phase::Once);
            for (int k = 0; k < n; ++k) {
                xphost::runFrames(1);
                if (xphost::frameNumber() % pictureEvery == 0)
                    addContactPicture(std::string("default tour: ") + parts[part]);
            }
            run += n;
            // A picture from inside the cockpit and one from the outside camera.
            const bool cockpit = xphost::viewType() == xphost::viewCockpit3d;
            if (part == 0 && cockpit) takeScreenshot(root, cockpitShotName, "Cockpit screenshot");
            if (part == 1 && !cockpit) takeScreenshot(root, outsideShotName, "Outside screenshot");
        }
        // The default run ends with a picture of the screen as the last frame left it.
        takeScreenshot(root, screenshotName, "Screenshot");
    } else {
        scenarioOk = xphost::runScenarioText(scenarioText, options.scenario, std::cout, error);
        if (!scenarioOk) std::cerr << "vistarig-sim: " << error << "\n";
    }
    if (contactPictureCount() > 0) {
        if (writeContactSheet(root + contactSheetName, error))
            std::cout << "Contact sheet: " << root << contactSheetName << "\n";
        else
            std::cerr << "vistarig-sim: no contact sheet: " << error << "\n";
    }

    xphost::stopAllPlugins();
    std::string csv = root + csvName;
    if (!xphost::writeFrameCsv(csv)) std::cerr << "vistarig-sim: cannot write " << csv << "\n";

    for (const std::string& line : xphost::threadViolations()) std::cout << line << "\n";
    if (xphost::leaks().empty()) {
        std::cout << "Leak report: nothing left registered after XPluginStop\n";
    } else {
        std::cout << "Leak report: left registered after XPluginStop:\n";
        for (const std::string& line : xphost::leaks()) std::cout << "  " << line << "\n";
    }
    std::cout << "Frames run: " << xphost::frameNumber() << " (" << xphost::formatNumber(xphost::simTime())
              << " s)\n";
    std::cout << "Log: " << root << "Log.txt\n";
    std::cout << "Frames CSV: " << csv << "\n";

    if (!scenarioOk) return 1;
    if (xphost::threadViolationCount() > 0 || !xphost::leaks().empty()) return 3;
    return 0;
}
