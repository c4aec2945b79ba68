// The airports' own camera files: the list of files of "MyAirportCameras" and
// "CommunityAirportCameras" behind the aircraft's record, the file of an airport and of
// the nearest airport, the airports around the aircraft, switching the working set
// between the aircraft's and an airport's file, and the airport camera nearest to the
// aircraft. Main thread only.
#pragma once

#include <string>
#include <vector>

#include "data/camera_set.h"

struct NearbyAirport {
    char id[100];
    char name[256];
    float latitude, longitude;
    float height;
    float distance;  // nautical miles from the aircraft
    bool hasFile;
};

// At plug-in enable: one record per file of the two airport folders, behind the head.
void buildCameraFileList();
// At plug-in stop: every airport record goes.
void freeCameraFileList();
CameraFile* fileListHead();

// The plug-in folder + the file's folder + "/" + its name.
std::string airportFilePath(const CameraFile& file);
// The name up to its first "-", else its first ".": the airport's ID. Empty for the
// aircraft's record and for a name with neither.
std::string airportIdOfFile(const CameraFile& file);
// The record whose name holds `id` (any case); the user's own folder wins.
CameraFile* findAirportFile(const char* id);

void lookUpAirportPosition(CameraFile* file);
// Once a run, after the first aircraft load: the navigation data is there only then.
void lookUpAllAirportPositions();
std::string nearestAirportId();
// The record for `id`, or for the nearest airport when `id` is null; a new record (no
// file yet) when none exists.
CameraFile* openAirportFile(const char* id);
// The nearest airport's file, else the nearest file within 20 nautical miles, else null.
CameraFile* findNearestAirportFile();
// The airports within 10 nautical miles, in the database's order; rebuilt only after
// the aircraft moved 0.1 nautical miles, or when forced.
const std::vector<NearbyAirport>& nearbyAirports(bool force);

// Between the aircraft's set and the nearest airport's set.
void toggleAirportCameras();
// The airport's free camera nearest to the aircraft (switching to the airport set first
// when the aircraft's is active).
void selectNearestAirportCamera();
