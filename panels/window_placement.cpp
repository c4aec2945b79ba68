#include "panels/window_placement.h"


#include <charconv>
#include <cmath>
#include <cstring>
#include <map>
#include <string>

#include "XPLMUtilities.h"
#include "platform/file_system.h"

namespace {

PrimaryMonitor primary;
bool haveFileTime = false;
int64_t fileTime = 0;  // nanoseconds of the last reading's modification time
std::string testPath;

// atoi-like: leading blanks, then as many digits as there are; 0 if none.
int leadingInt(const char* text) {
    while (*text == ' ' || *text == '\t') ++text;
    if (*text == '+') ++text;
    int value = 0;
    std::from_chars(text, text + std::strlen(text), value);
    return value;
}

float leadingFloat(const char* text) {
    while (*text == ' ' || *text == '\t') ++text;
    if (*text == '+') ++text;
    float value = 0;
    std::from_chars(text, text + std::strlen(text), value, std::chars_format::general);
    return value;
}

struct PrfEntry {
    float offset = 0;
    int monitorIndex = -1;
};

void monitorReceiver(int index, int left, int top, int right, int bottom, void* refcon) {
    addMonitor(*static_cast<MonitorTable*>(refcon), index, left, top, right, bottom);
}

struct FindMonitor {
    int wanted = -1;
    bool found = false;
    int left = 0, top = 0, right = 0, bottom = 0;
};

void findMonitorReceiver(int index, int left, int top, int right, int bottom, void* refcon) {
    auto* find = static_cast<FindMonitor*>(refcon);
    if (index != find->wanted || find->found) return;
    find->found = true;
    find->left = left;
    find->top = top;
    find->right = right;
    find->bottom = bottom;
}

std::string windowPositionsPath() {
    if (!testPath.empty()) return testPath;
    char system[1024] = {};
    XPLMGetSystemPath(system);
    std::string path = system;
    if (!path.empty() && (path.back() == '/' || path.back() == '\\')) path.pop_back();
    return path + "/Output/preferences/X-Plane Window Positions.prf";
}

}  // namespace

PrfChoice parseWindowPositions(std::FILE* file) {
    PrfChoice choice;
    if (!file) return choice;
    std::map<std::string, PrfEntry> entries;
    int monitor = -1;
    char line[1001];
    static const char monitorTag[] = "/m_monitor";
    static const char usageTag[] = "/m_usage wmgr_usage_normal_visuals";
    static const char offsetTag[] = "/proj/off_lat_deg";
    while (std::fgets(line, sizeof line, file)) {
        line[std::strcspn(line, "\r\n")] = 0;
        if (std::strstr(line, monitorTag)) {
            const char* blank = std::strchr(line, ' ');
            monitor = blank ? leadingInt(blank + 1) : 0;
        } else if (const char* usage = std::strstr(line, usageTag)) {
            if (monitor < 0) continue;
            std::string key(line, static_cast<size_t>(usage - line));
            entries.emplace(key, PrfEntry{0.0f, monitor});
            monitor = -1;
        } else if (const char* off = std::strstr(line, offsetTag)) {
            auto it = entries.find(std::string(line, static_cast<size_t>(off - line)));
            if (it == entries.end()) continue;
            const char* blank = std::strchr(off + sizeof offsetTag - 1, ' ');
            if (blank) it->second.offset = leadingFloat(blank + 1);
        }
    }
    // Key order breaks ties: the map iterates in it and only a smaller offset replaces.
    for (const auto& [key, entry] : entries) {
        const float magnitude = std::fabs(entry.offset);
        // Written so that a "nan" in the file, which fails every comparison, never counts.
        if (!(magnitude < 180.0f)) continue;
        if (!choice.found || magnitude < choice.offset) {
            choice.found = true;
            choice.offset = magnitude;
            choice.monitorIndex = entry.monitorIndex;
        }
    }
    return choice;
}

void addMonitor(MonitorTable& table, int monitorIndex, int left, int top, int right, int bottom) {
    if (table.count >= maxMonitors) return;
    const int slot = table.dense ? table.count : monitorIndex;
    if (slot < 0 || slot >= maxMonitors) return;
    table.left[slot] = left;
    table.top[slot] = top;
    table.right[slot] = right;
    table.bottom[slot] = bottom;
    ++table.count;
}

bool titleBarOnMonitor(const MonitorTable& table, int left, int top) {
    // Not only the top left corner's left and top edges: a corner right of or below
    // every monitor passed that test and left a panel nobody could see or grab. The
    // start of the title bar, a grip of titleBarGrip each way, must be on a monitor.
    for (int i = 0; i < table.count && i < maxMonitors; ++i)
        if (left >= table.left[i] && left + titleBarGrip <= table.right[i] && top <= table.top[i] &&
            top - titleBarGrip >= table.bottom[i])
            return true;
    return false;
}

void FillGlobalMonitors(MonitorTable& table) {
    table = MonitorTable{};
    table.dense = true;
    XPLMGetAllMonitorBoundsGlobal(monitorReceiver, &table);
    if (table.count == 0) {
        // Full-screen mode enumerates nothing: the one screen stands for all.
        XPLMGetScreenBoundsGlobal(&table.left[0], &table.top[0], &table.right[0], &table.bottom[0]);
        table.count = 1;
    }
}

void FillOsMonitors(MonitorTable& table) {
    table = MonitorTable{};
    XPLMGetAllMonitorBoundsOS(monitorReceiver, &table);
}

bool IsPositionOnMonitor(const WindowPosition& position) {
    MonitorTable table;
    switch (position.kind) {
        case 2: FillOsMonitors(table); break;
        case 1:
        case 3: FillGlobalMonitors(table); break;
        default: return false;
    }
    return titleBarOnMonitor(table, position.left, position.top);
}

const PrimaryMonitor& refreshPrimaryMonitor() {
    const std::string path = windowPositionsPath();
    int64_t time = 0;
    if (!modificationTime(path.c_str(), time)) {
        primary = PrimaryMonitor{};
        haveFileTime = false;
        return primary;
    }
    if (haveFileTime && time == fileTime) return primary;
    haveFileTime = true;
    fileTime = time;
    primary = PrimaryMonitor{};

    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (!file) return primary;
    const PrfChoice choice = parseWindowPositions(file);
    std::fclose(file);
    if (!choice.found) return primary;

    FindMonitor find;
    find.wanted = choice.monitorIndex;
    XPLMGetAllMonitorBoundsGlobal(findMonitorReceiver, &find);
    if (!find.found) return primary;
    primary.left = find.left;
    primary.top = find.top;
    primary.right = find.right;
    primary.bottom = find.bottom;
    primary.offset = choice.offset;
    primary.valid = true;
    return primary;
}

void resetPrimaryMonitor() {
    primary = PrimaryMonitor{};
    haveFileTime = false;
    fileTime = 0;
}

void setWindowPositionsPathForTesting(const char* path) { testPath = path ? path : ""; }

bool dragMoveAllowed(const WindowBox& screen, const WindowBox& window, int dx, int dy) {
    return window.left + dx >= screen.left && window.right + dx <= screen.right &&
           window.top + dy <= screen.top - 25 && window.top + dy >= screen.bottom + 25;
}

void dragByTitleBar(TitleBarDrag& drag, XPLMWindowID window, bool start, bool leftButtonDown, DragMode mode) {
    if (start && !drag.dragging) {
        XPLMGetMouseLocationGlobal(&drag.lastX, &drag.lastY);
        drag.dragging = true;
        XPLMBringWindowToFront(window);
    }
    if (!drag.dragging) return;
    if (!leftButtonDown) {
        drag.dragging = false;
        return;
    }
    WindowBox screen, box;
    XPLMGetScreenBoundsGlobal(&screen.left, &screen.top, &screen.right, &screen.bottom);
    XPLMGetWindowGeometry(window, &box.left, &box.top, &box.right, &box.bottom);
    int x = 0, y = 0;
    XPLMGetMouseLocationGlobal(&x, &y);
    const int dx = x - drag.lastX, dy = y - drag.lastY;
    drag.lastX = x;
    drag.lastY = y;
    if (dx == 0 && dy == 0) return;
    if (!dragMoveAllowed(screen, box, dx, dy)) return;
    if (mode == DragMode::wholeWindow)
        XPLMSetWindowGeometry(window, box.left + dx, box.top + dy, box.right + dx, box.bottom + dy);
    else
        XPLMSetWindowGeometry(window, box.left, y > box.bottom + 50 ? y : box.bottom + 50, box.right, box.bottom);
}
