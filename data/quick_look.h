// The simulator's own Quick Look views of an aircraft, read from its preferences file,
// and their import as the first cameras of a new camera file. Main thread only.
#pragma once

#include <cstddef>

struct QuickLookView {
    char type[16];  // "v_3dc", "v_cha", "v_rid", "v_cir"; empty when unused
    float x, y, z;
    float lookHeading, lookPitch;
    float circleHeading, circlePitch, circleDistance;
};

constexpr int kQuickLookViews = 20;

// Reads the aircraft's preferences file into the table; the number of views it holds.
// 0, with a log line, when the file can't be read.
int countQuickLookViews();
// The reader on the file's bytes, for tests and the fuzzer.
int parseQuickLookViews(const char* text, size_t size);
const QuickLookView* quickLookTable();

// The table's views as cameras of the working set (a new file's), saved at once.
void importQuickLookViews();
