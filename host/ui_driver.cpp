#include "host/ui_driver.h"

#include <cstdlib>
#include <map>

#include "host/host.h"
#include "host/host_internal.h"
#include "host/windows.h"
#include "XPLMDefs.h"

// The layout a plug-in's panels report in (the plug-in keeps the same in
// panels/ui_hooks.h).
extern "C" {
struct VistarigUiItem {
    unsigned int id;
    const char* label;
    const char* window;
    int flags;
    float left, top, right, bottom;
    int visible;
    int disabled;
    int isWindow;
};
struct VistarigUiFrame {
    void* windowId;
    const VistarigUiItem* items;
    int count;
    const char* text;
    int wantTextInput;
    unsigned int activeId;
};
}

namespace xphost {

namespace {

// ImGui's item status flags for check marks.
constexpr int kCheckable = 1 << 22, kChecked = 1 << 23;
// A click is seen as a press in one frame and a release in the next; what it did (a
// popup closed, a window hidden) shows in the third.
constexpr int kClickFrames = 3;
// Frames a menu path waits for its next part to appear.
constexpr int kMenuWaitFrames = 5;

struct DriverState {
    std::map<void*, UiFrame> frames;
    std::map<void*, UiFrame> previous;  // the frame before, to see what still moves
    int received = 0;
};

DriverState& driver() {
    static DriverState s;
    return s;
}

HostModule uiDriverModule("ui_driver", [] { driver() = DriverState(); });

std::string findVisibleWindow(const std::string& title, WindowInfo& out) {
    std::vector<WindowInfo> candidates;
    for (const WindowInfo& w : windows()) {
        if (!w.visible) continue;
        if (w.title == title) {
            out = w;
            return "";
        }
        if (w.title.find(title) != std::string::npos) candidates.push_back(w);
    }
    if (candidates.size() == 1) {
        out = candidates[0];
        return "";
    }
    if (candidates.empty()) return "no visible window \"" + title + "\"";
    return "more than one window matches \"" + title + "\"";
}

// The part of a label that ImGui shows: up to "##".
std::string shownPart(const std::string& label) {
    const size_t hashes = label.find("##");
    return hashes == std::string::npos ? label : label.substr(0, hashes);
}

bool matches(const UiItem& item, const std::string& query) {
    if (query.size() > 3 && query.compare(0, 3, "#0x") == 0)
        return item.id == static_cast<unsigned>(std::strtoul(query.c_str() + 3, nullptr, 16));
    if (item.label.empty()) return false;
    return item.label == query || (!query.empty() && shownPart(item.label) == query);
}

// Whether the item stood in the same place in the frame before (a popup that is still
// being sized and centred moves for a frame or two, and ImGui ignores clicks on it).
bool settled(const std::string& window, const UiItem& item) {
    WindowInfo info;
    if (!findVisibleWindow(window, info).empty()) return false;
    auto found = driver().previous.find(info.id);
    if (found == driver().previous.end()) return false;
    for (const UiItem& before : found->second.items)
        if (before.id == item.id && before.isWindow == item.isWindow)
            return before.left == item.left && before.top == item.top && before.right == item.right &&
                   before.bottom == item.bottom;
    return false;
}

// Finds the item once it stands still.
std::string findSettled(const std::string& window, const std::string& label, UiItem& out) {
    for (int wait = 0;; ++wait) {
        if (auto e = uiFind(window, label, out); !e.empty()) return e;
        if (settled(window, out) || wait == kMenuWaitFrames) return "";
        runFrames(1);
    }
}

std::string clickItem(const UiItem& item, int button) {
    if (!item.visible) return "\"" + item.label + "\" is scrolled or clipped out of view";
    click(item.centreX(), item.centreY(), button);
    runFrames(kClickFrames);
    return "";
}

}  // namespace

bool UiItem::checked() const { return (flags & kCheckable) && (flags & kChecked); }

int uiFramesReceived() { return driver().received; }

std::string uiFrame(const std::string& window, UiFrame& out) {
    WindowInfo info;
    if (auto e = findVisibleWindow(window, info); !e.empty()) return e;
    auto found = driver().frames.find(info.id);
    // Shown again after a while, or never drawn: the window's next frame tells.
    if (found == driver().frames.end() || frameNumber() - found->second.frame > 1) {
        runFrames(1);
        found = driver().frames.find(info.id);
        if (found == driver().frames.end()) return "window \"" + info.title + "\" reports no panel frames";
    }
    out = found->second;
    return "";
}

std::string uiFind(const std::string& window, const std::string& label, UiItem& out) {
    UiFrame frame;
    if (auto e = uiFrame(window, frame); !e.empty()) return e;
    const UiItem* best = nullptr;
    for (const UiItem& item : frame.items) {
        if (!matches(item, label)) continue;
        if (!best || (item.visible && !best->visible)) best = &item;
        if (best->visible && !best->isWindow) break;
    }
    if (!best) return "no item \"" + label + "\" in \"" + window + "\"";
    out = *best;
    return "";
}

std::string uiClick(const std::string& window, const std::string& label, int button) {
    UiItem item;
    std::string error = findSettled(window, label, item);
    if (error.empty()) return clickItem(item, button);
    if (label.find('/') == std::string::npos) return error;

    // A menu path: the first part is in the window now, each next one appears once the
    // previous part has been clicked open.
    size_t start = 0;
    while (start <= label.size()) {
        const size_t slash = label.find('/', start);
        const std::string part = label.substr(start, slash == std::string::npos ? std::string::npos : slash - start);
        error = findSettled(window, part, item);
        for (int wait = 0; !error.empty() && wait < kMenuWaitFrames; ++wait) {
            runFrames(1);
            error = findSettled(window, part, item);
        }
        if (!error.empty()) return error + " (menu path \"" + label + "\")";
        if (auto e = clickItem(item, button); !e.empty()) return e;
        if (slash == std::string::npos) break;
        start = slash + 1;
    }
    return "";
}

std::string uiDrag(const std::string& window, const std::string& label, int dx, int dy, int steps) {
    UiItem item;
    if (auto e = findSettled(window, label, item); !e.empty()) return e;
    if (!item.visible) return "\"" + label + "\" is scrolled or clipped out of view";
    drag(item.centreX(), item.centreY(), item.centreX() + dx, item.centreY() - dy, steps);
    runFrames(kClickFrames);
    return "";
}

std::string uiType(const std::string& window, const std::string& label, const std::string& text) {
    UiItem item;
    if (auto e = findSettled(window, label, item); !e.empty()) return e;
    if (auto e = clickItem(item, 0); !e.empty()) return e;
    UiFrame frame;
    if (auto e = uiFrame(window, frame); !e.empty()) return e;
    if (!frame.wantTextInput) {
        // A drag or slider becomes a text field on a double click: a second click
        // within ImGui's double click time (0.3 s) at the same place.
        click(item.centreX(), item.centreY());
        runFrames(kClickFrames);
        if (auto e = uiFrame(window, frame); !e.empty()) return e;
        if (!frame.wantTextInput) return "\"" + label + "\" takes no text";
    }
    typeKey('a', 'A', xplm_ControlFlag);  // select all, so TEXT replaces the old value
    runFrames(2);
    for (char c : text) {
        int virtualKey = static_cast<unsigned char>(c);
        int flags = 0;
        if (c >= 'a' && c <= 'z') virtualKey = c - 'a' + 'A';
        if (c >= 'A' && c <= 'Z') flags = xplm_ShiftFlag;
        if (c == '.') virtualKey = XPLM_VK_PERIOD;
        if (c == '-') virtualKey = XPLM_VK_MINUS;
        typeKey(c, virtualKey, flags);
        runFrames(2);  // a panel takes one key event a frame
    }
    typeKey('\r', 13);
    runFrames(3);
    return "";
}

std::string uiExpectText(const std::string& window, const std::string& text, bool shown) {
    UiFrame frame;
    if (auto e = uiFrame(window, frame); !e.empty()) return shown ? e : "";
    const bool found = frame.text.find(text) != std::string::npos;
    if (found == shown) return "";
    return "\"" + window + "\" " + (shown ? "doesn't show" : "shows") + " \"" + text + "\"";
}

}  // namespace xphost

using namespace xphost;

extern "C" __attribute__((visibility("default"))) void vistarig_ui_frame(const VistarigUiFrame* in) {
    if (!in) return;
    UiFrame frame;
    frame.windowId = in->windowId;
    frame.frame = frameNumber();
    frame.text = in->text ? in->text : "";
    frame.wantTextInput = in->wantTextInput != 0;
    frame.activeId = in->activeId;
    frame.items.reserve(static_cast<size_t>(in->count));
    for (int i = 0; i < in->count; ++i) {
        const VistarigUiItem& r = in->items[i];
        UiItem item;
        item.id = r.id;
        item.label = r.label ? r.label : "";
        item.window = r.window ? r.window : "";
        item.flags = r.flags;
        item.left = r.left;
        item.top = r.top;
        item.right = r.right;
        item.bottom = r.bottom;
        item.visible = r.visible != 0;
        item.disabled = r.disabled != 0;
        item.isWindow = r.isWindow != 0;
        frame.items.push_back(std::move(item));
    }
    UiFrame& latest = driver().frames[in->windowId];
    driver().previous[in->windowId] = std::move(latest);
    latest = std::move(frame);
    ++driver().received;
}
