// Scenario verbs that work a plug-in's panels by what the user sees: controls found by
// label or menu path in a window named by its title (host/ui_driver.h).
#include <chrono>
#include <string>
#include <thread>

#include "host/host.h"
#include "host/ui_driver.h"

namespace {

using xphost::ScenarioLine;

bool toInt(const std::string& word, int& out) {
    double value = 0;
    if (!xphost::parseNumber(word, value)) return false;
    out = static_cast<int>(value);
    return true;
}

std::string restOfLine(const ScenarioLine& line, size_t first) {
    std::string text;
    for (size_t i = first; i < line.args.size(); ++i) text += (i > first ? " " : "") + line.args[i];
    return text;
}

xphost::ScenarioVerbRegistration uiClickVerb(
    "ui_click", "ui_click WINDOW LABEL [left|right]   (LABEL as shown, or a menu path \"File/Save All\")",
    [](ScenarioLine& line) {
        if (line.args.size() < 3 || line.args.size() > 4) return std::string("usage: ui_click WINDOW LABEL [left|right]");
        const int button = line.args.size() == 4 && line.args[3] == "right" ? 1 : 0;
        return xphost::uiClick(line.args[1], line.args[2], button);
    });

xphost::ScenarioVerbRegistration uiDragVerb(
    "ui_drag", "ui_drag WINDOW LABEL DX DY   (boxels, y down; one frame per step)", [](ScenarioLine& line) {
        int dx = 0, dy = 0;
        if (line.args.size() != 5 || !toInt(line.args[3], dx) || !toInt(line.args[4], dy))
            return std::string("usage: ui_drag WINDOW LABEL DX DY");
        return xphost::uiDrag(line.args[1], line.args[2], dx, dy);
    });

xphost::ScenarioVerbRegistration uiTypeVerb(
    "ui_type", "ui_type WINDOW LABEL TEXT   (replaces the field's text and presses Enter)", [](ScenarioLine& line) {
        if (line.args.size() < 4) return std::string("usage: ui_type WINDOW LABEL TEXT");
        return xphost::uiType(line.args[1], line.args[2], restOfLine(line, 3));
    });

xphost::ScenarioVerbRegistration uiExpectTextVerb(
    "ui_expect_text", "ui_expect_text WINDOW TEXT [0|1]   (the window's last frame drew TEXT; 0: it didn't)",
    [](ScenarioLine& line) {
        if (line.args.size() < 3 || line.args.size() > 4) return std::string("usage: ui_expect_text WINDOW TEXT [0|1]");
        const bool shown = line.args.size() == 3 || line.args[3] != "0";
        if (auto e = xphost::uiExpectText(line.args[1], line.args[2], shown); !e.empty()) return e;
        *line.out << "ok \"" << line.args[2] << "\" " << (shown ? "shown" : "not shown") << "\n";
        return std::string();
    });

// Panels fed by worker threads (the updater) change in real time, not in frames.
xphost::ScenarioVerbRegistration uiWaitTextVerb(
    "ui_wait_text", "ui_wait_text WINDOW TEXT [SECONDS]   (runs frames until the window draws TEXT; 10 s at most)",
    [](ScenarioLine& line) {
        if (line.args.size() < 3 || line.args.size() > 4) return std::string("usage: ui_wait_text WINDOW TEXT [SECONDS]");
        double seconds = 10.0;
        if (line.args.size() == 4 && !xphost::parseNumber(line.args[3], seconds)) return std::string("bad SECONDS");
        const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(static_cast<int64_t>(seconds * 1000));
        std::string error;
        do {
            xphost::runFrames(1);
            error = xphost::uiExpectText(line.args[1], line.args[2]);
            if (error.empty()) {
                *line.out << "ok \"" << line.args[2] << "\" shown\n";
                return std::string();
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        } while (std::chrono::steady_clock::now() < end);
        return error;
    });

xphost::ScenarioVerbRegistration uiRectVerb(
    "ui_rect", "ui_rect WINDOW LABEL   (prints the item's or child window's rectangle, global boxels)",
    [](ScenarioLine& line) {
        if (line.args.size() != 3) return std::string("usage: ui_rect WINDOW LABEL");
        xphost::UiItem item;
        if (auto e = xphost::uiFind(line.args[1], line.args[2], item); !e.empty()) return e;
        *line.out << "rect \"" << line.args[2] << "\" left " << xphost::formatNumber(item.left) << " top "
                  << xphost::formatNumber(item.top) << " right " << xphost::formatNumber(item.right) << " bottom "
                  << xphost::formatNumber(item.bottom) << "\n";
        return std::string();
    });

xphost::ScenarioVerbRegistration uiExpectItemVerb(
    "ui_expect_item", "ui_expect_item WINDOW LABEL present|absent|enabled|disabled|checked|unchecked",
    [](ScenarioLine& line) {
        if (line.args.size() != 4) return std::string("usage: ui_expect_item WINDOW LABEL STATE");
        const std::string& state = line.args[3];
        xphost::UiItem item;
        const std::string error = xphost::uiFind(line.args[1], line.args[2], item);
        const bool present = error.empty();
        bool ok = false;
        if (state == "present") ok = present;
        else if (state == "absent") ok = !present;
        else if (state == "enabled") ok = present && !item.disabled;
        else if (state == "disabled") ok = present && item.disabled;
        else if (state == "checked") ok = present && item.checked();
        else if (state == "unchecked") ok = present && !item.checked();
        else return "unknown state " + state;
        if (!ok) return "\"" + line.args[2] + "\" is not " + state + (present ? "" : " (" + error + ")");
        *line.out << "ok \"" << line.args[2] << "\" " << state << "\n";
        return std::string();
    });

xphost::ScenarioVerbRegistration uiDumpVerb(
    "ui_dump", "ui_dump WINDOW   (prints the last frame's labelled items and text)", [](ScenarioLine& line) {
        if (line.args.size() != 2) return std::string("usage: ui_dump WINDOW");
        xphost::UiFrame frame;
        if (auto e = xphost::uiFrame(line.args[1], frame); !e.empty()) return e;
        for (const xphost::UiItem& item : frame.items)
            if (!item.label.empty())
                *line.out << (item.isWindow ? "window \"" : "item \"") << item.label << "\" at "
                          << item.centreX() << " " << item.centreY() << (item.visible ? "" : " clipped")
                          << (item.disabled ? " disabled" : "") << "\n";
        *line.out << frame.text << "\nframe " << frame.frame << (frame.wantTextInput ? " text input" : "") << " active 0x" << std::hex << frame.activeId << std::dec << "\n";
        return std::string();
    });

}  // namespace
