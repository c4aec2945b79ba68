// The user's targets: named places in a grid of one-degree cells, so that those near
// the aircraft are found without walking them all, and the file
// "MyTargets/MyTargets.csv" below the plug-in folder. Main thread only.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>

#include "data/kept_copies.h"

struct Target {
    char name[71];
    char date[33];
    double latitude, longitude;
    double elevation;
    double x, y, z;
    float distanceKm;
    float pitchTo, headingTo;
    int32_t kind;  // 0 fixed, 1 the user's aircraft, 2 the carrier, 3 the frigate
    bool isFreeTarget;
    Target* nextInCell;
};

constexpr int kTargetGridRows = 181;
constexpr int kTargetGridColumns = 361;

// Head of the list of one cell; null outside the grid.
Target* targetCell(int row, int column);
// The cell of a position: the whole degrees cut towards zero, + 90 and + 180.
// False for a position outside the grid (the caller drops it).
bool targetCellOf(double latitude, double longitude, int* row, int* column);
// Number of targets in the grid.
int targetCount();

std::string targetsPath();
void readTargets();
bool writeTargets();
// `date` null means now. A target of the same name in the same cell takes the new
// values in its place in the list. Returns the target that holds them.
Target* addTarget(const char* name, const char* date, double latitude, double longitude, double elevation,
                  int32_t kind);
// Frees every target.
void clearTargets();

// The reader (grid cleared by the caller), on text in memory or an open stream; what it
// could not take over is counted in `losses` when given. A byte order mark and quoted
// fields, as spreadsheet programs write them, are read.
void readTargetsText(const char* text, size_t size, ReadLosses* losses = nullptr);
void readTargetsFrom(std::FILE* stream, ReadLosses* losses = nullptr);
// The file's text for the grid.
std::string formatTargets();
