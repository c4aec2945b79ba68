// Scenario verbs of the traffic: the stand-in traffic plug-in, aircraft joining,
// leaving and being renumbered. The first `traffic` line adds the first six places of
// the table to the frame CSV (identifier, position, heading, pitch, roll), so a check
// can follow an aircraft through renumbering.
#include <string>
#include <vector>

#include "host/host.h"
#include "host/traffic.h"

namespace {

using xphost::ScenarioLine;

constexpr int kCsvPlaces = 6;

void addColumns() {
    static bool added = false;
    if (added) return;
    added = true;
    static const char* const kParts[7] = {"id", "x", "y", "z", "psi", "the", "phi"};
    for (int place = 0; place < kCsvPlaces; ++place) {
        for (int part = 0; part < 7; ++part) {
            std::string name = "traffic" + std::to_string(place) + "_" + kParts[part];
            xphost::addFrameColumn(name, [place, part]() -> double {
                const auto& all = xphost::trafficAircraft();
                if (place >= static_cast<int>(all.size())) return 0.0;
                const xphost::TrafficAircraft& a = all[static_cast<size_t>(place)];
                switch (part) {
                    case 0: return a.modeSId;
                    case 1: return a.state.x;
                    case 2: return a.state.y;
                    case 3: return a.state.z;
                    case 4: return a.state.psi;
                    case 5: return a.state.theta;
                    default: return a.state.phi;
                }
            });
        }
    }
}

std::string trafficVerb(ScenarioLine& line) {
    const auto& a = line.args;
    if (a.size() != 2 || (a[1] != "tcas" && a[1] != "multiplayer")) return "expected: traffic tcas|multiplayer";
    xphost::installTraffic(a[1] == "tcas" ? xphost::TrafficSource::Tcas : xphost::TrafficSource::Multiplayer);
    addColumns();
    return "";
}

std::string joinVerb(ScenarioLine& line) {
    const auto& a = line.args;
    const char* usage = "expected: traffic_join FLIGHT_ID MODE_S X Y Z HEADING [SPEED [TURN_RATE [CLIMB]]]";
    if (a.size() < 7 || a.size() > 10) return usage;
    std::vector<double> v;
    for (size_t i = 2; i < a.size(); ++i) {
        double value;
        if (!xphost::parseNumber(a[i], value)) return usage;
        v.push_back(value);
    }
    xphost::TrafficPath path;
    path.startX = v[1];
    path.startY = v[2];
    path.startZ = v[3];
    path.headingDeg = static_cast<float>(v[4]);
    if (v.size() > 5) path.speed = static_cast<float>(v[5]);
    if (v.size() > 6) path.turnRate = static_cast<float>(v[6]);
    if (v.size() > 7) path.climbRate = static_cast<float>(v[7]);
    if (!xphost::trafficInstalled()) {
        xphost::installTraffic(xphost::TrafficSource::Tcas);
        addColumns();
    }
    if (!xphost::addTrafficAircraft(a[1], static_cast<int>(v[0]), path))
        return "cannot add " + a[1] + ": the table is full, or its flight ID or identifier is taken";
    return "";
}

std::string leaveVerb(ScenarioLine& line) {
    if (line.args.size() != 2) return "expected: traffic_leave FLIGHT_ID";
    if (!xphost::removeTrafficAircraft(line.args[1])) return "no traffic aircraft " + line.args[1];
    return "";
}

std::string slotVerb(ScenarioLine& line) {
    double slot;
    if (line.args.size() != 3 || !xphost::parseNumber(line.args[2], slot)) return "expected: traffic_slot FLIGHT_ID SLOT";
    if (!xphost::moveTrafficAircraft(line.args[1], static_cast<int>(slot)))
        return "cannot move " + line.args[1] + " to place " + line.args[2];
    return "";
}

xphost::ScenarioVerbRegistration gTraffic("traffic", "traffic tcas|multiplayer   (installs the traffic plug-in)",
                                          trafficVerb);
xphost::ScenarioVerbRegistration gJoin("traffic_join",
                                       "traffic_join FLIGHT_ID MODE_S X Y Z HEADING [SPEED [TURN_RATE [CLIMB]]]",
                                       joinVerb);
xphost::ScenarioVerbRegistration gLeave("traffic_leave", "traffic_leave FLIGHT_ID", leaveVerb);
xphost::ScenarioVerbRegistration gSlot("traffic_slot", "traffic_slot FLIGHT_ID SLOT   (renumbers the table)", slotVerb);

}  // namespace
