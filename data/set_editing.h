// Changes of the working set's structure: adding, inserting and deleting cameras and
// categories, the camera and category clipboards, copying a whole set, moving by
// drag, and fitting imported cockpit cameras to a plane of another size. Storage is
// fixed, so a limit is a message, never an allocation failure. Main thread only.
#pragma once

#include <cstdint>

#include "data/camera_set.h"

bool addCamera();
bool addCategory();
bool insertCameraAbove();
bool insertCategoryAbove();
void deleteCurrentCamera();
void deleteCurrentCategory();

// Everything but name, place in the set, ring pointers, view ID, live zoom,
// transition pose and list number.
void copyCameraSettings(const Camera* source, Camera* destination);

// The clipboards; full when their name is not empty.
Camera& cameraClipboard();
Category& categoryClipboard();
void copyCurrentCamera();
void copyCurrentCategory();
bool cameraClipboardFull();
bool categoryClipboardFull();

// mode 0 overwrite, 1 insert above, 2 insert below; other modes do nothing.
bool pasteCamera(const Camera* source, Camera* destination, int mode);
bool pasteCategory(const Category* source, Category* destination, int mode);

// Drag moves: swap with the neighbour (direction -1 or +1); list numbers stay.
bool moveCamera(int32_t category, int32_t index, int direction);
bool moveCategory(int32_t index, int direction);

void copySet(CameraSet* destination);
void pasteSet(const CameraSet* source);
// A spare set for "Copy Camera Set" / "Paste Camera Set".
CameraSet& setClipboard();

// Fits an imported set to this plane: the first camera and the cockpit cameras within
// 5 m of it move by its offset from `reference` (the pilot's view of the set that was
// there before), mirrored across the centre line.
void autoCorrectCockpit(const Camera& reference);
