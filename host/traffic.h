// The simulator's traffic, as X-Plane 12 has it: a stand-in traffic plug-in flies
// other aircraft on scripted paths and publishes them either through the TCAS target
// datarefs (element 0 the user's aircraft, then one per aircraft with its Mode S
// identifier and flight ID) or, in the older way, only through the 19 multiplayer
// slots. XPLMCountAircraft counts them as active aircraft. Absent after every reset.
#pragma once

#include <string>
#include <vector>

#include "host/host.h"

namespace xphost {

enum class TrafficSource { Tcas, Multiplayer };

// A path in closed form from the moment the aircraft joins: level or climbing, straight
// or turning at a constant rate (banking as a real turn would).
struct TrafficPath {
    double startX = 0, startY = 1000, startZ = 0;
    float headingDeg = 0;
    float speed = 70;        // m/s
    float turnRate = 0;      // deg/s, positive to the right
    float climbRate = 0;     // m/s
};

struct TrafficAircraft {
    std::string flightId;
    int modeSId = 0;
    AircraftState state;
};

constexpr int kTcasTargets = 64;       // including the user's aircraft
constexpr int kMultiplayerSlots = 19;

// Installs the traffic plug-in (once) and chooses how it publishes from the next frame.
void installTraffic(TrafficSource source);
bool trafficInstalled();
// Joins at the end of the table. False when the table is full or the flight ID or the
// identifier is taken.
bool addTrafficAircraft(const std::string& flightId, int modeSId, const TrafficPath& path);
// Leaves; the aircraft behind move up one place, as the simulator renumbers.
bool removeTrafficAircraft(const std::string& flightId);
// Moves an aircraft to another place of the table (0 the first after the user's).
bool moveTrafficAircraft(const std::string& flightId, int slot);
// The aircraft in table order, where they are this frame.
const std::vector<TrafficAircraft>& trafficAircraft();

}  // namespace xphost
