#include "data/set_editing.h"

#include <cmath>
#include <cstdio>
#include <cstring>

#include "data/user_messages.h"

namespace {

Camera clipboardCamera;
Category clipboardCategory;
CameraSet spareSet;
// Scratch for moves; a Category is too large for the stack of a callback.
Category movingCategory;

Category& working(int32_t index) { return workingSet().categories[index]; }

void setCategoryName(Category& category, const char* text) { copyText(category.name, text, kNameCopyLimit); }

// "(Copy of) <name>", cut to 30 characters.
void copyName(char* field, int capacity, const char* name) {
    char text[80];
    std::snprintf(text, sizeof text, "(Copy of) %s", name);
    copyText(field, capacity, text, kNameCopyLimit);
}

bool locateCamera(const Camera* camera, int32_t* category, int32_t* index) {
    CameraSet& set = workingSet();
    for (int32_t c = 0; c < set.categoryCount; ++c) {
        const Camera* first = set.categories[c].cameras;
        if (camera >= first && camera < first + set.categories[c].cameraCount) {
            *category = c;
            *index = int32_t(camera - first);
            return true;
        }
    }
    return false;
}

bool locateCategory(const Category* category, int32_t* index) {
    CameraSet& set = workingSet();
    for (int32_t c = 0; c < set.categoryCount; ++c)
        if (&set.categories[c] == category) {
            *index = c;
            return true;
        }
    return false;
}

bool cameraLimitReached(const Category& category) {
    if (category.cameraCount < kMaxCameras) return false;
    showMessageBox("ERROR", "There are no more cameras available in this category");
    return true;
}

// Opens a gap at `at` in the category (count grows by one); the slot is left as it was.
void openCameraGap(Category& category, int32_t at) {
    for (int32_t i = category.cameraCount; i > at; --i) category.cameras[i] = category.cameras[i - 1];
    ++category.cameraCount;
}

void openCategoryGap(int32_t at) {
    CameraSet& set = workingSet();
    for (int32_t i = set.categoryCount; i > at; --i) set.categories[i] = set.categories[i - 1];
    ++set.categoryCount;
}

}  // namespace

void copyCameraSettings(const Camera* source, Camera* destination) {
    if (!source || !destination || source == destination) return;
    Camera kept = *destination;
    *destination = *source;
    std::memcpy(destination->name, kept.name, sizeof kept.name);
    destination->categoryIndex = kept.categoryIndex;
    destination->indexInCategory = kept.indexInCategory;
    destination->nextInCategory = kept.nextInCategory;
    destination->nextInSet = kept.nextInSet;
    destination->viewId = kept.viewId;
    destination->currentZoom = kept.currentZoom;
    destination->transitionPose = kept.transitionPose;
    destination->listId = kept.listId;
}

bool addCamera() {
    if (categoryCount() == 0) return false;
    Category& category = *currentCategory();
    if (cameraLimitReached(category)) return false;
    const Camera* source = &category.cameras[category.currentCamera];
    int32_t index = category.cameraCount;
    Camera& added = category.cameras[index];
    resetCamera(&added);
    char name[32];
    std::snprintf(name, sizeof name, "Camera %d", index + 1);
    copyText(added.name, name, kNameCopyLimit);
    copyCameraSettings(source, &added);
    refreshHomePose(&added);
    category.cameraCount = index + 1;
    category.currentCamera = index;
    announce("Added %s to category %s", added.name, category.name);
    relinkSet(true);
    return true;
}

bool addCategory() {
    if (categoryCount() == 0) return false;
    CameraSet& set = workingSet();
    if (set.categoryCount >= kMaxCategories) {
        showMessageBox("ERROR", "There are no more categories available");
        return false;
    }
    const Camera* source = &working(currentCategoryIndex()).cameras[working(currentCategoryIndex()).currentCamera];
    int32_t index = set.categoryCount;
    resetCategory(index);
    Category& category = set.categories[index];
    char name[32];
    std::snprintf(name, sizeof name, "Category %d", index + 1);
    setCategoryName(category, name);
    Camera& camera = category.cameras[0];
    copyText(camera.name, "Camera 1", kNameCopyLimit);
    copyCameraSettings(source, &camera);
    refreshHomePose(&camera);
    category.cameraCount = 1;
    category.currentCamera = 0;
    set.categoryCount = index + 1;
    setCurrentCategoryIndex(index);
    announce("Added %s to category %s", camera.name, category.name);
    relinkSet(true);
    return true;
}

bool insertCameraAbove() {
    if (categoryCount() == 0) return false;
    Category& category = *currentCategory();
    int32_t place = category.currentCamera;
    if (!addCamera()) return false;
    Camera added = category.cameras[category.cameraCount - 1];
    for (int32_t i = category.cameraCount - 1; i > place; --i) category.cameras[i] = category.cameras[i - 1];
    category.cameras[place] = added;
    category.currentCamera = place;
    relinkSet(true);
    return true;
}

bool insertCategoryAbove() {
    if (categoryCount() == 0) return false;
    int32_t place = currentCategoryIndex();
    if (!addCategory()) return false;
    CameraSet& set = workingSet();
    movingCategory = set.categories[set.categoryCount - 1];
    for (int32_t i = set.categoryCount - 1; i > place; --i) set.categories[i] = set.categories[i - 1];
    set.categories[place] = movingCategory;
    setCurrentCategoryIndex(place);
    relinkSet(true);
    return true;
}

void deleteCurrentCamera() {
    if (categoryCount() == 0) return;
    Category& category = *currentCategory();
    if (category.cameraCount < 2) return;
    int32_t place = category.currentCamera;
    for (int32_t i = place; i < category.cameraCount - 1; ++i) category.cameras[i] = category.cameras[i + 1];
    --category.cameraCount;
    resetCamera(&category.cameras[category.cameraCount]);
    if (place >= category.cameraCount) category.currentCamera = category.cameraCount - 1;
    relinkSet(true);
}

void deleteCurrentCategory() {
    CameraSet& set = workingSet();
    if (set.categoryCount < 2) return;
    int32_t place = currentCategoryIndex();
    for (int32_t i = place; i < set.categoryCount - 1; ++i) set.categories[i] = set.categories[i + 1];
    --set.categoryCount;
    resetCategory(set.categoryCount);
    if (place >= set.categoryCount) setCurrentCategoryIndex(set.categoryCount - 1);
    relinkSet(true);
}

Camera& cameraClipboard() { return clipboardCamera; }
Category& categoryClipboard() { return clipboardCategory; }
bool cameraClipboardFull() { return clipboardCamera.name[0] != 0; }
bool categoryClipboardFull() { return clipboardCategory.name[0] != 0; }
CameraSet& setClipboard() { return spareSet; }

void copyCurrentCamera() {
    if (categoryCount() == 0) return;
    const Camera* current = currentCamera();
    resetCamera(&clipboardCamera);
    copyCameraSettings(current, &clipboardCamera);
    copyName(clipboardCamera.name, sizeof clipboardCamera.name, current->name);
}

void copyCurrentCategory() {
    if (categoryCount() == 0) return;
    clipboardCategory = *currentCategory();
    char original[32];
    std::memcpy(original, clipboardCategory.name, sizeof original);
    copyName(clipboardCategory.name, sizeof clipboardCategory.name, original);
}

bool pasteCamera(const Camera* source, Camera* destination, int mode) {
    int32_t categoryIndex, index;
    if (!source || !destination || !locateCamera(destination, &categoryIndex, &index)) return false;
    Category& category = working(categoryIndex);
    Camera copy = *source;  // the source may sit in the storage that moves
    if (mode == 0) {
        *destination = copy;
    } else if (mode == 1 || mode == 2) {
        if (cameraLimitReached(category)) return false;
        refreshHomePose(destination);
        int32_t at = mode == 1 ? index : index + 1;
        openCameraGap(category, at);
        category.cameras[at] = copy;
        category.currentCamera = at;
    } else {
        return false;
    }
    relinkSet(true);
    return true;
}

bool pasteCategory(const Category* source, Category* destination, int mode) {
    int32_t index;
    if (!source || !destination || !locateCategory(destination, &index)) return false;
    movingCategory = *source;
    if (mode == 0) {
        *destination = movingCategory;
    } else if (mode == 1 || mode == 2) {
        if (categoryCount() >= kMaxCategories) {
            showMessageBox("ERROR", "There are no more categories");
            return false;
        }
        refreshHomePose(currentCamera());
        int32_t at = mode == 1 ? index : index + 1;
        openCategoryGap(at);
        workingSet().categories[at] = movingCategory;
        setCurrentCategoryIndex(at);
    } else {
        return false;
    }
    relinkSet(true);
    return true;
}

bool moveCamera(int32_t categoryIndex, int32_t index, int direction) {
    Category* category = categoryAt(categoryIndex);
    if (!category || (direction != -1 && direction != 1)) return false;
    int32_t other = index + direction;
    if (index < 0 || index >= category->cameraCount || other < 0 || other >= category->cameraCount) return false;
    Camera held = category->cameras[index];
    category->cameras[index] = category->cameras[other];
    category->cameras[other] = held;
    if (category->currentCamera == index) category->currentCamera = other;
    else if (category->currentCamera == other) category->currentCamera = index;
    relinkSet(false);
    return true;
}

bool moveCategory(int32_t index, int direction) {
    CameraSet& set = workingSet();
    if (direction != -1 && direction != 1) return false;
    int32_t other = index + direction;
    if (index < 0 || index >= set.categoryCount || other < 0 || other >= set.categoryCount) return false;
    movingCategory = set.categories[index];
    set.categories[index] = set.categories[other];
    set.categories[other] = movingCategory;
    if (currentCategoryIndex() == index) setCurrentCategoryIndex(other);
    else if (currentCategoryIndex() == other) setCurrentCategoryIndex(index);
    relinkSet(false);
    return true;
}

void copySet(CameraSet* destination) {
    if (destination && destination != &workingSet()) *destination = workingSet();
}

void pasteSet(const CameraSet* source) {
    if (!source || source == &workingSet()) return;
    int32_t count = source->categoryCount;
    if (count < 0 || count > kMaxCategories) return;
    workingSet() = *source;
    if (currentCategoryIndex() >= count) setCurrentCategoryIndex(0);
    for (int32_t c = 0; c < count; ++c) {
        Category& category = working(c);
        if (category.currentCamera < 0 || category.currentCamera >= category.cameraCount) category.currentCamera = 0;
    }
    relinkSet(true);
}

void autoCorrectCockpit(const Camera& reference) {
    CameraSet& set = workingSet();
    if (set.categoryCount == 0 || set.categories[0].cameraCount == 0) return;
    const Camera first = set.categories[0].cameras[0];
    const float dx = reference.x - first.x;
    const float dy = reference.y - first.y;
    const float dz = reference.z - first.z;
    for (int32_t c = 0; c < set.categoryCount; ++c) {
        Category& category = set.categories[c];
        for (int32_t i = 0; i < category.cameraCount; ++i) {
            Camera& camera = category.cameras[i];
            bool chosen = (c == 0 && i == 0) ||
                          (!camera.external && std::fabs(camera.x - first.x) < 5.0f &&
                           std::fabs(camera.y - first.y) < 5.0f && std::fabs(camera.z - first.z) < 5.0f);
            if (!chosen) continue;
            camera.x = camera.x > 0 ? camera.x - dx : camera.x + dx;
            camera.y += dy;
            camera.z += dz;
            refreshHomePose(&camera);
        }
    }
}
