// Scenario verbs for the inputs that reach the plug-in through the simulator: joystick
// axes (mapped and raw) and the outside plug-ins HeadShake, Scenic Flyer and XP-Realistic.
#include <string>
#include <vector>

#include "host/host.h"
#include "host/joystick.h"
#include "host/outside_plugins.h"

namespace {

// Parses args[first..] into `out`; a message on failure, empty on success.
std::string numbers(const xphost::ScenarioLine& line, size_t first, size_t wanted, size_t optional,
                    std::vector<double>& out) {
    const size_t given = line.args.size() > first ? line.args.size() - first : 0;
    if (given < wanted || given > wanted + optional) return "wrong number of arguments";
    out.clear();
    for (size_t i = first; i < line.args.size(); ++i) {
        double value;
        if (!xphost::parseNumber(line.args[i], value)) return "not a number: " + line.args[i];
        out.push_back(value);
    }
    return "";
}

xphost::ScenarioVerbRegistration mapped(
    "joystick_mapped", "joystick_mapped <function index> <value> [available 0|1]: a mapped axis (41 view heading)",
    [](xphost::ScenarioLine& line) {
        std::vector<double> v;
        std::string error = numbers(line, 1, 2, 1, v);
        if (!error.empty()) return error;
        xphost::setMappedAxis(static_cast<int>(v[0]), v.size() < 3 || v[2] != 0, static_cast<float>(v[1]));
        return std::string();
    });

xphost::ScenarioVerbRegistration raw(
    "joystick_raw",
    "joystick_raw <position> <assignment code> <value> [minimum maximum reverse]: a hardware axis (code 44..46 camera)",
    [](xphost::ScenarioLine& line) {
        std::vector<double> v;
        std::string error = numbers(line, 1, 3, 3, v);
        if (!error.empty()) return error;
        if (v.size() != 3 && v.size() != 6) return std::string("give all three of minimum, maximum, reverse");
        const float minimum = v.size() == 6 ? static_cast<float>(v[3]) : 0.0f;
        const float maximum = v.size() == 6 ? static_cast<float>(v[4]) : 1.0f;
        const int reverse = v.size() == 6 ? static_cast<int>(v[5]) : 0;
        xphost::setRawAxis(static_cast<int>(v[0]), static_cast<int>(v[1]), static_cast<float>(v[2]), minimum, maximum,
                           reverse);
        return std::string();
    });

xphost::ScenarioVerbRegistration rawMove("joystick_move", "joystick_move <position> <value>: moves a hardware axis",
                                         [](xphost::ScenarioLine& line) {
                                             std::vector<double> v;
                                             std::string error = numbers(line, 1, 2, 0, v);
                                             if (!error.empty()) return error;
                                             xphost::setRawAxisValue(static_cast<int>(v[0]), static_cast<float>(v[1]));
                                             return std::string();
                                         });

xphost::ScenarioVerbRegistration headShake(
    "headshake", "headshake [x y z yaw pitch roll]: installs HeadShake and sets its offsets",
    [](xphost::ScenarioLine& line) {
        std::vector<double> v;
        std::string error = numbers(line, 1, 0, 6, v);
        if (!error.empty()) return error;
        if (!v.empty() && v.size() != 6) return std::string("give all six offsets");
        xphost::installHeadShake(true);
        if (v.size() == 6)
            xphost::setHeadShakeOffsets(static_cast<float>(v[0]), static_cast<float>(v[1]), static_cast<float>(v[2]),
                                        static_cast<float>(v[3]), static_cast<float>(v[4]), static_cast<float>(v[5]));
        return std::string();
    });

xphost::ScenarioVerbRegistration pilotView("pilot_view", "pilot_view: installs PilotView (found by its signature only)",
                                           [](xphost::ScenarioLine& line) {
                                               if (line.args.size() != 1) return std::string("usage: pilot_view");
                                               xphost::installPilotView();
                                               return std::string();
                                           });

xphost::ScenarioVerbRegistration xpRealistic(
    "xp_realistic", "xp_realistic <x y z pitch heading roll>: installs XP-Realistic writing these offsets each frame",
    [](xphost::ScenarioLine& line) {
        std::vector<double> v;
        std::string error = numbers(line, 1, 6, 0, v);
        if (!error.empty()) return error;
        xphost::installXpRealistic();
        xphost::setXpRealisticOffsets(static_cast<float>(v[0]), static_cast<float>(v[1]), static_cast<float>(v[2]),
                                      static_cast<float>(v[3]), static_cast<float>(v[4]), static_cast<float>(v[5]));
        return std::string();
    });

std::string describe(const xphost::ScenicFlyerPanel& panel) {
    const char* type = panel.glass ? "glass" : "ga";
    return std::string("Scenic Flyer: panel ") + (panel.shown ? type : "none") + " (type " + type + "), " +
           std::to_string(panel.commands) + " commands";
}

xphost::ScenarioVerbRegistration scenicFlyer(
    "scenic_flyer", "scenic_flyer: installs Scenic Flyer (its two commands and its panel), or prints its panel",
    [](xphost::ScenarioLine& line) {
        if (line.args.size() != 1) return std::string("usage: scenic_flyer");
        xphost::installScenicFlyer();
        *line.out << describe(xphost::scenicFlyerPanel()) << "\n";
        return std::string();
    });

xphost::ScenarioVerbRegistration expectScenicFlyer(
    "expect_scenic_flyer",
    "expect_scenic_flyer none|ga|glass [COMMANDS]: fails unless Scenic Flyer shows this panel (and acted on COMMANDS "
    "commands in all)",
    [](xphost::ScenarioLine& line) {
        if (line.args.size() < 2 || line.args.size() > 3) return std::string("usage: expect_scenic_flyer none|ga|glass [COMMANDS]");
        const xphost::ScenicFlyerPanel panel = xphost::scenicFlyerPanel();
        if (!panel.installed) return std::string("Scenic Flyer is not installed");
        const std::string& want = line.args[1];
        if (want != "none" && want != "ga" && want != "glass") return "not a panel: " + want;
        const std::string shows = !panel.shown ? "none" : panel.glass ? "glass" : "ga";
        if (shows != want) return describe(panel);
        if (line.args.size() == 3) {
            double count;
            if (!xphost::parseNumber(line.args[2], count)) return "not a number: " + line.args[2];
            if (static_cast<int>(count) != panel.commands) return describe(panel);
        }
        return std::string();
    });

}  // namespace
