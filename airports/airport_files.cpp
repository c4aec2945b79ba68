#include "airports/airport_files.h"

#include <cctype>
#include <cmath>
#include <cstring>

#include "XPLMDataAccess.h"
#include "XPLMNavigation.h"
#include "XPLMUtilities.h"
#include "data/aircraft_files.h"
#include "data/camera_file.h"
#include "data/great_circle.h"
#include "motion/frame_driver.h"
#include "motion/transitions.h"
#include "platform/runtime.h"

namespace {

const char* const kFolders[2] = {"MyAirportCameras", "CommunityAirportCameras"};

std::vector<NearbyAirport> nearbyList;

struct AirportPlace {
    XPLMNavRef ref;
    float latitude, longitude;
};
// Kept from one plug-in enable to its stop (the simulator's navigation data stays).
std::vector<AirportPlace> places;
XPLMNavRef placesFirst = XPLM_NAV_NOT_FOUND, placesLast = XPLM_NAV_NOT_FOUND;
double nearbyLatitude = 0, nearbyLongitude = 0;
bool nearbyListStale = true;

double dataref(const char* name) {
    XPLMDataRef ref = XPLMFindDataRef(name);
    return ref ? XPLMGetDatad(ref) : 0.0;
}

void aircraftPosition(double& latitude, double& longitude) {
    latitude = dataref("sim/flightmodel/position/latitude");
    longitude = dataref("sim/flightmodel/position/longitude");
}

std::string upper(const char* text) {
    std::string out = text ? text : "";
    for (char& c : out) c = char(std::toupper(static_cast<unsigned char>(c)));
    return out;
}

CameraFile* lastRecord() {
    CameraFile* file = fileListHead();
    while (file->next) file = file->next;
    return file;
}

CameraFile* newAirportRecord(int folderIndex, const char* fileName) {
    CameraFile* record = new CameraFile();
    record->kind = 1;
    record->folderIndex = folderIndex;
    copyText(record->fileName, sizeof record->fileName, fileName, 1000);
    copyText(record->path, sizeof record->path, airportFilePath(*record).c_str(), -1);
    copyText(record->programVersion, sizeof record->programVersion, versionText(), -1);
    CameraFile* tail = lastRecord();
    tail->next = record;
    record->previous = tail;
    return record;
}

// The nearest airport of the navigation data: its reference, or XPLM_NAV_NOT_FOUND.
XPLMNavRef nearestAirportRef() {
    double latitude, longitude;
    aircraftPosition(latitude, longitude);
    float lat = float(latitude), lon = float(longitude);
    return XPLMFindNavAid(nullptr, nullptr, &lat, &lon, nullptr, xplm_Nav_Airport);
}

// The current camera, copied where the camera callback can read it while the storage
// is reloaded.
void handCallbackACopy() {
    static Camera callbackCopy;
    callbackCopy = *currentCamera();
    setCallbackCamera(&callbackCopy);
}

}  // namespace

CameraFile* fileListHead() { return cameraFileListHead(); }

std::string airportFilePath(const CameraFile& file) {
    std::string folder;
    pluginDirectory(folder);
    return folder + kFolders[file.folderIndex == 1 ? 1 : 0] + "/" + file.fileName;
}

std::string airportIdOfFile(const CameraFile& file) {
    if (file.kind == 0) return std::string();
    std::string name = file.fileName;
    size_t stop = name.find('-');
    if (stop == std::string::npos) stop = name.find('.');
    if (stop == std::string::npos) return std::string();
    return name.substr(0, stop);
}

void buildCameraFileList() {
    freeCameraFileList();
    CameraFile* head = fileListHead();
    head->kind = 0;
    head->next = head->previous = nullptr;
    copyText(head->programVersion, sizeof head->programVersion, versionText(), -1);
    std::string plugin;
    pluginDirectory(plugin);
    constexpr int kBufferSize = 5000000;
    std::vector<char> names(kBufferSize, 0);
    for (int folder = 0; folder < 2; ++folder) {
        int returned = 0;
        std::fill(names.begin(), names.end(), 0);
        XPLMGetDirectoryContents((plugin + kFolders[folder]).c_str(), 0, names.data(), kBufferSize, nullptr, 0,
                                 nullptr, &returned);
        names.back() = 0;
        for (const char* name = names.data(); name < names.data() + kBufferSize - 1 && *name;
             name += std::strlen(name) + 1)
            newAirportRecord(folder, name);
    }
}

void freeCameraFileList() {
    places.clear();
    nearbyList.clear();
    nearbyListStale = true;
    CameraFile* head = fileListHead();
    CameraFile* record = head->next;
    while (record) {
        CameraFile* next = record->next;
        if (activeFile() == record) setActiveFile(head);
        delete record;
        record = next;
    }
    head->next = nullptr;
}

CameraFile* findAirportFile(const char* id) {
    std::string wanted = upper(id);
    if (wanted.empty()) return nullptr;
    CameraFile* community = nullptr;
    for (CameraFile* file = fileListHead()->next; file; file = file->next) {
        if (upper(file->fileName).find(wanted) == std::string::npos) continue;
        // The user's own file wins over a community file for the same airport.
        if (file->folderIndex == 0) return file;
        community = file;
    }
    return community;
}

void lookUpAirportPosition(CameraFile* file) {
    std::string id = airportIdOfFile(*file);
    if (id.empty()) return;
    XPLMNavRef ref = XPLMFindNavAid(nullptr, id.c_str(), nullptr, nullptr, nullptr, xplm_Nav_Airport);
    if (ref == XPLM_NAV_NOT_FOUND) return;
    float latitude = 0, longitude = 0;
    XPLMGetNavAidInfo(ref, nullptr, &latitude, &longitude, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    file->airportLatitude = latitude;
    file->airportLongitude = longitude;
}

void lookUpAllAirportPositions() {
    for (CameraFile* file = fileListHead()->next; file; file = file->next)
        if (file->kind == 1) lookUpAirportPosition(file);
}

std::string nearestAirportId() {
    XPLMNavRef ref = nearestAirportRef();
    if (ref == XPLM_NAV_NOT_FOUND) return std::string();
    char id[256] = {0};
    XPLMGetNavAidInfo(ref, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, id, nullptr, nullptr);
    id[sizeof id - 1] = 0;
    return id;
}

CameraFile* openAirportFile(const char* id) {
    std::string wanted = id ? id : nearestAirportId();
    if (CameraFile* found = findAirportFile(wanted.c_str())) return found;
    std::string name = wanted + ".csv";
    if (name.size() > 1000) name.resize(1000);
    CameraFile* record = newAirportRecord(0, name.c_str());
    lookUpAirportPosition(record);
    return record;
}

CameraFile* findNearestAirportFile() {
    std::string nearest = nearestAirportId();
    if (CameraFile* found = findAirportFile(nearest.c_str())) return found;
    double latitude, longitude;
    aircraftPosition(latitude, longitude);
    CameraFile* best = nullptr;
    double bestDistance = 20.0;
    for (CameraFile* file = fileListHead()->next; file; file = file->next) {
        if (file->kind != 1) continue;
        double distance = greatCircle(latitude, longitude, file->airportLatitude, file->airportLongitude, 'N');
        if (distance < bestDistance) {
            bestDistance = distance;
            best = file;
        }
    }
    return best;
}

const std::vector<NearbyAirport>& nearbyAirports(bool force) {
    double latitude, longitude;
    aircraftPosition(latitude, longitude);
    if (!force && !nearbyListStale && greatCircle(latitude, longitude, nearbyLatitude, nearbyLongitude, 'N') < 0.1)
        return nearbyList;
    nearbyList.clear();
    // The airports' places, walked once and kept while the database's airports stay
    // the same run of references: a world's 38,000 airports are then passed over by
    // latitude alone, without a call into the simulator for each.
    XPLMNavRef first = XPLMFindFirstNavAidOfType(xplm_Nav_Airport);
    XPLMNavRef last = XPLMFindLastNavAidOfType(xplm_Nav_Airport);
    if (first != placesFirst || last != placesLast || places.empty()) {
        places.clear();
        for (XPLMNavRef ref = first; ref != XPLM_NAV_NOT_FOUND;
             ref = ref == last ? XPLM_NAV_NOT_FOUND : XPLMGetNextNavAid(ref)) {
            AirportPlace place{ref, 0, 0};
            XPLMNavType type = xplm_Nav_Unknown;
            XPLMGetNavAidInfo(ref, &type, &place.latitude, &place.longitude, nullptr, nullptr, nullptr, nullptr,
                              nullptr, nullptr);
            if (type == xplm_Nav_Airport) places.push_back(place);
        }
        placesFirst = first;
        placesLast = last;
    }
    for (const AirportPlace& place : places) {
        // Ten nautical miles are a sixth of a degree of latitude.
        if (std::fabs(place.latitude - latitude) > 0.2) continue;
        double distance = greatCircle(latitude, longitude, place.latitude, place.longitude, 'N');
        if (!(distance < 10.0)) continue;
        NearbyAirport airport{};
        XPLMGetNavAidInfo(place.ref, nullptr, &airport.latitude, &airport.longitude, &airport.height, nullptr,
                          nullptr, airport.id, airport.name, nullptr);
        airport.id[sizeof airport.id - 1] = 0;
        airport.name[sizeof airport.name - 1] = 0;
        airport.distance = float(distance);
        airport.hasFile = findAirportFile(airport.id) != nullptr;
        nearbyList.push_back(airport);
    }
    nearbyLatitude = latitude;
    nearbyLongitude = longitude;
    nearbyListStale = false;
    return nearbyList;
}

void toggleAirportCameras() {
    if (categoryCount() > 0 && controlPanelOpen()) {
        stopCameraMotion();
        saveCameraFile(false, false);
    }
    if (isAirportSetActive()) {
        handCallbackACopy();
        loadCameraFile(fileListHead());
        noteSelectionChanged();
        frameDriver().autoNearestAirport = false;
        return;
    }
    if (categoryCount() > 0 && currentCamera()->external) handCallbackACopy();
    // Only the Control Panel makes a file for an airport that has none; the commands
    // never create one on their own.
    CameraFile* file = controlPanelOpen() ? openAirportFile(nullptr) : findNearestAirportFile();
    if (!file) return;
    loadCameraFile(file);
    noteSelectionChanged();
}

void selectNearestAirportCamera() {
    float ax = float(dataref("sim/flightmodel/position/local_x"));
    float ay = float(dataref("sim/flightmodel/position/local_y"));
    float az = float(dataref("sim/flightmodel/position/local_z"));
    if (!isAirportSetActive()) {
        toggleAirportCameras();
        return;
    }
    float best = 25000000.0f;
    int bestCategory = -1, bestCamera = -1;
    for (int c = 0; c < categoryCount(); ++c) {
        const Category& category = workingSet().categories[c];
        for (int i = 0; i < category.cameraCount; ++i) {
            const Camera& camera = category.cameras[i];
            if (!camera.freeCamera) continue;
            float distance = std::fabs(camera.x - ax) + std::fabs(camera.y - ay) + std::fabs(camera.z - az);
            if (distance < best) {  // a tie keeps the earlier camera
                best = distance;
                bestCategory = c;
                bestCamera = i;
            }
        }
    }
    if (bestCategory < 0) return;
    if (bestCategory != currentCategoryIndex() || workingSet().categories[bestCategory].currentCamera != bestCamera) {
        setCurrentCategoryIndex(bestCategory);
        workingSet().categories[bestCategory].currentCamera = bestCamera;
        noteSelectionChanged();
    }
}
