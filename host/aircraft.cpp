// The user's aircraft: its model file, the other aircraft's count and models, and
// the scripted path that moves its position and attitude datarefs every frame.
#include <cmath>
#include <cstring>

#include "XPLMPlanes.h"
#include "host/core_parts.h"
#include "host/portable.h"

namespace xphost {

namespace {

struct AircraftTable {
    std::string userFile;  // absolute path of the .acf
    std::vector<std::string> otherModels;  // index 1 and up
    int total = 1;
    int active = 1;
    FlightPath path;
    double pathStart = 0;  // simulated time at which the path began
    std::function<AircraftState(double)> mover;
    bool frozen = false;
    bool attitudeHeld = false;  // a scenario's pitch and roll replace the path's
    float heldPitch = 0, heldRoll = 0;
    AircraftState state;
    SimDataRef* localX = nullptr;
    SimDataRef* localY = nullptr;
    SimDataRef* localZ = nullptr;
    SimDataRef* theta = nullptr;
    SimDataRef* phi = nullptr;
    SimDataRef* psi = nullptr;
    SimDataRef* groundSpeed = nullptr;
};

AircraftTable& planes() {
    static AircraftTable t;
    return t;
}

constexpr double degToRad = 3.14159265358979323846 / 180.0;

void holdAttitude(AircraftState& s) {
    if (!planes().attitudeHeld) return;
    s.theta = planes().heldPitch;
    s.phi = planes().heldRoll;
}

}  // namespace

PathPoint alongPath(double speed, double headingDeg, double turnRateDeg, double t) {
    PathPoint at;
    const double h0 = headingDeg * degToRad;
    const double w = turnRateDeg * degToRad;
    double east, north;
    if (std::fabs(w) < 1e-9) {
        east = speed * t * std::sin(h0);
        north = speed * t * std::cos(h0);
    } else {
        // Integral of (sin h, cos h) with h = h0 + w t.
        east = speed / w * (std::cos(h0) - std::cos(h0 + w * t));
        north = speed / w * (std::sin(h0 + w * t) - std::sin(h0));
    }
    at.dx = east;
    at.dz = -north;
    double heading = std::fmod(headingDeg + turnRateDeg * t, 360.0);
    if (heading < 0) heading += 360.0;
    at.headingDeg = static_cast<float>(heading);
    return at;
}

namespace {

// The default path in closed form, so any frame can be computed without history.
AircraftState scripted(const FlightPath& p, double t) {
    AircraftState s;
    const PathPoint at = alongPath(p.speed, p.headingDeg, p.turnRate, t);
    s.x = p.startX + at.dx;
    s.z = p.startZ + at.dz;
    s.y = p.startY + p.climbRate * t;
    s.psi = at.headingDeg;
    s.theta = p.pitchDeg;
    s.phi = p.turnRate > 0 ? p.bankDeg : p.turnRate < 0 ? -p.bankDeg : 0.0f;
    s.groundSpeed = p.speed;
    return s;
}

void publish(const AircraftState& s) {
    AircraftTable& t = planes();
    if (t.localX) t.localX->set(s.x);
    if (t.localY) t.localY->set(s.y);
    if (t.localZ) t.localZ->set(s.z);
    if (t.theta) t.theta->set(s.theta);
    if (t.phi) t.phi->set(s.phi);
    if (t.psi) t.psi->set(s.psi);
    if (t.groundSpeed) t.groundSpeed->set(s.groundSpeed);
}

std::string absolute(const std::string& path) {
    if (!path.empty() && path[0] == '/') return path;
    return root() + path;
}

}  // namespace

void resetAircraft() {
    AircraftTable& t = planes();
    t = AircraftTable();
    t.userFile = root() + "Aircraft/Laminar Research/Cessna 172 SP/Cessna_172SP.acf";
    t.state = scripted(t.path, 0);
}

// Called from defineSimTables once the datarefs exist.
void bindAircraftDataRefs() {
    AircraftTable& t = planes();
    t.localX = simDataRef("sim/flightmodel/position/local_x");
    t.localY = simDataRef("sim/flightmodel/position/local_y");
    t.localZ = simDataRef("sim/flightmodel/position/local_z");
    t.theta = simDataRef("sim/flightmodel/position/theta");
    t.phi = simDataRef("sim/flightmodel/position/phi");
    t.psi = simDataRef("sim/flightmodel/position/psi");
    t.groundSpeed = simDataRef("sim/flightmodel/position/groundspeed");
    publish(t.state);
}

void moveAircraft(double time, double step) {
    AircraftTable& t = planes();
    if (t.frozen) return;
    t.state = t.mover ? t.mover(time) : scripted(t.path, time - t.pathStart);
    holdAttitude(t.state);
    publish(t.state);
}

void rebaseUserAircraft(const std::string& oldRoot, const std::string& newRoot) {
    std::string& f = planes().userFile;
    if (f.compare(0, oldRoot.size(), oldRoot) == 0) f = newRoot + f.substr(oldRoot.size());
}

const std::string& userAircraftFile() {
    return planes().userFile;
}

void setFlightPath(const FlightPath& path) {
    ensureInitialized();
    planes().path = path;
    planes().pathStart = simTime();
    planes().mover = nullptr;
    planes().state = scripted(path, 0);
    publish(planes().state);
}

void setAircraftMover(std::function<AircraftState(double)> mover) {
    ensureInitialized();
    planes().mover = std::move(mover);
    if (planes().mover) {
        planes().state = planes().mover(simTime());
        publish(planes().state);
    }
}

void setAircraftAttitude(float pitchDeg, float rollDeg) {
    ensureInitialized();
    AircraftTable& t = planes();
    t.attitudeHeld = true;
    t.heldPitch = pitchDeg;
    t.heldRoll = rollDeg;
    holdAttitude(t.state);
    publish(t.state);
}

void freezeAircraft(bool frozen) {
    ensureInitialized();
    planes().frozen = frozen;
}

AircraftState aircraft() {
    ensureInitialized();
    AircraftTable& t = planes();
    // A scenario or test may have written the datarefs directly.
    AircraftState s = t.state;
    if (t.localX) s.x = t.localX->d;
    if (t.localY) s.y = t.localY->d;
    if (t.localZ) s.z = t.localZ->d;
    if (t.theta) s.theta = t.theta->f;
    if (t.phi) s.phi = t.phi->f;
    if (t.psi) s.psi = t.psi->f;
    return s;
}

void setUserAircraft(const std::string& acfPath) {
    ensureInitialized();
    planes().userFile = absolute(acfPath);
}

std::string userAircraftPath() {
    ensureInitialized();
    return planes().userFile;
}

void setAircraftCount(int total, int active) {
    ensureInitialized();
    planes().total = std::max(1, total);
    planes().active = std::max(1, std::min(active, planes().total));
}

}  // namespace xphost

using namespace xphost;

namespace {

void copyOut(char* out, const std::string& s) {
    if (!out) return;
    // X-Plane's buffers: 256 for the file name, 512 for the path.
    std::memcpy(out, s.c_str(), s.size() + 1);
}

}  // namespace

void XPLMCountAircraft(int* outTotalAircraft, int* outActiveAircraft, XPLMPluginID* outController) {
    if (!checkThread("XPLMCountAircraft")) return;
    if (outTotalAircraft) *outTotalAircraft = planes().total;
    if (outActiveAircraft) *outActiveAircraft = planes().active;
    if (outController) *outController = XPLM_NO_PLUGIN_ID;
}

void XPLMGetNthAircraftModel(int inIndex, char* outFileName, char* outPath) {
    if (!checkThread("XPLMGetNthAircraftModel")) return;
    std::string full;
    if (inIndex == 0) {
        full = planes().userFile;
    } else if (inIndex > 0 && inIndex <= static_cast<int>(planes().otherModels.size())) {
        full = planes().otherModels[inIndex - 1];
    }
    size_t slash = full.rfind('/');
    copyOut(outFileName, slash == std::string::npos ? full : full.substr(slash + 1));
    copyOut(outPath, nativePath(full));
}

void XPLMSetUsersAircraft(const char* inAircraftPath) {
    if (!checkThread("XPLMSetUsersAircraft") || !inAircraftPath) return;
    setUserAircraft(inAircraftPath);
    sendPlaneLoaded(0);
}

void XPLMPlaceUserAtAirport(const char* inAirportCode) {
    if (!checkThread("XPLMPlaceUserAtAirport")) return;
    sendAirportLoaded();
}

void XPLMPlaceUserAtLocation(double latitudeDegrees, double longitudeDegrees, float elevationMetersMSL,
                             float headingDegreesTrue, float speedMetersPerSecond) {
    if (!checkThread("XPLMPlaceUserAtLocation")) return;
    sendAirportLoaded();
}

void XPLMSetAircraftModel(int inIndex, const char* inAircraftPath) {
    if (!checkThread("XPLMSetAircraftModel") || !inAircraftPath || inIndex < 1) return;
    auto& models = planes().otherModels;
    if (static_cast<int>(models.size()) < inIndex) models.resize(inIndex);
    models[inIndex - 1] = inAircraftPath;
}

void XPLMSetActiveAircraftCount(int inCount) {
    if (!checkThread("XPLMSetActiveAircraftCount")) return;
    setAircraftCount(planes().total, inCount);
}

int XPLMAcquirePlanes(char** inAircraft, XPLMPlanesAvailable_f inCallback, void* inRefcon) {
    if (!checkThread("XPLMAcquirePlanes")) return 0;
    return 1;
}

void XPLMReleasePlanes(void) {
    checkThread("XPLMReleasePlanes");
}

void XPLMDisableAIForPlane(int inPlaneIndex) {
    checkThread("XPLMDisableAIForPlane");
}
