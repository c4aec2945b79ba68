// The host's world module: local and world coordinates, terrain probes, the boats and
// the aircraft's world position.
#include "host/world.h"

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "XPLMGraphics.h"
#include "XPLMScenery.h"
#include "host/host_internal.h"

namespace xphost {

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kRadians = kPi / 180.0;
// WGS84
constexpr double kSemiMajor = 6378137.0;
constexpr double kFlattening = 1.0 / 298.257223563;
constexpr double kEccentricity2 = kFlattening * (2.0 - kFlattening);

// The field the default aircraft starts over.
constexpr double kDefaultLatitude = 47.4638;
constexpr double kDefaultLongitude = -122.3078;
// The default field is flat this far from the origin along either axis.
constexpr double kFlatHalfWidth = 3000.0;
// South of this line the flat square is the bay of the boats.
constexpr double kBayNorthEdge = 1200.0;

bool defaultWater(double x, double z) {
    return std::fabs(x) <= kFlatHalfWidth && z > kBayNorthEdge && z <= kFlatHalfWidth;
}

struct Probe {
    int plugin = 0;
    int type = 0;
};

struct WorldState {
    double refLatitude = kDefaultLatitude;
    double refLongitude = kDefaultLongitude;
    // Earth-centred position of the reference point and the rows of the rotation into
    // east, north, up.
    double ecef0[3] = {0, 0, 0};
    double east[3] = {0, 0, 0}, north[3] = {0, 0, 0}, up[3] = {0, 0, 0};
    TerrainFunction terrain;
    WaterFunction water;
    std::vector<std::unique_ptr<Probe>> probes;
    Boat boats[2];
    SimDataRef* latitude = nullptr;
    SimDataRef* longitude = nullptr;
    SimDataRef* elevation = nullptr;
    SimDataRef* latRef = nullptr;
    SimDataRef* lonRef = nullptr;
    SimDataRef* boatX = nullptr;
    SimDataRef* boatY = nullptr;
    SimDataRef* boatZ = nullptr;
    SimDataRef* boatHeading = nullptr;
};

WorldState& world() {
    static WorldState s;
    return s;
}

void geodeticToEcef(double lat, double lon, double h, double out[3]) {
    double phi = lat * kRadians, lambda = lon * kRadians;
    double s = std::sin(phi);
    double n = kSemiMajor / std::sqrt(1.0 - kEccentricity2 * s * s);
    out[0] = (n + h) * std::cos(phi) * std::cos(lambda);
    out[1] = (n + h) * std::cos(phi) * std::sin(lambda);
    out[2] = (n * (1.0 - kEccentricity2) + h) * s;
}

// Iterates latitude and height to convergence; a handful of rounds reach 1e-12.
void ecefToGeodetic(const double p[3], double& lat, double& lon, double& h) {
    double x = p[0], y = p[1], z = p[2];
    lon = std::atan2(y, x) / kRadians;
    double r = std::sqrt(x * x + y * y);
    double phi = std::atan2(z, r * (1.0 - kEccentricity2));
    h = 0.0;
    for (int i = 0; i < 10; ++i) {
        double s = std::sin(phi);
        double n = kSemiMajor / std::sqrt(1.0 - kEccentricity2 * s * s);
        double c = std::cos(phi);
        h = std::fabs(c) > 1e-9 ? r / c - n : std::fabs(z) - n * (1.0 - kEccentricity2);
        double next = std::atan2(z, r * (1.0 - kEccentricity2 * n / (n + h)));
        if (std::fabs(next - phi) < 1e-15) {
            phi = next;
            break;
        }
        phi = next;
    }
    lat = phi / kRadians;
}

void updateFrame() {
    WorldState& w = world();
    geodeticToEcef(w.refLatitude, w.refLongitude, 0.0, w.ecef0);
    double phi = w.refLatitude * kRadians, lambda = w.refLongitude * kRadians;
    double sp = std::sin(phi), cp = std::cos(phi), sl = std::sin(lambda), cl = std::cos(lambda);
    w.east[0] = -sl, w.east[1] = cl, w.east[2] = 0.0;
    w.north[0] = -sp * cl, w.north[1] = -sp * sl, w.north[2] = cp;
    w.up[0] = cp * cl, w.up[1] = cp * sl, w.up[2] = sp;
}

void publishBoats() {
    WorldState& w = world();
    for (int i = 0; i < 2; ++i) {
        if (w.boatX) w.boatX->floats[i] = static_cast<float>(w.boats[i].x);
        if (w.boatY) w.boatY->floats[i] = static_cast<float>(w.boats[i].y);
        if (w.boatZ) w.boatZ->floats[i] = static_cast<float>(w.boats[i].z);
        if (w.boatHeading) w.boatHeading->floats[i] = w.boats[i].heading;
    }
}

void publishAircraftPosition() {
    WorldState& w = world();
    AircraftState a = aircraft();
    double lat, lon, elev;
    localToWorld(a.x, a.y, a.z, lat, lon, elev);
    if (w.latitude) w.latitude->set(lat);
    if (w.longitude) w.longitude->set(lon);
    if (w.elevation) w.elevation->set(elev);
}

// Boats sail in simulated time: a paused simulator holds them.
void moveBoats() {
    WorldState& w = world();
    double dt = simulatedStep();
    for (Boat& b : w.boats) {
        if (b.speed == 0.0f) continue;
        double h = b.heading * kRadians;
        b.x += std::sin(h) * b.speed * dt;
        b.z -= std::cos(h) * b.speed * dt;
    }
    publishBoats();
}

void resetWorld() {
    WorldState& w = world();
    w.refLatitude = kDefaultLatitude;
    w.refLongitude = kDefaultLongitude;
    updateFrame();
    w.terrain = defaultTerrainHeight;
    w.water = defaultWater;
    w.probes.clear();
    // The carrier steams north-east two kilometres south of the field, the frigate
    // follows it; both on the sea level of the flat area.
    w.boats[0] = Boat{1000.0, 0.0, 2000.0, 45.0f, 8.0f};
    w.boats[1] = Boat{-500.0, 0.0, 2600.0, 45.0f, 8.0f};
    w.latitude = defineDouble("sim/flightmodel/position/latitude", 0.0, false);
    w.longitude = defineDouble("sim/flightmodel/position/longitude", 0.0, false);
    w.elevation = defineDouble("sim/flightmodel/position/elevation", 0.0, false);
    w.latRef = defineFloat("sim/flightmodel/position/lat_ref", static_cast<float>(w.refLatitude), false);
    w.lonRef = defineFloat("sim/flightmodel/position/lon_ref", static_cast<float>(w.refLongitude), false);
    w.boatX = defineFloatArray("sim/world/boat/x_mtr", 2, false);
    w.boatY = defineFloatArray("sim/world/boat/y_mtr", 2, false);
    w.boatZ = defineFloatArray("sim/world/boat/z_mtr", 2, false);
    w.boatHeading = defineFloatArray("sim/world/boat/heading_deg", 2, false);
    publishBoats();
    publishAircraftPosition();
}

void listProbeLeaks(int plugin, std::vector<std::string>& out) {
    int count = 0;
    for (auto& p : world().probes)
        if (p->plugin == plugin) ++count;
    if (count > 0) out.push_back("XPLMProbeRef: " + std::to_string(count) + " probe(s) not destroyed");
}

constexpr BoatShape kBoatShapes[2] = {{330, 60, 18, 30, 10, 22, 20}, {130, 16, 7, 40, 11, 9, 0}};

HostModule gWorldModule("world", resetWorld, listProbeLeaks);

struct WorldHooks {
    WorldHooks() {
        addFrameHook(FramePoint::AfterFlightModel, "world", [] {
            moveBoats();
            publishAircraftPosition();
        });
    }
} gWorldHooks;

Probe* findProbe(XPLMProbeRef ref) {
    for (auto& p : world().probes)
        if (p.get() == ref) return p.get();
    return nullptr;
}

}  // namespace

void setReferencePoint(double latitude, double longitude) {
    ensureInitialized();
    WorldState& w = world();
    w.refLatitude = latitude;
    w.refLongitude = longitude;
    updateFrame();
    if (w.latRef) w.latRef->set(latitude);
    if (w.lonRef) w.lonRef->set(longitude);
    publishAircraftPosition();
}

void referencePoint(double& latitude, double& longitude) {
    ensureInitialized();
    latitude = world().refLatitude;
    longitude = world().refLongitude;
}

void worldToLocal(double latitude, double longitude, double elevation, double& x, double& y, double& z) {
    ensureInitialized();
    WorldState& w = world();
    double p[3];
    geodeticToEcef(latitude, longitude, elevation, p);
    double d[3] = {p[0] - w.ecef0[0], p[1] - w.ecef0[1], p[2] - w.ecef0[2]};
    x = w.east[0] * d[0] + w.east[1] * d[1] + w.east[2] * d[2];
    y = w.up[0] * d[0] + w.up[1] * d[1] + w.up[2] * d[2];
    z = -(w.north[0] * d[0] + w.north[1] * d[1] + w.north[2] * d[2]);
}

void localToWorld(double x, double y, double z, double& latitude, double& longitude, double& elevation) {
    ensureInitialized();
    WorldState& w = world();
    double n = -z;
    double p[3];
    for (int i = 0; i < 3; ++i) p[i] = w.ecef0[i] + w.east[i] * x + w.north[i] * n + w.up[i] * y;
    ecefToGeodetic(p, latitude, longitude, elevation);
}

void setTerrain(TerrainFunction terrain) {
    ensureInitialized();
    world().terrain = std::move(terrain);
    world().water = nullptr;
}

void setWater(WaterFunction water) {
    ensureInitialized();
    world().water = std::move(water);
}

void setDefaultTerrain() {
    setTerrain(defaultTerrainHeight);
    setWater(defaultWater);
}

bool isWater(double x, double z) {
    ensureInitialized();
    const WaterFunction& water = world().water;
    return water && water(x, z);
}

double localHeightOf(double x, double z, double elevation) {
    // The earth falls away from the tangent plane by about d^2 / 2R; two corrections
    // through the exact conversion reach well under a millimetre.
    double y = elevation;
    for (int i = 0; i < 2; ++i) {
        double lat, lon, e;
        localToWorld(x, y, z, lat, lon, e);
        y += elevation - e;
    }
    return y;
}

bool defaultTerrainHeight(double x, double z, double& y) {
    double ax = std::fabs(x), az = std::fabs(z);
    if (ax <= kFlatHalfWidth && az <= kFlatHalfWidth) {
        y = 0.0;
        return true;
    }
    // Outside the flat square: the distance beyond it, steeper to the north and east.
    double beyondX = ax > kFlatHalfWidth ? ax - kFlatHalfWidth : 0.0;
    double beyondZ = az > kFlatHalfWidth ? az - kFlatHalfWidth : 0.0;
    double slopeX = x > 0 ? 0.10 : 0.05;
    double slopeZ = z < 0 ? 0.10 : 0.05;
    double hills = 20.0 * std::sin(x / 700.0) * std::cos(z / 900.0);
    double ramp = beyondX * slopeX + beyondZ * slopeZ;
    // The hills fade in with the ramp, so the edge of the flat area has no step.
    double fade = ramp < 50.0 ? ramp / 50.0 : 1.0;
    y = ramp + hills * fade;
    return true;
}

bool terrainHeight(double x, double z, double& y) {
    ensureInitialized();
    const TerrainFunction& t = world().terrain;
    double elevation;
    if (!t || !t(x, z, elevation)) return false;
    y = localHeightOf(x, z, elevation);
    return true;
}

const BoatShape& boatShape(int index) { return kBoatShapes[index == 1 ? 1 : 0]; }

bool boatDeckAt(double x, double z, double& y, double velocity[3]) {
    ensureInitialized();
    for (int i = 0; i < 2; ++i) {
        const Boat& b = world().boats[i];
        const BoatShape& shape = kBoatShapes[i];
        const double h = b.heading * kRadians;
        // Into the boat's axes: along the heading (east sin h, north cos h) and across.
        const double dx = x - b.x, dz = z - b.z;
        const double along = dx * std::sin(h) - dz * std::cos(h);
        const double across = dx * std::cos(h) + dz * std::sin(h);
        if (std::fabs(along) > shape.length / 2 || std::fabs(across) > shape.beam / 2) continue;
        y = b.y + shape.freeboard;
        velocity[0] = std::sin(h) * b.speed;
        velocity[1] = 0;
        velocity[2] = -std::cos(h) * b.speed;
        return true;
    }
    return false;
}

int liveProbeCount() { return static_cast<int>(world().probes.size()); }

void setBoat(int index, const Boat& b) {
    ensureInitialized();
    if (index < 0 || index > 1) return;
    world().boats[index] = b;
    publishBoats();
}

Boat boat(int index) {
    ensureInitialized();
    if (index < 0 || index > 1) return Boat();
    return world().boats[index];
}

}  // namespace xphost

using namespace xphost;

void XPLMWorldToLocal(double inLatitude, double inLongitude, double inAltitude, double* outX, double* outY,
                      double* outZ) {
    if (!checkThread("XPLMWorldToLocal")) return;
    double x, y, z;
    worldToLocal(inLatitude, inLongitude, inAltitude, x, y, z);
    if (outX) *outX = x;
    if (outY) *outY = y;
    if (outZ) *outZ = z;
}

void XPLMLocalToWorld(double inX, double inY, double inZ, double* outLatitude, double* outLongitude,
                      double* outAltitude) {
    if (!checkThread("XPLMLocalToWorld")) return;
    double lat, lon, alt;
    localToWorld(inX, inY, inZ, lat, lon, alt);
    if (outLatitude) *outLatitude = lat;
    if (outLongitude) *outLongitude = lon;
    if (outAltitude) *outAltitude = alt;
}

XPLMProbeRef XPLMCreateProbe(XPLMProbeType inProbeType) {
    if (!checkThread("XPLMCreateProbe")) return nullptr;
    if (inProbeType != xplm_ProbeY) return nullptr;
    auto probe = std::make_unique<Probe>();
    probe->plugin = callingPlugin();
    probe->type = inProbeType;
    XPLMProbeRef ref = probe.get();
    world().probes.push_back(std::move(probe));
    return ref;
}

void XPLMDestroyProbe(XPLMProbeRef inProbe) {
    if (!checkThread("XPLMDestroyProbe")) return;
    auto& probes = world().probes;
    for (size_t i = 0; i < probes.size(); ++i) {
        if (probes[i].get() == inProbe) {
            probes.erase(probes.begin() + static_cast<long>(i));
            return;
        }
    }
}

XPLMProbeResult XPLMProbeTerrainXYZ(XPLMProbeRef inProbe, float inX, float inY, float inZ,
                                    XPLMProbeInfo_t* outInfo) {
    if (!checkThread("XPLMProbeTerrainXYZ")) return xplm_ProbeError;
    // The simulator refuses a record of a size it doesn't know.
    if (!findProbe(inProbe) || !outInfo || outInfo->structSize != static_cast<int>(sizeof(XPLMProbeInfo_t)))
        return xplm_ProbeError;
    // The tallest surface on the vertical through the point: a boat's deck over the sea.
    double deck = 0, velocity[3] = {0, 0, 0};
    if (boatDeckAt(inX, inZ, deck, velocity)) {
        outInfo->locationX = inX;
        outInfo->locationY = static_cast<float>(deck);
        outInfo->locationZ = inZ;
        outInfo->normalX = outInfo->normalZ = 0.0f;
        outInfo->normalY = 1.0f;
        outInfo->velocityX = static_cast<float>(velocity[0]);
        outInfo->velocityY = static_cast<float>(velocity[1]);
        outInfo->velocityZ = static_cast<float>(velocity[2]);
        outInfo->is_wet = 0;
        return xplm_ProbeHitTerrain;
    }
    double y;
    if (!terrainHeight(inX, inZ, y)) return xplm_ProbeMissed;
    // The normal from the slope of the field, by central differences over a metre.
    double yx0 = y, yx1 = y, yz0 = y, yz1 = y;
    terrainHeight(inX - 0.5, inZ, yx0);
    terrainHeight(inX + 0.5, inZ, yx1);
    terrainHeight(inX, inZ - 0.5, yz0);
    terrainHeight(inX, inZ + 0.5, yz1);
    double nx = -(yx1 - yx0), nz = -(yz1 - yz0), ny = 1.0;
    double len = std::sqrt(nx * nx + ny * ny + nz * nz);
    outInfo->locationX = inX;
    outInfo->locationY = static_cast<float>(y);
    outInfo->locationZ = inZ;
    outInfo->normalX = static_cast<float>(nx / len);
    outInfo->normalY = static_cast<float>(ny / len);
    outInfo->normalZ = static_cast<float>(nz / len);
    outInfo->velocityX = outInfo->velocityY = outInfo->velocityZ = 0.0f;
    outInfo->is_wet = isWater(inX, inZ) ? 1 : 0;
    (void)inY;
    return xplm_ProbeHitTerrain;
}
