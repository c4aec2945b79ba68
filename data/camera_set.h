// The camera set model: fixed storage for the working set of 20 categories of 150
// cameras, the two saved sets (aircraft, airport), the selection, the view-ID table
// and the list of camera files. Allocated once; a camera pointer stays valid until an
// operation moves the camera. Main thread only, no locks.
#pragma once

#include <cstdint>

struct CameraPose {
    float x = 0, y = 0, z = 0;
    float heading = 0, pitch = 0, roll = 0;
    float fov = 60.0f;
    float zoom = 1.0f;
    float cgY = 0, cgZ = 0, cgX = 0;
    double latitude = 0, longitude = 0, elevation = 0;
};

struct Camera {
    char name[32];
    int32_t categoryIndex;
    int32_t indexInCategory;
    Camera* nextInCategory;
    Camera* nextInSet;
    int32_t viewId;
    double latitude, longitude, elevation;
    float x, y, z;
    float heading, pitch, roll;
    float zoom;
    float currentZoom;
    float fov;
    bool enableFov;
    CameraPose homePose;
    CameraPose trackIrMin;
    CameraPose trackIrMax;
    CameraPose transitionPose;
    int32_t initialMovementRange;
    bool trackIrEnabled;
    bool limitTrackIr;
    bool smoothTransition;
    bool linearTransition;
    bool bezierTransition;
    bool autoAdvance;
    int32_t linearTransitionFrames;
    float transitionSeconds;
    float transitionDelay;
    bool headShake;
    bool xpRealistic;
    bool realView;
    bool levelCamera;
    bool retainMouseLook;
    bool viewAxis;
    bool temporaryPositioning;
    bool smoothCameraJoins;
    bool trackHeading;
    bool trackPitch;
    float cgY, cgZ, cgX;
    bool external;
    bool cineflex;
    bool targetFollowing;
    bool freeCamera;
    bool chaseView9;
    bool airportCamera;
    int32_t runCode;
    bool hidden;
    bool targetReciprocal;
    bool scenicFlyerGaPanel;
    bool scenicFlyerGlassPanel;
    bool cinemaVerite;
    int32_t hideYoke;
    bool cameraAxis;
    bool disable3dCockpitZoom;
    bool positionRestored;
    bool aglCamera;
    float aglHeight;
    bool circleView;
    int32_t scriptId;
    int32_t listId;
    int32_t cameraOrigin;
};

enum : int32_t { kMaxCategories = 20, kMaxCameras = 150, kMaxViewId = 65, kMaxAircraftViewId = 50 };
enum : int32_t { kNameCopyLimit = 30, kFileInfoCopyLimit = 40 };

struct Category {
    char name[32];
    int32_t cameraCount;
    int32_t currentCamera;
    Camera cameras[kMaxCameras];
    int32_t listId;
};

struct CameraSet {
    int32_t categoryCount;
    Category categories[kMaxCategories];
};

struct CameraFile {
    char fileName[1000];
    char path[2000];
    int32_t kind;  // 0 aircraft, 1 airport
    int32_t readFromPath;
    int32_t folderIndex;  // 0 "MyAirportCameras", 1 "CommunityAirportCameras"
    int32_t savedCategory;
    int32_t savedCamera;
    int32_t categoryTotal;
    int32_t cameraTotal;
    char author[40];
    char fileVersion[40];
    char programVersion[40];
    char aircraft[1000];
    float defaultFov;
    bool manualEnable;
    double airportLatitude, airportLongitude;
    CameraFile* next;
    CameraFile* previous;
};

// ---- storage
CameraSet& workingSet();
CameraSet& savedSet(int index);  // 0 aircraft, 1 airport
CameraFile* activeFile();
void setActiveFile(CameraFile* file);
CameraFile* cameraFileListHead();  // the aircraft's record; airport records follow
int32_t viewIdCount();

// ---- queries
inline int32_t maxCameras() { return kMaxCameras; }
inline int32_t maxCategories() { return kMaxCategories; }
int32_t categoryCount();
int32_t currentCategoryIndex();
Category* currentCategory();
Category* categoryAt(int32_t index);
Camera* firstCamera();
Camera* currentCamera();  // loads the aircraft's file first when the set is empty; never null
CameraPose cameraPose(const Camera* camera);
Camera* nextCameraInCategory();
bool isAirportSetActive();
bool viewIdInUse(int32_t id);
bool anyViewIdAssigned();
Camera* cameraForViewId(int32_t id);
int32_t camerasWithViewId(int32_t id, Camera** list, int32_t capacity);

// ---- selection
void selectCategory(int32_t index);
void selectCamera(int32_t index);
bool selectCategoryByCommand(int32_t index);
void selectCameraRecord(Camera* camera);
bool selectViewId(int32_t id);
void nextCategory();
void previousCategory();
void nextCamera(bool includeHidden);
void previousCamera(bool includeHidden);
void nextViewId();
void previousViewId();
bool selectFirstTargetFollowingCamera();
void setCurrentCategoryIndex(int32_t index);  // raw, for loaders

// ---- basics
void clearViewIds(int32_t category);
void setViewId(int32_t id);
int32_t findOrAddCategory(const char* name, bool create);
void resetCamera(Camera* camera);
void resetCategory(int32_t index);
void clearWorkingSet();
void newAircraftSet();
void refreshHomePose(Camera* camera);
void restoreHomePosition(Camera* camera);
void relinkSet(bool renumber);

// Whether the Control Panel is open; next/previous then count hidden cameras too.
// The panel sets it; false until the panel exists.
void setControlPanelOpen(bool open);
bool controlPanelOpen();
// Whether the open panel lets camera chains advance (collapsed, or "Allow Camera Auto
// Advance" checked). The panel sets it.
void setControlPanelAllowsAutoAdvance(bool allow);
bool controlPanelAllowsAutoAdvance();

// Copies at most `limit` characters of `source` into a field of `capacity` bytes,
// always terminating it. Every text copy into a fixed field goes through here.
void copyText(char* field, int capacity, const char* source, int limit);
template <int N>
inline void copyText(char (&field)[N], const char* source, int limit = N - 1) {
    copyText(field, N, source, limit);
}
