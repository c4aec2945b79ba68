#include "data/camera_set.h"

#include <cstring>

#include "data/camera_file.h"
#include "data/events.h"
#include "data/plugin_state.h"
#include "data/user_messages.h"

namespace {

// All storage is static: the plug-in can't fail on memory in the middle of an edit.
CameraSet gWorking;
CameraSet gSaved[2];
int32_t gCurrentCategory = 0;
CameraFile* gActiveFile = nullptr;
CameraFile gAircraftFile;  // head of the file list; airport records are linked behind it
Camera* gViewTable[kMaxViewId + 1];
int32_t gViewIdCount = 0;
bool gControlPanelOpen = false;
bool gControlPanelAutoAdvance = false;

Camera& currentSlot() {
    Category& category = gWorking.categories[gCurrentCategory];
    return category.cameras[category.currentCamera];
}

// Sends the current camera home when it is selected again and has temporary
// positioning, so the user's nudges are undone by reselecting it.
void restoreIfReselected(Camera* wasCurrent) {
    Camera* now = &currentSlot();
    if (now == wasCurrent && now->temporaryPositioning) {
        raiseRestoreBegun(now);
        restoreHomePosition(now);
    }
}

}  // namespace

void copyText(char* field, int capacity, const char* source, int limit) {
    if (!field || capacity <= 0) return;
    int n = 0;
    if (source) {
        int maxChars = capacity - 1;
        if (limit >= 0 && limit < maxChars) maxChars = limit;
        while (n < maxChars && source[n] != '\0') {
            field[n] = source[n];
            ++n;
        }
    }
    field[n] = '\0';
}

CameraSet& workingSet() { return gWorking; }
CameraSet& savedSet(int index) { return gSaved[index == 1 ? 1 : 0]; }
CameraFile* activeFile() { return gActiveFile; }
void setActiveFile(CameraFile* file) { gActiveFile = file; }
CameraFile* cameraFileListHead() { return &gAircraftFile; }
int32_t viewIdCount() { return gViewIdCount; }

int32_t categoryCount() { return gWorking.categoryCount; }
int32_t currentCategoryIndex() { return gCurrentCategory; }
Category* currentCategory() { return &gWorking.categories[gCurrentCategory]; }

Category* categoryAt(int32_t index) {
    if (index < 0 || index >= gWorking.categoryCount) return nullptr;
    return &gWorking.categories[index];
}

Camera* firstCamera() { return &gWorking.categories[0].cameras[0]; }

Camera* currentCamera() {
    if (gWorking.categoryCount == 0) loadCameraFile(nullptr);
    if (gCurrentCategory < 0 || gCurrentCategory >= kMaxCategories) gCurrentCategory = 0;
    Category& category = gWorking.categories[gCurrentCategory];
    if (category.currentCamera < 0 || category.currentCamera >= kMaxCameras) category.currentCamera = 0;
    return &category.cameras[category.currentCamera];
}

CameraPose cameraPose(const Camera* camera) {
    CameraPose pose;
    pose.x = camera->x;
    pose.y = camera->y;
    pose.z = camera->z;
    pose.heading = camera->heading;
    pose.pitch = camera->pitch;
    pose.roll = camera->roll;
    pose.cgY = camera->cgY;
    pose.cgZ = camera->cgZ;
    pose.cgX = camera->cgX;
    pose.latitude = camera->latitude;
    pose.longitude = camera->longitude;
    pose.elevation = camera->elevation;
    pose.fov = camera->enableFov ? camera->fov : defaultFov();
    pose.zoom = camera->external ? camera->currentZoom : camera->zoom;
    return pose;
}

Camera* nextCameraInCategory() {
    Category* category = currentCategory();
    int32_t next = category->currentCamera + 1;
    if (next >= category->cameraCount) next = 0;
    return &category->cameras[next];
}

bool isAirportSetActive() { return gActiveFile != nullptr && gActiveFile->kind == 1; }

bool viewIdInUse(int32_t id) {
    for (int32_t c = 0; c < gWorking.categoryCount; ++c) {
        const Category& category = gWorking.categories[c];
        for (int32_t i = 0; i < category.cameraCount; ++i)
            if (category.cameras[i].viewId == id) return true;
    }
    return false;
}

bool anyViewIdAssigned() { return gViewIdCount > 0; }

Camera* cameraForViewId(int32_t id) {
    if (id < 1 || id > kMaxViewId) return nullptr;
    return gViewTable[id];
}

int32_t camerasWithViewId(int32_t id, Camera** list, int32_t capacity) {
    int32_t found = 0;
    if (id < 1) return 0;
    for (int32_t c = 0; c < gWorking.categoryCount; ++c) {
        Category& category = gWorking.categories[c];
        for (int32_t i = 0; i < category.cameraCount; ++i) {
            if (category.cameras[i].viewId != id) continue;
            if (list && found < capacity) list[found] = &category.cameras[i];
            ++found;
        }
    }
    return found;
}

// ---------------------------------------------------------------- selection

void setCurrentCategoryIndex(int32_t index) {
    if (index >= 0 && index < kMaxCategories) gCurrentCategory = index;
}

void selectCategory(int32_t index) {
    if (index < 0 || index >= gWorking.categoryCount) return;
    gCurrentCategory = index;
    raiseSelectionChanged();
}

void selectCamera(int32_t index) {
    Category* category = currentCategory();
    if (index < 0 || index >= category->cameraCount) return;
    Camera* wasCurrent = &currentSlot();
    category->currentCamera = index;
    restoreIfReselected(wasCurrent);
    raiseSelectionChanged();
}

bool selectCategoryByCommand(int32_t index) {
    if (index < 0 || index >= gWorking.categoryCount) {
        announce("Category %d does not exist", index + 1);
        return false;
    }
    Camera* wasCurrent = &currentSlot();
    gCurrentCategory = index;
    restoreIfReselected(wasCurrent);
    return true;
}

void selectCameraRecord(Camera* camera) {
    if (!camera) return;
    int32_t c = camera->categoryIndex;
    int32_t i = camera->indexInCategory;
    if (c < 0 || c >= gWorking.categoryCount) return;
    if (i < 0 || i >= gWorking.categories[c].cameraCount) return;
    gCurrentCategory = c;
    gWorking.categories[c].currentCamera = i;
}

void nextCategory() {
    if (gWorking.categoryCount <= 0) return;
    gCurrentCategory = gCurrentCategory + 1 >= gWorking.categoryCount ? 0 : gCurrentCategory + 1;
}

void previousCategory() {
    if (gWorking.categoryCount <= 0) return;
    gCurrentCategory = gCurrentCategory - 1 < 0 ? gWorking.categoryCount - 1 : gCurrentCategory - 1;
}

static void stepCamera(int32_t direction, bool includeHidden) {
    Category* category = currentCategory();
    int32_t count = category->cameraCount;
    if (count <= 0) return;
    bool countHidden = includeHidden || gControlPanelOpen;
    int32_t start = category->currentCamera;
    int32_t index = start;
    for (int32_t steps = 0; steps < count; ++steps) {
        index = (index + direction + count) % count;
        if (index == start) return;  // came round: the selection stays
        if (countHidden || !category->cameras[index].hidden) {
            category->currentCamera = index;
            return;
        }
    }
}

void nextCamera(bool includeHidden) { stepCamera(1, includeHidden); }
void previousCamera(bool includeHidden) { stepCamera(-1, includeHidden); }

static void stepViewId(bool forward) {
    if (gWorking.categoryCount <= 0) return;
    Camera* start = &currentSlot();
    int32_t c = gCurrentCategory;
    int32_t i = gWorking.categories[c].currentCamera;
    int32_t total = 0;
    for (int32_t k = 0; k < gWorking.categoryCount; ++k) total += gWorking.categories[k].cameraCount;
    for (int32_t steps = 0; steps < total; ++steps) {
        if (forward) {
            if (++i >= gWorking.categories[c].cameraCount) {
                i = 0;
                do { c = c + 1 >= gWorking.categoryCount ? 0 : c + 1; } while (gWorking.categories[c].cameraCount == 0);
            }
        } else {
            if (--i < 0) {
                do { c = c - 1 < 0 ? gWorking.categoryCount - 1 : c - 1; } while (gWorking.categories[c].cameraCount == 0);
                i = gWorking.categories[c].cameraCount - 1;
            }
        }
        Camera* candidate = &gWorking.categories[c].cameras[i];
        if (candidate == start) return;
        if (candidate->viewId > 0) {
            selectViewId(candidate->viewId);
            return;
        }
    }
}

void nextViewId() { stepViewId(true); }
void previousViewId() { stepViewId(false); }

bool selectViewId(int32_t id) {
    Camera* current = currentCamera();
    if (current->nextInSet) {
        for (Camera* camera = current->nextInSet; camera && camera != current; camera = camera->nextInSet) {
            if (camera->viewId == id) {
                selectCameraRecord(camera);
                return true;
            }
        }
    }
    if (current->viewId == id) {
        if (current->temporaryPositioning) {
            raiseRestoreBegun(current);
            restoreHomePosition(current);
        }
        return true;
    }
    if (isAirportSetActive()) {
        CameraSet& aircraft = gSaved[0];
        for (int32_t c = 0; c < aircraft.categoryCount && c < kMaxCategories; ++c) {
            Category& category = aircraft.categories[c];
            for (int32_t i = 0; i < category.cameraCount && i < kMaxCameras; ++i) {
                if (category.cameras[i].viewId != id) continue;
                // The camera callback may still read the current camera while the
                // storage is reloaded: hand it a copy first.
                static Camera callbackCopy;
                callbackCopy = *current;
                raiseCallbackCameraChanged(&callbackCopy);
                loadCameraFile(cameraFileListHead());
                if (c < gWorking.categoryCount) {
                    gCurrentCategory = c;
                    if (i < gWorking.categories[c].cameraCount) gWorking.categories[c].currentCamera = i;
                }
                return true;
            }
        }
    }
    announce("Unable to find view ID %d", id);
    return false;
}

bool selectFirstTargetFollowingCamera() {
    if (currentCamera()->targetFollowing) return true;
    for (int32_t c = 0; c < gWorking.categoryCount; ++c) {
        Category& category = gWorking.categories[c];
        for (int32_t i = 0; i < category.cameraCount; ++i) {
            if (category.cameras[i].targetFollowing) {
                gCurrentCategory = c;
                category.currentCamera = i;
                return true;
            }
        }
    }
    return false;
}

// ---------------------------------------------------------------- basics

void clearViewIds(int32_t index) {
    if (index < 0 || index >= kMaxCategories) return;
    Category& category = gWorking.categories[index];
    for (int32_t i = 0; i < kMaxCameras; ++i) category.cameras[i].viewId = 0;
}

void setViewId(int32_t id) {
    Camera* current = currentCamera();
    for (int32_t c = 0; c < gWorking.categoryCount; ++c) {
        Category& category = gWorking.categories[c];
        for (int32_t i = 0; i < category.cameraCount; ++i)
            if (category.cameras[i].viewId == id) category.cameras[i].viewId = 0;
    }
    current->viewId = id;
}

int32_t findOrAddCategory(const char* name, bool create) {
    if (!name) return -1;
    // Only the categories in use: an unused slot's empty name matched a row without a
    // category name, whose camera then went out of sight and was lost on the next save.
    int32_t used = gWorking.categoryCount < kMaxCategories ? gWorking.categoryCount : kMaxCategories;
    for (int32_t c = 0; c < used; ++c)
        if (std::strcmp(gWorking.categories[c].name, name) == 0) return c;
    if (!create || gWorking.categoryCount >= kMaxCategories) return -1;
    int32_t index = gWorking.categoryCount++;
    copyText(gWorking.categories[index].name, name, kNameCopyLimit);
    return index;
}

void resetCamera(Camera* camera) {
    *camera = Camera{};  // aggregate: plain fields zero, poses at their defaults
    camera->zoom = 1.0f;
    camera->currentZoom = 1.0f;
    camera->initialMovementRange = 1;
    camera->retainMouseLook = true;
    camera->temporaryPositioning = true;
    camera->positionRestored = true;
}

namespace {

// How many camera slots of a category may hold anything but the reset state: the most
// cameras any category has had since the set was last cleared (every change of the
// set's structure ends in relinkSet, which notes it; categories that move keep their
// slots below that bound). Clearing resets only those, so that clearing a small set
// doesn't rewrite all 3,000 slots.
int32_t gSlotsInUse = kMaxCameras;

void noteSlotsInUse() {
    for (int32_t c = 0; c < gWorking.categoryCount && c < kMaxCategories; ++c) {
        int32_t count = gWorking.categories[c].cameraCount;
        if (count > kMaxCameras) count = kMaxCameras;
        if (count > gSlotsInUse) gSlotsInUse = count;
    }
}

}  // namespace

void resetCategory(int32_t index) {
    if (index < 0 || index >= kMaxCategories) return;
    Category& category = gWorking.categories[index];
    int32_t used = gSlotsInUse;
    if (category.cameraCount > used) used = category.cameraCount > kMaxCameras ? kMaxCameras : category.cameraCount;
    category.name[0] = '\0';
    category.cameraCount = 0;
    category.currentCamera = 0;
    category.listId = 0;
    for (int32_t i = 0; i < used; ++i) resetCamera(&category.cameras[i]);
}

void clearWorkingSet() {
    noteSlotsInUse();
    gWorking.categoryCount = 0;
    gCurrentCategory = 0;
    for (int32_t c = 0; c < kMaxCategories; ++c) resetCategory(c);
    gSlotsInUse = 0;
    relinkSet(false);
}

void newAircraftSet() {
    clearWorkingSet();
    const CameraPose& head = pluginState().savedHeadPose;
    int32_t index = findOrAddCategory("Cockpit", true);
    Category& category = gWorking.categories[index];
    category.cameraCount = 1;
    category.currentCamera = 0;
    Camera& pilot = category.cameras[0];
    copyText(pilot.name, "Pilot View", kNameCopyLimit);
    pilot.viewId = 1;
    pilot.x = head.x;
    pilot.y = head.y;
    pilot.z = head.z;
    pilot.heading = head.heading;
    pilot.pitch = head.pitch;
    pilot.roll = head.roll;
    refreshHomePose(&pilot);
    relinkSet(true);
}

void refreshHomePose(Camera* camera) { camera->homePose = cameraPose(camera); }

void restoreHomePosition(Camera* camera) {
    const CameraPose& home = camera->homePose;
    camera->x = home.x;
    camera->y = home.y;
    camera->z = home.z;
    camera->pitch = home.pitch;
    camera->heading = home.heading;
    camera->latitude = home.latitude;
    camera->longitude = home.longitude;
    camera->elevation = home.elevation;
    camera->positionRestored = true;
}

void relinkSet(bool renumber) {
    noteSlotsInUse();
    Camera* firstOfSet = nullptr;
    Camera* previousInSet = nullptr;
    for (int32_t c = 0; c < gWorking.categoryCount; ++c) {
        Category& category = gWorking.categories[c];
        int32_t count = category.cameraCount;
        for (int32_t i = 0; i < count; ++i) {
            Camera& camera = category.cameras[i];
            camera.categoryIndex = c;
            camera.indexInCategory = i;
            camera.nextInCategory = &category.cameras[i + 1 < count ? i + 1 : 0];
            if (previousInSet) previousInSet->nextInSet = &camera;
            if (!firstOfSet) firstOfSet = &camera;
            previousInSet = &camera;
        }
    }
    if (previousInSet) previousInSet->nextInSet = firstOfSet;

    // While an airport set is active the count keeps what the aircraft set had, so
    // the view-ID commands keep working for the aircraft's cameras.
    bool countIds = !isAirportSetActive();
    if (countIds) gViewIdCount = 0;
    std::memset(gViewTable, 0, sizeof gViewTable);
    for (int32_t c = 0; c < gWorking.categoryCount; ++c) {
        Category& category = gWorking.categories[c];
        for (int32_t i = 0; i < category.cameraCount; ++i) {
            int32_t id = category.cameras[i].viewId;
            if (id < 1 || id > kMaxViewId) continue;
            gViewTable[id] = &category.cameras[i];
            if (countIds) ++gViewIdCount;
        }
    }

    if (renumber) {
        int32_t listId = 1;
        for (int32_t c = 0; c < gWorking.categoryCount; ++c) {
            Category& category = gWorking.categories[c];
            category.listId = listId++;
            for (int32_t i = 0; i < category.cameraCount; ++i) category.cameras[i].listId = listId++;
        }
    }
}

void setControlPanelOpen(bool open) { gControlPanelOpen = open; }
bool controlPanelOpen() { return gControlPanelOpen; }
void setControlPanelAllowsAutoAdvance(bool allow) { gControlPanelAutoAdvance = allow; }
bool controlPanelAllowsAutoAdvance() { return gControlPanelAutoAdvance; }
