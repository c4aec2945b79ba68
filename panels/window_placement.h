// Where panels stand: the monitor a new panel opens on (read from the simulator's
// "X-Plane Window Positions.prf"), the tables of monitors, the test of a saved
// position against them, and the dragging of undecorated panels by their own
// title bar. The parsing and the table arithmetic are kept free of simulator calls.
#pragma once

#include <cstdint>
#include <cstdio>

#include "XPLMDisplay.h"
#include "data/window_position.h"
#include "panels/img_window_logic.h"

constexpr int maxMonitors = 15;

struct MonitorTable {
    int left[maxMonitors] = {};
    int right[maxMonitors] = {};
    int top[maxMonitors] = {};
    int bottom[maxMonitors] = {};
    int count = 0;
    bool dense = false;  // true: next free index; false: the simulator's monitor index
};

struct PrimaryMonitor {
    float offset = 0;
    int top = 0, bottom = 0, left = 0, right = 0;
    bool valid = false;
};

// The monitor of the outside view that looks most nearly straight ahead.
struct PrfChoice {
    bool found = false;
    int monitorIndex = -1;
    float offset = 0;  // absolute
};

// Reads the preference file's lines; pure apart from reading the stream.
PrfChoice parseWindowPositions(std::FILE* file);

// One monitor from the simulator's enumeration; the table keeps the first 15.
void addMonitor(MonitorTable& table, int monitorIndex, int left, int top, int right, int bottom);
// Whether a window whose top left corner stands at (left, top) can be seen and
// grabbed: the first titleBarGrip units of its title bar lie on one monitor. The
// rest of the window may overhang.
constexpr int titleBarGrip = 30;
bool titleBarOnMonitor(const MonitorTable& table, int left, int top);

void FillGlobalMonitors(MonitorTable& table);
void FillOsMonitors(MonitorTable& table);
// False also for a kind this build cannot show; the panel then opens on the primary
// monitor (KvtImWindow::RestorePosition).
bool IsPositionOnMonitor(const WindowPosition& position);

// Re-reads the preference file only when its modification time has changed.
const PrimaryMonitor& refreshPrimaryMonitor();
// For tests: forget the stored file time and the record.
void resetPrimaryMonitor();
// The file refreshPrimaryMonitor reads; empty for the simulator's own.
void setWindowPositionsPathForTesting(const char* path);

// Dragging a panel that has no simulator decoration by its ImGui title bar.
struct TitleBarDrag {
    int lastX = 0, lastY = 0;
    bool dragging = false;
};

enum class DragMode { wholeWindow, topOnly };

// A move by (dx, dy) keeps the window inside the screen, 25 boxels clear of the
// top and bottom edges.
bool dragMoveAllowed(const WindowBox& screen, const WindowBox& window, int dx, int dy);

// One frame of dragging; `start` is the panel's own start condition (pointer on its
// title bar with the left button down). `leftButtonDown` is ImGui's view of the button.
void dragByTitleBar(TitleBarDrag& drag, XPLMWindowID window, bool start, bool leftButtonDown, DragMode mode);
