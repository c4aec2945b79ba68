#include "airports/airport_cameras.h"

#include <cmath>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "XPLMGraphics.h"
#include "XPLMScenery.h"
#include "airports/airport_files.h"
#include "airports/apt_dat.h"
#include "data/angles.h"
#include "data/camera_set.h"
#include "data/targets.h"
#include "data/user_messages.h"
#include "motion/camera_pose.h"

namespace {

constexpr double kFeetPerMetre = 3.2808399;
constexpr double kDegrees = 180.0 / 3.14159265358979323846;

struct Placement {
    XPLMProbeRef probe;
    double elevationMetres;  // the airport's
    const char* id;
    bool targets;
};

struct Point {
    double x, y, z;
};

Point local(const Placement& p, double latitude, double longitude) {
    Point point{};
    XPLMWorldToLocal(latitude, longitude, p.elevationMetres, &point.x, &point.y, &point.z);
    return point;
}

// The terrain's height under a local point; a probe that misses leaves y as it was.
double terrainY(const Placement& p, const Point& at) {
    XPLMProbeInfo_t info{};
    info.structSize = sizeof info;
    info.locationY = float(at.y);
    XPLMProbeTerrainXYZ(p.probe, float(at.x), float(at.y), float(at.z), &info);
    return info.locationY;
}

// A target at a feature: the terrain's elevation there plus a metre, and `extra` metres.
void addFeatureTarget(const Placement& p, const std::string& name, double latitude, double longitude, double extra) {
    if (!p.targets) return;
    Point at = local(p, latitude, longitude);
    XPLMProbeInfo_t info{};
    info.structSize = sizeof info;
    info.locationX = float(at.x), info.locationY = float(at.y), info.locationZ = float(at.z);
    XPLMProbeTerrainXYZ(p.probe, float(at.x), float(at.y), float(at.z), &info);
    double lat, lon, elevation;
    XPLMLocalToWorld(info.locationX, info.locationY, info.locationZ, &lat, &lon, &elevation);
    addTarget(name.c_str(), nullptr, latitude, longitude, elevation + 1.0 + extra, 0);
}

// A free camera at a local point, `height` above the terrain there.
void placeCamera(const Placement& p, Camera& camera, const char* name, Point at, double height, float heading,
                 float pitch, bool tracking) {
    resetCamera(&camera);
    copyText(camera.name, name, kNameCopyLimit);
    camera.external = true;
    camera.freeCamera = true;
    camera.airportCamera = true;
    camera.initialMovementRange = 2;
    camera.trackHeading = camera.trackPitch = tracking;
    camera.x = float(at.x);
    camera.z = float(at.z);
    camera.y = float(terrainY(p, at) + height);
    camera.heading = heading;
    camera.pitch = pitch;
    localToWorld(&camera);
    refreshHomePose(&camera);
}

// d metres behind a point along a heading, with x towards east and -z towards north.
Point behind(Point at, double heading, double d) {
    at.x -= d * std::sin(heading / kDegrees);
    at.z += d * std::cos(heading / kDegrees);
    return at;
}

Category& addCategory(const char* name) {
    int index = findOrAddCategory(name, true);
    return workingSet().categories[index < 0 ? 0 : index];
}

std::string format(const char* pattern, const char* a, const char* b) {
    char text[300];
    std::snprintf(text, sizeof text, pattern, a, b);
    return text;
}

}  // namespace

AirportCameraOptions& airportCameraOptions() {
    static AirportCameraOptions options;
    return options;
}

void createAirportCameras(const AirportCameraOptions& options) {
    CameraFile* file = activeFile();
    if (!file || !isAirportSetActive()) return;
    std::string id = airportIdOfFile(*file);
    std::unique_ptr<AirportScenery> airport(findAirport(id.c_str()));
    if (!airport) {
        announce("Unable to find this airport in the scenery database");
        return;
    }
    clearWorkingSet();
    Placement p{XPLMCreateProbe(xplm_ProbeY), airport->elevation / kFeetPerMetre, airport->id, options.createTargets};
    const AirportScenery& a = *airport;

    if (a.startCount > 0) {
        Category& category = addCategory("Starting Locations");
        for (int i = 0; i < a.startCount && category.cameraCount < kMaxCameras; ++i) {
            const StartLocation& s = a.starts[i];
            float heading = options.forwardFacing ? s.heading : s.heading + 180.0f;
            while (heading >= 360.0f) heading -= 360.0f;
            while (heading < 0.0f) heading += 360.0f;
            Point at = behind(local(p, s.latitude, s.longitude), heading, options.startHorizontalOffset);
            placeCamera(p, category.cameras[category.cameraCount++], s.name, at, options.startVerticalOffset, heading,
                        -10.0f, options.trackingCameras);
        }
    }
    if (a.viewPointCount > 0) {
        Category& category = addCategory("View Points");
        for (int i = 0; i < a.viewPointCount && category.cameraCount < kMaxCameras; ++i) {
            const ViewPoint& v = a.viewPoints[i];
            double height = v.height / kFeetPerMetre;
            placeCamera(p, category.cameras[category.cameraCount++], v.name, local(p, v.latitude, v.longitude), height,
                        0.0f, 0.0f, true);
            addFeatureTarget(p, format("%s - Viewpoint - %s", a.id, v.name), v.latitude, v.longitude, height);
        }
    }
    if (a.runwayCount > 0) {
        Category& category = addCategory("Runways");
        for (int i = 0; i < a.runwayCount && category.cameraCount + 1 < kMaxCameras; ++i) {
            const Runway& r = a.runways[i];
            Point ends[2] = {local(p, r.ends[0].latitude, r.ends[0].longitude),
                             local(p, r.ends[1].latitude, r.ends[1].longitude)};
            for (int e = 0; e < 2; ++e) {
                const Point& from = ends[e];
                const Point& to = ends[1 - e];
                // The bearing from this end to the other, from their places, not the name.
                float heading = wrapAngle(float(90.0 - std::atan2(-(to.z - from.z), to.x - from.x) * kDegrees));
                if (heading >= 360.0f) heading -= 360.0f;
                Point at = behind(from, heading, options.runwayHorizontalOffset);
                placeCamera(p, category.cameras[category.cameraCount++], r.ends[e].name, at,
                            options.runwayVerticalOffset, heading, 0.0f, options.trackingCameras);
                addFeatureTarget(p, format("%s - Runway - %s", a.id, r.ends[e].name), r.ends[e].latitude,
                                 r.ends[e].longitude, 0.0);
            }
        }
    }
    if (a.helipadCount > 0) {
        Category& category = addCategory("Helipads");
        for (int i = 0; i < a.helipadCount && category.cameraCount < kMaxCameras; ++i) {
            const Helipad& h = a.helipads[i];
            Point at = local(p, h.latitude, h.longitude);
            at.x += options.startHorizontalOffset;
            placeCamera(p, category.cameras[category.cameraCount++], h.name, at, options.startVerticalOffset, 0.0f,
                        0.0f, true);
            addFeatureTarget(p, format("%s - Helipad - %s", a.id, h.name), h.latitude, h.longitude, 0.0);
        }
    }
    // Signs, 100 a category; a sign nearer than the radius to one already kept (over x
    // and z) is dropped and its slot goes to the next sign.
    float radius = options.signCullingRadius > 0.0f ? options.signCullingRadius : 0.0f;
    std::vector<Point> accepted;
    for (int i = 0; i < a.signCount; ++i) {
        const Sign& s = a.signs[i];
        int number = int(accepted.size());
        char categoryName[32];
        std::snprintf(categoryName, sizeof categoryName, "Signs %d", number / 100);
        int index = findOrAddCategory(categoryName, true);
        if (index < 0) break;
        Category& category = workingSet().categories[index];
        int slot = number % 100;
        char name[32];
        if (s.text[0]) copyText(name, s.text, kNameCopyLimit);
        else std::snprintf(name, sizeof name, "Sign_%d", slot);
        Point at = local(p, s.latitude, s.longitude);
        placeCamera(p, category.cameras[slot], name, at, options.signVerticalOffset, 0.0f, 0.0f, true);
        bool tooNear = false;
        for (const Point& kept : accepted)
            if (radius > 0.0f && std::hypot(kept.x - at.x, kept.z - at.z) < radius) tooNear = true;
        if (tooNear) {
            resetCamera(&category.cameras[slot]);
            continue;
        }
        accepted.push_back(at);
        category.cameraCount = slot + 1;
    }
    // A category opened for a sign that was then dropped holds no camera: it goes.
    CameraSet& set = workingSet();
    if (set.categoryCount > 0 && set.categories[set.categoryCount - 1].cameraCount == 0) {
        resetCategory(set.categoryCount - 1);
        --set.categoryCount;
    }

    for (int c = 0; c < set.categoryCount; ++c) set.categories[c].currentCamera = 0;
    setCurrentCategoryIndex(0);
    relinkSet(true);
    XPLMDestroyProbe(p.probe);
    if (options.createTargets) writeTargets();
}
