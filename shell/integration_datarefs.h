// The 33 datarefs under "KVT/Vistarig/integration/" through which other plug-ins and
// scripts see what the camera does and feed offsets into it: the stored values, the
// accessors with their read and write rules, and their registration. Main thread only.
#pragma once

#include <cstdint>

#include "data/integration_values.h"

// The number of each dataref, in order of registration; also the refcon of its accessors.
enum IntegrationIndex : int32_t {
    kIntegrationEnabled = 0,
    kIntegrationXpRealisticPresent = 1,
    kIntegrationRealViewPresent = 2,
    kIntegrationXOffset = 3,  // 3..8: x, y, z, pitch, heading, roll
    kIntegrationHeadtrackingPresent = 9,
    kIntegrationHeadtrackingXOffset = 10,  // 10..15, same order
    kIntegrationCameraX = 16,              // 16..21: x, y, z, heading, pitch, roll by view ID
    kIntegrationCameraRoll = 21,
    kIntegrationCameraStatus = 22,
    kIntegrationCameraMotionAxisAssignment = 23,
    kIntegrationEffectScriptId = 24,
    kIntegrationEffectScriptXOffset = 25,  // 25..30, same order as 3..8
    kIntegrationOverallStatus = 31,
    kIntegrationSelectedCamera = 32,
    kIntegrationDatarefCount = 33,
};

// Elements of the per-view-ID arrays: view IDs 1..65, element 0 unused.
constexpr int kIntegrationViewArraySize = 66;
constexpr int kIntegrationAxisArraySize = 6;

// Name of a dataref without the prefix, or null outside 0..32.
const char* integrationDatarefName(int32_t index);

// Registers the 33 accessors in order (host enable); while they are still registered a
// second call does nothing.
void publishIntegrationDatarefs();
// Unregisters them (plug-in stop).
void unpublishIntegrationDatarefs();

// The accessors as the simulator calls them; the refcon is the index.
int readIntegrationInt(void* refcon);
void writeIntegrationInt(void* refcon, int value);
float readIntegrationFloat(void* refcon);
void writeIntegrationFloat(void* refcon, float value);
int readIntegrationFloatArray(void* refcon, float* values, int offset, int max);
void writeIntegrationFloatArray(void* refcon, float* values, int offset, int count);
int readIntegrationIntArray(void* refcon, int* values, int offset, int max);
void writeIntegrationIntArray(void* refcon, int* values, int offset, int count);

// ---- the rules without the simulator
// Elements a read of an array of `size` fills: the smaller of `max` and what lies from
// `offset` on; 0 for an offset outside the array.
int arrayReadCount(int size, int offset, int max);
// overall_status from its parts (0 while the camera level is off).
int32_t overallStatusOf(bool cameraOn, bool trackIrCamera, bool airportSet, bool controlPanel, bool transition,
                        bool scriptCamera);
// SelectedCamera's number of a camera: category * 150 + index in the category.
int32_t selectedCameraNumber(int32_t categoryIndex, int32_t indexInCategory);
