// Other aircraft: the simulator's traffic read on demand through the TCAS target
// datarefs, or the older multiplayer ones where TCAS isn't filled; the list of planes
// by distance; the AI perspective (an outside camera hung on one of them, followed by
// its identifier through renumbering) and its offset scale. Owns `AiPlaneSelection`,
// the one plane record and the one list; no flight loop of its own.
#pragma once

#include <cstdint>

#include "data/camera_set.h"
#include "motion/camera_pose.h"

struct AiPlaneSelection {
    bool perspectiveOn = false;
    int32_t index = 0;    // the followed plane, from 0; plane 0 is the first after the user's
    int32_t modeSId = 0;  // its Mode S identifier when chosen; the index in multiplayer mode
    float scale = 1.0f;   // factor on an outside camera's offset
};

// One plane's values; every reading overwrites the one static record.
struct AiPlaneRecord {
    float x = 0, y = 0, z = 0;  // local metres
    float heading = 0, pitch = 0, roll = 0;
};

// Planes ordered by distance (nautical miles), equal distances in index order. One
// static list, rebuilt at every request; callers copy what they keep.
constexpr int32_t kMaxTrafficPlanes = 63;  // TCAS: 64 targets, the first the user's
constexpr int32_t kMaxMultiplayerPlanes = 19;
struct TrafficEntry {
    float distance = 0;
    int32_t index = 0;
};
struct TrafficList {
    TrafficEntry entries[kMaxTrafficPlanes];
    int32_t count = 0;
};

constexpr float kAiScaleStep = 0.2f;
constexpr float kAiScaleMin = 0.2f;
constexpr float kAiScaleMax = 6.0f;

AiPlaneSelection& aiPlaneSelection();
// Finds the datarefs again (host enable); the first count also finds them.
void initAiTraffic();

// Active aircraft other than the user's, never negative, bounded by the table of the
// source in use.
int32_t aiPlaneCount();
// TCAS targets present and more than the user's aircraft in them; asked at every reading.
bool tcasAvailable();
const AiPlaneRecord& aiPlaneRecord(int32_t index);
int32_t aiPlaneId(int32_t index);
int32_t aiPlaneIndexOfId(int32_t id);
// The flight ID, at most 7 characters; empty in multiplayer mode. Overwritten by the next call.
const char* aiPlaneCallsign(int32_t index);
// From the camera's reference point: a free camera's position, the selected camera's
// origin under control, else the user's aircraft.
float aiPlaneDistance(int32_t index);
const TrafficList& trafficList();
// Follows the chosen plane to its new index after the simulator renumbered its
// traffic; a plane that left is replaced by plane 0.
void resyncAiPlane();

// The commands and the panels' selection.
void toggleAiPerspective();
void selectAiPlane(int32_t index);
void selectNextAiPlane();
void selectPreviousAiPlane();
void selectNextDistantAiPlane();
void selectPreviousDistantAiPlane();
void aiScaleUp();
void aiScaleDown();

// The outside camera's origin while the AI perspective is on: true with `origin` set
// to the followed plane; with no plane left the perspective goes off and the user's
// aircraft serves again (false). A free camera is never touched (false).
bool aiPerspectiveOrigin(const Camera* camera, Origin& origin);
// The followed plane's local position, for the aim of a camera without an explicit
// point; false when the perspective is off, the camera is free or no plane is left.
bool aiAimPoint(const Camera* camera, AimPoint& point);
// The reference point of target distances while the AI perspective is on and the
// selected camera isn't free: the followed plane's local position. False otherwise,
// and the usual reference stands.
bool aiTargetReferencePoint(double& x, double& y, double& z);

// Pure rules, for tests and the panels.
// Inserts behind every entry of an equal or nearer distance.
void insertByDistance(TrafficList& list, float distance, int32_t index);
// The plane behind (farther) or before (nearer) the one holding `current`, wrapping;
// a current index in no entry gives the nearest (farther) or the farthest (nearer).
int32_t nextFartherIndex(const TrafficList& list, int32_t current);
int32_t previousNearerIndex(const TrafficList& list, int32_t current);
float steppedScale(float scale, float step);
