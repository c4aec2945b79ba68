// Scenario verbs for the screen: clicks, drags, the wheel and keys routed to the
// plug-in's windows as X-Plane routes them, the list of windows, monitors, the user
// interface scale, and screenshots. Coordinates are global boxels, y up.
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "host/host.h"
#include "host/windows.h"

namespace {

using xphost::ScenarioLine;

std::string ints(const ScenarioLine& line, size_t first, size_t count, std::vector<int>& out) {
    out.clear();
    for (size_t i = first; i < first + count; ++i) {
        double value = 0;
        if (i >= line.args.size()) return "wrong number of arguments";
        if (!xphost::parseNumber(line.args[i], value)) return "not a number: " + line.args[i];
        out.push_back(static_cast<int>(value));
    }
    return "";
}

int buttonOf(const std::string& word) { return word == "right" ? 1 : 0; }

// A relative file name lands beside the log, in the X-Plane tree.
std::string outputPath(const std::string& name) { return name.empty() || name[0] == '/' ? name : xphost::root() + name; }

// Plug-in timers count real milliseconds, as they do in the simulator.
xphost::ScenarioVerbRegistration sleepVerb("sleep", "sleep MS   (waits in real time, no frames)", [](ScenarioLine& line) {
    std::vector<int> v;
    std::string error = ints(line, 1, 1, v);
    if (!error.empty()) return error;
    std::this_thread::sleep_for(std::chrono::milliseconds(v[0]));
    return std::string();
});

xphost::ScenarioVerbRegistration clickVerb("click", "click X Y [left|right]   (press and release)", [](ScenarioLine& line) {
    std::vector<int> v;
    if (line.args.size() < 3 || line.args.size() > 4) return std::string("usage: click X Y [left|right]");
    if (auto e = ints(line, 1, 2, v); !e.empty()) return e;
    xphost::click(v[0], v[1], line.args.size() == 4 ? buttonOf(line.args[3]) : 0);
    return std::string();
});

xphost::ScenarioVerbRegistration clickWindowVerb(
    "click_window", "click_window TITLE DX DY [left|right]   (DX, DY from the window's top left corner, y down)",
    [](ScenarioLine& line) {
        std::vector<int> v;
        if (line.args.size() < 4 || line.args.size() > 5) return std::string("usage: click_window TITLE DX DY");
        if (auto e = ints(line, 2, 2, v); !e.empty()) return e;
        xphost::WindowInfo w;
        if (!xphost::findWindow(line.args[1], w)) return "no window \"" + line.args[1] + "\"";
        xphost::click(w.left + v[0], w.top - v[1], line.args.size() == 5 ? buttonOf(line.args[4]) : 0);
        return std::string();
    });

xphost::ScenarioVerbRegistration dragVerb(
    "drag", "drag X1 Y1 X2 Y2 [STEPS]   (left button; one frame per step)", [](ScenarioLine& line) {
        std::vector<int> v;
        if (line.args.size() < 5 || line.args.size() > 6) return std::string("usage: drag X1 Y1 X2 Y2 [STEPS]");
        if (auto e = ints(line, 1, line.args.size() - 1, v); !e.empty()) return e;
        xphost::drag(v[0], v[1], v[2], v[3], v.size() > 4 ? v[4] : 10);
        return std::string();
    });

xphost::ScenarioVerbRegistration wheelVerb(
    "wheel", "wheel X Y CLICKS [horizontal]", [](ScenarioLine& line) {
        std::vector<int> v;
        if (line.args.size() < 4 || line.args.size() > 5) return std::string("usage: wheel X Y CLICKS [horizontal]");
        if (auto e = ints(line, 1, 3, v); !e.empty()) return e;
        xphost::wheel(v[0], v[1], v[2], line.args.size() == 5 && line.args[4] == "horizontal" ? 1 : 0);
        return std::string();
    });

xphost::ScenarioVerbRegistration keyVerb(
    "key", "key CHAR FLAGS VKEY   (X-Plane key flags: 1 shift, 2 alt, 4 ctrl, 8 down, 16 up; CHAR a letter or a code)",
    [](ScenarioLine& line) {
        std::vector<int> v;
        if (line.args.size() != 4) return std::string("usage: key CHAR FLAGS VKEY");
        if (auto e = ints(line, 2, 2, v); !e.empty()) return e;
        const std::string& c = line.args[1];
        double code = 0;
        const char ch = c.size() == 1 ? c[0] : (xphost::parseNumber(c, code) ? static_cast<char>(code) : 0);
        xphost::key(ch, v[0], v[1]);
        return std::string();
    });

xphost::ScenarioVerbRegistration typeVerb(
    "type", "type TEXT   (each character pressed and released; the focused window gets them)", [](ScenarioLine& line) {
        if (line.args.size() < 2) return std::string("usage: type TEXT");
        for (size_t i = 1; i < line.args.size(); ++i) {
            if (i > 1) xphost::typeKey(' ', 32);
            for (char c : line.args[i]) {
                int vkey = static_cast<unsigned char>(c);
                int flags = 0;
                if (c >= 'a' && c <= 'z') vkey = c - 'a' + 'A';
                if (c >= 'A' && c <= 'Z') flags = 1;
                xphost::typeKey(c, vkey, flags);
                xphost::runFrames(2);  // a panel takes one key per frame
            }
        }
        return std::string();
    });

xphost::ScenarioVerbRegistration windowsVerb("windows", "windows   (prints every window, back to front)", [](ScenarioLine& line) {
    for (const xphost::WindowInfo& w : xphost::windows())
        *line.out << "window \"" << w.title << "\" " << (w.visible ? "visible" : "hidden") << " left " << w.left
                  << " top " << w.top << " right " << w.right << " bottom " << w.bottom
                  << (w.poppedOut ? " popped-out" : "") << (w.hasFocus ? " focus" : "") << "\n";
    return std::string();
});

xphost::ScenarioVerbRegistration expectWindowVerb(
    "expect_window", "expect_window TITLE 0|1   (whether a visible window has this title)", [](ScenarioLine& line) {
        if (line.args.size() != 3) return std::string("usage: expect_window TITLE 0|1");
        xphost::WindowInfo w;
        const bool shown = xphost::findWindow(line.args[1], w) && w.visible;
        if (shown != (line.args[2] == "1"))
            return "expected \"" + line.args[1] + "\" " + (shown ? "not to be shown" : "to be shown");
        *line.out << "ok window \"" << line.args[1] << "\" " << (shown ? "shown" : "not shown") << "\n";
        return std::string();
    });

// A window's control, found by the window's title, or the message of the failure.
std::string findControl(const std::string& title, xphost::WindowControl control, const char* what,
                        xphost::WindowInfo& w, int& x, int& y) {
    if (!xphost::findWindow(title, w)) return "no window \"" + title + "\"";
    if (!xphost::windowControl(w.id, control, x, y)) return "window \"" + title + "\" has no " + what;
    return "";
}

xphost::ScenarioVerbRegistration closeVerb(
    "close_window", "close_window TITLE   (clicks the simulator's close box of a decorated window)",
    [](ScenarioLine& line) {
        if (line.args.size() != 2) return std::string("usage: close_window TITLE");
        xphost::WindowInfo w;
        int x = 0, y = 0;
        if (auto e = findControl(line.args[1], xphost::WindowControl::closeBox, "close box", w, x, y); !e.empty())
            return e;
        xphost::click(x, y);
        return std::string();
    });

xphost::ScenarioVerbRegistration popOutVerb(
    "pop_out_window", "pop_out_window TITLE   (clicks the pop-out box of a decorated window that stands free)",
    [](ScenarioLine& line) {
        if (line.args.size() != 2) return std::string("usage: pop_out_window TITLE");
        xphost::WindowInfo w;
        int x = 0, y = 0;
        if (auto e = findControl(line.args[1], xphost::WindowControl::popOutBox, "pop-out box", w, x, y); !e.empty())
            return e;
        xphost::click(x, y);
        return std::string();
    });

xphost::ScenarioVerbRegistration resizeVerb(
    "resize_window", "resize_window TITLE WIDTH HEIGHT   (drags the bottom right corner; the top left stays)",
    [](ScenarioLine& line) {
        std::vector<int> v;
        if (line.args.size() != 4) return std::string("usage: resize_window TITLE WIDTH HEIGHT");
        if (auto e = ints(line, 2, 2, v); !e.empty()) return e;
        xphost::WindowInfo w;
        int x = 0, y = 0;
        if (auto e = findControl(line.args[1], xphost::WindowControl::resizeCorner, "resize corner", w, x, y);
            !e.empty())
            return e;
        xphost::drag(x, y, x + v[0] - (w.right - w.left), y - (v[1] - (w.top - w.bottom)), 4);
        return std::string();
    });

xphost::ScenarioVerbRegistration titleBarVerb(
    "expect_title_bar", "expect_title_bar TITLE   (the window's title bar shows its title, whole)",
    [](ScenarioLine& line) {
        if (line.args.size() != 2) return std::string("usage: expect_title_bar TITLE");
        xphost::WindowInfo w;
        int x = 0, y = 0;
        if (auto e = findControl(line.args[1], xphost::WindowControl::titleBar, "title bar", w, x, y); !e.empty())
            return e;
        if (w.titleShown != w.title) return "the title bar shows \"" + w.titleShown + "\"";
        *line.out << "ok title bar \"" << w.titleShown << "\"\n";
        return std::string();
    });

xphost::ScenarioVerbRegistration monitorsVerb(
    "monitors", "monitors L T R B [L T R B ...]   (global boxels; the first is the main monitor)", [](ScenarioLine& line) {
        std::vector<int> v;
        const size_t n = line.args.size() - 1;
        if (n == 0 || n % 4 != 0) return std::string("usage: monitors L T R B [L T R B ...]");
        if (auto e = ints(line, 1, n, v); !e.empty()) return e;
        std::vector<xphost::MonitorBounds> list;
        for (size_t i = 0; i < v.size(); i += 4) list.push_back({v[i], v[i + 1], v[i + 2], v[i + 3]});
        xphost::setMonitors(list);
        return std::string();
    });

xphost::ScenarioVerbRegistration scaleVerb("draw_scale", "draw_scale S   (pixels per boxel)", [](ScenarioLine& line) {
    double s = 0;
    if (line.args.size() != 2 || !xphost::parseNumber(line.args[1], s) || s <= 0)
        return std::string("usage: draw_scale S (above 0)");
    xphost::setDrawScale(static_cast<float>(s));
    return std::string();
});

xphost::ScenarioVerbRegistration screenshotVerb(
    "screenshot", "screenshot FILE.png   (the whole screen of the last frame; relative names go beside the log)",
    [](ScenarioLine& line) {
        if (line.args.size() != 2) return std::string("usage: screenshot FILE.png");
        const std::string path = outputPath(line.args[1]);
        std::string error;
        // A run without drawing goes through the same script and takes no pictures.
        if (!xphost::drawing()) return std::string();
        if (!xphost::screenshot(path, &error)) return error;
        *line.out << "Screenshot: " << path << "\n";
        return std::string();
    });

}  // namespace

// Mesa's software renderer keeps a few global allocations for the life of the
// process; they are not ours to free.
extern "C" const char* __lsan_default_suppressions() { return "leak:libOSMesa.so\n"; }
