// Scenario verbs of the world: terrain, boats, the reference point, and conversions
// printed for checks.
#include <ostream>
#include <string>
#include <vector>

#include "host/host.h"
#include "host/scene.h"
#include "host/world.h"

namespace {

using xphost::ScenarioLine;

bool numbers(const ScenarioLine& line, size_t first, size_t count, std::vector<double>& out) {
    out.clear();
    if (line.args.size() < first + count) return false;
    for (size_t i = first; i < first + count; ++i) {
        double v;
        if (!xphost::parseNumber(line.args[i], v)) return false;
        out.push_back(v);
    }
    return true;
}

std::string terrainVerb(ScenarioLine& line) {
    const std::vector<std::string>& a = line.args;
    std::vector<double> v;
    std::string kind = a.size() > 1 ? a[1] : "";
    if (kind == "default" && a.size() == 2) {
        xphost::setDefaultTerrain();
    } else if (kind == "none" && a.size() == 2) {
        xphost::setTerrain([](double, double, double&) { return false; });
    } else if (kind == "flat" && a.size() == 3 && numbers(line, 2, 1, v)) {
        double height = v[0];
        xphost::setTerrain([height](double, double, double& y) {
            y = height;
            return true;
        });
    } else if (kind == "plane" && a.size() == 5 && numbers(line, 2, 3, v)) {
        double height = v[0], slopeX = v[1], slopeZ = v[2];
        xphost::setTerrain([=](double x, double z, double& y) {
            y = height + slopeX * x + slopeZ * z;
            return true;
        });
    } else {
        return "expected: terrain default|none|flat Y|plane Y SLOPE_X SLOPE_Z";
    }
    return "";
}

std::string boatVerb(ScenarioLine& line) {
    const std::vector<std::string>& a = line.args;
    std::vector<double> v;
    int index = -1;
    if (a.size() > 1) index = a[1] == "carrier" ? 0 : a[1] == "frigate" ? 1 : -1;
    bool withSpeed = a.size() == 7;
    if (index < 0 || !(a.size() == 6 || withSpeed) || !numbers(line, 2, withSpeed ? 5 : 4, v))
        return "expected: boat carrier|frigate X Y Z HEADING [SPEED]";
    xphost::Boat b;
    b.x = v[0];
    b.y = v[1];
    b.z = v[2];
    b.heading = static_cast<float>(v[3]);
    b.speed = withSpeed ? static_cast<float>(v[4]) : 0.0f;
    xphost::setBoat(index, b);
    return "";
}

std::string referenceVerb(ScenarioLine& line) {
    std::vector<double> v;
    if (line.args.size() != 3 || !numbers(line, 1, 2, v)) return "expected: reference LATITUDE LONGITUDE";
    xphost::setReferencePoint(v[0], v[1]);
    return "";
}

std::string probeVerb(ScenarioLine& line) {
    std::vector<double> v;
    if (line.args.size() != 3 || !numbers(line, 1, 2, v)) return "expected: probe X Z";
    double y;
    if (line.out) {
        if (xphost::terrainHeight(v[0], v[1], y)) *line.out << "probe " << xphost::formatNumber(y) << '\n';
        else *line.out << "probe missed\n";
    }
    return "";
}

std::string toWorldVerb(ScenarioLine& line) {
    std::vector<double> v;
    if (line.args.size() != 4 || !numbers(line, 1, 3, v)) return "expected: local_to_world X Y Z";
    double lat, lon, elev;
    xphost::localToWorld(v[0], v[1], v[2], lat, lon, elev);
    if (line.out)
        *line.out << "world " << xphost::formatNumber(lat) << ' ' << xphost::formatNumber(lon) << ' '
                  << xphost::formatNumber(elev) << '\n';
    return "";
}

std::string toLocalVerb(ScenarioLine& line) {
    std::vector<double> v;
    if (line.args.size() != 4 || !numbers(line, 1, 3, v)) return "expected: world_to_local LATITUDE LONGITUDE ELEVATION";
    double x, y, z;
    xphost::worldToLocal(v[0], v[1], v[2], x, y, z);
    if (line.out)
        *line.out << "local " << xphost::formatNumber(x) << ' ' << xphost::formatNumber(y) << ' '
                  << xphost::formatNumber(z) << '\n';
    return "";
}

std::string markerVerb(ScenarioLine& line) {
    std::vector<double> v;
    if (line.args.size() != 4 || !numbers(line, 1, 3, v) || v[0] < -90 || v[0] > 90 || v[1] < -180 || v[1] > 180)
        return "expected: marker LATITUDE LONGITUDE ELEVATION_M";
    xphost::addMarker(v[0], v[1], v[2]);
    return "";
}

xphost::ScenarioVerbRegistration gTerrain(
    "terrain", "terrain default|none|flat Y|plane Y SLOPE_X SLOPE_Z   (the ground probes find)", terrainVerb);
xphost::ScenarioVerbRegistration gBoat("boat", "boat carrier|frigate X Y Z HEADING [SPEED]", boatVerb);
xphost::ScenarioVerbRegistration gReference("reference", "reference LATITUDE LONGITUDE   (origin of local coordinates)",
                                            referenceVerb);
xphost::ScenarioVerbRegistration gProbe("probe", "probe X Z   (prints the terrain height)", probeVerb);
xphost::ScenarioVerbRegistration gToWorld("local_to_world", "local_to_world X Y Z   (prints latitude, longitude, elevation)",
                                          toWorldVerb);
xphost::ScenarioVerbRegistration gToLocal("world_to_local", "world_to_local LATITUDE LONGITUDE ELEVATION   (prints x, y, z)",
                                          toLocalVerb);
xphost::ScenarioVerbRegistration gMarker("marker",
                                         "marker LATITUDE LONGITUDE ELEVATION_M   (a bright magenta cube drawn there)",
                                         markerVerb);

}  // namespace
