// Scenario verbs that put the user's aircraft somewhere and move it: parked at a
// place, taxiing or flying from there, or held still.
#include <cmath>
#include <ostream>
#include <string>

#include "host/host.h"
#include "host/world.h"

namespace {

using xphost::ScenarioLine;

constexpr double kRadians = 3.14159265358979323846 / 180.0;

bool number(const ScenarioLine& line, size_t i, double& out) {
    return i < line.args.size() && xphost::parseNumber(line.args[i], out);
}

// Parked on the ground at a world position. As X-Plane does when the user moves the
// aircraft to another place, the local frame is centred there.
xphost::ScenarioVerbRegistration atVerb(
    "aircraft_at", "aircraft_at LATITUDE LONGITUDE ELEVATION_M HEADING   (parks the user's aircraft there)",
    [](ScenarioLine& line) -> std::string {
        double latitude, longitude, elevation, heading;
        if (line.args.size() != 5 || !number(line, 1, latitude) || !number(line, 2, longitude) ||
            !number(line, 3, elevation) || !number(line, 4, heading))
            return "usage: aircraft_at LATITUDE LONGITUDE ELEVATION_M HEADING";
        xphost::setReferencePoint(latitude, longitude);
        xphost::AircraftState state;
        xphost::worldToLocal(latitude, longitude, elevation, state.x, state.y, state.z);
        double ground;
        if (xphost::terrainHeight(state.x, state.z, ground)) state.y = ground;
        state.psi = float(heading);
        xphost::freezeAircraft(false);
        xphost::setAircraftMover([state](double) { return state; });
        if (line.out) *line.out << "aircraft parked at " << line.args[1] << " " << line.args[2] << "\n";
        return std::string();
    });

// On from where it stands, at a speed along a heading, climbing at a rate.
xphost::ScenarioVerbRegistration moveVerb(
    "aircraft_move", "aircraft_move SPEED_MPS HEADING [CLIMB_MPS]   (taxis or flies the aircraft from where it is)",
    [](ScenarioLine& line) -> std::string {
        double speed, heading, climb = 0;
        if ((line.args.size() != 3 && line.args.size() != 4) || !number(line, 1, speed) ||
            !number(line, 2, heading) || (line.args.size() == 4 && !number(line, 3, climb)))
            return "usage: aircraft_move SPEED_MPS HEADING [CLIMB_MPS]";
        xphost::AircraftState from = xphost::aircraft();
        from.psi = float(heading);
        from.theta = from.phi = 0;
        from.groundSpeed = float(speed);
        double start = xphost::simTime();
        xphost::freezeAircraft(false);
        xphost::setAircraftMover([from, start, speed, heading, climb](double time) {
            xphost::AircraftState s = from;
            double t = time - start;
            s.x += speed * t * std::sin(heading * kRadians);
            s.z -= speed * t * std::cos(heading * kRadians);
            s.y += climb * t;
            return s;
        });
        return std::string();
    });

xphost::ScenarioVerbRegistration freezeVerb(
    "aircraft_freeze", "aircraft_freeze   (holds the aircraft where it is)", [](ScenarioLine& line) -> std::string {
        if (line.args.size() != 1) return "usage: aircraft_freeze";
        xphost::freezeAircraft(true);
        return std::string();
    });

}  // namespace
