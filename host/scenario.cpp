// Scenario scripts: one verb a line, run against the host. The verb table is open:
// any host module adds its verbs with a static ScenarioVerbRegistration.
#include <cmath>
#include <fstream>
#include <map>
#include <sstream>

#include "XPLMPlugin.h"
#include "host/core_parts.h"

namespace xphost {

namespace {

struct VerbEntry {
    std::string usage;
    ScenarioVerb action;
};

std::map<std::string, VerbEntry>& verbs() {
    static std::map<std::string, VerbEntry> table;
    return table;
}

// Splits on blanks; a "double-quoted part" is one word (paths have blanks).
bool tokenize(const std::string& line, std::vector<std::string>& out, std::string& error) {
    size_t i = 0;
    while (i < line.size()) {
        while (i < line.size() && (line[i] == ' ' || line[i] == '\t')) ++i;
        if (i >= line.size()) break;
        std::string word;
        if (line[i] == '"') {
            size_t end = line.find('"', i + 1);
            if (end == std::string::npos) {
                error = "unclosed quote";
                return false;
            }
            word = line.substr(i + 1, end - i - 1);
            i = end + 1;
        } else {
            while (i < line.size() && line[i] != ' ' && line[i] != '\t') word += line[i++];
        }
        out.push_back(word);
    }
    return true;
}

// "name" or "name[3]" for an array element.
bool parseDataRef(const std::string& word, std::string& name, int& index) {
    index = -1;
    size_t open = word.find('[');
    if (open == std::string::npos) {
        name = word;
        return true;
    }
    if (word.back() != ']') return false;
    name = word.substr(0, open);
    double v;
    if (!parseNumber(word.substr(open + 1, word.size() - open - 2), v) || v < 0) return false;
    index = static_cast<int>(v);
    return true;
}

std::string needArgs(const ScenarioLine& line, size_t min, size_t max) {
    size_t n = line.args.size() - 1;
    if (n < min || n > max) return "usage: " + verbs()[line.args[0]].usage;
    return "";
}

std::string number(const std::string& text, double& value, const char* what) {
    if (!parseNumber(text, value)) return std::string("'") + text + "' is not a number (" + what + ")";
    return "";
}

std::string pluginOrError(int& id) {
    id = scenarioPlugin();
    if (id < 0) return "no plug-in is loaded";
    return "";
}

// ---------------------------------------------------------------- the core verbs

ScenarioVerbRegistration frames("frames", "frames N [STEP_SECONDS]", [](ScenarioLine& line) {
    if (auto e = needArgs(line, 1, 2); !e.empty()) return e;
    double n, step = 0;
    if (auto e = number(line.args[1], n, "frame count"); !e.empty()) return e;
    if (line.args.size() > 2)
        if (auto e = number(line.args[2], step, "step"); !e.empty()) return e;
    if (n < 0) return std::string("frame count below 0");
    runFrames(static_cast<int>(n), step);
    return std::string();
});

ScenarioVerbRegistration step("step", "step SECONDS   (the frame step from now on)", [](ScenarioLine& line) {
    if (auto e = needArgs(line, 1, 1); !e.empty()) return e;
    double s;
    if (auto e = number(line.args[1], s, "seconds"); !e.empty()) return e;
    if (s <= 0) return std::string("step must be above 0");
    setFrameStep(s);
    return std::string();
});

ScenarioVerbRegistration command("command", "command NAME begin|continue|end|once", [](ScenarioLine& line) {
    if (auto e = needArgs(line, 2, 2); !e.empty()) return e;
    static const std::map<std::string, Phase> phases = {
        {"begin", Phase::Begin}, {"continue", Phase::Continue}, {"end", Phase::End}, {"once", Phase::Once}};
    auto it = phases.find(line.args[2]);
    if (it == phases.end()) return "unknown phase '" + line.args[2] + "'";
    if (!runCommand(line.args[1], it->second)) return "no command " + line.args[1];
    return std::string();
});

ScenarioVerbRegistration set("set", "set DATAREF[INDEX] VALUE [INDEX]", [](ScenarioLine& line) {
    if (auto e = needArgs(line, 2, 3); !e.empty()) return e;
    std::string name;
    int index;
    if (!parseDataRef(line.args[1], name, index)) return "bad dataref '" + line.args[1] + "'";
    double value;
    if (auto e = number(line.args[2], value, "value"); !e.empty()) return e;
    if (line.args.size() > 3) {
        double i;
        if (auto e = number(line.args[3], i, "index"); !e.empty()) return e;
        index = static_cast<int>(i);
    }
    if (!dataRefExists(name)) return "no dataref " + name;
    // The script stands for the simulator and the user: it may write what plug-ins can't.
    if (!forceValue(name, value, index)) return "cannot write " + line.args[1];
    return std::string();
});

ScenarioVerbRegistration get("get", "get DATAREF[INDEX]", [](ScenarioLine& line) {
    if (auto e = needArgs(line, 1, 1); !e.empty()) return e;
    std::string name;
    int index;
    if (!parseDataRef(line.args[1], name, index)) return "bad dataref '" + line.args[1] + "'";
    bool ok;
    double v = getValue(name, index, &ok);
    if (!ok) return "no dataref " + line.args[1];
    *line.out << line.args[1] << " = " << formatNumber(v) << "\n";
    return std::string();
});

ScenarioVerbRegistration expect("expect", "expect DATAREF[INDEX] VALUE [TOLERANCE]", [](ScenarioLine& line) {
    if (auto e = needArgs(line, 2, 3); !e.empty()) return e;
    std::string name;
    int index;
    if (!parseDataRef(line.args[1], name, index)) return "bad dataref '" + line.args[1] + "'";
    double want, tolerance = 1e-4;
    if (auto e = number(line.args[2], want, "value"); !e.empty()) return e;
    if (line.args.size() > 3)
        if (auto e = number(line.args[3], tolerance, "tolerance"); !e.empty()) return e;
    bool ok;
    double v = getValue(name, index, &ok);
    if (!ok) return "no dataref " + line.args[1];
    if (std::fabs(v - want) > tolerance)
        return "expected " + line.args[1] + " = " + formatNumber(want) + ", got " + formatNumber(v);
    *line.out << "ok " << line.args[1] << " = " << formatNumber(v) << "\n";
    return std::string();
});

ScenarioVerbRegistration expectLog("expect_log", "expect_log TEXT   (the log holds TEXT)", [](ScenarioLine& line) {
    // Written bare or in quotes: "TEXT" looks for TEXT, as it does for the other verbs.
    std::string text = line.text;
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"') text = text.substr(1, text.size() - 2);
    if (text.empty()) return std::string("usage: expect_log TEXT");
    if (logText().find(text) == std::string::npos) return "the log lacks \"" + text + "\"";
    *line.out << "ok log has \"" << text << "\"\n";
    return std::string();
});

ScenarioVerbRegistration message(
    "message", "message plane_loaded|airport_loaded|will_write_prefs|entered_vr|exiting_vr|NUMBER [PARAM]",
    [](ScenarioLine& line) {
        if (auto e = needArgs(line, 1, 2); !e.empty()) return e;
        static const std::map<std::string, int> names = {
            {"plane_loaded", XPLM_MSG_PLANE_LOADED},         {"airport_loaded", XPLM_MSG_AIRPORT_LOADED},
            {"will_write_prefs", XPLM_MSG_WILL_WRITE_PREFS}, {"entered_vr", XPLM_MSG_ENTERED_VR},
            {"exiting_vr", XPLM_MSG_EXITING_VR},             {"scenery_loaded", XPLM_MSG_SCENERY_LOADED}};
        double id = 0, param = 0;
        auto it = names.find(line.args[1]);
        if (it != names.end()) id = it->second;
        else if (auto e = number(line.args[1], id, "message"); !e.empty()) return "unknown message '" + line.args[1] + "'";
        if (line.args.size() > 2)
            if (auto e = number(line.args[2], param, "param"); !e.empty()) return e;
        sendMessage(static_cast<int>(id), static_cast<intptr_t>(param));
        return std::string();
    });

ScenarioVerbRegistration enable("enable", "enable   (XPluginEnable of the plug-in)", [](ScenarioLine& line) {
    if (auto e = needArgs(line, 0, 0); !e.empty()) return e;
    int id;
    if (auto e = pluginOrError(id); !e.empty()) return e;
    if (!enablePlugin(id)) return std::string("the plug-in refused to be enabled");
    return std::string();
});

ScenarioVerbRegistration disable("disable", "disable   (XPluginDisable of the plug-in)", [](ScenarioLine& line) {
    if (auto e = needArgs(line, 0, 0); !e.empty()) return e;
    int id;
    if (auto e = pluginOrError(id); !e.empty()) return e;
    disablePlugin(id);
    return std::string();
});

ScenarioVerbRegistration aircraftVerb(
    "aircraft", "aircraft PATH   (switches the user's aircraft and sends plane_loaded)", [](ScenarioLine& line) {
        if (auto e = needArgs(line, 1, 1); !e.empty()) return e;
        setUserAircraft(line.args[1]);
        sendPlaneLoaded(0);
        return std::string();
    });

ScenarioVerbRegistration versionVerb("version", "version N   (X-Plane version, e.g. 12100)", [](ScenarioLine& line) {
    if (auto e = needArgs(line, 1, 1); !e.empty()) return e;
    double v;
    if (auto e = number(line.args[1], v, "version"); !e.empty()) return e;
    setVersion(static_cast<int>(v));
    return std::string();
});

ScenarioVerbRegistration print("print", "print TEXT", [](ScenarioLine& line) {
    *line.out << line.text << "\n";
    return std::string();
});

ScenarioVerbRegistration speech("speech", "speech   (prints what was spoken)", [](ScenarioLine& line) {
    for (auto& s : spoken()) *line.out << "spoken: " << s << "\n";
    return std::string();
});

ScenarioVerbRegistration logVerb("log", "log [LINES]   (prints the end of Log.txt)", [](ScenarioLine& line) {
    if (auto e = needArgs(line, 0, 1); !e.empty()) return e;
    double n = 10;
    if (line.args.size() > 1)
        if (auto e = number(line.args[1], n, "lines"); !e.empty()) return e;
    std::string tail = logTail(static_cast<int>(n));
    *line.out << tail;
    if (!tail.empty() && tail.back() != '\n') *line.out << "\n";
    return std::string();
});

ScenarioVerbRegistration camera("camera", "camera   (prints the camera and who holds it)", [](ScenarioLine& line) {
    CameraPosition p = cameraPosition();
    *line.out << "camera " << (cameraControlled() ? "controlled" : "simulator") << " x " << formatNumber(p.x)
              << " y " << formatNumber(p.y) << " z " << formatNumber(p.z) << " pitch " << formatNumber(p.pitch)
              << " heading " << formatNumber(p.heading) << " roll " << formatNumber(p.roll) << " zoom "
              << formatNumber(p.zoom) << "\n";
    return std::string();
});

ScenarioVerbRegistration expectControlled("expect_controlled", "expect_controlled 0|1", [](ScenarioLine& line) {
    if (auto e = needArgs(line, 1, 1); !e.empty()) return e;
    bool want = line.args[1] == "1";
    if (cameraControlled() != want)
        return std::string("expected the camera ") + (want ? "controlled by a plug-in" : "with the simulator");
    *line.out << "ok camera " << (want ? "controlled" : "simulator") << "\n";
    return std::string();
});

ScenarioVerbRegistration attitude("aircraft_attitude", "aircraft_attitude PITCH ROLL   (degrees; holds the user's aircraft's attitude)",
                                  [](ScenarioLine& line) {
                                      if (auto e = needArgs(line, 2, 2); !e.empty()) return e;
                                      double pitch, roll;
                                      if (auto e = number(line.args[1], pitch, "pitch"); !e.empty()) return e;
                                      if (auto e = number(line.args[2], roll, "roll"); !e.empty()) return e;
                                      setAircraftAttitude(static_cast<float>(pitch), static_cast<float>(roll));
                                      return std::string();
                                  });

// The runner takes the section out and runs it before the aircraft loads; a script
// run whole passes over the markers.
ScenarioVerbRegistration beforeLoad("before_load", "before_load ... end   (lines run before the plug-in and the aircraft load)",
                                    [](ScenarioLine&) { return std::string(); });
ScenarioVerbRegistration sectionEnd("end", "end   (closes a before_load section)", [](ScenarioLine&) { return std::string(); });

bool isMarker(const std::string& raw, const char* word) {
    std::vector<std::string> words;
    std::string error;
    return tokenize(raw, words, error) && words.size() == 1 && words[0] == word;
}

}  // namespace

bool splitBeforeLoad(const std::string& text, std::string& beforeLoad, std::string& rest, std::string& error) {
    beforeLoad.clear();
    rest.clear();
    std::istringstream in(text);
    std::string raw;
    bool inside = false;
    int number = 0, opened = 0;
    while (std::getline(in, raw)) {
        ++number;
        const bool open = isMarker(raw, "before_load"), close = isMarker(raw, "end");
        if (open && inside) {
            error = std::to_string(number) + ": before_load inside a before_load section";
            return false;
        }
        if (close && !inside) {
            error = std::to_string(number) + ": end without before_load";
            return false;
        }
        if (open) opened = number;
        // Marker lines and the other part's lines stay as blanks, so line numbers hold.
        if (!open && !close) (inside ? beforeLoad : rest) += raw;
        beforeLoad += '\n';
        rest += '\n';
        if (open) inside = true;
        if (close) inside = false;
    }
    if (inside) {
        error = std::to_string(opened) + ": before_load without end";
        return false;
    }
    return true;
}

void registerScenarioVerb(const char* verb, const char* usage, ScenarioVerb action) {
    verbs()[verb] = VerbEntry{usage, std::move(action)};
}

std::string scenarioHelp() {
    std::string out;
    for (auto& [name, v] : verbs()) out += "  " + v.usage + "\n";
    return out;
}

bool runScenarioText(const std::string& text, const std::string& name, std::ostream& out, std::string& error) {
    ensureInitialized();
    std::istringstream in(text);
    std::string raw;
    int number = 0;
    while (std::getline(in, raw)) {
        ++number;
        if (!raw.empty() && raw.back() == '\r') raw.pop_back();
        size_t first = raw.find_first_not_of(" \t");
        if (first == std::string::npos || raw[first] == '#') continue;
        ScenarioLine line;
        line.file = name;
        line.line = number;
        line.out = &out;
        std::string tokError;
        auto fail = [&](const std::string& message) {
            error = name + ":" + std::to_string(number) + ": " + message;
            return false;
        };
        if (!tokenize(raw, line.args, tokError)) return fail(tokError);
        size_t verbEnd = raw.find_first_of(" \t", first);
        if (verbEnd != std::string::npos) {
            size_t textStart = raw.find_first_not_of(" \t", verbEnd);
            if (textStart != std::string::npos) line.text = raw.substr(textStart);
        }
        auto it = verbs().find(line.args[0]);
        if (it == verbs().end()) return fail("unknown verb '" + line.args[0] + "'");
        std::string message;
        try {
            message = it->second.action(line);
        } catch (const std::exception& e) {
            message = std::string("failed: ") + e.what();
        }
        if (!message.empty()) return fail(message);
    }
    return true;
}

bool runScenario(const std::string& path, std::ostream& out, std::string& error) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        error = path + ": cannot be read";
        return false;
    }
    std::ostringstream text;
    text << in.rdbuf();
    return runScenarioText(text.str(), path, out, error);
}

}  // namespace xphost
