#include "host/traffic.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "host/core_parts.h"

namespace xphost {
namespace {

constexpr double kDegToRad = 3.14159265358979323846 / 180.0;
constexpr double kGravity = 9.81;

struct Flying {
    TrafficAircraft aircraft;
    TrafficPath path;
    double joined = 0;  // simulated time
};

struct TrafficState {
    int plugin = -1;
    TrafficSource source = TrafficSource::Tcas;
    std::vector<Flying> flying;
    std::vector<TrafficAircraft> shown;
};

TrafficState& traffic() {
    static TrafficState t;
    return t;
}

void resetTraffic() { traffic() = TrafficState(); }

AircraftState along(const TrafficPath& p, double t) {
    AircraftState s;
    const double w = p.turnRate * kDegToRad;
    const PathPoint at = alongPath(p.speed, p.headingDeg, p.turnRate, t);
    s.x = p.startX + at.dx;
    s.y = p.startY + p.climbRate * t;
    s.z = p.startZ + at.dz;
    s.psi = at.headingDeg;
    s.theta = static_cast<float>(2.0 + std::atan2(p.climbRate, std::max(1.0f, p.speed)) / kDegToRad);
    s.phi = static_cast<float>(std::atan(p.speed * w / kGravity) / kDegToRad);
    s.groundSpeed = p.speed;
    return s;
}

void setFloat(const char* name, int index, float value) {
    if (SimDataRef* r = simDataRef(name))
        if (index < static_cast<int>(r->floats.size())) r->floats[index] = value;
}

// What the traffic plug-in writes each frame; slots of aircraft that left are cleared.
void publish() {
    TrafficState& t = traffic();
    const bool tcas = t.source == TrafficSource::Tcas;
    const int count = static_cast<int>(t.flying.size());
    static const char* const kTcas[6] = {
        "sim/cockpit2/tcas/targets/position/x",   "sim/cockpit2/tcas/targets/position/y",
        "sim/cockpit2/tcas/targets/position/z",   "sim/cockpit2/tcas/targets/position/psi",
        "sim/cockpit2/tcas/targets/position/the", "sim/cockpit2/tcas/targets/position/phi",
    };
    const AircraftState user = aircraft();
    SimDataRef* ids = simDataRef("sim/cockpit2/tcas/targets/modeS_id");
    SimDataRef* flightIds = simDataRef("sim/cockpit2/tcas/targets/flight_id");
    for (int slot = 0; slot < kTcasTargets; ++slot) {
        // Element 0 is the user's aircraft, filled in TCAS mode only, like the rest.
        const bool filled = tcas && slot <= count;
        AircraftState s;
        int id = 0;
        std::string flightId;
        if (filled && slot == 0) s = user;
        if (filled && slot > 0) {
            s = t.flying[slot - 1].aircraft.state;
            id = t.flying[slot - 1].aircraft.modeSId;
            flightId = t.flying[slot - 1].aircraft.flightId;
        }
        const float values[6] = {static_cast<float>(s.x), static_cast<float>(s.y), static_cast<float>(s.z),
                                 s.psi, s.theta, s.phi};
        for (int k = 0; k < 6; ++k) setFloat(kTcas[k], slot, filled ? values[k] : 0.0f);
        if (ids && slot < static_cast<int>(ids->ints.size())) ids->ints[slot] = filled ? id : 0;
        if (flightIds && (slot + 1) * 8 <= static_cast<int>(flightIds->bytes.size())) {
            uint8_t* bytes = flightIds->bytes.data() + slot * 8;
            std::memset(bytes, 0, 8);
            std::memcpy(bytes, flightId.data(), std::min<size_t>(8, flightId.size()));
        }
    }
    if (SimDataRef* n = simDataRef("sim/cockpit2/tcas/indicators/tcas_num_acf")) n->set(tcas ? count + 1 : 1);

    char name[80];
    for (int slot = 0; slot < kMultiplayerSlots; ++slot) {
        AircraftState s;
        const bool filled = !tcas && slot < count;
        if (filled) s = t.flying[slot].aircraft.state;
        const double values[6] = {s.x, s.y, s.z, s.theta, s.phi, s.psi};
        static const char* const kAxes[6] = {"x", "y", "z", "the", "phi", "psi"};
        for (int k = 0; k < 6; ++k) {
            std::snprintf(name, sizeof name, "sim/multiplayer/position/plane%d_%s", slot + 1, kAxes[k]);
            if (SimDataRef* r = simDataRef(name)) r->set(values[k]);
        }
    }
}

void countAircraft() {
    const int active = static_cast<int>(traffic().flying.size()) + 1;
    setAircraftCount(active, active);
}

// The traffic plug-in's frame: every aircraft on along its path.
void flyTraffic() {
    TrafficState& t = traffic();
    if (t.plugin < 0) return;
    const double now = simTime();
    for (Flying& f : t.flying) f.aircraft.state = along(f.path, now - f.joined);
    t.shown.clear();
    for (const Flying& f : t.flying) t.shown.push_back(f.aircraft);
    publish();
}

HostModule trafficModule("traffic", resetTraffic);

struct HookRegistration {
    HookRegistration() { addFrameHook(FramePoint::AfterFlightModel, "traffic", flyTraffic); }
};
HookRegistration hookRegistration;

Flying* find(const std::string& flightId) {
    for (Flying& f : traffic().flying)
        if (f.aircraft.flightId == flightId) return &f;
    return nullptr;
}

// Changes show in the datarefs at once, as a plug-in writing them would.
void settle() {
    flyTraffic();
    countAircraft();
}

}  // namespace

void installTraffic(TrafficSource source) {
    ensureInitialized();
    TrafficState& t = traffic();
    if (t.plugin < 0) t.plugin = addStandInPlugin("Traffic", "xphost.traffic", "Scripted traffic", nullptr);
    t.source = source;
    settle();
}

bool trafficInstalled() { return traffic().plugin >= 0; }

bool addTrafficAircraft(const std::string& flightId, int modeSId, const TrafficPath& path) {
    TrafficState& t = traffic();
    if (t.plugin < 0) installTraffic(TrafficSource::Tcas);
    const int capacity = t.source == TrafficSource::Tcas ? kTcasTargets - 1 : kMultiplayerSlots;
    if (static_cast<int>(t.flying.size()) >= capacity || find(flightId)) return false;
    for (const Flying& f : t.flying)
        if (f.aircraft.modeSId == modeSId) return false;
    Flying f;
    f.aircraft.flightId = flightId;
    f.aircraft.modeSId = modeSId;
    f.path = path;
    f.joined = simTime();
    t.flying.push_back(f);
    settle();
    return true;
}

bool removeTrafficAircraft(const std::string& flightId) {
    auto& v = traffic().flying;
    auto it = std::find_if(v.begin(), v.end(), [&](const Flying& f) { return f.aircraft.flightId == flightId; });
    if (it == v.end()) return false;
    v.erase(it);
    settle();
    return true;
}

bool moveTrafficAircraft(const std::string& flightId, int slot) {
    auto& v = traffic().flying;
    auto it = std::find_if(v.begin(), v.end(), [&](const Flying& f) { return f.aircraft.flightId == flightId; });
    if (it == v.end() || slot < 0 || slot >= static_cast<int>(v.size())) return false;
    Flying moving = *it;
    v.erase(it);
    v.insert(v.begin() + slot, moving);
    settle();
    return true;
}

const std::vector<TrafficAircraft>& trafficAircraft() { return traffic().shown; }

}  // namespace xphost
