// The host's world: X-Plane's local frame (x east, y up, z south, metres, origin at a
// reference point on the ellipsoid) and world coordinates (latitude, longitude,
// elevation) both ways in double precision; the terrain that probes find; the two
// boats of "sim/world/boat/"; the aircraft's latitude, longitude and elevation kept in
// step with its local position. Control API for tests and the runner.
#pragma once

#include <functional>

namespace xphost {

// The reference point of the local frame; by default the field the
// default aircraft starts over (47.4638 N, 122.3078 W).
void setReferencePoint(double latitude, double longitude);
void referencePoint(double& latitude, double& longitude);

// WGS84, through earth-centred coordinates: exact both ways to well under a millimetre
// at any distance the simulator uses.
void worldToLocal(double latitude, double longitude, double elevation, double& x, double& y, double& z);
void localToWorld(double x, double y, double z, double& latitude, double& longitude, double& elevation);

// Terrain as a height field over the local x/z plane: the elevation above sea level
// of the ground under (x, z). A function that returns false there has no terrain (the
// probe misses). The local Y that probes report follows the earth's curve away from
// the tangent plane at the origin: level ground 20 km out lies about 31 m below it.
using TerrainFunction = std::function<bool(double x, double z, double& elevation)>;
// Also clears the water: a scenario's own ground is dry unless it says otherwise.
void setTerrain(TerrainFunction terrain);
// Where the ground is water (XPLMProbeInfo_t::is_wet); null: nowhere.
using WaterFunction = std::function<bool(double x, double z)>;
void setWater(WaterFunction water);
// The default field: flat at 0 within 3 km of the origin (the airfield, and south of
// z = 1200 the bay where the boats sail), rising outside it by 10 percent towards the north and east and by 5
// percent towards the south and west, with gentle hills on the slopes.
void setDefaultTerrain();
bool defaultTerrainHeight(double x, double z, double& y);
// The ground under (x, z) as the probes see it, in local Y; false where there is none.
bool terrainHeight(double x, double z, double& y);
// The local Y of the point above (x, z) that lies at this elevation.
double localHeightOf(double x, double z, double elevation);
bool isWater(double x, double z);
// Probes created and not destroyed, over all plug-ins.
int liveProbeCount();

// The carrier (0) and the frigate (1): local position and heading, and a speed in
// metres per second along the heading, applied each frame.
struct Boat {
    double x = 0, y = 0, z = 0;
    float heading = 0;
    float speed = 0;
};
void setBoat(int index, const Boat& boat);
Boat boat(int index);
// A boat's hull as drawn and as probes find its deck: along the heading, across it,
// the deck's height over the boat's y, and the island on the starboard side.
struct BoatShape {
    double length, beam, freeboard, islandLength, islandWidth, islandHeight, islandOffset;
};
const BoatShape& boatShape(int index);
// The deck of a boat under (x, z): its local Y and the deck's velocity there.
bool boatDeckAt(double x, double z, double& y, double velocity[3]);

}  // namespace xphost
