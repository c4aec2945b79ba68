// One airport's runways, start locations, signs, viewpoints and helipads as the
// simulator's scenery data holds them: the scenery packs walked in the simulator's own
// order of priority, and the reader of an "apt.dat" file. Nothing is cached; the record
// lives until the caller frees it. Main thread only.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>

struct RunwayEnd {
    float latitude, longitude;
    float heading;  // filled by the camera generation
    char name[16];
};
struct Runway {
    RunwayEnd ends[2];
};
struct StartLocation {
    float latitude, longitude, heading;
    char name[100];
};
struct Sign {
    float latitude, longitude;
    char text[1000];
};
struct ViewPoint {
    float latitude, longitude;
    float height;  // feet
    char name[100];
};
struct Helipad {
    float latitude, longitude;
    char name[12];
};

enum : int32_t {
    kMaxRunways = 75,
    kMaxStartLocations = 150,
    kMaxSigns = 500,
    kMaxViewPoints = 150,
    kMaxHelipads = 150,
};

struct AirportScenery {
    double elevation;  // feet
    char id[12];
    int32_t runwayCount;
    int32_t startCount;
    int32_t signCount;
    int32_t viewPointCount;
    int32_t helipadCount;
    Runway runways[kMaxRunways];
    StartLocation starts[kMaxStartLocations];
    Sign signs[kMaxSigns];
    ViewPoint viewPoints[kMaxViewPoints];
    Helipad helipads[kMaxHelipads];
};

// The airport `id` from the first scenery pack, in the order of
// "Custom Scenery/scenery_packs.ini", that holds it, else from the default apt data;
// null when none does. The caller frees the record with delete.
AirportScenery* findAirport(const char* id);
// The airport from the one pack `folder` (its "Earth nav data/apt.dat"), or null.
AirportScenery* searchPack(const char* folder, const char* id);
// One pass over an open apt.dat (or its bytes in memory): the airport whose header or
// metadata names `id`, or null.
AirportScenery* readAptDat(std::FILE* file, const char* id);
AirportScenery* readAptDatText(const char* text, size_t size, const char* id);
// The same into a record the caller keeps (only what the counts cover is written):
// false, and `out` untouched, when the text has no such airport.
bool readAptDatText(const char* text, size_t size, const char* id, AirportScenery& out);

// A sign's code as a camera name: brace groups become one blank, "_" a blank, runs of
// white space one character, trimmed at both ends.
void cleanSignText(const char* code, char* out, size_t capacity);
